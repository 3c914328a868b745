#include "qv/GrowingBuffer.h"

#include <stdlib.h>
#include <string.h>

#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvAssert.h"
#include "qvraTools/qvMalloc.h"

#define kqvGrowingBuffer_NumberSize 24 /* bytes; the digits of the largest 64-bit number and a terminator */

size_t qvGrowingBuffer_NewBufferSize(size_t aUsedSize, size_t aNeededSize) {
  size_t theStep = 0x20000;
  if (aUsedSize <= 1023) {
    theStep = 128;
  } else if (aUsedSize <= 8191) {
    theStep = 1024;
  } else if (aUsedSize <= 0x1FFFF) {
    theStep = 8192;
  } else if (aUsedSize <= 0x7FFFF) {
    theStep = 32768;
  }
  return aUsedSize + theStep * (aNeededSize / theStep + 1);
}

qvGrowingBuffer::qvGrowingBuffer(size_t aInitialSize)
    : mPtr(aInitialSize > 0 ? static_cast<char*>(qvMalloc(aInitialSize)) : NULL),
      mSize(aInitialSize),
      mPos(0),
      mNewBufferSizeFunc(qvGrowingBuffer_NewBufferSize) {}

qvGrowingBuffer::~qvGrowingBuffer() { free(mPtr); }

void qvGrowingBuffer::SetNewBufferSizeFunc(qvGrowingBuffer_NewBufferSizeFunc aNewBufferSizeFunc) {
  qvAssert(aNewBufferSizeFunc != NULL);
  mNewBufferSizeFunc = aNewBufferSizeFunc;
}

void qvGrowingBuffer::Append(const char* aPtr, size_t aLength) {
  qvAssert(aPtr != NULL);
  if (mPos > mSize || aLength > mSize - mPos) {
    // A source inside the block moves with it.
    const uintptr_t theOffset = reinterpret_cast<uintptr_t>(aPtr) - reinterpret_cast<uintptr_t>(mPtr);
    const bool thefInside = theOffset < mSize;
    Realloc(mNewBufferSizeFunc(mPos, aLength));
    // The rule may be a caller's, and a sum that wrapped is no room either.
    qvAssert(mPos <= mSize && aLength <= mSize - mPos);
    aPtr = thefInside ? mPtr + theOffset : aPtr;
  }
  if (aLength > 0) {  // without a byte there may be no block
    memmove(mPtr + mPos, aPtr, aLength);
    mPos += aLength;
  }
}

qvGrowingBuffer& qvGrowingBuffer::operator+=(const char* aStr) {
  qvAssert(aStr != NULL);
  Append(aStr, strlen(aStr));
  return *this;
}

qvGrowingBuffer& qvGrowingBuffer::operator+=(unsigned long aValue) {
  char theDigits[kqvGrowingBuffer_NumberSize];
  qv_snprintf(theDigits, sizeof(theDigits), "%lu", aValue);
  return *this += theDigits;
}

void qvGrowingBuffer::SetPosition(size_t aPosition) {
  if (aPosition > mSize) {
    Realloc(aPosition);
  }
  mPos = aPosition;
}

void qvGrowingBuffer::Reduce(size_t aSize) {
  Realloc(aSize);
  mPos = aSize;
}

void qvGrowingBuffer::Realloc(size_t aSize) {
  mPtr = static_cast<char*>(qvRealloc(mPtr, aSize));
  mSize = aSize;
}

char* qvGrowingBuffer::TakeOwnership(bool afShrink, size_t* aLength) {
  if (afShrink) {
    Realloc(mPos);
  }
  if (aLength != NULL) {
    *aLength = mPos;
  }
  char* thePtr = mPtr;
  mPtr = NULL;
  mSize = 0;
  mPos = 0;
  return thePtr;
}
