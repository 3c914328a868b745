#include "tools/logstream/LogReader.h"

#include <gtest/gtest.h>

#include "support/TimeZone.h"
#include "tools/logstream/LogPrinter.h"

namespace {

constexpr int64 kNow = 1795269787042123;  // 2026-11-21T14:03:07.042123Z

class LogReaderTest : public ::testing::Test {
 protected:
  // The line outlives the record.
  const LogRecord& Read(const std::string& aLine) {
    mLine = aLine;
    mRecord = mReader.Read(mLine);
    return mRecord;
  }

  // kind level process/uuid thread module count text, '+' for a later line, '~' for a partial one.
  std::string Fields(const std::string& aLine) {
    Read(aLine);
    std::string theFields = std::to_string(mRecord.mKind) + " ";
    theFields += mRecord.mLevel != 0 ? mRecord.mLevel : '-';
    theFields.append(" ").append(mRecord.mProcess).append("/").append(mRecord.mUUID);
    theFields.append(" ").append(mRecord.mThread).append(" ").append(mRecord.mModule);
    theFields.append(" ").append(std::to_string(mRecord.mCount));
    theFields.append(mRecord.mfContinuation ? " +" : "").append(mRecord.mfPartial ? " ~" : "");
    return theFields.append(" ").append(mRecord.mText);
  }

  TimeZone mZone{"UTC0"};
  LogReader mReader{kNow};
  std::string mLine;
  LogRecord mRecord;
};

}  // namespace

TEST_F(LogReaderTest, ReadsTheShortForm) {
  EXPECT_EQ("0 I player/1a2b3c4d b6f2a000 GRAPHICS 0 some text: here",
            Fields("Nov 21 14:03:07.042 player-1a2b3c4d I GRAPHICS b6f2a000: some text: here"));
  EXPECT_EQ(1795269787042000, mRecord.mTime);
  EXPECT_EQ("", mRecord.mStamp);
}

TEST_F(LogReaderTest, ReadsTheShortISOForm) {
  EXPECT_EQ("0 E player/1a2b3c4d b6f2a000 GRAPHICS 0 text",
            Fields("2026-11-21T15:03:07.042123+01:00 player-1a2b3c4d E GRAPHICS b6f2a000: text"));
  EXPECT_EQ(1795269787042123, mRecord.mTime);
}

TEST_F(LogReaderTest, TheSignBehindTheThreadSaysWhatTheLineIs) {
  EXPECT_EQ("0 W p/1a2b3c4d b6f2a000 M 0 + text",
            Fields("Nov 21 14:03:07.042 p-1a2b3c4d W M b6f2a000+ text"));
  EXPECT_EQ("0 W p/1a2b3c4d b6f2a000 M 0 ~ text",
            Fields("Nov 21 14:03:07.042 p-1a2b3c4d W M b6f2a000~ text"));
}

TEST_F(LogReaderTest, ADashIsAnAbsentField) {
  EXPECT_EQ("0 - /   0 text", Fields("Nov 21 14:03:07.042 - - - -: text"));
  EXPECT_EQ("0 - p/   0 ~ text", Fields("Nov 21 14:03:07.042 p - - -~ text"));
}

TEST_F(LogReaderTest, AProcessMayHaveDashesAndNoUUID) {
  EXPECT_EQ("0 I my-player/1a2b3c4d 1 M 0 t", Fields("Nov 21 14:03:07.042 my-player-1a2b3c4d I M 1: t"));
  EXPECT_EQ("0 I my-player/ 1 M 0 t", Fields("Nov 21 14:03:07.042 my-player I M 1: t"));
  EXPECT_EQ("0 I /1a2b3c4d 1 M 0 t", Fields("Nov 21 14:03:07.042 -1a2b3c4d I M 1: t"));
  EXPECT_EQ("0 I my-1A2B3C4D/ 1 M 0 t", Fields("Nov 21 14:03:07.042 my-1A2B3C4D I M 1: t"));
}

TEST_F(LogReaderTest, AnEmptyTextIsRead) {
  EXPECT_EQ("0 I p/ 1 M 0 ", Fields("Nov 21 14:03:07.042 p I M 1: "));
  EXPECT_EQ("0 I p/ 1 M 0 ", Fields("Nov 21 14:03:07.042 p I M 1:"));
}

TEST_F(LogReaderTest, ReadsTheEventsOfTheShortForms) {
  const char kISO[] = "2026-11-21T14:03:07.042123Z p-1a2b3c4d - ";
  const char kShort[] = "Nov 21 14:03:07.042 p-1a2b3c4d - ";
  for (std::string theStart : {kISO, kShort}) {
    EXPECT_EQ("1 - p/1a2b3c4d   0 ", Fields(theStart + "connect"));
    EXPECT_EQ("1 - p/1a2b3c4d   3 ", Fields(theStart + "connect, 3 lost before"));
    EXPECT_EQ("2 - p/1a2b3c4d   4294967296 ", Fields(theStart + "lost 4294967296"));
    EXPECT_EQ("3 - p/1a2b3c4d   0 ", Fields(theStart + "disconnect"));
    EXPECT_EQ("4 - p/1a2b3c4d   12 ", Fields(theStart + "suppressed 12"));
  }
}

TEST_F(LogReaderTest, ACountThatIsTooLargeIsCut) {
  EXPECT_EQ("2 - p/   18446744073709551615 ", Fields("Nov 21 14:03:07.042 p - lost 99999999999999999999"));
}

TEST_F(LogReaderTest, EscapesBecomeBytesInNamesAndStayInTexts) {
  EXPECT_EQ("0 I my player/1a2b3c4d 1 A B 0 a\\x1b[m\\xff\\",
            Fields("Nov 21 14:03:07.042 my\\x20player-1a2b3c4d I A\\x20"
                   "B 1: a\\x1b[m\\xff\\"));
}

TEST_F(LogReaderTest, ColorsAreTakenOff) {
  EXPECT_EQ(
      "0 W p/1a2b3c4d 1 M 0 text",
      Fields("\x1B[2mNov 21 14:03:07.042\x1B[0m \x1B[1;36mp-1a2b3c4d\x1B[m W M 1: \x1B[33mtext\x1B[0m"));
}

TEST_F(LogReaderTest, ReadsTheRawForm) {
  const char kLine[] = "D 11/21/2026 14:03:07:042|b6f2a000|GRAPHICS   a text";
  EXPECT_EQ("0 D / b6f2a000 GRAPHICS 0 a text", Fields(kLine));
  EXPECT_EQ("11/21/2026 14:03:07:042", mRecord.mStamp);
  EXPECT_EQ(1795269787042000, mRecord.mTime);
  EXPECT_EQ(kLine, mRecord.mRaw);
}

TEST_F(LogReaderTest, ARawStampWithoutDateIsTheLastSuchTime) {
  Read("I 16:00:00:000|b6f2a000|GRAPHICS   text");
  EXPECT_EQ(1795190400000000, Read("I 16:00:00:000|b6f2a000|GRAPHICS   text").mTime);
}

TEST_F(LogReaderTest, ALineWithoutPrefixBehindARawOneBelongsToItsMessage) {
  Fields("E 14:03:07:042|b6f2a000|GRAPHICS   first");
  EXPECT_EQ("0 E / b6f2a000 GRAPHICS 0 + second", Fields("second"));
  EXPECT_EQ("0 E / b6f2a000 GRAPHICS 0 + third", Fields("third"));
  EXPECT_EQ("third", mRecord.mRaw);
  EXPECT_EQ(1795269787042000, mRecord.mTime);
  mReader.ForgetMessage();
  EXPECT_EQ("0 - /   0 fourth", Fields("fourth"));
}

TEST_F(LogReaderTest, ReadsTheJSONForm) {
  EXPECT_EQ(
      "0 W player/1a2b3c4d-0000-1000-8000-0123456789ab b6f2a000 GRAPHICS 0 a \"text\" \xF0\x9F\x98\x80",
      Fields("{\"ts\":\"2026-11-21T15:03:07.042123+01:00\",\"level\":\"warning\",\"process\":\"player\","
             "\"uuid\":\"1a2b3c4d-0000-1000-8000-0123456789ab\",\"thread\":\"b6f2a000\","
             "\"module\":\"GRAPHICS\",\"msg\":\"a \\\"text\\\" \\ud83d\\ude00\","
             "\"stamp\":\"14:03:07:042\"}"));
  EXPECT_EQ(1795269787042123, mRecord.mTime);
  EXPECT_EQ("14:03:07:042", mRecord.mStamp);
}

TEST_F(LogReaderTest, ReadsTheLevelsOfTheJSONForm) {
  const struct {
    const char* mName;
    char mLevel;
  } kCases[] = {{"error", 'E'}, {"warning", 'W'}, {"info", 'I'}, {"debug", 'D'}, {"fatal", 0}};
  for (const auto& theCase : kCases) {
    const LogRecord& theRecord = Read("{\"ts\":\"2026-11-21T14:03:07Z\",\"level\":\"" +
                                      std::string(theCase.mName) + "\",\"msg\":\"t\"}");
    EXPECT_EQ(theCase.mLevel, theRecord.mLevel) << theCase.mName;
  }
}

TEST_F(LogReaderTest, ReadsTheMarksOfTheJSONForm) {
  EXPECT_EQ("0 - /   0 + ~ t",
            Fields("{\"ts\":\"2026-11-21T14:03:07Z\",\"msg\":\"t\",\"continuation\":true,\"partial\":true}"));
  EXPECT_EQ(
      "0 - /   0 t",
      Fields("{\"ts\":\"2026-11-21T14:03:07Z\",\"msg\":\"t\",\"continuation\":false,\"partial\":false}"));
}

TEST_F(LogReaderTest, ReadsTheEventsOfTheJSONForm) {
  EXPECT_EQ("2 - p/u   17 ", Fields("{\"ts\":\"2026-11-21T14:03:07Z\",\"event\":\"lost\",\"process\":\"p\","
                                    "\"uuid\":\"u\",\"count\":17}"));
  EXPECT_EQ("4 - /   0 ", Fields("{\"ts\":\"2026-11-21T14:03:07Z\",\"event\":\"suppressed\"}"));
}

TEST_F(LogReaderTest, JSONMembersThatAreNotKnownAreSkipped) {
  EXPECT_EQ("0 - /   0 t",
            Fields("{\"ts\":\"2026-11-21T14:03:07Z\",\"host\":\"h\",\"n\":1,\"x\":null,\"msg\":\"t\"}"));
}

TEST_F(LogReaderTest, ALineWhoseTimeWasNotKnownIsRead) {
  EXPECT_EQ("0 I p/1a2b3c4d b6f2a000 M 0 t", Fields("- p-1a2b3c4d I M b6f2a000: t"));
  EXPECT_EQ(0, mRecord.mTime);
  EXPECT_EQ("0 - /   0 t", Fields("{\"msg\":\"t\"}"));
  EXPECT_EQ(0, mRecord.mTime);
}

TEST_F(LogReaderTest, WhatIsInNoFormIsTextAlone) {
  for (const char* theLine : {"",
                              "text",
                              "{\"msg\":\"no time\",\"x\":1}",
                              "{\"ts\":\"2026-11-21T14:03:07Z\",\"x\":1}",
                              "{\"ts\":\"noon\",\"msg\":\"t\"}",
                              "{\"ts\":1795269787.042,\"msg\":\"a time of others\",\"x\":1}",
                              "{\"ts\":\"2026-11-21T14:03:07Z\",\"msg\":5}",
                              "{\"ts\":\"2026-11-21T14:03:07Z\",\"event\":true}",
                              "{}",
                              "{\"ts\":\"2026-11-21",
                              "{\"ts\":\"2026-11-21T14:03:07Z\",\"event\":\"unknown\"}",
                              "{\"ts\":\"2026-11-21T14:03:07Z\",\"event\":\"lost\",\"count\":-1}",
                              "Nov 21 14:03:07.042",
                              "Nov 21 14:03:07.042 p",
                              "Nov 21 14:03:07.042 p X M 1: t",
                              "Nov 21 14:03:07.042 p I M 1 t",
                              "Nov 21 14:03:07.042 p I \\y 1: t",
                              "- list item",
                              "Nov 21 14:03:07.042 p - unknown 3",
                              "Nov 21 14:03:07.042 p - lost",
                              "Nov 21 14:03:07.042 p - lost x",
                              "Nov 21 14:03:07.042 p - connect, lost before",
                              "2026-11-21T14:03:07Z",
                              "I 14:03:07:042|b6f2a000|GRAPHICS"}) {
    EXPECT_EQ("0 - /   0 " + std::string(theLine), Fields(theLine));
    EXPECT_EQ(0, mRecord.mTime) << theLine;
    EXPECT_EQ(theLine, mRecord.mRaw);
  }
}

TEST_F(LogReaderTest, TheRawLineIsPutTogetherAgain) {
  EXPECT_EQ("I 13:59:58:001|b6f2a000|GRAPHICS   text",
            mReader
                .Read("{\"ts\":\"2026-11-21T14:03:07Z\",\"level\":\"info\",\"thread\":\"b6f2a000\","
                      "\"module\":\"GRAPHICS\",\"msg\":\"text\",\"stamp\":\"13:59:58:001\"}")
                .mRaw);
  EXPECT_EQ("I 14:03:07:042|b6f2a000|0000000170 text",
            Read("Nov 21 14:03:07.042 p I 0000000170 b6f2a000: text").mRaw);
  EXPECT_EQ("I 15:03:07:042|b6f2a000|GRAPHICS   text",
            Read("2026-11-21T15:03:07.042123+01:00 p I GRAPHICS b6f2a000: text").mRaw);
}

TEST_F(LogReaderTest, AStampWithoutMillisecondsGivesNoRawLine) {
  for (std::string theClock : {"14:03:07", "14:03:07.0", "14:03:07.04"}) {
    EXPECT_EQ("text", Read("2026-11-21T" + theClock + "Z p I GRAPHICS b6f2a000: text").mRaw) << theClock;
  }
}

TEST_F(LogReaderTest, TheRawLineOfWhatCameWithoutPrefixIsItsText) {
  EXPECT_EQ("text", Read("Nov 21 14:03:07.042 p I GRAPHICS b6f2a000+ text").mRaw);
  EXPECT_EQ("text", Read("Nov 21 14:03:07.042 p - - -: text").mRaw);
}

TEST_F(LogReaderTest, ALineOfAMegabyteIsRead) {
  std::string theText(1048576, 'x');
  const LogRecord& theRecord = Read("Nov 21 14:03:07.042 p I GRAPHICS b6f2a000: " + theText);
  EXPECT_EQ(theText, theRecord.mText);
}

// --- What was printed is read back

namespace {

const char kUUID[] = "1a2b3c4d-0000-1000-8000-0123456789ab";

class LogReaderPrinted : public ::testing::Test {
 protected:
  LogRecord Line() const {
    LogRecord theRecord;
    theRecord.mTime = kNow;
    theRecord.mProcess = "my player";
    theRecord.mUUID = kUUID;
    theRecord.mLevel = 'W';
    theRecord.mStamp = "15:03:06:999";
    theRecord.mThread = "b6f2a000";
    theRecord.mModule = "GRAPHICS";
    theRecord.mText = "a \"text\"\t\\x41 with \xC3\xA4 and \xF0\x9F\x98\x80";
    theRecord.mRaw = "W 15:03:06:999|b6f2a000|GRAPHICS   raw text \xFF\x01";
    return theRecord;
  }

  std::string Print(LogForm aForm, const LogRecord& aRecord, bool afColor = false) {
    std::string theLine;
    LogPrinter(aForm, afColor, false).Print(aRecord, theLine);
    EXPECT_EQ('\n', theLine.back());
    theLine.pop_back();
    return theLine;
  }

  const LogRecord& PrintAndRead(LogForm aForm, const LogRecord& aRecord, bool afColor = false) {
    mLine = Print(aForm, aRecord, afColor);
    mRecord = mReader.Read(mLine);
    return mRecord;
  }

  TimeZone mZone{"CET-1CEST,M3.5.0,M10.5.0/3"};
  LogReader mReader{kNow};
  std::string mLine;
  LogRecord mRecord;
};

}  // namespace

TEST_F(LogReaderPrinted, JSONKeepsAllOfALine) {
  LogRecord theLine = Line();
  theLine.mText = std::string_view("a\0\x01\x1B[1m", 7);
  theLine.mfContinuation = true;
  theLine.mfPartial = true;
  const LogRecord& theRead = PrintAndRead(LogForm_JSON, theLine);
  EXPECT_EQ(kNow, theRead.mTime);
  EXPECT_EQ("my player", theRead.mProcess);
  EXPECT_EQ(kUUID, theRead.mUUID);
  EXPECT_EQ('W', theRead.mLevel);
  EXPECT_EQ("15:03:06:999", theRead.mStamp);
  EXPECT_EQ("b6f2a000", theRead.mThread);
  EXPECT_EQ("GRAPHICS", theRead.mModule);
  EXPECT_EQ(theLine.mText, theRead.mText);
  EXPECT_TRUE(theRead.mfContinuation);
  EXPECT_TRUE(theRead.mfPartial);
}

TEST_F(LogReaderPrinted, TheShortFormsKeepAllButTheStampAndTheEndOfTheUUID) {
  for (LogForm theForm : {LogForm_Short, LogForm_ShortISO}) {
    for (bool theHasColor : {false, true}) {
      LogRecord theLine = Line();
      const LogRecord& theRead = PrintAndRead(theForm, theLine, theHasColor);
      EXPECT_EQ(theForm == LogForm_Short ? kNow - 123 : kNow, theRead.mTime);
      EXPECT_EQ("my player", theRead.mProcess);
      EXPECT_EQ("1a2b3c4d", theRead.mUUID);
      EXPECT_EQ('W', theRead.mLevel);
      EXPECT_EQ("", theRead.mStamp);
      EXPECT_EQ("b6f2a000", theRead.mThread);
      EXPECT_EQ("GRAPHICS", theRead.mModule);
      EXPECT_EQ(theLine.mText, theRead.mText);
      EXPECT_FALSE(theRead.mfContinuation);
      EXPECT_FALSE(theRead.mfPartial);
    }
  }
}

TEST_F(LogReaderPrinted, TheShortFormsKeepControlCharactersAsTheyWereShown) {
  LogRecord theLine = Line();
  theLine.mText = "\x1B[1m\xFF";
  EXPECT_EQ("\\x1b[1m\\xff", PrintAndRead(LogForm_Short, theLine).mText);
}

TEST_F(LogReaderPrinted, TheShortFormsKeepWhatALineIs) {
  LogRecord theLine = Line();
  theLine.mfContinuation = true;
  EXPECT_TRUE(PrintAndRead(LogForm_Short, theLine).mfContinuation);
  theLine.mfPartial = true;
  EXPECT_TRUE(PrintAndRead(LogForm_Short, theLine).mfPartial);
}

TEST_F(LogReaderPrinted, RawKeepsTheLineAsItCame) {
  const LogRecord& theRead = PrintAndRead(LogForm_Raw, Line());
  EXPECT_EQ(Line().mRaw, theRead.mRaw);
  EXPECT_EQ('W', theRead.mLevel);
  EXPECT_EQ("15:03:06:999", theRead.mStamp);
  EXPECT_EQ(kNow - 43123, theRead.mTime) << "the sender's";
  EXPECT_EQ("b6f2a000", theRead.mThread);
  EXPECT_EQ("GRAPHICS", theRead.mModule);
  EXPECT_EQ("raw text \xFF\x01", theRead.mText);
}

TEST_F(LogReaderPrinted, EventsAreReadBack) {
  for (LogForm theForm : {LogForm_Short, LogForm_ShortISO, LogForm_JSON}) {
    for (LogRecordKind theKind : {LogRecordKind_Connect, LogRecordKind_Lost, LogRecordKind_Suppressed}) {
      LogRecord theEvent;
      theEvent.mKind = theKind;
      theEvent.mTime = kNow;
      theEvent.mProcess = "player";
      theEvent.mUUID = kUUID;
      theEvent.mCount = 18446744073709551615ULL;
      const LogRecord& theRead = PrintAndRead(theForm, theEvent);
      EXPECT_EQ(theKind, theRead.mKind) << mLine;
      EXPECT_EQ("player", theRead.mProcess);
      EXPECT_EQ(18446744073709551615ULL, theRead.mCount) << mLine;
    }
  }
}

TEST_F(LogReaderPrinted, AbsentFieldsStayAbsent) {
  for (LogForm theForm : {LogForm_Short, LogForm_ShortISO, LogForm_JSON}) {
    LogRecord theLine;
    theLine.mText = "text";
    const LogRecord& theRead = PrintAndRead(theForm, theLine);
    EXPECT_EQ(0, theRead.mTime);
    EXPECT_EQ(0, theRead.mLevel);
    EXPECT_EQ("", theRead.mProcess);
    EXPECT_EQ("", theRead.mUUID);
    EXPECT_EQ("", theRead.mThread);
    EXPECT_EQ("", theRead.mModule);
    EXPECT_EQ("text", theRead.mText);
  }
}
