#include "LogModel.h"

#include <ctype.h>
#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>

LogSettings::LogSettings(const std::string& aReadOnlyText, const std::string& aReadWriteText) {
  mReadOnly.Load(aReadOnlyText);
  mReadWrite.Load(aReadWriteText);
}

const std::string* LogSettings::Find(const std::string& aName) const {
  const std::string* theValue = mReadWrite.Find(aName);
  return theValue != nullptr ? theValue : mReadOnly.Find(aName);
}

std::string LogSettings::Text(const std::string& aName, const std::string& aDefault) const {
  const std::string* theValue = Find(aName);
  return theValue == nullptr || theValue->empty() ? aDefault : *theValue;
}

// A whole text that is a decimal number within bounds.
static bool ReadNumber(const std::string& aText, long long aMin, long long aMax, long long* aNumber) {
  char* theEnd;
  size_t theSign = aText.find_first_not_of(" \t\n\v\f\r");
  if (theSign == std::string::npos || (aText[theSign] == '-' && !isdigit(aText.c_str()[theSign + 1]))) {
    return false;
  }
  errno = 0;
  *aNumber = strtoll(aText.c_str(), &theEnd, 10);
  return errno == 0 && *theEnd == '\0' && *aNumber >= aMin && *aNumber <= aMax && isdigit(theEnd[-1]);
}

int LogSettings::Number(const std::string& aName, int aDefault) const {
  const std::string* theValue = Find(aName);
  long long theNumber;
  if (theValue == nullptr || !ReadNumber(*theValue, INT_MIN, INT_MAX, &theNumber) || theNumber == -1) {
    return aDefault;
  }
  return static_cast<int>(theNumber);
}

unsigned LogSettings::Level(const std::string& aName, const std::string& aDefault) const {
  std::string theText = Text(aName, aDefault);
  for (char& theChar : theText) {
    theChar = theChar >= 'A' && theChar <= 'Z' ? static_cast<char>(theChar + 32) : theChar;
  }
  static const struct {
    const char* mWord;
    unsigned mThreshold;
  } kWords[] = {{"off", 0},  {"error", 2},     {"warn", 3},   {"warning", 3},
                {"info", 4}, {"debug", 65535}, {"all", 65535}};
  for (const auto& theWord : kWords) {
    if (theText == theWord.mWord) {
      return theWord.mThreshold;
    }
  }
  long long theNumber;
  // The number beside the smallest reads as the smallest, whose low bits are 0 like those of no number.
  return ReadNumber(theText, LLONG_MIN + 2, LLONG_MAX, &theNumber) ? static_cast<unsigned>(theNumber & 0xFFFF)
                                                                   : 0;
}

void LogModel::Add(const std::string& aText) {
  mText += aText;
  mfAnyDigit.resize(mText.size(), false);
}

void LogModel::Start(const std::string& aProcessName) { Add("NAME: " + aProcessName + " (log started)\n"); }

void LogModel::AddPrefix() {
  Add(mPrefixLetter);
  size_t theStart = mText.size();
  Add(mfDate ? "00/00/0000 00:00:00:000" : "00:00:00:000");
  for (size_t i = theStart; i < mText.size(); ++i) {
    mfAnyDigit[i] = mText[i] == '0';
  }
  Add(mPrefixEnd);
}

void LogModel::BeginMessage(unsigned aLevel, const std::string& aThread, const std::string& aModule) {
  mPrefixLetter = aLevel < 2 ? "E " : aLevel == 2 ? "W " : aLevel == 3 ? "I " : "D ";
  std::string theModule = aModule;
  theModule.resize(10, ' ');
  mPrefixEnd = "|" + aThread + "|" + theModule + " ";
  // A message goes on in the line of the one before it, when that has not ended it.
  if (mText.back() == '\n') {
    AddPrefix();
  }
}

void LogModel::AppendFormatted(const std::string& aText, bool afLineEnd) {
  std::string theText = aText + (afLineEnd ? "\n" : "");
  if (theText.empty()) {
    theText = "%s";  // the format, when there is nothing else to be seen
  } else if (theText.size() >= mCapacity) {
    theText.resize(mCapacity - 1);
    theText += afLineEnd ? '\n' : '\0';
  }
  Add(theText);
}

void LogModel::AppendLines(const std::string& aText) {
  size_t theStart = 0;
  for (size_t theEnd; (theEnd = aText.find('\n', theStart)) != std::string::npos; theStart = theEnd + 1) {
    if (theStart > 0) {
      AddPrefix();
    }
    Add(aText.substr(theStart, theEnd + 1 - theStart));
  }
}

void LogModel::AppendDump(const std::string& aText, const void* anAddress) {
  char theHex[80];
  snprintf(theHex, sizeof(theHex), "Buffer pointer=%p length=%zu\n", anAddress, aText.size());
  Add(theHex);
  for (size_t theStart = 0; theStart < aText.size(); theStart += 16) {
    std::string theLine = "   ";
    std::string theChars;
    for (char theChar : aText.substr(theStart, 16)) {
      unsigned theByte = static_cast<unsigned char>(theChar);
      snprintf(theHex, sizeof(theHex), "%02X ", theByte);
      theLine += theHex;
      theChars += theByte < 0x20 || theByte > 0x7F ? '.' : theChar;
    }
    theLine.resize(3 + 16 * 3, ' ');
    Add(theLine + "- " + theChars + "\n");
  }
}

void LogModel::AppendWide(const std::wstring& aText) {
  std::string theText;
  for (size_t i = 0; i < aText.size() && theText.size() < 400; ++i) {
    unsigned theCode = static_cast<unsigned>(aText[i]);
    char theEscape[16];
    snprintf(theEscape, sizeof(theEscape), "\\u%04x", theCode);
    theText += theCode < 32 || theCode > 127 ? theEscape : std::string(1, static_cast<char>(theCode));
  }
  Add(theText);
}

bool LogModel::Matches(const std::string& aText) const {
  if (aText.size() != mText.size()) {
    return false;
  }
  for (size_t i = 0; i < aText.size(); ++i) {
    bool theMatch = mfAnyDigit[i] ? isdigit(static_cast<unsigned char>(aText[i])) != 0 : aText[i] == mText[i];
    if (!theMatch) {
      return false;
    }
  }
  return true;
}
