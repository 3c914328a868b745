#include "qvraTools/format/qvFormatText_p.h"

#include <string.h>

#include "qvraTools/qvUnicode.h"

#define kqvFormatText_MaxUTF8 7 /* bytes of one character: see qvUTF8Max */

// The room of a precision; without one there is no limit.
static size_t qvFormat_S_Limit(const qvFormatDirective& aDirective) {
  return aDirective.mPrecision < 0 ? SIZE_MAX : static_cast<size_t>(aDirective.mPrecision);
}

// Calls aWrite between the blanks that a text of this length needs.
template <typename Char, typename Write>
static void qvFormat_S_Padded(const qvFormatDirective& aDirective, size_t aLength,
                              qvFormatOutput<Char>* anOutput, const Write& aWrite) {
  size_t theWidth = static_cast<size_t>(aDirective.mWidth);
  size_t thePadding = theWidth > aLength ? theWidth - aLength : 0;
  bool theLeft = (aDirective.mFlags & kqvFormatFlag_Left) != 0;
  if (thePadding > 0 && !theLeft) {
    anOutput->Fill(' ', thePadding);
  }
  aWrite();
  if (thePadding > 0 && theLeft) {
    anOutput->Fill(' ', thePadding);
  }
}

static size_t qvFormat_S_Length(const char* aText, size_t aLimit) {
  return aLimit == SIZE_MAX ? strlen(aText) : strnlen(aText, aLimit);
}

static size_t qvFormat_S_Length(const wchar_t* aText, size_t aLimit) {
  return aLimit == SIZE_MAX ? wcslen(aText) : wcsnlen(aText, aLimit);
}

// Text of the output's own width.
template <typename Char>
static void qvFormat_S_Copy(const qvFormatDirective& aDirective, const Char* aText,
                            qvFormatOutput<Char>* anOutput) {
  size_t theLength = qvFormat_S_Length(aText, qvFormat_S_Limit(aDirective));
  qvFormat_S_Padded(aDirective, theLength, anOutput, [&] { anOutput->Append(aText, theLength); });
}

void qvFormatText_Write(const qvFormatDirective& aDirective, const char* aText,
                        qvFormatOutput<char>* anOutput) {
  qvFormat_S_Copy(aDirective, aText, anOutput);
}

void qvFormatText_Write(const qvFormatDirective& aDirective, const wchar_t* aText,
                        qvFormatOutput<wchar_t>* anOutput) {
  qvFormat_S_Copy(aDirective, aText, anOutput);
}

// Wide text in a narrow output.

static size_t qvFormat_S_PutWide(uint32 aChar, qvFormatOutput<char>* anOutput) {
  if (aChar < 0x80) {
    anOutput->Put(static_cast<char>(aChar));
    return 1;
  }
  char theBytes[kqvFormatText_MaxUTF8];
  size_t theLength = qvUnicode_WriteUTF8Char(theBytes, sizeof theBytes, aChar);
  anOutput->AppendASCII(theBytes, theLength);
  return theLength;
}

// The bytes of all characters that fit aLimit whole. Does not look at a character behind the limit.
static size_t qvFormat_S_ConvertedLength(const wchar_t* aText, size_t aLimit) {
  size_t theLength = 0;
  while (theLength < aLimit && *aText != 0) {
    uint32 theChar = static_cast<uint32>(*aText++);
    size_t theNext = theChar < 0x80 ? 1 : qvUnicode_UTF8CharLength(theChar);
    if (theNext > aLimit - theLength) {
      break;
    }
    theLength += theNext;
  }
  return theLength;
}

// Writes all characters of aLength bytes; there is room for them.
static void qvFormat_S_WriteWide(const wchar_t* aText, char* aPlace, size_t aLength) {
  for (char* theEnd = aPlace + aLength; aPlace < theEnd; ++aText) {
    uint32 theChar = static_cast<uint32>(*aText);
    if (theChar < 0x80) {
      *aPlace++ = static_cast<char>(theChar);
    } else {
      aPlace += qvUnicode_WriteUTF8Char(aPlace, static_cast<size_t>(theEnd - aPlace), theChar);
    }
  }
}

void qvFormatText_Write(const qvFormatDirective& aDirective, const wchar_t* aText,
                        qvFormatOutput<char>* anOutput) {
  size_t theLength = qvFormat_S_ConvertedLength(aText, qvFormat_S_Limit(aDirective));
  qvFormat_S_Padded(aDirective, theLength, anOutput, [&] {
    char* thePlace = anOutput->Reserve(theLength);
    if (thePlace != nullptr) {
      qvFormat_S_WriteWide(aText, thePlace, theLength);
      anOutput->Wrote(theLength);
      return;
    }
    for (size_t theDone = 0; theDone < theLength; ++aText) {
      theDone += qvFormat_S_PutWide(static_cast<uint32>(*aText), anOutput);
    }
  });
}

// UTF-8 text in a wide output.

// Reads one character, and no byte behind it. A byte that does not belong to one stands for itself.
static wchar_t qvFormat_S_ReadUTF8(const char*& aNext) {
  unsigned char theLead = static_cast<unsigned char>(*aNext);
  if (theLead >= 0xc0) {
    // As many continuation bytes as the lead byte announces, or fewer: the text may end at any of them.
    size_t theLength = 1;
    for (unsigned char theBit = 0x40; (theLead & theBit) != 0 && (aNext[theLength] & 0xc0) == 0x80;
         theBit >>= 1) {
      ++theLength;
    }
    uint32 theChar = 0;
    if (qvUnicode_ReadUTF8Char(aNext, theLength, &theChar) == theLength) {
      aNext += theLength;
      return static_cast<wchar_t>(theChar);
    }
  }
  ++aNext;
  return static_cast<wchar_t>(theLead);
}

static size_t qvFormat_S_ConvertedLength(const char* aText, size_t aLimit) {
  size_t theLength = 0;
  for (; theLength < aLimit && *aText != '\0'; ++theLength) {
    qvFormat_S_ReadUTF8(aText);
  }
  return theLength;
}

void qvFormatText_Write(const qvFormatDirective& aDirective, const char* aText,
                        qvFormatOutput<wchar_t>* anOutput) {
  size_t theLength = qvFormat_S_ConvertedLength(aText, qvFormat_S_Limit(aDirective));
  qvFormat_S_Padded(aDirective, theLength, anOutput, [&] {
    for (size_t theDone = 0; theDone < theLength; ++theDone) {
      anOutput->Put(qvFormat_S_ReadUTF8(aText));
    }
  });
}

void qvFormatText_WriteCharacter(const qvFormatDirective& aDirective, uint32 aChar,
                                 qvFormatOutput<char>* anOutput) {
  if (aDirective.mLength != kqvFormatLength_Long) {
    qvFormat_S_Padded(aDirective, 1, anOutput, [&] { anOutput->Put(static_cast<char>(aChar)); });
    return;
  }
  qvFormat_S_Padded(aDirective, qvUnicode_UTF8CharLength(aChar), anOutput,
                    [&] { qvFormat_S_PutWide(aChar, anOutput); });
}

void qvFormatText_WriteCharacter(const qvFormatDirective& aDirective, uint32 aChar,
                                 qvFormatOutput<wchar_t>* anOutput) {
  uint32 theChar = aDirective.mLength != kqvFormatLength_Long ? static_cast<unsigned char>(aChar) : aChar;
  qvFormat_S_Padded(aDirective, 1, anOutput, [&] { anOutput->Put(static_cast<wchar_t>(theChar)); });
}

template <typename Char>
void qvFormatText_WriteNull(const qvFormatDirective& aDirective, qvFormatOutput<Char>* anOutput) {
  static const char kNull[] = "(nil)";
  size_t theLength = strnlen(kNull, qvFormat_S_Limit(aDirective));
  qvFormat_S_Padded(aDirective, theLength, anOutput, [&] { anOutput->AppendASCII(kNull, theLength); });
}

template void qvFormatText_WriteNull(const qvFormatDirective& aDirective, qvFormatOutput<char>* anOutput);
template void qvFormatText_WriteNull(const qvFormatDirective& aDirective, qvFormatOutput<wchar_t>* anOutput);
