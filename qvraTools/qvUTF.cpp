#include "qvraTools/qvUTF.h"

#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvUTF_p.h"
#include "qvraTools/qvUnicode.h"
#include "qvraTools/qvUnicode_p.h"

#define kqvUTF_BOMSize           2 /* bytes of a byte-order mark */
#define kqvUTF_UTF16UnitSize     2
#define kqvUTF_BOMFirstBigEndian 0xFEu

const uint8 kUTF16FirstByteMark[7] = {0x00, 0x00, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC};

typedef void (*qvUTF_S_Worker)(qvUTF_S_Output* anOutput, const uint8* anIn, size_t aLength);

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
  size_t theLength = qvUnicode_UTF8CharLength(aChar);
  size_t theShift = 6 * (theLength - 1);
  qvUTF_S_PutByte(anOutput, kUTF16FirstByteMark[theLength] | (aChar >> theShift));
  while (theShift > 0) {
    theShift -= 6;
    qvUTF_S_PutByte(anOutput, 0x80 | ((aChar >> theShift) & 0x3F));
  }
}

// The first pass counts, the second writes into a block of just that size.
static char* qvUTF_S_ConvertInTwoPasses(qvUTF_S_Worker aWorker, const char* anIn, size_t aLength) {
  const uint8* theBytes = reinterpret_cast<const uint8*>(anIn);
  qvUTF_S_Output theCounter = {NULL, 0, 0};
  aWorker(&theCounter, theBytes, aLength);
  char* theResult = static_cast<char*>(qvMalloc(theCounter.mLength));
  qvUTF_S_Output theWriter = {theResult, theCounter.mLength, 0};
  aWorker(&theWriter, theBytes, aLength);
  return theResult;
}

static void qvUTF_S_WorkISO88591ToUTF8(qvUTF_S_Output* anOutput, const uint8* anIn, size_t aLength) {
  for (size_t i = 0; i < aLength; ++i) {
    qvUTF_S_PutChar(anOutput, anIn[i]);  // the codes of ISO-8859-1 are those of Unicode
  }
  qvUTF_S_PutByte(anOutput, '\0');
}

static void qvUTF_S_WorkUTF8ToISO88591(qvUTF_S_Output* anOutput, const uint8* anIn, size_t aLength) {
  size_t thePosition = 0;
  while (thePosition < aLength) {
    uint32 theLead = anIn[thePosition];
    if (theLead >= 0xE0) {
      // KEEP qvUTFKept.SkipsOneByteMoreThanTheSequenceHas
      // The byte behind a sequence of 3 or 4 bytes goes with it: "\xE2\x82\xAC-x" becomes "?x".
      thePosition += theLead >= 0xF0 ? 5 : 4;
      qvUTF_S_PutByte(anOutput, kqvUTF_BadByte);
    } else if (theLead < 0xC0) {
      ++thePosition;
      qvUTF_S_PutByte(anOutput, theLead);
    } else {
      uint32 theNext = aLength - thePosition > 1 ? anIn[thePosition + 1] : 0;
      thePosition += 2;
      qvUTF_S_PutByte(anOutput, ((theLead << 6) | (theNext & 0x3F)) & 0xFF);
    }
  }
  qvUTF_S_PutByte(anOutput, '\0');
}

static uint16 qvUTF_S_ReadUnit(const uint8* anIn, bool afBigEndian) {
  return static_cast<uint16>(afBigEndian ? (anIn[0] << 8) | anIn[1] : (anIn[1] << 8) | anIn[0]);
}

// Everything of qvUTF_S_UTF16ToUTF8 but the terminator and the look at the output's size.
static int qvUTF_S_WorkUTF16(qvUTF_S_Output* anOutput, const uint8* anIn, size_t aLength, bool afBigEndian,
                             bool afStrict) {
  size_t thePosition = 0;
  while (aLength - thePosition >= kqvUTF_UTF16UnitSize) {
    uint16 theUnits[2] = {qvUTF_S_ReadUnit(anIn + thePosition, afBigEndian), 0};
    size_t theUnitsLeft = (aLength - thePosition) / kqvUTF_UTF16UnitSize;
    if (theUnitsLeft > 1) {
      theUnits[1] = qvUTF_S_ReadUnit(anIn + thePosition + kqvUTF_UTF16UnitSize, afBigEndian);
    }
    uint32 theChar = theUnits[0];
    size_t theTaken = qvUnicode_S_DecodeFromUTF16(theUnits, theUnitsLeft, &theChar);
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
    thePosition += theTaken == 2 ? kqvUTF_UTF16UnitSize + 1 : kqvUTF_UTF16UnitSize;
  }
  return kqvUTF16Result_Done;
}

int qvUTF_S_UTF16ToUTF8(const char* anIn, size_t aLength, int afBigEndian, int afStrict, char* anOut,
                        size_t anOutMax, size_t* aCount) {
  qvUTF_S_Output theOutput = {anOut, anOutMax, 0};
  int theResult = qvUTF_S_WorkUTF16(&theOutput, reinterpret_cast<const uint8*>(anIn), aLength,
                                    afBigEndian != 0, afStrict != 0);
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

char* qvUTF_ISO88591ToUTF8(const char* anIn, size_t aLength) {
  return qvUTF_S_ConvertInTwoPasses(qvUTF_S_WorkISO88591ToUTF8, anIn, aLength);
}

char* qvUTF_UTF8ToISO88591(const char* anIn, size_t aLength) {
  return qvUTF_S_ConvertInTwoPasses(qvUTF_S_WorkUTF8ToISO88591, anIn, aLength);
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

int qvUTF_MakeValidUTF8(char* aText, int aLength) {
  int thePosition = 0;
  while (thePosition < aLength) {
    uint32 theChar;
    size_t theTaken =
        qvUnicode_ReadUTF8Char(aText + thePosition, static_cast<size_t>(aLength - thePosition), &theChar);
    if (theTaken == kqvUnicode_Invalid || theTaken == kqvUnicode_Incomplete) {
      aText[thePosition] = '\0';
      break;
    }
    thePosition += static_cast<int>(theTaken);
  }
  return thePosition;
}
