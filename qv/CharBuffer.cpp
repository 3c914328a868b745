#include "qv/CharBuffer.h"

#include <stdlib.h>

#include "qvraTools/qvMalloc.h"

static char* qvCharBuffer_S_Dup(const char* aStr) { return qvStrdup(aStr); }
static wchar_t* qvCharBuffer_S_Dup(const wchar_t* aStr) { return qvWcsdup(aStr); }

template <class Char>
qvCharBuffer_Base<Char>::qvCharBuffer_Base(const Char* aStr, bool afCopy)
    : mStr(afCopy ? qvCharBuffer_S_Dup(aStr) : const_cast<Char*>(aStr)) {}

template <class Char>
qvCharBuffer_Base<Char>::qvCharBuffer_Base(size_t aLength) {
  // More than a machine can address: the allocation ends the process instead of wrapping to a small block.
  const bool thefFits = aLength < static_cast<size_t>(-1) / sizeof(Char);
  mStr = static_cast<Char*>(qvMalloc(thefFits ? (aLength + 1) * sizeof(Char) : static_cast<size_t>(-1)));
  mStr[aLength] = 0;
}

template <class Char>
qvCharBuffer_Base<Char>::qvCharBuffer_Base(const qvCharBuffer_Base& aBuffer) : mStr(aBuffer.release()) {}

template <class Char>
qvCharBuffer_Base<Char>::~qvCharBuffer_Base() {
  free(mStr);
}

template <class Char>
qvCharBuffer_Base<Char>& qvCharBuffer_Base<Char>::operator=(const Char* aStr) {
  // Copied first, because aStr may be part of the string that is freed.
  Char* theCopy = qvCharBuffer_S_Dup(aStr);
  free(mStr);
  mStr = theCopy;
  return *this;
}

template <class Char>
qvCharBuffer_Base<Char>& qvCharBuffer_Base<Char>::operator=(const qvCharBuffer_Base& aBuffer) {
  if (this != &aBuffer) {
    free(mStr);
    mStr = aBuffer.release();
  }
  return *this;
}

template <class Char>
Char* qvCharBuffer_Base<Char>::release() const {
  Char* theStr = mStr;
  mStr = NULL;
  return theStr;
}

template class qvCharBuffer_Base<char>;
template class qvCharBuffer_Base<wchar_t>;
