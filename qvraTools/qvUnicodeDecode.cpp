// Whole texts from UTF-8 to wide text, and the checks of them.
//
// A text goes through in pieces whose end is looked for first, so that blocks of it can be read without a
// look for the terminator. A block is ASCII, or five characters of three bytes each, or else goes through a
// state machine. None of the three has branches inside: where the characters of a text begin is hard to
// foresee.

#include <string.h>

#include "qvraTools/qvASCIIBlock_p.h"
#include "qvraTools/qvUnicode.h"
#include "qvraTools/qvUnicode_p.h"

#define kqvUnicode_PieceSize   4096 /* bytes; stays in the nearest cache                      */
#define kqvUnicode_Triples     5    /* characters of three bytes that are looked at together  */
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
  return ((aWord & qvUnicode_S_Word(0xF0, 0xC0, 0xC0)) == qvUnicode_S_Word(0xE0, 0x80, 0x80)) &
         ((aWord & qvUnicode_S_Word(0x0F, 0x20, 0)) != 0);
}

static bool qvUnicode_S_AreTriples(const uint8* anIn) {
  bool theResult = true;
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

// ------------------------------------------------------------------------------------- the state machine

// A byte has a word, in which each state has five bits with the state that follows: the word shifted by the
// state is the next state. Leads from 0xF1 on are errors here, and their block is read character by
// character.
enum {
  kqvUnicode_Error = 0,
  kqvUnicode_Between = 5,  // two characters
  kqvUnicode_Wants1 = 10,  // one more continuation byte
  kqvUnicode_Wants2 = 15,
  kqvUnicode_BehindE0 = 20,  // a continuation byte that makes no overlong form, and another
  kqvUnicode_BehindF0 = 25   // a continuation byte that makes no overlong form, and two others
};

#define kqvUnicode_StateMask 0x1Fu

struct qvUnicode_S_Transitions {
  uint32 mOfByte[256];
};

static constexpr uint32 qvUnicode_S_TransitionsOf(uint32 aByte) {
  if (aByte < 0x80) {
    return kqvUnicode_Between << kqvUnicode_Between;
  }
  if (aByte < 0xC0) {
    return kqvUnicode_Between << kqvUnicode_Wants1 | kqvUnicode_Wants1 << kqvUnicode_Wants2 |
           (aByte >= 0xA0 ? kqvUnicode_Wants1 << kqvUnicode_BehindE0 : 0) |
           (aByte >= 0x90 ? kqvUnicode_Wants2 << kqvUnicode_BehindF0 : 0);
  }
  uint32 theNext = aByte < 0xC2    ? kqvUnicode_Error
                   : aByte < 0xE0  ? kqvUnicode_Wants1
                   : aByte == 0xE0 ? kqvUnicode_BehindE0
                   : aByte < 0xF0  ? kqvUnicode_Wants2
                   : aByte == 0xF0 ? kqvUnicode_BehindF0
                                   : kqvUnicode_Error;
  return theNext << kqvUnicode_Between;
}

static constexpr qvUnicode_S_Transitions qvUnicode_S_MakeTransitions() {
  qvUnicode_S_Transitions theTable = {};
  for (uint32 theByte = 0; theByte < 256; ++theByte) {
    theTable.mOfByte[theByte] = qvUnicode_S_TransitionsOf(theByte);
  }
  return theTable;
}

static constexpr qvUnicode_S_Transitions kTransitions = qvUnicode_S_MakeTransitions();

// The end of the character in which the bytes of a block end, or null when they are not valid.
static const uint8* qvUnicode_S_CheckBlock(const uint8* anIn, size_t aLength, const uint8* aTextEnd) {
  uint32 theState = kqvUnicode_Between;
  for (const uint8* theEnd = anIn + aLength; anIn < theEnd; ++anIn) {
    theState = kTransitions.mOfByte[*anIn] >> (theState & kqvUnicode_StateMask);
  }
  while ((theState &= kqvUnicode_StateMask) != kqvUnicode_Between) {
    if (theState == kqvUnicode_Error || anIn == aTextEnd) {
      return NULL;
    }
    theState = kTransitions.mOfByte[*anIn++] >> theState;
  }
  return anIn;
}

// 1 for a byte that begins a character.
static inline uint32 qvUnicode_S_Begins(uint32 aByte) { return 1 - (aByte >> 7 & ~(aByte >> 6) & 1); }

// --------------------------------------------------------------------------------- where characters go

// They are just counted.
struct qvUnicode_S_CharCounter {
  size_t mCount;

  void PutASCII(const uint8*) { mCount += kqvASCII_BlockSize; }
  void PutTriples(const uint8*) { mCount += kqvUnicode_Triples; }
  void PutValid(const uint8* anIn, const uint8* anEnd) {
    while (anIn < anEnd) {
      mCount += qvUnicode_S_Begins(*anIn++);
    }
  }
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
    for (size_t i = 0; i < kqvUnicode_Triples; ++i) {
      mNext[i] = static_cast<wchar_t>(qvUnicode_S_Triple(anIn + kqvUnicode_TripleSize * i));
    }
    mNext += kqvUnicode_Triples;
  }

  // Each byte writes what there is of its character so far.
  void PutValid(const uint8* anIn, const uint8* anEnd) {
    // What a byte adds to its character, by its four upper bits; leads of four bytes are 0xF0 here.
    static const uint8 kPayload[16] = {0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F, 0x7F,
                                       0x3F, 0x3F, 0x3F, 0x3F, 0x1F, 0x1F, 0x0F, 0x07};
    wchar_t* theNext = mNext;
    uint32 theChar = 0;
    while (anIn < anEnd) {
      uint32 theByte = *anIn++;
      uint32 thefBegins = qvUnicode_S_Begins(theByte);
      theChar = (theChar << 6 & (thefBegins - 1)) | (theByte & kPayload[theByte >> 4]);
      theNext += thefBegins;
      theNext[-1] = static_cast<wchar_t>(theChar);
    }
    mNext = theNext;
  }

  void Put(uint32 aChar) { *mNext++ = static_cast<wchar_t>(aChar); }
};

// ---------------------------------------------------------------------------------------------- texts

// Takes the characters that begin in front of anEnd, and returns where the last one ends: less than anEnd
// when a malformed one follows. Nothing behind aTextEnd is read; a terminated text may have it anywhere
// behind the terminator, which is where reading stops.
template <typename Output>
static const uint8* qvUnicode_S_ReadPiece(const uint8* anIn, const uint8* anEnd, const uint8* aTextEnd,
                                          Output* anOutput) {
  Output theOutput = *anOutput;  // where nothing that is written can change it
  while (anIn < anEnd) {
    size_t theLength = static_cast<size_t>(anEnd - anIn);
    if (theLength >= kqvASCII_BlockSize) {
      theLength = kqvASCII_BlockSize;
      if (qvASCII_S_IsBlock(anIn)) {
        theOutput.PutASCII(anIn);
        anIn += kqvASCII_BlockSize;
        continue;
      }
      if (*anIn >= 0xE0 && qvUnicode_S_AreTriples(anIn)) {
        theOutput.PutTriples(anIn);
        anIn += kqvUnicode_TriplesSize;
        continue;
      }
    }
    const uint8* theNext = qvUnicode_S_CheckBlock(anIn, theLength, aTextEnd);
    if (theNext != NULL) {
      theOutput.PutValid(anIn, theNext);
      anIn = theNext;
      continue;
    }
    // Long forms, or malformed ones.
    for (const uint8* theStop = anIn + theLength; anIn < theStop;) {
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
  qvUnicode_S_CharCounter theCounter = {0};
  return static_cast<size_t>(
      qvUnicode_S_ReadPiece(theText, theText + aLength, theText + aLength, &theCounter) - theText);
}
