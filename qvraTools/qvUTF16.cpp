// UTF-16 of qvUTF.h.
//
// Units go through in groups of 16. A group without surrogates is converted at once; the others are read
// character by character.

#include <string.h>

#include "qvraTools/qvASCIIBlock_p.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvUTF.h"
#include "qvraTools/qvUTF_p.h"
#include "qvraTools/qvUnicode.h"
#include "qvraTools/qvUnicode_p.h"

#define kqvUTF_BOMSize           2 /* bytes of a byte-order mark */
#define kqvUTF_BOMFirstBigEndian 0xFEu
#define kqvUTF_UnitSize          2 /* bytes */
#define kqvUTF_GroupUnits        16
#define kqvUTF_GroupSize         32  /* bytes                                             */
#define kqvUTF_UnitMaxLength     3   /* bytes of UTF-8                                    */
#define kqvUTF_CountedUnits      64  /* are counted together, where nothing is written    */
#define kqvUTF_ShortResult       512 /* bytes of UTF-8 that are put together on the stack */

static uint16 qvUTF_S_ReadUnit(const uint8* anIn, bool afBigEndian) {
  return static_cast<uint16>(afBigEndian ? (anIn[0] << 8) | anIn[1] : (anIn[1] << 8) | anIn[0]);
}

// Whether a text of that order has to be turned round on this machine.
static bool qvUTF_S_IsSwapped(bool afBigEndian) {
  const uint8 theBytes[kqvUTF_UnitSize] = {1, 0};
  uint16 theUnit;
  memcpy(&theUnit, theBytes, sizeof(theUnit));
  return (theUnit == 1) == afBigEndian;
}

// Units in the order of this machine.
template <size_t kUnits>
struct qvUTF_S_Units {
  uint16 mUnits[kUnits];
};

typedef qvUTF_S_Units<kqvUTF_GroupUnits> qvUTF_S_Group;

template <size_t kUnits>
static inline void qvUTF_S_TurnRound(qvUTF_S_Units<kUnits>* aUnits) {
  for (uint16& theUnit : aUnits->mUnits) {
    theUnit = static_cast<uint16>(theUnit << 8 | theUnit >> 8);
  }
}

template <size_t kUnits>
static inline qvUTF_S_Units<kUnits> qvUTF_S_ReadUnits(const uint8* anIn, bool afSwapped) {
  qvUTF_S_Units<kUnits> theUnits;
  memcpy(theUnits.mUnits, anIn, sizeof(theUnits.mUnits));
  if (afSwapped) {
    qvUTF_S_TurnRound(&theUnits);
  }
  return theUnits;
}

template <size_t kUnits>
static inline bool qvUTF_S_HasSurrogates(const qvUTF_S_Units<kUnits>& aUnits) {
  uint16 thefAny = 0;
  for (uint16 theUnit : aUnits.mUnits) {
    thefAny |= static_cast<uint16>((theUnit & 0xF800u) == kqvUnicode_HighSurrogateFirst);
  }
  return thefAny != 0;
}

// The length of units without surrogates in UTF-8.
template <size_t kUnits>
static inline size_t qvUTF_S_CountUnits(const qvUTF_S_Units<kUnits>& aUnits) {
  uint16 theOthers = 0;  // bytes but the first of each character
  for (uint16 theUnit : aUnits.mUnits) {
    theOthers = static_cast<uint16>(theOthers + (theUnit > 0x7F) + (theUnit > 0x7FF));
  }
  return kUnits + theOthers;
}

// Writes units without surrogates and returns the end; the byte behind it may have been written too.
static char* qvUTF_S_WriteUnits(char* anOut, const uint16* aUnits, size_t aCount) {
  for (size_t i = 0; i < aCount; ++i) {
    anOut = qvUTF_S_Write(anOut, aUnits[i]);
  }
  return anOut;
}

// A group that is often of ideographs alone.
static char* qvUTF_S_WriteGroup(char* anOut, const qvUTF_S_Group& aGroup) {
  uint16 thefShort = 0;  // any of one or two bytes
  for (uint16 theUnit : aGroup.mUnits) {
    thefShort |= static_cast<uint16>((theUnit & 0xF800u) == 0);
  }
  if (thefShort != 0) {
    return qvUTF_S_WriteUnits(anOut, aGroup.mUnits, kqvUTF_GroupUnits);
  }
#pragma GCC unroll 4
  for (size_t i = 0; i < kqvUTF_GroupUnits; ++i) {
    anOut = qvUTF_S_WriteTriple(anOut, aGroup.mUnits[i]);
  }
  return anOut;
}

template <size_t kUnits>
static inline bool qvUTF_S_AreASCII(const uint8* anIn, bool afSwapped) {
  return qvASCII_S_AreClear<kUnits * kqvUTF_UnitSize>(
      anIn, afSwapped ? kqvASCII_OfUnits(0x80FFu) : kqvASCII_OfUnits(0xFF80u));
}

static inline void qvUTF_S_NarrowGroup(char* anOut, const uint8* anIn, bool afSwapped) {
  uint16 theUnits[kqvUTF_GroupUnits];
  memcpy(theUnits, anIn, sizeof(theUnits));
  if (afSwapped) {
    for (uint16& theUnit : theUnits) {
      theUnit = static_cast<uint16>(theUnit >> 8);
    }
  }
  for (size_t i = 0; i < kqvUTF_GroupUnits; ++i) {
    anOut[i] = static_cast<char>(theUnits[i]);
  }
}

// Converts the last units of a text, fewer than a group. Returns how many bytes of the text that takes: none
// when there are surrogates or hardly room.
static size_t qvUTF_S_PutLastUnits(qvUTF_S_Output* anOutput, const uint8* anIn, size_t aLength,
                                   bool afSwapped) {
  size_t theCount = aLength / kqvUTF_UnitSize;
  uint8 theBytes[kqvUTF_GroupSize] = {0};
  memcpy(theBytes, anIn, theCount * kqvUTF_UnitSize);
  qvUTF_S_Group theGroup = qvUTF_S_ReadUnits<kqvUTF_GroupUnits>(theBytes, afSwapped);
  if (qvUTF_S_HasSurrogates(theGroup)) {
    return 0;
  }
  if (anOutput->mOut == NULL) {
    anOutput->mLength += qvUTF_S_CountUnits(theGroup) - (kqvUTF_GroupUnits - theCount);
  } else if (qvUTF_S_Room(anOutput) > kqvUTF_UnitMaxLength * theCount) {
    char* theEnd = qvUTF_S_WriteUnits(anOutput->mOut + anOutput->mLength, theGroup.mUnits, theCount);
    anOutput->mLength = static_cast<size_t>(theEnd - anOutput->mOut);
  } else {
    return 0;
  }
  return theCount * kqvUTF_UnitSize;
}

// Counts what comes in front of the first surrogates, but for the last units. Returns how many bytes of the
// text that takes.
static size_t qvUTF_S_CountText(qvUTF_S_Output* anOutput, const uint8* anIn, size_t aLength, bool afSwapped) {
  const size_t kSize = kqvUTF_CountedUnits * kqvUTF_UnitSize;
  size_t thePosition = 0;
  for (; aLength - thePosition >= kSize; thePosition += kSize) {
    if (qvUTF_S_AreASCII<kqvUTF_CountedUnits>(anIn + thePosition, afSwapped)) {
      anOutput->mLength += kqvUTF_CountedUnits;
      continue;
    }
    auto theUnits = qvUTF_S_ReadUnits<kqvUTF_CountedUnits>(anIn + thePosition, afSwapped);
    if (qvUTF_S_HasSurrogates(theUnits)) {
      break;
    }
    anOutput->mLength += qvUTF_S_CountUnits(theUnits);
  }
  return thePosition;
}

// Converts the groups at the start of a text, up to one with surrogates or for which there is no room, and
// the units behind the last group. Returns how many bytes of the text they take.
static size_t qvUTF_S_PutGroups(qvUTF_S_Output* anOutput, const uint8* anIn, size_t aLength, bool afSwapped) {
  qvUTF_S_Output theOutput = *anOutput;  // where nothing that is written can change it
  bool thefCountOnly = theOutput.mOut == NULL;
  size_t thePosition = thefCountOnly ? qvUTF_S_CountText(&theOutput, anIn, aLength, afSwapped) : 0;
  for (; aLength - thePosition >= kqvUTF_GroupSize; thePosition += kqvUTF_GroupSize) {
    const uint8* theNext = anIn + thePosition;
    size_t theRoom = qvUTF_S_Room(&theOutput);
    if (!thefCountOnly && theRoom >= kqvUTF_GroupUnits &&
        qvUTF_S_AreASCII<kqvUTF_GroupUnits>(theNext, afSwapped)) {
      qvUTF_S_NarrowGroup(theOutput.mOut + theOutput.mLength, theNext, afSwapped);
      theOutput.mLength += kqvUTF_GroupUnits;
      continue;
    }
    qvUTF_S_Group theGroup = qvUTF_S_ReadUnits<kqvUTF_GroupUnits>(theNext, afSwapped);
    if (qvUTF_S_HasSurrogates(theGroup)) {
      break;
    }
    if (thefCountOnly) {
      theOutput.mLength += qvUTF_S_CountUnits(theGroup);
      continue;
    }
    if (theRoom <= kqvUTF_UnitMaxLength * kqvUTF_GroupUnits && theRoom <= qvUTF_S_CountUnits(theGroup)) {
      break;
    }
    char* theEnd = qvUTF_S_WriteGroup(theOutput.mOut + theOutput.mLength, theGroup);
    theOutput.mLength = static_cast<size_t>(theEnd - theOutput.mOut);
  }
  *anOutput = theOutput;
  size_t theLeft = aLength - thePosition;
  if (theLeft >= kqvUTF_UnitSize && theLeft < kqvUTF_GroupSize) {
    thePosition += qvUTF_S_PutLastUnits(anOutput, anIn + thePosition, theLeft, afSwapped);
  }
  return thePosition;
}

// Reads a character of the units at anIn like qvUnicode_S_DecodeFromUTF16.
static size_t qvUTF_S_ReadUTF16(const uint8* anIn, size_t aLength, bool afBigEndian, uint32* aChar) {
  size_t theUnitsLeft = aLength / kqvUTF_UnitSize;
  uint16 theUnits[2] = {qvUTF_S_ReadUnit(anIn, afBigEndian), 0};
  if (theUnitsLeft > 1) {
    theUnits[1] = qvUTF_S_ReadUnit(anIn + kqvUTF_UnitSize, afBigEndian);
  }
  *aChar = theUnits[0];
  return qvUnicode_S_DecodeFromUTF16(theUnits, theUnitsLeft, aChar);
}

// Everything of qvUTF_S_UTF16ToUTF8 but the terminator and the look at the output's size.
static int qvUTF_S_WorkUTF16(qvUTF_S_Output* anOutput, const uint8* anIn, size_t aLength, bool afBigEndian,
                             bool afStrict) {
  bool thefSwapped = qvUTF_S_IsSwapped(afBigEndian);
  size_t thePosition = 0;
  size_t theNextGroup = 0;
  while (aLength - thePosition >= kqvUTF_UnitSize) {
    if (thePosition >= theNextGroup) {
      size_t theTaken = qvUTF_S_PutGroups(anOutput, anIn + thePosition, aLength - thePosition, thefSwapped);
      thePosition += theTaken;
      theNextGroup = thePosition + kqvUTF_GroupSize;
      continue;
    }
    uint32 theChar;
    size_t theTaken = qvUTF_S_ReadUTF16(anIn + thePosition, aLength - thePosition, afBigEndian, &theChar);
    if (theTaken == kqvUnicode_Incomplete) {
      return kqvUTF16Result_EndsInPair;
    }
    bool thefLowAlone =
        theTaken == 1 && theChar >= kqvUnicode_LowSurrogateFirst && theChar <= kqvUnicode_LowSurrogateLast;
    if (afStrict && (theTaken == kqvUnicode_Invalid || thefLowAlone)) {
      return kqvUTF16Result_LoneSurrogate;
    }
    qvUTF_S_PutChar(anOutput, theChar);
    // KEEP qvUTFKept.ReadingGoesOnInsideTheLowSurrogate
    // Two bytes for the high surrogate, but only one for the low one: the next unit begins with the low
    // surrogate's second byte.
    thePosition += theTaken == 2 ? kqvUTF_UnitSize + 1 : kqvUTF_UnitSize;
  }
  return kqvUTF16Result_Done;
}

int qvUTF_S_UTF16ToUTF8(const char* anIn, size_t aLength, int afBigEndian, int afStrict, char* anOut,
                        size_t anOutMax, size_t* aCount) {
  qvUTF_S_Output theOutput = {anOut, anOutMax, 0};
  const uint8* theBytes = reinterpret_cast<const uint8*>(anIn);
  int theResult = qvUTF_S_WorkUTF16(&theOutput, theBytes, aLength, afBigEndian != 0, afStrict != 0);
  qvUTF_S_PutByte(&theOutput, '\0');
  *aCount = theOutput.mLength;
  return anOut != NULL && theOutput.mLength > anOutMax ? kqvUTF16Result_TooSmall : theResult;
}

// A short text is converted on the stack and then copied into a block of its size: a unit becomes three bytes
// at most, and a surrogate pair four. A long one is counted first.
static char* qvUTF_S_ConvertUTF16(const char* anIn, size_t aLength, int afBigEndian) {
  char theShortResult[kqvUTF_ShortResult];
  bool thefShort = aLength / kqvUTF_UnitSize < kqvUTF_ShortResult / kqvUTF_UnitMaxLength;
  size_t theSize = 0;
  qvUTF_S_UTF16ToUTF8(anIn, aLength, afBigEndian, 0, thefShort ? theShortResult : NULL, kqvUTF_ShortResult,
                      &theSize);
  char* theResult = static_cast<char*>(qvMalloc(theSize));
  if (thefShort) {
    memcpy(theResult, theShortResult, theSize);
  } else {
    qvUTF_S_UTF16ToUTF8(anIn, aLength, afBigEndian, 0, theResult, theSize, &theSize);
  }
  return theResult;
}

char* qvUTF_UTF16BEToUTF8(const char* anIn, size_t aLength) { return qvUTF_S_ConvertUTF16(anIn, aLength, 1); }

char* qvUTF_UTF16LEToUTF8(const char* anIn, size_t aLength) { return qvUTF_S_ConvertUTF16(anIn, aLength, 0); }

char* qvUTF_UTF16BOMToUTF8(const char* anIn, size_t aLength) {
  if (aLength < kqvUTF_BOMSize) {
    return qvStrdup("");
  }
  bool thefBigEndian = static_cast<uint8>(anIn[0]) == kqvUTF_BOMFirstBigEndian;
  return qvUTF_S_ConvertUTF16(anIn + kqvUTF_BOMSize, aLength - kqvUTF_BOMSize, thefBigEndian);
}
