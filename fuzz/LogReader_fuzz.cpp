// The reader takes every line, and what the printer makes of it is a fixed point: printed, read and printed
// again in the same form, a line stays the same.
#include "tools/logstream/LogReader.h"

#include <time.h>

#include "FuzzInput.h"
#include "tools/logstream/LogLinePrefix.h"
#include "tools/logstream/LogPrinter.h"

static const int64 kNow = 1795269787042123;  // 2026-11-21T14:03:07.042123Z

static std::string Print(LogForm aForm, const LogRecord& aRecord) {
  std::string theLine;
  LogPrinter(aForm, false, false).Print(aRecord, theLine);
  if (!theLine.empty()) {
    FUZZ_REQUIRE(theLine.back() == '\n');
    theLine.pop_back();
  }
  return theLine;
}

static void CheckFixedPoint(LogForm aForm, const LogRecord& aRecord) {
  std::string theFirst = Print(aForm, aRecord);
  if (theFirst.empty() && aRecord.mKind != LogRecordKind_Line) {
    return;
  }
  LogReader theReader(kNow);
  FUZZ_REQUIRE(Print(aForm, theReader.Read(theFirst)) == theFirst);
}

// A line as a file may hold it. A raw line without a prefix is nothing but its text, which may look like any
// form.
static void CheckLine(const std::string& aLine) {
  LogReader theReader(kNow);
  LogRecord theRecord = theReader.Read(aLine);
  LogLinePrefix thePrefix;
  if (LogLinePrefix_Parse(theRecord.mRaw, &thePrefix)) {
    CheckFixedPoint(LogForm_Raw, theRecord);
  }
  for (LogForm theForm : {LogForm_Short, LogForm_ShortISO, LogForm_JSON}) {
    CheckFixedPoint(theForm, theRecord);
  }
}

// A record as a connection may bring it.
static void CheckRecord(FuzzInput& anInput) {
  static const char kLevels[] = {0, 'E', 'W', 'I', 'D'};
  LogRecord theRecord;
  theRecord.mKind = static_cast<LogRecordKind>(anInput.Byte() % 5);
  theRecord.mLevel = kLevels[anInput.Byte() % 5];
  theRecord.mTime = kNow - static_cast<int64>(anInput.Number() % 31536000000000);
  theRecord.mCount = anInput.Number();
  uint8_t theFlags = anInput.Byte();
  theRecord.mfContinuation = (theFlags & 1) != 0;
  theRecord.mfPartial = (theFlags & 2) != 0;
  std::string theProcess = anInput.Text();
  const char* theUUID = (theFlags & 4) != 0 ? "1a2b3c4d-0000-1000-8000-0123456789ab" : "";
  std::string theThread = anInput.Text();
  std::string theModule = anInput.Text();
  std::string theStamp = anInput.Text();
  std::string theText = anInput.Rest();
  theRecord.mProcess = theProcess;
  theRecord.mUUID = theUUID;
  theRecord.mThread = theThread;
  theRecord.mModule = theModule;
  theRecord.mStamp = theStamp;
  theRecord.mText = theText;
  theRecord.mRaw = theText;
  for (LogForm theForm : {LogForm_Short, LogForm_ShortISO, LogForm_JSON}) {
    CheckFixedPoint(theForm, theRecord);
  }
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  setenv("TZ", "UTC0", 1);
  tzset();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  if (theInput.Byte() % 2 == 0) {
    std::string theLine = theInput.Rest();
    CheckLine(theLine.substr(0, theLine.find('\n')));
  } else {
    CheckRecord(theInput);
  }
  return 0;
}
