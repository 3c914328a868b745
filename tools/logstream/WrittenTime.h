// WrittenTime.h - the time stamps at the start of written lines, back to microseconds since 1970.
//
// Stamps without an offset are local time. What a stamp lacks, the year or the whole date, is chosen so that
// the time comes closest before the reference; it may lie a little behind it, for clocks differ.
#ifndef LOGSTREAM_WRITTENTIME_H
#define LOGSTREAM_WRITTENTIME_H

#include <string_view>

#include "qvOS/qvTypes.h"

class WrittenTime {
 public:
  explicit WrittenTime(int64 aReference) : mReference(aReference) {}

  void SetReference(int64 aReference) { mReference = aReference; }

  // Each takes a stamp off the start of aText; false, and nothing taken, when there is none.
  bool TakeISO(std::string_view& aText, int64* aTime);     // 2026-11-21T14:03:07[.042123](Z|+01:00)
  bool TakeShort(std::string_view& aText, int64* aTime);   // Nov 21 14:03:07.042
  bool TakeSender(std::string_view& aText, int64* aTime);  // [11/21/2026 ]14:03:07:042

 private:
  struct Date {
    int mYear;
    int mMonth;  // 1 to 12
    int mDay;
  };
  struct Clock {
    int mHour;
    int mMinute;
    int mSecond;
    int mMicroseconds;
  };

  static bool TakeDigits(std::string_view& aText, size_t aCount, int* aNumber);
  static bool TakeSign(std::string_view& aText, char aSign);
  static bool TakeClock(std::string_view& aText, Clock* aClock);
  static bool TakeFraction(std::string_view& aText, char aSign, size_t aMinCount, size_t aMaxCount,
                           Clock* aClock);
  static bool TakeOffset(std::string_view& aText, int* aSeconds);
  static bool IsDate(const Date& aDate);
  static int64 DaysSince1970(const Date& aDate);
  bool LocalHour(const Date& aDate, int anHour, int64* aSeconds);
  bool LocalTime(const Date& aDate, const Clock& aClock, int64* aTime);
  bool TimeInSomeYear(Date aDate, const Clock& aClock, int64* aTime);
  bool TimeOnSomeDay(const Clock& aClock, int64* aTime);
  bool LocalDateOf(int64 aTime, Date* aDate);

  int64 mReference;
  // The hour converted last: lines come in order, and the C library takes long over it.
  Date mCachedDate = {0, 0, 0};
  int mCachedHour = -1;
  int64 mCachedSeconds = 0;
};

#endif
