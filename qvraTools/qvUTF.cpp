// ISO-8859-1, and the validity of UTF-8, of qvUTF.h; and the output of the converters.

#include "qvraTools/qvUTF.h"

#include <string.h>

#include "qvraTools/qvASCIIBlock_p.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvUTF_p.h"
#include "qvraTools/qvUnicode.h"
#include "qvraTools/qvUnicode_p.h"

#define kqvUTF_MaxGrowth   2   /* bytes that one byte becomes                */
#define kqvUTF_ShortLength 256 /* bytes that are converted on the stack first */

const uint8 kUTF16FirstByteMark[7] = {0x00, 0x00, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC};

// Converts aLength bytes without a terminator and returns the length of the result. anOut is null in the pass
// that counts; the other one has room for a terminator behind the result, which may be written over.
typedef size_t (*qvUTF_S_Worker)(char* anOut, const uint8* anIn, size_t aLength);

void qvUTF_S_PutByte(qvUTF_S_Output* anOutput, uint32 aByte) {
  if (anOutput->mOut != NULL && anOutput->mLength < anOutput->mMax) {
    anOutput->mOut[anOutput->mLength] = static_cast<char>(aByte);
  }
  ++anOutput->mLength;
}

void qvUTF_S_PutChar(qvUTF_S_Output* anOutput, uint32 aChar) {
  if (aChar > kqvUnicode_MaxUTF16) {
    aChar = kqvUTF_ReplacementChar;
  }
  if (anOutput->mOut != NULL && qvUTF_S_Room(anOutput) >= kqvUTF_WriteRoom) {
    anOutput->mLength =
        static_cast<size_t>(qvUTF_S_Write(anOutput->mOut + anOutput->mLength, aChar) - anOutput->mOut);
    return;
  }
  size_t theLength = qvUnicode_UTF8CharLength(aChar);
  if (anOutput->mOut == NULL) {
    anOutput->mLength += theLength;
    return;
  }
  size_t theShift = 6 * (theLength - 1);
  qvUTF_S_PutByte(anOutput, kUTF16FirstByteMark[theLength] | (aChar >> theShift));
  while (theShift > 0) {
    theShift -= 6;
    qvUTF_S_PutByte(anOutput, 0x80 | ((aChar >> theShift) & 0x3F));
  }
}

// ASCII at the start is the same in both encodings, and looked at only once. What follows is converted on the
// stack and then copied if it is short; if it is long, the first pass counts, so that both ways the block has
// just the size of the result.
static char* qvUTF_S_Convert(qvUTF_S_Worker aWorker, const char* anIn, size_t aLength) {
  const uint8* theBytes = reinterpret_cast<const uint8*>(anIn);
  size_t theStart = qvASCII_S_BlocksLength(theBytes, aLength);
  const uint8* theRest = theBytes + theStart;
  size_t theRestLength = aLength - theStart;
  char theShortResult[kqvUTF_MaxGrowth * kqvUTF_ShortLength + 1];
  bool thefShort = theRestLength <= kqvUTF_ShortLength;
  size_t theRestSize = aWorker(thefShort ? theShortResult : NULL, theRest, theRestLength);
  char* theResult = static_cast<char*>(qvMalloc(theStart + theRestSize + 1));
  if (theStart > 0) {
    memcpy(theResult, theBytes, theStart);
  }
  if (thefShort) {
    memcpy(theResult + theStart, theShortResult, theRestSize);
  } else {
    aWorker(theResult + theStart, theRest, theRestLength);
  }
  theResult[theStart + theRestSize] = '\0';
  return theResult;
}

// The codes of ISO-8859-1 are those of Unicode.
static size_t qvUTF_S_WorkISO88591ToUTF8(char* anOut, const uint8* anIn, size_t aLength) {
  if (anOut == NULL) {
    size_t theLength = aLength;
    for (size_t i = 0; i < aLength; ++i) {
      theLength += anIn[i] >> 7;
    }
    return theLength;
  }
  char* theOut = anOut;
  size_t thePosition = 0;
  while (thePosition < aLength) {
    size_t theLeft = aLength - thePosition;
    size_t theBlock = theLeft < kqvASCII_BlockSize ? theLeft : kqvASCII_BlockSize;
    if (theBlock == kqvASCII_BlockSize && qvASCII_S_IsBlock(anIn + thePosition)) {
      memcpy(theOut, anIn + thePosition, kqvASCII_BlockSize);
      theOut += kqvASCII_BlockSize;
    } else {
#pragma GCC unroll 4
      for (size_t i = 0; i < theBlock; ++i) {
        theOut = qvUTF_S_WriteShort(theOut, anIn[thePosition + i]);
      }
    }
    thePosition += theBlock;
  }
  return static_cast<size_t>(theOut - anOut);
}

// 1 for a lead of two and more bytes.
static inline uint32 qvUTF_S_IsLead(uint32 aByte) { return (aByte + 0x40) >> 8; }

// The number of leads in a block of plain text, in which all leads are of two bytes and no lead follows
// another, not behind the block either; or -1.
static int qvUTF_S_LeadsOfPlainBlock(const uint8* anIn) {
  size_t theLeads = 0;  // byte by byte
  size_t theOthers = 0;
  for (size_t i = 0; i < kqvASCII_BlockSize / sizeof(size_t); ++i) {
    size_t theWord = qvASCII_S_LoadWord(anIn, i);
    size_t theNext = qvASCII_S_LoadWord(anIn + 1, i);
    size_t theWordLeads = theWord & theWord << 1 & kqvASCII_OfBytes(0x80u);
    theOthers |= theWordLeads & (theWord << 2 | (theNext & theNext << 1));
    theLeads += theWordLeads >> 7;
  }
  // The product has the sum of all bytes in its uppermost one.
  return theOthers == 0 ? static_cast<int>(theLeads * kqvASCII_OfBytes(1u) >> (8 * (sizeof(size_t) - 1)))
                        : -1;
}

// Writes a block of plain text; aLead is the one in front of it, or 0. A lead is written too, and then
// written over by what both bytes make.
static void qvUTF_S_WritePlainBlock(char* anOut, const uint8* anIn, uint32 aLead) {
#pragma GCC unroll 4
  for (size_t i = 0; i < kqvASCII_BlockSize; ++i) {
    uint32 theByte = anIn[i];
    uint32 thefLead = qvUTF_S_IsLead(theByte);
    *anOut = static_cast<char>((theByte & ~(aLead & 0xC0)) | aLead << 6);
    anOut += 1 - thefLead;
    aLead = theByte & (0 - thefLead);
  }
}

// One character, whatever it is: returns how many bytes it takes.
static size_t qvUTF_S_ToISO88591(const uint8* anIn, size_t aLength, uint32* aChar) {
  uint32 theLead = anIn[0];
  if (theLead >= 0xE0) {
    // KEEP qvUTFKept.SkipsOneByteMoreThanTheSequenceHas
    // The byte behind a sequence of 3 or 4 bytes goes with it: "\xE2\x82\xAC-x" becomes "?x".
    size_t theSkipped = theLead >= 0xF0 ? 5 : 4;
    *aChar = kqvUTF_BadByte;
    return theSkipped < aLength ? theSkipped : aLength;
  }
  if (qvUTF_S_IsLead(theLead) == 0) {
    *aChar = theLead;
    return 1;
  }
  *aChar = theLead << 6 | (aLength > 1 ? anIn[1] & 0x3Fu : 0);
  return aLength > 1 ? 2 : 1;
}

static size_t qvUTF_S_WorkUTF8ToISO88591(char* anOut, const uint8* anIn, size_t aLength) {
  size_t theCount = 0;
  size_t thePosition = 0;
  uint32 theLead = 0;  // right in front of the position, or none
  while (thePosition < aLength) {
    const uint8* theNext = anIn + thePosition;
    size_t theLeft = aLength - thePosition;
    int theLeads = theLeft > kqvASCII_BlockSize ? qvUTF_S_LeadsOfPlainBlock(theNext) : -1;
    if (theLeads >= 0) {
      if (anOut != NULL) {
        qvUTF_S_WritePlainBlock(anOut + theCount, theNext, theLead);
      }
      theCount += kqvASCII_BlockSize - static_cast<size_t>(theLeads);
      thePosition += kqvASCII_BlockSize;
      uint32 theLast = theNext[kqvASCII_BlockSize - 1];
      theLead = theLast & (0 - qvUTF_S_IsLead(theLast));
      continue;
    }
    size_t theStop = thePosition + (theLeft < kqvASCII_BlockSize ? theLeft : kqvASCII_BlockSize);
    thePosition -= theLead != 0 ? 1 : 0;
    theLead = 0;
    while (thePosition < theStop) {
      uint32 theChar;
      thePosition += qvUTF_S_ToISO88591(anIn + thePosition, aLength - thePosition, &theChar);
      if (anOut != NULL) {
        anOut[theCount] = static_cast<char>(theChar);
      }
      ++theCount;
    }
  }
  return theCount;
}

char* qvUTF_ISO88591ToUTF8(const char* anIn, size_t aLength) {
  return qvUTF_S_Convert(qvUTF_S_WorkISO88591ToUTF8, anIn, aLength);
}

char* qvUTF_UTF8ToISO88591(const char* anIn, size_t aLength) {
  return qvUTF_S_Convert(qvUTF_S_WorkUTF8ToISO88591, anIn, aLength);
}

int qvUTF_MakeValidUTF8(char* aText, int aLength) {
  if (aLength <= 0) {
    return 0;
  }
  int theLength = static_cast<int>(qvUnicode_S_ValidLength(aText, static_cast<size_t>(aLength)));
  if (theLength < aLength) {
    aText[theLength] = '\0';
  }
  return theLength;
}
