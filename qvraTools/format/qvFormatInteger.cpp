// Integers and pointers as text.
#include "qvraTools/format/qvFormatDecimal_p.h"
#include "qvraTools/format/qvFormatNumber_p.h"
#include "qvraTools/format/qvFormatWord_p.h"

const char kqvFormat_LowerDigits[] = "0123456789abcdefghijklmnopqrstuvwxyz";
const char kqvFormat_UpperDigits[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";

const char kqvFormat_Pairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839404142434445464748495051"
    "525354555657585960616263646566676869707172737475767778798081828384858687888990919293949596979899";

#define kqvFormatInteger_PointerDigits 8 /* at least, behind "0x" */

// Digits are written backwards from anEnd; the first one's address is returned. No digits for 0.
char* qvFormatNumber_WriteDecimal(char* anEnd, uint64 aValue) {
  if (aValue == 0) {
    return anEnd;
  }
  while (aValue > UINT32_MAX) {
    uint32 theNine = 0;
    aValue = qvFormat_DivideByBillion(aValue, &theNine);
    anEnd = qvFormatDecimal_WriteNine(anEnd, theNine);
  }
  return qvFormatDecimal_Write(anEnd, static_cast<uint32>(aValue));
}

static char* qvFormat_S_WriteOctal(char* anEnd, uint64 aValue) {
  for (; aValue != 0; aValue >>= 3) {
    *--anEnd = kqvFormat_LowerDigits[aValue & 7];
  }
  return anEnd;
}

static char* qvFormat_S_WriteHex(char* anEnd, uint64 aValue, bool afUpper) {
  const char* theDigits = afUpper ? kqvFormat_UpperDigits : kqvFormat_LowerDigits;
  for (; aValue != 0; aValue >>= 4) {
    *--anEnd = theDigits[aValue & 15];
  }
  return anEnd;
}

// Takes the argument as the type that the length modifier names: cut to its bits, then extended by its sign
// or by zeros.
static uint64 qvFormat_S_AsLength(uint64 aValue, qvFormatLength aLength, bool afSigned) {
  size_t theSize = sizeof(int);
  switch (aLength) {
    case kqvFormatLength_Char:
      theSize = sizeof(char);
      break;
    case kqvFormatLength_Short:
      theSize = sizeof(short);
      break;
    case kqvFormatLength_Long:
      theSize = sizeof(long);
      break;
    case kqvFormatLength_LongLong:
    case kqvFormatLength_IntMax:
      return aValue;
    case kqvFormatLength_PtrDiff:
    case kqvFormatLength_Size:
      theSize = sizeof(size_t);
      break;
    default:
      break;
  }
  if (theSize == sizeof(uint64)) {
    return aValue;
  }
  uint64 theSignBit = static_cast<uint64>(1) << (theSize * 8 - 1);
  aValue &= theSignBit * 2 - 1;
  return afSigned ? (aValue ^ theSignBit) - theSignBit : aValue;
}

void qvFormatNumber_Pad(const qvFormatDirective& aDirective, bool afZeros, qvFormatNumber* aNumber) {
  uint32 theWidth = static_cast<uint32>(aDirective.mWidth);
  uint32 theLength = aNumber->mPrefixLength + aNumber->mZerosBefore + aNumber->mDigitCount +
                     aNumber->mfPoint + aNumber->mZerosBehindPoint + aNumber->mFractionCount +
                     aNumber->mZerosAfter + aNumber->mSuffixLength;
  if (theWidth <= theLength) {
    return;
  }
  if ((aDirective.mFlags & kqvFormatFlag_Left) != 0) {
    aNumber->mBlanksAfter = theWidth - theLength;
  } else if (afZeros) {
    aNumber->mZerosBefore += theWidth - theLength;
  } else {
    aNumber->mBlanksBefore = theWidth - theLength;
  }
}

static void qvFormat_S_SetDigits(const char* aDigits, const char* anEnd, qvFormatNumber* aNumber) {
  aNumber->mDigits = aDigits;
  aNumber->mDigitCount = static_cast<uint32>(anEnd - aDigits);
}

static void qvFormat_S_SetHexPrefix(char anX, qvFormatNumber* aNumber) {
  aNumber->mPrefix[0] = '0';
  aNumber->mPrefix[1] = anX;
  aNumber->mPrefixLength = 2;
}

// Writes the digits of o u x X, with the prefix of the alternative form.
static void qvFormat_S_SetUnsigned(const qvFormatDirective& aDirective, uint64 aValue, char* anEnd,
                                   qvFormatNumber* aNumber) {
  bool theAlternative = (aDirective.mFlags & kqvFormatFlag_Alternative) != 0;
  const char* theFirst = nullptr;
  switch (aDirective.mConversion) {
    case 'o':
      theFirst = qvFormat_S_WriteOctal(anEnd, aValue);
      // A leading zero, unless the precision asks for one anyway.
      if (theAlternative && aDirective.mPrecision <= anEnd - theFirst &&
          (aValue != 0 || aDirective.mPrecision == 0)) {
        aNumber->mZerosBefore = 1;
      }
      break;
    case 'x':
    case 'X':
      theFirst = qvFormat_S_WriteHex(anEnd, aValue, aDirective.mConversion == 'X');
      if (theAlternative && aValue != 0) {
        qvFormat_S_SetHexPrefix(aDirective.mConversion, aNumber);
      }
      break;
    default:
      theFirst = qvFormatNumber_WriteDecimal(anEnd, aValue);
      break;
  }
  qvFormat_S_SetDigits(theFirst, anEnd, aNumber);
}

static void qvFormat_S_SetSigned(const qvFormatDirective& aDirective, uint64 aValue, char* anEnd,
                                 qvFormatNumber* aNumber) {
  bool theNegative = static_cast<int64>(aValue) < 0;
  if (theNegative) {
    aNumber->mPrefix[aNumber->mPrefixLength++] = '-';
  } else if ((aDirective.mFlags & kqvFormatFlag_Plus) != 0) {
    aNumber->mPrefix[aNumber->mPrefixLength++] = '+';
  } else if ((aDirective.mFlags & kqvFormatFlag_Space) != 0) {
    aNumber->mPrefix[aNumber->mPrefixLength++] = ' ';
  }
  qvFormat_S_SetDigits(qvFormatNumber_WriteDecimal(anEnd, theNegative ? 0 - aValue : aValue), anEnd, aNumber);
}

void qvFormatNumber_SetInteger(const qvFormatDirective& aDirective, uint64 aValue, char* aBuffer,
                               qvFormatNumber* aNumber) {
  char* theEnd = aBuffer + kqvFormatInteger_BufferSize;
  *aNumber = qvFormatNumber();
  bool theSigned = aDirective.mClass == kqvFormatClass_Signed;
  uint64 theValue = qvFormat_S_AsLength(aValue, aDirective.mLength, theSigned);
  if (theSigned) {
    qvFormat_S_SetSigned(aDirective, theValue, theEnd, aNumber);
  } else {
    qvFormat_S_SetUnsigned(aDirective, theValue, theEnd, aNumber);
  }
  // The least number of digits is 1, so 0 is "0" except with precision 0.
  uint32 theLeast = aDirective.mPrecision < 0 ? 1 : static_cast<uint32>(aDirective.mPrecision);
  if (aNumber->mZerosBefore + aNumber->mDigitCount < theLeast) {
    aNumber->mZerosBefore = theLeast - aNumber->mDigitCount;
  }
  bool thePadZeros = (aDirective.mFlags & kqvFormatFlag_Zero) != 0 && aDirective.mPrecision < 0;
  qvFormatNumber_Pad(aDirective, thePadZeros, aNumber);
}

void qvFormatNumber_SetPointer(const qvFormatDirective& aDirective, const void* aValue, char* aBuffer,
                               qvFormatNumber* aNumber) {
  char* theEnd = aBuffer + kqvFormatInteger_BufferSize;
  *aNumber = qvFormatNumber();
  qvFormat_S_SetHexPrefix('x', aNumber);
  qvFormat_S_SetDigits(qvFormat_S_WriteHex(theEnd, reinterpret_cast<uintptr_t>(aValue), false), theEnd,
                       aNumber);
  if (aNumber->mDigitCount < kqvFormatInteger_PointerDigits) {
    aNumber->mZerosBefore = kqvFormatInteger_PointerDigits - aNumber->mDigitCount;
  }
  qvFormatNumber_Pad(aDirective, false, aNumber);
}
