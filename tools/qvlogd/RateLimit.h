// RateLimit.h - how many lines a second of one process are let through.
//
// Seconds are those of the clock: at the full second counting starts anew. What was held back is told once
// its second is over, so that a process that goes on and on costs one line a second.
#ifndef QVLOGD_RATELIMIT_H
#define QVLOGD_RATELIMIT_H

#include "qvOS/qvTypes.h"

class RateLimit {
 public:
  explicit RateLimit(unsigned int aLinesPerSecond);  // 0: no limit

  bool Allows(int64 aTime);  // one line at aTime (microseconds); counts it as held back when not
  // Lines held back in seconds that are over at aTime, to be told now; they are then counted from 0.
  uint64 TakeHeldBack(int64 aTime);

 private:
  void GoTo(int64 aTime);

  unsigned int mLinesPerSecond;
  int64 mSecond;        // the current one
  unsigned int mLines;  // let through in it
  uint64 mHeldBackNow;  // held back in it
  uint64 mHeldBack;     // held back before it and not told
};

#endif
