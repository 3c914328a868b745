// The prefix of a log line and what it is made of: level letter, time stamp, thread, module; process names.

#include <pthread.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include "qvLog/qvLogFork_p.h"
#include "qvLog/qvLoggerConfig_p.h"
#include "qvLog/qvLoggerPieces_p.h"
#include "qvLog/qvMainLogger_p.h"
#include "qvOS/qvPath.h"
#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvTime.h"

#define kqvLogger_ModuleColumns   10
#define kqvLogger_ProcessNameSize 64 /* bytes */
#define kqvLogger_ThreadNameSize  10 /* bytes */
#define kqvLogger_ThreadDigits    8
#define kqvLogger_PrefixSize      80 /* bytes; letter, stamp, thread, module, what stands between them */
#define kqvLogger_CachedZoneSize  64 /* bytes */
#define kqvLogger_CachedStampSize 24 /* bytes; a date and a time, less than a record's stamp */

// The process id as the system gave it last; 0: ask again. A child of fork starts with 0.
static uint32 sProcessId = 0;
static bool sfForgetsProcessIdInChild = false;

static void qvLogger_S_ForgetProcessId() { __atomic_store_n(&sProcessId, 0, __ATOMIC_RELAXED); }

void qvLogger_S_WatchForks() {
  sfForgetsProcessIdInChild = pthread_atfork(NULL, NULL, qvLogger_S_ForgetProcessId) == 0;
}

uint32 qvLogger::CurrentProcessId() {
  uint32 theId = __atomic_load_n(&sProcessId, __ATOMIC_RELAXED);
  if (theId == 0) {
    theId = static_cast<uint32>(getpid());
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
  static char sName[kqvLogger_ThreadNameSize] = "00000000";
  static uint32 sId = 0;
  uint32 theId = CurrentThreadId();
  // Most lines are written by the thread of the last one.
  if (theId != sId) {
    sId = theId;
    for (int i = kqvLogger_ThreadDigits - 1; i >= 0; --i) {
      sName[i] = "0123456789abcdef"[theId & 0x0F];
      theId >>= 4;
    }
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
struct qvLoggerStamp {
  int mSeconds;
  uint16 mfDate;
  bool mfZoneSet;
  char mZone[kqvLogger_CachedZoneSize];
  char mText[kqvLogger_CachedStampSize];
  size_t mLength;  // of the text; 0: nothing is kept
};

static bool qvLogger_S_IsStampOf(const qvLoggerStamp* aStamp, int aSeconds, const char* aZone) {
  return aStamp->mLength != 0 && aStamp->mSeconds == aSeconds && aStamp->mfDate == _gfDateActivate &&
         aStamp->mfZoneSet == (aZone != NULL) && (aZone == NULL || strcmp(aStamp->mZone, aZone) == 0);
}

// A time zone that is too long to be remembered leaves nothing that is kept for long.
static void qvLogger_S_MakeStamp(qvLoggerStamp* aStamp, int aSeconds, const char* aZone) {
  aStamp->mSeconds = aSeconds;
  aStamp->mfDate = _gfDateActivate;
  aStamp->mfZoneSet = aZone != NULL;
  qv_snprintf(aStamp->mZone, sizeof(aStamp->mZone), "%s", aZone != NULL ? aZone : "");
  aStamp->mLength = qvLogger_S_FormatLocalTime(aStamp->mText, sizeof(aStamp->mText), aSeconds);
}

// As qvLogger_S_FormatLocalTime, into room for any text of a second. Converting to local time looks at the
// system's time-zone file and costs more than all the rest of a prefix, so the text of the last second is
// kept.
static size_t qvLogger_S_CopySecond(char* aText, int aSeconds) {
  static qvLoggerStamp sStamp;
  const char* theZone = getenv("TZ");
  if (!qvLogger_S_IsStampOf(&sStamp, aSeconds, theZone)) {
    qvLogger_S_MakeStamp(&sStamp, aSeconds, theZone);
  }
  memcpy(aText, sStamp.mText, sizeof(sStamp.mText));  // a number that the compiler knows takes no call
  return sStamp.mLength;
}

// ":042"
static size_t qvLogger_S_PutMilliSeconds(char* aText, uint32 aMilliSeconds) {
  aText[0] = ':';
  aText[1] = static_cast<char>('0' + aMilliSeconds / 100);
  aText[2] = static_cast<char>('0' + aMilliSeconds / 10 % 10);
  aText[3] = static_cast<char>('0' + aMilliSeconds % 10);
  return 4;
}

// Makes the record's time stamp, unless a logger before has.
static void qvLogger_S_StampRecord(qvLogDataEx* aRecord) {
  if (aRecord->mTimeStrLen == 0) {
    qvtimeval theNow;
    qvTime_GetTimeOfDay(&theNow);
    char* theText = aRecord->mTimeStr;
    size_t theLength = qvLogger_S_CopySecond(theText, theNow.tv_sec);
    theLength += qvLogger_S_PutMilliSeconds(theText + theLength, static_cast<uint32>(theNow.tv_usec) / 1000);
    theText[theLength] = '\0';
    aRecord->mTimeStrLen = theLength;
  }
}

void qvLogger::Append_LogTime(qvLogDataEx* aRecord) {
  qvLogger_S_StampRecord(aRecord);
  Append_S(aRecord, aRecord->mTimeStr, aRecord->mTimeStrLen);
}

void qvLogger::Append_ThreadNameOrId(qvLogDataEx* aRecord) { Append_F(aRecord, "%s", CurrentThreadName()); }

void qvLogger::Append_ProcessNameOrId(qvLogDataEx* aRecord) { Append_F(aRecord, "%s", CurrentProcessName()); }

static const char kBlanks[kqvLogger_ModuleColumns + 1] = "          ";

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
    Append_S(aRecord, kBlanks, kqvLogger_ModuleColumns - theLength);
  }
}

// The name in its columns. A loop, since two calls would cost more than a few characters.
static char* qvLogger_S_PutModule(char* aText, const char* aName) {
  memcpy(aText, kBlanks, kqvLogger_ModuleColumns);
  for (int i = 0; i < kqvLogger_ModuleColumns && aName[i] != '\0'; ++i) {
    aText[i] = aName[i];
  }
  return aText + kqvLogger_ModuleColumns;
}

// All of a prefix at once, with a zero byte behind it. The result is its length; 0 for the rare ones that
// take a format: of a module without a name, or without a buffer, where a part is missing.
static size_t qvLogger_S_MakePrefix(qvLogDataEx* aRecord, char* aPrefix) {
  int theIgnored;
  const char* theModule = qvLogger::ModuleNameAndDefaultValue(aRecord->mModule, &theIgnored);
  if (theModule == NULL || !_gfqvLog_gDataInitialized || aRecord->mSizeofFormatted < 1) {
    return 0;
  }
  qvLogger_S_StampRecord(aRecord);
  memcpy(aPrefix, qvLogger_S_LevelLetter(aRecord->mLevel), 2);
  memcpy(aPrefix + 2, aRecord->mTimeStr, sizeof(aRecord->mTimeStr));
  char* theEnd = aPrefix + 2 + aRecord->mTimeStrLen;
  *theEnd++ = '|';
  memcpy(theEnd, qvLogger::CurrentThreadName(), kqvLogger_ThreadDigits);
  theEnd += kqvLogger_ThreadDigits;
  *theEnd++ = '|';
  theEnd = qvLogger_S_PutModule(theEnd, theModule);
  *theEnd++ = ' ';
  *theEnd = '\0';
  return static_cast<size_t>(theEnd - aPrefix);
}

void qvLogger::GenerateBeginLine(qvLogDataEx* aRecord) {
  qvLoggerMorePieces theMorePieces;  // the text
  if (qvLogger_S_IsOwn(this)) {
    char thePrefix[kqvLogger_PrefixSize];
    size_t theLength = qvLogger_S_MakePrefix(aRecord, thePrefix);
    if (theLength > 0) {
      Append_S(aRecord, thePrefix, theLength);
      return;
    }
  }
  Append_S(aRecord, qvLogger_S_LevelLetter(aRecord->mLevel), 2);
  Append_LogTime(aRecord);
  Append_S(aRecord, "|", 1);
  Append_ThreadNameOrId(aRecord);
  Append_S(aRecord, "|", 1);
  Append_LogModule(aRecord);
  Append_S(aRecord, " ", 1);
}
