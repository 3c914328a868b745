// Whole texts from UTF-8 to wide text, and the checks of them.
//
// A text goes through in pieces whose end is looked for first, so that blocks of it can be read without a
// look for the terminator. A block is ASCII, or five characters of three bytes each, or any characters of up
// to three bytes; blocks of others are read character by character. The first three have no branches inside:
// where the characters of a text begin is hard to foresee.

#include <string.h>

#include "qvraTools/qvASCIIBlock_p.h"
#include "qvraTools/qvUnicode.h"
#include "qvraTools/qvUnicode_p.h"

#define kqvUnicode_PieceSize   4096                     /* bytes; stays in the nearest cache             */
#define kqvUnicode_BlockReach  (kqvASCII_BlockSize + 2) /* bytes that are read to check a block          */
#define kqvUnicode_Triples     5                        /* characters of three bytes that go together    */
#define kqvUnicode_TripleSize  3
#define kqvUnicode_TriplesSize (kqvUnicode_Triples * kqvUnicode_TripleSize)

static_assert(kqvUnicode_TriplesSize + 1 == kqvASCII_BlockSize,
              "the last word of the triples ends with a block");

// --------------------------------------------------------------------------- characters of three bytes

// Four bytes as they lie in memory.
static inline uint32 qvUnicode_S_Load(const uint8* anIn) {
  uint32 theWord;
  memcpy(&theWord, anIn, sizeof(theWord));
  return theWord;
}

static inline uint32 qvUnicode_S_Word(uint8 aByte0, uint8 aByte1, uint8 aByte2) {
  const uint8 theBytes[sizeof(uint32)] = {aByte0, aByte1, aByte2, 0};
  return qvUnicode_S_Load(theBytes);
}

// Whether a lead and its continuation bytes stand there, and no shorter form would do.
static inline bool qvUnicode_S_IsTriple(uint32 aWord) {
  uint32 thefShaped = (aWord & qvUnicode_S_Word(0xF0, 0xC0, 0xC0)) == qvUnicode_S_Word(0xE0, 0x80, 0x80);
  uint32 thefLong = (aWord & qvUnicode_S_Word(0x0F, 0x20, 0)) != 0;
  return (thefShaped & thefLong) != 0;
}

// First a look at the leads of the first and the last one, which mostly decides.
static inline bool qvUnicode_S_AreTriples(const uint8* anIn) {
  if ((anIn[0] & anIn[kqvUnicode_TriplesSize - kqvUnicode_TripleSize]) < 0xE0) {
    return false;
  }
  bool theResult = true;
#pragma GCC unroll 5
  for (size_t i = 0; i < kqvUnicode_Triples; ++i) {
    theResult &= qvUnicode_S_IsTriple(qvUnicode_S_Load(anIn + kqvUnicode_TripleSize * i));
  }
  return theResult;
}

// The marks of the bytes are taken off together.
static inline uint32 qvUnicode_S_Triple(const uint8* anIn) {
  return (static_cast<uint32>(anIn[0]) << 12) + (static_cast<uint32>(anIn[1]) << 6) + anIn[2] -
         ((0xE0u << 12) + (0x80u << 6) + 0x80u);
}

// ------------------------------------------------------------------------- characters of up to three bytes

// What each byte of a word is: its uppermost bit says so, the others mean nothing. In which order the bytes
// lie in a word does not matter.
#define kqvUnicode_AnswerBits kqvASCII_OfBytes(0x80u)

static inline size_t qvUnicode_S_Continuations(size_t aWord) { return aWord & ~(aWord << 1); }

// Leads of two bytes and more, and of three and more.
static inline size_t qvUnicode_S_Leads(size_t aWord) { return aWord & aWord << 1; }
static inline size_t qvUnicode_S_LongLeads(size_t aWord) { return aWord & aWord << 1 & aWord << 2; }

// Whether each byte of the word at anIn is the lead of a longer character or of one that a shorter form would
// do for, or the second byte behind it is a continuation byte without being wanted or the other way round.
static inline size_t qvUnicode_S_Faults(const uint8* anIn) {
  size_t theWord = qvASCII_S_LoadWord(anIn, 0);
  size_t theNext = qvASCII_S_LoadWord(anIn + 1, 0);
  size_t theSecond = qvASCII_S_LoadWord(anIn + 2, 0);
  size_t theLongLeads = qvUnicode_S_LongLeads(theWord);
  size_t theWanted = theLongLeads | qvUnicode_S_Leads(theNext);
  // What no shorter form has room for: bits 1 to 4 of a lead of two bytes; of one of three bytes bit 0, too,
  // and bit 5 of the byte behind it.
  size_t theLeadBits =
      (theWord & kqvASCII_OfBytes(0x1Eu)) | (theWord & theWord >> 5 & kqvASCII_OfBytes(0x01u));
  size_t theLongEnough = (theLeadBits + kqvASCII_OfBytes(0x7Fu)) | (theLongLeads & theNext << 2);
  return (theLongLeads & theWord << 3) | (qvUnicode_S_Leads(theWord) & ~theLongEnough) |
         (qvUnicode_S_Continuations(theSecond) ^ theWanted);
}

static inline uint32 qvUnicode_S_IsContinuation(uint8 aByte) { return (aByte & 0xC0u) == 0x80; }

// Whether all characters that begin in a block are valid ones of up to three bytes.
static inline bool qvUnicode_S_IsValidBlock(const uint8* anIn) {
  size_t theFaults = 0;
  for (size_t i = 0; i < kqvASCII_BlockSize; i += sizeof(size_t)) {
    theFaults |= qvUnicode_S_Faults(anIn + i);
  }
  // The first two bytes are behind none of these.
  uint32 thefWanted = anIn[0] >= 0xC0;
  uint32 thefMisplaced =
      qvUnicode_S_IsContinuation(anIn[0]) | (qvUnicode_S_IsContinuation(anIn[1]) ^ thefWanted);
  return ((theFaults & kqvUnicode_AnswerBits) | thefMisplaced) == 0;
}

// How many bytes at the end of a valid block belong to a character that goes on behind it.
static inline size_t qvUnicode_S_CutLength(const uint8* anIn) {
  size_t thefCut = qvUnicode_S_IsContinuation(anIn[kqvASCII_BlockSize]);
  return thefCut + (thefCut & qvUnicode_S_IsContinuation(anIn[kqvASCII_BlockSize - 1]));
}

// How many characters begin in a block.
static inline size_t qvUnicode_S_CountBlock(const uint8* anIn) {
  size_t theBegins = 0;  // byte by byte
  for (size_t i = 0; i < kqvASCII_BlockSize; i += sizeof(size_t)) {
    theBegins += ~qvUnicode_S_Continuations(qvASCII_S_LoadWord(anIn + i, 0)) >> 7 & kqvASCII_OfBytes(1u);
  }
  // The product has the sum of all bytes in its uppermost one.
  return theBegins * kqvASCII_OfBytes(1u) >> (8 * (sizeof(size_t) - 1));
}

// The bytes of a word without their marks.
static inline size_t qvUnicode_S_Payload(size_t aWord) {
  size_t theMarked = aWord & kqvUnicode_AnswerBits;
  size_t theLongLeads = qvUnicode_S_LongLeads(aWord) & kqvUnicode_AnswerBits;
  return aWord & ~(theMarked | theMarked >> 1 | theLongLeads >> 2);
}

// All bits of each continuation byte.
static inline size_t qvUnicode_S_ContinuationMask(size_t aWord) {
  size_t theContinuations = qvUnicode_S_Continuations(aWord) & kqvUnicode_AnswerBits;
  return theContinuations | (theContinuations - (theContinuations >> 7));
}

// --------------------------------------------------------------------------------- where characters go

// They are just counted.
struct qvUnicode_S_CharCounter {
  size_t mCount;

  void PutASCII(const uint8*) { mCount += kqvASCII_BlockSize; }
  void PutTriples(const uint8*) { mCount += kqvUnicode_Triples; }
  void PutBlock(const uint8*, size_t, size_t aCount) { mCount += aCount; }
  void Put(uint32) { ++mCount; }
};

// They become wide text.
struct qvUnicode_S_CharWriter {
  wchar_t* mNext;

  void PutASCII(const uint8* anIn) {
    uint8 theBytes[kqvASCII_BlockSize];
    memcpy(theBytes, anIn, sizeof(theBytes));
    for (size_t i = 0; i < kqvASCII_BlockSize; ++i) {
      mNext[i] = theBytes[i];
    }
    mNext += kqvASCII_BlockSize;
  }

  void PutTriples(const uint8* anIn) {
#pragma GCC unroll 5
    for (size_t i = 0; i < kqvUnicode_Triples; ++i) {
      mNext[i] = static_cast<wchar_t>(qvUnicode_S_Triple(anIn + kqvUnicode_TripleSize * i));
    }
    mNext += kqvUnicode_Triples;
  }

  // Each byte writes what there is of its character so far, no more than aLength of them. Of a last character
  // that goes on behind the block that is written over later.
  void PutBlock(const uint8* anIn, size_t aLength, size_t aCount) {
    uint8 thePayload[kqvASCII_BlockSize];
    int8 theMasks[kqvASCII_BlockSize];
    for (size_t i = 0; i < kqvASCII_BlockSize; i += sizeof(size_t)) {
      size_t theWord = qvASCII_S_LoadWord(anIn + i, 0);
      size_t theWordPayload = qvUnicode_S_Payload(theWord);
      size_t theWordMask = qvUnicode_S_ContinuationMask(theWord);
      memcpy(thePayload + i, &theWordPayload, sizeof(size_t));
      memcpy(theMasks + i, &theWordMask, sizeof(size_t));
    }
    ptrdiff_t theNumber = -1;
    uint32 theChar = 0;
#pragma GCC unroll 4
    for (size_t i = 0; i < aLength; ++i) {
      theNumber += 1 + theMasks[i];
      theChar = (theChar << 6 & static_cast<uint32>(theMasks[i])) | thePayload[i];
      mNext[theNumber] = static_cast<wchar_t>(theChar);
    }
    mNext += aCount;
  }

  void Put(uint32 aChar) { *mNext++ = static_cast<wchar_t>(aChar); }
};

// ---------------------------------------------------------------------------------------------- texts

// Reads a block, or what is left of one at the end. Returns how many bytes it takes: none when there are long
// forms, or malformed ones.
template <typename Output>
static inline size_t qvUnicode_S_ReadBlock(const uint8* anIn, size_t aLeft, Output* anOutput) {
  uint8 theLastBytes[kqvUnicode_BlockReach];
  size_t theMissing = 0;
  if (aLeft < kqvUnicode_BlockReach) {
    memset(theLastBytes, 0, sizeof(theLastBytes));
    memcpy(theLastBytes, anIn, aLeft);
    anIn = theLastBytes;
    theMissing = aLeft < kqvASCII_BlockSize ? kqvASCII_BlockSize - aLeft : 0;
  }
  if (!qvUnicode_S_IsValidBlock(anIn)) {
    return 0;
  }
  size_t theLength = kqvASCII_BlockSize - theMissing;
  size_t theCutLength = qvUnicode_S_CutLength(anIn);
  size_t theCut = (theCutLength + 1) / 2;  // characters
  anOutput->PutBlock(anIn, theLength, qvUnicode_S_CountBlock(anIn) - theMissing - theCut);
  return theLength - theCutLength;
}

// Takes the characters that begin in front of anEnd, and returns where the last one ends: less than anEnd
// when a malformed one follows. Nothing behind aTextEnd is read; a terminated text may have it anywhere
// behind the terminator, which is where reading stops.
template <typename Output>
static const uint8* qvUnicode_S_ReadPiece(const uint8* anIn, const uint8* anEnd, const uint8* aTextEnd,
                                          Output* anOutput) {
  Output theOutput = *anOutput;  // where nothing that is written can change it
  while (anIn < anEnd) {
    size_t theLeft = static_cast<size_t>(anEnd - anIn);
    if (theLeft >= kqvASCII_BlockSize) {
      if (qvASCII_S_IsBlock(anIn)) {
        theOutput.PutASCII(anIn);
        anIn += kqvASCII_BlockSize;
        continue;
      }
      if (qvUnicode_S_AreTriples(anIn)) {
        theOutput.PutTriples(anIn);
        anIn += kqvUnicode_TriplesSize;
        continue;
      }
    }
    size_t theBlockLength = qvUnicode_S_ReadBlock(anIn, theLeft, &theOutput);
    anIn += theBlockLength;
    if (theBlockLength > 0) {
      continue;
    }
    const uint8* theStop = anIn + (theLeft < kqvASCII_BlockSize ? theLeft : kqvASCII_BlockSize);
    while (anIn < theStop) {
      uint32 theChar;
      size_t theTaken = qvUnicode_ReadUTF8Char(reinterpret_cast<const char*>(anIn),
                                               static_cast<size_t>(aTextEnd - anIn), &theChar);
      if (theTaken == kqvUnicode_Invalid || theTaken == kqvUnicode_Incomplete) {
        *anOutput = theOutput;
        return anIn;
      }
      theOutput.Put(theChar);
      anIn += theTaken;
    }
  }
  *anOutput = theOutput;
  return anIn;
}

// Reads the next piece of a terminated text, of at most aMax bytes. Returns whether there are more; *aNext
// gets null when there is a malformed character.
template <typename Output>
static bool qvUnicode_S_ReadNextPiece(const uint8** aNext, size_t aMax, Output* anOutput) {
  size_t theMax = aMax < kqvUnicode_PieceSize ? aMax : kqvUnicode_PieceSize;
  size_t theLength = strnlen(reinterpret_cast<const char*>(*aNext), theMax);
  const uint8* theEnd = *aNext + theLength;
  const uint8* theStop = qvUnicode_S_ReadPiece(*aNext, theEnd, theEnd + kqvUnicode_MaxUTF8Length, anOutput);
  *aNext = theStop < theEnd ? NULL : theStop;
  return *aNext != NULL && theLength == theMax;
}

size_t qvUnicode_UTF8ToWide(wchar_t* anOut, const char* anIn, size_t anOutMax) {
  const uint8* theNext = reinterpret_cast<const uint8*>(anIn);
  if (anOut == NULL) {
    qvUnicode_S_CharCounter theCounter = {0};
    while (qvUnicode_S_ReadNextPiece(&theNext, kqvUnicode_PieceSize, &theCounter)) {
    }
    return theNext != NULL ? theCounter.mCount : kqvUnicode_Invalid;
  }
  qvUnicode_S_CharWriter theWriter = {anOut};
  size_t theRoom = anOutMax;
  // A piece has no more bytes than there is room for characters, so that all that begin in it fit, and what
  // lies behind them is not looked at.
  while (theRoom > 0 && qvUnicode_S_ReadNextPiece(&theNext, theRoom, &theWriter)) {
    theRoom = anOutMax - static_cast<size_t>(theWriter.mNext - anOut);
  }
  size_t theCount = static_cast<size_t>(theWriter.mNext - anOut);
  if (theNext == NULL) {
    return kqvUnicode_Invalid;
  }
  if (theCount < anOutMax) {
    anOut[theCount] = L'\0';
  }
  return theCount;
}

size_t qvUnicode_S_ValidLength(const char* aText, size_t aLength) {
  const uint8* theText = reinterpret_cast<const uint8*>(aText);
  const uint8* theEnd = theText + aLength;
  qvUnicode_S_CharCounter theCounter = {0};
  const uint8* theRest = theText + qvASCII_S_BlocksLength(theText, aLength);
  return static_cast<size_t>(qvUnicode_S_ReadPiece(theRest, theEnd, theEnd, &theCounter) - theText);
}
