#include <gtest/gtest.h>

#include <array>
#include <string>

#include "qvraTools/qvConvert.h"

namespace {

using Date = std::array<int32, 9>;

struct DateCase {
  const char* mText;
  int mResult;
  Date mDate;
  const char* mWhy;
};

const DateCase kDateCases[] = {
    {"2015-03-08T10:20:30.250+01:00", 0, {2015, 3, 8, 10, 20, 30, 250, 1, 0}, "all nine fields"},
    {"2015-03-08T10:20:30.250-11:45",
     0,
     {2015, 3, 8, 10, 20, 30, 250, -11, 45},
     "the sign is the hour's alone"},
    {"2015-03-08T10:20:30Z", 0, {2015, 3, 8, 10, 20, 30, 0, 0, 0}, "Z finishes after the seconds"},
    {"2015-03-08T10:20:30.5Z", 0, {2015, 3, 8, 10, 20, 30, 5, 0, 0}, "Z finishes after the milliseconds"},
    {"2015-03-08T10:20:30+02:00", 0, {2015, 3, 8, 10, 20, 30, 0, 2, 0}, "'+' skips the milliseconds"},
    {"2015-03-08T10:20:30-02:00", 0, {2015, 3, 8, 10, 20, 30, 0, -2, 0}, "'-' skips the milliseconds"},
    {"2015-03-08T10:20:30:7", 0, {2015, 3, 8, 10, 20, 30, 7, 0, 0}, "any other separator leads to them"},
    {"2015-03-08T10:20:30T7", 0, {2015, 3, 8, 10, 20, 30, 7, 0, 0}, "even a T"},
    {"2015-03-08T10:20:30.7:03",
     0,
     {2015, 3, 8, 10, 20, 30, 7, 3, 0},
     "anything after them leads to the zone"},
    {"2015-03-08T10:20:30+01", 0, {2015, 3, 8, 10, 20, 30, 0, 1, 0}, "the text may end after any field"},
    {"2015-03-08", 0, {2015, 3, 8, 0, 0, 0, 0, 0, 0}, "a date alone"},
    {"2015-03", 0, {2015, 3, 0, 0, 0, 0, 0, 0, 0}, "two fields are enough"},
    {"2015", -3, {0, 0, 0, 0, 0, 0, 0, 0, 0}, "one is not: nothing is read"},
    {"", -3, {0, 0, 0, 0, 0, 0, 0, 0, 0}, "nothing"},
    {"0-1-1", 0, {0, 1, 1, 0, 0, 0, 0, 0, 0}, "lowest values of the date"},
    {"9999-12-31T23:59:59.999+23:59", 0, {9999, 12, 31, 23, 59, 59, 999, 23, 59}, "highest values"},
    {"2015-03-08T10:20:30+00:30", 0, {2015, 3, 8, 10, 20, 30, 0, 0, 30}, "lowest zone hour"},
    {"2015-03-08T10:20:30-00:30",
     0,
     {2015, 3, 8, 10, 20, 30, 0, 0, 30},
     "which has no sign, and the minute none of its own"},
    {"2015-01-01T00:00:00.0-23:00", 0, {2015, 1, 1, 0, 0, 0, 0, -23, 0}, "lowest values of the time"},
    {"10000-01", -3, {0, 0, 0, 0, 0, 0, 0, 0, 0}, "year too high"},
    {"2015-00", -3, {2015, 0, 0, 0, 0, 0, 0, 0, 0}, "month 0; the year stays"},
    {"2015-13", -3, {2015, 0, 0, 0, 0, 0, 0, 0, 0}, "month 13"},
    {"2015-03-00", -3, {2015, 3, 0, 0, 0, 0, 0, 0, 0}, "day 0"},
    {"2015-03-32", -3, {2015, 3, 0, 0, 0, 0, 0, 0, 0}, "day 32"},
    {"2015-03-08T24:00", -3, {2015, 3, 8, 0, 0, 0, 0, 0, 0}, "hour 24"},
    {"2015-03-08T10:60", -3, {2015, 3, 8, 10, 0, 0, 0, 0, 0}, "minute 60"},
    {"2015-03-08T10:20:60", -3, {2015, 3, 8, 10, 20, 0, 0, 0, 0}, "second 60"},
    {"2015-03-08T10:20:30.1000", -3, {2015, 3, 8, 10, 20, 30, 0, 0, 0}, "millisecond 1000"},
    {"2015-03-08T10:20:30+24:00", -3, {2015, 3, 8, 10, 20, 30, 0, 0, 0}, "zone hour 24"},
    {"2015-03-08T10:20:30+01:60", -3, {2015, 3, 8, 10, 20, 30, 0, 1, 0}, "zone minute 60"},
    {"2015:03", -3, {2015, 0, 0, 0, 0, 0, 0, 0, 0}, "wrong separator after the year; it is stored"},
    {"2015-03T08", -3, {2015, 3, 0, 0, 0, 0, 0, 0, 0}, "wrong separator after the month"},
    {"2015-03-08:10", -3, {2015, 3, 8, 0, 0, 0, 0, 0, 0}, "wrong separator after the day"},
    {"2015-03-08T10.20", -3, {2015, 3, 8, 10, 0, 0, 0, 0, 0}, "wrong separator after the hour"},
    {"2015-03-08T10:20.30", -3, {2015, 3, 8, 10, 20, 0, 0, 0, 0}, "wrong separator after the minute"},
    {"2015-03-08Z", -3, {2015, 3, 8, 0, 0, 0, 0, 0, 0}, "Z after the day"},
    {"2015-03-08T10:20Z", -3, {2015, 3, 8, 10, 20, 0, 0, 0, 0}, "Z after the minute"},
    {"2015-03-08T10:20:30+01Z", -3, {2015, 3, 8, 10, 20, 30, 0, 1, 0}, "Z after the zone hour"},
    {"2015-03-08t10", -3, {2015, 3, 0, 0, 0, 0, 0, 0, 0}, "separators are capitals"},
    {"2015-03-08T10:20:30z", -3, {2015, 3, 8, 10, 20, 0, 0, 0, 0}, "the Z too"},
    {"2015-03-08T10:20:30+", -3, {2015, 3, 8, 10, 20, 30, 0, 0, 0}, "an empty zone hour"},
    {"2015-03-08T10:20:30.", -3, {2015, 3, 8, 10, 20, 30, 0, 0, 0}, "an empty millisecond"},
    {"2015-03-08T10:20:30.7T05", 0, {2015, 3, 8, 10, 20, 30, 7, 5, 0}, "a zone hour without a sign"},
    {"2015-03-08T10:20:30+01-00",
     -3,
     {2015, 3, 8, 10, 20, 30, 0, 1, 0},
     "wrong separator after the zone hour"},
    {"2015-03-08T10:20:30.250+01:00:", -3, {0, 0, 0, 0, 0, 0, 0, 0, 0}, "a tenth token: nothing is read"},
    {"2015-03-08T10:20:30+01:00Z",
     -3,
     {2015, 3, 8, 10, 20, 30, 0, 1, 0},
     "nothing may follow the zone minute"},
    {"2015--08", -3, {2015, 0, 0, 0, 0, 0, 0, 0, 0}, "an empty field"},
    {"-2015-03", -3, {0, 0, 0, 0, 0, 0, 0, 0, 0}, "an empty first field"},
    {"2015-03-", -3, {2015, 3, 0, 0, 0, 0, 0, 0, 0}, "an empty last field"},
    {"2015-03-08T10:20:30Z5", -3, {2015, 3, 8, 10, 20, 30, 0, 0, 0}, "text after a finishing Z"},
    {"2015-03-08T10:20:30ZZ",
     0,
     {2015, 3, 8, 10, 20, 30, 0, 0, 0},
     "an empty token after it ends the reading"},
    {"2015-03-08T10:20:30ZZ5", 0, {2015, 3, 8, 10, 20, 30, 0, 0, 0}, "behind which nothing is looked at"},
    {"2015-03-08T10:20:30ZZZ", 0, {2015, 3, 8, 10, 20, 30, 0, 0, 0}, "empty tokens are counted: nine"},
    {"2015-03-08T10:20:30ZZZZ", -3, {0, 0, 0, 0, 0, 0, 0, 0, 0}, "ten: nothing is read"},
    {" 2015-\t03", 0, {2015, 3, 0, 0, 0, 0, 0, 0, 0}, "white space in front of a number is part of it"},
    {"2015-03 -08", -3, {2015, 0, 0, 0, 0, 0, 0, 0, 0}, "behind it is not"},
    {"2015-03x-08", -3, {2015, 0, 0, 0, 0, 0, 0, 0, 0}, "a field that is not wholly a number"},
    {"2015-3a", -3, {2015, 0, 0, 0, 0, 0, 0, 0, 0}, "text behind the last number"},
    {"2015-99999999999", -3, {2015, 0, 0, 0, 0, 0, 0, 0, 0}, "a number beyond 32 bits"},
    {"2015-\xE9", -3, {2015, 0, 0, 0, 0, 0, 0, 0, 0}, "a byte above 0x7F"},
    {nullptr, -3, {0, 0, 0, 0, 0, 0, 0, 0, 0}, "null"},
};

TEST(qvConvertMedia, DateTextBecomesNineFields) {
  for (const DateCase& theCase : kDateCases) {
    SCOPED_TRACE(std::string(theCase.mText != nullptr ? theCase.mText : "null") + ": " + theCase.mWhy);
    Date theDate;
    theDate.fill(-77);
    EXPECT_EQ(theCase.mResult, qvConvert_dlnadatestrtodate(theCase.mText, theDate.data()));
    EXPECT_EQ(theCase.mDate, theDate);
  }
}

struct TimeCase {
  const char* mText;
  int mResult;
  uint32 mSecond;
  uint32 mMilliSecond;
  const char* mWhy;
};

using TimeFunction = int (*)(const char*, uint32*, uint32*);

template <size_t kCount>
void ExpectTimes(TimeFunction aFunction, const TimeCase (&aCases)[kCount]) {
  for (const TimeCase& theCase : aCases) {
    SCOPED_TRACE(std::string(theCase.mText != nullptr ? theCase.mText : "null") + ": " + theCase.mWhy);
    uint32 theSecond = 777;
    uint32 theMilliSecond = 777;
    EXPECT_EQ(theCase.mResult, aFunction(theCase.mText, &theSecond, &theMilliSecond));
    EXPECT_EQ(theCase.mSecond, theSecond);
    EXPECT_EQ(theCase.mMilliSecond, theMilliSecond);
  }
}

TEST(qvConvertMedia, TimeTextBecomesSecondsAndMilliseconds) {
  const TimeCase kCases[] = {
      {"2:01:15.250", 0, 7275, 250, "hours, minutes, seconds, milliseconds"},
      {"1:15", 0, 75, 0, "minutes and seconds"},
      {"1:15.250", 0, 75, 250, "minutes, seconds, milliseconds"},
      {"59", 0, 59, 0, "seconds alone, the highest"},
      {"60", -3, 0, 0, "second 60"},
      {"75", -3, 0, 0, "seconds do not carry"},
      {"59:59", 0, 3599, 0, "the highest minute"},
      {"60:00", -3, 0, 0, "minute 60"},
      {"99999:59:59.999", 0, 359999999, 999, "the highest time"},
      {"100000:00:00", -3, 0, 0, "six digits"},
      {"00005", 0, 5, 0, "five digits"},
      {"000005", -3, 0, 0, "six digits even when the value is low"},
      {"1.999", 0, 1, 999, "the highest millisecond"},
      {"1.1000", -3, 0, 0, "millisecond 1000"},
      {"1.00999", 0, 1, 999, "milliseconds are an integer of five digits at most"},
      {"1:2:3:4", -3, 0, 0, "four fields without a dot"},
      {"1:2:3:4.5", -3, 0, 0, "a fifth field"},
      {"1:2:3.4.5", -3, 0, 0, "a fifth field behind a second dot"},
      {"0:0:0", 0, 0, 0, "nothing at all"},
      {"0:60:00", -3, 0, 0, "minute 60 behind an hour"},
      {"0:00:60", -3, 0, 0, "second 60 behind a minute"},
      {"1.2.3", -3, 0, 0, "two dots"},
      {"1.2:3", -3, 0, 0, "a field behind the milliseconds"},
      {".5", -3, 0, 0, "an empty first field"},
      {"1.", -3, 0, 0, "an empty last field"},
      {"1:", -3, 0, 0, "an empty last field behind a colon"},
      {"1::2", -3, 0, 0, "an empty field in between"},
      {":1", -3, 0, 0, "an empty first field before a colon"},
      {"", -3, 0, 0, "nothing"},
      {"+1", -3, 0, 0, "digits only: a sign"},
      {" 1", -3, 0, 0, "digits only: a blank"},
      {"1 ", -3, 0, 0, "digits only: a blank behind"},
      {"1a", -3, 0, 0, "digits only: a letter"},
      {nullptr, -3, 0, 0, "null"},
  };
  ExpectTimes(qvConvert_dlnatimestrtouint32, kCases);
}

TEST(qvConvertKept, MillisecondsOfATimeAreTheIntegerWritten) {
  const TimeCase kCases[] = {
      {"0.5", 0, 0, 5, "the kept one: 5 ms, not 500"},
      {"0.50", 0, 0, 50, "fifty"},
      {"0.500", 0, 0, 500, "five hundred"},
      {"0.005", 0, 0, 5, "leading zeros change nothing"},
  };
  ExpectTimes(qvConvert_dlnatimestrtouint32, kCases);
}

TEST(qvConvertMedia, DurationTextBecomesSecondsAndMilliseconds) {
  const TimeCase kCases[] = {
      {"1:02:03.5", 0, 3723, 5, "hours, minutes, seconds, an integer of milliseconds"},
      {"1:2:03", -3, 0, 0, "one digit of minutes"},
      {"1:02:3", -3, 0, 0, "one digit of seconds"},
      {":02:03", 0, 123, 0, "the hours may be empty"},
      {"0:00:00", 0, 0, 0, "nothing at all"},
      {"0:59:59.999", 0, 3599, 999, "the highest minute, second, millisecond"},
      {"0:60:00", -3, 0, 0, "minute 60"},
      {"0:00:60", -3, 0, 0, "second 60"},
      {"999999:59:59", 0, 3599999999u, 0, "the highest hour of six digits"},
      {"1000000:00:00", -3, 0, 0, "seven digits"},
      {"0:000:00", -3, 0, 0, "three digits of minutes"},
      {"02:03", -3, 0, 0, "one colon"},
      {"1:02:03:04", -3, 0, 0, "three colons"},
      {"1:02:03.1/2", 0, 3723, 500, "a part of a second"},
      {"1:02:03.1/3", 0, 3723, 333, "cut to whole milliseconds"},
      {"1:02:03.2/2", 0, 3724, 0, "a whole second is carried"},
      {"1:02:03.10001/10000", -3, 0, 0, "a little more than a second"},
      {"1:02:03.3/2", -3, 0, 0, "more than a second"},
      {"1:02:03.-1/2", -3, 0, 0, "less than nothing"},
      {"1:02:03.-5", -3, 0, 0, "less than nothing as an integer"},
      {"1:02:03.1/0", -3, 0, 0, "no fraction"},
      {"1:02:03.0", 0, 3723, 0, "a fraction of nothing"},
      {"1:02:03.0/5", 0, 3723, 0, "the same with a slash"},
      {"1:02:03.0 1/2", 0, 3723, 500, "a whole part may stand before it"},
      {"1:02:03.1 1/2", -3, 0, 0, "which counts"},
      {"1:02:03.", -3, 0, 0, "no digit behind the dot"},
      {"1:02:03. 5", 0, 3723, 5, "a fraction may have white space in front"},
      {"1:02:03.5 ", -3, 0, 0, "but not behind"},
      {"1:02:03.+5", 0, 3723, 5, "and a sign"},
      {"1:02:03.5.5", 0, 3723, 5, "and a fraction of its own, which is cut off"},
      {"1:02:03.1000.5", 0, 3724, 0, "so that this is no more than 1000"},
      {"1:02:03.1/1000", 0, 3723, 1, "the shortest part of a second"},
      {"1:02:03.1/1001", 0, 3723, 0, "and one that is cut to nothing"},
      {"1:02:03.999/1000", 0, 3723, 999, "the longest"},
      {"1:02:03.1001/1000", -3, 0, 0, "one above a whole second"},
      {"999999:59:59.1000", 0, 3600000000u, 0, "the highest time and a second more"},
      {"1:02:03.x", -3, 0, 0, "no number behind the dot"},
      {"1:02:03.5x", -3, 0, 0, "text behind the fraction"},
      {"1:02:03x", -3, 0, 0, "text behind the seconds"},
      {"1:02:03.inf", -3, 0, 0, "infinity is no time"},
      {"1:02:03.nan", -3, 0, 0, "nor is NaN"},
      {"1:02:03.1e999", -3, 0, 0, "nor is what no double holds"},
      {"1:02:03.1e300", 0, 3724, 0, "a double's largest powers come down as well"},
      {"+1:02:03", -3, 0, 0, "a sign is no digit"},
      {"", -3, 0, 0, "nothing"},
      {nullptr, -3, 0, 0, "null"},
  };
  ExpectTimes(qvConvert_dlnadurationstrtouint32, kCases);
}

TEST(qvConvertKept, FractionOfADurationIsAnIntegerCutToFourDigits) {
  const TimeCase kCases[] = {
      {":00:01.5", 0, 1, 5, "the kept one: 5 ms"},
      {":00:01.250", 0, 1, 250, "three digits"},
      {":00:01.999", 0, 1, 999, "below 1000"},
      {":00:01.1000", 0, 2, 0, "exactly 1000 is one second more"},
      {":00:01.10000", 0, 2, 0, "10000 comes down to 1000"},
      {":00:01.1001", 0, 1, 100, "1001 is divided by 10"},
      {":00:01.2500", 0, 1, 250, "2500 comes down to 250"},
      {":00:01.123456789", 0, 1, 123, "many digits come down to three"},
      {":00:01.9999999", 0, 1, 999, "cut and not rounded"},
      {":00:01.10009", 0, 2, 0, "10009 comes down to 1000 as well, an integer being divided"},
      {":00:01.10010", 0, 1, 100, "its neighbour comes down to 1001, and that to 100"},
      {":00:01.4294967295", 0, 1, 429, "as many as a word holds"},
      {":00:01.4294967296", 0, 1, 429, "one more"},
      {":00:01.10009999999999", 0, 2, 0, "many more"},
      {":00:01.1000.2", 0, 2, 0, "a fraction of the fraction is not looked at"},
  };
  ExpectTimes(qvConvert_dlnadurationstrtouint32, kCases);
}

TEST(qvConvertMedia, FlagsOfADurationEachSwitchOneRule) {
  uint32 theSecond = 0;
  uint32 theMilliSecond = 0;
  auto read = [&](const char* aText, int afHour, int afTwoDigits, int afFraction) {
    return qvConvert_dlnadurationstrtouint32_ex(aText, &theSecond, &theMilliSecond, afHour, afTwoDigits,
                                                afFraction);
  };
  EXPECT_EQ(0, read(":02:03", 0, 0, 0));
  EXPECT_EQ(-3, read(":02:03", 1, 0, 0)) << "the hour digit is required";
  EXPECT_EQ(0, read("1:2:3", 0, 0, 0));
  EXPECT_EQ(3723u, theSecond);
  EXPECT_EQ(-3, read("1:2:3", 0, 1, 0)) << "two digits are required";
  EXPECT_EQ(-3, read("1:002:3", 0, 0, 0)) << "three digits are never allowed";
  EXPECT_EQ(-3, read("1:02:", 0, 0, 0)) << "nor is none";
  EXPECT_EQ(-3, read("1:02:03.1/2", 0, 0, 0)) << "'/' is refused";
  EXPECT_EQ(0, read("1:02:03.1/2", 0, 0, 1));
  EXPECT_EQ(500u, theMilliSecond);
  EXPECT_EQ(0, read("1:02:03.5", 0, 0, 0)) << "an integer of milliseconds is always allowed";
}

TEST(qvConvertMedia, NPTTextWithAColonIsADuration) {
  const TimeCase kCases[] = {
      {"1:2:3", 0, 3723, 0, "one digit is enough"},
      {":02:03", -3, 0, 0, "the hour digit is required"},
      {"1:02:03.1/2", -3, 0, 0, "'/' is refused"},
      {"1:02:03.5", 0, 3723, 5, "the milliseconds of a duration"},
  };
  ExpectTimes(qvConvert_dlnanptstrtouint32, kCases);
}

TEST(qvConvertMedia, NPTTextWithoutAColonIsANumberOfSeconds) {
  const TimeCase kCases[] = {
      {"12.5", 0, 12, 500, "half a second, where the notation with colons says 5 ms"},
      {"75", 0, 75, 0, "seconds without a limit"},
      {"12.5000", 0, 12, 5, "a long fraction as written"},
      {"1/2", 1, 777, 777, "'/' is other text"},
      {"", -3, 777, 777, "nothing"},
      {nullptr, -3, 777, 777, "null; nothing is written"},
  };
  ExpectTimes(qvConvert_dlnanptstrtouint32, kCases);
}

TEST(qvConvertMedia, SecondsTextBecomesSecondsAndMilliseconds) {
  const TimeCase kCases[] = {
      {"12.5", 0, 12, 500, "one digit is tenths"},
      {"12.05", 0, 12, 50, "two digits are hundredths"},
      {"12.005", 0, 12, 5, "three digits are thousandths"},
      {"12.999", 0, 12, 999, "the highest"},
      {"12.", 0, 12, 0, "an empty fraction is nothing"},
      {"12", 0, 12, 0, "no fraction"},
      {"4294967295", 0, 4294967295u, 0, "the highest second"},
      {"4294967296", -1, 777, 777, "one above: the parser's range error; nothing is written"},
      {"12x", 2, 777, 777, "the parser's position is returned as it is"},
      {"12x.5", 2, 777, 777, "the same before a fraction"},
      {".5", -3, 777, 777, "no seconds"},
      {"", -3, 777, 777, "nothing"},
      {" +12", 0, 12, 0, "the number parser skips white space and a plus sign"},
      {"12 ", 2, 777, 777, "not white space behind"},
      {"12. 5", 0, 12, 50, "a fraction of two characters is padded, whatever they are"},
      {"12.+99", 0, 12, 99, "three are read as they stand"},
      {"12.-99", -3, 777, 777, "a fraction is not negative"},
      {"x.1234", -3, 777, 777, "neither part is a number"},
      {"12x.1234", 2, 777, 777, "the seconds are looked at first"},
      {"12.x", -3, 777, 777, "no number behind the dot"},
      {"12.5x", 1, 777, 777, "text behind the digits: the position in the fraction"},
      {"12.1234", -3, 777, 777, "four digits that are no zeros"},
      {"12.5.5", 1, 777, 777, "the second dot is text in the fraction"},
      {"-1", -3, 777, 777, "seconds are not negative"},
      {nullptr, -3, 777, 777, "null"},
  };
  ExpectTimes(qvConvert_dlnaseconddurationstrtouint32, kCases);
}

TEST(qvConvertKept, LongFractionOfSecondsIsReadAsWritten) {
  const TimeCase kCases[] = {
      {"1.5", 0, 1, 500, "one digit is padded"},
      {"1.50", 0, 1, 500, "two are padded"},
      {"1.500", 0, 1, 500, "three are thousandths"},
      {"1.5000", 0, 1, 5, "the kept one: four digits lose their zeros and are not padded"},
      {"1.1230", 0, 1, 123, "three digits remain"},
      {"1.1200000", 0, 1, 12, "two remain"},
      {"1.0000", 0, 1, 0, "none remains"},
      {"1.1234000", -3, 777, 777, "four remain"},
      {"1.01230", -3, 777, 777, "four remain, whatever their number"},
      {"1.0005", -3, 777, 777, "no zero to lose"},
  };
  ExpectTimes(qvConvert_dlnaseconddurationstrtouint32, kCases);
}

}  // namespace
