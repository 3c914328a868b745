#include "qv/CString.h"

#include <stdlib.h>

#include <algorithm>
#include <charconv>

#include "qvraTools/qvMalloc.h"

#define kqvCString_NumberSize 24 /* bytes; sign and digits of a 64-bit number */

// The shared empty text. It is constant: a write to it would reach every empty string of the process.
static const struct {
  qvCStringData mData;
  char mTerminator;
} sEmptyText = {{-1, 0, 0}, '\0'};

static_assert(sizeof(qvCStringData) == 12, "three 32-bit words");
static_assert(offsetof(decltype(sEmptyText), mTerminator) == sizeof(qvCStringData),
              "right behind its header");

const char* qvEmptyCString = &sEmptyText.mTerminator;

const size_t qvCString::npos;

void qvCStringData::Free() {
  if (mAllocatedLength == kqvCStringData_AllocatedText) {
    free(StringPtr());
  }
  free(this);
}

// The capacity of a block for a text of aLength characters.
static uint32 qvCString_S_Capacity(size_t aLength) {
  qvAssert(aLength < (kqvuint32_max / sizeof(char)) - (sizeof(qvCStringData) + qvxString_Extra(aLength) + 1));
  return static_cast<uint32>(aLength + qvxString_Extra(aLength));
}

static size_t qvCString_S_BlockSize(uint32 aCapacity) { return sizeof(qvCStringData) + aCapacity + 1; }

qvCString::qvCString(const char* aStr) : qvCString(aStr, LengthOf(aStr)) {}

qvCString::qvCString(const char* aStr, size_t aLength) {
  if (aStr == NULL || aLength == 0) {
    SetToEmptyText();
    return;
  }
  AllocBuffer(aLength);
  memcpy(mStringPtr, aStr, aLength);
}

qvCString::qvCString(const char* aStr, size_t aPos, size_t aLength) : qvCString() {
  if (aLength == npos) {
    qvAssert(aStr != NULL);
    qvAssert(aPos <= strlen(aStr));
    aLength = strlen(aStr) - aPos;
  }
  if (aStr != NULL) {
    AssignCopy(aLength, aStr + aPos);
  }
}

qvCString::qvCString(char aChar) : qvCString(&aChar, 1) {}

qvCString::qvCString(int aValue) : qvCString(static_cast<long>(aValue)) {}

qvCString::qvCString(long aValue) : qvCString() {
  char theDigits[kqvCString_NumberSize];
  const char* theEnd = std::to_chars(theDigits, theDigits + sizeof(theDigits), aValue).ptr;
  AssignCopy(static_cast<size_t>(theEnd - theDigits), theDigits);
}

qvCString::qvCString(const qvCharBuffer& aBuffer) : qvCString(aBuffer.c_str()) {}

// A string shares its text with itself. NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
qvCString& qvCString::operator=(const qvCString& aCString) {
  qvAssert(aCString.mCStringData->IsValid());
  if (mCStringData != aCString.mCStringData) {
    mCStringData->Unlock();
    Share(aCString);
  }
  return *this;
}

qvCString& qvCString::operator=(const char* aStr) {
  AssignCopy(LengthOf(aStr), aStr);
  return *this;
}

qvCString& qvCString::operator=(char aChar) {
  // KEEP qvCStringKept.AssigningTheNulCharacterGivesLengthOne
  // A character is always one byte of text, '\0' too; it does not empty the string.
  AssignCopy(1, &aChar);
  return *this;
}

qvCString qvCString::FromStaticString(const char* aStr) {
  qvCString theString;
  theString.Wrap(aStr, kqvCStringData_StaticText);
  return theString;
}

qvCString qvCString::FromAllocatedString(const char* aStr) {
  qvCString theString;
  theString.Wrap(aStr, kqvCStringData_AllocatedText);
  return theString;
}

// For a string that is the shared empty text: nothing has to be released.
void qvCString::Wrap(const char* aStr, uint32 aSentinel) {
  const size_t theLength = LengthOf(aStr);
  char* theCharacters = const_cast<char*>(aStr);
  if (theLength == 0) {
    if (aSentinel == kqvCStringData_AllocatedText) {
      free(theCharacters);
    }
    return;
  }
  qvAssert(theLength <= kqvCStringData_MaxAllocatedLength);
  mCStringData = static_cast<qvCStringData*>(qvMalloc(sizeof(qvCStringData) + sizeof(theCharacters)));
  mCStringData->mRefCount = 2;
  mCStringData->mStringLength = static_cast<uint32>(theLength);
  mCStringData->mAllocatedLength = aSentinel;
  memcpy(mCStringData + 1, &theCharacters, sizeof(theCharacters));
  mStringPtr = theCharacters;
}

bool qvCString::SetCharAt(char aChar, int anIndex) {
  if (static_cast<unsigned int>(anIndex) >= length()) {
    return false;
  }
  if (mCStringData->mAllocatedLength == kqvCStringData_StaticText) {
    CopyBeforeWrite();
  }
  // KEEP qvCStringKept.SetCharAtIsSeenByEveryCopy, qvCStringKept.SetCharAtIsSeenByEveryCopyOfAnAllocatedText
  // No copy before this write: strings that share the text see the character change.
  mStringPtr[anIndex] = aChar;
  return true;
}

char* qvCString::GetWriteBuf(size_t aLength) {
  AllocBeforeWrite(aLength);
  qvAssert(mCStringData->mRefCount == 1);
  mCStringData->Validate(false);
  // Whatever the caller writes into the room, UngetWriteBuf finds an end.
  mStringPtr[aLength] = '\0';
  return mStringPtr;
}

void qvCString::UngetWriteBuf() { UngetWriteBuf(strlen(mStringPtr)); }

void qvCString::UngetWriteBuf(size_t aLength) {
  // A shared text has no write buffer; taking one back would forget its other owners.
  qvAssert(mCStringData->mRefCount == 0 || mCStringData->mRefCount == 1);
  qvAssert(aLength <= mCStringData->mAllocatedLength);
  mStringPtr[aLength] = '\0';
  mCStringData->mStringLength = static_cast<uint32>(aLength);
  mCStringData->Validate(true);
}

void qvCString::Alloc(size_t aLength) {
  // A special text comes out here as well, its sentinel being larger than any length: it has no room to
  // grow, and the first write copies it anyway.
  if (mCStringData->mAllocatedLength > aLength) {
    return;
  }
  if (mCStringData->IsEmpty()) {
    AllocBuffer(aLength);
    mStringPtr[0] = '\0';
    mCStringData->mStringLength = 0;
  } else if (mCStringData->IsShared()) {
    qvCString theOld;
    Swap(theOld);
    AllocBuffer(aLength);
    memcpy(mStringPtr, theOld.mStringPtr, theOld.length() + 1);
    mCStringData->mStringLength = theOld.mCStringData->mStringLength;
  } else {
    GrowBlock(aLength);
  }
}

void qvCString::AllocBuffer(size_t aLength) {
  qvAssert(aLength > 0);
  const uint32 theCapacity = qvCString_S_Capacity(aLength);
  mCStringData = static_cast<qvCStringData*>(qvMalloc(qvCString_S_BlockSize(theCapacity)));
  mCStringData->mRefCount = 1;
  mCStringData->mStringLength = static_cast<uint32>(aLength);
  mCStringData->mAllocatedLength = theCapacity;
  mStringPtr = mCStringData->StringPtr();
  mStringPtr[aLength] = '\0';
}

// Only for an ordinary text with one owner.
void qvCString::GrowBlock(size_t aLength) {
  const uint32 theCapacity = qvCString_S_Capacity(aLength);
  mCStringData = static_cast<qvCStringData*>(qvRealloc(mCStringData, qvCString_S_BlockSize(theCapacity)));
  mCStringData->mAllocatedLength = theCapacity;
  mStringPtr = mCStringData->StringPtr();
}

void qvCString::CopyBeforeWrite() {
  if (mCStringData->IsShared()) {
    qvCString theOld;
    Swap(theOld);
    AllocBuffer(theOld.length());
    memcpy(mStringPtr, theOld.mStringPtr, theOld.length());
  }
  qvAssert(!mCStringData->IsShared());
}

void qvCString::AllocBeforeWrite(size_t aLength) {
  qvAssert(aLength != 0);
  if (mCStringData->IsShared() || mCStringData->IsEmpty()) {
    mCStringData->Unlock();
    AllocBuffer(aLength);
    mStringPtr[0] = '\0';  // a fresh write buffer that nobody writes to reads as empty
  } else if (mCStringData->mAllocatedLength < aLength) {
    GrowBlock(aLength);
  }
  qvAssert(!mCStringData->IsShared());
  mCStringData->mStringLength = 0;
}

void qvCString::AssignCopy(size_t aLength, const char* aStr) {
  // aStr may lie in the old text: one of its own is overwritten in place, a shared one is held until the end.
  qvCString theOld;
  if (aLength == 0 || mCStringData->IsShared()) {
    Swap(theOld);
  }
  if (aLength > 0) {
    AllocBeforeWrite(aLength);
    memmove(mStringPtr, aStr, aLength);
    mStringPtr[aLength] = '\0';
    mCStringData->mStringLength = static_cast<uint32>(aLength);
  }
}

void qvCString::ConcatSelf(size_t aLength, const char* aStr, size_t aMaxLength) {
  const size_t theCount = std::min(aLength, aMaxLength);
  if (theCount == 0) {
    return;
  }
  const size_t theOldLength = length();
  const size_t theNewStringLength = JoinedLength(theOldLength, theCount);
  if (mCStringData->IsShared() || mCStringData->IsEmpty()) {
    qvCStringData* theOldData = mCStringData;  // held until the end because aStr may lie in it
    const char* theOldPtr = mStringPtr;
    AllocBuffer(theNewStringLength);
    memcpy(mStringPtr, theOldPtr, theOldLength);
    memcpy(mStringPtr + theOldLength, aStr, theCount);
    theOldData->Unlock();
    return;
  }
  if (mCStringData->mAllocatedLength < theNewStringLength) {
    // A source inside the own block moves with it.
    const uintptr_t theOffset = reinterpret_cast<uintptr_t>(aStr) - reinterpret_cast<uintptr_t>(mStringPtr);
    GrowBlock(theNewStringLength);
    aStr = theOffset <= theOldLength ? mStringPtr + theOffset : aStr;
  }
  qvAssert(theNewStringLength <= mCStringData->mAllocatedLength);
  AppendInPlace(theCount, aStr);
}
