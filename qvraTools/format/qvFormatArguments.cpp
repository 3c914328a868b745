#include "qvraTools/format/qvFormatArguments_p.h"

#include <limits.h>
#include <string.h>

// The kinds of arguments. Two directives may name one argument only with the same kind: types that happen to
// be alike on one platform (int and long on 32 bits) stay different, so that a format is right or wrong on
// every platform.
enum : uint8 {
  kqvFormatKind_None,
  kqvFormatKind_Int,
  kqvFormatKind_Long,
  kqvFormatKind_LongLong,
  kqvFormatKind_IntMax,
  kqvFormatKind_PtrDiff,
  kqvFormatKind_Size,
  kqvFormatKind_Double,
  kqvFormatKind_LongDouble,
  kqvFormatKind_Pointer,
  kqvFormatKind_Text,
  kqvFormatKind_WideText,
  kqvFormatKind_Count  // this and the length: each kind of counter is a kind of its own
};

static uint8 qvFormat_S_IntegerKind(qvFormatLength aLength) {
  switch (aLength) {
    case kqvFormatLength_Long:
      return kqvFormatKind_Long;
    case kqvFormatLength_LongLong:
      return kqvFormatKind_LongLong;
    case kqvFormatLength_IntMax:
      return kqvFormatKind_IntMax;
    case kqvFormatLength_PtrDiff:
      return kqvFormatKind_PtrDiff;
    case kqvFormatLength_Size:
      return kqvFormatKind_Size;
    default:
      return kqvFormatKind_Int;  // char and short are passed as int
  }
}

static uint8 qvFormat_S_KindOf(const qvFormatDirective& aDirective) {
  switch (aDirective.mClass) {
    case kqvFormatClass_Signed:
    case kqvFormatClass_Unsigned:
      return qvFormat_S_IntegerKind(aDirective.mLength);
    case kqvFormatClass_Real:
      return aDirective.mLength == kqvFormatLength_LongDouble ? kqvFormatKind_LongDouble
                                                              : kqvFormatKind_Double;
    case kqvFormatClass_Text:
      return aDirective.mLength == kqvFormatLength_Long ? kqvFormatKind_WideText : kqvFormatKind_Text;
    case kqvFormatClass_Pointer:
      return kqvFormatKind_Pointer;
    case kqvFormatClass_Count:
      return static_cast<uint8>(kqvFormatKind_Count + aDirective.mLength);
    default:
      return kqvFormatKind_Int;  // a character, and wint_t is an int but for its sign
  }
}

void qvFormatArguments::Read(uint8 aKind, qvFormatValue* aValue) {
  switch (aKind) {
    case kqvFormatKind_Int:
      aValue->mInteger = static_cast<uint64>(static_cast<int64>(va_arg(mList, int)));
      break;
    case kqvFormatKind_Long:
      aValue->mInteger = static_cast<uint64>(static_cast<int64>(va_arg(mList, long)));
      break;
    // Types of one width are different types all the same. NOLINTNEXTLINE(bugprone-branch-clone)
    case kqvFormatKind_LongLong:
      aValue->mInteger = static_cast<uint64>(va_arg(mList, long long));
      break;
    case kqvFormatKind_IntMax:
      aValue->mInteger = static_cast<uint64>(va_arg(mList, intmax_t));
      break;
    case kqvFormatKind_PtrDiff:
      aValue->mInteger = static_cast<uint64>(static_cast<int64>(va_arg(mList, ptrdiff_t)));
      break;
    case kqvFormatKind_Size:
      aValue->mInteger = va_arg(mList, size_t);
      break;
    case kqvFormatKind_Double:
      aValue->mDouble = va_arg(mList, double);
      break;
    case kqvFormatKind_LongDouble:
      aValue->mLongDouble = va_arg(mList, long double);
      break;
    default:
      aValue->mPointer = va_arg(mList, void*);
      break;
  }
}

// The value of a "*".
int qvFormatArguments::TakeInt(int aPosition) {
  if (mMode == kMode_ByPosition) {
    return static_cast<int>(mValues[aPosition - 1].mInteger);
  }
  return va_arg(mList, int);
}

int qvFormatArguments::Take(qvFormatDirective* aDirective, qvFormatValue* aValue) {
  bool theByPosition = aDirective->mPosition != 0;
  if (mMode == kMode_Unused) {
    mMode = kMode_InOrder;
  }
  if (theByPosition != (mMode == kMode_ByPosition)) {
    return VEXA_EINVAL;
  }
  if (aDirective->mfWidthFromArgument) {
    int theWidth = TakeInt(aDirective->mWidthPosition);
    if (theWidth == INT_MIN) {
      return VEXA_ERANGE;
    }
    if (theWidth < 0) {
      theWidth = -theWidth;
      aDirective->mFlags |= kqvFormatFlag_Left;
    }
    aDirective->mWidth = theWidth;
  }
  if (aDirective->mfPrecisionFromArgument) {
    int thePrecision = TakeInt(aDirective->mPrecisionPosition);
    aDirective->mPrecision = thePrecision < 0 ? kqvFormat_NoPrecision : thePrecision;
  }
  if (theByPosition) {
    *aValue = mValues[aDirective->mPosition - 1];
  } else {
    Read(qvFormat_S_KindOf(*aDirective), aValue);
  }
  return 0;
}

int qvFormatArguments::Name(int aPosition, uint8 aKind) {
  uint8* theKind = &mKinds[aPosition - 1];
  if (*theKind != kqvFormatKind_None && *theKind != aKind) {
    return VEXA_EDBLREF;
  }
  *theKind = aKind;
  if (aPosition > mNamed) {
    mNamed = aPosition;
  }
  return 0;
}

int qvFormatArguments::NameAll(const qvFormatDirective& aDirective) {
  if (aDirective.mPosition == 0) {
    return VEXA_EINVAL;
  }
  int theError = Name(aDirective.mPosition, qvFormat_S_KindOf(aDirective));
  if (theError == 0 && aDirective.mfWidthFromArgument) {
    theError = Name(aDirective.mWidthPosition, kqvFormatKind_Int);
  }
  if (theError == 0 && aDirective.mfPrecisionFromArgument) {
    theError = Name(aDirective.mPrecisionPosition, kqvFormatKind_Int);
  }
  return theError;
}

template <typename Char>
int qvFormatArguments::BuildTable(const Char*& aNext) {
  mMode = kMode_ByPosition;
  memset(mKinds, kqvFormatKind_None, sizeof mKinds);
  while (*aNext != 0) {
    if (*aNext++ != '%') {
      continue;
    }
    if (*aNext == '%') {
      ++aNext;
      continue;
    }
    qvFormatDirective theDirective;
    int theError = qvFormat_ParseDirective(aNext, &theDirective);
    if (theError != 0) {
      return theError;
    }
    theError = NameAll(theDirective);
    if (theError != 0) {
      --aNext;
      return theError;
    }
  }
  for (int theIndex = 0; theIndex < mNamed; ++theIndex) {
    if (mKinds[theIndex] == kqvFormatKind_None) {
      return VEXA_EGAP;
    }
    Read(mKinds[theIndex], &mValues[theIndex]);
  }
  return 0;
}

template int qvFormatArguments::BuildTable(const char*& aNext);
template int qvFormatArguments::BuildTable(const wchar_t*& aNext);
