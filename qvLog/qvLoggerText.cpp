// The texts of a message: formatted, multi-line, hex dump and wide text become calls of Append_S.

#include "qvLog/qvLoggerText_p.h"

#include <string.h>

#include "qvLog/qvMainLogger_p.h"
#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvMalloc.h"

#define kqvLogger_BytesPerDumpLine 16
#define kqvLogger_DumpIndent       3   /* blanks before the first byte, and the columns of one byte */
#define kqvLogger_WideTextLimit    400 /* bytes; nothing is taken once so many are there */
#define kqvLogger_WideTextMargin   16  /* bytes; room for the longest escape and the terminator */

// The call of Append_VF that is being handed to one logger after the other. While it lasts, the frame that
// holds the arguments is alive, so a list of arguments with the same content is the same list.
struct qvLoggerSharedCall {
  const char* mFormat;          // null: none
  char mArgs[sizeof(va_list)];  // content of the list
  bool mfFormatted;             // the record's buffer holds the text of this call
};
static qvLoggerSharedCall sSharedCall;

static inline void qvLoggerText_S_CopyArgs(char* aBytes, va_list anArgs) {
  va_list theArgs;
  va_copy(theArgs, anArgs);
  memcpy(aBytes, &theArgs, sizeof(va_list));
  va_end(theArgs);
}

void qvLoggerText_StartSharing(qvLogDataEx* aRecord, const char* aFormat, va_list anArgs) {
  if (aRecord != NULL) {
    aRecord->mFormattedLen = 0;
  }
  sSharedCall.mFormat = aFormat;
  sSharedCall.mfFormatted = false;
  qvLoggerText_S_CopyArgs(sSharedCall.mArgs, anArgs);
}

void qvLoggerText_StopSharing() { sSharedCall.mFormat = NULL; }

bool qvLoggerText_IsSharing() { return sSharedCall.mFormat != NULL; }

static bool qvLoggerText_S_IsSharedCall(const char* aFormat, va_list anArgs) {
  if (aFormat != sSharedCall.mFormat) {
    return false;
  }
  char theArgs[sizeof(va_list)];
  qvLoggerText_S_CopyArgs(theArgs, anArgs);
  return memcmp(theArgs, sSharedCall.mArgs, sizeof(theArgs)) == 0;
}

static bool qvLoggerText_S_CanFormat(const qvLogDataEx* aRecord, const char* aFormat) {
  return aFormat != NULL && *aFormat != '\0' && aRecord->mSizeofFormatted >= 1 && _gfqvLog_gDataInitialized;
}

// Formats into the record's buffer.
static void qvLoggerText_S_Format(qvLogDataEx* aRecord, const char* aFormat, va_list anArgs) {
  uint32 theCapacity = static_cast<uint32>(aRecord->mSizeofFormatted);
  char* theText = aRecord->mFormatted;
  va_list theArgs;
  va_copy(theArgs, anArgs);
  int theResult = qv_vsnprintf(theText, theCapacity, aFormat, theArgs);
  va_end(theArgs);
  uint32 theLength = theResult > 0 ? static_cast<uint32>(theResult) : 0;
  if (theLength == 0) {
    // KEEP qvLoggerKept.AnEmptyOrFailedExpansionPrintsTheFormatItself
    theLength = static_cast<uint32>(strnlen(aFormat, theCapacity - 1));
    memcpy(theText, aFormat, theLength);
    theText[theLength] = '\0';
  } else if (theLength >= theCapacity) {
    // KEEP qvLoggerKept.ATruncatedMessageEndsWithAZeroByteOrALineEnd
    // The last byte of the buffer is part of the text: the terminator, or a line end in its place when the
    // format ends with one, so that the line is complete on every output.
    theLength = theCapacity;
    if (theLength > 1 && aFormat[strlen(aFormat) - 1] == '\n') {
      theText[theLength - 1] = '\n';
    }
  }
  aRecord->mFormattedLen = theLength;
  aRecord->mFormattedSource = aFormat;
}

void qvLogger::Append_F(qvLogDataEx* aRecord, const char* aFormat, ...) {
  va_list theArgs;
  va_start(theArgs, aFormat);
  Append_VF(aRecord, aFormat, theArgs);
  va_end(theArgs);
}

void qvLogger::Append_VF(qvLogDataEx* aRecord, const char* aFormat, va_list anArgs) {
  if (!qvLoggerText_S_CanFormat(aRecord, aFormat)) {
    return;
  }
  bool theShared = qvLoggerText_S_IsSharedCall(aFormat, anArgs);
  if (!theShared || !sSharedCall.mfFormatted || aRecord->mFormattedSource != aFormat) {
    qvLoggerText_S_Format(aRecord, aFormat, anArgs);
    sSharedCall.mfFormatted = theShared;
  }
  Append_S(aRecord, aRecord->mFormatted, aRecord->mFormattedLen);
}

void qvLogger::Append_VFML(qvLogDataEx* aRecord, const char* aFormat, va_list anArgs) {
  if (!qvLoggerText_S_CanFormat(aRecord, aFormat)) {
    return;
  }
  size_t theLength = 0;
  va_list theArgs;
  va_copy(theArgs, anArgs);
  char* theText = qv_lvmnprintf(&theLength, aFormat, theArgs);
  va_end(theArgs);
  if (theText == NULL) {
    return;
  }
  // KEEP qvLoggerKept.AMultiLineTextLosesWhatFollowsTheLastLineEnd
  // Only complete lines are written, and a prefix only before a line that will be complete.
  const char* theEnd = theText + theLength;
  const char* theLine = theText;
  const char* theLineEnd;
  while ((theLineEnd = static_cast<const char*>(memchr(theLine, '\n', theEnd - theLine))) != NULL) {
    if (theLine != theText) {
      GenerateBeginLine(aRecord);
    }
    Append_S(aRecord, theLine, theLineEnd + 1 - theLine);
    theLine = theLineEnd + 1;
  }
  qvFree(theText);
}

// Builds "   48 65 6C 6C 6F          - Hello" from up to 16 bytes.
static void qvLoggerText_S_MakeDumpLine(char* aLine, const uint8* aBytes, size_t aCount) {
  static const char kDigits[] = "0123456789ABCDEF";
  char* theHex = aLine + kqvLogger_DumpIndent;
  char* theDash = theHex + kqvLogger_DumpIndent * kqvLogger_BytesPerDumpLine;
  memset(aLine, ' ', static_cast<size_t>(theDash - aLine) + 2);
  theDash[0] = '-';
  char* theText = theDash + 2;
  for (size_t i = 0; i < aCount; ++i) {
    *theHex++ = kDigits[aBytes[i] >> 4];
    *theHex++ = kDigits[aBytes[i] & 0x0F];
    ++theHex;
    *theText++ = aBytes[i] < 0x20 || aBytes[i] > 0x7F ? '.' : static_cast<char>(aBytes[i]);
  }
  *theText = '\0';
}

void qvLogger::Append_B(qvLogDataEx* aRecord, const void* aBuffer, size_t aLength) {
  Append_F(aRecord, "Buffer pointer=%p length=%d\n", aBuffer, static_cast<int>(aLength));
  const uint8* theBytes = static_cast<const uint8*>(aBuffer);
  char theLine[kqvLogger_DumpIndent + (kqvLogger_DumpIndent + 1) * kqvLogger_BytesPerDumpLine + 3];
  for (size_t theDone = 0; theDone < aLength; theDone += kqvLogger_BytesPerDumpLine) {
    size_t theCount = aLength - theDone;
    if (theCount > kqvLogger_BytesPerDumpLine) {
      theCount = kqvLogger_BytesPerDumpLine;
    }
    qvLoggerText_S_MakeDumpLine(theLine, theBytes + theDone, theCount);
    Append_F(aRecord, "%s\n", theLine);
  }
}

void qvLogger::Append_U(qvLogDataEx* aRecord, const wchar_t* aText, size_t aLength) {
  char theText[kqvLogger_WideTextLimit + kqvLogger_WideTextMargin];
  size_t theLength = 0;
  for (size_t i = 0; i < aLength && theLength < kqvLogger_WideTextLimit; ++i) {
    uint32 theCharacter = static_cast<uint32>(aText[i]);
    if (theCharacter < 32 || theCharacter > 127) {
      theLength += static_cast<size_t>(
          qv_snprintf(theText + theLength, sizeof(theText) - theLength, "\\u%04x", theCharacter));
    } else {
      theText[theLength++] = static_cast<char>(theCharacter);
    }
  }
  theText[theLength] = '\0';
  Append_S(aRecord, theText, theLength);
}
