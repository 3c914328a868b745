// Clock.h - the time, as records carry it and as deadlines count it.
#ifndef LOGSTREAM_CLOCK_H
#define LOGSTREAM_CLOCK_H

#include <time.h>

#include "qvOS/qvTypes.h"

inline int64 Clock_S_Read(clockid_t aClock) {
  struct timespec theTime;
  clock_gettime(aClock, &theTime);
  return static_cast<int64>(theTime.tv_sec) * 1000000 + theTime.tv_nsec / 1000;
}

// Microseconds since 1970: jumps when somebody sets the clock.
inline int64 Clock_Microseconds() { return Clock_S_Read(CLOCK_REALTIME); }

// Microseconds of a clock that nobody sets, for deadlines.
inline int64 Clock_Steady() { return Clock_S_Read(CLOCK_MONOTONIC); }

#endif
