// The crash-safe save, interrupted at each call that it makes to change or guard what is on disk.
//
// Calls that only look (stat, read) change nothing and are mostly left out: a crash before one of them is the
// same as a crash before the next that does.

#include <errno.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <functional>
#include <string>

#include "interposed/PlannedCalls.h"
#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"
#include "support/SettingsGenerations.h"

namespace {

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
  EXPECT_EQ("open flock unlink open write fsync close rename fsync rename flock close", theDone.Calls());
}

TEST(qvConfigFileINISaveCalls, OpenTakesTheLockOnlyForLeftovers) {
  ScratchFolder theFolder;
  std::string theFile = theFolder.File("a.ini");
  WriteWholeFile(theFile, GenerationText("old"));
  EXPECT_EQ("open close", RunPlanned(CallPlan(), [&] { GenerationAtOpen(theFile); }).Calls());
  WriteWholeFile(theFile + ".tmp", "first=no\n");
  WriteWholeFile(theFile + ".ok", GenerationText("new"));
  EXPECT_EQ("open flock unlink rename unlink flock close open close",
            RunPlanned(CallPlan(), [&] { GenerationAtOpen(theFile); }).Calls());
}

TEST(qvConfigFileINISaveCalls, CallThatFailsLeavesOldOrNewSettings) {
  const struct {
    const char* mOutcome;
    const char* mCall;
  } kCases[] = {
      {"0, a.ini, old", "open of the folder: others may be at work in it"},
      {"1, a.ini, new", "flock, so there is no lock"},
      {"0, a.ini, old", "unlink of a leftover, even if it is not there"},
      {"0, a.ini, old", "open of the temporary file"},
      {"0, a.ini, old", "write"},
      {"0, a.ini, old", "fsync of the temporary file"},
      {"0, a.ini, old", "close of the temporary file"},
      {"0, a.ini, old", "rename to the completed file"},
      {"0, a.ini, old", "fsync of the folder"},
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
    // The temporary file cannot be removed either once it is there; the next open does that. A folder that
    // cannot be flushed because its file system cannot do that is no failure, but the rename behind it is.
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
  const struct {
    size_t mIndex;
    const char* mCall;
  } kCases[] = {
      {0, "open of the folder"},          {1, "flock"},
      {3, "open of the temporary file"},  {4, "write"},
      {5, "fsync of the temporary file"}, {6, "close of the temporary file"},
      {8, "fsync of the folder"},         {10, "flock to unlock"},
      {11, "close of the folder"},
  };
  CallPlan thePlan;
  thePlan.mErrno = EINTR;
  for (const auto& theCase : kCases) {
    thePlan.mFailFrom = theCase.mIndex;
    for (thePlan.mFailCount = 1; thePlan.mFailCount <= 3; ++thePlan.mFailCount) {
      // An interrupted close has closed.
      if (thePlan.mFailCount == 1 || std::string(theCase.mCall).find("close") == std::string::npos) {
        EXPECT_EQ("1, a.ini, new", OutcomeOf(thePlan)) << theCase.mCall;
      }
    }
  }
}

TEST(qvConfigFileINISaveCalls, FolderThatMayNotBeReadIsSavedToWithoutALock) {
  CallPlan thePlan;
  thePlan.mErrno = EACCES;
  thePlan.mFailFrom = 0;
  thePlan.mFailCount = 1;
  EXPECT_EQ("1, a.ini, new", OutcomeOf(thePlan));
}

TEST(qvConfigFileINISaveCalls, FolderThatCannotBeFlushedOnItsFileSystemIsNoFailure) {
  CallPlan thePlan;
  thePlan.mErrno = EINVAL;
  thePlan.mFailFrom = 8;
  thePlan.mFailCount = 1;
  EXPECT_EQ("1, a.ini, new", OutcomeOf(thePlan));
}

TEST(qvConfigFileINISaveCalls, SaveFailsAfterFiveSecondsOfWaitingForTheLock) {
  ScratchFolder theFolder;
  std::string theFile = theFolder.File("a.ini");
  WriteWholeFile(theFile, GenerationText("old"));
  CallPlan thePlan;
  thePlan.mErrno = EWOULDBLOCK;
  thePlan.mFailName = "flock";
  thePlan.mFailFrom = 0;
  thePlan.mFailCount = kNever;
  std::string theResult;
  CallPlan theDone = RunPlanned(thePlan, [&] { theResult = TrySave(theFile, "new"); });
  EXPECT_EQ("0", theResult);
  EXPECT_EQ(1000u, theDone.mPauseCount) << "of 5 milliseconds";
  EXPECT_EQ(GenerationText("old"), ReadWholeFile(theFile));
  EXPECT_EQ("a.ini", theFolder.Names());
}

TEST(qvConfigFileINISaveCalls, OpenReadsTheFileAfterFiveSecondsOfWaitingForTheLock) {
  ScratchFolder theFolder;
  std::string theFile = theFolder.File("a.ini");
  WriteWholeFile(theFile, GenerationText("old"));
  WriteWholeFile(theFile + ".tmp", "first=no\n");
  CallPlan thePlan;
  thePlan.mErrno = EWOULDBLOCK;
  thePlan.mFailName = "flock";
  thePlan.mFailFrom = 0;
  thePlan.mFailCount = kNever;
  std::string theGeneration;
  CallPlan theDone = RunPlanned(thePlan, [&] { theGeneration = GenerationAtOpen(theFile); });
  EXPECT_EQ("old", theGeneration);
  EXPECT_EQ(1000u, theDone.mPauseCount) << "of 5 milliseconds";
  EXPECT_EQ("a.ini a.ini.tmp", theFolder.Names()) << "it may belong to who has the lock";
}
