// All digits of a floating-point number, however many.
//
// A value is m * 2^e with integers m and e. For e >= 0 its decimal digits are those of m * 2^e; for e < 0
// those of m * 5^-e with the point moved -e digits to the left, since 2^e = 5^-e / 10^-e. Both are products
// that a row of base-10^9 words holds exactly.
#include "qvraTools/format/qvFormatDigits_p.h"

#define kqvFormatExpand_Base       1000000000U
#define kqvFormatExpand_BaseDigits 9
#define kqvFormatExpand_TwoStep    31 /* 2^31 and 5^13 times a word fit 64 bits */
#define kqvFormatExpand_FiveStep   13
#define kqvFormatExpand_FivePower  1220703125U /* 5^13 */

class qvFormatBigDecimal {
 public:
  qvFormatBigDecimal(uint64 aValue, uint32* aWords) : mCount(0), mWords(aWords) {
    for (; aValue != 0; aValue /= kqvFormatExpand_Base) {
      mWords[mCount++] = static_cast<uint32>(aValue % kqvFormatExpand_Base);
    }
  }

  void Multiply(uint32 aFactor) {
    uint64 theCarry = 0;
    for (int theIndex = 0; theIndex < mCount; ++theIndex) {
      theCarry += static_cast<uint64>(mWords[theIndex]) * aFactor;
      mWords[theIndex] = static_cast<uint32>(theCarry % kqvFormatExpand_Base);
      theCarry /= kqvFormatExpand_Base;
    }
    // A factor is up to twice the base.
    for (; theCarry != 0; theCarry /= kqvFormatExpand_Base) {
      mWords[mCount++] = static_cast<uint32>(theCarry % kqvFormatExpand_Base);
    }
  }

  // Writes all digits so that they end at anEnd; returns the first, which is not '0'.
  char* WriteDigits(char* anEnd) const {
    char* theStart = anEnd;
    for (int theIndex = 0; theIndex < mCount; ++theIndex) {
      uint32 theWord = mWords[theIndex];
      for (int theDigit = 0; theDigit < kqvFormatExpand_BaseDigits; ++theDigit, theWord /= 10) {
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
