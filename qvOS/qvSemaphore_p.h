/* qvSemaphore_p.h - what is behind a qvOSSemaphore, and how a delay becomes a deadline. */
#ifndef QVOS_QVSEMAPHORE_P_H
#define QVOS_QVSEMAPHORE_P_H

#include <semaphore.h>
#include <time.h>

#include "qvOS/qvSemaphore.h"

#define kqvSemaphore_Magic 0xFEEDFADE

struct qvSemaphore_t {
  uint32 _mMagicNumber; /* kqvSemaphore_Magic while alive, 0 once deleted */
  sem_t mSemaphore;     /* private to the process                         */
};

/* Stores the time aMSDelay milliseconds after aNow, counted in whole milliseconds: what aNow has below a
 * millisecond is dropped. */
void qvSemaphore_S_MakeDeadline(const struct timespec* aNow, uint32 aMSDelay, struct timespec* aDeadline);

#endif
