#include "tools/qvlogd/OptionValue.h"

#include <gtest/gtest.h>

TEST(OptionValue, SizesHaveUnitsOf1024) {
  struct {
    const char* mText;
    uint64 mBytes;
  } kCases[] = {{"0", 0},          {"17", 17},         {"512K", 524288},
                {"10m", 10485760}, {"1G", 1073741824}, {"17179869183G", 18446744072635809792u}};
  for (const auto& theCase : kCases) {
    uint64 theBytes = 1;
    EXPECT_TRUE(OptionValue_ParseSize(theCase.mText, 0, UINT64_MAX, &theBytes)) << theCase.mText;
    EXPECT_EQ(theCase.mBytes, theBytes) << theCase.mText;
  }
}

TEST(OptionValue, WhatIsNoSizeLeavesTheDestinationAlone) {
  for (const char* theText : {"", "K", "-1", "+1", " 1", "1 ", "1X", "1KB", "0x10", "1.5M", "17179869184G",
                              "18446744073709551616"}) {
    uint64 theBytes = 7;
    EXPECT_FALSE(OptionValue_ParseSize(theText, 0, UINT64_MAX, &theBytes)) << theText;
    EXPECT_EQ(7u, theBytes) << theText;
  }
}

TEST(OptionValue, TheBoundsOfASizeBelongToItsRange) {
  uint64 theBytes;
  EXPECT_FALSE(OptionValue_ParseSize("79", 80, 1024, &theBytes));
  EXPECT_TRUE(OptionValue_ParseSize("80", 80, 1024, &theBytes));
  EXPECT_TRUE(OptionValue_ParseSize("1K", 80, 1024, &theBytes));
  EXPECT_FALSE(OptionValue_ParseSize("1025", 80, 1024, &theBytes));
}

TEST(OptionValue, NumbersHaveNoUnit) {
  uint64 theNumber = 7;
  EXPECT_TRUE(OptionValue_ParseNumber("4096", 1, 1000000, &theNumber));
  EXPECT_EQ(4096u, theNumber);
  EXPECT_FALSE(OptionValue_ParseNumber("4K", 1, 1000000, &theNumber));
  EXPECT_FALSE(OptionValue_ParseNumber("0", 1, 1000000, &theNumber));
}

TEST(OptionValue, DurationsAreSecondsUnlessTheySayOtherwise) {
  struct {
    const char* mText;
    uint32 mMilliseconds;
  } kCases[] = {{"2", 2000},
                {"500ms", 500},
                {"90s", 90000},
                {"15m", 900000},
                {"12h", 43200000},
                {"7d", 604800000},
                {"4294967295ms", 4294967295}};
  for (const auto& theCase : kCases) {
    uint32 theMilliseconds = 1;
    EXPECT_TRUE(OptionValue_ParseDuration(theCase.mText, &theMilliseconds)) << theCase.mText;
    EXPECT_EQ(theCase.mMilliseconds, theMilliseconds) << theCase.mText;
  }
}

TEST(OptionValue, WhatIsNoDurationLeavesTheDestinationAlone) {
  for (const char* theText : {"", "s", "-1s", "1w", "50d", "4294967296ms"}) {
    uint32 theMilliseconds = 7;
    EXPECT_FALSE(OptionValue_ParseDuration(theText, &theMilliseconds)) << theText;
    EXPECT_EQ(7u, theMilliseconds) << theText;
  }
}

TEST(OptionValue, RatesAreLinesASecond) {
  unsigned int theRate = 7;
  EXPECT_TRUE(OptionValue_ParseRate("500/s", &theRate));
  EXPECT_EQ(500u, theRate);
  EXPECT_TRUE(OptionValue_ParseRate("20", &theRate));
  EXPECT_EQ(20u, theRate);
  EXPECT_FALSE(OptionValue_ParseRate("20/m", &theRate));
  EXPECT_FALSE(OptionValue_ParseRate("/s", &theRate));
  EXPECT_FALSE(OptionValue_ParseRate("4294967296/s", &theRate));
}

TEST(OptionValue, FlagsAreWordsInAnyCase) {
  for (const char* theText : {"yes", "True", "ON", "1"}) {
    bool theFlag = false;
    EXPECT_TRUE(OptionValue_ParseFlag(theText, &theFlag) && theFlag) << theText;
  }
  for (const char* theText : {"no", "False", "OFF", "0"}) {
    bool theFlag = true;
    EXPECT_TRUE(OptionValue_ParseFlag(theText, &theFlag) && !theFlag) << theText;
  }
  bool theFlag;
  EXPECT_FALSE(OptionValue_ParseFlag("maybe", &theFlag));
  EXPECT_FALSE(OptionValue_ParseFlag("", &theFlag));
}
