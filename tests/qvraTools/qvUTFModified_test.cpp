#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qvraTools/qvUTF.h"
#include "support/Bytes.h"
#include "support/ChildProcess.h"

namespace {

const char kSmile[] = "\xF0\x9F\x98\x80";                  // U+1F600
const char kModifiedSmile[] = "\xED\xA0\xBD\xED\xB8\x80";  // D83D DE00
const char kLast[] = "\xF4\x8F\xBF\xBF";                   // U+10FFFF
const char kModifiedLast[] = "\xED\xAF\xBF\xED\xBF\xBF";   // DBFF DFFF
const char kFirst[] = "\xF0\x90\x80\x80";                  // U+10000
const char kModifiedFirst[] = "\xED\xA0\x80\xED\xB0\x80";  // D800 DC00

int LengthOf(const std::string& aBytes, int afLenient) {
  std::vector<char> theBytes = Exactly(aBytes);
  return qvUTF_ModifiedUTF8LengthOfUTF8(theBytes.data(), static_cast<int>(theBytes.size()), afLenient);
}

// The modified UTF-8 of the bytes, written into a buffer that it fills to the last byte.
std::string ToModified(const std::string& aBytes, size_t aResultLength) {
  std::vector<char> theBytes = Exactly(aBytes);
  std::vector<char> theOut(aResultLength + 1, '#');
  EXPECT_EQ(1, qvUTF_UTF8ToModifiedUTF8(theBytes.data(), static_cast<int>(theBytes.size()), theOut.data(),
                                        theOut.size()));
  EXPECT_EQ('\0', theOut[aResultLength]);
  return std::string(theOut.data(), aResultLength);
}

// Up to the terminator; for results without zero bytes.
std::string ToModified(const std::string& aBytes) {
  char theOut[100];
  std::vector<char> theBytes = Exactly(aBytes);
  EXPECT_EQ(1, qvUTF_UTF8ToModifiedUTF8(theBytes.data(), static_cast<int>(theBytes.size()), theOut,
                                        sizeof(theOut)));
  return theOut;
}

// Everything in front of the terminator that is written when there is room.
std::string FromModified(const std::string& aBytes, size_t aResultLength) {
  std::vector<char> theBytes = Exactly(aBytes);
  std::vector<char> theOut(aResultLength + 1, '#');
  EXPECT_EQ(1, qvUTF_ModifiedUTF8ToUTF8(theBytes.data(), static_cast<int>(theBytes.size()), theOut.data(),
                                        theOut.size()));
  EXPECT_EQ('\0', theOut[aResultLength]);
  return std::string(theOut.data(), aResultLength);
}

std::string FromModified(const std::string& aBytes) {
  char theOut[100];
  std::vector<char> theBytes = Exactly(aBytes);
  EXPECT_EQ(1, qvUTF_ModifiedUTF8ToUTF8(theBytes.data(), static_cast<int>(theBytes.size()), theOut,
                                        sizeof(theOut)));
  return theOut;
}

struct BadText {
  const char* mText;
  const char* mModified;
  const char* mWhy;
};

const BadText kBadTexts[] = {
    {"\x80", "?", "a stray continuation byte"},
    {"a\xBFz", "a?z", "a stray continuation byte in between"},
    {"\xC3", "?", "2 bytes cut off"},
    {"\xC3z", "?z", "2 bytes, the second one ASCII"},
    {"\xE2\x82", "??", "3 bytes cut off"},
    {"\xE2\x82z", "??z", "3 bytes, the third one ASCII"},
    {"\xE2z", "?z", "3 bytes, the second one ASCII"},
    {"\xF0\x9F\x98", "???", "4 bytes cut off"},
    {"\xF0\x9F\x98z", "???z", "4 bytes, the fourth one ASCII"},
    {"\xF0\x8F\xBF\xBF", "????", "an overlong form of 4 bytes"},
    {"\xF4\x90\x80\x80", "????", "above what a surrogate pair can carry"},
    {"\xF8\x88\x80\x80\x80", "?????", "a form of 5 bytes"},
    {"\xF9\x90\x80\x80", "????", "a lead of 5 bytes, whose lower bits would do for 4"},
    {"\xFD\xBF\xBF\xBF\xBF\xBF", "??????", "a form of 6 bytes"},
    {"\xFE\xFF", "??", "no leads at all"},
    {"\xC3\xC3\xA9", "?\xC3\xA9", "a lead where a continuation byte belongs"},
};

}  // namespace

TEST(qvUTFModifiedLength, CountsTheModifiedFormAndItsTerminator) {
  const struct {
    std::string mText;
    int mExpected;
    const char* mWhy;
  } kCases[] = {
      {"", 1, "the terminator"},
      {"abc", 4, "1 for ASCII"},
      {Bytes("\0"), 3, "2 for NUL"},
      {Bytes("a\0b"), 5, "2 for NUL in between"},
      {"\xC3\xA9", 3, "2 for 2 bytes"},
      {"\xE2\x82\xAC", 4, "3 for 3 bytes"},
      {"\xED\xA0\x80", 4, "3 for a surrogate"},
      {kSmile, 7, "6 for 4 bytes"},
      {kFirst, 7, "6 for the first of 4 bytes"},
      {kLast, 7, "6 for the last of a pair"},
      {"\xC0\x80", 3, "2 for an encoded NUL"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mExpected, LengthOf(theCase.mText, 0)) << theCase.mWhy;
    EXPECT_EQ(theCase.mExpected, LengthOf(theCase.mText, 1)) << theCase.mWhy;
  }
}

TEST(qvUTFModifiedLength, InvalidSequenceGivesMinusOne) {
  for (const BadText& theCase : kBadTexts) {
    EXPECT_EQ(-1, LengthOf(theCase.mText, 0)) << theCase.mWhy;
  }
}

TEST(qvUTFModifiedLength, LenientCountsOneForEachBadByte) {
  for (const BadText& theCase : kBadTexts) {
    int theExpected = static_cast<int>(std::string(theCase.mModified).size()) + 1;
    EXPECT_EQ(theExpected, LengthOf(theCase.mText, 1)) << theCase.mWhy;
  }
}

TEST(qvUTFModifiedLength, NegativeLengthIsAnEmptyText) {
  EXPECT_EQ(1, qvUTF_ModifiedUTF8LengthOfUTF8("abc", -1, 0));
  EXPECT_EQ(1, qvUTF_ModifiedUTF8LengthOfUTF8(nullptr, 0, 0));
}

TEST(qvUTFToModified, ASCIIAndShortSequencesAreCopied) {
  EXPECT_EQ("", ToModified(""));
  EXPECT_EQ("a\x01\x7F", ToModified("a\x01\x7F"));
  EXPECT_EQ("\xC2\x80\xDF\xBF", ToModified("\xC2\x80\xDF\xBF"));
  EXPECT_EQ("\xE0\xA0\x80\xE2\x82\xAC\xEF\xBF\xBF", ToModified("\xE0\xA0\x80\xE2\x82\xAC\xEF\xBF\xBF"));
}

TEST(qvUTFToModified, NulInTheRangeIsWrittenInTwoBytes) {
  EXPECT_EQ(
      "a\xC0\x80"
      "b",
      ToModified(Bytes("a\0b")));
  EXPECT_EQ("\xC0\x80\xC0\x80", ToModified(Bytes("\0\0")));
}

TEST(qvUTFToModified, FourByteSequenceBecomesItsSurrogates) {
  EXPECT_EQ(kModifiedSmile, ToModified(kSmile));
  EXPECT_EQ(kModifiedFirst, ToModified(kFirst));
  EXPECT_EQ(kModifiedLast, ToModified(kLast));
}

TEST(qvUTFToModified, EveryBadByteBecomesAQuestionMark) {
  for (const BadText& theCase : kBadTexts) {
    EXPECT_EQ(theCase.mModified, ToModified(theCase.mText)) << theCase.mWhy;
  }
}

TEST(qvUTFToModified, TerminatorHasToFitToo) {
  char theOut[8];
  EXPECT_EQ(1, qvUTF_UTF8ToModifiedUTF8("abc", 3, theOut, 4));
  EXPECT_EQ(0, qvUTF_UTF8ToModifiedUTF8("abc", 3, theOut, 3));
  EXPECT_EQ(0, qvUTF_UTF8ToModifiedUTF8("", 0, theOut, 0));
  EXPECT_EQ(1, qvUTF_UTF8ToModifiedUTF8("", 0, theOut, 1));
  EXPECT_EQ(1, qvUTF_UTF8ToModifiedUTF8(kSmile, 4, theOut, 7));
  EXPECT_EQ(0, qvUTF_UTF8ToModifiedUTF8(kSmile, 4, theOut, 6));
}

TEST(qvUTFToModified, NothingIsWrittenBehindAnOutputThatIsTooSmall) {
  char theOut[6] = {'#', '#', '#', '#', '#', '#'};
  EXPECT_EQ(0, qvUTF_UTF8ToModifiedUTF8(kSmile, 4, theOut, 4));
  EXPECT_EQ("##", std::string(theOut + 4, 2));
}

TEST(qvUTFToModified, LengthTellsTheSizeThatIsNeeded) {
  std::string theText = Bytes("a\0\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z");
  ASSERT_EQ(16, LengthOf(theText, 0));
  EXPECT_EQ("a\xC0\x80\xC3\xA9\xE2\x82\xAC\xED\xA0\xBD\xED\xB8\x80z", ToModified(theText, 15));
}

TEST(qvUTFToModified, NulThatIsEncodedAlreadyAsserts) {
  char theOut[8];
  EXPECT_QV_ASSERTION(qvUTF_UTF8ToModifiedUTF8("a\xC0\x80", 3, theOut, sizeof(theOut)),
                      "(theByte1 != 0xC0) || (theByte2 != 0x80)", "qvUTF");
}

TEST(qvUTFToModified, OtherOverlongFormsOfTwoAndThreeBytesAreCopied) {
  EXPECT_EQ("\xC0\x81\xC1\x80\xE0\x80\x80", ToModified("\xC0\x81\xC1\x80\xE0\x80\x80"));
}

TEST(qvUTFToModified, NegativeLengthIsAnEmptyText) {
  char theOut[4] = {'#', '#', '#', '#'};
  EXPECT_EQ(1, qvUTF_UTF8ToModifiedUTF8("abc", -1, theOut, sizeof(theOut)));
  EXPECT_EQ('\0', theOut[0]);
}

TEST(qvUTFFromModified, ASCIIAndShortSequencesAreCopied) {
  EXPECT_EQ("", FromModified(""));
  EXPECT_EQ("a\x01\x7F", FromModified("a\x01\x7F"));
  EXPECT_EQ("\xC2\x80\xDF\xBF\xE2\x82\xAC", FromModified("\xC2\x80\xDF\xBF\xE2\x82\xAC"));
  EXPECT_EQ("\xC0\x81", FromModified("\xC0\x81"));
}

TEST(qvUTFFromModified, PlainZeroBytesAreCopied) { EXPECT_EQ(Bytes("a\0b"), FromModified(Bytes("a\0b"), 3)); }

TEST(qvUTFFromModified, SurrogatesBecomeOneSequenceOf4Bytes) {
  EXPECT_EQ(kSmile, FromModified(kModifiedSmile));
  EXPECT_EQ(kFirst, FromModified(kModifiedFirst));
  EXPECT_EQ(kLast, FromModified(kModifiedLast));
}

TEST(qvUTFFromModified, SurrogateWithoutAPartnerIsCopied) {
  EXPECT_EQ("\xED\xA0\xBDz", FromModified("\xED\xA0\xBDz"));
  EXPECT_EQ("\xED\xB8\x80", FromModified("\xED\xB8\x80"));
  EXPECT_EQ(std::string("\xED\xA0\xBD") + kSmile, FromModified(std::string("\xED\xA0\xBD") + kModifiedSmile));
  EXPECT_EQ("\xED\xA0\xBD\xE2\x82\xAC", FromModified("\xED\xA0\xBD\xE2\x82\xAC"));
  EXPECT_EQ("\xED\xA0\xBD", FromModified("\xED\xA0\xBD\xF0\x9D\xB8\x80"));  // U+1DE00 is no DE00
}

TEST(qvUTFFromModified, PairThatIsCutOffIsAHighSurrogateAndStrayBytes) {
  EXPECT_EQ("\xED\xA0\xBD", FromModified("\xED\xA0\xBD\xED\xB8"));
}

TEST(qvUTFFromModified, LongLeadsAndStrayBytesAreDropped) {
  const struct {
    const char* mText;
    const char* mResult;
    const char* mWhy;
  } kCases[] = {
      {"a\x80\xBFz", "az", "stray continuation bytes"},
      {"a\xF0\x9F\x98\x80z", "az", "a sequence of 4 bytes"},
      {"a\xF8\x88\x80\x80\x80z", "az", "a sequence of 5 bytes"},
      {"a\xFF\xFEz", "az", "no leads at all"},
      {"a\xC3z", "az", "a lead of 2 bytes without the second"},
      {"a\xE2\x82z", "az", "a lead of 3 bytes without the third"},
      {"a\xE2\x82", "a", "the end inside a sequence"},
      {"a\xC3", "a", "the end behind a lead"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mResult, FromModified(theCase.mText)) << theCase.mWhy;
  }
}

TEST(qvUTFFromModified, ReadingGoesOnBehindAnEncodedNulWhenTheLengthIsGiven) {
  EXPECT_EQ(Bytes("a\0b\0"), FromModified("a\xC0\x80"
                                          "b\xC0\x80",
                                          4));
}

TEST(qvUTFFromModified, WithoutALengthTheEncodedNulEndsTheText) {
  char theOut[8] = {'#', '#', '#', '#', '#', '#', '#', '#'};
  EXPECT_EQ(1, qvUTF_ModifiedUTF8ToUTF8("ab\xC0\x80"
                                        "cd",
                                        -1, theOut, sizeof(theOut)));
  EXPECT_EQ(Bytes("ab\0#####"), std::string(theOut, sizeof(theOut)));
}

TEST(qvUTFFromModified, WithoutALengthTheEncodedNulIsTheTerminator) {
  char theOut[3];
  EXPECT_EQ(1, qvUTF_ModifiedUTF8ToUTF8("ab\xC0\x80", -1, theOut, 3));
  EXPECT_EQ(0, qvUTF_ModifiedUTF8ToUTF8("ab\xC0\x80", -1, theOut, 2));
}

TEST(qvUTFFromModified, WithoutALengthNothingBehindTheEncodedNulIsRead) {
  const struct {
    const char* mText;
    std::string mExpected;
    const char* mWhy;
  } kCases[] = {
      {"\xC0\x80", "", "the encoded NUL alone"},
      {"ab\xC0\x80", "ab", "ASCII in front of it"},
      {"\xED\xA0\xBD\xED\xB8\x80\xC0\x80", kSmile, "a pair in front of it"},
      {"\xC0\x81\xC0\x80", "\xC0\x81", "another overlong form in front of it"},
      {"\xE2\xC0\x80", "", "a lead without its continuation bytes in front of it"},
      {"\xC0\xC0\x80", "", "its own first byte in front of it"},
  };
  for (const auto& theCase : kCases) {
    std::vector<char> theBytes = Exactly(theCase.mText);
    char theOut[8];
    EXPECT_EQ(1, qvUTF_ModifiedUTF8ToUTF8(theBytes.data(), -1, theOut, sizeof(theOut))) << theCase.mWhy;
    EXPECT_EQ(theCase.mExpected, theOut) << theCase.mWhy;
  }
}

TEST(qvUTFFromModified, AnyOtherNegativeLengthIsAnEmptyText) {
  char theOut[4] = {'#', '#', '#', '#'};
  EXPECT_EQ(1, qvUTF_ModifiedUTF8ToUTF8("abc", -2, theOut, sizeof(theOut)));
  EXPECT_EQ('\0', theOut[0]);
}

TEST(qvUTFFromModified, WithoutALengthOrAnEncodedNulAsserts) {
  char theOut[8];
  EXPECT_QV_ASSERTION(qvUTF_ModifiedUTF8ToUTF8("abc", -1, theOut, sizeof(theOut)), "thefNullDetected == 1",
                      "qvUTF");
  EXPECT_QV_ASSERTION(qvUTF_ModifiedUTF8ToUTF8("", -1, theOut, sizeof(theOut)), "thefNullDetected == 1",
                      "qvUTF");
}

TEST(qvUTFFromModified, OutputThatIsTooSmallGivesZero) {
  char theOut[6] = {'#', '#', '#', '#', '#', '#'};
  EXPECT_EQ(0, qvUTF_ModifiedUTF8ToUTF8("abc", 3, theOut, 2));
  EXPECT_EQ(0, qvUTF_ModifiedUTF8ToUTF8(kModifiedSmile, 6, theOut, 3));
  EXPECT_EQ("###", std::string(theOut + 3, 3));
}

TEST(qvUTFFromModified, TerminatorIsWrittenOnlyWhenThereIsRoom) {
  char theOut[5] = {'#', '#', '#', '#', '#'};
  EXPECT_EQ(1, qvUTF_ModifiedUTF8ToUTF8("abc", 3, theOut, 3));
  EXPECT_EQ("abc##", std::string(theOut, 5));
  EXPECT_EQ(1, qvUTF_ModifiedUTF8ToUTF8("abc", 3, theOut, 4));
  EXPECT_EQ(Bytes("abc\0#"), std::string(theOut, 5));
}

TEST(qvUTFFromModified, ValidTextComesBack) {
  std::string theText = Bytes("a\0\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z");
  EXPECT_EQ(theText, FromModified(ToModified(theText), 12));
}
