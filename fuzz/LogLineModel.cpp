#include "LogLineModel.h"

#include "TextModel.h"

static std::string LogLineModel_S_Colored(const std::string& aText, const std::string& aColor) {
  return aColor.empty() ? aText : aColor + aText + "\x1B[0m";
}

static std::string LogLineModel_S_Sender(const LogRecord& aRecord) {
  if (aRecord.mUUID.empty()) {
    return TextModel_Word(aRecord.mProcess);
  }
  std::string theProcess = aRecord.mProcess.empty() ? "" : TextModel_Word(aRecord.mProcess);
  return theProcess + "-" + TextModel_Word(aRecord.mUUID.substr(0, 8));
}

static std::string LogLineModel_S_Event(const LogRecord& anEvent) {
  std::string theCount = std::to_string(anEvent.mCount);
  switch (anEvent.mKind) {
    case LogRecordKind_Connect:
      return anEvent.mCount == 0 ? "connect" : "connect, " + theCount + " lost before";
    case LogRecordKind_Lost:
      return "lost " + theCount;
    case LogRecordKind_Disconnect:
      return "disconnect";
    default:
      return "suppressed " + theCount;
  }
}

std::string LogLineModel_Text(LogForm aForm, const LogRecord& aRecord, const TimeModel& aTimes,
                              bool afTerminal, const LogLineColors& aColors) {
  const bool theIsLine = aRecord.mKind == LogRecordKind_Line;
  if (aForm == LogForm_Cat || aForm == LogForm_Raw) {
    std::string theLine = aForm == LogForm_Cat ? TextModel_Shown(aRecord.mText)
                          : afTerminal         ? TextModel_Shown(aRecord.mRaw)
                                               : std::string(aRecord.mRaw);
    return theIsLine ? LogLineModel_S_Colored(theLine, aColors.mLevel) : "";
  }
  std::string theStamp = aForm == LogForm_Short ? aTimes.Short(aRecord.mTime) : aTimes.ISO(aRecord.mTime);
  std::string theStart = (theStamp.empty() ? "-" : theStamp) + " " +
                         LogLineModel_S_Colored(LogLineModel_S_Sender(aRecord), aColors.mSender) + " ";
  if (!theIsLine) {
    return theStart + "- " + LogLineModel_S_Event(aRecord);
  }
  std::string theRest(1, aRecord.mLevel != 0 ? aRecord.mLevel : '-');
  theRest += " " + TextModel_Word(aRecord.mModule) + " " + TextModel_Word(aRecord.mThread);
  theRest += aRecord.mfPartial ? "~ " : aRecord.mfContinuation ? "+ " : ": ";
  return theStart + LogLineModel_S_Colored(theRest + TextModel_Shown(aRecord.mText), aColors.mLevel);
}

std::vector<JSONModelMember> LogLineModel_Members(const LogRecord& aRecord, const TimeModel& aTimes) {
  std::vector<JSONModelMember> theMembers;
  auto theAdd = [&theMembers](const char* aName, JSONModelKind aKind, const std::string& aValue) {
    theMembers.push_back({aName, aKind, aValue});
  };
  auto theAddGiven = [&theAdd](const char* aName, std::string_view aValue) {
    if (!aValue.empty()) {
      theAdd(aName, JSONModelKind_Text, TextModel_Valid(aValue));
    }
  };
  static const std::string_view kLetters = "EWID";
  static const char* const kLevels[] = {"error", "warning", "info", "debug"};
  const bool theIsLine = aRecord.mKind == LogRecordKind_Line;
  theAddGiven("ts", aTimes.ISO(aRecord.mTime));
  if (!theIsLine) {
    static const char* const kEvents[] = {"", "connect", "lost", "disconnect", "suppressed"};
    theAdd("event", JSONModelKind_Text, kEvents[aRecord.mKind]);
  } else if (aRecord.mLevel != 0) {
    theAdd("level", JSONModelKind_Text, kLevels[kLetters.find(aRecord.mLevel)]);
  }
  theAddGiven("process", aRecord.mProcess);
  theAddGiven("uuid", aRecord.mUUID);
  if (!theIsLine) {
    theAdd("count", JSONModelKind_Number, std::to_string(aRecord.mCount));
    return theMembers;
  }
  theAddGiven("thread", aRecord.mThread);
  theAddGiven("module", aRecord.mModule);
  theAdd("msg", JSONModelKind_Text, TextModel_Valid(aRecord.mText));
  theAddGiven("stamp", aRecord.mStamp);
  for (const char* theFlag : {"continuation", "partial"}) {
    if (theFlag[0] == 'c' ? aRecord.mfContinuation : aRecord.mfPartial) {
      theAdd(theFlag, JSONModelKind_Word, "true");
    }
  }
  return theMembers;
}
