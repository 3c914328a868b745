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
  uint32 theNumber = 0;
  bool theFits = true;
  for (; qvFormat_S_IsDigit(*aNext); ++aNext) {
    theFits = theFits && theNumber <= INT_MAX / 10;
    // At most 2147483649 here, which the wider type holds.
    theNumber = theFits ? theNumber * 10 + static_cast<uint32>(*aNext - '0') : 0;
    theFits = theFits && theNumber <= INT_MAX;
  }
  *aNumber = theFits ? static_cast<int>(theNumber) : 0;
  return theFits;
}

// Reads "n$". Without one the position is 0 and aNext stays: what stands there is a flag or a width.
template <typename Char>
static int qvFormat_S_ReadPosition(const Char*& aNext, int* aPosition) {
  *aPosition = 0;
  if (!qvFormat_S_IsDigit(*aNext) || *aNext == '0') {
    return 0;
  }
  if (aNext[1] == '$') {  // as in nearly all formats with positions
    *aPosition = static_cast<int>(*aNext - '0');
    aNext += 2;
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

#define QVFORMAT_LENGTH(aName) (1U << kqvFormatLength_##aName)
#define QVFORMAT_INTEGER_LENGTHS                                                                    \
  (QVFORMAT_LENGTH(None) | QVFORMAT_LENGTH(Char) | QVFORMAT_LENGTH(Short) | QVFORMAT_LENGTH(Long) | \
   QVFORMAT_LENGTH(LongLong) | QVFORMAT_LENGTH(IntMax) | QVFORMAT_LENGTH(PtrDiff) | QVFORMAT_LENGTH(Size))
#define QVFORMAT_REAL_LENGTHS (QVFORMAT_LENGTH(None) | QVFORMAT_LENGTH(Long) | QVFORMAT_LENGTH(LongDouble))
#define QVFORMAT_TEXT_LENGTHS (QVFORMAT_LENGTH(None) | QVFORMAT_LENGTH(Long))

// The lengths that go with each class, a bit for each. What is not here, such as "%hs", C leaves undefined:
// it is refused rather than guessed at.
static const uint16 kqvFormat_Lengths[] = {
    0,                         // invalid
    QVFORMAT_INTEGER_LENGTHS,  // signed
    QVFORMAT_INTEGER_LENGTHS,  // unsigned
    QVFORMAT_REAL_LENGTHS,     // real
    QVFORMAT_TEXT_LENGTHS,     // character
    QVFORMAT_TEXT_LENGTHS,     // text
    QVFORMAT_LENGTH(None),     // pointer
    QVFORMAT_INTEGER_LENGTHS,  // count
};

#define QVFORMAT_I kqvFormatClass_Invalid
#define QVFORMAT_D kqvFormatClass_Signed
#define QVFORMAT_U kqvFormatClass_Unsigned
#define QVFORMAT_R kqvFormatClass_Real
#define QVFORMAT_C kqvFormatClass_Character
#define QVFORMAT_S kqvFormatClass_Text
#define QVFORMAT_P kqvFormatClass_Pointer
#define QVFORMAT_N kqvFormatClass_Count

// The class of each letter.
static const qvFormatClass kqvFormat_Classes[] = {
    // clang-format off
    // A        B           C           D           E           F           G           H
    QVFORMAT_R, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_R, QVFORMAT_R, QVFORMAT_R, QVFORMAT_I,
    // I        J           K           L           M           N           O           P
    QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I,
    // Q        R           S           T           U           V           W           X
    QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_U,
    // Y        Z           between the letters
    QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I,
    // a        b           c           d           e           f           g           h
    QVFORMAT_R, QVFORMAT_I, QVFORMAT_C, QVFORMAT_D, QVFORMAT_R, QVFORMAT_R, QVFORMAT_R, QVFORMAT_I,
    // i        j           k           l           m           n           o           p
    QVFORMAT_D, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_I, QVFORMAT_N, QVFORMAT_U, QVFORMAT_P,
    // q        r           s           t           u           v           w           x
    QVFORMAT_I, QVFORMAT_I, QVFORMAT_S, QVFORMAT_I, QVFORMAT_U, QVFORMAT_I, QVFORMAT_I, QVFORMAT_U,
    // y        z
    QVFORMAT_I, QVFORMAT_I,
    // clang-format on
};

// Letters and what stands between their two alphabets.
template <typename Char>
static bool qvFormat_S_IsLetter(Char aChar) {
  return aChar >= 'A' && aChar <= 'z';
}

// Either everything that a directive takes from the arguments has a position or nothing has.
static bool qvFormat_S_MixesPositions(const qvFormatDirective& aDirective) {
  bool theNumbered = aDirective.mPosition != 0;
  return (aDirective.mfWidthFromArgument && (aDirective.mWidthPosition != 0) != theNumbered) ||
         (aDirective.mfPrecisionFromArgument && (aDirective.mPrecisionPosition != 0) != theNumbered);
}

// Reads flags, width and precision.
template <typename Char>
static int qvFormat_S_ReadLayout(const Char*& aNext, qvFormatDirective* aDirective) {
  aDirective->mFlags = qvFormat_S_ReadFlags(aNext);
  int theError = qvFormat_S_ReadSize(aNext, &aDirective->mWidth, &aDirective->mfWidthFromArgument,
                                     &aDirective->mWidthPosition);
  if (theError == 0 && *aNext == '.') {
    ++aNext;
    theError = qvFormat_S_ReadSize(aNext, &aDirective->mPrecision, &aDirective->mfPrecisionFromArgument,
                                   &aDirective->mPrecisionPosition);
  }
  return theError;
}

// Reads the parts before the conversion character.
template <typename Char>
static int qvFormat_S_ReadParts(const Char*& aNext, qvFormatDirective* aDirective) {
  int theError = qvFormat_S_ReadPosition(aNext, &aDirective->mPosition);
  if (theError == 0 && !qvFormat_S_IsLetter(*aNext)) {
    theError = qvFormat_S_ReadLayout(aNext, aDirective);
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
  // In a local, which stores into the directive cannot change behind the compiler's back.
  const Char* theNext = aNext;
  int theError = qvFormat_S_ReadParts(theNext, aDirective);
  aNext = theNext;
  if (theError != 0) {
    return theError;
  }
  if (*theNext == 0) {
    return VEXA_EOF;
  }
  if (!qvFormat_S_IsLetter(*theNext)) {
    return VEXA_EINVAL;
  }
  aDirective->mConversion = static_cast<char>(*theNext);
  aDirective->mClass = kqvFormat_Classes[*theNext - 'A'];
  if ((kqvFormat_Lengths[aDirective->mClass] >> aDirective->mLength & 1) == 0 ||
      qvFormat_S_MixesPositions(*aDirective)) {
    return VEXA_EINVAL;
  }
  ++aNext;
  return 0;
}

template int qvFormat_ParseDirective(const char*& aNext, qvFormatDirective* aDirective);
template int qvFormat_ParseDirective(const wchar_t*& aNext, qvFormatDirective* aDirective);
