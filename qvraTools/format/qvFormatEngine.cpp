#include "qvraTools/format/qvFormatEngine_p.h"

#include <limits.h>
#include <string.h>

#include "qvraTools/format/qvFormat.h"
#include "qvraTools/format/qvFormatArguments_p.h"
#include "qvraTools/format/qvFormatDirective_p.h"
#include "qvraTools/format/qvFormatNumberOutput_p.h"
#include "qvraTools/format/qvFormatOutput_p.h"
#include "qvraTools/format/qvFormatPlain_p.h"
#include "qvraTools/format/qvFormatSimple_p.h"
#include "qvraTools/format/qvFormatText_p.h"
#include "qvraTools/qvMalloc.h"

#define kqvFormat_MaxErrorPosition (INT_MAX >> 8)

// Outputs up to this length are formatted once, longer ones twice.
#define kqvFormat_ScratchLength 256

template <typename Char>
static void qvFormat_S_WriteText(const qvFormatDirective& aDirective, const void* aText,
                                 qvFormatOutput<Char>* anOutput) {
  if (aText == nullptr) {
    qvFormatText_WriteNull(aDirective, anOutput);
  } else if (aDirective.mLength == kqvFormatLength_Long) {
    qvFormatText_Write(aDirective, static_cast<const wchar_t*>(aText), anOutput);
  } else {
    qvFormatText_Write(aDirective, static_cast<const char*>(aText), anOutput);
  }
}

template <typename Char>
static void qvFormat_S_WritePointer(const qvFormatDirective& aDirective, const void* aValue,
                                    qvFormatOutput<Char>* anOutput) {
  if (aValue == nullptr) {
    qvFormatDirective theDirective = aDirective;
    theDirective.mPrecision = kqvFormat_NoPrecision;
    qvFormatText_WriteNull(theDirective, anOutput);
    return;
  }
  qvFormatNumber_WritePointer(aDirective, aValue, anOutput);
}

// "%n". The count fits an int; a shorter counter takes its low bits.
static void qvFormat_S_StoreCount(qvFormatLength aLength, uint64 aCount, void* aCounter) {
  switch (aLength) {
    case kqvFormatLength_Char:
      *static_cast<signed char*>(aCounter) = static_cast<signed char>(aCount);
      break;
    case kqvFormatLength_Short:
      *static_cast<short*>(aCounter) = static_cast<short>(aCount);
      break;
    case kqvFormatLength_Long:
      *static_cast<long*>(aCounter) = static_cast<long>(aCount);
      break;
    case kqvFormatLength_LongLong:
      *static_cast<long long*>(aCounter) = static_cast<long long>(aCount);
      break;
    case kqvFormatLength_IntMax:
      *static_cast<intmax_t*>(aCounter) = static_cast<intmax_t>(aCount);
      break;
    case kqvFormatLength_PtrDiff:
      *static_cast<ptrdiff_t*>(aCounter) = static_cast<ptrdiff_t>(aCount);
      break;
    case kqvFormatLength_Size:
      *static_cast<size_t*>(aCounter) = static_cast<size_t>(aCount);
      break;
    default:
      *static_cast<int*>(aCounter) = static_cast<int>(aCount);
      break;
  }
}

template <typename Char>
static void qvFormat_S_WriteValue(const qvFormatDirective& aDirective, const qvFormatValue& aValue,
                                  qvFormatOutput<Char>* anOutput) {
  switch (aDirective.mClass) {
    case kqvFormatClass_Signed:
    case kqvFormatClass_Unsigned:
      qvFormatNumber_WriteInteger(aDirective, aValue.mInteger, anOutput);
      break;
    case kqvFormatClass_Real:
      if (aDirective.mLength == kqvFormatLength_LongDouble) {
        qvFormatNumber_WriteLongDouble(aDirective, aValue.mLongDouble, anOutput);
      } else {
        qvFormatNumber_WriteDouble(aDirective, aValue.mDouble, anOutput);
      }
      break;
    case kqvFormatClass_Character:
      qvFormatText_WriteCharacter(aDirective, static_cast<uint32>(aValue.mInteger), anOutput);
      break;
    case kqvFormatClass_Text:
      qvFormat_S_WriteText(aDirective, aValue.mPointer, anOutput);
      break;
    case kqvFormatClass_Pointer:
      qvFormat_S_WritePointer(aDirective, aValue.mPointer, anOutput);
      break;
    default:
      qvFormat_S_StoreCount(aDirective.mLength, anOutput->Count(), aValue.mPointer);
      break;
  }
}

// Carries out the directive whose "%" stands before aNext. Returns 0 with aNext behind it, or an error code
// with aNext where it was found.
template <typename Char>
static int qvFormat_S_WriteDirective(const Char*& aNext, qvFormatArguments* anArguments,
                                     qvFormatOutput<Char>* anOutput) {
  if (*aNext == '%') {
    anOutput->Put(*aNext++);
    return 0;
  }
  // Wide texts are rare, and the short way would be there once more for them.
  if constexpr (sizeof(Char) == sizeof(char)) {
    if (qvFormatSimple_Write(aNext, anArguments, anOutput)) {
      return 0;
    }
  }
  const Char* theStart = aNext - 1;
  qvFormatDirective theDirective;
  int theError = qvFormat_ParseDirective(aNext, &theDirective);
  if (theError != 0) {
    return theError;
  }
  if (theDirective.mPosition != 0 && anArguments->IsUnused()) {
    theError = anArguments->BuildTable(theStart);
    if (theError != 0) {
      aNext = theStart;
      return theError;
    }
  }
  qvFormatValue theValue;
  theError = anArguments->Take(&theDirective, &theValue);
  if (theError != 0) {
    --aNext;
    return theError;
  }
  qvFormat_S_WriteValue(theDirective, theValue, anOutput);
  return 0;
}

// Writes the whole output. Returns 0, or an error code with aNext where it was found.
template <typename Char>
static int qvFormat_S_WriteAll(const Char*& aNext, qvFormatArguments* anArguments,
                               qvFormatOutput<Char>* anOutput) {
  for (;;) {
    qvFormatPlain_Write(aNext, anArguments, anOutput);
    if (anOutput->Count() > INT_MAX) {
      return VEXA_ERANGE;
    }
    if (*aNext == 0) {
      return 0;
    }
    ++aNext;
    int theError = qvFormat_S_WriteDirective(aNext, anArguments, anOutput);
    if (theError != 0) {
      return theError;
    }
  }
}

static int qvFormat_S_MakeError(int aCode, size_t aPosition) {
  size_t thePosition = aPosition < kqvFormat_MaxErrorPosition ? aPosition : kqvFormat_MaxErrorPosition;
  return -(aCode + (static_cast<int>(thePosition) << 8));
}

template <typename Char>
int qvFormat_Write(Char* aBuffer, size_t aMax, const Char* aFormat, qvFormatList* aList) {
  qvFormatOutput<Char> theOutput(aBuffer, aMax > 0 ? aMax - 1 : 0);
  qvFormatArguments theArguments(aList);
  const Char* theNext = aFormat;
  int theError = qvFormat_S_WriteAll(theNext, &theArguments, &theOutput);
  if (aMax > 0) {
    theOutput.Terminate();
  }
  if (theError != 0) {
    if (aMax > 0) {
      *aBuffer = 0;
    }
    return qvFormat_S_MakeError(theError, static_cast<size_t>(theNext - aFormat));
  }
  return static_cast<int>(theOutput.Count());
}

template <typename Char>
Char* qvFormat_Allocate(size_t* aLength, const Char* aFormat, qvFormatList* aList) {
  if (aLength != nullptr) {
    *aLength = 0;
  }
  // The pass that measures keeps what fits a small buffer, so that most outputs need no second pass.
  Char theScratch[kqvFormat_ScratchLength];
  qvFormatList theList;
  va_copy(theList.mList, aList->mList);
  int theResult = qvFormat_Write(theScratch, kqvFormat_ScratchLength, aFormat, &theList);
  va_end(theList.mList);
  if (theResult < 0) {
    return nullptr;
  }
  size_t theLength = static_cast<size_t>(theResult);
  // On a 32-bit target the size of a long wide text can be more than a size_t holds: no memory has that much.
  size_t theSize = theLength < SIZE_MAX / sizeof(Char) ? (theLength + 1) * sizeof(Char) : SIZE_MAX;
  Char* theText = static_cast<Char*>(qvMalloc(theSize));
  if (theLength < kqvFormat_ScratchLength) {
    memcpy(theText, theScratch, theSize);
  } else if (qvFormat_Write(theText, theLength + 1, aFormat, aList) < 0) {
    qvFree(theText);
    return nullptr;
  }
  if (aLength != nullptr) {
    *aLength = theLength;
  }
  return theText;
}

template int qvFormat_Write(char*, size_t, const char*, qvFormatList*);
template int qvFormat_Write(wchar_t*, size_t, const wchar_t*, qvFormatList*);
template char* qvFormat_Allocate(size_t*, const char*, qvFormatList*);
template wchar_t* qvFormat_Allocate(size_t*, const wchar_t*, qvFormatList*);
