// Calendar time when the system cannot convert.

#include <gtest/gtest.h>
#include <time.h>

#include "qvraTools/qvTime.h"

// Takes the place of the system's, which converts every int.
extern "C" struct tm* localtime(const time_t*) noexcept { return nullptr; }

TEST(qvTimeFailure, LocaltimeGivesNullAndLeavesTheResult) {
  const int theTime = 784111777;
  qvtm theResult = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
  EXPECT_EQ(nullptr, qvTime_localtime(&theTime, &theResult));
  EXPECT_EQ(1, theResult.tm_sec);
  EXPECT_EQ(10, theResult.tm_msec);
}
