// LogOutput.h - where the collector writes: standard output, or files that rotate (LogFiles.h).
//
// A thread of its own does the writing, behind a bounded queue, so that a slow or full disk or a terminal
// that is stopped never stops the reading of connections; QueueFeeder.h says what happens when the queue is
// full. The line that tells a loss is the event "suppressed" of the collector itself. All functions but the
// constructor belong to one thread.
#ifndef QVLOGD_LOGOUTPUT_H
#define QVLOGD_LOGOUTPUT_H

#include <memory>
#include <string>

#include "tools/logstream/LogPrinter.h"
#include "tools/logstream/LogRecord.h"
#include "tools/qvlogd/LogFiles.h"
#include "tools/qvlogd/QueueFeeder.h"

struct LogOutputOptions : LogFilesOptions {  // an empty mPattern: standard output
  LogForm mForm = LogForm_Short;
  bool mfColor = false;
  size_t mQueueBytes = 8388608;  // waiting for the writer
};

class LogOutput : public LogRecordSink {
 public:
  explicit LogOutput(const LogOutputOptions& anOptions);
  // Writes to aTarget in place of what the options say.
  LogOutput(const LogOutputOptions& anOptions, std::unique_ptr<LogTarget> aTarget);
  ~LogOutput() override;  // Close

  // Opens the file and starts the writer. One line of text in aError on failure; nothing is written then.
  bool Open(std::string* aError);
  void Take(const LogRecord& aRecord) override;  // prints into the current block
  // Hands the block to the writer; at the end of each turn of the loop. Waits at most 20 ms for room, the
  // calls of Take before it included.
  void Flush();
  void Reopen();  // after another program has renamed the file
  // Writes what is queued, for at most five seconds, and counts the rest as dropped. Nothing may follow.
  void Close();

  uint64 Dropped() const;  // lines
  bool HasEnded() const;   // standard output: its reader has gone, and all there is to write is dropped

 private:
  struct State;

  std::shared_ptr<State> mState;  // shared with the writer, which a stalled disk can hold beyond our end
  LogPrinter mPrinter;
  QueueFeeder mFeeder;
};

#endif
