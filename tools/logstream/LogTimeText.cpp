#include "tools/logstream/LogTimeText.h"

#include <stdio.h>
#include <stdlib.h>
#include <time.h>

static constexpr int64 kMicroseconds = 1000000;
static const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

static bool LogTimeText_S_LocalTime(int64 aSecond, struct tm* aLocal) {
  time_t theTime = static_cast<time_t>(aSecond);
  if (theTime != aSecond) {
    return false;
  }
  tzset();  // the zone may have been changed while the program runs
  return localtime_r(&theTime, aLocal) != nullptr && aLocal->tm_year + 1900 >= 1 &&
         aLocal->tm_year + 1900 <= 9999;
}

// Makes the texts of the second; false when there are none.
bool LogTimeText::Prepare(int64 aTime) {
  if (aTime == 0) {
    return false;
  }
  int64 theSecond = aTime / kMicroseconds;
  int64 theRest = aTime % kMicroseconds;
  if (theRest < 0) {
    theRest += kMicroseconds;
    --theSecond;
  }
  mMicroseconds = static_cast<unsigned int>(theRest);
  if (theSecond == mSecond) {
    return mfIsValid;
  }
  mSecond = theSecond;
  struct tm theLocal;
  mfIsValid = LogTimeText_S_LocalTime(theSecond, &theLocal);
  if (!mfIsValid) {
    return false;
  }
  snprintf(mShort, sizeof(mShort), "%s %02d %02d:%02d:%02d", kMonths[theLocal.tm_mon], theLocal.tm_mday,
           theLocal.tm_hour, theLocal.tm_min, theLocal.tm_sec);
  snprintf(mISO, sizeof(mISO), "%04d-%02d-%02dT%02d:%02d:%02d", theLocal.tm_year + 1900, theLocal.tm_mon + 1,
           theLocal.tm_mday, theLocal.tm_hour, theLocal.tm_min, theLocal.tm_sec);
  int theMinutes = static_cast<int>(theLocal.tm_gmtoff / 60);
  snprintf(mOffset, sizeof(mOffset), "%c%02d:%02d", theLocal.tm_gmtoff < 0 ? '-' : '+', abs(theMinutes) / 60,
           abs(theMinutes) % 60);
  return true;
}

// A point and the first digits of the fraction of a second.
static void LogTimeText_S_AppendFraction(unsigned int aMicroseconds, size_t aDigits, std::string& aOut) {
  char theText[7] = {'.'};
  for (size_t i = 6; i > 0; --i) {
    theText[i] = static_cast<char>('0' + aMicroseconds % 10);
    aMicroseconds /= 10;
  }
  aOut.append(theText, 1 + aDigits);
}

bool LogTimeText::AppendShort(int64 aTime, std::string& aOut) {
  if (!Prepare(aTime)) {
    return false;
  }
  aOut += mShort;
  LogTimeText_S_AppendFraction(mMicroseconds, 3, aOut);
  return true;
}

bool LogTimeText::AppendISO(int64 aTime, std::string& aOut) {
  if (!Prepare(aTime)) {
    return false;
  }
  aOut += mISO;
  LogTimeText_S_AppendFraction(mMicroseconds, 6, aOut);
  aOut += mOffset;
  return true;
}
