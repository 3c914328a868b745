/* qvConvert.h - numbers from text, and character classes.
 *
 * Nothing here consults the locale: white space, digits and letters are ranges of ASCII codes. Nothing is
 * printed or logged. Any thread may call any function.
 *
 * The parsers
 * -----------
 * take a terminated text, or (those named "strn") a text and its length in bytes, and write the number to a
 * destination that must not be null. The destination is always written: with the number, with the nearest
 * value of its range when the number does not fit, or with 0 when there is no number. They return one of
 * these codes; a null text is kqvConvertError_Invalid.
 *
 *   kqvConvertError_None       the whole text is the number
 *   any n above 0              a number was read and stored; other text begins n bytes after the start.
 *                              White space behind a number is other text: "12 " gives 2.
 *   kqvConvertError_RangeHigh  above the range of the destination
 *   kqvConvertError_RangeLow   below the range of the destination
 *   kqvConvertError_Invalid    no number could be read, or the base is not one
 *
 * White space before the number is skipped, and so is one '+'. Signed numbers may have a '-' that stands
 * directly before the first digit; unsigned numbers have none.
 *
 * A base is 2 to 36, with the letters of either case as digits above 9, or 0: then a number that begins with
 * "0x" is hexadecimal, any other that begins with '0' octal, and the rest decimal. Base 16 skips a "0x" too.
 * "0x" is such a prefix only when a hexadecimal digit follows it. */
#ifndef QVRATOOLS_QVCONVERT_H
#define QVRATOOLS_QVCONVERT_H

#include "qvOS/qvTypes.h"
#include "qvraTools/qvLongLong.h"

#define kqvConvertError_None      0
#define kqvConvertError_RangeHigh (-1)
#define kqvConvertError_RangeLow  (-2)
#define kqvConvertError_Invalid   (-3)

QV_BEGIN_DECLS

/* ---- Signed numbers ----
 *
 * The largest negative number before the minimum reads as the minimum, without an error: "-2147483647" gives
 * -2147483648 as int32, and the 64-bit forms do the same at their end of the range. A number that does not
 * even fit 64 bits is kqvConvertError_RangeHigh with either sign; the value stored is the bound of its sign.
 */
QVLOG_API int qvConvert_strtoint8(const char* aStr, int8* anInt8);
QVLOG_API int qvConvert_strtoint16(const char* aStr, int16* anInt16);
QVLOG_API int qvConvert_strtoint32(const char* aStr, int32* anInt32);
QVLOG_API int qvConvert_strtoint32_base(const char* aStr, int32* anInt32, int aBase);
QVLOG_API int qvConvert_strtoint64(const char* aStr, qvint64_t* anInt64);
QVLOG_API int qvConvert_strtoint64_base(const char* aStr, qvint64_t* anInt64, int aBase);

QVLOG_API int qvConvert_strntoint8(const char* aStr, size_t aStrLength, int8* anInt8);
QVLOG_API int qvConvert_strntoint16(const char* aStr, size_t aStrLength, int16* anInt16);
QVLOG_API int qvConvert_strntoint32(const char* aStr, size_t aStrLength, int32* anInt32);

/* ---- Unsigned numbers ---- */
QVLOG_API int qvConvert_strtouint8(const char* aStr, uint8* anUInt8);
QVLOG_API int qvConvert_strtouint16(const char* aStr, uint16* anUInt16);
QVLOG_API int qvConvert_strtouint32(const char* aStr, uint32* anUInt32);
QVLOG_API int qvConvert_strtouint32_base(const char* aStr, uint32* anUInt32, int aBase);
QVLOG_API int qvConvert_strtouint64(const char* aStr, qvuint64_t* anUInt64);
QVLOG_API int qvConvert_strtouint64_base(const char* aStr, qvuint64_t* anUInt64, int aBase);

QVLOG_API int qvConvert_strntouint8(const char* aStr, size_t aStrLength, uint8* anUInt8);
QVLOG_API int qvConvert_strntouint16(const char* aStr, size_t aStrLength, uint16* anUInt16);
QVLOG_API int qvConvert_strntouint32(const char* aStr, size_t aStrLength, uint32* anUInt32);
QVLOG_API int qvConvert_strntouint64(const char* aStr, size_t aStrLength, qvuint64_t* anUInt64);

/* Hexadecimal, with or without "0x". */
QVLOG_API int qvConvert_hexstrtouint32(const char* aStr, uint32* anUInt32);
QVLOG_API int qvConvert_hexstrntouint32(const char* aStr, size_t aStrLength, uint32* anUInt32);

/* ---- Decimal numbers as two words ----
 *
 * These stop at the digit that leaves the range. A number below the signed range is
 * kqvConvertError_RangeLow, and every value of the range reads as itself. One sign is skipped whatever
 * follows it; without a digit behind it there is no number. */
QVLOG_API int qvConvert_strtoLongLong(const char* aStr, qvLongLong* aLongLong);
QVLOG_API int qvConvert_strtoULongLong(const char* aStr, qvULongLong* aULongLong);
QVLOG_API int qvConvert_strntoULongLong(const char* aStr, size_t aStrLength, qvULongLong* aULongLong);

/* ---- Pointers ----
 *
 * An address below 2^32, on every platform: hexadecimal behind "0x", otherwise decimal. "0x" alone is null
 * without an error. The position of other text counts from the first digit that was read: white space, sign
 * and "0x" are not in it. */
QVLOG_API int qvConvert_strtoptr(const char* aStr, void** aPtr);

/* ---- Floating point ----
 *
 * Decimal digits with an optional '.' and an optional exponent; "1.", ".5" and "1e" are numbers. No words
 * ("inf", "nan"), no hexadecimal. Each step is rounded, so that the last bits of the result can differ from
 * those of the C library's strtod. */

/* Gives 0.0 and kqvConvertError_Invalid for a number out of range too, never a range error. */
QVLOG_API int qvConvert_strtod(const char* aStr, double* aDouble);

/* Returns the number; 0.0 on failure. *aEndPtr becomes the first character not read, or aStr on failure;
 * *anError is written on failure only, with a range error where there is one. Either may be null. A negative
 * number too large for a double is minus infinity, which is no failure. */
QVLOG_API double qvConvert_strtod_ex(const char* aStr, const char** aEndPtr, int* anError);

/* ---- Character classes: 1 or 0 ---- */
QVLOG_API int qvConvert_isalpha(int aChar);     /* 'A' to 'Z', 'a' to 'z' */
QVLOG_API int qvConvert_isalnum(int aChar);     /* a letter or a digit */
QVLOG_API int qvConvert_isnum(int aChar);       /* '0' to '9' */
QVLOG_API int qvConvert_isxdigit(int aChar);    /* '0' to '9', 'A' to 'F', 'a' to 'f' */
QVLOG_API int qvConvert_isspace(int aChar);     /* blank, and the codes 9 to 13 */
QVLOG_API int qvConvert_isprintable(int aChar); /* all but 0 to 31 and 127; negative ones are printable */

/* ---- Classes of the first aLength characters: 1 or 0 ----
 *
 * Exactly aLength characters are tested, zeros among them. No character at all gives 1. */
QVLOG_API int qvConvert_isalphastr(const char* aStr, uint32 aLength);
QVLOG_API int qvConvert_isnumstr(const char* aStr, uint32 aLength);

/* 1 when each of them occurs in the terminated aCharList; a zero never does. */
QVLOG_API int qvConvert_containsonly(const char* aStr, uint32 aLength, const char* aCharList);

QV_END_DECLS

#endif
