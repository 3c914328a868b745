#include "tools/qvlogd/SyslogFormatter.h"

#include <gtest/gtest.h>

#include "support/TimeZone.h"

namespace {

constexpr int64 kTime = 1709640000042123;  // 2024-03-05 12:00:00.042123 UTC

LogRecord Line() {
  LogRecord theRecord;
  theRecord.mTime = kTime;
  theRecord.mProcess = "player";
  theRecord.mUUID = "1a2b3c4d-0000-1000-8000-001122334455";
  theRecord.mLevel = 'W';
  theRecord.mStamp = "12:00:00:042";
  theRecord.mThread = "b6f2a000";
  theRecord.mModule = "GRAPHICS";
  theRecord.mText = "text";
  return theRecord;
}

std::string Format(const LogRecord& aRecord, LogFraming aFraming = LogFraming_LF) {
  std::string theOut;
  SyslogFormatter(aFraming, "box").Format(aRecord, theOut);
  return theOut;
}

std::string FormatText(const std::string& aText) {
  LogRecord theRecord;
  theRecord.mText = aText;
  std::string theMessage = Format(theRecord);
  return theMessage.substr(theMessage.find("] ") + 2);
}

class SyslogFormatterTest : public testing::Test {
 protected:
  TimeZone mZone{"XYZ-1"};  // an hour east
};

}  // namespace

TEST_F(SyslogFormatterTest, ALineIsAMessageWithAllItsFields) {
  EXPECT_EQ(
      "<12>1 2024-03-05T13:00:00.042123+01:00 box player - GRAPHICS "
      "[qvlog@32473 uuid=\"1a2b3c4d-0000-1000-8000-001122334455\" thread=\"b6f2a000\" "
      "stamp=\"12:00:00:042\"] text\n",
      Format(Line()));
}

TEST_F(SyslogFormatterTest, OctetCountingPutsTheLengthInFront) {
  std::string theMessage = Format(Line());
  theMessage.pop_back();
  EXPECT_EQ("162 " + theMessage, Format(Line(), LogFraming_Octet));
  EXPECT_EQ(162u, theMessage.size());
}

TEST_F(SyslogFormatterTest, WhatIsMissingIsADash) {
  LogRecord theRecord;
  std::string theOut;
  SyslogFormatter(LogFraming_LF, "").Format(theRecord, theOut);
  EXPECT_EQ("<14>1 - - - - - [qvlog@32473]\n", theOut);
}

TEST_F(SyslogFormatterTest, LevelsAreSeverities) {
  const struct {
    char mLevel;
    const char* mStart;
  } kCases[] = {
      {'E', "<11>1 "}, {'W', "<12>1 "}, {'I', "<14>1 "}, {'D', "<15>1 "}, {0, "<14>1 "},
  };
  for (const auto& theCase : kCases) {
    LogRecord theRecord = Line();
    theRecord.mLevel = theCase.mLevel;
    EXPECT_EQ(0u, Format(theRecord).find(theCase.mStart)) << theCase.mLevel;
  }
}

TEST_F(SyslogFormatterTest, EventsAreInfoUnderTheirName) {
  const struct {
    LogRecordKind mKind;
    uint64 mCount;
    const char* mRest;
  } kCases[] = {
      {LogRecordKind_Connect, 0, "connect [qvlog@32473 uuid=\"u\" count=\"0\"] connect\n"},
      {LogRecordKind_Connect, 3, "connect [qvlog@32473 uuid=\"u\" count=\"3\"] connect, 3 lost before\n"},
      {LogRecordKind_Lost, 4, "lost [qvlog@32473 uuid=\"u\" count=\"4\"] lost 4\n"},
      {LogRecordKind_Disconnect, 0, "disconnect [qvlog@32473 uuid=\"u\"] disconnect\n"},
      {LogRecordKind_Suppressed, 5, "suppressed [qvlog@32473 uuid=\"u\" count=\"5\"] suppressed 5\n"},
  };
  for (const auto& theCase : kCases) {
    LogRecord theRecord;
    theRecord.mTime = kTime;
    theRecord.mKind = theCase.mKind;
    theRecord.mCount = theCase.mCount;
    theRecord.mProcess = "player";
    theRecord.mUUID = "u";
    EXPECT_EQ(std::string("<14>1 2024-03-05T13:00:00.042123+01:00 box player - ") + theCase.mRest,
              Format(theRecord));
  }
}

TEST_F(SyslogFormatterTest, NamesArePrintableASCIIAndNotTooLong) {
  LogRecord theRecord;
  theRecord.mProcess = "my player\t\xC3\xBC]\"1234567890123456789012345678901234567890";
  theRecord.mModule = "A B\n12345678901234567890123456789012";
  std::string theMessage = Format(theRecord);
  EXPECT_NE(std::string::npos, theMessage.find(" box my_player___]\"1234567890123456789012345678901234 - "
                                               "A_B_1234567890123456789012345678 ["))
      << theMessage;
}

TEST_F(SyslogFormatterTest, QuotesBackslashesAndBracketsAreEscapedInTheData) {
  LogRecord theRecord;
  theRecord.mThread = "a\"b\\c]d\n\xFF";
  EXPECT_NE(std::string::npos,
            Format(theRecord).find("[qvlog@32473 thread=\"a\\\"b\\\\c\\]d\\\\x0a\\\\xff\"]\n"));
}

TEST_F(SyslogFormatterTest, OffsetsWestOfGreenwichAreNegative) {
  TimeZone theZone("XYZ3:30");
  EXPECT_NE(std::string::npos, Format(Line()).find(" 2024-03-05T08:30:00.042123-03:30 "));
}

TEST_F(SyslogFormatterTest, TheOffsetFollowsTheDate) {
  TimeZone theZone("CET-1CEST,M3.5.0,M10.5.0/3");
  SyslogFormatter theFormatter(LogFraming_LF, "box");
  LogRecord theRecord;
  std::string theOut;
  for (int64 theSecond : {1711846799, 1711846800}) {  // 2024-03-31, around 02:00
    theRecord.mTime = theSecond * 1000000;
    theFormatter.Format(theRecord, theOut);
  }
  EXPECT_NE(std::string::npos, theOut.find("T01:59:59.000000+01:00 "));
  EXPECT_NE(std::string::npos, theOut.find("T03:00:00.000000+02:00 "));
}

TEST_F(SyslogFormatterTest, TextIsOneLineOfUTF8) {
  const struct {
    std::string mText;
    const char* mExpected;
    const char* mWhy;
  } kCases[] = {
      {"a\tb", "a\tb", "the tab stays"},
      {"a\nb\r\x1B[31m\x7F", "a\\x0ab\\x0d\\x1b[31m\\x7f", "control characters"},
      {std::string("a\0b", 3), "a\\x00b", "a zero byte"},
      {"\xC2\x85\xC2\xA0", "\\xc2\\x85\xC2\xA0", "the control characters behind DEL"},
      {"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80", "2, 3 and 4 bytes"},
      {"\x80x\xE2\x82", "\\x80x\\xe2\\x82", "bytes that are not UTF-8"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(std::string(theCase.mExpected) + "\n", FormatText(theCase.mText)) << theCase.mWhy;
  }
}

TEST_F(SyslogFormatterTest, ALongTextGoesInSeveralMessagesThatTearNoCharacter) {
  std::string theText = "x";
  while (theText.size() < 20000) {
    theText += "\xE2\x82\xAC";
  }
  LogRecord theRecord;
  theRecord.mText = theText;
  std::string theOut = Format(theRecord, LogFraming_Octet);
  EXPECT_EQ(3u, SyslogFormatter_Count(LogFraming_Octet, theOut.data(), theOut.size()));
  std::string theTogether;
  for (int thePart = 1; !theOut.empty(); ++thePart) {
    size_t theLength = SyslogFormatter_FrameLength(LogFraming_Octet, theOut.data(), theOut.size());
    std::string theMessage = theOut.substr(0, theLength);
    theOut.erase(0, theLength);
    EXPECT_LE(theLength, 8005u);
    std::string theData =
        thePart == 1 ? "[qvlog@32473] " : "[qvlog@32473 part=\"" + std::to_string(thePart) + "\"] ";
    size_t theFound = theMessage.find(theData);
    ASSERT_NE(std::string::npos, theFound) << theMessage;
    theTogether += theMessage.substr(theFound + theData.size());
    EXPECT_NE(0x80, theMessage[theFound + theData.size()] & 0xC0);
  }
  EXPECT_TRUE(theText == theTogether);
}

TEST_F(SyslogFormatterTest, TheLargestFieldsLeaveRoomForText) {
  std::string theBytes(2000, '\x01');
  LogRecord theRecord;
  theRecord.mProcess = theRecord.mUUID = theRecord.mThread = theRecord.mStamp = theRecord.mModule = theBytes;
  theRecord.mText = "text";
  std::string theOut;
  SyslogFormatter(LogFraming_Octet, theBytes).Format(theRecord, theOut);
  EXPECT_EQ(1u, SyslogFormatter_Count(LogFraming_Octet, theOut.data(), theOut.size()));
  EXPECT_LE(theOut.size(), 8005u);
}

TEST(SyslogFormatterFrames, FramesAreFoundInEitherFraming) {
  EXPECT_EQ(5u, SyslogFormatter_FrameLength(LogFraming_Octet, "3 abc12 d", 9));
  EXPECT_EQ(4u, SyslogFormatter_FrameLength(LogFraming_LF, "abc\ndef\n", 8));
  EXPECT_EQ(2u, SyslogFormatter_Count(LogFraming_Octet, "3 abc1 d", 8));
  EXPECT_EQ(2u, SyslogFormatter_Count(LogFraming_LF, "abc\ndef\n", 8));
}

TEST(SyslogFormatterFrames, WhatIsNotThereAsAWholeIsTakenAsItIs) {
  EXPECT_EQ(4u, SyslogFormatter_FrameLength(LogFraming_Octet, "3 ab", 4));
  EXPECT_EQ(2u, SyslogFormatter_FrameLength(LogFraming_Octet, "30", 2));
  EXPECT_EQ(3u, SyslogFormatter_FrameLength(LogFraming_LF, "abc", 3));
}
