#include "qvOS/qvThread.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <cstddef>
#include <string>

#include "qvOS/qvThread_p.h"
#include "support/ChildProcess.h"
#include "support/Sanitizers.h"
#include "support/ScratchFolder.h"

namespace {

const char kHandleCheck[] = "((aThread) != NULL) && ((aThread)->_mMagicNumber == (0xFEEDCABE))";

void CountCall(void* aCounter) { ++*static_cast<std::atomic<int>*>(aCounter); }

// A description of a joinable thread with the defaults.
qvOSThread_Data Joinable(qvThread_Func aFunc, void* anArgs) {
  return {aFunc,
          nullptr,
          anArgs,
          qvThread_StackSize_Default,
          qvThread_Kind_Joinable,
          qvThread_Scheduling_Default};
}

TEST(qvThread, WaitWithoutRunSkipsTheFunction) {
  std::atomic<int> theCalls{0};
  qvOSThread_Data theData = Joinable(CountCall, &theCalls);
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  EXPECT_EQ(kqvThreadState_Inited, theThread->mThreadState);
  EXPECT_EQ(0, qvThread_Wait(theThread));
  EXPECT_EQ(kqvThreadState_Finished, theThread->mThreadState);
  EXPECT_EQ(0, theCalls.load());
  qvThread_Delete(theThread);
}

TEST(qvThread, RunAndWaitCallTheFunctionOnce) {
  std::atomic<int> theCalls{0};
  qvOSThread_Data theData = Joinable(CountCall, &theCalls);
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  EXPECT_EQ(0, qvThread_Run(theThread));
  EXPECT_EQ(kqvThreadState_Running, theThread->mThreadState);
  EXPECT_EQ(0, qvThread_Wait(theThread));
  EXPECT_EQ(kqvThreadState_Finished, theThread->mThreadState);
  EXPECT_EQ(1, theCalls.load());
  EXPECT_EQ(0, qvThread_Wait(theThread)) << "a second wait returns at once";
  EXPECT_EQ(1, theCalls.load());
  qvThread_Delete(theThread);
}

TEST(qvThread, DeleteWithoutRunEndsTheThreadWithoutItsFunction) {
  std::atomic<int> theCalls{0};
  qvOSThread_Data theData = Joinable(CountCall, &theCalls);
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  qvThread_Delete(theThread);
  EXPECT_EQ(0, theCalls.load());
}

TEST(qvThread, DeleteOfNullIsIgnored) { qvThread_Delete(nullptr); }

TEST(qvThread, TheDescriptionMayBeDroppedAtOnce) {
  std::atomic<int> theCalls{0};
  qvOSThread* theThread = nullptr;
  {
    qvOSThread_Data theData = Joinable(CountCall, &theCalls);
    theThread = qvThread_New(&theData);
    theData = {};
  }
  ASSERT_NE(nullptr, theThread);
  qvThread_Run(theThread);
  qvThread_Wait(theThread);
  EXPECT_EQ(1, theCalls.load());
  qvThread_Delete(theThread);
}

TEST(qvThread, NewFillsTheHandle) {
  std::atomic<int> theCalls{0};
  qvOSThread_Data theData = Joinable(CountCall, &theCalls);
  theData.mDeleteFunc = CountCall;
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  EXPECT_EQ(0xFEEDCABEu, theThread->_mMagicNumber);
  EXPECT_EQ(&CountCall, theThread->mThreadFunc);
  EXPECT_EQ(nullptr, theThread->mDeleteFunc) << "ignored for a joinable thread";
  EXPECT_EQ(&theCalls, theThread->mThreadArgs);
  EXPECT_EQ(kqvThreadDetachedState_NotDetached, theThread->mDetachedState);
  EXPECT_NE(nullptr, theThread->mSemaphore);
  EXPECT_EQ(static_cast<uint32>(theThread->mThread), qvThread_GetID(theThread));
  qvThread_Wait(theThread);
  qvThread_Delete(theThread);
  EXPECT_EQ(0, theCalls.load());
}

TEST(qvThread, UnknownKindCountsAsJoinable) {
  std::atomic<int> theCalls{0};
  qvOSThread_Data theData = Joinable(CountCall, &theCalls);
  theData.mThreadKind = 2;
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  EXPECT_EQ(kqvThreadDetachedState_NotDetached, theThread->mDetachedState);
  qvThread_Run(theThread);
  EXPECT_EQ(0, qvThread_Wait(theThread));
  EXPECT_EQ(1, theCalls.load());
  qvThread_Delete(theThread);
}

// ---- threads that outlive their handle

struct LongLife {
  std::atomic<int> mCalls{0};
  qvOSSemaphore* mGo = qvSemaphore_New(0);
  qvOSSemaphore* mEnd = qvSemaphore_New(0);
  ~LongLife() {
    qvSemaphore_Delete(mGo);
    qvSemaphore_Delete(mEnd);
  }
};

// Tells when the thread has left its function and the library behind it.
struct PostAtTheEndOfTheThread {
  qvOSSemaphore* mEnd = nullptr;
  ~PostAtTheEndOfTheThread() { qvSemaphore_Post(mEnd); }
};

void LiveLong(void* aLife) {
  LongLife* theLife = static_cast<LongLife*>(aLife);
  static thread_local PostAtTheEndOfTheThread sPost;
  sPost.mEnd = theLife->mEnd;
  qvSemaphore_Wait(theLife->mGo);
  ++theLife->mCalls;
}

TEST(qvThread, DeletingARunningThreadDoesNotWaitAndLetsItGoOn) {
  LongLife theLife;
  qvOSThread_Data theData = Joinable(LiveLong, &theLife);
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  ASSERT_EQ(0, qvThread_Run(theThread));
  qvThread_Delete(theThread);
  EXPECT_EQ(0, theLife.mCalls.load());
  qvSemaphore_Post(theLife.mGo);
  ASSERT_EQ(0, qvSemaphore_WaitTimeout(theLife.mEnd, 60000));
  EXPECT_EQ(1, theLife.mCalls.load());
}

// Many of them are deleted before they have come through the gate; the sanitizers see a late use of the
// handle.
TEST(qvThread, ManyRunningThreadsMayBeDeletedAtOnce) {
  LongLife theLife;
  qvOSThread_Data theData = Joinable(LiveLong, &theLife);
  for (int i = 0; i < 200; ++i) {
    qvOSThread* theThread = qvThread_New(&theData);
    ASSERT_NE(nullptr, theThread);
    ASSERT_EQ(0, qvThread_Run(theThread));
    qvThread_Delete(theThread);
    qvSemaphore_Post(theLife.mGo);
    ASSERT_EQ(0, qvSemaphore_WaitTimeout(theLife.mEnd, 60000));
  }
  EXPECT_EQ(200, theLife.mCalls.load());
}

void ExitThread(void* aCounter) {
  CountCall(aCounter);
  pthread_exit(nullptr);
}

TEST(qvThread, AFunctionMayLeaveByPthreadExit) {
  std::atomic<int> theCalls{0};
  qvOSThread_Data theData = Joinable(ExitThread, &theCalls);
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  qvThread_Run(theThread);
  EXPECT_EQ(0, qvThread_Wait(theThread));
  EXPECT_EQ(1, theCalls.load());
  qvThread_Delete(theThread);
}

// ---- what the caller does wrong

TEST(qvThread, NullAndDeletedHandlesFailTheCheck) {
  EXPECT_QV_ASSERTION(qvThread_Run(nullptr), kHandleCheck, "qvThread");
  EXPECT_QV_ASSERTION(qvThread_Wait(nullptr), kHandleCheck, "qvThread");
  EXPECT_QV_ASSERTION(qvThread_GetID(nullptr), kHandleCheck, "qvThread");
  struct qvThread_t theDeleted = {};
  EXPECT_QV_ASSERTION(qvThread_Run(&theDeleted), kHandleCheck, "qvThread");
  EXPECT_QV_ASSERTION(qvThread_Wait(&theDeleted), kHandleCheck, "qvThread");
  EXPECT_QV_ASSERTION(qvThread_Delete(&theDeleted), kHandleCheck, "qvThread");
  EXPECT_QV_ASSERTION(qvThread_GetID(&theDeleted), kHandleCheck, "qvThread");
}

TEST(qvThread, RunTwiceFailsAnAssertion) {
  std::atomic<int> theCalls{0};
  auto runTwice = [&] {
    qvOSThread_Data theData = Joinable(CountCall, &theCalls);
    qvOSThread* theThread = qvThread_New(&theData);
    qvThread_Run(theThread);
    qvThread_Run(theThread);
  };
  EXPECT_QV_ASSERTION(runTwice(), "aThread->mThreadState == kqvThreadState_Inited", "qvThread");
}

TEST(qvThread, RunAfterWaitFailsAnAssertion) {
  std::atomic<int> theCalls{0};
  auto waitAndRun = [&] {
    qvOSThread_Data theData = Joinable(CountCall, &theCalls);
    qvOSThread* theThread = qvThread_New(&theData);
    qvThread_Wait(theThread);
    qvThread_Run(theThread);
  };
  EXPECT_QV_ASSERTION(waitAndRun(), "aThread->mThreadState == kqvThreadState_Inited", "qvThread");
}

TEST(qvThread, StackSizeThatTheSystemRefusesGivesNull) {
  std::atomic<int> theCalls{0};
  for (int theKind : {qvThread_Kind_Joinable, qvThread_Kind_Detached}) {
    for (size_t theSize : {static_cast<size_t>(2), static_cast<size_t>(-1)}) {
      qvOSThread_Data theData = {CountCall, CountCall, &theCalls, theSize, theKind, 0};
      EXPECT_EQ(nullptr, qvThread_New(&theData)) << "stack size " << theSize << ", kind " << theKind;
    }
  }
  EXPECT_EQ(0, theCalls.load()) << "the arguments are still the caller's";
}

struct WaitForSelf {
  qvOSThread* mThread;
  int mStatus;
};

void WaitForOneself(void* aWait) {
  WaitForSelf* theWait = static_cast<WaitForSelf*>(aWait);
  theWait->mStatus = qvThread_Wait(theWait->mThread);
}

TEST(qvThread, WaitingForOneselfIsAnError) {
  if (kThreadSanitized) {
    GTEST_SKIP() << "the sanitizer ends the process when a thread joins itself";
  }
  WaitForSelf theWait = {nullptr, -1};
  qvOSThread_Data theData = Joinable(WaitForOneself, &theWait);
  theWait.mThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theWait.mThread);
  qvThread_Run(theWait.mThread);
  EXPECT_EQ(qvThread_Status_NoError, qvThread_Wait(theWait.mThread));
  EXPECT_EQ(qvThread_Status_Error, theWait.mStatus);
  qvThread_Delete(theWait.mThread);
}

// ---- the attributes of a thread

void MeasureStack(void* aSize) {
  pthread_attr_t theAttributes;
  pthread_getattr_np(pthread_self(), &theAttributes);
  pthread_attr_getstacksize(&theAttributes, static_cast<size_t*>(aSize));
  pthread_attr_destroy(&theAttributes);
}

size_t StackSizeOfThread(size_t aStackSize) {
  size_t theSize = 0;
  qvOSThread_Data theData = Joinable(MeasureStack, &theSize);
  theData.mStackSize = aStackSize;
  qvOSThread* theThread = qvThread_New(&theData);
  EXPECT_NE(nullptr, theThread);
  if (theThread != nullptr) {
    qvThread_Run(theThread);
    qvThread_Wait(theThread);
    qvThread_Delete(theThread);
  }
  return theSize;
}

TEST(qvThread, StackSizesAreWhatIsAskedFor) {
  if (kThreadSanitized) {
    GTEST_SKIP() << "the sanitizer gives every thread a larger stack";
  }
  EXPECT_EQ(131072u, StackSizeOfThread(qvThread_StackSize_Default));
  EXPECT_EQ(262144u, StackSizeOfThread(262144));
  pthread_attr_t theAttributes;
  size_t theSystemSize = 0;
  pthread_attr_init(&theAttributes);
  pthread_attr_getstacksize(&theAttributes, &theSystemSize);
  pthread_attr_destroy(&theAttributes);
  EXPECT_EQ(theSystemSize, StackSizeOfThread(qvThread_StackSize_SystemDefault));
}

void RememberPolicy(void* aPolicy) {
  struct sched_param theParameter = {};
  pthread_getschedparam(pthread_self(), static_cast<int*>(aPolicy), &theParameter);
}

TEST(qvThread, RealtimeSchedulingIsNotActedUpon) {
  int theOwnPolicy = -1;
  RememberPolicy(&theOwnPolicy);
  int thePolicy = -1;
  qvOSThread_Data theData = Joinable(RememberPolicy, &thePolicy);
  theData.mThreadScheduling = qvThread_Scheduling_Realtime;
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  qvThread_Run(theThread);
  qvThread_Wait(theThread);
  EXPECT_EQ(theOwnPolicy, thePolicy);
  qvThread_Delete(theThread);
}

TEST(qvThread, SetPriorityTakesEveryValue) {
  EXPECT_EQ(0, qvThread_SetPriority(0));
  EXPECT_EQ(0, qvThread_SetPriority(100));
  EXPECT_EQ(0, qvThread_SetPriority(250)) << "counts as 100";
  EXPECT_EQ(0, qvThread_SetPriority(65535));
}

// ---- names and numbers

void RememberThreadID(void* anID) { *static_cast<uint32*>(anID) = qvThread_GetCurrentThreadID(); }

TEST(qvThread, ThreadsHaveTheIDsOfTheSystemCutTo32Bits) {
  EXPECT_EQ(static_cast<uint32>(pthread_self()), qvThread_GetCurrentThreadID());
  uint32 theInside = 0;
  qvOSThread_Data theData = Joinable(RememberThreadID, &theInside);
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  uint32 theOutside = qvThread_GetID(theThread);
  qvThread_Run(theThread);
  qvThread_Wait(theThread);
  EXPECT_EQ(theOutside, theInside);
  qvThread_Delete(theThread);
}

TEST(qvThread, GetPIDIsTheProcess) { EXPECT_EQ(static_cast<uint32>(getpid()), qvThread_GetPID()); }

TEST(qvThread, SleepLastsAtLeastTheDelay) {
  struct timespec theStart;
  struct timespec theEnd;
  clock_gettime(CLOCK_MONOTONIC, &theStart);
  qvThread_Sleep(30);
  clock_gettime(CLOCK_MONOTONIC, &theEnd);
  EXPECT_GE((theEnd.tv_sec - theStart.tv_sec) * 1000000000LL + theEnd.tv_nsec - theStart.tv_nsec, 30000000LL);
}

TEST(qvThread, ConstantsHaveTheirNumbers) {
  EXPECT_EQ(0, qvThread_Status_NoError);
  EXPECT_EQ(1, qvThread_Status_Error);
  EXPECT_EQ(0, qvThread_StackSize_Default);
  EXPECT_EQ(1, qvThread_StackSize_SystemDefault);
  EXPECT_EQ(131072, kqvThread_StackSize);
  EXPECT_EQ(0, qvThread_Kind_Joinable);
  EXPECT_EQ(1, qvThread_Kind_Detached);
  EXPECT_EQ(0, qvThread_Scheduling_Default);
  EXPECT_EQ(1, qvThread_Scheduling_Realtime);
  EXPECT_EQ(0xFEEDCABEu, kqvThread_Magic);
  EXPECT_EQ(0, kqvThreadState_NotInited);
  EXPECT_EQ(1, kqvThreadState_Inited);
  EXPECT_EQ(2, kqvThreadState_Running);
  EXPECT_EQ(3, kqvThreadState_Finished);
  EXPECT_EQ(0, kqvThreadDetachedState_NotDetached);
  EXPECT_EQ(1, kqvThreadDetachedState_Detached);
  EXPECT_EQ(2, kqvThreadDetachedState_DetachedDelete);
}

TEST(qvThread, FieldsStandInOrder) {
  EXPECT_EQ(0u, offsetof(qvOSThread_Data, mThreadFunc));
  EXPECT_EQ(sizeof(void*), offsetof(qvOSThread_Data, mDeleteFunc));
  EXPECT_EQ(2 * sizeof(void*), offsetof(qvOSThread_Data, mThreadArgs));
  EXPECT_EQ(3 * sizeof(void*), offsetof(qvOSThread_Data, mStackSize));
  EXPECT_EQ(4 * sizeof(void*), offsetof(qvOSThread_Data, mThreadKind));
  EXPECT_EQ(4 * sizeof(void*) + 4, offsetof(qvOSThread_Data, mThreadScheduling));
  EXPECT_EQ(0u, offsetof(qvThread_t, _mMagicNumber));
  EXPECT_EQ(sizeof(void*), offsetof(qvThread_t, mThread));
  EXPECT_EQ(2 * sizeof(void*), offsetof(qvThread_t, mThreadFunc));
  EXPECT_EQ(3 * sizeof(void*), offsetof(qvThread_t, mDeleteFunc));
  EXPECT_EQ(4 * sizeof(void*), offsetof(qvThread_t, mThreadArgs));
  EXPECT_EQ(5 * sizeof(void*), offsetof(qvThread_t, mThreadState));
  EXPECT_EQ(5 * sizeof(void*) + 4, offsetof(qvThread_t, mDetachedState));
  EXPECT_EQ(5 * sizeof(void*) + 8, offsetof(qvThread_t, mSemaphore));
}

}  // namespace
