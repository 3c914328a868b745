// The forms short and short-iso: STAMP SENDER LEVEL MODULE THREAD: TEXT, or STAMP SENDER - EVENT.
#include "tools/logstream/LogEscape.h"
#include "tools/logstream/LogEventName.h"
#include "tools/logstream/LogReader.h"

static const size_t kUUIDDigits = 8;
static const size_t kClockLength = 12;  // "14:03:07.042"
static const size_t kPointInClock = 8;
static const size_t kClockInISO = 11;
static const size_t kClockInShort = 7;

// The bytes up to the next blank, which is skipped.
static std::string_view LogReader_S_TakeWord(std::string_view& aText) {
  size_t theLength = aText.find(' ');
  std::string_view theWord = aText.substr(0, theLength);
  aText.remove_prefix(theLength == std::string_view::npos ? aText.size() : theLength + 1);
  return theWord;
}

static bool LogReader_S_IsHexDigit(char aSign) {
  return (aSign >= '0' && aSign <= '9') || (aSign >= 'a' && aSign <= 'f');
}

// False for what the printer cannot have written.
static bool LogReader_S_ReadField(std::string_view aWord, std::string& aStore, std::string_view* aField) {
  if (!LogEscape_ReadField(aWord, &aStore)) {
    return false;
  }
  *aField = aStore;
  return true;
}

// "connect", "connect, 3 lost before", "lost 3", "disconnect", "suppressed 3"
static bool LogReader_S_ReadEvent(std::string_view aText, LogRecord* aRecord) {
  static const std::string_view kLostBefore = " lost before";
  std::string_view theName = aText.substr(0, aText.find_first_of(", "));
  if (!LogEventName_ToKind(theName, &aRecord->mKind)) {
    return false;
  }
  std::string_view theRest = aText.substr(theName.size());
  bool theHasCount = aRecord->mKind == LogRecordKind_Lost || aRecord->mKind == LogRecordKind_Suppressed;
  if (theHasCount) {
    return !theRest.empty() && theRest.front() == ' ' &&
           LogEventName_ParseCount(theRest.substr(1), &aRecord->mCount);
  }
  if (theRest.empty()) {
    return true;
  }
  return aRecord->mKind == LogRecordKind_Connect && theRest.substr(0, 2) == ", " &&
         theRest.size() > 2 + kLostBefore.size() &&
         theRest.substr(theRest.size() - kLostBefore.size()) == kLostBefore &&
         LogEventName_ParseCount(theRest.substr(2, theRest.size() - 2 - kLostBefore.size()),
                                 &aRecord->mCount);
}

// "player-1a2b3c4d", "player", "-1a2b3c4d" or "-"
bool LogReader::ReadSender(std::string_view aSender, LogRecord* aRecord) {
  size_t theDash = aSender.size() > kUUIDDigits ? aSender.size() - kUUIDDigits - 1 : 0;
  bool theHasUUID = aSender.size() > kUUIDDigits && aSender[theDash] == '-';
  for (size_t i = theDash + 1; theHasUUID && i < aSender.size(); ++i) {
    theHasUUID = LogReader_S_IsHexDigit(aSender[i]);
  }
  if (theHasUUID) {
    aRecord->mUUID = aSender.substr(theDash + 1);
    aSender = aSender.substr(0, theDash);
  }
  return aSender.empty() ? theHasUUID : LogReader_S_ReadField(aSender, mProcess, &aRecord->mProcess);
}

// What follows the stamp and its blank.
bool LogReader::ReadShortLine(std::string_view aStamp, std::string_view aText, LogRecord* aRecord) {
  std::string_view theSender = LogReader_S_TakeWord(aText);
  std::string_view theLevel = LogReader_S_TakeWord(aText);
  if (theLevel.size() != 1 || std::string_view("EWID-").find(theLevel[0]) == std::string_view::npos ||
      !ReadSender(theSender, aRecord)) {
    return false;
  }
  if (theLevel == "-" && LogReader_S_ReadEvent(aText, aRecord)) {
    return true;
  }
  std::string_view theModule = LogReader_S_TakeWord(aText);
  std::string_view theThread = LogReader_S_TakeWord(aText);
  if (theThread.empty() || std::string_view(":+~").find(theThread.back()) == std::string_view::npos ||
      !LogReader_S_ReadField(theModule, mModule, &aRecord->mModule) ||
      !LogReader_S_ReadField(theThread.substr(0, theThread.size() - 1), mThread, &aRecord->mThread)) {
    return false;
  }
  aRecord->mKind = LogRecordKind_Line;
  aRecord->mLevel = theLevel == "-" ? '\0' : theLevel[0];
  aRecord->mfContinuation = theThread.back() == '+';
  aRecord->mfPartial = theThread.back() == '~';
  // A text may have held what looks like an escape, so those in it stay as they are.
  aRecord->mText = aText;
  MakeRaw(aStamp, aRecord);
  return true;
}

// Only colours bring an escape character into these forms.
void LogReader::RemoveColors(std::string_view aLine) {
  mPlain.clear();
  while (!aLine.empty()) {
    size_t theEscape = aLine.find("\x1B[");
    mPlain.append(aLine.substr(0, theEscape));
    if (theEscape == std::string_view::npos) {
      return;
    }
    size_t theEnd = aLine.find_first_not_of("0123456789;", theEscape + 2);
    bool theIsColor = theEnd != std::string_view::npos && aLine[theEnd] == 'm';
    if (!theIsColor) {
      theEnd = theEscape;
      mPlain.push_back(aLine[theEscape]);
    }
    aLine.remove_prefix(theEnd + 1);
  }
}

bool LogReader::ReadShort(std::string_view aLine, LogRecord* aRecord) {
  if (aLine.find('\x1B') != std::string_view::npos) {
    RemoveColors(aLine);
    aLine = mPlain;
  }
  // A time that is not known is "-" too.
  if (aLine.substr(0, 2) == "- ") {
    return ReadShortLine("", aLine.substr(2), aRecord);
  }
  std::string_view theRest = aLine;
  bool theIsISO = mTimes.TakeISO(theRest, &aRecord->mTime);
  if ((!theIsISO && !mTimes.TakeShort(theRest, &aRecord->mTime)) || theRest.empty() ||
      theRest.front() != ' ') {
    return false;
  }
  // Both stamps show the clock in the same order, the day in front of it.
  mStamp.assign(aLine.substr(theIsISO ? kClockInISO : kClockInShort, kClockLength));
  if (mStamp[kPointInClock] == '.' &&
      mStamp.find_first_not_of("0123456789", kPointInClock + 1) == std::string::npos) {
    mStamp[kPointInClock] = ':';
  } else {
    mStamp.clear();  // no milliseconds, which the printer does not write
  }
  return ReadShortLine(mStamp, theRest.substr(1), aRecord);
}
