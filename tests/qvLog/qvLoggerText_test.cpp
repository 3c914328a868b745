// The texts of a message: qvLog/qvLoggerText.cpp.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string.h>

#include "qvLog/qvMainLogger_p.h"
#include "support/RecordingLogger.h"

namespace {

using testing::ElementsAre;
using testing::MatchesRegex;

// One logger and one message in progress at a time. Every test logs through the public functions.
class qvLoggerText : public testing::Test {
 protected:
  void Begin() {
    mData = qvLog_Begin(QVLOGLEVEL_ERROR, 0);
    ASSERT_NE(nullptr, mData);
    mLogger.mPieces.clear();
    mLogger.mText.clear();
  }
  std::string End() {
    qvLog_End(mData);
    return mLogger.mMessages.back();
  }
  qvLogDataEx* Record() { return static_cast<qvLogDataEx*>(mData); }

  RecordingLogger mLogger{2};
  qvLogData* mData = nullptr;
};

using qvLoggerKept = qvLoggerText;

const char kPrefix[] = "E [0-9:]{12}\\|[0-9a-f]{8}\\|DEFAULT    ";

std::string Repeat(char aChar, size_t aCount) { return std::string(aCount, aChar); }

}  // namespace

TEST_F(qvLoggerText, FormattedTextReachesTheSinkInOnePiece) {
  Begin();
  qvLog_Append_F("%s has %d tuners\n", "box", 2);
  EXPECT_EQ("box has 2 tuners\n", End());
  EXPECT_EQ(1u, mLogger.mPieces.size());
}

TEST_F(qvLoggerText, AppendedTextsFollowEachOther) {
  Begin();
  qvLog_Append_F("%s", "one ");
  qvLog_Append_F("%s", "two");
  EXPECT_EQ("one two", End());
  EXPECT_THAT(mLogger.mPieces, ElementsAre("one ", "two"));
}

TEST_F(qvLoggerText, TheRecordTellsWhatWasFormatted) {
  Begin();
  const char* theFormat = "%d.";
  qvLog_Append_F(theFormat, 12);
  EXPECT_EQ(3u, Record()->mFormattedLen);
  EXPECT_STREQ("12.", Record()->mFormatted);
  EXPECT_EQ(theFormat, Record()->mFormattedSource);
  End();
}

TEST_F(qvLoggerText, AnEmptyFormatWritesNothing) {
  const char* theEmpty = "";
  Begin();
  qvLog_Append_F(theEmpty, 1);
  qvLog_Append_FML(theEmpty, 1);
  EXPECT_TRUE(mLogger.mPieces.empty());
  End();
}

TEST_F(qvLoggerText, WithoutABufferNothingIsWritten) {
  Begin();
  int32 theSize = Record()->mSizeofFormatted;
  Record()->mSizeofFormatted = 0;
  qvLog_Append_F("%d", 1);
  qvLog_Append_FML("%d\n", 1);
  Record()->mSizeofFormatted = theSize;
  EXPECT_TRUE(mLogger.mPieces.empty());
  End();
}

TEST_F(qvLoggerText, BeforeTheBufferIsInitialisedNothingIsWritten) {
  Begin();
  _gfqvLog_gDataInitialized = 0;
  qvLog_Append_F("%d", 1);
  qvLog_Append_FML("%d\n", 1);
  _gfqvLog_gDataInitialized = 1;
  EXPECT_TRUE(mLogger.mPieces.empty());
  End();
}

namespace {

// Notes the formats that reach its Append_VF.
class FormatNotingLogger : public qvLogger {
 public:
  FormatNotingLogger() : qvLogger("Formats", false) {}
  void Append_VF(qvLogDataEx*, const char* aFormat, va_list) override { mFormats.push_back(aFormat); }
  std::vector<std::string> mFormats;
};

}  // namespace

TEST(qvLoggerParts, EveryFormattedPartGoesThroughTheLoggersOwnAppendVF) {
  FormatNotingLogger theLogger;
  qvLogDataEx theRecord = {};
  theRecord.mModule = 170;
  theLogger.Append_F(&theRecord, "%d", 1);
  theLogger.Append_ThreadNameOrId(&theRecord);
  theLogger.Append_ProcessNameOrId(&theRecord);
  theLogger.Append_LogModule(&theRecord);
  theLogger.Append_B(&theRecord, "17 bytes of text.", 17);
  EXPECT_THAT(theLogger.mFormats,
              ElementsAre("%d", "%s", "%s", "%010u", "Buffer pointer=%p length=%d\n", "%s\n", "%s\n"));
}

TEST_F(qvLoggerText, TheArgumentsCanBeUsedByEveryLogger) {
  RecordingLogger theSecond(2);
  RecordingLogger theThird(2);
  Begin();
  qvLog_Append_F("%d %s %.1f", 7, "seven", 7.0);
  EXPECT_EQ("7 seven 7.0", End());
  EXPECT_EQ("7 seven 7.0", theSecond.mMessages.back());
  EXPECT_EQ("7 seven 7.0", theThird.mMessages.back());
}

TEST_F(qvLoggerText, ATextIsFormattedOnceForAllLoggers) {
  RecordingLogger theSecond(2);
  Begin();
  char theText[] = "before";
  // The newest logger comes first; by the time the other one is called, the argument has changed.
  theSecond.mOnAppend = [&] { theText[0] = 'B'; };
  qvLog_Append_F("%s", theText);
  EXPECT_EQ("before", End());
  EXPECT_EQ("before", theSecond.mMessages.back());
}

TEST_F(qvLoggerText, TheSameFormatWithOtherArgumentsIsFormattedAgain) {
  RecordingLogger theSecond(2);
  Begin();
  for (int i = 0; i < 3; ++i) {
    qvLog_Append_F("%d ", i);
  }
  EXPECT_EQ("0 1 2 ", End());
  EXPECT_EQ("0 1 2 ", theSecond.mMessages.back());
}

TEST_F(qvLoggerText, ALoggerThatFormatsInItsSinkDoesNotSpoilTheTextOfTheNext) {
  RecordingLogger theSecond(2);
  Begin();
  bool theNested = false;
  theSecond.mOnAppend = [&] {
    if (!theNested) {
      theNested = true;
      theSecond.Append_F(Record(), "%s", "(more)");
    }
  };
  qvLog_Append_F("%s", "text");
  EXPECT_EQ("text", End());
  EXPECT_EQ("text(more)", theSecond.mMessages.back());
}

TEST_F(qvLoggerText, ALoggerThatPutsATextOfItsOwnIntoTheBufferDoesNotSpoilTheTextOfTheNext) {
  RecordingLogger theSecond(2);
  Begin();
  theSecond.mOnAppend = [&] {
    strcpy(Record()->mFormatted, "mine");
    Record()->mFormattedSource = "mine";
  };
  qvLog_Append_F("%s", "text");
  EXPECT_EQ("text", End());
}

namespace {

// Hands the same arguments to all loggers, then, with another text behind them, to one.
void AppendToAllThenToOne(RecordingLogger* aLogger, qvLogDataEx* aRecord, char* aText, const char* aFormat,
                          ...) {
  va_list theArgs;
  va_start(theArgs, aFormat);
  qvLog_Append_VF(aFormat, theArgs);
  aText[0] = 'S';
  aLogger->Append_VF(aRecord, aFormat, theArgs);
  va_end(theArgs);
}

}  // namespace

TEST_F(qvLoggerText, WhatIsAppendedToOneLoggerAfterwardsIsFormattedAgain) {
  char theText[] = "same ";
  Begin();
  AppendToAllThenToOne(&mLogger, Record(), theText, "%s", theText);
  EXPECT_EQ("same Same ", End());
}

TEST_F(qvLoggerText, ATextOneByteBelowTheBufferIsWhole) {
  std::string theText = Repeat('a', 1023);
  Begin();
  ASSERT_EQ(1024, Record()->mSizeofFormatted);
  qvLog_Append_F("%s", theText.c_str());
  EXPECT_EQ(1023u, Record()->mFormattedLen);
  EXPECT_EQ(theText, End());
  EXPECT_EQ('\0', mLogger.mByteBehind);
}

TEST_F(qvLoggerText, ATruncatedTextHasAReadableZeroByteBehindIt) {
  Begin();
  qvLog_Append_F("%s\n", Repeat('a', 2000).c_str());
  EXPECT_EQ('\0', mLogger.mByteBehind);
  End();
}

TEST_F(qvLoggerText, ATextMuchLongerThanTheBufferIsCutToIt) {
  Begin();
  qvLog_Append_F("%s\n", Repeat('a', 100000).c_str());
  EXPECT_EQ(Repeat('a', 1023) + "\n", End());
}

TEST_F(qvLoggerKept, ATruncatedMessageEndsWithAZeroByteOrALineEnd) {
  struct {
    size_t mLength;
    const char* mFormat;
    std::string mExpected;
    const char* mWhy;
  } kCases[] = {
      {1023, "%s", Repeat('a', 1023), "fits exactly"},
      {1024, "%s", Repeat('a', 1023) + '\0', "one byte too long: the terminator is handed on"},
      {1022, "%s\n", Repeat('a', 1022) + "\n", "fits with its line end"},
      {1023, "%s\n", Repeat('a', 1023) + "\n", "only the line end is too long: the last byte becomes one"},
      {1500, "%s\n", Repeat('a', 1023) + "\n", "cut, with a line end in the last byte"},
      {1500, "%s\n ", Repeat('a', 1023) + '\0', "the line end is not the format's last character"},
  };
  for (const auto& theCase : kCases) {
    Begin();
    qvLog_Append_F(theCase.mFormat, Repeat('a', theCase.mLength).c_str());
    EXPECT_EQ(theCase.mExpected, End()) << theCase.mWhy;
  }
}

TEST_F(qvLoggerKept, AnEmptyOrFailedExpansionPrintsTheFormatItself) {
  const char* theBadFormat = "100%!\n";
  Begin();
  qvLog_Append_F("%s", "");
  qvLog_Append_F("[%s]", "");
  qvLog_Append_F(theBadFormat, 1);
  EXPECT_EQ("%s[]100%!\n", End());
}

TEST_F(qvLoggerText, AFormatThatIsPrintedItselfIsTerminated) {
  Begin();
  qvLog_Append_F("%s", "a longer text that was there before");
  qvLog_Append_F("%s", "");
  EXPECT_EQ('\0', mLogger.mByteBehind);
  EXPECT_STREQ("%s", Record()->mFormatted);
  End();
}

TEST_F(qvLoggerKept, AFailedFormatLongerThanTheBufferIsCutBeforeTheTerminator) {
  std::string theFormat = "%!" + Repeat('b', 1021);
  Begin();
  qvLog_Append_F(theFormat.c_str(), 1);
  EXPECT_EQ(theFormat, End()) << "1023 bytes fit";
  theFormat += "\n";
  Begin();
  qvLog_Append_F(theFormat.c_str(), 1);
  EXPECT_EQ("%!" + Repeat('b', 1021), End()) << "the 1024th does not, not even as a line end";
}

TEST_F(qvLoggerKept, OfABufferOfOneByteTheTerminatorIsHandedOnWhateverTheFormatEndsWith) {
  struct {
    int32 mCapacity;
    std::string mExpected;
  } kCases[] = {{1, std::string(1, '\0')}, {2, "x\n"}, {3, "x\n"}, {4, "x\n"}};
  Begin();
  int32 theCapacity = Record()->mSizeofFormatted;
  for (const auto& theCase : kCases) {
    Record()->mSizeofFormatted = theCase.mCapacity;
    mLogger.mPieces.clear();
    qvLog_Append_F("%s\n", "x");
    EXPECT_THAT(mLogger.mPieces, ElementsAre(theCase.mExpected)) << theCase.mCapacity;
  }
  Record()->mSizeofFormatted = theCapacity;
  End();
}

TEST_F(qvLoggerText, MultiLineTextGetsAPrefixBeforeEveryFurtherLine) {
  Begin();
  qvLog_Append_FML("%s\n%s\n%s\n", "a", "b", "c");
  EXPECT_THAT(End(), MatchesRegex("a\n" + std::string(kPrefix) + "b\n" + kPrefix + "c\n"));
}

TEST_F(qvLoggerKept, AMultiLineTextLosesWhatFollowsTheLastLineEnd) {
  Begin();
  qvLog_Append_FML("a\nb\n%s", "c");
  EXPECT_THAT(End(), MatchesRegex("a\n" + std::string(kPrefix) + "b\n"));
  Begin();
  qvLog_Append_FML("a\nb\n%s\n", "c");
  EXPECT_THAT(End(), MatchesRegex("a\n" + std::string(kPrefix) + "b\n" + kPrefix + "c\n"))
      << "with a line end";
  Begin();
  qvLog_Append_FML("a\n%s", "b");
  EXPECT_EQ("a\n", End()) << "no prefix before a line that is not complete";
  Begin();
  qvLog_Append_FML("%s", "a");
  EXPECT_EQ("", End()) << "no line end at all";
}

TEST_F(qvLoggerText, EachCompleteLineIsOnePieceWithItsLineEnd) {
  Begin();
  qvLog_Append_FML("%s\n\n", "first");
  EXPECT_EQ("first\n", mLogger.mPieces.front());
  EXPECT_EQ("\n", mLogger.mPieces.back());
  End();
}

TEST_F(qvLoggerText, MultiLineTextMayBeLongerThanTheBuffer) {
  std::string theText = Repeat('x', 5000);
  Begin();
  qvLog_Append_FML("%s\n", theText.c_str());
  EXPECT_EQ(theText + "\n", End());
}

TEST_F(qvLoggerText, AMultiLineTextThatCannotBeFormattedWritesNothing) {
  const char* theBadFormat = "a\n%!\n";
  Begin();
  qvLog_Append_FML(theBadFormat, 1);
  EXPECT_EQ("", End());
}

TEST_F(qvLoggerText, AZeroByteDoesNotEndAMultiLineText) {
  Begin();
  qvLog_Append_FML("a%cb\n", '\0');
  EXPECT_EQ(std::string("a\0b\n", 4), End());
}

TEST_F(qvLoggerText, ADumpOf17BytesHasAFullLineAndAPaddedOne) {
  uint8 theBytes[17];
  for (int i = 0; i < 17; ++i) {
    theBytes[i] = static_cast<uint8>(0x30 + i);
  }
  Begin();
  qvLog_Append_B(theBytes, sizeof(theBytes));
  std::string theText = End();
  EXPECT_EQ(
      "   30 31 32 33 34 35 36 37 38 39 3A 3B 3C 3D 3E 3F - 0123456789:;<=>?\n"
      "   40                                              - @\n",
      theText.substr(theText.find('\n') + 1));
}

TEST_F(qvLoggerText, ADumpOf16BytesHasOneFullLine) {
  Begin();
  qvLog_Append_B("0123456789abcdef", 16);
  std::string theText = End();
  EXPECT_EQ("   30 31 32 33 34 35 36 37 38 39 61 62 63 64 65 66 - 0123456789abcdef\n",
            theText.substr(theText.find('\n') + 1));
}

TEST_F(qvLoggerText, TheHeaderOfADumpNamesPointerAndLength) {
  char theByte = 'x';
  Begin();
  qvLog_Append_B(&theByte, 1);
  EXPECT_THAT(End(), MatchesRegex("Buffer pointer=0x[0-9a-f]+ length=1\n   78 {46}- x\n"));
}

TEST_F(qvLoggerText, TheHeaderOfADumpShowsTheAddressOfTheBuffer) {
  Begin();
  qvLog_Append_B(reinterpret_cast<const void*>(0x12ab), 0);
  EXPECT_EQ("Buffer pointer=0x000012ab length=0\n", End());
}

TEST_F(qvLoggerText, ADumpOfNothingHasTheHeaderOnly) {
  Begin();
  qvLog_Append_B(nullptr, 0);
  EXPECT_EQ("Buffer pointer=(nil) length=0\n", End());
}

TEST_F(qvLoggerText, BytesBelow20AndAbove7FAreDotsInADump) {
  const uint8 theBytes[] = {0x00, 0x1F, 0x20, 0x7E, 0x7F, 0x80, 0xFF};
  Begin();
  qvLog_Append_B(theBytes, sizeof(theBytes));
  std::string theText = End();
  EXPECT_EQ("   00 1F 20 7E 7F 80 FF                            - .. ~\x7F..\n",
            theText.substr(theText.find('\n') + 1));
}

TEST_F(qvLoggerText, WideCharactersOutside32To127AppearAsEscapes) {
  const wchar_t theText[] = {31, 32, 'A', 126, 127, 128, 0x20AC, 0xFFFF};
  Begin();
  qvLog_Append_U(theText, 8);
  EXPECT_EQ("\\u001f A~\x7F\\u0080\\u20ac\\uffff", End());
}

TEST_F(qvLoggerText, WideCharactersAboveFFFFHaveAllTheirDigits) {
  const wchar_t theText[] = {0x10000, 0x1F600, 0x10FFFF, static_cast<wchar_t>(0xFFFFFFFF)};
  Begin();
  qvLog_Append_U(theText, 4);
  EXPECT_EQ("\\u10000\\u1f600\\u10ffff\\uffffffff", End());
}

TEST_F(qvLoggerText, AZeroDoesNotEndAWideText) {
  Begin();
  qvLog_Append_U(L"a\0b", 3);
  EXPECT_EQ("a\\u0000b", End());
}

TEST_F(qvLoggerText, NoMoreThanTheGivenWideCharactersAreTaken) {
  Begin();
  qvLog_Append_U(L"abcdef", 2);
  EXPECT_EQ("ab", End());
  Begin();
  qvLog_Append_U(L"", 0);
  EXPECT_EQ("", End());
}

TEST_F(qvLoggerText, AWideTextStopsBehindTheCharacterThatReaches400Bytes) {
  struct {
    size_t mPlain;
    size_t mEscapes;
    size_t mExpected;
    const char* mWhy;
  } kCases[] = {
      {399, 0, 399, "below the limit"},     {400, 0, 400, "at the limit"},
      {500, 0, 400, "beyond the limit"},    {399, 1, 405, "the last character begins below the limit"},
      {399, 2, 405, "and none follows it"}, {394, 1, 400, "an escape ends exactly at the limit"},
      {394, 2, 400, "and none follows it"},
  };
  for (const auto& theCase : kCases) {
    std::wstring theText =
        std::wstring(theCase.mPlain, L'w') + std::wstring(theCase.mEscapes, static_cast<wchar_t>(0x80));
    Begin();
    qvLog_Append_U(theText.data(), theText.size());
    EXPECT_EQ(theCase.mExpected, End().size()) << theCase.mWhy;
  }
}

TEST_F(qvLoggerText, AWideTextHasAZeroByteBehindIt) {
  Begin();
  qvLog_Append_U(std::wstring(400, L'w').data(), 400);
  EXPECT_EQ('\0', mLogger.mByteBehind);
  qvLog_Append_U(L"shorter", 7);
  EXPECT_EQ('\0', mLogger.mByteBehind) << "where the longer text was before";
  End();
}

TEST_F(qvLoggerText, TheLongestEscapeAtTheLimitIsWhole) {
  std::wstring theText = std::wstring(399, L'w') + static_cast<wchar_t>(0xFFFFFFFF);
  Begin();
  qvLog_Append_U(theText.data(), theText.size());
  EXPECT_EQ(Repeat('w', 399) + "\\uffffffff", End());
}
