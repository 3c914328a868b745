// All digits of a floating-point number, however many.
//
// A value is m * 2^e with integers m and e. For e >= 0 its decimal digits are those of m * 2^e; for e < 0
// those of m * 5^-e with the point moved -e digits to the left, since 2^e = 5^-e / 10^-e. Both are products
// that a row of base-10^9 words holds exactly.
#include "qvraTools/format/qvFormatDecimal_p.h"
#include "qvraTools/format/qvFormatDigits_p.h"
#include "qvraTools/format/qvFormatWord_p.h"

#define kqvFormatExpand_TwoStep   31 /* 2^31 and 5^13 times a word fit 64 bits */
#define kqvFormatExpand_FiveStep  13
#define kqvFormatExpand_FivePower 1220703125U /* 5^13 */

class qvFormatBigDecimal {
 public:
  qvFormatBigDecimal(uint64 aValue, uint32* aWords) : mCount(0), mWords(aWords) {
    while (aValue != 0) {
      aValue = qvFormat_DivideByBillion(aValue, &mWords[mCount++]);
    }
  }

  void Multiply(uint32 aFactor) {
    uint64 theCarry = 0;
    for (int theIndex = 0; theIndex < mCount; ++theIndex) {
      theCarry += static_cast<uint64>(mWords[theIndex]) * aFactor;
      theCarry = qvFormat_DivideByBillion(theCarry, &mWords[theIndex]);
    }
    while (theCarry != 0) {  // up to two words: a factor may be larger than the base
      theCarry = qvFormat_DivideByBillion(theCarry, &mWords[mCount++]);
    }
  }

  // Writes all digits so that they end at anEnd; returns the first, which is not '0'.
  char* WriteDigits(char* anEnd) const {
    char* theStart = anEnd;
    for (int theIndex = 0; theIndex < mCount; ++theIndex) {
      theStart = qvFormatDecimal_WriteNine(theStart, mWords[theIndex]);
    }
    while (theStart < anEnd && *theStart == '0') {
      ++theStart;
    }
    return theStart;
  }

 private:
  int mCount;  // used words, the lowest first
  uint32* mWords;
};

qvFormatDigits qvFormatDigits_Expand(const qvFormatBinary& aNumber, const qvFormatDigitsPlace& aPlace) {
  int theZeroBits = __builtin_ctzll(aNumber.mMantissa);
  qvFormatBigDecimal theNumber(aNumber.mMantissa >> theZeroBits, aPlace.mWords);
  int theExponent = aNumber.mExponent + theZeroBits;
  int theFraction = theExponent < 0 ? -theExponent : 0;
  while (theExponent > 0) {
    int theStep = theExponent < kqvFormatExpand_TwoStep ? theExponent : kqvFormatExpand_TwoStep;
    theNumber.Multiply(1U << theStep);
    theExponent -= theStep;
  }
  for (; theExponent <= -kqvFormatExpand_FiveStep; theExponent += kqvFormatExpand_FiveStep) {
    theNumber.Multiply(kqvFormatExpand_FivePower);
  }
  for (; theExponent < 0; ++theExponent) {
    theNumber.Multiply(5);
  }
  char* theStart = theNumber.WriteDigits(aPlace.mEnd);
  int theCount = static_cast<int>(aPlace.mEnd - theStart);
  return {theStart, theCount, theCount - theFraction};
}
