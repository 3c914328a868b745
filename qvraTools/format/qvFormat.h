/* qvFormat.h - formatted text with the library's own engine: the same results on every platform.
 *
 * A format is plain text with directives: "%", flags, width, precision, length modifier, conversion.
 *
 *   conversions       d i u o x X c s p n e E f F g G a A and "%%"
 *   flags             - (left adjust)  + (sign)  blank (space for the sign)  # (alternative form)
 *                     0 (pad with zeros)
 *   width, precision  decimal digits, or * to take an int from the arguments; a precision follows "."
 *   length            hh  h  l  ll  L (long double)  j (intmax_t)  t (ptrdiff_t)  z (size_t)
 *   positions         "%2$s" takes the second argument, "%1$*2$d" its width from the second. A format with
 *                     positions has them in every directive, leaves out no number, and names at most
 *                     kqvFormat_MaxPosition arguments.
 *
 * They mean what C99 says (ISO/IEC 9899:1999, 7.19.6.1), and the digits of every number are exact. Where C
 * leaves room, or where this library differs:
 *
 *   - A null text is printed as the text "(nil)". Text is UTF-8; bytes that are not UTF-8 pass unchanged.
 *   - Width and precision count what the output counts: bytes in the narrow family, wide characters in the
 *     wide one. "%.*s" reads no byte behind its precision. "%ls" and "%lc" give UTF-8 in the narrow
 *     family, and their precision never cuts a character; only the end of the buffer does.
 *   - "%c" in the narrow family writes the one byte; in the wide family the character of that number.
 *   - "%p" is "0x" and at least 8 lower-case digits, a null pointer "(nil)"; only width and "-" count.
 *   - A NaN is "nan" or "NAN", never with a sign.
 *   - Nothing else is accepted: no "q", "Z", "I", "%m", "%C", "%S", "'". Doubled or misplaced parts, length
 *     modifiers that C does not define for a conversion ("%hs", "%Ld"), and anything between the two
 *     characters of "%%" are errors.
 *
 * Neither locale nor rounding mode changes the text. Width and precision have no limit besides int, and
 * cost no more than what is stored. Any thread may call everything here; no state is kept between calls.
 * A format and a counter of "%n" are never null.
 */
#ifndef QVRATOOLS_FORMAT_QVFORMAT_H
#define QVRATOOLS_FORMAT_QVFORMAT_H

#include <stdarg.h>
#include <stddef.h>
#include <wchar.h>

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* A character of the wide family: 32 bits on every platform of the library. */
typedef wchar_t vexa_wchar_t;

/* A format error is -(code + (position << 8)): the position is the index, in characters of the format, at
 * which the error was found. (Positions above 8388607 are given as 8388607.) */
#define VEXA_EOF      1 /* the format ends inside a directive                                             */
#define VEXA_EINVAL   2 /* invalid directive or argument; positions in some of the directives only        */
#define VEXA_ETOOMANY 3 /* a position above kqvFormat_MaxPosition */
#define VEXA_EDBLREF  4 /* one argument named with two types; being signed or not makes no difference     */
#define VEXA_EGAP     5 /* an argument below the highest position is never named; found at the end        */
#define VEXA_ENOMEM   6 /* not used: memory exhaustion ends the process                                   */
#define VEXA_ERANGE   7 /* a width, a precision or the length of the whole output that no int holds       */
#define VEXA_ERRNO    8 /* not used                                                                       */
#define VEXA_ECUSTOM  9 /* not used                                                                       */

/* The two parts of a negative result. */
#define QVFORMAT_ERROR_CODE(aResult)     ((-(aResult)) & 0xff)
#define QVFORMAT_ERROR_POSITION(aResult) ((-(aResult)) >> 8)

/* The highest argument that a position may name. Directives without positions have no such limit. */
#define kqvFormat_MaxPosition 64

/* Narrow family.
 *
 * The bounded functions write at most max - 1 characters and a terminator (with max 0 nothing, and buffer
 * may be null). They return the length of the whole output, whether or not it fitted: a result of max or
 * more means that the text was cut, and how large a buffer it needs. A negative result is a format error;
 * a buffer with room then holds the empty text. Nothing is allocated. */
QVLOG_API int qv_snprintf(char* buffer, size_t max, const char* format, ...) QV_PRINTF_FORMAT(3, 4);
QVLOG_API int qv_vsnprintf(char* buffer, size_t max, const char* format, va_list args) QV_PRINTF_FORMAT(3, 0);

/* The allocating functions return a new block of exactly the output and its terminator, which the caller
 * releases with qvFree; null on a format error. The forms with length store the output's length there, 0 on
 * an error. Arguments of "%n" may be stored to twice, with the same value. */
QVLOG_API char* qv_mnprintf(const char* format, ...) QV_PRINTF_FORMAT(1, 2);
QVLOG_API char* qv_vmnprintf(const char* format, va_list args) QV_PRINTF_FORMAT(1, 0);
QVLOG_API char* qv_lmnprintf(size_t* length, const char* format, ...) QV_PRINTF_FORMAT(2, 3);
QVLOG_API char* qv_lvmnprintf(size_t* length, const char* format, va_list args) QV_PRINTF_FORMAT(2, 0);

/* Wide family: the same rules, counted in wide characters. "%s" takes UTF-8 char text here as well, "%ls"
 * takes wide text. */
QVLOG_API int qv_swprintf(vexa_wchar_t* buffer, size_t max, const vexa_wchar_t* format, ...);
QVLOG_API int qv_vswprintf(vexa_wchar_t* buffer, size_t max, const vexa_wchar_t* format, va_list args);
QVLOG_API vexa_wchar_t* qv_mwprintf(const vexa_wchar_t* format, ...);
QVLOG_API vexa_wchar_t* qv_vmwprintf(const vexa_wchar_t* format, va_list args);
QVLOG_API vexa_wchar_t* qv_lmwprintf(size_t* length, const vexa_wchar_t* format, ...);
QVLOG_API vexa_wchar_t* qv_lvmwprintf(size_t* length, const vexa_wchar_t* format, va_list args);

/* Floating-point classes, as qv_fpclassify gives them. */
#define VEXA_FP_INFINITE  0
#define VEXA_FP_NAN       1
#define VEXA_FP_NORMAL    2
#define VEXA_FP_SUBNORMAL 3
#define VEXA_FP_ZERO      4

/* Non-zero for a NaN. */
QVLOG_API int qv_isnan(double aNumber);
/* 1 for +infinity, -1 for -infinity, 0 otherwise. */
QVLOG_API int qv_isinf(double aNumber);
/* Non-zero for neither NaN nor infinity. */
QVLOG_API int qv_isfinite(double aNumber);
/* Non-zero when the sign bit is set, also for -0.0 and a negative NaN. */
QVLOG_API int qv_signbit(double aNumber);
/* One of VEXA_FP_*. */
QVLOG_API int qv_fpclassify(double aNumber);
/* -0.0, +infinity, -infinity and a quiet NaN. */
QVLOG_API double qv_nzero(void);
QVLOG_API double qv_pinf(void);
QVLOG_API double qv_ninf(void);
QVLOG_API double qv_nan(void);

/* strlen: bytes; string is not null. */
QVLOG_API size_t _qv_length(const char* string);
/* strerror: the system's text for an errno value, in the language of the locale, valid until the thread's
 * next call. Never null; the caller frees nothing. */
QVLOG_API const char* _qv_error(int error);
/* strtol and wcstol: endp may be null; what no long holds gives LONG_MIN or LONG_MAX, and errno ERANGE. A
 * null string, and a base outside 2 to 36, fail an assertion of the system's library (assert), in every
 * build. */
QVLOG_API long _qv_to_long(const char* string, char** endp, int base);
QVLOG_API long _qv_w_to_long(const vexa_wchar_t* string, vexa_wchar_t** endp, int base);

QV_END_DECLS

#endif
