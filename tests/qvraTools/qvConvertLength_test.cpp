// The parsers that take a text and its length.

#include <gtest/gtest.h>
#include <signal.h>
#include <stdint.h>

#include <functional>
#include <string>
#include <vector>

#include "qvraTools/qvConvert.h"
#include "support/ChildProcess.h"
#include "support/CountedMalloc.h"
#include "support/FatalLine.h"
#include "support/HeapUse.h"
#include "support/Sanitizers.h"

// The sanitizers' allocators end the process themselves unless they are told to return null.
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
extern "C" const char* __tsan_default_options() { return "allocator_may_return_null=1"; }

namespace {

constexpr int kInvalid = kqvConvertError_Invalid;

template <typename Int>
void Expect(int (*aParser)(const char*, size_t, Int*), const std::string& aText, Int aValue, int aResult) {
  SCOPED_TRACE(aText);
  // A block that ends where the text ends: a byte read behind it shows under the sanitizers.
  const std::vector<char> theBytes(aText.begin(), aText.end());
  Int theValue = 99;
  EXPECT_EQ(aResult, aParser(theBytes.data(), theBytes.size(), &theValue));
  EXPECT_EQ(aValue, theValue);
}

template <typename Int>
void ExpectNothing(int (*aParser)(const char*, size_t, Int*)) {
  Int theValue = 99;
  EXPECT_EQ(kInvalid, aParser("123", 0, &theValue));
  EXPECT_EQ(0u, theValue);
  theValue = 99;
  EXPECT_EQ(kInvalid, aParser(nullptr, 3, &theValue));
  EXPECT_EQ(0u, theValue);
  theValue = 99;
  EXPECT_EQ(kInvalid, aParser(nullptr, 0, &theValue));
  EXPECT_EQ(0u, theValue);
}

}  // namespace

TEST(qvConvertLength, OnlyTheGivenLengthIsRead) {
  uint32 theValue = 0;
  EXPECT_EQ(kqvConvertError_None, qvConvert_strntouint32("123456", 3, &theValue));
  EXPECT_EQ(123u, theValue);
  int8 theInt8 = 0;
  EXPECT_EQ(kqvConvertError_None, qvConvert_strntoint8("-1234", 3, &theInt8));
  EXPECT_EQ(-12, theInt8);
}

TEST(qvConvertLength, OneByteIsEnough) {
  Expect<int8>(qvConvert_strntoint8, "7", 7, kqvConvertError_None);
  Expect<uint32>(qvConvert_hexstrntouint32, "f", 15, kqvConvertError_None);
  Expect<uint32>(qvConvert_strntouint32, "x", 0, kInvalid);
}

TEST(qvConvertLength, NoTextIsInvalidAndGivesZero) {
  ExpectNothing(qvConvert_strntoint8);
  ExpectNothing(qvConvert_strntoint16);
  ExpectNothing(qvConvert_strntoint32);
  ExpectNothing(qvConvert_strntouint8);
  ExpectNothing(qvConvert_strntouint16);
  ExpectNothing(qvConvert_strntouint32);
  ExpectNothing(qvConvert_strntouint64);
  ExpectNothing(qvConvert_hexstrntouint32);
}

TEST(qvConvertLength, NoTextIsNotCopied) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizers have their own malloc";
  }
  uint32 theValue = 99;
  size_t theBefore = sAllocations;
  qvConvert_strntouint32("123", 0, &theValue);
  qvConvert_strntouint32(nullptr, 3, &theValue);
  qvConvert_hexstrntouint32("123", 0, &theValue);
  qvConvert_hexstrntouint32(nullptr, 3, &theValue);
  EXPECT_EQ(theBefore, sAllocations);
  qvConvert_strntouint32("123", 1, &theValue);
  EXPECT_EQ(theBefore + 1, sAllocations) << "one copy, and the count sees it";
}

TEST(qvConvertLength, EachFormHasTheRangeOfItsType) {
  Expect<int8>(qvConvert_strntoint8, "128", 127, kqvConvertError_RangeHigh);
  Expect<int8>(qvConvert_strntoint8, "-129", -128, kqvConvertError_RangeLow);
  Expect<int16>(qvConvert_strntoint16, "-32768", -32768, kqvConvertError_None);
  Expect<int16>(qvConvert_strntoint16, "32768", 32767, kqvConvertError_RangeHigh);
  Expect<int32>(qvConvert_strntoint32, "-2147483648", INT32_MIN, kqvConvertError_None);
  Expect<int32>(qvConvert_strntoint32, "2147483648", INT32_MAX, kqvConvertError_RangeHigh);
  Expect<uint8>(qvConvert_strntouint8, "256", 255, kqvConvertError_RangeHigh);
  Expect<uint16>(qvConvert_strntouint16, "65536", 65535, kqvConvertError_RangeHigh);
  Expect<uint32>(qvConvert_strntouint32, "4294967295", 0xFFFFFFFF, kqvConvertError_None);
  Expect<uint32>(qvConvert_strntouint32, "4294967296", 0xFFFFFFFF, kqvConvertError_RangeHigh);
  Expect<qvuint64_t>(qvConvert_strntouint64, "18446744073709551615", UINT64_MAX, kqvConvertError_None);
  Expect<qvuint64_t>(qvConvert_strntouint64, "18446744073709551616", UINT64_MAX, kqvConvertError_RangeHigh);
  Expect<uint32>(qvConvert_hexstrntouint32, "ffffffff", 0xFFFFFFFF, kqvConvertError_None);
  Expect<uint32>(qvConvert_hexstrntouint32, "100000000", 0xFFFFFFFF, kqvConvertError_RangeHigh);
}

TEST(qvConvertLength, TextBehindTheNumberIsReportedByItsPosition) {
  Expect<int32>(qvConvert_strntoint32, " -12;", -12, 4);
  Expect<uint16>(qvConvert_strntouint16, "12 ", 12, 2);
  Expect<uint32>(qvConvert_hexstrntouint32, "0x1fz", 31, 4);
}

TEST(qvConvertLength, AZeroInsideTheTextEndsTheNumber) {
  Expect<uint32>(qvConvert_strntouint32,
                 std::string("12\0"
                             "34",
                             5),
                 12, kqvConvertError_None);
  Expect<uint32>(qvConvert_hexstrntouint32,
                 std::string("12\0"
                             "34",
                             5),
                 0x12, kqvConvertError_None);
  Expect<int32>(qvConvert_strntoint32,
                std::string("\0"
                            "5",
                            2),
                0, kInvalid);
  Expect<uint32>(qvConvert_hexstrntouint32,
                 std::string("\0"
                             "5",
                             2),
                 0, kInvalid);
}

TEST(qvConvertLength, ALengthCanCutThePrefixOff) {
  uint32 theValue = 99;
  EXPECT_EQ(1, qvConvert_hexstrntouint32("0x1f", 2, &theValue));
  EXPECT_EQ(0u, theValue);
  EXPECT_EQ(kqvConvertError_None, qvConvert_hexstrntouint32("0x1f", 3, &theValue));
  EXPECT_EQ(1u, theValue);
}

TEST(qvConvertLength, TheHexadecimalFormStopsAtTheEndOfAText) {
  uint32 theValue = 99;
  EXPECT_EQ(kqvConvertError_None, qvConvert_hexstrntouint32("1f", SIZE_MAX, &theValue));
  EXPECT_EQ(31u, theValue);
}

void ExpectOutOfMemory(const std::function<void()>& aCall) {
  const ChildResult theResult = RunInChild(aCall);
  const char* theExpected = sizeof(size_t) == 8 ? "qvFatalError: memory:malloc, size=18446744073709551615"
                                                : "qvFatalError: memory:malloc, size=4294967295";
  EXPECT_EQ(SIGABRT, theResult.mSignal);
  EXPECT_EQ(theExpected, FatalLine(theResult.mStderr));
}

TEST(qvConvertLength, ALengthThatNoMachineHasEndsTheProcess) {
  ExpectOutOfMemory([] {
    uint32 theValue = 0;
    qvConvert_strntouint32("12", SIZE_MAX, &theValue);
  });
}

TEST(qvConvertLength, AFractionOfALengthThatNoMachineHasEndsTheProcess) {
  ExpectOutOfMemory([] {
    double theValue = 0.0;
    qvConvert_strnfractiontodouble("1/2", SIZE_MAX - 1, &theValue);
  });
}

TEST(qvConvertLength, ABufferWhoseTextNoMachineHasRoomForEndsTheProcess) {
  ExpectOutOfMemory([] {
    const uint8 kBytes[1] = {0};
    char* theText = nullptr;
    qvConvert_buffertohexstr(kBytes, SIZE_MAX / 2 + 1, 1, kqvConvertBuffer_BigEndian, &theText);
  });
}

TEST(qvConvertLength, TheCopyIsGivenBack) {
  ExpectNoHeapGrowth([] {
    uint32 theValue = 0;
    qvConvert_strntouint32("12", 2, &theValue);
    qvConvert_hexstrntouint32("12", 2, &theValue);
  });
}

TEST(qvConvertLength, AVeryLongTextIsRead) {
  const std::string theText = std::string(1000000, ' ') + "17";
  Expect<uint32>(qvConvert_strntouint32, theText, 17, kqvConvertError_None);
}

TEST(qvConvertLength, TheTwoWordFormDoesTheSame) {
  qvULongLong theValue = qvULongLong_Init(7, 7);
  EXPECT_EQ(kqvConvertError_None, qvConvert_strntoULongLong("4294967298999", 10, &theValue));
  EXPECT_EQ(1u, theValue.mHigh);
  EXPECT_EQ(2u, theValue.mLow);
  EXPECT_EQ(kInvalid, qvConvert_strntoULongLong("123", 0, &theValue));
  EXPECT_TRUE(qvULongLong_Equal(&theValue, qvULongLong_0));
  theValue = *qvULongLong_Max;
  EXPECT_EQ(kInvalid, qvConvert_strntoULongLong(nullptr, 3, &theValue));
  EXPECT_TRUE(qvULongLong_Equal(&theValue, qvULongLong_0));
}
