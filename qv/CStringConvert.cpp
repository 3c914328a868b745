// The ways from qvCString to numbers, formatted text, valid UTF-8 and wide text.
#include <algorithm>

#include "qv/CString.h"
#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvConvert.h"
#include "qvraTools/qvUTF.h"
#include "qvraTools/qvUnicode.h"
#include "qvraTools/qvWString.h"

#define kqvCString_PrintfSize 1024 /* characters; the room of the first attempt of PrintfV */

// A parser also reports a number that other characters follow; here the whole text has to be one.
bool qvCString::ToInt8(int8* aValue) const { return qvConvert_strtoint8(mStringPtr, aValue) == 0; }

bool qvCString::ToUInt8(uint8* aValue) const { return qvConvert_strtouint8(mStringPtr, aValue) == 0; }

bool qvCString::ToInt16(int16* aValue) const { return qvConvert_strtoint16(mStringPtr, aValue) == 0; }

bool qvCString::ToUInt16(uint16* aValue) const { return qvConvert_strtouint16(mStringPtr, aValue) == 0; }

bool qvCString::ToInt32(int32* aValue, int aBase) const {
  return qvConvert_strtoint32_base(mStringPtr, aValue, aBase) == 0;
}

bool qvCString::ToUInt32(uint32* aValue, int aBase) const {
  return qvConvert_strtouint32_base(mStringPtr, aValue, aBase) == 0;
}

bool qvCString::ToInt64(qvint64_t* aValue, int aBase) const {
  return qvConvert_strtoint64_base(mStringPtr, aValue, aBase) == 0;
}

bool qvCString::ToUInt64(qvuint64_t* aValue, int aBase) const {
  return qvConvert_strtouint64_base(mStringPtr, aValue, aBase) == 0;
}

bool qvCString::ToDouble(double* aValue) const { return qvConvert_strtod(mStringPtr, aValue) == 0; }

bool qvCString::HasOnlyNumbers() const {
  return std::all_of(mStringPtr, mStringPtr + length(),
                     [](char aChar) { return qvConvert_isnum(static_cast<unsigned char>(aChar)) != 0; });
}

bool qvCString::HasOnlyHexa() const {
  return std::all_of(mStringPtr, mStringPtr + length(),
                     [](char aChar) { return qvConvert_isxdigit(static_cast<unsigned char>(aChar)) != 0; });
}

size_t qvCString::Printf(const char* aFormat, ...) {
  va_list theArgs;
  va_start(theArgs, aFormat);
  const size_t theLength = PrintfV(aFormat, theArgs);
  va_end(theArgs);
  return theLength;
}

size_t qvCString::PrintfV(const char* aFormat, va_list anArgs) {
  // The old text is held until the end, because the format and the arguments may lie in it. A text whose
  // write buffer is out stays, for GetWriteBuf to complain about.
  qvCString theOld;
  if (mCStringData->IsValid()) {
    Swap(theOld);
  }
  const char* theFormat = aFormat != NULL ? aFormat : "";
  size_t theSize = kqvCString_PrintfSize;
  for (;;) {
    char* theBuffer = GetWriteBuf(theSize + 1);
    va_list theArgs;
    va_copy(theArgs, anArgs);
    const int theResult = qv_vsnprintf(theBuffer, theSize + 1, theFormat, theArgs);
    va_end(theArgs);
    theBuffer[theSize] = '\0';
    UngetWriteBuf();
    if (theResult < 0 || static_cast<size_t>(theResult) <= theSize) {
      return length();
    }
    theSize = static_cast<size_t>(theResult);
  }
}

qvCString qvCString::Format(const char* aFormat, ...) {
  qvCString theResult;
  va_list theArgs;
  va_start(theArgs, aFormat);
  theResult.PrintfV(aFormat, theArgs);
  va_end(theArgs);
  return theResult;
}

bool qvCString::IsValidUTF8() const {
  return qvUnicode_UTF8ToWide(NULL, mStringPtr, 0) != static_cast<size_t>(-1);
}

qvCString& qvCString::ValidateUTF8(int aFlags) {
  if (!IsValidUTF8()) {
    if ((aFlags & kqvEmpty) != 0) {
      Empty();
    } else if ((aFlags & kqvKeepValid) != 0) {
      CopyBeforeWrite();
      Truncate(static_cast<size_t>(qvUTF_MakeValidUTF8(mStringPtr, static_cast<int>(length()))));
    }
  }
  if ((aFlags & kqvKeepPrintable) != 0) {
    KeepPrintable();
  }
  return *this;
}

// The size of the sequence at the start of aStr as its lead byte tells it. A stray continuation byte and
// leads from 0xF8 on count as sequences of one byte.
static size_t qvCString_S_SequenceSize(const char* aStr) {
  const unsigned char theLead = static_cast<unsigned char>(*aStr);
  if (theLead < 0xC0 || theLead >= 0xF8) {
    return 1;
  }
  return theLead < 0xE0 ? 2 : theLead < 0xF0 ? 3 : 4;
}

static bool qvCString_S_IsPrintable(const char* aStr, size_t aSize, size_t aBytesLeft) {
  const unsigned char theLead = static_cast<unsigned char>(*aStr);
  if (theLead < 0x80) {
    return qvConvert_isprintable(theLead) != 0;
  }
  return aSize <= aBytesLeft && std::all_of(aStr + 1, aStr + aSize, [](char aChar) {
           return (static_cast<unsigned char>(aChar) & 0xC0) == 0x80;
         });
}

void qvCString::KeepPrintable() {
  const size_t theLength = length();
  size_t theRead = 0;
  size_t theWrite = 0;
  while (theRead < theLength) {
    const size_t theSize = qvCString_S_SequenceSize(mStringPtr + theRead);
    if (!qvCString_S_IsPrintable(mStringPtr + theRead, theSize, theLength - theRead)) {
      CopyBeforeWrite();
      theRead += std::min(theSize, theLength - theRead);
    }
    // KEEP qvCStringKept.BytesBehindAnErasedSequenceAreNotExamined
    // What is kept here is the sequence just examined or, after an erasure, the bytes that moved into its
    // place: the scan goes on behind as many bytes as were erased, without a look at them.
    const size_t theKept = std::min(theSize, theLength - theRead);
    if (theWrite < theRead) {
      memmove(mStringPtr + theWrite, mStringPtr + theRead, theKept);
    }
    theRead += theKept;
    theWrite += theKept;
  }
  if (theWrite < theLength) {
    Truncate(theWrite);
  }
}

qvWCharBuffer qvCString::ToWideChar() const { return qvWCharBuffer(qvWString_S_FromUTF8(mStringPtr), false); }

qvCString qvCString::FromWideChar(const wchar_t* aStr) {
  return aStr != NULL ? FromAllocatedString(qvWString_S_ToUTF8(aStr)) : qvCString();
}
