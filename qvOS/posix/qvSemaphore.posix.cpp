#include "qvOS/qvSemaphore.h"

#include <errno.h>
#include <semaphore.h>
#include <stdlib.h>
#include <time.h>

#include "qvOS/qvSemaphore_p.h"
#include "qvraTools/qvAssert.h"

#define kqvSemaphore_ProcessPrivate 0
#define kqvSemaphore_MSPerSecond    1000
#define kqvSemaphore_NSPerMS        1000000

// Turns the result of a wait into a status; aTimeOutError is the error number that means "no count in time".
static int qvSemaphore_S_StatusOfWait(int aWaitResult, int aTimeOutError) {
  if (aWaitResult == 0) {
    return qvSemaphore_Status_NoError;
  }
  return errno == aTimeOutError ? qvSemaphore_Status_TimeOut : qvSemaphore_Status_Error;
}

void qvSemaphore_S_MakeDeadline(const struct timespec* aNow, uint32 aMSDelay, struct timespec* aDeadline) {
  uint64 theTarget = static_cast<uint64>(aNow->tv_sec) * kqvSemaphore_MSPerSecond +
                     static_cast<uint64>(aNow->tv_nsec / kqvSemaphore_NSPerMS) + aMSDelay;
  aDeadline->tv_sec = static_cast<time_t>(theTarget / kqvSemaphore_MSPerSecond);
  aDeadline->tv_nsec = static_cast<long>(theTarget % kqvSemaphore_MSPerSecond) * kqvSemaphore_NSPerMS;
}

qvOSSemaphore* qvSemaphore_New(int anInitialValue) {
  // Not qvMalloc: the caller is told when there is no memory for a semaphore.
  qvOSSemaphore* theSemaphore = static_cast<qvOSSemaphore*>(malloc(sizeof(qvOSSemaphore)));
  if (theSemaphore == NULL) {
    return NULL;
  }
  theSemaphore->_mMagicNumber = kqvSemaphore_Magic;
  // A negative value becomes one above the system's limit, which it refuses.
  if (sem_init(&theSemaphore->mSemaphore, kqvSemaphore_ProcessPrivate,
               static_cast<unsigned int>(anInitialValue)) != 0) {
    free(theSemaphore);
    return NULL;
  }
  return theSemaphore;
}

void qvSemaphore_Delete(qvOSSemaphore* aSemaphore) {
  if (aSemaphore == NULL) {
    return;
  }
  QVMAGICNUMBER_CHECK(aSemaphore, kqvSemaphore_Magic);
  // An atomic store, because the compiler drops a plain one to memory that is freed next.
  __atomic_store_n(&aSemaphore->_mMagicNumber, 0, __ATOMIC_RELAXED);
  sem_destroy(&aSemaphore->mSemaphore);
  free(aSemaphore);
}

int qvSemaphore_Post(qvOSSemaphore* aSemaphore) {
  QVMAGICNUMBER_CHECK(aSemaphore, kqvSemaphore_Magic);
  return sem_post(&aSemaphore->mSemaphore) != 0 ? qvSemaphore_Status_Error : qvSemaphore_Status_NoError;
}

int qvSemaphore_Wait(qvOSSemaphore* aSemaphore) {
  QVMAGICNUMBER_CHECK(aSemaphore, kqvSemaphore_Magic);
  // KEEP qvSemaphore.AnInterruptedWaitIsAnErrorAndIsNotResumed
  // No loop, usual as one is here: a signal ends the wait, and whether to wait on is for the caller to say.
  return sem_wait(&aSemaphore->mSemaphore) != 0 ? qvSemaphore_Status_Error : qvSemaphore_Status_NoError;
}

int qvSemaphore_TryWait(qvOSSemaphore* aSemaphore) {
  QVMAGICNUMBER_CHECK(aSemaphore, kqvSemaphore_Magic);
  return qvSemaphore_S_StatusOfWait(sem_trywait(&aSemaphore->mSemaphore), EAGAIN);
}

int qvSemaphore_WaitTimeout(qvOSSemaphore* aSemaphore, uint32 aMSDelay) {
  QVMAGICNUMBER_CHECK(aSemaphore, kqvSemaphore_Magic);
  struct timespec theNow;
  if (clock_gettime(CLOCK_REALTIME, &theNow) != 0) {
    return qvSemaphore_Status_Error;
  }
  struct timespec theDeadline;
  qvSemaphore_S_MakeDeadline(&theNow, aMSDelay, &theDeadline);
  // KEEP qvSemaphore.AnInterruptedWaitTimeoutIsAnErrorAndIsNotResumed
  return qvSemaphore_S_StatusOfWait(sem_timedwait(&aSemaphore->mSemaphore, &theDeadline), ETIMEDOUT);
}
