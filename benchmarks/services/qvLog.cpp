#include <qvOS/qvMutex.h>
#include <qvraTools/qvCStringParser.h>
#include <qvraTools/qvMalloc.h>
#include <qvraTools/qvTime.h>
#include <qvraTools/qvUUID.h>

#include <cstring>

#include "Workload.h"

static bool Generate() {
  uint8 theUUID[16];
  qvUUID_Generate(theUUID);
  return theUUID[6] >> 4 == 1;
}

static bool Print() {
  char theText[37];
  qvUUID_Print(kUUID, theText);
  return memcmp(theText, SERVICES_UUID_TEXT, sizeof theText) == 0;
}

static bool WriteDate() {
  char* theText = qvTime_GetRFC1123Date();
  const bool thefRight = strcmp(theText + 25, " GMT") == 0;
  qvFree(theText);
  return thefRight;
}

static bool ReadDate() {
  qvtm theTime;
  return qvTime_ParseRFC1123Date(SERVICES_DATE, &theTime) == 0 &&
         IsTheDate(theTime.tm_wday, theTime.tm_mday, theTime.tm_mon, theTime.tm_year, theTime.tm_hour,
                   theTime.tm_min, theTime.tm_sec);
}

static bool Match(const char* aPattern, const char* aText) {
  return qvCStringParser_Match(aPattern, aText) != 0;
}

static bool LockPair() {
  static qvOSMutex* const sMutex = (StartSecondThread(), qvMutex_New());
  return qvMutex_Lock(sMutex) == 0 && qvMutex_Unlock(sMutex) == 0;
}

static const Contender sRows[] = {
    SERVICES_ROW("UUID", "qvLog", Generate),          SERVICES_ROW("UUID to text", "qvLog", Print),
    SERVICES_ROW("date to text", "qvLog", WriteDate), SERVICES_ROW("date from text", "qvLog", ReadDate),
    SERVICES_WILDCARD_ROWS("qvLog", Match),           SERVICES_ROW("lock pair", "qvLog", LockPair),
};
