// The modified UTF-8 of qvUTF.h.

#include <limits.h>

#include "qvraTools/qvAssert.h"
#include "qvraTools/qvUTF.h"
#include "qvraTools/qvUTF_p.h"
#include "qvraTools/qvUnicode.h"
#include "qvraTools/qvUnicode_p.h"

#define kqvUTF_ToEncodedNul       (-1) /* as a length: the text ends at its encoded NUL */
#define kqvUTF_MaxSequence        4    /* bytes                                         */
#define kqvUTF_SizeOfNul          2    /* bytes, in modified UTF-8                      */
#define kqvUTF_SizeOfSurrogates   6
#define kqvUTF_FirstBeyondOneUnit 0x10000u

static bool qvUTF_S_HasContinuations(const uint8* anIn, size_t aLength, size_t aSequenceLength) {
  if (aSequenceLength > aLength) {
    return false;
  }
  for (size_t i = 1; i < aSequenceLength; ++i) {
    if ((anIn[i] & 0xC0u) != 0x80u) {
      return false;
    }
  }
  return true;
}

// The length of the sequence at anIn, 1 to 4 with its value in *aChar, or 0 when the first byte begins none.
// Overlong forms of 2 and 3 bytes count as sequences, since modified UTF-8 uses one for NUL; in 4 bytes only
// what a surrogate pair can carry does.
static size_t qvUTF_S_ReadSequence(const uint8* anIn, size_t aLength, uint32* aChar) {
  uint32 theLead = anIn[0];
  if (theLead < 0x80) {
    *aChar = theLead;
    return 1;
  }
  if (theLead < 0xC0 || theLead >= 0xF8) {
    return 0;
  }
  size_t theLength = theLead < 0xE0 ? 2 : theLead < 0xF0 ? 3 : kqvUTF_MaxSequence;
  if (!qvUTF_S_HasContinuations(anIn, aLength, theLength)) {
    return 0;
  }
  uint32 theChar = theLead & (0x7Fu >> theLength);
  for (size_t i = 1; i < theLength; ++i) {
    theChar = (theChar << 6) | (anIn[i] & 0x3Fu);
  }
  if (theLength == kqvUTF_MaxSequence &&
      (theChar < kqvUTF_FirstBeyondOneUnit || theChar > kqvUnicode_MaxUTF16)) {
    return 0;
  }
  *aChar = theChar;
  return theLength;
}

static void qvUTF_S_PutBytes(qvUTF_S_Output* anOutput, const uint8* aBytes, size_t aLength) {
  for (size_t i = 0; i < aLength; ++i) {
    qvUTF_S_PutByte(anOutput, aBytes[i]);
  }
}

static size_t qvUTF_S_LengthOrNothing(int aLength) { return aLength > 0 ? static_cast<size_t>(aLength) : 0; }

int qvUTF_ModifiedUTF8LengthOfUTF8(const char* aText, int aLength, int afLenient) {
  const uint8* theBytes = reinterpret_cast<const uint8*>(aText);
  size_t theEnd = qvUTF_S_LengthOrNothing(aLength);
  uint64 theSize = 1;  // the terminator
  size_t thePosition = 0;
  while (thePosition < theEnd) {
    uint32 theChar = 0;
    size_t theLength = qvUTF_S_ReadSequence(theBytes + thePosition, theEnd - thePosition, &theChar);
    if (theLength == 0) {
      if (afLenient == 0) {
        return -1;
      }
      theLength = 1;
      theSize += 1;
    } else if (theLength == kqvUTF_MaxSequence) {
      theSize += kqvUTF_SizeOfSurrogates;
    } else {
      theSize += theLength == 1 && theChar == 0 ? kqvUTF_SizeOfNul : theLength;
    }
    thePosition += theLength;
  }
  return theSize <= INT_MAX ? static_cast<int>(theSize) : -1;
}

static void qvUTF_S_PutSurrogates(qvUTF_S_Output* anOutput, uint32 aChar) {
  uint16 theUnits[2];
  qvUnicode_S_EncodeToUTF16(aChar, theUnits, 2);
  qvUTF_S_PutChar(anOutput, theUnits[0]);
  qvUTF_S_PutChar(anOutput, theUnits[1]);
}

static void qvUTF_S_CheckNotEncodedNul(uint32 theByte1, uint32 theByte2) {
  qvAssert((theByte1 != 0xC0) || (theByte2 != 0x80));
}

int qvUTF_UTF8ToModifiedUTF8(const char* aText, int aLength, char* anOut, size_t anOutMax) {
  const uint8* theBytes = reinterpret_cast<const uint8*>(aText);
  size_t theEnd = qvUTF_S_LengthOrNothing(aLength);
  qvUTF_S_Output theOutput = {anOut, anOutMax, 0};
  size_t thePosition = 0;
  while (thePosition < theEnd) {
    const uint8* theSequence = theBytes + thePosition;
    uint32 theChar = 0;
    size_t theLength = qvUTF_S_ReadSequence(theSequence, theEnd - thePosition, &theChar);
    if (theLength == 0) {
      qvUTF_S_PutByte(&theOutput, kqvUTF_BadByte);
      theLength = 1;
    } else if (theLength == 1 && theChar == 0) {
      qvUTF_S_PutByte(&theOutput, kqvUTF_EncodedNul1);
      qvUTF_S_PutByte(&theOutput, kqvUTF_EncodedNul2);
    } else if (theLength == kqvUTF_MaxSequence) {
      qvUTF_S_PutSurrogates(&theOutput, theChar);
    } else {
      if (theLength == 2) {
        qvUTF_S_CheckNotEncodedNul(theSequence[0], theSequence[1]);
      }
      qvUTF_S_PutBytes(&theOutput, theSequence, theLength);
    }
    thePosition += theLength;
  }
  qvUTF_S_PutByte(&theOutput, '\0');
  return theOutput.mLength <= anOutMax;
}

// Whether two sequences of 3 bytes at anIn are the surrogates of one character.
static bool qvUTF_S_ReadSurrogates(const uint8* anIn, size_t aLength, uint32* aChar) {
  uint16 theUnits[2];
  for (size_t i = 0; i < 2; ++i) {
    size_t theOffset = i * 3;
    uint32 theUnit = 0;
    if (theOffset >= aLength || qvUTF_S_ReadSequence(anIn + theOffset, aLength - theOffset, &theUnit) != 3) {
      return false;
    }
    theUnits[i] = static_cast<uint16>(theUnit);
  }
  return qvUnicode_S_DecodeFromUTF16(theUnits, 2, aChar) == 2;
}

// Writes what the bytes at anIn stand for and returns how many it has taken. *afNullDetected is set when they
// are an encoded NUL.
static size_t qvUTF_S_FromModified(qvUTF_S_Output* anOutput, const uint8* anIn, size_t aLength,
                                   int* afNullDetected) {
  uint32 theChar = 0;
  size_t theTaken = qvUTF_S_ReadSequence(anIn, aLength, &theChar);
  if (theTaken == 0 || theTaken == kqvUTF_MaxSequence) {
    return 1;  // dropped; the bytes behind a lead of 4 and more bytes are stray from here on
  }
  if (qvUTF_S_ReadSurrogates(anIn, aLength, &theChar)) {
    qvUTF_S_PutChar(anOutput, theChar);
    return kqvUTF_SizeOfSurrogates;
  }
  if (theTaken == 2 && anIn[0] == kqvUTF_EncodedNul1 && anIn[1] == kqvUTF_EncodedNul2) {
    qvUTF_S_PutByte(anOutput, '\0');
    *afNullDetected = 1;
  } else {
    qvUTF_S_PutBytes(anOutput, anIn, theTaken);
  }
  return theTaken;
}

// The length of a text that its encoded NUL ends, which is counted in; without one, up to a zero byte. The
// first byte of an encoded NUL is never part of another sequence, so it need not be looked for sequence by
// sequence. Nothing behind it is read: there need not be a terminator.
static size_t qvUTF_S_LengthToEncodedNul(const uint8* anIn) {
  size_t theLength = 0;
  while (anIn[theLength] != 0) {
    if (anIn[theLength] == kqvUTF_EncodedNul1 && anIn[theLength + 1] == kqvUTF_EncodedNul2) {
      return theLength + 2;
    }
    ++theLength;
  }
  return theLength;
}

int qvUTF_ModifiedUTF8ToUTF8(const char* aText, int aLength, char* anOut, size_t anOutMax) {
  const uint8* theBytes = reinterpret_cast<const uint8*>(aText);
  bool thefToNull = aLength == kqvUTF_ToEncodedNul;
  size_t theEnd = thefToNull ? qvUTF_S_LengthToEncodedNul(theBytes) : qvUTF_S_LengthOrNothing(aLength);
  qvUTF_S_Output theOutput = {anOut, anOutMax, 0};
  int thefNullDetected = 0;
  size_t thePosition = 0;
  while (thePosition < theEnd) {
    thePosition +=
        qvUTF_S_FromModified(&theOutput, theBytes + thePosition, theEnd - thePosition, &thefNullDetected);
  }
  if (thefToNull) {
    qvAssert(thefNullDetected == 1);
  } else if (theOutput.mLength < anOutMax) {
    anOut[theOutput.mLength] = '\0';
  }
  return theOutput.mLength <= anOutMax;
}
