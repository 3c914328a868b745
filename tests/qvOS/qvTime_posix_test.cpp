#include <gtest/gtest.h>
#include <stddef.h>
#include <stdlib.h>
#include <sys/time.h>
#include <time.h>

#include <string>
#include <type_traits>

#include "qvOS/qvTime.h"
#include "qvOS/qvTime_p.h"
#include "support/TimeZone.h"

namespace {

constexpr char kCentralEurope[] = "CET-1CEST,M3.5.0,M10.5.0/3";

qvtimezone GetTimeZone() {
  qvtimezone theZone = {12345, 12345};
  EXPECT_EQ(0, qvTime_GetTimeZone(&theZone));
  return theZone;
}

int32 MinutesIn(const char* aRule) {
  TimeZone theZone(aRule);
  return GetTimeZone().tz_minuteswest;
}

int32 DaylightSavingIn(const char* aRule) {
  TimeZone theZone(aRule);
  return GetTimeZone().tz_dsttime;
}

}  // namespace

TEST(qvTimeOfSystem, TimeValueHasTwo32BitFieldsInOrder) {
  EXPECT_EQ(0u, offsetof(qvtimeval, tv_sec));
  EXPECT_EQ(4u, offsetof(qvtimeval, tv_usec));
  EXPECT_EQ(8u, sizeof(qvtimeval));
  EXPECT_TRUE((std::is_same<decltype(qvtimeval::tv_sec), int32>::value));
  EXPECT_TRUE((std::is_same<decltype(qvtimeval::tv_usec), int32>::value));
}

TEST(qvTimeOfSystem, TimeZoneHasTwo32BitFieldsInOrder) {
  EXPECT_EQ(0u, offsetof(qvtimezone, tz_minuteswest));
  EXPECT_EQ(4u, offsetof(qvtimezone, tz_dsttime));
  EXPECT_EQ(8u, sizeof(qvtimezone));
  EXPECT_TRUE((std::is_same<decltype(qvtimezone::tz_minuteswest), int32>::value));
  EXPECT_TRUE((std::is_same<decltype(qvtimezone::tz_dsttime), int32>::value));
}

TEST(qvTimeOfSystem, SecondsAreThoseOfMktime) {
  EXPECT_TRUE((std::is_same<qvtime_t, decltype(mktime(nullptr))>::value));
}

TEST(qvTimeOfSystem, TimeOfDayLiesBetweenTwoReadingsOfTheSystem) {
  struct timeval theBefore;
  struct timeval theAfter;
  qvtimeval theNow = {-1, -1};
  gettimeofday(&theBefore, nullptr);
  qvTime_GetTimeOfDay(&theNow);
  gettimeofday(&theAfter, nullptr);
  int64 theNowUs = int64{theNow.tv_sec} * 1000000 + theNow.tv_usec;
  EXPECT_LE(int64{theBefore.tv_sec} * 1000000 + theBefore.tv_usec, theNowUs);
  EXPECT_GE(int64{theAfter.tv_sec} * 1000000 + theAfter.tv_usec, theNowUs);
  EXPECT_GE(theNow.tv_usec, 0);
  EXPECT_LT(theNow.tv_usec, 1000000);
}

TEST(qvTimeOfSystem, TimeZoneOfGreenwichIsZero) {
  EXPECT_EQ(0, MinutesIn("UTC0"));
  EXPECT_EQ(0, DaylightSavingIn("UTC0"));
}

TEST(qvTimeOfSystem, TimeZoneGivesMinutesAndNotHours) {
  EXPECT_EQ(345, MinutesIn("NPT-5:45"));
  EXPECT_EQ(-210, MinutesIn("NST3:30"));
}

TEST(qvTimeOfSystem, TimeZoneDividesTowardZero) {
  EXPECT_EQ(0, MinutesIn("EEE-0:00:59"));
  EXPECT_EQ(1, MinutesIn("EEE-0:01:59"));
  EXPECT_EQ(0, MinutesIn("WWW0:00:59"));
  EXPECT_EQ(-1, MinutesIn("WWW0:01:59"));
}

TEST(qvTimeOfSystem, DaylightSavingInForceGivesSixty) {
  EXPECT_EQ(60, DaylightSavingIn("STD0DST,0/0,J365/25")) << "daylight saving time all year";
}

TEST(qvTimeOfSystem, AZoneWithoutDaylightSavingGivesZero) { EXPECT_EQ(0, DaylightSavingIn("AAA-1")); }

TEST(qvTimeOfSystem, TheOffsetOfAZoneWithDaylightSavingIsThatOfStandardTimeAllYear) {
  // On every day of the year daylight saving time is in force in one of them.
  EXPECT_EQ(60, MinutesIn(kCentralEurope));
  EXPECT_EQ(-300, MinutesIn("EST5EDT,M3.2.0,M11.1.0"));
  EXPECT_EQ(600, MinutesIn("AEST-10AEDT,M10.1.0,M4.1.0/3"));
}

TEST(qvTimeOfSystem, TimeZoneFollowsAChangeOfTheEnvironment) {
  TimeZone theZone("AAA-2");
  EXPECT_EQ(120, GetTimeZone().tz_minuteswest);
  setenv("TZ", "BBB-3", 1);
  EXPECT_EQ(180, GetTimeZone().tz_minuteswest);
}

TEST(qvTimeKept, TheOffsetIsPositiveEastOfGreenwich) {
  EXPECT_EQ(60, MinutesIn("CET-1"));  // the kept sign: one hour east
  EXPECT_EQ(0, MinutesIn("GMT0"));
  EXPECT_EQ(-60, MinutesIn("AZOT1"));  // one hour west
}

TEST(qvTimeOfSystem, MacroDateGivesLocalMidnightOfTheDay) {
  TimeZone theZone(kCentralEurope);
  EXPECT_EQ(1422918000, qvTime_ConvertMacroDate("Feb  3 2015"));  // 2015-02-02 23:00:00 UTC
  EXPECT_EQ(1438380000, qvTime_ConvertMacroDate("Aug  1 2015"));  // 2015-07-31 22:00:00 UTC, summer time
}

TEST(qvTimeOfSystem, MacroDateKnowsEveryMonth) {
  TimeZone theZone("UTC0");
  const struct {
    const char* mText;
    qvtime_t mTime;
  } kCases[] = {
      {"Jan 1 2015", 1420070400}, {"Feb 1 2015", 1422748800}, {"Mar 1 2015", 1425168000},
      {"Apr 1 2015", 1427846400}, {"May 1 2015", 1430438400}, {"Jun 1 2015", 1433116800},
      {"Jul 1 2015", 1435708800}, {"Aug 1 2015", 1438387200}, {"Sep 1 2015", 1441065600},
      {"Oct 1 2015", 1443657600}, {"Nov 1 2015", 1446336000}, {"Dec 1 2015", 1448928000},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mTime, qvTime_ConvertMacroDate(theCase.mText)) << theCase.mText;
  }
}

TEST(qvTimeKept, MacroDateTakesTheMonthFromThePlaceOfTheWordAmongTheNames) {
  TimeZone theZone("UTC0");
  EXPECT_EQ(1420070400, qvTime_ConvertMacroDate("an 1 2015")) << "within January";
  EXPECT_EQ(1422748800, qvTime_ConvertMacroDate("bMar 1 2015")) << "begins in February";
  EXPECT_EQ(1420070400, qvTime_ConvertMacroDate("J 1 2015")) << "the first of several places";
}

TEST(qvTimeOfSystem, MacroDateWithAnUnknownMonthIsZero) {
  TimeZone theZone(kCentralEurope);
  EXPECT_EQ(0, qvTime_ConvertMacroDate("Foo 1 2015"));
  EXPECT_EQ(0, qvTime_ConvertMacroDate("feb 3 2015")) << "the names are compared with their case";
  EXPECT_EQ(0, qvTime_ConvertMacroDate("February 3 2015")) << "the whole word must stand among the names";
}

TEST(qvTimeOfSystem, MacroDateWithAVeryLongWordIsZero) {
  std::string theText = "JanFebMarAprMayJunJulAugSepOctNovDec";
  EXPECT_EQ(0, qvTime_ConvertMacroDate((theText + theText + " 1 2015").c_str()));
  EXPECT_EQ(0, qvTime_ConvertMacroDate((std::string(10000, 'J') + " 1 2015").c_str()));
}

TEST(qvTimeOfSystem, MacroDateWithoutAllThreePartsIsZero) {
  EXPECT_EQ(0, qvTime_ConvertMacroDate(""));
  EXPECT_EQ(0, qvTime_ConvertMacroDate("Feb"));
  EXPECT_EQ(0, qvTime_ConvertMacroDate("Feb 3"));
  EXPECT_EQ(0, qvTime_ConvertMacroDate("Feb x 2015"));
}

TEST(qvTimeOfSystem, MacroDateReadsTheCompilersOwnDate) {
  qvtime_t theBuildDay = qvTime_ConvertMacroDate(__DATE__);
  EXPECT_GT(theBuildDay, 1420070400);
  EXPECT_LT(theBuildDay, time(nullptr) + 2 * 86400) << "two days of tolerance for a zone that differs";
}

TEST(qvTimeOfSystem, TickCountLiesBetweenTwoReadingsOfTheMonotonicClock) {
  struct timespec theBefore;
  struct timespec theAfter;
  clock_gettime(CLOCK_MONOTONIC, &theBefore);
  uint32 theTicks = qvTime_GetTickCount();
  clock_gettime(CLOCK_MONOTONIC, &theAfter);
  uint32 theFirst = static_cast<uint32>(int64{theBefore.tv_sec} * 1000 + theBefore.tv_nsec / 1000000);
  uint32 theLast = static_cast<uint32>(int64{theAfter.tv_sec} * 1000 + theAfter.tv_nsec / 1000000);
  EXPECT_LE(theTicks - theFirst, theLast - theFirst);
}

TEST(qvTimeOfSystem, TickCountWrapsAfter49Point7Days) {
  const struct {
    long mSeconds;
    long mNanoseconds;
    uint32 mTicks;
    const char* mWhy;
  } kCases[] = {
      {0, 0, 0, "start"},
      {0, 999999, 0, "below a millisecond is dropped"},
      {1, 1000000, 1001, "seconds and milliseconds"},
      {4294967, 294999999, 4294967294u, "the last but one"},
      {4294967, 295000000, 4294967295u, "the highest count"},
      {4294967, 296000000, 0, "49 days, 17:02:47.296: starts again"},
      {4294968, 0, 704, "and goes on"},
      {2147483647, 999000000, 4294967295u, "the last second that a 32-bit clock has"},
  };
  for (const auto& theCase : kCases) {
    struct timespec theTime = {};
    theTime.tv_sec = theCase.mSeconds;
    theTime.tv_nsec = theCase.mNanoseconds;
    EXPECT_EQ(theCase.mTicks, qvTime_S_ToTickCount(&theTime)) << theCase.mWhy;
  }
}
