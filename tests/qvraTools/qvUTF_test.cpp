#include "qvraTools/qvUTF.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <string>
#include <vector>

#include "qvraTools/qvUTF_p.h"
#include "support/Bytes.h"

namespace {

typedef char* (*Converter)(const char* anIn, size_t aLength);

// The terminated result of a conversion of just these bytes.
std::string Convert(Converter aConverter, const std::string& aBytes) {
  std::vector<char> theBytes = Exactly(aBytes);
  return TakeText(aConverter(theBytes.data(), theBytes.size()));
}

// The same with the length of a result that has zero bytes inside; checks its terminator.
std::string Convert(Converter aConverter, const std::string& aBytes, size_t aResultLength) {
  std::vector<char> theBytes = Exactly(aBytes);
  char* theResult = aConverter(theBytes.data(), theBytes.size());
  EXPECT_EQ('\0', theResult[aResultLength]);
  return TakeText(theResult, aResultLength);
}

std::string FromLatin1(const std::string& aBytes) { return Convert(qvUTF_ISO88591ToUTF8, aBytes); }
std::string ToLatin1(const std::string& aBytes) { return Convert(qvUTF_UTF8ToISO88591, aBytes); }
std::string FromUTF16BE(const std::string& aBytes) { return Convert(qvUTF_UTF16BEToUTF8, aBytes); }
std::string FromUTF16LE(const std::string& aBytes) { return Convert(qvUTF_UTF16LEToUTF8, aBytes); }

struct UTF16Result {
  int mResult;
  size_t mCount;
};

// Only counts when anOut is null.
UTF16Result Work(const std::string& aBytes, int afStrict, char* anOut = nullptr, size_t anOutMax = 0) {
  std::vector<char> theBytes = Exactly(aBytes);
  UTF16Result theResult = {0, 0};
  theResult.mResult =
      qvUTF_S_UTF16ToUTF8(theBytes.data(), theBytes.size(), 1, afStrict, anOut, anOutMax, &theResult.mCount);
  return theResult;
}

std::string PutChar(uint32 aChar) {
  char theBuffer[8];
  qvUTF_S_Output theOutput = {theBuffer, sizeof(theBuffer), 0};
  qvUTF_S_PutChar(&theOutput, aChar);
  return std::string(theBuffer, theOutput.mLength);
}

struct Validity {
  int mLength;
  std::string mText;
};

// What qvUTF_MakeValidUTF8 makes of just these bytes, all of them.
Validity MakeValid(const std::string& aBytes) {
  std::vector<char> theBytes = Exactly(aBytes);
  int theLength = qvUTF_MakeValidUTF8(theBytes.data(), static_cast<int>(theBytes.size()));
  return {theLength, std::string(theBytes.begin(), theBytes.end())};
}

}  // namespace

TEST(qvUTFFromLatin1, BytesBelow0x80AreCopied) {
  EXPECT_EQ("", FromLatin1(""));
  EXPECT_EQ("\x01 az\x7F", FromLatin1("\x01 az\x7F"));
}

TEST(qvUTFFromLatin1, BytesFrom0x80To0xBFGetALeadOf0xC2) {
  EXPECT_EQ("\xC2\x80", FromLatin1("\x80"));
  EXPECT_EQ("\xC2\xBF", FromLatin1("\xBF"));
}

TEST(qvUTFFromLatin1, BytesFrom0xC0GetALeadOf0xC3) {
  EXPECT_EQ("\xC3\x80", FromLatin1("\xC0"));
  EXPECT_EQ("\xC3\xA9", FromLatin1("\xE9"));
  EXPECT_EQ("\xC3\xBF", FromLatin1("\xFF"));
}

TEST(qvUTFFromLatin1, ZeroBytesAreCopied) {
  EXPECT_EQ(Bytes("a\0\xC3\xA9"), Convert(qvUTF_ISO88591ToUTF8, Bytes("a\0\xE9"), 4));
}

TEST(qvUTFFromLatin1, NullTextOfLengthZeroGivesTheEmptyText) {
  EXPECT_EQ("", TakeText(qvUTF_ISO88591ToUTF8(nullptr, 0)));
}

TEST(qvUTFFromLatin1, EveryByteComesBack) {
  std::string theBytes;
  for (int theByte = 1; theByte < 256; ++theByte) {
    theBytes += static_cast<char>(theByte);
  }
  EXPECT_EQ(theBytes, ToLatin1(FromLatin1(theBytes)));
}

TEST(qvUTFToLatin1, ASCIIAndStrayContinuationBytesAreCopied) {
  EXPECT_EQ("", ToLatin1(""));
  EXPECT_EQ("az\x7F", ToLatin1("az\x7F"));
  EXPECT_EQ(
      "a\x80\xBF"
      "b",
      ToLatin1("a\x80\xBF"
               "b"));
}

TEST(qvUTFToLatin1, TwoByteSequenceIsCutTo8Bits) {
  EXPECT_EQ("!", ToLatin1("\xC0\xA1"));  // overlong, but that does not matter
  EXPECT_EQ("\x80", ToLatin1("\xC2\x80"));
  EXPECT_EQ("\xE9", ToLatin1("\xC3\xA9"));
  EXPECT_EQ("\xFF", ToLatin1("\xC3\xBF"));
  EXPECT_EQ("\x41", ToLatin1("\xC5\x81"));  // U+0141
  EXPECT_EQ("\xFF", ToLatin1("\xDF\xBF"));  // U+07FF
}

TEST(qvUTFToLatin1, ByteBehindATwoByteLeadIsTakenWhateverItIs) {
  EXPECT_EQ("\xC1", ToLatin1("\xC3\x41"));  // the 6 low bits of 'A'
}

TEST(qvUTFToLatin1, TwoByteLeadAtTheEndIsFollowedByZero) {
  EXPECT_EQ("a\xC0", ToLatin1("a\xC3"));
  EXPECT_EQ("a\x80", ToLatin1("a\xC2"));
}

TEST(qvUTFToLatin1, ZeroBytesAreCopied) {
  EXPECT_EQ(Bytes("a\0b"), Convert(qvUTF_UTF8ToISO88591, Bytes("a\0b"), 3));
}

TEST(qvUTFToLatin1, SkipStopsAtTheEndOfTheText) {
  EXPECT_EQ("a?", ToLatin1("a\xE2"));
  EXPECT_EQ("a?", ToLatin1("a\xE2\x82"));
  EXPECT_EQ("a?", ToLatin1("a\xE2\x82\xAC"));
  EXPECT_EQ("a?", ToLatin1("a\xF0"));
  EXPECT_EQ("a?", ToLatin1("a\xF0\x9F\x98\x80"));
}

TEST(qvUTFToLatin1, NullTextOfLengthZeroGivesTheEmptyText) {
  EXPECT_EQ("", TakeText(qvUTF_UTF8ToISO88591(nullptr, 0)));
}

TEST(qvUTFKept, SkipsOneByteMoreThanTheSequenceHas) {
  EXPECT_EQ("?23", ToLatin1("\xE2\x82\xAC"
                            "123"));  // 3 bytes and the '1'
  EXPECT_EQ("?23", ToLatin1("\xF0\x9F\x98\x80"
                            "123"));  // 4 bytes and the '1'
  EXPECT_EQ("?3", ToLatin1("\xF8"
                           "ABCD3"));  // every lead from 0xF0 on skips 4
  EXPECT_EQ("?3", ToLatin1("\xFF"
                           "ABCD3"));
  EXPECT_EQ("?3", ToLatin1("\xE0"
                           "ABC3"));  // the first lead that skips 3
  EXPECT_EQ("?3", ToLatin1("\xEF"
                           "ABC3"));  // the last lead that skips 3
  EXPECT_EQ(
      "\xE9"
      "123",
      ToLatin1("\xC3\xA9"
               "123"));  // 2 bytes are just 2 bytes
}

TEST(qvUTFFrom16, BigEndianUnitsBecomeUTF8) {
  EXPECT_EQ("", FromUTF16BE(""));
  EXPECT_EQ("A", FromUTF16BE(Bytes("\0A")));
  EXPECT_EQ("\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xE2\x82\xAC\xEF\xBF\xBF",
            FromUTF16BE(Bytes("\0\x7F\0\x80\x07\xFF\x08\0\x20\xAC\xFF\xFF")));
}

TEST(qvUTFFrom16, LittleEndianUnitsBecomeUTF8) {
  EXPECT_EQ("", FromUTF16LE(""));
  EXPECT_EQ("A", FromUTF16LE(Bytes("A\0")));
  EXPECT_EQ("\xE2\x82\xAC\xC3\xA9", FromUTF16LE(Bytes("\xAC\x20\xE9\0")));
}

TEST(qvUTFFrom16, PairBecomesOneCharacterOf4Bytes) {
  EXPECT_EQ("\xF0\x9F\x98\x80", FromUTF16BE(Bytes("\xD8\x3D\xDE\x00")));
  EXPECT_EQ("\xF0\x9F\x98\x80", FromUTF16LE(Bytes("\x3D\xD8\x00\xDE")));
  EXPECT_EQ("\xF0\x90\x80\x80", FromUTF16BE(Bytes("\xD8\x00\xDC\x00")));
  EXPECT_EQ("\xF4\x8F\xBF\xBF", FromUTF16BE(Bytes("\xDB\xFF\xDF\xFF")));
}

TEST(qvUTFFrom16, OddLastByteIsIgnored) {
  EXPECT_EQ("A", FromUTF16BE(Bytes("\0A\0")));
  EXPECT_EQ("A", FromUTF16LE(Bytes("A\0B")));
  EXPECT_EQ("", FromUTF16BE("A"));
}

TEST(qvUTFFrom16, HighSurrogateAsLastUnitEndsTheConversion) {
  EXPECT_EQ("A", FromUTF16BE(Bytes("\0A\xD8\x3D")));
  EXPECT_EQ("A", FromUTF16BE(Bytes("\0A\xD8\x3D\xDE")));  // one byte is no unit
}

TEST(qvUTFFrom16, SurrogateWithoutAPartnerIsKept) {
  EXPECT_EQ(
      "\xED\xA0\xBD"
      "A",
      FromUTF16BE(Bytes("\xD8\x3D\0A")));
  EXPECT_EQ(
      "\xED\xB8\x80"
      "A",
      FromUTF16BE(Bytes("\xDE\x00\0A")));
  EXPECT_EQ("\xED\xA0\xBD\xF0\x9F\x98\x80", FromUTF16BE(Bytes("\xD8\x3D\xD8\x3D\xDE\x00")));
}

TEST(qvUTFFrom16, ZeroUnitsBecomeZeroBytes) {
  EXPECT_EQ(Bytes("A\0B"), Convert(qvUTF_UTF16BEToUTF8, Bytes("\0A\0\0\0B"), 3));
}

TEST(qvUTFFrom16, ByteOrderMarkIsACharacterLikeAnyOther) {
  EXPECT_EQ(
      "\xEF\xBB\xBF"
      "A",
      FromUTF16BE(Bytes("\xFE\xFF\0A")));
}

TEST(qvUTFFrom16, NullTextOfLengthZeroGivesTheEmptyText) {
  EXPECT_EQ("", TakeText(qvUTF_UTF16BEToUTF8(nullptr, 0)));
  EXPECT_EQ("", TakeText(qvUTF_UTF16LEToUTF8(nullptr, 0)));
  EXPECT_EQ("", TakeText(qvUTF_UTF16BOMToUTF8(nullptr, 0)));
}

TEST(qvUTFKept, ReadingGoesOnInsideTheLowSurrogate) {
  // D8 3D DE 00 is the pair; the next unit is 00 12 (its last byte and the next one), then 34 56.
  EXPECT_EQ("\xF0\x9F\x98\x80\x12\xE3\x91\x96", FromUTF16BE(Bytes("\xD8\x3D\xDE\x00\x12\x34\x56")));
  // The same in the other order: DE 41 read low byte first is 41DE.
  EXPECT_EQ("\xF0\x9F\x98\x80\xE4\x87\x9E", FromUTF16LE(Bytes("\x3D\xD8\x00\xDE\x41")));
  // Behind a unit that is no pair reading goes on behind it.
  EXPECT_EQ("AB", FromUTF16BE(Bytes("\0A\0B")));
  // One byte of the pair is left and is no unit.
  EXPECT_EQ("\xF0\x9F\x98\x80", FromUTF16BE(Bytes("\xD8\x3D\xDE\x00")));
}

TEST(qvUTFBOM, FirstByteTellsTheOrder) {
  EXPECT_EQ("A", Convert(qvUTF_UTF16BOMToUTF8, Bytes("\xFE\xFF\x00\x41")));
  EXPECT_EQ("A", Convert(qvUTF_UTF16BOMToUTF8, Bytes("\xFF\xFE\x41\x00")));
}

TEST(qvUTFBOM, AnyFirstByteOtherThan0xFEIsLittleEndian) {
  EXPECT_EQ("A", Convert(qvUTF_UTF16BOMToUTF8, Bytes("xyA\0")));
  EXPECT_EQ("A", Convert(qvUTF_UTF16BOMToUTF8, Bytes("\xFEx\0A")));  // the second byte is not checked
}

TEST(qvUTFBOM, TextShorterThanTheMarkGivesTheEmptyText) {
  EXPECT_EQ("", Convert(qvUTF_UTF16BOMToUTF8, "\xFE"));
  EXPECT_EQ("", Convert(qvUTF_UTF16BOMToUTF8, ""));
}

TEST(qvUTFBOM, MarkAloneGivesTheEmptyText) {
  EXPECT_EQ("", Convert(qvUTF_UTF16BOMToUTF8, "\xFE\xFF"));
  EXPECT_EQ("", Convert(qvUTF_UTF16BOMToUTF8, Bytes("\xFF\xFE\x41")));
}

TEST(qvUTFBlock, HasTheSizeOfTheResultAndItsTerminator) {
  const struct {
    Converter mConverter;
    std::string mBytes;
    size_t mResultLength;
    const char* mWhy;
  } kCases[] = {
      {qvUTF_ISO88591ToUTF8, std::string(1000, 'a'), 1000, "ASCII does not grow"},
      {qvUTF_ISO88591ToUTF8, std::string(1000, '\xE9'), 2000, "every byte becomes two"},
      {qvUTF_UTF8ToISO88591, std::string(1000, '\xC3'), 500, "two bytes become one"},
      {qvUTF_UTF8ToISO88591, std::string(1000, '\xFF'), 200, "five bytes become one"},
      {qvUTF_UTF16BEToUTF8, std::string(1000, '\x20'), 1500, "two bytes become three"},
      {qvUTF_UTF16LEToUTF8, std::string(1000, '\x01'), 1000, "two bytes become two"},
      {qvUTF_UTF16BOMToUTF8, std::string(1002, '\x20'), 1500, "the mark takes no room"},
      {qvUTF_ISO88591ToUTF8, std::string(256, '\xE9'), 512, "the longest result of a short text"},
      {qvUTF_UTF8ToISO88591, std::string(100, '\xC3'), 50, "a short text that shrinks"},
      {qvUTF_UTF16LEToUTF8, std::string(338, '\x20'), 507, "the longest result of a short text"},
      {qvUTF_UTF16LEToUTF8, std::string(100, '\x01'), 100, "a short text needs no more room either"},
  };
  for (const auto& theCase : kCases) {
    char* theResult = theCase.mConverter(theCase.mBytes.data(), theCase.mBytes.size());
    EXPECT_EQ('\0', theResult[theCase.mResultLength]) << theCase.mWhy;
    EXPECT_LE(theCase.mResultLength + 1, malloc_usable_size(theResult)) << theCase.mWhy;
    EXPECT_GT(theCase.mResultLength + 1 + 32, malloc_usable_size(theResult))
        << theCase.mWhy << ", but for what the allocator rounds up";
    TakeText(theResult);
  }
}

TEST(qvUTFWorker, LeadMarksAreThoseOfSequencesOf0To6Bytes) {
  const uint8 kExpected[7] = {0x00, 0x00, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC};
  ASSERT_EQ(sizeof(kExpected), sizeof(kUTF16FirstByteMark));
  for (size_t i = 0; i < 7; ++i) {
    EXPECT_EQ(kExpected[i], kUTF16FirstByteMark[i]) << i;
  }
}

TEST(qvUTFWorker, ResultsHaveTheirValues) {
  EXPECT_EQ(1, kqvUTF16Result_Done);
  EXPECT_EQ(2, kqvUTF16Result_EndsInPair);
  EXPECT_EQ(3, kqvUTF16Result_LoneSurrogate);
  EXPECT_EQ(4, kqvUTF16Result_TooSmall);
}

TEST(qvUTFWorker, CountIncludesTheTerminator) {
  UTF16Result theResult = Work(Bytes("\0A\x20\xAC"), 0);
  EXPECT_EQ(1, theResult.mResult);
  EXPECT_EQ(5u, theResult.mCount);
  EXPECT_EQ(1u, Work("", 0).mCount);
}

TEST(qvUTFWorker, HighSurrogateAtTheEndIsItsOwnResult) {
  for (int thefStrict : {0, 1}) {
    UTF16Result theResult = Work(Bytes("\0A\xD8\x3D"), thefStrict);
    EXPECT_EQ(2, theResult.mResult);
    EXPECT_EQ(2u, theResult.mCount);
  }
}

TEST(qvUTFWorker, StrictModeStopsAtALoneLowSurrogate) {
  UTF16Result theResult = Work(Bytes("\0A\xDE\x00\0B"), 1);
  EXPECT_EQ(3, theResult.mResult);
  EXPECT_EQ(2u, theResult.mCount);
  EXPECT_EQ(3, Work(Bytes("\xDC\x00"), 1).mResult);
  EXPECT_EQ(3, Work(Bytes("\xDF\xFF"), 1).mResult);
  EXPECT_EQ(1, Work(Bytes("\xE0\x00"), 1).mResult);
  EXPECT_EQ(1, Work(Bytes("\xDE\x00"), 0).mResult);
}

TEST(qvUTFWorker, StrictModeStopsAtAHighSurrogateWithoutALowOne) {
  UTF16Result theResult = Work(Bytes("\0A\xD8\x3D\0B"), 1);
  EXPECT_EQ(3, theResult.mResult);
  EXPECT_EQ(2u, theResult.mCount);
  EXPECT_EQ(1, Work(Bytes("\xD8\x3D\0B"), 0).mResult);
}

TEST(qvUTFWorker, StrictModeAcceptsAPair) {
  UTF16Result theResult = Work(Bytes("\xD8\x3D\xDE\x00"), 1);
  EXPECT_EQ(1, theResult.mResult);
  EXPECT_EQ(5u, theResult.mCount);
}

TEST(qvUTFWorker, OutputThatDoesNotHoldTheTerminatorIsTooSmall) {
  char theBuffer[4] = {'#', '#', '#', '#'};
  UTF16Result theResult = Work(Bytes("\x20\xAC"), 0, theBuffer, 3);
  EXPECT_EQ(4, theResult.mResult);
  EXPECT_EQ(4u, theResult.mCount);
  EXPECT_EQ('#', theBuffer[3]);
  EXPECT_EQ(1, Work(Bytes("\x20\xAC"), 0, theBuffer, 4).mResult);
  EXPECT_STREQ("\xE2\x82\xAC", theBuffer);
}

TEST(qvUTFWorker, CharactersAreWrittenInOneToFourBytes) {
  EXPECT_EQ("\x7F", PutChar(0x7F));
  EXPECT_EQ("\xC2\x80", PutChar(0x80));
  EXPECT_EQ("\xDF\xBF", PutChar(0x7FF));
  EXPECT_EQ("\xE0\xA0\x80", PutChar(0x800));
  EXPECT_EQ("\xEF\xBF\xBF", PutChar(0xFFFF));
  EXPECT_EQ("\xF0\x90\x80\x80", PutChar(0x10000));
  EXPECT_EQ("\xF4\x8F\xBF\xBF", PutChar(0x10FFFF));
}

TEST(qvUTFWorker, CharacterAbove0x10FFFFBecomesTheReplacementCharacter) {
  EXPECT_EQ("\xEF\xBF\xBD", PutChar(0x110000));
  EXPECT_EQ("\xEF\xBF\xBD", PutChar(0xFFFFFFFF));
}

TEST(qvUTFMakeValid, CutsInFrontOfAnIncompleteSequence) {
  Validity theResult = MakeValid("ab\xC3");
  EXPECT_EQ(2, theResult.mLength);
  EXPECT_EQ(Bytes("ab\0"), theResult.mText);
}

TEST(qvUTFMakeValid, CutsInFrontOfTheFirstInvalidSequence) {
  const struct {
    const char* mText;
    int mLength;
    const char* mWhy;
  } kCases[] = {
      {"\x80", 0, "a stray continuation byte at the start"},
      {"ab\x80xy", 2, "a stray continuation byte"},
      {"\xC3\xA9\xFFz", 2, "0xFF"},
      {"a\xE2\x82x", 1, "a bad continuation byte"},
      {"a\xE2\x82", 1, "the end inside a sequence"},
      {"a\xC0\x80", 1, "an overlong form"},
      {"a\xFE\x80\x80\x80\x80\x80\x80", 1, "a lead of 7 bytes"},
  };
  for (const auto& theCase : kCases) {
    Validity theResult = MakeValid(theCase.mText);
    EXPECT_EQ(theCase.mLength, theResult.mLength) << theCase.mWhy;
    std::string theExpected = theCase.mText;
    theExpected[static_cast<size_t>(theCase.mLength)] = '\0';
    EXPECT_EQ(theExpected, theResult.mText) << theCase.mWhy << ": one byte is written, no other touched";
  }
}

TEST(qvUTFMakeValid, ValidTextIsLeftAlone) {
  for (const std::string& theText :
       {Bytes("abc"), Bytes("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80"), Bytes("\xFD\xBF\xBF\xBF\xBF\xBF"),
        Bytes("\xED\xA0\x80"), Bytes("a\0b"), Bytes("")}) {
    Validity theResult = MakeValid(theText);
    EXPECT_EQ(static_cast<int>(theText.size()), theResult.mLength);
    EXPECT_EQ(theText, theResult.mText);
  }
}

TEST(qvUTFMakeValid, LooksAtTheGivenLengthOnly) {
  char theText[] = "ab\x80";
  EXPECT_EQ(2, qvUTF_MakeValidUTF8(theText, 2));
  EXPECT_STREQ("ab\x80", theText);
}

TEST(qvUTFMakeValid, NegativeLengthIsAnEmptyText) {
  char theText[] = "\x80";
  EXPECT_EQ(0, qvUTF_MakeValidUTF8(theText, -1));
  EXPECT_STREQ("\x80", theText);
}
