/* qvTime.h - calendar time with milliseconds, RFC 1123 dates, and time values on the monotonic clock.
 *
 * A time is a number of seconds since 1970 in UTC, in an int. Nothing here logs or keeps state. */
#ifndef QVRATOOLS_QVTIME_H
#define QVRATOOLS_QVTIME_H

#include "qvOS/qvTime.h"
#include "qvOS/qvTypes.h"
#include "qvraTools/qvLongLong.h"

/* Broken-down time. The order of the fields differs from that of the system's struct tm. */
typedef struct qvtm_t {
  int32 tm_sec;   /* 0 to 59 */
  int32 tm_min;   /* 0 to 59 */
  int32 tm_hour;  /* 0 to 23 */
  int32 tm_mday;  /* 1 to 31 */
  int32 tm_mon;   /* 0 to 11 */
  int32 tm_year;  /* years since 1900 */
  int32 tm_isdst; /* daylight saving: above 0 yes, 0 no, negative unknown */
  int32 tm_wday;  /* 0 to 6, 0 is Sunday */
  int32 tm_yday;  /* 0 to 365 */
  int32 tm_msec;  /* 0 to 999 */
} qvtm;

QV_BEGIN_DECLS

/* ---- Calendar time ---- */

/* The time now; stored in *aTime too unless that is null. */
QVLOG_API int qvTime_time(int* aTime);

/* The milliseconds since 1970, UTC. */
QVLOG_API void qvTime_GetLocalTimeMS(qvULongLong* aResult);

/* *aTime in local time, with tm_msec 0. Returns aResult, or null when the system cannot convert; *aResult is
 * unchanged then. A null aTime fails an assertion. Not reentrant: it goes through the system's one shared
 * struct tm. */
QVLOG_API qvtm* qvTime_localtime(const int* aTime, qvtm* aResult);

/* *aTime in UTC, leaving tm_msec as it is. Returns aResult. A null aTime fails an assertion. Not reentrant,
 * as qvTime_localtime. */
QVLOG_API qvtm* qvTime_gmtime(const int* aTime, qvtm* aResult);

/* The time of a broken-down local time. The fields (not tm_msec) are brought into their ranges, and tm_wday,
 * tm_yday and tm_isdst are set. Returns -1 and leaves *aTime unchanged when there is no such time, or when it
 * is before 1970 or too late for an int. */
QVLOG_API int qvTime_mktime(qvtm* aTime);

/* The time now as RFC 1123 has it, such as "Sun, 06 Nov 1994 08:49:37 GMT". The caller frees it with qvFree.
 * Not reentrant, as qvTime_gmtime. */
QVLOG_API char* qvTime_GetRFC1123Date(void);

/* Reads a date such as "Sun, 06 Nov 1994 08:49:37 GMT". Parts may be missing; they stay 0. Words that are not
 * understood are skipped.
 *
 * The result is what the text says: the time zone at its end is recognised but not applied.
 *
 * Returns 0; -1 for a null aStr (*aResult is unchanged); -2 for a word of more than 8 characters, such as
 * "Wednesday" (*aResult holds what stood before it); -3 when nothing was recognised. Any thread may call it.
 */
QVLOG_API int qvTime_ParseRFC1123Date(const char* aStr, qvtm* aResult);

/* ---- Time values on the monotonic clock ----
 *
 * tv_usec of a time value is 0 to 999999. No argument may be null. Any thread may call these. */

/* The monotonic time now. */
QVLOG_API void qvTimeVal_Time(qvtimeval* aTime);
QVLOG_API uint32 qvTimeVal_Seconds(void);

/* 1 when aX is earlier than aY, else 0. */
QVLOG_API int qvTimeVal_Less(const qvtimeval* aX, const qvtimeval* aY);

/* 1 when aX is later than aY, -1 when it is earlier, 0 when they are equal. */
QVLOG_API int qvTimeVal_Compare(const qvtimeval* aX, const qvtimeval* aY);

/* *aResult = *aX - *aY. Returns 1 when the difference is negative, else 0. A negative difference carries its
 * sign in tv_sec, or, when it is shorter than a second, in tv_usec: (-2, 500000) is -2.5 s, (0, -300000) is
 * -0.3 s. aResult may be one of the operands. */
QVLOG_API int qvTimeVal_Substract(qvtimeval* aResult, const qvtimeval* aX, const qvtimeval* aY); /* sic */

/* Adds milliseconds. */
QVLOG_API void qvTimeVal_Add(qvtimeval* aTime, uint32 aMilliSeconds);

/* A deadline: the monotonic time now plus aMilliSeconds. */
QVLOG_API void qvTimeVal_TimeOfTimeOut(qvtimeval* aTime, uint32 aMilliSeconds);

/* The milliseconds left until the deadline aTime; 0 when it is now or has passed. */
QVLOG_API uint32 qvTimeVal_RemainingTimeOut(const qvtimeval* aTime);

QV_END_DECLS

#endif
