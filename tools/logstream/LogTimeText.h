// LogTimeText.h - writes times, in microseconds since 1970, as local time. The text of a second is made once
// and remembered.
#ifndef LOGSTREAM_LOGTIMETEXT_H
#define LOGSTREAM_LOGTIMETEXT_H

#include <string>

#include "qvOS/qvTypes.h"

class LogTimeText {
 public:
  // Each appends nothing and returns false for a time of 0, which means that the time is not known, and for
  // one that the system cannot convert or outside of the years 1 to 9999.
  bool AppendShort(int64 aTime, std::string& aOut);  // "Nov 21 14:03:07.042", the day in two digits
  bool AppendISO(int64 aTime, std::string& aOut);    // "2026-11-21T14:03:07.042123+01:00"

 private:
  bool Prepare(int64 aTime);

  int64 mSecond = INT64_MIN;
  unsigned int mMicroseconds = 0;  // of the latest time
  bool mfIsValid = false;
  char mShort[64] = {};  // room for any numbers, as the compiler cannot know their ranges
  char mISO[80] = {};
  char mOffset[32] = {};
};

#endif
