// Floating-point numbers as text, decimal and hexadecimal.
#include <limits.h>
#include <stdlib.h>
#include <string.h>

#include <cmath>

#include "qvraTools/format/qvFormatNumber_p.h"

#define kqvFormatReal_DefaultPrecision 6
#define kqvFormatHex_Digits            15 /* behind the point: a hexadecimal mantissa is 4 bits and 60 */
#define kqvFormatHex_FractionBits      60

static bool qvFormat_S_HasFlag(const qvFormatDirective& aDirective, uint8 aFlag) {
  return (aDirective.mFlags & aFlag) != 0;
}

static bool qvFormat_S_IsUpper(const qvFormatDirective& aDirective) { return aDirective.mConversion < 'a'; }

// Takes the last aPrecision of the digits behind the point; those that are not there are zeros.
static void qvFormat_S_SetFraction(const qvFormatDirective& aDirective, const char* aDigits, int aCount,
                                   uint32 aPrecision, qvFormatNumber* aNumber) {
  aNumber->mfPoint = aPrecision > 0 || qvFormat_S_HasFlag(aDirective, kqvFormatFlag_Alternative);
  aNumber->mFraction = aDigits;
  aNumber->mFractionCount = static_cast<uint32>(aCount);
  aNumber->mZerosAfter = aPrecision - aNumber->mFractionCount - aNumber->mZerosBehindPoint;
}

// "123.45" with so many digits behind the point.
static void qvFormat_S_SetFixed(const qvFormatDirective& aDirective, const qvFormatDigits& aDigits,
                                uint32 aPrecision, qvFormatNumber* aNumber) {
  int theWhole = aDigits.mPointAt;
  if (theWhole > 0) {
    aNumber->mDigits = aDigits.mStart;
    aNumber->mDigitCount = static_cast<uint32>(theWhole);
  } else {
    aNumber->mDigits = "0";
    aNumber->mDigitCount = 1;
    aNumber->mZerosBehindPoint = aDigits.mCount > 0 ? static_cast<uint32>(-theWhole) : 0;
    theWhole = 0;
  }
  qvFormat_S_SetFraction(aDirective, aDigits.mStart + theWhole, aDigits.mCount - theWhole, aPrecision,
                         aNumber);
}

// An exponent: a letter, the sign and at least so many digits.
static void qvFormat_S_SetExponent(char aLetter, int anExponent, uint32 aLeast, qvFormatNumber* aNumber) {
  char* theEnd = aNumber->mSuffix + sizeof aNumber->mSuffix;
  char* theStart = qvFormatNumber_WriteDecimal(theEnd, static_cast<uint32>(abs(anExponent)));
  while (theEnd - theStart < static_cast<ptrdiff_t>(aLeast)) {
    *--theStart = '0';
  }
  *--theStart = anExponent < 0 ? '-' : '+';
  *--theStart = aLetter;
  aNumber->mSuffixLength = static_cast<uint32>(theEnd - theStart);
}

// "1.2345e+02" with so many digits behind the point.
static void qvFormat_S_SetScientific(const qvFormatDirective& aDirective, const qvFormatDigits& aDigits,
                                     uint32 aPrecision, qvFormatNumber* aNumber) {
  aNumber->mDigits = aDigits.mStart;
  aNumber->mDigitCount = 1;
  qvFormat_S_SetFraction(aDirective, aDigits.mStart + 1, aDigits.mCount - 1, aPrecision, aNumber);
  qvFormat_S_SetExponent(qvFormat_S_IsUpper(aDirective) ? 'E' : 'e', aDigits.mPointAt - 1, 2, aNumber);
}

// g G: one of the two styles, for so many digits in all; zeros at the end of the fraction only if asked for.
static void qvFormat_S_SetGeneral(const qvFormatDirective& aDirective, qvFormatDigits aDigits, int aCount,
                                  qvFormatNumber* aNumber) {
  bool theFixed = aDigits.mPointAt > -4 && aDigits.mPointAt <= aCount;
  int theWhole = theFixed ? aDigits.mPointAt : 1;
  int theKept = aCount;
  if (!qvFormat_S_HasFlag(aDirective, kqvFormatFlag_Alternative)) {
    int theLeast = theWhole > 0 ? theWhole : 1;
    while (aDigits.mCount > theLeast && aDigits.mStart[aDigits.mCount - 1] == '0') {
      --aDigits.mCount;
    }
    theKept = aDigits.mCount;
  }
  // With zeros between point and digits, up to three more than an int holds.
  uint32 thePrecision = static_cast<uint32>(theKept) - static_cast<uint32>(theWhole);
  if (theFixed) {
    qvFormat_S_SetFixed(aDirective, aDigits, thePrecision, aNumber);
  } else {
    qvFormat_S_SetScientific(aDirective, aDigits, thePrecision, aNumber);
  }
}

// e E f F g G
static void qvFormat_S_SetDecimal(const qvFormatDirective& aDirective, const qvFormatBinary& aReal,
                                  const qvFormatDigitsPlace& aPlace, qvFormatNumber* aNumber) {
  int thePrecision = aDirective.mPrecision < 0 ? kqvFormatReal_DefaultPrecision : aDirective.mPrecision;
  switch (aDirective.mConversion) {
    case 'f':
    case 'F':
      qvFormat_S_SetFixed(aDirective, qvFormatDigits_Fixed(aReal, thePrecision, aPlace),
                          static_cast<uint32>(thePrecision), aNumber);
      break;
    case 'e':
    case 'E': {
      // One digit more than the precision, and no int holds one more than the largest.
      int theCount = thePrecision < INT_MAX ? thePrecision + 1 : thePrecision;
      qvFormat_S_SetScientific(aDirective, qvFormatDigits_Leading(aReal, theCount, aPlace),
                               static_cast<uint32>(thePrecision), aNumber);
      break;
    }
    default: {
      int theCount = thePrecision > 0 ? thePrecision : 1;
      qvFormat_S_SetGeneral(aDirective, qvFormatDigits_Leading(aReal, theCount, aPlace), theCount, aNumber);
      break;
    }
  }
}
// A finite number as mantissa / 2^60 * 2^exponent. The top four bits of the mantissa are the digit in front
// of the point: 1 (0 when subnormal) for a double; 8 to f for a long double of 80 bits, whose leading bit is
// kept in memory. The platform's "%a" shows the same.
static qvFormatBinary qvFormat_S_HexParts(const qvFormatBinary& aReal, bool afLong) {
  if (aReal.mMantissa == 0) {
    return {0, 0};
  }
  int theShift = afLong ? 0 : 8;
  return {aReal.mMantissa << theShift, aReal.mExponent + kqvFormatHex_FractionBits - theShift};
}

// Rounds to so many digits behind the point, a tie to the even digit.
static void qvFormat_S_RoundHex(int aPrecision, qvFormatBinary* aParts) {
  int theDropped = kqvFormatHex_FractionBits - 4 * aPrecision;
  uint64 theUnit = static_cast<uint64>(1) << theDropped;
  uint64 theRest = aParts->mMantissa & (theUnit - 1);
  uint64 theHalf = theUnit / 2;
  aParts->mMantissa -= theRest;
  bool theOdd = (aParts->mMantissa & theUnit) != 0;
  if (theRest < theHalf || (theRest == theHalf && !theOdd)) {
    return;
  }
  aParts->mMantissa += theUnit;
  if (aParts->mMantissa == 0) {  // "f.ff" became "10.00": written as "1.00", four powers of two higher
    aParts->mMantissa = static_cast<uint64>(1) << kqvFormatHex_FractionBits;
    aParts->mExponent += 4;
  }
}

// a A
static void qvFormat_S_SetHex(const qvFormatDirective& aDirective, qvFormatBinary aParts,
                              const qvFormatDigitsPlace& aPlace, qvFormatNumber* aNumber) {
  bool theUpper = qvFormat_S_IsUpper(aDirective);
  const char* theDigits = theUpper ? kqvFormat_UpperDigits : kqvFormat_LowerDigits;
  int thePrecision = aDirective.mPrecision;
  if (thePrecision >= 0 && thePrecision < kqvFormatHex_Digits) {
    qvFormat_S_RoundHex(thePrecision, &aParts);
  }
  char* theStart = aPlace.mEnd - 1 - kqvFormatHex_Digits;
  char* theEnd = theStart;
  *theEnd++ = theDigits[aParts.mMantissa >> kqvFormatHex_FractionBits];
  for (uint64 theFraction = aParts.mMantissa << 4; theFraction != 0; theFraction <<= 4) {
    *theEnd++ = theDigits[theFraction >> kqvFormatHex_FractionBits];
  }
  int theGiven = static_cast<int>(theEnd - theStart) - 1;
  aNumber->mPrefix[aNumber->mPrefixLength++] = '0';
  aNumber->mPrefix[aNumber->mPrefixLength++] = theUpper ? 'X' : 'x';
  aNumber->mDigits = theStart;
  aNumber->mDigitCount = 1;
  qvFormat_S_SetFraction(aDirective, theStart + 1, theGiven,
                         static_cast<uint32>(thePrecision > theGiven ? thePrecision : theGiven), aNumber);
  qvFormat_S_SetExponent(theUpper ? 'P' : 'p', aParts.mExponent, 1, aNumber);
}

// The sign of everything but a NaN.
static void qvFormat_S_SetSign(const qvFormatDirective& aDirective, bool afNegative,
                               qvFormatNumber* aNumber) {
  if (afNegative) {
    aNumber->mPrefix[aNumber->mPrefixLength++] = '-';
  } else if (qvFormat_S_HasFlag(aDirective, kqvFormatFlag_Plus)) {
    aNumber->mPrefix[aNumber->mPrefixLength++] = '+';
  } else if (qvFormat_S_HasFlag(aDirective, kqvFormatFlag_Space)) {
    aNumber->mPrefix[aNumber->mPrefixLength++] = ' ';
  }
}

static void qvFormat_S_SetFinite(const qvFormatDirective& aDirective, const qvFormatBinary& aReal,
                                 bool afLong, const qvFormatDigitsPlace& aPlace, qvFormatNumber* aNumber) {
  if (aDirective.mConversion == 'a' || aDirective.mConversion == 'A') {
    qvFormat_S_SetHex(aDirective, qvFormat_S_HexParts(aReal, afLong), aPlace, aNumber);
  } else {
    qvFormat_S_SetDecimal(aDirective, aReal, aPlace, aNumber);
  }
  qvFormatNumber_Pad(aDirective, qvFormat_S_HasFlag(aDirective, kqvFormatFlag_Zero), aNumber);
}

static void qvFormat_S_SetWord(const qvFormatDirective& aDirective, const char* aLower, const char* anUpper,
                               qvFormatNumber* aNumber) {
  aNumber->mDigits = qvFormat_S_IsUpper(aDirective) ? anUpper : aLower;
  aNumber->mDigitCount = 3;
  qvFormatNumber_Pad(aDirective, false, aNumber);
}

// An infinity, or a NaN, which has no sign.
static void qvFormat_S_SetSpecial(const qvFormatDirective& aDirective, bool afNaN, bool afNegative,
                                  qvFormatNumber* aNumber) {
  if (afNaN) {
    qvFormat_S_SetWord(aDirective, "nan", "NAN", aNumber);
    return;
  }
  qvFormat_S_SetSign(aDirective, afNegative, aNumber);
  qvFormat_S_SetWord(aDirective, "inf", "INF", aNumber);
}

void qvFormatNumber_SetDouble(const qvFormatDirective& aDirective, double aValue,
                              const qvFormatDigitsPlace& aPlace, qvFormatNumber* aNumber) {
  uint64 theBits = 0;
  memcpy(&theBits, &aValue, sizeof theBits);
  uint64 theLeading = static_cast<uint64>(1) << 52;
  uint64 theFraction = theBits & (theLeading - 1);
  int theExponent = static_cast<int>(theBits >> 52 & 0x7ff);
  bool theNegative = theBits >> 63 != 0;
  *aNumber = qvFormatNumber();
  if (theExponent == 0x7ff) {
    qvFormat_S_SetSpecial(aDirective, theFraction != 0, theNegative, aNumber);
    return;
  }
  qvFormatBinary theReal = {theFraction, -1074};
  if (theExponent > 0) {
    theReal = {theFraction | theLeading, theExponent - 1075};
  }
  qvFormat_S_SetSign(aDirective, theNegative, aNumber);
  qvFormat_S_SetFinite(aDirective, theReal, false, aPlace, aNumber);
}

#if LDBL_MANT_DIG == DBL_MANT_DIG

void qvFormatNumber_SetLongDouble(const qvFormatDirective& aDirective, long double aValue,
                                  const qvFormatDigitsPlace& aPlace, qvFormatNumber* aNumber) {
  qvFormatNumber_SetDouble(aDirective, static_cast<double>(aValue), aPlace, aNumber);
}

#else

void qvFormatNumber_SetLongDouble(const qvFormatDirective& aDirective, long double aValue,
                                  const qvFormatDigitsPlace& aPlace, qvFormatNumber* aNumber) {
  *aNumber = qvFormatNumber();
  if (!std::isfinite(aValue)) {
    qvFormat_S_SetSpecial(aDirective, std::isnan(aValue), std::signbit(aValue), aNumber);
    return;
  }
  uint64 theMantissa = 0;
  uint16 theSignAndExponent = 0;
  memcpy(&theMantissa, &aValue, sizeof theMantissa);
  memcpy(&theSignAndExponent, reinterpret_cast<const char*>(&aValue) + sizeof theMantissa,
         sizeof theSignAndExponent);
  int theExponent = theSignAndExponent & 0x7fff;
  qvFormat_S_SetSign(aDirective, std::signbit(aValue), aNumber);
  qvFormat_S_SetFinite(aDirective, {theMantissa, (theExponent == 0 ? 1 : theExponent) - 16383 - 63}, true,
                       aPlace, aNumber);
}

#endif
