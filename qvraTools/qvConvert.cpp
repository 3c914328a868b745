#include "qvraTools/qvConvert.h"

#include <limits>

#include "qvraTools/qvConvert_p.h"

#define kqvConvert_MinBase  2
#define kqvConvert_MaxBase  36
#define kqvConvert_NotDigit 255 /* a digit value that no base has */

// Most numbers are short: calls from layer to layer would cost as much as their digits.
#ifdef __OPTIMIZE_SIZE__
#define QVCONVERT_INLINE static
#else
#define QVCONVERT_INLINE __attribute__((always_inline)) static inline
#endif

// The codes are taken as unsigned: every byte above 0x7F gives a value that no base has.
static constexpr uint32 qvConvert_S_DigitValue(uint32 aCode) {
  if (aCode < '0') {
    return kqvConvert_NotDigit;
  }
  if (aCode <= '9') {
    return aCode - '0';
  }
  if (aCode < 'A') {
    return kqvConvert_NotDigit;
  }
  return aCode <= '`' ? aCode - 'A' + 10 : aCode - 'a' + 10;
}

namespace {

// The digit values of all bytes. Hexadecimal digits are letters or not as it comes, which no processor
// foresees.
struct DigitTable {
  constexpr DigitTable() {
    for (uint32 theCode = 0; theCode < 256; ++theCode) {
      mValues[theCode] = static_cast<uint8>(qvConvert_S_DigitValue(theCode));
    }
  }

  uint8 mValues[256] = {};
};

constexpr DigitTable kDigits;

}  // namespace

// What a byte is worth as a digit; at least aBase if it is none.
QVCONVERT_INLINE uint32 qvConvert_S_Digit(char aChar, uint32 aBase) {
  // Decimal digits are computed sooner than they are looked up, and most numbers have no others.
  return aBase == 10 ? (uint32)(uint8)aChar - '0' : kDigits.mValues[(uint8)aChar];
}

static bool qvConvert_S_IsDigitOfBase(char aChar, uint32 aBase) {
  return kDigits.mValues[(uint8)aChar] < aBase;
}

// The base in which to read, and in *aDigits the first digit behind a "0x". 0 when aBase is not a base.
static inline int qvConvert_S_SelectBase(const char** aDigits, int aBase) {
  if (aBase != 0 && (aBase < kqvConvert_MinBase || aBase > kqvConvert_MaxBase)) {
    return 0;
  }
  const char* theStr = *aDigits;
  if ((aBase == 0 || aBase == 16) && theStr[0] == '0') {
    if ((theStr[1] == 'x' || theStr[1] == 'X') && qvConvert_S_IsDigitOfBase(theStr[2], 16)) {
      *aDigits += 2;
      return 16;
    }
    return aBase == 0 ? 8 : 16;
  }
  return aBase == 0 ? 10 : aBase;
}

// The largest value that has room for any digit behind it in a word of the machine: bases up to 16 need 4
// bits a digit, the others 6.
static size_t qvConvert_S_RoomForDigit(uint32 aBase) { return aBase <= 16 ? SIZE_MAX >> 4 : SIZE_MAX >> 6; }

// Reads the digits at aStr up to the first one that a word might have no room for. Returns where it stopped.
QVCONVERT_INLINE const char* qvConvert_S_ReadWord(const char* aStr, uint32 aBase, size_t* aValue) {
  const size_t theRoom = qvConvert_S_RoomForDigit(aBase);
  size_t theValue = 0;
  while (theValue <= theRoom) {
    const uint32 theDigit = qvConvert_S_Digit(*aStr, aBase);
    if (theDigit >= aBase) {
      break;
    }
    theValue = theValue * aBase + theDigit;
    ++aStr;
  }
  *aValue = theValue;
  return aStr;
}

// Appends the digits at aStr to *aValue and returns where they end. *aOverflow says whether they fit.
static const char* qvConvert_S_ReadRest(const char* aStr, uint32 aBase, uint64* aValue, int* aOverflow) {
  *aOverflow = 0;
  for (;; ++aStr) {
    const uint32 theDigit = kDigits.mValues[(uint8)*aStr];
    if (theDigit >= aBase) {
      return aStr;
    }
    *aOverflow |= __builtin_mul_overflow(*aValue, (uint64)aBase, aValue);
    *aOverflow |= __builtin_add_overflow(*aValue, (uint64)theDigit, aValue);
  }
}

// Reads the digits at aDigits, behind white space and sign of the number at aPtr. A number above aMax is read
// to its last digit, so that *anEndPtr lies behind it. Without a number *anEndPtr is aPtr.
QVCONVERT_INLINE uint64 qvConvert_S_ReadMagnitude(const char* aPtr, const char* aDigits,
                                                  const char** anEndPtr, int aBase, int* anError,
                                                  uint64 aMax) {
  // A base of 0 has no digits.
  const uint32 theBase = (uint32)qvConvert_S_SelectBase(&aDigits, aBase);

  size_t theWord = 0;
  int theOverflow = 0;
  // A base that the compiler knows needs no multiplication.
  const char* theStr = theBase == 10   ? qvConvert_S_ReadWord(aDigits, 10, &theWord)
                       : theBase == 16 ? qvConvert_S_ReadWord(aDigits, 16, &theWord)
                                       : qvConvert_S_ReadWord(aDigits, theBase, &theWord);
  uint64 theValue = theWord;
  if (theWord > qvConvert_S_RoomForDigit(theBase)) {
    theStr = qvConvert_S_ReadRest(theStr, theBase, &theValue, &theOverflow);
  }

  if (theStr == aDigits) {
    *anEndPtr = aPtr;
    *anError = kqvConvertError_Invalid;
    return 0;
  }
  *anEndPtr = theStr;
  theOverflow |= theValue > aMax;
  *anError = theOverflow ? kqvConvertError_RangeHigh : kqvConvertError_None;
  return theOverflow ? aMax : theValue;
}

// Reads an unsigned number of 64 bits (afUInt64) or 32 bits.
QVCONVERT_INLINE uint64 qvConvert_S_strtouint64(const char* aPtr, const char** anEndPtr, int aBase,
                                                int* anError, int afUInt64) {
  const char* theStr = qvConvert_S_SkipSpace(aPtr);
  theStr += *theStr == '+';
  return qvConvert_S_ReadMagnitude(aPtr, theStr, anEndPtr, aBase, anError,
                                   afUInt64 ? UINT64_MAX : UINT32_MAX);
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
QVCONVERT_INLINE int64 qvConvert_S_strtoint64(const char* aPtr, const char** anEndPtr, int aBase,
                                              int* anError, int afInt64) {
  const int64 theMax = afInt64 ? INT64_MAX : INT32_MAX;
  const char* theStr = qvConvert_S_SkipSpace(aPtr);
  // One sign, right before the digits. Without a branch, as no processor foresees the signs of numbers
  // either.
  const int theNegative = *theStr == '-';
  theStr += theNegative | (*theStr == '+');
  const uint64 theMagnitude = qvConvert_S_ReadMagnitude(aPtr, theStr, anEndPtr, aBase, anError, UINT64_MAX);
  if (*anError == kqvConvertError_Invalid) {
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
QVCONVERT_INLINE int qvConvert_S_ParseSigned(const char* aStr, Int* aValue, int aBase) {
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
QVCONVERT_INLINE int qvConvert_S_ParseUnsigned(const char* aStr, UInt* aValue, int aBase) {
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
  return qvConvert_S_ParseSigned(aStr, anInt32, 10);
}

int qvConvert_strtoint32_base(const char* aStr, int32* anInt32, int aBase) {
  return qvConvert_S_ParseSigned(aStr, anInt32, aBase);
}

int qvConvert_strtoint64(const char* aStr, qvint64_t* anInt64) {
  return qvConvert_S_ParseSigned(aStr, anInt64, 10);
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
  return qvConvert_S_ParseUnsigned(aStr, anUInt32, 10);
}

int qvConvert_strtouint32_base(const char* aStr, uint32* anUInt32, int aBase) {
  return qvConvert_S_ParseUnsigned(aStr, anUInt32, aBase);
}

int qvConvert_strtouint64(const char* aStr, qvuint64_t* anUInt64) {
  return qvConvert_S_ParseUnsigned(aStr, anUInt64, 10);
}

int qvConvert_strtouint64_base(const char* aStr, qvuint64_t* anUInt64, int aBase) {
  return qvConvert_S_ParseUnsigned(aStr, anUInt64, aBase);
}

int qvConvert_hexstrtouint32(const char* aStr, uint32* anUInt32) {
  return qvConvert_S_ParseUnsigned(aStr, anUInt32, 16);
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
