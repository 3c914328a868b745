// qvLongLong_p.h - what the signed and the unsigned type share with each other and with the clocks.
#ifndef QVRATOOLS_QVLONGLONG_P_H
#define QVRATOOLS_QVLONGLONG_P_H

#include "qvraTools/qvLongLong.h"

#define kqvLongLong_WordBits 32
#define kqvLongLong_Bits     64

// One word with its top n bits set is entry n - 1.
extern const uint32 kqvLongLong_TopBits[kqvLongLong_WordBits];

// 1000, for conversions between seconds and milliseconds.
extern const qvULongLong _1000ULL;

// Truncating division. Quotient and remainder must not be the operands themselves. Faults when *aDivisor is
// zero.
void qvULongLong_S_Divide(const qvULongLong* aULongLong, const qvULongLong* aDivisor, qvULongLong* aQuotient,
                          qvULongLong* aRemainder);

// The decimal digits of *aULongLong behind an optional '-', in a new text.
char* qvULongLong_S_NewDecimal(const qvULongLong* aULongLong, int afNegative);

#endif
