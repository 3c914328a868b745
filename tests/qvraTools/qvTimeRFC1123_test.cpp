#include <gtest/gtest.h>

#include <string>

#include "qvraTools/qvTime.h"
#include "qvraTools/qvTime_p.h"
#include "support/OwnedText.h"
#include "support/TimeZone.h"

namespace {

struct DateCase {
  const char* mText;
  int mResult;
  int mWeekDay, mDay, mMonth, mYear, mHour, mMinute, mSecond;
  const char* mWhy;
};

void Expect(const DateCase& aCase) {
  SCOPED_TRACE(std::string(aCase.mText) + ": " + aCase.mWhy);
  qvtm theTime = {9, 9, 9, 9, 9, 9, 9, 9, 9, 9};  // every field must be cleared
  EXPECT_EQ(aCase.mResult, qvTime_ParseRFC1123Date(aCase.mText, &theTime));
  EXPECT_EQ(aCase.mWeekDay, theTime.tm_wday);
  EXPECT_EQ(aCase.mDay, theTime.tm_mday);
  EXPECT_EQ(aCase.mMonth, theTime.tm_mon);
  EXPECT_EQ(aCase.mYear, theTime.tm_year);
  EXPECT_EQ(aCase.mHour, theTime.tm_hour);
  EXPECT_EQ(aCase.mMinute, theTime.tm_min);
  EXPECT_EQ(aCase.mSecond, theTime.tm_sec);
  EXPECT_EQ(0, theTime.tm_isdst);
  EXPECT_EQ(0, theTime.tm_yday);
  EXPECT_EQ(0, theTime.tm_msec);
}

int ResultOf(const std::string& aText) {
  qvtm theTime;
  return qvTime_ParseRFC1123Date(aText.c_str(), &theTime);
}

int ZoneMinutesOf(const char* aText) {
  qvtm theTime;
  int theMinutes = 9999;
  qvTime_S_ParseRFC1123Date(aText, &theTime, &theMinutes);
  return theMinutes;
}

std::string DateOf(int aTime) {
  qvtm theTime;
  qvTime_gmtime(&aTime, &theTime);
  return TakeText(qvTime_S_NewRFC1123Date(&theTime));
}

}  // namespace

TEST(qvTimeRFC1123, ADateHasTheFormOfTheStandard) {
  EXPECT_EQ("Sun, 06 Nov 1994 08:49:37 GMT", DateOf(784111777));
  EXPECT_EQ("Thu, 01 Jan 1970 00:00:00 GMT", DateOf(0));
  EXPECT_EQ("Tue, 19 Jan 2038 03:14:07 GMT", DateOf(2147483647));
  EXPECT_EQ("Wed, 31 Dec 1969 23:59:59 GMT", DateOf(-1));
}

TEST(qvTimeRFC1123, EveryDayAndEveryMonthHasItsName) {
  const char* const kDays[7] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  const char* const kMonths[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  qvtm theTime = {};
  theTime.tm_mday = 1;
  for (int theDay = 0; theDay < 7; ++theDay) {
    theTime.tm_wday = theDay;
    EXPECT_EQ(std::string(kDays[theDay]) + ", 01 Jan 1900 00:00:00 GMT",
              TakeText(qvTime_S_NewRFC1123Date(&theTime)));
  }
  theTime.tm_wday = 0;
  for (int theMonth = 0; theMonth < 12; ++theMonth) {
    theTime.tm_mon = theMonth;
    EXPECT_EQ(std::string("Sun, 01 ") + kMonths[theMonth] + " 1900 00:00:00 GMT",
              TakeText(qvTime_S_NewRFC1123Date(&theTime)));
  }
}

TEST(qvTimeRFC1123, TheDateIsNowInUtcWhateverTheTimeZone) {
  const TimeZone theZone("XXX-14");
  const int theBefore = qvTime_time(nullptr);
  const std::string theDate = TakeText(qvTime_GetRFC1123Date());
  const int theAfter = qvTime_time(nullptr);
  bool theFound = false;
  for (int theTime = theBefore; theTime <= theAfter; ++theTime) {
    theFound |= theDate == DateOf(theTime);
  }
  EXPECT_TRUE(theFound) << theDate;
}

TEST(qvTimeRFC1123, AWholeDateIsRead) {
  Expect({"Sun, 06 Nov 1994 08:49:37 GMT", 0, 0, 6, 10, 94, 8, 49, 37, "as the standard has it"});
  Expect({"Sat, 31 Dec 2039 23:59:59 GMT", 0, 6, 31, 11, 139, 23, 59, 59, "the largest values"});
  Expect({"Sun, 06 Nov 1994 08:49:37 +0130", 0, 0, 6, 10, 94, 8, 49, 37, "a numeric zone"});
}

TEST(qvTimeRFC1123, ADateThatWasWrittenIsReadBack) {
  const int kTimes[] = {0, 784111777, 951782400, 1435708800, 2147483647, -2147483647};
  for (int theTime : kTimes) {
    SCOPED_TRACE(DateOf(theTime));
    qvtm theWritten;
    qvtm theRead;
    qvTime_gmtime(&theTime, &theWritten);
    EXPECT_EQ(0, qvTime_ParseRFC1123Date(DateOf(theTime).c_str(), &theRead));
    EXPECT_EQ(theWritten.tm_year, theRead.tm_year);
    EXPECT_EQ(theWritten.tm_mon, theRead.tm_mon);
    EXPECT_EQ(theWritten.tm_mday, theRead.tm_mday);
    EXPECT_EQ(theWritten.tm_wday, theRead.tm_wday);
    EXPECT_EQ(theWritten.tm_hour, theRead.tm_hour);
    EXPECT_EQ(theWritten.tm_min, theRead.tm_min);
    EXPECT_EQ(theWritten.tm_sec, theRead.tm_sec);
  }
}

TEST(qvTimeRFC1123, PartsMayBeMissing) {
  const DateCase kCases[] = {
      {"06 Nov 1994", 0, 0, 6, 10, 94, 0, 0, 0, "no day of the week, no time"},
      {"Nov 1994", 0, 0, 0, 10, 94, 0, 0, 0, "no day"},
      {"1994", 0, 0, 0, 0, 94, 0, 0, 0, "a year only"},
      {"Sat", 0, 6, 0, 0, 0, 0, 0, 0, "a day of the week only"},
      {"08:49:37", 0, 0, 0, 0, 0, 8, 49, 37, "a time only"},
      {"06 Nov 1994 8:4:5", 0, 0, 6, 10, 94, 8, 4, 5, "single digits"},
      {"06 Nov 1994 08:49", 0, 0, 6, 10, 94, 8, 49, 0, "no seconds"},
      {"Sun,06 Nov,1994 08:49:37", 0, 0, 6, 10, 94, 8, 49, 37, "any separator will do"},
      {" ,: Sun ,, 06   Nov : 1994 ", 0, 0, 6, 10, 94, 0, 0, 0, "separators in a row"},
  };
  for (const DateCase& theCase : kCases) {
    Expect(theCase);
  }
}

TEST(qvTimeRFC1123, NamesAreReadInAnyCase) {
  Expect({"sUN, 06 nOV 1994 08:49:37 gMt", 0, 0, 6, 10, 94, 8, 49, 37, "mixed case"});
  Expect({"FRI, 06 DEC 1994", 0, 5, 6, 11, 94, 0, 0, 0, "upper case"});
  Expect({"fri, 06 dec 1994", 0, 5, 6, 11, 94, 0, 0, 0, "lower case"});
}

TEST(qvTimeRFC1123, EveryNameIsKnown) {
  const char* const kDays[7] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  const char* const kMonths[12] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  for (int theDay = 0; theDay < 7; ++theDay) {
    Expect({kDays[theDay], 0, theDay, 0, 0, 0, 0, 0, 0, "a day of the week"});
  }
  for (int theMonth = 0; theMonth < 12; ++theMonth) {
    Expect({kMonths[theMonth], 0, 0, 0, theMonth, 0, 0, 0, 0, "a month"});
  }
}

TEST(qvTimeRFC1123, WordsThatAreNotUnderstoodAreSkipped) {
  const DateCase kCases[] = {
      {"Sunday, 06 Nov 1994", 0, 0, 6, 10, 94, 0, 0, 0, "a long name of a day"},
      {"Mon Tue 06", 0, 1, 6, 0, 0, 0, 0, 0, "a second day of the week"},
      {"06 Sat", 0, 0, 6, 0, 0, 0, 0, 0, "a day of the week behind the day"},
      {"06 07 Nov", 0, 0, 6, 0, 0, 0, 7, 0,
       "a second day reads as the minute, which the month cannot follow"},
      {"06: Nov", 0, 0, 0, 0, 0, 6, 0, 0, "a number before ':' is an hour, which no month follows"},
      {"M\xC3\xA4r 06", 0, 0, 6, 0, 0, 0, 0, 0, "bytes above 0x7F are no letters"},
      {"a1b2 06", 0, 0, 6, 0, 0, 0, 0, 0, "neither letters nor digits"},
      {"abcdefgh 06", 0, 0, 6, 0, 0, 0, 0, 0, "eight characters are not too long"},
      {"Su 06", 0, 0, 6, 0, 0, 0, 0, 0, "part of a name"},
  };
  for (const DateCase& theCase : kCases) {
    Expect(theCase);
  }
}

TEST(qvTimeRFC1123, NumbersOutOfRangeGoToALaterField) {
  const DateCase kCases[] = {
      {"31 Nov", 0, 0, 31, 10, 0, 0, 0, 0, "the last day"},
      {"32 Nov 1994", 0, 0, 0, 0, 0, 0, 32, 0, "32 is no day but a minute, which nothing here follows"},
      {"0 Nov 1994", 0, 0, 0, 0, 0, 0, 0, 0, "0 is no day but a minute"},
      {"06 Nov 1901", 0, 0, 6, 10, 1, 0, 0, 0, "the first year"},
      {"06 Nov 1900", 0, 0, 6, 10, 0, 0, 0, 0, "1900 is no year, and no minute either"},
      {"1900 1994", 0, 0, 0, 0, 94, 0, 0, 0, "so the next number may be the year"},
      {"06 Nov 94", 0, 0, 6, 10, 0, 0, 0, 0, "nor is 94"},
      {"06 Nov 99999999", 0, 0, 6, 10, 99998099, 0, 0, 0, "the longest year"},
      {"23:30", 0, 0, 0, 0, 0, 23, 30, 0, "the last hour"},
      {"24:30", 0, 0, 0, 0, 0, 0, 24, 30, "24 is no hour but a minute"},
      {"06 Nov 1994: 10", 0, 0, 6, 10, 0, 0, 10, 0, "a year before ':' is none"},
      {"12 13", 0, 0, 12, 0, 0, 0, 13, 0, "an hour is one before ':' only"},
  };
  for (const DateCase& theCase : kCases) {
    Expect(theCase);
  }
}

TEST(qvTimeRFC1123, NumbersThatAreNoMinuteAndNoSecondAreSkippedAtOnce) {
  const DateCase kCases[] = {
      {"99 Nov 1994", 0, 0, 0, 10, 94, 0, 0, 0, "from the first stage on"},
      {"08:60:30", 0, 0, 0, 0, 0, 8, 30, 0, "60 is no minute and is not tried as a second"},
      {"08:59:60 GMT", 0, 0, 0, 0, 0, 8, 59, 0, "60 is no second"},
      {"08:59:60:15", 0, 0, 0, 0, 0, 8, 59, 15, "the next one may be"},
  };
  for (const DateCase& theCase : kCases) {
    Expect(theCase);
  }
}

TEST(qvTimeRFC1123, AFieldIsReadOnce) {
  Expect({"Nov Dec 1994", 0, 0, 0, 10, 94, 0, 0, 0, "a second month is skipped"});
  Expect({"1994 1995", 0, 0, 0, 0, 94, 0, 0, 0, "so is a second year"});
  Expect({"08:49:37:12", 0, 0, 0, 0, 0, 8, 49, 37, "so is a number behind the second"});
}

TEST(qvTimeRFC1123, EveryZoneIsKnownAndEndsTheDate) {
  const char* const kZones[] = {"UT",  "GMT", "EST", "EDT",   "CST",   "CDT",   "MST",
                                "MDT", "PST", "PDT", "+0000", "-1200", "+9999", "pst"};
  for (const char* theZone : kZones) {
    Expect({theZone, 0, 0, 0, 0, 0, 0, 0, 0, "a zone is something recognised"});
    Expect({(std::string(theZone) + " Mon 06 Nov 1994").c_str(), 0, 0, 0, 0, 0, 0, 0, 0, "nothing follows"});
  }
}

TEST(qvTimeRFC1123, EveryZoneHasItsOffset) {
  const struct {
    const char* mZone;
    int mMinutes;
  } kCases[] = {
      {"UT", 0},      {"GMT", 0},      {"EST", -300}, {"EDT", -240},   {"CST", -360}, {"CDT", -300},
      {"MST", -420},  {"MDT", -360},   {"PST", -480}, {"PDT", -420},   {"+0100", 60}, {"-0100", -60},
      {"+1200", 720}, {"-1200", -720}, {"+0000", 0},  {"+9900", 5940}, {"CET", 0},    {"", 0},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mMinutes, ZoneMinutesOf(theCase.mZone)) << theCase.mZone;
  }
  EXPECT_EQ(0, ZoneMinutesOf(nullptr));
}

TEST(qvTimeRFC1123, OtherWordsAreNoZones) {
  const char* const kWords[] = {"UTC",   "Z",     "CET",   "+010",  "+01000", "01000-",
                                "+01a0", "+010a", "+a100", "0100+", "+-100",  "G"};
  for (const char* theWord : kWords) {
    EXPECT_EQ(-3, ResultOf(theWord)) << theWord;
  }
}

TEST(qvTimeRFC1123, ANullTextIsMinus1AndLeavesTheResult) {
  qvtm theTime = {9, 9, 9, 9, 9, 9, 9, 9, 9, 9};
  EXPECT_EQ(-1, qvTime_ParseRFC1123Date(nullptr, &theTime));
  EXPECT_EQ(9, theTime.tm_sec);
  EXPECT_EQ(9, theTime.tm_msec);
}

TEST(qvTimeRFC1123, AWordOfNineCharactersIsMinus2) {
  Expect({"Wednesday, 06 Nov 1994", -2, 0, 0, 0, 0, 0, 0, 0, "at the start"});
  Expect({"Sat, 06 abcdefghi 1994", -2, 6, 6, 0, 0, 0, 0, 0, "what stood before it was read"});
  Expect({"06-Nov-1994", -2, 0, 0, 0, 0, 0, 0, 0, "'-' is no separator"});
  Expect({"EST abcdefghi", -2, 0, 0, 0, 0, 0, 0, 0, "even when the date is complete"});
  Expect({"123456789", -2, 0, 0, 0, 0, 0, 0, 0, "digits too"});
  EXPECT_EQ(-2, ResultOf(std::string(100000, 'x')));
}

TEST(qvTimeRFC1123, NothingRecognisedIsMinus3) {
  Expect({"hello", -3, 0, 0, 0, 0, 0, 0, 0, "a word"});
  Expect({"", -3, 0, 0, 0, 0, 0, 0, 0, "empty"});
  Expect({" ,:: ", -3, 0, 0, 0, 0, 0, 0, 0, "separators only"});
  Expect({"99", -3, 0, 0, 0, 0, 0, 0, 0, "a number that is nothing"});
  Expect({"06\tNov", -3, 0, 0, 0, 0, 0, 0, 0, "a tab is no separator"});
  Expect({"\xFF\xFE", -3, 0, 0, 0, 0, 0, 0, 0, "bytes above 0x7F"});
}

TEST(qvTimeKept, TheZoneOfADateIsReadButNotApplied) {
  Expect({"Sun, 06 Nov 1994 08:49:37 GMT", 0, 0, 6, 10, 94, 8, 49, 37, "no offset"});
  Expect({"Sun, 06 Nov 1994 08:49:37 PST", 0, 0, 6, 10, 94, 8, 49, 37, "eight hours, not applied"});
  Expect({"Sun, 06 Nov 1994 08:49:37 +0130", 0, 0, 6, 10, 94, 8, 49, 37, "an hour and a half, not applied"});
  Expect({"Sun, 06 Nov 1994 23:49:37 -1200", 0, 0, 6, 10, 94, 23, 49, 37, "the day does not change"});
}

TEST(qvTimeKept, TheMinutesOfANumericZoneAreDropped) {
  EXPECT_EQ(60, ZoneMinutesOf("Sun, 06 Nov 1994 08:49:37 +0100")) << "its neighbour";
  EXPECT_EQ(60, ZoneMinutesOf("Sun, 06 Nov 1994 08:49:37 +0130")) << "the kept one";
  EXPECT_EQ(-60, ZoneMinutesOf("Sun, 06 Nov 1994 08:49:37 -0130")) << "with the other sign";
  EXPECT_EQ(60, ZoneMinutesOf("Sun, 06 Nov 1994 08:49:37 +0199")) << "they need not even be minutes";
  EXPECT_EQ(120, ZoneMinutesOf("Sun, 06 Nov 1994 08:49:37 +0200")) << "the hours count";
}
