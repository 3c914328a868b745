// Threads that release themselves.
#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>

#include "qvOS/qvSemaphore.h"
#include "qvOS/qvThread.h"
#include "qvOS/qvThread_p.h"
#include "support/ChildProcess.h"

namespace {

struct DetachedLife {
  std::atomic<int> mSteps{0};
  int mFunctionStep = 0;
  int mDeleteStep = 0;
  qvOSSemaphore* mDone = qvSemaphore_New(0);
};

void RunDetached(void* aLife) {
  DetachedLife* theLife = static_cast<DetachedLife*>(aLife);
  theLife->mFunctionStep = ++theLife->mSteps;
}

void DeleteDetached(void* aLife) {
  DetachedLife* theLife = static_cast<DetachedLife*>(aLife);
  theLife->mDeleteStep = ++theLife->mSteps;
  qvSemaphore_Post(theLife->mDone);
}

TEST(qvThreadDetached, RunsItsFunctionAndThenItsDeleteFunction) {
  DetachedLife theLife;
  qvOSThread_Data theData = {RunDetached, DeleteDetached, &theLife, 0, qvThread_Kind_Detached, 0};
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  EXPECT_EQ(kqvThreadDetachedState_Detached, theThread->mDetachedState);
  EXPECT_EQ(&DeleteDetached, theThread->mDeleteFunc);
  EXPECT_EQ(0, qvThread_Run(theThread));
  ASSERT_EQ(0, qvSemaphore_WaitTimeout(theLife.mDone, 60000));
  EXPECT_EQ(1, theLife.mFunctionStep);
  EXPECT_EQ(2, theLife.mDeleteStep);
  qvSemaphore_Delete(theLife.mDone);
}

TEST(qvThreadDetached, NeedsNoDeleteFunction) {
  DetachedLife theLife;
  qvOSThread_Data theData = {DeleteDetached, nullptr, &theLife, 0, qvThread_Kind_Detached, 0};
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  qvThread_Run(theThread);
  ASSERT_EQ(0, qvSemaphore_WaitTimeout(theLife.mDone, 60000));
  qvSemaphore_Delete(theLife.mDone);
}

struct StateAtTheEnd {
  qvOSThread* mThread = nullptr;
  int mInTheFunction = -1;
  int mInTheDeleteFunction = -1;
  qvOSSemaphore* mDone = qvSemaphore_New(0);
};

void RememberStateInFunction(void* aState) {
  StateAtTheEnd* theState = static_cast<StateAtTheEnd*>(aState);
  theState->mInTheFunction = theState->mThread->mDetachedState;
}

void RememberStateInDeleteFunction(void* aState) {
  StateAtTheEnd* theState = static_cast<StateAtTheEnd*>(aState);
  theState->mInTheDeleteFunction = theState->mThread->mDetachedState;
  qvSemaphore_Post(theState->mDone);
}

TEST(qvThreadDetached, IsMarkedForDeletionBehindItsFunction) {
  StateAtTheEnd theState;
  qvOSThread_Data theData = {
      RememberStateInFunction, RememberStateInDeleteFunction, &theState, 0, qvThread_Kind_Detached, 0};
  theState.mThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theState.mThread);
  qvThread_Run(theState.mThread);
  ASSERT_EQ(0, qvSemaphore_WaitTimeout(theState.mDone, 60000));
  EXPECT_EQ(kqvThreadDetachedState_Detached, theState.mInTheFunction);
  EXPECT_EQ(kqvThreadDetachedState_DetachedDelete, theState.mInTheDeleteFunction);
  qvSemaphore_Delete(theState.mDone);
}

struct DetachState {
  int mState = -1;
  qvOSSemaphore* mDone = qvSemaphore_New(0);
};

void RememberDetachState(void* aState) {
  DetachState* theState = static_cast<DetachState*>(aState);
  pthread_attr_t theAttributes;
  pthread_getattr_np(pthread_self(), &theAttributes);
  pthread_attr_getdetachstate(&theAttributes, &theState->mState);
  pthread_attr_destroy(&theAttributes);
  qvSemaphore_Post(theState->mDone);
}

TEST(qvThreadDetached, IsDetachedForTheSystemToo) {
  DetachState theState;
  qvOSThread_Data theData = {RememberDetachState, nullptr, &theState, 0, qvThread_Kind_Detached, 0};
  qvOSThread* theThread = qvThread_New(&theData);
  ASSERT_NE(nullptr, theThread);
  qvThread_Run(theThread);
  ASSERT_EQ(0, qvSemaphore_WaitTimeout(theState.mDone, 60000));
  EXPECT_EQ(PTHREAD_CREATE_DETACHED, theState.mState);
  qvSemaphore_Delete(theState.mDone);
}

// The handle may be gone as soon as the gate is open; the sanitizers see a late use of it.
TEST(qvThreadDetached, ManyReleaseTheirHandles) {
  DetachedLife theLife;
  qvOSThread_Data theData = {RunDetached, DeleteDetached, &theLife, 0, qvThread_Kind_Detached, 0};
  for (int i = 0; i < 200; ++i) {
    qvOSThread* theThread = qvThread_New(&theData);
    ASSERT_NE(nullptr, theThread);
    ASSERT_EQ(0, qvThread_Run(theThread));
    ASSERT_EQ(0, qvSemaphore_WaitTimeout(theLife.mDone, 60000));
  }
  EXPECT_EQ(400, theLife.mSteps.load());
  qvSemaphore_Delete(theLife.mDone);
}

TEST(qvThreadDetached, CannotBeWaitedForOrDeleted) {
  auto start = [] {
    qvOSThread_Data theData = {RunDetached, nullptr, nullptr, 0, qvThread_Kind_Detached, 0};
    return qvThread_New(&theData);
  };
  EXPECT_QV_ASSERTION(qvThread_Wait(start()), "aThread->mDetachedState != kqvThreadDetachedState_Detached",
                      "qvThread");
  EXPECT_QV_ASSERTION(qvThread_Delete(start()), "aThread->mDetachedState != kqvThreadDetachedState_Detached",
                      "qvThread");
}

TEST(qvThreadDetached, CannotBeDeletedWhileItRuns) {
  auto run = [] {
    qvOSThread_Data theData = {[](void*) { pause(); }, nullptr, nullptr, 0, qvThread_Kind_Detached, 0};
    qvOSThread* theThread = qvThread_New(&theData);
    qvThread_Run(theThread);
    return theThread;
  };
  EXPECT_QV_ASSERTION(qvThread_Delete(run()), "aThread->mDetachedState != kqvThreadDetachedState_Detached",
                      "qvThread");
}

}  // namespace
