#include <gtest/gtest.h>
#include <locale.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "qvraTools/qvConvert.h"
#include "qvraTools/qvLongLong.h"
#include "qvraTools/qvMalloc.h"
#include "support/BuiltLocale.h"

namespace {

struct ReadCase {
  const char* mText;
  int mResult;
  double mValue;
  const char* mWhy;
};

const ReadCase kFractionCases[] = {
    {"3/4", 0, 0.75, "a fraction"},
    {"1 1/2", 0, 1.5, "a whole and a fraction"},
    {"1-1/2", 0, 1.5, "joined by a minus sign"},
    {"-1 1/2", 0, -1.5, "the sign holds for both"},
    {"-1-1/2", 0, -1.5, "the sign holds for both here too"},
    {"-0 1/2", 0, -0.5, "the sign is the text's"},
    {"0 0/1", 0, 0.0, "the lowest numerator"},
    {"1 1/1", 1, 0.0, "the numerator must be below the denominator"},
    {"1 3/2", 1, 0.0, "above it"},
    {"1 -1/2", 1, 0.0, "a negative numerator"},
    {"1 1/-2", 1, 0.0, "a negative denominator"},
    {"1 0/0", 1, 0.0, "a denominator of zero"},
    {"1/0", 1, 0.0, "a denominator of zero without a whole part"},
    {"-3/4", 0, -0.75, "a negative fraction"},
    {"3/-4", 0, -0.75, "the denominator may carry the sign"},
    {"7/2", 0, 3.5, "a fraction above one"},
    {"1.5/2", 1, 0.0, "the numerator must be whole"},
    {"2.0/4", 0, 0.5, "which 2.0 is"},
    {"1/2.5", 1, 0.0, "the denominator must be an integer"},
    {"1.5 1/2", 1, 0.0, "the whole part must be whole"},
    {"1  1/2", 0, 1.5, "blanks run together"},
    {"1\t1/2", 1, 0.0, "only a blank stands behind the whole part"},
    {" \t3/4", 0, 0.75, "white space in front"},
    {"3/ 4", 0, 0.75, "white space before the denominator"},
    {"3 /4", 1, 0.0, "not before the slash: a blank announces a numerator"},
    {"1 1 / 2", 0, 1.5, "there it is allowed"},
    {"3/4 ", 0, 0.75, "white space behind"},
    {"3/4x", 1, 0.0, "text behind"},
    {"1/2/3", 1, 0.0, "two slashes"},
    {"5\aX", 0, 5.0, "the code that ends the copy ends a number inside the text too"},
    {"5\a7", 1, 0.0, "unless an integer follows"},
    {"1 2/3 4", 1, 0.0, "a fourth number"},
    {"1/0.5", 1, 0.0, "nor does zero with a fraction count as one"},
    {"0/3", 0, 0.0, "a numerator of zero"},
    {"-1 0/3", 0, -1.0, "in front of which a whole part stays"},
    {"5-0/3", 0, 5.0, "joined by a minus sign too"},
    {"1.25", 0, 1.25, "a plain number"},
    {"-2.5e1", 0, -25.0, "with an exponent"},
    {"  7", 0, 7.0, "white space in front of it"},
    {"7 ", 1, 0.0, "none behind it: it announces a numerator"},
    {"7x", 1, 0.0, "text behind it"},
    {"1 1", 1, 0.0, "a numerator without a denominator"},
    {"/2", 1, 0.0, "no numerator"},
    {"", 1, 0.0, "nothing"},
    {"x", 1, 0.0, "no number"},
    {"1,5", 1, 0.0, "a comma is no decimal sign"},
    {"0x1p-1", 0, 0.5, "a plain number is what the C library takes for one"},
    {"inf", 0, HUGE_VAL, "infinity too"},
    {"-1e999", 0, -HUGE_VAL, "which is what no double holds"},
    {"1e999/2", 1, 0.0, "infinity is not whole, so no numerator"},
    {"inf 1/2", 1, 0.0, "nor a whole part"},
    {"nan/2", 1, 0.0, "nor is NaN"},
    {"1/9223372036854775808", 1, 0.0, "a denominator that no 64-bit integer holds"},
    {"1/1000000000000000000", 0, 1e-18, "one that it does, in nineteen digits"},
    {"1/00000000000000000000002", 0, 0.5, "zeros in front are not counted"},
    {"1 00000000000000000000001/+2", 0, 1.5, "nor in the numerator; a plus sign is allowed"},
    {"1 1/99999999999999999999", 1, 0.0, "the same bound behind a whole part"},
    {"1 99999999999999999999/2", 1, 0.0, "and for the numerator"},
    {"\xE9", 1, 0.0, "a byte above 0x7F"},
    {"1\xA0"
     "1/2",
     1, 0.0, "a blank of another character set"},
    {nullptr, 1, 0.0, "null"},
};

TEST(qvConvertFraction, FractionTextBecomesADouble) {
  for (const ReadCase& theCase : kFractionCases) {
    SCOPED_TRACE(std::string(theCase.mText != nullptr ? theCase.mText : "null") + ": " + theCase.mWhy);
    double theValue = 77.0;
    EXPECT_EQ(theCase.mResult, qvConvert_strfractiontodouble(theCase.mText, &theValue));
    EXPECT_DOUBLE_EQ(theCase.mValue, theValue);
  }
}

TEST(qvConvertFraction, LengthBoundsTheText) {
  double theValue = 0.0;
  EXPECT_EQ(0, qvConvert_strnfractiontodouble("1/25", 3, &theValue));
  EXPECT_EQ(0.5, theValue);
  EXPECT_EQ(0, qvConvert_strnfractiontodouble("12", 1, &theValue));
  EXPECT_EQ(1.0, theValue);
  EXPECT_EQ(1, qvConvert_strnfractiontodouble("12", 0, &theValue));
  EXPECT_EQ(1, qvConvert_strnfractiontodouble("1\0", 2, &theValue)) << "a zero byte in the text";
  EXPECT_EQ(1, qvConvert_strnfractiontodouble("1/2\0", 4, &theValue)) << "behind a fraction";
  EXPECT_EQ(1, qvConvert_strnfractiontodouble(nullptr, 3, &theValue));
}

TEST(qvConvertFraction, NaNIsAPlainNumber) {
  double theValue = 0.0;
  EXPECT_EQ(0, qvConvert_strfractiontodouble("nan", &theValue));
  EXPECT_TRUE(std::isnan(theValue));
}

// Bit for bit: the nearest double, which the step-by-step parser of plain numbers does not promise.
TEST(qvConvertFraction, NumbersAreTheNearestDouble) {
  double theValue = 0.0;
  EXPECT_EQ(0, qvConvert_strfractiontodouble("0.1234567890123456789", &theValue));
  EXPECT_EQ(0.1234567890123456789, theValue);
  EXPECT_EQ(0, qvConvert_strfractiontodouble("8.7654321e-37", &theValue));
  EXPECT_EQ(8.7654321e-37, theValue);
}

TEST(qvConvertFraction, ALocaleWithADecimalCommaChangesNothing) {
  CommaLocale theLocale;
  if (!theLocale.WhyNot().empty()) {
    GTEST_SKIP() << theLocale.WhyNot();
  }
  double theValue = 0.0;
  EXPECT_EQ(0, qvConvert_strfractiontodouble("1.5", &theValue));
  EXPECT_EQ(1.5, theValue);
  EXPECT_EQ(1, qvConvert_strfractiontodouble("1,5", &theValue));
  EXPECT_EQ(0, qvConvert_strfractiontodouble("2.0/4", &theValue));
  EXPECT_EQ(0.5, theValue);
  EXPECT_EQ(0, qvConvert_strtodouble("1.5", &theValue));
  EXPECT_EQ(1.5, theValue);
  EXPECT_EQ(1, qvConvert_strtodouble("1,5", &theValue)) << "the comma is other text";
  char* theText = nullptr;
  EXPECT_EQ(0, qvConvert_cleanupfraction("0.125", 1000, &theText));
  EXPECT_STREQ("1/8", theText);
  qvFree(theText);
  EXPECT_EQ(std::string(","), localeconv()->decimal_point) << "the program's own locale stays in force";
}

TEST(qvConvertFraction, NumberOrFractionBecomesADouble) {
  const ReadCase kCases[] = {
      {"1.5", 0, 1.5, "a number"},
      {"  1.5", 0, 1.5, "white space in front"},
      {"1.5x", 3, 1.5, "text behind a number: its position, and the value"},
      {"  1.5x", 3, 1.5, "the position counts from behind the white space"},
      {"", -3, 0.0, "nothing"},
      {"   ", -3, 0.0, "white space alone"},
      {"abc", -3, 0.0, "no number"},
      {"3/4", 0, 0.75, "a fraction"},
      {"-3/4", 0, -0.75, "a negative one"},
      {"3/-4", 0, -0.75, "a negative denominator"},
      {"1 1/2", 0, 1.5, "a whole and a fraction"},
      {"-1 1/2", 0, -1.5, "a negative whole"},
      {"-0 1/2", 0, 0.5, "0 is not negative, whatever its sign"},
      {"1 3/2", 0, 2.5, "the numerator may be any"},
      {"1  1/2", 0, 1.5, "the numerator may have blanks in front"},
      {"1 /2", -3, 0.0, "a blank before the slash announces a numerator"},
      {" \t1 1/2", 0, 1.5, "white space in front of a fraction"},
      {"1\t1/2", 1, 0.0, "only a blank parts the whole from the numerator"},
      {"1 1\t/2", 1, 0.0, "no white space before the slash"},
      {"1/\t2", 0, 0.5, "behind it there may be some"},
      {"1 -1/2", 0, 0.5, "a negative numerator is added to the whole part"},
      {"-1 -1/2", 0, -0.5, "or taken off a negative one"},
      {"1 1 1/2", 1, 0.0, "three numbers before the slash"},
      {"1/0x", 1, 0.0, "text behind a denominator of zero is a failure all the same"},
      {"1/-0", 0, 77.0, "minus zero is zero: nothing is written"},
      {"1-1/2", 1, 0.0, "a minus sign does not join here"},
      {"/", -3, 0.0, "nothing but the slash"},
      {"/2", -3, 0.0, "no numerator"},
      {"3/", -3, 0.0, "no denominator"},
      {"3/x", -3, 0.0, "a denominator that is no number"},
      {"3/4x", 1, 0.0, "text behind the denominator"},
      {"3x/4", 1, 0.0, "text behind the numerator"},
      {"x 3/4", -3, 0.0, "a whole part that is no number"},
      {"1.5/2", 1, 0.0, "integers only"},
      {"99999999999999999999/2", -1, 0.0, "beyond 64 bits"},
      {"-99999999999999999999/2", -2, 0.0, "below 64 bits"},
      {"1/2/3", 1, 0.0, "two slashes"},
      {nullptr, -3, 0.0, "null"},
  };
  for (const ReadCase& theCase : kCases) {
    SCOPED_TRACE(std::string(theCase.mText != nullptr ? theCase.mText : "null") + ": " + theCase.mWhy);
    double theValue = 77.0;
    EXPECT_EQ(theCase.mResult, qvConvert_strtodouble(theCase.mText, &theValue));
    EXPECT_DOUBLE_EQ(theCase.mValue, theValue);
  }
}

TEST(qvConvertKept, DenominatorOfZeroSucceedsAndChangesNothing) {
  double theValue = 77.0;
  EXPECT_EQ(0, qvConvert_strtodouble("3/0", &theValue));
  EXPECT_EQ(77.0, theValue);
  EXPECT_EQ(0, qvConvert_strtodouble("abc/0", &theValue)) << "the denominator is looked at first";
  EXPECT_EQ(77.0, theValue);
  EXPECT_EQ(0, qvConvert_strtodouble("3/1", &theValue));
  EXPECT_EQ(3.0, theValue);
}

struct WriteCase {
  double mValue;
  int32 mMaxDenominator;
  double mPrecision;
  const char* mText;
  const char* mWhy;
};

const WriteCase kWriteCases[] = {
    {0.75, 100, 1e-14, "3/4", "a fraction"},
    {1.5, 100, 1e-14, "1 1/2", "a whole and a fraction"},
    {2.0, 100, 1e-14, "2", "a whole"},
    {0.0, 100, 1e-14, "0", "nothing"},
    {-0.5, 100, 1e-14, "-1/2", "a negative fraction"},
    {-1.5, 100, 1e-14, "-1 1/2", "one minus sign for both"},
    {-2.5, 100, 1e-14, "-2 1/2", "a negative whole"},
    {1.0 / 3.0, 100, 1e-14, "1/3", "a third"},
    {-2.0 / 3.0, 100, 1e-14, "-2/3", "two thirds"},
    {23.976, 1000, 1e-14, "23 122/125", "a frame rate"},
    {3.141592653589793, 10, 1e-14, "3 1/7", "the best that the bound allows"},
    {3.141592653589793, 200, 1e-14, "3 16/113", "a better one with a higher bound"},
    {3.141592653589793, 1000, 0.01, "3 1/7", "as good as the precision asks for"},
    {0.001, 100, 1e-14, "0", "too small for the bound: 0 is nearer than 1/100"},
    {0.009, 100, 1e-14, "1/100", "here 1/100 is nearer"},
    {1e15, 100, 1e-14, "1000000000000000", "a large whole"},
    {-0.0, 100, 1e-14, "0", "minus zero is not below zero"},
    {-1e-20, 100, 1e-14, "-0", "what is below zero has its sign, even when nothing is left of it"},
    {1.0 / 3.0, 3, 1e-14, "1/3", "the bound itself is allowed"},
    {1.0 / 3.0, 2, 1e-14, "1/2", "above it the bound becomes the denominator, with numerator 1"},
    {0.4, 4, 1e-14, "1/3", "or the numerator before gets the denominator that suits it"},
    {0.3, 5, 1e-14, "1/3", "which is the nearest: 3 for 3.33"},
    {0.4, 5, 1e-14, "2/5", "the bound itself is allowed at the second step too"},
    {0.596, 10000, 0.05, "1/2", "the search ends where the rest is below what the precision leaves open"},
    {0.449, 1000, 0.001, "31/69", "which grows as the error shrinks"},
    {0.81, 100, 0.01, "17/21", "and counts when a term is cut to an integer"},
    {0.0234, 1000, 0.05, "0", "a rest within the precision is none"},
    {0.6, 1, 1e-14, "1", "with a bound of 1 the nearest whole number"},
    {0.4, 1, 1e-14, "0", "which may be the one below"},
    {0.5, 1, 1e-14, "1", "the one above when both are as near"},
    {1.6, 1, 1e-14, "2", "it is carried into the whole part"},
    {-0.9999, 10, 0.001, "-1", "the sign is the number's, not the whole part's"},
    {-0.001, 100, 1e-14, "-0", "the sign of a fraction too small for the bound"},
};

TEST(qvConvertFraction, DoubleBecomesFractionText) {
  for (const WriteCase& theCase : kWriteCases) {
    SCOPED_TRACE(std::string(theCase.mText) + ": " + theCase.mWhy);
    char* theText = nullptr;
    EXPECT_EQ(
        0, qvConvert_doubletofraction(theCase.mValue, theCase.mMaxDenominator, theCase.mPrecision, &theText));
    EXPECT_STREQ(theCase.mText, theText);
    qvFree(theText);
  }
}

// No text is promised for these; the search must end and nothing may be undefined.
TEST(qvConvertFraction, ExtremeDoublesGiveSomeText) {
  const double kInfinity = std::numeric_limits<double>::infinity();
  const double kValues[] = {
      kInfinity, -kInfinity, std::nan(""), 1e300, -1e300, 9223372036854775807.0, -9223372036854775808.0,
      5e-324,    0.5};
  for (double theValue : kValues) {
    for (double thePrecision : {1e-14, 0.0, -1.0, kInfinity}) {
      for (int32 theMax : {100, 0, -1, 2147483647}) {
        char* theText = nullptr;
        EXPECT_EQ(0, qvConvert_doubletofraction(theValue, theMax, thePrecision, &theText));
        ASSERT_NE(nullptr, theText);
        qvFree(theText);
      }
    }
  }
}

int64 Value(const qvLongLong& aLongLong) {
  return static_cast<int64>((static_cast<uint64>(static_cast<uint32>(aLongLong.mHigh)) << 32) |
                            aLongLong.mLow);
}

TEST(qvConvertFraction, PartsComeWithTheRemainingError) {
  qvLongLong theWhole;
  qvLongLong theNumerator;
  qvLongLong theDenominator;
  EXPECT_EQ(0.0, qvConvert_doubletofractionparts(1.5, &theWhole, &theNumerator, &theDenominator, 100, 1e-14));
  EXPECT_EQ(1, Value(theWhole));
  EXPECT_EQ(1, Value(theNumerator));
  EXPECT_EQ(2, Value(theDenominator));
  double theError = qvConvert_doubletofractionparts(3.141592653589793, &theWhole, &theNumerator,
                                                    &theDenominator, 10, 1e-14);
  EXPECT_NEAR(22.0 / 7.0 - 3.141592653589793, theError, 1e-12);
  EXPECT_EQ(3, Value(theWhole));
  EXPECT_EQ(1, Value(theNumerator));
  EXPECT_EQ(7, Value(theDenominator));
  qvConvert_doubletofractionparts(-2.25, &theWhole, &theNumerator, &theDenominator, 100, 1e-14);
  EXPECT_EQ(-2, Value(theWhole)) << "the whole part carries the sign";
  EXPECT_EQ(1, Value(theNumerator));
  EXPECT_EQ(4, Value(theDenominator));
}

TEST(qvConvertFraction, FractionTooSmallForTheBoundIsZeroAndItsErrorTheRest) {
  qvLongLong theWhole;
  qvLongLong theNumerator;
  qvLongLong theDenominator;
  EXPECT_EQ(0.001,
            qvConvert_doubletofractionparts(0.001, &theWhole, &theNumerator, &theDenominator, 100, 1e-14));
  EXPECT_EQ(0, Value(theWhole));
  EXPECT_EQ(0, Value(theNumerator));
  EXPECT_EQ(1, Value(theDenominator));
}

TEST(qvConvertFraction, WithoutAFractionNumeratorAndDenominatorAreZero) {
  qvLongLong theWhole;
  qvLongLong theNumerator;
  qvLongLong theDenominator;
  qvConvert_doubletofractionparts(5.0, &theWhole, &theNumerator, &theDenominator, 100, 1e-14);
  EXPECT_EQ(5, Value(theWhole));
  EXPECT_EQ(0, Value(theNumerator));
  EXPECT_EQ(0, Value(theDenominator));
}

TEST(qvConvertKept, FractionThatRoundsToOneRaisesTheWholePart) {
  qvLongLong theWhole;
  qvLongLong theNumerator;
  qvLongLong theDenominator;
  auto split = [&](double aValue) {
    qvConvert_doubletofractionparts(aValue, &theWhole, &theNumerator, &theDenominator, 10, 0.001);
  };
  split(1.998);
  EXPECT_EQ(2, Value(theWhole)) << "one half of the rule: upwards";
  EXPECT_EQ(0, Value(theNumerator));
  split(-1.998);
  EXPECT_EQ(0, Value(theWhole)) << "the kept one: upwards for a negative number too";
  split(2.0);
  EXPECT_EQ(2, Value(theWhole));
  split(-2.0);
  EXPECT_EQ(0, Value(theWhole)) << "-2 lies below the whole number found, -1, by 1/1";
  char* theText = nullptr;
  qvConvert_doubletofraction(-2.0, 10, 0.001, &theText);
  EXPECT_STREQ("-0", theText);
  qvFree(theText);
  split(1.5);
  EXPECT_EQ(1, Value(theWhole));
  split(-1.5);
  EXPECT_EQ(-1, Value(theWhole));
}

TEST(qvConvertFraction, CleanupReducesAFraction) {
  const struct {
    const char* mText;
    const char* mCleaned;
  } kCases[] = {{"2/4", "1/2"}, {"7/2", "3 1/2"}, {"1 50/100", "1 1/2"}, {"0.125", "1/8"},
                {"4/2", "2"},   {"0/5", "0"},     {"-6/4", "-1 1/2"}};
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mText);
    char* theText = nullptr;
    EXPECT_EQ(0, qvConvert_cleanupfraction(theCase.mText, 1000, &theText));
    EXPECT_STREQ(theCase.mCleaned, theText);
    qvFree(theText);
  }
}

TEST(qvConvertFraction, CleanupKeepsWhatDiffersByMoreThanItsPrecision) {
  const struct {
    const char* mText;
    const char* mCleaned;
    const char* mWhy;
  } kCases[] = {
      {"10000000/970000001", "10000000/970000001", "1e-11 away from 1/97"},
      {"26667/1333350001", "26667/1333350001", "1.5e-14 away from 1/50000"},
      {"14286/1428600001", "1/100000", "0.7e-14 away from it"},
  };
  for (const auto& theCase : kCases) {
    char* theText = nullptr;
    EXPECT_EQ(0, qvConvert_cleanupfraction(theCase.mText, 2147483647, &theText));
    EXPECT_STREQ(theCase.mCleaned, theText) << theCase.mWhy;
    qvFree(theText);
  }
}

TEST(qvConvertFraction, CleanupOfNoFractionReturnsOne) {
  char theMark = 'x';
  char* theText = &theMark;
  EXPECT_EQ(1, qvConvert_cleanupfraction("1 3/2", 1000, &theText));
  EXPECT_EQ(nullptr, theText);
}

TEST(qvConvertFraction, AbsClearsTheSign) {
  EXPECT_EQ(1.5, qvDouble_Abs(-1.5));
  EXPECT_EQ(1.5, qvDouble_Abs(1.5));
  EXPECT_FALSE(std::signbit(qvDouble_Abs(-0.0)));
  EXPECT_EQ(std::numeric_limits<double>::infinity(), qvDouble_Abs(-std::numeric_limits<double>::infinity()));
}

}  // namespace
