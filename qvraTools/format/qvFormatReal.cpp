// Floating-point numbers as text, decimal and hexadecimal.
#include <string.h>

#include <charconv>
#include <cmath>

#include "qvraTools/format/qvFormatNumber_p.h"

// A double has at most this many digits behind the point, and this many in all; any more are zeros.
#define kqvFormatDouble_MaxFraction   1074
#define kqvFormatDouble_MaxScientific 766 /* behind the point of "d.ddde+dd" */

#define kqvFormatReal_DefaultPrecision 6
#define kqvFormatHex_Digits            15 /* behind the point: a hexadecimal mantissa is 4 bits and 60 */
#define kqvFormatHex_FractionBits      60

// A finite number without its sign. Either width gives the same text for the same value, so what is laid out
// here needs to know the width in two places only: where the digits are made.
struct qvFormatReal {
  bool mfLong;
  double mDouble;
  long double mLongDouble;
};

static bool qvFormat_S_HasFlag(const qvFormatDirective& aDirective, uint8 aFlag) {
  return (aDirective.mFlags & aFlag) != 0;
}

static bool qvFormat_S_IsUpper(const qvFormatDirective& aDirective) { return aDirective.mConversion < 'a'; }

// The digits as "%.{n}f" or "%.{n}e" would have them; returns the end. *aPrecision is the number of digits
// behind the point, wanted and then given: those that are left out are zeros.
static char* qvFormat_S_ToChars(char* aBuffer, const qvFormatReal& aReal, bool afScientific,
                                int* aPrecision) {
#if LDBL_MANT_DIG != DBL_MANT_DIG
  if (aReal.mfLong) {
    return qvFormatLongDouble_ToChars(aBuffer, aReal.mLongDouble, afScientific, aPrecision);
  }
#endif
  int theMax = afScientific ? kqvFormatDouble_MaxScientific : kqvFormatDouble_MaxFraction;
  if (*aPrecision > theMax) {
    *aPrecision = theMax;
  }
  std::chars_format theFormat = afScientific ? std::chars_format::scientific : std::chars_format::fixed;
  return std::to_chars(aBuffer, aBuffer + kqvFormatDouble_BufferSize - kqvFormatReal_FrontRoom, aReal.mDouble,
                       theFormat, *aPrecision)
      .ptr;
}

// f F
static void qvFormat_S_SetFixed(const qvFormatDirective& aDirective, const qvFormatReal& aReal,
                                int aPrecision, char* aBuffer, qvFormatNumber* aNumber) {
  int theGiven = aPrecision;
  char* theEnd = qvFormat_S_ToChars(aBuffer, aReal, false, &theGiven);
  if (theGiven == 0 && (aPrecision > 0 || qvFormat_S_HasFlag(aDirective, kqvFormatFlag_Alternative))) {
    *theEnd++ = '.';
  }
  aNumber->mDigits = aBuffer;
  aNumber->mDigitCount = static_cast<uint32>(theEnd - aBuffer);
  aNumber->mZerosAfter = static_cast<uint32>(aPrecision - theGiven);
}

// The "e" of a text that ends in "e+dd" or more digits.
static char* qvFormat_S_FindExponent(char* anEnd) {
  do {
    --anEnd;
  } while (*anEnd != 'e');
  return anEnd;
}

// Drops the zeros at the end of a fraction, and then a point without one.
static char* qvFormat_S_StripZeros(char* anEnd) {
  while (anEnd[-1] == '0') {
    --anEnd;
  }
  return anEnd[-1] == '.' ? anEnd - 1 : anEnd;
}

// Digits, point and exponent of e E, and of g G where they look like that. aMantissaEnd is the end of what is
// kept of the mantissa, anExponent the text "e+dd" behind it.
static void qvFormat_S_SetMantissaAndExponent(const qvFormatDirective& aDirective, char* aStart,
                                              const char* aMantissaEnd, char* anExponent, const char* anEnd,
                                              qvFormatNumber* aNumber) {
  if (qvFormat_S_IsUpper(aDirective)) {
    *anExponent = 'E';
  }
  aNumber->mDigits = aStart;
  aNumber->mDigitCount = static_cast<uint32>(aMantissaEnd - aStart);
  aNumber->mSuffix = anExponent;
  aNumber->mSuffixLength = static_cast<uint32>(anEnd - anExponent);
}

// Puts a point behind the single digit "d" of "de+dd". The exponent moves by one.
static void qvFormat_S_InsertPoint(char* aStart, char** anEnd) {
  memmove(aStart + 2, aStart + 1, static_cast<size_t>(*anEnd - aStart - 1));
  aStart[1] = '.';
  ++*anEnd;
}

// e E
static void qvFormat_S_SetScientific(const qvFormatDirective& aDirective, const qvFormatReal& aReal,
                                     int aPrecision, char* aBuffer, qvFormatNumber* aNumber) {
  int theGiven = aPrecision;
  char* theEnd = qvFormat_S_ToChars(aBuffer, aReal, true, &theGiven);
  if (theGiven == 0 && (aPrecision > 0 || qvFormat_S_HasFlag(aDirective, kqvFormatFlag_Alternative))) {
    qvFormat_S_InsertPoint(aBuffer, &theEnd);
  }
  char* theExponent = qvFormat_S_FindExponent(theEnd);
  qvFormat_S_SetMantissaAndExponent(aDirective, aBuffer, theExponent, theExponent, theEnd, aNumber);
  aNumber->mZerosAfter = static_cast<uint32>(aPrecision - theGiven);
}

// The number behind the "e".
static int qvFormat_S_ExponentValue(const char* anExponent, const char* anEnd) {
  int theValue = 0;
  for (const char* thePtr = anExponent + 2; thePtr < anEnd; ++thePtr) {
    theValue = theValue * 10 + (*thePtr - '0');
  }
  return anExponent[1] == '-' ? -theValue : theValue;
}

// Makes "123.45" or "0.0012345" of the mantissa "d.ddd" by moving the point. There is always a point
// afterwards, and room for it; for a small number the start moves to the left.
static void qvFormat_S_MovePoint(int anExponent, char** aStart, char** anEnd) {
  char* theStart = *aStart;
  if (*anEnd == theStart + 1) {
    *(*anEnd)++ = '.';
  }
  if (anExponent >= 0) {
    memmove(theStart + 1, theStart + 2, static_cast<size_t>(anExponent));
    theStart[anExponent + 1] = '.';
    return;
  }
  // The digit goes where the point was; in front of it stand "0." and the zeros that the exponent means.
  theStart[1] = theStart[0];
  theStart += anExponent;
  memset(theStart, '0', static_cast<size_t>(1 - anExponent));
  theStart[1] = '.';
  *aStart = theStart;
}

// g G: the digits of "%e", then one of the two styles.
static void qvFormat_S_SetGeneral(const qvFormatDirective& aDirective, const qvFormatReal& aReal,
                                  int aPrecision, char* aBuffer, qvFormatNumber* aNumber) {
  bool theKeepZeros = qvFormat_S_HasFlag(aDirective, kqvFormatFlag_Alternative);
  int theDigits = aPrecision == 0 ? 1 : aPrecision;
  int theGiven = theDigits - 1;
  char* theStart = aBuffer + kqvFormatReal_FrontRoom;
  char* theEnd = qvFormat_S_ToChars(theStart, aReal, true, &theGiven);
  if (theGiven == 0 && theKeepZeros) {
    qvFormat_S_InsertPoint(theStart, &theEnd);
  }
  char* theExponent = qvFormat_S_FindExponent(theEnd);
  int theValue = qvFormat_S_ExponentValue(theExponent, theEnd);
  char* theMantissaEnd = theExponent;
  if (theValue < -4 || theValue >= theDigits) {
    if (!theKeepZeros && theGiven > 0) {
      theMantissaEnd = qvFormat_S_StripZeros(theMantissaEnd);
    }
    qvFormat_S_SetMantissaAndExponent(aDirective, theStart, theMantissaEnd, theExponent, theEnd, aNumber);
  } else {
    qvFormat_S_MovePoint(theValue, &theStart, &theMantissaEnd);
    if (!theKeepZeros) {
      theMantissaEnd = qvFormat_S_StripZeros(theMantissaEnd);
    }
    aNumber->mDigits = theStart;
    aNumber->mDigitCount = static_cast<uint32>(theMantissaEnd - theStart);
  }
  if (theKeepZeros) {
    aNumber->mZerosAfter = static_cast<uint32>(theDigits - 1 - theGiven);
  }
}

// A finite number as mantissa / 2^60 * 2^exponent. The top four bits of the mantissa are the digit in front
// of the point: 1 (0 when subnormal) for a double; 8 to f for a long double of 80 bits, whose leading bit is
// kept in memory. The platform's "%a" shows the same.
struct qvFormatHexParts {
  uint64 mMantissa;
  int mExponent;
};

static qvFormatHexParts qvFormat_S_SplitDouble(double aValue) {
  uint64 theBits = 0;
  memcpy(&theBits, &aValue, sizeof theBits);
  uint64 theFraction = theBits & ((static_cast<uint64>(1) << 52) - 1);
  int theExponent = static_cast<int>(theBits >> 52 & 0x7ff);
  if (theExponent == 0) {
    return {theFraction << 8, theFraction == 0 ? 0 : -1022};
  }
  return {(theFraction | static_cast<uint64>(1) << 52) << 8, theExponent - 1023};
}

static qvFormatHexParts qvFormat_S_Split(const qvFormatReal& aReal) {
#if LDBL_MANT_DIG == 64
  if (aReal.mfLong) {
    uint64 theMantissa = 0;
    uint16 theExponent = 0;
    memcpy(&theMantissa, &aReal.mLongDouble, sizeof theMantissa);
    memcpy(&theExponent, reinterpret_cast<const char*>(&aReal.mLongDouble) + sizeof theMantissa,
           sizeof theExponent);
    if (theMantissa == 0) {
      return {0, 0};
    }
    theExponent &= 0x7fff;
    return {theMantissa, (theExponent == 0 ? -16382 : theExponent - 16383) - 3};
  }
#endif
  return qvFormat_S_SplitDouble(aReal.mDouble);
}

// Rounds to so many digits behind the point, a tie to the even digit.
static void qvFormat_S_RoundHex(int aPrecision, qvFormatHexParts* aParts) {
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

// "p+1": at least one digit. Returns the end.
static char* qvFormat_S_WriteBinaryExponent(char* aStart, char aP, int anExponent) {
  aStart[0] = aP;
  aStart[1] = anExponent < 0 ? '-' : '+';
  return std::to_chars(aStart + 2, aStart + 8, anExponent < 0 ? -anExponent : anExponent).ptr;
}

// a A
static void qvFormat_S_SetHex(const qvFormatDirective& aDirective, const qvFormatReal& aReal, char* aBuffer,
                              qvFormatNumber* aNumber) {
  bool theUpper = qvFormat_S_IsUpper(aDirective);
  const char* theDigits = theUpper ? kqvFormat_UpperDigits : kqvFormat_LowerDigits;
  qvFormatHexParts theParts = qvFormat_S_Split(aReal);
  int thePrecision = aDirective.mPrecision;
  if (thePrecision >= 0 && thePrecision < kqvFormatHex_Digits) {
    qvFormat_S_RoundHex(thePrecision, &theParts);
  }
  char* theEnd = aBuffer;
  *theEnd++ = theDigits[theParts.mMantissa >> kqvFormatHex_FractionBits];
  uint64 theFraction = theParts.mMantissa << 4;
  if (theFraction != 0 || thePrecision > 0 || qvFormat_S_HasFlag(aDirective, kqvFormatFlag_Alternative)) {
    *theEnd++ = '.';
  }
  int theGiven = 0;
  for (; theFraction != 0; theFraction <<= 4, ++theGiven) {
    *theEnd++ = theDigits[theFraction >> kqvFormatHex_FractionBits];
  }
  aNumber->mPrefix[aNumber->mPrefixLength++] = '0';
  aNumber->mPrefix[aNumber->mPrefixLength++] = theUpper ? 'X' : 'x';
  aNumber->mDigits = aBuffer;
  aNumber->mDigitCount = static_cast<uint32>(theEnd - aBuffer);
  aNumber->mZerosAfter = thePrecision > theGiven ? static_cast<uint32>(thePrecision - theGiven) : 0;
  char* theSuffixEnd = qvFormat_S_WriteBinaryExponent(theEnd, theUpper ? 'P' : 'p', theParts.mExponent);
  aNumber->mSuffix = theEnd;
  aNumber->mSuffixLength = static_cast<uint32>(theSuffixEnd - theEnd);
}

static void qvFormat_S_SetFinite(const qvFormatDirective& aDirective, const qvFormatReal& aReal,
                                 char* aBuffer, qvFormatNumber* aNumber) {
  int thePrecision = aDirective.mPrecision < 0 ? kqvFormatReal_DefaultPrecision : aDirective.mPrecision;
  switch (aDirective.mConversion) {
    case 'f':
    case 'F':
      qvFormat_S_SetFixed(aDirective, aReal, thePrecision, aBuffer, aNumber);
      break;
    case 'e':
    case 'E':
      qvFormat_S_SetScientific(aDirective, aReal, thePrecision, aBuffer, aNumber);
      break;
    case 'g':
    case 'G':
      qvFormat_S_SetGeneral(aDirective, aReal, thePrecision, aBuffer, aNumber);
      break;
    default:
      qvFormat_S_SetHex(aDirective, aReal, aBuffer, aNumber);
      break;
  }
  qvFormatNumber_Pad(aDirective, qvFormat_S_HasFlag(aDirective, kqvFormatFlag_Zero), aNumber);
}

static void qvFormat_S_SetWord(const qvFormatDirective& aDirective, const char* aLower, const char* anUpper,
                               qvFormatNumber* aNumber) {
  aNumber->mDigits = qvFormat_S_IsUpper(aDirective) ? anUpper : aLower;
  aNumber->mDigitCount = 3;
  qvFormatNumber_Pad(aDirective, false, aNumber);
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

void qvFormatNumber_SetDouble(const qvFormatDirective& aDirective, double aValue, char* aBuffer,
                              qvFormatNumber* aNumber) {
  *aNumber = qvFormatNumber();
  if (std::isnan(aValue)) {
    qvFormat_S_SetWord(aDirective, "nan", "NAN", aNumber);
    return;
  }
  qvFormat_S_SetSign(aDirective, std::signbit(aValue), aNumber);
  if (std::isinf(aValue)) {
    qvFormat_S_SetWord(aDirective, "inf", "INF", aNumber);
    return;
  }
  qvFormat_S_SetFinite(aDirective, {false, std::fabs(aValue), 0.0L}, aBuffer, aNumber);
}

void qvFormatNumber_SetLongDouble(const qvFormatDirective& aDirective, long double aValue, char* aBuffer,
                                  qvFormatNumber* aNumber) {
#if LDBL_MANT_DIG == DBL_MANT_DIG
  qvFormatNumber_SetDouble(aDirective, static_cast<double>(aValue), aBuffer, aNumber);
#else
  // The special values and every value that a double holds too need nothing of their own, except "%a", which
  // shows the two widths differently.
  double theDouble = static_cast<double>(aValue);
  bool theHex = aDirective.mConversion == 'a' || aDirective.mConversion == 'A';
  bool theFinite = std::isfinite(aValue);
  if (!theFinite || (!theHex && static_cast<long double>(theDouble) == aValue)) {
    qvFormatNumber_SetDouble(aDirective, theDouble, aBuffer, aNumber);
    return;
  }
  *aNumber = qvFormatNumber();
  qvFormat_S_SetSign(aDirective, std::signbit(aValue), aNumber);
  qvFormat_S_SetFinite(aDirective, {true, 0.0, std::fabs(aValue)}, aBuffer, aNumber);
#endif
}
