#include "qvraTools/qvTime.h"

#include <limits.h>
#include <time.h>

#include "qvOS/qvTime_p.h"
#include "qvraTools/qvAssert.h"
#include "qvraTools/qvTime_p.h"

// All fields but tm_msec, which the system's structure does not have.
static void qvTime_S_FromSystem(qvtm* aResult, const struct tm* aTime) {
  aResult->tm_sec = aTime->tm_sec;
  aResult->tm_min = aTime->tm_min;
  aResult->tm_hour = aTime->tm_hour;
  aResult->tm_mday = aTime->tm_mday;
  aResult->tm_mon = aTime->tm_mon;
  aResult->tm_year = aTime->tm_year;
  aResult->tm_isdst = aTime->tm_isdst;
  aResult->tm_wday = aTime->tm_wday;
  aResult->tm_yday = aTime->tm_yday;
}

static struct tm qvTime_S_ToSystem(const qvtm* aTime) {
  struct tm theTime = {};
  theTime.tm_sec = aTime->tm_sec;
  theTime.tm_min = aTime->tm_min;
  theTime.tm_hour = aTime->tm_hour;
  theTime.tm_mday = aTime->tm_mday;
  theTime.tm_mon = aTime->tm_mon;
  theTime.tm_year = aTime->tm_year;
  theTime.tm_isdst = aTime->tm_isdst;
  theTime.tm_wday = aTime->tm_wday;
  theTime.tm_yday = aTime->tm_yday;
  return theTime;
}

int qvTime_time(int* aTime) {
  qvtimeval theNow;
  qvTime_GetTimeOfDay(&theNow);
  if (aTime != nullptr) {
    *aTime = theNow.tv_sec;
  }
  return theNow.tv_sec;
}

void qvTime_GetLocalTimeMS(qvULongLong* aResult) {
  qvtimeval theNow;
  qvTime_GetTimeOfDay(&theNow);
  qvTimeVal_S_GetMilliSeconds(&theNow, aResult);
}

qvtm* qvTime_localtime(const int* aTime, qvtm* aResult) {
  qvAssert(aTime != NULL);
  const time_t theSystemTime = *aTime;
  qvTime_S_EnterZone();
  const struct tm* theTime = localtime(&theSystemTime);
  if (theTime != nullptr) {
    qvTime_S_FromSystem(aResult, theTime);
    aResult->tm_msec = 0;
  }
  qvTime_S_LeaveZone();
  return theTime != nullptr ? aResult : nullptr;
}

qvtm* qvTime_gmtime(const int* aTime, qvtm* aResult) {
  qvAssert(aTime != NULL);
  const time_t theSystemTime = *aTime;
  // It fails only for years that no int holds, and those are out of reach of 32 bits of seconds.
  qvTime_S_EnterZone();
  qvTime_S_FromSystem(aResult, gmtime(&theSystemTime));
  qvTime_S_LeaveZone();
  return aResult;
}

int qvTime_mktime(qvtm* aTime) {
  struct tm theTime = qvTime_S_ToSystem(aTime);
  qvTime_S_EnterZone();
  const time_t theResult = mktime(&theTime);
  qvTime_S_LeaveZone();
  // Where time_t has 64 bits, a time that no int holds is refused as the 32-bit system refuses it.
  if (theResult < 0 || theResult > INT_MAX) {
    return -1;
  }
  qvTime_S_FromSystem(aTime, &theTime);
  return (int)theResult;
}
