// qvConvertHex.cpp - byte buffers to hexadecimal text and back, and byte-order reversal.
#include <stdint.h>
#include <string.h>

#include "qvraTools/qvAssert.h"
#include "qvraTools/qvConvert.h"
#include "qvraTools/qvMalloc.h"

static const char kLowerDigits[] = "0123456789abcdef";

uint16 qvConvert_SwapUInt16(uint16 aValue) { return static_cast<uint16>((aValue << 8) | (aValue >> 8)); }

uint32 qvConvert_SwapUInt32(uint32 aValue) {
  return (aValue << 24) | ((aValue & 0xFF00u) << 8) | ((aValue >> 8) & 0xFF00u) | (aValue >> 24);
}

// Reverses a word of 1, 2 or 4 bytes.
static uint32 qvConvert_S_SwapWord(uint32 aWord, size_t aWordSize) {
  switch (aWordSize) {
    case 2:
      return qvConvert_SwapUInt16(static_cast<uint16>(aWord));
    case 4:
      return qvConvert_SwapUInt32(aWord);
    default:
      return aWord;
  }
}

static bool qvConvert_S_IsEndianess(int anEndianess) {
  return anEndianess == kqvConvertBuffer_BigEndian || anEndianess == kqvConvertBuffer_LittleEndian ||
         anEndianess == kqvConvertBuffer_NativeEndian;
}

int qvConvert_buffertohexstr(const uint8* aBuffer, size_t aBufferLength, size_t aWordSize,
                             int aSourceEndianess, char** aStr) {
  qvAssert((aWordSize == 1) || (aWordSize == 2) || (aWordSize == 4));
  if (!qvConvert_S_IsEndianess(aSourceEndianess)) {
    qvAssertFail("qvConvert_buffertohexstr: invalid endianess");
  }
  if (aBufferLength % aWordSize != 0) {
    *aStr = NULL;
    return kqvConvertError_Invalid;
  }
  // No machine has memory for the text of more than half of all bytes; its size must not wrap round.
  char* theStr =
      static_cast<char*>(qvMalloc(aBufferLength <= (SIZE_MAX - 1) / 2 ? 2 * aBufferLength + 1 : SIZE_MAX));
  char* theOut = theStr;
  for (size_t theOffset = 0; theOffset < aBufferLength; theOffset += aWordSize) {
    uint32 theWord = 0;
    for (size_t i = 0; i < aWordSize; ++i) {
      theWord = (theWord << 8) | aBuffer[theOffset + i];
    }
    if (aSourceEndianess != kqvConvertBuffer_BigEndian) {
      theWord = qvConvert_S_SwapWord(theWord, aWordSize);
    }
    for (size_t theDigit = 2 * aWordSize; theDigit-- > 0;) {
      *theOut++ = kLowerDigits[(theWord >> (4 * theDigit)) & 0xF];
    }
  }
  *theOut = '\0';
  *aStr = theStr;
  return kqvConvertError_None;
}

// The value of a hexadecimal digit of either case, or -1.
static int qvConvert_S_HexDigit(char aChar) {
  if (!qvConvert_isxdigit(static_cast<unsigned char>(aChar))) {
    return -1;
  }
  return aChar <= '9' ? aChar - '0' : (aChar | 0x20) - 'a' + 10;
}

// Stores the low aWordSize bytes of a word as the (little-endian) target keeps them in memory.
static void qvConvert_S_StoreWord(uint8* aBuffer, uint32 aWord, size_t aWordSize) {
  for (size_t i = 0; i < aWordSize; ++i) {
    aBuffer[i] = static_cast<uint8>(aWord >> (8 * i));
  }
}

// Fills aBuffer from the digits; false at the first character that is none. A word that the text leaves
// incomplete is not stored.
static bool qvConvert_S_GatherWords(const char* aStr, size_t aStrLength, size_t aWordSize, bool afSwap,
                                    uint8* aBuffer) {
  uint32 theWord = 0;  // the digits of a word leave nothing of the one before in its low bytes
  for (size_t i = 0; i < aStrLength; ++i) {
    int theDigit = qvConvert_S_HexDigit(aStr[i]);
    if (theDigit < 0) {
      return false;
    }
    theWord = (theWord << 4) | static_cast<uint32>(theDigit);
    if ((i + 1) % (2 * aWordSize) == 0) {
      qvConvert_S_StoreWord(aBuffer + i / 2 + 1 - aWordSize,
                            afSwap ? qvConvert_S_SwapWord(theWord, aWordSize) : theWord, aWordSize);
    }
  }
  return true;
}

int qvConvert_hexstrntobuffer(const char* aStr, size_t aStrLength, size_t aWordSize, int aDestEndianess,
                              uint8** aBuffer, size_t* aBufferLength) {
  qvAssert((aWordSize == 1) || (aWordSize == 2) || (aWordSize == 4));
  if (!qvConvert_S_IsEndianess(aDestEndianess)) {
    qvAssertFail("qvConvert_hexstrntobuffer: invalid endianess");
  }
  *aBuffer = NULL;
  *aBufferLength = 0;
  if (aStr == NULL) {
    return kqvConvertError_None;
  }
  if (aStrLength >= 2 && aStr[0] == '0' && (aStr[1] == 'x' || aStr[1] == 'X')) {
    aStr += 2;
    aStrLength -= 2;
  }
  if (aStrLength % 2 != 0 || aStrLength % aWordSize != 0) {
    return kqvConvertError_Invalid;
  }
  // Zeroed, because the rule above lets an incomplete last word through, whose bytes are never stored. One
  // byte more, so that an empty text gives a block too.
  uint8* theBuffer = static_cast<uint8*>(qvMallocZeroed(aStrLength / 2 + 1));
  // The words are gathered with their first byte on top and stored as the little-endian target stores them,
  // so it is the big-endian order that needs the swap.
  bool theSwapFlag = aDestEndianess == kqvConvertBuffer_BigEndian;
  if (!qvConvert_S_GatherWords(aStr, aStrLength, aWordSize, theSwapFlag, theBuffer)) {
    qvFree(theBuffer);
    return kqvConvertError_Invalid;
  }
  *aBuffer = theBuffer;
  *aBufferLength = aStrLength / 2;
  return kqvConvertError_None;
}
