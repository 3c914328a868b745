#include "qvLog/qvLogVersion.h"

#include <gtest/gtest.h>

TEST(qvLogVersion, IsANumberAndATextOfThreeNumbers) {
  EXPECT_EQ(10000, QVLOG_VERSION_NUMBER);
  EXPECT_STREQ("1.0.0", QVLOG_VERSION_TEXT);
}

TEST(qvLogVersion, TheLibraryAnswersWithItsOwn) {
  EXPECT_EQ(10000u, qvLogVersion_GetNumber());
  EXPECT_STREQ("1.0.0", qvLogVersion_GetText());
}

TEST(qvLogVersion, ThePreprocessorCanCompareIt) {
#if QVLOG_VERSION_NUMBER >= 10000 && QVLOG_VERSION_NUMBER < 20000
  SUCCEED();
#else
  FAIL() << "neither macro nor comparison";
#endif
}

TEST(qvLogVersion, ANumberOfTwoDigitsKeepsItsPlace) { EXPECT_STREQ("1.12.3", QVLOG_VERSION_JOIN(1, 12, 3)); }
