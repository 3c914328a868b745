// A thread that crashes: the back-trace file, and the end by the very signal. Each crash takes two seconds.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <string>

#include "qvOS/qvThread.h"
#include "support/ChildProcess.h"
#include "support/Crashes.h"
#include "support/ScratchFolder.h"

namespace {

template <int kSignal>
void Crash(void*) {
  CrashBy(kSignal);
}

ChildResult CrashInThread(qvThread_Func aCrash, std::string* aTrace) {
  ChildResult theResult = RunInChildKeepingTrace([&] {
    qvOSThread_Data theData = {
        aCrash, nullptr, nullptr, qvThread_StackSize_SystemDefault, qvThread_Kind_Joinable, 0};
    qvOSThread* theThread = qvThread_New(&theData);
    qvThread_Run(theThread);
    qvThread_Wait(theThread);
  });
  std::string thePath = "/tmp/backtrace_" + std::to_string(theResult.mPid) + ".txt";
  *aTrace = ReadWholeFile(thePath);
  unlink(thePath.c_str());
  return theResult;
}

void ExpectCrash(qvThread_Func aCrash, int aSignal) {
  std::string theTrace;
  ChildResult theResult = CrashInThread(aCrash, &theTrace);
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

// Twenty crashes, two of them with the allocator's lock held.
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
