// qvUnicode_p.h - the tables of the UTF-8 coder, and one character at a time from and to UTF-16.
#ifndef QVRATOOLS_QVUNICODE_P_H
#define QVRATOOLS_QVUNICODE_P_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

#define kqvUnicode_MaxUTF8Length 7 /* bytes; what writing a value with bit 31 set takes */

// The largest character that a UTF-8 sequence of 1 to 7 bytes can carry.
extern const uint32 qvUTF8Max[kqvUnicode_MaxUTF8Length];

// The length of the valid characters at the start of a text of aLength bytes.
size_t qvUnicode_S_ValidLength(const char* aText, size_t aLength);

#define kqvUnicode_HighSurrogateFirst 0xD800u
#define kqvUnicode_HighSurrogateLast  0xDBFFu
#define kqvUnicode_LowSurrogateFirst  0xDC00u
#define kqvUnicode_LowSurrogateLast   0xDFFFu
#define kqvUnicode_MaxUTF16           0x10FFFFu /* the largest character that a surrogate pair can carry */

// Writes aChar as UTF-16 and returns 1, 2 for a surrogate pair, or kqvUnicode_Invalid above U+10FFFF. Units
// beyond anOutMax are left out.
size_t qvUnicode_S_EncodeToUTF16(uint32 aChar, uint16* anOut, size_t anOutMax);

// Reads one character from anInLen units and returns how many it has taken: 1, 2 for a surrogate pair, or 0
// when there is no input. A low surrogate by itself is a character of 1 unit. kqvUnicode_Incomplete when a
// high surrogate is the last unit, kqvUnicode_Invalid when no low one follows it; *aChar is then left alone.
size_t qvUnicode_S_DecodeFromUTF16(const uint16* anIn, size_t anInLen, uint32* aChar);

QV_END_DECLS

#endif
