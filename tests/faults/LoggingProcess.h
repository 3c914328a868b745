// LoggingProcess.h - a process that logs numbered messages on command and measures its log calls.
//
// It has the default settings, so that only the log daemon logger takes messages, and SIGPIPE ends it as it
// would end any program. The experiment is the log daemon meanwhile, and tells the process what to do.
#ifndef TESTS_FAULTS_LOGGINGPROCESS_H
#define TESTS_FAULTS_LOGGINGPROCESS_H

#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

#include <string>

// What the process knows when it has done what it was told.
struct LoggingReport {
  // Of the log calls since the report before. A call's time is that which it ran or slept; what it waited for
  // a processor on a busy machine is none of its own.
  uint32_t mCalls = 0;
  uint32_t mCallsFrom5Ms = 0;
  uint32_t mCallsFrom50Ms = 0;
  double mSlowestMs = 0;

  uint64_t mSent = 0;  // messages since the start, whatever became of them
  uint32_t mLost = 0;  // that the logger has counted and not told yet
  bool mfConnected = false;
  int32_t mUnsent = 0;      // bytes that the system has not passed on yet
  uint64_t mHeapBytes = 0;  // in use
  uint32_t mDescriptors = 0;
  char mUUID[37] = "";

  // Whether the last message is in the hands of a connection that stands.
  bool HasDelivered() const { return mfConnected && mLost == 0; }
};

class LoggingProcess {
 public:
  // aTarget: the log daemon, in the variable QVRALOG.
  explicit LoggingProcess(const std::string& aTarget);
  ~LoggingProcess();  // kills it
  LoggingProcess(const LoggingProcess&) = delete;
  LoggingProcess& operator=(const LoggingProcess&) = delete;

  // Message aNumber, counted from 1, behind its prefix.
  static std::string Text(uint64_t aNumber);

  LoggingReport Log(uint32_t aCount);
  // The same while the experiment does something else, until the report is there.
  void StartLogging(uint32_t aCount);
  // As fast as possible, and not measured.
  void StartFlooding(uint32_t aCount);
  bool HasReport(int aLimitMs);
  LoggingReport Report();

  LoggingReport Look();
  // Changes the target and reads the settings anew.
  LoggingReport MoveTo(const std::string& aTarget);
  // Lets it open no further descriptor; lets it again.
  LoggingReport TakeDescriptors();
  LoggingReport GiveDescriptors();

  // Ends the framework and the process. "" when that went well, else how it ended.
  std::string End();
  // What it has written to standard error.
  std::string Errors() const;

 private:
  struct Command;

  void Tell(const Command& aCommand);
  LoggingReport TellAndWait(const Command& aCommand);
  [[noreturn]] void Run();
  void Do(const Command& aCommand);
  void LogOne(bool afMeasured);

  pid_t mPid = -1;
  int mChannel = -1;
  int mErrors = -1;
  std::string mEnd;  // how it ended; "" as long as it runs

  LoggingReport mReport;  // the process's own
};

#endif
