// The parsers that take a text and its length: each parses a terminated copy.

#include <stdint.h>
#include <string.h>

#include "qvraTools/qvConvert.h"
#include "qvraTools/qvMalloc.h"

template <typename Number>
static int qvConvert_S_ParseCopy(const char* aStr, size_t aStrLength, Number* aNumber,
                                 int (*aParser)(const char*, Number*)) {
  if (aStr == nullptr || aStrLength == 0) {
    *aNumber = Number();
    return kqvConvertError_Invalid;
  }
  // No machine has memory for a length that has no successor; one more byte must not come to none.
  char* theCopy = static_cast<char*>(qvMalloc(aStrLength < SIZE_MAX ? aStrLength + 1 : SIZE_MAX));
  memcpy(theCopy, aStr, aStrLength);
  theCopy[aStrLength] = '\0';
  const int theResult = aParser(theCopy, aNumber);
  qvFree(theCopy);
  return theResult;
}

int qvConvert_strntoint8(const char* aStr, size_t aStrLength, int8* anInt8) {
  return qvConvert_S_ParseCopy(aStr, aStrLength, anInt8, qvConvert_strtoint8);
}

int qvConvert_strntoint16(const char* aStr, size_t aStrLength, int16* anInt16) {
  return qvConvert_S_ParseCopy(aStr, aStrLength, anInt16, qvConvert_strtoint16);
}

int qvConvert_strntoint32(const char* aStr, size_t aStrLength, int32* anInt32) {
  return qvConvert_S_ParseCopy(aStr, aStrLength, anInt32, qvConvert_strtoint32);
}

int qvConvert_strntouint8(const char* aStr, size_t aStrLength, uint8* anUInt8) {
  return qvConvert_S_ParseCopy(aStr, aStrLength, anUInt8, qvConvert_strtouint8);
}

int qvConvert_strntouint16(const char* aStr, size_t aStrLength, uint16* anUInt16) {
  return qvConvert_S_ParseCopy(aStr, aStrLength, anUInt16, qvConvert_strtouint16);
}

int qvConvert_strntouint32(const char* aStr, size_t aStrLength, uint32* anUInt32) {
  return qvConvert_S_ParseCopy(aStr, aStrLength, anUInt32, qvConvert_strtouint32);
}

int qvConvert_strntouint64(const char* aStr, size_t aStrLength, qvuint64_t* anUInt64) {
  return qvConvert_S_ParseCopy(aStr, aStrLength, anUInt64, qvConvert_strtouint64);
}

int qvConvert_strntoULongLong(const char* aStr, size_t aStrLength, qvULongLong* aULongLong) {
  return qvConvert_S_ParseCopy(aStr, aStrLength, aULongLong, qvConvert_strtoULongLong);
}

// qvStrndup ends the copy at a zero inside the text, where the parser ends too.
int qvConvert_hexstrntouint32(const char* aStr, size_t aStrLength, uint32* anUInt32) {
  if (aStr == nullptr || aStrLength == 0) {
    return qvConvert_hexstrtouint32(nullptr, anUInt32);
  }
  char* theCopy = qvStrndup(aStr, aStrLength);
  const int theResult = qvConvert_hexstrtouint32(theCopy, anUInt32);
  qvFree(theCopy);
  return theResult;
}
