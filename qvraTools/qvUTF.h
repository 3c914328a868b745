/* qvUTF.h - whole texts between UTF-8 and ISO-8859-1, UTF-16 and modified UTF-8.
 *
 * Modified UTF-8 writes a NUL character as the two bytes 0xC0 0x80, and a character above U+FFFF as the
 * three-byte forms of its two surrogates.
 *
 * The functions that return a char* give a new terminated text, released with qvFree; texts that hold NUL
 * characters come out with zero bytes inside. Lengths count bytes; a null text is allowed when its length is
 * 0, and a negative length is an empty text where nothing else is said. Nothing behind the length given is
 * read. Any thread may call these functions. */
#ifndef QVRATOOLS_QVUTF_H
#define QVRATOOLS_QVUTF_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* Every byte is the character of its number. */
QVLOG_API char* qvUTF_ISO88591ToUTF8(const char* anIn, size_t aLength);

/* A character that ISO-8859-1 does not have and that takes three or more bytes becomes one '?', and one byte
 * more than the character has is skipped (a lead from 0xE0: 4 bytes in all; from 0xF0: 5). A character of two
 * bytes is cut to its lower 8 bits. Stray continuation bytes are copied. */
QVLOG_API char* qvUTF_UTF8ToISO88591(const char* anIn, size_t aLength);

/* UTF-16, big-endian or little-endian, without a byte-order mark (one is converted like any character).
 * Surrogates without a partner are converted each by itself; a high one at the end of the text ends the
 * conversion, and an odd last byte is ignored. Behind a surrogate pair reading goes on one byte before the
 * pair's end. */
QVLOG_API char* qvUTF_UTF16BEToUTF8(const char* anIn, size_t aLength);
QVLOG_API char* qvUTF_UTF16LEToUTF8(const char* anIn, size_t aLength);

/* UTF-16 that begins with a byte-order mark: a first byte of 0xFE means big-endian, any other little-endian.
 * The two bytes are not checked further. A text shorter than that gives the empty text. */
QVLOG_API char* qvUTF_UTF16BOMToUTF8(const char* anIn, size_t aLength);

/* Cuts the text at its first invalid or incomplete sequence: a zero byte is written there and that length
 * returned. A valid text is left alone and gives aLength. */
QVLOG_API int qvUTF_MakeValidUTF8(char* aText, int aLength);

/* The size of the text in modified UTF-8, with its terminator. An invalid sequence gives -1, or counts 1 for
 * each bad byte when afLenient is not 0. A size that no int holds gives -1 too. */
QVLOG_API int qvUTF_ModifiedUTF8LengthOfUTF8(const char* aText, int aLength, int afLenient);

/* Writes the text as modified UTF-8, with a terminator, into anOut of anOutMax bytes. Returns 1, or 0 when
 * that is too small; anOut then holds what fitted, unterminated. Each bad byte becomes '?'. The sequence
 * 0xC0 0x80 in the input fails an assertion. */
QVLOG_API int qvUTF_UTF8ToModifiedUTF8(const char* aText, int aLength, char* anOut, size_t anOutMax);

/* Writes modified UTF-8 as UTF-8 into anOut of anOutMax bytes. Returns 1, or 0 when that is too small; anOut
 * then holds what fitted, unterminated. An encoded NUL becomes a zero byte. What is no sequence of 1 to 3
 * bytes is dropped.
 * aLength -1: the text ends at its encoded NUL, which becomes the terminator and behind which nothing is
 * read; a zero byte in front of it fails an assertion. Any other length: reading goes on behind an encoded
 * NUL, and a terminator is written when there is room left for it. */
QVLOG_API int qvUTF_ModifiedUTF8ToUTF8(const char* aText, int aLength, char* anOut, size_t anOutMax);

QV_END_DECLS

#endif
