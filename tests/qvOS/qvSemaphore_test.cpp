#include "qvOS/qvSemaphore.h"

#include <dlfcn.h>
#include <errno.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <stddef.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <type_traits>

#include "qvOS/qvSemaphore_p.h"
#include "support/ChildProcess.h"
#include "support/FreeWatch.h"
#include "support/Sanitizers.h"

namespace {

const char kBadHandle[] = "((aSemaphore) != NULL) && ((aSemaphore)->_mMagicNumber == (0xFEEDFADE))";
const char kSource[] = "qvSemaphore.posix";
constexpr uint32 kVeryLongMs = 60000;

struct SemaphoreDeleter {
  void operator()(qvOSSemaphore* aSemaphore) const { qvSemaphore_Delete(aSemaphore); }
};
using SemaphorePtr = std::unique_ptr<qvOSSemaphore, SemaphoreDeleter>;

SemaphorePtr NewSemaphore(int anInitialValue) { return SemaphorePtr(qvSemaphore_New(anInitialValue)); }

// Runs aWait on another thread and interrupts it with signals until it returns. Gives its result.
int InterruptUntilItReturns(const std::function<int()>& aWait) {
  struct sigaction theAction = {};
  theAction.sa_handler = [](int) {};  // no SA_RESTART: a wait that is interrupted returns
  sigaction(SIGUSR1, &theAction, nullptr);
  std::atomic<bool> theDone(false);
  int theResult = -1;
  std::thread theWaiter([&] {
    theResult = aWait();
    theDone = true;
  });
  while (!theDone) {
    pthread_kill(theWaiter.native_handle(), SIGUSR1);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  theWaiter.join();
  return theResult;
}

// What the stand-ins below answer, and what they were asked for.
struct FakeSystem {
  int mTryWaitError = 0;    // the error of every sem_trywait; 0: the system answers
  int mTimedWaitError = 0;  // the same of sem_timedwait
  bool mfClockFails = false;
  struct timespec mNow = {};  // the real-time clock stands still here while sem_timedwait is faked
  struct timespec mDeadline = {};
  int mIsShared = -1;
  sem_t* mDestroyed = nullptr;  // by the last sem_destroy
};
FakeSystem gSystem;

template <typename Function>
Function* TheSystems(Function* /*aStandIn*/, const char* aName) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, aName));
}

int FailWith(int anError) {
  errno = anError;
  return -1;
}

}  // namespace

extern "C" int clock_gettime(clockid_t aClock, struct timespec* aTime) noexcept {
  if (aClock == CLOCK_REALTIME && gSystem.mfClockFails) {
    return FailWith(EINVAL);
  }
  if (aClock == CLOCK_REALTIME && gSystem.mTimedWaitError != 0) {
    *aTime = gSystem.mNow;
    return 0;
  }
  return static_cast<int>(syscall(SYS_clock_gettime, aClock, aTime));
}

extern "C" int sem_init(sem_t* aSemaphore, int anIsShared, unsigned int aValue) noexcept {
  gSystem.mIsShared = anIsShared;
  return TheSystems(sem_init, "sem_init")(aSemaphore, anIsShared, aValue);
}

extern "C" int sem_destroy(sem_t* aSemaphore) noexcept {
  gSystem.mDestroyed = aSemaphore;
  return TheSystems(sem_destroy, "sem_destroy")(aSemaphore);
}

extern "C" int sem_trywait(sem_t* aSemaphore) noexcept {
  return gSystem.mTryWaitError != 0 ? FailWith(gSystem.mTryWaitError)
                                    : TheSystems(sem_trywait, "sem_trywait")(aSemaphore);
}

extern "C" int sem_timedwait(sem_t* aSemaphore, const struct timespec* aDeadline) {
  if (gSystem.mTimedWaitError != 0) {
    gSystem.mDeadline = *aDeadline;
    return FailWith(gSystem.mTimedWaitError);
  }
  return TheSystems(sem_timedwait, "sem_timedwait")(aSemaphore, aDeadline);
}

// Each test begins with a system that answers by itself.
class qvSemaphore : public testing::Test {
 protected:
  qvSemaphore() { gSystem = FakeSystem(); }
  ~qvSemaphore() override { gSystem = FakeSystem(); }
};

TEST_F(qvSemaphore, StatusCodesHaveTheirValues) {
  EXPECT_EQ(0, qvSemaphore_Status_NoError);
  EXPECT_EQ(1, qvSemaphore_Status_TimeOut);
  EXPECT_EQ(2, qvSemaphore_Status_Error);
}

TEST_F(qvSemaphore, MagicNumberHasItsValue) { EXPECT_EQ(0xFEEDFADEu, kqvSemaphore_Magic); }

TEST_F(qvSemaphore, FieldsAreInTheDocumentedOrderAndWidth) {
  EXPECT_EQ(0u, offsetof(qvSemaphore_t, _mMagicNumber));
  EXPECT_LT(offsetof(qvSemaphore_t, _mMagicNumber), offsetof(qvSemaphore_t, mSemaphore));
  EXPECT_TRUE((std::is_same<decltype(qvSemaphore_t::_mMagicNumber), uint32>::value));
  EXPECT_TRUE((std::is_same<decltype(qvSemaphore_t::mSemaphore), sem_t>::value));
}

TEST_F(qvSemaphore, ANewSemaphoreIsAliveAndHoldsItsInitialValue) {
  SemaphorePtr theSemaphore = NewSemaphore(2);
  ASSERT_NE(nullptr, theSemaphore);
  EXPECT_EQ(0xFEEDFADEu, theSemaphore->_mMagicNumber);
  EXPECT_EQ(0, qvSemaphore_TryWait(theSemaphore.get()));
  EXPECT_EQ(0, qvSemaphore_TryWait(theSemaphore.get()));
  EXPECT_EQ(1, qvSemaphore_TryWait(theSemaphore.get()));
}

TEST_F(qvSemaphore, AnInitialValueThatTheSystemRefusesGivesNull) {
  EXPECT_EQ(nullptr, qvSemaphore_New(-1));
  EXPECT_EQ(nullptr, qvSemaphore_New(INT_MIN));
}

TEST_F(qvSemaphore, DeletingNullIsHarmless) {
  ChildResult theResult = RunInChild([] { qvSemaphore_Delete(nullptr); });
  EXPECT_EQ(0, theResult.mExitCode);
}

TEST_F(qvSemaphore, PostAddsOneCount) {
  SemaphorePtr theSemaphore = NewSemaphore(0);
  EXPECT_EQ(0, qvSemaphore_Post(theSemaphore.get()));
  EXPECT_EQ(0, qvSemaphore_TryWait(theSemaphore.get()));
  EXPECT_EQ(1, qvSemaphore_TryWait(theSemaphore.get()));
}

TEST_F(qvSemaphore, PostBeyondTheHighestCountIsAnError) {
  SemaphorePtr theSemaphore = NewSemaphore(INT_MAX);
  ASSERT_NE(nullptr, theSemaphore);
  EXPECT_EQ(2, qvSemaphore_Post(theSemaphore.get()));
}

TEST_F(qvSemaphore, WaitTakesAPostedCountAtOnce) {
  SemaphorePtr theSemaphore = NewSemaphore(1);
  EXPECT_EQ(0, qvSemaphore_Wait(theSemaphore.get()));
  EXPECT_EQ(1, qvSemaphore_TryWait(theSemaphore.get()));
}

TEST_F(qvSemaphore, WaitIsEndedByThePostOfAnotherThread) {
  SemaphorePtr theSemaphore = NewSemaphore(0);
  std::thread thePoster([&] { qvSemaphore_Post(theSemaphore.get()); });
  EXPECT_EQ(0, qvSemaphore_Wait(theSemaphore.get()));
  thePoster.join();
}

TEST_F(qvSemaphore, AnInterruptedWaitIsAnErrorAndIsNotResumed) {
  SemaphorePtr theSemaphore = NewSemaphore(0);
  EXPECT_EQ(2, InterruptUntilItReturns([&] { return qvSemaphore_Wait(theSemaphore.get()); }));
}

TEST_F(qvSemaphore, TryWaitOnAZeroSemaphoreReturnsTimeOutAndNotError) {
  SemaphorePtr theSemaphore = NewSemaphore(0);
  EXPECT_EQ(1, qvSemaphore_TryWait(theSemaphore.get()));
}

TEST_F(qvSemaphore, WaitTimeoutOfZeroOnAZeroSemaphoreReturnsTimeOut) {
  SemaphorePtr theSemaphore = NewSemaphore(0);
  EXPECT_EQ(1, qvSemaphore_WaitTimeout(theSemaphore.get(), 0));
}

TEST_F(qvSemaphore, WaitTimeoutOfZeroTakesAPostedCount) {
  SemaphorePtr theSemaphore = NewSemaphore(1);
  EXPECT_EQ(0, qvSemaphore_WaitTimeout(theSemaphore.get(), 0));
  EXPECT_EQ(1, qvSemaphore_TryWait(theSemaphore.get()));
}

TEST_F(qvSemaphore, WaitTimeoutWaitsForItsDelayLessAtMostAMillisecond) {
  SemaphorePtr theSemaphore = NewSemaphore(0);
  auto theStart = std::chrono::steady_clock::now();
  EXPECT_EQ(1, qvSemaphore_WaitTimeout(theSemaphore.get(), 60));
  auto theSpan = std::chrono::steady_clock::now() - theStart;
  // One more millisecond of tolerance, because the two clocks are not the same.
  EXPECT_GE(theSpan, std::chrono::milliseconds(58));
}

TEST_F(qvSemaphore, WaitTimeoutIsEndedByThePostOfAnotherThread) {
  SemaphorePtr theSemaphore = NewSemaphore(0);
  std::thread thePoster([&] { qvSemaphore_Post(theSemaphore.get()); });
  EXPECT_EQ(0, qvSemaphore_WaitTimeout(theSemaphore.get(), kVeryLongMs));
  thePoster.join();
}

TEST_F(qvSemaphore, AnInterruptedWaitTimeoutIsAnErrorAndIsNotResumed) {
  SemaphorePtr theSemaphore = NewSemaphore(0);
  EXPECT_EQ(
      2, InterruptUntilItReturns([&] { return qvSemaphore_WaitTimeout(theSemaphore.get(), kVeryLongMs); }));
}

TEST_F(qvSemaphore, IsPrivateToTheProcess) {
  NewSemaphore(0);
  EXPECT_EQ(0, gSystem.mIsShared);
}

TEST_F(qvSemaphore, TryWaitThatFailsOtherwiseIsAnError) {
  SemaphorePtr theSemaphore = NewSemaphore(1);
  const int kErrors[] = {EINVAL, EINTR, ETIMEDOUT};
  for (int theError : kErrors) {
    gSystem.mTryWaitError = theError;
    EXPECT_EQ(2, qvSemaphore_TryWait(theSemaphore.get())) << theError;
  }
  gSystem.mTryWaitError = EAGAIN;
  EXPECT_EQ(1, qvSemaphore_TryWait(theSemaphore.get()));
}

TEST_F(qvSemaphore, WaitTimeoutThatFailsOtherwiseIsAnError) {
  SemaphorePtr theSemaphore = NewSemaphore(1);
  const int kErrors[] = {EINVAL, EINTR, EAGAIN};
  for (int theError : kErrors) {
    gSystem.mTimedWaitError = theError;
    EXPECT_EQ(2, qvSemaphore_WaitTimeout(theSemaphore.get(), 1)) << theError;
  }
}

TEST_F(qvSemaphore, WaitTimeoutWaitsForADeadlineOnTheRealTimeClock) {
  SemaphorePtr theSemaphore = NewSemaphore(0);
  gSystem.mTimedWaitError = ETIMEDOUT;
  gSystem.mNow = {1000, 500999999};
  EXPECT_EQ(1, qvSemaphore_WaitTimeout(theSemaphore.get(), 1500));
  EXPECT_EQ(1002, gSystem.mDeadline.tv_sec);
  EXPECT_EQ(0, gSystem.mDeadline.tv_nsec);
}

TEST_F(qvSemaphore, WaitTimeoutWithoutAClockIsAnErrorAndTakesNothing) {
  SemaphorePtr theSemaphore = NewSemaphore(1);
  gSystem.mfClockFails = true;
  EXPECT_EQ(2, qvSemaphore_WaitTimeout(theSemaphore.get(), 0));
  gSystem.mfClockFails = false;
  EXPECT_EQ(0, qvSemaphore_TryWait(theSemaphore.get()));
}

TEST_F(qvSemaphore, DeadlineCountsInWholeMilliseconds) {
  struct Case {
    long mNowSeconds;
    long mNowNanoseconds;
    uint32 mDelay;
    long mSeconds;
    long mNanoseconds;
    const char* mWhy;
  };
  const Case kCases[] = {
      {100, 0, 0, 100, 0, "no delay"},
      {100, 999999, 0, 100, 0, "below a millisecond is dropped"},
      {100, 1999999, 5, 100, 6000000, "dropped before the delay is added"},
      {100, 999000000, 1, 101, 0, "carry into the seconds"},
      {100, 999999999, 0, 100, 999000000, "the last nanosecond of a second stays in it"},
      {100, 500000000, 1500, 102, 0, "seconds and milliseconds of the delay"},
      {0, 0, 4294967295u, 4294967, 295000000, "the longest delay does not wrap"},
      {1000000000, 0, 4294967295u, 1004294967, 295000000, "the longest delay from a recent time"},
  };
  for (const Case& theCase : kCases) {
    struct timespec theNow = {};
    theNow.tv_sec = theCase.mNowSeconds;
    theNow.tv_nsec = theCase.mNowNanoseconds;
    struct timespec theDeadline = {};
    qvSemaphore_S_MakeDeadline(&theNow, theCase.mDelay, &theDeadline);
    EXPECT_EQ(theCase.mSeconds, theDeadline.tv_sec) << theCase.mWhy;
    EXPECT_EQ(theCase.mNanoseconds, theDeadline.tv_nsec) << theCase.mWhy;
  }
}

TEST_F(qvSemaphore, EveryOperationAssertsOnNull) {
  qvOSSemaphore* theNull = nullptr;
  EXPECT_QV_ASSERTION(qvSemaphore_Post(theNull), kBadHandle, kSource);
  EXPECT_QV_ASSERTION(qvSemaphore_Wait(theNull), kBadHandle, kSource);
  EXPECT_QV_ASSERTION(qvSemaphore_TryWait(theNull), kBadHandle, kSource);
  EXPECT_QV_ASSERTION(qvSemaphore_WaitTimeout(theNull, 0), kBadHandle, kSource);
}

TEST_F(qvSemaphore, EveryOperationAssertsOnAnObjectWithoutTheMagicNumber) {
  qvSemaphore_t theCleared = {};  // as a deleted semaphore is
  EXPECT_QV_ASSERTION(qvSemaphore_Delete(&theCleared), kBadHandle, kSource);
  EXPECT_QV_ASSERTION(qvSemaphore_Post(&theCleared), kBadHandle, kSource);
  EXPECT_QV_ASSERTION(qvSemaphore_Wait(&theCleared), kBadHandle, kSource);
  EXPECT_QV_ASSERTION(qvSemaphore_TryWait(&theCleared), kBadHandle, kSource);
  EXPECT_QV_ASSERTION(qvSemaphore_WaitTimeout(&theCleared, 0), kBadHandle, kSource);
}

TEST_F(qvSemaphore, DeleteDestroysTheSystemsSemaphore) {
  qvOSSemaphore* theSemaphore = qvSemaphore_New(0);
  sem_t* theSystems = &theSemaphore->mSemaphore;
  qvSemaphore_Delete(theSemaphore);
  EXPECT_EQ(theSystems, gSystem.mDestroyed);
}

TEST_F(qvSemaphore, DeleteClearsTheMagicNumberBeforeTheMemoryIsFreed) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer has an allocator of its own";
  }
  qvOSSemaphore* theSemaphore = qvSemaphore_New(0);
  WatchFreeOf(theSemaphore);
  qvSemaphore_Delete(theSemaphore);
  EXPECT_EQ(0u, FirstWordWhenFreed());
}

TEST_F(qvSemaphore, UsingADeletedHandleAsserts) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer reports the use of freed memory itself";
  }
  EXPECT_QV_ASSERTION(
      {
        qvOSSemaphore* theSemaphore = qvSemaphore_New(0);
        qvSemaphore_Delete(theSemaphore);
        qvSemaphore_Post(theSemaphore);
      },
      kBadHandle, kSource);
}
