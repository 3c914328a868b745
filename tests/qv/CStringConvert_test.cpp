#include <gtest/gtest.h>
#include <math.h>
#include <stddef.h>
#include <stdint.h>

#include <string>

#include "qv/CString.h"
#include "qvraTools/qvMalloc.h"
#include "support/CStringText.h"
#include "support/ChildProcess.h"

// Calls of the formatting engine. The linker sends the library's calls of qv_vsnprintf here.
static int sPasses = 0;

extern "C" int __real_qv_vsnprintf(char* aBuffer, size_t aMax, const char* aFormat, va_list anArgs);
extern "C" int __wrap_qv_vsnprintf(char* aBuffer, size_t aMax, const char* aFormat, va_list anArgs) {
  ++sPasses;
  return __real_qv_vsnprintf(aBuffer, aMax, aFormat, anArgs);
}

namespace {

size_t CallPrintfV(qvCString& aString, const char* aFormat, ...) QV_PRINTF_FORMAT(2, 3);

size_t CallPrintfV(qvCString& aString, const char* aFormat, ...) {
  va_list theArgs;
  va_start(theArgs, aFormat);
  const size_t theLength = aString.PrintfV(aFormat, theArgs);
  va_end(theArgs);
  return theLength;
}

std::string Repeated(char aChar, size_t aCount) { return std::string(aCount, aChar); }

}  // namespace

TEST(qvCStringConvert, ToInt8AcceptsItsRange) {
  int8 theValue = 1;
  EXPECT_TRUE(qvCString("-128").ToInt8(&theValue));
  EXPECT_EQ(-128, theValue);
  EXPECT_TRUE(qvCString(" +127").ToInt8(&theValue));
  EXPECT_EQ(127, theValue);
  EXPECT_FALSE(qvCString("128").ToInt8(&theValue));
  EXPECT_EQ(127, theValue);
  EXPECT_FALSE(qvCString("-129").ToInt8(&theValue));
  EXPECT_EQ(-128, theValue);
}

TEST(qvCStringConvert, ToUInt8AcceptsItsRange) {
  uint8 theValue = 1;
  EXPECT_TRUE(qvCString("255").ToUInt8(&theValue));
  EXPECT_EQ(255, theValue);
  EXPECT_FALSE(qvCString("256").ToUInt8(&theValue));
  EXPECT_EQ(255, theValue);
  EXPECT_FALSE(qvCString("-1").ToUInt8(&theValue));
  EXPECT_EQ(0, theValue);
}

TEST(qvCStringConvert, ToInt16AcceptsItsRange) {
  int16 theValue = 1;
  EXPECT_TRUE(qvCString("-32768").ToInt16(&theValue));
  EXPECT_EQ(-32768, theValue);
  EXPECT_TRUE(qvCString("32767").ToInt16(&theValue));
  EXPECT_EQ(32767, theValue);
  EXPECT_FALSE(qvCString("32768").ToInt16(&theValue));
}

TEST(qvCStringConvert, ToUInt16AcceptsItsRange) {
  uint16 theValue = 1;
  EXPECT_TRUE(qvCString("65535").ToUInt16(&theValue));
  EXPECT_EQ(65535, theValue);
  EXPECT_FALSE(qvCString("65536").ToUInt16(&theValue));
}

TEST(qvCStringConvert, ToInt32AcceptsItsRangeInABase) {
  int32 theValue = 1;
  EXPECT_TRUE(qvCString("-2147483648").ToInt32(&theValue, 10));
  EXPECT_EQ(INT32_MIN, theValue);
  EXPECT_TRUE(qvCString("2147483647").ToInt32(&theValue));
  EXPECT_EQ(INT32_MAX, theValue);
  EXPECT_FALSE(qvCString("2147483648").ToInt32(&theValue, 10));
  EXPECT_TRUE(qvCString("0x1F").ToInt32(&theValue, 16));
  EXPECT_EQ(31, theValue);
  EXPECT_TRUE(qvCString("017").ToInt32(&theValue, 0));
  EXPECT_EQ(15, theValue);
  EXPECT_FALSE(qvCString("1").ToInt32(&theValue, 37));
}

TEST(qvCStringConvert, ToUInt32AcceptsItsRangeInABase) {
  uint32 theValue = 1;
  EXPECT_TRUE(qvCString("4294967295").ToUInt32(&theValue));
  EXPECT_EQ(0xFFFFFFFFu, theValue);
  EXPECT_FALSE(qvCString("4294967296").ToUInt32(&theValue, 10));
  EXPECT_TRUE(qvCString("ffffffff").ToUInt32(&theValue, 16));
  EXPECT_EQ(0xFFFFFFFFu, theValue);
}

TEST(qvCStringConvert, ToInt64AcceptsItsRangeInABase) {
  qvint64_t theValue = 1;
  EXPECT_TRUE(qvCString("-9223372036854775808").ToInt64(&theValue));
  EXPECT_EQ(INT64_MIN, theValue);
  EXPECT_FALSE(qvCString("9223372036854775808").ToInt64(&theValue, 10));
  EXPECT_TRUE(qvCString("7fffffffffffffff").ToInt64(&theValue, 16));
  EXPECT_EQ(INT64_MAX, theValue);
}

TEST(qvCStringConvert, ToUInt64AcceptsItsRangeInABase) {
  qvuint64_t theValue = 1;
  EXPECT_TRUE(qvCString("18446744073709551615").ToUInt64(&theValue));
  EXPECT_EQ(UINT64_MAX, theValue);
  EXPECT_FALSE(qvCString("18446744073709551616").ToUInt64(&theValue, 10));
  EXPECT_TRUE(qvCString("101").ToUInt64(&theValue, 2));
  EXPECT_EQ(5u, theValue);
}

TEST(qvCStringConvert, ToDoubleReadsANumber) {
  double theValue = 1.0;
  EXPECT_TRUE(qvCString("-1.5e3").ToDouble(&theValue));
  EXPECT_EQ(-1500.0, theValue);
  EXPECT_TRUE(qvCString(".5").ToDouble(&theValue));
  EXPECT_EQ(0.5, theValue);
  EXPECT_FALSE(qvCString("1e400").ToDouble(&theValue));
  EXPECT_FALSE(qvCString("one").ToDouble(&theValue));
}

TEST(qvCStringConvert, NothingAndTrailingTextAreNoNumbers) {
  for (const char* theText : {"", " ", "12 ", "12x", "x", "-", "0x"}) {
    const qvCString theString(theText);
    int8 theInt8;
    uint8 theUInt8;
    int16 theInt16;
    uint16 theUInt16;
    int32 theInt32;
    uint32 theUInt32;
    qvint64_t theInt64;
    qvuint64_t theUInt64;
    double theDouble;
    EXPECT_FALSE(theString.ToInt8(&theInt8)) << theText;
    EXPECT_FALSE(theString.ToUInt8(&theUInt8)) << theText;
    EXPECT_FALSE(theString.ToInt16(&theInt16)) << theText;
    EXPECT_FALSE(theString.ToUInt16(&theUInt16)) << theText;
    EXPECT_FALSE(theString.ToInt32(&theInt32)) << theText;
    EXPECT_FALSE(theString.ToUInt32(&theUInt32)) << theText;
    EXPECT_FALSE(theString.ToInt64(&theInt64)) << theText;
    EXPECT_FALSE(theString.ToUInt64(&theUInt64)) << theText;
    EXPECT_FALSE(theString.ToDouble(&theDouble)) << theText;
  }
}

TEST(qvCStringConvert, ATextOfDigitsHasOnlyNumbers) {
  EXPECT_TRUE(qvCString("0123456789").HasOnlyNumbers());
  EXPECT_TRUE(qvCString().HasOnlyNumbers());
  EXPECT_FALSE(qvCString("12a").HasOnlyNumbers());
  EXPECT_FALSE(qvCString("-1").HasOnlyNumbers());
  EXPECT_FALSE(qvCString("1 ").HasOnlyNumbers());
  EXPECT_FALSE(qvCString("/").HasOnlyNumbers());
  EXPECT_FALSE(qvCString(":").HasOnlyNumbers());
  EXPECT_FALSE(StringOf(Bytes("1\0")).HasOnlyNumbers());
  EXPECT_FALSE(qvCString("\xB2").HasOnlyNumbers());
}

TEST(qvCStringConvert, ATextOfHexadecimalDigitsHasOnlyHexa) {
  EXPECT_TRUE(qvCString("0123456789abcdefABCDEF").HasOnlyHexa());
  EXPECT_TRUE(qvCString().HasOnlyHexa());
  EXPECT_FALSE(qvCString("0x1").HasOnlyHexa());
  EXPECT_FALSE(qvCString("g").HasOnlyHexa());
  EXPECT_FALSE(qvCString("G").HasOnlyHexa());
  EXPECT_FALSE(qvCString("@").HasOnlyHexa());
  EXPECT_FALSE(qvCString("`").HasOnlyHexa());
  EXPECT_FALSE(StringOf(Bytes("a\0")).HasOnlyHexa());
}

TEST(qvCStringPrintf, ReplacesTheTextAndReturnsTheLength) {
  qvCString theString("something before");
  EXPECT_EQ(9u, theString.Printf("%s=%d", "volume", 42));
  EXPECT_EQ("volume=42", TextOf(theString));
}

TEST(qvCStringPrintf, PrintfVTakesAnArgumentList) {
  qvCString theString;
  EXPECT_EQ(5u, CallPrintfV(theString, "%c-%03d", 'a', 7));
  EXPECT_EQ("a-007", TextOf(theString));
}

TEST(qvCStringPrintf, FormatGivesANewString) {
  EXPECT_EQ("7 of 9", TextOf(qvCString::Format("%d of %d", 7, 9)));
}

TEST(qvCStringPrintf, AnEmptyResultIsEmpty) {
  qvCString theString("before");
  EXPECT_EQ(0u, theString.Printf("%s", ""));
  EXPECT_EQ("", TextOf(theString));
}

TEST(qvCStringPrintf, ANullFormatGivesTheEmptyText) {
  qvCString theString("before");
  const char* theFormat = nullptr;
  EXPECT_EQ(0u, theString.Printf(theFormat, 1));
  EXPECT_EQ("", TextOf(theString));
}

TEST(qvCStringPrintf, TheFirstAttemptHasRoomForATextOf1024Characters) {
  qvCString theString;
  EXPECT_EQ(1024u, theString.Printf("%s", Repeated('x', 1024).c_str()));
  EXPECT_EQ(Repeated('x', 1024), TextOf(theString));
  // Room for 1025 characters by the rule of capacities: 1025 - 1 + 19.
  EXPECT_EQ(1043u, theString.mCStringData->mAllocatedLength);
}

TEST(qvCStringPrintf, ALongerTextIsFormattedASecondTimeAndWhole) {
  for (size_t theLength : {size_t{1023}, size_t{1025}, size_t{1026}, size_t{2048}, size_t{100000}}) {
    qvCString theString;
    EXPECT_EQ(theLength, theString.Printf("%s", Repeated('x', theLength).c_str()));
    EXPECT_EQ(Repeated('x', theLength), TextOf(theString));
  }
}

TEST(qvCStringPrintf, ATextOf1024CharactersIsFormattedOnceAndALongerOneTwice) {
  sPasses = 0;
  qvCString theString;
  theString.Printf("%s", Repeated('x', 1024).c_str());
  EXPECT_EQ(1, sPasses);
  theString.Printf("%s", Repeated('x', 1025).c_str());
  EXPECT_EQ(1 + 2, sPasses);
  theString.Printf("%s", Repeated('x', 100000).c_str());
  EXPECT_EQ(1 + 2 + 2, sPasses);
}

TEST(qvCStringPrintf, ALongerTextReadsEveryArgumentAgain) {
  qvCString theString;
  EXPECT_EQ(3006u,
            theString.Printf("%d%s%d%s", 123, Repeated('x', 1500).c_str(), 456, Repeated('y', 1500).c_str()));
  EXPECT_EQ("123" + Repeated('x', 1500) + "456" + Repeated('y', 1500), TextOf(theString));
  // Room for exactly one character more than the text, by the rule of capacities: 3007 - 15 + 19.
  EXPECT_EQ(3011u, theString.mCStringData->mAllocatedLength);
}

TEST(qvCStringPrintf, AZeroByteEndsTheText) {
  qvCString theString;
  EXPECT_EQ(1u, theString.Printf("a%cb", 0));
  EXPECT_EQ("a", TextOf(theString));
}

TEST(qvCStringPrintf, ItsOwnTextMayBeAnArgumentOrTheFormat) {
  qvCString theOwned("abc");
  theOwned.Printf("<%s>", theOwned.c_str());
  EXPECT_EQ("<abc>", TextOf(theOwned));
  theOwned.Printf("<%s>", theOwned.c_str());
  EXPECT_EQ("<<abc>>", TextOf(theOwned));

  qvCString theWrapped(qvCString::FromAllocatedString(qvStrdup("abc%d")));
  CallPrintfV(theWrapped, theWrapped.c_str(), 5);
  EXPECT_EQ("abc5", TextOf(theWrapped));
}

TEST(qvCStringPrintf, LeavesTheOtherOwnersAlone) {
  const qvCString theOriginal("abc");
  qvCString theString(theOriginal);
  theString.Printf("%d", 1);
  EXPECT_EQ("abc", TextOf(theOriginal));
}

TEST(qvCStringPrintf, AFormatErrorStopsWithTheEmptyTextThatTheEngineLeaves) {
  const char* theFormat = "abc%!def";
  qvCString theString("before");
  EXPECT_EQ(0u, CallPrintfV(theString, theFormat, 1));
  EXPECT_EQ("", TextOf(theString));
}

TEST(qvCStringPrintf, ALengthThatNoIntHoldsIsAnErrorToo) {
  volatile int theWidth = 2147483647;  // volatile: the compiler would refuse what it can see
  qvCString theString("before");
  EXPECT_EQ(0u, theString.Printf("abc%*d", theWidth, 1));
  EXPECT_EQ("", TextOf(theString));
}

TEST(qvCStringPrintf, AStringWhoseBufferIsOutFailsAnAssertion) {
  qvCString theString("abc");
  theString.GetWriteBuf(3);
  EXPECT_QV_ASSERTION(theString.Printf("%d", 1), "mCStringData->mRefCount == 1", "CString");
  theString.UngetWriteBuf();
}

TEST(qvCStringUTF8, KnowsValidTexts) {
  EXPECT_TRUE(qvCString().IsValidUTF8());
  EXPECT_TRUE(qvCString("abc").IsValidUTF8());
  EXPECT_TRUE(qvCString("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80").IsValidUTF8());
  EXPECT_TRUE(qvCString("\xFD\xBF\xBF\xBF\xBF\xBF").IsValidUTF8());
  EXPECT_FALSE(qvCString("\xFE\xBF\xBF\xBF\xBF\xBF\xBF").IsValidUTF8());
  EXPECT_FALSE(qvCString("\x80").IsValidUTF8());
  EXPECT_FALSE(qvCString("a\xC3").IsValidUTF8());
  EXPECT_FALSE(qvCString("\xC3(").IsValidUTF8());
  EXPECT_FALSE(qvCString("\xC0\xAF").IsValidUTF8());
}

TEST(qvCStringUTF8, ValidateTreatsAnInvalidTextAsTheFlagsSay) {
  const struct {
    int mFlags;
    const char* mText;
    const char* mWhy;
  } kCases[] = {
      {qvCString::kqvEmpty, "", "emptied"},
      {qvCString::kqvKeep, "ab\xC3(c", "kept"},
      {qvCString::kqvKeepValid, "ab", "cut before the first bad sequence"},
      {qvCString::kqvEmpty | qvCString::kqvKeepValid, "", "empty goes first"},
      {qvCString::kqvKeep | qvCString::kqvKeepValid, "ab", "keeping the valid part is stricter"},
      {0, "ab\xC3(c", "no flag changes nothing"},
      {qvCString::kqvEmpty | qvCString::kqvKeepPrintable, "", "nothing is left to scan"},
      {qvCString::kqvKeepValid | qvCString::kqvKeepPrintable, "ab", "cut, then scanned"},
  };
  for (const auto& theCase : kCases) {
    qvCString theString("ab\xC3(c");
    EXPECT_EQ(&theString, &theString.ValidateUTF8(theCase.mFlags));
    EXPECT_EQ(theCase.mText, TextOf(theString)) << theCase.mWhy;
  }
}

TEST(qvCStringUTF8, ValidateLeavesAValidTextShared) {
  qvCString theString("ab\xC3\xA9");
  const qvCString theCopy(theString);
  theString.ValidateUTF8(qvCString::kqvEmpty | qvCString::kqvKeepValid | qvCString::kqvKeepPrintable);
  EXPECT_EQ(theCopy.mCStringData, theString.mCStringData);
}

TEST(qvCStringUTF8, ValidateLeavesTheOtherOwnersAlone) {
  qvCString theCut("ab\xC3");
  const qvCString theFirstCopy(theCut);
  theCut.ValidateUTF8(qvCString::kqvKeepValid);
  EXPECT_EQ("ab", TextOf(theCut));
  EXPECT_EQ("ab\xC3", TextOf(theFirstCopy));

  qvCString theScanned("a\1bc");
  const qvCString theSecondCopy(theScanned);
  theScanned.ValidateUTF8(qvCString::kqvKeepPrintable);
  EXPECT_EQ("abc", TextOf(theScanned));
  EXPECT_EQ("a\1bc", TextOf(theSecondCopy));
}

TEST(qvCStringUTF8, ATextThatBeginsBadlyIsCutToNothing) {
  qvCString theString("\xFFxyz");
  theString.ValidateUTF8(qvCString::kqvKeepValid);
  EXPECT_EQ("", TextOf(theString));
}

TEST(qvCStringUTF8, KeepPrintableErasesControlCharactersAndBadSequences) {
  const struct {
    std::string mText;
    std::string mResult;
    const char* mWhy;
  } kCases[] = {
      {"abc", "abc", "nothing to erase"},
      {"", "", "nothing"},
      {"a\x1F"
       "bc",
       "abc", "a control character"},
      {"a\x7F"
       "bc",
       "abc", "the delete character"},
      {"a\tb\n", "ab", "white space but the blank is not printable"},
      {Bytes("a\0bc"), "abc", "a zero byte"},
      {" ~", " ~", "both ends of the printable ASCII characters"},
      {"\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", "good sequences"},
      {"a\xC3(xyz", "axyz", "2 bytes go when the continuation is none"},
      {"a\xE2\x82(xyz", "axyz", "3 bytes go"},
      {"a\xE2(\x82xyz", "axyz", "3 bytes go, wherever the bad one stands"},
      {"a\xF0\x9F\x98(xyz", "axyz", "4 bytes go"},
      {"a\xC3", "a", "a lead without anything behind it"},
      {"a\xE2\x82", "a", "a sequence cut at the end"},
      {"a\xF0\x9F\x98", "a", "the same with 4 bytes"},
      {"a\xF0", "a", "only the lead of 4"},
      {"a\x80\xBF"
       "b",
       "a\x80\xBF"
       "b",
       "stray continuation bytes are kept"},
      {"a\xF8\xFC\xFF"
       "b",
       "a\xF8\xFC\xFF"
       "b",
       "leads from 0xF8 on are kept"},
      {"\1", "", "nothing is left"},
      {"\xC3\xC3\xA9"
       "b",
       "\xA9"
       "b",
       "the second lead goes as the continuation of the first"},
  };
  for (const auto& theCase : kCases) {
    qvCString theString = StringOf(theCase.mText);
    EXPECT_EQ(&theString, &theString.ValidateUTF8(qvCString::kqvKeepPrintable));
    EXPECT_EQ(theCase.mResult, TextOf(theString)) << theCase.mWhy;
  }
}

TEST(qvCStringKept, BytesBehindAnErasedSequenceAreNotExamined) {
  const struct {
    const char* mText;
    const char* mResult;
    const char* mWhy;
  } kCases[] = {
      {"\1\2x", "\2x", "the byte that moves into the place of one is kept"},
      {"\1\2\3x", "\2x", "the one after it is examined again"},
      {"\1\2\3\4", "\2\4", "every second control character stays"},
      {"\1a\2x", "ax", "a printable byte is skipped just as well"},
      {"\xC3(\1\2\3x", "\1\2x", "2 bytes erased, 2 skipped, the third goes"},
      {"\xE2((\1\2\3\4x", "\1\2\3x", "3 bytes erased, 3 skipped, the fourth goes"},
      {"\xF0(((\1\2\3\4\5x", "\1\2\3\4x", "4 bytes erased, 4 skipped, the fifth goes"},
      {"\xF0(((\1", "\1", "the skip ends at the end of the text"},
      {"\xC3(\xC3", "\xC3", "a bad lead is skipped too"},
      {"\1\xC3\xA9x", "\xC3\xA9x", "a lead is skipped; its continuation is then a stray one and stays"},
  };
  for (const auto& theCase : kCases) {
    qvCString theString(theCase.mText);
    theString.ValidateUTF8(qvCString::kqvKeepPrintable);
    EXPECT_EQ(theCase.mResult, TextOf(theString)) << theCase.mWhy;
  }
}

TEST(qvCStringUTF8, TheLeadByteTellsHowManyBytesGo) {
  const struct {
    char mLead;
    const char* mResult;
    const char* mWhy;
  } kCases[] = {
      {'\xBF', "\xBF(((((", "the last stray continuation byte stays"},
      {'\xC0', "((((", "the first lead of 2"},
      {'\xDF', "((((", "the last lead of 2"},
      {'\xE0', "(((", "the first lead of 3"},
      {'\xEF', "(((", "the last lead of 3"},
      {'\xF0', "((", "the first lead of 4"},
      {'\xF7', "((", "the last lead of 4"},
      {'\xF8', "\xF8(((((", "from here on leads stay"},
  };
  for (const auto& theCase : kCases) {
    qvCString theString(std::string(1, theCase.mLead).append("(((((").c_str());
    theString.ValidateUTF8(qvCString::kqvKeepPrintable);
    EXPECT_EQ(theCase.mResult, TextOf(theString)) << theCase.mWhy;
  }
}

TEST(qvCStringUTF8, AContinuationByteLiesBetween80AndBF) {
  const struct {
    const char* mText;
    const char* mResult;
    const char* mWhy;
  } kCases[] = {
      {"\xC3\x80", "\xC3\x80", "the first"},
      {"\xC3\xBF", "\xC3\xBF", "the last"},
      {"\xC3\x7F", "", "one below"},
      {"\xC3\xC0", "", "one above"},
      {"\xC3\xFF", "", "the top bit is not enough"},
  };
  for (const auto& theCase : kCases) {
    qvCString theString(theCase.mText);
    theString.ValidateUTF8(qvCString::kqvKeepPrintable);
    EXPECT_EQ(theCase.mResult, TextOf(theString)) << theCase.mWhy;
  }
}

TEST(qvCStringUTF8, ALongTextOfControlCharactersIsScannedInOnePass) {
  qvCString theString = StringOf(Repeated('\1', 1000000));
  theString.ValidateUTF8(qvCString::kqvKeepPrintable);
  EXPECT_EQ(Repeated('\1', 500000), TextOf(theString));
}

TEST(qvCStringWide, GivesTheWideText) {
  EXPECT_STREQ(L"a\u00E9\u20AC\U0001F600",
               qvCString("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80").ToWideChar().c_str());
  EXPECT_STREQ(L"", qvCString().ToWideChar().c_str());
}

TEST(qvCStringWide, AnInvalidTextGivesANullBuffer) {
  EXPECT_EQ(NULL, qvCString("a\xC3").ToWideChar().c_str());
}

TEST(qvCStringWide, IsMadeFromAWideText) {
  const qvCString theString = qvCString::FromWideChar(L"a\u00E9\u20AC\U0001F600");
  EXPECT_EQ("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", TextOf(theString));
  EXPECT_EQ(kqvCStringData_AllocatedText, theString.mCStringData->mAllocatedLength);
}

TEST(qvCStringWide, AnEmptyOrNullWideTextGivesTheEmptyString) {
  EXPECT_TRUE(IsSharedEmptyText(qvCString::FromWideChar(L"")));
  EXPECT_TRUE(IsSharedEmptyText(qvCString::FromWideChar(NULL)));
}
