// CStringText.h - looks at a qvCString as a whole: its bytes, zero bytes included, and its sound state.
#ifndef TESTS_SUPPORT_CSTRINGTEXT_H
#define TESTS_SUPPORT_CSTRINGTEXT_H

#include <gtest/gtest.h>

#include <string>

#include "qv/CString.h"
#include "support/Bytes.h"

// The bytes of a string. Fails the test unless the characters are those of the header and terminated.
inline std::string TextOf(const qvCString& aString) {
  EXPECT_EQ(aString.mCStringData->StringPtr(), aString.mStringPtr);
  EXPECT_EQ('\0', aString.mStringPtr[aString.length()]);
  return std::string(aString.mStringPtr, aString.length());
}

// A string of these bytes.
inline qvCString StringOf(const std::string& aText) { return qvCString(aText.data(), aText.size()); }

// True for a string that uses the one empty text of the library, not a block of its own.
inline bool IsSharedEmptyText(const qvCString& aString) {
  return aString.mStringPtr == qvEmptyCString && aString.mCStringData->mRefCount == -1;
}

#endif
