// The pointer parser.

#include <gtest/gtest.h>

#include <string>

#include "qvraTools/qvConvert.h"

namespace {

constexpr int kNone = kqvConvertError_None;
constexpr int kHigh = kqvConvertError_RangeHigh;
constexpr int kInvalid = kqvConvertError_Invalid;

struct PointerCase {
  const char* mText;
  uintptr_t mAddress;
  int mResult;
  const char* mWhy;
};

void ExpectPointer(const PointerCase& aCase) {
  SCOPED_TRACE(std::string(aCase.mText == nullptr ? "(null)" : aCase.mText) + ": " + aCase.mWhy);
  int theObject = 0;
  void* thePtr = &theObject;
  EXPECT_EQ(aCase.mResult, qvConvert_strtoptr(aCase.mText, &thePtr));
  EXPECT_EQ(aCase.mAddress, reinterpret_cast<uintptr_t>(thePtr));
}

}  // namespace

TEST(qvConvert, PointersAreHexadecimalBehind0xAndDecimalOtherwise) {
  const PointerCase kCases[] = {
      {nullptr, 0, kInvalid, "null"},
      {"", 0, kInvalid, "empty"},
      {"  ", 0, kInvalid, "blanks only"},
      {"0x1234abCD", 0x1234ABCD, kNone, "hexadecimal"},
      {"0XFF", 0xFF, kNone, "with an upper-case X"},
      {"  +0x10", 0x10, kNone, "blanks and one plus are skipped"},
      {"1234", 1234, kNone, "decimal"},
      {"010", 10, kNone, "never octal"},
      {"ff", 0, kInvalid, "no hexadecimal without 0x"},
      {"0xg", 0, 1, "not a prefix: the decimal number 0, then other text"},
      {"0x", 0, kNone, "0x alone is null without an error"},
      {" 0X", 0, kNone, "in both cases"},
      {"0", 0, kNone, "null"},
      {"-1", 0, kInvalid, "no sign"},
      {"0xffffffff", 0xFFFFFFFF, kNone, "the largest address"},
      {"4294967295", 0xFFFFFFFF, kNone, "the largest address"},
      {"0x100000000", 0xFFFFFFFF, kHigh, "32 bits on every platform"},
      {"4294967296", 0xFFFFFFFF, kHigh, "32 bits on every platform"},
      {"0x0x10", 0x10, kNone, "base 16 skips a prefix of its own"},
      {"++5", 5, kNone, "the number behind what was skipped may have a plus"},
      {"+ 5", 5, kNone, "and white space"},
      {"+++5", 0, kInvalid, "but no two of them"},
      {"0x+5", 0, 1, "a plus is no hexadecimal digit"},
      {"(nil)", 0, kInvalid, "how a null pointer prints"},
  };
  for (const PointerCase& theCase : kCases) {
    ExpectPointer(theCase);
  }
}

TEST(qvConvertKept, ThePositionBehindAPointerCountsFromItsDigits) {
  ExpectPointer({"12x", 12, 2, "nothing was skipped"});
  ExpectPointer({"  12x", 12, 2, "blanks do not count"});
  ExpectPointer({"+12x", 12, 2, "the sign does not count"});
  ExpectPointer({" +0x12z", 0x12, 2, "nor does the prefix"});
  ExpectPointer({"  0xg", 0, 1, "without a prefix the 0 is a digit"});
  ExpectPointer({" ++5x", 5, 2, "a second plus counts, it was not skipped but read"});
}
