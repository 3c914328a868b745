/* qvTime.h (operating system) - wall clock, time zone, tick count and the date of a build.
 *
 * Any thread may call these functions. Calendar time is in qvraTools/qvTime.h, the monotonic clock in
 * microseconds in qvOS/qvMonoliticTime.h. */
#ifndef QVOS_QVTIME_H
#define QVOS_QVTIME_H

#include <time.h>

#include "qvOS/qvTypes.h"

/* A time or a span of time. tv_usec is 0 to 999999 where a clock fills it. */
typedef struct qvtimeval {
  int32 tv_sec;  /* seconds      */
  int32 tv_usec; /* microseconds */
} qvtimeval;

/* The time zone of the process. */
typedef struct qvtimezone {
  int32 tz_minuteswest; /* minutes EAST of Greenwich, despite the name: +60 for Central Europe */
  int32 tz_dsttime;     /* 60 while daylight saving time is in force, otherwise 0              */
} qvtimezone;

/* Seconds since the epoch, as mktime gives them. */
typedef time_t qvtime_t;

QV_BEGIN_DECLS

/* Stores the time since the epoch in *aTimeVal. */
QVLOG_API void qvTime_GetTimeOfDay(qvtimeval* aTimeVal);

/* Stores the offset of the process's time zone and whether daylight saving time is in force now. The offset
 * is that of standard time, in summer too. Returns 0. */
QVLOG_API int qvTime_GetTimeZone(qvtimezone* aTimeZone);

/* The local midnight at which the day aTime began, where aTime is the text of __DATE__ ("Feb  3 2015").
 * Returns 0 when that is no month, day and year. */
QVLOG_API qvtime_t qvTime_ConvertMacroDate(const char* aTime);

/* Milliseconds of the monotonic clock. Starts again from 0 after 49.7 days: compare by subtracting. */
QVLOG_API uint32 qvTime_GetTickCount(void);

QV_END_DECLS

#endif
