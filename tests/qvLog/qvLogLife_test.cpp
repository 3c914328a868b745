// How the framework starts and ends: qvLog/qvLog.cpp.

#include <errno.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <atomic>
#include <thread>
#include <vector>

#include "qvLog/qvLoggerConfig_p.h"
#include "qvLog/qvLogger_File.h"
#include "qvLog/qvLogger_Func.h"
#include "qvLog/qvLogger_qvLogd.h"
#include "qvLog/qvMainLogger_p.h"
#include "support/FreshProcess.h"
#include "support/NoLogDaemon.h"
#include "support/RecordingLogger.h"
#include "support/ScratchFolder.h"
#include "support/SleepingThread.h"

namespace {

void IgnoreMessage(void*, const qvLogData*, const char*, size_t) {}

bool IsInitialised() { return qvMainLogger::Current() != nullptr; }

}  // namespace

TEST(qvLogLife, BeforeTheFirstUseTheGateIsWideOpenAndNothingExists) {
  EXPECT_EQ(65535, _qvLog_Level);
  EXPECT_FALSE(IsInitialised());
  EXPECT_EQ(nullptr, qvLogger::sHead);
  EXPECT_EQ(nullptr, qvFileLogger::sInstance);
  EXPECT_EQ(nullptr, qvLogdLogger::sInstance);
  EXPECT_EQ(nullptr, qvFuncLogger::sInstance);
  EXPECT_EQ(nullptr, _qvLog_gData.mFormatted);
  EXPECT_EQ(0, _gfqvLog_gDataInitialized);
  EXPECT_EQ(1, _gfDefaultIsToLog);
  EXPECT_FALSE(_gfAutoPopulate);
  EXPECT_EQ(0, _gfDateActivate);
}

TEST(qvLogLife, AMessageOfLevel65535NeverInitialises) {
  IN_FRESH_PROCESS({
    EXPECT_EQ(nullptr, qvLog_Begin(65535, 0));
    EXPECT_EQ(0, qvLog_WillLog(65535, 0));
    EXPECT_FALSE(IsInitialised());
  });
}

TEST(qvLogLife, EachOfTheFirstCallsInitialises) {
  struct {
    const char* mWhat;
    void (*mCall)();
  } kCalls[] = {
      {"qvLog_Begin", [] { EXPECT_EQ(nullptr, qvLog_Begin(65534, 0)); }},
      {"qvLog_WillLog", [] { EXPECT_EQ(0, qvLog_WillLog(65534, 0)); }},
      {"qvLog_Init", [] { qvLog_Init(); }},
      {"qvLog_ReloadConfig", [] { qvLog_ReloadConfig(); }},
      {"qvLog_SetLogFunc", [] { qvLog_SetLogFunc(0, IgnoreMessage, nullptr); }},
      {"qvLog_NeverLog", [] { qvLog_NeverLog(); }},
      {"a logger's constructor", [] { RecordingLogger theLogger(2); }},
      {"a framework lock", [] { EXPECT_FALSE(qvLogger::NeverLog()); }},
  };
  for (const auto& theCase : kCalls) {
    SCOPED_TRACE(theCase.mWhat);
    IN_FRESH_PROCESS({
      theCase.mCall();
      EXPECT_TRUE(IsInitialised());
      EXPECT_EQ(qvLogger::NeverLog() ? 0 : 1, _gfqvLog_gDataInitialized) << "the first logger sets it";
    });
  }
}

TEST(qvLogLife, CallsThatStartOrEndTheFrameworkLeaveErrnoAlone) {
  struct {
    const char* mWhat;
    void (*mCall)();
  } kCalls[] = {
      {"qvLog_Init", [] { qvLog_Init(); }},
      {"qvLog_SetLogFunc", [] { qvLog_SetLogFunc(2, IgnoreMessage, nullptr); }},
      {"qvLog_Term", [] { qvLog_Term(); }},
  };
  for (const auto& theCase : kCalls) {
    SCOPED_TRACE(theCase.mWhat);
    IN_FRESH_PROCESS({
      errno = 77;
      theCase.mCall();
      EXPECT_EQ(77, errno);
    });
  }
}

TEST(qvLogLife, InitialisationCreatesTheFileLoggerAndThenTheLogDaemonLogger) {
  IN_FRESH_PROCESS({
    qvLog_ReloadConfig();
    ASSERT_NE(nullptr, qvFileLogger::sInstance);
    ASSERT_NE(nullptr, qvLogdLogger::sInstance);
    EXPECT_EQ(qvLogdLogger::sInstance, qvLogger::sHead) << "newest first";
    EXPECT_EQ(qvFileLogger::sInstance, qvLogger::sHead->mNext);
    EXPECT_EQ(nullptr, qvFileLogger::sInstance->mNext);
  });
}

TEST(qvLogLife, InitialisationLeavesTheGateAtTheHighestThreshold) {
  IN_FRESH_PROCESS({
    qvLog_ReloadConfig();
    qvLogLevel theHighest = 0;
    for (qvLogger* theLogger = qvLogger::sHead; theLogger != nullptr; theLogger = theLogger->mNext) {
      theHighest = theLogger->GetLevel() > theHighest ? theLogger->GetLevel() : theHighest;
    }
    EXPECT_EQ(theHighest, _qvLog_Level);
  });
}

TEST(qvLogLife, OneOfManyThreadsInitialises) {
  IN_FRESH_PROCESS({
    std::atomic<int> theWaiting{8};
    std::vector<std::thread> theThreads;
    for (int i = 0; i < 8; ++i) {
      theThreads.emplace_back([&] {
        --theWaiting;
        while (theWaiting > 0) {
        }
        qvLog_ReloadConfig();
        EXPECT_TRUE(IsInitialised());
        qvLog_WillLog(1, 0);
      });
    }
    for (std::thread& theThread : theThreads) {
      theThread.join();
    }
    EXPECT_NE(nullptr, qvFileLogger::sInstance);
  });
}

TEST(qvLogLife, TermDeletesEverythingButTheGateAndTheFlags) {
  IN_FRESH_PROCESS({
    qvLog_SetLogFunc(6, IgnoreMessage, nullptr);
    EXPECT_EQ(6, _qvLog_Level);
    qvLog_Term();
    EXPECT_FALSE(IsInitialised());
    EXPECT_EQ(nullptr, qvLogger::sHead);
    EXPECT_EQ(nullptr, qvFileLogger::sInstance);
    EXPECT_EQ(nullptr, qvLogdLogger::sInstance);
    EXPECT_EQ(nullptr, qvFuncLogger::sInstance);
    EXPECT_EQ(0, _gfqvLog_gDataInitialized);
    EXPECT_EQ(nullptr, _qvLog_gData.mFormatted);
    EXPECT_EQ(6, _qvLog_Level);
  });
}

TEST(qvLogLife, AMessageAfterTermInitialisesAgain) {
  IN_FRESH_PROCESS({
    qvLog_SetLogFunc(6, IgnoreMessage, nullptr);
    qvLog_Term();
    qvLog_Begin(1, 0);
    EXPECT_TRUE(IsInitialised());
    EXPECT_NE(nullptr, qvFileLogger::sInstance);
    EXPECT_NE(nullptr, qvLogdLogger::sInstance);
    EXPECT_EQ(nullptr, qvFuncLogger::sInstance);
    EXPECT_EQ(1, _gfqvLog_gDataInitialized);
    EXPECT_LT(_qvLog_Level, 6) << "set anew by the loggers that exist now";
    RecordingLogger theLogger(2);
    EXPECT_TRUE(LogText(1, 0, "x"));
  });
}

TEST(qvLogLife, AfterTermAMessageAboveTheStandingGateDoesNotInitialise) {
  IN_FRESH_PROCESS({
    qvLog_SetLogFunc(3, IgnoreMessage, nullptr);
    qvLog_Term();
    EXPECT_EQ(nullptr, qvLog_Begin(3, 0));
    EXPECT_FALSE(IsInitialised());
  });
}

TEST(qvLogLife, TermMayBeCalledAgainAndAgain) {
  IN_FRESH_PROCESS({
    for (int i = 0; i < 3; ++i) {
      qvLog_SetLogFunc(3, IgnoreMessage, nullptr);
      EXPECT_TRUE(LogText(1, 0, "x"));
      qvLog_Term();
      qvLog_Term();
    }
  });
}

TEST(qvLogLife, AThreadThatHeldTheLockDuringTermNeedNotWaitForAnotherToInitialise) {
  IN_FRESH_PROCESS({
    qvLogger::LockFramework();
    qvLog_Term();
    {
      SleepingThread theOther([] { qvLog_ReloadConfig(); });  // has begun to initialise and needs the lock
      EXPECT_FALSE(IsInitialised());
      qvLog_ReloadConfig();
      EXPECT_TRUE(IsInitialised());
      EXPECT_NE(nullptr, qvFileLogger::sInstance);
      qvLogger::UnlockFramework();
    }
    EXPECT_TRUE(IsInitialised());
    EXPECT_NE(nullptr, qvFileLogger::sInstance);
  });
}

TEST(qvLogLife, AThreadThatFindsTheFrameworkMadeAndEndedAgainMakesItAnew) {
  IN_FRESH_PROCESS({
    qvLogger::LockFramework();
    qvLog_Term();
    {
      SleepingThread theOther([] { qvLog_ReloadConfig(); });
      qvLog_ReloadConfig();
      qvLog_Term();
      EXPECT_FALSE(IsInitialised());
      qvLogger::UnlockFramework();
    }
    EXPECT_TRUE(IsInitialised());
    EXPECT_NE(nullptr, qvFileLogger::sInstance);
  });
}

TEST(qvLogKept, TermInitialisesAFrameworkThatWasNeverUsed) {
  IN_FRESH_PROCESS({
    EXPECT_EQ(65535, _qvLog_Level);
    qvLog_Term();
    EXPECT_NE(65535, _qvLog_Level) << "the gate that the loggers left";
    EXPECT_EQ(1024, _qvLog_gData.mSizeofFormatted) << "the options were read";
    EXPECT_FALSE(IsInitialised());
  });
}

TEST(qvLogKept, InitLeavesTheCallingThreadInsideTheLogLock) {
  IN_FRESH_PROCESS({
    RecordingLogger theLogger(2);
    EXPECT_TRUE(LogText(1, 0, "before"));
    qvLog_Init();
    EXPECT_FALSE(LogText(1, 0, "dropped as nested"));
    {
      SleepingThread theOther([] { EXPECT_TRUE(LogText(1, 0, "other thread")); });
      EXPECT_THAT(theLogger.mMessages, testing::ElementsAre("before")) << "the other thread waits";
      qvLog_ReloadConfig();  // clears the mark, and gives back no more than it took
      EXPECT_TRUE(LogText(1, 0, "after"));
      EXPECT_THAT(theLogger.mMessages, testing::ElementsAre("before", "after")) << "and goes on waiting";
      qvLogger::UnlockFramework();
    }
    EXPECT_THAT(theLogger.mMessages, testing::ElementsAre("before", "after", "other thread"));
  });
}

TEST(qvLogLife, ASecondInitTakesTheLogLockNoSecondTime) {
  IN_FRESH_PROCESS({
    RecordingLogger theLogger(2);
    qvLog_Init();
    qvLog_Init();
    qvLogger::UnlockFramework();
    std::thread([] { EXPECT_TRUE(LogText(1, 0, "x")) << "the lock is free"; }).join();
  });
}

TEST(qvLogLife, NeverLogDeletesAllLoggersForGood) {
  IN_FRESH_PROCESS({
    qvLog_SetLogFunc(6, IgnoreMessage, nullptr);
    EXPECT_FALSE(qvLogger::NeverLog());
    qvLog_NeverLog();
    EXPECT_TRUE(qvLogger::NeverLog());
    EXPECT_EQ(nullptr, qvLogger::sHead);
    EXPECT_EQ(6, _qvLog_Level) << "the gate is not lowered";
    EXPECT_EQ(nullptr, qvLog_Begin(1, 0));
    qvLog_SetLogFunc(6, IgnoreMessage, nullptr);
    qvLogger_File_Init();
    qvLogger_qvLogd_Init();
    EXPECT_EQ(nullptr, qvLogger::sHead);
    qvLog_Term();
    EXPECT_EQ(nullptr, qvLog_Begin(1, 0));
    EXPECT_EQ(nullptr, qvLogger::sHead) << "not even by a new initialisation";
    EXPECT_TRUE(qvLogger::NeverLog());
  });
}

TEST(qvLogLife, NeverLogAsTheFirstCallCreatesNoLogger) {
  IN_FRESH_PROCESS({
    qvLog_NeverLog();
    EXPECT_EQ(nullptr, qvLogger::sHead);
    EXPECT_EQ(0, _gfqvLog_gDataInitialized) << "no logger has ever existed";
  });
}

TEST(qvLogLife, TheEndOfTheProcessRunsTheDestructorsOfTheLoggers) {
  struct Mortal : RecordingLogger {
    Mortal() : RecordingLogger(2) {}
    ~Mortal() override { (void)!write(STDOUT_FILENO, "deleted\n", 8); }
  };
  ChildResult theResult = RunInChild([] {
    new Mortal;
    exit(0);
  });
  EXPECT_EQ("deleted\n", theResult.mStdout);
}

#if defined(QVLOG_TEST_LIBRARY)

TEST(qvLogLife, UnloadingTheLibraryClosesTheOutputs) {
  ScratchFolder theFolder;
  std::string theProgram = CopyTestProgram("LogUnload", theFolder.Path(), "box");
  WriteWholeFile(theFolder.File("qvLog.box.ini"),
                 std::string(kNoLogDaemon) + "[file]\nlevel=all\nfile=out.txt\n");
  EXPECT_EQ(0, RunProgram(theProgram, {QVLOG_TEST_LIBRARY}).mExitCode);
  // A line that is not complete stays in the stream's buffer until the stream is closed.
  EXPECT_THAT(ReadWholeFile(theFolder.File("out.txt")),
              testing::MatchesRegex("NAME: box \\(log started\\)\nE .*\\|DEFAULT    partial"));
}

#endif
