#include <float.h>
#include <gtest/gtest.h>
#include <math.h>
#include <stdlib.h>

#include <string>

#include "qvraTools/qvConvert.h"

namespace {

constexpr int kNone = kqvConvertError_None;
constexpr int kHigh = kqvConvertError_RangeHigh;
constexpr int kLow = kqvConvertError_RangeLow;
constexpr int kInvalid = kqvConvertError_Invalid;

struct SimpleCase {
  const char* mText;
  double mValue;
  int mResult;
  const char* mWhy;
};

void Expect(const SimpleCase& aCase) {
  SCOPED_TRACE(std::string(aCase.mText == nullptr ? "(null)" : aCase.mText) + ": " + aCase.mWhy);
  double theValue = 99.0;
  EXPECT_EQ(aCase.mResult, qvConvert_strtod(aCase.mText, &theValue));
  EXPECT_EQ(aCase.mValue, theValue);
}

struct LowLevelCase {
  const char* mText;
  double mValue;
  int mError;   // 1 where it must not be written
  int mLength;  // characters read
  const char* mWhy;
};

void Expect(const LowLevelCase& aCase) {
  SCOPED_TRACE(std::string(aCase.mText == nullptr ? "(null)" : aCase.mText) + ": " + aCase.mWhy);
  const char* theEnd = "not written";
  int theError = 1;
  EXPECT_EQ(aCase.mValue, qvConvert_strtod_ex(aCase.mText, &theEnd, &theError));
  EXPECT_EQ(aCase.mError, theError);
  EXPECT_EQ(aCase.mText == nullptr ? nullptr : aCase.mText + aCase.mLength, theEnd);
}

double Parse(const std::string& aText) {
  double theValue = 99.0;
  EXPECT_EQ(kNone, qvConvert_strtod(aText.c_str(), &theValue)) << aText;
  return theValue;
}

}  // namespace

TEST(qvConvertDouble, NumbersHaveDigitsAPointAndAnExponent) {
  const SimpleCase kCases[] = {
      {"0", 0.0, kNone, "zero"},
      {"42", 42.0, kNone, "digits only"},
      {"1.5e3", 1500.0, kNone, "everything"},
      {"1.5E3", 1500.0, kNone, "an upper-case E"},
      {"1.5e+3", 1500.0, kNone, "a positive exponent"},
      {"1500e-3", 1.5, kNone, "a negative exponent"},
      {".5", 0.5, kNone, "no digit before the point"},
      {"1.", 1.0, kNone, "no digit behind the point"},
      {"  +2.25", 2.25, kNone, "blanks and a plus"},
      {"\t-2.25", -2.25, kNone, "blanks and a minus"},
      {"1e", 1.0, kNone, "an exponent without digits counts as read"},
      {"1e+", 1.0, kNone, "even with a sign"},
      {"1e-", 1.0, kNone, "even with a sign"},
      {"00012.500", 12.5, kNone, "zeros at both ends"},
      {"1e00000000000000000002", 100.0, kNone, "zeros before the exponent"},
  };
  for (const SimpleCase& theCase : kCases) {
    Expect(theCase);
  }
}

TEST(qvConvertDouble, WithoutADigitThereIsNoNumber) {
  const SimpleCase kCases[] = {
      {nullptr, 0.0, kInvalid, "null"},
      {"", 0.0, kInvalid, "empty"},
      {"  ", 0.0, kInvalid, "blanks only"},
      {".", 0.0, kInvalid, "a point only"},
      {"-", 0.0, kInvalid, "a sign only"},
      {"e5", 0.0, kInvalid, "an exponent only"},
      {".e5", 0.0, kInvalid, "no mantissa"},
      {"+-1", 0.0, kInvalid, "two signs"},
      {"- 1", 0.0, kInvalid, "a blank behind the sign"},
      {"abc", 0.0, kInvalid, "letters"},
      {"inf", 0.0, kInvalid, "no words"},
      {"nan", 0.0, kInvalid, "no words"},
      {"\xB2", 0.0, kInvalid, "bytes above 0x7F"},
  };
  for (const SimpleCase& theCase : kCases) {
    Expect(theCase);
  }
}

TEST(qvConvertDouble, TextBehindTheNumberIsReportedByItsPosition) {
  const SimpleCase kCases[] = {
      {"1.5x", 1.5, 3, "text"},
      {"  1.5 ", 1.5, 5, "white space is other text; the position counts from the start"},
      {"1.5.5", 1.5, 3, "one point only"},
      {"1e5e5", 100000.0, 3, "one exponent only"},
      {"1ex", 1.0, 2, "the e counts as read"},
      {"1e+x", 1.0, 3, "and so does its sign"},
      {"1e5.5", 100000.0, 3, "an exponent has no fraction"},
      {"1,5", 1.0, 1, "a comma is no point, in any locale"},
      {"0x10", 0.0, 1, "no hexadecimal"},
      {"7\xFF", 7.0, 1, "bytes above 0x7F"},
      {"7:", 7.0, 1, "the code behind 9"},
      {"7/", 7.0, 1, "the code before 0"},
      {"1e2:", 100.0, 3, "no digit of an exponent either"},
  };
  for (const SimpleCase& theCase : kCases) {
    Expect(theCase);
  }
}

TEST(qvConvertDouble, TheLowLevelFormTellsTheRangeErrorsAndTheEnd) {
  const LowLevelCase kCases[] = {
      {"1.5e3", 1500.0, 1, 5, "the error is written on failure only"},
      {"1.5e3 x", 1500.0, 1, 5, "the end lies behind the last character read"},
      {" 2e", 2.0, 1, 3, "behind the e without digits"},
      {nullptr, 0.0, kInvalid, 0, "null"},
      {"", 0.0, kInvalid, 0, "empty"},
      {"  .", 0.0, kInvalid, 0, "on failure the end is the start, before the blanks"},
      {"1e400", 0.0, kHigh, 0, "larger than a double"},
      {"1e512", 0.0, kHigh, 0, "the first power of two whose power of ten no double holds"},
      {"1e1024", 0.0, kHigh, 0, "the largest exponent is looked at by value"},
      {"1e1025", 0.0, kHigh, 0, "the first exponent that is too large"},
      {"0e1024", 0.0, 1, 6, "zero stays zero under the largest exponent"},
      {"0e1025", 0.0, kHigh, 0, "too large, whatever the digits are"},
      {"1e-512", 0.0, 1, 6, "divided by infinity"},
      {"1e-1021", 0.0, 1, 7, "rounded to zero, not an error"},
      {"1e-1022", 0.0, kLow, 0, "the first exponent that is too small"},
      {"0e-1022", 0.0, kLow, 0, "too small, whatever the digits are"},
      {"0.1e-1020", 0.0, 1, 9, "digits of the fraction lower the exponent"},
      {"0.1e-1021", 0.0, kLow, 0, "digits of the fraction lower the exponent"},
      {"1e99999999999999999999", 0.0, kHigh, 0, "an exponent that no int holds"},
      {"1e-99999999999999999999", 0.0, kLow, 0, "an exponent that no int holds"},
      {"1e4294967296", 0.0, kHigh, 0, "2^32 does not wrap to 0"},
      {"1e-4294967297", 0.0, kLow, 0, "nor does its negative neighbour to -1"},
  };
  for (const LowLevelCase& theCase : kCases) {
    Expect(theCase);
  }
}

TEST(qvConvertDouble, EndAndErrorMayBeNull) {
  EXPECT_EQ(2.5, qvConvert_strtod_ex("2.5", nullptr, nullptr));
  EXPECT_EQ(0.0, qvConvert_strtod_ex("x", nullptr, nullptr));
  EXPECT_EQ(0.0, qvConvert_strtod_ex(nullptr, nullptr, nullptr));
  EXPECT_EQ(0.0, qvConvert_strtod_ex("1e400", nullptr, nullptr));
}

TEST(qvConvertDouble, ExactValuesAreExact) {
  // Products and quotients of exact powers of ten (up to 10^22) are rounded once.
  EXPECT_EQ(0.1, Parse("0.1"));
  EXPECT_EQ(0.001, Parse("0.001"));
  EXPECT_EQ(3.1415, Parse("3.1415"));
  EXPECT_EQ(1e8, Parse("1e8"));
  EXPECT_EQ(1e16, Parse("1e16"));
  EXPECT_EQ(9007199254740993e0, Parse("9007199254740993"));
  EXPECT_EQ(123456789012.0, Parse("123456789012"));
}

TEST(qvConvertDouble, EveryDigitIsRoundedByItself) {
  // Around 2^53, up to where whole numbers are exact, and around the last number that has room for a digit.
  const uint64_t kLimits[] = {9007199254740992, 900719925474098, 90071992547409920};
  const std::string kMore[] = {"", "9", "37", "987654321", ".5", ".123456789"};
  for (uint64_t theLimit : kLimits) {
    for (uint64_t theDistance = 0; theDistance <= 80; ++theDistance) {
      for (const std::string& theMore : kMore) {
        const std::string theText = std::to_string(theLimit + 40 - theDistance) + theMore;
        const bool theFractionFlag = theMore[0] == '.';
        volatile double theExpected = 0.0;
        for (char theChar : theText) {
          if (theChar != '.') {
            theExpected = theExpected * 10.0;
            theExpected = theExpected + (theChar - '0');
          }
        }
        EXPECT_EQ(theExpected,
                  Parse(theText + (theFractionFlag ? "e" + std::to_string(theMore.size() - 1) : "")))
            << theText;
      }
    }
  }
  EXPECT_EQ(9007199254740992.0, Parse("9007199254740993")) << "a tie goes to the even neighbour";
  EXPECT_EQ(9007199254740996.0, Parse("9007199254740995")) << "so does this one";
}

TEST(qvConvertDouble, EachPowerOfTenIsAppliedAndRoundedByItself) {
  EXPECT_EQ(0x1.f7ced916872b1p-4, Parse("0.123")) << "123 / 10 / 100; rounded once it would end in b0";
  EXPECT_EQ(0x1.921f9f01b866fp+1, Parse("3.14159")) << "314159 / 10 / 10000; rounded once it would end in 6e";
  EXPECT_EQ(0x1.1ccf385ebc8a3p+1023, Parse("1e308")) << "10^4 * 10^16 * 10^32 * 10^256";
}

TEST(qvConvertDouble, EveryExponentOfADoubleComesCloseToTheCLibrary) {
  for (int theExponent = -307; theExponent <= 308; ++theExponent) {
    const std::string theText = "1.7e" + std::to_string(theExponent);
    const double theExpected = strtod(theText.c_str(), nullptr);
    EXPECT_NEAR(1.0, Parse(theText) / theExpected, 1e-14) << theText;
  }
}

TEST(qvConvertDouble, TheEndsOfTheRangeAreReached) {
  EXPECT_TRUE(isfinite(Parse("1.7976931348623e308")));
  EXPECT_GT(Parse("1.7976931348623e308"), 1.7976931348622e308);
  EXPECT_EQ(0.0, Parse("1e-330")) << "too small for a double is no error";
  EXPECT_GT(Parse("1e-310"), 0.0) << "a denormal number";
  EXPECT_EQ(0.0, Parse("1e-600")) << "smaller than what the powers of ten can express";
}

TEST(qvConvertDouble, TheLargestDoubleIsInRangeAndItsNeighbourIsNot) {
  Expect(LowLevelCase{"17976931348623149e292", DBL_MAX, 1, 21, "the largest"});
  Expect(LowLevelCase{"17976931348623150e292", 0.0, kHigh, 0, "the first that is rounded to infinity"});
}

TEST(qvConvertDouble, ZeroIsZeroUnderEveryPower) {
  EXPECT_EQ(0.0, Parse("0e600"));
  EXPECT_EQ(0.0, Parse("0.000e1000"));
  EXPECT_EQ(0.0, Parse("0e-600"));
  EXPECT_TRUE(signbit(Parse("-0.0")));
  EXPECT_TRUE(signbit(Parse("-0e600")));
  EXPECT_FALSE(signbit(Parse("0e600")));
}

TEST(qvConvertDouble, VeryManyDigitsAreTooLargeWhateverTheExponent) {
  const std::string theNines(400, '9');
  Expect(LowLevelCase{theNines.c_str(), 0.0, kHigh, 0, "more than a double holds"});
  Expect(LowLevelCase{(theNines + "e-100").c_str(), 0.0, kHigh, 0, "the digits alone are too large"});
  Expect(LowLevelCase{(theNines + "e-600").c_str(), 0.0, kHigh, 0, "the digits alone are too large"});
}

TEST(qvConvertDouble, ManyDigitsOfTheFractionAreRead) {
  EXPECT_NEAR(1.0 / 3.0, Parse("0." + std::string(300, '3')), 1e-15);
  Expect(
      LowLevelCase{("0." + std::string(1021, '0')).c_str(), 0.0, 1, 1023, "as many as the exponent allows"});
  Expect(LowLevelCase{("0." + std::string(1022, '0')).c_str(), 0.0, kLow, 0, "one more"});
}

TEST(qvConvertKept, ANegativeDoubleTooLargeIsMinusInfinityWithoutError) {
  Expect(LowLevelCase{"-1e308", -0x1.1ccf385ebc8a3p+1023, 1, 6, "its neighbour is finite"});
  Expect(LowLevelCase{"-1e309", -HUGE_VAL, 1, 6, "the kept one"});
  Expect(LowLevelCase{"-1e1024", -HUGE_VAL, 1, 7, "up to the largest exponent"});
  Expect(LowLevelCase{"-1e1025", 0.0, kHigh, 0, "beyond which it is an error"});
  const std::string theNines = "-" + std::string(400, '9');
  Expect(LowLevelCase{theNines.c_str(), -HUGE_VAL, 1, 401, "by its digits alone"});
  Expect(LowLevelCase{(theNines + "e-600").c_str(), -HUGE_VAL, 1, 406, "whatever the exponent"});
  Expect(LowLevelCase{"1e309", 0.0, kHigh, 0, "the positive one is an error"});
  Expect(SimpleCase{"-1e309", -HUGE_VAL, kNone, "the simple form stores it"});
}

TEST(qvConvertKept, TheSimpleDoubleParserKnowsNoRangeErrors) {
  Expect(SimpleCase{"1e400", 0.0, kInvalid, "RangeHigh in the low-level form"});
  Expect(SimpleCase{"1e-2000", 0.0, kInvalid, "RangeLow in the low-level form"});
  Expect(SimpleCase{"1e308", 0x1.1ccf385ebc8a3p+1023, kNone, "its neighbour is in range"});
  Expect(SimpleCase{"1e-400", 0.0, kNone, "rounded to zero, which is no range error"});
}
