/* qvFormatWord_p.h - arithmetic on 64-bit words that a 32-bit processor has no instructions for. */
#ifndef QVRATOOLS_FORMAT_QVFORMATWORD_P_H
#define QVRATOOLS_FORMAT_QVFORMATWORD_P_H

#include "qvOS/qvTypes.h"

struct qvFormat128 {
  uint64 mHigh;
  uint64 mLow;
};

#ifdef __SIZEOF_INT128__

inline qvFormat128 qvFormat_Multiply(uint64 aLeft, uint64 aRight) {
  __extension__ typedef unsigned __int128 Product;
  Product theProduct = static_cast<Product>(aLeft) * aRight;
  return {static_cast<uint64>(theProduct >> 64), static_cast<uint64>(theProduct)};
}

#else

// From the products of the halves, which are what a 32-bit processor has.
inline qvFormat128 qvFormat_Multiply(uint64 aLeft, uint64 aRight) {
  uint64 theLeftLow = static_cast<uint32>(aLeft);
  uint64 theLeftHigh = aLeft >> 32;
  uint64 theRightLow = static_cast<uint32>(aRight);
  uint64 theRightHigh = aRight >> 32;
  uint64 theLow = theLeftLow * theRightLow;
  uint64 theCross = theLeftLow * theRightHigh;
  uint64 theMiddle = (theLow >> 32) + static_cast<uint32>(theCross) + theLeftHigh * theRightLow;
  return {theLeftHigh * theRightHigh + (theCross >> 32) + (theMiddle >> 32),
          theMiddle << 32 | static_cast<uint32>(theLow)};
}

#endif

#define kqvFormat_Billion 1000000000U /* 2^9 * 5^9 */

// Divides by a billion and gives the rest, below it. By a multiplication, since a 64-bit division is a slow
// call on a 32-bit processor: the factor is 2^75 / 5^9, rounded up, which is exact enough for the 55 bits
// that are left without those of 2^9.
inline uint64 qvFormat_DivideByBillion(uint64 aValue, uint32* aRest) {
  uint64 theQuotient = qvFormat_Multiply(aValue >> 9, 0x44B82FA09B5A53).mHigh >> 11;
  *aRest = static_cast<uint32>(aValue) - static_cast<uint32>(theQuotient) * kqvFormat_Billion;
  return theQuotient;
}

#endif
