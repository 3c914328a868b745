#include "qvOS/qvMonoliticTime.h"

#include <errno.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace {
bool gfClockFails = false;
struct timespec gClockTime = {};
bool gfClockIsFixed = false;
}  // namespace

// Stands in for the system's function, so that the clock can be made to fail and to stand still.
extern "C" int clock_gettime(clockid_t aClock, struct timespec* aTime) noexcept {
  if (aClock == CLOCK_MONOTONIC && gfClockFails) {
    errno = EINVAL;
    return -1;
  }
  if (aClock == CLOCK_MONOTONIC && gfClockIsFixed) {
    *aTime = gClockTime;
    return 0;
  }
  return static_cast<int>(syscall(SYS_clock_gettime, aClock, aTime));
}

TEST(qvMonoliticTime, SecondsAndMicrosecondsAreThoseOfTheMonotonicClock) {
  gClockTime.tv_sec = 12345;
  gClockTime.tv_nsec = 678901999;
  gfClockIsFixed = true;
  qvtimeval theTime = {-1, -1};
  qvMonoliticTime_GetTime(&theTime);
  gfClockIsFixed = false;
  EXPECT_EQ(12345, theTime.tv_sec);
  EXPECT_EQ(678901, theTime.tv_usec) << "what is left below a microsecond is dropped";
}

TEST(qvMonoliticTime, NeverRunsBackwards) {
  qvtimeval theLast = {0, 0};
  for (int i = 0; i < 1000; ++i) {
    qvtimeval theNow = {-1, -1};
    qvMonoliticTime_GetTime(&theNow);
    EXPECT_GE(int64{theNow.tv_sec} * 1000000 + theNow.tv_usec,
              int64{theLast.tv_sec} * 1000000 + theLast.tv_usec);
    EXPECT_LT(theNow.tv_usec, 1000000);
    theLast = theNow;
  }
}

TEST(qvMonoliticTime, AClockThatCannotBeReadGivesZeros) {
  qvtimeval theTime = {-1, -1};
  gfClockFails = true;
  qvMonoliticTime_GetTime(&theTime);
  gfClockFails = false;
  EXPECT_EQ(0, theTime.tv_sec);
  EXPECT_EQ(0, theTime.tv_usec);
}
