// Floating-point numbers from text.

#include <float.h>
#include <math.h>

#include "qvraTools/qvConvert.h"
#include "qvraTools/qvConvert_p.h"

#define kqvConvert_MinExponent    (-1021)   /* of ten; below it a number is too small */
#define kqvConvert_MaxExponent    1024      /* of ten; above it a number is too large */
#define kqvConvert_ExponentCutoff 100000000 /* exponents count no further, so that no int overflows */

// With one more digit it is still below 2^53, up to where a double has all whole numbers.
#define kqvConvert_MaxExact INT64_C(900719925474098)

// A number while it is read: mValue * 10^mExponent.
struct qvConvert_Decimal {
  double mValue;
  int mExponent;
  int mfNegative;
};

// The digits of a number while they are read. The first ones are added up as a whole number, which is exactly
// what a double would come to; mRounded is 0 as long as there are no others.
struct qvConvert_Mantissa {
  int64 mWhole;
  double mRounded;
};

static int qvConvert_S_ReadSign(const char** aStr) {
  const int theNegative = **aStr == '-';
  if (**aStr == '+' || **aStr == '-') {
    ++*aStr;
  }
  return theNegative;
}

// What a decimal digit is worth; above 9 for every other byte.
static uint32 qvConvert_S_Digit(char aChar) { return (uint32)(uint8)aChar - '0'; }

static bool qvConvert_S_IsDigit(char aChar) { return qvConvert_S_Digit(aChar) <= 9; }

// Appends the digits at aStr, each of which is rounded, and returns where they end.
static const char* qvConvert_S_ReadRoundedDigits(const char* aStr, double* aValue) {
  for (; qvConvert_S_IsDigit(*aStr); ++aStr) {
    // The product is rounded by itself on every machine: a fused multiply-add would change last bits.
    volatile double theProduct = *aValue * 10.0;
    *aValue = theProduct + (int)qvConvert_S_Digit(*aStr);
  }
  return aStr;
}

// Appends the digits at *aStr to the mantissa and returns how many there are.
static inline size_t qvConvert_S_ReadMantissaDigits(const char** aStr, qvConvert_Mantissa* aMantissa) {
  const char* theStr = *aStr;
  int64 theWhole = aMantissa->mWhole;
  for (; qvConvert_S_IsDigit(*theStr) && theWhole <= kqvConvert_MaxExact; ++theStr) {
    theWhole = theWhole * 10 + qvConvert_S_Digit(*theStr);
  }
  aMantissa->mWhole = theWhole;
  if (qvConvert_S_IsDigit(*theStr)) {
    if (aMantissa->mRounded == 0.0) {
      aMantissa->mRounded = (double)theWhole;
    }
    theStr = qvConvert_S_ReadRoundedDigits(theStr, &aMantissa->mRounded);
  }
  const size_t theDigits = (size_t)(theStr - *aStr);
  *aStr = theStr;
  return theDigits;
}

// The exponent behind an 'e'; 0 when there is none. The 'e' counts as read even without digits.
static int qvConvert_S_ReadExponent(const char** aStr) {
  if (**aStr != 'e' && **aStr != 'E') {
    return 0;
  }
  ++*aStr;
  const int theNegative = qvConvert_S_ReadSign(aStr);
  int theExponent = 0;
  for (; qvConvert_S_IsDigit(**aStr); ++*aStr) {
    if (theExponent < kqvConvert_ExponentCutoff) {
      theExponent = theExponent * 10 + (**aStr - '0');
    }
  }
  return theNegative ? -theExponent : theExponent;
}

// Reads sign, digits, fraction and exponent; 0 when there is no digit.
static int qvConvert_S_ReadDecimal(const char** aStr, qvConvert_Decimal* aDecimal) {
  aDecimal->mfNegative = qvConvert_S_ReadSign(aStr);
  qvConvert_Mantissa theMantissa = {0, 0.0};
  size_t theDigits = qvConvert_S_ReadMantissaDigits(aStr, &theMantissa);
  size_t theFractionDigits = 0;
  if (**aStr == '.') {
    ++*aStr;
    theFractionDigits = qvConvert_S_ReadMantissaDigits(aStr, &theMantissa);
    theDigits += theFractionDigits;
  }
  if (theDigits == 0) {
    return 0;
  }
  if (theFractionDigits > kqvConvert_ExponentCutoff) {
    theFractionDigits = kqvConvert_ExponentCutoff;
  }
  aDecimal->mValue = theMantissa.mRounded != 0.0 ? theMantissa.mRounded : (double)theMantissa.mWhole;
  aDecimal->mExponent = qvConvert_S_ReadExponent(aStr) - (int)theFractionDigits;
  return 1;
}

namespace {

// 10 to the powers of two, each the square of the one before. From 10^512 on they are infinite: zero stays
// zero under them, and what is infinite already stays infinite.
struct PowerTable {
  constexpr PowerTable() {
    double thePower = 10.0;
    for (int i = 0; i < 9; ++i) {
      mPowers[i] = thePower;
      thePower = i < 8 ? thePower * thePower : thePower;
    }
  }

  double mPowers[11] = {0, 0, 0, 0, 0, 0, 0, 0, 0, HUGE_VAL, HUGE_VAL};
};

constexpr PowerTable kPowers;

}  // namespace

// aValue * 10^anExponent. The powers whose exponents are powers of two are applied one after the other, the
// smallest first.
static double qvConvert_S_Scale(double aValue, int anExponent) {
  if (aValue == 0.0 || isinf(aValue)) {
    return aValue;
  }
  unsigned theBits = (unsigned)(anExponent < 0 ? -anExponent : anExponent);
  for (; theBits != 0; theBits &= theBits - 1) {
    const double thePower = kPowers.mPowers[__builtin_ctz(theBits)];
    aValue = anExponent < 0 ? aValue / thePower : aValue * thePower;
  }
  return aValue;
}

static double qvConvert_S_Fail(int* anError, int aCode) {
  if (anError != nullptr) {
    *anError = aCode;
  }
  return 0.0;
}

double qvConvert_strtod_ex(const char* aStr, const char** aEndPtr, int* anError) {
  if (aEndPtr != nullptr) {
    *aEndPtr = aStr;
  }
  if (aStr == nullptr || *aStr == '\0') {
    return qvConvert_S_Fail(anError, kqvConvertError_Invalid);
  }
  const char* theStr = qvConvert_S_SkipSpace(aStr);
  qvConvert_Decimal theDecimal;
  if (!qvConvert_S_ReadDecimal(&theStr, &theDecimal)) {
    return qvConvert_S_Fail(anError, kqvConvertError_Invalid);
  }
  if (theDecimal.mExponent < kqvConvert_MinExponent) {
    return qvConvert_S_Fail(anError, kqvConvertError_RangeLow);
  }
  if (theDecimal.mExponent > kqvConvert_MaxExponent) {
    return qvConvert_S_Fail(anError, kqvConvertError_RangeHigh);
  }
  const double theValue =
      qvConvert_S_Scale(theDecimal.mfNegative ? -theDecimal.mValue : theDecimal.mValue, theDecimal.mExponent);
  // KEEP qvConvertKept.ANegativeDoubleTooLargeIsMinusInfinityWithoutError
  // Only the positive side is tested.
  if (theValue > DBL_MAX) {
    return qvConvert_S_Fail(anError, kqvConvertError_RangeHigh);
  }
  if (aEndPtr != nullptr) {
    *aEndPtr = theStr;
  }
  return theValue;
}

int qvConvert_strtod(const char* aStr, double* aDouble) {
  *aDouble = 0.0;
  const char* theEndPtr = aStr;
  int theError = kqvConvertError_None;
  const double theValue = qvConvert_strtod_ex(aStr, &theEndPtr, &theError);
  // KEEP qvConvertKept.TheSimpleDoubleParserKnowsNoRangeErrors
  // Every failure leaves the end pointer at the start, so a range error is reported as "no number" as well.
  if (theEndPtr == aStr) {
    return kqvConvertError_Invalid;
  }
  *aDouble = theValue;
  return qvConvert_S_Position(aStr, theEndPtr);
}
