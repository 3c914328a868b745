// Whole texts from wide text to UTF-8.
//
// A text goes through in pieces whose end is looked for first, so that blocks of it can be read without a
// look for the terminator.

#include <string.h>
#include <wchar.h>

#include "qvraTools/qvASCIIBlock_p.h"
#include "qvraTools/qvUTF_p.h"
#include "qvraTools/qvUnicode.h"
#include "qvraTools/qvUnicode_p.h"

#define kqvUnicode_PieceSize    4096        /* characters                                          */
#define kqvUnicode_PieceMaxSize (4096 * 6)  /* bytes                                               */
#define kqvUnicode_GroupSize    8           /* characters between two looks at the room            */
#define kqvUnicode_GroupMaxSize (8 * 6)     /* bytes                                               */
#define kqvUnicode_ValueMask    0x7FFFFFFFu /* bit 31 is ignored, so that no character has 7 bytes */

static size_t qvUnicode_S_CountBytes(const wchar_t* anIn) {
  size_t theCount = 0;
  size_t theLength;
  do {
    theLength = wcsnlen(anIn, kqvUnicode_PieceSize);
    uint32 theLongForms = 0;  // bytes but the first of each character
    for (size_t i = 0; i < theLength; ++i) {
      int32 theChar = static_cast<int32>(static_cast<uint32>(anIn[i]) & kqvUnicode_ValueMask);
      theLongForms += static_cast<uint32>((theChar > 0x7F) + (theChar > 0x7FF) + (theChar > 0xFFFF) +
                                          (theChar > 0x1FFFFF) + (theChar > 0x3FFFFFF));
    }
    theCount += theLength + theLongForms;
    anIn += theLength;
  } while (theLength == kqvUnicode_PieceSize);
  return theCount;
}

static inline bool qvUnicode_S_IsASCIIBlock(const wchar_t* aChars) {
  return qvASCII_S_AreClear<kqvASCII_BlockSize * sizeof(wchar_t)>(aChars, kqvASCII_OfChars(0xFFFFFF80u));
}

// Narrows blocks of ASCII as long as they follow each other and fit.
static const wchar_t* qvUnicode_S_NarrowBlocks(char** anOut, const char* anOutEnd, const wchar_t* anIn,
                                               const wchar_t* anEnd) {
  char* theOut = *anOut;
  while (anEnd - anIn >= kqvASCII_BlockSize && anOutEnd - theOut >= kqvASCII_BlockSize &&
         qvUnicode_S_IsASCIIBlock(anIn)) {
    wchar_t theChars[kqvASCII_BlockSize];
    memcpy(theChars, anIn, sizeof(theChars));
    for (size_t i = 0; i < kqvASCII_BlockSize; ++i) {
      theOut[i] = static_cast<char>(theChars[i]);
    }
    theOut += kqvASCII_BlockSize;
    anIn += kqvASCII_BlockSize;
  }
  *anOut = theOut;
  return anIn;
}

// Encodes the characters in front of anEnd and stops in front of the first one that does not fit whole: there
// *aNext is left. Returns the number of bytes.
static size_t qvUnicode_S_EncodePiece(char* anOut, size_t aRoom, const wchar_t** aNext,
                                      const wchar_t* anEnd) {
  // The room may be said to be endless.
  const char* theOutEnd = anOut + (aRoom < kqvUnicode_PieceMaxSize ? aRoom : kqvUnicode_PieceMaxSize);
  const wchar_t* theNext = *aNext;
  char* theOut = anOut;
  theNext = qvUnicode_S_NarrowBlocks(&theOut, theOutEnd, theNext, anEnd);
  while (anEnd - theNext >= kqvUnicode_GroupSize && theOutEnd - theOut >= kqvUnicode_GroupMaxSize) {
    uint32 theBits = 0;
    for (size_t i = 0; i < kqvUnicode_GroupSize; ++i) {
      uint32 theChar = static_cast<uint32>(theNext[i]) & kqvUnicode_ValueMask;
      theBits |= theChar;
      theOut = qvUTF_S_Write(theOut, theChar);
    }
    theNext += kqvUnicode_GroupSize;
    if (theBits < 0x80) {
      theNext = qvUnicode_S_NarrowBlocks(&theOut, theOutEnd, theNext, anEnd);
    }
  }
  for (; theNext < anEnd; ++theNext) {
    uint32 theChar = static_cast<uint32>(*theNext) & kqvUnicode_ValueMask;
    size_t theLeft = static_cast<size_t>(theOutEnd - theOut);
    if (theLeft >= kqvUTF_WriteRoom) {
      theOut = qvUTF_S_Write(theOut, theChar);
      continue;
    }
    size_t theLength = qvUnicode_UTF8CharLength(theChar);
    if (theLength > theLeft) {
      break;
    }
    theOut += qvUnicode_WriteUTF8Char(theOut, theLength, theChar);
  }
  *aNext = theNext;
  return static_cast<size_t>(theOut - anOut);
}

size_t qvUnicode_WideToUTF8(char* anOut, const wchar_t* anIn, size_t anOutMax) {
  if (anOut == NULL) {
    return qvUnicode_S_CountBytes(anIn);
  }
  size_t theCount = 0;
  bool thefStopped = false;
  while (theCount < anOutMax && !thefStopped) {
    size_t theRoom = anOutMax - theCount;
    size_t theMaxLength = theRoom < kqvUnicode_PieceSize ? theRoom : kqvUnicode_PieceSize;
    size_t theLength = wcsnlen(anIn, theMaxLength);
    const wchar_t* theEnd = anIn + theLength;
    theCount += qvUnicode_S_EncodePiece(anOut + theCount, theRoom, &anIn, theEnd);
    thefStopped = anIn < theEnd || theLength < theMaxLength;
  }
  if (theCount < anOutMax) {
    anOut[theCount] = '\0';
  }
  return theCount;
}
