/* qvLongLong.h - 64-bit integers kept as two 32-bit words.
 *
 * qvLongLong is signed (two's complement), qvULongLong unsigned. The value is mHigh * 2^32 + mLow. Every
 * operation changes its first argument in place; the second may be the same object. No argument but a text
 * may be null. An int result is 1 when the operation overflowed and 0 otherwise; the wrapped value is stored
 * then. Nothing is trapped, with one exception: dividing by zero raises the fault that dividing native
 * integers by zero raises on the platform.
 *
 * An object has no lock: it belongs to one thread at a time. */
#ifndef QVRATOOLS_QVLONGLONG_H
#define QVRATOOLS_QVLONGLONG_H

#include "qvOS/qvTypes.h"

/* A signed number. */
typedef struct qvLongLong_t {
  uint32 mLow; /* bits 0 to 31     */
  int32 mHigh; /* carries the sign */
} qvLongLong;

/* An unsigned number. */
typedef struct qvULongLong_t {
  uint32 mLow;  /* bits 0 to 31  */
  uint32 mHigh; /* bits 32 to 63 */
} qvULongLong;

/* Initialisers, high word first: qvLongLong theValue = qvLongLong_Init(-1, 0xFFFFFFFE);  is -2 */
#define qvLongLong_Init(h, l) \
  { (l), (h) }
#define qvLongLong_Init_0 \
  { 0, 0 }
#define qvULongLong_Init(h, l) \
  { (l), (h) }
#define qvULongLong_Init_0 \
  { 0, 0 }

/* Whether bit 31 of the high word of *x is set. */
#define qvLongLong_IsMSBSet(x)  ((((uint32)(x)->mHigh) & 0x80000000u) != 0)
#define qvULongLong_IsMSBSet(x) (((x)->mHigh & 0x80000000u) != 0)

QV_BEGIN_DECLS

/* Constants; the macros give their addresses. */
extern QVLOG_API const qvLongLong _qvLongLong_0_impl;
extern QVLOG_API const qvLongLong _qvLongLong_Max_impl; /*  2^63 - 1 */
extern QVLOG_API const qvLongLong _qvLongLong_Min_impl; /* -2^63     */
extern QVLOG_API const qvULongLong _qvULongLong_0_impl;
extern QVLOG_API const qvULongLong _qvULongLong_Max_impl; /* 2^64 - 1 */
#define qvLongLong_0    (&_qvLongLong_0_impl)
#define qvLongLong_Max  (&_qvLongLong_Max_impl)
#define qvLongLong_Min  (&_qvLongLong_Min_impl)
#define qvULongLong_0   (&_qvULongLong_0_impl)
#define qvULongLong_Max (&_qvULongLong_Max_impl)

/* ---- Signed ---- */

/* Stores a number, given in two words or in one. */
QVLOG_API void qvLongLong_Set(qvLongLong* aLongLong, int32 aHigh, uint32 aLow);
QVLOG_API void qvLongLong_SetInt32(qvLongLong* aLongLong, int32 anInt32);

/* Cuts the fraction off. A value out of range becomes the nearest one in range, a NaN becomes 0. */
QVLOG_API void qvLongLong_SetDouble(qvLongLong* aLongLong, double aDouble);

/* The nearest double. A negative *aLongLong is left negated: afterwards it holds its own magnitude. The
 * minimum stays as it is and gives +2^63. */
QVLOG_API double qvLongLong_GetDouble(qvLongLong* aLongLong);

/* Overflow is predicted from the high words before a carry is added, so that the sum -2^63 of two negative
 * numbers is reported as an overflow when its low words carried. */
QVLOG_API int qvLongLong_Add(qvLongLong* aLongLong, const qvLongLong* aLongLongToAdd);
QVLOG_API int qvLongLong_AddInt32(qvLongLong* aLongLong, int32 anInt32);
QVLOG_API int qvLongLong_AddUInt32(qvLongLong* aLongLong, uint32 anUInt32);

/* The difference is right (modulo 2^64), the overflow is not: it is predicted for operands of the same sign
 * only, as for an addition, and a real overflow between operands of opposite signs passes unreported, unless
 * the borrow alone causes it. */
QVLOG_API int qvLongLong_Sub(qvLongLong* aLongLong, const qvLongLong* aLongLongToSub);
QVLOG_API int qvLongLong_SubInt32(qvLongLong* aLongLong, int32 anInt32);
QVLOG_API int qvLongLong_SubUInt32(qvLongLong* aLongLong, uint32 anUInt32);

/* The product is right (modulo 2^64), the overflow is not: it is that of the additions which make up the
 * product. Bits that leave the multiplicand are not reported, so 2^62 times 2 gives 0; a negative multiplier
 * has bits up to the top, so most products with one give 1. */
QVLOG_API int qvLongLong_Mult(qvLongLong* aLongLong, const qvLongLong* aMultiplier);

/* Truncating division: -7 / 2 is -3, remainder -1; 7 / -2 is -3, remainder 1. Div keeps the quotient, Mod the
 * remainder; both report the overflow of the quotient, which is that of the minimum divided by -1. Dividing a
 * negative number by -2^32 gives its magnitude and no remainder, and so does dividing a positive one. */
QVLOG_API int qvLongLong_Div(qvLongLong* aLongLong, const qvLongLong* aDivisor);
QVLOG_API int qvLongLong_Mod(qvLongLong* aLongLong, const qvLongLong* aDivisor);
QVLOG_API int qvLongLong_ModUInt32(qvLongLong* aLongLong, uint32 aDivisor);

/* Below 32 bits: 1 when one of the bits shifted out was set, the sign among them. From 32 on the high word is
 * dropped without a report, and the bit that lands in bit 63 counts as lost. Any number of bits is allowed.
 */
QVLOG_API int qvLongLong_ShiftLeft(qvLongLong* aLongLong, uint32 aNumberOfBits);
/* Arithmetic shift: the sign stays. Any number of bits is allowed. */
QVLOG_API void qvLongLong_ShiftRight(qvLongLong* aLongLong, uint32 aNumberOfBits);

/* The minimum overflows and stays what it is, in both. */
QVLOG_API int qvLongLong_Negate(qvLongLong* aLongLong);
QVLOG_API int qvLongLong_Abs(qvLongLong* aLongLong);

/* 1 or 0 */
QVLOG_API int qvLongLong_Less(const qvLongLong* aX, const qvLongLong* aY);
QVLOG_API int qvLongLong_Equal(const qvLongLong* aX, const qvLongLong* aY);

/* A new decimal text; the caller frees it with qvFree. */
QVLOG_API char* qvLongLong_ToString(const qvLongLong* aLongLong);

/* Reads a text that is wholly a decimal number: 1 on success, otherwise 0 and the value is 0. */
QVLOG_API int qvLongLong_SetFromString(qvLongLong* aLongLong, const char* aStr);

/* ---- Unsigned ---- */

/* Stores a number, given in two words. */
QVLOG_API void qvULongLong_Set(qvULongLong* aULongLong, uint32 aHigh, uint32 aLow);
/* The 64 bits of a file offset. */
QVLOG_API void qvULongLong_SetFileOffset(qvULongLong* aULongLong, int64 anOffset);

/* The sum modulo 2^64; 1 when it was cut, else 0. */
QVLOG_API int qvULongLong_Add(qvULongLong* aULongLong, const qvULongLong* aULongLongToAdd);
QVLOG_API int qvULongLong_AddUInt32(qvULongLong* aULongLong, uint32 anUInt32);

/* Wraps modulo 2^64. */
QVLOG_API void qvULongLong_Sub(qvULongLong* aULongLong, const qvULongLong* aULongLongToSub);
QVLOG_API void qvULongLong_SubUInt32(qvULongLong* aULongLong, uint32 anUInt32);

/* The product modulo 2^64; 1 when it was cut, else 0. */
QVLOG_API int qvULongLong_Mult(qvULongLong* aULongLong, const qvULongLong* aMultiplier);

/* Div keeps the quotient, Mod the remainder. Neither can overflow: the result is always 0. */
QVLOG_API int qvULongLong_Div(qvULongLong* aULongLong, const qvULongLong* aDivisor);
QVLOG_API int qvULongLong_Mod(qvULongLong* aULongLong, const qvULongLong* aDivisor);
QVLOG_API int qvULongLong_ModUInt32(qvULongLong* aULongLong, uint32 aDivisor);

/* As for the signed type. */
QVLOG_API int qvULongLong_ShiftLeft(qvULongLong* aULongLong, uint32 aNumberOfBits);
/* Fills with zeros. Any number of bits is allowed. */
QVLOG_API void qvULongLong_ShiftRight(qvULongLong* aULongLong, uint32 aNumberOfBits);

/* 1 or 0 */
QVLOG_API int qvULongLong_Less(const qvULongLong* aX, const qvULongLong* aY);
QVLOG_API int qvULongLong_LessOrEqual(const qvULongLong* aX, const qvULongLong* aY);
QVLOG_API int qvULongLong_Equal(const qvULongLong* aX, const qvULongLong* aY);

/* A new decimal text; the caller frees it with qvFree. */
QVLOG_API char* qvULongLong_ToString(const qvULongLong* aULongLong);

/* Reads a text (or its first aLength bytes) that is wholly a decimal number: 1 on success, otherwise 0 and
 * the value is 0. */
QVLOG_API int qvULongLong_SetFromString(qvULongLong* aULongLong, const char* aStr);
QVLOG_API int qvULongLong_SetFromNString(qvULongLong* aULongLong, const char* aStr, size_t aLength);

QV_END_DECLS

#endif
