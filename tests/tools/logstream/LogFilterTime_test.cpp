#include <gtest/gtest.h>

#include "support/TimeZone.h"
#include "tools/logstream/LogFilter.h"

// 2026-11-21 13:03:07.042123 UTC, a Saturday; 14:03 in Central Europe.
static constexpr int64 kNow = 1795266187042123LL;
static const char kCentralEurope[] = "CET-1CEST,M3.5.0,M10.5.0/3";

struct TimeCase {
  const char* mText;
  int64 mTime;
  const char* mWhy;
};

TEST(LogFilterTime, TheTimesOfTheCommandLineAreRead) {
  TimeZone theZone(kCentralEurope);
  const TimeCase kCases[] = {
      {"2026-11-21 14:03:07", 1795266187000000LL, "local time"},
      {"2026-11-21 14:03", 1795266180000000LL, "without the seconds"},
      {"2026-11-21", 1795215600000000LL, "the beginning of the day"},
      {"2026-11-21T14:03:07.042123", 1795266187042123LL, "microseconds"},
      {"2026-11-21 14:03:07.0421239", 1795266187042123LL, "what is below them is dropped"},
      {"2026-11-21 14:03:07.5", 1795266187500000LL, "fewer digits"},
      {"2026-07-01 12:00", 1782900000000000LL, "summer time"},
      {"2026-11-21T13:03:07Z", 1795266187000000LL, "UTC"},
      {"2026-11-21T14:03:07+01:00", 1795266187000000LL, "with an offset"},
      {"2026-11-21T09:33:07.042123-0330", 1795266187042123LL, "an offset without a colon"},
      {"2026-11-21T14:03+01", 1795266180000000LL, "an offset of hours"},
      {"2024-02-29T00:00:00Z", 1709164800000000LL, "a leap day"},
      {"1969-12-31T23:59:59Z", -1000000LL, "before 1970"},
      {"14:03", 1795266180000000LL, "today"},
      {"00:00:01", 1795215601000000LL, "today with seconds"},
      {"@1795266187", 1795266187000000LL, "seconds since 1970"},
      {"@1795266187.25", 1795266187250000LL, "with a fraction"},
      {"@0", 0, "1970"},
      {"-90s", kNow - 90000000LL, "seconds ago"},
      {"-15m", kNow - 900000000LL, "minutes ago"},
      {"-2h", kNow - 7200000000LL, "hours ago"},
      {"-1d", kNow - 86400000000LL, "days ago"},
      {"-0s", kNow, "now"},
  };
  for (const TimeCase& theCase : kCases) {
    int64 theTime = -7;
    EXPECT_TRUE(LogFilter_ParseTime(theCase.mText, kNow, &theTime)) << theCase.mText;
    EXPECT_EQ(theCase.mTime, theTime) << theCase.mText << ": " << theCase.mWhy;
  }
}

TEST(LogFilterTime, TodayIsTheLocalDay) {
  TimeZone theZone("XXX-14");  // 03:03 on the 22nd there
  int64 theTime = 0;
  EXPECT_TRUE(LogFilter_ParseTime("00:00", kNow, &theTime));
  EXPECT_EQ(1795255200000000LL, theTime);
}

TEST(LogFilterTime, AnythingElseIsRefused) {
  TimeZone theZone(kCentralEurope);
  for (const char* theText : {"",
                              " ",
                              "now",
                              "2026",
                              "2026-11",
                              "2026-11-",
                              "2026-11-21 ",
                              "2026-11-21 14",
                              "2026-11-21 14:",
                              "2026-11-21 14:03:",
                              "2026-11-21 14:03:07.",
                              "2026-11-21 14:03:07x",
                              "2026-11-21  14:03",
                              "2026-11-21Z",
                              "2026-13-01",
                              "2026-00-01",
                              "2026-11-31",
                              "2025-02-29",
                              "2026-11-00",
                              "0000-01-01",
                              "12026-11-21",
                              "2026-11-21 24:00",
                              "2026-11-21 14:60",
                              "2026-11-21 14:03:60",
                              "2026-11-21T14:03:07+",
                              "2026-11-21T14:03:07+1",
                              "2026-11-21T14:03:07+24:00",
                              "2026-11-21T14:03:07+01:",
                              "2026-11-21T14:03:07+01:000",
                              "2026-11-21T14:03:07ZZ",
                              "2026-11-21T14:03:07 Z",
                              "14",
                              "14:3",
                              "1:03",
                              "14:03:7",
                              "14:03 ",
                              "14:03Z",
                              "@",
                              "@-1",
                              "@1x",
                              "@1.",
                              "@1234567890123",
                              "-",
                              "-5",
                              "-s",
                              "-5w",
                              "-5ss",
                              "-1000000000000d",
                              "-1234567890123s",
                              "90s",
                              "--5s"}) {
    int64 theTime = -7;
    EXPECT_FALSE(LogFilter_ParseTime(theText, kNow, &theTime)) << theText;
    EXPECT_EQ(-7, theTime) << theText;
  }
}
