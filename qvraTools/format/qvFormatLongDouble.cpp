// Exact decimal digits of an 80-bit long double. (Where a long double is a double, nothing of this is
// needed.)
//
// The language's own conversion of this type goes through the C library's formatted output and would depend
// on the process's locale, so the digits are made here. A value is m * 2^e with integers m and e. For e >= 0
// its decimal digits are those of m * 2^e; for e < 0 those of m * 5^-e with the point moved -e digits to the
// left, since 2^e = 5^-e / 10^-e. Both are products that a row of base-10^9 words holds exactly.
#include "qvraTools/format/qvFormatNumber_p.h"

#if LDBL_MANT_DIG == 64

#include <string.h>

#include <charconv>

#define kqvFormatLongDouble_Base       1000000000U
#define kqvFormatLongDouble_BaseDigits 9
#define kqvFormatLongDouble_MaxWords   1281 /* 11514 digits: (2^64 - 1) * 5^16445 */
#define kqvFormatLongDouble_TwoStep    29   /* 2^29 and 5^12 times a word fit 64 bits */
#define kqvFormatLongDouble_FiveStep   12
#define kqvFormatLongDouble_FivePower  244140625U /* 5^12 */

class qvFormatBigDecimal {
 public:
  explicit qvFormatBigDecimal(uint64 aValue) : mCount(0) {
    for (; aValue != 0; aValue /= kqvFormatLongDouble_Base) {
      mWords[mCount++] = static_cast<uint32>(aValue % kqvFormatLongDouble_Base);
    }
  }

  void Multiply(uint32 aFactor) {
    uint64 theCarry = 0;
    for (int theIndex = 0; theIndex < mCount; ++theIndex) {
      theCarry += static_cast<uint64>(mWords[theIndex]) * aFactor;
      mWords[theIndex] = static_cast<uint32>(theCarry % kqvFormatLongDouble_Base);
      theCarry /= kqvFormatLongDouble_Base;
    }
    if (theCarry != 0) {
      mWords[mCount++] = static_cast<uint32>(theCarry);
    }
  }

  // Writes all digits so that they end at anEnd; returns the first, which is not '0'. No digits for 0.
  char* WriteDigits(char* anEnd) const {
    char* theStart = anEnd;
    for (int theIndex = 0; theIndex < mCount; ++theIndex) {
      uint32 theWord = mWords[theIndex];
      for (int theDigit = 0; theDigit < kqvFormatLongDouble_BaseDigits; ++theDigit, theWord /= 10) {
        *--theStart = static_cast<char>('0' + theWord % 10);
      }
    }
    while (theStart < anEnd && *theStart == '0') {
      ++theStart;
    }
    return theStart;
  }

 private:
  int mCount;  // used words, the lowest first
  uint32 mWords[kqvFormatLongDouble_MaxWords];
};

// A number greater than 0 as 0.ddd * 10^mPointAt: mPointAt digits stand in front of the point (some of them
// missing at the start when it is negative).
struct qvFormatDigits {
  char* mStart;
  int mCount;
  int mPointAt;
};

static qvFormatDigits qvFormat_S_MakeDigits(uint64 aMantissa, int anExponent, char* anEnd) {
  int theZeroBits = __builtin_ctzll(aMantissa);
  qvFormatBigDecimal theNumber(aMantissa >> theZeroBits);
  int theExponent = anExponent + theZeroBits;
  int theFraction = theExponent < 0 ? -theExponent : 0;
  while (theExponent > 0) {
    int theStep = theExponent < kqvFormatLongDouble_TwoStep ? theExponent : kqvFormatLongDouble_TwoStep;
    theNumber.Multiply(1U << theStep);
    theExponent -= theStep;
  }
  for (; theExponent <= -kqvFormatLongDouble_FiveStep; theExponent += kqvFormatLongDouble_FiveStep) {
    theNumber.Multiply(kqvFormatLongDouble_FivePower);
  }
  for (; theExponent < 0; ++theExponent) {
    theNumber.Multiply(5);
  }
  char* theStart = theNumber.WriteDigits(anEnd);
  int theCount = static_cast<int>(anEnd - theStart);
  return {theStart, theCount, theCount - theFraction};
}

// Whether what stands behind the first aKept digits rounds up: to nearest, a tie to the even digit.
static bool qvFormat_S_RoundsUp(const qvFormatDigits& aDigits, int aKept) {
  const char* theRest = aDigits.mStart + aKept;
  if (*theRest != '5') {
    return *theRest > '5';
  }
  for (const char* theEnd = aDigits.mStart + aDigits.mCount; theRest + 1 < theEnd; ++theRest) {
    if (theRest[1] != '0') {
      return true;
    }
  }
  return aKept > 0 && (aDigits.mStart[aKept - 1] - '0') % 2 != 0;
}

// Keeps the first aKept digits; a negative number means that the first digit is far behind the last one
// wanted. There is room for a digit in front: 9.96 becomes 10.0.
static void qvFormat_S_Round(int aKept, qvFormatDigits* aDigits) {
  if (aKept >= aDigits->mCount) {
    return;
  }
  bool theUp = aKept >= 0 && qvFormat_S_RoundsUp(*aDigits, aKept);
  aDigits->mCount = aKept > 0 ? aKept : 0;
  if (!theUp) {
    return;
  }
  for (char* thePtr = aDigits->mStart + aDigits->mCount; thePtr > aDigits->mStart;) {
    if (*--thePtr != '9') {
      ++*thePtr;
      return;
    }
    *thePtr = '0';
  }
  *--aDigits->mStart = '1';
  ++aDigits->mCount;
  ++aDigits->mPointAt;
}

static char* qvFormat_S_Append(char* anOut, const char* aDigits, int aCount) {
  memmove(anOut, aDigits, static_cast<size_t>(aCount));  // the digits may stand later in the same buffer
  return anOut + aCount;
}

static char* qvFormat_S_WriteFixed(const qvFormatDigits& aDigits, char* anOut, int* aPrecision) {
  int theWhole = aDigits.mPointAt > 0 ? aDigits.mPointAt : 0;
  int theFraction = aDigits.mCount - theWhole;
  if (theWhole == 0) {
    *anOut++ = '0';
  }
  anOut = qvFormat_S_Append(anOut, aDigits.mStart, theWhole);
  *aPrecision = 0;
  if (theFraction > 0) {
    int theZeros = theWhole - aDigits.mPointAt;
    *anOut++ = '.';
    memset(anOut, '0', static_cast<size_t>(theZeros));
    anOut = qvFormat_S_Append(anOut + theZeros, aDigits.mStart + theWhole, theFraction);
    *aPrecision = theZeros + theFraction;
  }
  return anOut;
}

static char* qvFormat_S_WriteScientific(const qvFormatDigits& aDigits, char* anOut, int* aPrecision) {
  // Rounding 9.96 up has made one digit too many, a zero.
  int theCount = aDigits.mCount > *aPrecision + 1 ? *aPrecision + 1 : aDigits.mCount;
  *anOut++ = aDigits.mStart[0];
  if (theCount > 1) {
    *anOut++ = '.';
    anOut = qvFormat_S_Append(anOut, aDigits.mStart + 1, theCount - 1);
  }
  *aPrecision = theCount - 1;
  int theExponent = aDigits.mPointAt - 1;
  *anOut++ = 'e';
  *anOut++ = theExponent < 0 ? '-' : '+';
  theExponent = theExponent < 0 ? -theExponent : theExponent;
  if (theExponent < 10) {
    *anOut++ = '0';
  }
  return std::to_chars(anOut, anOut + 4, theExponent).ptr;
}

char* qvFormatLongDouble_ToChars(char* aBuffer, long double aValue, bool afScientific, int* aPrecision) {
  uint64 theMantissa = 0;
  uint16 theExponent = 0;
  memcpy(&theMantissa, &aValue, sizeof theMantissa);
  memcpy(&theExponent, reinterpret_cast<const char*>(&aValue) + sizeof theMantissa, sizeof theExponent);
  int thePower = (theExponent == 0 ? 1 : theExponent) - 16383 - 63;
  // The digits are made at the end of the buffer and moved to its start; even the longest text leaves enough
  // room between them.
  char* theEnd = aBuffer + kqvFormatLongDouble_BufferSize - kqvFormatReal_FrontRoom;
  qvFormatDigits theDigits = qvFormat_S_MakeDigits(theMantissa, thePower, theEnd);
  if (afScientific) {
    // One more than the precision, and no int holds one more than the largest.
    qvFormat_S_Round(*aPrecision < theDigits.mCount ? *aPrecision + 1 : theDigits.mCount, &theDigits);
    return qvFormat_S_WriteScientific(theDigits, aBuffer, aPrecision);
  }
  if (*aPrecision < theDigits.mCount - theDigits.mPointAt) {
    qvFormat_S_Round(theDigits.mPointAt + *aPrecision, &theDigits);
  }
  return qvFormat_S_WriteFixed(theDigits, aBuffer, aPrecision);
}

#endif
