// LogDistributor.h - what happens to a record on its way from a sender's parser to the outputs: it is
// counted, filtered, held back above the rate, and handed on.
#ifndef QVLOGD_LOGDISTRIBUTOR_H
#define QVLOGD_LOGDISTRIBUTOR_H

#include "tools/logstream/LogFilter.h"
#include "tools/logstream/LogRecord.h"
#include "tools/qvlogd/Ledger.h"
#include "tools/qvlogd/Options.h"

class LogDistributor {
 public:
  LogDistributor(const Options& aOptions, Ledger& aLedger, LogRecordSink& aOutput);

  // A record of the sender with this entry.
  void Take(LedgerEntry& aEntry, const LogRecord& aRecord);
  // Tells how many lines of each sender were held back in the seconds before aTime; with afAll, in the second
  // of aTime too.
  void TellHeldBack(int64 aTime, bool afAll);

 private:
  void TellHeldBack(LedgerEntry& aEntry, int64 aTime, bool afAll);

  Ledger& mLedger;
  LogFilter mFilter;
  LogRecordSink& mOutput;
};

#endif
