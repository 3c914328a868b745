// The operations of qvCString that change its text in the middle or at its ends.
#include <algorithm>

#include "qv/CString.h"
#include "qvraTools/qvConvert_p.h"

// Places of a replacement that are remembered from the first pass, which counts, for the second, which
// copies.
#define kqvCString_PlacesToRemember 128

// Copies aLength bytes (aStr may be null for none) and returns the end of the copy.
static char* qvCString_S_Put(char* anOut, const char* aStr, size_t aLength) {
  if (aLength > 0) {
    memcpy(anOut, aStr, aLength);
  }
  return anOut + aLength;
}

// Every change in the middle makes a new text, so aStr may lie in the old one. Position and length are
// within the text.
void qvCString::Splice(size_t aPos, size_t aLength, const char* aStr, size_t aStrLength) {
  const size_t theTailPos = aPos + aLength;
  const size_t theNewLength = JoinedLength(length() - aLength, aStrLength);
  qvCString theResult;
  if (theNewLength > 0) {
    theResult.AllocBuffer(theNewLength);
    char* theOut = qvCString_S_Put(theResult.mStringPtr, mStringPtr, aPos);
    theOut = qvCString_S_Put(theOut, aStr, aStrLength);
    qvCString_S_Put(theOut, mStringPtr + theTailPos, length() - theTailPos);
  }
  Swap(theResult);
}

qvCString& qvCString::Erase(size_t aPos, size_t aLength) {
  qvAssert(aPos <= length());
  Splice(aPos, std::min(aLength, length() - aPos), NULL, 0);
  return *this;
}

qvCString& qvCString::Truncate(size_t aLength) { return Erase(aLength, npos); }

qvCString& qvCString::Empty() { return Truncate(0); }

qvCString& qvCString::clear() { return Empty(); }

// The bytes of aStr that aLength stands for.
static size_t qvCString_S_SourceLength(const char* aStr, size_t aLength) {
  if (aStr == NULL) {
    return 0;
  }
  return aLength == qvCString::npos ? strlen(aStr) : aLength;
}

qvCString& qvCString::Insert(size_t aPos, const char* aStr, size_t aLength) {
  qvAssert(aPos <= length());
  const size_t theCount = qvCString_S_SourceLength(aStr, aLength);
  if (theCount > 0) {
    Splice(aPos, 0, aStr, theCount);
  }
  return *this;
}

qvCString& qvCString::Replace(size_t aPos, size_t aLength, const char* aStr, size_t aStrLength) {
  const size_t thePos = std::min(aPos, length());
  Splice(thePos, std::min(aLength, length() - thePos), aStr, qvCString_S_SourceLength(aStr, aStrLength));
  return *this;
}

size_t qvCString::Replace(const char* anOldStr, const char* aNewStr, bool afReplaceAll) {
  const size_t theOldLength = LengthOf(anOldStr);
  const size_t theNewLength = LengthOf(aNewStr);
  // Counted first, so that the result is allocated once.
  size_t thePlaces[kqvCString_PlacesToRemember];
  size_t theCount = 0;
  size_t thePos = FindBytes(anOldStr, theOldLength, 0);
  while (thePos != npos && (afReplaceAll || theCount == 0)) {
    if (theCount < kqvCString_PlacesToRemember) {
      thePlaces[theCount] = thePos;
    }
    ++theCount;
    thePos = FindBytes(anOldStr, theOldLength, thePos + theOldLength);
  }
  if (theCount == 0) {
    return 0;
  }
  size_t theInserted = 0;
  if (__builtin_mul_overflow(theCount, theNewLength, &theInserted)) {
    theInserted = npos;
  }
  const size_t theResultLength = JoinedLength(length() - theCount * theOldLength, theInserted);
  qvCString theResult;
  if (theResultLength > 0) {
    theResult.AllocBuffer(theResultLength);
    char* theOut = theResult.mStringPtr;
    size_t theFrom = 0;
    for (size_t i = 0; i < theCount; ++i) {
      thePos = i < kqvCString_PlacesToRemember ? thePlaces[i] : FindBytes(anOldStr, theOldLength, theFrom);
      theOut = qvCString_S_Put(theOut, mStringPtr + theFrom, thePos - theFrom);
      theOut = qvCString_S_Put(theOut, aNewStr, theNewLength);
      theFrom = thePos + theOldLength;
    }
    qvCString_S_Put(theOut, mStringPtr + theFrom, length() - theFrom);
  }
  Swap(theResult);
  return theCount;
}

// One new text for both ends.
static qvCString& qvCString_S_Trim(qvCString& aString, bool afLeft, bool afRight) {
  const char* theText = aString.c_str();
  size_t theBegin = 0;
  size_t theEnd = aString.length();
  while (afLeft && theBegin < theEnd && qvConvert_S_IsSpace(theText[theBegin])) {
    ++theBegin;
  }
  while (afRight && theBegin < theEnd && qvConvert_S_IsSpace(theText[theEnd - 1])) {
    --theEnd;
  }
  if (theEnd - theBegin < aString.length()) {
    qvCString theKept(theText + theBegin, theEnd - theBegin);
    aString.Swap(theKept);
  }
  return aString;
}

qvCString& qvCString::Trim(bool afFromRight) { return qvCString_S_Trim(*this, !afFromRight, afFromRight); }

qvCString& qvCString::TrimLeftRight() { return qvCString_S_Trim(*this, true, true); }

qvCString& qvCString::Pad(size_t aCount, char aChar, bool afRight) {
  qvCString theCopies;
  if (aCount > 0) {
    theCopies.AllocBuffer(aCount);
    memset(theCopies.mStringPtr, aChar, aCount);
  }
  if (afRight) {
    return *this += theCopies;
  }
  theCopies += *this;
  Swap(theCopies);
  return *this;
}
