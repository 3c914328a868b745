#include "SettingsModel.h"

#include <string.h>

#include <algorithm>

static const char kSpaces[] = " \t\n\v\f\r";
static const size_t kMaxLine = 1023;  // bytes of a line, in both directions
static const size_t kMaxName = 127;

static std::string Lower(std::string_view aText) {
  std::string theText(aText);
  for (char& theChar : theText) {
    theChar = theChar >= 'A' && theChar <= 'Z' ? static_cast<char>(theChar + 32) : theChar;
  }
  return theText;
}

static std::string_view Trim(std::string_view aText) {
  size_t theStart = aText.find_first_not_of(kSpaces);
  if (theStart == std::string::npos) {
    return "";
  }
  return aText.substr(theStart, aText.find_last_not_of(kSpaces) - theStart + 1);
}

static std::string_view TrimName(std::string_view aText) { return Trim(aText).substr(0, kMaxName); }

// The line that begins at aStart, its line break included.
static std::string_view RawLine(std::string_view aText, size_t aStart) {
  size_t theEnd = aText.find_first_of("\r\n", aStart);
  size_t theLength = theEnd == std::string::npos ? aText.size() - aStart : theEnd + 1 - aStart;
  return aText.substr(aStart, std::min(theLength, kMaxLine));
}

// What of it counts: up to a zero byte, without the mark at the start of a file and white space at both ends.
static std::string_view CleanLine(std::string_view aRawLine, bool afFirst) {
  std::string_view theLine = aRawLine.substr(0, aRawLine.find('\0'));
  if (afFirst && theLine.compare(0, 3, "\xEF\xBB\xBF") == 0) {
    theLine.remove_prefix(3);
  }
  return Trim(theLine);
}

static bool IsComment(std::string_view aLine) { return aLine.empty() || aLine[0] == ';' || aLine[0] == '#'; }

static bool IsHeader(std::string_view aLine) {
  return aLine[0] == '[' && aLine.find(']') != std::string::npos;
}

static std::string ParseValue(std::string_view aText) {
  std::string_view theText = Trim(aText);
  if (theText.empty() || (theText[0] != '"' && theText[0] != '\'')) {
    return std::string(Trim(theText.substr(0, theText.find_first_of("#;"))));
  }
  std::string theValue;
  theValue.reserve(theText.size());
  for (size_t i = 1; i < theText.size() && theText[i] != theText[0]; ++i) {
    i += theText[i] == '\\' ? 1 : 0;
    theValue += theText.substr(std::min(i, theText.size()), 1);
  }
  return theValue;
}

std::string_view SettingsModel::LoadablePart(std::string_view aText) {
  for (size_t thePos = 0; thePos < aText.size();) {
    std::string_view theRawLine = RawLine(aText, thePos);
    std::string_view theLine = CleanLine(theRawLine, thePos == 0);
    if (theLine.size() > kMaxName && !IsComment(theLine) && !IsHeader(theLine) &&
        theLine.find('=') == std::string::npos) {
      return aText.substr(0, thePos);
    }
    thePos += theRawLine.size();
  }
  return aText;
}

void SettingsModel::Load(std::string_view aText) {
  std::string theSection = "default";
  Set(theSection, "");
  for (size_t thePos = 0; thePos < aText.size();) {
    std::string_view theRawLine = RawLine(aText, thePos);
    LoadLine(CleanLine(theRawLine, thePos == 0), &theSection);
    thePos += theRawLine.size();
  }
}

void SettingsModel::LoadLine(std::string_view aLine, std::string* aSection) {
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
  std::string_view theKey = theHasValue ? TrimName(aLine.substr(0, theEqual)) : aLine;
  Set(*aSection, "");
  Set(*aSection + "/" + Lower(theKey), theHasValue ? ParseValue(aLine.substr(theEqual + 1)) : "");
}

void SettingsModel::Set(std::string_view aName, std::string_view aValue) {
  for (Entry& theEntry : mEntries) {
    if (theEntry.first == aName) {
      theEntry.second = aValue;
      return;
    }
  }
  mEntries.emplace_back(aName, aValue);
}

const std::string* SettingsModel::Find(std::string_view aName) const {
  for (const Entry& theEntry : mEntries) {
    if (theEntry.first == aName) {
      return &theEntry.second;
    }
  }
  return nullptr;
}

static bool NeedsQuotes(std::string_view aValue) {
  return aValue.find_first_of(" \"'#;\\") != std::string_view::npos;
}

// The line without its line break.
static void AppendSavedLine(std::string_view aKey, std::string_view aValue, std::string& aText) {
  aText.append(aKey) += '=';
  if (!NeedsQuotes(aValue)) {
    aText += aValue;
    return;
  }
  aText += '"';
  for (char theChar : aValue) {
    if (theChar == '"' || theChar == '\'' || theChar == '\\') {
      aText += '\\';
    }
    aText += theChar;
  }
  aText += '"';
}

std::string SettingsModel::Save() const {
  std::string theText;
  for (const Entry& theSection : mEntries) {
    if (theSection.first.find('/') != std::string::npos) {
      continue;
    }
    if (theSection.first != "default") {
      theText += theText.empty() ? "[" : "\n[";
      theText.append(theSection.first) += "]\n";
    }
    size_t theLength = theSection.first.size();
    for (const Entry& theEntry : mEntries) {
      if (theEntry.first.size() > theLength && theEntry.first[theLength] == '/' &&
          theEntry.first.compare(0, theLength, theSection.first) == 0) {
        size_t theStart = theText.size();
        AppendSavedLine(std::string_view(theEntry.first).substr(theLength + 1), theEntry.second, theText);
        theText += '\n';
        theText.resize(std::min(theText.size(), theStart + kMaxLine));
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
  if (Find(std::string_view(anEntry.first).substr(0, theSlash)) == nullptr) {
    return false;
  }
  std::string_view theKey = std::string_view(anEntry.first).substr(theSlash + 1);
  std::string theLine;
  AppendSavedLine(theKey, anEntry.second, theLine);
  bool theKeySurvives = !IsComment(theKey) && !IsHeader(theLine) && theKey.size() <= kMaxName &&
                        theKey.find('=') == std::string_view::npos && Trim(theKey) == theKey;
  bool theValueSurvives = NeedsQuotes(anEntry.second) || Trim(anEntry.second) == anEntry.second;
  return theKeySurvives && theValueSurvives && theLine.size() < kMaxLine;
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
