// The parts and copies that a qvCString gives of itself, and the operators that join two texts.
#include <ctype.h>

#include <algorithm>

#include "qv/CString.h"
#include "qvraTools/qvConvert_p.h"
#include "qvraTools/qvMalloc.h"

qvCString qvCString::AfterFirstBytes(const char* aBytes, size_t aLength) const {
  const size_t thePos = FindBytes(aBytes, aLength, 0);
  return thePos == npos ? qvCString() : Mid(thePos + aLength, npos);
}

qvCString qvCString::BeforeFirstBytes(const char* aBytes, size_t aLength) const {
  return Left(FindBytes(aBytes, aLength, 0));
}

qvCString qvCString::AfterLastBytes(const char* aBytes, size_t aLength) const {
  const size_t thePos = FindLastBytes(aBytes, aLength, npos);
  return thePos == npos ? *this : Mid(thePos + aLength, npos);
}

qvCString qvCString::BeforeLastBytes(const char* aBytes, size_t aLength) const {
  const size_t thePos = FindLastBytes(aBytes, aLength, npos);
  return thePos == npos ? qvCString() : Left(thePos);
}

qvCString qvCString::AfterFirst(char aChar) const { return AfterFirstBytes(&aChar, 1); }

qvCString qvCString::AfterFirst(const qvCString& aCString) const {
  return AfterFirstBytes(aCString.mStringPtr, aCString.length());
}

qvCString qvCString::BeforeFirst(char aChar) const { return BeforeFirstBytes(&aChar, 1); }

qvCString qvCString::BeforeFirst(const qvCString& aCString) const {
  return BeforeFirstBytes(aCString.mStringPtr, aCString.length());
}

qvCString qvCString::BeforeFirst(const char* aStr) const { return BeforeFirstBytes(aStr, LengthOf(aStr)); }

qvCString qvCString::AfterLast(char aChar) const { return AfterLastBytes(&aChar, 1); }

qvCString qvCString::AfterLast(const qvCString& aCString) const {
  return AfterLastBytes(aCString.mStringPtr, aCString.length());
}

qvCString qvCString::BeforeLast(char aChar) const { return BeforeLastBytes(&aChar, 1); }

qvCString qvCString::BeforeLast(const qvCString& aCString) const {
  return BeforeLastBytes(aCString.mStringPtr, aCString.length());
}

qvCString qvCString::BeforeLast(const char* aStr) const { return BeforeLastBytes(aStr, LengthOf(aStr)); }

qvCString qvCString::Mid(size_t aPos, size_t aLength) const {
  if (aPos >= length()) {
    return qvCString();
  }
  const size_t theCount = std::min(aLength, length() - aPos);
  return theCount == length() ? *this : qvCString(mStringPtr + aPos, theCount);
}

qvCString qvCString::Left(size_t aLength) const { return Mid(0, aLength); }

qvCString qvCString::Right(size_t aLength) const { return Mid(length() - std::min(aLength, length()), npos); }

qvCString qvCString::Upper() const {
  qvCString theResult(mStringPtr, length());
  for (size_t i = 0; i < length(); ++i) {
    theResult.mStringPtr[i] = static_cast<char>(toupper(static_cast<unsigned char>(mStringPtr[i])));
  }
  return theResult;
}

qvCString qvCString::Lower() const {
  qvCString theResult(mStringPtr, length());
  for (size_t i = 0; i < length(); ++i) {
    theResult.mStringPtr[i] = static_cast<char>(tolower(static_cast<unsigned char>(mStringPtr[i])));
  }
  return theResult;
}

qvCString qvCString::TrimTo1Space() const {
  if (IsEmpty()) {
    return qvCString();
  }
  qvCString theResult;
  char* theBuffer = theResult.GetWriteBuf(length());
  size_t theLength = 0;
  bool thefInRun = false;
  for (size_t i = 0; i < length(); ++i) {
    const bool thefSpace = qvConvert_S_IsSpace(mStringPtr[i]);
    if (!thefSpace) {
      theBuffer[theLength++] = mStringPtr[i];
    } else if (!thefInRun) {
      theBuffer[theLength++] = ' ';
    }
    thefInRun = thefSpace;
  }
  theResult.UngetWriteBuf(theLength);
  return theResult;
}

// One block for both texts, and the result owns it: nothing is copied twice.
static qvCString qvCString_S_Join(const char* aLeft, size_t aLeftLength, const char* aRight,
                                  size_t aRightLength) {
  qvAssert(aLeftLength < qvCString::npos - aRightLength);
  char* theText = static_cast<char*>(qvMalloc(aLeftLength + aRightLength + 1));
  if (aLeftLength > 0) {
    memcpy(theText, aLeft, aLeftLength);
  }
  if (aRightLength > 0) {
    memcpy(theText + aLeftLength, aRight, aRightLength);
  }
  theText[aLeftLength + aRightLength] = '\0';
  return qvCString::FromAllocatedString(theText);
}

qvCString operator+(const qvCString& aLeft, const qvCString& aRight) {
  return qvCString_S_Join(aLeft.c_str(), aLeft.length(), aRight.c_str(), aRight.length());
}

qvCString operator+(const qvCString& aLeft, char aRight) {
  return qvCString_S_Join(aLeft.c_str(), aLeft.length(), &aRight, 1);
}

qvCString operator+(char aLeft, const qvCString& aRight) {
  return qvCString_S_Join(&aLeft, 1, aRight.c_str(), aRight.length());
}

qvCString operator+(const qvCString& aLeft, const char* aRight) {
  return qvCString_S_Join(aLeft.c_str(), aLeft.length(), aRight, aRight != NULL ? strlen(aRight) : 0);
}

qvCString operator+(const char* aLeft, const qvCString& aRight) {
  return qvCString_S_Join(aLeft, aLeft != NULL ? strlen(aLeft) : 0, aRight.c_str(), aRight.length());
}
