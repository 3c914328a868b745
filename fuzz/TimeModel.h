// TimeModel.h - stamps in log lines and the times, in microseconds since 1970, that they stand for, in a zone
// that is so many seconds east of Greenwich all year.
#ifndef FUZZ_TIMEMODEL_H
#define FUZZ_TIMEMODEL_H

#include <stdint.h>

#include <string>
#include <string_view>

class TimeModel {
 public:
  // aNow: where stamps belong that lack the year or the day.
  TimeModel(int64_t aNow, int anOffset) : mNow(aNow), mOffset(anOffset) {}

  // "Nov 21 14:03:07.042" and "2026-11-21T14:03:07.042123+01:00"; empty for a time that is not known or has
  // no year of one to four digits.
  std::string Short(int64_t aTime) const;
  std::string ISO(int64_t aTime) const;

  // Each takes its stamp off the start; false when there is none. aClock is the stamp's time of day in the
  // form 14:03:07:042, empty when the stamp has no milliseconds.
  bool TakeISO(std::string_view& aText, int64_t* aTime, std::string* aClock) const;
  bool TakeShort(std::string_view& aText, int64_t* aTime, std::string* aClock) const;
  // What "[11/21/2026 ]14:03:07:042" stands for, 0 when it is not a time.
  int64_t OfSender(std::string_view aStamp) const;

 private:
  std::string Text(int64_t aTime, const char* aForm, int aDigits) const;

  int64_t mNow;
  int mOffset;
};

// Gives the process one of a few zones, and returns how many seconds it is east of Greenwich.
int TimeModel_SetZone(uint8_t aNumber);

// Whether the text begins like the pattern, in which 0 is any digit, x any lower-case hexadecimal digit, and
// everything else itself.
bool TimeModel_IsLike(std::string_view aText, std::string_view aPattern);

#endif
