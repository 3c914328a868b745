// Decimal numbers as two words.

#include <gtest/gtest.h>

#include <string>

#include "qvraTools/qvConvert.h"

namespace {

constexpr int kNone = kqvConvertError_None;
constexpr int kHigh = kqvConvertError_RangeHigh;
constexpr int kLow = kqvConvertError_RangeLow;
constexpr int kInvalid = kqvConvertError_Invalid;

struct SignedCase {
  const char* mText;
  int64 mValue;
  int mResult;
  const char* mWhy;
};

struct UnsignedCase {
  const char* mText;
  uint64 mValue;
  int mResult;
  const char* mWhy;
};

void Expect(const SignedCase& aCase) {
  SCOPED_TRACE(std::string(aCase.mText == nullptr ? "(null)" : aCase.mText) + ": " + aCase.mWhy);
  qvLongLong theValue = qvLongLong_Init(-7, 7);
  EXPECT_EQ(aCase.mResult, qvConvert_strtoLongLong(aCase.mText, &theValue));
  EXPECT_EQ(static_cast<uint32>(aCase.mValue), theValue.mLow);
  EXPECT_EQ(static_cast<uint32>(static_cast<uint64>(aCase.mValue) >> 32),
            static_cast<uint32>(theValue.mHigh));
}

void Expect(const UnsignedCase& aCase) {
  SCOPED_TRACE(std::string(aCase.mText == nullptr ? "(null)" : aCase.mText) + ": " + aCase.mWhy);
  qvULongLong theValue = qvULongLong_Init(7, 7);
  EXPECT_EQ(aCase.mResult, qvConvert_strtoULongLong(aCase.mText, &theValue));
  EXPECT_EQ(static_cast<uint32>(aCase.mValue), theValue.mLow);
  EXPECT_EQ(static_cast<uint32>(aCase.mValue >> 32), theValue.mHigh);
}

}  // namespace

TEST(qvConvertLongLong, UnsignedNumbersAreReadUpTo64Bits) {
  const UnsignedCase kCases[] = {
      {nullptr, 0, kInvalid, "null"},
      {"", 0, kInvalid, "empty"},
      {"   ", 0, kInvalid, "white space only"},
      {"abc", 0, kInvalid, "no digit"},
      {"+", 0, kInvalid, "a sign only"},
      {"++1", 0, kInvalid, "one plus is skipped"},
      {"-1", 0, kInvalid, "no minus"},
      {"+ 1", 0, kInvalid, "no blank behind the sign"},
      {"0", 0, kNone, "zero"},
      {" \t+42", 42, kNone, "blanks and one plus are skipped"},
      {"000000000000000000000000000042", 42, kNone, "leading zeros"},
      {"42abc", 42, 2, "position of the other text"},
      {" +42 ", 42, 4, "counted from the start"},
      {"0x1F", 0, 1, "decimal only"},
      {"9\xB2", 9, 1, "a byte above 0x7F is no digit"},
      {"255", 255, kNone, "the low byte is full"},
      {"256", 256, kNone, "and carries"},
      {"4294967295", 4294967295, kNone, "the low word is full"},
      {"4294967296", 4294967296, kNone, "and carries"},
      {"1844674407370955161", 1844674407370955161, kNone, "one digit less than the maximum"},
      {"18446744073709551614", UINT64_MAX - 1, kNone, "one below the maximum"},
      {"18446744073709551615", UINT64_MAX, kNone, "the maximum"},
      {"18446744073709551616", UINT64_MAX, kHigh, "one above it"},
      {"18446744073709551620", UINT64_MAX, kHigh, "above it"},
      {"20000000000000000000", UINT64_MAX, kHigh, "above it"},
      {"184467440737095516150", UINT64_MAX, kHigh, "ten times the maximum"},
      {"18446744073709551616xyz", UINT64_MAX, kHigh, "a range error hides the rest"},
      {"18446744073709551615xyz", UINT64_MAX, 20, "the maximum, then other text"},
  };
  for (const UnsignedCase& theCase : kCases) {
    Expect(theCase);
  }
}

TEST(qvConvertLongLong, SignedNumbersAreReadInTheirWholeRange) {
  const SignedCase kCases[] = {
      {nullptr, 0, kInvalid, "null"},
      {"", 0, kInvalid, "empty"},
      {"-", 0, kInvalid, "a sign only"},
      {"- 5", 0, kInvalid, "the sign is skipped whatever follows, but a blank is no digit"},
      {"-+5", 0, kInvalid, "one sign"},
      {"+-5", 0, kInvalid, "one sign"},
      {"--5", 0, kInvalid, "one sign"},
      {"-.5", 0, kInvalid, "a point is no digit"},
      {"0", 0, kNone, "zero"},
      {"-0", 0, kNone, "minus zero"},
      {"+42", 42, kNone, "plus"},
      {" \r\n-42", -42, kNone, "blanks, minus"},
      {"-42abc", -42, 3, "position of the other text"},
      {"-1", -1, kNone, "all bits set"},
      {"-4294967296", -4294967296, kNone, "low word zero"},
      {"9223372036854775807", INT64_MAX, kNone, "the maximum"},
      {"9223372036854775808", INT64_MAX, kHigh, "one above it"},
      {"9223372036854775810", INT64_MAX, kHigh, "above it"},
      {"99999999999999999999", INT64_MAX, kHigh, "above 64 bits"},
      {"-9223372036854775807", -9223372036854775807, kNone, "one above the minimum is itself here"},
      {"-9223372036854775808", INT64_MIN, kNone, "the minimum"},
      {"-9223372036854775808z", INT64_MIN, 20, "the minimum, then other text"},
      {"-9223372036854775809", INT64_MIN, kLow, "one below it"},
      {"-99999999999999999999", INT64_MIN, kLow, "below 64 bits: RangeLow here"},
      {"-9223372036854775809z", INT64_MIN, kLow, "a range error hides the rest"},
  };
  for (const SignedCase& theCase : kCases) {
    Expect(theCase);
  }
}

TEST(qvConvertLongLong, AVeryLongNumberStopsAtTheDigitThatLeavesTheRange) {
  const std::string theNines(1000000, '9');
  qvULongLong theValue;
  EXPECT_EQ(kHigh, qvConvert_strtoULongLong(theNines.c_str(), &theValue));
  EXPECT_TRUE(qvULongLong_Equal(&theValue, qvULongLong_Max));
}
