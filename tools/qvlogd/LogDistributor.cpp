#include "tools/qvlogd/LogDistributor.h"

static const int64 kSecond = 1000000;  // microseconds

LogDistributor::LogDistributor(const Options& aOptions, Ledger& aLedger, LogRecordSink& aOutput)
    : mLedger(aLedger), mOutput(aOutput) {
  for (const std::string& theSpec : aOptions.mSpecs) {
    mFilter.AddSpec(theSpec.c_str());
  }
  if (aOptions.mfSilent) {
    mFilter.AddSpec("*:S");
  }
}

void LogDistributor::Take(LedgerEntry& aEntry, const LogRecord& aRecord) {
  switch (aRecord.mKind) {
    case LogRecordKind_Line:
      ++aEntry.mSums.mLines;
      break;
    case LogRecordKind_Connect:
    case LogRecordKind_Lost:
      aEntry.mSums.mLost += aRecord.mCount;
      break;
    case LogRecordKind_Disconnect:
    case LogRecordKind_Suppressed:
      break;
  }
  if (!mFilter.Shows(aRecord)) {
    return;
  }
  TellHeldBack(aEntry, aRecord.mTime, aRecord.mKind == LogRecordKind_Disconnect);
  // What the filter hides does not use up the rate.
  if (aRecord.mKind == LogRecordKind_Line && !aEntry.mRateLimit.Allows(aRecord.mTime)) {
    ++aEntry.mSums.mHeldBack;
    return;
  }
  mOutput.Take(aRecord);
}

void LogDistributor::TellHeldBack(LedgerEntry& aEntry, int64 aTime, bool afAll) {
  uint64 theCount = aEntry.mRateLimit.TakeHeldBack(afAll ? aTime + kSecond : aTime);
  if (theCount == 0) {
    return;
  }
  LogRecord theRecord;
  theRecord.mKind = LogRecordKind_Suppressed;
  theRecord.mTime = aTime;
  theRecord.mProcess = aEntry.mProcess;
  theRecord.mUUID = aEntry.mUUID;
  theRecord.mCount = theCount;
  mOutput.Take(theRecord);
}

void LogDistributor::TellHeldBack(int64 aTime, bool afAll) {
  for (LedgerEntry* theEntry : mLedger.Entries()) {
    TellHeldBack(*theEntry, aTime, afAll);
  }
}
