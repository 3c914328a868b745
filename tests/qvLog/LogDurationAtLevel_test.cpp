// The duration statements at a compile-time level equal to their own, which leaves them out.
#define QVLOGLEVEL QVLOGLEVEL_INFO
#include "qvLog/LogDuration.h"

#include <gtest/gtest.h>

static int sCount = 0;

static void Count(void*, const qvLogData*, const char*, size_t) { ++sCount; }

TEST(LogDurationAtLevel, StatementsOfTheCompileTimeLevelItselfAreLeftOut) {
  qvLog_SetLogFunc(5, Count, nullptr);
  { QVLOG_RUN(NO_SUCH_MODULE, NO_SUCH_FUNCTION("x")); }
  EXPECT_EQ(0, sCount);
}
