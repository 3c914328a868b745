#include "faults/Settings.h"

#include <filesystem>

#include "qvraTools/qvConfigFile.h"
#include "qvraTools/qvConfigFileINIBackend.h"
#include "support/ScratchFolder.h"

namespace {

constexpr size_t kKeysPerSection = 16;
constexpr char kValueSeparator = '/';  // between the generation and the rest of a value

std::string GenerationOf(const char* aValue, const std::string& aKey) {
  std::string theValue = aValue;
  std::string theEnd = kValueSeparator + aKey;
  size_t theLength = theValue.size() - theEnd.size();
  bool theFits = theValue.size() > theEnd.size() && theValue.compare(theLength, theEnd.size(), theEnd) == 0;
  return theFits ? theValue.substr(0, theLength) : "(mixed)";
}

}  // namespace

void WriteImage(const std::string& aFolder, const FolderImage& anImage) {
  for (const auto& theEntry : anImage) {
    WriteWholeFile(aFolder + "/" + theEntry.first, theEntry.second);
  }
}

FolderImage ReadImage(const std::string& aFolder) {
  FolderImage theImage;
  for (const auto& theEntry : std::filesystem::directory_iterator(aFolder)) {
    theImage[theEntry.path().filename().string()] = ReadWholeFile(theEntry.path().string());
  }
  return theImage;
}

std::string Describe(const FolderImage& anImage) {
  std::string theText;
  for (const auto& theEntry : anImage) {
    theText += (theText.empty() ? "" : ", ") + theEntry.first + " of " +
               std::to_string(theEntry.second.size()) + " bytes";
  }
  return theText.empty() ? "nothing" : theText;
}

// The first keys have no section: they come before the first header.
std::string Settings::Section(size_t anIndex) const {
  size_t theNumber = anIndex / kKeysPerSection;
  return theNumber == 0 ? "default" : "section" + std::to_string(theNumber);
}

std::string Settings::Key(size_t anIndex) const { return "key" + std::to_string(anIndex); }

std::string Settings::Text(const std::string& aGeneration) const {
  std::string theText;
  for (size_t i = 0; i < mKeyCount; ++i) {
    if (i > 0 && i % kKeysPerSection == 0) {
      theText += "\n[" + Section(i) + "]\n";
    }
    theText += Key(i) + "=" + aGeneration + kValueSeparator + Key(i) + "\n";
  }
  return theText;
}

bool Settings::OpenAndSave(const std::string& aFolder, const std::string& aGeneration) const {
  std::string theFile = aFolder + "/" + kSettingsFile;
  qvConfigFile* theConfigFile = qvConfigFile_New(nullptr, theFile.c_str(), nullptr);
  for (size_t i = 0; i < mKeyCount; ++i) {
    std::string theValue = aGeneration + kValueSeparator + Key(i);
    qvConfigFile_SetString(theConfigFile, Section(i).c_str(), Key(i).c_str(), theValue.c_str());
  }
  bool theResult = qvConfigFile_Save(theConfigFile) != 0;
  qvConfigFile_Delete(theConfigFile);
  return theResult;
}

std::string Settings::FoundAtOpen(const std::string& aFolder) const {
  std::string theFile = aFolder + "/" + kSettingsFile;
  qvConfigFile* theConfigFile = qvConfigFile_New(nullptr, theFile.c_str(), nullptr);
  size_t theEntryCount =
      qvDictionary_GetEntryCount(reinterpret_cast<qvConfigFile_INI*>(theConfigFile)->mRWDictionary);
  std::string theGeneration;
  bool theIsMixed = false;
  size_t theFound = 0;
  for (size_t i = 0; i < mKeyCount; ++i) {
    const char* theValue = qvConfigFile_GetString(theConfigFile, Section(i).c_str(), Key(i).c_str(), nullptr);
    if (theValue != nullptr) {
      std::string theOne = GenerationOf(theValue, Key(i));
      theIsMixed = theIsMixed || (theFound > 0 && theOne != theGeneration);
      theGeneration = theOne;
      ++theFound;
    }
  }
  qvConfigFile_Delete(theConfigFile);
  // The entries are the keys and one for each section, "default" included, which is there from the start.
  size_t theAllEntries = mKeyCount + (mKeyCount + kKeysPerSection - 1) / kKeysPerSection;
  if (theFound == 0) {
    return theEntryCount <= 1 ? "" : "(mixed)";
  }
  return theIsMixed || theFound != mKeyCount || theEntryCount != theAllEntries ? "(mixed)" : theGeneration;
}

std::vector<StartImage> StartImages(const Settings& aSettings) {
  const std::string theOlder = aSettings.Text("older");
  const std::string theOld = aSettings.Text("old");
  const std::string theCut = aSettings.Text("cut").substr(0, aSettings.Text("cut").size() * 2 / 3);
  return {
      {"no file", {}, ""},
      {"file", {{kSettingsFile, theOld}}, "old"},
      {"file and stale .tmp", {{kSettingsFile, theOld}, {kTemporaryFile, theCut}}, "old"},
      {"file and .ok", {{kSettingsFile, theOlder}, {kCompletedFile, theOld}}, "old"},
      {".ok alone", {{kCompletedFile, theOld}}, "old"},
      {"stale .tmp alone", {{kTemporaryFile, theCut}}, ""},
      {"file, .ok and stale .tmp",
       {{kSettingsFile, theOlder}, {kCompletedFile, theOld}, {kTemporaryFile, theCut}},
       "old"},
  };
}
