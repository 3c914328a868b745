#include "qvraTools/qvWString.h"

#include <stdint.h>
#include <wchar.h>

#include "qvraTools/qvAssert.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvUnicode.h"

#define kqvWString_HeaderSize (2 * sizeof(size_t)) /* bytes: capacity and length */
#define kqvWString_LastByte   255                  /* the largest value that GetASCII keeps */

// The capacity word.
#define qvWString_CAPACITY(aString) (((size_t*)(aString))[-2])

static_assert(kqvWString_HeaderSize % alignof(wchar_t) == 0, "the characters follow the two words directly");

static void* qvWString_S_Block(wchar_t* aString) {
  return reinterpret_cast<char*>(aString) - kqvWString_HeaderSize;
}

// The bytes of a block for aCapacity characters and a terminator behind a header; a size that nothing can
// allocate when no size_t holds them.
static size_t qvWString_S_BlockSize(size_t aHeaderSize, size_t aCapacity) {
  if (aCapacity >= (SIZE_MAX - aHeaderSize) / sizeof(wchar_t)) {
    return SIZE_MAX;
  }
  return aHeaderSize + (aCapacity + 1) * sizeof(wchar_t);
}

// A string of aLength characters that are still to be written; its terminator is there.
static wchar_t* qvWString_S_Make(size_t aLength) {
  wchar_t* theString = qvWString_Alloc(NULL, aLength);
  qvWString_LEN(theString) = aLength;
  theString[aLength] = L'\0';
  return theString;
}

// The second pass finds the text invalid only when somebody has changed it since the first. The condition is
// printed as it stands here, blank included.
// clang-format off
static void qvWString_S_CheckConverted(size_t theConvertedLength) {
  qvAssert(theConvertedLength != (size_t) -1);
}
// clang-format on

// The number of characters, or kqvUnicode_Invalid for null and for text that is not valid.
static size_t qvWString_S_MeasureUTF8(const char* aText) {
  return aText != NULL ? qvUnicode_UTF8ToWide(NULL, aText, 0) : kqvUnicode_Invalid;
}

wchar_t* qvWString_New(const wchar_t* aText) {
  size_t theLength = wcslen(aText);
  wchar_t* theString = qvWString_S_Make(theLength);
  wmemcpy(theString, aText, theLength);
  return theString;
}

wchar_t* qvWString_NewFromUTF8(const char* aText) {
  size_t theLength = qvWString_S_MeasureUTF8(aText);
  if (theLength == kqvUnicode_Invalid) {
    return NULL;
  }
  wchar_t* theString = qvWString_S_Make(theLength);
  qvWString_S_CheckConverted(qvUnicode_UTF8ToWide(theString, aText, theLength + 1));
  return theString;
}

wchar_t* qvWString_Alloc(wchar_t* aString, size_t aCapacity) {
  void* theOldBlock = aString != NULL ? qvWString_S_Block(aString) : NULL;
  void* theBlock = qvRealloc(theOldBlock, qvWString_S_BlockSize(kqvWString_HeaderSize, aCapacity));
  wchar_t* theString = reinterpret_cast<wchar_t*>(static_cast<char*>(theBlock) + kqvWString_HeaderSize);
  qvWString_CAPACITY(theString) = aCapacity;
  if (aString == NULL) {
    qvWString_LEN(theString) = 0;
    theString[0] = L'\0';
  }
  return theString;
}

void qvWString_Free(wchar_t* aString) {
  if (aString != NULL) {
    qvFree(qvWString_S_Block(aString));
  }
}

size_t qvWString_Length(const wchar_t* aString) { return qvWString_LEN(aString); }

void qvWString_Truncate(wchar_t* aString, size_t aLength) {
  qvAssert(aLength <= qvWString_LEN(aString));
  qvWString_LEN(aString) = aLength;
  aString[aLength] = L'\0';
}

wchar_t* qvWString_Append(wchar_t* aString, const wchar_t* aText) {
  size_t theTextLength = wcslen(aText);
  if (theTextLength == 0) {
    return aString;
  }
  size_t theLength = qvWString_LEN(aString);
  size_t theNewLength = theLength + theTextLength;
  if (qvWString_CAPACITY(aString) < theNewLength) {
    // A text inside the string moves with it.
    const uintptr_t theOffset = reinterpret_cast<uintptr_t>(aText) - reinterpret_cast<uintptr_t>(aString);
    aString = qvWString_Alloc(aString, theNewLength);
    if (theOffset < theLength * sizeof(wchar_t)) {
      aText = aString + theOffset / sizeof(wchar_t);
    }
  }
  wmemcpy(aString + theLength, aText, theTextLength);
  aString[theNewLength] = L'\0';
  qvWString_LEN(aString) = theNewLength;
  return aString;
}

wchar_t* qvWString_Prepend(wchar_t* aString, const wchar_t* aText) {
  size_t theTextLength = wcslen(aText);
  if (theTextLength == 0) {
    return aString;
  }
  size_t theLength = qvWString_LEN(aString);
  wchar_t* theString = qvWString_S_Make(theTextLength + theLength);
  wmemcpy(theString, aText, theTextLength);
  wmemcpy(theString + theTextLength, aString, theLength);
  qvWString_Free(aString);
  return theString;
}

// KEEP qvWStringKept.IsEmptyLooksAtTheCapacity
// Not at the length: a string that was cut to length 0 still has its room and is not empty in this sense.
int qvWString_IsEmpty(const wchar_t* aString) { return qvWString_CAPACITY(aString) == 0; }

int qvWString_Compare(const wchar_t* aString, const wchar_t* anOther) { return wcscmp(aString, anOther); }

int qvWString_CompareN(const wchar_t* aString, const wchar_t* anOther, size_t aLength) {
  return wcsncmp(aString, anOther, aLength);
}

int qvWString_BeforeFirstIs(const wchar_t* aString, wchar_t aChar, const wchar_t* aText) {
  size_t theTextLength = wcslen(aText);
  for (size_t i = 0; aString[i] != L'\0'; ++i) {
    if (aString[i] == aChar && i >= theTextLength &&
        wmemcmp(aString + (i - theTextLength), aText, theTextLength) == 0) {
      return 1;
    }
  }
  return 0;
}

char* qvWString_GetUTF8(const wchar_t* aString) { return qvWString_S_ToUTF8(aString); }

char* qvWString_GetASCII(const wchar_t* aString) {
  size_t theLength = wcslen(aString);
  char* theText = static_cast<char*>(qvMalloc(theLength + 1));
  for (size_t i = 0; i < theLength; ++i) {
    uint32 theChar = static_cast<uint32>(aString[i]);
    theText[i] = theChar <= kqvWString_LastByte ? static_cast<char>(theChar) : '.';
  }
  theText[theLength] = '\0';
  return theText;
}

char* qvWString_S_ToUTF8(const wchar_t* aText) {
  size_t theLength = qvUnicode_WideToUTF8(NULL, aText, 0);
  char* theResult = static_cast<char*>(qvMalloc(theLength + 1));
  qvWString_S_CheckConverted(qvUnicode_WideToUTF8(theResult, aText, theLength + 1));
  return theResult;
}

wchar_t* qvWString_S_FromUTF8(const char* aText) {
  size_t theLength = qvWString_S_MeasureUTF8(aText);
  if (theLength == kqvUnicode_Invalid) {
    return NULL;
  }
  wchar_t* theResult = static_cast<wchar_t*>(qvMalloc(qvWString_S_BlockSize(0, theLength)));
  qvWString_S_CheckConverted(qvUnicode_UTF8ToWide(theResult, aText, theLength + 1));
  return theResult;
}
