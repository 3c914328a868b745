// qvASCIIBlock_p.h - ASCII in blocks of 16 characters, which is what most text consists of.
//
// Blocks need no alignment. Each is read whole before anything is written, so that it may lie where the
// result goes.
#ifndef QVRATOOLS_QVASCIIBLOCK_P_H
#define QVRATOOLS_QVASCIIBLOCK_P_H

#include <string.h>

#include "qvOS/qvTypes.h"

#define kqvASCII_BlockSize 16 /* characters */

// A pattern of bytes repeated over a whole word.
#define kqvASCII_OfBytes(aByte) (~(size_t)0 / 0xFFu * (aByte))
#define kqvASCII_OfUnits(aUnit) (~(size_t)0 / 0xFFFFu * (aUnit))
#define kqvASCII_OfChars(aChar) ((size_t)(~(size_t)0 / 0xFFFFFFFFu * (aChar)))

// A word as it lies in memory.
inline size_t qvASCII_S_LoadWord(const void* aBytes, size_t aNumber) {
  size_t theWord;
  memcpy(&theWord, static_cast<const char*>(aBytes) + aNumber * sizeof(theWord), sizeof(theWord));
  return theWord;
}

// Whether no bit of aMask is set in any word of the bytes.
template <size_t kSize>
inline bool qvASCII_S_AreClear(const void* aBytes, size_t aMask) {
  size_t theBits = 0;
#pragma GCC unroll 16
  for (size_t i = 0; i < kSize / sizeof(size_t); ++i) {
    theBits |= qvASCII_S_LoadWord(aBytes, i);
  }
  return (theBits & aMask) == 0;
}

inline bool qvASCII_S_IsBlock(const uint8* aBytes) {
  return qvASCII_S_AreClear<kqvASCII_BlockSize>(aBytes, kqvASCII_OfBytes(0x80u));
}

// How many bytes at the start of a text are blocks of ASCII; four of them are looked at together.
inline size_t qvASCII_S_BlocksLength(const uint8* aBytes, size_t aLength) {
  const size_t kFour = 4 * kqvASCII_BlockSize;
  size_t theLength = 0;
  while (aLength - theLength >= kFour &&
         qvASCII_S_AreClear<kFour>(aBytes + theLength, kqvASCII_OfBytes(0x80u))) {
    theLength += kFour;
  }
  while (aLength - theLength >= kqvASCII_BlockSize && qvASCII_S_IsBlock(aBytes + theLength)) {
    theLength += kqvASCII_BlockSize;
  }
  return theLength;
}

#endif
