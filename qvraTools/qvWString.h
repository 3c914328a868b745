/* qvWString.h - wide text that knows its length and is passed like any const wchar_t*.
 *
 * The pointer addresses the characters; two words stand in front of them:
 *
 *      size_t    size_t    wchar_t ...
 *    +----------+--------+-----------------------+---+
 *    | capacity | length | characters            | 0 |
 *    +----------+--------+-----------------------+---+
 *                        ^ the pointer
 *
 * The capacity counts the characters that fit, without the terminator. Such a string is released with
 * qvWString_Free. Strings handed in are not null, except where it is said. One string belongs to one thread
 * at a time. */
#ifndef QVRATOOLS_QVWSTRING_H
#define QVRATOOLS_QVWSTRING_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* The length word; it can be assigned to. */
#define qvWString_LEN(aString) (((size_t*)(aString))[-1])

/* A copy of a terminated wide text, with just the capacity that it needs. */
QVLOG_API wchar_t* qvWString_New(const wchar_t* aText);

/* The same from UTF-8; null for null and for text that is not valid (qvUnicode_UTF8ToWide). */
QVLOG_API wchar_t* qvWString_NewFromUTF8(const char* aText);

/* Gives aString room for aCapacity characters and returns it, possibly moved. The length word is the caller's
 * affair and stays as it is. A null aString makes a new, empty string. */
QVLOG_API wchar_t* qvWString_Alloc(wchar_t* aString, size_t aCapacity);

/* Null is ignored. */
QVLOG_API void qvWString_Free(wchar_t* aString);

/* The length word. */
QVLOG_API size_t qvWString_Length(const wchar_t* aString);

/* Cuts the string to aLength characters; a length above the string's fails an assertion. The capacity
 * stays. */
QVLOG_API void qvWString_Truncate(wchar_t* aString, size_t aLength);

/* Adds a terminated wide text at the end, or in front, and returns the string, possibly moved: the old
 * pointer is no longer valid. An empty text changes nothing. The text may be the string itself or its end. */
QVLOG_API wchar_t* qvWString_Append(wchar_t* aString, const wchar_t* aText);
QVLOG_API wchar_t* qvWString_Prepend(wchar_t* aString, const wchar_t* aText);

/* 1 when the capacity is 0, 0 otherwise: a string that was cut to length 0 is not empty in this sense. */
QVLOG_API int qvWString_IsEmpty(const wchar_t* aString);

/* The functions below look at the characters only, up to the terminator. They take any wide text. */

/* wcscmp and wcsncmp. */
QVLOG_API int qvWString_Compare(const wchar_t* aString, const wchar_t* anOther);
QVLOG_API int qvWString_CompareN(const wchar_t* aString, const wchar_t* anOther, size_t aLength);

/* 1 when aText stands right before an occurrence of aChar in aString, 0 otherwise. Every occurrence is tried;
 * one closer to the start than the length of aText is no match. An empty aText stands before every
 * occurrence. */
QVLOG_API int qvWString_BeforeFirstIs(const wchar_t* aString, wchar_t aChar, const wchar_t* aText);

/* New strings, released with qvFree: UTF-8, and one byte for each character (values up to 255 as they are,
 * others "."). */
QVLOG_API char* qvWString_GetUTF8(const wchar_t* aString);
QVLOG_API char* qvWString_GetASCII(const wchar_t* aString);

/* Plain texts, without the two words; the results are released with qvFree. FromUTF8 gives null for null and
 * for text that is not valid. */
QVLOG_API char* qvWString_S_ToUTF8(const wchar_t* aText);
QVLOG_API wchar_t* qvWString_S_FromUTF8(const char* aText);

QV_END_DECLS

#endif
