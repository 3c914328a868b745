// Threads whose system refuses something, and what a handle holds when it is freed.
#include <dlfcn.h>
#include <errno.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <semaphore.h>
#include <signal.h>
#include <stdio.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <string>

#include "qvOS/qvThread.h"
#include "qvOS/qvThread_p.h"
#include "support/ChildProcess.h"
#include "support/FreeWatch.h"

namespace {

// What the stand-ins below answer. Priorities: while mfActive, the default policy is SCHED_RR with the given
// bounds.
struct FakeSystem {
  bool mfActive = false;
  bool mfPolicyFails = false;
  int mMin = 0;
  int mMax = 0;
  int mAskedMinOf = -1;
  int mAskedMaxOf = -1;
  bool mfStoreFails = false;
  bool mfAttributesFail = false;
  int mStored = -1;
  int mChanges = 0;  // calls that change a thread that is there
  bool mfGateFails = false;
  bool mfPostFails = false;
  int mJoins = 0;
  int mDetaches = 0;
  bool mfNoMemory = false;
  bool mfSkipsSleep = false;
  bool mfPrintsSleep = false;
  struct timespec mSleep = {};
};
FakeSystem gSystem;

// How many of the next waits at a gate a signal interrupts, and how many waits there have been. The waiting
// threads count.
std::atomic<int> gInterruptedWaits{0};
std::atomic<int> gWaits{0};

template <typename Function>
Function* TheSystems(Function* /*aStandIn*/, const char* aName) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, aName));
}

void Nothing(void*) {}

void Count(void* aCounter) { ++*static_cast<int*>(aCounter); }

qvOSThread_Data Description(qvThread_Func aFunc, void* anArgs, int aKind) {
  return {aFunc, nullptr, anArgs, qvThread_StackSize_Default, aKind, qvThread_Scheduling_Default};
}

}  // namespace

// The thread sanitizer calls it in a new thread before instrumented code may run there.
#if !QVLOG_SANITIZED
extern "C" int pthread_attr_init(pthread_attr_t* anAttributes) noexcept {
  return gSystem.mfAttributesFail ? ENOMEM : TheSystems(pthread_attr_init, "pthread_attr_init")(anAttributes);
}
#endif

extern "C" int pthread_attr_getschedpolicy(const pthread_attr_t* anAttributes, int* aPolicy) noexcept {
  if (!gSystem.mfActive) {
    return TheSystems(pthread_attr_getschedpolicy, "pthread_attr_getschedpolicy")(anAttributes, aPolicy);
  }
  *aPolicy = SCHED_RR;
  return gSystem.mfPolicyFails ? EINVAL : 0;
}

extern "C" int sched_get_priority_min(int aPolicy) noexcept {
  gSystem.mAskedMinOf = aPolicy;
  return gSystem.mfActive ? gSystem.mMin : static_cast<int>(syscall(SYS_sched_get_priority_min, aPolicy));
}

extern "C" int sched_get_priority_max(int aPolicy) noexcept {
  gSystem.mAskedMaxOf = aPolicy;
  return gSystem.mfActive ? gSystem.mMax : static_cast<int>(syscall(SYS_sched_get_priority_max, aPolicy));
}

extern "C" int pthread_attr_setschedparam(pthread_attr_t* anAttributes,
                                          const struct sched_param* aParameter) noexcept {
  gSystem.mStored = aParameter->sched_priority;
  if (!gSystem.mfActive) {
    return TheSystems(pthread_attr_setschedparam, "pthread_attr_setschedparam")(anAttributes, aParameter);
  }
  return gSystem.mfStoreFails ? EINVAL : 0;
}

extern "C" int pthread_setschedparam(pthread_t, int, const struct sched_param*) noexcept {
  return ++gSystem.mChanges, 0;
}
extern "C" int pthread_setschedprio(pthread_t, int) noexcept { return ++gSystem.mChanges, 0; }
extern "C" int sched_setscheduler(pid_t, int, const struct sched_param*) noexcept {
  return ++gSystem.mChanges, 0;
}
extern "C" int sched_setparam(pid_t, const struct sched_param*) noexcept { return ++gSystem.mChanges, 0; }

extern "C" int sem_init(sem_t* aSemaphore, int anIsShared, unsigned int aValue) noexcept {
  if (gSystem.mfGateFails) {
    errno = ENOSPC;
    return -1;
  }
  return TheSystems(sem_init, "sem_init")(aSemaphore, anIsShared, aValue);
}

extern "C" int sem_post(sem_t* aSemaphore) noexcept {
  if (gSystem.mfPostFails) {
    errno = EOVERFLOW;
    return -1;
  }
  return TheSystems(sem_post, "sem_post")(aSemaphore);
}

extern "C" int sem_wait(sem_t* aSemaphore) {
  if (++gWaits <= gInterruptedWaits) {
    errno = EINTR;
    return -1;
  }
  return TheSystems(sem_wait, "sem_wait")(aSemaphore);
}

extern "C" int pthread_join(pthread_t aThread, void** aResult) {
  ++gSystem.mJoins;
  return TheSystems(pthread_join, "pthread_join")(aThread, aResult);
}

extern "C" int pthread_detach(pthread_t aThread) noexcept {
  ++gSystem.mDetaches;
  return TheSystems(pthread_detach, "pthread_detach")(aThread);
}

extern "C" int nanosleep(const struct timespec* aDelay, struct timespec* aRest) {
  if (!gSystem.mfSkipsSleep) {
    return TheSystems(nanosleep, "nanosleep")(aDelay, aRest);
  }
  gSystem.mSleep = *aDelay;
  if (gSystem.mfPrintsSleep) {
    dprintf(STDOUT_FILENO, "sleep %ld %ld\n", static_cast<long>(aDelay->tv_sec), aDelay->tv_nsec);
  }
  return 0;
}

#if !QVLOG_SANITIZED
extern "C" void* __libc_calloc(size_t, size_t);
extern "C" void* calloc(size_t aCount, size_t aSize) noexcept {
  if (gSystem.mfNoMemory) {
    errno = ENOMEM;
    return nullptr;
  }
  return __libc_calloc(aCount, aSize);
}
#endif

// Each test begins with a system that answers by itself.
class qvThreadFaults : public testing::Test {
 protected:
  qvThreadFaults() { gSystem = FakeSystem(); }
  ~qvThreadFaults() override { gSystem = FakeSystem(); }

  static void FakeBounds(int aMin, int aMax) {
    gSystem.mfActive = true;
    gSystem.mMin = aMin;
    gSystem.mMax = aMax;
  }
};

using qvThreadKept = qvThreadFaults;

TEST_F(qvThreadFaults, PriorityIsThatShareOfTheRangeOfTheDefaultPolicy) {
  const struct {
    uint16 mPriority;
    int mStored;
    const char* mWhy;
  } kCases[] = {
      {0, 1, "the minimum"},
      {1, 1, "0.98 above it is cut off"},
      {2, 2, "1.96 above it"},
      {50, 50, "the middle"},
      {99, 98, "97.02 above the minimum"},
      {100, 99, "the maximum"},
      {101, 99, "higher values count as 100"},
      {250, 99, "higher values count as 100"},
      {65535, 99, "higher values count as 100"},
  };
  FakeBounds(1, 99);
  for (const auto& theCase : kCases) {
    EXPECT_EQ(0, qvThread_SetPriority(theCase.mPriority)) << theCase.mWhy;
    EXPECT_EQ(theCase.mStored, gSystem.mStored) << theCase.mPriority << ": " << theCase.mWhy;
  }
  EXPECT_EQ(SCHED_RR, gSystem.mAskedMinOf);
  EXPECT_EQ(SCHED_RR, gSystem.mAskedMaxOf);
}

TEST_F(qvThreadKept, SetPriorityChangesNoThread) {
  FakeBounds(1, 99);
  EXPECT_EQ(0, qvThread_SetPriority(100));
  EXPECT_EQ(99, gSystem.mStored);
  EXPECT_EQ(0, gSystem.mChanges);
}

TEST_F(qvThreadFaults, PriorityWithoutBoundsIsAnError) {
  FakeBounds(-1, 99);
  EXPECT_EQ(1, qvThread_SetPriority(50)) << "no minimum";
  FakeBounds(1, -1);
  EXPECT_EQ(1, qvThread_SetPriority(50)) << "no maximum";
  FakeBounds(2, 1);
  EXPECT_EQ(1, qvThread_SetPriority(50)) << "the minimum is above the maximum";
  EXPECT_EQ(-1, gSystem.mStored);
  FakeBounds(7, 7);
  EXPECT_EQ(0, qvThread_SetPriority(50)) << "both are the same";
  EXPECT_EQ(7, gSystem.mStored);
}

TEST_F(qvThreadFaults, PriorityThatTheSystemRefusesIsAnError) {
  FakeBounds(1, 99);
  gSystem.mfStoreFails = true;
  EXPECT_EQ(1, qvThread_SetPriority(50));
  gSystem.mfStoreFails = false;
  gSystem.mfPolicyFails = true;
  EXPECT_EQ(1, qvThread_SetPriority(50));
}

TEST_F(qvThreadFaults, WithoutAttributesThereIsNoThreadAndNoPriority) {
  if (kSanitized) {
    GTEST_SKIP() << "the thread sanitizer needs the system's own";
  }
  qvOSThread_Data theData = Description(Nothing, nullptr, qvThread_Kind_Joinable);
  gSystem.mfAttributesFail = true;
  EXPECT_EQ(nullptr, qvThread_New(&theData));
  EXPECT_EQ(1, qvThread_SetPriority(50));
}

TEST_F(qvThreadFaults, ThreadWithoutAGateIsNull) {
  for (int theKind : {qvThread_Kind_Joinable, qvThread_Kind_Detached}) {
    qvOSThread_Data theData = Description(Nothing, nullptr, theKind);
    gSystem.mfGateFails = true;
    EXPECT_EQ(nullptr, qvThread_New(&theData));
    gSystem.mfGateFails = false;
  }
}

TEST_F(qvThreadFaults, ThreadWithoutMemoryForItsHandleIsNull) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer has an allocator of its own";
  }
  qvOSThread_Data theData = Description(Nothing, nullptr, qvThread_Kind_Joinable);
  qvThread_Delete(qvThread_New(&theData));  // the first one loads a library
  gSystem.mfNoMemory = true;
  qvOSThread* theThread = qvThread_New(&theData);
  gSystem.mfNoMemory = false;
  EXPECT_EQ(nullptr, theThread);
}

TEST_F(qvThreadFaults, SleepAsksForTheWholeDelay) {
  const struct {
    uint32 mDelay;
    time_t mSeconds;
    long mNanoSeconds;
    const char* mWhy;
  } kCases[] = {
      {0, 0, 0, "no delay"},
      {1, 0, 1000000, "the shortest"},
      {999, 0, 999000000, "below a second"},
      {1000, 1, 0, "a second"},
      {4294968, 4294, 968000000, "more microseconds than 32 bits hold"},
      {4294967295u, 4294967, 295000000, "the longest"},
  };
  gSystem.mfSkipsSleep = true;
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    qvThread_Sleep(theCase.mDelay);
    EXPECT_EQ(theCase.mSeconds, gSystem.mSleep.tv_sec);
    EXPECT_EQ(theCase.mNanoSeconds, gSystem.mSleep.tv_nsec);
  }
}

TEST_F(qvThreadFaults, RunWithAGateThatDoesNotOpenIsAnErrorAndMayBeTriedAgain) {
  int theCalls = 0;
  qvOSThread_Data theData = Description(Count, &theCalls, qvThread_Kind_Joinable);
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  gSystem.mfPostFails = true;
  EXPECT_EQ(1, qvThread_Run(theThread));
  gSystem.mfPostFails = false;
  EXPECT_EQ(kqvThreadState_Inited, theThread->mThreadState);
  EXPECT_EQ(0, qvThread_Run(theThread));
  EXPECT_EQ(0, qvThread_Wait(theThread));
  EXPECT_EQ(1, theCalls);
  qvThread_Delete(theThread);
}

TEST_F(qvThreadFaults, ASignalDoesNotLetASuspendedThreadRun) {
  int theCalls = 0;
  gWaits = 0;
  gInterruptedWaits = 2;
  qvOSThread_Data theData = Description(Count, &theCalls, qvThread_Kind_Joinable);
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  const time_t theLimit = time(nullptr) + 60;
  while (gWaits < 3 && time(nullptr) < theLimit) {
    sched_yield();
  }
  EXPECT_EQ(3, gWaits.load()) << "it went through a closed gate";
  EXPECT_EQ(0, qvThread_Wait(theThread));
  EXPECT_EQ(0, theCalls);
  qvThread_Delete(theThread);
}

TEST_F(qvThreadFaults, AThreadIsJoinedOnceHoweverOftenItIsWaitedFor) {
  int theCalls = 0;
  qvOSThread_Data theData = Description(Count, &theCalls, qvThread_Kind_Joinable);
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  qvThread_Run(theThread);
  qvThread_Wait(theThread);
  qvThread_Wait(theThread);
  qvThread_Delete(theThread);
  EXPECT_EQ(1, gSystem.mJoins);
}

TEST_F(qvThreadFaults, DeleteJoinsAThreadThatNeverRan) {
  int theCalls = 0;
  qvOSThread_Data theData = Description(Count, &theCalls, qvThread_Kind_Joinable);
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  qvThread_Delete(theThread);
  EXPECT_EQ(1, gSystem.mJoins) << "it is let through the gate and has ended";
  EXPECT_EQ(0, theCalls);
}

void WaitAtTheGate(void* aSemaphore) { qvSemaphore_Wait(static_cast<qvOSSemaphore*>(aSemaphore)); }

TEST_F(qvThreadFaults, DeleteDetachesARunningThreadSoThatTheSystemReleasesItsStack) {
  // Not released: the thread may still be about to wait when the test ends.
  static qvOSSemaphore* sGate = qvSemaphore_New(0);
  qvOSThread_Data theData = Description(WaitAtTheGate, sGate, qvThread_Kind_Joinable);
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  qvThread_Run(theThread);
  qvThread_Delete(theThread);
  EXPECT_EQ(1, gSystem.mDetaches);
  EXPECT_EQ(0, gSystem.mJoins);
  qvSemaphore_Post(sGate);
}

TEST_F(qvThreadFaults, DeleteDetachesNoThreadThatHasBeenJoined) {
  qvOSThread_Data theData = Description(Nothing, nullptr, qvThread_Kind_Joinable);
  qvThread_Delete(qvThread_New(&theData));
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  qvThread_Run(theThread);
  qvThread_Wait(theThread);
  qvThread_Delete(theThread);
  EXPECT_EQ(2, gSystem.mJoins);
  EXPECT_EQ(0, gSystem.mDetaches);
}

void Abort(void*) { raise(SIGABRT); }

TEST_F(qvThreadFaults, CrashSleepsTwoSecondsBehindItsTrace) {
  ChildResult theResult = RunInChild([] {
    gSystem.mfSkipsSleep = true;
    gSystem.mfPrintsSleep = true;
    qvOSThread_Data theData = Description(Abort, nullptr, qvThread_Kind_Joinable);
    theData.mStackSize = qvThread_StackSize_SystemDefault;
    qvOSThread* theThread = qvThread_New(&theData);
    qvThread_Run(theThread);
    qvThread_Wait(theThread);
  });
  EXPECT_EQ(SIGABRT, theResult.mSignal);
  size_t theTrace = theResult.mStdout.find("Backtracing this thread (pid=");
  size_t theSleep = theResult.mStdout.find("sleep 2 0\n");
  ASSERT_NE(std::string::npos, theTrace) << theResult.mStdout;
  ASSERT_NE(std::string::npos, theSleep) << theResult.mStdout;
  EXPECT_LT(theTrace, theSleep);
}

TEST_F(qvThreadFaults, DeleteClearsTheMagicNumberBeforeTheMemoryIsFreed) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer has an allocator of its own";
  }
  qvOSThread_Data theData = Description(Nothing, nullptr, qvThread_Kind_Joinable);
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  WatchFreeOf(theThread);
  qvThread_Delete(theThread);
  EXPECT_EQ(0u, FirstWordWhenFreed());
}

TEST_F(qvThreadFaults, DetachedThreadFreesItsOwnHandleWithoutItsMagicNumber) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer has an allocator of its own";
  }
  qvOSThread_Data theData = Description(Nothing, nullptr, qvThread_Kind_Detached);
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  WatchFreeOf(theThread);
  qvThread_Run(theThread);
  EXPECT_EQ(0u, FirstWordWhenFreed());
}

void SpoilHandle(void* aHandle) { (*static_cast<qvOSThread**>(aHandle))->_mMagicNumber = 0; }

TEST_F(qvThreadFaults, HandleIsCheckedAgainBehindTheDeleteFunction) {
  auto spoil = [] {
    static qvOSThread* sThread = nullptr;
    qvOSThread_Data theData = {Nothing, SpoilHandle, &sThread, 0, qvThread_Kind_Detached, 0};
    sThread = qvThread_New(&theData);
    qvThread_Run(sThread);
    for (;;) {
      pause();
    }
  };
  EXPECT_QV_ASSERTION(spoil(), "((aThread) != NULL) && ((aThread)->_mMagicNumber == (0xFEEDCABE))",
                      "qvThread.posix");
}
