#include "tools/qvlogd/RateLimit.h"

#include <gtest/gtest.h>

namespace {

constexpr int64 kSecond = 1000000;
constexpr int64 kStart = 1709640000 * kSecond;

int AllowedOf(RateLimit& aLimit, int aLines, int64 aTime) {
  int theAllowed = 0;
  for (int i = 0; i < aLines; ++i) {
    theAllowed += aLimit.Allows(aTime) ? 1 : 0;
  }
  return theAllowed;
}

}  // namespace

TEST(RateLimit, ZeroIsNoLimit) {
  RateLimit theLimit(0);
  EXPECT_EQ(100000, AllowedOf(theLimit, 100000, kStart));
  EXPECT_EQ(0u, theLimit.TakeHeldBack(kStart + 10 * kSecond));
}

TEST(RateLimit, SoManyLinesOfASecondPass) {
  RateLimit theLimit(3);
  EXPECT_EQ(2, AllowedOf(theLimit, 2, kStart));
  EXPECT_EQ(1, AllowedOf(theLimit, 5, kStart + kSecond - 1));
}

TEST(RateLimit, TheNextSecondStartsAnew) {
  RateLimit theLimit(3);
  EXPECT_EQ(3, AllowedOf(theLimit, 5, kStart + kSecond - 1));
  EXPECT_EQ(3, AllowedOf(theLimit, 5, kStart + kSecond));
}

TEST(RateLimit, WhatIsHeldBackIsToldOnceItsSecondIsOver) {
  RateLimit theLimit(3);
  AllowedOf(theLimit, 5, kStart);
  EXPECT_EQ(0u, theLimit.TakeHeldBack(kStart + kSecond - 1));
  EXPECT_EQ(2u, theLimit.TakeHeldBack(kStart + kSecond));
  EXPECT_EQ(0u, theLimit.TakeHeldBack(kStart + kSecond));
}

TEST(RateLimit, WhatWasHeldBackInSeveralSecondsIsToldTogether) {
  RateLimit theLimit(1);
  AllowedOf(theLimit, 5, kStart);
  AllowedOf(theLimit, 4, kStart + 3 * kSecond);
  EXPECT_EQ(4u, theLimit.TakeHeldBack(kStart + 3 * kSecond));
  EXPECT_EQ(3u, theLimit.TakeHeldBack(kStart + 4 * kSecond));
}

TEST(RateLimit, AClockThatIsSetBackHoldsNobodyBack) {
  RateLimit theLimit(3);
  AllowedOf(theLimit, 5, kStart);
  EXPECT_EQ(3, AllowedOf(theLimit, 3, kStart - 3600 * kSecond));
  EXPECT_EQ(2u, theLimit.TakeHeldBack(kStart - 3600 * kSecond));
}
