/* qvChrono.h - a stopwatch on the monotonic clock that can be paused.
 *
 * Embed a qvChrono and initialise it with qvChrono_S_Init, or allocate one with qvChrono_New. Times are
 * milliseconds unless a name ends in _S. A watch has no lock: it belongs to one thread at a time. No argument
 * may be null where that is not said. */
#ifndef QVRATOOLS_QVCHRONO_H
#define QVRATOOLS_QVCHRONO_H

#include "qvOS/qvTypes.h"
#include "qvraTools/qvLongLong.h"

/* A stopwatch; callers may read the fields. */
typedef struct qvChrono_t {
  qvULongLong mStartTime; /* when counting notionally began, on the monotonic clock */
  qvULongLong mPauseTime; /* what the watch showed when it was paused last */
  int mfPaused;           /* 1 while paused */
} qvChrono;

QV_BEGIN_DECLS

/* Not paused, and running since the monotonic clock's zero. */
QVLOG_API void qvChrono_S_Init(qvChrono* aChrono);

/* The monotonic clock in milliseconds. */
QVLOG_API void qvChrono_S_GetTimeMS(qvULongLong* aResult);

/* A new, initialised watch. Delete releases it; null is ignored. */
QVLOG_API qvChrono* qvChrono_New(void);
QVLOG_API void qvChrono_Delete(qvChrono* aChrono);

/* Starts counting at 0, or at *anOffset when that is not null, and ends a pause. */
QVLOG_API void qvChrono_Start(qvChrono* aChrono, const qvULongLong* anOffset);
QVLOG_API void qvChrono_Start_S(qvChrono* aChrono, uint32 aSeconds);

/* Freezes the time. Does nothing on a watch that is paused. */
QVLOG_API void qvChrono_Pause(qvChrono* aChrono);
/* Goes on from the frozen time. Does nothing on a watch that runs. */
QVLOG_API void qvChrono_Resume(qvChrono* aChrono);

/* The time the watch shows. */
QVLOG_API void qvChrono_GetTime(qvChrono* aChrono, qvULongLong* aResult);
/* The same in whole seconds, cut to 32 bits. */
QVLOG_API uint32 qvChrono_GetTime_S(qvChrono* aChrono);
/* The same as whole seconds (cut to 32 bits) and the milliseconds that are left, 0 to 999. */
QVLOG_API void qvChrono_GetTime_S_MS(qvChrono* aChrono, uint32* aSeconds, uint32* aMilliSeconds);

QV_END_DECLS

#endif
