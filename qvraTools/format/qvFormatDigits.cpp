// The digits that most texts show: up to 17, from a product with a power of five of 128 bits.
//
// The digits of m * 2^e up to the k-th behind the point are the whole part of m * 5^k * 2^(e+k); what is left
// tells how to round. The powers 5^0 to 5^27 are exact and so is the product. The others are cut to 128 bits,
// and the product may be a few units of its last place too small. It tells the rounding all the same unless
// it is as close as that to a tie; then all digits are made, and the tie is seen in them.
#include "qvraTools/format/qvFormatDigits_p.h"

#include <limits.h>

#include "qvraTools/format/qvFormatNumber_p.h"
#include "qvraTools/format/qvFormatWord_p.h"

#define kqvFormatDigits_MaxScaled 17 /* digits; the whole part has one more at most, and is below 2^60 */
#define kqvFormatDigits_MinPower  (-308)
#define kqvFormatDigits_MaxPower  363
#define kqvFormatDigits_StepSize  28 /* between two powers in the table of the large steps */
#define kqvFormatDigits_Slack     8  /* more than an inexact product may be too small by */

// 5^0 to 5^27, moved to the top of the word.
static const uint64 kqvFormatDigits_Fives[kqvFormatDigits_StepSize] = {
    0x8000000000000000, 0xa000000000000000, 0xc800000000000000, 0xfa00000000000000, 0x9c40000000000000,
    0xc350000000000000, 0xf424000000000000, 0x9896800000000000, 0xbebc200000000000, 0xee6b280000000000,
    0x9502f90000000000, 0xba43b74000000000, 0xe8d4a51000000000, 0x9184e72a00000000, 0xb5e620f480000000,
    0xe35fa931a0000000, 0x8e1bc9bf04000000, 0xb1a2bc2ec5000000, 0xde0b6b3a76400000, 0x8ac7230489e80000,
    0xad78ebc5ac620000, 0xd8d726b7177a8000, 0x878678326eac9000, 0xa968163f0a57b400, 0xd3c21bcecceda100,
    0x84595161401484a0, 0xa56fa5b99019a5c8, 0xcecb8f27f4200f3a,
};

// Every 28th power of five, moved to the top and cut.
static const qvFormat128 kqvFormatDigits_Steps[] = {
    {0xe61acf033d1a45df, 0x6fb92487298e33bd},  // 5^-308
    {0xe858ad248f5c22c9, 0xd1b3400f8f9cff68},  // 5^-280
    {0xea9c227723ee8bcb, 0x465e15a979c1cadc},  // 5^-252
    {0xece53cec4a314ebd, 0xa4f8bf5635246428},  // 5^-224
    {0xef340a98172aace4, 0x86fb897116c87c34},  // 5^-196
    {0xf18899b1bc3f8ca1, 0xdc44e6c3cb279ac1},  // 5^-168
    {0xf3e2f893dec3f126, 0x5a89dba3c3efccfa},  // 5^-140
    {0xf64335bcf065d37d, 0x4d4617b5ff4a16d5},  // 5^-112
    {0xf8a95fcf88747d94, 0x75a44c6397ce912a},  // 5^-84
    {0xfb158592be068d2e, 0xeed6e2f0f0d56712},  // 5^-56
    {0xfd87b5f28300ca0d, 0x8bca9d6e188853fc},  // 5^-28
    {0x8000000000000000, 0x0000000000000000},  // 5^0
    {0x813f3978f8940984, 0x4000000000000000},  // 5^28
    {0x82818f1281ed449f, 0xbff8f10e7a8921a4},  // 5^56
    {0x83c7088e1aab65db, 0x792667c6da79e0fa},  // 5^84
    {0x850fadc09923329e, 0x03e2cf6bc604ddb0},  // 5^112
    {0x865b86925b9bc5c2, 0x0b8a2392ba45a9b2},  // 5^140
    {0x87aa9aff79042286, 0x90fb44d2f05d0842},  // 5^168
    {0x88fcf317f22241e2, 0x441fece3bdf81f03},  // 5^196
    {0x8a5296ffe33cc92f, 0x82bd6b70d99aaa6f},  // 5^224
    {0x8bab8eefb6409c1a, 0x1ad089b6c2f7548e},  // 5^252
    {0x8d07e33455637eb2, 0xdb0b487b6423e1e8},  // 5^280
    {0x8e679c2f5e44ff8f, 0x570f09eaa7ea7648},  // 5^308
    {0x8fcac257558ee4e6, 0x213a4f0aa5e8a7b1},  // 5^336
};

// A power of five is mBits / 2^127 * 2^(its binary exponent), or too small by less than 4 in the last place.
struct qvFormatPower {
  qvFormat128 mBits;
  bool mfExact;
};

// A number cut behind the last digit wanted: the digits as an integer, and 64 bits of what follows.
struct qvFormatScaled {
  uint64 mWhole;
  uint64 mRest;   // when exact, its last bit is set if anything was cut
  uint64 mSlack;  // by how much the rest may be too small, 0 when exact
};

// The largest n with 10^n <= 2^aPower, and with 2^n <= 5^aPower; for all powers that a number can have.
static int qvFormat_S_Log10OfPowerOf2(int aPower) {
  return static_cast<int>((static_cast<int64>(aPower) * 1292913986) >> 32);
}
static int qvFormat_S_Log2OfPowerOf5(int aPower) { return (aPower * 152170) >> 16; }

// The upper 128 of the 192 bits of a product.
static qvFormat128 qvFormat_S_MultiplyUpper(const qvFormat128& aLeft, uint64 aRight) {
  qvFormat128 theProduct = qvFormat_Multiply(aLeft.mHigh, aRight);
  if (aLeft.mLow != 0) {
    uint64 theCarried = qvFormat_Multiply(aLeft.mLow, aRight).mHigh;
    theProduct.mLow += theCarried;
    theProduct.mHigh += theProduct.mLow < theCarried;
  }
  return theProduct;
}

static qvFormatPower qvFormat_S_PowerOf5(int aPower) {
  if (aPower >= 0 && aPower < kqvFormatDigits_StepSize) {
    return {{kqvFormatDigits_Fives[aPower], 0}, true};
  }
  int theOffset = aPower - kqvFormatDigits_MinPower;
  qvFormat128 theBits = qvFormat_S_MultiplyUpper(kqvFormatDigits_Steps[theOffset / kqvFormatDigits_StepSize],
                                                 kqvFormatDigits_Fives[theOffset % kqvFormatDigits_StepSize]);
  if (theBits.mHigh >> 63 == 0) {
    theBits.mHigh = theBits.mHigh << 1 | theBits.mLow >> 63;
    theBits.mLow <<= 1;
  }
  return {theBits, false};
}

// aNumber * 10^aPower, below 10^18. The top bit of the mantissa is set.
static qvFormatScaled qvFormat_S_Scale(const qvFormatBinary& aNumber, int aPower) {
  qvFormatPower thePower = qvFormat_S_PowerOf5(aPower);
  qvFormat128 theProduct = qvFormat_S_MultiplyUpper(thePower.mBits, aNumber.mMantissa);
  // With 64 of its bits behind the point, the product has to move so far to the right: 3 to 71 bits.
  int theShift = -(aNumber.mExponent + aPower + qvFormat_S_Log2OfPowerOf5(aPower) + 1);
  uint64 theCut = 0;
  if (theShift >= 64) {
    theShift -= 64;
    theCut = theProduct.mLow;
    theProduct = {0, theProduct.mHigh};
  }
  qvFormatScaled theScaled = {0, theProduct.mLow, thePower.mfExact ? 0U : kqvFormatDigits_Slack};
  if (theShift > 0) {
    theCut |= theProduct.mLow << (64 - theShift);
    theScaled.mRest = theProduct.mHigh << (64 - theShift) | theProduct.mLow >> theShift;
  }
  theScaled.mWhole = theProduct.mHigh >> theShift;
  if (thePower.mfExact && theCut != 0) {
    theScaled.mRest |= 1;
  }
  return theScaled;
}

// Adds one to the last digit. A digit more in front, as of 9.96 and 10.0, is one less at the end if that
// would be too many.
static void qvFormat_S_RoundUp(int aMaxCount, qvFormatDigits* aDigits) {
  for (char* thePtr = aDigits->mStart + aDigits->mCount; thePtr > aDigits->mStart;) {
    if (*--thePtr != '9') {
      ++*thePtr;
      return;
    }
    *thePtr = '0';
  }
  *--aDigits->mStart = '1';
  ++aDigits->mPointAt;
  if (aDigits->mCount < aMaxCount) {
    ++aDigits->mCount;
  }
}

static bool qvFormat_S_EndsOdd(const qvFormatDigits& aDigits) {
  return aDigits.mCount > 0 && (aDigits.mStart[aDigits.mCount - 1] - '0') % 2 != 0;
}

// Writes a scaled number with at most aMaxCount digits, which its whole part exceeds by one at most. False
// when it is too close to a tie.
static bool qvFormat_S_WriteScaled(const qvFormatScaled& aScaled, int aPower, int aMaxCount, char* anEnd,
                                   qvFormatDigits* aDigits) {
  char* theStart = qvFormatNumber_WriteDecimal(anEnd, aScaled.mWhole);
  int theCount = static_cast<int>(anEnd - theStart);
  *aDigits = {theStart, theCount, theCount - aPower};
  uint64 theRest = aScaled.mRest;
  uint64 theHalf = static_cast<uint64>(1) << 63;
  if (theCount > aMaxCount) {
    // The last digit belongs to the rest.
    aDigits->mCount = aMaxCount;
    theRest = static_cast<uint64>(theStart[aMaxCount] - '0') << 60 | theRest >> 4 | ((theRest & 15) != 0);
    theHalf = static_cast<uint64>(5) << 60;
  }
  if (theRest <= theHalf) {
    if (theHalf - theRest > aScaled.mSlack) {
      return true;
    }
    if (aScaled.mSlack != 0) {
      return false;
    }
    if (!qvFormat_S_EndsOdd(*aDigits)) {
      return true;
    }
  }
  qvFormat_S_RoundUp(aMaxCount, aDigits);
  return true;
}

// Whether what stands behind the first aKept of all digits rounds up.
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
  return qvFormat_S_EndsOdd({aDigits.mStart, aKept, 0});
}

// Keeps the first aKept of all digits; a negative number means that the first digit is far behind the last
// one wanted.
static void qvFormat_S_Round(int aKept, int aMaxCount, qvFormatDigits* aDigits) {
  if (aKept >= aDigits->mCount) {
    return;
  }
  bool theUp = aKept >= 0 && qvFormat_S_RoundsUp(*aDigits, aKept);
  aDigits->mCount = aKept > 0 ? aKept : 0;
  if (theUp) {
    qvFormat_S_RoundUp(aMaxCount, aDigits);
  }
}

// Moves the top bit of the mantissa, which is not 0, to the top of its word.
static qvFormatBinary qvFormat_S_Normalize(const qvFormatBinary& aNumber) {
  int theShift = __builtin_clzll(aNumber.mMantissa);
  return {aNumber.mMantissa << theShift, aNumber.mExponent - theShift};
}

// The first digit stands for at least this power of ten, or for the next one.
static int qvFormat_S_GuessPower(const qvFormatBinary& aNormalized) {
  return qvFormat_S_Log10OfPowerOf2(aNormalized.mExponent + 63);
}

qvFormatDigits qvFormatDigits_Leading(const qvFormatBinary& aNumber, int aCount,
                                      const qvFormatDigitsPlace& aPlace) {
  if (aNumber.mMantissa == 0) {
    aPlace.mEnd[-1] = '0';
    return {aPlace.mEnd - 1, 1, 1};
  }
  qvFormatDigits theDigits;
  if (aCount <= kqvFormatDigits_MaxScaled) {
    qvFormatBinary theNumber = qvFormat_S_Normalize(aNumber);
    int thePower = aCount - 1 - qvFormat_S_GuessPower(theNumber);
    if (thePower >= kqvFormatDigits_MinPower && thePower <= kqvFormatDigits_MaxPower &&
        qvFormat_S_WriteScaled(qvFormat_S_Scale(theNumber, thePower), thePower, aCount, aPlace.mEnd,
                               &theDigits)) {
      return theDigits;
    }
  }
  theDigits = qvFormatDigits_Expand(aNumber, aPlace);
  qvFormat_S_Round(aCount, aCount, &theDigits);
  return theDigits;
}

qvFormatDigits qvFormatDigits_Fixed(const qvFormatBinary& aNumber, int aPlaces,
                                    const qvFormatDigitsPlace& aPlace) {
  if (aNumber.mMantissa == 0) {
    return {aPlace.mEnd, 0, 0};
  }
  qvFormatBinary theNumber = qvFormat_S_Normalize(aNumber);
  int theGuess = qvFormat_S_GuessPower(theNumber);
  if (aPlaces < -2 - theGuess) {  // below 0.1 in the last place
    return {aPlace.mEnd, 0, 0};
  }
  qvFormatDigits theDigits;
  if (aPlaces < kqvFormatDigits_MaxScaled - theGuess && aPlaces <= kqvFormatDigits_MaxPower &&
      qvFormat_S_WriteScaled(qvFormat_S_Scale(theNumber, aPlaces), aPlaces, INT_MAX, aPlace.mEnd,
                             &theDigits)) {
    return theDigits;
  }
  theDigits = qvFormatDigits_Expand(aNumber, aPlace);
  if (aPlaces < theDigits.mCount - theDigits.mPointAt) {
    qvFormat_S_Round(theDigits.mPointAt + aPlaces, INT_MAX, &theDigits);
  }
  return theDigits;
}
