#include <gtest/gtest.h>
#include <limits.h>

#include <string>

#include "qvraTools/qvConvert.h"

namespace {

// The characters of 0 to 127 for which a class holds.
std::string MembersOf(int (*aClass)(int)) {
  std::string theMembers;
  for (int theChar = 0; theChar < 128; ++theChar) {
    if (aClass(theChar)) {
      theMembers += static_cast<char>(theChar);
    }
  }
  return theMembers;
}

const char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
const char kDigits[] = "0123456789";

}  // namespace

TEST(qvConvertClasses, AlphaHoldsTheLettersOnly) { EXPECT_EQ(kLetters, MembersOf(qvConvert_isalpha)); }

TEST(qvConvertClasses, NumHoldsTheDigitsOnly) { EXPECT_EQ(kDigits, MembersOf(qvConvert_isnum)); }

TEST(qvConvertClasses, AlnumHoldsDigitsAndLetters) {
  EXPECT_EQ(std::string(kDigits) + kLetters, MembersOf(qvConvert_isalnum));
}

TEST(qvConvertClasses, XdigitHoldsDigitsAndAToFInBothCases) {
  EXPECT_EQ("0123456789ABCDEFabcdef", MembersOf(qvConvert_isxdigit));
}

TEST(qvConvertClasses, SpaceHoldsNineToThirteenAndTheBlank) {
  EXPECT_EQ("\t\n\v\f\r ", MembersOf(qvConvert_isspace));
  EXPECT_EQ(1, qvConvert_isspace(11)) << "vertical tab";
}

TEST(qvConvertClasses, PrintableHoldsAllFrom32OnButDelete) {
  for (int theChar = 0; theChar < 32; ++theChar) {
    EXPECT_EQ(0, qvConvert_isprintable(theChar)) << theChar;
  }
  for (int theChar = 32; theChar < 127; ++theChar) {
    EXPECT_EQ(1, qvConvert_isprintable(theChar)) << theChar;
  }
  EXPECT_EQ(0, qvConvert_isprintable(127));
  for (int theChar = 128; theChar < 600; ++theChar) {
    EXPECT_EQ(1, qvConvert_isprintable(theChar)) << theChar;
  }
}

TEST(qvConvertClasses, NegativeCodesArePrintable) {
  EXPECT_EQ(1, qvConvert_isprintable(-1));
  EXPECT_EQ(1, qvConvert_isprintable(-56)) << "the byte 200 where char is signed";
  EXPECT_EQ(1, qvConvert_isprintable(200));
  EXPECT_EQ(1, qvConvert_isprintable(INT_MIN));
}

TEST(qvConvertClasses, EveryResultIsOneOrZero) {
  EXPECT_EQ(1, qvConvert_isalpha('z'));
  EXPECT_EQ(1, qvConvert_isalnum('Z'));
  EXPECT_EQ(1, qvConvert_isalnum('0'));
  EXPECT_EQ(1, qvConvert_isnum('9'));
  EXPECT_EQ(1, qvConvert_isxdigit('F'));
  EXPECT_EQ(1, qvConvert_isspace(' '));
  EXPECT_EQ(0, qvConvert_isalpha('0'));
}

TEST(qvConvertClasses, CodesOutsideAsciiAreInNoClassButPrintable) {
  const int kCodes[] = {INT_MIN, -159, -128, -1, 128, 160, 223, 255, 0x141, 0x130, 0x661, INT_MAX};
  for (int theCode : kCodes) {
    EXPECT_EQ(0, qvConvert_isalpha(theCode)) << theCode;
    EXPECT_EQ(0, qvConvert_isalnum(theCode)) << theCode;
    EXPECT_EQ(0, qvConvert_isnum(theCode)) << theCode;
    EXPECT_EQ(0, qvConvert_isxdigit(theCode)) << theCode;
    EXPECT_EQ(0, qvConvert_isspace(theCode)) << theCode;
  }
}

struct RunCase {
  const char* mText;
  uint32 mLength;
  int mAlpha;
  int mNum;
  const char* mWhy;
};

TEST(qvConvertClasses, RunsAreOfOneClassWhenAllCharactersAre) {
  const RunCase kCases[] = {
      {"", 0, 1, 1, "no character breaks the rule"},
      {"abcXYZ", 6, 1, 0, "letters only"},
      {"0123456789", 10, 0, 1, "digits only"},
      {"abc1", 4, 0, 0, "the last character counts"},
      {"abc1", 3, 1, 0, "what lies behind the length does not"},
      {"1abc", 4, 0, 0, "the first character counts"},
      {"a123", 4, 0, 0, "for digits too"},
      {"123a", 4, 0, 0, "and the last"},
      {"12 ", 3, 0, 0, "a blank is neither"},
      {"12\0"
       "34",
       5, 0, 0, "a zero does not end the run"},
      {"\xC3\xA4", 2, 0, 0, "bytes above 0x7F are neither"},
      {"ab\0", 3, 0, 0, "a zero inside the length is a character"},
  };
  for (const RunCase& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    EXPECT_EQ(theCase.mAlpha, qvConvert_isalphastr(theCase.mText, theCase.mLength));
    EXPECT_EQ(theCase.mNum, qvConvert_isnumstr(theCase.mText, theCase.mLength));
  }
}

struct ListCase {
  const char* mText;
  uint32 mLength;
  const char* mList;
  int mResult;
  const char* mWhy;
};

TEST(qvConvertClasses, ContainsOnlyLooksEveryCharacterUpInTheList) {
  const ListCase kCases[] = {
      {"aabbcc", 6, "abc", 1, "every character is in the list"},
      {"aabdcc", 6, "abc", 0, "one is not"},
      {"aabd", 3, "abc", 1, "only the length counts"},
      {"", 0, "", 1, "no character breaks the rule"},
      {"", 0, "abc", 1, "no character, whatever the list"},
      {"a", 1, "", 0, "nothing is in an empty list"},
      {"a\0b", 3, "ab", 0, "the list's terminator is no member"},
      {"\0", 1, "", 0, "not even of an empty list"},
      {"\xE4\xF6", 2, "\xF6\xE4", 1, "bytes above 0x7F"},
      {"A", 1, "a", 0, "case counts"},
  };
  for (const ListCase& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    EXPECT_EQ(theCase.mResult, qvConvert_containsonly(theCase.mText, theCase.mLength, theCase.mList));
  }
}

TEST(qvConvertClasses, EmptyRunsAreNotRead) {
  EXPECT_EQ(1, qvConvert_isalphastr(nullptr, 0));
  EXPECT_EQ(1, qvConvert_isnumstr(nullptr, 0));
  EXPECT_EQ(1, qvConvert_containsonly(nullptr, 0, "abc"));
}
