#include "tools/qvlogd/RateLimit.h"

#define kRateLimit_Second 1000000  // microseconds

RateLimit::RateLimit(unsigned int aLinesPerSecond)
    : mLinesPerSecond(aLinesPerSecond), mSecond(0), mLines(0), mHeldBackNow(0), mHeldBack(0) {}

// A clock that was set back makes another second as well: nobody is held back for hours because of it.
void RateLimit::GoTo(int64 aTime) {
  int64 theSecond = aTime / kRateLimit_Second;
  if (theSecond != mSecond) {
    mSecond = theSecond;
    mLines = 0;
    mHeldBack += mHeldBackNow;
    mHeldBackNow = 0;
  }
}

bool RateLimit::Allows(int64 aTime) {
  if (mLinesPerSecond == 0) {
    return true;
  }
  GoTo(aTime);
  if (mLines < mLinesPerSecond) {
    ++mLines;
    return true;
  }
  ++mHeldBackNow;
  return false;
}

uint64 RateLimit::TakeHeldBack(int64 aTime) {
  GoTo(aTime);
  uint64 theCount = mHeldBack;
  mHeldBack = 0;
  return theCount;
}
