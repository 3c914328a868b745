// The classes of floating-point numbers.
#include <gtest/gtest.h>
#include <stdint.h>
#include <string.h>

#include <limits>

#include "qvraTools/format/qvFormat.h"

struct Classified {
  double mNumber;
  int mNaN, mInf, mFinite, mSign, mClass;
  const char* mWhy;
};

TEST(qvFormatClassify, TellsTheClassesOfDoubles) {
  const double kInfinity = std::numeric_limits<double>::infinity();
  const double kNaN = std::numeric_limits<double>::quiet_NaN();
  const Classified kCases[] = {
      {0.0, 0, 0, 1, 0, 4, "zero"},
      {-0.0, 0, 0, 1, 1, 4, "minus zero has its sign"},
      {1.0, 0, 0, 1, 0, 2, "an ordinary number"},
      {-1.5, 0, 0, 1, 1, 2, "a negative number"},
      {2.2250738585072014e-308, 0, 0, 1, 0, 2, "the smallest normal number"},
      {2.2250738585072009e-308, 0, 0, 1, 0, 3, "the largest subnormal number"},
      {4.9406564584124654e-324, 0, 0, 1, 0, 3, "the smallest number"},
      {-4.9406564584124654e-324, 0, 0, 1, 1, 3, "its negative"},
      {1.7976931348623157e308, 0, 0, 1, 0, 2, "the largest number"},
      {kInfinity, 0, 1, 0, 0, 0, "infinity"},
      {-kInfinity, 0, -1, 0, 1, 0, "minus infinity"},
      {kNaN, 1, 0, 0, 0, 1, "not a number"},
      {-kNaN, 1, 0, 0, 1, 1, "not a number, with the sign bit"},
  };
  for (const Classified& theCase : kCases) {
    EXPECT_EQ(theCase.mNaN, qv_isnan(theCase.mNumber) != 0) << theCase.mWhy;
    EXPECT_EQ(theCase.mInf, qv_isinf(theCase.mNumber)) << theCase.mWhy;
    EXPECT_EQ(theCase.mFinite, qv_isfinite(theCase.mNumber) != 0) << theCase.mWhy;
    EXPECT_EQ(theCase.mSign, qv_signbit(theCase.mNumber) != 0) << theCase.mWhy;
    EXPECT_EQ(theCase.mClass, qv_fpclassify(theCase.mNumber)) << theCase.mWhy;
  }
}

TEST(qvFormatClassify, NamesTheClasses) {
  EXPECT_EQ(0, VEXA_FP_INFINITE);
  EXPECT_EQ(1, VEXA_FP_NAN);
  EXPECT_EQ(2, VEXA_FP_NORMAL);
  EXPECT_EQ(3, VEXA_FP_SUBNORMAL);
  EXPECT_EQ(4, VEXA_FP_ZERO);
}

static uint64_t Bits(double aNumber) {
  uint64_t theBits = 0;
  memcpy(&theBits, &aNumber, sizeof theBits);
  return theBits;
}

TEST(qvFormatClassify, MakesTheSpecialNumbers) {
  EXPECT_EQ(0x8000000000000000u, Bits(qv_nzero()));
  EXPECT_EQ(0x7ff0000000000000u, Bits(qv_pinf()));
  EXPECT_EQ(0xfff0000000000000u, Bits(qv_ninf()));
  EXPECT_EQ(0x7ff8000000000000u, Bits(qv_nan()) & 0x7fffffffffffffffu) << "a quiet NaN, of either sign";
}
