#include "qvOS/qvTime.h"

#include <pthread.h>
#include <stdio.h>
#include <string.h>
#include <sys/time.h>
#include <time.h>

#include "qvOS/qvTime_p.h"

#define kqvTime_DaylightSavingMinutes 60
#define kqvTime_SecondsPerMinute      60
#define kqvTime_MSPerSecond           1000
#define kqvTime_NSPerMS               1000000
#define kqvTime_FirstTmYear           1900
#define kqvTime_DaylightSavingUnknown (-1)

#define kqvTime_MonthNames      "JanFebMarAprMayJunJulAugSepOctNovDec"
#define kqvTime_MonthNameLength 3

// A word of 63 characters is longer than all month names together and so is never found among them; nine
// digits always fit an int.
#define kqvTime_MacroDateWordSize   64
#define kqvTime_MacroDateFormat     "%63s %9d %9d"
#define kqvTime_MacroDateFieldCount 3

static pthread_mutex_t sZoneLock = PTHREAD_MUTEX_INITIALIZER;

static void qvTime_S_Lock() { pthread_mutex_lock(&sZoneLock); }
static void qvTime_S_Unlock() { pthread_mutex_unlock(&sZoneLock); }
static void qvTime_S_InstallForkHandlers() {
  pthread_atfork(qvTime_S_Lock, qvTime_S_Unlock, qvTime_S_Unlock);
}

void qvTime_S_WatchForks(void) {
  static pthread_once_t sOnce = PTHREAD_ONCE_INIT;
  pthread_once(&sOnce, qvTime_S_InstallForkHandlers);
}

void qvTime_S_EnterZone(void) {
  qvTime_S_WatchForks();
  qvTime_S_Lock();
}

void qvTime_S_LeaveZone(void) { qvTime_S_Unlock(); }

void qvTime_GetTimeOfDay(qvtimeval* aTimeVal) {
  struct timeval theNow = {};
  gettimeofday(&theNow, NULL);
  aTimeVal->tv_sec = static_cast<int32>(theNow.tv_sec);
  aTimeVal->tv_usec = static_cast<int32>(theNow.tv_usec);
}

int qvTime_GetTimeZone(qvtimezone* aTimeZone) {
  time_t theNow = time(NULL);
  qvTime_S_EnterZone();
  // Unlike localtime, localtime_r need not look at a time zone that has changed since.
  tzset();
  struct tm theLocal = {};
  localtime_r(&theNow, &theLocal);
  aTimeZone->tz_dsttime = theLocal.tm_isdst > 0 ? kqvTime_DaylightSavingMinutes : 0;

  // KEEP qvTimeKept.TheOffsetIsPositiveEastOfGreenwich
  // Subtracting in this order gives +60 for Central Europe, the opposite of what the field's name says.
  struct tm theUTC = {};
  gmtime_r(&theNow, &theUTC);
  time_t theUTCReadAsLocal = mktime(&theUTC);
  qvTime_S_LeaveZone();
  aTimeZone->tz_minuteswest = static_cast<int32>((theNow - theUTCReadAsLocal) / kqvTime_SecondsPerMinute);
  return 0;
}

qvtime_t qvTime_ConvertMacroDate(const char* aTime) {
  char theMonthWord[kqvTime_MacroDateWordSize];
  int theDay;
  int theYear;
  if (sscanf(aTime, kqvTime_MacroDateFormat, theMonthWord, &theDay, &theYear) !=
      kqvTime_MacroDateFieldCount) {
    return 0;
  }
  // KEEP qvTimeKept.MacroDateTakesTheMonthFromThePlaceOfTheWordAmongTheNames
  // A part of a name counts as well, and a word across two names as the first of them.
  const char* theMonthName = strstr(kqvTime_MonthNames, theMonthWord);
  if (theMonthName == NULL) {
    return 0;
  }
  struct tm theDate = {};
  theDate.tm_mon = static_cast<int>(theMonthName - kqvTime_MonthNames) / kqvTime_MonthNameLength;
  theDate.tm_mday = theDay;
  theDate.tm_year = theYear - kqvTime_FirstTmYear;
  theDate.tm_isdst = kqvTime_DaylightSavingUnknown;
  qvTime_S_EnterZone();
  qvtime_t theResult = mktime(&theDate);
  qvTime_S_LeaveZone();
  return theResult;
}

uint32 qvTime_S_ToTickCount(const struct timespec* aTime) {
  return static_cast<uint32>(static_cast<uint64>(aTime->tv_sec) * kqvTime_MSPerSecond +
                             static_cast<uint64>(aTime->tv_nsec / kqvTime_NSPerMS));
}

uint32 qvTime_GetTickCount(void) {
  struct timespec theNow = {};
  clock_gettime(CLOCK_MONOTONIC, &theNow);
  return qvTime_S_ToTickCount(&theNow);
}
