/* qvMonoliticTime.h - the monotonic clock, which no change of the system time moves. (sic: "Monolitic") */
#ifndef QVOS_QVMONOLITICTIME_H
#define QVOS_QVMONOLITICTIME_H

#include "qvOS/qvTime.h"

QV_BEGIN_DECLS

/* Stores seconds and microseconds since some fixed point in *aTimeVal; zeros when the clock cannot be read.
 * Any thread may call it. */
QVLOG_API void qvMonoliticTime_GetTime(qvtimeval* aTimeVal);

QV_END_DECLS

#endif
