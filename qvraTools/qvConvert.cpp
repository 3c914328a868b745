#include "qvraTools/qvConvert.h"

#include <limits>

#include "qvraTools/qvConvert_p.h"

#define kqvConvert_MinBase  2
#define kqvConvert_MaxBase  36
#define kqvConvert_NotDigit 255 /* a digit value that no base has */

const char* qvConvert_S_SkipSpace(const char* aStr) {
  while (qvConvert_isspace(*aStr)) {
    ++aStr;
  }
  return aStr;
}

int qvConvert_S_Position(const char* aStr, const char* anEndPtr) {
  return *anEndPtr == '\0' ? kqvConvertError_None : (int)(anEndPtr - aStr);
}

// The codes are taken as unsigned: every byte above 0x7F gives a value that no base has.
static uint32 qvConvert_S_DigitValue(char aChar) {
  const uint32 theCode = (uint8)aChar;
  if (theCode < '0') {
    return kqvConvert_NotDigit;
  }
  if (theCode <= '9') {
    return theCode - '0';
  }
  if (theCode < 'A') {
    return kqvConvert_NotDigit;
  }
  return theCode <= '`' ? theCode - 'A' + 10 : theCode - 'a' + 10;
}

// The base in which to read, and in *aDigits the first digit behind a "0x". 0 when aBase is not a base.
static int qvConvert_S_SelectBase(const char** aDigits, int aBase) {
  if (aBase != 0 && (aBase < kqvConvert_MinBase || aBase > kqvConvert_MaxBase)) {
    return 0;
  }
  const char* theStr = *aDigits;
  if ((aBase == 0 || aBase == 16) && theStr[0] == '0') {
    if ((theStr[1] == 'x' || theStr[1] == 'X') && qvConvert_isxdigit(theStr[2])) {
      *aDigits += 2;
      return 16;
    }
    return aBase == 0 ? 8 : 16;
  }
  return aBase == 0 ? 10 : aBase;
}

// Reads an unsigned number of 64 bits (afUInt64) or 32 bits. A number out of range is read to its last digit,
// so that *anEndPtr lies behind it. Without a number *anEndPtr is aPtr.
static uint64 qvConvert_S_strtouint64(const char* aPtr, const char** anEndPtr, int aBase, int* anError,
                                      int afUInt64) {
  const uint64 theMax = afUInt64 ? UINT64_MAX : UINT32_MAX;
  const char* theStr = qvConvert_S_SkipSpace(aPtr);
  if (*theStr == '+') {
    ++theStr;
  }
  const uint32 theBase = (uint32)qvConvert_S_SelectBase(&theStr, aBase);

  // A base of 0 has no digits.
  const char* theDigits = theStr;
  uint64 theValue = 0;
  int theOverflow = 0;
  for (;; ++theStr) {
    const uint32 theDigit = qvConvert_S_DigitValue(*theStr);
    if (theDigit >= theBase) {
      break;
    }
    theOverflow |= __builtin_mul_overflow(theValue, (uint64)theBase, &theValue);
    theOverflow |= __builtin_add_overflow(theValue, (uint64)theDigit, &theValue);
    theOverflow |= theValue > theMax;
  }

  if (theStr == theDigits) {
    *anEndPtr = aPtr;
    *anError = kqvConvertError_Invalid;
    return 0;
  }
  *anEndPtr = theStr;
  *anError = theOverflow ? kqvConvertError_RangeHigh : kqvConvertError_None;
  return theOverflow ? theMax : theValue;
}

// Fits a magnitude into the signed range that ends at aMax.
static int64 qvConvert_S_ApplySign(uint64 aMagnitude, int afNegative, int64 aMax, int* anError) {
  const int64 theMin = -aMax - 1;
  // KEEP qvConvertKept.MinusMaxInt32ReadsAsMinInt32, qvConvertKept.MinusMaxInt64ReadsAsMinInt64
  // The bound already clamps at the largest positive value, so "-2147483647" becomes -2147483648 without an
  // error. It looks like an off-by-one; it is the required result.
  if (aMagnitude >= (uint64)aMax) {
    const uint64 theLastInRange = (uint64)aMax + (afNegative ? 1 : 0);
    if (aMagnitude > theLastInRange) {
      *anError = afNegative ? kqvConvertError_RangeLow : kqvConvertError_RangeHigh;
    }
    return afNegative ? theMin : aMax;
  }
  return afNegative ? -(int64)aMagnitude : (int64)aMagnitude;
}

// Reads a signed number of 64 bits (afInt64) or 32 bits.
static int64 qvConvert_S_strtoint64(const char* aPtr, const char** anEndPtr, int aBase, int* anError,
                                    int afInt64) {
  const int64 theMax = afInt64 ? INT64_MAX : INT32_MAX;
  const char* theStr = qvConvert_S_SkipSpace(aPtr);
  const int theNegative = *theStr == '-' && qvConvert_isalnum(theStr[1]);
  if (theNegative) {
    ++theStr;
  }
  const uint64 theMagnitude = qvConvert_S_strtouint64(theStr, anEndPtr, aBase, anError, 1);
  if (*anError == kqvConvertError_Invalid) {
    *anEndPtr = aPtr;
    return 0;
  }
  if (*anError == kqvConvertError_RangeHigh) {
    // KEEP qvConvertKept.ANegativeNumberBeyond64BitsIsRangeHigh
    // The code of the magnitude stays, although the number lies below the range.
    return theNegative ? -theMax - 1 : theMax;
  }
  return qvConvert_S_ApplySign(theMagnitude, theNegative, theMax, anError);
}

template <typename Int>
static int qvConvert_S_ParseSigned(const char* aStr, Int* aValue, int aBase) {
  *aValue = 0;
  if (aStr == nullptr) {
    return kqvConvertError_Invalid;
  }
  const char* theEndPtr = aStr;
  int theError = kqvConvertError_None;
  *aValue = (Int)qvConvert_S_strtoint64(aStr, &theEndPtr, aBase, &theError, sizeof(Int) == sizeof(int64));
  return theError == kqvConvertError_None ? qvConvert_S_Position(aStr, theEndPtr) : theError;
}

template <typename UInt>
static int qvConvert_S_ParseUnsigned(const char* aStr, UInt* aValue, int aBase) {
  *aValue = 0;
  if (aStr == nullptr) {
    return kqvConvertError_Invalid;
  }
  const char* theEndPtr = aStr;
  int theError = kqvConvertError_None;
  *aValue = (UInt)qvConvert_S_strtouint64(aStr, &theEndPtr, aBase, &theError, sizeof(UInt) == sizeof(uint64));
  return theError == kqvConvertError_None ? qvConvert_S_Position(aStr, theEndPtr) : theError;
}

// Parses as Wide, which has the same signedness, and fits the number into Narrow.
template <typename Narrow, typename Wide>
static int qvConvert_S_ParseNarrow(const char* aStr, Narrow* aValue, int (*aParser)(const char*, Wide*)) {
  const Wide theMin = std::numeric_limits<Narrow>::min();
  const Wide theMax = std::numeric_limits<Narrow>::max();
  Wide theWide = 0;
  int theResult = aParser(aStr, &theWide);
  if (theResult >= 0) {
    if (theWide > theMax) {
      theResult = kqvConvertError_RangeHigh;
    } else if (theWide < theMin) {
      theResult = kqvConvertError_RangeLow;
    }
  }
  if (theResult == kqvConvertError_RangeHigh) {
    // Also for a negative number beyond 64 bits, whose code is RangeHigh.
    theWide = theMax;
  } else if (theResult == kqvConvertError_RangeLow) {
    theWide = theMin;
  }
  *aValue = (Narrow)theWide;
  return theResult;
}

int qvConvert_strtoint8(const char* aStr, int8* anInt8) {
  return qvConvert_S_ParseNarrow(aStr, anInt8, qvConvert_strtoint32);
}

int qvConvert_strtoint16(const char* aStr, int16* anInt16) {
  return qvConvert_S_ParseNarrow(aStr, anInt16, qvConvert_strtoint32);
}

int qvConvert_strtoint32(const char* aStr, int32* anInt32) {
  return qvConvert_strtoint32_base(aStr, anInt32, 10);
}

int qvConvert_strtoint32_base(const char* aStr, int32* anInt32, int aBase) {
  return qvConvert_S_ParseSigned(aStr, anInt32, aBase);
}

int qvConvert_strtoint64(const char* aStr, qvint64_t* anInt64) {
  return qvConvert_strtoint64_base(aStr, anInt64, 10);
}

int qvConvert_strtoint64_base(const char* aStr, qvint64_t* anInt64, int aBase) {
  return qvConvert_S_ParseSigned(aStr, anInt64, aBase);
}

int qvConvert_strtouint8(const char* aStr, uint8* anUInt8) {
  return qvConvert_S_ParseNarrow(aStr, anUInt8, qvConvert_strtouint32);
}

int qvConvert_strtouint16(const char* aStr, uint16* anUInt16) {
  return qvConvert_S_ParseNarrow(aStr, anUInt16, qvConvert_strtouint32);
}

int qvConvert_strtouint32(const char* aStr, uint32* anUInt32) {
  return qvConvert_strtouint32_base(aStr, anUInt32, 10);
}

int qvConvert_strtouint32_base(const char* aStr, uint32* anUInt32, int aBase) {
  return qvConvert_S_ParseUnsigned(aStr, anUInt32, aBase);
}

int qvConvert_strtouint64(const char* aStr, qvuint64_t* anUInt64) {
  return qvConvert_strtouint64_base(aStr, anUInt64, 10);
}

int qvConvert_strtouint64_base(const char* aStr, qvuint64_t* anUInt64, int aBase) {
  return qvConvert_S_ParseUnsigned(aStr, anUInt64, aBase);
}

int qvConvert_hexstrtouint32(const char* aStr, uint32* anUInt32) {
  return qvConvert_strtouint32_base(aStr, anUInt32, 16);
}

// Moves *aStr behind a "0x" that is to be skipped. Returns the base of what follows, or 0 for "0x" alone.
static int qvConvert_S_PointerBase(const char** aStr) {
  const char* theStr = *aStr;
  if (theStr[0] != '0' || (theStr[1] != 'x' && theStr[1] != 'X')) {
    return 10;
  }
  if (theStr[2] == '\0') {
    return 0;
  }
  if (!qvConvert_isxdigit(theStr[2])) {
    return 10;  // "0xg": the '0' is a decimal number, the 'x' other text
  }
  *aStr += 2;
  return 16;
}

int qvConvert_strtoptr(const char* aStr, void** aPtr) {
  *aPtr = nullptr;
  if (aStr == nullptr || *aStr == '\0') {
    return kqvConvertError_Invalid;
  }
  const char* theStr = qvConvert_S_SkipSpace(aStr);
  if (*theStr == '+') {
    ++theStr;
  }
  const int theBase = qvConvert_S_PointerBase(&theStr);
  if (theBase == 0) {
    return kqvConvertError_None;
  }
  // KEEP qvConvertKept.ThePositionBehindAPointerCountsFromItsDigits
  // The position that is returned counts from theStr, not from aStr.
  uint32 theAddress = 0;
  const int theResult = qvConvert_strtouint32_base(theStr, &theAddress, theBase);
  *aPtr = (void*)(uintptr_t)theAddress;  // NOLINT(performance-no-int-to-ptr): what the function is for
  return theResult;
}
