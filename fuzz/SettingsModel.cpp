#include "SettingsModel.h"

#include <string.h>

#include <algorithm>

static const char kSpaces[] = " \t\n\v\f\r";
static const size_t kMaxLine = 1023;  // bytes of a line, in both directions
static const size_t kMaxName = 127;

static std::string Lower(std::string aText) {
  for (char& theChar : aText) {
    theChar = theChar >= 'A' && theChar <= 'Z' ? static_cast<char>(theChar + 32) : theChar;
  }
  return aText;
}

static std::string Trim(const std::string& aText) {
  size_t theStart = aText.find_first_not_of(kSpaces);
  if (theStart == std::string::npos) {
    return "";
  }
  return aText.substr(theStart, aText.find_last_not_of(kSpaces) - theStart + 1);
}

static std::string TrimName(const std::string& aText) { return Trim(aText).substr(0, kMaxName); }

// The line that begins at aStart, its line break included.
static std::string RawLine(const std::string& aText, size_t aStart) {
  size_t theEnd = aText.find_first_of("\r\n", aStart);
  size_t theLength = theEnd == std::string::npos ? aText.size() - aStart : theEnd + 1 - aStart;
  return aText.substr(aStart, std::min(theLength, kMaxLine));
}

// What of it counts: up to a zero byte, without the mark at the start of a file and white space at both ends.
static std::string CleanLine(const std::string& aRawLine, bool afFirst) {
  std::string theLine = aRawLine.c_str();
  if (afFirst && theLine.compare(0, 3, "\xEF\xBB\xBF") == 0) {
    theLine.erase(0, 3);
  }
  return Trim(theLine);
}

static bool IsComment(const std::string& aLine) {
  return aLine.empty() || aLine[0] == ';' || aLine[0] == '#';
}

static bool IsHeader(const std::string& aLine) {
  return aLine[0] == '[' && aLine.find(']') != std::string::npos;
}

static std::string ParseValue(const std::string& aText) {
  std::string theText = Trim(aText);
  if (theText[0] != '"' && theText[0] != '\'') {
    return Trim(theText.substr(0, theText.find_first_of("#;")));
  }
  std::string theValue;
  for (size_t i = 1; i < theText.size() && theText[i] != theText[0]; ++i) {
    i += theText[i] == '\\' ? 1 : 0;
    theValue += theText.substr(std::min(i, theText.size()), 1);
  }
  return theValue;
}

std::string SettingsModel::LoadablePart(const std::string& aText) {
  for (size_t thePos = 0; thePos < aText.size();) {
    std::string theRawLine = RawLine(aText, thePos);
    std::string theLine = CleanLine(theRawLine, thePos == 0);
    if (theLine.size() > kMaxName && !IsComment(theLine) && !IsHeader(theLine) &&
        theLine.find('=') == std::string::npos) {
      return aText.substr(0, thePos);
    }
    thePos += theRawLine.size();
  }
  return aText;
}

void SettingsModel::Load(const std::string& aText) {
  std::string theSection = "default";
  Set(theSection, "");
  for (size_t thePos = 0; thePos < aText.size();) {
    std::string theRawLine = RawLine(aText, thePos);
    LoadLine(CleanLine(theRawLine, thePos == 0), &theSection);
    thePos += theRawLine.size();
  }
}

void SettingsModel::LoadLine(const std::string& aLine, std::string* aSection) {
  if (IsComment(aLine)) {
    return;
  }
  if (IsHeader(aLine)) {
    *aSection = Lower(TrimName(aLine.substr(1, aLine.find(']') - 1)));
    *aSection = aSection->empty() ? "default" : *aSection;
    Set(*aSection, "");
    return;
  }
  size_t theEqual = aLine.find('=');
  if (theEqual == 0) {
    return;
  }
  bool theHasValue = theEqual != std::string::npos;
  std::string theKey = theHasValue ? TrimName(aLine.substr(0, theEqual)) : aLine;
  Set(*aSection, "");
  Set(*aSection + "/" + Lower(theKey), theHasValue ? ParseValue(aLine.substr(theEqual + 1)) : "");
}

void SettingsModel::Set(const std::string& aName, const std::string& aValue) {
  for (Entry& theEntry : mEntries) {
    if (theEntry.first == aName) {
      theEntry.second = aValue;
      return;
    }
  }
  mEntries.emplace_back(aName, aValue);
}

const std::string* SettingsModel::Find(const std::string& aName) const {
  for (const Entry& theEntry : mEntries) {
    if (theEntry.first == aName) {
      return &theEntry.second;
    }
  }
  return nullptr;
}

static std::string SavedValue(const std::string& aValue) {
  if (aValue.find_first_of(" \"'#;\\") == std::string::npos) {
    return aValue;
  }
  std::string theQuoted = "\"";
  for (char theChar : aValue) {
    theQuoted += strchr("\"'\\", theChar) != nullptr ? "\\" : "";
    theQuoted += theChar;
  }
  return theQuoted + "\"";
}

static std::string SavedLine(const std::string& aKey, const std::string& aValue) {
  return aKey + "=" + SavedValue(aValue) + "\n";
}

std::string SettingsModel::Save() const {
  std::string theText;
  for (const Entry& theSection : mEntries) {
    if (theSection.first.find('/') != std::string::npos) {
      continue;
    }
    if (theSection.first != "default") {
      theText += theText.empty() ? "" : "\n";
      theText += "[" + theSection.first + "]\n";
    }
    std::string thePrefix = theSection.first + "/";
    for (const Entry& theEntry : mEntries) {
      if (theEntry.first.compare(0, thePrefix.size(), thePrefix) == 0) {
        theText += SavedLine(theEntry.first.substr(thePrefix.size()), theEntry.second).substr(0, kMaxLine);
      }
    }
  }
  return theText;
}

bool SettingsModel::EntrySurvivesSaving(const Entry& anEntry) const {
  size_t theSlash = anEntry.first.find('/');
  if (theSlash == std::string::npos) {
    return Trim(anEntry.first) == anEntry.first;
  }
  // A section with a '/' in its name is no section when its settings are looked for.
  if (Find(anEntry.first.substr(0, theSlash)) == nullptr) {
    return false;
  }
  std::string theKey = anEntry.first.substr(theSlash + 1);
  std::string theLine = SavedLine(theKey, anEntry.second);
  bool theKeySurvives = !IsComment(theKey) && !IsHeader(theLine) && theKey.size() <= kMaxName &&
                        theKey.find('=') == std::string::npos && Trim(theKey) == theKey;
  bool theValueSurvives =
      SavedValue(anEntry.second) != anEntry.second || Trim(anEntry.second) == anEntry.second;
  return theKeySurvives && theValueSurvives && theLine.size() <= kMaxLine;
}

bool SettingsModel::SurvivesSaving() const {
  for (const Entry& theEntry : mEntries) {
    if (!EntrySurvivesSaving(theEntry)) {
      return false;
    }
  }
  // A byte order mark is part of a key's name, except at the very start of a file.
  return Save().compare(0, 3, "\xEF\xBB\xBF") != 0;
}
