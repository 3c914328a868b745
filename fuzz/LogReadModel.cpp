#include "LogReadModel.h"

#include <vector>

#include "JSONModel.h"
#include "TextModel.h"

static const std::string_view kLevels = "EWID";

const char* LogReadRecord::DifferenceTo(const LogRecord& aRecord) const {
  const struct {
    const char* mName;
    bool mfIsAlike;
  } kFields[] = {
      {"kind", mKind == aRecord.mKind},           {"time", mTime == aRecord.mTime},
      {"process", mProcess == aRecord.mProcess},  {"uuid", mUUID == aRecord.mUUID},
      {"level", mLevel == aRecord.mLevel},        {"stamp", mStamp == aRecord.mStamp},
      {"thread", mThread == aRecord.mThread},     {"module", mModule == aRecord.mModule},
      {"text", mText == aRecord.mText},           {"raw", mRaw == aRecord.mRaw},
      {"count", mCount == aRecord.mCount},        {"continuation", mfContinuation == aRecord.mfContinuation},
      {"partial", mfPartial == aRecord.mfPartial}};
  for (const auto& theField : kFields) {
    if (!theField.mfIsAlike) {
      return theField.mName;
    }
  }
  return nullptr;
}

// --- Shared by the forms

// The sender's line, which only a first line with all its fields can give.
static std::string LogReadModel_S_Raw(const LogReadRecord& aRecord, const std::string& aStamp) {
  if (aRecord.mLevel == 0 || aStamp.empty() || aRecord.mThread.empty() || aRecord.mModule.empty() ||
      aRecord.mfContinuation) {
    return aRecord.mText;
  }
  std::string theModule = aRecord.mModule;
  while (theModule.size() < 10) {
    theModule += ' ';
  }
  return std::string(1, aRecord.mLevel) + " " + aStamp + "|" + aRecord.mThread + "|" + theModule + " " +
         aRecord.mText;
}

static bool LogReadModel_S_Count(const std::string& aText, uint64_t* aCount) {
  if (aText.empty() || aText.find_first_not_of("0123456789") != std::string::npos) {
    return false;
  }
  size_t theZeros = aText.find_first_not_of('0');
  std::string theDigits = theZeros == std::string::npos ? "0" : aText.substr(theZeros);
  const std::string theMax = std::to_string(UINT64_MAX);
  bool theIsTooLarge =
      theDigits.size() > theMax.size() || (theDigits.size() == theMax.size() && theDigits > theMax);
  *aCount = theIsTooLarge ? UINT64_MAX : std::stoull(theDigits);
  return true;
}

static bool LogReadModel_S_Kind(const std::string& aName, LogRecordKind* aKind) {
  static const char* const kNames[] = {"connect", "lost", "disconnect", "suppressed"};
  for (int i = 0; i < 4; ++i) {
    if (aName == kNames[i]) {
      *aKind = static_cast<LogRecordKind>(i + 1);
      return true;
    }
  }
  return false;
}

// --- The forms

bool LogReadModel::ReadRaw(const std::string& aLine, LogReadRecord* aRecord) const {
  bool theHasDate = aLine.size() > 4 && aLine[4] == '/';
  std::string theForm = theHasDate ? "00/00/0000 00:00:00:000" : "00:00:00:000";
  size_t theThread = 2 + theForm.size() + 1;
  size_t theModule = theThread + 8 + 1;
  if (aLine.empty() || kLevels.find(aLine[0]) == std::string_view::npos ||
      !TimeModel_IsLike(std::string_view(aLine).substr(1), " " + theForm + "|xxxxxxxx|") ||
      aLine.size() < theModule + 11 || aLine[theModule + 10] != ' ') {
    return false;
  }
  std::string theName = aLine.substr(theModule, 10);
  while (!theName.empty() && theName.back() == ' ') {
    theName.pop_back();
  }
  for (char theChar : theName) {
    if (theChar <= ' ' || theChar > '~') {
      return false;
    }
  }
  aRecord->mLevel = aLine[0];
  aRecord->mStamp = aLine.substr(2, theForm.size());
  aRecord->mTime = mTimes.OfSender(aRecord->mStamp);
  aRecord->mThread = aLine.substr(theThread, 8);
  aRecord->mModule = theName;
  aRecord->mText = aLine.substr(theModule + 11);
  aRecord->mRaw = aLine;
  return !theName.empty();
}

// Objects that are not ours are not: those without a text or an event, and those without a time of which we
// do not know all members.
bool LogReadModel::ReadJSON(const std::string& aLine, LogReadRecord* aRecord) const {
  std::vector<JSONModelMember> theMembers;
  if (aLine[0] != '{' || !JSONModel_Read(aLine, &theMembers)) {
    return false;
  }
  bool theHasTime = false;
  bool theHasContent = false;
  bool theHasStranger = false;
  for (const JSONModelMember& theMember : theMembers) {
    const std::string& theKey = theMember.mKey;
    const std::string& theValue = theMember.mValue;
    bool theIsText = theMember.mKind == JSONModelKind_Text;
    std::string* theField = theKey == "process"  ? &aRecord->mProcess
                            : theKey == "uuid"   ? &aRecord->mUUID
                            : theKey == "thread" ? &aRecord->mThread
                            : theKey == "module" ? &aRecord->mModule
                            : theKey == "msg"    ? &aRecord->mText
                            : theKey == "stamp"  ? &aRecord->mStamp
                                                 : nullptr;
    if (theIsText && theField != nullptr) {
      *theField = theValue;
      theHasContent |= theKey == "msg";
    } else if (theIsText && theKey == "ts") {
      std::string_view theStamp = theValue;
      std::string theClock;
      if (!mTimes.TakeISO(theStamp, &aRecord->mTime, &theClock) || !theStamp.empty()) {
        return false;
      }
      theHasTime = true;
    } else if (theIsText && theKey == "level") {
      static const std::string_view kNames[] = {"error", "warning", "info", "debug"};
      aRecord->mLevel = 0;
      for (int i = 0; i < 4; ++i) {
        aRecord->mLevel = theValue == kNames[i] ? kLevels[static_cast<size_t>(i)] : aRecord->mLevel;
      }
    } else if (theIsText && theKey == "event") {
      if (!LogReadModel_S_Kind(theValue, &aRecord->mKind)) {
        return false;
      }
      theHasContent = true;
    } else if (theMember.mKind == JSONModelKind_Number && theKey == "count") {
      if (!LogReadModel_S_Count(theValue, &aRecord->mCount)) {
        return false;
      }
    } else if (theMember.mKind == JSONModelKind_Word && (theKey == "continuation" || theKey == "partial")) {
      bool* theFlag = theKey == "partial" ? &aRecord->mfPartial : &aRecord->mfContinuation;
      *theFlag = *theFlag || theValue == "true";
    } else {
      theHasStranger = true;
    }
  }
  aRecord->mRaw = LogReadModel_S_Raw(*aRecord, aRecord->mStamp);
  return theHasContent && (theHasTime || !theHasStranger);
}

static std::string LogReadModel_S_WithoutColors(const std::string& aLine) {
  std::string theOut;
  for (size_t i = 0; i < aLine.size(); ++i) {
    size_t theEnd = aLine.compare(i, 2, "\x1B[") == 0 ? aLine.find_first_not_of("0123456789;", i + 2) : i;
    if (theEnd != std::string::npos && theEnd > i && aLine[theEnd] == 'm') {
      i = theEnd;
    } else {
      theOut += aLine[i];
    }
  }
  return theOut;
}

static bool LogReadModel_S_Event(const std::string& aText, LogReadRecord* aRecord) {
  size_t theEnd = aText.find(' ');
  std::string theName = aText.substr(0, theEnd);
  std::string theRest = theEnd == std::string::npos ? "" : aText.substr(theEnd);
  if (theName == "connect,") {
    static const std::string kEnd = " lost before";
    aRecord->mKind = LogRecordKind_Connect;
    return theRest.size() > 1 + kEnd.size() && theRest.substr(theRest.size() - kEnd.size()) == kEnd &&
           LogReadModel_S_Count(theRest.substr(1, theRest.size() - 1 - kEnd.size()), &aRecord->mCount);
  }
  if (!LogReadModel_S_Kind(theName, &aRecord->mKind)) {
    return false;
  }
  if (theName == "lost" || theName == "suppressed") {
    return !theRest.empty() && LogReadModel_S_Count(theRest.substr(1), &aRecord->mCount);
  }
  return theEnd == std::string::npos;
}

static bool LogReadModel_S_Sender(std::string aSender, LogReadRecord* aRecord) {
  size_t theDash = aSender.size() < 9 ? 0 : aSender.size() - 9;
  if (TimeModel_IsLike(std::string_view(aSender).substr(theDash), "-xxxxxxxx")) {
    aRecord->mUUID = aSender.substr(theDash + 1);
    aSender.resize(theDash);
    if (aSender.empty()) {
      return true;
    }
  }
  return TextModel_ReadWord(aSender, &aRecord->mProcess);
}

// STAMP SENDER LEVEL MODULE THREAD: TEXT, or STAMP SENDER - EVENT
bool LogReadModel::ReadShort(const std::string& aLine, LogReadRecord* aRecord) const {
  const std::string thePlain = LogReadModel_S_WithoutColors(aLine);
  std::string_view theLeft = thePlain;
  std::string theClock;
  if (theLeft.substr(0, 1) == "-") {
    theLeft.remove_prefix(1);
  } else if (!mTimes.TakeISO(theLeft, &aRecord->mTime, &theClock) &&
             !mTimes.TakeShort(theLeft, &aRecord->mTime, &theClock)) {
    return false;
  }
  if (theLeft.empty() || theLeft[0] != ' ') {
    return false;
  }
  std::string theWords[5];  // the last one is what is left
  size_t theStart = thePlain.size() - theLeft.size() + 1;
  std::string theEvent;
  for (int i = 0; i < 5 && theStart <= thePlain.size(); ++i) {
    theEvent = i == 2 ? thePlain.substr(theStart) : theEvent;
    size_t theEnd = i < 4 ? thePlain.find(' ', theStart) : std::string::npos;
    theWords[i] = thePlain.substr(theStart, theEnd - theStart);
    theStart = theEnd == std::string::npos ? thePlain.size() + 1 : theEnd + 1;
  }
  if (theWords[1].size() != 1 || ("-" + std::string(kLevels)).find(theWords[1]) == std::string::npos ||
      !LogReadModel_S_Sender(theWords[0], aRecord)) {
    return false;
  }
  LogReadRecord theLine = *aRecord;
  if (theWords[1] == "-" && LogReadModel_S_Event(theEvent, aRecord)) {
    return true;
  }
  *aRecord = theLine;
  std::string& theThread = theWords[3];
  const char theSign = theThread.empty() ? '\0' : theThread.back();
  if (theSign != ':' && theSign != '+' && theSign != '~') {
    return false;
  }
  theThread.pop_back();
  if (!TextModel_ReadWord(theWords[2], &aRecord->mModule) ||
      !TextModel_ReadWord(theThread, &aRecord->mThread)) {
    return false;
  }
  aRecord->mLevel = theWords[1] == "-" ? '\0' : theWords[1][0];
  aRecord->mfContinuation = theSign == '+';
  aRecord->mfPartial = theSign == '~';
  aRecord->mText = theWords[4];
  aRecord->mRaw = LogReadModel_S_Raw(*aRecord, theClock);
  return true;
}

LogReadRecord LogReadModel::Read(const std::string& aLine) {
  LogReadRecord theRaw;
  if (ReadRaw(aLine, &theRaw)) {
    mfInRawMessage = true;
    mMessage = theRaw;
    return theRaw;
  }
  for (auto theRead : {&LogReadModel::ReadJSON, &LogReadModel::ReadShort}) {
    LogReadRecord theRecord;
    if ((this->*theRead)(aLine, &theRecord)) {
      mfInRawMessage = false;
      return theRecord;
    }
  }
  LogReadRecord theText;
  if (mfInRawMessage) {
    theText = mMessage;
    theText.mfContinuation = true;
  }
  theText.mText = aLine;
  theText.mRaw = aLine;
  return theText;
}
