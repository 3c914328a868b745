/* qvSemaphore.h - counting semaphore with a timed wait.
 *
 * qvSemaphore_New makes a handle, qvSemaphore_Delete releases it. Any thread of the process may use it. A
 * null or deleted handle fails an assertion, which ends the process.
 *
 * A signal that interrupts a wait is an Error; the wait is not resumed. */
#ifndef QVOS_QVSEMAPHORE_H
#define QVOS_QVSEMAPHORE_H

#include "qvOS/qvTypes.h"

/* Results of the functions below. */
#define qvSemaphore_Status_NoError 0
#define qvSemaphore_Status_TimeOut 1
#define qvSemaphore_Status_Error   2

QV_BEGIN_DECLS

/* A semaphore; made and released by the functions below only. */
typedef struct qvSemaphore_t qvOSSemaphore;

/* A new semaphore that holds anInitialValue counts; null when memory runs out or the system refuses the
 * value (it refuses negative ones). */
QVLOG_API qvOSSemaphore* qvSemaphore_New(int anInitialValue);

/* Releases a semaphore that nobody waits for. Null is ignored. */
QVLOG_API void qvSemaphore_Delete(qvOSSemaphore* aSemaphore);

/* Adds one count and so wakes one waiting thread. Returns NoError, or Error when the count is at its highest
 * already. */
QVLOG_API int qvSemaphore_Post(qvOSSemaphore* aSemaphore);

/* Takes one count, waiting for it without limit. Returns NoError when taken, Error otherwise. */
QVLOG_API int qvSemaphore_Wait(qvOSSemaphore* aSemaphore);

/* Takes one count if there is one. Returns NoError when taken, TimeOut when there was none, Error
 * otherwise. */
QVLOG_API int qvSemaphore_TryWait(qvOSSemaphore* aSemaphore);

/* Takes one count, waiting at most aMSDelay milliseconds (0: do not wait). Returns NoError when taken,
 * TimeOut when the delay passed, Error otherwise. The wait can end up to one millisecond early. It is
 * measured on the wall clock: setting the clock lengthens or shortens a wait that is going on. */
QVLOG_API int qvSemaphore_WaitTimeout(qvOSSemaphore* aSemaphore, uint32 aMSDelay);

QV_END_DECLS

#endif
