/* qvConvert.h - numbers from text, and character classes.
 *
 * Nothing here consults the locale: white space, digits and letters are ranges of ASCII codes. Nothing is
 * printed or logged. Any thread may call any function.
 *
 * The parsers
 * -----------
 * take a terminated text, or (those named "strn") a text and its length in bytes, in which a zero ends the
 * number too, and write the number to a destination that must not be null. The destination is always written:
 * with the number, with the nearest value of its range when the number does not fit, or with 0 when there is
 * no number. They return one of these codes; a null text is kqvConvertError_Invalid.
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

/* Results of the parsers; a positive one is the position of other text behind the number. */
#define kqvConvertError_None      0
#define kqvConvertError_RangeHigh (-1)
#define kqvConvertError_RangeLow  (-2)
#define kqvConvertError_Invalid   (-3)

QV_BEGIN_DECLS

/* ---- Signed numbers ----
 *
 * The largest negative number before the minimum reads as the minimum, without an error: "-2147483647" gives
 * -2147483648 as int32, and the 64-bit forms do the same at their end of the range. A number that does not
 * even fit 64 bits is kqvConvertError_RangeHigh with either sign; the value stored is the bound of its sign,
 * but as int8 and int16 the maximum, which goes with that code. */
QVLOG_API int qvConvert_strtoint8(const char* aStr, int8* anInt8);
QVLOG_API int qvConvert_strtoint16(const char* aStr, int16* anInt16);
QVLOG_API int qvConvert_strtoint32(const char* aStr, int32* anInt32);
QVLOG_API int qvConvert_strtoint32_base(const char* aStr, int32* anInt32, int aBase);
QVLOG_API int qvConvert_strtoint64(const char* aStr, qvint64_t* anInt64);
QVLOG_API int qvConvert_strtoint64_base(const char* aStr, qvint64_t* anInt64, int aBase);

QVLOG_API int qvConvert_strntoint8(const char* aStr, size_t aStrLength, int8* anInt8);
QVLOG_API int qvConvert_strntoint16(const char* aStr, size_t aStrLength, int16* anInt16);
QVLOG_API int qvConvert_strntoint32(const char* aStr, size_t aStrLength, int32* anInt32);

/* ---- Unsigned numbers, with no sign but one '+'; the results stand at the top of this header ---- */
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
 * without an error. The position of other text counts from behind the white space, one '+' and the "0x" that
 * were skipped. */
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

/* ---- Byte buffers as hexadecimal text ----
 *
 * aWordSize is 1, 2 or 4 bytes and the order one of kqvConvertBuffer_*, or an assertion fails. The order
 * decides how words of 2 and 4 bytes lie in the buffer; with single bytes it plays no part. */
#define kqvConvertBuffer_BigEndian    0
#define kqvConvertBuffer_LittleEndian 1
#define kqvConvertBuffer_NativeEndian 2 /* little-endian, as on the target */
#define kqvConvertBuffer_NetworkOrder kqvConvertBuffer_BigEndian

/* *aStr becomes a new text of two lower-case digits a byte, released with qvFree. A length that is no
 * multiple of the word size is kqvConvertError_Invalid and gives null. */
QVLOG_API int qvConvert_buffertohexstr(const uint8* aBuffer, size_t aBufferLength, size_t aWordSize,
                                       int aSourceEndianess, char** aStr);

/* *aBuffer becomes a new block of *aBufferLength bytes, released with qvFree. A leading "0x" is skipped. A
 * number of digits that is odd or no multiple of the word size, or a character that is no digit, is
 * kqvConvertError_Invalid; then, and for a null text (which is no error), the buffer is null and the length
 * 0. The bytes of a last word that the digits do not fill are zero. */
QVLOG_API int qvConvert_hexstrntobuffer(const char* aStr, size_t aStrLength, size_t aWordSize,
                                        int aDestEndianess, uint8** aBuffer, size_t* aBufferLength);

/* The bytes in the opposite order. */
QVLOG_API uint16 qvConvert_SwapUInt16(uint16 aValue);
QVLOG_API uint32 qvConvert_SwapUInt32(uint32 aValue);

/* ---- Dates, times and durations of media metadata (DLNA) and play positions (NPT, RFC 2326) ----
 *
 * Each returns 0 or kqvConvertError_Invalid, unless a function says otherwise. A null text is invalid. */

/* A date such as "2015-03-08T10:20:30.250+01:00", cut after any field but the first. aDate receives nine
 * values: year, month (1 to 12), day, hour, minute, second, millisecond, zone hour (with its sign), zone
 * minute; fields that are not there are 0. After a failure it holds the fields read so far. */
QVLOG_API int qvConvert_dlnadatestrtodate(const char* aStr, int32* aDate);

/* [[H:]M:]S[.milliseconds]: the milliseconds are the integer written, so ".5" is 5. Both outputs are 0 after
 * a failure. */
QVLOG_API int qvConvert_dlnatimestrtouint32(const char* aStr, uint32* aSecond, uint32* aMilliSecond);

/* [H]:MM:SS[.fraction]: a fraction without '/' is an integer of milliseconds, divided by 10 while it is above
 * 1000 (".5" is 5 ms, ".2500" is 250 ms); with '/' it is a part of a second (".1/2" is 500 ms). The flags:
 * the hours may not be empty; minutes and seconds need two digits; '/' is allowed. Both outputs are 0 after a
 * failure. */
QVLOG_API int qvConvert_dlnadurationstrtouint32_ex(const char* aStr, uint32* aSecond, uint32* aMilliSecond,
                                                   int afRequireHourDigit, int afRequire2DigitMinSec,
                                                   int afAcceptFractionForMilliseconds);

/* The form above with the flags 0, 1, 1. */
QVLOG_API int qvConvert_dlnadurationstrtouint32(const char* aStr, uint32* aSecond, uint32* aMilliSecond);

/* An NPT time: with ':' the form above with the flags 1, 0, 0, otherwise the form below. */
QVLOG_API int qvConvert_dlnanptstrtouint32(const char* aStr, uint32* aSecond, uint32* aMilliSecond);

/* S[.fff]: the fraction is a part of a second ("12.5" is 12 s and 500 ms), but one of more than three digits
 * loses its trailing zeros and is then read as written ("12.5000" is 12 s and 5 ms). The outputs are written
 * on success only; a result of the number parser, a position too, is returned as it is. */
QVLOG_API int qvConvert_dlnaseconddurationstrtouint32(const char* aStr, uint32* aSecond,
                                                      uint32* aMilliSecond);

/* ---- Fractions ----
 *
 * Whatever the process's locale, the decimal sign is the point. */

/* A plain number, a/b, w n/d or w-n/d with 0 <= n < d. The number before it all is what scanf's "%lf" reads,
 * "inf" and "nan" too, and whole when a fraction follows; the others are decimal 64-bit integers. Returns 0
 * on success and 1 (not a negative code) for anything else, null included; the destination is then 0. */
QVLOG_API int qvConvert_strnfractiontodouble(const char* aStr, size_t aLength, double* aDouble);
QVLOG_API int qvConvert_strfractiontodouble(const char* aStr, double* aDouble);

/* A number, n/d or w n/d, the parts of fractions being decimal 64-bit integers. Returns the result code of
 * the number parser that read the last part: a position counts from the start of that part, and in a fraction
 * it is a failure, since nothing may follow a part. The destination is 0 after a failure. A denominator of 0
 * gives 0 and leaves the destination alone. */
QVLOG_API int qvConvert_strtodouble(const char* aStr, double* aDouble);

/* Splits aDouble into a whole part and the fraction that comes within aPrecision of the rest with a
 * denominator up to aMaxDenominator, or the nearest that the search has met. Returns the remaining error. A
 * rest that comes to 1/1 raises the whole part by one, which turns a negative whole number into the next but
 * one: -2 becomes 0. */
QVLOG_API double qvConvert_doubletofractionparts(double aDouble, qvLongLong* aWhole, qvLongLong* aNumerator,
                                                 qvLongLong* aDenominator, int32 aMaxDenominator,
                                                 double aPrecision);

/* *aStr becomes the new text of that fraction ("1 1/2", "-3/4", "2"), released with qvFree. Returns a result
 * code. */
QVLOG_API int qvConvert_doubletofraction(double aDouble, int32 aMaxDenominator, double aPrecision,
                                         char** aStr);

/* Reads a fraction as qvConvert_strfractiontodouble does, whose result it returns on failure (with a null
 * text), and writes it reduced, with a precision of 1e-14. */
QVLOG_API int qvConvert_cleanupfraction(const char* aFractionStr, int32 aMaxDenominator,
                                        char** aCleanedFractionStr);

/* The absolute value. */
QVLOG_API double qvDouble_Abs(double aDouble);

/* ---- Addresses ---- */

/* A new text of six pairs of lower-case digits with the separator between them, released with qvFree. */
QVLOG_API char* qvConvert_MACtostr(const uint8* aMAC, char aSeparator);

/* Six pairs of hexadecimal digits with '-' or ':' between them; white space may follow. Anything else is
 * kqvConvertError_Invalid; the bytes read before it are written. */
QVLOG_API int qvConvert_strtoMAC(const char* aStr, uint8* aMAC);

/* A new text "a.b.c.d" of the four bytes of anIP as they lie in memory, released with qvFree. */
QVLOG_API char* qvConvert_iptostr(uint32 anIP);

QV_END_DECLS

#endif
