// The loading half of qvINIFile.h: from INI text to the entries of a dictionary.

#include <string.h>

#include "qvOS/qvFile_p.h"
#include "qvraTools/qvAssert.h"
#include "qvraTools/qvDictionary_p.h"
#include "qvraTools/qvINIFile.h"
#include "qvraTools/qvINIFile_p.h"
#include "qvraTools/qvMalloc.h"

#define kqvINIFile_ByteOrderMark "\xEF\xBB\xBF"
#define kqvINIFile_NameMaxLength (kqvINIFile_SectionMaxLength - 1) /* bytes; longer names are cut */
#define kqvINIFile_NoMaximum     ((size_t)-1)
#define kqvINIFile_EscapeChar    '\\'

namespace {

// A part of the text that is being loaded.
struct Piece {
  const char* mStart;
  size_t mLength;
};

// What is left of the text. The characters that few texts have are looked for once in the whole of it.
struct Rest {
  Piece mText;
  bool mfHasReturns;
  bool mfHasZeros;
};

// The section whose keys are being read: what the dictionary keys of them begin with, and room for the rest.
struct OpenSection {
  size_t mPrefixLength;
  uint32 mPrefixHash;  // unfinished
  char mDictionaryKey[kqvINIFile_HashTableKeyMaxLength];
};

}  // namespace

static bool qvINIFile_S_IsSpace(char aChar) { return aChar == ' ' || (aChar >= '\t' && aChar <= '\r'); }

// Without white space at both ends, then cut to aMaxLength bytes.
static Piece TrimString(Piece aPiece, size_t aMaxLength) {
  while (aPiece.mLength > 0 && qvINIFile_S_IsSpace(*aPiece.mStart)) {
    ++aPiece.mStart;
    --aPiece.mLength;
  }
  while (aPiece.mLength > 0 && qvINIFile_S_IsSpace(aPiece.mStart[aPiece.mLength - 1])) {
    --aPiece.mLength;
  }
  return {aPiece.mStart, aPiece.mLength < aMaxLength ? aPiece.mLength : aMaxLength};
}

// Where aChar is first, or the length. An empty text may have no address.
static size_t qvINIFile_S_IndexOf(Piece aPiece, char aChar) {
  const void* theFound = aPiece.mLength > 0 ? memchr(aPiece.mStart, aChar, aPiece.mLength) : NULL;
  return theFound != NULL ? static_cast<size_t>(static_cast<const char*>(theFound) - aPiece.mStart)
                          : aPiece.mLength;
}

static Piece qvINIFile_S_UpTo(Piece aPiece, char aChar) {
  return {aPiece.mStart, qvINIFile_S_IndexOf(aPiece, aChar)};
}

// What follows the first aCount bytes.
static Piece qvINIFile_S_Behind(Piece aPiece, size_t aCount) {
  return {aPiece.mStart + aCount, aPiece.mLength - aCount};
}

static Piece qvINIFile_S_WithoutMark(Piece aLine) {
  const size_t theLength = strlen(kqvINIFile_ByteOrderMark);
  return aLine.mLength >= theLength && memcmp(aLine.mStart, kqvINIFile_ByteOrderMark, theLength) == 0
             ? qvINIFile_S_Behind(aLine, theLength)
             : aLine;
}

// Takes the next line from the front of the text, without its line break: it ends behind the first one, or
// where the line buffer of the format is full. A zero byte ends what counts of it.
static Piece qvINIFile_S_TakeLine(Rest* aRest) {
  const size_t theMaxLength = kqvINIFile_MaxLineLength - 1;
  const Piece theWhole = {aRest->mText.mStart,
                          aRest->mText.mLength < theMaxLength ? aRest->mText.mLength : theMaxLength};
  Piece theLine = qvINIFile_S_UpTo(theWhole, '\n');
  if (aRest->mfHasReturns) {
    theLine = qvINIFile_S_UpTo(theLine, '\r');
  }
  aRest->mText = qvINIFile_S_Behind(aRest->mText, theLine.mLength + (theLine.mLength < theWhole.mLength));
  return aRest->mfHasZeros ? qvINIFile_S_UpTo(theLine, '\0') : theLine;
}

static void qvINIFile_S_Store(OpenSection* aSection, Piece aKey, Piece aValue, qvDictionary* aDictionary) {
  char* theText = aSection->mDictionaryKey + aSection->mPrefixLength;
  qvINIFile_S_ToLower(theText, aKey.mStart, aKey.mLength);
  const qvDictionaryKey theKey = {
      aSection->mDictionaryKey, aSection->mPrefixLength + aKey.mLength,
      qvDictionary_S_FinishHash(qvDictionary_S_HashOn(aSection->mPrefixHash, theText, aKey.mLength))};
  qvDictionary_S_Put(aDictionary, &theKey, aValue.mStart, aValue.mLength);
}

// Writes the section's entry; an empty name is that of the default section.
static void qvINIFile_S_Open(OpenSection* aSection, Piece aName, qvDictionary* aDictionary) {
  if (aName.mLength == 0) {
    aName = {kqvINIFile_DefaultSectionName, strlen(kqvINIFile_DefaultSectionName)};
  }
  aSection->mPrefixLength = 0;
  aSection->mPrefixHash = 0;
  qvINIFile_S_Store(aSection, aName, {"", 0}, aDictionary);
  aSection->mDictionaryKey[aName.mLength] = kqvINIFIle_SectionSeparator;
  aSection->mPrefixLength = aName.mLength + 1;
  aSection->mPrefixHash = qvDictionary_S_HashOn(0, aSection->mDictionaryKey, aSection->mPrefixLength);
}

// Stores what is between the quotes, without the backslashes that escape. A value without its closing quote
// runs to the end of the line.
static void qvINIFile_S_StoreQuoted(OpenSection* aSection, Piece aKey, Piece aValue,
                                    qvDictionary* aDictionary) {
  char theValue[kqvINIFile_MaxLineLength];
  size_t theLength = 0;
  for (size_t i = 1; i < aValue.mLength && aValue.mStart[i] != aValue.mStart[0]; ++i) {
    if (aValue.mStart[i] == kqvINIFile_EscapeChar && ++i == aValue.mLength) {
      break;
    }
    theValue[theLength++] = aValue.mStart[i];
  }
  qvINIFile_S_Store(aSection, aKey, {theValue, theLength}, aDictionary);
}

static void qvINIFile_S_StoreValue(OpenSection* aSection, Piece aKey, Piece aValue,
                                   qvDictionary* aDictionary) {
  aKey = TrimString(aKey, kqvINIFile_NameMaxLength);
  aValue = TrimString(aValue, kqvINIFile_NoMaximum);
  if (aValue.mLength > 0 && (*aValue.mStart == '"' || *aValue.mStart == '\'')) {
    qvINIFile_S_StoreQuoted(aSection, aKey, aValue, aDictionary);
    return;
  }
  aValue = TrimString(qvINIFile_S_UpTo(qvINIFile_S_UpTo(aValue, ';'), '#'), kqvINIFile_NoMaximum);
  qvINIFile_S_Store(aSection, aKey, aValue, aDictionary);
}

// KEEP qvINIFileKept.LineWithoutAValueIsTooLongFrom128BytesOnWhereOtherNamesAreCut
// Such a line is a key as a whole and goes through the public call, whose limit a long one fails. It looks as
// if somebody had forgotten to cut it.
static void qvINIFile_S_StoreFlag(OpenSection* aSection, Piece aLine, qvDictionary* aDictionary) {
  char theKey[kqvINIFile_MaxLineLength];
  memcpy(theKey, aLine.mStart, aLine.mLength);
  theKey[aLine.mLength] = '\0';
  char* theSeparator = &aSection->mDictionaryKey[aSection->mPrefixLength - 1];
  *theSeparator = '\0';
  qvINIFile_WriteKeyAsString(aDictionary, aSection->mDictionaryKey, theKey, NULL);
  *theSeparator = kqvINIFIle_SectionSeparator;
}

// Stores what a trimmed line says.
static void qvINIFile_S_LoadLine(OpenSection* aSection, Piece aLine, qvDictionary* aDictionary) {
  if (aLine.mLength == 0 || *aLine.mStart == ';' || *aLine.mStart == '#') {
    return;
  }
  const size_t theBracket = *aLine.mStart == '[' ? qvINIFile_S_IndexOf(aLine, ']') : aLine.mLength;
  if (theBracket < aLine.mLength) {
    qvINIFile_S_Open(aSection, TrimString({aLine.mStart + 1, theBracket - 1}, kqvINIFile_NameMaxLength),
                     aDictionary);
    return;
  }
  const size_t theEqual = qvINIFile_S_IndexOf(aLine, '=');
  if (theEqual == 0) {
    return;
  }
  if (theEqual == aLine.mLength) {
    qvINIFile_S_StoreFlag(aSection, aLine, aDictionary);
    return;
  }
  qvINIFile_S_StoreValue(aSection, {aLine.mStart, theEqual}, qvINIFile_S_Behind(aLine, theEqual + 1),
                         aDictionary);
}

static int qvINIFile_S_LoadINIFile(const LoadIniFileContext* aContext, qvDictionary* aDictionary) {
  qvAssert(aDictionary != NULL);
  OpenSection theSection;
  qvINIFile_S_Open(&theSection, {"", 0}, aDictionary);
  const Piece theText = {aContext->mBuffer, aContext->mBufferSize};
  Rest theRest = {theText, qvINIFile_S_IndexOf(theText, '\r') < theText.mLength,
                  qvINIFile_S_IndexOf(theText, '\0') < theText.mLength};
  for (bool thefFirst = true; theRest.mText.mLength > 0; thefFirst = false) {
    Piece theLine = qvINIFile_S_TakeLine(&theRest);
    if (thefFirst) {
      theLine = qvINIFile_S_WithoutMark(theLine);
    }
    qvINIFile_S_LoadLine(&theSection, TrimString(theLine, kqvINIFile_NoMaximum), aDictionary);
  }
  qvDictionary_S_FinishPuts(aDictionary);
  return 1;
}

// Reads the whole open file into a new buffer, the text of the context, which the caller releases. Returns 0,
// or the error of qvFile; there is no buffer then.
static int qvINIFile_S_ReadWholeFile(LoadIniFileContext* aContext) {
  size_t theSize = 0;
  char* theBuffer = static_cast<char*>(qvMalloc(kqvINIFile_ReadPartSize));
  for (;;) {
    int64 theCount = qvFile_Read(aContext->mFD, theBuffer + theSize, kqvINIFile_ReadPartSize);
    if (theCount < 0) {
      qvFree(theBuffer);
      return static_cast<int>(theCount);
    }
    theSize += static_cast<size_t>(theCount);
    if (theCount < kqvINIFile_ReadPartSize) {
      aContext->mBuffer = theBuffer;
      aContext->mBufferSize = theSize;
      return 0;
    }
    theBuffer = static_cast<char*>(qvRealloc(theBuffer, theSize + kqvINIFile_ReadPartSize));
  }
}

int qvINIFile_S_LoadINIFileOrError(const char* aFileName, qvDictionary* aDictionary) {
  LoadIniFileContext theContext = {kqvFileFDInvalid, NULL, 0};
  int theError = qvFile_S_OpenUninterrupted(aFileName, qvFileOpenMode_Read, &theContext.mFD);
  if (theError != 0) {
    return theError;
  }
  theError = qvINIFile_S_ReadWholeFile(&theContext);
  if (theError == 0) {
    qvINIFile_S_LoadINIFile(&theContext, aDictionary);
    qvFree(const_cast<char*>(theContext.mBuffer));
  }
  qvFile_Close(theContext.mFD);
  return theError;
}

int qvINIFile_LoadINIFile(const char* aFileName, qvDictionary* aDictionary) {
  return qvINIFile_S_LoadINIFileOrError(aFileName, aDictionary) == 0;
}

int qvINIFile_LoadINIFileFromBuffer(const char* aBuffer, size_t aBufferSize, qvDictionary* aDictionary) {
  LoadIniFileContext theContext = {kqvFileFDInvalid, aBuffer, aBufferSize};
  return qvINIFile_S_LoadINIFile(&theContext, aDictionary);
}
