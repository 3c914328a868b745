#include "qvraTools/qvChrono.h"

#include <gtest/gtest.h>
#include <stddef.h>
#include <string.h>

#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvTime.h"
#include "support/TwoWords.h"

namespace {

uint64 NowMs() {
  qvULongLong theNow;
  qvChrono_S_GetTimeMS(&theNow);
  return Native(theNow);
}

uint64 TimeOf(qvChrono* aChrono) {
  qvULongLong theTime;
  qvChrono_GetTime(aChrono, &theTime);
  return Native(theTime);
}

// A watch that was paused when it showed aMilliSeconds.
qvChrono PausedAt(uint64 aMilliSeconds) {
  qvChrono theChrono;
  qvChrono_S_Init(&theChrono);
  theChrono.mPauseTime = ULongLong(aMilliSeconds);
  theChrono.mfPaused = 1;
  return theChrono;
}

}  // namespace

TEST(qvChrono, TheFieldsStandInThisOrder) {
  EXPECT_EQ(20u, sizeof(qvChrono));
  EXPECT_EQ(0u, offsetof(qvChrono, mStartTime));
  EXPECT_EQ(8u, offsetof(qvChrono, mPauseTime));
  EXPECT_EQ(16u, offsetof(qvChrono, mfPaused));
}

TEST(qvChrono, AnInitialisedWatchRunsSinceTheClocksZero) {
  qvChrono theChrono;
  memset(&theChrono, 0xFF, sizeof(theChrono));
  qvChrono_S_Init(&theChrono);
  EXPECT_EQ(0u, Native(theChrono.mStartTime));
  EXPECT_EQ(0, theChrono.mfPaused);
  const uint64 theBefore = NowMs();
  const uint64 theTime = TimeOf(&theChrono);
  EXPECT_LE(theBefore, theTime);
  EXPECT_GE(NowMs(), theTime);
}

TEST(qvChrono, ANewWatchIsInitialised) {
  void* theUsed =
      qvMalloc(sizeof(qvChrono));  // most likely what the watch is made of, and not zero by itself
  memset(theUsed, 0xFF, sizeof(qvChrono));
  qvFree(theUsed);
  qvChrono* theChrono = qvChrono_New();
  EXPECT_EQ(0u, Native(theChrono->mStartTime));
  EXPECT_EQ(0, theChrono->mfPaused);
  qvChrono_Delete(theChrono);
}

TEST(qvChrono, DeletingNullDoesNothing) { qvChrono_Delete(nullptr); }

TEST(qvChrono, TheClockIsTheMonotonicOneInMilliseconds) {
  qvtimeval theBefore;
  qvtimeval theAfter;
  qvTimeVal_Time(&theBefore);
  const uint64 theNow = NowMs();
  qvTimeVal_Time(&theAfter);
  EXPECT_LE(theBefore.tv_sec * 1000ull + theBefore.tv_usec / 1000u, theNow);
  EXPECT_GE(theAfter.tv_sec * 1000ull + theAfter.tv_usec / 1000u, theNow);
}

TEST(qvChrono, StartCountsFromZero) {
  qvChrono theChrono;
  qvChrono_S_Init(&theChrono);
  const uint64 theBefore = NowMs();
  qvChrono_Start(&theChrono, nullptr);
  const uint64 theAfter = NowMs();
  EXPECT_LE(theBefore, Native(theChrono.mStartTime));
  EXPECT_GE(theAfter, Native(theChrono.mStartTime));
  EXPECT_GE(NowMs() - theBefore, TimeOf(&theChrono));
}

TEST(qvChrono, StartCountsFromAnOffset) {
  qvChrono theChrono;
  qvChrono_S_Init(&theChrono);
  const qvULongLong theOffset = ULongLong(10000000000);
  const uint64 theBefore = NowMs();
  qvChrono_Start(&theChrono, &theOffset);
  const uint64 theTime = TimeOf(&theChrono);
  EXPECT_LE(10000000000u, theTime);
  EXPECT_GE(10000000000u + (NowMs() - theBefore), theTime);
}

TEST(qvChrono, TheOffsetMayBeAFieldOfTheWatch) {
  qvChrono theChrono;
  qvChrono_S_Init(&theChrono);
  theChrono.mStartTime = ULongLong(5000);
  const uint64 theBefore = NowMs();
  qvChrono_Start(&theChrono, &theChrono.mStartTime);
  EXPECT_LE(theBefore - 5000, Native(theChrono.mStartTime));
  EXPECT_GE(NowMs() - 5000, Native(theChrono.mStartTime));
}

TEST(qvChrono, StartInSecondsShowsThemAtOnce) {
  qvChrono theChrono;
  qvChrono_S_Init(&theChrono);
  const uint64 theBefore = NowMs();
  qvChrono_Start_S(&theChrono, 5);
  const uint32 theSeconds = qvChrono_GetTime_S(&theChrono);
  EXPECT_LE(5u, theSeconds);
  EXPECT_GE(5 + (NowMs() - theBefore) / 1000, theSeconds) << "5 unless a second has passed meanwhile";
}

TEST(qvChrono, StartTakesAsManySecondsAsAWordHolds) {
  qvChrono theChrono;
  qvChrono_S_Init(&theChrono);
  const uint64 theBefore = NowMs();
  qvChrono_Start_S(&theChrono, 0xFFFFFFFF);
  const uint64 theTime = TimeOf(&theChrono);
  EXPECT_LE(4294967295000u, theTime);
  EXPECT_GE(4294967295000u + (NowMs() - theBefore), theTime);
}

TEST(qvChrono, StartEndsAPause) {
  qvChrono theChrono = PausedAt(5000);
  qvChrono_Start(&theChrono, nullptr);
  EXPECT_EQ(0, theChrono.mfPaused);
  EXPECT_GT(5000u, TimeOf(&theChrono));
}

TEST(qvChrono, PauseFreezesTheTime) {
  qvChrono theChrono;
  qvChrono_S_Init(&theChrono);
  const qvULongLong theOffset = ULongLong(5000);
  const uint64 theBefore = NowMs();
  qvChrono_Start(&theChrono, &theOffset);
  qvChrono_Pause(&theChrono);
  const uint64 theAfter = NowMs();
  EXPECT_EQ(1, theChrono.mfPaused);
  const uint64 theFrozen = TimeOf(&theChrono);
  EXPECT_LE(5000u, theFrozen);
  EXPECT_GE(5000 + theAfter - theBefore, theFrozen);
  EXPECT_EQ(theFrozen, Native(theChrono.mPauseTime));
  theChrono.mStartTime = ULongLong(0);  // no clock and no start can change it
  EXPECT_EQ(theFrozen, TimeOf(&theChrono));
}

TEST(qvChrono, ASecondPauseKeepsTheFirstTime) {
  qvChrono theChrono;
  qvChrono_S_Init(&theChrono);
  qvChrono_Start_S(&theChrono, 5);
  qvChrono_Pause(&theChrono);
  const uint64 theFrozen = TimeOf(&theChrono);
  theChrono.mStartTime = ULongLong(NowMs() - 77000);  // what a pause now would freeze
  qvChrono_Pause(&theChrono);
  EXPECT_EQ(theFrozen, TimeOf(&theChrono));
  EXPECT_EQ(1, theChrono.mfPaused);
}

TEST(qvChrono, ResumeGoesOnFromTheFrozenTime) {
  qvChrono theChrono = PausedAt(7277250);
  const uint64 theBefore = NowMs();
  qvChrono_Resume(&theChrono);
  const uint64 theTime = TimeOf(&theChrono);
  EXPECT_EQ(0, theChrono.mfPaused);
  EXPECT_LE(7277250u, theTime);
  EXPECT_GE(7277250 + NowMs() - theBefore, theTime);
}

TEST(qvChrono, ResumeWhileRunningDoesNothing) {
  qvChrono theChrono;
  qvChrono_S_Init(&theChrono);
  theChrono.mStartTime = ULongLong(NowMs() - 5000);
  theChrono.mPauseTime = ULongLong(99);
  const qvChrono theGiven = theChrono;
  qvChrono_Resume(&theChrono);
  EXPECT_EQ(Native(theGiven.mStartTime), Native(theChrono.mStartTime));
  EXPECT_EQ(Native(theGiven.mPauseTime), Native(theChrono.mPauseTime));
  EXPECT_EQ(0, theChrono.mfPaused);
}

TEST(qvChrono, TheTimeIsSplitIntoSecondsAndMilliseconds) {
  const struct {
    uint64 mTime;
    uint32 mSeconds, mMilliSeconds;
    const char* mWhy;
  } kCases[] = {
      {0, 0, 0, "zero"},
      {999, 0, 999, "less than a second"},
      {1000, 1, 0, "a second"},
      {7277250, 7277, 250, "both"},
      {4294967295999, 0xFFFFFFFF, 999, "the most seconds of a word"},
      {4294967296000 + 5001, 5, 1, "seconds are cut to a word"},
      {UINT64_MAX, 1271310319, 615, "the longest time"},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    qvChrono theChrono = PausedAt(theCase.mTime);
    uint32 theSeconds = 99;
    uint32 theMilliSeconds = 99;
    qvChrono_GetTime_S_MS(&theChrono, &theSeconds, &theMilliSeconds);
    EXPECT_EQ(theCase.mSeconds, theSeconds);
    EXPECT_EQ(theCase.mMilliSeconds, theMilliSeconds);
    EXPECT_EQ(theCase.mSeconds, qvChrono_GetTime_S(&theChrono));
  }
}
