/* qvTime_p.h - how a reading of the monotonic clock becomes a tick count. */
#ifndef QVOS_QVTIME_P_H
#define QVOS_QVTIME_P_H

#include <time.h>

#include "qvOS/qvTime.h"

/* The whole milliseconds of aTime, cut to 32 bits. */
uint32 qvTime_S_ToTickCount(const struct timespec* aTime);

#endif
