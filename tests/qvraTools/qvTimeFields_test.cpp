// What the system's mktime is asked. This file has its own one, which sees the fields that the real one
// ignores.

#include <gtest/gtest.h>
#include <time.h>

#include "qvraTools/qvTime.h"

static struct tm sAsked;

extern "C" time_t mktime(struct tm* aTime) noexcept {
  sAsked = *aTime;
  return 784111777;
}

TEST(qvTimeFields, MktimeIsAskedWithAllNineFields) {
  qvtm theTime = {};
  theTime.tm_sec = 1;
  theTime.tm_min = 2;
  theTime.tm_hour = 3;
  theTime.tm_mday = 4;
  theTime.tm_mon = 5;
  theTime.tm_year = 6;
  theTime.tm_wday = 7;
  theTime.tm_yday = 8;
  theTime.tm_isdst = 9;
  EXPECT_EQ(784111777, qvTime_mktime(&theTime));
  EXPECT_EQ(1, sAsked.tm_sec);
  EXPECT_EQ(2, sAsked.tm_min);
  EXPECT_EQ(3, sAsked.tm_hour);
  EXPECT_EQ(4, sAsked.tm_mday);
  EXPECT_EQ(5, sAsked.tm_mon);
  EXPECT_EQ(6, sAsked.tm_year);
  EXPECT_EQ(7, sAsked.tm_wday);
  EXPECT_EQ(8, sAsked.tm_yday);
  EXPECT_EQ(9, sAsked.tm_isdst);
}
