// qvUTF_p.h - what the converters between encodings share: an output that can also just count, and the
// worker of the UTF-16 conversions.
#ifndef QVRATOOLS_QVUTF_P_H
#define QVRATOOLS_QVUTF_P_H

#include "qvOS/qvTypes.h"
#include "qvraTools/qvUnicode.h"

QV_BEGIN_DECLS

#define kqvUTF_ReplacementChar 0xFFFDu /* stands for what is no character                    */
#define kqvUTF_BadByte         '?'     /* stands for what the other encoding cannot say      */
#define kqvUTF_EncodedNul1     0xC0u   /* modified UTF-8: both bytes together are one NUL     */
#define kqvUTF_EncodedNul2     0x80u

// What the lead byte of a UTF-8 sequence of 0 to 6 bytes has set above its share of the character.
extern const uint8 kUTF16FirstByteMark[7];

// Where a converter writes. It counts every byte and stores those that fit, so that one worker serves both
// passes; mOut is null in the counting pass.
typedef struct qvUTF_S_Output {
  char* mOut;
  size_t mMax;
  size_t mLength;
} qvUTF_S_Output;

// What is left of the room.
inline size_t qvUTF_S_Room(const qvUTF_S_Output* anOutput) {
  return anOutput->mLength < anOutput->mMax ? anOutput->mMax - anOutput->mLength : 0;
}

void qvUTF_S_PutByte(qvUTF_S_Output* anOutput, uint32 aByte);

// Writes aChar in 1 to 4 bytes of UTF-8; one above U+10FFFF becomes kqvUTF_ReplacementChar.
void qvUTF_S_PutChar(qvUTF_S_Output* anOutput, uint32 aChar);

// The writers below do not look at the room, which has to be kqvUTF_WriteRoom. They return the end of the
// character; the byte behind it may have been written too.
#define kqvUTF_WriteRoom 6 /* bytes */

// A character below U+0800. Whether it has one byte or two is hard to foresee, so that there is no branch.
inline char* qvUTF_S_WriteShort(char* anOut, uint32 aChar) {
  uint32 thefTwo = (aChar + 0x780) >> 11;
  uint32 theLead = 0xC0 | aChar >> 6;
  anOut[0] = static_cast<char>(aChar ^ ((aChar ^ theLead) & (0 - thefTwo)));
  anOut[1] = static_cast<char>(0x80 | (aChar & 0x3F));
  return anOut + 1 + thefTwo;
}

// A character of three bytes.
inline char* qvUTF_S_WriteTriple(char* anOut, uint32 aChar) {
  anOut[0] = static_cast<char>(0xE0 | aChar >> 12);
  anOut[1] = static_cast<char>(0x80 | (aChar >> 6 & 0x3F));
  anOut[2] = static_cast<char>(0x80 | (aChar & 0x3F));
  return anOut + 3;
}

// A character of up to 31 bits.
inline char* qvUTF_S_Write(char* anOut, uint32 aChar) {
  if (aChar < 0x800) {
    return qvUTF_S_WriteShort(anOut, aChar);
  }
  if (aChar < 0x10000) {
    return qvUTF_S_WriteTriple(anOut, aChar);
  }
  return anOut + qvUnicode_WriteUTF8Char(anOut, kqvUTF_WriteRoom, aChar);
}

#define kqvUTF16Result_Done          1
#define kqvUTF16Result_EndsInPair    2 /* a high surrogate is the last unit                        */
#define kqvUTF16Result_LoneSurrogate 3 /* strict: one half of a pair stands alone                  */
#define kqvUTF16Result_TooSmall      4 /* the output does not hold the result and its terminator   */

// Converts UTF-16 and appends a terminator. *aCount gets the size of the result, terminator included,
// whether it fitted or not.
int qvUTF_S_UTF16ToUTF8(const char* anIn, size_t aLength, int afBigEndian, int afStrict, char* anOut,
                        size_t anOutMax, size_t* aCount);

QV_END_DECLS

#endif
