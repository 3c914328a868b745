#include "tools/logstream/WrittenTime.h"

#include <time.h>

static const int64 kSecond = 1000000;  // microseconds
static const int64 kDay = 86400 * kSecond;
static const int64 kDateSlack = kDay;             // how far a time of a chosen year may lie ahead
static const int64 kClockSlack = 3600 * kSecond;  // the same for a time of a chosen day
static const int kYearsToTheNextLeapDay = 8;

bool WrittenTime::TakeDigits(std::string_view& aText, size_t aCount, int* aNumber) {
  if (aText.size() < aCount) {
    return false;
  }
  *aNumber = 0;
  for (size_t i = 0; i < aCount; ++i) {
    if (aText[i] < '0' || aText[i] > '9') {
      return false;
    }
    *aNumber = *aNumber * 10 + (aText[i] - '0');
  }
  aText.remove_prefix(aCount);
  return true;
}

bool WrittenTime::TakeSign(std::string_view& aText, char aSign) {
  if (aText.empty() || aText.front() != aSign) {
    return false;
  }
  aText.remove_prefix(1);
  return true;
}

bool WrittenTime::TakeClock(std::string_view& aText, Clock* aClock) {
  aClock->mMicroseconds = 0;
  return TakeDigits(aText, 2, &aClock->mHour) && TakeSign(aText, ':') &&
         TakeDigits(aText, 2, &aClock->mMinute) && TakeSign(aText, ':') &&
         TakeDigits(aText, 2, &aClock->mSecond) && aClock->mHour < 24 && aClock->mMinute < 60 &&
         aClock->mSecond <= 60;
}

bool WrittenTime::TakeFraction(std::string_view& aText, char aSign, size_t aMinCount, size_t aMaxCount,
                               Clock* aClock) {
  if (!TakeSign(aText, aSign)) {
    return false;
  }
  size_t theCount = 0;
  int theDigit;
  while (theCount < aMaxCount && TakeDigits(aText, 1, &theDigit)) {
    aClock->mMicroseconds = aClock->mMicroseconds * 10 + theDigit;
    ++theCount;
  }
  for (size_t i = theCount; i < 6; ++i) {
    aClock->mMicroseconds *= 10;
  }
  return theCount >= aMinCount;
}

// "Z", "+01:00" or "+0100".
bool WrittenTime::TakeOffset(std::string_view& aText, int* aSeconds) {
  *aSeconds = 0;
  if (TakeSign(aText, 'Z')) {
    return true;
  }
  bool theIsWest = TakeSign(aText, '-');
  int theHours;
  int theMinutes;
  if ((!theIsWest && !TakeSign(aText, '+')) || !TakeDigits(aText, 2, &theHours)) {
    return false;
  }
  TakeSign(aText, ':');
  if (!TakeDigits(aText, 2, &theMinutes)) {
    return false;
  }
  *aSeconds = (theHours * 60 + theMinutes) * (theIsWest ? -60 : 60);
  return true;
}

bool WrittenTime::IsDate(const Date& aDate) {
  static const int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (aDate.mMonth < 1 || aDate.mMonth > 12 || aDate.mDay < 1 || aDate.mDay > kDays[aDate.mMonth - 1]) {
    return false;
  }
  bool theIsLeap = aDate.mYear % 4 == 0 && (aDate.mYear % 100 != 0 || aDate.mYear % 400 == 0);
  return aDate.mMonth != 2 || aDate.mDay < 29 || theIsLeap;
}

// Counts in years that begin in March, so that the leap day is a year's last day.
int64 WrittenTime::DaysSince1970(const Date& aDate) {
  int64 theYear = aDate.mMonth > 2 ? aDate.mYear : aDate.mYear - 1;
  int64 theMonth = aDate.mMonth > 2 ? aDate.mMonth - 3 : aDate.mMonth + 9;
  int64 theDayOfYear = (153 * theMonth + 2) / 5 + aDate.mDay - 1;
  return theYear * 365 + theYear / 4 - theYear / 100 + theYear / 400 + theDayOfYear - 719468;
}

bool WrittenTime::LocalHour(const Date& aDate, int anHour, int64* aSeconds) {
  if (mCachedHour != anHour || mCachedDate.mDay != aDate.mDay || mCachedDate.mMonth != aDate.mMonth ||
      mCachedDate.mYear != aDate.mYear) {
    struct tm theParts = {};
    theParts.tm_year = aDate.mYear - 1900;
    theParts.tm_mon = aDate.mMonth - 1;
    theParts.tm_mday = aDate.mDay;
    theParts.tm_hour = anHour;
    theParts.tm_isdst = -1;
    time_t theSeconds = mktime(&theParts);
    if (theSeconds == static_cast<time_t>(-1)) {
      return false;
    }
    mCachedDate = aDate;
    mCachedHour = anHour;
    mCachedSeconds = theSeconds;
  }
  *aSeconds = mCachedSeconds;
  return true;
}

bool WrittenTime::LocalTime(const Date& aDate, const Clock& aClock, int64* aTime) {
  int64 theSeconds;
  if (!IsDate(aDate) || !LocalHour(aDate, aClock.mHour, &theSeconds)) {
    return false;
  }
  *aTime = (theSeconds + aClock.mMinute * 60 + aClock.mSecond) * kSecond + aClock.mMicroseconds;
  return true;
}

bool WrittenTime::LocalDateOf(int64 aTime, Date* aDate) {
  time_t theSeconds = static_cast<time_t>(aTime / kSecond);
  struct tm theParts;
  if (localtime_r(&theSeconds, &theParts) == nullptr) {
    return false;
  }
  *aDate = {theParts.tm_year + 1900, theParts.tm_mon + 1, theParts.tm_mday};
  return true;
}

bool WrittenTime::TimeInSomeYear(Date aDate, const Clock& aClock, int64* aTime) {
  Date theLatest;
  if (!LocalDateOf(mReference + kDateSlack, &theLatest)) {
    return false;
  }
  for (int i = 0; i <= kYearsToTheNextLeapDay; ++i) {
    aDate.mYear = theLatest.mYear - i;
    if (LocalTime(aDate, aClock, aTime) && *aTime <= mReference + kDateSlack) {
      return true;
    }
  }
  return false;
}

bool WrittenTime::TimeOnSomeDay(const Clock& aClock, int64* aTime) {
  for (int64 i = 0; i <= 2; ++i) {
    Date theDate;
    if (LocalDateOf(mReference + kClockSlack - i * kDay, &theDate) && LocalTime(theDate, aClock, aTime) &&
        *aTime <= mReference + kClockSlack) {
      return true;
    }
  }
  return false;
}

bool WrittenTime::TakeISO(std::string_view& aText, int64* aTime) {
  std::string_view theText = aText;
  Date theDate;
  Clock theClock;
  int theOffset;
  if (!TakeDigits(theText, 4, &theDate.mYear) || !TakeSign(theText, '-') ||
      !TakeDigits(theText, 2, &theDate.mMonth) || !TakeSign(theText, '-') ||
      !TakeDigits(theText, 2, &theDate.mDay) || !TakeSign(theText, 'T') || !TakeClock(theText, &theClock)) {
    return false;
  }
  if (!theText.empty() && theText.front() == '.' && !TakeFraction(theText, '.', 1, 6, &theClock)) {
    return false;
  }
  if (!TakeOffset(theText, &theOffset) || !IsDate(theDate)) {
    return false;
  }
  int64 theSeconds = DaysSince1970(theDate) * 86400 + theClock.mHour * 3600 + theClock.mMinute * 60 +
                     theClock.mSecond - theOffset;
  *aTime = theSeconds * kSecond + theClock.mMicroseconds;
  aText = theText;
  return true;
}

bool WrittenTime::TakeShort(std::string_view& aText, int64* aTime) {
  static const std::string_view kMonths = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec ";
  std::string_view theText = aText;
  Date theDate = {0, 0, 0};
  Clock theClock;
  size_t theMonth = theText.size() < 4 ? std::string_view::npos : kMonths.find(theText.substr(0, 4));
  if (theMonth == std::string_view::npos || theMonth % 4 != 0) {
    return false;
  }
  theDate.mMonth = static_cast<int>(theMonth / 4) + 1;
  theText.remove_prefix(4);
  size_t theDigits = TakeSign(theText, ' ') ? 1 : 2;
  if (!TakeDigits(theText, theDigits, &theDate.mDay) || !TakeSign(theText, ' ') ||
      !TakeClock(theText, &theClock) || !TakeFraction(theText, '.', 3, 6, &theClock) ||
      !TimeInSomeYear(theDate, theClock, aTime)) {
    return false;
  }
  aText = theText;
  return true;
}

bool WrittenTime::TakeSender(std::string_view& aText, int64* aTime) {
  std::string_view theText = aText;
  Date theDate;
  Clock theClock;
  bool theHasDate = theText.size() > 2 && theText[2] == '/';
  if (theHasDate && (!TakeDigits(theText, 2, &theDate.mMonth) || !TakeSign(theText, '/') ||
                     !TakeDigits(theText, 2, &theDate.mDay) || !TakeSign(theText, '/') ||
                     !TakeDigits(theText, 4, &theDate.mYear) || !TakeSign(theText, ' '))) {
    return false;
  }
  if (!TakeClock(theText, &theClock) || !TakeFraction(theText, ':', 3, 3, &theClock)) {
    return false;
  }
  // A sender's clock may say anything, also dates that local time cannot express.
  bool theIsTime = theHasDate ? LocalTime(theDate, theClock, aTime) : TimeOnSomeDay(theClock, aTime);
  if (!theIsTime) {
    *aTime = 0;
  }
  aText = theText;
  return true;
}
