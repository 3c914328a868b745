#include "qvOS/qvMonoliticTime.h"

#include <time.h>

#define kqvMonoliticTime_NSPerUS 1000

void qvMonoliticTime_GetTime(qvtimeval* aTimeVal) {
  struct timespec theNow;
  if (clock_gettime(CLOCK_MONOTONIC, &theNow) != 0) {
    aTimeVal->tv_sec = 0;
    aTimeVal->tv_usec = 0;
    return;
  }
  aTimeVal->tv_sec = static_cast<int32>(theNow.tv_sec);
  aTimeVal->tv_usec = static_cast<int32>(theNow.tv_nsec / kqvMonoliticTime_NSPerUS);
}
