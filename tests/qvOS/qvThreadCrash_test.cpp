// A thread that crashes: the back-trace file, and the end by the very signal. Each crash takes two seconds.
#include <gtest/gtest.h>
#include <signal.h>
#include <stdio.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "qvOS/qvThread.h"
#include "support/ChildProcess.h"
#include "support/Crashes.h"
#include "support/Sanitizers.h"
#include "support/ScratchFolder.h"

// The handler does what no signal handler should, knowingly: the process is lost anyway. The report of each
// such call would be resolved to lines for seconds, while the time limit of the trace runs.
extern "C" const char* __tsan_default_options() { return "report_signal_unsafe=0"; }

namespace {

template <int kSignal>
void Crash(void*) {
  CrashBy(kSignal);
}

ChildResult CrashInThread(qvThread_Func aCrash, size_t aStackSize, std::string* aTrace) {
  ChildResult theResult = RunInChildKeepingTrace([&] {
    qvOSThread_Data theData = {aCrash, nullptr, nullptr, aStackSize, qvThread_Kind_Joinable, 0};
    qvOSThread* theThread = qvThread_New(&theData);
    qvThread_Run(theThread);
    qvThread_Wait(theThread);
  });
  std::string thePath = "/tmp/backtrace_" + std::to_string(theResult.mPid) + ".txt";
  *aTrace = ReadWholeFile(thePath);
  unlink(thePath.c_str());
  return theResult;
}

void ExpectCrash(qvThread_Func aCrash, int aSignal, size_t aStackSize = qvThread_StackSize_SystemDefault) {
  std::string theTrace;
  auto theStart = std::chrono::steady_clock::now();
  ChildResult theResult = CrashInThread(aCrash, aStackSize, &theTrace);
  EXPECT_GE(std::chrono::steady_clock::now() - theStart, std::chrono::milliseconds(2000));
  EXPECT_EQ(aSignal, theResult.mSignal);
  EXPECT_EQ(0u, theTrace.find("log\n")) << theTrace;
  EXPECT_NE(std::string::npos, theTrace.find("\nlog end\n")) << theTrace;
  EXPECT_NE(std::string::npos, theResult.mStdout.find("Backtracing this thread (pid=")) << theResult.mStdout;
}

TEST(qvThreadCrash, SegmentationFaultLeavesATraceAndEndsTheProcess) { ExpectCrash(Crash<SIGSEGV>, SIGSEGV); }
TEST(qvThreadCrash, IllegalInstructionLeavesATraceAndEndsTheProcess) { ExpectCrash(Crash<SIGILL>, SIGILL); }
TEST(qvThreadCrash, BusErrorLeavesATraceAndEndsTheProcess) { ExpectCrash(Crash<SIGBUS>, SIGBUS); }
TEST(qvThreadCrash, AbortLeavesATraceAndEndsTheProcess) { ExpectCrash(Crash<SIGABRT>, SIGABRT); }
TEST(qvThreadCrash, ArithmeticErrorLeavesATraceAndEndsTheProcess) { ExpectCrash(Crash<SIGFPE>, SIGFPE); }

TEST(qvThreadCrash, TheDefaultStackHasRoomForTheTrace) {
  if (kSanitized) {
    GTEST_SKIP() << "what the sanitizer compiles needs more stack";
  }
  ExpectCrash(Crash<SIGSEGV>, SIGSEGV, qvThread_StackSize_Default);
}

void ResetHandlers() {
  for (int theSignal = 1; theSignal < 32; ++theSignal) {
    signal(theSignal, SIG_DFL);
  }
}

// The signals that have a handler, after a thread whose function never ran.
void PrintHandledSignals(const char* aWhen) {
  qvOSThread_Data theData = {Crash<SIGSEGV>, nullptr, nullptr, 0, qvThread_Kind_Joinable, 0};
  qvOSThread* theThread = qvThread_New(&theData);
  qvThread_Wait(theThread);
  qvThread_Delete(theThread);
  printf("%s:", aWhen);
  for (int theSignal = 1; theSignal < 32; ++theSignal) {
    struct sigaction theAction = {};
    if (sigaction(theSignal, nullptr, &theAction) == 0 && theAction.sa_handler != SIG_DFL) {
      printf(" %d", theSignal);
    }
  }
  printf("\n");
}

TEST(qvThreadCrash, EveryThreadInstallsHandlersForFiveSignalsUnlessSwitchedOff) {
  ChildResult theResult = RunInChild([] {
    ResetHandlers();
    PrintHandledSignals("default");
    ResetHandlers();
    qvThread_SetAllThreadsCatchSignal(0);
    PrintHandledSignals("off");
    qvThread_SetAllThreadsCatchSignal(-1);
    PrintHandledSignals("on");
  });
  EXPECT_EQ("default: 4 6 7 8 11\noff:\non: 4 6 7 8 11\n", theResult.mStdout);
}

// Of twenty crashes two come with the allocator's lock held, except under the sanitizers, which have an
// allocator of their own.
TEST(qvThreadCrash, NoCrashHangsEvenWithTheAllocatorsLockHeld) {
  ChildResult theResult = RunProgram(TestProgramPath("crash_storm"), {"20"});
  EXPECT_EQ(0, theResult.mExitCode) << theResult.mStdout;
}

TEST(qvThreadCrash, WithCatchingSwitchedOffTheProcessEndsAtOnceWithoutATrace) {
  ChildResult theResult = RunInChildKeepingTrace([] {
    // The sanitizers have handlers of their own.
    signal(SIGFPE, SIG_DFL);
    qvThread_SetAllThreadsCatchSignal(0);
    qvOSThread_Data theData = {Crash<SIGFPE>, nullptr, nullptr, 0, qvThread_Kind_Joinable, 0};
    qvOSThread* theThread = qvThread_New(&theData);
    qvThread_Run(theThread);
    qvThread_Wait(theThread);
  });
  EXPECT_EQ(SIGFPE, theResult.mSignal);
  EXPECT_FALSE(FileExists("/tmp/backtrace_" + std::to_string(theResult.mPid) + ".txt"));
}

}  // namespace
