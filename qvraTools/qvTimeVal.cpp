// Time values on the monotonic clock.

#include "qvOS/qvMonoliticTime.h"
#include "qvraTools/qvLongLong_p.h"
#include "qvraTools/qvTime.h"
#include "qvraTools/qvTime_p.h"

#define kqvTimeVal_USPerSecond 1000000
#define kqvTimeVal_MSPerSecond 1000
#define kqvTimeVal_USPerMS     1000

// A time value with room for every sum and difference of its parts.
struct qvTimeVal_Wide {
  int64 mSec;
  int64 mUSec;
};

void qvTimeVal_S_GetMilliSeconds(const qvtimeval* aTime, qvULongLong* aResult) {
  qvULongLong_Set(aResult, 0, (uint32)aTime->tv_sec);
  qvULongLong_Mult(aResult, &_1000ULL);
  qvULongLong_AddUInt32(aResult, (uint32)(aTime->tv_usec / kqvTimeVal_USPerMS));
}

void qvTimeVal_Time(qvtimeval* aTime) { qvMonoliticTime_GetTime(aTime); }

uint32 qvTimeVal_Seconds(void) {
  qvtimeval theNow;
  qvTimeVal_Time(&theNow);
  return (uint32)theNow.tv_sec;
}

int qvTimeVal_Less(const qvtimeval* aX, const qvtimeval* aY) {
  return aX->tv_sec < aY->tv_sec || (aX->tv_sec == aY->tv_sec && aX->tv_usec < aY->tv_usec);
}

int qvTimeVal_Compare(const qvtimeval* aX, const qvtimeval* aY) {
  return qvTimeVal_Less(aY, aX) - qvTimeVal_Less(aX, aY);
}

// aLarger - aSmaller, by borrowing seconds until the microseconds can be subtracted, and giving back seconds
// that the microseconds hold. A difference of exactly 1000000 us is left as it is.
static qvTimeVal_Wide qvTimeVal_S_Difference(const qvtimeval* aLarger, const qvtimeval* aSmaller) {
  const qvTimeVal_Wide theLarger = {aLarger->tv_sec, aLarger->tv_usec};
  qvTimeVal_Wide theSmaller = {aSmaller->tv_sec, aSmaller->tv_usec};
  if (theLarger.mUSec < theSmaller.mUSec) {
    const int64 theSeconds = (theSmaller.mUSec - theLarger.mUSec) / kqvTimeVal_USPerSecond + 1;
    theSmaller.mUSec -= theSeconds * kqvTimeVal_USPerSecond;
    theSmaller.mSec += theSeconds;
  }
  if (theLarger.mUSec - theSmaller.mUSec > kqvTimeVal_USPerSecond) {
    const int64 theSeconds = (theLarger.mUSec - theSmaller.mUSec) / kqvTimeVal_USPerSecond;
    theSmaller.mUSec += theSeconds * kqvTimeVal_USPerSecond;
    theSmaller.mSec -= theSeconds;
  }
  const qvTimeVal_Wide theDifference = {theLarger.mSec - theSmaller.mSec, theLarger.mUSec - theSmaller.mUSec};
  return theDifference;
}

int qvTimeVal_Substract(qvtimeval* aResult, const qvtimeval* aX, const qvtimeval* aY) {
  const int theInverted = qvTimeVal_Less(aX, aY);
  qvTimeVal_Wide theDifference =
      theInverted ? qvTimeVal_S_Difference(aY, aX) : qvTimeVal_S_Difference(aX, aY);
  if (theInverted) {
    if (theDifference.mSec >= 1) {
      theDifference.mSec = -theDifference.mSec;
    } else if (theDifference.mUSec > 0) {
      theDifference.mUSec = -theDifference.mUSec;
    }
  }
  aResult->tv_sec = (int32)theDifference.mSec;
  aResult->tv_usec = (int32)theDifference.mUSec;
  return theInverted;
}

void qvTimeVal_Add(qvtimeval* aTime, uint32 aMilliSeconds) {
  const int64 theUSec = aTime->tv_usec + (int64)(aMilliSeconds % kqvTimeVal_MSPerSecond) * kqvTimeVal_USPerMS;
  const int64 theSec =
      aTime->tv_sec + (int64)(aMilliSeconds / kqvTimeVal_MSPerSecond) + theUSec / kqvTimeVal_USPerSecond;
  aTime->tv_sec = (int32)theSec;
  aTime->tv_usec = (int32)(theUSec % kqvTimeVal_USPerSecond);
}

void qvTimeVal_TimeOfTimeOut(qvtimeval* aTime, uint32 aMilliSeconds) {
  qvTimeVal_Time(aTime);
  qvTimeVal_Add(aTime, aMilliSeconds);
}

uint32 qvTimeVal_RemainingTimeOut(const qvtimeval* aTime) {
  qvtimeval theNow;
  qvTimeVal_Time(&theNow);
  qvtimeval theRest;
  if (qvTimeVal_Substract(&theRest, aTime, &theNow)) {
    return 0;
  }
  return (uint32)theRest.tv_sec * kqvTimeVal_MSPerSecond + (uint32)(theRest.tv_usec / kqvTimeVal_USPerMS);
}
