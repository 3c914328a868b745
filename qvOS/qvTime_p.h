/* qvTime_p.h - how a reading of the monotonic clock becomes a tick count; the lock around the time zone. */
#ifndef QVOS_QVTIME_P_H
#define QVOS_QVTIME_P_H

#include <time.h>

#include "qvOS/qvTime.h"

QV_BEGIN_DECLS

/* Around every call of the system that looks at the time zone (localtime, gmtime, mktime): the results of
 * these calls are shared, and the system's own lock of the zone would stay taken in a child process if
 * another thread was in such a call. A fork waits for this one. */
void qvTime_S_EnterZone(void);
void qvTime_S_LeaveZone(void);

/* From now on a fork waits. Happens by itself with the first EnterZone. Whoever watches forks for a lock that
 * is held during EnterZone calls this first: the system runs what was installed last before what was
 * installed first, and so takes the locks in their order. */
void qvTime_S_WatchForks(void);

/* The whole milliseconds of aTime, cut to 32 bits. */
uint32 qvTime_S_ToTickCount(const struct timespec* aTime);

QV_END_DECLS

#endif
