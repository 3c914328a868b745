#include "qvraTools/qvUnicode.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <iterator>
#include <string>

#include "qvraTools/qvUnicode_p.h"
#include "support/Bytes.h"

namespace {

const size_t kInvalid = static_cast<size_t>(-1);
const size_t kIncomplete = static_cast<size_t>(-2);
const uint32 kUntouched = 0xDEADBEEF;

struct Sequence {
  const char* mBytes;
  size_t mLength;
  uint32 mChar;
  const char* mWhy;
};

const Sequence kSequences[] = {
    {"\x01", 1, 0x1, "the smallest but zero"},
    {"\x7F", 1, 0x7F, "the last of 1 byte"},
    {"\xC2\x80", 2, 0x80, "the first of 2 bytes"},
    {"\xDF\xBF", 2, 0x7FF, "the last of 2 bytes"},
    {"\xE0\xA0\x80", 3, 0x800, "the first of 3 bytes"},
    {"\xE2\x82\xAC", 3, 0x20AC, "the euro sign"},
    {"\xED\xA0\x80", 3, 0xD800, "a surrogate is a character like any other"},
    {"\xEF\xBF\xBF", 3, 0xFFFF, "the last of 3 bytes"},
    {"\xF0\x90\x80\x80", 4, 0x10000, "the first of 4 bytes"},
    {"\xF0\x9F\x98\x80", 4, 0x1F600, "a smiling face"},
    {"\xF4\x90\x80\x80", 4, 0x110000, "above the range of today's UTF-8"},
    {"\xF7\xBF\xBF\xBF", 4, 0x1FFFFF, "the last of 4 bytes"},
    {"\xF8\x88\x80\x80\x80", 5, 0x200000, "the first of 5 bytes"},
    {"\xFB\xBF\xBF\xBF\xBF", 5, 0x3FFFFFF, "the last of 5 bytes"},
    {"\xFC\x84\x80\x80\x80\x80", 6, 0x4000000, "the first of 6 bytes"},
    {"\xFD\xBF\xBF\xBF\xBF\xBF", 6, 0x7FFFFFFF, "the last of 6 bytes"},
};

const Sequence kMalformed[] = {
    {"\x80", 1, 0, "a continuation byte in lead position"},
    {"\xBF", 1, 0, "the last continuation byte in lead position"},
    {"\xC3\x41", 2, 0, "2 bytes, the second one ASCII"},
    {"\xC3\xC3", 2, 0, "2 bytes, the second one a lead"},
    {"\xE2\x41\xAC", 3, 0, "3 bytes, the second one ASCII"},
    {"\xE2\x82\x41", 3, 0, "3 bytes, the third one ASCII"},
    {"\xF0\x9F\x98\x7F", 4, 0, "4 bytes, the fourth one ASCII"},
    {"\xFD\xBF\xBF\xBF\xBF\x3F", 6, 0, "6 bytes, the sixth one ASCII"},
    {"\xC0\x80", 2, 0, "zero in 2 bytes"},
    {"\xC1\xBF", 2, 0, "the last overlong form of 2 bytes"},
    {"\xE0\x9F\xBF", 3, 0, "the last overlong form of 3 bytes"},
    {"\xF0\x8F\xBF\xBF", 4, 0, "the last overlong form of 4 bytes"},
    {"\xF8\x87\xBF\xBF\xBF", 5, 0, "the last overlong form of 5 bytes"},
    {"\xFC\x83\xBF\xBF\xBF\xBF", 6, 0, "the last overlong form of 6 bytes"},
    {"\xFE\x82\x80\x80\x80\x80\x80", 7, 0, "0xFE is no lead, although 7 bytes are written with it"},
    {"\xFF\x80\x80\x80\x80\x80\x80", 7, 0, "0xFF is no lead"},
    {"\xFE\xBF\xBF\xBF\xBF\xBF", 6, 0, "nor is 0xFE a lead of 6 bytes"},
    {"\xFF\xBF\xBF\xBF\xBF\xBF", 6, 0, "nor is 0xFF"},
};

size_t CountWide(const char* aText) { return qvUnicode_UTF8ToWide(nullptr, aText, 0); }

// What qvUnicode_WriteUTF8Char writes into a buffer of aMax bytes, and nothing behind it.
std::string WriteInto(size_t aMax, uint32 aChar) {
  std::string theBuffer(9, '#');
  qvUnicode_WriteUTF8Char(&theBuffer[0], aMax, aChar);
  size_t theEnd = theBuffer.find('#');
  EXPECT_EQ(std::string::npos, theBuffer.find_first_not_of('#', theEnd));
  return theBuffer.substr(0, theEnd);
}

}  // namespace

TEST(qvUnicodeTables, LimitsAreTheLargestCharactersOfOneToSevenBytes) {
  const uint32 kExpected[7] = {0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF, 0x7FFFFFFF, 0xFFFFFFFF};
  ASSERT_EQ(sizeof(kExpected), sizeof(qvUTF8Max));
  for (size_t i = 0; i < 7; ++i) {
    EXPECT_EQ(kExpected[i], qvUTF8Max[i]) << i + 1 << " bytes";
  }
}

TEST(qvUnicodeTables, ErrorsAreTheTwoLargestSizes) {
  EXPECT_EQ(kInvalid, kqvUnicode_Invalid);
  EXPECT_EQ(kIncomplete, kqvUnicode_Incomplete);
}

TEST(qvUnicodeRead, GivesCharacterAndLengthOfEverySequence) {
  for (const Sequence& theCase : kSequences) {
    std::vector<char> theBytes = Exactly(theCase.mBytes);
    uint32 theChar = kUntouched;
    EXPECT_EQ(theCase.mLength, qvUnicode_ReadUTF8Char(theBytes.data(), theBytes.size(), &theChar))
        << theCase.mWhy;
    EXPECT_EQ(theCase.mChar, theChar) << theCase.mWhy;
  }
}

TEST(qvUnicodeRead, ZeroByteIsACharacterOfOneByte) {
  uint32 theChar = kUntouched;
  EXPECT_EQ(1u, qvUnicode_ReadUTF8Char("\0a", 2, &theChar));
  EXPECT_EQ(0u, theChar);
}

TEST(qvUnicodeRead, EmptyInputGivesZero) {
  uint32 theChar = kUntouched;
  EXPECT_EQ(0u, qvUnicode_ReadUTF8Char("a", 0, &theChar));
  EXPECT_EQ(0u, qvUnicode_ReadUTF8Char(nullptr, 0, &theChar));
  EXPECT_EQ(kUntouched, theChar);
}

TEST(qvUnicodeRead, TakesOnlyTheFirstCharacter) {
  uint32 theChar = 0;
  EXPECT_EQ(2u, qvUnicode_ReadUTF8Char("\xC3\xA9\x80", 3, &theChar));
  EXPECT_EQ(0xE9u, theChar);
}

TEST(qvUnicodeRead, MalformedSequenceIsInvalidAndLeavesTheCharacterAlone) {
  for (const Sequence& theCase : kMalformed) {
    std::vector<char> theBytes(theCase.mBytes, theCase.mBytes + theCase.mLength);
    uint32 theChar = kUntouched;
    EXPECT_EQ(kInvalid, qvUnicode_ReadUTF8Char(theBytes.data(), theBytes.size(), &theChar)) << theCase.mWhy;
    EXPECT_EQ(kUntouched, theChar) << theCase.mWhy;
  }
}

TEST(qvUnicodeRead, EveryTrueBeginningOfASequenceIsIncomplete) {
  for (const Sequence& theCase : kSequences) {
    for (size_t theLength = 1; theLength < theCase.mLength; ++theLength) {
      std::vector<char> theBytes(theCase.mBytes, theCase.mBytes + theLength);
      uint32 theChar = kUntouched;
      EXPECT_EQ(kIncomplete, qvUnicode_ReadUTF8Char(theBytes.data(), theLength, &theChar))
          << theCase.mWhy << ", " << theLength << " bytes of it";
      EXPECT_EQ(kUntouched, theChar);
    }
  }
}

TEST(qvUnicodeRead, BadByteBeforeTheEndOfTheInputIsInvalidAndNotIncomplete) {
  uint32 theChar = 0;
  EXPECT_EQ(kInvalid, qvUnicode_ReadUTF8Char("\xE2\x41", 2, &theChar));
  EXPECT_EQ(kInvalid, qvUnicode_ReadUTF8Char("\xF0\x9F\x41", 3, &theChar));
}

TEST(qvUnicodeWrite, GivesBytesAndLengthOfEveryCharacter) {
  for (const Sequence& theCase : kSequences) {
    EXPECT_EQ(theCase.mLength, qvUnicode_WriteUTF8Char(nullptr, 0, theCase.mChar)) << theCase.mWhy;
    EXPECT_EQ(theCase.mBytes, WriteInto(7, theCase.mChar)) << theCase.mWhy;
  }
}

TEST(qvUnicodeWrite, ZeroIsOneZeroByte) {
  char theBuffer[2] = {'#', '#'};
  EXPECT_EQ(1u, qvUnicode_WriteUTF8Char(theBuffer, 2, 0));
  EXPECT_EQ('\0', theBuffer[0]);
  EXPECT_EQ('#', theBuffer[1]);
}

TEST(qvUnicodeWrite, ValuesOf32BitsTakeSevenBytes) {
  EXPECT_EQ("\xFE\x82\x80\x80\x80\x80\x80", WriteInto(7, 0x80000000));
  EXPECT_EQ("\xFE\x83\xBF\xBF\xBF\xBF\xBF", WriteInto(7, 0xFFFFFFFF));
  EXPECT_EQ(7u, qvUnicode_WriteUTF8Char(nullptr, 0, 0xFFFFFFFF));
}

TEST(qvUnicodeWrite, BytesThatDoNotFitAreLeftOut) {
  EXPECT_EQ("", WriteInto(0, 0x41));
  EXPECT_EQ("", WriteInto(0, 0x20AC));
  EXPECT_EQ("\xE2", WriteInto(1, 0x20AC));
  EXPECT_EQ("\xE2\x82", WriteInto(2, 0x20AC));
  EXPECT_EQ("\xE2\x82\xAC", WriteInto(3, 0x20AC));
  EXPECT_EQ("\xE2\x82\xAC", WriteInto(8, 0x20AC));
}

TEST(qvUnicodeWrite, LengthIsReturnedWhetherItFitsOrNot) {
  char theBuffer[2];
  EXPECT_EQ(3u, qvUnicode_WriteUTF8Char(theBuffer, 2, 0x20AC));
  EXPECT_EQ(1u, qvUnicode_WriteUTF8Char(nullptr, 0, 'a'));
}

TEST(qvUnicodeLength, FirstLimitThatHoldsTheCharacterDecides) {
  EXPECT_EQ(1u, qvUnicode_UTF8CharLength(0));
  for (const Sequence& theCase : kSequences) {
    EXPECT_EQ(theCase.mLength, qvUnicode_UTF8CharLength(theCase.mChar)) << theCase.mWhy;
  }
  EXPECT_EQ(7u, qvUnicode_UTF8CharLength(0x80000000));
  EXPECT_EQ(7u, qvUnicode_UTF8CharLength(0xFFFFFFFF));
}

TEST(qvUnicodeToWide, MeasuresAValidText) {
  EXPECT_EQ(0u, CountWide(""));
  EXPECT_EQ(3u, CountWide("abc"));
  EXPECT_EQ(4u, CountWide("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"));
}

TEST(qvUnicodeToWide, ContinuationByteInLeadPositionIsInvalid) {
  EXPECT_EQ(kInvalid, CountWide("\x80"));
  EXPECT_EQ(kInvalid, CountWide("abc\x80"));
}

TEST(qvUnicodeToWide, EveryMalformedSequenceIsInvalid) {
  for (const Sequence& theCase : kMalformed) {
    std::string theText = "ab" + std::string(theCase.mBytes, theCase.mLength) + "cd";
    wchar_t theWide[20];
    EXPECT_EQ(kInvalid, CountWide(theText.c_str())) << theCase.mWhy;
    EXPECT_EQ(kInvalid, qvUnicode_UTF8ToWide(theWide, theText.c_str(), 20)) << theCase.mWhy;
  }
}

TEST(qvUnicodeToWide, TextThatEndsInsideASequenceIsInvalidAndNotReadPast) {
  for (const Sequence& theCase : kSequences) {
    for (size_t theLength = 1; theLength < theCase.mLength; ++theLength) {
      std::vector<char> theText(theCase.mBytes, theCase.mBytes + theLength);
      theText.push_back('\0');
      EXPECT_EQ(kInvalid, CountWide(theText.data())) << theCase.mWhy << ", " << theLength << " bytes of it";
    }
  }
}

TEST(qvUnicodeToWide, DecodesEveryLengthAndTerminates) {
  for (const Sequence& theCase : kSequences) {
    wchar_t theWide[4] = {L'#', L'#', L'#', L'#'};
    std::string theText = std::string("a") + theCase.mBytes;
    EXPECT_EQ(2u, qvUnicode_UTF8ToWide(theWide, theText.c_str(), 4)) << theCase.mWhy;
    EXPECT_EQ(L'a', theWide[0]);
    EXPECT_EQ(theCase.mChar, static_cast<uint32>(theWide[1])) << theCase.mWhy;
    EXPECT_EQ(L'\0', theWide[2]);
    EXPECT_EQ(L'#', theWide[3]);
  }
}

TEST(qvUnicodeToWide, StopsAtTheMaximumWithoutATerminator) {
  wchar_t theWide[4] = {L'#', L'#', L'#', L'#'};
  EXPECT_EQ(2u, qvUnicode_UTF8ToWide(theWide, "abc", 2));
  EXPECT_EQ(std::wstring(L"ab##"), std::wstring(theWide, 4));
}

TEST(qvUnicodeToWide, ExactFitHasNoRoomForTheTerminator) {
  wchar_t theWide[3] = {L'#', L'#', L'#'};
  EXPECT_EQ(2u, qvUnicode_UTF8ToWide(theWide, "ab", 2));
  EXPECT_EQ(L'#', theWide[2]);
}

TEST(qvUnicodeToWide, NothingIsStoredWhenThereIsNoRoom) {
  wchar_t theWide[1] = {L'#'};
  EXPECT_EQ(0u, qvUnicode_UTF8ToWide(theWide, "abc", 0));
  EXPECT_EQ(0u, qvUnicode_UTF8ToWide(theWide, "", 0));
  EXPECT_EQ(L'#', theWide[0]);
}

TEST(qvUnicodeToWide, EmptyTextIsJustTheTerminator) {
  wchar_t theWide[2] = {L'#', L'#'};
  EXPECT_EQ(0u, qvUnicode_UTF8ToWide(theWide, "", 2));
  EXPECT_EQ(L'\0', theWide[0]);
  EXPECT_EQ(L'#', theWide[1]);
}

TEST(qvUnicodeToWide, MaximumDoesNotMatterWhenOnlyCounting) {
  EXPECT_EQ(3u, qvUnicode_UTF8ToWide(nullptr, "abc", 1));
}

TEST(qvUnicodeToWide, WhatLiesBehindTheLastCharacterStoredIsNotLookedAt) {
  wchar_t theWide[2];
  EXPECT_EQ(2u, qvUnicode_UTF8ToWide(theWide, "ab\x80", 2));
}

TEST(qvUnicodeToWide, LongTextIsCountedWhole) {
  std::string theText;
  for (int i = 0; i < 100000; ++i) {
    theText += "ab\xE2\x82\xAC";
  }
  EXPECT_EQ(300000u, CountWide(theText.c_str()));
  theText += '\xFF';
  EXPECT_EQ(kInvalid, CountWide(theText.c_str()));
}

TEST(qvUnicodeToUTF8, EncodesEveryLengthAndTerminates) {
  for (const Sequence& theCase : kSequences) {
    const wchar_t theWide[] = {L'a', static_cast<wchar_t>(theCase.mChar), L'\0'};
    char theBuffer[10];
    EXPECT_EQ(theCase.mLength + 1, qvUnicode_WideToUTF8(nullptr, theWide, 0)) << theCase.mWhy;
    EXPECT_EQ(theCase.mLength + 1, qvUnicode_WideToUTF8(theBuffer, theWide, 10)) << theCase.mWhy;
    EXPECT_EQ(std::string("a") + theCase.mBytes, theBuffer) << theCase.mWhy;
  }
}

TEST(qvUnicodeToUTF8, Bit31IsIgnored) {
  const wchar_t theWide[] = {static_cast<wchar_t>(0x80000041u), static_cast<wchar_t>(0xFFFFFFFFu), L'\0'};
  char theBuffer[10];
  EXPECT_EQ(7u, qvUnicode_WideToUTF8(nullptr, theWide, 0));
  EXPECT_EQ(7u, qvUnicode_WideToUTF8(theBuffer, theWide, 10));
  EXPECT_STREQ("A\xFD\xBF\xBF\xBF\xBF\xBF", theBuffer);
}

TEST(qvUnicodeToUTF8, EmptyTextIsJustTheTerminator) {
  char theBuffer[2] = {'#', '#'};
  EXPECT_EQ(0u, qvUnicode_WideToUTF8(nullptr, L"", 0));
  EXPECT_EQ(0u, qvUnicode_WideToUTF8(theBuffer, L"", 2));
  EXPECT_EQ('\0', theBuffer[0]);
  EXPECT_EQ('#', theBuffer[1]);
}

TEST(qvUnicodeToUTF8, ExactFitHasNoRoomForTheTerminator) {
  char theBuffer[4] = {'#', '#', '#', '#'};
  EXPECT_EQ(3u, qvUnicode_WideToUTF8(theBuffer, L"\x20AC", 3));
  EXPECT_EQ("\xE2\x82\xAC#", std::string(theBuffer, 4));
}

TEST(qvUnicodeToUTF8, StopsInFrontOfACharacterThatDoesNotFitWhole) {
  char theBuffer[4] = {'#', '#', '#', '#'};
  EXPECT_EQ(1u, qvUnicode_WideToUTF8(theBuffer, L"a\x20AC", 3));
  EXPECT_EQ(Bytes("a\0##"), std::string(theBuffer, 4));
}

TEST(qvUnicodeToUTF8, NothingIsStoredWhenThereIsNoRoom) {
  char theBuffer[1] = {'#'};
  EXPECT_EQ(0u, qvUnicode_WideToUTF8(theBuffer, L"abc", 0));
  EXPECT_EQ('#', theBuffer[0]);
}

TEST(qvUnicodeToUTF8, MaximumDoesNotMatterWhenOnlyCounting) {
  EXPECT_EQ(4u, qvUnicode_WideToUTF8(nullptr, L"a\x20AC", 1));
}

TEST(qvUnicodeWide, EveryCharacterIsOneUnit) {
  EXPECT_EQ(1u, qvUnicode_WideCharLength(0));
  EXPECT_EQ(1u, qvUnicode_WideCharLength(0x1F600));
  EXPECT_EQ(1u, qvUnicode_WideCharLength(0xFFFFFFFF));
}

TEST(qvUnicodeWide, ReadingGivesTheUnitAsItIs) {
  const wchar_t theWide[] = {static_cast<wchar_t>(0xFFFFFFFFu), L'b'};
  uint32 theChar = kUntouched;
  EXPECT_EQ(0u, qvUnicode_ReadWideChar(theWide, 0, &theChar));
  EXPECT_EQ(kUntouched, theChar);
  EXPECT_EQ(1u, qvUnicode_ReadWideChar(theWide, 2, &theChar));
  EXPECT_EQ(0xFFFFFFFFu, theChar);
  EXPECT_EQ(1u, qvUnicode_ReadWideChar(L"\0", 1, &theChar));
  EXPECT_EQ(0u, theChar);
}

TEST(qvUnicodeWide, WritingStoresTheUnitWhenThereIsRoom) {
  wchar_t theWide[2] = {L'#', L'#'};
  EXPECT_EQ(1u, qvUnicode_WriteWideChar(theWide, 0, 0x1F600));
  EXPECT_EQ(L'#', theWide[0]);
  EXPECT_EQ(1u, qvUnicode_WriteWideChar(theWide, 1, 0x1F600));
  EXPECT_EQ(static_cast<wchar_t>(0x1F600), theWide[0]);
  EXPECT_EQ(L'#', theWide[1]);
  EXPECT_EQ(1u, qvUnicode_WriteWideChar(nullptr, 0, 'a'));
}

TEST(qvUnicodeUTF16, OneUnitBelow0x10000AndTwoUpTo0x10FFFF) {
  const struct {
    uint32 mChar;
    size_t mLength;
    uint16 mUnits[2];
  } kCases[] = {
      {0x0, 1, {0x0, 0xAAAA}},         {0x41, 1, {0x41, 0xAAAA}},       {0xD800, 1, {0xD800, 0xAAAA}},
      {0xFFFF, 1, {0xFFFF, 0xAAAA}},   {0x10000, 2, {0xD800, 0xDC00}},  {0x1F600, 2, {0xD83D, 0xDE00}},
      {0x10FC00, 2, {0xDBFF, 0xDC00}}, {0x10FFFF, 2, {0xDBFF, 0xDFFF}},
  };
  for (const auto& theCase : kCases) {
    uint16 theUnits[2] = {0xAAAA, 0xAAAA};
    EXPECT_EQ(theCase.mLength, qvUnicode_S_EncodeToUTF16(theCase.mChar, theUnits, 2)) << theCase.mChar;
    EXPECT_EQ(theCase.mUnits[0], theUnits[0]) << theCase.mChar;
    EXPECT_EQ(theCase.mUnits[1], theUnits[1]) << theCase.mChar;
  }
}

TEST(qvUnicodeUTF16, NothingAbove0x10FFFFCanBeEncoded) {
  uint16 theUnits[2] = {0xAAAA, 0xAAAA};
  EXPECT_EQ(kInvalid, qvUnicode_S_EncodeToUTF16(0x110000, theUnits, 2));
  EXPECT_EQ(kInvalid, qvUnicode_S_EncodeToUTF16(0xFFFFFFFF, theUnits, 2));
  EXPECT_EQ(0xAAAAu, theUnits[0]);
}

TEST(qvUnicodeUTF16, UnitsThatDoNotFitAreLeftOut) {
  uint16 theUnits[2] = {0xAAAA, 0xAAAA};
  EXPECT_EQ(2u, qvUnicode_S_EncodeToUTF16(0x1F600, theUnits, 0));
  EXPECT_EQ(0xAAAAu, theUnits[0]);
  EXPECT_EQ(2u, qvUnicode_S_EncodeToUTF16(0x1F600, theUnits, 1));
  EXPECT_EQ(0xD83Du, theUnits[0]);
  EXPECT_EQ(0xAAAAu, theUnits[1]);
}

TEST(qvUnicodeUTF16, DecodingTakesOneUnitOrAPair) {
  const struct {
    uint16 mUnits[2];
    size_t mInLength;
    size_t mTaken;
    uint32 mChar;
    const char* mWhy;
  } kCases[] = {
      {{0x41, 0x42}, 0, 0, kUntouched, "no input"},
      {{0x41, 0x42}, 2, 1, 0x41, "a single unit"},
      {{0xD7FF, 0xDC00}, 2, 1, 0xD7FF, "right below the surrogates"},
      {{0xE000, 0xDC00}, 2, 1, 0xE000, "right above the surrogates"},
      {{0xDC00, 0xDC00}, 2, 1, 0xDC00, "a low surrogate by itself is a single unit"},
      {{0xD800, 0xDC00}, 2, 2, 0x10000, "the first pair"},
      {{0xD83D, 0xDE00}, 2, 2, 0x1F600, "a smiling face"},
      {{0xDBFF, 0xDFFF}, 2, 2, 0x10FFFF, "the last pair"},
      {{0xD800, 0xDC00}, 1, kIncomplete, kUntouched, "a high surrogate is the last unit"},
      {{0xD800, 0x41}, 2, kInvalid, kUntouched, "no surrogate behind a high one"},
      {{0xD800, 0xDBFF}, 2, kInvalid, kUntouched, "a high one behind a high one"},
      {{0xDBFF, 0xE000}, 2, kInvalid, kUntouched, "right above the low ones behind a high one"},
  };
  for (const auto& theCase : kCases) {
    uint32 theChar = kUntouched;
    EXPECT_EQ(theCase.mTaken, qvUnicode_S_DecodeFromUTF16(theCase.mUnits, theCase.mInLength, &theChar))
        << theCase.mWhy;
    EXPECT_EQ(theCase.mChar, theChar) << theCase.mWhy;
  }
}
