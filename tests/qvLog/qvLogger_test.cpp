#include "qvLog/qvLogger.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "qvLog/qvLoggerConfig_p.h"
#include "support/ChildProcess.h"
#include "support/ClassLayout.h"
#include "support/RecordingLogger.h"
#include "support/SleepingThread.h"

// First in this file, for a run of all tests in one process.
TEST(qvLoggerBeforeFirstUse, ALoggerOutsideTheChainInitialisesNothing) {
  qvLogger* theLogger = new qvLogger("alone", false);
  EXPECT_EQ(nullptr, qvLogger::sHead);
  EXPECT_EQ(65535, _qvLog_Level);
  theLogger->ChangeLevel(3);
  EXPECT_EQ(3, theLogger->GetLevel());
  EXPECT_EQ(65535, _qvLog_Level);
  delete theLogger;
}

TEST(qvLogDataLayout, TheRecordOfClientsHasItsFieldsInOrder) {
  EXPECT_EQ(0u, offsetof(qvLogData, mLevel));
  EXPECT_EQ(2u, offsetof(qvLogData, mModule));
  EXPECT_EQ(ByPointerSize(4, 8), offsetof(qvLogData, mFile));
  EXPECT_EQ(ByPointerSize(8, 16), offsetof(qvLogData, mLine));
  EXPECT_EQ(ByPointerSize(12, 24), sizeof(qvLogData));
}

TEST(qvLogDataLayout, TheRecordOfLoggersHasItsFieldsInOrder) {
  qvLogDataEx theData = {};
  EXPECT_EQ(0u, OffsetIn(theData, theData.mLevel));
  EXPECT_EQ(ByPointerSize(12, 24), OffsetIn(theData, theData.mProcessId));
  EXPECT_EQ(ByPointerSize(16, 28), OffsetIn(theData, theData.mThreadId));
  EXPECT_EQ(ByPointerSize(20, 32), OffsetIn(theData, theData.mTimeStr));
  EXPECT_EQ(ByPointerSize(60, 72), OffsetIn(theData, theData.mTimeStrLen));
  EXPECT_EQ(ByPointerSize(64, 80), OffsetIn(theData, theData.mFormatted));
  EXPECT_EQ(ByPointerSize(68, 88), OffsetIn(theData, theData.mSizeofFormatted));
  EXPECT_EQ(ByPointerSize(72, 92), OffsetIn(theData, theData.mFormattedLen));
  EXPECT_EQ(ByPointerSize(76, 96), OffsetIn(theData, theData.mFormattedSource));
  EXPECT_EQ(40u, sizeof(theData.mTimeStr));
  EXPECT_EQ(4u, sizeof(theData.mSizeofFormatted));
  EXPECT_EQ(4u, sizeof(theData.mFormattedLen));
}

TEST(qvLoggerLayout, TheFieldsAreInOrder) {
  qvLogger theLogger("name", false);
  EXPECT_EQ(ByPointerSize(4, 8), OffsetIn(theLogger, theLogger.mName));
  EXPECT_EQ(ByPointerSize(8, 16), OffsetIn(theLogger, theLogger.mLevel));
  EXPECT_EQ(ByPointerSize(12, 24), OffsetIn(theLogger, theLogger.mNext));
  EXPECT_EQ(ByPointerSize(16, 32), OffsetIn(theLogger, theLogger.mOptions));
  EXPECT_EQ(ByPointerSize(20, 36), OffsetIn(theLogger, theLogger.mModulesInfo));
  EXPECT_EQ(512u, sizeof(theLogger.mModulesInfo));
  EXPECT_EQ(2u, sizeof(theLogger.mLevel));
  EXPECT_EQ(4u, sizeof(theLogger.mOptions));
}

TEST(qvLoggerLayout, TheVirtualOperationsAreInOrderBehindTheTwoDestructors) {
  EXPECT_EQ(2u, SlotOf(&qvLogger::IsModuleActive));
  EXPECT_EQ(3u, SlotOf(&qvLogger::BeginLog));
  EXPECT_EQ(4u, SlotOf(&qvLogger::Append_F));
  EXPECT_EQ(5u, SlotOf(&qvLogger::Append_VF));
  EXPECT_EQ(6u, SlotOf(&qvLogger::Append_VFML));
  EXPECT_EQ(7u, SlotOf(&qvLogger::Append_B));
  EXPECT_EQ(8u, SlotOf(&qvLogger::Append_U));
  EXPECT_EQ(9u, SlotOf(&qvLogger::Append_S));
  EXPECT_EQ(10u, SlotOf(&qvLogger::Append_LogTime));
  EXPECT_EQ(11u, SlotOf(&qvLogger::Append_ThreadNameOrId));
  EXPECT_EQ(12u, SlotOf(&qvLogger::Append_ProcessNameOrId));
  EXPECT_EQ(13u, SlotOf(&qvLogger::Append_LogModule));
  EXPECT_EQ(14u, SlotOf(&qvLogger::EndLog));
  EXPECT_EQ(15u, SlotOf(&qvLogger::ReloadConfig));
}

TEST(qvLogger, TheConstantsHaveTheirPublishedValues) {
  EXPECT_EQ(1, qvLogger::OPT_NO_CONFIG);
  EXPECT_EQ(1, qvLogger::MODULE_ACTIVE);
  EXPECT_EQ(2, qvLogger::MODULE_SEEN);
}

TEST(qvLogger, ANewLoggerHasItsNameAndIsClosed) {
  qvLogger theLogger("some name", false);
  EXPECT_STREQ("some name", theLogger.mName);
  EXPECT_EQ(0, theLogger.GetLevel());
  EXPECT_EQ(nullptr, theLogger.mNext);
  EXPECT_EQ(0u, theLogger.mOptions);
  for (uint8 theInfo : theLogger.mModulesInfo) {
    EXPECT_EQ(0, theInfo);
  }
}

TEST(qvLogger, ALoggerOutsideTheChainTakesNoLock) {
  qvLogger::LockFramework();
  qvLogger* theLogger = nullptr;
  std::thread([&] { theLogger = new qvLogger("alone", false); }).join();
  qvLogger::UnlockFramework();
  delete theLogger;
}

TEST(qvLogger, TheBaseTakesNoMessageAndItsSinkDoesNothing) {
  qvLogger theLogger("base", false);
  qvLogDataEx theRecord = {};
  EXPECT_FALSE(theLogger.BeginLog(&theRecord));
  theLogger.Append_S(&theRecord, "text", 4);
  theLogger.EndLog(&theRecord);
}

TEST(qvLogger, OptionBitsAreAddedAndTakenAway) {
  qvLogger theLogger("options", false);
  theLogger.SetOptions(5);
  theLogger.SetOptions(2);
  EXPECT_EQ(7u, theLogger.mOptions);
  theLogger.ClearOptions(5);
  EXPECT_EQ(2u, theLogger.mOptions);
}

TEST(qvLogger, TheChainIsInReverseOrderOfCreation) {
  RecordingLogger theFirst(2);
  RecordingLogger theSecond(2);
  EXPECT_EQ(&theSecond, qvLogger::sHead);
  EXPECT_EQ(&theFirst, theSecond.mNext);
}

TEST(qvLogger, ALoggerLeavesTheChainFromAnyPlace) {
  qvLogger::LockFramework();
  qvLogger* theRest = qvLogger::sHead;
  qvLogger::UnlockFramework();
  RecordingLogger theFirst(2);
  RecordingLogger theSecond(2);
  RecordingLogger theThird(2);
  qvLogger::RemoveLogger(&theSecond);
  EXPECT_EQ(&theThird, qvLogger::sHead);
  EXPECT_EQ(&theFirst, theThird.mNext);
  EXPECT_EQ(nullptr, theSecond.mNext);
  qvLogger::RemoveLogger(&theThird);
  EXPECT_EQ(&theFirst, qvLogger::sHead);
  qvLogger::RemoveLogger(&theFirst);
  EXPECT_EQ(theRest, qvLogger::sHead);
}

TEST(qvLogger, RemovingALoggerThatIsNotInTheChainChangesNothing) {
  RecordingLogger theLogger(2);
  RecordingLogger theStranger(2, false);
  qvLogger::RemoveLogger(&theStranger);
  EXPECT_EQ(&theLogger, qvLogger::sHead);
  EXPECT_TRUE(LogText(1, 0, "text"));
}

TEST(qvLogger, ALoggerThatWasRemovedCanEnterAgain) {
  RecordingLogger theLogger(2);
  qvLogger::RemoveLogger(&theLogger);
  EXPECT_FALSE(LogText(1, 0, "lost"));
  qvLogger::AddLogger(&theLogger);
  EXPECT_TRUE(LogText(1, 0, "kept"));
  EXPECT_EQ(std::vector<std::string>({"kept"}), theLogger.mMessages);
}

TEST(qvLogger, DeletingAllLoggersRunsTheirDestructorsAndEmptiesTheChain) {
  static std::string sDeleted;
  struct Mortal : RecordingLogger {
    explicit Mortal(const char* aName) : RecordingLogger(2, true, aName) {}
    ~Mortal() override { sDeleted += mName; }
  };
  new Mortal("a");
  new Mortal("b");
  qvLogger::DeleteAllLoggers();
  EXPECT_EQ("ba", sDeleted);
  EXPECT_EQ(nullptr, qvLogger::sHead);
}

TEST(qvLogger, AChangeOfTheChainWaitsForTheFrameworkLock) {
  RecordingLogger theLogger(2, false);
  for (void (*theChange)(qvLogger*) : {qvLogger::AddLogger, qvLogger::RemoveLogger}) {
    qvLogger::LockFramework();
    qvLogger* theHead = qvLogger::sHead;
    {
      SleepingThread theOther([&] { theChange(&theLogger); });
      EXPECT_EQ(theHead, qvLogger::sHead);
      qvLogger::UnlockFramework();
    }
    EXPECT_NE(theHead, qvLogger::sHead);
  }
}

TEST(qvLogger, NoLoggerIsDeletedWhileAnotherThreadHoldsTheFrameworkLock) {
  static std::atomic<bool> sfDeleted{false};
  struct Mortal : RecordingLogger {
    Mortal() : RecordingLogger(2) {}
    ~Mortal() override { sfDeleted = true; }
  };
  new Mortal;
  qvLogger::LockFramework();
  {
    SleepingThread theOther([] { qvLogger::DeleteAllLoggers(); });
    EXPECT_FALSE(sfDeleted);
    qvLogger::UnlockFramework();
  }
  EXPECT_TRUE(sfDeleted);
}

TEST(qvLogger, ChangingTheLevelToItsOwnValueLeavesTheGateAlone) {
  RecordingLogger theLogger(3);
  RecordingLogger theOther(9);
  qvLogger::RemoveLogger(&theOther);
  theLogger.Threshold(3);
  EXPECT_EQ(9, _qvLog_Level);
  theLogger.Threshold(4);
  EXPECT_EQ(4, _qvLog_Level);
}

TEST(qvLogger, AModuleWithoutConfigurationHasItsTableDefault) {
  RecordingLogger theLogger(2);
  EXPECT_TRUE(theLogger.IsModuleActive(0));
  EXPECT_EQ(3, theLogger.mModulesInfo[0]);
  for (qvLogModule theModule : {4, 20, 22, 53, 54, 55, 56, 201}) {
    EXPECT_FALSE(theLogger.IsModuleActive(theModule)) << theModule;
    EXPECT_EQ(2, theLogger.mModulesInfo[theModule]) << theModule;
  }
}

TEST(qvLogger, AModuleNumberWithoutANameIsActiveByDefault) {
  RecordingLogger theLogger(2);
  EXPECT_TRUE(theLogger.IsModuleActive(170));
  EXPECT_TRUE(theLogger.IsModuleActive(511));
  EXPECT_EQ(3, theLogger.mModulesInfo[511]);
}

TEST(qvLogger, WithTheProcessDefaultOffEveryModuleIsSilent) {
  RecordingLogger theLogger(2);
  _gfDefaultIsToLog = 0;
  EXPECT_FALSE(theLogger.IsModuleActive(0));
  EXPECT_FALSE(theLogger.IsModuleActive(170));
  EXPECT_TRUE(theLogger.IsModuleActive(512));
  _gfDefaultIsToLog = 1;
}

TEST(qvLogger, AModuleNumberFrom512OnIsActiveWithoutACacheEntry) {
  RecordingLogger theLogger(2);
  EXPECT_TRUE(theLogger.IsModuleActive(512));
  EXPECT_TRUE(theLogger.IsModuleActive(600));
  EXPECT_TRUE(theLogger.IsModuleActive(65535));
  for (uint8 theInfo : theLogger.mModulesInfo) {
    EXPECT_EQ(0, theInfo);
  }
}

TEST(qvLogger, ADecisionIsRememberedUntilTheReload) {
  RecordingLogger theLogger(2);
  theLogger.mModulesInfo[0] = qvLogger::MODULE_SEEN;
  theLogger.mModulesInfo[4] = qvLogger::MODULE_SEEN | qvLogger::MODULE_ACTIVE;
  EXPECT_FALSE(theLogger.IsModuleActive(0));
  EXPECT_TRUE(theLogger.IsModuleActive(4));
  qvLog_ReloadConfig();
  for (uint8 theInfo : theLogger.mModulesInfo) {
    EXPECT_EQ(0, theInfo);
  }
  EXPECT_TRUE(theLogger.IsModuleActive(0));
  EXPECT_FALSE(theLogger.IsModuleActive(4));
}

TEST(qvLogger, TheProcessIdIsTheSystemsAlsoInAChildOfFork) {
  EXPECT_EQ(static_cast<uint32>(getpid()), qvLogger::CurrentProcessId());
  ChildResult theResult =
      RunInChild([] { _exit(qvLogger::CurrentProcessId() == static_cast<uint32>(getpid()) ? 7 : 8); });
  EXPECT_EQ(7, theResult.mExitCode);
  EXPECT_EQ(static_cast<uint32>(getpid()), qvLogger::CurrentProcessId());
}

TEST(qvLogger, EachThreadHasItsThreadIdCutTo32Bits) {
  EXPECT_EQ((uint32)(uintptr_t)pthread_self(), qvLogger::CurrentThreadId());
  uint32 theOther = 0;
  std::thread([&] { theOther = qvLogger::CurrentThreadId(); }).join();
  EXPECT_NE(theOther, qvLogger::CurrentThreadId());
}

TEST(qvLogger, TheThreadNameIsTheIdInEightHexadecimalDigits) {
  char theExpected[16];
  snprintf(theExpected, sizeof(theExpected), "%08x", static_cast<unsigned int>(qvLogger::CurrentThreadId()));
  EXPECT_STREQ(theExpected, qvLogger::CurrentThreadName());
  EXPECT_EQ(qvLogger::CurrentThreadName(), qvLogger::CurrentThreadName()) << "one static buffer";
}

TEST(qvLogger, TheProcessNameIsTheProgramsName) {
  EXPECT_STREQ("qvLogger_test", qvLogger::CurrentProcessName());
  EXPECT_EQ(qvLogger::CurrentProcessName(), qvLogger::CurrentProcessName());
}
