#include "qvOS/qvMutex.h"

#include <dlfcn.h>
#include <errno.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <stddef.h>

#include <memory>
#include <thread>
#include <type_traits>

#include "qvOS/qvMutex_p.h"
#include "support/ChildProcess.h"
#include "support/FreeWatch.h"
#include "support/FreshProcess.h"
#include "support/Sanitizers.h"

namespace {

const char kBadHandle[] = "((aMutex) != NULL) && ((aMutex)->_mMagicNumber == (0xFEEDBABE))";
const char kSource[] = "qvMutex.posix";

struct MutexDeleter {
  void operator()(qvOSMutex* aMutex) const { qvMutex_Delete(aMutex); }
};
using MutexPtr = std::unique_ptr<qvOSMutex, MutexDeleter>;

MutexPtr NewMutex() { return MutexPtr(qvMutex_New()); }

bool gfInitFails = false;
int gAttributes = 0;                    // initialised and not destroyed
pthread_mutex_t* gDestroyed = nullptr;  // by the last pthread_mutex_destroy

// A handle around a system mutex that reports misuse, so that the system's refusals can be had.
struct RefusingMutex {
  RefusingMutex() {
    pthread_mutexattr_t theAttribute;
    pthread_mutexattr_init(&theAttribute);
    pthread_mutexattr_settype(&theAttribute, PTHREAD_MUTEX_ERRORCHECK);
    pthread_mutex_init(&mMutex.mMutex, &theAttribute);
    pthread_mutexattr_destroy(&theAttribute);
    mMutex._mMagicNumber = kqvMutex_Magic;
  }
  ~RefusingMutex() { pthread_mutex_destroy(&mMutex.mMutex); }
  qvMutex_t mMutex = {};
};

// Runs aBody on another thread and waits for it.
template <typename Body>
void OnAnotherThread(Body aBody) {
  std::thread(aBody).join();
}

}  // namespace

template <typename Function>
Function* TheSystems(Function* /*aStandIn*/, const char* aName) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, aName));
}

// Stand in for the system's functions: one can be made to fail, the others are watched.
extern "C" int pthread_mutex_init(pthread_mutex_t* aMutex, const pthread_mutexattr_t* anAttribute) noexcept {
  return gfInitFails ? ENOMEM : TheSystems(pthread_mutex_init, "pthread_mutex_init")(aMutex, anAttribute);
}

extern "C" int pthread_mutex_destroy(pthread_mutex_t* aMutex) noexcept {
  gDestroyed = aMutex;
  return TheSystems(pthread_mutex_destroy, "pthread_mutex_destroy")(aMutex);
}

extern "C" int pthread_mutexattr_init(pthread_mutexattr_t* anAttribute) noexcept {
  ++gAttributes;
  return TheSystems(pthread_mutexattr_init, "pthread_mutexattr_init")(anAttribute);
}

extern "C" int pthread_mutexattr_destroy(pthread_mutexattr_t* anAttribute) noexcept {
  --gAttributes;
  return TheSystems(pthread_mutexattr_destroy, "pthread_mutexattr_destroy")(anAttribute);
}

TEST(qvMutex, StatusCodesHaveTheirValues) {
  EXPECT_EQ(0, qvMutex_Status_NoError);
  EXPECT_EQ(1, qvMutex_Status_Error);
}

TEST(qvMutex, ConstantsOfTheObjectHaveTheirValues) {
  EXPECT_EQ(0xFEEDBABEu, kqvMutex_Magic);
  EXPECT_EQ(0, kqvMutex_NoOwner);
}

TEST(qvMutex, FieldsAreInTheDocumentedOrderAndWidth) {
  EXPECT_EQ(0u, offsetof(qvMutex_t, _mMagicNumber));
  EXPECT_LT(offsetof(qvMutex_t, _mMagicNumber), offsetof(qvMutex_t, mMutex));
  EXPECT_LT(offsetof(qvMutex_t, mMutex), offsetof(qvMutex_t, mOwnerThread));
  EXPECT_LT(offsetof(qvMutex_t, mOwnerThread), offsetof(qvMutex_t, mLockCount));
  EXPECT_TRUE((std::is_same<decltype(qvMutex_t::_mMagicNumber), uint32>::value));
  EXPECT_TRUE((std::is_same<decltype(qvMutex_t::mMutex), pthread_mutex_t>::value));
  EXPECT_TRUE((std::is_same<decltype(qvMutex_t::mOwnerThread), pthread_t>::value));
  EXPECT_TRUE((std::is_same<decltype(qvMutex_t::mLockCount), uint32>::value));
}

TEST(qvMutex, ANewMutexIsAliveAndFree) {
  MutexPtr theMutex = NewMutex();
  ASSERT_NE(nullptr, theMutex);
  EXPECT_EQ(0xFEEDBABEu, theMutex->_mMagicNumber);
  EXPECT_EQ(static_cast<pthread_t>(0), theMutex->mOwnerThread);
  EXPECT_EQ(0u, theMutex->mLockCount);
  EXPECT_FALSE(qvMutex_IsHeld(theMutex.get()));
}

TEST(qvMutex, AMutexThatTheSystemCannotMakeIsNull) {
  gfInitFails = true;
  qvOSMutex* theMutex = qvMutex_New();
  gfInitFails = false;
  EXPECT_EQ(nullptr, theMutex);
}

TEST(qvMutex, MakingAMutexLeavesNoAttributeBehind) {
  gAttributes = 0;
  MutexPtr theMutex = NewMutex();
  EXPECT_EQ(0, gAttributes);
  gfInitFails = true;
  qvMutex_New();
  gfInitFails = false;
  EXPECT_EQ(0, gAttributes) << "nor when it fails";
}

TEST(qvMutex, ALockThatTheSystemRefusesIsAnErrorAndChangesNothing) {
  RefusingMutex theRefusing;
  EXPECT_EQ(0, qvMutex_Lock(&theRefusing.mMutex));
  EXPECT_EQ(1, qvMutex_Lock(&theRefusing.mMutex));
  EXPECT_EQ(1u, theRefusing.mMutex.mLockCount);
  EXPECT_EQ(0, qvMutex_Unlock(&theRefusing.mMutex));
}

TEST(qvMutex, AnUnlockThatTheSystemRefusesIsAnErrorAfterTheCount) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer reports the wrong unlock itself";
  }
  RefusingMutex theRefusing;
  qvMutex_Posix_Tag_Held(&theRefusing.mMutex, 1);
  EXPECT_EQ(1, qvMutex_Unlock(&theRefusing.mMutex));
  EXPECT_EQ(0u, theRefusing.mMutex.mLockCount);
  EXPECT_EQ(static_cast<pthread_t>(0), theRefusing.mMutex.mOwnerThread);
}

TEST(qvMutex, DeletingNullIsHarmless) {
  ChildResult theResult = RunInChild([] { qvMutex_Delete(nullptr); });
  EXPECT_EQ(0, theResult.mExitCode);
}

TEST(qvMutex, LockMakesTheCallingThreadTheOwner) {
  MutexPtr theMutex = NewMutex();
  EXPECT_EQ(0, qvMutex_Lock(theMutex.get()));
  EXPECT_TRUE(pthread_equal(pthread_self(), theMutex->mOwnerThread));
  EXPECT_EQ(1u, theMutex->mLockCount);
  EXPECT_TRUE(qvMutex_IsHeld(theMutex.get()));
  EXPECT_EQ(0, qvMutex_Unlock(theMutex.get()));
}

TEST(qvMutex, AChildGivesBackWhatItsParentTookForTheFork) {
  MutexPtr theMutex = NewMutex();
  qvMutex_Lock(theMutex.get());
  qvMutex_Lock(theMutex.get());
  qvMutex_Lock(theMutex.get());
  IN_FRESH_PROCESS({
    qvMutex_S_UnlockInChild(theMutex.get());
    EXPECT_EQ(2u, theMutex->mLockCount);
    EXPECT_TRUE(qvMutex_IsHeld(theMutex.get()));
    EXPECT_EQ(0, qvMutex_Unlock(theMutex.get()));
    EXPECT_EQ(0, qvMutex_Unlock(theMutex.get()));
    EXPECT_FALSE(qvMutex_IsHeld(theMutex.get()));
    OnAnotherThread([&] {
      EXPECT_EQ(0, qvMutex_Lock(theMutex.get()));
      EXPECT_EQ(0, qvMutex_Unlock(theMutex.get()));
    });
  });
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(0, qvMutex_Unlock(theMutex.get()));
  }
}

TEST(qvMutex, AChildThatGivesBackTheOnlyLockHoldsNoneAnyMore) {
  MutexPtr theMutex = NewMutex();
  qvMutex_Lock(theMutex.get());
  IN_FRESH_PROCESS({
    qvMutex_S_UnlockInChild(theMutex.get());
    EXPECT_EQ(0u, theMutex->mLockCount);
    EXPECT_FALSE(qvMutex_IsHeld(theMutex.get()));
  });
  EXPECT_EQ(0, qvMutex_Unlock(theMutex.get()));
}

TEST(qvMutex, LockingTwiceCountsOneTwoOneZeroAndClearsTheOwnerOnlyAtZero) {
  MutexPtr theMutex = NewMutex();
  EXPECT_EQ(0, qvMutex_Lock(theMutex.get()));
  EXPECT_EQ(1u, theMutex->mLockCount);
  EXPECT_EQ(0, qvMutex_Lock(theMutex.get()));
  EXPECT_EQ(2u, theMutex->mLockCount);
  EXPECT_EQ(0, qvMutex_Unlock(theMutex.get()));
  EXPECT_EQ(1u, theMutex->mLockCount);
  EXPECT_TRUE(qvMutex_IsHeld(theMutex.get()));
  EXPECT_EQ(0, qvMutex_Unlock(theMutex.get()));
  EXPECT_EQ(0u, theMutex->mLockCount);
  EXPECT_EQ(static_cast<pthread_t>(0), theMutex->mOwnerThread);
  EXPECT_FALSE(qvMutex_IsHeld(theMutex.get()));
}

TEST(qvMutex, AMutexUnlockedAsOftenAsLockedIsFreeForOtherThreads) {
  MutexPtr theMutex = NewMutex();
  qvMutex_Lock(theMutex.get());
  qvMutex_Lock(theMutex.get());
  qvMutex_Unlock(theMutex.get());
  int theBusy = -1;
  OnAnotherThread([&] { theBusy = pthread_mutex_trylock(qvMutex_Posix_Get(theMutex.get())); });
  EXPECT_EQ(EBUSY, theBusy) << "one lock is still held";
  qvMutex_Unlock(theMutex.get());
  int theResult = -1;
  OnAnotherThread([&] {
    theResult = qvMutex_Lock(theMutex.get());
    qvMutex_Unlock(theMutex.get());
  });
  EXPECT_EQ(0, theResult);
}

TEST(qvMutex, UnlockingAFreeMutexReturnsErrorAndChangesNothing) {
  MutexPtr theMutex = NewMutex();
  EXPECT_EQ(1, qvMutex_Unlock(theMutex.get()));
  EXPECT_EQ(0u, theMutex->mLockCount);
  EXPECT_EQ(static_cast<pthread_t>(0), theMutex->mOwnerThread);
}

TEST(qvMutex, UnlockingFromAThreadThatDoesNotHoldItReturnsErrorAndKeepsTheOwner) {
  MutexPtr theMutex = NewMutex();
  qvMutex_Lock(theMutex.get());
  int theResult = -1;
  OnAnotherThread([&] { theResult = qvMutex_Unlock(theMutex.get()); });
  EXPECT_EQ(1, theResult);
  EXPECT_TRUE(qvMutex_IsHeld(theMutex.get()));
  EXPECT_EQ(1u, theMutex->mLockCount);
  EXPECT_EQ(0, qvMutex_Unlock(theMutex.get()));
}

TEST(qvMutex, IsHeldIsAboutTheCallingThreadOnly) {
  MutexPtr theMutex = NewMutex();
  qvMutex_Lock(theMutex.get());
  int theHeld = -1;
  OnAnotherThread([&] { theHeld = qvMutex_IsHeld(theMutex.get()); });
  EXPECT_EQ(0, theHeld);
  qvMutex_Unlock(theMutex.get());
}

TEST(qvMutex, ThreadsExcludeEachOther) {
  MutexPtr theMutex = NewMutex();
  int theCounter =
      0;  // a plain int: a mutex that lets two threads in loses counts and is seen by the sanitizer
  auto theBody = [&] {
    for (int i = 0; i < 10000; ++i) {
      qvMutex_Lock(theMutex.get());
      qvMutex_Lock(theMutex.get());
      theCounter += 1;
      qvMutex_Unlock(theMutex.get());
      qvMutex_Unlock(theMutex.get());
    }
  };
  std::thread theFirst(theBody);
  std::thread theSecond(theBody);
  // Asked without the lock while both threads change the owner.
  for (int i = 0; i < 10000; ++i) {
    EXPECT_FALSE(qvMutex_IsHeld(theMutex.get()));
  }
  theFirst.join();
  theSecond.join();
  EXPECT_EQ(20000, theCounter);
}

TEST(qvMutex, UnlockAssertsTheCountOfTheOwner) {
  MutexPtr theMutex = NewMutex();
  EXPECT_QV_ASSERTION(
      {
        qvMutex_Lock(theMutex.get());
        theMutex->mLockCount = 0;
        qvMutex_Unlock(theMutex.get());
      },
      "aMutex->mLockCount > 0", kSource);
}

TEST(qvMutex, PosixGetGivesTheSystemsMutexInside) {
  MutexPtr theMutex = NewMutex();
  EXPECT_EQ(&theMutex->mMutex, qvMutex_Posix_Get(theMutex.get()));
}

TEST(qvMutex, TheSystemsMutexIsRecursive) {
  MutexPtr theMutex = NewMutex();
  pthread_mutex_t* theSystemMutex = qvMutex_Posix_Get(theMutex.get());
  EXPECT_EQ(0, pthread_mutex_trylock(theSystemMutex));
  EXPECT_EQ(0, pthread_mutex_trylock(theSystemMutex));
  pthread_mutex_unlock(theSystemMutex);
  pthread_mutex_unlock(theSystemMutex);
}

TEST(qvMutex, TagUnheldGivesTheCountAndMarksTheMutexFree) {
  MutexPtr theMutex = NewMutex();
  qvMutex_Lock(theMutex.get());
  qvMutex_Lock(theMutex.get());
  qvMutex_Lock(theMutex.get());
  EXPECT_EQ(3u, qvMutex_Posix_Tag_Unheld(theMutex.get()));
  EXPECT_EQ(0u, theMutex->mLockCount);
  EXPECT_EQ(static_cast<pthread_t>(0), theMutex->mOwnerThread);
  EXPECT_FALSE(qvMutex_IsHeld(theMutex.get()));
  qvMutex_Posix_Tag_Held(theMutex.get(), 3);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(0, qvMutex_Unlock(theMutex.get()));
  }
}

TEST(qvMutex, TagHeldRestoresOwnerAndCount) {
  MutexPtr theMutex = NewMutex();
  qvMutex_Posix_Tag_Held(theMutex.get(), 7);
  EXPECT_TRUE(qvMutex_IsHeld(theMutex.get()));
  EXPECT_EQ(7u, theMutex->mLockCount);
}

TEST(qvMutex, TheTagFunctionsDoNotCheckTheMagicNumber) {
  qvMutex_t theMutex = {};
  theMutex.mLockCount = 2;
  EXPECT_EQ(2u, qvMutex_Posix_Tag_Unheld(&theMutex));
  qvMutex_Posix_Tag_Held(&theMutex, 5);
  EXPECT_EQ(5u, theMutex.mLockCount);
}

TEST(qvMutex, AConditionWaitHandsTheMutexToTheOtherThreadAndBack) {
  MutexPtr theMutex = NewMutex();
  pthread_cond_t theCondition = PTHREAD_COND_INITIALIZER;
  bool theReady = false;
  qvMutex_Lock(theMutex.get());
  std::thread theOther([&] {
    qvMutex_Lock(theMutex.get());  // waits until the condition wait has released the mutex
    theReady = true;
    pthread_cond_signal(&theCondition);
    qvMutex_Unlock(theMutex.get());
  });
  while (!theReady) {
    uint32 theCount = qvMutex_Posix_Tag_Unheld(theMutex.get());
    pthread_cond_wait(&theCondition, qvMutex_Posix_Get(theMutex.get()));
    qvMutex_Posix_Tag_Held(theMutex.get(), theCount);
  }
  EXPECT_TRUE(qvMutex_IsHeld(theMutex.get()));
  EXPECT_EQ(1u, theMutex->mLockCount);
  EXPECT_EQ(0, qvMutex_Unlock(theMutex.get()));
  theOther.join();
}

TEST(qvMutex, EveryCheckedOperationAssertsOnNull) {
  qvOSMutex* theNull = nullptr;
  EXPECT_QV_ASSERTION(qvMutex_Lock(theNull), kBadHandle, kSource);
  EXPECT_QV_ASSERTION(qvMutex_Unlock(theNull), kBadHandle, kSource);
  EXPECT_QV_ASSERTION(qvMutex_IsHeld(theNull), kBadHandle, kSource);
  EXPECT_QV_ASSERTION(qvMutex_Posix_Get(theNull), kBadHandle, kSource);
}

TEST(qvMutex, EveryCheckedOperationAssertsOnAnObjectWithoutTheMagicNumber) {
  qvMutex_t theCleared = {};  // as a deleted mutex is
  EXPECT_QV_ASSERTION(qvMutex_Delete(&theCleared), kBadHandle, kSource);
  EXPECT_QV_ASSERTION(qvMutex_Lock(&theCleared), kBadHandle, kSource);
  EXPECT_QV_ASSERTION(qvMutex_Unlock(&theCleared), kBadHandle, kSource);
  EXPECT_QV_ASSERTION(qvMutex_IsHeld(&theCleared), kBadHandle, kSource);
  EXPECT_QV_ASSERTION(qvMutex_Posix_Get(&theCleared), kBadHandle, kSource);
}

TEST(qvMutex, DeleteDestroysTheSystemsMutex) {
  qvOSMutex* theMutex = qvMutex_New();
  pthread_mutex_t* theSystems = qvMutex_Posix_Get(theMutex);
  qvMutex_Delete(theMutex);
  EXPECT_EQ(theSystems, gDestroyed);
}

TEST(qvMutex, DeleteClearsTheMagicNumberBeforeTheMemoryIsFreed) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer has an allocator of its own";
  }
  qvOSMutex* theMutex = qvMutex_New();
  WatchFreeOf(theMutex);
  qvMutex_Delete(theMutex);
  EXPECT_EQ(0u, FirstWordWhenFreed());
}

TEST(qvMutex, UsingADeletedHandleAsserts) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer reports the use of freed memory itself";
  }
  EXPECT_QV_ASSERTION(
      {
        qvOSMutex* theMutex = qvMutex_New();
        qvMutex_Delete(theMutex);
        qvMutex_Lock(theMutex);
      },
      kBadHandle, kSource);
}
