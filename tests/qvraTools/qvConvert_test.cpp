// The integer parsers. Their forms with a length are in qvConvertLength_test.cpp.

#include "qvraTools/qvConvert.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr int kNone = kqvConvertError_None;
constexpr int kHigh = kqvConvertError_RangeHigh;
constexpr int kLow = kqvConvertError_RangeLow;
constexpr int kInvalid = kqvConvertError_Invalid;

template <typename Int>
struct ParseCase {
  const char* mText;
  Int mValue;
  int mResult;
  const char* mWhy;
};

template <typename Int>
struct BaseCase {
  const char* mText;
  int mBase;
  Int mValue;
  int mResult;
  const char* mWhy;
};

// The destination begins with a value that no case expects: it must always be written.
template <typename Int>
void Expect(int (*aParser)(const char*, Int*), const ParseCase<Int>& aCase) {
  SCOPED_TRACE(std::string(aCase.mText == nullptr ? "(null)" : aCase.mText) + ": " + aCase.mWhy);
  Int theValue = 99;
  EXPECT_EQ(aCase.mResult, aParser(aCase.mText, &theValue));
  EXPECT_EQ(aCase.mValue, theValue);
}

template <typename Int>
void Expect(int (*aParser)(const char*, Int*, int), const BaseCase<Int>& aCase) {
  SCOPED_TRACE(std::string(aCase.mText == nullptr ? "(null)" : aCase.mText) + ": " + aCase.mWhy);
  Int theValue = 99;
  EXPECT_EQ(aCase.mResult, aParser(aCase.mText, &theValue, aCase.mBase));
  EXPECT_EQ(aCase.mValue, theValue);
}

// Rules that every decimal integer parser shares.
template <typename Int>
void ExpectCommonRules(int (*aParser)(const char*, Int*)) {
  const ParseCase<Int> kCases[] = {
      {nullptr, 0, kInvalid, "null"},
      {"", 0, kInvalid, "empty"},
      {"   ", 0, kInvalid, "white space only"},
      {"abc", 0, kInvalid, "no digit"},
      {"+", 0, kInvalid, "a sign only"},
      {"-", 0, kInvalid, "a sign only"},
      {"++5", 0, kInvalid, "one plus is skipped, not two"},
      {"+-5", 0, kInvalid, "two signs"},
      {"-+5", 0, kInvalid, "two signs"},
      {"--5", 0, kInvalid, "two signs"},
      {"- 5", 0, kInvalid, "a blank behind the minus"},
      {"+ 5", 0, kInvalid, "a blank behind the plus"},
      {".5", 0, kInvalid, "a point is no digit"},
      {"\xC2\xA0"
       "5",
       0, kInvalid, "only ASCII white space is skipped"},
      {"\xB2", 0, kInvalid, "a byte above 0x7F is no digit"},
      {"0", 0, kNone, "zero"},
      {"7", 7, kNone, "one digit"},
      {"  +42", 42, kNone, "blanks and one plus are skipped"},
      {"\t\n\v\f\r 42", 42, kNone, "all white space is skipped"},
      {"0000000000000000000000000000042", 42, kNone, "leading zeros do not count"},
      {"017", 17, kNone, "decimal, not octal"},
      {"42abc", 42, 2, "position of the first byte not read"},
      {"12 ", 12, 2, "white space behind a number is other text"},
      {"  12x", 12, 4, "the position counts from the start of the text"},
      {"+12,", 12, 3, "the sign counts too"},
      {"0x1F", 0, 1, "no hexadecimal in base 10"},
      {"1.5", 1, 1, "stops at a point"},
      {"5\xFF", 5, 1, "stops at a byte above 0x7F"},
      {"3:", 3, 1, "the code behind '9' is no digit"},
      {"3/", 3, 1, "the code before '0' is no digit"},
      {"3@", 3, 1, "the code before 'A' is no digit"},
  };
  for (const auto& theCase : kCases) {
    Expect(aParser, theCase);
  }
}

}  // namespace

TEST(qvConvert, TheResultCodesHaveTheirValues) {
  EXPECT_EQ(0, kqvConvertError_None);
  EXPECT_EQ(-1, kqvConvertError_RangeHigh);
  EXPECT_EQ(-2, kqvConvertError_RangeLow);
  EXPECT_EQ(-3, kqvConvertError_Invalid);
}

TEST(qvConvert, EveryDecimalParserReadsBlanksSignsDigitsAndReportsTheRest) {
  ExpectCommonRules(qvConvert_strtoint8);
  ExpectCommonRules(qvConvert_strtoint16);
  ExpectCommonRules(qvConvert_strtoint32);
  ExpectCommonRules(qvConvert_strtoint64);
  ExpectCommonRules(qvConvert_strtouint8);
  ExpectCommonRules(qvConvert_strtouint16);
  ExpectCommonRules(qvConvert_strtouint32);
  ExpectCommonRules(qvConvert_strtouint64);
}

TEST(qvConvert, Int8IsClampedToItsRange) {
  const ParseCase<int8> kCases[] = {
      {"127", 127, kNone, "the maximum"},
      {"128", 127, kHigh, "one above it"},
      {"-128", -128, kNone, "the minimum"},
      {"-127", -127, kNone, "its neighbour is itself"},
      {"-129", -128, kLow, "one below the minimum"},
      {"12x", 12, 2, "trailing text"},
      {"300x", 127, kHigh, "a range error replaces the position"},
      {"-300x", -128, kLow, "a range error replaces the position"},
      {"2147483648", 127, kHigh, "above 32 bits"},
      {"-2147483649", -128, kLow, "below 32 bits"},
      {"99999999999999999999", 127, kHigh, "above 64 bits"},
  };
  for (const auto& theCase : kCases) {
    Expect(qvConvert_strtoint8, theCase);
  }
}

TEST(qvConvert, Int16IsClampedToItsRange) {
  const ParseCase<int16> kCases[] = {
      {"32767", 32767, kNone, "the maximum"},        {"32768", 32767, kHigh, "one above it"},
      {"-32768", -32768, kNone, "the minimum"},      {"-32767", -32767, kNone, "its neighbour is itself"},
      {"-32769", -32768, kLow, "one below it"},      {"32767z", 32767, 5, "trailing text"},
      {"2147483648", 32767, kHigh, "above 32 bits"}, {"-2147483649", -32768, kLow, "below 32 bits"},
  };
  for (const auto& theCase : kCases) {
    Expect(qvConvert_strtoint16, theCase);
  }
}

TEST(qvConvert, Int32IsClampedToItsRange) {
  const ParseCase<int32> kCases[] = {
      {"2147483646", 2147483646, kNone, "one below the maximum"},
      {"2147483647", 2147483647, kNone, "the maximum"},
      {"2147483648", 2147483647, kHigh, "one above it clamps"},
      {"4294967297", 2147483647, kHigh, "does not wrap at 32 bits"},
      {"-2147483646", -2147483646, kNone, "two above the minimum"},
      {"-2147483648", INT32_MIN, kNone, "the minimum"},
      {"-2147483649", INT32_MIN, kLow, "one below it clamps"},
      {"-18446744073709551615", INT32_MIN, kLow, "the largest magnitude of 64 bits"},
      {"18446744073709551615", 2147483647, kHigh, "the largest magnitude of 64 bits"},
      {"99999999999999999999", 2147483647, kHigh, "above 64 bits"},
      {"2147483648x", 2147483647, kHigh, "a range error hides the rest"},
      {"2147483647x", 2147483647, 10, "the clamp at the maximum is no error, so the rest shows"},
      {"-0", 0, kNone, "there is no negative zero"},
      {"-42", -42, kNone, "negative"},
      {"  -42;", -42, 5, "the minus counts in the position"},
      {"-a", 0, kInvalid, "a minus before a letter, which is no decimal digit"},
  };
  for (const auto& theCase : kCases) {
    Expect(qvConvert_strtoint32, theCase);
  }
}

TEST(qvConvert, Int64IsClampedToItsRange) {
  const ParseCase<qvint64_t> kCases[] = {
      {"9223372036854775806", 9223372036854775806, kNone, "one below the maximum"},
      {"9223372036854775807", INT64_MAX, kNone, "the maximum"},
      {"9223372036854775808", INT64_MAX, kHigh, "one above it"},
      {"18446744073709551615", INT64_MAX, kHigh, "2^64 - 1"},
      {"18446744073709551616", INT64_MAX, kHigh, "2^64"},
      {"-9223372036854775806", -9223372036854775806, kNone, "two above the minimum"},
      {"-9223372036854775808", INT64_MIN, kNone, "the minimum"},
      {"-9223372036854775809", INT64_MIN, kLow, "one below it"},
      {"-18446744073709551615", INT64_MIN, kLow, "-(2^64 - 1)"},
      {"-4294967296", -4294967296, kNone, "beyond 32 bits"},
      {"-9223372036854775809-", INT64_MIN, kLow, "a range error hides the rest"},
  };
  for (const auto& theCase : kCases) {
    Expect(qvConvert_strtoint64, theCase);
  }
}

TEST(qvConvert, UInt8IsClampedToItsRange) {
  const ParseCase<uint8> kCases[] = {
      {"255", 255, kNone, "the maximum"},
      {"256", 255, kHigh, "one above it"},
      {"300", 255, kHigh, "does not wrap"},
      {"300x", 255, kHigh, "a range error replaces the position"},
      {"255x", 255, 3, "trailing text"},
      {"-1", 0, kInvalid, "no sign"},
      {"4294967296", 255, kHigh, "above 32 bits"},
  };
  for (const auto& theCase : kCases) {
    Expect(qvConvert_strtouint8, theCase);
  }
}

TEST(qvConvert, UInt16IsClampedToItsRange) {
  const ParseCase<uint16> kCases[] = {
      {"65535", 65535, kNone, "the maximum"},
      {"65536", 65535, kHigh, "one above it"},
      {"65535 ", 65535, 5, "trailing text"},
      {"-0", 0, kInvalid, "no sign, not even for zero"},
      {"99999999999999999999", 65535, kHigh, "above 64 bits"},
  };
  for (const auto& theCase : kCases) {
    Expect(qvConvert_strtouint16, theCase);
  }
}

TEST(qvConvert, UInt32IsClampedToItsRange) {
  const ParseCase<uint32> kCases[] = {
      {"4294967295", 0xFFFFFFFF, kNone, "the maximum"},
      {"4294967296", 0xFFFFFFFF, kHigh, "one above it"},
      {"4294967296x", 0xFFFFFFFF, kHigh, "a range error hides the rest"},
      {"42949672950", 0xFFFFFFFF, kHigh, "one digit more"},
      {"18446744073709551617", 0xFFFFFFFF, kHigh, "does not wrap at 64 bits"},
      {"-1", 0, kInvalid, "no sign"},
  };
  for (const auto& theCase : kCases) {
    Expect(qvConvert_strtouint32, theCase);
  }
}

TEST(qvConvert, UInt64IsClampedToItsRange) {
  const ParseCase<qvuint64_t> kCases[] = {
      {"18446744073709551615", UINT64_MAX, kNone, "the maximum"},
      {"18446744073709551616", UINT64_MAX, kHigh, "one above it, by the digit that is added"},
      {"18446744073709551620", UINT64_MAX, kHigh, "above it, by the multiplication"},
      {"184467440737095516160", UINT64_MAX, kHigh, "one digit more"},
      {"99999999999999999999999999999999999", UINT64_MAX, kHigh, "far above"},
      {"18446744073709551615!", UINT64_MAX, 20, "trailing text"},
      {"1844674407370955161A", 1844674407370955161, 19, "a letter that is the next base's digit"},
      {"-1", 0, kInvalid, "no sign"},
  };
  for (const auto& theCase : kCases) {
    Expect(qvConvert_strtouint64, theCase);
  }
}

TEST(qvConvert, BaseZeroTakesTheBaseFromThePrefix) {
  const BaseCase<int32> kCases[] = {
      {"017", 0, 15, kNone, "a zero means octal"},
      {"0x1F", 0, 31, kNone, "0x means hexadecimal"},
      {"0X1f", 0, 31, kNone, "in both cases"},
      {"31", 0, 31, kNone, "otherwise decimal"},
      {"0", 0, 0, kNone, "zero is octal zero"},
      {"0x", 0, 0, 1, "0x without a digit reads as 0 and stops at the x"},
      {"0xg", 0, 0, 1, "the character behind 0x must be a hexadecimal digit"},
      {"08", 0, 0, 1, "8 is no octal digit"},
      {"0179", 0, 15, 3, "nor is 9"},
      {"-0x10", 0, -16, kNone, "a sign before the prefix"},
      {"+010", 0, 8, kNone, "a sign before the prefix"},
      {"  0x7fffffff", 0, 2147483647, kNone, "blanks before the prefix"},
      {"0x1fz", 0, 31, 4, "trailing text"},
      {"abc", 0, 0, kInvalid, "a letter alone is decimal, and no digit"},
      {"", 0, 0, kInvalid, "empty"},
      {nullptr, 0, 0, kInvalid, "null"},
  };
  for (const auto& theCase : kCases) {
    Expect(qvConvert_strtoint32_base, theCase);
  }
}

TEST(qvConvert, Base16SkipsThePrefix) {
  const BaseCase<uint32> kCases[] = {
      {"0X1f", 16, 31, kNone, "with 0X"},
      {"0x1F", 16, 31, kNone, "with 0x"},
      {"1f", 16, 31, kNone, "without"},
      {"+0x1f", 16, 31, kNone, "behind a sign"},
      {"010", 16, 16, kNone, "a zero without an x is a digit, and the base stays"},
      {"0xf", 16, 15, kNone, "any hexadecimal digit may follow the prefix"},
      {"0", 16, 0, kNone, "zero"},
      {"0x", 16, 0, 1, "0x alone is 0 and an x"},
      {"0xy", 16, 0, 1, "so is 0x before anything else"},
      {"0x0x1", 16, 0, 3, "one prefix only"},
      {"ffffffff", 16, 0xFFFFFFFF, kNone, "the maximum"},
      {"100000000", 16, 0xFFFFFFFF, kHigh, "one above it"},
      {"g", 16, 0, kInvalid, "no digit"},
      {"x1", 16, 0, kInvalid, "x alone is no prefix"},
  };
  for (const auto& theCase : kCases) {
    Expect(qvConvert_strtouint32_base, theCase);
  }
}

TEST(qvConvert, EveryBaseFrom2To36HasItsDigits) {
  const BaseCase<qvuint64_t> kCases[] = {
      {"101", 2, 5, kNone, "the smallest base"},
      {"102", 2, 2, 2, "2 is no binary digit"},
      {"777", 8, 511, kNone, "octal"},
      {"778", 8, 63, 2, "8 is no octal digit"},
      {"0x1", 8, 0, 1, "no prefix outside the bases 0 and 16"},
      {"0x1", 36, 1189, kNone, "x is a digit of base 36"},
      {"zz", 36, 1295, kNone, "the largest digits, lower case"},
      {"ZZ", 36, 1295, kNone, "and upper case"},
      {"z", 35, 0, kInvalid, "z is no digit of base 35"},
      {"y", 35, 34, kNone, "y is"},
      {"Z[", 36, 35, 1, "the code behind Z is no digit"},
      {"z{", 36, 35, 1, "the code behind z is no digit"},
      {"Z`", 36, 35, 1, "the code before a is no digit"},
      {"Z@", 36, 35, 1, "the code before A is no digit"},
      {"Z:", 36, 35, 1, "nor is the one behind 9"},
      {"Z/", 36, 35, 1, "nor the one before 0"},
      {"z\xE9", 36, 35, 1, "bytes above 0x7F are none"},
      {"z\x80", 36, 35, 1, "the first byte above 0x7F"},
      {"1111111111111111111111111111111111111111111111111111111111111111", 2, UINT64_MAX, kNone, "64 ones"},
      {"11111111111111111111111111111111111111111111111111111111111111111", 2, UINT64_MAX, kHigh, "65 ones"},
      {"3w5e11264sgsf", 36, UINT64_MAX, kNone, "2^64 - 1"},
      {"3w5e11264sgsg", 36, UINT64_MAX, kHigh, "2^64"},
  };
  for (const auto& theCase : kCases) {
    Expect(qvConvert_strtouint64_base, theCase);
  }
}

TEST(qvConvert, OtherBasesAreInvalid) {
  const int kBases[] = {1, 37, -1, -10, -16, INT32_MAX, INT32_MIN};
  for (int theBase : kBases) {
    Expect(qvConvert_strtoint32_base, BaseCase<int32>{"1", theBase, 0, kInvalid, "base"});
    Expect(qvConvert_strtouint32_base, BaseCase<uint32>{"1", theBase, 0, kInvalid, "base"});
    Expect(qvConvert_strtoint64_base, BaseCase<qvint64_t>{"1", theBase, 0, kInvalid, "base"});
    Expect(qvConvert_strtouint64_base, BaseCase<qvuint64_t>{"1", theBase, 0, kInvalid, "base"});
    Expect(qvConvert_strtouint64_base, BaseCase<qvuint64_t>{"0x1", theBase, 0, kInvalid, "base"});
  }
}

TEST(qvConvert, SignedNumbersOfAnyBaseHaveTheSameBounds) {
  const BaseCase<qvint64_t> kCases[] = {
      {"-0x8000000000000000", 16, INT64_MIN, kNone, "the minimum"},
      {"0x7fffffffffffffff", 0, INT64_MAX, kNone, "the maximum"},
      {"0x8000000000000000", 0, INT64_MAX, kHigh, "one above it"},
      {"-zz", 36, -1295, kNone, "a minus before a letter"},
      {"-zz.", 36, -1295, 3, "trailing text"},
      {nullptr, 16, 0, kInvalid, "null"},
  };
  for (const auto& theCase : kCases) {
    Expect(qvConvert_strtoint64_base, theCase);
  }
  Expect(qvConvert_strtoint32_base, BaseCase<int32>{"-80000000", 16, INT32_MIN, kNone, "the minimum"});
  Expect(qvConvert_strtoint32_base, BaseCase<int32>{"-80000001", 16, INT32_MIN, kLow, "one below it"});
}

TEST(qvConvert, ANullTextIsInvalidInEveryBase) {
  Expect(qvConvert_strtoint32_base, BaseCase<int32>{nullptr, 10, 0, kInvalid, "null"});
  Expect(qvConvert_strtouint32_base, BaseCase<uint32>{nullptr, 0, 0, kInvalid, "null"});
  Expect(qvConvert_strtouint64_base, BaseCase<qvuint64_t>{nullptr, 16, 0, kInvalid, "null"});
}

// The text of aValue in a base.
static std::string InBase(uint64_t aValue, int aBase) {
  std::string theText;
  do {
    theText.insert(theText.begin(), "0123456789abcdefghijklmnopqrstuvwxyz"[aValue % (uint64_t)aBase]);
    aValue /= (uint64_t)aBase;
  } while (aValue != 0);
  return theText;
}

TEST(qvConvert, NumbersOfEveryBaseAreReadWhereAWordOfTheMachineIsFull) {
  const uint64_t kLimits[] = {1ull << 26, 1ull << 28, 1ull << 32, 1ull << 58, 1ull << 60, 0};
  for (int theBase = 2; theBase <= 36; ++theBase) {
    for (uint64_t theLimit : kLimits) {
      for (uint64_t theDistance = 1; theDistance <= 80; ++theDistance) {
        const uint64_t theNumber = theLimit + 40 - theDistance;  // 0 has its neighbours at both ends
        const std::string theText = InBase(theNumber, theBase);
        qvuint64_t theValue = 0;
        EXPECT_EQ(kNone, qvConvert_strtouint64_base(theText.c_str(), &theValue, theBase)) << theText;
        EXPECT_EQ(theNumber, theValue) << theText;

        const uint64_t theRoom = (UINT64_MAX - 1) / (uint64_t)theBase;
        const int theExpected = theNumber > theRoom ? kHigh : kNone;
        EXPECT_EQ(theExpected, qvConvert_strtouint64_base((theText + "1").c_str(), &theValue, theBase))
            << theText;
        EXPECT_EQ(theExpected == kHigh ? UINT64_MAX : theNumber * (uint64_t)theBase + 1, theValue) << theText;
      }
    }
  }
}

TEST(qvConvert, AVeryLongNumberIsReadToItsEnd) {
  const std::string theNines(100000, '9');
  qvuint64_t theValue = 1;
  EXPECT_EQ(kHigh, qvConvert_strtouint64(theNines.c_str(), &theValue));
  EXPECT_EQ(UINT64_MAX, theValue);

  const std::string theZeros(100000, '0');
  EXPECT_EQ(100001, qvConvert_strtouint64((theZeros + "7x").c_str(), &theValue));
  EXPECT_EQ(7u, theValue);
}

TEST(qvConvert, HexTextIsReadWithOrWithoutPrefix) {
  const ParseCase<uint32> kCases[] = {
      {"1f", 31, kNone, "lower case"},
      {"DEADbeef", 0xDEADBEEF, kNone, "mixed case"},
      {"0x10", 16, kNone, "with prefix"},
      {" +0X10", 16, kNone, "blanks, sign and prefix"},
      {"1fz", 31, 2, "trailing text"},
      {"0x", 0, 1, "a prefix needs a digit"},
      {"ffffffff", 0xFFFFFFFF, kNone, "the maximum"},
      {"1ffffffff", 0xFFFFFFFF, kHigh, "above it"},
      {"-1", 0, kInvalid, "no sign"},
      {"", 0, kInvalid, "empty"},
      {nullptr, 0, kInvalid, "null"},
  };
  for (const auto& theCase : kCases) {
    Expect(qvConvert_hexstrtouint32, theCase);
  }
}

TEST(qvConvertKept, MinusMaxInt32ReadsAsMinInt32) {
  Expect(qvConvert_strtoint32, ParseCase<int32>{"-2147483646", -2147483646, kNone, "its neighbour above"});
  Expect(qvConvert_strtoint32, ParseCase<int32>{"-2147483647", INT32_MIN, kNone, "the kept one"});
  Expect(qvConvert_strtoint32, ParseCase<int32>{"-2147483648", INT32_MIN, kNone, "its neighbour below"});
  Expect(qvConvert_strtoint32, ParseCase<int32>{"2147483647", INT32_MAX, kNone, "the positive end is right"});
  Expect(qvConvert_strtoint32, ParseCase<int32>{"-2147483647x", INT32_MIN, 11, "with other text behind it"});
  Expect(qvConvert_strtoint32_base, BaseCase<int32>{"-0x7fffffff", 16, INT32_MIN, kNone, "in any base"});
}

TEST(qvConvertKept, MinusMaxInt64ReadsAsMinInt64) {
  Expect(qvConvert_strtoint64,
         ParseCase<qvint64_t>{"-9223372036854775806", -9223372036854775806, kNone, "its neighbour above"});
  Expect(qvConvert_strtoint64,
         ParseCase<qvint64_t>{"-9223372036854775807", INT64_MIN, kNone, "the kept one"});
  Expect(qvConvert_strtoint64,
         ParseCase<qvint64_t>{"-9223372036854775808", INT64_MIN, kNone, "its neighbour below"});
  Expect(qvConvert_strtoint64,
         ParseCase<qvint64_t>{"9223372036854775807", INT64_MAX, kNone, "the positive end is right"});
  Expect(qvConvert_strtoint64,
         ParseCase<qvint64_t>{"-2147483647", -2147483647, kNone, "the 32-bit end is no end here"});
}

TEST(qvConvertKept, ANegativeNumberBeyond64BitsIsRangeHigh) {
  Expect(qvConvert_strtoint32, ParseCase<int32>{"-18446744073709551615", INT32_MIN, kLow, "within 64 bits"});
  Expect(qvConvert_strtoint32, ParseCase<int32>{"-18446744073709551616", INT32_MIN, kHigh, "2^64"});
  Expect(qvConvert_strtoint32, ParseCase<int32>{"-99999999999999999999", INT32_MIN, kHigh, "beyond"});
  Expect(qvConvert_strtoint64, ParseCase<qvint64_t>{"-18446744073709551616", INT64_MIN, kHigh, "2^64"});
  // The narrow forms go by the code, and the bound of RangeHigh is the maximum.
  Expect(qvConvert_strtoint8, ParseCase<int8>{"-18446744073709551615", -128, kLow, "within 64 bits"});
  Expect(qvConvert_strtoint8, ParseCase<int8>{"-99999999999999999999", 127, kHigh, "beyond"});
  Expect(qvConvert_strtoint16, ParseCase<int16>{"-99999999999999999999", 32767, kHigh, "beyond"});
}
