// The duration statements with a level of the unit's own, just below the compile-time level.
#define QVLOGLEVEL          QVLOGLEVEL_WARNING
#define QVLOGDURATION_LEVEL QVLOGLEVEL_ERROR
#include "qvLog/LogDuration.h"

#include <gtest/gtest.h>

static unsigned sLevel = 0;

static void RememberLevel(void*, const qvLogData* aData, const char*, size_t) { sLevel = aData->mLevel; }

TEST(LogDurationLevels, TheUnitChoosesTheLevelOfItsStatements) {
  qvLog_SetLogFunc(5, RememberLevel, nullptr);
  { QVLOG_RUN(TUNER, F("x")); }
  EXPECT_EQ(1u, sLevel);
}
