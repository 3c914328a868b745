// The statements that hold themselves back, in C++, and in C by the programs LogMoreAt*. The clock of the
// library is this file's.

#define QVLOGLEVEL QVLOGLEVEL_ALL
#include "qvLog/qvLogMore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "support/ChildProcess.h"
#include "support/NoLogDaemon.h"
#include "support/RecordingLogger.h"
#include "support/ScratchFolder.h"

QVLOG_WITH_MODULE_IF(RENDERER, 1);

static std::atomic<uint32> sTick{1000};

extern "C" uint32 __wrap_qvTime_GetTickCount(void) { return sTick; }

namespace {

using testing::ElementsAre;
using testing::EndsWith;

const int kThreads = 8;
const int kRounds = 1000;

std::string Output(const std::string& aProgram) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("qvLog." + aProgram + ".ini"), kNoLogDaemon);
  ChildResult theResult = RunProgram(CopyTestProgram(aProgram, theFolder.Path()));
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("", theResult.mStderr);
  return theResult.mStdout;
}

// Runs the work in all threads, kRounds times in each, starting at the same moment.
void RunInThreads(const std::function<void()>& aWork) {
  std::atomic<bool> thefGo{false};
  std::vector<std::thread> theThreads;
  for (int i = 0; i < kThreads; ++i) {
    theThreads.emplace_back([&] {
      while (!thefGo) {
        std::this_thread::yield();
      }
      for (int theRound = 0; theRound < kRounds; ++theRound) {
        aWork();
      }
    });
  }
  thefGo = true;
  for (std::thread& theThread : theThreads) {
    theThread.join();
  }
}

template <class Number>
void LogOnceForType() {
  QV_ERR_ONCE(F("%u bytes", static_cast<unsigned>(sizeof(Number))));
}

}  // namespace

TEST(qvLogMore, AtCompileTimeLevel0NothingIsLeftOfTheStatements) {
  EXPECT_EQ("the library is not linked\n0 evaluated\n", Output("LogMoreAtLevel0"));
}

TEST(qvLogMore, AtCompileTimeLevel3ErrorsAndWarningsAreCompiledIn) {
  EXPECT_EQ(
      "1 28 1 QV_ERR_ONCE 0\n"
      "2 28 1 QV_WARN_ONCE 0\n"
      "1 28 1 QV_ERR_EVERY 0\n"
      "2 28 1 QV_WARN_EVERY 0\n"
      "1 28 1 QV_ERR_EVERY_MS 0\n"
      "2 28 1 QV_WARN_EVERY_MS 0\n"
      "2 21 1 QVXLOG_ONCE 0\n"
      "2 28 1 QV_WARN_IF 1\n"
      "1 28 1 QV_ERR_IF 2\n"
      "1 28 1 QV_ERR_EVERY 2\n"
      "2 28 1 QV_WARN_EVERY 2\n"
      "16 evaluated\n",
      Output("LogMoreAtLevel3"));
}

TEST(qvLogMore, AStatementStoresItsFileAndLineAndTheModuleOfTheFile) {
  RecordingLogger theLogger(5);
  QV_WARN_ONCE(F("%s", "x"));
  EXPECT_EQ(static_cast<uint32>(__LINE__ - 1), theLogger.mRecord.mLine);
  EXPECT_THAT(theLogger.mRecord.mFile, EndsWith("qvLogMore_test.cpp"));
  EXPECT_EQ(QVLOG_M_RENDERER, theLogger.mRecord.mModule);
  EXPECT_EQ(QVLOGLEVEL_WARNING, theLogger.mRecord.mLevel);
}

TEST(qvLogMore, EveryStatementHasAStateOfItsOwn) {
  RecordingLogger theLogger(5);
  for (int i = 0; i < 2; ++i) {
    QV_ERR_ONCE(F("%s", "a"));
    QV_ERR_ONCE(F("%s", "b"));
    LogOnceForType<int32>();
    LogOnceForType<int64>();
  }
  EXPECT_THAT(theLogger.mMessages, ElementsAre("a", "b", "4 bytes", "8 bytes"));
}

TEST(qvLogMore, OnceWaitsForALevelThatIsOn) {
  RecordingLogger theLogger(2);
  for (qvLogLevel theThreshold : {2, 3, 3}) {
    theLogger.Threshold(theThreshold);
    QV_WARN_ONCE(F("%d", theThreshold));
  }
  EXPECT_THAT(theLogger.mMessages, ElementsAre("3"));
}

TEST(qvLogMore, OnceWaitsForAModuleThatIsOn) {
  RecordingLogger theLogger(5);
  theLogger.mInactiveModules = {QVLOG_M_TUNER};
  for (int i = 0; i < 3; ++i) {
    QVXLOG_ONCE(QVLOGLEVEL_WARNING, QVLOG_M_TUNER, F("%d", i));
    theLogger.mInactiveModules.clear();
    theLogger.ReloadConfig();
  }
  EXPECT_THAT(theLogger.mMessages, ElementsAre("1"));
}

TEST(qvLogMore, EveryLogsTheFirstAndThenEachNth) {
  RecordingLogger theLogger(5);
  for (int i = 0; i < 8; ++i) {
    QV_INFO_EVERY(3, F("%d", i));
  }
  EXPECT_THAT(theLogger.mMessages, ElementsAre("0", "3", "6"));
}

TEST(qvLogMore, EveryOneAndEveryZerothIsEvery) {
  RecordingLogger theLogger(5);
  for (int i = 0; i < 2; ++i) {
    QV_INFO_EVERY(1, F("one %d", i));
    QV_INFO_EVERY(0, F("zero %d", i));
  }
  EXPECT_THAT(theLogger.mMessages, ElementsAre("one 0", "zero 0", "one 1", "zero 1"));
}

TEST(qvLogMore, EveryDoesNotCountWhileTheLevelIsOff) {
  RecordingLogger theLogger(2);
  for (int i = 0; i < 4; ++i) {
    theLogger.Threshold(i == 1 ? 2 : 4);
    QV_INFO_EVERY(2, F("%d", i));
  }
  EXPECT_THAT(theLogger.mMessages, ElementsAre("0", "3"));
}

TEST(qvLogMore, EveryMSLogsWhenTheTimeHasPassedSinceItsLastMessage) {
  RecordingLogger theLogger(5);
  for (uint32 theTick : {5000, 5099, 5100, 5150, 5199, 5250, 5349, 5350}) {
    sTick = theTick;
    QV_INFO_EVERY_MS(100, F("%u", theTick));
  }
  EXPECT_THAT(theLogger.mMessages, ElementsAre("5000", "5100", "5250", "5350"));
}

TEST(qvLogMore, EveryMSGoesOnWhereTheClockStartsAgain) {
  RecordingLogger theLogger(5);
  for (uint32 theTick : {0xFFFFFFFEu, 0xFFFFFFFFu, 0u, 97u, 98u, 100u}) {
    sTick = theTick;
    QV_INFO_EVERY_MS(100, F("%u", theTick));
  }
  EXPECT_THAT(theLogger.mMessages, ElementsAre("4294967294", "98"));
}

TEST(qvLogMore, EveryMSRemembersAMessageAtTickZero) {
  RecordingLogger theLogger(5);
  for (uint32 theTick : {0u, 0u, 1u, 100u, 101u}) {
    sTick = theTick;
    QV_INFO_EVERY_MS(100, F("%u", theTick));
  }
  EXPECT_THAT(theLogger.mMessages, ElementsAre("0", "101"));
}

TEST(qvLogMore, EveryZeroMSIsEvery) {
  RecordingLogger theLogger(5);
  for (int i = 0; i < 2; ++i) {
    QV_INFO_EVERY_MS(0, F("%d", i));
  }
  EXPECT_THAT(theLogger.mMessages, ElementsAre("0", "1"));
}

TEST(qvLogMore, ConditionIsEvaluatedOnlyWhereTheLevelIsOn) {
  RecordingLogger theLogger(3);
  int theEvaluated = 0;
  QV_INFO_IF(++theEvaluated == 1, F("%s", "off"));
  EXPECT_EQ(0, theEvaluated);
  QV_WARN_IF(++theEvaluated == 1, F("%s", "on"));
  EXPECT_EQ(1, theEvaluated);
  EXPECT_THAT(theLogger.mMessages, ElementsAre("on"));
}

TEST(qvLogMore, AMessageThatIsHeldBackEvaluatesNoArgument) {
  RecordingLogger theLogger(5);
  int theEvaluated = 0;
  sTick = 1000;
  for (int i = 0; i < 3; ++i) {
    QV_ERR_ONCE(F("%d", ++theEvaluated));
    QV_ERR_EVERY(3, F("%d", ++theEvaluated));
    QV_ERR_EVERY_MS(100, F("%d", ++theEvaluated));
    QV_ERR_IF(i == 1, F("%d", ++theEvaluated));
  }
  EXPECT_EQ(4, theEvaluated);
}

TEST(qvLogMore, AStatementThatHoldsBackTakesNoLock) {
  RecordingLogger theLogger(5);
  const auto kLog = [](bool afCondition) {
    QV_ERR_ONCE(F("%s", "once"));
    QV_ERR_EVERY(2, F("%s", "every"));
    QV_ERR_EVERY_MS(100, F("%s", "ms"));
    QV_ERR_IF(afCondition, F("%s", "if"));
  };
  sTick = 1000;
  kLog(true);
  qvLogger::LockFramework();
  std::thread([&] { kLog(false); }).join();
  qvLogger::UnlockFramework();
  EXPECT_THAT(theLogger.mMessages, ElementsAre("once", "every", "ms", "if"));
}

TEST(qvLogMoreThreads, OfManyThreadsOneLogsOnce) {
  RecordingLogger theLogger(5);
  RunInThreads([] { QV_ERR_ONCE(F("%s", "x")); });
  EXPECT_EQ(1u, theLogger.mMessages.size());
}

TEST(qvLogMoreThreads, EveryNthOfAllThreadsIsLogged) {
  RecordingLogger theLogger(5);
  RunInThreads([] { QV_ERR_EVERY(100, F("%s", "x")); });
  EXPECT_EQ(static_cast<size_t>(kThreads * kRounds / 100), theLogger.mMessages.size());
}

TEST(qvLogMoreThreads, NoTwoMessagesAreCloserThanTheirTime) {
  RecordingLogger theLogger(5);
  sTick = 1000;
  RunInThreads([] {
    ++sTick;
    QV_ERR_EVERY_MS(100, F("%s", "x"));
  });
  // 8,000 ticks have passed. The last call has found the last message less than 100 ticks ago, or was one.
  EXPECT_LE(theLogger.mMessages.size(), 81u);
  EXPECT_GE(theLogger.mMessages.size(), 2u);
}

TEST(qvLogMoreThreads, AtOneTickOneThreadLogs) {
  RecordingLogger theLogger(5);
  sTick = 1000;
  RunInThreads([] { QV_ERR_EVERY_MS(1, F("%s", "x")); });
  EXPECT_EQ(1u, theLogger.mMessages.size());
}
