// The crash-safe save, interrupted at each call that it makes to change or guard what is on disk.
//
// The functions of the C library that a save uses for that are defined in this program, so that a test can
// end the process before any of them, or make it fail, on every target. Calls that only look (stat, read)
// change nothing and are left out: a crash before one of them is the same as a crash before the next that
// does.

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <functional>
#include <string>

#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"
#include "support/SettingsGenerations.h"

namespace {

constexpr size_t kNever = static_cast<size_t>(-1);

// What happens to the calls from BeginCalls to EndCalls.
struct CallPlan {
  bool mfActive = false;
  size_t mKillBefore = kNever;    // index of the call that the process does not live to make
  size_t mFailFrom = kNever;      // index of the first call that fails
  size_t mFailCount = 0;          // how many fail
  int mErrno = 0;                 // what they fail with
  size_t mLargestWrite = kNever;  // bytes that one write stores at most
  size_t mCallCount = 0;          // so far
  std::string mCalls;             // their names, with one blank between them
};

CallPlan sPlan;

// Notes a call. True when it is to fail; errno says how.
bool FailsHere(const char* aName) {
  if (!sPlan.mfActive) {
    return false;
  }
  size_t theIndex = sPlan.mCallCount++;
  if (theIndex == sPlan.mKillBefore) {
    kill(getpid(), SIGKILL);
  }
  sPlan.mCalls += (sPlan.mCalls.empty() ? "" : " ") + std::string(aName);
  if (theIndex < sPlan.mFailFrom || theIndex - sPlan.mFailFrom >= sPlan.mFailCount) {
    return false;
  }
  errno = sPlan.mErrno;
  return true;
}

}  // namespace

// Large files give open another name in the object file, through its declaration: here as in the library.

int open(const char* aPath, int aFlags, ...) {
  va_list theArguments;
  va_start(theArguments, aFlags);
  mode_t theMode = (aFlags & O_CREAT) != 0 ? va_arg(theArguments, mode_t) : 0;
  va_end(theArguments);
  return FailsHere("open")
             ? -1
             : static_cast<int>(syscall(SYS_openat, AT_FDCWD, aPath, aFlags | O_LARGEFILE, theMode));
}

ssize_t write(int aFD, const void* aBytes, size_t aCount) {
  if (FailsHere("write")) {
    return -1;
  }
  return syscall(SYS_write, aFD, aBytes, sPlan.mfActive ? std::min(aCount, sPlan.mLargestWrite) : aCount);
}

int fsync(int aFD) { return FailsHere("fsync") ? -1 : static_cast<int>(syscall(SYS_fsync, aFD)); }

int close(int aFD) {
  bool theFails = FailsHere("close");
  int theErrno = errno;
  int theResult = static_cast<int>(syscall(SYS_close, aFD));
  if (theFails) {
    errno = theErrno;
  }
  return theFails ? -1 : theResult;  // a failing close closes all the same
}

int flock(int aFD, int anOperation) noexcept {
  return FailsHere("flock") ? -1 : static_cast<int>(syscall(SYS_flock, aFD, anOperation));
}

int rename(const char* anOldPath, const char* aNewPath) noexcept {
  return FailsHere("rename")
             ? -1
             : static_cast<int>(syscall(SYS_renameat, AT_FDCWD, anOldPath, AT_FDCWD, aNewPath));
}

int unlink(const char* aPath) noexcept {
  return FailsHere("unlink") ? -1 : static_cast<int>(syscall(SYS_unlinkat, AT_FDCWD, aPath, 0));
}

namespace {

// Carries a plan out on aBody.
CallPlan RunPlanned(const CallPlan& aPlan, const std::function<void()>& aBody) {
  sPlan = aPlan;
  sPlan.mfActive = true;
  aBody();
  sPlan.mfActive = false;
  return sPlan;
}

bool KillBeforeCall(size_t anIndex, const std::function<void()>& aBody) {
  CallPlan thePlan;
  thePlan.mKillBefore = anIndex;
  ChildResult theResult = RunInChild([&] { RunPlanned(thePlan, aBody); });
  EXPECT_TRUE(theResult.mSignal == SIGKILL || theResult.mExitCode == 0) << theResult.mStderr;
  return theResult.mSignal == SIGKILL;
}

// What a save over old settings said, what was left and what the next open found.
std::string OutcomeOf(const CallPlan& aPlan) {
  ScratchFolder theFolder;
  std::string theFile = theFolder.File("a.ini");
  WriteWholeFile(theFile, GenerationText("old"));
  std::string theResult;
  RunPlanned(aPlan, [&] { theResult = TrySave(theFile, "new"); });
  std::string theNames = theFolder.Names();
  return theResult + ", " + theNames + ", " + GenerationAtOpen(theFile);
}

}  // namespace

TEST(qvConfigFileINISaveCalls, ProcessKilledAnywhereFromOpenToSaveLeavesOldOrNewSettings) {
  for (const StartState& theState : StartStates()) {
    KillEverywhere(theState, KillBeforeCall, [](const std::string& aFile) { OpenAndSave(aFile, "new"); });
  }
}

TEST(qvConfigFileINISaveCalls, ProcessKilledAnywhereInASaveAmongLeftoversLeavesOldOrNewSettings) {
  for (const StartState& theState : StartStates()) {
    // The leftovers come into being after the open, so that it is the save that meets them.
    KillEverywhere(theState, KillBeforeCall, [](const std::string& aFile) { TrySave(aFile, "new"); });
  }
}

TEST(qvConfigFileINISaveCalls, ProcessKilledAnywhereInAnOpenLeavesOldSettings) {
  for (const StartState& theState : StartStates()) {
    for (size_t theIndex = 0;; ++theIndex) {
      SCOPED_TRACE(std::string(theState.mName) + ", killed before call " + std::to_string(theIndex));
      ScratchFolder theFolder;
      Prepare(theState, theFolder.File("a.ini"));
      bool theWasKilled = KillBeforeCall(theIndex, [&] { GenerationAtOpen(theFolder.File("a.ini")); });
      EXPECT_EQ(theState.mOldGeneration, GenerationAtOpen(theFolder.File("a.ini")));
      EXPECT_EQ(theState.mOldGeneration.empty() ? "" : "a.ini", theFolder.Names());
      if (!theWasKilled || HasFailure()) {
        break;
      }
    }
  }
}

TEST(qvConfigFileINISaveCalls, TextIsDurableBeforeItsNameAndTheNameBeforeTheOldFileGoes) {
  ScratchFolder theFolder;
  CallPlan theDone = RunPlanned(CallPlan(), [&] { TrySave(theFolder.File("a.ini"), "new"); });
  EXPECT_EQ("open flock unlink open write fsync close rename fsync rename flock close", theDone.mCalls);
}

TEST(qvConfigFileINISaveCalls, OpenTakesTheLockOnlyForLeftovers) {
  ScratchFolder theFolder;
  std::string theFile = theFolder.File("a.ini");
  WriteWholeFile(theFile, GenerationText("old"));
  EXPECT_EQ("open close", RunPlanned(CallPlan(), [&] { GenerationAtOpen(theFile); }).mCalls);
  WriteWholeFile(theFile + ".tmp", "first=no\n");
  WriteWholeFile(theFile + ".ok", GenerationText("new"));
  EXPECT_EQ("open flock unlink rename flock close open close",
            RunPlanned(CallPlan(), [&] { GenerationAtOpen(theFile); }).mCalls);
}

TEST(qvConfigFileINISaveCalls, CallThatFailsLeavesOldOrNewSettings) {
  const struct {
    const char* mOutcome;
    const char* mCall;
  } kCases[] = {
      {"1, a.ini, new", "open of the folder, so there is no lock"},
      {"1, a.ini, new", "flock, so there is no lock"},
      {"1, a.ini, new", "unlink of a leftover that is not there"},
      {"0, a.ini, old", "open of the temporary file"},
      {"0, a.ini, old", "write"},
      {"0, a.ini, old", "fsync of the temporary file"},
      {"0, a.ini, old", "close of the temporary file"},
      {"0, a.ini, old", "rename to the completed file"},
      {"1, a.ini, new", "fsync of the folder"},
      {"0, a.ini a.ini.ok, new", "rename to the file: the next open completes the save"},
      {"1, a.ini, new", "flock to unlock"},
      {"1, a.ini, new", "close of the folder"},
  };
  CallPlan thePlan;
  thePlan.mErrno = EIO;
  thePlan.mFailCount = 1;
  thePlan.mFailFrom = 0;
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mOutcome, OutcomeOf(thePlan)) << theCase.mCall;
    ++thePlan.mFailFrom;
  }
}

TEST(qvConfigFileINISaveCalls, EverythingThatFailsFromACallOnLeavesOldOrNewSettings) {
  CallPlan thePlan;
  thePlan.mErrno = EROFS;
  thePlan.mFailCount = kNever;
  for (thePlan.mFailFrom = 0; thePlan.mFailFrom <= 12; ++thePlan.mFailFrom) {
    SCOPED_TRACE(thePlan.mFailFrom);
    std::string theOutcome = OutcomeOf(thePlan);
    // The temporary file cannot be removed either once it is there; the next open does that.
    EXPECT_EQ(thePlan.mFailFrom <= 3   ? "0, a.ini, old"
              : thePlan.mFailFrom <= 7 ? "0, a.ini a.ini.tmp, old"
              : thePlan.mFailFrom <= 9 ? "0, a.ini a.ini.ok, new"
                                       : "1, a.ini, new",
              theOutcome);
  }
}

TEST(qvConfigFileINISaveCalls, WriteThatStoresAPartIsContinued) {
  CallPlan thePlan;
  thePlan.mLargestWrite = 7;
  EXPECT_EQ("1, a.ini, new", OutcomeOf(thePlan));
}

TEST(qvConfigFileINISaveCalls, WriteThatStoresAPartAndThenNothingLeavesOldSettings) {
  CallPlan thePlan;
  thePlan.mLargestWrite = 0;
  EXPECT_EQ("0, a.ini, old", OutcomeOf(thePlan)) << "a write that stores nothing is no success";
  thePlan.mLargestWrite = 100;
  thePlan.mFailFrom = 6;  // the third write
  thePlan.mFailCount = 1;
  thePlan.mErrno = ENOSPC;
  EXPECT_EQ("0, a.ini, old", OutcomeOf(thePlan));
}

TEST(qvConfigFileINISaveCalls, SignalsDoNotEndASave) {
  CallPlan thePlan;
  thePlan.mErrno = EINTR;
  thePlan.mFailCount = 3;
  thePlan.mFailFrom = 1;
  EXPECT_EQ("1, a.ini, new", OutcomeOf(thePlan)) << "waiting for the lock";
  thePlan.mFailFrom = 4;
  EXPECT_EQ("1, a.ini, new", OutcomeOf(thePlan)) << "writing";
}
