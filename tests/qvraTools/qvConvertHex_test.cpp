#include <gtest/gtest.h>
#include <malloc.h>
#include <string.h>

#include <string>
#include <vector>

#include "qvraTools/qvConvert.h"
#include "qvraTools/qvMalloc.h"
#include "support/ChildProcess.h"

namespace {

struct ToTextCase {
  std::vector<uint8> mBytes;
  size_t mWordSize;
  int mOrder;
  const char* mText;
  const char* mWhy;
};

const ToTextCase kToTextCases[] = {
    {{1, 2, 3, 4}, 4, kqvConvertBuffer_BigEndian, "01020304", "a big-endian word prints as it lies"},
    {{1, 2, 3, 4}, 4, kqvConvertBuffer_LittleEndian, "04030201", "a little-endian word prints swapped"},
    {{1, 2, 3, 4}, 4, kqvConvertBuffer_NativeEndian, "04030201", "native is little-endian"},
    {{1, 2, 3, 4}, 4, kqvConvertBuffer_NetworkOrder, "01020304", "network order is big-endian"},
    {{1, 2, 3, 4, 5, 6, 7, 8}, 4, kqvConvertBuffer_LittleEndian, "0403020108070605", "word by word"},
    {{0x12, 0x34}, 2, kqvConvertBuffer_LittleEndian, "3412", "words of two bytes are swapped"},
    {{0x12, 0x34}, 2, kqvConvertBuffer_BigEndian, "1234", "words of two bytes as they lie"},
    {{0x12, 0x34}, 1, kqvConvertBuffer_LittleEndian, "1234", "no order with single bytes"},
    {{0xAB, 0xCD, 0xEF}, 1, kqvConvertBuffer_BigEndian, "abcdef", "digits are lower-case"},
    {{0x80, 0xFF, 0x00}, 1, kqvConvertBuffer_BigEndian, "80ff00", "bytes above 0x7F and zero"},
    {{0x00, 0x0A, 0xF0, 0xBC}, 4, kqvConvertBuffer_BigEndian, "000af0bc", "zeros in front, letters"},
    {{0x00, 0x0A, 0xF0, 0xBC}, 2, kqvConvertBuffer_LittleEndian, "0a00bcf0", "in words of two bytes too"},
    {{}, 4, kqvConvertBuffer_BigEndian, "", "an empty buffer gives an empty text"},
};

TEST(qvConvertHex, BufferBecomesText) {
  for (const ToTextCase& theCase : kToTextCases) {
    SCOPED_TRACE(theCase.mWhy);
    char* theText = nullptr;
    ASSERT_EQ(0, qvConvert_buffertohexstr(theCase.mBytes.data(), theCase.mBytes.size(), theCase.mWordSize,
                                          theCase.mOrder, &theText));
    EXPECT_STREQ(theCase.mText, theText);
    qvFree(theText);
  }
}

TEST(qvConvertHex, LengthThatIsNoMultipleOfTheWordIsInvalid) {
  const uint8 kBytes[] = {1, 2, 3};
  char theMark = 'x';
  char* theText = &theMark;
  EXPECT_EQ(kqvConvertError_Invalid, qvConvert_buffertohexstr(kBytes, 3, 2, 0, &theText));
  EXPECT_EQ(nullptr, theText);
}

struct ToBufferCase {
  const char* mText;
  size_t mWordSize;
  int mOrder;
  std::vector<uint8> mBytes;
  const char* mWhy;
};

const ToBufferCase kToBufferCases[] = {
    {"0xABcd", 1, kqvConvertBuffer_BigEndian, {0xAB, 0xCD}, "prefix skipped, either case"},
    {"0Xff", 1, kqvConvertBuffer_BigEndian, {0xFF}, "prefix with a capital"},
    {"0123456789abcdefABCDEF",
     1,
     kqvConvertBuffer_BigEndian,
     {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF, 0xAB, 0xCD, 0xEF},
     "every digit"},
    {"01020304", 4, kqvConvertBuffer_BigEndian, {1, 2, 3, 4}, "big-endian: in the order of the text"},
    {"01020304", 4, kqvConvertBuffer_LittleEndian, {4, 3, 2, 1}, "little-endian: the word is turned"},
    {"01020304", 4, kqvConvertBuffer_NativeEndian, {4, 3, 2, 1}, "native is little-endian"},
    {"01020304", 2, kqvConvertBuffer_LittleEndian, {2, 1, 4, 3}, "words of two bytes"},
    {"0102", 2, kqvConvertBuffer_BigEndian, {1, 2}, "one word of two bytes"},
    {"0102", 1, kqvConvertBuffer_LittleEndian, {1, 2}, "no order with single bytes"},
    {"ff80", 4, kqvConvertBuffer_BigEndian, {0, 0}, "an incomplete word leaves zeros"},
    {"0102030405ff", 4, kqvConvertBuffer_BigEndian, {1, 2, 3, 4, 0, 0}, "behind complete ones too"},
    {"0102ff", 2, kqvConvertBuffer_LittleEndian, {2, 1, 0}, "and in words of two bytes"},
    {"0102030405060708ff80",
     2,
     kqvConvertBuffer_BigEndian,
     {1, 2, 3, 4, 5, 6, 7, 8, 0xFF, 0x80},
     "many words"},
    {"", 1, kqvConvertBuffer_BigEndian, {}, "nothing gives nothing"},
    {"0x", 1, kqvConvertBuffer_BigEndian, {}, "the prefix alone gives nothing"},
};

TEST(qvConvertHex, TextBecomesBuffer) {
  mallopt(M_PERTURB, 0xAA);  // new blocks are full of 0x55, so that a zero has been written
  for (const ToBufferCase& theCase : kToBufferCases) {
    SCOPED_TRACE(theCase.mWhy);
    uint8* theBuffer = nullptr;
    size_t theLength = 99;
    ASSERT_EQ(0, qvConvert_hexstrntobuffer(theCase.mText, strlen(theCase.mText), theCase.mWordSize,
                                           theCase.mOrder, &theBuffer, &theLength));
    ASSERT_EQ(theCase.mBytes.size(), theLength);
    ASSERT_NE(nullptr, theBuffer);
    EXPECT_EQ(theCase.mBytes, std::vector<uint8>(theBuffer, theBuffer + theLength));
    qvFree(theBuffer);
  }
}

TEST(qvConvertHex, BadTextGivesNoBuffer) {
  const struct {
    const char* mText;
    size_t mLength;
    size_t mWordSize;
    const char* mWhy;
  } kCases[] = {
      {"abc", 3, 1, "odd number of digits"},
      {"0", 1, 1, "one character is no prefix"},
      {"0x12", 1, 1, "nor with the rest of one behind the length"},
      {"0/", 2, 1, "no digit: the character before '0'"},
      {"0:", 2, 1, "the one behind '9'"},
      {"0@", 2, 1, "the one before 'A'"},
      {"0G", 2, 1, "the one behind 'F'"},
      {"0`", 2, 1, "the one before 'a'"},
      {"0xabc", 5, 1, "odd number of digits behind the prefix"},
      {"abcdef", 6, 4, "no multiple of the word size"},
      {"0g", 2, 1, "no digit"},
      {"a\xE9", 2, 1, "a byte above 0x7F"},
      {"a\0", 2, 1, "a zero byte is no digit"},
      {"0x0x01", 6, 1, "only one prefix"},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    uint8 theMark = 0;
    uint8* theBuffer = &theMark;
    size_t theLength = 99;
    EXPECT_EQ(kqvConvertError_Invalid,
              qvConvert_hexstrntobuffer(theCase.mText, theCase.mLength, theCase.mWordSize, 0, &theBuffer,
                                        &theLength));
    EXPECT_EQ(nullptr, theBuffer);
    EXPECT_EQ(0u, theLength);
  }
}

TEST(qvConvertHex, TextBehindTheLengthIsNotRead) {
  uint8* theBuffer = nullptr;
  size_t theLength = 0;
  ASSERT_EQ(0, qvConvert_hexstrntobuffer("12zz", 2, 1, 0, &theBuffer, &theLength));
  ASSERT_EQ(1u, theLength);
  EXPECT_EQ(0x12, theBuffer[0]);
  qvFree(theBuffer);
}

TEST(qvConvertHex, NullTextIsNoErrorAndGivesNoBuffer) {
  uint8 theMark = 0;
  uint8* theBuffer = &theMark;
  size_t theLength = 99;
  EXPECT_EQ(0, qvConvert_hexstrntobuffer(nullptr, 4, 1, 0, &theBuffer, &theLength));
  EXPECT_EQ(nullptr, theBuffer);
  EXPECT_EQ(0u, theLength);
}

TEST(qvConvertHex, WordSizeMustBeOneTwoOrFour) {
  const char* const kText = "(aWordSize == 1) || (aWordSize == 2) || (aWordSize == 4)";
  const uint8 kBytes[3] = {0, 0, 0};
  char* theText = nullptr;
  uint8* theBuffer = nullptr;
  size_t theLength = 0;
  EXPECT_QV_ASSERTION(qvConvert_buffertohexstr(kBytes, 3, 3, 0, &theText), kText, "qvConvert");
  EXPECT_QV_ASSERTION(qvConvert_buffertohexstr(kBytes, 0, 0, 0, &theText), kText, "qvConvert");
  EXPECT_QV_ASSERTION(qvConvert_hexstrntobuffer("00", 2, 8, 0, &theBuffer, &theLength), kText, "qvConvert");
  EXPECT_QV_ASSERTION(qvConvert_hexstrntobuffer(nullptr, 0, 3, 0, &theBuffer, &theLength), kText,
                      "qvConvert");
}

TEST(qvConvertHex, OrderMustBeOneOfTheThree) {
  const uint8 kBytes[1] = {0};
  char* theText = nullptr;
  uint8* theBuffer = nullptr;
  size_t theLength = 0;
  EXPECT_QV_ASSERTION(qvConvert_buffertohexstr(kBytes, 1, 1, 3, &theText),
                      "qvConvert_buffertohexstr: invalid endianess", "qvConvert");
  EXPECT_QV_ASSERTION(qvConvert_buffertohexstr(kBytes, 1, 1, -1, &theText),
                      "qvConvert_buffertohexstr: invalid endianess", "qvConvert");
  EXPECT_QV_ASSERTION(qvConvert_hexstrntobuffer("00", 2, 1, 3, &theBuffer, &theLength),
                      "qvConvert_hexstrntobuffer: invalid endianess", "qvConvert");
}

TEST(qvConvertHex, OrdersHaveTheirNumbers) {
  EXPECT_EQ(0, kqvConvertBuffer_BigEndian);
  EXPECT_EQ(1, kqvConvertBuffer_LittleEndian);
  EXPECT_EQ(2, kqvConvertBuffer_NativeEndian);
  EXPECT_EQ(0, kqvConvertBuffer_NetworkOrder);
}

TEST(qvConvertHex, SwapReversesTheBytes) {
  EXPECT_EQ(0x3412, qvConvert_SwapUInt16(0x1234));
  EXPECT_EQ(0x00FF, qvConvert_SwapUInt16(0xFF00));
  EXPECT_EQ(0x78563412u, qvConvert_SwapUInt32(0x12345678u));
  EXPECT_EQ(0x000000FFu, qvConvert_SwapUInt32(0xFF000000u));
}

}  // namespace
