// Time values on the monotonic clock.

#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <string>

#include "qvOS/qvMonoliticTime.h"
#include "qvraTools/qvTime.h"

namespace {

int64 MicroSeconds(const qvtimeval& aTime) { return aTime.tv_sec * 1000000LL + aTime.tv_usec; }

qvtimeval Now() {
  qvtimeval theNow = {-1, -1};
  qvMonoliticTime_GetTime(&theNow);
  return theNow;
}

// Where the monotonic clock stands still; null while it runs.
const struct timespec* sStopped = nullptr;

}  // namespace

// Stands in for the system's function, so that the clock can be stopped.
extern "C" int clock_gettime(clockid_t aClock, struct timespec* aTime) noexcept {
  if (aClock == CLOCK_MONOTONIC && sStopped != nullptr) {
    *aTime = *sStopped;
    return 0;
  }
  return static_cast<int>(syscall(SYS_clock_gettime, aClock, aTime));
}

TEST(qvTimeVal, TimeIsTheMonotonicClock) {
  const qvtimeval theBefore = Now();
  qvtimeval theTime = {-1, -1};
  qvTimeVal_Time(&theTime);
  const qvtimeval theAfter = Now();
  EXPECT_LE(MicroSeconds(theBefore), MicroSeconds(theTime));
  EXPECT_GE(MicroSeconds(theAfter), MicroSeconds(theTime));
}

TEST(qvTimeVal, SecondsAreThoseOfTheMonotonicClock) {
  const qvtimeval theBefore = Now();
  const uint32 theSeconds = qvTimeVal_Seconds();
  const qvtimeval theAfter = Now();
  EXPECT_LE(static_cast<uint32>(theBefore.tv_sec), theSeconds);
  EXPECT_GE(static_cast<uint32>(theAfter.tv_sec), theSeconds);
}

TEST(qvTimeVal, ComparisonsLookAtTheSecondsFirst) {
  const qvtimeval kAscending[] = {
      {INT32_MIN, 0}, {-1, 999999}, {0, -300000}, {0, 0},         {0, 999999},
      {1, 0},         {1, 1},       {2, 0},       {INT32_MAX, 0}, {INT32_MAX, 999999}};
  const int kCount = sizeof(kAscending) / sizeof(kAscending[0]);
  for (int i = 0; i < kCount; ++i) {
    for (int j = 0; j < kCount; ++j) {
      SCOPED_TRACE(std::to_string(i) + " and " + std::to_string(j));
      const int theOrder = i < j ? -1 : i > j ? 1 : 0;
      EXPECT_EQ(theOrder, qvTimeVal_Compare(&kAscending[i], &kAscending[j]));
      EXPECT_EQ(i < j ? 1 : 0, qvTimeVal_Less(&kAscending[i], &kAscending[j]));
    }
  }
}

TEST(qvTimeVal, ADifferenceHasItsSignInTheSecondsOrElseInTheMicroseconds) {
  const struct {
    qvtimeval mX, mY, mDifference;
    int mResult;
    const char* mWhy;
  } kCases[] = {
      {{5, 500000}, {3, 0}, {2, 500000}, 0, "positive"},
      {{5, 0}, {3, 500000}, {1, 500000}, 0, "positive, with a borrow"},
      {{5, 0}, {5, 0}, {0, 0}, 0, "equal"},
      {{5, 300000}, {5, 0}, {0, 300000}, 0, "positive, less than a second"},
      {{5, 0}, {5, 300000}, {0, -300000}, 1, "negative, less than a second"},
      {{3, 0}, {5, 500000}, {-2, 500000}, 1, "negative, more than a second"},
      {{3, 500000}, {5, 0}, {-1, 500000}, 1, "negative, with a borrow"},
      {{4, 0}, {5, 0}, {-1, 0}, 1, "minus one second"},
      {{4, 999999}, {5, 0}, {0, -1}, 1, "minus one microsecond, with a borrow"},
      {{4, 0}, {5, 1}, {-1, 1}, 1, "one second and a microsecond"},
      {{0, 0}, {0, 1}, {0, -1}, 1, "minus one microsecond"},
      {{-1, 0}, {1, 0}, {-2, 0}, 1, "from below zero"},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    qvtimeval theDifference = {99, 99};
    EXPECT_EQ(theCase.mResult, qvTimeVal_Substract(&theDifference, &theCase.mX, &theCase.mY));
    EXPECT_EQ(theCase.mDifference.tv_sec, theDifference.tv_sec);
    EXPECT_EQ(theCase.mDifference.tv_usec, theDifference.tv_usec);
  }
}

TEST(qvTimeVal, ADifferenceOfMicrosecondsBeyondASecondIsCarried) {
  const struct {
    qvtimeval mX, mY, mDifference;
    int mResult;
    const char* mWhy;
  } kCases[] = {
      {{1, 2500000}, {1, 0}, {2, 500000}, 0, "seconds are taken out of the microseconds"},
      {{1, 1000001}, {1, 0}, {1, 1}, 0, "from one microsecond more than a second on"},
      {{1, 1000000}, {1, 0}, {0, 1000000}, 0, "but not from exactly a second"},
      {{1, 0}, {1, 1000000}, {0, -1000000}, 1, "nor the other way round"},
      {{2, 0}, {1, 1000000}, {-1, 1000000}, 0, "nor behind a borrow"},
      {{3, 500000}, {1, 1500000}, {0, 1000000}, 0, "of as few seconds as will do"},
      {{9, 0}, {1, 3500000}, {4, 500000}, 0, "several seconds are borrowed"},
      {{1, 0}, {9, 3500000}, {-11, 500000}, 1, "negative"},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    qvtimeval theDifference = {99, 99};
    EXPECT_EQ(theCase.mResult, qvTimeVal_Substract(&theDifference, &theCase.mX, &theCase.mY));
    EXPECT_EQ(theCase.mDifference.tv_sec, theDifference.tv_sec);
    EXPECT_EQ(theCase.mDifference.tv_usec, theDifference.tv_usec);
  }
}

TEST(qvTimeVal, ADifferenceWrapsIn32Bits) {
  const qvtimeval theLast = {INT32_MAX, INT32_MAX};
  const qvtimeval theFirst = {INT32_MIN, INT32_MIN};
  qvtimeval theDifference;
  EXPECT_EQ(0, qvTimeVal_Substract(&theDifference, &theLast, &theFirst));
  EXPECT_EQ(4293, theDifference.tv_sec);  // 2^32 - 1 + 4294 seconds
  EXPECT_EQ(967295, theDifference.tv_usec);
}

TEST(qvTimeVal, TheResultMayBeAnOperandAndTheOthersStay) {
  qvtimeval theX = {5, 0};
  qvtimeval theY = {3, 500000};
  EXPECT_EQ(0, qvTimeVal_Substract(&theX, &theX, &theY));
  EXPECT_EQ(1500000, MicroSeconds(theX));
  EXPECT_EQ(3500000, MicroSeconds(theY));
  theX = {3, 0};
  EXPECT_EQ(1, qvTimeVal_Substract(&theY, &theX, &theY));
  EXPECT_EQ(0, theY.tv_sec);
  EXPECT_EQ(-500000, theY.tv_usec);
  EXPECT_EQ(3000000, MicroSeconds(theX));
}

TEST(qvTimeVal, AddCarriesIntoTheSeconds) {
  const struct {
    qvtimeval mTime;
    uint32 mMilliSeconds;
    qvtimeval mSum;
    const char* mWhy;
  } kCases[] = {
      {{1, 800000}, 2500, {4, 300000}, "seconds and a carry"},
      {{1, 800000}, 0, {1, 800000}, "nothing"},
      {{0, 1000}, 999, {1, 0}, "exactly a second"},
      {{0, 999999}, 1, {1, 999}, "microseconds stay"},
      {{0, 0}, 999, {0, 999000}, "no carry"},
      {{0, 0}, 0xFFFFFFFF, {4294967, 295000}, "the longest"},
      {{0, 3500000}, 0, {3, 500000}, "normalises what was not"},
      {{0, -300000}, 500, {0, 200000}, "from below zero"},
      {{0, -300000}, 100, {0, -200000}, "below zero"},
      {{INT32_MAX, 0}, 1000, {INT32_MIN, 0}, "wraps in 32 bits"},
      {{INT32_MAX, INT32_MAX}, 0, {INT32_MIN + 2146, 483647}, "wraps in 32 bits"},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    qvtimeval theTime = theCase.mTime;
    qvTimeVal_Add(&theTime, theCase.mMilliSeconds);
    EXPECT_EQ(theCase.mSum.tv_sec, theTime.tv_sec);
    EXPECT_EQ(theCase.mSum.tv_usec, theTime.tv_usec);
  }
}

TEST(qvTimeVal, ADeadlineIsNowPlusItsDelay) {
  const qvtimeval theBefore = Now();
  qvtimeval theDeadline;
  qvTimeVal_TimeOfTimeOut(&theDeadline, 3600500);
  const qvtimeval theAfter = Now();
  EXPECT_LE(MicroSeconds(theBefore) + 3600500000, MicroSeconds(theDeadline));
  EXPECT_GE(MicroSeconds(theAfter) + 3600500000, MicroSeconds(theDeadline));
  EXPECT_GT(1000000, theDeadline.tv_usec);
}

TEST(qvTimeVal, TheRestIsWhatIsLeftUntilTheDeadline) {
  const qvtimeval theBefore = Now();
  qvtimeval theDeadline = theBefore;
  qvTimeVal_Add(&theDeadline, 3600500);
  const uint32 theRest = qvTimeVal_RemainingTimeOut(&theDeadline);
  const int64 theElapsedMs = (MicroSeconds(Now()) - MicroSeconds(theBefore)) / 1000 + 1;
  EXPECT_GE(3600500u, theRest);
  EXPECT_LE(3600500 - theElapsedMs, static_cast<int64>(theRest));
}

TEST(qvTimeVal, TheRestIsZeroNowAndAfterTheDeadline) {
  const qvtimeval theNow = Now();
  EXPECT_EQ(0u, qvTimeVal_RemainingTimeOut(&theNow));
  const qvtimeval theLongPast = {0, 0};
  EXPECT_EQ(0u, qvTimeVal_RemainingTimeOut(&theLongPast));
  qvtimeval theJustPast = Now();
  theJustPast.tv_sec -= 1;
  EXPECT_EQ(0u, qvTimeVal_RemainingTimeOut(&theJustPast));
}

TEST(qvTimeVal, TheRestIsCutToWholeMilliseconds) {
  const struct {
    qvtimeval mDeadline;
    uint32 mRest;
    const char* mWhy;
  } kCases[] = {
      {{1000, 499999}, 0, "a microsecond ago"},
      {{1000, 500000}, 0, "now"},
      {{1000, 500999}, 0, "less than a millisecond"},
      {{1000, 501000}, 1, "a millisecond"},
      {{1000, 501999}, 1, "cut, not rounded"},
      {{1002, 250000}, 1750, "seconds and milliseconds"},
      {{4295967, 795000}, 4294967295, "as many as a word holds"},
  };
  const struct timespec theNow = {1000, 500000999};
  for (const auto& theCase : kCases) {
    sStopped = &theNow;
    const uint32 theRest = qvTimeVal_RemainingTimeOut(&theCase.mDeadline);
    sStopped = nullptr;
    EXPECT_EQ(theCase.mRest, theRest) << theCase.mWhy;
  }
}
