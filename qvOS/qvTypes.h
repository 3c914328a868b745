/* qvTypes.h - the fixed-width integers of the toolkit and the markers of its exported interface. */
#ifndef QVOS_QVTYPES_H
#define QVOS_QVTYPES_H

#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>

/* Integers of a fixed width. */
typedef int8_t int8;
typedef int16_t int16;
typedef int32_t int32;
typedef int64_t int64;
typedef uint8_t uint8;
typedef uint16_t uint16;
typedef uint32_t uint32;
typedef uint64_t uint64;

/* Native 64-bit integers, as the number parsers give them. qvLongLong and qvULongLong of
 * qvraTools/qvLongLong.h hold the same values as two 32-bit words. */
typedef int64_t qvint64_t;
typedef uint64_t qvuint64_t;

/* An int that several threads change; read and written with the compiler's atomic operations only. */
typedef int qvAtomic_int;

/* The largest uint32. */
#define kqvuint32_max 0xffffffffUL

/* Marks what the library exports. Everything else is hidden. */
#if defined(__GNUC__)
#define QVLOG_API __attribute__((visibility("default")))
#else
#define QVLOG_API
#endif

/* Begins a function in a header, in C and in C++. */
#define QVLOG_INLINE __inline static

/* Lets the compiler check the arguments of a printf-like function against its format. aFormat and aFirst
 * are 1-based positions (in a class, "this" is position 1); aFirst is 0 for a va_list. */
#if defined(__GNUC__)
#define QV_PRINTF_FORMAT(aFormat, aFirst) __attribute__((format(printf, aFormat, aFirst)))
#define QV_NORETURN                       __attribute__((noreturn))
#else
#define QV_PRINTF_FORMAT(aFormat, aFirst)
#define QV_NORETURN
#endif

/* Opens and closes the declarations of plain functions: unmangled names in C and in C++. */
#ifdef __cplusplus
#define QV_BEGIN_DECLS extern "C" {
#define QV_END_DECLS   }
#else
#define QV_BEGIN_DECLS
#define QV_END_DECLS
#endif

#endif
