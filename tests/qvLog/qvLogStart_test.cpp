// What others see while one thread initialises the framework. This file has its own readlink, which the
// library calls when it looks for its configuration; a test steps in there.

#include <errno.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <thread>

#include "qvLog/qvLogger_File.h"
#include "qvLog/qvMainLogger_p.h"
#include "support/FreshProcess.h"
#include "support/RecordingLogger.h"
#include "support/SleepingThread.h"

namespace {

std::function<void()> sOnFirstReadlink;
bool sfLinksCannotBeRead = false;

}  // namespace

extern "C" ssize_t readlink(const char* aPath, char* aBuffer, size_t aSize) noexcept {
  if (sOnFirstReadlink) {
    std::function<void()> theAction;
    theAction.swap(sOnFirstReadlink);
    theAction();
  }
  if (sfLinksCannotBeRead) {
    errno = EACCES;
    return -1;
  }
  return readlinkat(AT_FDCWD, aPath, aBuffer, aSize);
}

TEST(qvLogStart, WhileAThreadInitialisesMessagesAreDroppedAndNobodyWaits) {
  IN_FRESH_PROCESS({
    RecordingLogger* theLogger = nullptr;
    sOnFirstReadlink = [&] {
      theLogger = new RecordingLogger(5);  // opens the gate
      EXPECT_EQ(5, _qvLog_Level);
      std::thread([] {
        EXPECT_EQ(nullptr, qvLog_Begin(1, 0)) << "in another thread";
        EXPECT_EQ(0, qvLog_WillLog(1, 0)) << "in another thread";
      }).join();
      EXPECT_EQ(nullptr, qvLog_Begin(1, 0)) << "in the thread that initialises";
      EXPECT_EQ(0, qvLog_WillLog(1, 0)) << "in the thread that initialises";
    };
    qvLog_WillLog(1, 0);
    EXPECT_TRUE(LogText(1, 0, "afterwards"));
    EXPECT_THAT(theLogger->mMessages, testing::ElementsAre("afterwards"));
  });
}

TEST(qvLogStart, WhileAThreadInitialisesAFrameworkOperationOfAnotherWaitsUntilTheLoggersExist) {
  IN_FRESH_PROCESS({
    std::unique_ptr<SleepingThread> theOther;
    bool theLoggerExisted = false;
    sOnFirstReadlink = [&] {
      EXPECT_EQ(nullptr, qvFileLogger::sInstance);
      theOther.reset(new SleepingThread([&] {
        qvLogger::LockFramework();
        theLoggerExisted = qvFileLogger::sInstance != nullptr;
        qvLogger::UnlockFramework();
      }));
    };
    qvLog_ReloadConfig();
    ASSERT_NE(nullptr, theOther);
    theOther.reset();
    EXPECT_TRUE(theLoggerExisted);
  });
}

TEST(qvLogStart, AProcessWhoseProgramIsUnknownIsNamedByItsIdForGood) {
  IN_FRESH_PROCESS({
    char theExpected[16];
    snprintf(theExpected, sizeof(theExpected), "%08x", static_cast<unsigned int>(getpid()));
    sfLinksCannotBeRead = true;
    EXPECT_STREQ(theExpected, qvLogger::CurrentProcessName());
    sfLinksCannotBeRead = false;
    EXPECT_STREQ(theExpected, qvLogger::CurrentProcessName());
  });
}
