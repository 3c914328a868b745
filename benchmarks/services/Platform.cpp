#include <fnmatch.h>
#include <pthread.h>
#include <time.h>

#include <cstdlib>
#include <cstring>

#include "Workload.h"

// The present time as a text of its own, which is what the library gives.
static bool WriteDate() {
  const time_t theTime = time(nullptr);
  struct tm theFields;
  char theBuffer[64];
  strftime(theBuffer, sizeof theBuffer, "%a, %d %b %Y %H:%M:%S GMT", gmtime_r(&theTime, &theFields));
  char* theText = strdup(theBuffer);
  const bool thefRight = strcmp(theText + 25, " GMT") == 0;
  free(theText);
  return thefRight;
}

static bool ReadDate() {
  struct tm theTime = {};
  return strptime(SERVICES_DATE, "%a, %d %b %Y %H:%M:%S GMT", &theTime) != nullptr &&
         IsTheDate(theTime.tm_wday, theTime.tm_mday, theTime.tm_mon, theTime.tm_year, theTime.tm_hour,
                   theTime.tm_min, theTime.tm_sec);
}

static bool Match(const char* aPattern, const char* aText) { return fnmatch(aPattern, aText, 0) == 0; }

static pthread_mutex_t* NewRecursiveMutex() {
  StartSecondThread();
  static pthread_mutex_t sMutex;
  pthread_mutexattr_t theAttributes;
  pthread_mutexattr_init(&theAttributes);
  pthread_mutexattr_settype(&theAttributes, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_init(&sMutex, &theAttributes);
  return &sMutex;
}

static bool LockPair() {
  static pthread_mutex_t* const sMutex = NewRecursiveMutex();
  return pthread_mutex_lock(sMutex) == 0 && pthread_mutex_unlock(sMutex) == 0;
}

static const Contender sRows[] = {
    SERVICES_ROW("date to text", "strftime", WriteDate),
    SERVICES_ROW("date from text", "strptime", ReadDate),
    SERVICES_WILDCARD_ROWS("fnmatch", Match),
    SERVICES_ROW("lock pair", "pthread", LockPair),
};
