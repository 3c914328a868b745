// The loading half of qvINIFile.h: from INI text to the entries of a dictionary.

#include <string.h>

#include "qvOS/qvFile_p.h"
#include "qvraTools/qvAssert.h"
#include "qvraTools/qvConvert.h"
#include "qvraTools/qvINIFile.h"
#include "qvraTools/qvINIFile_p.h"
#include "qvraTools/qvMalloc.h"

#define kqvINIFile_ByteOrderMark    "\xEF\xBB\xBF"
#define kqvINIFile_CommentChars     ";#"
#define kqvINIFile_NameMaxLength    (kqvINIFile_SectionMaxLength - 1) /* bytes; longer names are cut */
#define kqvINIFile_NoMaximum        ((size_t)-1)
#define kqvINIFile_LineBreaks       "\n\r"
#define kqvINIFile_EscapeChar       '\\'
#define kqvINIFile_ByteOrderMarkLen 3

static int qvINIFile_S_IsSpace(char aChar) { return qvConvert_isspace(static_cast<unsigned char>(aChar)); }

// Drops white space at both ends, in place, then cuts the text to aMaxLength bytes.
static void TrimString(char* aString, size_t aMaxLength) {
  const char* theStart = aString;
  while (qvINIFile_S_IsSpace(*theStart)) {
    ++theStart;
  }
  size_t theLength = strlen(theStart);
  while (theLength > 0 && qvINIFile_S_IsSpace(theStart[theLength - 1])) {
    --theLength;
  }
  if (theLength > aMaxLength) {
    theLength = aMaxLength;
  }
  memmove(aString, theStart, theLength);
  aString[theLength] = '\0';
}

// Copies the bytes from aPos up to and with the first line break into a buffer of kqvINIFile_MaxLineLength
// bytes, as many as fit, and terminates them. Returns how many, 0 at the end of the text.
static size_t qvINIFile_S_CopyLine(const LoadIniFileContext* aContext, size_t aPos, char* aLine) {
  size_t theCount = 0;
  while (aPos + theCount < aContext->mBufferSize && theCount < kqvINIFile_MaxLineLength - 1) {
    char theChar = aContext->mBuffer[aPos + theCount];
    aLine[theCount++] = theChar;
    if (theChar == '\n' || theChar == '\r') {
      break;
    }
  }
  aLine[theCount] = '\0';
  return theCount;
}

// Takes a header's name into aSection, which has kqvINIFile_SectionMaxLength bytes. Returns 0 when the line
// is no header.
static int qvINIFile_S_ParseHeader(char* aLine, char* aSection) {
  char* theEnd = strchr(aLine, ']');
  if (*aLine != '[' || theEnd == NULL) {
    return 0;
  }
  *theEnd = '\0';
  char* theName = aLine + 1;
  TrimString(theName, kqvINIFile_NameMaxLength);
  memcpy(aSection, theName, strlen(theName) + 1);
  return 1;
}

// Takes what is between the quotes, without the backslashes that escape; in place. A value without its
// closing quote runs to the end of the line.
static void qvINIFile_S_ParseQuotedValue(char* aValue) {
  const char theQuote = *aValue;
  const char* theSource = aValue + 1;
  char* theDest = aValue;
  for (; *theSource != '\0' && *theSource != theQuote; ++theSource) {
    if (*theSource == kqvINIFile_EscapeChar && *++theSource == '\0') {
      break;
    }
    *theDest++ = *theSource;
  }
  *theDest = '\0';
}

static void qvINIFile_S_ParseValue(char* aValue) {
  TrimString(aValue, kqvINIFile_NoMaximum);
  if (*aValue == '"' || *aValue == '\'') {
    qvINIFile_S_ParseQuotedValue(aValue);
    return;
  }
  aValue[strcspn(aValue, kqvINIFile_CommentChars)] = '\0';
  TrimString(aValue, kqvINIFile_NoMaximum);
}

// Stores what a trimmed line says. A header changes aSection.
static void qvINIFile_S_LoadLine(char* aLine, char* aSection, qvDictionary* aDictionary) {
  if (*aLine == '\0' || strchr(kqvINIFile_CommentChars, *aLine) != NULL) {
    return;
  }
  if (qvINIFile_S_ParseHeader(aLine, aSection)) {
    qvINIFile_WriteKeyAsString(aDictionary, aSection, NULL, NULL);
    return;
  }
  char* theEqual = strchr(aLine, '=');
  if (theEqual == aLine) {
    return;
  }
  if (theEqual == NULL) {
    qvINIFile_WriteKeyAsString(aDictionary, aSection, aLine, NULL);
    return;
  }
  *theEqual = '\0';
  TrimString(aLine, kqvINIFile_NameMaxLength);
  qvINIFile_S_ParseValue(theEqual + 1);
  qvINIFile_WriteKeyAsString(aDictionary, aSection, aLine, theEqual + 1);
}

static int qvINIFile_S_LoadINIFile(const LoadIniFileContext* aContext, qvDictionary* aDictionary) {
  qvAssert(aDictionary != NULL);
  char theSection[kqvINIFile_SectionMaxLength] = kqvINIFile_DefaultSectionName;
  qvINIFile_WriteKeyAsString(aDictionary, theSection, NULL, NULL);
  char theBuffer[kqvINIFile_MaxLineLength];
  size_t thePos = 0;
  size_t theLineNumber = 0;
  for (;;) {
    size_t theCount = qvINIFile_S_CopyLine(aContext, thePos, theBuffer);
    if (theCount == 0) {
      return 1;
    }
    thePos += theCount;
    ++theLineNumber;
    char* theLine = theBuffer;
    if (theLineNumber == 1 && strncmp(theLine, kqvINIFile_ByteOrderMark, kqvINIFile_ByteOrderMarkLen) == 0) {
      theLine += kqvINIFile_ByteOrderMarkLen;
    }
    theLine[strcspn(theLine, kqvINIFile_LineBreaks)] = '\0';
    TrimString(theLine, kqvINIFile_NoMaximum);
    qvINIFile_S_LoadLine(theLine, theSection, aDictionary);
  }
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
