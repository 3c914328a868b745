// Settings.h - a settings file of a chosen size that tells which save it comes from.
//
// Each value holds the name of its generation, so that a mixture of two saves and a file cut short both show.
#ifndef TESTS_FAULTS_SETTINGS_H
#define TESTS_FAULTS_SETTINGS_H

#include <stddef.h>

#include <map>
#include <string>
#include <vector>

// Names and contents of what lies in the folder of the settings file kSettingsFile.
using FolderImage = std::map<std::string, std::string>;

constexpr const char* kSettingsFile = "a.ini";
constexpr const char* kTemporaryFile = "a.ini.tmp";
constexpr const char* kCompletedFile = "a.ini.ok";

// Makes an empty folder look like the image.
void WriteImage(const std::string& aFolder, const FolderImage& anImage);
FolderImage ReadImage(const std::string& aFolder);
// For messages: the names with the sizes of the files.
std::string Describe(const FolderImage& anImage);

class Settings {
 public:
  explicit Settings(size_t aKeyCount) : mKeyCount(aKeyCount) {}

  size_t KeyCount() const { return mKeyCount; }
  // The saved file of a generation.
  std::string Text(const std::string& aGeneration) const;
  // What a program does that changes its settings: opens them, sets every key and saves. The save's result.
  bool OpenAndSave(const std::string& aFolder, const std::string& aGeneration) const;
  // The generation that the next open finds: "" for no settings, "(mixed)" unless all keys are there, with
  // values of one generation.
  std::string FoundAtOpen(const std::string& aFolder) const;

 private:
  std::string Section(size_t anIndex) const;
  std::string Key(size_t anIndex) const;

  size_t mKeyCount;
};

// What may lie in the folder when a program starts.
struct StartImage {
  std::string mName;
  FolderImage mImage;
  std::string mOldGeneration;  // what an open finds
};
std::vector<StartImage> StartImages(const Settings& aSettings);

#endif
