// Messages that every logger refuses are refused without the log lock, until something changes.

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>

#include "qvLog/qvLogger_File.h"
#include "support/RecordingLogger.h"

namespace {

const qvLogModule kSilentModule = 4;  // by the module table
const qvLogModule kActiveModule = 5;

// The file logger takes everything, and its line goes nowhere.
class qvLogRefusals : public testing::Test {
 protected:
  qvLogRefusals() {
    FileThreshold(65535);
    qvFileLogger::sInstance->mFile = fopen("/dev/null", "w");
  }

  static void FileThreshold(qvLogLevel aThreshold) {
    qvLogger::LockFramework();
    qvFileLogger::sInstance->ChangeLevel(aThreshold);
    qvLogger::UnlockFramework();
  }
};

void Ignore(void*, const qvLogData*, const char*, size_t) {}

}  // namespace

TEST_F(qvLogRefusals, AMessageOfASilentModuleDoesNotWaitForTheLogLock) {
  ASSERT_FALSE(LogText(3, kSilentModule, "the first one asks the loggers"));
  qvLogger::LockFramework();
  auto theAnswer = std::async(std::launch::async, [] { return LogText(3, kSilentModule, "x"); });
  EXPECT_EQ(std::future_status::ready, theAnswer.wait_for(std::chrono::seconds(60)));
  qvLogger::UnlockFramework();
  EXPECT_FALSE(theAnswer.get());
}

TEST_F(qvLogRefusals, OtherModulesAreTaken) {
  ASSERT_FALSE(LogText(3, kSilentModule, "x"));
  EXPECT_TRUE(LogText(3, kActiveModule, "x\n"));
}

TEST_F(qvLogRefusals, AModuleThatIsSwitchedOnIsTakenAfterAReload) {
  ASSERT_FALSE(LogText(3, kSilentModule, "x"));
  qvFileLogger::sInstance->SetOptions(qvLogger::OPT_NO_CONFIG);
  qvLog_ReloadConfig();
  EXPECT_FALSE(LogText(3, kSilentModule, "x")) << "it is off by default";
  qvLogger::LockFramework();
  qvFileLogger::sInstance->ReloadConfig();
  qvFileLogger::sInstance->mModulesInfo[kSilentModule] = qvLogger::MODULE_SEEN | qvLogger::MODULE_ACTIVE;
  qvLogger::UnlockFramework();
  EXPECT_TRUE(LogText(3, kSilentModule, "x\n"));
}

TEST_F(qvLogRefusals, AMoreSevereMessageIsNotRefusedWithTheOthers) {
  FileThreshold(3);
  RecordingLogger(65535);  // leaves the gate open
  ASSERT_FALSE(LogText(3, kActiveModule, "x"));
  ASSERT_FALSE(LogText(4, kActiveModule, "x"));
  EXPECT_TRUE(LogText(2, kActiveModule, "x\n"));
}

TEST_F(qvLogRefusals, ARaisedThresholdEndsThem) {
  FileThreshold(3);
  RecordingLogger(65535);  // leaves the gate open
  ASSERT_FALSE(LogText(3, kActiveModule, "x"));
  FileThreshold(4);
  EXPECT_TRUE(LogText(3, kActiveModule, "x\n"));
}

TEST_F(qvLogRefusals, ALoggerThatEntersTheChainEndsThem) {
  ASSERT_FALSE(LogText(3, kSilentModule, "x"));
  struct TakesAll : RecordingLogger {
    TakesAll() : RecordingLogger(65535, false) {}
    bool IsModuleActive(qvLogModule) override { return true; }
  };
  TakesAll theLogger;  // its threshold is set before it enters
  qvLogger::AddLogger(&theLogger);
  EXPECT_TRUE(LogText(3, kSilentModule, "x\n"));
}

TEST_F(qvLogRefusals, AThresholdWrittenUnderTheFrameworkLockEndsThem) {
  FileThreshold(3);
  RecordingLogger(65535);  // leaves the gate open
  ASSERT_FALSE(LogText(3, kActiveModule, "x"));
  qvLogger::LockFramework();
  qvFileLogger::sInstance->mLevel = 4;
  qvLogger::UnlockFramework();
  EXPECT_TRUE(LogText(3, kActiveModule, "x\n"));
}

TEST_F(qvLogRefusals, AModuleSwitchWrittenUnderTheFrameworkLockEndsThem) {
  ASSERT_FALSE(LogText(3, kSilentModule, "x"));
  qvLogger::LockFramework();
  qvFileLogger::sInstance->mModulesInfo[kSilentModule] = qvLogger::MODULE_SEEN | qvLogger::MODULE_ACTIVE;
  qvLogger::UnlockFramework();
  EXPECT_TRUE(LogText(3, kSilentModule, "x\n"));
}

TEST_F(qvLogRefusals, ALoggerLinkedByHandUnderTheFrameworkLockEndsThem) {
  RecordingLogger theLogger(65535, false);
  theLogger.mModulesInfo[kSilentModule] = qvLogger::MODULE_SEEN | qvLogger::MODULE_ACTIVE;
  ASSERT_FALSE(LogText(3, kSilentModule, "x"));
  qvLogger::LockFramework();
  theLogger.mNext = qvLogger::sHead;
  qvLogger::sHead = &theLogger;
  qvLogger::UnlockFramework();
  EXPECT_TRUE(LogText(3, kSilentModule, "x\n"));
}

TEST_F(qvLogRefusals, ALoggerOfTheApplicationIsAskedEveryTime) {
  RecordingLogger theLogger(65535);
  for (int i = 1; i <= 3; ++i) {
    EXPECT_FALSE(LogText(3, kSilentModule, "x"));
    EXPECT_EQ(i, theLogger.mModuleQuestions);
  }
}

TEST_F(qvLogRefusals, ACallbackThatIsRegisteredEndsThem) {
  FileThreshold(2);
  ASSERT_TRUE(LogText(1, kActiveModule, "x\n"));
  RecordingLogger(65535);  // leaves the gate open
  ASSERT_FALSE(LogText(3, kActiveModule, "x"));
  qvLog_SetLogFunc(4, Ignore, nullptr);
  EXPECT_TRUE(LogText(3, kActiveModule, "x"));
}

// A callback holds the framework lock already, and nothing is forgotten at the end of a message.
TEST_F(qvLogRefusals, AThresholdThatACallbackRaisesEndsThem) {
  FileThreshold(3);
  qvLog_SetLogFunc(
      2, [](void*, const qvLogData*, const char*, size_t) { qvFileLogger::sInstance->ChangeLevel(4); },
      nullptr);
  RecordingLogger(65535);  // leaves the gate open
  ASSERT_FALSE(LogText(3, kActiveModule, "x"));
  ASSERT_TRUE(LogText(1, kActiveModule, "x\n"));
  EXPECT_TRUE(LogText(3, kActiveModule, "x\n"));
}

TEST_F(qvLogRefusals, AReloadOfOneLoggerInACallbackEndsThem) {
  qvLog_SetLogFunc(
      2,
      [](void*, const qvLogData*, const char*, size_t) {
        qvFileLogger::sInstance->ReloadConfig();
        qvFileLogger::sInstance->mModulesInfo[kSilentModule] =
            qvLogger::MODULE_SEEN | qvLogger::MODULE_ACTIVE;
      },
      nullptr);
  ASSERT_FALSE(LogText(3, kSilentModule, "x"));
  ASSERT_TRUE(LogText(1, kActiveModule, "x\n"));
  EXPECT_TRUE(LogText(3, kSilentModule, "x\n"));
}

TEST_F(qvLogRefusals, AFrameworkThatEndedIsInitialisedByTheNextMessage) {
  ASSERT_FALSE(LogText(3, kSilentModule, "x"));
  qvLog_Term();
  EXPECT_EQ(nullptr, qvFileLogger::sInstance);
  LogText(3, kSilentModule, "x");
  EXPECT_NE(nullptr, qvFileLogger::sInstance);
}

TEST_F(qvLogRefusals, ModulesBeyondTheTableAreNeverRefused) {
  for (int i = 0; i < 2; ++i) {
    EXPECT_TRUE(LogText(3, QVLOG_MAX_MODULES, "x\n"));
    EXPECT_TRUE(LogText(3, 65535, "x\n"));
  }
}
