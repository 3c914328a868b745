// The time zone in processes that fork. This file has its own localtime, which the library calls while it
// holds its lock; the test steps in there.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <thread>

#include "qvraTools/qvTime.h"
#include "support/SleepingThread.h"

namespace {

constexpr unsigned int kHangSeconds = 30;

std::function<void()> sOnLocalTime;

}  // namespace

extern "C" struct tm* localtime(const time_t* aTime) noexcept {
  static struct tm sTime;
  if (sOnLocalTime) {
    std::function<void()> theAction;
    theAction.swap(sOnLocalTime);
    theAction();
  }
  return localtime_r(aTime, &sTime);
}

TEST(qvTimeFork, AForkWaitsForAConversionOfAnotherThreadAndTheChildCanConvert) {
  int theStatus = -1;
  std::unique_ptr<SleepingThread> theForker;
  sOnLocalTime = [&] {
    theForker.reset(new SleepingThread([&] {
      pid_t theChild = fork();
      if (theChild == 0) {
        alarm(kHangSeconds);
        int theNow = 0;
        qvtm theTime;
        _exit(qvTime_localtime(&theNow, &theTime) != nullptr && qvTime_gmtime(&theNow, &theTime) != nullptr &&
                      qvTime_mktime(&theTime) != -1
                  ? 0
                  : 1);
      }
      waitpid(theChild, &theStatus, 0);
    }));
  };
  int theNow = 0;
  qvtm theTime;
  ASSERT_NE(nullptr, qvTime_localtime(&theNow, &theTime));
  theForker.reset();
  EXPECT_EQ(0, theStatus);
}

TEST(qvTimeFork, ThreadsThatConvertAtTheSameTimeGetTheirOwnResults) {
  int theWrong[2] = {0, 0};
  std::thread theThreads[2];
  for (int i = 0; i < 2; ++i) {
    theThreads[i] = std::thread([&theWrong, i] {
      const int kMoments[] = {86400 * 10, 86400 * 20};
      for (int theTurn = 0; theTurn < 20000; ++theTurn) {
        qvtm theTime;
        qvTime_gmtime(&kMoments[i], &theTime);
        theWrong[i] += theTime.tm_mday != (i == 0 ? 11 : 21);
      }
    });
  }
  for (std::thread& theThread : theThreads) {
    theThread.join();
  }
  EXPECT_EQ(0, theWrong[0] + theWrong[1]);
}
