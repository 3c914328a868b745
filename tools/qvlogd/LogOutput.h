// LogOutput.h - where the collector writes: standard output, or files that rotate.
//
// A thread of its own does the writing, behind a bounded queue, so that a slow or full disk never stops the
// reading of connections. On a full disk the oldest rotated files go first, then it retries; what had to be
// dropped is counted, and one line says so when writing is possible again. All functions but the constructor
// belong to one thread.
#ifndef QVLOGD_LOGOUTPUT_H
#define QVLOGD_LOGOUTPUT_H

#include <memory>
#include <string>

#include "tools/logstream/LogPrinter.h"
#include "tools/logstream/LogRecord.h"

struct LogOutputOptions {
  std::string mPattern;  // file name with %y %m %d %H %M %S %n as the library's file logger has; empty:
                         // standard output
  LogForm mForm = LogForm_Short;
  bool mfColor = false;
  uint64 mRotateSize = 0;         // bytes; 0: no limit
  unsigned int mRotateTime = 0;   // seconds; 0: never
  unsigned int mRotateCount = 0;  // rotated files kept beside the current one; 0: no limit
  uint64 mMaxUse = 0;             // bytes of all files together; 0: no limit
  uint64 mKeepFree = 0;           // bytes left free on the file system; 0: no limit
};

class LogOutput : public LogRecordSink {
 public:
  explicit LogOutput(const LogOutputOptions& aOptions);
  ~LogOutput() override;  // writes what is queued, for at most five seconds

  bool Open(std::string* aError);                // one line of text in aError on failure
  void Take(const LogRecord& aRecord) override;  // prints into the current block
  void Flush();   // hands the block to the writer; at the end of each turn of the loop
  void Reopen();  // after another program has renamed the file

  uint64 Dropped() const;  // lines

 private:
  struct State;
  std::unique_ptr<State> mState;
};

#endif
