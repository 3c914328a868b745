// Every form of a record is what its description says, to the byte, and its JSON is one valid object with the
// members that it says. But for raw no control character but tabs gets out, and nothing that is not UTF-8.
#include "tools/logstream/LogPrinter.h"

#include "FuzzInput.h"
#include "JSONModel.h"
#include "LogLineModel.h"
#include "TextModel.h"
#include "tools/logstream/LogEscape.h"

// The line without its line end.
static std::string Printed(LogForm aForm, const LogRecord& aRecord, bool afColor, bool afTerminal) {
  LogPrinter thePrinter(aForm, afColor, afTerminal);
  std::string theOut;
  theOut.reserve(1024);  // rather than to grow step by step
  theOut = "before";
  thePrinter.Print(aRecord, theOut);
  FUZZ_REQUIRE(theOut.compare(0, 6, "before") == 0);
  theOut.erase(0, 6);
  const bool theIsBare = aForm == LogForm_Cat || aForm == LogForm_Raw;
  if (theIsBare && aRecord.mKind != LogRecordKind_Line) {
    FUZZ_REQUIRE(theOut.empty());
    return theOut;
  }
  FUZZ_REQUIRE(!theOut.empty() && theOut.back() == '\n');
  theOut.pop_back();
  return theOut;
}

// The first colour of a line that begins with its sender: any of those that are neither dark nor a level's.
static std::string SenderColor(const std::string& aLine) {
  size_t theStart = aLine.find("\x1B[");
  FUZZ_REQUIRE(theStart != std::string::npos);
  std::string theColor = aLine.substr(theStart, aLine.find('m', theStart) + 1 - theStart);
  bool theIsFit = false;
  for (const char* theNumber : {"32", "35", "36", "92", "94", "95", "96"}) {
    theIsFit |= theColor == std::string("\x1B[") + theNumber + "m";
  }
  FUZZ_REQUIRE(theIsFit);
  return theColor;
}

// Every instance of a process has its colour.
static std::string ColorOfProcess(std::string_view aProcess) {
  LogRecord theOther;
  theOther.mProcess = aProcess;
  theOther.mUUID = "99999999-0000-1000-8000-0123456789ab";
  return SenderColor(Printed(LogForm_Short, theOther, true, true));
}

static void CheckTextForm(LogForm aForm, const LogRecord& aRecord, const TimeModel& aTimes) {
  std::string theLine = Printed(aForm, aRecord, false, true);
  FUZZ_REQUIRE(theLine == LogLineModel_Text(aForm, aRecord, aTimes, true, {}));
  FUZZ_REQUIRE(TextModel_IsHarmless(theLine, true));
}

static void CheckColors(LogForm aForm, const LogRecord& aRecord, const TimeModel& aTimes) {
  LogLineColors theColors;
  if (aForm == LogForm_Short || aForm == LogForm_ShortISO) {
    theColors.mSender = ColorOfProcess(aRecord.mProcess);
  }
  theColors.mLevel = aRecord.mLevel == 'E'   ? "\x1B[1;31m"
                     : aRecord.mLevel == 'W' ? "\x1B[33m"
                     : aRecord.mLevel == 'D' ? "\x1B[2m"
                                             : "";
  FUZZ_REQUIRE(Printed(aForm, aRecord, true, true) ==
               LogLineModel_Text(aForm, aRecord, aTimes, true, theColors));
}

static void CheckJSON(const LogRecord& aRecord, const TimeModel& aTimes) {
  std::string theLine = Printed(LogForm_JSON, aRecord, true, true);
  FUZZ_REQUIRE(TextModel_IsHarmless(theLine, false));
  std::vector<JSONModelMember> theMembers;
  FUZZ_REQUIRE(JSONModel_Read(theLine, &theMembers));
  std::vector<JSONModelMember> theExpected = LogLineModel_Members(aRecord, aTimes);
  FUZZ_REQUIRE(theMembers.size() == theExpected.size());
  for (size_t i = 0; i < theMembers.size(); ++i) {
    FUZZ_REQUIRE(theMembers[i].mKey == theExpected[i].mKey);
    FUZZ_REQUIRE(theMembers[i].mKind == theExpected[i].mKind);
    FUZZ_REQUIRE(theMembers[i].mValue == theExpected[i].mValue);
  }
}

// One printer prints line after line, and the second of the last one is remembered.
static void CheckTimes(int64_t aTime, int64_t aNext, const TimeModel& aTimes) {
  LogTimeText theText;
  const std::string theExpected[] = {aTimes.Short(aTime), aTimes.ISO(aNext), aTimes.Short(aNext)};
  for (int i = 0; i < 3; ++i) {
    std::string theOut = "@";
    bool theIsKnown =
        i == 1 ? theText.AppendISO(aNext, theOut) : theText.AppendShort(i == 0 ? aTime : aNext, theOut);
    FUZZ_REQUIRE(theIsKnown == !theExpected[i].empty());
    FUZZ_REQUIRE(theOut == "@" + theExpected[i]);
  }
}

static void CheckField(std::string_view aText) {
  std::string theField;
  LogEscape_AppendField(aText, theField);
  FUZZ_REQUIRE(theField == TextModel_Word(aText));
  std::string theRead;
  FUZZ_REQUIRE(LogEscape_ReadField(theField, &theRead) && theRead == aText);
  std::string theExpected;
  bool theIsField = TextModel_ReadWord(aText, &theExpected);
  FUZZ_REQUIRE(LogEscape_ReadField(aText, &theRead) == theIsField);
  FUZZ_REQUIRE(!theIsField || theRead == theExpected);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  const TimeModel theTimes(0, TimeModel_SetZone(theInput.Byte()));
  static const char kLevels[] = {0, 'E', 'W', 'I', 'D'};
  LogRecord theRecord;
  static const LogForm kForms[] = {LogForm_Short, LogForm_ShortISO, LogForm_Cat, LogForm_Raw};
  const uint8_t theChoice = theInput.Byte();
  const LogForm theForm = kForms[theChoice >> 3 & 3];  // and JSON each time
  theRecord.mKind = static_cast<LogRecordKind>(theChoice % 8);
  if (theRecord.mKind > LogRecordKind_Suppressed) {
    theRecord.mKind = LogRecordKind_Line;
  }
  uint8_t theBits = theInput.Byte();
  theRecord.mLevel = kLevels[theBits % sizeof(kLevels)];
  theRecord.mfContinuation = (theBits & 0x40) != 0;
  theRecord.mfPartial = (theBits & 0x80) != 0;
  theRecord.mTime = static_cast<int64>(theInput.Number());
  theRecord.mCount = theInput.Number();
  const std::string theProcess = theInput.Text(), theUUID = theInput.Text(), theStamp = theInput.Text();
  const std::string theThread = theInput.Text(), theModule = theInput.Text(), theText = theInput.Rest();
  theRecord.mProcess = theProcess;
  theRecord.mUUID = theUUID;
  theRecord.mStamp = theStamp;
  theRecord.mThread = theThread;
  theRecord.mModule = theModule;
  theRecord.mText = theText;
  theRecord.mRaw = theText;
  if ((theBits & 0x20) == 0) {
    CheckTextForm(theForm, theRecord, theTimes);
  } else {
    CheckColors(theForm, theRecord, theTimes);
  }
  FUZZ_REQUIRE(theRecord.mKind != LogRecordKind_Line ||
               Printed(LogForm_Raw, theRecord, false, false) == theText);
  CheckJSON(theRecord, theTimes);
  const uint64_t theNext =
      static_cast<uint64_t>(theRecord.mTime) + theRecord.mCount % 4000000;  // up to four seconds
  CheckTimes(theRecord.mTime, static_cast<int64_t>(theNext), theTimes);
  CheckField(theProcess);
  CheckField(theText);
  return 0;
}
