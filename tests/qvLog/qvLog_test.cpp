// The entry points and one message: qvLog/qvLog.cpp. Starting and ending the framework: qvLogLife_test.cpp.

#include "qvLog/qvLog.h"

#include <errno.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <malloc.h>
#include <unistd.h>

#include <thread>

#include "qvLog/qvMainLogger_p.h"
#include "support/RecordingLogger.h"
#include "support/SleepingThread.h"

namespace {

using testing::ElementsAre;

qvLogDataEx* Extended(qvLogData* aData) { return static_cast<qvLogDataEx*>(aData); }

void IgnoreMessage(void*, const qvLogData*, const char*, size_t) {}

}  // namespace

TEST(qvLog, AMessageGoesFromBeginToEnd) {
  RecordingLogger theLogger(2);
  qvLogData* theData = qvLog_Begin(1, 3);
  ASSERT_NE(nullptr, theData);
  qvLog_Append_F("%s %d\n", "text", 1);
  qvLog_End(theData);
  EXPECT_THAT(theLogger.mMessages, ElementsAre("text 1\n"));
}

namespace {

void AppendList(const char* aFormat, ...) {
  va_list theArgs;
  va_start(theArgs, aFormat);
  qvLog_Append_VF(aFormat, theArgs);
  va_end(theArgs);
}

}  // namespace

TEST(qvLog, AListOfArgumentsIsFormattedLikeTheArguments) {
  RecordingLogger theLogger(2);
  qvLogData* theData = qvLog_Begin(1, 0);
  AppendList("%s %d %.2f", "text", 1, 0.25);
  qvLog_End(theData);
  EXPECT_THAT(theLogger.mMessages, ElementsAre("text 1 0.25"));
}

TEST(qvLog, TheRecordCarriesLevelModuleAndWhatTheClientStores) {
  RecordingLogger theLogger(5);
  qvLogData* theData = qvLog_Begin(4, 300);
  EXPECT_EQ(4, theData->mLevel);
  EXPECT_EQ(300, theData->mModule);
  EXPECT_EQ(nullptr, theData->mFile);
  EXPECT_EQ(0u, theData->mLine);
  theData->mFile = "file.c";
  theData->mLine = 12;
  qvLog_End(theData);
  EXPECT_STREQ("file.c", theLogger.mRecord.mFile);
  EXPECT_EQ(12u, theLogger.mRecord.mLine);
}

TEST(qvLog, EveryMessageUsesTheOneRecord) {
  RecordingLogger theLogger(5);
  qvLogData* theFirst = qvLog_Begin(1, 0);
  qvLog_End(theFirst);
  qvLogData* theSecond = qvLog_Begin(1, 0);
  qvLog_End(theSecond);
  EXPECT_EQ(theFirst, theSecond);
  EXPECT_EQ(&_qvLog_gData, theFirst);
}

TEST(qvLog, AMessageStartsWithAClearedRecordAndTheSameBuffer) {
  RecordingLogger theLogger(5);
  qvLogDataEx* theData = Extended(qvLog_Begin(1, 0));
  char* theBuffer = theData->mFormatted;
  theLogger.Append_LogTime(theData);
  qvLog_Append_F("%d", 1);
  theData->mFile = "file.c";
  theData->mLine = 12;
  EXPECT_NE(0u, theData->mTimeStrLen);
  qvLog_End(theData);
  theData = Extended(qvLog_Begin(1, 0));
  EXPECT_EQ(nullptr, theData->mFile);
  EXPECT_EQ(0u, theData->mLine);
  EXPECT_EQ(0u, theData->mTimeStrLen);
  EXPECT_EQ('\0', theData->mTimeStr[0]);
  EXPECT_EQ(0u, theData->mFormattedLen);
  EXPECT_EQ(nullptr, theData->mFormattedSource);
  EXPECT_EQ(theBuffer, theData->mFormatted);
  EXPECT_EQ(1024, theData->mSizeofFormatted);
  qvLog_End(theData);
}

TEST(qvLog, TheSpareByteBehindTheBufferIsZero) {
  mallopt(M_PERTURB, 0xAA);  // new blocks are full of 0x55, so that the zero has been written
  RecordingLogger theLogger(5);
  EXPECT_EQ('\0', _qvLog_gData.mFormatted[_qvLog_gData.mSizeofFormatted]);
}

TEST(qvLog, TheIdsOfProcessAndThreadAreThereWhenTheMessageBegins) {
  RecordingLogger theLogger(5);
  qvLogDataEx* theData = Extended(qvLog_Begin(1, 0));
  EXPECT_EQ(static_cast<uint32>(getpid()), theData->mProcessId);
  EXPECT_EQ(qvLogger::CurrentThreadId(), theData->mThreadId);
  EXPECT_EQ(theData->mProcessId, theLogger.mRecord.mProcessId) << "already in BeginLog";
  qvLog_End(theData);
}

TEST(qvLog, TheEndOfAMessageNeedsNoRecord) {
  RecordingLogger theLogger(2);
  ASSERT_NE(nullptr, qvLog_Begin(1, 0));
  qvLog_Append_F("%s", "x");
  qvLog_End(nullptr);
  EXPECT_THAT(theLogger.mMessages, ElementsAre("x"));
}

TEST(qvLog, AMessageThatNoLoggerTakesIsDropped) {
  RecordingLogger theLogger(2);
  theLogger.mfTakes = false;
  EXPECT_EQ(nullptr, qvLog_Begin(1, 0));
  EXPECT_EQ(1, theLogger.mBegins);
  theLogger.mfTakes = true;
  std::thread([] { EXPECT_TRUE(LogText(1, 0, "x")) << "the lock was given back"; }).join();
}

TEST(qvLog, AMessageAtOrAboveTheGateReachesNoLogger) {
  RecordingLogger theLogger(3);
  EXPECT_EQ(nullptr, qvLog_Begin(3, 0));
  EXPECT_EQ(nullptr, qvLog_Begin(65535, 0));
  EXPECT_EQ(0, theLogger.mBegins);
  EXPECT_EQ(0, theLogger.mModuleQuestions);
}

TEST(qvLog, AMessageAtOrAboveTheGateTakesNoLock) {
  RecordingLogger theLogger(3);
  qvLogger::LockFramework();
  std::thread([] {
    EXPECT_EQ(nullptr, qvLog_Begin(3, 0));
    EXPECT_EQ(0, qvLog_WillLog(3, 0));
  }).join();
  qvLogger::UnlockFramework();
}

TEST(qvLog, AMessageOfASilentModuleIsDropped) {
  RecordingLogger theLogger(3);
  EXPECT_EQ(nullptr, qvLog_Begin(1, 4));
  EXPECT_EQ(0, qvLog_WillLog(1, 4));
  EXPECT_EQ(0, theLogger.mBegins);
}

TEST(qvLog, WillLogAnswersForLevelAndModule) {
  RecordingLogger theLogger(3);
  EXPECT_EQ(1, qvLog_WillLog(1, 0));
  EXPECT_EQ(1, qvLog_WillLog(2, 0));
  EXPECT_EQ(0, qvLog_WillLog(1, 4));
  EXPECT_EQ(1, qvLog_WillLog(1, 600));
  std::thread([] { EXPECT_TRUE(LogText(1, 0, "x")) << "the lock was given back"; }).join();
}

TEST(qvLogKept, WillLogTakesALevelThatEqualsAThreshold) {
  RecordingLogger theActive(3);
  EXPECT_EQ(0, qvLog_WillLog(3, 9)) << "alone: the gate in front is strict";
  RecordingLogger theSilent(5);
  theSilent.mInactiveModules = {9};
  EXPECT_EQ(1, qvLog_WillLog(2, 9)) << "one below the threshold";
  EXPECT_EQ(1, qvLog_WillLog(3, 9)) << "the threshold itself counts here";
  EXPECT_EQ(nullptr, qvLog_Begin(3, 9)) << "but the message is not written";
  EXPECT_EQ(0, qvLog_WillLog(4, 9)) << "one above the threshold";
  EXPECT_EQ(0, qvLog_WillLog(0, 9)) << "level 0 is never announced";
  EXPECT_TRUE(LogText(0, 9, "x")) << "but it is written";
}

TEST(qvLog, WillLogLetsEveryLoggerDecideAboutTheModule) {
  RecordingLogger theFirst(3);
  RecordingLogger theSecond(3);
  RecordingLogger theClosed(0);
  qvLog_WillLog(1, 9);
  EXPECT_EQ(3, theFirst.mModulesInfo[9]);
  EXPECT_EQ(3, theSecond.mModulesInfo[9]);
  EXPECT_EQ(3, theClosed.mModulesInfo[9]);
}

TEST(qvLog, AMessageNestedInALoggersOutputIsDroppedAndTheOuterOneIsIntact) {
  RecordingLogger theLogger(5);
  int theNested = 0;
  theLogger.mOnAppend = [&] {
    ++theNested;
    EXPECT_EQ(nullptr, qvLog_Begin(1, 0));
    EXPECT_EQ(0, qvLog_WillLog(1, 0));
  };
  qvLogData* theData = qvLog_Begin(3, 7);
  theData->mLine = 99;
  qvLog_Append_F("%s", "outer ");
  qvLog_Append_F("%s", "message");
  qvLog_End(theData);
  EXPECT_EQ(2, theNested);
  EXPECT_THAT(theLogger.mMessages, ElementsAre("outer message"));
  EXPECT_EQ(3, theLogger.mRecord.mLevel);
  EXPECT_EQ(7, theLogger.mRecord.mModule);
  EXPECT_EQ(99u, theLogger.mRecord.mLine);
}

TEST(qvLog, AMessageOfTheThreadThatHoldsTheFrameworkLockIsDroppedAsNested) {
  RecordingLogger theLogger(2);
  qvLogger::LockFramework();
  EXPECT_FALSE(LogText(1, 0, "locked"));
  EXPECT_EQ(0, qvLog_WillLog(1, 0));
  qvLogger::LockFramework();
  EXPECT_FALSE(LogText(1, 0, "locked twice"));
  qvLogger::UnlockFramework();
  EXPECT_TRUE(LogText(1, 0, "unlocked once"));
  qvLogger::UnlockFramework();
  EXPECT_THAT(theLogger.mMessages, ElementsAre("unlocked once"));
}

TEST(qvLog, AMessageOfAnotherThreadWaitsForTheEndOfThisOne) {
  RecordingLogger theLogger(5);
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_F("%s", "first ");
  {
    SleepingThread theThread([] { EXPECT_TRUE(LogText(1, 0, "second")); });
    qvLog_Append_F("%s", "message");
    qvLog_End(theData);
  }
  EXPECT_THAT(theLogger.mMessages, ElementsAre("first message", "second"));
}

TEST(qvLog, AReconfigurationWaitsForTheFrameworkLock) {
  RecordingLogger theLogger(2);
  qvLogger::LockFramework();
  {
    SleepingThread theReload([] { qvLog_ReloadConfig(); });
    SleepingThread theRegistration([] { qvLog_SetLogFunc(6, IgnoreMessage, nullptr); });
    EXPECT_EQ(0, theLogger.mReloads);
    EXPECT_EQ(2, _qvLog_Level);
    qvLogger::UnlockFramework();
  }
  EXPECT_EQ(1, theLogger.mReloads);
  EXPECT_EQ(6, _qvLog_Level);
  qvLog_SetLogFunc(0, IgnoreMessage, nullptr);
}

TEST(qvLog, ALoggerReloadsUnderTheFrameworkLock) {
  struct LoggingAtReload : RecordingLogger {
    LoggingAtReload() : RecordingLogger(2) {}
    void ReloadConfig() override { mfLogged = LogText(1, 0, "nested in the lock"); }
    bool mfLogged = true;
  };
  LoggingAtReload theLogger;
  qvLog_ReloadConfig();
  EXPECT_FALSE(theLogger.mfLogged);
}

TEST(qvLogKept, AFrameworkOperationInsideALoggersOutputEndsTheProtectionAgainstNestedMessages) {
  RecordingLogger theLogger(5);
  bool theFirstCall = true;
  bool theNestedBefore = true;
  bool theNestedAfter = false;
  theLogger.mOnAppend = [&] {
    if (theFirstCall) {
      theFirstCall = false;
      theNestedBefore = LogText(1, 0, "before");
      qvLog_ReloadConfig();
      theNestedAfter = LogText(2, 0, "after");
    }
  };
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_F("%s", "outer");
  qvLog_End(theData);
  EXPECT_FALSE(theNestedBefore);
  EXPECT_TRUE(theNestedAfter);
  std::thread([] { EXPECT_TRUE(LogText(1, 0, "x")); }).join();  // the lock is free again
}

TEST(qvLog, AMessageThatANestedOneHasEndedTakesNothingMore) {
  RecordingLogger theLogger(5);
  bool theFirstCall = true;
  theLogger.mOnAppend = [&] {
    if (theFirstCall) {
      theFirstCall = false;
      qvLog_ReloadConfig();
      EXPECT_TRUE(LogText(2, 0, "nested"));
    }
  };
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_F("%s", "outer");
  theLogger.mPieces.clear();
  qvLog_Append_F("%d", 1);
  AppendList("%d", 1);
  qvLog_Append_FML("%d\n", 1);
  qvLog_Append_FN("%d", 1);
  qvLog_Append_B("x", 1);
  qvLog_Append_U(L"x", 1);
  EXPECT_THAT(theLogger.mPieces, ElementsAre());
  qvLog_End(theData);
  EXPECT_EQ(1, theLogger.mEnds) << "of the nested message";
}

TEST(qvLog, LoggingLeavesErrnoAlone) {
  struct SpoilingLogger : RecordingLogger {
    SpoilingLogger() : RecordingLogger(3) {}
    void EndLog(qvLogDataEx*) override { errno = ENOSPC; }
  };
  SpoilingLogger theLogger;
  theLogger.mOnAppend = [] { errno = ENOSPC; };
  theLogger.mfWritesPrefix = true;
  errno = 77;
  qvLogData* theData = qvLog_Begin(1, 0);
  EXPECT_EQ(77, errno);
  qvLog_Append_F("%d", 1);
  qvLog_Append_FML("%d\n", 1);
  qvLog_Append_FN("%d", 1);
  qvLog_Append_B("x", 1);
  qvLog_Append_U(L"x", 1);
  EXPECT_EQ(77, errno);
  AppendList("%d", 1);
  EXPECT_EQ(77, errno);
  qvLog_End(theData);
  EXPECT_EQ(77, errno);
  qvLog_WillLog(1, 1);
  qvLog_ReloadConfig();
  EXPECT_EQ(77, errno);
}
