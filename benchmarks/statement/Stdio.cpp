// What a program writes that wants no library: a lock, a time stamp, fprintf and fflush.

#include <pthread.h>
#include <time.h>

#include <cstdio>

#include "Workload.h"

namespace {
struct Stdio {
  static inline FILE* sFile = nullptr;
  static inline pthread_mutex_t sLock = PTHREAD_MUTEX_INITIALIZER;

  static void Open(const char* aPath) { sFile = fopen(aPath, "we"); }
  static void Write(const Tuner& aTuner) {
    pthread_mutex_lock(&sLock);
    struct timespec theNow;
    clock_gettime(CLOCK_REALTIME, &theNow);
    struct tm theTime;
    localtime_r(&theNow.tv_sec, &theTime);
    fprintf(sFile, "I %02d:%02d:%02d:%03ld|%08x|%-10s " STATEMENT_PRINTF "\n", theTime.tm_hour,
            theTime.tm_min, theTime.tm_sec, theNow.tv_nsec / 1000000, static_cast<unsigned>(pthread_self()),
            "TUNER", aTuner.mNumber, aTuner.mFrequency, aTuner.mDelay);
    fflush(sFile);
    pthread_mutex_unlock(&sLock);
  }
  static void Close() { fclose(sFile); }
};
}  // namespace
static const FileRows<Stdio> sFileRows("stdio with a lock");
