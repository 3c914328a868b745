#include "qvraTools/qvCStringParser.h"

#include <string.h>

#include "qvraTools/qvAssert.h"
#include "qvraTools/qvConvert_p.h"
#include "qvraTools/qvMalloc.h"

#define kqvCStringParser_EscapeWritten '\\'
#define kqvCStringParser_SurroundSize  3 /* both surrounding characters and the terminator */

static bool qvCStringParser_S_IsQuote(char aChar) { return aChar == '"' || aChar == '\''; }

static qvCStringParser_TokenList* qvCStringParser_S_NewList(void) {
  return static_cast<qvCStringParser_TokenList*>(qvMallocZeroed(sizeof(qvCStringParser_TokenList)));
}

static void qvCStringParser_S_AppendToken(qvCStringParser_TokenList* aList, const char* aData,
                                          size_t aLength) {
  qvCStringParser_Token* theToken =
      static_cast<qvCStringParser_Token*>(qvMalloc(sizeof(qvCStringParser_Token)));
  theToken->mData = aData;
  theToken->mDataLength = aLength;
  theToken->mNextToken = NULL;
  if (aList->mLastToken != NULL) {
    aList->mLastToken->mNextToken = theToken;
  } else {
    aList->mFirstToken = theToken;
  }
  aList->mLastToken = theToken;
  ++aList->mTokenCount;
}

// Whether the whole delimiter stands at aPosition and ends at or before anEnd. An empty one stands nowhere:
// the scan would not get past it.
static bool qvCStringParser_S_IsDelimiterAt(const char* aBuffer, size_t aPosition, size_t anEnd,
                                            const char* aDelimiter, size_t aDelimiterLength) {
  return aDelimiterLength > 0 && aBuffer[aPosition] == *aDelimiter && aPosition <= anEnd &&
         aDelimiterLength <= anEnd - aPosition &&
         memcmp(aBuffer + aPosition, aDelimiter, aDelimiterLength) == 0;
}

// The first place from aPosition on where the whole delimiter stands before anEnd; anEnd if there is none.
static size_t qvCStringParser_S_FindDelimiter(const char* aBuffer, size_t aPosition, size_t anEnd,
                                              const char* aDelimiter, size_t aDelimiterLength) {
  while (aDelimiterLength > 0 && aDelimiterLength <= anEnd - aPosition) {
    const void* thePtr = memchr(aBuffer + aPosition, *aDelimiter, anEnd - aPosition - (aDelimiterLength - 1));
    if (thePtr == NULL) {
      break;
    }
    aPosition = static_cast<size_t>(static_cast<const char*>(thePtr) - aBuffer);
    if (aDelimiterLength == 1 || memcmp(thePtr, aDelimiter, aDelimiterLength) == 0) {
      return aPosition;
    }
    ++aPosition;
  }
  return anEnd;
}

qvCStringParser_TokenList* qvCStringParser_TokenizeEscaped(const char* aBuffer, size_t anOffset,
                                                           size_t aLength, const char* aDelimiter,
                                                           size_t aDelimiterLength, char anEscapeChar) {
  qvCStringParser_TokenList* theList = qvCStringParser_S_NewList();
  size_t theStart = anOffset;
  size_t thePosition = anOffset;
  while (thePosition < aLength) {
    thePosition =
        qvCStringParser_S_FindDelimiter(aBuffer, thePosition, aLength, aDelimiter, aDelimiterLength);
    if (thePosition == aLength) {
      break;
    }
    if (anEscapeChar != '\0' && thePosition != anOffset && aBuffer[thePosition - 1] == anEscapeChar) {
      ++thePosition;
      continue;
    }
    qvCStringParser_S_AppendToken(theList, aBuffer + theStart, thePosition - theStart);
    thePosition += aDelimiterLength;
    theStart = thePosition;
  }
  qvCStringParser_S_AppendToken(theList, aBuffer + theStart, thePosition - theStart);
  return theList;
}

qvCStringParser_TokenList* qvCStringParser_Tokenize(const char* aBuffer, size_t anOffset, size_t aLength,
                                                    const char* aDelimiter, size_t aDelimiterLength) {
  return qvCStringParser_TokenizeEscaped(aBuffer, anOffset, aLength, aDelimiter, aDelimiterLength, '\0');
}

qvCStringParser_TokenList* qvCStringParser_TokenizeQuoted(const char* aBuffer, size_t anOffset,
                                                          size_t aLength, const char* aDelimiter,
                                                          size_t aDelimiterLength) {
  qvCStringParser_TokenList* theList = qvCStringParser_S_NewList();
  size_t theEnd = anOffset + aLength;
  size_t theStart = anOffset;
  size_t thePosition = anOffset;
  char theQuote = '\0';  // what closes the quoted run; 0 outside of one
  while (thePosition < theEnd) {
    char theChar = aBuffer[thePosition];
    if (theQuote != '\0') {
      ++thePosition;
      if (theChar == theQuote) {
        // KEEP qvCStringParserKept.ClosingQuoteEndsTheToken
        // The token ends here and not at the next delimiter, so whatever follows is another token: text, the
        // nothing in front of a delimiter, or the nothing in front of the end.
        theQuote = '\0';
        qvCStringParser_S_AppendToken(theList, aBuffer + theStart, thePosition - theStart);
        theStart = thePosition;
      }
    } else if (qvCStringParser_S_IsQuote(theChar)) {
      theQuote = theChar;
      ++thePosition;
    } else if (qvCStringParser_S_IsDelimiterAt(aBuffer, thePosition, aLength, aDelimiter, aDelimiterLength)) {
      // KEEP qvCStringParserKept.QuotedDelimitersEndUpToPositionLength
      // The range ends at offset + length, but a delimiter counts only when it ends at or before position
      // aLength of the buffer. With offset 0 the two agree.
      qvCStringParser_S_AppendToken(theList, aBuffer + theStart, thePosition - theStart);
      thePosition += aDelimiterLength;
      theStart = thePosition;
    } else {
      ++thePosition;
    }
  }
  qvCStringParser_S_AppendToken(theList, aBuffer + theStart, thePosition - theStart);
  return theList;
}

static void qvCStringParser_S_TrimAndUnquote(qvCStringParser_TokenList* aList) {
  for (qvCStringParser_Token* theToken = aList->mFirstToken; theToken != NULL;
       theToken = theToken->mNextToken) {
    qvCStringParser_TrimToken(theToken);
    qvCStringParser_TrimQuotes(theToken);
  }
}

qvCStringParser_TokenList* qvCStringParser_TokenizeQuotedList(const char* aBuffer, size_t anOffset,
                                                              size_t aLength) {
  qvCStringParser_TokenList* theList = qvCStringParser_TokenizeQuoted(aBuffer, anOffset, aLength, ",", 1);
  qvCStringParser_S_TrimAndUnquote(theList);
  return theList;
}

static void qvCStringParser_S_RemoveEmptyTokens(qvCStringParser_TokenList* aList) {
  qvCStringParser_Token** theLink = &aList->mFirstToken;
  aList->mLastToken = NULL;
  while (*theLink != NULL) {
    qvCStringParser_Token* theToken = *theLink;
    if (theToken->mDataLength == 0) {
      *theLink = theToken->mNextToken;
      --aList->mTokenCount;
      qvFree(theToken);
    } else {
      aList->mLastToken = theToken;
      theLink = &theToken->mNextToken;
    }
  }
}

qvCStringParser_TokenList* qvCStringParser_TokenizeParameterList(const char* aBuffer, size_t anOffset,
                                                                 size_t aLength) {
  qvCStringParser_TokenList* theList = qvCStringParser_TokenizeQuoted(aBuffer, anOffset, aLength, " ", 1);
  for (qvCStringParser_Token* theToken = theList->mFirstToken; theToken != NULL;
       theToken = theToken->mNextToken) {
    qvCStringParser_TrimToken(theToken);
  }
  // Before the quotes go, so that a parameter written as "" stays.
  qvCStringParser_S_RemoveEmptyTokens(theList);
  for (qvCStringParser_Token* theToken = theList->mFirstToken; theToken != NULL;
       theToken = theToken->mNextToken) {
    qvCStringParser_TrimQuotes(theToken);
  }
  return theList;
}

void qvCStringParser_Delete(qvCStringParser_TokenList* aList) {
  if (aList == NULL) {
    return;
  }
  qvCStringParser_Token* theToken = aList->mFirstToken;
  while (theToken != NULL) {
    qvCStringParser_Token* theNext = theToken->mNextToken;
    qvFree(theToken);
    theToken = theNext;
  }
  qvFree(aList);
}

// Moves *aStr and *aLength past the white space at the ends that are asked for.
static void qvCStringParser_S_Trim(const char** aStr, size_t* aLength, bool afLeft, bool afRight) {
  while (afLeft && *aLength > 0 && qvConvert_S_IsSpace(**aStr)) {
    ++*aStr;
    --*aLength;
  }
  while (afRight && *aLength > 0 && qvConvert_S_IsSpace((*aStr)[*aLength - 1])) {
    --*aLength;
  }
}

void qvCStringParser_TrimToken(qvCStringParser_Token* aToken) {
  qvCStringParser_S_Trim(&aToken->mData, &aToken->mDataLength, true, true);
}

void qvCStringParser_TrimQuotes(qvCStringParser_Token* aToken) {
  size_t theLength = aToken->mDataLength;
  if (theLength >= 2 && qvCStringParser_S_IsQuote(aToken->mData[0]) &&
      aToken->mData[0] == aToken->mData[theLength - 1]) {
    ++aToken->mData;
    aToken->mDataLength -= 2;
  }
}

int qvCStringParser_ListContains(const char* aListStr, const char* aDelimiter, const char* aValue) {
  qvCStringParser_TokenList* theList =
      qvCStringParser_TokenizeQuoted(aListStr, 0, strlen(aListStr), aDelimiter, strlen(aDelimiter));
  qvCStringParser_S_TrimAndUnquote(theList);
  size_t theValueLength = strlen(aValue);
  const qvCStringParser_Token* theToken = theList->mFirstToken;
  while (theToken != NULL &&
         (theToken->mDataLength != theValueLength || memcmp(theToken->mData, aValue, theValueLength) != 0)) {
    theToken = theToken->mNextToken;
  }
  bool thefFound = theToken != NULL;
  qvCStringParser_Delete(theList);
  return thefFound;
}

char* qvCStringParser_Trim(const char* aStr, size_t aStrLen, int afTrimLeft, int afTrimRight) {
  if (aStr != NULL) {
    qvCStringParser_S_Trim(&aStr, &aStrLen, afTrimLeft != 0, afTrimRight != 0);
  }
  return qvStrndup(aStr, aStrLen);
}

int qvCStringParser_IsSurrounded(const char* aStr, size_t aStrLen, char aLeftSurround, char aRightSurround,
                                 int afAllowLeftSurroundInStr) {
  if (aStr == NULL || aStrLen < 2 || aStr[0] != aLeftSurround || aStr[aStrLen - 1] != aRightSurround) {
    return 0;
  }
  return afAllowLeftSurroundInStr != 0 || memchr(aStr + 1, aLeftSurround, aStrLen - 2) == NULL;
}

int qvCStringParser_ContainsOneOf(const char* aStr, size_t aStrLen, const char* aChars) {
  for (size_t i = 0; i < aStrLen; ++i) {
    if (strchr(aChars, aStr[i]) != NULL) {
      return 1;
    }
  }
  return 0;
}

// strchr finds the terminator too, so a zero byte inside the text is escaped as well.
static size_t qvCStringParser_S_CountEscapes(const char* aStr, size_t aStrLen, const char* aCharsToEscape) {
  size_t theCount = 0;
  for (size_t i = 0; i < aStrLen; ++i) {
    theCount += strchr(aCharsToEscape, aStr[i]) != NULL;
  }
  return theCount;
}

// KEEP qvCStringParserKept.EscapeIsAlwaysTheBackslash
// anEscapeChar is accepted and ignored: what is written in front of an escaped byte is always the backslash.
char* qvCStringParser_EscapeAndSurround(const char* aStr, size_t aStrLen, char* aCharsToEscape,
                                        char /* anEscapeChar */, char aLeftSurroundChar,
                                        char aRightSurroundChar) {
  size_t theLength =
      aStrLen + qvCStringParser_S_CountEscapes(aStr, aStrLen, aCharsToEscape) + kqvCStringParser_SurroundSize;
  char* theResult = static_cast<char*>(qvMalloc(theLength));
  size_t j = 0;
  theResult[j++] = aLeftSurroundChar;
  for (size_t i = 0; i < aStrLen; ++i) {
    if (strchr(aCharsToEscape, aStr[i]) != NULL) {
      theResult[j++] = kqvCStringParser_EscapeWritten;
    }
    theResult[j++] = aStr[i];
  }
  theResult[j++] = aRightSurroundChar;
  theResult[j++] = '\0';
  qvAssert(j == theLength);
  return theResult;
}
