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

static inline bool qvUnicode_S_IsASCIIBlock(const wchar_t* aChars) {
  return qvASCII_S_AreClear<kqvASCII_BlockSize * sizeof(wchar_t)>(aChars, kqvASCII_OfChars(0xFFFFFF80u));
}

// How many bytes a character has behind the first.
static inline uint32 qvUnicode_S_BytesBehindFirst(wchar_t aChar) {
  int32 theChar = static_cast<int32>(static_cast<uint32>(aChar) & kqvUnicode_ValueMask);
  return static_cast<uint32>((theChar > 0x7F) + (theChar > 0x7FF) + (theChar > 0xFFFF) +
                             (theChar > 0x1FFFFF) + (theChar > 0x3FFFFFF));
}

static size_t qvUnicode_S_CountPiece(const wchar_t* anIn, size_t aLength) {
  size_t theCount = aLength;
  size_t theBlockLength;
  for (const wchar_t* theEnd = anIn + aLength; anIn < theEnd; anIn += theBlockLength) {
    size_t theLeft = static_cast<size_t>(theEnd - anIn);
    theBlockLength = theLeft < kqvASCII_BlockSize ? theLeft : kqvASCII_BlockSize;
    if (theBlockLength == kqvASCII_BlockSize && qvUnicode_S_IsASCIIBlock(anIn)) {
      continue;
    }
    uint32 theOthers = 0;
    for (size_t i = 0; i < theBlockLength; ++i) {
      theOthers += qvUnicode_S_BytesBehindFirst(anIn[i]);
    }
    theCount += theOthers;
  }
  return theCount;
}

static size_t qvUnicode_S_CountBytes(const wchar_t* anIn) {
  size_t theCount = 0;
  size_t theLength;
  do {
    theLength = wcsnlen(anIn, kqvUnicode_PieceSize);
    theCount += qvUnicode_S_CountPiece(anIn, theLength);
    anIn += theLength;
  } while (theLength == kqvUnicode_PieceSize);
  return theCount;
}

static inline void qvUnicode_S_NarrowBlock(char* anOut, const wchar_t* aChars) {
  char theBytes[kqvASCII_BlockSize];
  for (size_t i = 0; i < kqvASCII_BlockSize; ++i) {
    theBytes[i] = static_cast<char>(aChars[i]);
  }
  memcpy(anOut, theBytes, sizeof(theBytes));
}

// Encodes the characters in front of anEnd and stops in front of the first one that does not fit whole: there
// *aNext is left. Returns the number of bytes.
static size_t qvUnicode_S_EncodePiece(char* anOut, size_t aRoom, const wchar_t** aNext,
                                      const wchar_t* anEnd) {
  // The room may be said to be endless.
  const char* theOutEnd = anOut + (aRoom < kqvUnicode_PieceMaxSize ? aRoom : kqvUnicode_PieceMaxSize);
  const wchar_t* theNext = *aNext;
  char* theOut = anOut;
  for (;;) {
    ptrdiff_t theLeft = anEnd - theNext;
    ptrdiff_t theRoom = theOutEnd - theOut;
    if (theLeft >= kqvASCII_BlockSize && theRoom >= kqvASCII_BlockSize && qvUnicode_S_IsASCIIBlock(theNext)) {
      qvUnicode_S_NarrowBlock(theOut, theNext);
      theNext += kqvASCII_BlockSize;
      theOut += kqvASCII_BlockSize;
    } else if (theLeft >= kqvUnicode_GroupSize && theRoom >= kqvUnicode_GroupMaxSize) {
      for (size_t i = 0; i < kqvUnicode_GroupSize; ++i) {
        theOut = qvUTF_S_Write(theOut, static_cast<uint32>(theNext[i]) & kqvUnicode_ValueMask);
      }
      theNext += kqvUnicode_GroupSize;
    } else {
      break;
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
