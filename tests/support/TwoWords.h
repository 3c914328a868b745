// TwoWords.h - qvLongLong and qvULongLong from native 64-bit integers and back, and numbers to try them with.
#ifndef TESTS_SUPPORT_TWOWORDS_H
#define TESTS_SUPPORT_TWOWORDS_H

#include <string.h>

#include <vector>

#include "qvraTools/qvLongLong.h"

inline qvULongLong ULongLong(uint64 aValue) {
  qvULongLong theResult;
  theResult.mLow = static_cast<uint32>(aValue);
  theResult.mHigh = static_cast<uint32>(aValue >> 32);
  return theResult;
}

inline uint64 Native(const qvULongLong& aValue) {
  return (static_cast<uint64>(aValue.mHigh) << 32) | aValue.mLow;
}

// Signed values through their bits, so that nothing overflows on the way.
inline qvLongLong LongLong(int64 aValue) {
  const qvULongLong theBits = ULongLong(static_cast<uint64>(aValue));
  qvLongLong theResult;
  memcpy(&theResult, &theBits, sizeof(theResult));
  return theResult;
}

inline int64 Native(const qvLongLong& aValue) {
  qvULongLong theBits;
  memcpy(&theBits, &aValue, sizeof(theBits));
  const uint64 theNative = Native(theBits);
  int64 theResult;
  memcpy(&theResult, &theNative, sizeof(theResult));
  return theResult;
}

// Values around the ends of words and bytes, then pseudo-random ones of every length; the same in each run.
inline std::vector<uint64> TryValues() {
  std::vector<uint64> theValues = {0, 1, 2, 3, 9, 10, 255, 256, 1000};
  for (int theBit = 31; theBit < 64; ++theBit) {
    const uint64 thePower = static_cast<uint64>(1) << theBit;
    theValues.insert(theValues.end(), {thePower - 1, thePower, thePower + 1, ~thePower, 0 - thePower});
  }
  uint64 theState = 88172645463325252u;
  for (int theCount = 0; theCount < 128; ++theCount) {
    theState ^= theState << 13;
    theState ^= theState >> 7;
    theState ^= theState << 17;
    theValues.push_back(theState >> (theCount % 64));
  }
  return theValues;
}

#endif
