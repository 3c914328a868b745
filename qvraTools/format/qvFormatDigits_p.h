/* qvFormatDigits_p.h - exact decimal digits of floating-point numbers.
 *
 * Rounded to nearest, a tie to the even digit, whatever the processor's rounding mode is. Nothing is
 * allocated and nothing is asked of the language's own conversions, which are larger than the rest of the
 * engine. */
#ifndef QVRATOOLS_FORMAT_QVFORMATDIGITS_P_H
#define QVRATOOLS_FORMAT_QVFORMATDIGITS_P_H

#include <float.h>

#include "qvOS/qvTypes.h"

// A finite number that is not negative: mMantissa * 2^mExponent.
struct qvFormatBinary {
  uint64 mMantissa;
  int mExponent;
};

// The number 0.ddd * 10^mPointAt: mPointAt digits stand in front of the point, or that many zeros behind it
// before the first digit when it is negative.
struct qvFormatDigits {
  char* mStart;
  int mCount;
  int mPointAt;
};

// What the longest number of each width needs: words of nine digits while it is computed, and its digits,
// with one in front for rounding up.
//   double              2^53 * 5^1074 has 767 digits
//   long double         2^64 * 5^16445 has 11515 digits
#define kqvFormatDouble_MaxWords 86
#if LDBL_MANT_DIG == 64
#define kqvFormatLongDouble_MaxWords 1280
#elif LDBL_MANT_DIG == DBL_MANT_DIG
#define kqvFormatLongDouble_MaxWords kqvFormatDouble_MaxWords
#else
#error "long double is neither a double nor of 80 bits"
#endif

// Where digits are made: on the stack of whoever needs them.
template <int kMaxWords>
struct qvFormatDigitsRoom {
  uint32 mWords[kMaxWords];
  char mDigits[1 + kMaxWords * 9];
};

// The same for any width.
struct qvFormatDigitsPlace {
  template <int kMaxWords>
  explicit qvFormatDigitsPlace(qvFormatDigitsRoom<kMaxWords>* aRoom)
      : mWords(aRoom->mWords), mEnd(aRoom->mDigits + sizeof aRoom->mDigits) {}

  uint32* mWords;
  char* mEnd;
};

// The first aCount digits, at least 1. Fewer when all others are zeros; the first one of 0 is "0".
qvFormatDigits qvFormatDigits_Leading(const qvFormatBinary& aNumber, int aCount,
                                      const qvFormatDigitsPlace& aPlace);

// All digits up to aPlaces behind the point. Fewer when all others are zeros, and none when there is nothing
// but zeros.
qvFormatDigits qvFormatDigits_Fixed(const qvFormatBinary& aNumber, int aPlaces,
                                    const qvFormatDigitsPlace& aPlace);

// All digits of a number greater than 0, exactly; for the two above.
qvFormatDigits qvFormatDigits_Expand(const qvFormatBinary& aNumber, const qvFormatDigitsPlace& aPlace);

#endif
