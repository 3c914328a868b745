// The duration statements in a unit that sets no compile-time level: nothing is left of them.
#include "qvLog/LogDuration.h"

#include <gtest/gtest.h>

static int sCount = 0;

static void Count(void*, const qvLogData*, const char*, size_t) { ++sCount; }

TEST(LogDurationOff, NothingIsGenerated) {
  qvLog_SetLogFunc(5, Count, nullptr);
  {
    // Neither the module nor the text is looked at: both would fail to compile.
    QVLOG_START(NO_SUCH_MODULE, NO_SUCH_FUNCTION("x"));
    QVLOG_STOP(NO_SUCH_MODULE, NO_SUCH_FUNCTION("x"));
    QVLOG_LOAD(NO_SUCH_MODULE, NO_SUCH_FUNCTION("x"));
    QVLOG_UNLOAD(NO_SUCH_MODULE, NO_SUCH_FUNCTION("x"));
    QVLOG_RUN(NO_SUCH_MODULE, NO_SUCH_FUNCTION("x"));
    QVLOG_DURATION(NO_SUCH_MODULE, NO_SUCH_FUNCTION("x"));
  }
  EXPECT_EQ(0, sCount);
}
