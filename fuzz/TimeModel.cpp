#include "TimeModel.h"

#include <ctype.h>
#include <stdlib.h>
#include <time.h>

static constexpr int64_t kSecond = 1000000;
static constexpr int64_t kHour = 3600 * kSecond;
static constexpr int64_t kDay = 24 * kHour;

int TimeModel_SetZone(uint8_t aNumber) {
  static const struct {
    const char* mName;
    int mOffset;
  } kZones[] = {{"UTC0", 0}, {"<+0530>-5:30", 19800}, {"<-0330>3:30", -12600}};
  static int sNumber = -1;
  if (sNumber != aNumber % 3) {
    sNumber = aNumber % 3;
    setenv("TZ", kZones[sNumber].mName, 1);
    tzset();
  }
  return kZones[sNumber].mOffset;
}

// The digits of a number that is not negative. Formatted output takes longer than all the rest here.
static std::string TimeModel_S_Digits(int aNumber, int aCount) {
  std::string theText(static_cast<size_t>(aCount), '0');
  for (size_t i = theText.size(); i > 0; --i) {
    theText[i - 1] = static_cast<char>('0' + aNumber % 10);
    aNumber /= 10;
  }
  return theText;
}

bool TimeModel_IsLike(std::string_view aText, std::string_view aPattern) {
  if (aText.size() < aPattern.size()) {
    return false;
  }
  for (size_t i = 0; i < aPattern.size(); ++i) {
    std::string_view theAllowed = aPattern[i] == '0'   ? "0123456789"
                                  : aPattern[i] == 'x' ? "0123456789abcdef"
                                                       : aPattern.substr(i, 1);
    if (theAllowed.find(aText[i]) == std::string_view::npos) {
      return false;
    }
  }
  return true;
}

static int TimeModel_S_Number(std::string_view aText, size_t aStart, size_t aLength) {
  int theNumber = 0;
  for (char theDigit : aText.substr(aStart, aLength)) {
    theNumber = theDigit == ' ' ? theNumber : theNumber * 10 + (theDigit - '0');
  }
  return theNumber;
}

// Whether it is a day of the calendar and a time of day; then also which.
static bool TimeModel_S_Time(int aYear, int aMonth, int aDay, std::string_view aClock, int64_t aFraction,
                             int64_t* aTime) {
  int theHour = TimeModel_S_Number(aClock, 0, 2);
  int theMinute = TimeModel_S_Number(aClock, 3, 2);
  int theSecond = TimeModel_S_Number(aClock, 6, 2);
  struct tm theDate = {};
  theDate.tm_year = aYear - 1900;
  theDate.tm_mon = aMonth - 1;
  theDate.tm_mday = aDay;
  time_t theDays = timegm(&theDate);  // puts the date right when there is no such day
  if (theDate.tm_mon != aMonth - 1 || theDate.tm_mday != aDay || theHour > 23 || theMinute > 59 ||
      theSecond > 60) {
    return false;
  }
  *aTime = (theDays + theHour * 3600 + theMinute * 60 + theSecond) * kSecond + aFraction;
  return true;
}

// The digits of a fraction, six at most, in microseconds.
static int64_t TimeModel_S_TakeFraction(std::string_view& aText, size_t* aCount) {
  std::string theDigits;
  while (theDigits.size() < 6 && !aText.empty() && isdigit(static_cast<unsigned char>(aText[0]))) {
    theDigits += aText[0];
    aText.remove_prefix(1);
  }
  *aCount = theDigits.size();
  theDigits.resize(6, '0');
  return atoi(theDigits.c_str());
}

// What a line keeps of a time of day.
static std::string TimeModel_S_Clock(std::string_view aClock, int64_t aFraction, size_t aDigits) {
  return aDigits >= 3 ? std::string(aClock.substr(0, 8)) + ":" +
                            TimeModel_S_Digits(static_cast<int>(aFraction / 1000), 3)
                      : "";
}

bool TimeModel::TakeISO(std::string_view& aText, int64_t* aTime, std::string* aClock) const {
  if (!TimeModel_IsLike(aText, "0000-00-00T00:00:00")) {
    return false;
  }
  std::string_view theClock = aText.substr(11);
  std::string_view theRest = aText.substr(19);
  int64_t theFraction = 0;
  size_t theDigits = 0;
  if (!theRest.empty() && theRest[0] == '.') {
    theRest.remove_prefix(1);
    theFraction = TimeModel_S_TakeFraction(theRest, &theDigits);
    if (theDigits == 0) {
      return false;
    }
  }
  int theOffset = 0;
  if (!theRest.empty() && theRest[0] == 'Z') {
    theRest.remove_prefix(1);
  } else {
    if (theRest.empty() || (theRest[0] != '+' && theRest[0] != '-')) {
      return false;
    }
    int theSign = theRest[0] == '+' ? 1 : -1;
    size_t theColon = TimeModel_IsLike(theRest.substr(1), "00:00") ? 1 : 0;
    if (theColon == 0 && !TimeModel_IsLike(theRest.substr(1), "0000")) {
      return false;
    }
    theOffset = theSign *
                (TimeModel_S_Number(theRest, 1, 2) * 60 + TimeModel_S_Number(theRest, 3 + theColon, 2)) * 60;
    theRest.remove_prefix(5 + theColon);
  }
  int64_t theTime;
  if (!TimeModel_S_Time(TimeModel_S_Number(aText, 0, 4), TimeModel_S_Number(aText, 5, 2),
                        TimeModel_S_Number(aText, 8, 2), theClock, theFraction, &theTime)) {
    return false;
  }
  *aTime = theTime - theOffset * kSecond;
  *aClock = TimeModel_S_Clock(theClock, theFraction, theDigits);
  aText = theRest;
  return true;
}

bool TimeModel::TakeShort(std::string_view& aText, int64_t* aTime, std::string* aClock) const {
  static const char* const kMonths[] = {"Jan ", "Feb ", "Mar ", "Apr ", "May ", "Jun ",
                                        "Jul ", "Aug ", "Sep ", "Oct ", "Nov ", "Dec "};
  int theMonth = 0;
  while (theMonth < 12 && aText.substr(0, 4) != kMonths[theMonth]) {
    ++theMonth;
  }
  if (theMonth == 12 || (!TimeModel_IsLike(aText.substr(4), "00 00:00:00.") &&
                         !TimeModel_IsLike(aText.substr(4), " 0 00:00:00."))) {
    return false;
  }
  std::string_view theClock = aText.substr(7);
  std::string_view theRest = aText.substr(16);
  size_t theDigits;
  int64_t theFraction = TimeModel_S_TakeFraction(theRest, &theDigits);
  if (theDigits < 3) {
    return false;
  }
  // The latest year in which it is not more than a day ahead.
  const int theLatest = 1971 + static_cast<int>((mNow + kDay) / (365 * kDay));
  for (int theYear = theLatest; theYear > theLatest - 10; --theYear) {
    if (TimeModel_S_Time(theYear, theMonth + 1, TimeModel_S_Number(aText, 4, 2), theClock, theFraction,
                         aTime) &&
        (*aTime -= mOffset * kSecond) <= mNow + kDay) {
      *aClock = TimeModel_S_Clock(theClock, theFraction, theDigits);
      aText = theRest;
      return true;
    }
  }
  return false;
}

int64_t TimeModel::OfSender(std::string_view aStamp) const {
  int64_t theTime;
  if (aStamp.size() > 12) {
    return TimeModel_S_Time(TimeModel_S_Number(aStamp, 6, 4), TimeModel_S_Number(aStamp, 0, 2),
                            TimeModel_S_Number(aStamp, 3, 2), aStamp.substr(11),
                            TimeModel_S_Number(aStamp, 20, 3) * 1000, &theTime)
               ? theTime - mOffset * kSecond
               : 0;
  }
  if (!TimeModel_S_Time(1970, 1, 1, aStamp, TimeModel_S_Number(aStamp, 9, 3) * 1000, &theTime)) {
    return 0;
  }
  theTime -= mOffset * kSecond;
  // The latest day on which it is not more than an hour ahead.
  while (theTime + kDay <= mNow + kHour) {
    theTime += (mNow + kHour - theTime) / kDay * kDay;
  }
  return theTime;
}

std::string TimeModel::Text(int64_t aTime, const char* aForm, int aDigits) const {
  int64_t theFraction = (aTime % kSecond + kSecond) % kSecond;
  time_t theSeconds = aTime / kSecond - (aTime % kSecond < 0 ? 1 : 0) + mOffset;
  struct tm theParts;
  if (aTime == 0 || gmtime_r(&theSeconds, &theParts) == nullptr || theParts.tm_year < -1899 ||
      theParts.tm_year > 8099) {
    return "";
  }
  char theText[40];
  strftime(theText, sizeof(theText), aForm, &theParts);
  std::string theDigits = TimeModel_S_Digits(static_cast<int>(theFraction), 6);
  theDigits.resize(static_cast<size_t>(aDigits));
  return std::string(theText) + "." + theDigits;
}

std::string TimeModel::Short(int64_t aTime) const { return Text(aTime, "%b %d %H:%M:%S", 3); }

std::string TimeModel::ISO(int64_t aTime) const {
  int theMinutes = abs(mOffset) / 60;
  std::string theText = Text(aTime, "%04Y-%m-%dT%H:%M:%S", 6);
  return theText.empty() ? ""
                         : theText + (mOffset < 0 ? '-' : '+') + TimeModel_S_Digits(theMinutes / 60, 2) +
                               ":" + TimeModel_S_Digits(theMinutes % 60, 2);
}
