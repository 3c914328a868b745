#include "tools/logstream/LogPrinter.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <stdlib.h>
#include <unistd.h>

#include "support/TimeZone.h"

using namespace std::string_literals;

// 2026-11-21 13:03:07.042123 UTC
static constexpr int64 kTime = 1795266187042123LL;
static const char kUUID[] = "1a2b3c4d-89ab-cdef-0123-456789abcdef";
static const char kCentralEurope[] = "CET-1CEST,M3.5.0,M10.5.0/3";

static LogRecord Line(std::string_view aText) {
  LogRecord theRecord;
  theRecord.mTime = kTime;
  theRecord.mProcess = "player";
  theRecord.mUUID = kUUID;
  theRecord.mLevel = 'I';
  theRecord.mStamp = "14:03:07:042";
  theRecord.mThread = "b6f2a000";
  theRecord.mModule = "GRAPHICS";
  theRecord.mText = aText;
  return theRecord;
}

static LogRecord Event(LogRecordKind aKind, uint64 aCount) {
  LogRecord theRecord;
  theRecord.mKind = aKind;
  theRecord.mTime = kTime;
  theRecord.mProcess = "player";
  theRecord.mUUID = kUUID;
  theRecord.mCount = aCount;
  return theRecord;
}

static std::string Printed(LogForm aForm, const LogRecord& aRecord, bool afColor = false,
                           bool afTerminal = false) {
  TimeZone theZone(kCentralEurope);
  LogPrinter thePrinter(aForm, afColor, afTerminal);
  std::string theOut;
  thePrinter.Print(aRecord, theOut);
  return theOut;
}

TEST(LogPrinter, EachFormHasItsName) {
  const struct {
    const char* mName;
    LogForm mForm;
  } kCases[] = {{"short", LogForm_Short},
                {"short-iso", LogForm_ShortISO},
                {"cat", LogForm_Cat},
                {"raw", LogForm_Raw},
                {"json", LogForm_JSON}};
  for (const auto& theCase : kCases) {
    LogForm theForm = theCase.mForm == LogForm_Cat ? LogForm_Raw : LogForm_Cat;
    EXPECT_TRUE(LogForm_FromName(theCase.mName, &theForm));
    EXPECT_EQ(theCase.mForm, theForm);
  }
  LogForm theForm;
  EXPECT_FALSE(LogForm_FromName("shor", &theForm));
  EXPECT_FALSE(LogForm_FromName("", &theForm));
}

// --- The short forms

TEST(LogPrinter, ShortHasTheLocalTimeTheSenderAndTheFields) {
  EXPECT_EQ("Nov 21 14:03:07.042 player-1a2b3c4d I GRAPHICS b6f2a000: a text\n",
            Printed(LogForm_Short, Line("a text")));
}

TEST(LogPrinter, ShortWritesTheDayInTwoDigits) {
  LogRecord theRecord = Line("x");
  theRecord.mTime = 1791072187000000LL;
  EXPECT_EQ("Oct 04 02:03:07.000 player-1a2b3c4d I GRAPHICS b6f2a000: x\n",
            Printed(LogForm_Short, theRecord));
}

TEST(LogPrinter, ShortISOHasMicrosecondsAndTheOffset) {
  EXPECT_EQ("2026-11-21T14:03:07.042123+01:00 player-1a2b3c4d I GRAPHICS b6f2a000: x\n",
            Printed(LogForm_ShortISO, Line("x")));
}

TEST(LogPrinter, TheOffsetFollowsTheZoneAndTheSeason) {
  TimeZone theZone("NST3:30NDT,M3.2.0,M11.1.0");
  LogPrinter thePrinter(LogForm_ShortISO, false, false);
  std::string theOut;
  LogRecord theRecord = Line("x");
  for (int64 theTime : {kTime, static_cast<int64>(1783000000000000LL)}) {
    theRecord.mTime = theTime;
    thePrinter.Print(theRecord, theOut);
  }
  EXPECT_EQ(
      "2026-11-21T09:33:07.042123-03:30 player-1a2b3c4d I GRAPHICS b6f2a000: x\n"
      "2026-07-02T11:16:40.000000-02:30 player-1a2b3c4d I GRAPHICS b6f2a000: x\n",
      theOut);
}

TEST(LogPrinter, TimesWithinOneSecondKeepTheirFractions) {
  TimeZone theZone(kCentralEurope);
  LogPrinter thePrinter(LogForm_Short, false, false);
  std::string theOut;
  for (int64 theTime : {kTime, kTime + 900000, kTime + 958000}) {
    LogRecord theRecord = Line("x");
    theRecord.mTime = theTime;
    thePrinter.Print(theRecord, theOut);
  }
  EXPECT_EQ(
      "Nov 21 14:03:07.042 player-1a2b3c4d I GRAPHICS b6f2a000: x\n"
      "Nov 21 14:03:07.942 player-1a2b3c4d I GRAPHICS b6f2a000: x\n"
      "Nov 21 14:03:08.000 player-1a2b3c4d I GRAPHICS b6f2a000: x\n",
      theOut);
}

TEST(LogPrinter, ATimeThatIsNotKnownIsADash) {
  LogRecord theRecord = Line("x");
  for (int64 theTime : {static_cast<int64>(0), INT64_MAX, INT64_MIN}) {
    theRecord.mTime = theTime;
    EXPECT_EQ("- player-1a2b3c4d I GRAPHICS b6f2a000: x\n", Printed(LogForm_Short, theRecord));
    EXPECT_EQ("- player-1a2b3c4d I GRAPHICS b6f2a000: x\n", Printed(LogForm_ShortISO, theRecord));
    EXPECT_EQ(0u, Printed(LogForm_JSON, theRecord).find("{\"level\":\"info\","));
  }
}

TEST(LogPrinter, ATimeBefore1970IsWrittenToo) {
  LogRecord theRecord = Line("x");
  theRecord.mTime = -1;
  EXPECT_EQ("1970-01-01T00:59:59.999999+01:00 player-1a2b3c4d I GRAPHICS b6f2a000: x\n",
            Printed(LogForm_ShortISO, theRecord));
}

TEST(LogPrinter, TheSignTellsFirstLaterAndPartialLines) {
  LogRecord theRecord = Line("x");
  theRecord.mfContinuation = true;
  EXPECT_EQ("Nov 21 14:03:07.042 player-1a2b3c4d I GRAPHICS b6f2a000+ x\n",
            Printed(LogForm_Short, theRecord));
  theRecord.mfPartial = true;
  EXPECT_EQ("Nov 21 14:03:07.042 player-1a2b3c4d I GRAPHICS b6f2a000~ x\n",
            Printed(LogForm_Short, theRecord));
  theRecord.mfContinuation = false;
  EXPECT_EQ("Nov 21 14:03:07.042 player-1a2b3c4d I GRAPHICS b6f2a000~ x\n",
            Printed(LogForm_Short, theRecord));
}

TEST(LogPrinter, AnAbsentFieldIsADash) {
  LogRecord theRecord;
  theRecord.mTime = kTime;
  theRecord.mText = "x";
  EXPECT_EQ("Nov 21 14:03:07.042 - - - -: x\n", Printed(LogForm_Short, theRecord));
}

TEST(LogPrinter, TheSenderIsTheNameAndTheStartOfTheInstance) {
  const struct {
    std::string mProcess;
    std::string mUUID;
    const char* mSender;
  } kCases[] = {
      {"player", kUUID, "player-1a2b3c4d"},
      {"player", "", "player"},
      {"", kUUID, "-1a2b3c4d"},
      {"", "", "-"},
      {"my player", kUUID, "my\\x20player-1a2b3c4d"},
      {"a\\b\t\n\xFF\xC3\xA4", "", "a\\x5cb\\x09\\x0a\\xff\xC3\xA4"},
      {"-", "", "\\x2d"},
  };
  for (const auto& theCase : kCases) {
    LogRecord theRecord = Line("x");
    theRecord.mProcess = theCase.mProcess;
    theRecord.mUUID = theCase.mUUID;
    EXPECT_EQ("Nov 21 14:03:07.042 "s + theCase.mSender + " I GRAPHICS b6f2a000: x\n",
              Printed(LogForm_Short, theRecord));
  }
}

TEST(LogPrinter, EventsAreReadableInTheShortForms) {
  EXPECT_EQ("Nov 21 14:03:07.042 player-1a2b3c4d - connect\n",
            Printed(LogForm_Short, Event(LogRecordKind_Connect, 0)));
  EXPECT_EQ("Nov 21 14:03:07.042 player-1a2b3c4d - connect, 3 lost before\n",
            Printed(LogForm_Short, Event(LogRecordKind_Connect, 3)));
  EXPECT_EQ("Nov 21 14:03:07.042 player-1a2b3c4d - lost 3\n",
            Printed(LogForm_Short, Event(LogRecordKind_Lost, 3)));
  EXPECT_EQ("Nov 21 14:03:07.042 player-1a2b3c4d - disconnect\n",
            Printed(LogForm_Short, Event(LogRecordKind_Disconnect, 0)));
  EXPECT_EQ("2026-11-21T14:03:07.042123+01:00 player-1a2b3c4d - suppressed 12\n",
            Printed(LogForm_ShortISO, Event(LogRecordKind_Suppressed, 12)));
}

// --- cat and raw

TEST(LogPrinter, CatIsTheTextAlone) { EXPECT_EQ("a text\n", Printed(LogForm_Cat, Line("a text"))); }

TEST(LogPrinter, RawIsTheLineByteByByteUnlessItGoesToATerminal) {
  LogRecord theRecord = Line("x");
  std::string theRaw = "I 14:03:07:042|b6f2a000|GRAPHICS   \0\033[2J\xFF"s;
  theRecord.mRaw = theRaw;
  EXPECT_EQ(theRaw + "\n", Printed(LogForm_Raw, theRecord));
  EXPECT_EQ("I 14:03:07:042|b6f2a000|GRAPHICS   \\x00\\x1b[2J\\xff\n",
            Printed(LogForm_Raw, theRecord, false, true));
}

TEST(LogPrinter, CatAndRawLeaveEventsOut) {
  EXPECT_EQ("", Printed(LogForm_Cat, Event(LogRecordKind_Lost, 3)));
  EXPECT_EQ("", Printed(LogForm_Raw, Event(LogRecordKind_Lost, 3)));
}

TEST(LogPrinter, WhatATerminalMightObeyIsEscapedInTheTextForms) {
  const struct {
    std::string mText;
    const char* mPrinted;
    const char* mWhy;
  } kCases[] = {
      {"a\tb", "a\tb", "the tab is kept"},
      {"a\0b"s, "a\\x00b", "a zero byte"},
      {"\033]0;x\007", "\\x1b]0;x\\x07", "an escape sequence"},
      {"a\rb\x7F", "a\\x0db\\x7f", "carriage return and DEL"},
      {"\xC2\x9B"
       "31m",
       "\\xc2\\x9b31m", "C1 in UTF-8"},
      {"\x9B", "\\x9b", "C1 as a byte"},
      {"\xC2\xA0\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xB5", "\xC2\xA0\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xB5",
       "characters of every length"},
      {"\xC3", "\\xc3", "cut character"},
      {"\xE2\x82"
       "a",
       "\\xe2\\x82a", "cut character before text"},
      {"\xC0\xAF", "\\xc0\\xaf", "longer than necessary"},
      {"\xE0\x9F\xBF", "\\xe0\\x9f\\xbf", "longer than necessary"},
      {"\xF0\x8F\xBF\xBF", "\\xf0\\x8f\\xbf\\xbf", "longer than necessary"},
      {"\xED\xA0\x80", "\\xed\\xa0\\x80", "a surrogate"},
      {"\xED\x9F\xBF", "\xED\x9F\xBF", "the last before the surrogates"},
      {"\xF4\x8F\xBF\xBF", "\xF4\x8F\xBF\xBF", "the last character"},
      {"\xF4\x90\x80\x80", "\\xf4\\x90\\x80\\x80", "behind the last character"},
      {"\\x41 \\", "\\x41 \\", "backslashes are kept"},
      {"0123456\n89abcde\x7Fgh", "0123456\\x0a89abcde\\x7fgh", "at every place of a word"},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    EXPECT_EQ(theCase.mPrinted + "\n"s, Printed(LogForm_Cat, Line(theCase.mText)));
    EXPECT_EQ("Nov 21 14:03:07.042 player-1a2b3c4d I GRAPHICS b6f2a000: "s + theCase.mPrinted + "\n",
              Printed(LogForm_Short, Line(theCase.mText)));
  }
}

// --- json

TEST(LogPrinter, JSONIsOneObjectALine) {
  EXPECT_EQ(
      "{\"ts\":\"2026-11-21T14:03:07.042123+01:00\",\"level\":\"info\",\"process\":\"player\","
      "\"uuid\":\"1a2b3c4d-89ab-cdef-0123-456789abcdef\",\"thread\":\"b6f2a000\",\"module\":\"GRAPHICS\","
      "\"msg\":\"a text\",\"stamp\":\"14:03:07:042\"}\n",
      Printed(LogForm_JSON, Line("a text")));
}

TEST(LogPrinter, JSONNamesTheLevels) {
  const struct {
    char mLevel;
    const char* mName;
  } kCases[] = {{'E', "error"}, {'W', "warning"}, {'I', "info"}, {'D', "debug"}};
  for (const auto& theCase : kCases) {
    LogRecord theRecord = Line("x");
    theRecord.mLevel = theCase.mLevel;
    EXPECT_NE(std::string::npos,
              Printed(LogForm_JSON, theRecord).find("\"level\":\""s + theCase.mName + "\""));
  }
}

TEST(LogPrinter, JSONLeavesOutWhatTheSenderDidNotGiveAndTellsLaterAndPartialLines) {
  LogRecord theRecord;
  theRecord.mfContinuation = true;
  theRecord.mfPartial = true;
  EXPECT_EQ("{\"msg\":\"\",\"continuation\":true,\"partial\":true}\n", Printed(LogForm_JSON, theRecord));
}

TEST(LogPrinter, JSONEventsHaveTheirCount) {
  EXPECT_EQ(
      "{\"ts\":\"2026-11-21T14:03:07.042123+01:00\",\"event\":\"lost\",\"process\":\"player\","
      "\"uuid\":\"1a2b3c4d-89ab-cdef-0123-456789abcdef\",\"count\":18446744073709551615}\n",
      Printed(LogForm_JSON, Event(LogRecordKind_Lost, UINT64_MAX)));
  for (LogRecordKind theKind : {LogRecordKind_Connect, LogRecordKind_Disconnect, LogRecordKind_Suppressed}) {
    EXPECT_NE(std::string::npos, Printed(LogForm_JSON, Event(theKind, 0)).find(",\"count\":0}\n"));
  }
}

TEST(LogPrinter, JSONEscapesWhatItMustAndReplacesWhatIsNotUTF8) {
  const struct {
    std::string mText;
    const char* mPrinted;
  } kCases[] = {
      {"\"\\/", "\\\"\\\\/"},
      {"\b\f\n\r\t", "\\b\\f\\n\\r\\t"},
      {"\0\x01\x1F\x7F"s, "\\u0000\\u0001\\u001f\\u007f"},
      {"\xC2\x80\xC2\x9F\xC2\xA0", "\\u0080\\u009f\xC2\xA0"},
      {"\xC3\xA4\xF0\x9F\x8E\xB5", "\xC3\xA4\xF0\x9F\x8E\xB5"},
      {"\xFF\xE2\x82x", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBDx"},
  };
  for (const auto& theCase : kCases) {
    LogRecord theRecord;
    theRecord.mText = theCase.mText;
    EXPECT_EQ("{\"msg\":\""s + theCase.mPrinted + "\"}\n", Printed(LogForm_JSON, theRecord));
    theRecord.mText = "";
    theRecord.mProcess = theCase.mText;
    EXPECT_EQ("{\"process\":\""s + theCase.mPrinted + "\",\"msg\":\"\"}\n", Printed(LogForm_JSON, theRecord));
  }
}

// --- Colours

TEST(LogPrinter, ColoursAreThoseOfTheLevelAndTheSender) {
  LogRecord theRecord = Line("x");
  theRecord.mLevel = 'E';
  EXPECT_EQ("Nov 21 14:03:07.042 \033[92mplayer-1a2b3c4d\033[0m \033[1;31mE GRAPHICS b6f2a000: x\033[0m\n",
            Printed(LogForm_Short, theRecord, true, true));
  theRecord.mLevel = 'I';
  EXPECT_EQ("Nov 21 14:03:07.042 \033[92mplayer-1a2b3c4d\033[0m I GRAPHICS b6f2a000: x\n",
            Printed(LogForm_Short, theRecord, true, true));
  theRecord.mLevel = 'W';
  EXPECT_EQ("\033[33mx\033[0m\n", Printed(LogForm_Cat, theRecord, true, true));
  theRecord.mLevel = 'D';
  theRecord.mRaw = "raw";
  EXPECT_EQ("\033[2mraw\033[0m\n", Printed(LogForm_Raw, theRecord, true, true));
}

TEST(LogPrinter, JSONIsNeverColoured) {
  EXPECT_EQ(Printed(LogForm_JSON, Line("x")), Printed(LogForm_JSON, Line("x"), true, true));
}

TEST(LogPrinter, TwoInstancesOfAProcessHaveTheSameColour) {
  LogRecord theRecord = Line("x");
  theRecord.mUUID = "ffffffff-89ab-cdef-0123-456789abcdef";
  EXPECT_EQ("Nov 21 14:03:07.042 \033[92mplayer-ffffffff\033[0m I GRAPHICS b6f2a000: x\n",
            Printed(LogForm_Short, theRecord, true, true));
}

TEST(LogPrinter, AlwaysAndNeverSayWhetherThereAreColours) {
  bool theColor = false;
  EXPECT_TRUE(LogPrinter_WantsColor("always", -1, &theColor));
  EXPECT_TRUE(theColor);
  EXPECT_TRUE(LogPrinter_WantsColor("never", -1, &theColor));
  EXPECT_FALSE(theColor);
  EXPECT_FALSE(LogPrinter_WantsColor("sometimes", -1, &theColor));
}

TEST(LogPrinter, AutomaticColoursNeedACapableTerminalAndNoWishAgainstThem) {
  int theMaster = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_TRUE(theMaster >= 0 && grantpt(theMaster) == 0 && unlockpt(theMaster) == 0);
  int theTerminal = open(ptsname(theMaster), O_RDWR | O_NOCTTY);
  ASSERT_GE(theTerminal, 0);
  const struct {
    const char* mTerm;
    const char* mNoColor;
    bool mfColor;
  } kCases[] = {
      {"xterm", nullptr, true}, {"xterm", "", true}, {"xterm", "1", false}, {"dumb", nullptr, false}};
  for (const auto& theCase : kCases) {
    setenv("TERM", theCase.mTerm, 1);
    unsetenv("NO_COLOR");
    if (theCase.mNoColor != nullptr) {
      setenv("NO_COLOR", theCase.mNoColor, 1);
    }
    bool theColor = !theCase.mfColor;
    EXPECT_TRUE(LogPrinter_WantsColor("auto", theTerminal, &theColor));
    EXPECT_EQ(theCase.mfColor, theColor) << theCase.mTerm;
  }
  unsetenv("NO_COLOR");
  setenv("TERM", "xterm", 1);
  int thePipe[2];
  ASSERT_EQ(0, pipe(thePipe));
  bool theColor = true;
  EXPECT_TRUE(LogPrinter_WantsColor("auto", thePipe[1], &theColor));
  EXPECT_FALSE(theColor);
  for (int theDescriptor : {theMaster, theTerminal, thePipe[0], thePipe[1]}) {
    close(theDescriptor);
  }
}
