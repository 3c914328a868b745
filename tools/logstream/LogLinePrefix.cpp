#include "tools/logstream/LogLinePrefix.h"

#include <initializer_list>

static constexpr std::string_view kDateForm = "00/00/0000 ";
static constexpr std::string_view kTimeForm = "00:00:00:000|";
static constexpr size_t kThreadLength = 8;
static constexpr size_t kModuleColumns = 10;

static bool LogLinePrefix_S_IsDigit(char aChar) { return aChar >= '0' && aChar <= '9'; }

// Whether the bytes are like aForm, in which a zero stands for any digit.
static bool LogLinePrefix_S_HasForm(const char* aBytes, std::string_view aForm) {
  for (size_t i = 0; i < aForm.size(); ++i) {
    bool theFits = aForm[i] == '0' ? LogLinePrefix_S_IsDigit(aBytes[i]) : aBytes[i] == aForm[i];
    if (!theFits) {
      return false;
    }
  }
  return true;
}

static bool LogLinePrefix_S_IsThread(const char* aBytes) {
  for (size_t i = 0; i < kThreadLength; ++i) {
    if (!LogLinePrefix_S_IsDigit(aBytes[i]) && (aBytes[i] < 'a' || aBytes[i] > 'f')) {
      return false;
    }
  }
  return true;
}

// The length of the name in the module's columns; 0 when there is none or something follows its padding.
static size_t LogLinePrefix_S_ModuleLength(const char* aBytes) {
  size_t theLength = 0;
  while (theLength < kModuleColumns && aBytes[theLength] > ' ' && aBytes[theLength] < '\x7F') {
    ++theLength;
  }
  for (size_t i = theLength; i < kModuleColumns; ++i) {
    if (aBytes[i] != ' ') {
      return 0;
    }
  }
  return theLength;
}

bool LogLinePrefix_Parse(std::string_view aLine, LogLinePrefix* aPrefix) {
  constexpr size_t kAfterStamp = kThreadLength + 1 + kModuleColumns + 1;
  constexpr size_t kShortest = 2 + kTimeForm.size() + kAfterStamp;
  static_assert(kShortest + kDateForm.size() == kLogLinePrefix_MaxLength, "the longest prefix has a date");
  if (aLine.size() < kShortest || aLine[1] != ' ') {
    return false;
  }
  char theLevel = aLine[0];
  if (theLevel != 'E' && theLevel != 'W' && theLevel != 'I' && theLevel != 'D') {
    return false;
  }
  const char* theStamp = aLine.data() + 2;
  size_t theDateLength = 0;
  if (theStamp[2] == '/') {
    theDateLength = kDateForm.size();
    if (aLine.size() < kShortest + theDateLength || !LogLinePrefix_S_HasForm(theStamp, kDateForm)) {
      return false;
    }
  }
  if (!LogLinePrefix_S_HasForm(theStamp + theDateLength, kTimeForm)) {
    return false;
  }
  const char* theThread = theStamp + theDateLength + kTimeForm.size();
  const char* theModule = theThread + kThreadLength + 1;
  size_t theModuleLength = LogLinePrefix_S_ModuleLength(theModule);
  if (theModule[-1] != '|' || theModule[kModuleColumns] != ' ' || theModuleLength == 0 ||
      !LogLinePrefix_S_IsThread(theThread)) {
    return false;
  }
  aPrefix->mLevel = theLevel;
  aPrefix->mStamp = std::string_view(theStamp, theDateLength + kTimeForm.size() - 1);
  aPrefix->mThread = std::string_view(theThread, kThreadLength);
  aPrefix->mModule = std::string_view(theModule, theModuleLength);
  aPrefix->mLength = kShortest + theDateLength;
  return true;
}

bool LogLinePrefix_MayFollow(const LogLinePrefix& aPrefix, std::string_view aStamp) {
  return aPrefix.mStamp.size() != aStamp.size() || aPrefix.mStamp >= aStamp;
}

size_t LogLinePrefix_Find(std::string_view aText, size_t aFrom, std::string_view aStamp) {
  // The bars around the thread are the rarest part of a prefix, so they are looked for.
  constexpr size_t kBarsApart = kThreadLength + 1;
  constexpr size_t kToFirstBar = 2 + kTimeForm.size() - 1;
  size_t theBar = aText.find('|', aFrom);
  for (; theBar != std::string_view::npos; theBar = aText.find('|', theBar + 1)) {
    if (theBar + kBarsApart >= aText.size()) {
      break;
    }
    if (aText[theBar + kBarsApart] != '|') {
      continue;
    }
    for (size_t theLength : {kToFirstBar, kToFirstBar + kDateForm.size()}) {
      LogLinePrefix thePrefix;
      if (theBar >= aFrom + theLength && LogLinePrefix_Parse(aText.substr(theBar - theLength), &thePrefix) &&
          LogLinePrefix_MayFollow(thePrefix, aStamp)) {
        return theBar - theLength;
      }
    }
  }
  return std::string_view::npos;
}
