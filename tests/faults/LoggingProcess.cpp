#include "faults/LoggingProcess.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/sockios.h>
#include <malloc.h>
#include <poll.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>

#include "qvLog/qvLogger_qvLogd.h"

namespace {

constexpr int kLimitMs = 300000;  // for one report; a flood takes minutes on a busy machine
constexpr size_t kTargetSize = 64;
constexpr double kSlowMs = 5;
constexpr double kTooSlowMs = 50;

enum class Task { kLog, kFlood, kLook, kMove, kTakeDescriptors, kGiveDescriptors, kEnd };

// How long the thread has waited for a processor since it exists; 0 where the system does not tell.
double WaitedMs() {
  static const int sFile = open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC);
  char theText[64];
  ssize_t theLength = sFile == -1 ? 0 : pread(sFile, theText, sizeof(theText) - 1, 0);
  theText[std::max<ssize_t>(theLength, 0)] = '\0';
  unsigned long long theRun = 0;
  unsigned long long theWaited = 0;
  return sscanf(theText, "%llu %llu", &theRun, &theWaited) == 2 ? static_cast<double>(theWaited) / 1e6 : 0;
}

double NowMs() {
  struct timespec theTime;
  clock_gettime(CLOCK_MONOTONIC, &theTime);
  return static_cast<double>(theTime.tv_sec) * 1e3 + static_cast<double>(theTime.tv_nsec) / 1e6;
}

// 0 when there is none left to look with.
uint32_t OpenDescriptors() {
  uint32_t theCount = 0;
  DIR* theFolder = opendir("/proc/self/fd");
  if (theFolder != nullptr) {
    while (readdir(theFolder) != nullptr) {
      ++theCount;
    }
    closedir(theFolder);
  }
  return theCount;
}

// The daemon's sockets must be the experiment's alone.
void CloseAllBut(int aDescriptor) {
  for (int i = STDERR_FILENO + 1; i < 256; ++i) {
    if (i != aDescriptor) {
      close(i);
    }
  }
}

uint64_t HeapBytes() {
  struct mallinfo2 theHeap = mallinfo2();
  return theHeap.uordblks + theHeap.hblkhd;
}

void LimitDescriptors(rlim_t aCount) {
  struct rlimit theLimit;
  getrlimit(RLIMIT_NOFILE, &theLimit);
  theLimit.rlim_cur = std::min(aCount, theLimit.rlim_max);
  setrlimit(RLIMIT_NOFILE, &theLimit);
}

}  // namespace

struct LoggingProcess::Command {
  Task mTask = Task::kLook;
  uint32_t mCount = 0;
  char mTarget[kTargetSize] = "";
};

LoggingProcess::LoggingProcess(const std::string& aTarget) {
  int theChannel[2];
  mErrors = memfd_create("standard error", MFD_CLOEXEC);
  if (mErrors == -1 || socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, theChannel) != 0) {
    perror("LoggingProcess");
    exit(EXIT_FAILURE);
  }
  mPid = fork();
  if (mPid == 0) {
    close(theChannel[0]);
    mChannel = theChannel[1];
    setenv("QVRALOG", aTarget.c_str(), 1);
    Run();
  }
  close(theChannel[1]);
  mChannel = theChannel[0];
}

LoggingProcess::~LoggingProcess() {
  if (mPid > 0) {
    kill(mPid, SIGKILL);
    waitpid(mPid, nullptr, 0);
  }
  close(mChannel);
  close(mErrors);
}

std::string LoggingProcess::Text(uint64_t aNumber) {
  return "message " + std::to_string(aNumber) + " " +
         std::string(static_cast<size_t>(aNumber * 7919 % 200), 'x') + "\n";
}

// --- In the process

void LoggingProcess::Run() {
  signal(SIGPIPE, SIG_DFL);
  dup2(mErrors, STDERR_FILENO);
  CloseAllBut(mChannel);
  WaitedMs();
  Command theCommand;
  while (recv(mChannel, &theCommand, sizeof(theCommand), 0) == sizeof(theCommand)) {
    mReport.mCalls = mReport.mCallsFrom5Ms = mReport.mCallsFrom50Ms = 0;
    mReport.mSlowestMs = 0;
    Do(theCommand);
    if (send(mChannel, &mReport, sizeof(mReport), MSG_NOSIGNAL) != sizeof(mReport)) {
      break;  // the experiment has ended
    }
  }
  _exit(EXIT_FAILURE);
}

void LoggingProcess::LogOne(bool afMeasured) {
  const std::string theText = Text(mReport.mSent + 1);
  const double theWaited = afMeasured ? WaitedMs() : 0;
  const double theStart = afMeasured ? NowMs() : 0;
  qvLogData* theData = qvLog_Begin(QVLOGLEVEL_INFO, 0);
  if (theData != nullptr) {
    qvLog_Append_F("%s", theText.c_str());
    qvLog_End(theData);
  }
  ++mReport.mSent;
  if (afMeasured) {
    const double theTime = NowMs() - theStart - (WaitedMs() - theWaited);
    ++mReport.mCalls;
    mReport.mCallsFrom5Ms += theTime >= kSlowMs;
    mReport.mCallsFrom50Ms += theTime >= kTooSlowMs;
    mReport.mSlowestMs = std::max(mReport.mSlowestMs, theTime);
  }
}

void LoggingProcess::Do(const Command& aCommand) {
  switch (aCommand.mTask) {
    case Task::kLog:
    case Task::kFlood:
      for (uint32_t i = 0; i < aCommand.mCount; ++i) {
        LogOne(aCommand.mTask == Task::kLog);
      }
      break;
    case Task::kLook:
      break;
    case Task::kMove:
      setenv("QVRALOG", aCommand.mTarget, 1);
      qvLog_ReloadConfig();
      break;
    case Task::kTakeDescriptors:
      LimitDescriptors(STDERR_FILENO + 1);  // which are open
      break;
    case Task::kGiveDescriptors:
      LimitDescriptors(RLIM_INFINITY);
      break;
    case Task::kEnd:
      qvLog_Term();
      _exit(EXIT_SUCCESS);
  }
  const qvLogdLogger* theLogger = qvLogdLogger::sInstance;
  if (theLogger != nullptr) {
    mReport.mLost = theLogger->mLostLogs;
    mReport.mfConnected = theLogger->mState == qvLogdLogger::State_Connected;
    int theUnsent = 0;
    mReport.mUnsent = ioctl(theLogger->mSocket, SIOCOUTQ, &theUnsent) == 0 ? theUnsent : 0;
    memcpy(mReport.mUUID, theLogger->mUUIDStr, sizeof(mReport.mUUID));
  }
  mReport.mHeapBytes = HeapBytes();
  mReport.mDescriptors = OpenDescriptors();
}

// --- In the experiment

void LoggingProcess::Tell(const Command& aCommand) {
  (void)!send(mChannel, &aCommand, sizeof(aCommand), MSG_NOSIGNAL);
}

bool LoggingProcess::HasReport(int aLimitMs) {
  struct pollfd thePoll = {mChannel, POLLIN, 0};
  return poll(&thePoll, 1, aLimitMs) == 1;
}

// A process that has ended reports what it did before that; End tells why.
LoggingReport LoggingProcess::Report() {
  if (!HasReport(kLimitMs)) {
    fprintf(stderr, "the logging process hangs\n");
    kill(mPid, SIGKILL);
  }
  LoggingReport theReport;
  if (recv(mChannel, &theReport, sizeof(theReport), 0) == sizeof(theReport)) {
    mReport = theReport;
  }
  return mReport;
}

LoggingReport LoggingProcess::TellAndWait(const Command& aCommand) {
  Tell(aCommand);
  return Report();
}

void LoggingProcess::StartLogging(uint32_t aCount) { Tell({Task::kLog, aCount, ""}); }
void LoggingProcess::StartFlooding(uint32_t aCount) { Tell({Task::kFlood, aCount, ""}); }

LoggingReport LoggingProcess::Log(uint32_t aCount) { return TellAndWait({Task::kLog, aCount, ""}); }
LoggingReport LoggingProcess::Look() { return TellAndWait({Task::kLook, 0, ""}); }

LoggingReport LoggingProcess::MoveTo(const std::string& aTarget) {
  Command theCommand = {Task::kMove, 0, ""};
  aTarget.copy(theCommand.mTarget, kTargetSize - 1);
  return TellAndWait(theCommand);
}

LoggingReport LoggingProcess::TakeDescriptors() { return TellAndWait({Task::kTakeDescriptors, 0, ""}); }
LoggingReport LoggingProcess::GiveDescriptors() { return TellAndWait({Task::kGiveDescriptors, 0, ""}); }

std::string LoggingProcess::End() {
  if (mPid > 0) {
    Tell({Task::kEnd, 0, ""});
    int theStatus = 0;
    waitpid(mPid, &theStatus, 0);
    mPid = -1;
    if (WIFSIGNALED(theStatus)) {
      mEnd = std::string("ended by the signal ") + strsignal(WTERMSIG(theStatus));
    } else if (WEXITSTATUS(theStatus) != 0) {
      mEnd = "ended with code " + std::to_string(WEXITSTATUS(theStatus));
    }
  }
  return mEnd;
}

std::string LoggingProcess::Errors() const {
  std::string theText(static_cast<size_t>(lseek(mErrors, 0, SEEK_END)), '\0');
  ssize_t theCount = pread(mErrors, theText.data(), theText.size(), 0);
  theText.resize(static_cast<size_t>(std::max<ssize_t>(theCount, 0)));
  return theText;
}
