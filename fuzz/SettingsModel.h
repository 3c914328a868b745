// SettingsModel.h - what a settings file holds, by the description of its format: a plain reading, step by
// step, that shares nothing with the library.
#ifndef FUZZ_SETTINGSMODEL_H
#define FUZZ_SETTINGSMODEL_H

#include <string>
#include <string_view>
#include <utility>
#include <vector>

class SettingsModel {
 public:
  // A name and its value. The name is a section's, or section, '/' and key; all in the order of the
  // dictionary.
  typedef std::pair<std::string, std::string> Entry;

  // The text up to the first line that ends the process on purpose: one that is all key, and too long for
  // one.
  static std::string_view LoadablePart(std::string_view aText);

  void Load(std::string_view aText);
  // The text of the file when the settings are saved.
  std::string Save() const;
  // Whether the format can carry all of them: names and values that come back as they are.
  bool SurvivesSaving() const;

  const std::vector<Entry>& Entries() const { return mEntries; }
  const std::string* Find(std::string_view aName) const;

 private:
  void Set(std::string_view aName, std::string_view aValue);
  void LoadLine(std::string_view aLine, std::string* aSection);
  bool EntrySurvivesSaving(const Entry& anEntry) const;

  std::vector<Entry> mEntries;
};

#endif
