#include "qvraTools/qvLongLong.h"

#include "qvraTools/qvConvert.h"
#include "qvraTools/qvLongLong_p.h"

#define kqvLongLong_WordRange  4294967296.0          /* 2^32 */
#define kqvLongLong_MaxWord    4294967295.0          /* 2^32 - 1 */
#define kqvLongLong_ValueRange 9223372036854775808.0 /* 2^63 */

const qvLongLong _qvLongLong_0_impl = qvLongLong_Init_0;
const qvLongLong _qvLongLong_Max_impl = qvLongLong_Init(0x7FFFFFFF, 0xFFFFFFFF);
const qvLongLong _qvLongLong_Min_impl = qvLongLong_Init(INT32_MIN, 0);

static qvULongLong qvLongLong_S_ToBits(const qvLongLong* aLongLong) {
  const qvULongLong theBits = qvULongLong_Init((uint32)aLongLong->mHigh, aLongLong->mLow);
  return theBits;
}

static void qvLongLong_S_FromBits(qvLongLong* aLongLong, const qvULongLong* aBits) {
  qvLongLong_Set(aLongLong, (int32)aBits->mHigh, aBits->mLow);
}

// The magnitude of the minimum is 2^63, which an unsigned value holds.
static qvULongLong qvLongLong_S_Magnitude(const qvLongLong* aLongLong) {
  qvLongLong theAbsolute = *aLongLong;
  qvLongLong_Abs(&theAbsolute);
  return qvLongLong_S_ToBits(&theAbsolute);
}

void qvLongLong_Set(qvLongLong* aLongLong, int32 aHigh, uint32 aLow) {
  aLongLong->mHigh = aHigh;
  aLongLong->mLow = aLow;
}

void qvLongLong_SetInt32(qvLongLong* aLongLong, int32 anInt32) {
  qvLongLong_Set(aLongLong, anInt32 < 0 ? -1 : 0, (uint32)anInt32);
}

void qvLongLong_SetDouble(qvLongLong* aLongLong, double aDouble) {
  const double theAbsolute = aDouble < 0.0 ? -aDouble : aDouble;
  if (theAbsolute >= kqvLongLong_ValueRange) {
    *aLongLong = aDouble < 0.0 ? *qvLongLong_Min : *qvLongLong_Max;
    return;
  }
  *aLongLong = *qvLongLong_0;
  if (theAbsolute <= kqvLongLong_MaxWord) {
    aLongLong->mLow = (uint32)theAbsolute;
  } else if (theAbsolute > kqvLongLong_MaxWord) {  // neither holds for a NaN
    aLongLong->mHigh = (int32)(theAbsolute / kqvLongLong_WordRange);
    aLongLong->mLow = (uint32)(theAbsolute - aLongLong->mHigh * kqvLongLong_WordRange);
  }
  if (aDouble < 0.0) {
    qvLongLong_Negate(aLongLong);
  }
}

double qvLongLong_GetDouble(qvLongLong* aLongLong) {
  const int theNegative = qvLongLong_IsMSBSet(aLongLong);
  if (theNegative) {
    // KEEP qvLongLongKept.GetDoubleLeavesANegativeArgumentNegated
    // The caller's value is negated, not a copy of it. The minimum cannot be negated; it comes out as +2^63.
    qvLongLong_Negate(aLongLong);
  }
  const double theDouble = aLongLong->mHigh * kqvLongLong_WordRange + aLongLong->mLow;
  return theNegative ? -theDouble : theDouble;
}

// KEEP qvLongLongKept.AddPredictsOverflowBeforeTheCarry
// Only the high words are looked at, so the sum -2^63 counts as an overflow when a carry leads to it.
static int qvLongLong_S_PredictAddOverflow(int32 aHighX, int32 aHighY) {
  if (aHighX > 0 && aHighY > 0) {
    return aHighY > INT32_MAX - aHighX;
  }
  if (aHighX < 0 && aHighY < 0) {
    return aHighY < INT32_MIN - aHighX;
  }
  return 0;
}

int qvLongLong_Add(qvLongLong* aLongLong, const qvLongLong* aLongLongToAdd) {
  const qvLongLong theAddend = *aLongLongToAdd;
  int theOverflow = qvLongLong_S_PredictAddOverflow(aLongLong->mHigh, theAddend.mHigh);
  uint32 theHigh = (uint32)aLongLong->mHigh + (uint32)theAddend.mHigh;
  aLongLong->mLow += theAddend.mLow;
  if (aLongLong->mLow < theAddend.mLow) {
    theOverflow |= theHigh == 0x7FFFFFFF;
    ++theHigh;
  }
  aLongLong->mHigh = (int32)theHigh;
  return theOverflow;
}

int qvLongLong_AddInt32(qvLongLong* aLongLong, int32 anInt32) {
  qvLongLong theAddend;
  qvLongLong_SetInt32(&theAddend, anInt32);
  return qvLongLong_Add(aLongLong, &theAddend);
}

int qvLongLong_AddUInt32(qvLongLong* aLongLong, uint32 anUInt32) {
  const qvLongLong theAddend = qvLongLong_Init(0, anUInt32);
  return qvLongLong_Add(aLongLong, &theAddend);
}

// KEEP qvLongLongKept.SubPredictsOverflowForOperandsOfTheSameSignOnly
// A difference overflows when the signs differ, yet this looks at equal signs, as for a sum. The bounds wrap
// in 32 bits.
static int qvLongLong_S_PredictSubOverflow(int32 aHighX, int32 aHighY) {
  if (aHighX >= 1 && aHighY >= 1) {
    return aHighY > (int32)(0x80000000u - (uint32)aHighX);
  }
  if (aHighX < 0 && aHighY < 0) {
    return aHighY < (int32)(0x7FFFFFFFu - (uint32)aHighX);
  }
  return 0;
}

int qvLongLong_Sub(qvLongLong* aLongLong, const qvLongLong* aLongLongToSub) {
  const qvLongLong theSubtrahend = *aLongLongToSub;
  int theOverflow = qvLongLong_S_PredictSubOverflow(aLongLong->mHigh, theSubtrahend.mHigh);
  uint32 theHigh = (uint32)aLongLong->mHigh - (uint32)theSubtrahend.mHigh;
  if (aLongLong->mLow < theSubtrahend.mLow) {
    theOverflow |= theHigh == 0x80000000;
    --theHigh;
  }
  aLongLong->mLow -= theSubtrahend.mLow;
  aLongLong->mHigh = (int32)theHigh;
  return theOverflow;
}

int qvLongLong_SubInt32(qvLongLong* aLongLong, int32 anInt32) {
  qvLongLong theSubtrahend;
  qvLongLong_SetInt32(&theSubtrahend, anInt32);
  return qvLongLong_Sub(aLongLong, &theSubtrahend);
}

int qvLongLong_SubUInt32(qvLongLong* aLongLong, uint32 anUInt32) {
  const qvLongLong theSubtrahend = qvLongLong_Init(0, anUInt32);
  return qvLongLong_Sub(aLongLong, &theSubtrahend);
}

// KEEP qvLongLongKept.MultReportsTheAdditionsOnly
// Bits that leave the multiplicand are not reported; sums that wrap on the way to a right product are.
int qvLongLong_Mult(qvLongLong* aLongLong, const qvLongLong* aMultiplier) {
  qvLongLong theMultiplicand = *aLongLong;
  qvULongLong theMultiplier = qvLongLong_S_ToBits(aMultiplier);
  int theOverflow = 0;
  *aLongLong = *qvLongLong_0;
  // The multiplier is zero after 64 steps at the latest.
  while (!qvULongLong_Equal(&theMultiplier, qvULongLong_0)) {
    if (theMultiplier.mLow & 1) {
      theOverflow |= qvLongLong_Add(aLongLong, &theMultiplicand);
    }
    qvULongLong_ShiftRight(&theMultiplier, 1);
    qvLongLong_ShiftLeft(&theMultiplicand, 1);
  }
  return theOverflow;
}

// *aLongLong = a magnitude with a sign. Returns 1 when it does not fit.
static int qvLongLong_S_SetMagnitude(qvLongLong* aLongLong, const qvULongLong* aMagnitude, int afNegative) {
  qvLongLong_S_FromBits(aLongLong, aMagnitude);
  if (!afNegative) {
    return qvLongLong_IsMSBSet(aLongLong);
  }
  qvLongLong_Negate(aLongLong);
  return 0;
}

// Truncating division; returns the overflow of the quotient. Only the minimum divided by -1 has one, or, in
// the shortcut, by -2^32.
static int qvLongLong_S_Divide(const qvLongLong* aLongLong, const qvLongLong* aDivisorIn,
                               qvLongLong* aQuotient, qvLongLong* aRemainder) {
  const int theNegative = qvLongLong_IsMSBSet(aLongLong);
  const int theNegativeDivisor = qvLongLong_IsMSBSet(aDivisorIn);
  // KEEP qvLongLongKept.DivisionByMinus2To32GivesTheMagnitude
  // A shortcut that gives |x| where |x| / 2^32 with the opposite sign would be expected.
  if (aDivisorIn->mHigh == -1 && aDivisorIn->mLow == 0) {
    *aQuotient = *aLongLong;
    *aRemainder = *qvLongLong_0;
    return qvLongLong_Abs(aQuotient);
  }
  const qvULongLong theMagnitude = qvLongLong_S_Magnitude(aLongLong);
  const qvULongLong theDivisor = qvLongLong_S_Magnitude(aDivisorIn);
  qvULongLong theQuotient;
  qvULongLong theRemainder;
  qvULongLong_S_Divide(&theMagnitude, &theDivisor, &theQuotient, &theRemainder);
  qvLongLong_S_SetMagnitude(aRemainder, &theRemainder, theNegative);
  return qvLongLong_S_SetMagnitude(aQuotient, &theQuotient, theNegative != theNegativeDivisor);
}

int qvLongLong_Div(qvLongLong* aLongLong, const qvLongLong* aDivisor) {
  qvLongLong theQuotient;
  qvLongLong theRemainder;
  const int theOverflow = qvLongLong_S_Divide(aLongLong, aDivisor, &theQuotient, &theRemainder);
  *aLongLong = theQuotient;
  return theOverflow;
}

int qvLongLong_Mod(qvLongLong* aLongLong, const qvLongLong* aDivisor) {
  qvLongLong theQuotient;
  qvLongLong theRemainder;
  const int theOverflow = qvLongLong_S_Divide(aLongLong, aDivisor, &theQuotient, &theRemainder);
  *aLongLong = theRemainder;
  return theOverflow;
}

int qvLongLong_ModUInt32(qvLongLong* aLongLong, uint32 aDivisor) {
  const qvLongLong theDivisor = qvLongLong_Init(0, aDivisor);
  return qvLongLong_Mod(aLongLong, &theDivisor);
}

int qvLongLong_ShiftLeft(qvLongLong* aLongLong, uint32 aNumberOfBits) {
  qvULongLong theBits = qvLongLong_S_ToBits(aLongLong);
  const int theOverflow = qvULongLong_ShiftLeft(&theBits, aNumberOfBits);
  qvLongLong_S_FromBits(aLongLong, &theBits);
  return theOverflow;
}

void qvLongLong_ShiftRight(qvLongLong* aLongLong, uint32 aNumberOfBits) {
  if (aNumberOfBits == 0) {
    return;
  }
  qvULongLong theBits = qvLongLong_S_ToBits(aLongLong);
  qvULongLong_ShiftRight(&theBits, aNumberOfBits);
  if (qvLongLong_IsMSBSet(aLongLong)) {
    // The places that became free take the sign.
    if (aNumberOfBits <= kqvLongLong_WordBits) {
      theBits.mHigh |= kqvLongLong_TopBits[aNumberOfBits - 1];
    } else {
      const uint32 theWordShift = aNumberOfBits - kqvLongLong_WordBits;
      theBits.mHigh = 0xFFFFFFFF;
      theBits.mLow |=
          theWordShift < kqvLongLong_WordBits ? kqvLongLong_TopBits[theWordShift - 1] : 0xFFFFFFFF;
    }
  }
  qvLongLong_S_FromBits(aLongLong, &theBits);
}

int qvLongLong_Negate(qvLongLong* aLongLong) {
  const int theOverflow = qvLongLong_Equal(aLongLong, qvLongLong_Min);
  qvULongLong theBits = qvULongLong_Init(~(uint32)aLongLong->mHigh, ~aLongLong->mLow);
  qvULongLong_AddUInt32(&theBits, 1);
  qvLongLong_S_FromBits(aLongLong, &theBits);
  return theOverflow;
}

int qvLongLong_Abs(qvLongLong* aLongLong) {
  return qvLongLong_IsMSBSet(aLongLong) ? qvLongLong_Negate(aLongLong) : 0;
}

int qvLongLong_Less(const qvLongLong* aX, const qvLongLong* aY) {
  return aX->mHigh < aY->mHigh || (aX->mHigh == aY->mHigh && aX->mLow < aY->mLow);
}

int qvLongLong_Equal(const qvLongLong* aX, const qvLongLong* aY) {
  return aX->mHigh == aY->mHigh && aX->mLow == aY->mLow;
}

char* qvLongLong_ToString(const qvLongLong* aLongLong) {
  const qvULongLong theMagnitude = qvLongLong_S_Magnitude(aLongLong);
  return qvULongLong_S_NewDecimal(&theMagnitude, qvLongLong_IsMSBSet(aLongLong));
}

int qvLongLong_SetFromString(qvLongLong* aLongLong, const char* aStr) {
  if (qvConvert_strtoLongLong(aStr, aLongLong) == kqvConvertError_None) {
    return 1;
  }
  *aLongLong = *qvLongLong_0;
  return 0;
}
