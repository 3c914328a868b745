// qvConvert_p.h - what the parsers share.
#ifndef QVRATOOLS_QVCONVERT_P_H
#define QVRATOOLS_QVCONVERT_P_H

#include "qvraTools/qvConvert.h"

// qvConvert_isspace of a byte, inline.
static inline bool qvConvert_S_IsSpace(char aChar) {
  return (aChar >= '\t' && aChar <= '\r') || aChar == ' ';
}

// The first character of aStr that is not white space.
static inline const char* qvConvert_S_SkipSpace(const char* aStr) {
  while (qvConvert_S_IsSpace(*aStr)) {
    ++aStr;
  }
  return aStr;
}

// The result of a number that was read from aStr up to anEndPtr: kqvConvertError_None when that is the whole
// text, otherwise the position of anEndPtr.
static inline int qvConvert_S_Position(const char* aStr, const char* anEndPtr) {
  return *anEndPtr == '\0' ? kqvConvertError_None : static_cast<int>(anEndPtr - aStr);
}

#endif
