#include "qvraTools/qvRand.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <set>

#include "qvOS/qvRandStd.h"
#include "support/FakeDevice.h"

TEST(qvRand, SystemNumbersFollowTheSeed) {
  qvOSRand_SetSeed(12345);
  int theFirst = qvOSRand_Rand();
  int theSecond = qvOSRand_Rand();
  srand(12345);
  EXPECT_EQ(rand(), theFirst);
  EXPECT_EQ(rand(), theSecond);
}

TEST(qvRand, LowBytesOfFourNumbersMakeTheBitsFromTheTop) {
  srand(99);
  unsigned theBytes[4];
  for (unsigned& theByte : theBytes) {
    theByte = static_cast<unsigned>(rand()) % 256;
  }
  srand(99);
  uint32 theBits = qvRand_UInt32();
  EXPECT_EQ(theBytes[0], theBits >> 24);
  EXPECT_EQ(theBytes[1], (theBits >> 16) % 256);
  EXPECT_EQ(theBytes[2], (theBits >> 8) % 256);
  EXPECT_EQ(theBytes[3], theBits % 256);
}

TEST(qvRand, Int32HoldsTheSameBits) {
  for (unsigned theSeed = 1; theSeed < 50; ++theSeed) {
    srand(theSeed);
    uint32 theUnsigned = qvRand_UInt32();
    srand(theSeed);
    EXPECT_EQ(theUnsigned, static_cast<uint32>(qvRand_Int32()));
  }
}

TEST(qvRand, RangeOfOneNumberGivesThatNumber) {
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(5u, qvRand_MinMaxUInt32(5, 5));
    EXPECT_EQ(-7, qvRand_MinMaxInt32(-7, -7));
    EXPECT_EQ(65535, qvRand_MinMaxUInt16(65535, 65535));
    EXPECT_EQ(-32768, qvRand_MinMax(-32768, -32768));
  }
}

TEST(qvRand, FullRangeGivesTheRawNumber) {
  srand(7);
  uint32 theRaw = qvRand_UInt32();
  srand(7);
  EXPECT_EQ(theRaw, qvRand_MinMaxUInt32(0, 0xFFFFFFFF));
  srand(7);
  EXPECT_EQ(theRaw + 9u, qvRand_MinMaxUInt32(9, 8)) << "the range wraps around, from its low end";
}

TEST(qvRand, NumberIsTheRestWithinTheRange) {
  srand(7);
  uint32 theRaw = qvRand_UInt32();
  srand(7);
  EXPECT_EQ(100u + theRaw % 10u, qvRand_MinMaxUInt32(100, 109));
}

TEST(qvRand, ARangeWhoseEndsAreSwappedWrapsAroundAt32Bits) {
  srand(7);
  uint32 theRaw = qvRand_UInt32();
  uint32 theExpected = 10u + theRaw % 0xFFFFFFFCu;  // 10, 11, ... 4294967295, 0, ... 5
  srand(7);
  EXPECT_EQ(theExpected, qvRand_MinMaxUInt32(10, 5));
  srand(7);
  EXPECT_EQ(theExpected, static_cast<uint32>(qvRand_MinMaxInt32(10, 5)));
  srand(7);
  EXPECT_EQ(static_cast<uint16>(theExpected), qvRand_MinMaxUInt16(10, 5)) << "cut to 16 bits";
  srand(7);
  EXPECT_EQ(static_cast<int16>(theExpected), qvRand_MinMax(10, 5)) << "cut to 16 bits";
}

TEST(qvRand, BothEndsAreIncludedAndNothingElse) {
  srand(1);
  std::set<int32> theSigned;
  std::set<int> theShort;
  std::set<unsigned> theUnsigned;
  for (int i = 0; i < 2000; ++i) {
    theSigned.insert(qvRand_MinMaxInt32(-3, 3));
    theShort.insert(qvRand_MinMax(-2, 1));
    theUnsigned.insert(qvRand_MinMaxUInt16(10, 12));
  }
  EXPECT_EQ((std::set<int32>{-3, -2, -1, 0, 1, 2, 3}), theSigned);
  EXPECT_EQ((std::set<int>{-2, -1, 0, 1}), theShort);
  EXPECT_EQ((std::set<unsigned>{10, 11, 12}), theUnsigned);
}

TEST(qvRand, SignedRangesReachBothBounds) {
  for (int i = 0; i < 100; ++i) {
    qvRand_MinMaxInt32(INT32_MIN, INT32_MAX);  // the sanitizers see an overflow
    EXPECT_GE(qvRand_MinMaxInt32(INT32_MAX - 1, INT32_MAX), INT32_MAX - 1);
    EXPECT_LE(qvRand_MinMaxInt32(INT32_MIN, INT32_MIN + 1), INT32_MIN + 1);
  }
}

TEST(qvRand, InitSeedsOnlyOnce) {
  qvRand_Init();
  srand(42);
  uint32 theExpected = qvRand_UInt32();
  srand(42);
  qvRand_Init();
  EXPECT_EQ(theExpected, qvRand_UInt32()) << "a second call would have seeded anew";
}

// Expects that the next numbers are those of this seed.
static void ExpectSeed(uint32 aSeed) {
  uint32 theDrawn = qvRand_UInt32();
  srand(aSeed);
  EXPECT_EQ(qvRand_UInt32(), theDrawn);
}

TEST(qvRand, InitSeedsFromTheTimeAndTheLastFourBytesOfTheAddress) {
  gDevice.mTimes = {{0x50000000, 0x000F0001}};
  qvRand_Init();
  EXPECT_EQ(0u, gDevice.mIndex) << "the first interface";
  ExpectSeed(0x500F0001 ^ 0x2B3C4D5E);
}

TEST(qvRand, InitWithoutAnAddressSeedsFromTheTimeAlone) {
  gDevice.mTimes = {{0x50000000, 0x000F0001}};
  gDevice.mfHasAddress = false;
  qvRand_Init();
  ExpectSeed(0x500F0001);
}

TEST(qvRand, SeedWrapsAroundAt32Bits) {
  gDevice.mTimes = {{-1, 3}};
  gDevice.mfHasAddress = false;
  qvRand_Init();
  ExpectSeed(2);
}

TEST(qvRand, DrawingDoesNotSeed) {
  srand(42);
  uint32 theFirst = qvRand_UInt32();
  srand(42);
  EXPECT_EQ(theFirst, qvRand_UInt32());
  EXPECT_EQ(0, gDevice.mReadings);
}
