// The unsigned half of qvLongLong.h. The signed half rests on it.

#include "qvraTools/qvConvert.h"
#include "qvraTools/qvLongLong.h"
#include "qvraTools/qvLongLong_p.h"
#include "qvraTools/qvMalloc.h"

#define kqvULongLong_DecimalSize 22 /* bytes: a sign, the 20 digits of 2^64 - 1, a terminator */

const qvULongLong _qvULongLong_0_impl = qvULongLong_Init_0;
const qvULongLong _qvULongLong_Max_impl = qvULongLong_Init(0xFFFFFFFF, 0xFFFFFFFF);
const qvULongLong _1000ULL = qvULongLong_Init(0, 1000);

const uint32 kqvLongLong_TopBits[kqvLongLong_WordBits] = {
    0x80000000, 0xC0000000, 0xE0000000, 0xF0000000, 0xF8000000, 0xFC000000, 0xFE000000, 0xFF000000,
    0xFF800000, 0xFFC00000, 0xFFE00000, 0xFFF00000, 0xFFF80000, 0xFFFC0000, 0xFFFE0000, 0xFFFF0000,
    0xFFFF8000, 0xFFFFC000, 0xFFFFE000, 0xFFFFF000, 0xFFFFF800, 0xFFFFFC00, 0xFFFFFE00, 0xFFFFFF00,
    0xFFFFFF80, 0xFFFFFFC0, 0xFFFFFFE0, 0xFFFFFFF0, 0xFFFFFFF8, 0xFFFFFFFC, 0xFFFFFFFE, 0xFFFFFFFF,
};

static int qvULongLong_S_IsZero(const qvULongLong* aULongLong) {
  return aULongLong->mHigh == 0 && aULongLong->mLow == 0;
}

void qvULongLong_Set(qvULongLong* aULongLong, uint32 aHigh, uint32 aLow) {
  aULongLong->mHigh = aHigh;
  aULongLong->mLow = aLow;
}

void qvULongLong_SetFileOffset(qvULongLong* aULongLong, int64 anOffset) {
  qvULongLong_Set(aULongLong, (uint32)((uint64)anOffset >> kqvLongLong_WordBits), (uint32)anOffset);
}

int qvULongLong_Add(qvULongLong* aULongLong, const qvULongLong* aULongLongToAdd) {
  const qvULongLong theAddend = *aULongLongToAdd;
  int theOverflow = theAddend.mHigh > ~aULongLong->mHigh;
  aULongLong->mLow += theAddend.mLow;
  aULongLong->mHigh += theAddend.mHigh;
  if (aULongLong->mLow < theAddend.mLow) {
    theOverflow |= aULongLong->mHigh == 0xFFFFFFFF;
    ++aULongLong->mHigh;
  }
  return theOverflow;
}

int qvULongLong_AddUInt32(qvULongLong* aULongLong, uint32 anUInt32) {
  const qvULongLong theAddend = qvULongLong_Init(0, anUInt32);
  return qvULongLong_Add(aULongLong, &theAddend);
}

void qvULongLong_Sub(qvULongLong* aULongLong, const qvULongLong* aULongLongToSub) {
  const qvULongLong theSubtrahend = *aULongLongToSub;
  const uint32 theBorrow = aULongLong->mLow < theSubtrahend.mLow ? 1 : 0;
  aULongLong->mLow -= theSubtrahend.mLow;
  aULongLong->mHigh -= theSubtrahend.mHigh;
  aULongLong->mHigh -= theBorrow;
}

void qvULongLong_SubUInt32(qvULongLong* aULongLong, uint32 anUInt32) {
  const qvULongLong theSubtrahend = qvULongLong_Init(0, anUInt32);
  qvULongLong_Sub(aULongLong, &theSubtrahend);
}

int qvULongLong_Mult(qvULongLong* aULongLong, const qvULongLong* aMultiplier) {
  qvULongLong theMultiplicand = *aULongLong;
  qvULongLong theMultiplier = *aMultiplier;
  int theOverflow = 0;
  int theLostBits = 0;
  *aULongLong = *qvULongLong_0;
  while (!qvULongLong_S_IsZero(&theMultiplier)) {
    // Bits shifted out of the multiplicand are missing only in the sums that follow.
    theOverflow |= theLostBits;
    if (theMultiplier.mLow & 1) {
      theOverflow |= qvULongLong_Add(aULongLong, &theMultiplicand);
    }
    qvULongLong_ShiftRight(&theMultiplier, 1);
    theLostBits |= qvULongLong_ShiftLeft(&theMultiplicand, 1);
  }
  return theOverflow;
}

// KEEP qvLongLongKept.DividingByZeroFaults
// Performs the division by zero that was asked for, so that the process gets the platform's fault. 64 bits,
// because on the 32-bit target that division calls the run-time library, which raises the fault, while a
// processor that divides 32 bits itself may quietly give 0.
#if defined(__GNUC__)
__attribute__((noinline, no_sanitize("integer-divide-by-zero")))
#endif
static void
qvULongLong_S_DivideByZero() {
  volatile uint64 theQuotient = 1;
  volatile uint64 theZero = 0;
  theQuotient = theQuotient / theZero;
}

// Shifts the bits of *aULongLong into the remainder, from the top, and subtracts the divisor wherever it
// fits.
static void qvULongLong_S_DivideLong(const qvULongLong* aULongLong, const qvULongLong* aDivisor,
                                     qvULongLong* aQuotient, qvULongLong* aRemainder) {
  qvULongLong theBits = *aULongLong;
  for (int theStep = 0; theStep < kqvLongLong_Bits; ++theStep) {
    qvULongLong_ShiftLeft(aRemainder, 1);  // loses nothing: up to the last step it has fewer than 64 bits
    aRemainder->mLow |= theBits.mHigh >> (kqvLongLong_WordBits - 1);
    qvULongLong_ShiftLeft(&theBits, 1);
    qvULongLong_ShiftLeft(aQuotient, 1);
    if (!qvULongLong_Less(aRemainder, aDivisor)) {
      qvULongLong_Sub(aRemainder, aDivisor);
      aQuotient->mLow |= 1;
    }
  }
}

void qvULongLong_S_Divide(const qvULongLong* aULongLong, const qvULongLong* aDivisor, qvULongLong* aQuotient,
                          qvULongLong* aRemainder) {
  *aQuotient = *qvULongLong_0;
  *aRemainder = *qvULongLong_0;
  if (qvULongLong_S_IsZero(aDivisor)) {
    qvULongLong_S_DivideByZero();
  } else if (aULongLong->mHigh == 0 && aDivisor->mHigh == 0) {
    aQuotient->mLow = aULongLong->mLow / aDivisor->mLow;
    aRemainder->mLow = aULongLong->mLow % aDivisor->mLow;
  } else {
    qvULongLong_S_DivideLong(aULongLong, aDivisor, aQuotient, aRemainder);
  }
}

int qvULongLong_Div(qvULongLong* aULongLong, const qvULongLong* aDivisor) {
  qvULongLong theQuotient;
  qvULongLong theRemainder;
  qvULongLong_S_Divide(aULongLong, aDivisor, &theQuotient, &theRemainder);
  *aULongLong = theQuotient;
  return 0;
}

int qvULongLong_Mod(qvULongLong* aULongLong, const qvULongLong* aDivisor) {
  qvULongLong theQuotient;
  qvULongLong theRemainder;
  qvULongLong_S_Divide(aULongLong, aDivisor, &theQuotient, &theRemainder);
  *aULongLong = theRemainder;
  return 0;
}

int qvULongLong_ModUInt32(qvULongLong* aULongLong, uint32 aDivisor) {
  const qvULongLong theDivisor = qvULongLong_Init(0, aDivisor);
  return qvULongLong_Mod(aULongLong, &theDivisor);
}

int qvULongLong_ShiftLeft(qvULongLong* aULongLong, uint32 aNumberOfBits) {
  const uint32 theHigh = aULongLong->mHigh;
  const uint32 theLow = aULongLong->mLow;
  if (aNumberOfBits == 0) {
    return 0;
  }
  if (aNumberOfBits < kqvLongLong_WordBits) {
    aULongLong->mHigh = theHigh << aNumberOfBits | theLow >> (kqvLongLong_WordBits - aNumberOfBits);
    aULongLong->mLow = theLow << aNumberOfBits;
    return (theHigh & kqvLongLong_TopBits[aNumberOfBits - 1]) != 0;
  }
  // KEEP qvLongLongKept.ShiftLeftBy32AndMoreDropsTheHighWordWithoutAReport
  // KEEP qvLongLongKept.ShiftLeftBy33AndMoreCountsTheBitThatLandsInBit63
  // Only the low word is looked at, not at all for 32, and one bit further down than what is lost.
  aULongLong->mLow = 0;
  if (aNumberOfBits >= kqvLongLong_Bits) {
    aULongLong->mHigh = 0;
    return theLow != 0;
  }
  const uint32 theWordShift = aNumberOfBits - kqvLongLong_WordBits;
  aULongLong->mHigh = theLow << theWordShift;
  return theWordShift != 0 && (theLow & kqvLongLong_TopBits[theWordShift]) != 0;
}

void qvULongLong_ShiftRight(qvULongLong* aULongLong, uint32 aNumberOfBits) {
  const uint32 theHigh = aULongLong->mHigh;
  if (aNumberOfBits == 0) {
    return;
  }
  if (aNumberOfBits < kqvLongLong_WordBits) {
    aULongLong->mLow = aULongLong->mLow >> aNumberOfBits | theHigh << (kqvLongLong_WordBits - aNumberOfBits);
    aULongLong->mHigh = theHigh >> aNumberOfBits;
    return;
  }
  aULongLong->mLow = aNumberOfBits < kqvLongLong_Bits ? theHigh >> (aNumberOfBits - kqvLongLong_WordBits) : 0;
  aULongLong->mHigh = 0;
}

int qvULongLong_Less(const qvULongLong* aX, const qvULongLong* aY) {
  return aX->mHigh < aY->mHigh || (aX->mHigh == aY->mHigh && aX->mLow < aY->mLow);
}

int qvULongLong_LessOrEqual(const qvULongLong* aX, const qvULongLong* aY) {
  return !qvULongLong_Less(aY, aX);
}

int qvULongLong_Equal(const qvULongLong* aX, const qvULongLong* aY) {
  return aX->mHigh == aY->mHigh && aX->mLow == aY->mLow;
}

char* qvULongLong_S_NewDecimal(const qvULongLong* aULongLong, int afNegative) {
  static const qvULongLong kTen = qvULongLong_Init(0, 10);
  char theBuffer[kqvULongLong_DecimalSize];
  char* theStart = theBuffer + kqvULongLong_DecimalSize - 1;
  *theStart = '\0';
  qvULongLong theRest = *aULongLong;
  do {
    qvULongLong theQuotient;
    qvULongLong theDigit;
    qvULongLong_S_Divide(&theRest, &kTen, &theQuotient, &theDigit);
    *--theStart = (char)('0' + theDigit.mLow);
    theRest = theQuotient;
  } while (!qvULongLong_S_IsZero(&theRest));
  if (afNegative) {
    *--theStart = '-';
  }
  return qvStrdup(theStart);
}

char* qvULongLong_ToString(const qvULongLong* aULongLong) { return qvULongLong_S_NewDecimal(aULongLong, 0); }

int qvULongLong_SetFromString(qvULongLong* aULongLong, const char* aStr) {
  if (qvConvert_strtoULongLong(aStr, aULongLong) == kqvConvertError_None) {
    return 1;
  }
  *aULongLong = *qvULongLong_0;
  return 0;
}

int qvULongLong_SetFromNString(qvULongLong* aULongLong, const char* aStr, size_t aLength) {
  if (aStr == nullptr || aLength == 0) {
    *aULongLong = *qvULongLong_0;
    return 0;
  }
  char* theCopy = qvStrndup(aStr, aLength);
  const int theResult = qvULongLong_SetFromString(aULongLong, theCopy);
  qvFree(theCopy);
  return theResult;
}
