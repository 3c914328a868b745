// Signed 64-bit integers from and to doubles and texts.

#include <gtest/gtest.h>
#include <math.h>

#include "qvraTools/qvLongLong.h"
#include "support/OwnedText.h"
#include "support/TwoWords.h"

namespace {

constexpr int64 kMax = INT64_MAX;
constexpr int64 kMin = INT64_MIN;
constexpr int64 kWord = 0x100000000;  // 2^32

int64 FromDouble(double aDouble) {
  qvLongLong theValue = LongLong(99);
  qvLongLong_SetDouble(&theValue, aDouble);
  return Native(theValue);
}

}  // namespace

TEST(qvLongLongConversions, SetDoubleCutsTheFractionOff) {
  EXPECT_EQ(0, FromDouble(0.0));
  EXPECT_EQ(0, FromDouble(-0.0));
  EXPECT_EQ(0, FromDouble(0.999));
  EXPECT_EQ(1, FromDouble(1.9));
  EXPECT_EQ(-1, FromDouble(-1.9));
  EXPECT_EQ(0xFFFFFFFF, FromDouble(4294967295.0));
  EXPECT_EQ(0xFFFFFFFF, FromDouble(4294967295.5));
  EXPECT_EQ(kWord, FromDouble(4294967296.0));
  EXPECT_EQ(-kWord, FromDouble(-4294967296.75));
  EXPECT_EQ(1000000000000000000, FromDouble(1e18));
  EXPECT_EQ(0x7FFFFFFFFFFFFC00, FromDouble(9223372036854774784.0)) << "the largest double below 2^63";
  EXPECT_EQ(-0x7FFFFFFFFFFFFC00, FromDouble(-9223372036854774784.0));
}

TEST(qvLongLongConversions, SetDoubleClampsWhatDoesNotFit) {
  EXPECT_EQ(kMax, FromDouble(9223372036854775808.0));
  EXPECT_EQ(kMin, FromDouble(-9223372036854775808.0));
  EXPECT_EQ(kMax, FromDouble(1e300));
  EXPECT_EQ(kMin, FromDouble(-1e300));
  EXPECT_EQ(kMax, FromDouble(HUGE_VAL));
  EXPECT_EQ(kMin, FromDouble(-HUGE_VAL));
  EXPECT_EQ(0, FromDouble(NAN));
  EXPECT_EQ(0, FromDouble(-NAN));
}

TEST(qvLongLongConversions, GetDoubleIsTheNearestDouble) {
  const struct {
    int64 mX;
    double mDouble;
  } kCases[] = {
      {0, 0.0},
      {1, 1.0},
      {0xFFFFFFFF, 4294967295.0},
      {kWord, 4294967296.0},
      {0x1FFFFFFFF, 8589934591.0},
      {9007199254740993, 9007199254740992.0},
      {kMax, 9223372036854775808.0},
  };
  for (const auto& theCase : kCases) {
    qvLongLong theX = LongLong(theCase.mX);
    EXPECT_EQ(theCase.mDouble, qvLongLong_GetDouble(&theX));
    EXPECT_EQ(theCase.mX, Native(theX)) << "a value that is not negative stays";
  }
}

TEST(qvLongLongConversions, ToStringIsDecimal) {
  const struct {
    int64 mX;
    const char* mText;
  } kCases[] = {
      {0, "0"},
      {9, "9"},
      {-1, "-1"},
      {-10, "-10"},
      {4294967296, "4294967296"},
      {-4294967296, "-4294967296"},
      {kMax, "9223372036854775807"},
      {-kMax, "-9223372036854775807"},
      {kMin, "-9223372036854775808"},
  };
  for (const auto& theCase : kCases) {
    const qvLongLong theX = LongLong(theCase.mX);
    EXPECT_EQ(theCase.mText, TakeText(qvLongLong_ToString(&theX)));
    EXPECT_EQ(theCase.mX, Native(theX));
  }
}

TEST(qvLongLongConversions, SetFromStringTakesWholeNumbersOnly) {
  const struct {
    const char* mText;
    int64 mValue;
    int mResult;
  } kCases[] = {
      {"-9223372036854775808", kMin, 1},
      {" +7", 7, 1},
      {"9223372036854775808", 0, 0},
      {"-9223372036854775809", 0, 0},
      {"7x", 0, 0},
      {"-", 0, 0},
      {"", 0, 0},
      {nullptr, 0, 0},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mText == nullptr ? "null" : theCase.mText);
    qvLongLong theX = LongLong(99);
    EXPECT_EQ(theCase.mResult, qvLongLong_SetFromString(&theX, theCase.mText));
    EXPECT_EQ(theCase.mValue, Native(theX));
  }
}

TEST(qvLongLongKept, GetDoubleLeavesANegativeArgumentNegated) {
  qvLongLong theValue = LongLong(-5000000000);
  EXPECT_EQ(-5e9, qvLongLong_GetDouble(&theValue));
  EXPECT_EQ(5000000000, Native(theValue));
  EXPECT_EQ(5e9, qvLongLong_GetDouble(&theValue)) << "a second call";
  EXPECT_EQ(5000000000, Native(theValue));
  theValue = LongLong(-1);
  EXPECT_EQ(-1.0, qvLongLong_GetDouble(&theValue));
  EXPECT_EQ(1, Native(theValue));
  theValue = *qvLongLong_Min;
  EXPECT_EQ(9223372036854775808.0, qvLongLong_GetDouble(&theValue)) << "the minimum comes out positive";
  EXPECT_EQ(kMin, Native(theValue));
}
