#include "tools/logstream/LogStreamParser.h"

#include <gmock/gmock.h>

#include "support/RecordedLog.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StrEq;
using namespace std::string_literals;

static const std::string kUUID = "01234567-89ab-cdef-0123-456789abcdef";
static const std::string kHeader = "\nPROTOCOL: qvLogd-1.0\nUUID: " + kUUID +
                                   "\nLOST: 0\nNAME: player(log started, 0 logs previously lost)\n";
static const std::string kHeaderOf3 = "\nPROTOCOL: qvLogd-1.0\nUUID: " + kUUID +
                                      "\nLOST: 3\nNAME: player(log started, 3 logs previously lost)\n";
static const std::string kPrefix = "I 14:03:07:042|b6f2a000|GRAPHICS   ";
static const std::string kLater = "I 14:03:08:000|b6f2a000|GRAPHICS   ";
static const std::string kEarlier = "I 14:03:06:999|b6f2a000|GRAPHICS   ";
#define FIELDS       "I|14:03:07:042|b6f2a000|GRAPHICS|"
#define LATER_FIELDS "I|14:03:08:000|b6f2a000|GRAPHICS|"

// A parser with its sink, and short ways to feed it.
struct Stream {
  explicit Stream(const LogStreamLimits& aLimits = LogStreamLimits()) : mParser(aLimits, mLog) {}
  Stream& Feed(const std::string& aText, int64 aTime = 0) {
    mParser.Feed(aText.data(), aText.size(), aTime);
    return *this;
  }
  Stream& Close() {
    mParser.Close(0);
    return *this;
  }
  RecordedLog mLog;
  LogStreamParser mParser;
};

static std::vector<std::string> Records(const std::string& aText,
                                        const LogStreamLimits& aLimits = LogStreamLimits()) {
  return Stream(aLimits).Feed(aText).Close().mLog.mTexts;
}

// --- The header

TEST(LogStreamParser, TheHeaderIsTheConnectEventAndNamesTheSenderOfAllThatFollows) {
  Stream theStream;
  theStream.Feed(kHeader + kPrefix + "one\n").Close();
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre("connect 0", FIELDS "one", "disconnect 0"));
  EXPECT_THAT(theStream.mLog.mSenders, ElementsAre("player " + kUUID, "player " + kUUID, "player " + kUUID));
  EXPECT_TRUE(theStream.mParser.HasHeader());
  EXPECT_EQ("player", theStream.mParser.Process());
  EXPECT_EQ(kUUID, theStream.mParser.UUID());
  EXPECT_EQ(nullptr, theStream.mParser.Fault());
}

TEST(LogStreamParser, TheReportBeforeTheHeaderIsCountedOnceWithIt) {
  EXPECT_THAT(Records("\nLOST: 3\n" + kHeaderOf3), ElementsAre("connect 3", "disconnect 0"));
}

TEST(LogStreamParser, AHeaderWithALossNeedsNoReportBeforeIt) {
  EXPECT_THAT(Records(kHeaderOf3), ElementsAre("connect 3", "disconnect 0"));
}

TEST(LogStreamParser, AReportOfAnotherCountMakesTheHeaderText) {
  EXPECT_THAT(Records("\nLOST: 2\n" + kHeaderOf3),
              ElementsAre("lost 2", "-||||", "-||||PROTOCOL: qvLogd-1.0", "-||||UUID: " + kUUID,
                          "-||||LOST: 3", "-||||NAME: player(log started, 3 logs previously lost)"));
}

TEST(LogStreamParser, AReportWithoutAHeaderIsALossOfAnUnknownProcess) {
  Stream theStream;
  theStream.Feed("\nLOST: 3\n" + kPrefix + "one\n").Close();
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre("lost 3", FIELDS "one"));
  EXPECT_EQ(" ", theStream.mLog.mSenders[0]);
  EXPECT_FALSE(theStream.mParser.HasHeader());
}

TEST(LogStreamParser, TheNameRunsToTheLastNoteOfTheCount) {
  Stream theStream;
  theStream.Feed(
      "\nPROTOCOL: qvLogd-1.0\nUUID: " + kUUID +
      "\nLOST: 0\nNAME: a(log started, 0 logs previously lost)(log started, 0 logs previously lost)\n");
  EXPECT_EQ("a(log started, 0 logs previously lost)", theStream.mParser.Process());
}

TEST(LogStreamParser, TheNameMayBeEmptyOrHoldAnyBytes) {
  for (const std::string& theName : {""s, "a\0b\033[31m\xFF"s}) {
    Stream theStream;
    theStream.Feed("\nPROTOCOL: qvLogd-1.0\nUUID: " + kUUID + "\nLOST: 0\nNAME: " + theName +
                   "(log started, 0 logs previously lost)\n");
    EXPECT_TRUE(theStream.mParser.HasHeader());
    EXPECT_EQ(theName, theStream.mParser.Process());
  }
}

struct BrokenHeader {
  const char* mFrom;
  const char* mTo;
  const char* mFault;
};

TEST(LogStreamParser, WhatIsNotQuiteAHeaderIsTextAndAFault) {
  const BrokenHeader kCases[] = {
      {"\nPROTOCOL", "PROTOCOL", "the connection header does not begin with an empty line"},
      {"1.0", "1.1", "the connection header has no \"PROTOCOL: qvLogd-1.0\" line in its place"},
      {"abcdef\n", "abcdeF\n", "the connection header has no valid UUID line in its place"},
      {"abcdef\n", "abcdef0\n", "the connection header has no valid UUID line in its place"},
      {"-89ab", "089ab", "the connection header has no valid UUID line in its place"},
      {"LOST: 0", "LOST: 00", "the connection header has no valid LOST line in its place"},
      {"LOST: 0", "LOST: 4294967296", "the connection header has no valid LOST line in its place"},
      {"LOST: 0", "LOST:0", "the connection header has no valid LOST line in its place"},
      {"NAME: ", "NAME:", "the connection header has no valid NAME line in its place"},
      {"started, 0", "started, 1", "the connection header has no valid NAME line in its place"},
      {"lost)", "lost) ", "the connection header has no valid NAME line in its place"},
  };
  for (const BrokenHeader& theCase : kCases) {
    SCOPED_TRACE(std::string(theCase.mFrom) + " -> " + theCase.mTo);
    std::string theText = kHeader;
    theText.replace(theText.find(theCase.mFrom), std::string(theCase.mFrom).size(), theCase.mTo);
    Stream theStream;
    theStream.Feed(theText).Close();
    EXPECT_FALSE(theStream.mParser.HasHeader());
    EXPECT_THAT(theStream.mParser.Fault(), StrEq(theCase.mFault));
    std::string theRaws;
    for (const std::string& theRaw : theStream.mLog.mRaws) {
      theRaws += theRaw + "\n";
    }
    EXPECT_EQ(theText, theRaws);
  }
}

TEST(LogStreamParser, AHeaderAtTheLimitIsOneAndALongerOneIsText) {
  LogStreamLimits theLimits;
  theLimits.mHeaderLength = kHeader.size();
  EXPECT_THAT(Records(kHeader, theLimits), ElementsAre("connect 0", "disconnect 0"));
  theLimits.mHeaderLength = kHeader.size() - 1;
  Stream theStream(theLimits);
  theStream.Feed(kHeader).Close();
  EXPECT_EQ(5u, theStream.mLog.mTexts.size());
  EXPECT_THAT(theStream.mParser.Fault(), StrEq("the connection header is longer than the limit"));
}

TEST(LogStreamParser, ASecondHeaderIsText) {
  Stream theStream;
  theStream.Feed(kHeader + kPrefix + "one\n" + kHeader).Close();
  EXPECT_THAT(theStream.mLog.mTexts,
              ElementsAre("connect 0", FIELDS "one", "+" FIELDS, "+" FIELDS "PROTOCOL: qvLogd-1.0",
                          "+" FIELDS "UUID: " + kUUID, "+" FIELDS "LOST: 0",
                          "+" FIELDS "NAME: player(log started, 0 logs previously lost)", "disconnect 0"));
  EXPECT_THAT(theStream.mParser.Fault(), StrEq("a second connection header"));
}

TEST(LogStreamParser, AHeaderThatHasBegunWaitsThroughDrainAndIsTextAfterFlush) {
  Stream theStream;
  theStream.Feed(kHeader.substr(0, 30), 5);
  theStream.mParser.Drain();
  EXPECT_THAT(theStream.mLog.mTexts, IsEmpty());
  EXPECT_TRUE(theStream.mParser.IsWaiting());
  EXPECT_EQ(5, theStream.mParser.WaitingSince());
  theStream.mParser.Flush();
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre("-||||", "-||||PROTOCOL: qvLogd-1.0", "-||||UUID: 01~"));
  EXPECT_FALSE(theStream.mParser.IsWaiting());
  EXPECT_THAT(theStream.mParser.Fault(), StrEq("the connection header is incomplete"));
}

TEST(LogStreamParser, AFlushBeforeTheFirstByteLeavesTheHeaderItsPlace) {
  Stream theStream;
  theStream.mParser.Flush();
  EXPECT_THAT(theStream.Feed(kHeader).mLog.mTexts, ElementsAre("connect 0"));
}

TEST(LogStreamParser, AnEmptyStreamHasNoRecordsAndLacksTheHeader) {
  Stream theStream;
  theStream.Close();
  EXPECT_THAT(theStream.mLog.mTexts, IsEmpty());
  EXPECT_THAT(theStream.mParser.Fault(), StrEq("the stream has no connection header"));
}

// --- Lines and messages

TEST(LogStreamParser, TheFieldsOfALineAreThoseOfItsPrefix) {
  struct {
    const char* mLine;
    const char* mRecord;
    const char* mWhy;
  } const kCases[] = {
      {"E 14:03:07:042|b6f2a000|GRAPHICS   text", "E|14:03:07:042|b6f2a000|GRAPHICS|text", "the usual form"},
      {"W 11/21/2026 14:03:07:042|b6f2a000|GRAPHICS   text",
       "W|11/21/2026 14:03:07:042|b6f2a000|GRAPHICS|text", "with a date"},
      {"D 14:03:07:042|00000001|0000000170 text", "D|14:03:07:042|00000001|0000000170|text", "no name"},
      {"I 14:03:07:042|b6f2a000|CONTENT_DI text", "I|14:03:07:042|b6f2a000|CONTENT_DI|text", "ten columns"},
      {"I 14:03:07:042|b6f2a000|GUI        ", "I|14:03:07:042|b6f2a000|GUI|", "no text"},
      {"I 14:03:07:042|b6f2a000|GUI         x", "I|14:03:07:042|b6f2a000|GUI| x", "the text's own blank"},
      {"X 14:03:07:042|b6f2a000|GUI        x", "-||||X 14:03:07:042|b6f2a000|GUI        x", "no level"},
      {"I 14:03:07.042|b6f2a000|GUI        x", "-||||I 14:03:07.042|b6f2a000|GUI        x", "no stamp"},
      {"I 14:03:07:042|B6F2A000|GUI        x", "-||||I 14:03:07:042|B6F2A000|GUI        x", "no thread"},
      {"I 14:03:07:042|b6f2a000|           x", "-||||I 14:03:07:042|b6f2a000|           x", "no module"},
      {"I 14:03:07:042|b6f2a000|A B        x", "-||||I 14:03:07:042|b6f2a000|A B        x", "a gap in it"},
      {"I 14:03:07:042|b6f2a000|GUI       ", "-||||I 14:03:07:042|b6f2a000|GUI       ", "one byte short"},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    EXPECT_THAT(Records(std::string(theCase.mLine) + "\n"), ElementsAre(theCase.mRecord));
  }
}

TEST(LogStreamParser, TheRawLineIsWhatCame) {
  EXPECT_THAT(Stream().Feed(kPrefix + "a\0b\n"s).Close().mLog.mRaws, ElementsAre(kPrefix + "a\0b"s));
}

TEST(LogStreamParser, LinesWithoutAPrefixContinueTheMessage) {
  EXPECT_THAT(Records(kHeader + kPrefix + "one\ntwo\n\nfour\n"),
              ElementsAre("connect 0", FIELDS "one", "+" FIELDS "two", "+" FIELDS, "+" FIELDS "four",
                          "disconnect 0"));
}

TEST(LogStreamParser, LinesBeforeTheFirstMessageStandAloneAndAreAFault) {
  Stream theStream;
  theStream.Feed(kHeader + "one\ntwo\n").Close();
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre("connect 0", "-||||one", "-||||two", "disconnect 0"));
  EXPECT_THAT(theStream.mParser.Fault(), StrEq("text before the first message"));
  EXPECT_EQ(kHeader.size(), theStream.mParser.FaultOffset());
}

TEST(LogStreamParser, AMessageIsHandedOverWhenTheNextOneBegins) {
  Stream theStream;
  theStream.Feed(kHeader + kPrefix + "one\ntwo\n");
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre("connect 0"));
  theStream.Feed(kLater);
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre("connect 0"));
  theStream.Feed("\n");
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre("connect 0", FIELDS "one", "+" FIELDS "two"));
}

TEST(LogStreamParser, DrainHandsOverAMessageWhoseLastLineIsComplete) {
  Stream theStream;
  theStream.Feed(kPrefix + "one\ntwo\n");
  theStream.mParser.Drain();
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre(FIELDS "one", "+" FIELDS "two"));
  EXPECT_FALSE(theStream.mParser.IsWaiting());
  theStream.Feed("three\n");
  theStream.mParser.Drain();
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre(FIELDS "one", "+" FIELDS "two", "+" FIELDS "three"));
}

TEST(LogStreamParser, DrainLeavesAMessageWhoseLastLineIsNot) {
  Stream theStream;
  theStream.Feed(kPrefix + "one\ntw");
  theStream.mParser.Drain();
  EXPECT_THAT(theStream.mLog.mTexts, IsEmpty());
  theStream.Feed("o\n");
  theStream.mParser.Drain();
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre(FIELDS "one", "+" FIELDS "two"));
}

TEST(LogStreamParser, FlushMarksALineWithoutItsEndAndTheRestFollowsAsALaterLine) {
  Stream theStream;
  theStream.Feed(kPrefix + "one");
  theStream.mParser.Flush();
  theStream.Feed(" and more\n").Close();
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre(FIELDS "one~", "+" FIELDS " and more"));
}

TEST(LogStreamParser, TheLineEndAloneAfterAFlushIsNotALine) {
  Stream theStream;
  theStream.Feed(kPrefix + "one");
  theStream.mParser.Flush();
  theStream.Feed("\n" + kLater + "two\n").Close();
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre(FIELDS "one~", LATER_FIELDS "two"));
}

TEST(LogStreamParser, WaitingSinceIsTheArrivalOfTheFirstByteHeldBack) {
  Stream theStream;
  EXPECT_FALSE(theStream.mParser.IsWaiting());
  theStream.Feed(kPrefix, 10).Feed("one", 20);
  EXPECT_TRUE(theStream.mParser.IsWaiting());
  EXPECT_EQ(10, theStream.mParser.WaitingSince());
  theStream.Feed("\nt", 30).Feed("w", 40);
  EXPECT_EQ(10, theStream.mParser.WaitingSince());
  theStream.mParser.Flush();
  EXPECT_FALSE(theStream.mParser.IsWaiting());
  theStream.Feed("o\n\n", 50);
  theStream.mParser.Drain();
  EXPECT_TRUE(theStream.mParser.IsWaiting());
  EXPECT_EQ(50, theStream.mParser.WaitingSince());
}

TEST(LogStreamParser, ARecordHasTheTimeOfItsFirstByte) {
  Stream theStream;
  theStream.Feed("\n", 1).Feed(kHeader.substr(1), 2).Feed("I ", 3).Feed(kPrefix.substr(2), 4);
  theStream.Feed("one\n", 5).Feed("two\n\n", 6).Feed("LOST: 3\n", 7);
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre("connect 0", FIELDS "one", "+" FIELDS "two", "lost 3"));
  EXPECT_THAT(theStream.mLog.mTimes, ElementsAre(1, 3, 6, 6));
}

// --- Loss reports

TEST(LogStreamParser, AReportBetweenMessagesIsALossOfTheSender) {
  Stream theStream;
  theStream.Feed(kHeader + kPrefix + "one\n\nLOST: 4294967295\n" + kPrefix + "two\n").Close();
  EXPECT_THAT(theStream.mLog.mTexts,
              ElementsAre("connect 0", FIELDS "one", "lost 4294967295", FIELDS "two", "disconnect 0"));
  EXPECT_EQ("player " + kUUID, theStream.mLog.mSenders[2]);
  EXPECT_EQ(nullptr, theStream.mParser.Fault());
}

TEST(LogStreamParser, WhatIsNotExactlyAReportIsText) {
  for (const char* theLine : {"LOST: ", "LOST: 4294967296", "LOST: 03", "LOST: 3 ", "LOST:  3", "LOST: -3",
                              " LOST: 3", "lost: 3", "LOST: 99999999999999999999"}) {
    EXPECT_THAT(Records(kPrefix + "one\n\n" + theLine + "\n"),
                ElementsAre(FIELDS "one", "+" FIELDS, "+" FIELDS + std::string(theLine)));
  }
}

TEST(LogStreamParser, AReportWithoutAnEmptyLineBeforeItIsText) {
  EXPECT_THAT(Records(kPrefix + "one\nLOST: 3\n"), ElementsAre(FIELDS "one", "+" FIELDS "LOST: 3"));
}

TEST(LogStreamParser, OfSeveralEmptyLinesTheLastBelongsToTheReport) {
  EXPECT_THAT(Records(kPrefix + "one\n\n\nLOST: 3\n"), ElementsAre(FIELDS "one", "+" FIELDS, "lost 3"));
}

TEST(LogStreamParser, AReportWithoutItsLineEndIsText) {
  EXPECT_THAT(Records(kPrefix + "one\n\nLOST: 3"),
              ElementsAre(FIELDS "one", "+" FIELDS, "+" FIELDS "LOST: 3~"));
}

TEST(LogStreamParser, AnEmptyLineWaitsThroughDrainForTheLineBehindIt) {
  Stream theStream;
  theStream.Feed(kPrefix + "one\n\n");
  theStream.mParser.Drain();
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre(FIELDS "one"));
  theStream.Feed("LOST: 3\n");
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre(FIELDS "one", "lost 3"));
}

// --- Messages that their sender left torn

TEST(LogStreamParser, AMessageInTheMiddleOfALineBeginsThere) {
  Stream theStream;
  theStream.Feed(kHeader + kPrefix + "tor" + kLater + "whole\n").Close();
  EXPECT_THAT(theStream.mLog.mTexts,
              ElementsAre("connect 0", FIELDS "tor~", LATER_FIELDS "whole", "disconnect 0"));
  EXPECT_THAT(theStream.mParser.Fault(),
              StrEq("a message begins in the middle of a line; the one before was cut short"));
  EXPECT_EQ((kHeader + kPrefix + "tor").size(), theStream.mParser.FaultOffset());
}

TEST(LogStreamParser, APrefixTornInItselfIsALaterLineOfTheMessageBefore) {
  EXPECT_THAT(Records(kPrefix + "one\n" + kLater.substr(0, 10) + kLater + "whole\n"),
              ElementsAre(FIELDS "one", "+" FIELDS "I 14:03:08~", LATER_FIELDS "whole"));
}

TEST(LogStreamParser, SeveralTornMessagesInOneLineAreOneAfterTheOther) {
  EXPECT_THAT(Records(kPrefix + kPrefix + "a" + kPrefix + "b|c|" + kLater + "d\n"),
              ElementsAre(FIELDS "~", FIELDS "a~", FIELDS "b|c|~", LATER_FIELDS "d"));
}

TEST(LogStreamParser, AQuotedLineWithAnEarlierStampIsText) {
  EXPECT_THAT(Records(kPrefix + "got: " + kEarlier + "old\n"),
              ElementsAre(FIELDS "got: " + kEarlier + "old"));
}

TEST(LogStreamParser, ATornMessageOfDatedStampsIsFoundToo) {
  std::string thePrefix = "W 11/21/2026 14:03:07:042|b6f2a000|GRAPHICS   ";
  EXPECT_THAT(Records(thePrefix + "tor" + thePrefix + "whole\n"),
              ElementsAre("W|11/21/2026 14:03:07:042|b6f2a000|GRAPHICS|tor~",
                          "W|11/21/2026 14:03:07:042|b6f2a000|GRAPHICS|whole"));
}

TEST(LogStreamParser, AMessageBehindATornOneThatWasFlushedBeginsThere) {
  Stream theStream;
  theStream.Feed(kPrefix + "tor");
  theStream.mParser.Flush();
  theStream.Feed(kLater + "whole\n").Close();
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre(FIELDS "tor~", LATER_FIELDS "whole"));
}

// --- Limits

TEST(LogStreamParser, ALineAtTheLimitIsWholeAndALongerOneIsCut) {
  LogStreamLimits theLimits;
  theLimits.mLineLength = 40;
  EXPECT_THAT(Records(kPrefix + "12345\n", theLimits), ElementsAre(FIELDS "12345"));
  Stream theStream(theLimits);
  theStream.Feed(kPrefix + "123456\n" + kLater + "7\n").Close();
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre(FIELDS "12345~", "+" FIELDS "6", LATER_FIELDS "7"));
  EXPECT_THAT(theStream.mParser.Fault(), StrEq("a line is longer than the limit"));
}

TEST(LogStreamParser, APartOfACutLineIsNeitherEmptyLineNorReport) {
  LogStreamLimits theLimits;
  theLimits.mLineLength = 7;
  EXPECT_THAT(Records("text\n\nLOST: 3LOST: 3\n", theLimits),
              ElementsAre("-||||text", "-||||", "-||||LOST: 3~", "+-||||LOST: 3"));
}

TEST(LogStreamParser, AMessageLongerThanALineMayBeIsHandedOverInParts) {
  LogStreamLimits theLimits;
  theLimits.mLineLength = 40;
  Stream theStream(theLimits);
  theStream.Feed(kPrefix + "one\ntwo\nthree\n");
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre(FIELDS "one", "+" FIELDS "two"));
  theStream.Close();
  EXPECT_THAT(theStream.mLog.mTexts, ElementsAre(FIELDS "one", "+" FIELDS "two", "+" FIELDS "three"));
}

TEST(LogStreamParser, AMessageOfMoreThan1024LinesIsHandedOverInParts) {
  Stream theStream;
  theStream.Feed(kPrefix + "one\n");
  for (int i = 0; i < 1022; ++i) {
    theStream.Feed("x\n");
  }
  EXPECT_THAT(theStream.mLog.mTexts, IsEmpty());
  theStream.Feed("x\n");
  EXPECT_EQ(1024u, theStream.mLog.mTexts.size());
}

TEST(LogStreamParser, TheCuttingOfTheStreamMakesNoDifference) {
  std::string theText = "\nLOST: 3\n" + kHeaderOf3 + kPrefix + "one\n\ntwo\n\nLOST: 2\n" + kPrefix + "tor" +
                        kLater + "a\0b\n\n"s + std::string(100, 'x') + "\n\nLOST: x\n" + kHeader + "end";
  LogStreamLimits theLimits;
  theLimits.mLineLength = 60;
  std::vector<std::string> theExpected = Records(theText, theLimits);
  for (size_t theSize = 1; theSize < theText.size(); ++theSize) {
    Stream theStream(theLimits);
    for (size_t theStart = 0; theStart < theText.size(); theStart += theSize) {
      theStream.Feed(theText.substr(theStart, theSize));
    }
    EXPECT_EQ(theExpected, theStream.Close().mLog.mTexts) << "in pieces of " << theSize;
  }
}
