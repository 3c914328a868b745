// The prefix of a log line and what it is made of: level letter, time stamp, thread, module; process names.

#include <pthread.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "qvLog/qvLogger.h"
#include "qvLog/qvLoggerConfig_p.h"
#include "qvOS/qvPath.h"
#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvTime.h"

#define kqvLogger_ModuleColumns   10
#define kqvLogger_ProcessNameSize 64 /* bytes */
#define kqvLogger_ThreadNameSize  10 /* bytes */
#define kqvLogger_ThreadDigits    8
#define kqvLogger_CachedZoneSize  64 /* bytes */
#define kqvLogger_CachedStampSize 24 /* bytes; a date and a time, less than a record's stamp */

// The process id as the system gave it last; 0: ask again. A child of fork starts with 0.
static uint32 sProcessId = 0;
static pthread_once_t sProcessIdOnce = PTHREAD_ONCE_INIT;
static bool sfForgetsProcessIdInChild = false;

static void qvLogger_S_ForgetProcessId() { __atomic_store_n(&sProcessId, 0, __ATOMIC_RELAXED); }

static void qvLogger_S_WatchForks() {
  sfForgetsProcessIdInChild = pthread_atfork(NULL, NULL, qvLogger_S_ForgetProcessId) == 0;
}

uint32 qvLogger::CurrentProcessId() {
  uint32 theId = __atomic_load_n(&sProcessId, __ATOMIC_RELAXED);
  if (theId == 0) {
    theId = static_cast<uint32>(getpid());
    pthread_once(&sProcessIdOnce, qvLogger_S_WatchForks);
    if (sfForgetsProcessIdInChild) {
      __atomic_store_n(&sProcessId, theId, __ATOMIC_RELAXED);
    }
  }
  return theId;
}

// A C cast, because pthread_t is a number or a pointer.
uint32 qvLogger::CurrentThreadId() { return (uint32)(uintptr_t)pthread_self(); }

const char* qvLogger::CurrentProcessName() {
  static char sName[kqvLogger_ProcessNameSize];
  if (sName[0] == '\0') {
    char* theName = qvPath_GetApplicationName(0);
    if (theName != NULL) {
      qv_snprintf(sName, sizeof(sName), "%s", theName);
      qvFree(theName);
    }
  }
  if (sName[0] == '\0') {
    qv_snprintf(sName, sizeof(sName), "%08x", static_cast<unsigned int>(CurrentProcessId()));
  }
  return sName;
}

const char* qvLogger::CurrentThreadName() {
  static char sName[kqvLogger_ThreadNameSize];
  uint32 theId = CurrentThreadId();
  for (int i = kqvLogger_ThreadDigits - 1; i >= 0; --i) {
    sName[i] = "0123456789abcdef"[theId & 0x0F];
    theId >>= 4;
  }
  return sName;
}

static const char* qvLogger_S_LevelLetter(qvLogLevel aLevel) {
  if (aLevel < QVLOGLEVEL_WARNING) {
    return "E ";
  }
  if (aLevel == QVLOGLEVEL_WARNING) {
    return "W ";
  }
  return aLevel == QVLOGLEVEL_INFO ? "I " : "D ";
}

void qvLogger::GenerateBeginLine(qvLogDataEx* aRecord) {
  Append_S(aRecord, qvLogger_S_LevelLetter(aRecord->mLevel), 2);
  Append_LogTime(aRecord);
  Append_S(aRecord, "|", 1);
  Append_ThreadNameOrId(aRecord);
  Append_S(aRecord, "|", 1);
  Append_LogModule(aRecord);
  Append_S(aRecord, " ", 1);
}

// Date (if it is wanted) and time of day. 0 when the system cannot tell the local time; the stamp is then the
// milliseconds alone.
static size_t qvLogger_S_FormatLocalTime(char* aText, size_t aSize, int aSeconds) {
  qvtm theLocal;
  if (qvTime_localtime(&aSeconds, &theLocal) == NULL) {
    return 0;
  }
  struct tm theTime = {};
  theTime.tm_sec = theLocal.tm_sec;
  theTime.tm_min = theLocal.tm_min;
  theTime.tm_hour = theLocal.tm_hour;
  theTime.tm_mday = theLocal.tm_mday;
  theTime.tm_mon = theLocal.tm_mon;
  theTime.tm_year = theLocal.tm_year;
  return strftime(aText, aSize, _gfDateActivate ? "%m/%d/%Y %H:%M:%S" : "%H:%M:%S", &theTime);
}

// What the text of a second depends on, besides the second: the form, and the time zone of the process.
struct qvLoggerStampKey {
  int mSeconds;
  uint16 mfDate;
  bool mfZoneSet;
  char mZone[kqvLogger_CachedZoneSize];
};

// Fails for a time zone that is too long to be remembered.
static bool qvLogger_S_MakeStampKey(int aSeconds, qvLoggerStampKey* aKey) {
  const char* theZone = getenv("TZ");
  memset(aKey, 0, sizeof(*aKey));
  aKey->mSeconds = aSeconds;
  aKey->mfDate = _gfDateActivate;
  aKey->mfZoneSet = theZone != NULL;
  size_t theLength = theZone != NULL ? strnlen(theZone, sizeof(aKey->mZone)) : 0;
  if (theLength == sizeof(aKey->mZone)) {
    return false;
  }
  if (theLength > 0) {
    memcpy(aKey->mZone, theZone, theLength);
  }
  return true;
}

// As qvLogger_S_FormatLocalTime. Converting to local time looks at the system's time-zone file and costs more
// than all the rest of a prefix, so the text of the last second is kept.
static size_t qvLogger_S_FormatSecond(char* aText, size_t aSize, int aSeconds) {
  static qvLoggerStampKey sKey;
  static char sText[kqvLogger_CachedStampSize];
  static size_t sLength = 0;  // 0: nothing is kept
  qvLoggerStampKey theKey;
  if (!qvLogger_S_MakeStampKey(aSeconds, &theKey)) {
    return qvLogger_S_FormatLocalTime(aText, aSize, aSeconds);
  }
  // The gaps between the fields are zero. NOLINTNEXTLINE(bugprone-suspicious-memory-comparison)
  if (sLength == 0 || memcmp(&theKey, &sKey, sizeof(theKey)) != 0) {
    sKey = theKey;
    sLength = qvLogger_S_FormatLocalTime(sText, sizeof(sText), aSeconds);
  }
  memcpy(aText, sText, sLength + 1);
  return sLength;
}

// Appends ":042". By hand, because it is done for every message.
static size_t qvLogger_S_AppendMilliseconds(char* aText, size_t aLength, int32 aMicroseconds) {
  unsigned int theMS = static_cast<unsigned int>(aMicroseconds) / 1000;
  char* theEnd = aText + aLength;
  *theEnd++ = ':';
  *theEnd++ = static_cast<char>('0' + theMS / 100);
  *theEnd++ = static_cast<char>('0' + theMS / 10 % 10);
  *theEnd++ = static_cast<char>('0' + theMS % 10);
  *theEnd = '\0';
  return aLength + 4;
}

void qvLogger::Append_LogTime(qvLogDataEx* aRecord) {
  if (aRecord->mTimeStrLen == 0) {
    qvtimeval theNow;
    qvTime_GetTimeOfDay(&theNow);
    char* theText = aRecord->mTimeStr;
    size_t theSize = sizeof(aRecord->mTimeStr);
    size_t theLength = qvLogger_S_FormatSecond(theText, theSize, theNow.tv_sec);
    aRecord->mTimeStrLen = qvLogger_S_AppendMilliseconds(theText, theLength, theNow.tv_usec);
  }
  Append_S(aRecord, aRecord->mTimeStr, aRecord->mTimeStrLen);
}

void qvLogger::Append_ThreadNameOrId(qvLogDataEx* aRecord) { Append_F(aRecord, "%s", CurrentThreadName()); }

void qvLogger::Append_ProcessNameOrId(qvLogDataEx* aRecord) { Append_F(aRecord, "%s", CurrentProcessName()); }

void qvLogger::Append_LogModule(qvLogDataEx* aRecord) {
  int theIgnored;
  const char* theName = ModuleNameAndDefaultValue(aRecord->mModule, &theIgnored);
  if (theName == NULL) {
    Append_F(aRecord, "%010u", static_cast<unsigned int>(aRecord->mModule));
    return;
  }
  size_t theLength = strnlen(theName, kqvLogger_ModuleColumns);
  Append_S(aRecord, theName, theLength);
  if (theLength < kqvLogger_ModuleColumns) {
    static const char kBlanks[] = "          ";
    Append_S(aRecord, kBlanks, kqvLogger_ModuleColumns - theLength);
  }
}
