// The searches and comparisons of qvCString. All of them work on lengths, so zero bytes may stand inside.
#include <ctype.h>
#include <strings.h>

#include <algorithm>

#include "qv/CString.h"

// Places where the first byte of a needle stands and that are looked at one by one, before memmem, which
// makes a table first, takes over.
#define kqvCString_PlacesToLookAt 8

static int qvCString_S_Lower(char aChar) { return tolower(static_cast<unsigned char>(aChar)); }

size_t qvCString::FindBytes(const char* aBytes, size_t aLength, size_t aStartPos) const {
  if (aLength == 0 || aStartPos >= length()) {
    return npos;
  }
  const char* theEnd = mStringPtr + length();
  const char* theStart = mStringPtr + aStartPos;
  for (int i = 0; i < kqvCString_PlacesToLookAt; ++i) {
    const size_t theLength = static_cast<size_t>(theEnd - theStart);
    const void* thePlace =
        aLength <= theLength ? memchr(theStart, aBytes[0], theLength - (aLength - 1)) : NULL;
    if (thePlace == NULL) {
      return npos;
    }
    theStart = static_cast<const char*>(thePlace);
    if (memcmp(theStart, aBytes, aLength) == 0) {
      return static_cast<size_t>(theStart - mStringPtr);
    }
    ++theStart;
  }
  const void* thePlace = memmem(theStart, static_cast<size_t>(theEnd - theStart), aBytes, aLength);
  return thePlace != NULL ? static_cast<size_t>(static_cast<const char*>(thePlace) - mStringPtr) : npos;
}

size_t qvCString::FindLastBytes(const char* aBytes, size_t aLength, size_t aStartPos) const {
  if (aLength == 0 || aLength > length()) {
    return npos;
  }
  size_t theEnd = std::min(aStartPos, length() - aLength) + 1;  // occurrences begin before it
  while (theEnd > 0) {
    const void* thePtr = memrchr(mStringPtr, aBytes[0], theEnd);
    if (thePtr == NULL) {
      break;
    }
    theEnd = static_cast<size_t>(static_cast<const char*>(thePtr) - mStringPtr);
    if (memcmp(thePtr, aBytes, aLength) == 0) {
      return theEnd;
    }
  }
  return npos;
}

size_t qvCString::Find(const qvCString& aCString, size_t aStartPos) const {
  qvAssert(aCString.mCStringData->IsValid());
  return FindBytes(aCString.mStringPtr, aCString.length(), aStartPos);
}

size_t qvCString::FindFirstStr(const char* aStr, size_t aStartPos) const {
  return FindBytes(aStr, LengthOf(aStr), aStartPos);
}

size_t qvCString::FindLastStr(const char* aStr, size_t aStartPos) const {
  if (aStartPos != npos) {
    qvAssert(aStartPos <= length());
  }
  return FindLastBytes(aStr, LengthOf(aStr), aStartPos);
}

static bool qvCString_S_EqualNoCase(const char* aStr, const char* anOtherStr, size_t aLength) {
  return std::equal(aStr, aStr + aLength, anOtherStr, [](char aChar, char anOtherChar) {
    return qvCString_S_Lower(aChar) == qvCString_S_Lower(anOtherChar);
  });
}

size_t qvCString::FindNoCase(const qvCString& aCString, size_t aStartPos) const {
  qvAssert(aCString.mCStringData->IsValid());
  qvAssert(aStartPos <= length());
  const size_t theLength = aCString.length();
  if (theLength == 0) {
    return npos;
  }
  for (size_t thePos = aStartPos; theLength <= length() - thePos; ++thePos) {
    if (qvCString_S_EqualNoCase(mStringPtr + thePos, aCString.mStringPtr, theLength)) {
      return thePos;
    }
  }
  return npos;
}

// The terminator of a set is not in it.
static bool qvCString_S_IsIn(const char* aSet, size_t aSetLength, char aChar) {
  return aSetLength > 0 && memchr(aSet, aChar, aSetLength) != NULL;
}

size_t qvCString::FindFirstOf(const char* aSet, size_t aStartPos) const {
  qvAssert(aStartPos <= length());
  const size_t theSetLength = LengthOf(aSet);
  for (size_t thePos = aStartPos; thePos < length(); ++thePos) {
    if (qvCString_S_IsIn(aSet, theSetLength, mStringPtr[thePos])) {
      return thePos;
    }
  }
  return npos;
}

size_t qvCString::FindLastOf(const char* aSet, size_t aStartPos) const {
  const size_t theSetLength = LengthOf(aSet);
  for (size_t theEnd = aStartPos < length() ? aStartPos + 1 : length(); theEnd > 0; --theEnd) {
    if (qvCString_S_IsIn(aSet, theSetLength, mStringPtr[theEnd - 1])) {
      return theEnd - 1;
    }
  }
  return npos;
}

size_t qvCString::FindFirstNotOf(const char* aSet, size_t aStartPos) const {
  const size_t theSetLength = LengthOf(aSet);
  for (size_t thePos = aStartPos; thePos < length(); ++thePos) {
    if (!qvCString_S_IsIn(aSet, theSetLength, mStringPtr[thePos])) {
      return thePos;
    }
  }
  return npos;
}

int qvCString::Find(char aChar, bool afFromEnd) const {
  const size_t thePos = afFromEnd ? FindLastBytes(&aChar, 1, npos) : FindBytes(&aChar, 1, 0);
  return thePos != npos ? static_cast<int>(thePos) : -1;
}

bool qvCString::Contains(const char* aStr) const { return FindFirstStr(aStr, 0) != npos; }

bool qvCString::Contains(const qvCString& aCString) const { return Find(aCString, 0) != npos; }

int qvCString::Freq(char aChar) const {
  return static_cast<int>(std::count(mStringPtr, mStringPtr + length(), aChar));
}

// A text that another one begins with is the lesser of the two.
static int qvCString_S_CompareLengths(size_t aLength, size_t anOtherLength) {
  if (aLength == anOtherLength) {
    return 0;
  }
  return aLength < anOtherLength ? -1 : 1;
}

int qvCString::Compare(const qvCString& aCString) const {
  const int theResult = memcmp(mStringPtr, aCString.mStringPtr, std::min(length(), aCString.length()));
  return theResult != 0 ? theResult : qvCString_S_CompareLengths(length(), aCString.length());
}

int qvCString::Compare(const char* aStr) const {
  qvAssert(aStr != NULL);
  return strcmp(mStringPtr, aStr);
}

// strcasecmp compares tolower of every byte up to the first zero byte that both texts have. A difference that
// it finds is one: the terminator of the shorter text is less than anything. Without one the comparison goes
// on behind that zero byte, unless it ends one of the texts.
static int qvCString_S_CompareNoCase(const char* aStr, size_t aLength, const char* anOtherStr,
                                     size_t anOtherLength) {
  while (aLength > 0 && anOtherLength > 0) {
    const int theDifference = strcasecmp(aStr, anOtherStr);
    if (theDifference != 0) {
      return theDifference < 0 ? -1 : 1;
    }
    const size_t theEqual = strlen(aStr) + 1;
    if (theEqual > std::min(aLength, anOtherLength)) {
      break;
    }
    aStr += theEqual;
    aLength -= theEqual;
    anOtherStr += theEqual;
    anOtherLength -= theEqual;
  }
  return qvCString_S_CompareLengths(aLength, anOtherLength);
}

int qvCString::CompareNoCase(const qvCString& aCString) const {
  return qvCString_S_CompareNoCase(mStringPtr, length(), aCString.mStringPtr, aCString.length());
}

int qvCString::CompareNoCase(const char* aStr) const {
  return qvCString_S_CompareNoCase(mStringPtr, length(), aStr, LengthOf(aStr));
}
