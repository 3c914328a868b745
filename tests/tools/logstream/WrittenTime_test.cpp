#include "tools/logstream/WrittenTime.h"

#include <gtest/gtest.h>

#include <string>

#include "support/TimeZone.h"

namespace {

constexpr int64 kSecond = 1000000;
constexpr int64 kNow = 1795269787 * kSecond;  // 2026-11-21T14:03:07Z
const char kBerlin[] = "CET-1CEST,M3.5.0,M10.5.0/3";

// The time in microseconds and what is left of the text, or "none" and the whole text.
std::string Taken(bool (WrittenTime::*aTake)(std::string_view&, int64*), std::string_view aText,
                  int64 aReference = kNow) {
  WrittenTime theTimes(aReference);
  int64 theTime = -1;
  bool theIsTaken = (theTimes.*aTake)(aText, &theTime);
  return (theIsTaken ? std::to_string(theTime) : "none") + "|" + std::string(aText);
}

std::string ISO(const char* aText) { return Taken(&WrittenTime::TakeISO, aText); }
std::string Short(const char* aText, int64 aReference = kNow) {
  return Taken(&WrittenTime::TakeShort, aText, aReference);
}
std::string Sender(const char* aText, int64 aReference = kNow) {
  return Taken(&WrittenTime::TakeSender, aText, aReference);
}

}  // namespace

TEST(WrittenTime, ISOTimesHaveTheirOffset) {
  EXPECT_EQ("1795269787042123| x", ISO("2026-11-21T15:03:07.042123+01:00 x"));
  EXPECT_EQ("1795269787042123|", ISO("2026-11-21T14:03:07.042123Z"));
  EXPECT_EQ("1795269787042123|", ISO("2026-11-21T08:33:07.042123-05:30"));
  EXPECT_EQ("1795269787500000|", ISO("2026-11-21T15:03:07.5+0100"));
  EXPECT_EQ("1795269787000000|", ISO("2026-11-21T14:03:07Z"));
}

TEST(WrittenTime, ISODatesCountLeapDays) {
  EXPECT_EQ("951782400000000|", ISO("2000-02-29T00:00:00Z"));
  EXPECT_EQ("0|", ISO("1970-01-01T00:00:00Z"));
  EXPECT_EQ("-1000000|", ISO("1969-12-31T23:59:59Z"));
  EXPECT_EQ("4107542400000000|", ISO("2100-03-01T00:00:00Z"));
  EXPECT_EQ("none|2100-02-29T00:00:00Z", ISO("2100-02-29T00:00:00Z"));
}

TEST(WrittenTime, WhatIsNoISOTimeIsLeft) {
  for (const char* theText :
       {"", "2026-11-21", "2026-11-21 14:03:07Z", "2026-13-01T14:03:07Z", "2026-04-31T14:03:07Z",
        "2026-11-21T24:03:07Z", "2026-11-21T14:60:07Z", "2026-11-21T14:03:61Z", "2026-11-21T14:03:07",
        "2026-11-21T14:03:07.Z", "2026-11-21T14:03:07.0421234Z", "2026-11-21T14:03:07+1"}) {
    EXPECT_EQ("none|" + std::string(theText), ISO(theText));
  }
}

TEST(WrittenTime, ShortTimesAreLocal) {
  TimeZone theZone(kBerlin);
  EXPECT_EQ("1795269787042000| x", Short("Nov 21 15:03:07.042 x"));
  EXPECT_EQ("1782907387000000|", Short("Jul  1 14:03:07.000")) << "summer time";
  EXPECT_EQ("1782907387000000|", Short("Jul 01 14:03:07.000"));
}

TEST(WrittenTime, AShortTimeIsInTheYearThatPutsItClosestBeforeNow) {
  TimeZone theZone("UTC0");
  const int64 kNewYear = 1798761600 * kSecond;  // 2027-01-01T00:00:00Z
  EXPECT_EQ("1798761599999000|", Short("Dec 31 23:59:59.999", kNewYear));
  EXPECT_EQ("1798761601000000|", Short("Jan  1 00:00:01.000", kNewYear)) << "clocks differ";
  EXPECT_EQ("1798761601000000|", Short("Jan  1 00:00:01.000", kNewYear - 5 * kSecond))
      << "and years with them";
  EXPECT_EQ("1767484800000000|", Short("Jan  4 00:00:00.000", kNewYear)) << "too far ahead for a clock";
}

TEST(WrittenTime, AShortLeapDayIsInALeapYear) {
  TimeZone theZone("UTC0");
  EXPECT_EQ("1709208000000000|", Short("Feb 29 12:00:00.000")) << "2024";
}

TEST(WrittenTime, WhatIsNoShortTimeIsLeft) {
  for (const char* theText : {"", "Nov", "nov 21 14:03:07.042", "Nov 21 14:03:07", "Nov 31 14:03:07.042",
                              "ov  21 14:03:07.042", "Nov 0 14:03:07.042", "Nov 21 14:03:07:042"}) {
    EXPECT_EQ("none|" + std::string(theText), Short(theText));
  }
}

TEST(WrittenTime, ASendersStampWithDateIsLocalTime) {
  TimeZone theZone(kBerlin);
  EXPECT_EQ("1795269787042000|", Sender("11/21/2026 15:03:07:042"));
}

TEST(WrittenTime, ASendersStampWithoutDateIsOnTheDayThatPutsItClosestBeforeNow) {
  TimeZone theZone("UTC0");
  EXPECT_EQ("1795269787042000|", Sender("14:03:07:042"));
  EXPECT_EQ("1795270387000000|", Sender("14:13:07:000")) << "clocks differ";
  EXPECT_EQ("1795190400000000|", Sender("16:00:00:000")) << "yesterday";
}

TEST(WrittenTime, ADateThatCannotBeIsTime0) { EXPECT_EQ("0|", Sender("02/30/2026 15:03:07:042")); }

TEST(WrittenTime, WhatIsNoSendersStampIsLeft) {
  for (const char* theText : {"", "14:03:07", "14:03:07.042", "14:03:07:04", "11/21/26 14:03:07:042"}) {
    EXPECT_EQ("none|" + std::string(theText), Sender(theText));
  }
}

TEST(WrittenTime, LinesOfOneHourAndOfDifferentHoursHaveTheirOwnTimes) {
  TimeZone theZone("UTC0");
  WrittenTime theTimes(kNow);
  const struct {
    std::string_view mText;
    int64 mTime;
  } kCases[] = {{"Nov 21 13:00:00.000", 1795266000000000},
                {"Nov 21 13:59:59.000", 1795269599000000},
                {"Nov 21 14:00:00.000", 1795269600000000},
                {"Nov 20 14:00:00.000", 1795183200000000},
                {"Oct 20 14:00:00.000", 1792504800000000}};
  for (const auto& theCase : kCases) {
    std::string_view theText = theCase.mText;
    int64 theTime = 0;
    EXPECT_TRUE(theTimes.TakeShort(theText, &theTime));
    EXPECT_EQ(theCase.mTime, theTime) << theCase.mText;
  }
}
