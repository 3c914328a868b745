// Decimal numbers as two words, computed with the operations of those words only.

#include "qvraTools/qvConvert.h"
#include "qvraTools/qvConvert_p.h"

static const qvULongLong kqvConvert_Ten = qvULongLong_Init(0, 10);
static const qvULongLong kqvConvert_PositiveLimit = qvULongLong_Init(0x7FFFFFFF, 0xFFFFFFFF);
static const qvULongLong kqvConvert_NegativeLimit = qvULongLong_Init(0x80000000, 0);

// *aValue = *aValue * 10 + aDigit; returns 1 when that leaves 64 bits. The low byte is multiplied apart: its
// product fits one word, and above it the value has eight bits of room while it is multiplied.
static int qvConvert_S_AppendDigit(qvULongLong* aValue, uint32 aDigit) {
  const uint32 theLowProduct = (aValue->mLow & 0xFF) * 10 + aDigit;
  qvULongLong_ShiftRight(aValue, 8);
  int theOverflow = qvULongLong_Mult(aValue, &kqvConvert_Ten);
  theOverflow |= qvULongLong_AddUInt32(aValue, theLowProduct >> 8);
  theOverflow |= qvULongLong_ShiftLeft(aValue, 8);
  theOverflow |= qvULongLong_AddUInt32(aValue, theLowProduct & 0xFF);
  return theOverflow;
}

// Reads digits from *aStr on, up to aLimit. Stops at the digit that would exceed it: that is
// kqvConvertError_RangeHigh. *aStr becomes the first character not read.
static int qvConvert_S_ReadDigits(const char** aStr, qvULongLong* aValue, const qvULongLong* aLimit) {
  *aValue = *qvULongLong_0;
  const char* theStr = *aStr;
  int theError = qvConvert_isnum(*theStr) ? kqvConvertError_None : kqvConvertError_Invalid;
  for (; qvConvert_isnum(*theStr); ++theStr) {
    if (qvConvert_S_AppendDigit(aValue, (uint32)(*theStr - '0')) || qvULongLong_Less(aLimit, aValue)) {
      theError = kqvConvertError_RangeHigh;
      break;
    }
  }
  *aStr = theStr;
  return theError;
}

int qvConvert_strtoULongLong(const char* aStr, qvULongLong* aULongLong) {
  *aULongLong = *qvULongLong_0;
  if (aStr == nullptr) {
    return kqvConvertError_Invalid;
  }
  const char* theStr = qvConvert_S_SkipSpace(aStr);
  if (*theStr == '+') {
    ++theStr;
  }
  qvULongLong theValue;
  const int theError = qvConvert_S_ReadDigits(&theStr, &theValue, qvULongLong_Max);
  if (theError == kqvConvertError_Invalid) {
    return theError;
  }
  if (theError == kqvConvertError_RangeHigh) {
    *aULongLong = *qvULongLong_Max;
    return theError;
  }
  *aULongLong = theValue;
  return qvConvert_S_Position(aStr, theStr);
}

int qvConvert_strtoLongLong(const char* aStr, qvLongLong* aLongLong) {
  *aLongLong = *qvLongLong_0;
  if (aStr == nullptr) {
    return kqvConvertError_Invalid;
  }
  const char* theStr = qvConvert_S_SkipSpace(aStr);
  const int theNegative = *theStr == '-';
  if (*theStr == '+' || *theStr == '-') {
    ++theStr;
  }
  qvULongLong theMagnitude;
  const int theError = qvConvert_S_ReadDigits(
      &theStr, &theMagnitude, theNegative ? &kqvConvert_NegativeLimit : &kqvConvert_PositiveLimit);
  if (theError == kqvConvertError_Invalid) {
    return theError;
  }
  if (theError == kqvConvertError_RangeHigh) {
    *aLongLong = theNegative ? *qvLongLong_Min : *qvLongLong_Max;
    return theNegative ? kqvConvertError_RangeLow : kqvConvertError_RangeHigh;
  }
  qvLongLong_Set(aLongLong, (int32)theMagnitude.mHigh, theMagnitude.mLow);
  if (theNegative) {
    qvLongLong_Negate(aLongLong);  // 2^63 is the minimum's own bit pattern and stays
  }
  return qvConvert_S_Position(aStr, theStr);
}
