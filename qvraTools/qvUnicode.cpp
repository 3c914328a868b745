#include "qvraTools/qvUnicode.h"

#include "qvraTools/qvUnicode_p.h"

static_assert(sizeof(wchar_t) == sizeof(uint32), "wide text holds one character of 32 bits in each wchar_t");

#define kqvUnicode_FirstNonASCII   0x80u
#define kqvUnicode_ContinuationBit 0x80u /* a continuation byte is 10xxxxxx */
#define kqvUnicode_PayloadBits     6     /* of each continuation byte       */
#define kqvUnicode_PayloadMask     0x3Fu

const uint32 qvUTF8Max[kqvUnicode_MaxUTF8Length] = {0x7F,      0x7FF,      0xFFFF,    0x1FFFFF,
                                                    0x3FFFFFF, 0x7FFFFFFF, 0xFFFFFFFF};

static bool qvUnicode_S_IsContinuation(uint8 aByte) { return (aByte & 0xC0u) == kqvUnicode_ContinuationBit; }

// The number of bytes that a lead byte announces, or 0 for a byte that is no lead. Sequences of 7 bytes (lead
// 0xFE) are written but not read.
static size_t qvUnicode_S_LengthFromLead(uint8 aLead) {
  if (aLead < 0x80) {
    return 1;
  }
  if (aLead < 0xC0) {
    return 0;
  }
  if (aLead < 0xE0) {
    return 2;
  }
  if (aLead < 0xF0) {
    return 3;
  }
  if (aLead < 0xF8) {
    return 4;
  }
  if (aLead < 0xFC) {
    return 5;
  }
  return aLead < 0xFE ? 6 : 0;
}

// The bytes are looked at one after the other and no further than the first bad one, so a terminated text may
// be handed in without its length: the terminator is a bad continuation byte.
static size_t qvUnicode_S_ReadSequence(const char* anIn, size_t anInLen, uint32* aChar) {
  const uint8* theBytes = reinterpret_cast<const uint8*>(anIn);
  size_t theLength = qvUnicode_S_LengthFromLead(theBytes[0]);
  if (theLength == 0) {
    return kqvUnicode_Invalid;
  }
  uint32 theChar = theBytes[0];
  if (theLength > 1) {
    theChar &= 0x7Fu >> theLength;
  }
  for (size_t i = 1; i < theLength; ++i) {
    if (i == anInLen) {
      return kqvUnicode_Incomplete;
    }
    if (!qvUnicode_S_IsContinuation(theBytes[i])) {
      return kqvUnicode_Invalid;
    }
    theChar = (theChar << kqvUnicode_PayloadBits) | (theBytes[i] & kqvUnicode_PayloadMask);
  }
  if (theLength > 1 && theChar <= qvUTF8Max[theLength - 2]) {
    return kqvUnicode_Invalid;  // overlong: a shorter sequence carries it
  }
  *aChar = theChar;
  return theLength;
}

size_t qvUnicode_ReadUTF8Char(const char* anIn, size_t anInLen, uint32* aChar) {
  if (anInLen == 0) {
    return 0;
  }
  return qvUnicode_S_ReadSequence(anIn, anInLen, aChar);
}

size_t qvUnicode_WriteUTF8Char(char* anOut, size_t anOutMax, uint32 aChar) {
  if (aChar < kqvUnicode_FirstNonASCII) {
    if (anOutMax > 0) {
      *anOut = static_cast<char>(aChar);
    }
    return 1;
  }
  size_t theLength = qvUnicode_UTF8CharLength(aChar);
  // From the last byte to the second; what is left of aChar goes into the lead byte, below its mark.
  for (size_t i = theLength - 1; i > 0; --i) {
    if (i < anOutMax) {
      anOut[i] = static_cast<char>(kqvUnicode_ContinuationBit | (aChar & kqvUnicode_PayloadMask));
    }
    aChar >>= kqvUnicode_PayloadBits;
  }
  if (anOutMax > 0) {
    uint32 theMark = (0xFFu << (8 - theLength)) & 0xFFu;
    anOut[0] = static_cast<char>(theMark | aChar);
  }
  return theLength;
}

size_t qvUnicode_UTF8CharLength(uint32 aChar) {
  size_t theLength = 1;
  while (aChar > qvUTF8Max[theLength - 1]) {
    ++theLength;
  }
  return theLength;
}

size_t qvUnicode_ReadWideChar(const wchar_t* anIn, size_t anInLen, uint32* aChar) {
  if (anInLen == 0) {
    return 0;
  }
  *aChar = static_cast<uint32>(*anIn);
  return 1;
}

size_t qvUnicode_WriteWideChar(wchar_t* anOut, size_t anOutMax, uint32 aChar) {
  if (anOutMax > 0) {
    *anOut = static_cast<wchar_t>(aChar);
  }
  return qvUnicode_WideCharLength(aChar);
}

size_t qvUnicode_WideCharLength(uint32 /* aChar */) { return 1; }

size_t qvUnicode_S_EncodeToUTF16(uint32 aChar, uint16* anOut, size_t anOutMax) {
  if (aChar > kqvUnicode_MaxUTF16) {
    return kqvUnicode_Invalid;
  }
  uint16 theUnits[2] = {static_cast<uint16>(aChar), 0};
  size_t theLength = 1;
  if (aChar >= 0x10000) {
    theUnits[0] = static_cast<uint16>(kqvUnicode_HighSurrogateFirst + (aChar >> 10) - 0x40);
    theUnits[1] = static_cast<uint16>(kqvUnicode_LowSurrogateFirst + (aChar & 0x3FF));
    theLength = 2;
  }
  for (size_t i = 0; i < theLength && i < anOutMax; ++i) {
    anOut[i] = theUnits[i];
  }
  return theLength;
}

size_t qvUnicode_S_DecodeFromUTF16(const uint16* anIn, size_t anInLen, uint32* aChar) {
  if (anInLen == 0) {
    return 0;
  }
  uint32 theUnit = anIn[0];
  if (theUnit < kqvUnicode_HighSurrogateFirst || theUnit > kqvUnicode_HighSurrogateLast) {
    *aChar = theUnit;
    return 1;
  }
  if (anInLen == 1) {
    return kqvUnicode_Incomplete;
  }
  uint32 theLow = anIn[1];
  if (theLow < kqvUnicode_LowSurrogateFirst || theLow > kqvUnicode_LowSurrogateLast) {
    return kqvUnicode_Invalid;
  }
  *aChar = ((theUnit - kqvUnicode_HighSurrogateFirst) << 10) + theLow + 0x2400;
  return 2;
}
