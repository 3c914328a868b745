/* qvMutex.h - a recursive mutex that knows its owner and how often the owner holds it.
 *
 * qvMutex_New makes a handle, qvMutex_Delete releases it. Any thread may use a handle. A null or deleted
 * handle fails an assertion, which ends the process; only the two tag functions do not look at it. */
#ifndef QVOS_QVMUTEX_H
#define QVOS_QVMUTEX_H

#include <pthread.h>

#include "qvOS/qvTypes.h"

/* Results of the functions below. */
#define qvMutex_Status_NoError 0
#define qvMutex_Status_Error   1

QV_BEGIN_DECLS

/* A mutex; made and released by the functions below only. */
typedef struct qvMutex_t qvOSMutex;

/* A new mutex that nobody holds; null when memory or the system's mutexes run out. */
QVLOG_API qvOSMutex* qvMutex_New(void);

/* Releases a mutex that nobody holds. Null is ignored. */
QVLOG_API void qvMutex_Delete(qvOSMutex* aMutex);

/* Waits for the mutex and takes it. A thread that holds it already takes it once more without waiting and
 * must unlock it as often. Returns NoError, or Error when the system refuses. */
QVLOG_API int qvMutex_Lock(qvOSMutex* aMutex);

/* Gives back one Lock of the calling thread. Returns NoError; Error, with nothing changed, when the calling
 * thread does not hold the mutex. */
QVLOG_API int qvMutex_Unlock(qvOSMutex* aMutex);

/* Nonzero when the calling thread holds the mutex, 0 otherwise. Takes no lock. */
QVLOG_API int qvMutex_IsHeld(qvOSMutex* aMutex);

/* The system's mutex inside, for waiting on a condition variable with it; it lives as long as the handle.
 *
 * A condition wait releases the system's mutex behind the back of this one, and only one level of it: wait
 * with the mutex locked once, between these two calls.
 *
 *   theCount = qvMutex_Posix_Tag_Unheld(theMutex);
 *   pthread_cond_wait(&theCondition, qvMutex_Posix_Get(theMutex));
 *   qvMutex_Posix_Tag_Held(theMutex, theCount); */
QVLOG_API pthread_mutex_t* qvMutex_Posix_Get(qvOSMutex* aMutex);

/* Marks the mutex as free without unlocking it. Returns how often the owner held it, for Tag_Held. The
 * calling thread holds the mutex. */
QVLOG_API uint32 qvMutex_Posix_Tag_Unheld(qvOSMutex* aMutex);

/* Marks the mutex as held aSavedLockCount times by the calling thread, without locking it. The calling
 * thread has just got the system's mutex back. */
QVLOG_API void qvMutex_Posix_Tag_Held(qvOSMutex* aMutex, uint32 aSavedLockCount);

QV_END_DECLS

#endif
