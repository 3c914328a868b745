#include "support/TracedProcess.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stdio.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kNotTraced = 99;                   // exit code of a child that cannot be traced
constexpr int kSystemCallStop = SIGTRAP | 0x80;  // with PTRACE_O_TRACESYSGOOD
constexpr long kStartMark = SYS_getppid;         // the last system call before the body

// A child that stops before and behind each of its system calls.
class TracedChild {
 public:
  explicit TracedChild(const std::function<int()>& aBody) {
    fflush(nullptr);
    mPid = fork();
    if (mPid == 0) {
      if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
        _exit(kNotTraced);
      }
      raise(SIGSTOP);
      syscall(kStartMark);
      _exit(aBody());
    }
    waitpid(mPid, &mStatus, 0);
    mfRunning = WIFSTOPPED(mStatus);
    if (mfRunning) {
      ptrace(PTRACE_SETOPTIONS, mPid, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
      // What raise does behind the stop differs between C libraries.
      for (long theNumber = 0; theNumber >= 0 && theNumber != kStartMark;) {
        theNumber = NextSystemCall();
      }
    }
  }

  ~TracedChild() {
    if (mfRunning) {
      kill(mPid, SIGKILL);
      waitpid(mPid, &mStatus, 0);
    }
  }

  // Lets the child run up to its next system call and gives that call's number, or -1 when it has ended.
  long NextSystemCall() {
    while (mfRunning) {
      ptrace(PTRACE_SYSCALL, mPid, nullptr, nullptr);
      waitpid(mPid, &mStatus, 0);
      mfRunning = WIFSTOPPED(mStatus);
      if (!mfRunning || WSTOPSIG(mStatus) != kSystemCallStop) {
        continue;
      }
      struct __ptrace_syscall_info theInfo = {};
      ptrace(PTRACE_GET_SYSCALL_INFO, mPid, sizeof(theInfo), &theInfo);
      if (theInfo.op == PTRACE_SYSCALL_INFO_ENTRY) {
        return static_cast<long>(theInfo.entry.nr);
      }
    }
    return -1;
  }

  // False when the child has ended before its system call anIndex, counted from 0.
  bool StopBefore(size_t anIndex) {
    long theNumber = NextSystemCall();
    for (size_t i = 0; theNumber >= 0 && i < anIndex; ++i) {
      theNumber = NextSystemCall();
    }
    return theNumber >= 0;
  }

  bool IsRunning() const { return mfRunning; }
  int ExitCode() const { return WIFEXITED(mStatus) ? WEXITSTATUS(mStatus) : -1; }

 private:
  pid_t mPid = -1;
  int mStatus = 0;
  bool mfRunning = false;
};

}  // namespace

bool CanTraceProcesses() {
  TracedChild theChild([] { return static_cast<int>(getppid() & 0); });
  return theChild.IsRunning() && theChild.NextSystemCall() >= 0;
}

std::vector<long> SystemCallsOf(const std::function<void()>& aBody) {
  std::vector<long> theNumbers;
  TracedChild theChild([&] { return aBody(), 0; });
  for (long theNumber = theChild.NextSystemCall(); theNumber >= 0; theNumber = theChild.NextSystemCall()) {
    theNumbers.push_back(theNumber);
  }
  EXPECT_EQ(0, theChild.ExitCode());
  return theNumbers;
}

bool KillBeforeSystemCall(size_t anIndex, const std::function<void()>& aBody) {
  TracedChild theChild([&] { return aBody(), 0; });
  return theChild.StopBefore(anIndex);
}

int StopBeforeSystemCall(size_t anIndex, const std::function<int()>& aBody,
                         const std::function<void()>& aMeanwhile) {
  TracedChild theChild(aBody);
  if (!theChild.StopBefore(anIndex)) {
    return -1;
  }
  aMeanwhile();
  while (theChild.NextSystemCall() >= 0) {
  }
  return theChild.ExitCode();
}
