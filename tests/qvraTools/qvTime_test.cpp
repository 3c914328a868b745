// Calendar time. RFC 1123 dates, time values and the stopwatch have files of their own.

#include "qvraTools/qvTime.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <stddef.h>
#include <string.h>
#include <time.h>

#include "qvraTools/qvTime_p.h"
#include "support/ChildProcess.h"
#include "support/TimeZone.h"
#include "support/TwoWords.h"

namespace {

const char kCentralEurope[] = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr int kNov1994 = 784111777;    // 1994-11-06 08:49:37 UTC
constexpr int kJuly2015 = 1435708800;  // 2015-07-01 00:00:00 UTC

qvtm Fields(int aYear, int aMonth, int aDay, int anHour, int aMinute, int aSecond) {
  qvtm theTime = {};
  theTime.tm_year = aYear - 1900;
  theTime.tm_mon = aMonth - 1;
  theTime.tm_mday = aDay;
  theTime.tm_hour = anHour;
  theTime.tm_min = aMinute;
  theTime.tm_sec = aSecond;
  return theTime;
}

// A time whose every field differs from what a conversion gives.
qvtm Unused() { return {-1, -1, -1, -1, -1, -1, -1, -1, -1, 77}; }

void ExpectCalendar(const qvtm& aTime, int aYear, int aMonth, int aDay, int anHour, int aMinute,
                    int aSecond) {
  EXPECT_EQ(aYear - 1900, aTime.tm_year);
  EXPECT_EQ(aMonth - 1, aTime.tm_mon);
  EXPECT_EQ(aDay, aTime.tm_mday);
  EXPECT_EQ(anHour, aTime.tm_hour);
  EXPECT_EQ(aMinute, aTime.tm_min);
  EXPECT_EQ(aSecond, aTime.tm_sec);
}

void ExpectSame(const qvtm& anExpected, const qvtm& aTime) {
  EXPECT_EQ(0, memcmp(&anExpected, &aTime, sizeof(qvtm)));
}

}  // namespace

TEST(qvTime, BrokenDownTimeHasTenFieldsInThisOrder) {
  EXPECT_EQ(40u, sizeof(qvtm));
  EXPECT_EQ(0u, offsetof(qvtm, tm_sec));
  EXPECT_EQ(4u, offsetof(qvtm, tm_min));
  EXPECT_EQ(8u, offsetof(qvtm, tm_hour));
  EXPECT_EQ(12u, offsetof(qvtm, tm_mday));
  EXPECT_EQ(16u, offsetof(qvtm, tm_mon));
  EXPECT_EQ(20u, offsetof(qvtm, tm_year));
  EXPECT_EQ(24u, offsetof(qvtm, tm_isdst)) << "before tm_wday, unlike the system's";
  EXPECT_EQ(28u, offsetof(qvtm, tm_wday));
  EXPECT_EQ(32u, offsetof(qvtm, tm_yday));
  EXPECT_EQ(36u, offsetof(qvtm, tm_msec));
}

TEST(qvTime, TimeIsTheSystemsTimeInSeconds) {
  const time_t theBefore = time(nullptr) - 1;  // its clock may lag by a tick
  int theStored = 0;
  const int theTime = qvTime_time(&theStored);
  const time_t theAfter = time(nullptr) + 1;
  EXPECT_LE(theBefore, theTime);
  EXPECT_GE(theAfter, theTime);
  EXPECT_EQ(theTime, theStored);
}

TEST(qvTime, TimeNeedsNoPlaceToStoreIt) { EXPECT_LT(0, qvTime_time(nullptr)); }

TEST(qvTime, LocalTimeMSIsTheWallClockInMilliseconds) {
  qvtimeval theBefore;
  qvtimeval theAfter;
  qvULongLong theTime;
  qvTime_GetTimeOfDay(&theBefore);
  qvTime_GetLocalTimeMS(&theTime);
  qvTime_GetTimeOfDay(&theAfter);
  EXPECT_LE(theBefore.tv_sec * 1000ull + theBefore.tv_usec / 1000u, Native(theTime));
  EXPECT_GE(theAfter.tv_sec * 1000ull + theAfter.tv_usec / 1000u, Native(theTime));
}

TEST(qvTime, ATimeValueIsCutToMilliseconds) {
  const struct {
    qvtimeval mTime;
    uint64 mMilliSeconds;
    const char* mWhy;
  } kCases[] = {
      {{0, 0}, 0, "zero"},
      {{0, 999}, 0, "less than a millisecond"},
      {{1, 999999}, 1999, "cut, not rounded"},
      {{4294968, 0}, 4294968000, "more than a word"},
      {{INT32_MAX, 500000}, 2147483647500, "the last second before 2038-01-19 03:14:08"},
      {{INT32_MIN, 0}, 2147483648000, "seconds go on as unsigned ones behind it"},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    qvULongLong theResult;
    qvTimeVal_S_GetMilliSeconds(&theCase.mTime, &theResult);
    EXPECT_EQ(theCase.mMilliSeconds, Native(theResult));
  }
}

TEST(qvTime, LocaltimeIsInTheProcesssTimeZone) {
  const TimeZone theZone(kCentralEurope);
  qvtm theTime = Unused();
  EXPECT_EQ(&theTime, qvTime_localtime(&kNov1994, &theTime));
  ExpectCalendar(theTime, 1994, 11, 6, 9, 49, 37);
  EXPECT_EQ(0, theTime.tm_isdst);
  EXPECT_EQ(0, theTime.tm_wday);
  EXPECT_EQ(309, theTime.tm_yday);
}

TEST(qvTime, LocaltimeTellsDaylightSaving) {
  const TimeZone theZone(kCentralEurope);
  qvtm theTime = Unused();
  EXPECT_EQ(&theTime, qvTime_localtime(&kJuly2015, &theTime));
  ExpectCalendar(theTime, 2015, 7, 1, 2, 0, 0);
  EXPECT_EQ(1, theTime.tm_isdst);
  EXPECT_EQ(3, theTime.tm_wday);
  EXPECT_EQ(181, theTime.tm_yday);
}

TEST(qvTime, LocaltimeFollowsAChangeOfTheTimeZone) {
  const TimeZone theZone(kCentralEurope);
  qvtm theTime = Unused();
  qvTime_localtime(&kNov1994, &theTime);
  const TimeZone theOtherZone("XXX+5:30");
  qvTime_localtime(&kNov1994, &theTime);
  ExpectCalendar(theTime, 1994, 11, 6, 3, 19, 37);
}

TEST(qvTime, LocaltimeClearsTheMilliseconds) {
  qvtm theTime = Unused();
  qvTime_localtime(&kNov1994, &theTime);
  EXPECT_EQ(0, theTime.tm_msec);
}

TEST(qvTime, GmtimeIsUtcInEveryTimeZone) {
  const TimeZone theZone(kCentralEurope);
  qvtm theTime = Unused();
  EXPECT_EQ(&theTime, qvTime_gmtime(&kJuly2015, &theTime));
  ExpectCalendar(theTime, 2015, 7, 1, 0, 0, 0);
  EXPECT_EQ(0, theTime.tm_isdst);
  EXPECT_EQ(3, theTime.tm_wday);
  EXPECT_EQ(181, theTime.tm_yday);
}

TEST(qvTime, GmtimeLeavesTheMilliseconds) {
  qvtm theTime = Unused();
  qvTime_gmtime(&kNov1994, &theTime);
  EXPECT_EQ(77, theTime.tm_msec);
}

TEST(qvTime, EveryIntIsATime) {
  const TimeZone theZone("UTC0");
  const struct {
    int mTime;
    int mYear, mMonth, mDay, mHour, mMinute, mSecond, mWeekDay, mYearDay;
  } kCases[] = {
      {0, 1970, 1, 1, 0, 0, 0, 4, 0},           {-1, 1969, 12, 31, 23, 59, 59, 3, 364},
      {INT_MAX, 2038, 1, 19, 3, 14, 7, 2, 18},  {INT_MIN, 1901, 12, 13, 20, 45, 52, 5, 346},
      {951782400, 2000, 2, 29, 0, 0, 0, 2, 59}, {1483228799, 2016, 12, 31, 23, 59, 59, 6, 365},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mTime);
    for (auto theFunction : {qvTime_gmtime, qvTime_localtime}) {
      qvtm theTime = Unused();
      EXPECT_EQ(&theTime, theFunction(&theCase.mTime, &theTime));
      ExpectCalendar(theTime, theCase.mYear, theCase.mMonth, theCase.mDay, theCase.mHour, theCase.mMinute,
                     theCase.mSecond);
      EXPECT_EQ(theCase.mWeekDay, theTime.tm_wday);
      EXPECT_EQ(theCase.mYearDay, theTime.tm_yday);
    }
  }
}

TEST(qvTime, ANullTimeFailsAnAssertion) {
  qvtm theTime = Unused();
  EXPECT_QV_ASSERTION(qvTime_localtime(nullptr, &theTime), "aTime != NULL", "qvTime.cpp");
  EXPECT_QV_ASSERTION(qvTime_gmtime(nullptr, &theTime), "aTime != NULL", "qvTime.cpp");
}

TEST(qvTime, MktimeTakesLocalTime) {
  const TimeZone theZone(kCentralEurope);
  qvtm theTime = Fields(1994, 11, 6, 9, 49, 37);
  EXPECT_EQ(kNov1994, qvTime_mktime(&theTime));
  ExpectCalendar(theTime, 1994, 11, 6, 9, 49, 37);
  EXPECT_EQ(0, theTime.tm_wday);
  EXPECT_EQ(309, theTime.tm_yday);
}

TEST(qvTime, MktimeFindsOutAboutDaylightSaving) {
  const TimeZone theZone(kCentralEurope);
  qvtm theTime = Fields(2015, 7, 1, 2, 0, 0);
  theTime.tm_isdst = -1;
  EXPECT_EQ(kJuly2015, qvTime_mktime(&theTime));
  EXPECT_EQ(1, theTime.tm_isdst);
}

TEST(qvTime, MktimeMovesAnHourWhenDaylightSavingIsNotAsGiven) {
  const TimeZone theZone(kCentralEurope);
  qvtm theTime = Fields(2015, 7, 1, 1, 0, 0);
  theTime.tm_isdst = 0;
  EXPECT_EQ(kJuly2015, qvTime_mktime(&theTime));
  ExpectCalendar(theTime, 2015, 7, 1, 2, 0, 0);
  EXPECT_EQ(1, theTime.tm_isdst);
}

TEST(qvTime, MktimeBringsTheFieldsIntoTheirRanges) {
  const TimeZone theZone("UTC0");
  qvtm theTime = Fields(2015, 14, 31, 24, 61, 61);  // the 31st of February 2016 at 24:61:61
  theTime.tm_wday = 99;
  theTime.tm_yday = -99;
  EXPECT_EQ(1456966921, qvTime_mktime(&theTime));
  ExpectCalendar(theTime, 2016, 3, 3, 1, 2, 1);
  EXPECT_EQ(4, theTime.tm_wday);
  EXPECT_EQ(62, theTime.tm_yday);
}

TEST(qvTime, MktimeLeavesTheMilliseconds) {
  const TimeZone theZone("UTC0");
  qvtm theTime = Fields(2015, 7, 1, 0, 0, 0);
  theTime.tm_msec = 1234;
  EXPECT_EQ(kJuly2015, qvTime_mktime(&theTime));
  EXPECT_EQ(1234, theTime.tm_msec);
}

TEST(qvTime, MktimeTakesTheTimesThatAnIntHolds) {
  const TimeZone theZone("UTC0");
  qvtm theTime = Fields(1970, 1, 1, 0, 0, 0);
  EXPECT_EQ(0, qvTime_mktime(&theTime));
  theTime = Fields(2038, 1, 19, 3, 14, 7);
  EXPECT_EQ(INT_MAX, qvTime_mktime(&theTime));
}

TEST(qvTime, MktimeRefusesOtherTimesAndLeavesThemUnchanged) {
  const TimeZone theZone("UTC0");
  const qvtm kTimes[] = {
      Fields(1969, 12, 31, 23, 59, 59),  // -1 itself
      Fields(1969, 12, 31, 23, 59, 30), Fields(1901, 1, 1, 0, 0, 0),  Fields(1969, 12, 31, 23, 59, 0),
      Fields(2038, 1, 19, 3, 14, 8),    Fields(2100, 13, 1, 0, 0, 0),
  };
  for (const qvtm& theGiven : kTimes) {
    SCOPED_TRACE(theGiven.tm_year);
    qvtm theTime = theGiven;
    EXPECT_EQ(-1, qvTime_mktime(&theTime));
    ExpectSame(theGiven, theTime);
  }
  qvtm theTime = Fields(1970, 1, 1, 0, 0, 0);
  theTime.tm_year = INT32_MAX;
  const qvtm theGiven = theTime;
  EXPECT_EQ(-1, qvTime_mktime(&theTime)) << "a year that the system cannot count";
  ExpectSame(theGiven, theTime);
}

TEST(qvTime, MktimeUndoesLocaltime) {
  const TimeZone theZone(kCentralEurope);
  for (int theTime = 3600; theTime > 0 && theTime < INT_MAX - 8000000; theTime += 7777777) {
    qvtm theFields;
    ASSERT_NE(nullptr, qvTime_localtime(&theTime, &theFields));
    EXPECT_EQ(theTime, qvTime_mktime(&theFields));
  }
}
