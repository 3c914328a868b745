#include <time.h>

#include <string_view>

#include "tools/logstream/LogFilter.h"

static constexpr int64 kMicroseconds = 1000000;
static constexpr int64 kSecondsPerDay = 86400;
// No span is longer, in seconds: some 30,000 years.
static constexpr int64 kMaxAgo = 1000000000000LL;
// More digits of a count of seconds would not fit a time in microseconds.
static constexpr size_t kMaxDigits = 12;

namespace {

struct CalendarTime {
  int mYear = 1970, mMonth = 1, mDay = 1;
  int mHour = 0, mMinute = 0, mSecond = 0;
  int mMicrosecond = 0;
};

// Reads a text from its start; what does not fit is not taken.
class TimeText {
 public:
  explicit TimeText(std::string_view aText) : mText(aText) {}

  bool IsAtEnd() const { return mText.empty(); }
  // How many digits come next.
  size_t Digits() const {
    size_t theCount = mText.find_first_not_of("0123456789");
    return theCount == std::string_view::npos ? mText.size() : theCount;
  }
  bool Take(char aChar) {
    if (mText.empty() || mText[0] != aChar) {
      return false;
    }
    mText.remove_prefix(1);
    return true;
  }
  // Exactly aDigits digits that make a number in the range.
  bool TakeNumber(size_t aDigits, int aLow, int aHigh, int* aNumber) {
    int64 theNumber = 0;
    if (Digits() < aDigits || !TakeCount(aDigits, &theNumber) || theNumber < aLow || theNumber > aHigh) {
      return false;
    }
    *aNumber = static_cast<int>(theNumber);
    return true;
  }
  bool TakeCount(size_t aDigits, int64* aNumber) {
    if (aDigits == 0 || aDigits > kMaxDigits) {
      return false;
    }
    *aNumber = 0;
    for (char theDigit : mText.substr(0, aDigits)) {
      *aNumber = *aNumber * 10 + (theDigit - '0');
    }
    mText.remove_prefix(aDigits);
    return true;
  }
  // A point and digits, of which those below a microsecond are dropped; or nothing.
  bool TakeFraction(int* aMicroseconds) {
    *aMicroseconds = 0;
    if (!Take('.')) {
      return true;
    }
    size_t theDigits = Digits();
    for (size_t i = 0; i < 6; ++i) {
      *aMicroseconds = *aMicroseconds * 10 + (i < theDigits ? mText[i] - '0' : 0);
    }
    mText.remove_prefix(theDigits);
    return theDigits > 0;
  }

 private:
  std::string_view mText;
};

}  // namespace

// Days from 1970-01-01 to a day of the Gregorian calendar. Years are counted from March, so that the leap day
// is the last one.
static int64 LogFilter_S_Days(int aYear, int aMonth, int aDay) {
  int64 theYear = aMonth > 2 ? aYear : aYear - 1;
  int64 theMonth = aMonth > 2 ? aMonth - 3 : aMonth + 9;
  int64 theEra = (theYear >= 0 ? theYear : theYear - 399) / 400;
  int64 theYearOfEra = theYear - theEra * 400;
  int64 theDayOfYear = (153 * theMonth + 2) / 5 + aDay - 1;
  return theEra * 146097 + theYearOfEra * 365 + theYearOfEra / 4 - theYearOfEra / 100 + theDayOfYear - 719468;
}

static int LogFilter_S_DaysOfMonth(int aYear, int aMonth) {
  int theNextYear = aMonth == 12 ? aYear + 1 : aYear;
  int theNextMonth = aMonth == 12 ? 1 : aMonth + 1;
  return static_cast<int>(LogFilter_S_Days(theNextYear, theNextMonth, 1) -
                          LogFilter_S_Days(aYear, aMonth, 1));
}

static bool LogFilter_S_TakeDate(TimeText& aText, CalendarTime* aTime) {
  return aText.TakeNumber(4, 1, 9999, &aTime->mYear) && aText.Take('-') &&
         aText.TakeNumber(2, 1, 12, &aTime->mMonth) && aText.Take('-') &&
         aText.TakeNumber(2, 1, LogFilter_S_DaysOfMonth(aTime->mYear, aTime->mMonth), &aTime->mDay);
}

// HH:MM, HH:MM:SS or HH:MM:SS.fraction.
static bool LogFilter_S_TakeClock(TimeText& aText, CalendarTime* aTime) {
  if (!aText.TakeNumber(2, 0, 23, &aTime->mHour) || !aText.Take(':') ||
      !aText.TakeNumber(2, 0, 59, &aTime->mMinute)) {
    return false;
  }
  return !aText.Take(':') ||
         (aText.TakeNumber(2, 0, 59, &aTime->mSecond) && aText.TakeFraction(&aTime->mMicrosecond));
}

// Z, +HH:MM, +HHMM or +HH, or the same with a minus.
static bool LogFilter_S_TakeOffset(TimeText& aText, int64* aSeconds) {
  *aSeconds = 0;
  if (aText.Take('Z')) {
    return true;
  }
  bool theIsWest = aText.Take('-');
  int theHours = 0;
  int theMinutes = 0;
  if ((!theIsWest && !aText.Take('+')) || !aText.TakeNumber(2, 0, 23, &theHours)) {
    return false;
  }
  bool theHasColon = aText.Take(':');
  if ((theHasColon || !aText.IsAtEnd()) && !aText.TakeNumber(2, 0, 59, &theMinutes)) {
    return false;
  }
  *aSeconds = (theHours * 60 + theMinutes) * (theIsWest ? -60 : 60);
  return true;
}

static bool LogFilter_S_FromLocal(const CalendarTime& aTime, int64* aResult) {
  struct tm theLocal = {};
  theLocal.tm_year = aTime.mYear - 1900;
  theLocal.tm_mon = aTime.mMonth - 1;
  theLocal.tm_mday = aTime.mDay;
  theLocal.tm_hour = aTime.mHour;
  theLocal.tm_min = aTime.mMinute;
  theLocal.tm_sec = aTime.mSecond;
  theLocal.tm_isdst = -1;
  theLocal.tm_wday = -1;  // set by mktime when it succeeds; its result can be -1 then, too
  time_t theTime = mktime(&theLocal);
  if (theLocal.tm_wday < 0) {
    return false;
  }
  *aResult = static_cast<int64>(theTime) * kMicroseconds + aTime.mMicrosecond;
  return true;
}

static int64 LogFilter_S_FromUTC(const CalendarTime& aTime, int64 anOffset) {
  int64 theSeconds = LogFilter_S_Days(aTime.mYear, aTime.mMonth, aTime.mDay) * kSecondsPerDay +
                     aTime.mHour * 3600 + aTime.mMinute * 60 + aTime.mSecond - anOffset;
  return theSeconds * kMicroseconds + aTime.mMicrosecond;
}

// A date, alone or with a time behind a blank or 'T', and then perhaps with an offset.
static bool LogFilter_S_ParseDated(TimeText aText, int64* aTime) {
  CalendarTime theTime;
  if (!LogFilter_S_TakeDate(aText, &theTime)) {
    return false;
  }
  if (!aText.IsAtEnd()) {
    if ((!aText.Take(' ') && !aText.Take('T')) || !LogFilter_S_TakeClock(aText, &theTime)) {
      return false;
    }
  }
  if (aText.IsAtEnd()) {
    return LogFilter_S_FromLocal(theTime, aTime);
  }
  int64 theOffset = 0;
  if (!LogFilter_S_TakeOffset(aText, &theOffset) || !aText.IsAtEnd()) {
    return false;
  }
  *aTime = LogFilter_S_FromUTC(theTime, theOffset);
  return true;
}

static bool LogFilter_S_ParseToday(TimeText aText, int64 aNow, int64* aTime) {
  time_t theNow = static_cast<time_t>(aNow / kMicroseconds);
  struct tm theLocal;
  CalendarTime theTime;
  if (!LogFilter_S_TakeClock(aText, &theTime) || !aText.IsAtEnd() ||
      localtime_r(&theNow, &theLocal) == nullptr) {
    return false;
  }
  theTime.mYear = theLocal.tm_year + 1900;
  theTime.mMonth = theLocal.tm_mon + 1;
  theTime.mDay = theLocal.tm_mday;
  return LogFilter_S_FromLocal(theTime, aTime);
}

static bool LogFilter_S_ParseSeconds(TimeText aText, int64* aTime) {
  int64 theSeconds = 0;
  int theMicroseconds = 0;
  if (!aText.TakeCount(aText.Digits(), &theSeconds) || !aText.TakeFraction(&theMicroseconds) ||
      !aText.IsAtEnd()) {
    return false;
  }
  *aTime = theSeconds * kMicroseconds + theMicroseconds;
  return true;
}

static bool LogFilter_S_ParseAgo(TimeText aText, int64 aNow, int64* aTime) {
  static const struct {
    char mLetter;
    int64 mSeconds;
  } kUnits[] = {{'s', 1}, {'m', 60}, {'h', 3600}, {'d', kSecondsPerDay}};
  int64 theCount = 0;
  if (!aText.TakeCount(aText.Digits(), &theCount)) {
    return false;
  }
  for (const auto& theUnit : kUnits) {
    if (aText.Take(theUnit.mLetter)) {
      if (!aText.IsAtEnd() || theCount > kMaxAgo / theUnit.mSeconds) {
        return false;
      }
      *aTime = aNow - theCount * theUnit.mSeconds * kMicroseconds;
      return true;
    }
  }
  return false;
}

bool LogFilter_ParseTime(const char* aText, int64 aNow, int64* aTime) {
  TimeText theText(aText);
  int64 theTime = 0;
  bool theFits;
  if (theText.Take('@')) {
    theFits = LogFilter_S_ParseSeconds(theText, &theTime);
  } else if (theText.Take('-')) {
    theFits = LogFilter_S_ParseAgo(theText, aNow, &theTime);
  } else if (theText.Digits() == 4) {
    theFits = LogFilter_S_ParseDated(theText, &theTime);
  } else {
    theFits = LogFilter_S_ParseToday(theText, aNow, &theTime);
  }
  if (theFits) {
    *aTime = theTime;
  }
  return theFits;
}
