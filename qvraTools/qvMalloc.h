/* qvMalloc.h - allocation that never returns null, and NUL-terminated string helpers that allocate.
 *
 * Nobody checks an allocation at the call site: when memory runs out, the process ends through
 * qvFatalError. Everything these functions return is released with qvFree, by the caller.
 * Any thread may call them. */
#ifndef QVRATOOLS_QVMALLOC_H
#define QVRATOOLS_QVMALLOC_H

#include <wchar.h>

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* malloc(aSize); a null result ends the process. */
QVLOG_API void* qvMalloc(size_t aSize);

/* qvMalloc, filled with zero bytes. */
QVLOG_API void* qvMallocZeroed(size_t aSize);

/* realloc(aPtr, aSize). A null aPtr with size 0 gives null without calling realloc. A null result ends the
 * process unless aSize is 0, in which case null is returned. */
QVLOG_API void* qvRealloc(void* aPtr, size_t aSize);

/* free(aPtr); null is ignored. */
QVLOG_API void qvFree(void* aPtr);

/* A copy of aStr; null for null. */
QVLOG_API char* qvStrdup(const char* aStr);

/* A terminated copy of at most aMaxStrlen characters of aStr; no byte behind them is read. A null aStr gives
 * null, and fails an assertion unless aMaxStrlen is 0. */
QVLOG_API char* qvStrndup(const char* aStr, size_t aMaxStrlen);

/* A copy with toupper applied to every byte (in the "C" locale only 'a' to 'z' change); null for null. */
QVLOG_API char* qvStrdupToUpper(const char* aStr);

/* The length of aStr, looking at no more than aMaxStrlen bytes. */
QVLOG_API size_t qvStrnlen(const char* aStr, size_t aMaxStrlen);

/* 1 for null and for the empty text, 0 otherwise. */
QVLOG_API int qvStrEmpty(const char* aStr);

/* Frees *aStr (null allowed) and stores a copy of aNewStr there, null for null. A null aStr fails an
 * assertion. */
QVLOG_API void qvStrReplace(char** aStr, const char* aNewStr);

/* qvStrReplace with at most aMaxStrlen characters. A null aNewStr stores null, whatever aMaxStrlen is. */
QVLOG_API void qvStrnReplace(char** aStr, const char* aNewStr, size_t aMaxStrlen);

/* Replaces *aStr by a new block that holds it followed by aNewStr (null counts as ""); the old block is
 * freed. A null *aStr becomes a copy of aNewStr. A null aStr fails an assertion. */
QVLOG_API void qvStrcatReplace(char** aStr, const char* aNewStr);

/* The first occurrence of aNeedle that lies wholly within the first aMaxStrlen characters of aStr, or null.
 * Gives aStr itself when aStr is null, aMaxStrlen is 0 or aNeedle is "". */
QVLOG_API char* qvStrnstr(const char* aStr, const char* aNeedle, size_t aMaxStrlen);

/* A copy of a wide text; null for null. */
QVLOG_API wchar_t* qvWcsdup(const wchar_t* aStr);

/* Copies exactly aStrLen wide characters and terminates the copy. A terminator inside aStr does not end the
 * copy, so aStr must hold aStrLen readable characters. A null aStr gives null, and fails an assertion unless
 * aStrLen is 0. */
QVLOG_API wchar_t* qvWcsndup(const wchar_t* aStr, size_t aStrLen);

QV_END_DECLS

#endif
