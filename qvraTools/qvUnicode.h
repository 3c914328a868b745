/* qvUnicode.h - single characters and whole texts between UTF-8 and wide text.
 *
 * Wide text holds one character of 32 bits in each wchar_t. The UTF-8 coder reads and writes the original
 * long forms of up to 6 bytes (values of 31 bits), not only the 4-byte forms of today's UTF-8; surrogate
 * values are characters like any other. Nothing is allocated and no locale is consulted. Lengths count bytes
 * in UTF-8 text and characters in wide text. Any thread may call these functions. */
#ifndef QVRATOOLS_QVUNICODE_H
#define QVRATOOLS_QVUNICODE_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

#define kqvUnicode_Invalid    ((size_t)-1) /* the input is not text of its encoding */
#define kqvUnicode_Incomplete ((size_t)-2) /* the input ends inside a character     */

/* Decodes the terminated UTF-8 text anIn into at most anOutMax characters and returns their number; a
 * terminator follows them when there is room left. What lies behind the last character stored is not looked
 * at. A null anOut only counts, whatever anOutMax is. Gives kqvUnicode_Invalid for a continuation byte in
 * place of a lead, a missing continuation byte, a lead of 0xFE or 0xFF and an overlong form; anOut then holds
 * the characters in front of it, without a terminator. */
QVLOG_API size_t qvUnicode_UTF8ToWide(wchar_t* anOut, const char* anIn, size_t anOutMax);

/* Encodes the terminated wide text anIn into at most anOutMax bytes and returns their number; a terminator
 * follows them when there is room left. It stops in front of the first character that does not fit whole.
 * A null anOut only counts, whatever anOutMax is. Bit 31 of a character is ignored. */
QVLOG_API size_t qvUnicode_WideToUTF8(char* anOut, const wchar_t* anIn, size_t anOutMax);

/* Decodes the first character of the anInLen bytes at anIn into *aChar and returns the number of bytes that
 * it has taken; a zero byte is a character of 1 byte. Gives 0 when anInLen is 0, kqvUnicode_Invalid for a
 * malformed sequence, and kqvUnicode_Incomplete when anInLen ends inside a sequence that is good so far;
 * *aChar is then left alone. */
QVLOG_API size_t qvUnicode_ReadUTF8Char(const char* anIn, size_t anInLen, uint32* aChar);

/* Encodes aChar and returns its length, 1 to 7 bytes. No more than anOutMax bytes are written: the rest of
 * the sequence is left out, and the full length is returned all the same. anOut may be null when anOutMax is
 * 0. Values that need 7 bytes (bit 31 set) are not readable again. */
QVLOG_API size_t qvUnicode_WriteUTF8Char(char* anOut, size_t anOutMax, uint32 aChar);

/* The length of aChar in UTF-8, 1 to 7 bytes. */
QVLOG_API size_t qvUnicode_UTF8CharLength(uint32 aChar);

/* The same for wide text, where every character has the length 1. */
QVLOG_API size_t qvUnicode_ReadWideChar(const wchar_t* anIn, size_t anInLen, uint32* aChar);
QVLOG_API size_t qvUnicode_WriteWideChar(wchar_t* anOut, size_t anOutMax, uint32 aChar);
QVLOG_API size_t qvUnicode_WideCharLength(uint32 aChar);

QV_END_DECLS

#endif
