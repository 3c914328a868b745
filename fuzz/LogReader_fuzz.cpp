// The reader gives every byte of a file to one record, in order, and every record is what the description of
// the forms says. What the printer made of a record comes back with all that its form keeps, and printed once
// more in the same form it stays the same.
#include "tools/logstream/LogReader.h"

#include "FuzzInput.h"
#include "LogReadModel.h"
#include "TextModel.h"
#include "tools/logstream/LogLinePrefix.h"
#include "tools/logstream/LogPrinter.h"
#include "tools/qvlogcat/LineCutter.h"

static const int64 kDay = 86400000000;       // microseconds
static const int64 kNow = 1795269787042123;  // 2026-11-21T14:03:07.042123Z
// Those that are read back; each line is printed in one of them.
static const LogForm kForms[] = {LogForm_Short, LogForm_ShortISO, LogForm_JSON};
// A record of a year ago and one of today look alike in the short form.
static const uint64_t kOldest = 363 * static_cast<uint64_t>(kDay);

// The current time, and where that is: what a reader has to know.
struct Place {
  int64 mNow;
  int mOffset;  // seconds east of Greenwich

  TimeModel Times() const { return TimeModel(mNow, mOffset); }
};

static Place TakePlace(FuzzInput& anInput) {
  Place thePlace = {kNow, TimeModel_SetZone(anInput.Byte())};
  int theDays = anInput.Byte() * 256;
  thePlace.mNow += (theDays + anInput.Byte() - 32768) % 10000 * kDay;
  return thePlace;
}

static void RequireSame(const LogReadRecord& anExpected, const LogRecord& aRecord) {
  const char* theDifference = anExpected.DifferenceTo(aRecord);
  if (theDifference != nullptr) {
    dprintf(2, "differs: %s\n", theDifference);
  }
  FUZZ_REQUIRE(theDifference == nullptr);
}

static std::string Print(LogForm aForm, const LogRecord& aRecord, bool afColor = false) {
  std::string theLine;
  LogPrinter(aForm, afColor, false).Print(aRecord, theLine);
  if (!theLine.empty()) {
    FUZZ_REQUIRE(theLine.back() == '\n');
    theLine.pop_back();
  }
  return theLine;
}

static void CheckFixedPoint(LogForm aForm, const LogRecord& aRecord, const Place& aPlace) {
  std::string theFirst = Print(aForm, aRecord);
  LogReader theReader(aPlace.mNow);
  FUZZ_REQUIRE(Print(aForm, theReader.Read(theFirst)) == theFirst);
}

// --- Lines as files hold them

// Reads the lines of a file beside the model.
class CheckedReader : public LineSink {
 public:
  CheckedReader(const Place& aPlace, size_t aForgotten)
      : mPlace(aPlace), mForgotten(aForgotten), mReader(aPlace.mNow), mModel(aPlace.Times()) {}

  void BeginFile(int64, bool) override {}
  bool WantsMore() const override { return true; }

  bool TakeLine(std::string_view aLine) override {
    if (mCount++ == mForgotten) {
      mReader.ForgetMessage();
      mModel.ForgetMessage();
    }
    ExactCopy theLine(aLine);
    LogRecord theRecord = mReader.Read(std::string_view(theLine.Data(), aLine.size()));
    RequireSame(mModel.Read(std::string(aLine)), theRecord);
    mFile.append(aLine).push_back('\n');
    // A raw line without a prefix is nothing but its text, which may look like any form.
    LogLinePrefix thePrefix;
    if (LogLinePrefix_Parse(theRecord.mRaw, &thePrefix)) {
      CheckFixedPoint(LogForm_Raw, theRecord, mPlace);
    }
    CheckFixedPoint(kForms[mCount % 3], theRecord, mPlace);
    return true;
  }

  const std::string& File() const { return mFile; }

 private:
  const Place& mPlace;
  size_t mForgotten;
  size_t mCount = 0;
  LogReader mReader;
  LogReadModel mModel;
  std::string mFile;
};

static void CheckLines(FuzzInput& anInput) {
  Place thePlace = TakePlace(anInput);
  const size_t thePiece = 1 + anInput.Byte();
  CheckedReader theReader(thePlace, anInput.Byte());
  std::string theFile = anInput.Rest();
  LineCutter theCutter;
  for (size_t i = 0; i < theFile.size(); i += thePiece) {
    FUZZ_REQUIRE(theCutter.Feed(std::string_view(theFile).substr(i, thePiece), theReader));
  }
  FUZZ_REQUIRE(theCutter.Flush(theReader));
  if (!theFile.empty() && theFile.back() != '\n') {
    theFile += '\n';
  }
  FUZZ_REQUIRE(theReader.File() == theFile);
}

// --- Records as a connection brings them

// What the form keeps of a record. The line as it came is put together again, which the model knows.
static LogReadRecord Kept(LogForm aForm, const LogRecord& aRecord) {
  const bool theIsJSON = aForm == LogForm_JSON;
  auto theKept = [theIsJSON](std::string_view aText) {
    return theIsJSON ? TextModel_Valid(aText) : std::string(aText);
  };
  LogReadRecord theRecord;
  theRecord.mKind = aRecord.mKind;
  theRecord.mTime = aForm == LogForm_Short ? aRecord.mTime / 1000 * 1000 : aRecord.mTime;
  theRecord.mProcess = theKept(aRecord.mProcess);
  theRecord.mUUID = aRecord.mUUID.substr(0, theIsJSON ? 36 : 8);
  if (aRecord.mKind != LogRecordKind_Line) {
    theRecord.mCount = theIsJSON || aRecord.mKind != LogRecordKind_Disconnect ? aRecord.mCount : 0;
    return theRecord;
  }
  theRecord.mLevel = aRecord.mLevel;
  theRecord.mThread = theKept(aRecord.mThread);
  theRecord.mModule = theKept(aRecord.mModule);
  theRecord.mStamp = theIsJSON ? theKept(aRecord.mStamp) : "";
  theRecord.mText = theIsJSON ? theKept(aRecord.mText) : TextModel_Shown(aRecord.mText);
  theRecord.mfPartial = aRecord.mfPartial;
  theRecord.mfContinuation = aRecord.mfContinuation && (theIsJSON || !aRecord.mfPartial);
  return theRecord;
}

// In the short forms the end of a process's name may look like an instance.
static bool IsAmbiguous(const LogRecord& aRecord) {
  std::string_view theName = aRecord.mProcess;
  return aRecord.mUUID.empty() && theName.size() >= 9 &&
         TimeModel_IsLike(theName.substr(theName.size() - 9), "-xxxxxxxx");
}

static void CheckRecord(FuzzInput& anInput) {
  static const char kLevels[] = {0, 'E', 'W', 'I', 'D'};
  Place thePlace = TakePlace(anInput);
  LogRecord theRecord;
  theRecord.mKind = static_cast<LogRecordKind>(anInput.Byte() % 5);
  theRecord.mLevel = kLevels[anInput.Byte() % 5];
  theRecord.mTime = thePlace.mNow - static_cast<int64>(anInput.Number() % kOldest);
  theRecord.mCount = anInput.Number();
  uint8_t theFlags = anInput.Byte();
  theRecord.mfContinuation = (theFlags & 1) != 0;
  theRecord.mfPartial = (theFlags & 2) != 0;
  theRecord.mUUID = (theFlags & 4) != 0 ? "1a2b3c4d-0000-1000-8000-0123456789ab" : "";
  const LogForm theForm = kForms[(theFlags >> 4) % 3];
  const std::string theProcess = anInput.Text(), theThread = anInput.Text(), theModule = anInput.Text();
  const std::string theStamp = anInput.Text(), theText = anInput.Rest();
  theRecord.mProcess = theProcess;
  theRecord.mThread = theThread;
  theRecord.mModule = theModule;
  theRecord.mStamp = theStamp;
  theRecord.mText = theText;
  theRecord.mRaw = theText;
  const bool theIsAmbiguous = IsAmbiguous(theRecord);
  // The colour is the process's.
  const bool theHasColor = (theFlags & 8) != 0 && !theIsAmbiguous;
  std::string theLine = Print(theForm, theRecord, theHasColor);
  LogReader theReader(thePlace.mNow);
  LogRecord theRead = theReader.Read(theLine);
  LogReadRecord theModel = LogReadModel(thePlace.Times()).Read(theLine);
  RequireSame(theModel, theRead);
  if (theForm == LogForm_JSON || !theIsAmbiguous) {
    LogReadRecord theKept = Kept(theForm, theRecord);
    theKept.mRaw = theModel.mRaw;
    RequireSame(theKept, theRead);
  }
  FUZZ_REQUIRE(Print(theForm, theRead, theHasColor) == theLine);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  if (theInput.Byte() % 2 == 0) {
    CheckLines(theInput);
  } else {
    CheckRecord(theInput);
  }
  return 0;
}
