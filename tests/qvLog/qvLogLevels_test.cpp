#include "qvLog/qvLogLevels.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <type_traits>

#include "support/RecordingLogger.h"

TEST(qvLogLevels, ALevelAndAModuleAreUnsigned16BitNumbers) {
  EXPECT_TRUE((std::is_same<qvLogLevel, uint16_t>::value));
  EXPECT_TRUE((std::is_same<qvLogModule, uint16_t>::value));
}

TEST(qvLogLevels, TheConstantsHaveTheirPublishedValues) {
  EXPECT_EQ(0, QVLOGLEVEL_NONE);
  EXPECT_EQ(1, QVLOGLEVEL_ERROR);
  EXPECT_EQ(2, QVLOGLEVEL_WARNING);
  EXPECT_EQ(3, QVLOGLEVEL_INFO);
  EXPECT_EQ(4, QVLOGLEVEL_DEBUG);
  EXPECT_EQ(0xFFFFFFFFu, QVLOGLEVEL_ALL);
  EXPECT_EQ(1, QVLOGLEVEL_RANGE);
  EXPECT_EQ(0, QVLOG_COMPILE_TIME_LEVEL_LESS_THEN);
  EXPECT_EQ(1, QVLOG);
}

TEST(qvLogLevels, TheCompileTimeLevelOfAUnitThatDefinesNoneIsZero) { EXPECT_EQ(0, QVLOGLEVEL); }

TEST(qvLogLevels, AtCompileTimeLevel0OnlyStatementsThatAlwaysLogAreCompiledIn) {
  RecordingLogger theLogger(65535);
  QVLOG_ERR(TUNER, F("QVLOG_ERR"));
  QVXLOG(QVLOGLEVEL_ERROR, QVLOG_M_TUNER, F("QVXLOG"));
  QVXLOG_ALWAYS(QVLOGLEVEL_DEBUG, QVLOG_M_TUNER, F("QVXLOG_ALWAYS"));
  EXPECT_THAT(theLogger.mMessages, testing::ElementsAre("QVXLOG_ALWAYS"));
  EXPECT_EQ(0, QVLOG_WILL_LOG(QVLOGLEVEL_ERROR, TUNER));
  EXPECT_EQ(1, qvLog_WillLog(QVLOGLEVEL_ERROR, QVLOG_M_TUNER));
}

TEST(qvLogLevels, AllBecomes65535AsAThreshold) { EXPECT_EQ(65535, static_cast<qvLogLevel>(QVLOGLEVEL_ALL)); }

TEST(qvLogLevels, AMessagePassesAThresholdOnlyWhenItsLevelIsStrictlyBelow) {
  struct {
    qvLogLevel mThreshold;
    qvLogLevel mLevel;
    bool mPasses;
    const char* mWhy;
  } kCases[] = {
      {0, 0, false, "a threshold of 0 lets nothing through"},
      {0, 1, false, "a threshold of 0 lets nothing through"},
      {1, 0, true, "a threshold of 1 lets level 0 through"},
      {1, 1, false, "and nothing else"},
      {2, 1, true, "2 lets errors through"},
      {2, 2, false, "and no warnings"},
      {3, 2, true, "3 lets warnings through"},
      {3, 3, false, "and no information"},
      {4, 3, true, "4 lets information through"},
      {4, 4, false, "and no debug messages"},
      {65535, 4, true, "65535 lets debug messages through"},
      {5, 5, false, "level 5 needs a threshold above it"},
      {6, 5, true, "level 5 passes 6"},
      {65535, 65534, true, "the most verbose level of all"},
      {65535, 65535, false, "level 65535 passes nothing"},
  };
  for (const auto& theCase : kCases) {
    RecordingLogger theLogger(theCase.mThreshold);
    EXPECT_EQ(theCase.mPasses, LogText(theCase.mLevel, 0, "text")) << theCase.mWhy;
    EXPECT_EQ(theCase.mPasses ? 1u : 0u, theLogger.mMessages.size()) << theCase.mWhy;
  }
}
