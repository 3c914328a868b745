#include "qvraTools/format/qvFormatDirective_p.h"

#include <limits.h>

#include "qvraTools/format/qvFormat.h"

template <typename Char>
static bool qvFormat_S_IsDigit(Char aChar) {
  return aChar >= '0' && aChar <= '9';
}

// Reads digits, none of them needed. False when no int holds the number; aNext is behind it all the same.
template <typename Char>
static bool qvFormat_S_ReadNumber(const Char*& aNext, int* aNumber) {
  int theNumber = 0;
  bool theFits = true;
  for (; qvFormat_S_IsDigit(*aNext); ++aNext) {
    int theDigit = static_cast<int>(*aNext - '0');
    theFits = theFits && theNumber <= (INT_MAX - theDigit) / 10;
    theNumber = theFits ? theNumber * 10 + theDigit : 0;
  }
  *aNumber = theNumber;
  return theFits;
}

// Reads "n$". Without one the position is 0 and aNext stays: what stands there is a flag or a width.
template <typename Char>
static int qvFormat_S_ReadPosition(const Char*& aNext, int* aPosition) {
  *aPosition = 0;
  if (!qvFormat_S_IsDigit(*aNext) || *aNext == '0') {
    return 0;
  }
  const Char* theEnd = aNext;
  int theNumber = 0;
  bool theFits = qvFormat_S_ReadNumber(theEnd, &theNumber);
  if (*theEnd != '$') {
    return 0;
  }
  if (!theFits || theNumber > kqvFormat_MaxPosition) {
    return VEXA_ETOOMANY;
  }
  *aPosition = theNumber;
  aNext = theEnd + 1;
  return 0;
}

template <typename Char>
static uint8 qvFormat_S_ReadFlags(const Char*& aNext) {
  for (uint8 theFlags = 0;; ++aNext) {
    switch (*aNext) {
      case '-':
        theFlags |= kqvFormatFlag_Left;
        break;
      case '+':
        theFlags |= kqvFormatFlag_Plus;
        break;
      case ' ':
        theFlags |= kqvFormatFlag_Space;
        break;
      case '#':
        theFlags |= kqvFormatFlag_Alternative;
        break;
      case '0':
        theFlags |= kqvFormatFlag_Zero;
        break;
      default:
        return theFlags;
    }
  }
}

// Reads a width or what follows the "." of a precision: "*", "*n$", digits or nothing (0).
template <typename Char>
static int qvFormat_S_ReadSize(const Char*& aNext, int* aSize, bool* afFromArgument, int* aPosition) {
  if (*aNext == '*') {
    ++aNext;
    *afFromArgument = true;
    return qvFormat_S_ReadPosition(aNext, aPosition);
  }
  const Char* theStart = aNext;
  if (!qvFormat_S_ReadNumber(aNext, aSize)) {
    aNext = theStart;
    return VEXA_ERANGE;
  }
  return 0;
}

template <typename Char>
static qvFormatLength qvFormat_S_ReadLength(const Char*& aNext) {
  switch (*aNext) {
    case 'h':
      if (*++aNext != 'h') {
        return kqvFormatLength_Short;
      }
      ++aNext;
      return kqvFormatLength_Char;
    case 'l':
      if (*++aNext != 'l') {
        return kqvFormatLength_Long;
      }
      ++aNext;
      return kqvFormatLength_LongLong;
    case 'L':
      ++aNext;
      return kqvFormatLength_LongDouble;
    case 'j':
      ++aNext;
      return kqvFormatLength_IntMax;
    case 't':
      ++aNext;
      return kqvFormatLength_PtrDiff;
    case 'z':
      ++aNext;
      return kqvFormatLength_Size;
    default:
      return kqvFormatLength_None;
  }
}

static qvFormatClass qvFormat_S_ClassOf(char aConversion) {
  switch (aConversion) {
    case 'd':
    case 'i':
      return kqvFormatClass_Signed;
    case 'u':
    case 'o':
    case 'x':
    case 'X':
      return kqvFormatClass_Unsigned;
    case 'e':
    case 'E':
    case 'f':
    case 'F':
    case 'g':
    case 'G':
    case 'a':
    case 'A':
      return kqvFormatClass_Real;
    case 'c':
      return kqvFormatClass_Character;
    case 's':
      return kqvFormatClass_Text;
    case 'p':
      return kqvFormatClass_Pointer;
    case 'n':
      return kqvFormatClass_Count;
    default:
      return kqvFormatClass_Invalid;
  }
}

// What C leaves undefined, such as "%hs", is refused rather than guessed at.
static bool qvFormat_S_AllowsLength(qvFormatClass aClass, qvFormatLength aLength) {
  if (aLength == kqvFormatLength_None) {
    return aClass != kqvFormatClass_Invalid;
  }
  switch (aClass) {
    case kqvFormatClass_Signed:
    case kqvFormatClass_Unsigned:
    case kqvFormatClass_Count:
      return aLength != kqvFormatLength_LongDouble;
    case kqvFormatClass_Real:
      return aLength == kqvFormatLength_Long || aLength == kqvFormatLength_LongDouble;
    case kqvFormatClass_Character:
    case kqvFormatClass_Text:
      return aLength == kqvFormatLength_Long;
    default:
      return false;
  }
}

// Either everything that a directive takes from the arguments has a position or nothing has.
static bool qvFormat_S_MixesPositions(const qvFormatDirective& aDirective) {
  bool theNumbered = aDirective.mPosition != 0;
  return (aDirective.mfWidthFromArgument && (aDirective.mWidthPosition != 0) != theNumbered) ||
         (aDirective.mfPrecisionFromArgument && (aDirective.mPrecisionPosition != 0) != theNumbered);
}

// Reads the parts before the conversion character.
template <typename Char>
static int qvFormat_S_ReadParts(const Char*& aNext, qvFormatDirective* aDirective) {
  int theError = qvFormat_S_ReadPosition(aNext, &aDirective->mPosition);
  if (theError != 0) {
    return theError;
  }
  aDirective->mFlags = qvFormat_S_ReadFlags(aNext);
  theError = qvFormat_S_ReadSize(aNext, &aDirective->mWidth, &aDirective->mfWidthFromArgument,
                                 &aDirective->mWidthPosition);
  if (theError == 0 && *aNext == '.') {
    ++aNext;
    theError = qvFormat_S_ReadSize(aNext, &aDirective->mPrecision, &aDirective->mfPrecisionFromArgument,
                                   &aDirective->mPrecisionPosition);
  }
  if (theError == 0) {
    aDirective->mLength = qvFormat_S_ReadLength(aNext);
  }
  return theError;
}

template <typename Char>
int qvFormat_ParseDirective(const Char*& aNext, qvFormatDirective* aDirective) {
  *aDirective = qvFormatDirective();
  aDirective->mPrecision = kqvFormat_NoPrecision;
  int theError = qvFormat_S_ReadParts(aNext, aDirective);
  if (theError != 0) {
    return theError;
  }
  if (*aNext == 0) {
    return VEXA_EOF;
  }
  bool theIsASCII = *aNext > 0 && *aNext < 0x7f;
  aDirective->mConversion = theIsASCII ? static_cast<char>(*aNext) : '\0';
  aDirective->mClass = qvFormat_S_ClassOf(aDirective->mConversion);
  if (!qvFormat_S_AllowsLength(aDirective->mClass, aDirective->mLength) ||
      qvFormat_S_MixesPositions(*aDirective)) {
    return VEXA_EINVAL;
  }
  ++aNext;
  return 0;
}

template int qvFormat_ParseDirective(const char*& aNext, qvFormatDirective* aDirective);
template int qvFormat_ParseDirective(const wchar_t*& aNext, qvFormatDirective* aDirective);
