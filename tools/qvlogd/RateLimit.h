// RateLimit.h - how many lines a second of one process are let through.
#ifndef QVLOGD_RATELIMIT_H
#define QVLOGD_RATELIMIT_H

#include "qvOS/qvTypes.h"

class RateLimit {
 public:
  explicit RateLimit(unsigned int aLinesPerSecond);  // 0: no limit

  bool Allows(int64 aTime);  // one line at aTime (microseconds); counts it as held back when not
  uint64 TakeHeldBack(
      int64 aTime);  // lines held back in seconds that are over, to be told now; then counted from 0

 private:
  unsigned int mLinesPerSecond;
  int64 mSecond;
  unsigned int mLines;
  uint64 mHeldBack;
};

#endif
