// Processes that fork while they log. This file has its own pthread_mutex_init, which the library calls when
// it makes the log lock; a test steps in there.

#include <dlfcn.h>
#include <errno.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <memory>

#include "qvLog/qvLogger_Func.h"
#include "support/FreshProcess.h"
#include "support/LogProgram.h"
#include "support/RecordingLogger.h"
#include "support/SleepingThread.h"

namespace {

using testing::ElementsAre;
using testing::MatchesRegex;

constexpr unsigned int kHangSeconds = 30;
constexpr char kPrefix[] = "E [0-9:]{12}\\|[0-9a-f]{8}\\|DEFAULT    ";

// Forks and waits for the child, which exits with 0 if aBody is true there. Returns its status.
template <class Body>
int StatusOfChild(const Body& aBody) {
  pid_t theChild = fork();
  if (theChild == 0) {
    alarm(kHangSeconds);
    _exit(aBody() ? 0 : 1);
  }
  int theStatus = -1;
  waitpid(theChild, &theStatus, 0);
  return theStatus;
}

std::function<void()> sOnMutexInit;

pid_t sChild = -1;

void ForkInCallback(void*, const qvLogData*, const char*, size_t) {
  if (sChild == -1) {
    sChild = fork();
  }
}

int sCalls = 0;

void Count(void*, const qvLogData*, const char*, size_t) { ++sCalls; }

}  // namespace

extern "C" int pthread_mutex_init(pthread_mutex_t* aMutex, const pthread_mutexattr_t* anAttribute) noexcept {
  if (sOnMutexInit) {
    std::function<void()> theAction;
    theAction.swap(sOnMutexInit);
    theAction();
  }
  using Function = int (*)(pthread_mutex_t*, const pthread_mutexattr_t*);
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, "pthread_mutex_init"))(aMutex, anAttribute);
}

TEST(qvLogFork, AForkWaitsForTheMessageOfAnotherThreadAndTheChildCanLog) {
  RecordingLogger theLogger(2);
  int theStatus = -1;
  qvLogData* theData = qvLog_Begin(1, 0);
  ASSERT_NE(nullptr, theData);
  qvLog_Append_F("a message ");
  {
    SleepingThread theForker([&] {
      theStatus = StatusOfChild([&] {
        return LogText(1, 0, "child") && theLogger.mMessages.size() == 2 && theLogger.mMessages[1] == "child";
      });
    });
    qvLog_Append_F("in two parts");
    qvLog_End(theData);
  }
  EXPECT_EQ(0, theStatus);
  EXPECT_THAT(theLogger.mMessages, ElementsAre("a message in two parts"));
}

TEST(qvLogFork, AThreadThatHoldsTheLockForksAndBothProcessesHoldIt) {
  RecordingLogger theLogger(2);
  qvLogger::LockFramework();
  EXPECT_EQ(0, StatusOfChild([&] {
              qvLogger::UnlockFramework();
              bool theIsFree = false;
              SleepingThread([&] { theIsFree = LogText(1, 0, "another thread of the child"); });
              return theIsFree;
            }));
  SleepingThread theOther([] { LogText(1, 0, "waits in the parent"); });
  EXPECT_EQ(0, theLogger.mBegins);
  qvLogger::UnlockFramework();
}

TEST(qvLogFork, TheMessageAroundAForkInACallbackIsTheParents) {
  RecordingLogger theLogger(2);
  qvLog_SetLogFunc(2, Count, nullptr);           // is called after
  qvLog_SetLogFunc(2, ForkInCallback, nullptr);  // this one
  EXPECT_TRUE(LogText(1, 0, "x"));
  if (sChild == 0) {
    alarm(kHangSeconds);
    // Nothing of the message came to anybody; the next one is the child's own.
    bool theIsLeft = sCalls == 0 && theLogger.mEnds == 0;
    _exit(theIsLeft && LogText(1, 0, "y") && sCalls == 1 && theLogger.mEnds == 1 ? 0 : 1);
  }
  int theStatus = -1;
  waitpid(sChild, &theStatus, 0);
  EXPECT_EQ(0, theStatus);
  EXPECT_EQ(1, sCalls);
  EXPECT_THAT(theLogger.mMessages, ElementsAre("x"));
}

TEST(qvLogFork, AThreadMayForkInsideACallbackWhileAnotherWaitsToFork) {
  static std::unique_ptr<SleepingThread> sOther;
  static int sStatus = -1;
  static int sStatusInCallback = -1;
  qvLog_SetLogFunc(
      2,
      [](void*, const qvLogData*, const char*, size_t) {
        sOther.reset(new SleepingThread([] { sStatus = StatusOfChild([] { return true; }); }));
        sStatusInCallback = StatusOfChild([] { return true; });
      },
      nullptr);
  EXPECT_TRUE(LogText(1, 0, "x"));
  sOther.reset();
  EXPECT_EQ(0, sStatusInCallback);
  EXPECT_EQ(0, sStatus);
  qvLog_Term();
}

TEST(qvLogFork, AMessageLoggedInsideTheCallbackThatForkedIsNestedInTheChildToo) {
  static int sNested = 0;
  static pid_t sForked = -1;
  qvLog_SetLogFunc(
      2,
      [](void*, const qvLogData*, const char*, size_t) {
        sForked = fork();
        sNested += LogText(1, 0, "nested");
      },
      nullptr);
  EXPECT_TRUE(LogText(1, 0, "x"));
  if (sForked == 0) {
    _exit(sNested);
  }
  int theStatus = -1;
  waitpid(sForked, &theStatus, 0);
  EXPECT_EQ(0, theStatus);
  EXPECT_EQ(0, sNested);
  qvLog_Term();
}

TEST(qvLogFork, AForkInsideASinkEndsTheMessageInTheChild) {
  RecordingLogger theSecond(2);
  RecordingLogger theFirst(2);
  pid_t theChild = -1;
  theFirst.mOnAppend = [&] {
    if (theChild == -1) {
      theChild = fork();
    }
  };
  EXPECT_TRUE(LogText(1, 0, "x"));
  if (theChild == 0) {
    _exit(theSecond.mPieces.empty() && theSecond.mEnds == 0 && LogText(1, 0, "y") &&
                  theSecond.mMessages.size() == 1 && theSecond.mMessages[0] == "y"
              ? 0
              : 1);
  }
  int theStatus = -1;
  waitpid(theChild, &theStatus, 0);
  EXPECT_EQ(0, theStatus);
  EXPECT_THAT(theSecond.mMessages, ElementsAre("x"));
}

TEST(qvLogFork, AChildCanExitInsideACallback) {
  EXPECT_EQ(0, StatusOfChild([] {
              qvLog_SetLogFunc(
                  2, [](void*, const qvLogData*, const char*, size_t) { exit(0); }, nullptr);
              LogText(1, 0, "x");
              return false;
            }));
}

TEST(qvLogFork, APartialLineOfTheParentIsWrittenOnceAndTheChildsLineHasAPrefix) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=out.txt\n");
  theProgram.Run({"begin", "append", "par", "end", "fork", "log", "1", "0", "child\n", "parent", "begin",
                  "append", "tial\n", "end"});
  EXPECT_THAT(
      theProgram.Read("out.txt"),
      MatchesRegex(std::string(kPrefix) + "child\nNAME: box \\(log started\\)\n" + kPrefix + "partial\n"));
}

TEST(qvLogFork, AChildThatLogsNothingLeavesThePartialLineAlone) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=out.txt\n");
  theProgram.Run({"begin", "append", "par", "end", "fork", "parent", "begin", "append", "tial\n", "end"});
  EXPECT_THAT(theProgram.Read("out.txt"),
              MatchesRegex(std::string("NAME: box \\(log started\\)\n") + kPrefix + "partial\n"));
}

TEST(qvLogFork, APartialLineOnStandardOutputIsWrittenBeforeTheFork) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=stdout\n");
  ChildResult theResult = theProgram.Run({"begin", "append", "par", "end", "fork", "log", "1", "0", "child\n",
                                          "parent", "begin", "append", "tial\n", "end"});
  EXPECT_THAT(theResult.mStdout, MatchesRegex(std::string("NAME: box \\(log started\\)\n") + kPrefix + "par" +
                                              kPrefix + "child\ntial\n"));
}

TEST(qvLogFork, WhatTheProgramHasPrintedItselfIsLeftToIt) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=stdout\n");
  ChildResult theResult =
      theProgram.Run({"log", "1", "0", "line\n", "print", "by hand ", "fork", "print", "child\n", "parent"});
  EXPECT_THAT(theResult.mStdout, MatchesRegex(std::string("NAME: box \\(log started\\)\n") + kPrefix +
                                              "line\nby hand child\nby hand "))
      << "as in any program";
}

TEST(qvLogFork, AChildOfAProcessThatHasNotLoggedYetCanLog) {
  EXPECT_EQ(0, StatusOfChild([] {
              RecordingLogger theLogger(2);
              return LogText(1, 0, "x");
            }));
}

TEST(qvLogFork, AForkWaitsUntilTheLogLockOfTheFirstMessageIsMade) {
  IN_FRESH_PROCESS({
    int theStatus = -1;
    std::unique_ptr<SleepingThread> theForker;
    sOnMutexInit = [&] {
      theForker.reset(new SleepingThread([&] {
        theStatus = StatusOfChild([] {
          RecordingLogger theLogger(2);
          return LogText(1, 0, "x");
        });
      }));
    };
    qvLog_WillLog(1, 0);
    ASSERT_NE(nullptr, theForker);
    theForker.reset();
    EXPECT_EQ(0, theStatus);
  });
}

TEST(qvLogFork, AForkLeavesErrnoAlone) {
  RecordingLogger theLogger(2);
  errno = ENOTTY;
  EXPECT_EQ(0, StatusOfChild([] { return errno == ENOTTY; }));
  EXPECT_EQ(ENOTTY, errno);
}
