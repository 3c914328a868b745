// The copies have room for their terminator. Some of the lengths fill a block of the allocator to its last
// byte, so that a terminator that was not asked for lies behind it.
#include <gtest/gtest.h>
#include <malloc.h>

#include <string>

#include "qvraTools/qvMalloc.h"

namespace {

constexpr size_t kLongest = 64;

void ExpectRoom(size_t aSize, void* aBlock) {
  EXPECT_LE(aSize, malloc_usable_size(aBlock));
  qvFree(aBlock);
}

}  // namespace

TEST(qvMallocRoom, StrdupAsksForTheTerminator) {
  for (size_t theLength = 0; theLength <= kLongest; ++theLength) {
    ExpectRoom(theLength + 1, qvStrdup(std::string(theLength, 'x').c_str()));
  }
}

TEST(qvMallocRoom, StrndupAsksForTheTerminator) {
  for (size_t theLength = 0; theLength <= kLongest; ++theLength) {
    ExpectRoom(theLength + 1, qvStrndup(std::string(kLongest + 1, 'x').c_str(), theLength));
  }
}

TEST(qvMallocRoom, StrcatReplaceAsksForTheTerminator) {
  for (size_t theLength = 0; theLength <= kLongest; ++theLength) {
    char* theText = qvStrdup("ab");
    qvStrcatReplace(&theText, std::string(theLength, 'x').c_str());
    ExpectRoom(2 + theLength + 1, theText);
  }
}

TEST(qvMallocRoom, WcsndupAsksForTheTerminator) {
  for (size_t theLength = 0; theLength <= kLongest; ++theLength) {
    ExpectRoom((theLength + 1) * sizeof(wchar_t),
               qvWcsndup(std::wstring(theLength, L'x').c_str(), theLength));
  }
}
