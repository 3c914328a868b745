#include "qvOS/qvMutex.h"

#include <pthread.h>
#include <stdlib.h>

#include "qvOS/qvMutex_p.h"
#include "qvraTools/qvAssert.h"

static int qvMutex_S_InitRecursive(pthread_mutex_t* aMutex) {
  pthread_mutexattr_t theAttribute;
  int theResult = pthread_mutexattr_init(&theAttribute);
  if (theResult != 0) {
    return theResult;
  }
  theResult = pthread_mutexattr_settype(&theAttribute, PTHREAD_MUTEX_RECURSIVE);
  if (theResult == 0) {
    theResult = pthread_mutex_init(aMutex, &theAttribute);
  }
  pthread_mutexattr_destroy(&theAttribute);
  return theResult;
}

// The owner is written under the lock but qvMutex_IsHeld reads it without. Whatever other threads write,
// only the calling thread itself can make the owner equal to the calling thread: no ordering is needed.
static void qvMutex_S_SetOwner(qvOSMutex* aMutex, pthread_t anOwner) {
  __atomic_store_n(&aMutex->mOwnerThread, anOwner, __ATOMIC_RELAXED);
}

__attribute__((tls_model("initial-exec"))) static thread_local pthread_t sSelf = kqvMutex_NoOwner;

// Apart, so that the way that is always taken saves no registers for this one.
__attribute__((noinline, cold)) static pthread_t qvMutex_S_FindSelf(void) {
  sSelf = pthread_self();
  return sSelf;
}

// pthread_self, remembered for each thread: as a call it would take a good part of a lock's time.
static pthread_t qvMutex_S_Self(void) {
  const pthread_t theSelf = sSelf;
  return theSelf != kqvMutex_NoOwner ? theSelf : qvMutex_S_FindSelf();
}

static bool qvMutex_S_IsHeld(const qvOSMutex* aMutex) {
  return pthread_equal(__atomic_load_n(&aMutex->mOwnerThread, __ATOMIC_RELAXED), qvMutex_S_Self()) != 0;
}

qvOSMutex* qvMutex_New(void) {
  // Not qvMalloc: the caller is told when there is no memory for a mutex.
  qvOSMutex* theMutex = static_cast<qvOSMutex*>(malloc(sizeof(qvOSMutex)));
  if (theMutex == NULL) {
    return NULL;
  }
  theMutex->_mMagicNumber = kqvMutex_Magic;
  if (qvMutex_S_InitRecursive(&theMutex->mMutex) != 0) {
    free(theMutex);
    return NULL;
  }
  qvMutex_S_SetOwner(theMutex, kqvMutex_NoOwner);
  theMutex->mLockCount = 0;
  return theMutex;
}

void qvMutex_Delete(qvOSMutex* aMutex) {
  if (aMutex == NULL) {
    return;
  }
  QVMAGICNUMBER_CHECK(aMutex, kqvMutex_Magic);
  // An atomic store, because the compiler drops a plain one to memory that is freed next.
  __atomic_store_n(&aMutex->_mMagicNumber, 0, __ATOMIC_RELAXED);
  pthread_mutex_destroy(&aMutex->mMutex);
  free(aMutex);
}

int qvMutex_Lock(qvOSMutex* aMutex) {
  QVMAGICNUMBER_CHECK(aMutex, kqvMutex_Magic);
  if (pthread_mutex_lock(&aMutex->mMutex) != 0) {
    return qvMutex_Status_Error;
  }
  qvMutex_S_SetOwner(aMutex, qvMutex_S_Self());
  aMutex->mLockCount += 1;
  return qvMutex_Status_NoError;
}

int qvMutex_Unlock(qvOSMutex* aMutex) {
  QVMAGICNUMBER_CHECK(aMutex, kqvMutex_Magic);
  if (!qvMutex_S_IsHeld(aMutex)) {
    return qvMutex_Status_Error;
  }
  qvAssert(aMutex->mLockCount > 0);
  aMutex->mLockCount -= 1;
  if (aMutex->mLockCount == 0) {
    qvMutex_S_SetOwner(aMutex, kqvMutex_NoOwner);
  }
  return pthread_mutex_unlock(&aMutex->mMutex) != 0 ? qvMutex_Status_Error : qvMutex_Status_NoError;
}

void qvMutex_S_UnlockInChild(qvOSMutex* aMutex) {
  for (uint32 i = 0; i < aMutex->mLockCount; ++i) {
    pthread_mutex_unlock(&aMutex->mMutex);  // refused by most systems, but a lock checker must hear of it
  }
  // Made anew, also to forget the threads that were waiting in the parent.
  qvMutex_S_InitRecursive(&aMutex->mMutex);
  aMutex->mLockCount -= 1;
  for (uint32 i = 0; i < aMutex->mLockCount; ++i) {
    pthread_mutex_lock(&aMutex->mMutex);
  }
  if (aMutex->mLockCount == 0) {
    qvMutex_S_SetOwner(aMutex, kqvMutex_NoOwner);
  }
}

int qvMutex_IsHeld(qvOSMutex* aMutex) {
  QVMAGICNUMBER_CHECK(aMutex, kqvMutex_Magic);
  return qvMutex_S_IsHeld(aMutex);
}

pthread_mutex_t* qvMutex_Posix_Get(qvOSMutex* aMutex) {
  QVMAGICNUMBER_CHECK(aMutex, kqvMutex_Magic);
  return &aMutex->mMutex;
}

uint32 qvMutex_Posix_Tag_Unheld(qvOSMutex* aMutex) {
  uint32 theLockCount = aMutex->mLockCount;
  qvMutex_S_SetOwner(aMutex, kqvMutex_NoOwner);
  aMutex->mLockCount = 0;
  return theLockCount;
}

void qvMutex_Posix_Tag_Held(qvOSMutex* aMutex, uint32 aSavedLockCount) {
  qvMutex_S_SetOwner(aMutex, pthread_self());
  aMutex->mLockCount = aSavedLockCount;
}
