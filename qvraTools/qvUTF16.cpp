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
#define kqvUTF_GroupSize         32                    /* bytes                                    */
#define kqvUTF_GroupWords        (32 / sizeof(size_t)) /* words of this machine                    */
#define kqvUTF_GroupMaxLength    48                    /* bytes of UTF-8                           */

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

// The units of a group as the words that they lie in, in the order of this machine.
struct qvUTF_S_Group {
  size_t mWords[kqvUTF_GroupWords];
};

static inline qvUTF_S_Group qvUTF_S_ReadGroup(const uint8* anIn, bool afSwapped) {
  qvUTF_S_Group theGroup;
  for (size_t i = 0; i < kqvUTF_GroupWords; ++i) {
    size_t theWord = qvASCII_S_LoadWord(anIn, i);
    if (afSwapped) {
      theWord = (theWord & kqvASCII_OfUnits(0x00FFu)) << 8 | (theWord >> 8 & kqvASCII_OfUnits(0x00FFu));
    }
    theGroup.mWords[i] = theWord;
  }
  return theGroup;
}

// For each unit of a word, its uppermost bit: whether any bit from aLowestBit on is set.
static inline size_t qvUTF_S_UnitsFrom(size_t aWord, uint32 aLowestBit) {
  size_t theBits = kqvASCII_OfUnits(0x8000u - aLowestBit);
  return (((aWord & theBits) + theBits) | aWord) & kqvASCII_OfUnits(0x8000u);
}

static inline bool qvUTF_S_HasSurrogates(const qvUTF_S_Group& aGroup) {
  size_t theOthers = kqvASCII_OfUnits(0x8000u);
  for (size_t theWord : aGroup.mWords) {
    theOthers &= qvUTF_S_UnitsFrom(theWord ^ kqvASCII_OfUnits(kqvUnicode_HighSurrogateFirst), 0x800u);
  }
  return theOthers != kqvASCII_OfUnits(0x8000u);
}

// The length of a group without surrogates in UTF-8.
static inline size_t qvUTF_S_CountGroup(const qvUTF_S_Group& aGroup) {
  size_t theLengths = 0;  // unit by unit, the bytes but the first
  for (size_t theWord : aGroup.mWords) {
    theLengths += (qvUTF_S_UnitsFrom(theWord, 0x80u) >> 15) + (qvUTF_S_UnitsFrom(theWord, 0x800u) >> 15);
  }
  // The product has the sum of all units in its uppermost one.
  return kqvUTF_GroupUnits + (theLengths * kqvASCII_OfUnits(1u) >> (8 * (sizeof(size_t) - kqvUTF_UnitSize)));
}

// Writes a group without surrogates and returns its length; the byte behind it may have been written too.
static size_t qvUTF_S_WriteGroup(char* anOut, const qvUTF_S_Group& aGroup) {
  char* theOut = anOut;
  for (size_t i = 0; i < kqvUTF_GroupUnits; ++i) {
    uint16 theUnit;
    memcpy(&theUnit, reinterpret_cast<const char*>(aGroup.mWords) + i * sizeof(theUnit), sizeof(theUnit));
    theOut = qvUTF_S_Write(theOut, theUnit);
  }
  return static_cast<size_t>(theOut - anOut);
}

static inline bool qvUTF_S_IsASCIIGroup(const uint8* anIn, bool afSwapped) {
  return qvASCII_S_AreClear<kqvUTF_GroupSize>(
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

// Converts the last units of a text, fewer than a group, as one that is filled up with zeros. Returns how
// many bytes of the text that takes: none when there are surrogates or no room.
static size_t qvUTF_S_PutLastUnits(qvUTF_S_Output* anOutput, const uint8* anIn, size_t aLength,
                                   bool afSwapped) {
  size_t theUnits = aLength / kqvUTF_UnitSize;
  uint8 theBytes[kqvUTF_GroupSize] = {0};
  memcpy(theBytes, anIn, theUnits * kqvUTF_UnitSize);
  qvUTF_S_Group theGroup = qvUTF_S_ReadGroup(theBytes, afSwapped);
  size_t theLength = qvUTF_S_CountGroup(theGroup) - (kqvUTF_GroupUnits - theUnits);
  if (qvUTF_S_HasSurrogates(theGroup)) {
    return 0;
  }
  if (anOutput->mOut != NULL) {
    if (qvUTF_S_Room(anOutput) < theLength) {
      return 0;
    }
    char theResult[kqvUTF_GroupMaxLength + 1];
    qvUTF_S_WriteGroup(theResult, theGroup);
    memcpy(anOutput->mOut + anOutput->mLength, theResult, theLength);
  }
  anOutput->mLength += theLength;
  return theUnits * kqvUTF_UnitSize;
}

// Converts the groups at the start of a text, up to one with surrogates or for which there is no room, and
// the units behind the last group. Returns how many bytes of the text they take.
static size_t qvUTF_S_PutGroups(qvUTF_S_Output* anOutput, const uint8* anIn, size_t aLength, bool afSwapped) {
  qvUTF_S_Output theOutput = *anOutput;  // where nothing that is written can change it
  size_t thePosition = 0;
  for (; aLength - thePosition >= kqvUTF_GroupSize; thePosition += kqvUTF_GroupSize) {
    const uint8* theNext = anIn + thePosition;
    bool thefCountOnly = theOutput.mOut == NULL;
    size_t theRoom = qvUTF_S_Room(&theOutput);
    if (qvUTF_S_IsASCIIGroup(theNext, afSwapped)) {
      if (!thefCountOnly) {
        if (theRoom < kqvUTF_GroupUnits) {
          break;
        }
        qvUTF_S_NarrowGroup(theOutput.mOut + theOutput.mLength, theNext, afSwapped);
      }
      theOutput.mLength += kqvUTF_GroupUnits;
      continue;
    }
    qvUTF_S_Group theGroup = qvUTF_S_ReadGroup(theNext, afSwapped);
    if (qvUTF_S_HasSurrogates(theGroup)) {
      break;
    }
    if (thefCountOnly) {
      theOutput.mLength += qvUTF_S_CountGroup(theGroup);
      continue;
    }
    if (theRoom <= kqvUTF_GroupMaxLength && theRoom <= qvUTF_S_CountGroup(theGroup)) {
      break;
    }
    theOutput.mLength += qvUTF_S_WriteGroup(theOutput.mOut + theOutput.mLength, theGroup);
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

static char* qvUTF_S_ConvertUTF16(const char* anIn, size_t aLength, int afBigEndian) {
  size_t theSize = 0;
  qvUTF_S_UTF16ToUTF8(anIn, aLength, afBigEndian, 0, NULL, 0, &theSize);
  char* theResult = static_cast<char*>(qvMalloc(theSize));
  qvUTF_S_UTF16ToUTF8(anIn, aLength, afBigEndian, 0, theResult, theSize, &theSize);
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
