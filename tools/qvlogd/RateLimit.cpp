#include "tools/qvlogd/RateLimit.h"

RateLimit::RateLimit(unsigned int aLinesPerSecond)
    : mLinesPerSecond(aLinesPerSecond), mSecond(0), mLines(0), mHeldBack(0) {}
bool RateLimit::Allows(int64 aTime) {
  mSecond = aTime / 1000000;
  return ++mLines <= mLinesPerSecond || mLinesPerSecond == 0;
}
uint64 RateLimit::TakeHeldBack(int64) { return mHeldBack; }
