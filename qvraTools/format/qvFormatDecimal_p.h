/* qvFormatDecimal_p.h - the decimal digits of integers, two at a time, in either width. */
#ifndef QVRATOOLS_FORMAT_QVFORMATDECIMAL_P_H
#define QVRATOOLS_FORMAT_QVFORMATDECIMAL_P_H

#include <string.h>
#include <wchar.h>

#include "qvOS/qvTypes.h"

// 00 to 99: two digits a division.
extern const char kqvFormat_Pairs[];

inline uint32 qvFormatDecimal_Length(uint32 aValue) {
  static const uint32 kPowers[] = {0, 10, 100, 1000, 10000, 100000, 1000000, 10000000, 100000000, 1000000000};
  // 1233 / 4096 is a little more than the decimal logarithm of 2.
  uint32 theGuess = static_cast<uint32>(32 - __builtin_clz(aValue | 1)) * 1233 >> 12;
  return theGuess + (aValue >= kPowers[theGuess]);
}

inline void qvFormatDecimal_WritePair(wchar_t* aPlace, uint32 aValue) {
  aPlace[0] = kqvFormat_Pairs[aValue * 2];
  aPlace[1] = kqvFormat_Pairs[aValue * 2 + 1];
}

inline void qvFormatDecimal_WritePair(char* aPlace, uint32 aValue) {
  memcpy(aPlace, kqvFormat_Pairs + static_cast<size_t>(aValue) * 2, 2);
}

// Writes all digits, at least one, so that they end at anEnd; returns the first.
template <typename Char>
inline Char* qvFormatDecimal_Write(Char* anEnd, uint32 aValue) {
  for (; aValue >= 100; aValue /= 100) {
    anEnd -= 2;
    qvFormatDecimal_WritePair(anEnd, aValue % 100);
  }
  if (aValue >= 10) {
    anEnd -= 2;
    qvFormatDecimal_WritePair(anEnd, aValue);
  } else {
    *--anEnd = static_cast<Char>('0' + aValue);
  }
  return anEnd;
}

// Writes the nine digits of a value below a billion, with the zeros in front; returns the first.
template <typename Char>
inline Char* qvFormatDecimal_WriteNine(Char* anEnd, uint32 aValue) {
  for (int thePair = 0; thePair < 4; ++thePair, aValue /= 100) {
    anEnd -= 2;
    qvFormatDecimal_WritePair(anEnd, aValue % 100);
  }
  *--anEnd = static_cast<Char>('0' + aValue);
  return anEnd;
}

#endif
