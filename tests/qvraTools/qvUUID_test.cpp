#include "qvraTools/qvUUID.h"

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>

#include <cstddef>
#include <cstring>
#include <set>
#include <string>

#include "qvraTools/qvUUID_p.h"
#include "support/ChildProcess.h"
#include "support/FakeDevice.h"

// The number of this process; 0: the system's. The program is linked with --wrap for it.
static uint32 gProcessId = 0;

extern "C" uint32 __real_qvThread_GetPID(void);
extern "C" uint32 __wrap_qvThread_GetPID(void) {
  return gProcessId != 0 ? gProcessId : __real_qvThread_GetPID();
}

namespace {

std::string Text(const uint8* anUUID) {
  char theText[38];
  memset(theText, 'x', sizeof(theText));
  qvUUID_Print(anUUID, theText);
  EXPECT_EQ('\0', theText[36]);
  EXPECT_EQ('x', theText[37]) << "37 bytes are written";
  return theText;
}

// The 60-bit time of a packed UUID, by the layout of RFC 4122.
uint64 TimeOf(const uint8* anUUID) {
  uint64 theHigh = ((anUUID[6] & 0x0Fu) << 8) | anUUID[7];
  uint64 theMid = (anUUID[4] << 8) | anUUID[5];
  uint64 theLow = 0;
  for (int i = 0; i < 4; ++i) {
    theLow = (theLow << 8) | anUUID[i];
  }
  return (theHigh << 48) | (theMid << 32) | theLow;
}

TEST(qvUUID, PrintWritesGroupsOfEightFourFourFourAndTwelveDigits) {
  const uint8 kUUID[16] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF,
                           0x00, 0x0F, 0xF0, 0xFF, 0x10, 0x20, 0x30, 0x40};
  EXPECT_EQ("01234567-89ab-cdef-000f-f0ff10203040", Text(kUUID));
}

TEST(qvUUID, PrintOfSixteenZeroBytes) {
  const uint8 kUUID[16] = {};
  EXPECT_EQ("00000000-0000-0000-0000-000000000000", Text(kUUID));
}

TEST(qvUUID, FieldsAreBigEndian) {
  const uuid kUUID = {0x01020304, 0x0506, 0x0708, 0x090A, {0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x10}};
  uint8 thePacked[16];
  qvUUID_Pack(&kUUID, thePacked);
  for (int i = 0; i < 16; ++i) {
    EXPECT_EQ(i + 1, thePacked[i]);
  }
}

TEST(qvUUID, UnpackedFieldsStandInOrder) {
  EXPECT_EQ(0u, offsetof(uuid, time_low));
  EXPECT_EQ(4u, offsetof(uuid, time_mid));
  EXPECT_EQ(6u, offsetof(uuid, time_hi_and_version));
  EXPECT_EQ(8u, offsetof(uuid, clock_seq));
  EXPECT_EQ(10u, offsetof(uuid, node));
  EXPECT_EQ(6u, sizeof(uuid().node));
}

TEST(qvUUID, VersionAndVariantAreMarked) {
  for (int i = 0; i < 100; ++i) {
    uint8 theUUID[16];
    qvUUID_Generate(theUUID);
    EXPECT_EQ(1, theUUID[6] >> 4);
    EXPECT_EQ(2, theUUID[8] >> 6);
    EXPECT_EQ(0, theUUID[8] & 0x20) << "the sequence has 13 bits";
  }
}

uint16 Sequence() {
  unsigned int theHigh = 0;
  uint32 theLow = 0;
  uint16 theSequence = 0;
  qvUUID_GetClock(&theHigh, &theLow, &theSequence);
  return theSequence;
}

TEST(qvUUID, AChildProcessUsesAnotherClockSequence) {
  uint16 theFirst = Sequence();
  // The next UUIDs of both processes may fall into the same microsecond.
  ChildResult theResult = RunInChild([] { printf("%u", Sequence()); });
  EXPECT_EQ(theFirst, Sequence()) << "that of the parent stays";
  EXPECT_NE("", theResult.mStdout);
  EXPECT_NE(std::to_string(theFirst), theResult.mStdout);
}

TEST(qvUUID, NoNumberOfAChildProcessGivesItItsParentsClockSequence) {
  gProcessId = 1;
  uint16 theSequence = Sequence();
  for (uint32 theProcessId : {0x1FFEu, 0x1FFFu, 0x2000u, 0x4000u, 0x3FFEu, 0x8000u, 0xFFFFFFFFu}) {
    gProcessId = theProcessId;
    uint16 theNext = Sequence();
    EXPECT_NE(theSequence, theNext) << theProcessId;
    EXPECT_LE(theNext, 0x1FFF) << theProcessId;
    EXPECT_EQ(theNext, Sequence()) << "once in a process";
    theSequence = theNext;
  }
}

TEST(qvUUID, ManyUUIDsDiffer) {
  std::set<std::string> theTexts;
  for (int i = 0; i < 5000; ++i) {
    uint8 theUUID[16];
    qvUUID_Generate(theUUID);
    theTexts.insert(Text(theUUID));
  }
  EXPECT_EQ(5000u, theTexts.size());
}

TEST(qvUUID, TimeCountsFrom1582) {
  uint8 theUUID[16];
  gDevice.mTimes = {{0, 0}};
  qvUUID_Generate(theUUID);
  EXPECT_EQ(122192928000000000ull, TimeOf(theUUID)) << "141,427 days in units of 100 ns";
  gDevice.mTimes = {{1425810030, 250001}};
  qvUUID_Generate(theUUID);
  EXPECT_EQ(136451028302500010ull, TimeOf(theUUID));
  gDevice.mTimes = {{-1, 999999}};  // the last second of the 32 bits, in 2106
  qvUUID_Generate(theUUID);
  EXPECT_EQ(122192928000000000ull + 42949672959999990ull, TimeOf(theUUID));
}

TEST(qvUUID, TimeOfAKnownMomentLiesInItsFields) {
  uint8 theUUID[16];
  gDevice.mTimes = {{1425810030, 250001}};
  qvUUID_Generate(theUUID);
  EXPECT_EQ("bf3510aa-c57c-11e4", Text(theUUID).substr(0, 18));
}

TEST(qvUUID, ElevenInOneMicrosecondCountUpAndTheTwelfthWaitsForTheNext) {
  uint8 theUUID[16];
  gDevice.mTimes = {{1000, 500}};
  qvUUID_Generate(theUUID);
  const uint64 kFirst = TimeOf(theUUID);
  for (uint64 i = 1; i <= 10; ++i) {
    qvUUID_Generate(theUUID);
    EXPECT_EQ(kFirst + i, TimeOf(theUUID));
  }
  EXPECT_EQ(11, gDevice.mReadings) << "none has waited";
  gDevice.mTimes = {{1000, 500}, {1000, 500}, {1000, 501}};
  qvUUID_Generate(theUUID);
  EXPECT_EQ(kFirst + 10, TimeOf(theUUID)) << "a microsecond later";
  EXPECT_EQ(14, gDevice.mReadings) << "the clock was read until it had moved";
}

TEST(qvUUID, AClockThatGoesBackChangesTheSequence) {
  unsigned int theHigh = 0;
  uint32 theLow = 0;
  uint16 theBefore = 0;
  uint16 theAfter = 0;
  gDevice.mTimes = {{1000, 500}, {1000, 499}};
  EXPECT_EQ(0, qvUUID_GetClock(&theHigh, &theLow, &theBefore));
  EXPECT_EQ(0, qvUUID_GetClock(&theHigh, &theLow, &theAfter));
  EXPECT_EQ((theBefore + 1) & 0x1FFF, theAfter);
}

TEST(qvUUID, NodeIsTheAddressThatTheDeviceHadFirst) {
  uint8 theUUID[16];
  qvUUID_Generate(theUUID);
  EXPECT_EQ("021a2b3c4d5e", Text(theUUID).substr(24));
  EXPECT_EQ(0u, gDevice.mIndex) << "the first interface";
  gDevice.mAddress[0] = 0x77;
  qvUUID_Generate(theUUID);
  EXPECT_EQ("021a2b3c4d5e", Text(theUUID).substr(24));
}

TEST(qvUUID, WithoutAnAddressTheNodeIsRandomAndStaysTheSame) {
  uint8 theFirst[16];
  uint8 theSecond[16];
  gDevice.mfHasAddress = false;
  srand(5);
  uint8 theNode[6];
  qvUUID_S_MakeRandomNode(theNode);
  srand(5);
  qvUUID_Generate(theFirst);
  qvUUID_Generate(theSecond);
  EXPECT_EQ(0, memcmp(theNode, theFirst + 10, 6));
  EXPECT_EQ(0, memcmp(theNode, theSecond + 10, 6));
}

TEST(qvUUID, ARandomNodeIsSixRandomBytesButForItsMark) {
  uint8 theBytes[6];
  srand(5);
  qvUUID_GetRandomBytes(theBytes, 6);
  uint8 theNode[7] = {0, 0, 0, 0, 0, 0, 0xEE};
  srand(5);
  qvUUID_S_MakeRandomNode(theNode);
  EXPECT_EQ(theBytes[0] | 0x80, theNode[0]);
  EXPECT_EQ(0, memcmp(theBytes + 1, theNode + 1, 5));
  EXPECT_EQ(0xEE, theNode[6]) << "the byte behind it stays";
}

TEST(qvUUIDKept, RandomNodeIsMarkedInItsTopBit) {
  bool theLowBitWasClear = false;
  for (unsigned theSeed = 1; theSeed <= 20; ++theSeed) {
    uint8 theNode[6];
    srand(theSeed);
    qvUUID_S_MakeRandomNode(theNode);
    EXPECT_EQ(0x80, theNode[0] & 0x80);
    theLowBitWasClear = theLowBitWasClear || (theNode[0] & 0x01) == 0;
  }
  EXPECT_TRUE(theLowBitWasClear) << "the lowest bit, which RFC 4122 would set, stays random";
}

TEST(qvUUID, RandomBytesAreTheLowBitsOfTheRandomNumbers) {
  uint8 theBytes[3] = {0, 0, 0};
  uint8 theGuard = 0xEE;
  srand(5);
  unsigned theExpected[3];
  for (unsigned& theByte : theExpected) {
    rand();
    rand();
    rand();
    theByte = static_cast<unsigned>(rand()) % 256;
  }
  srand(5);
  qvUUID_GetRandomBytes(theBytes, 3);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(theExpected[i], theBytes[i]);
  }
  qvUUID_GetRandomBytes(&theGuard, 0);
  EXPECT_EQ(0xEE, theGuard);
}

// ---- the clock

TEST(qvUUIDClock, ElevenUUIDsShareAMicrosecondAndTheTwelfthWaits) {
  qvUUID_Clock theClock = {};
  const qvtimeval kNow = {1000, 500};
  for (int i = 0; i <= 10; ++i) {
    EXPECT_EQ(1, qvUUID_S_AdvanceClock(&theClock, &kNow));
    EXPECT_EQ(i, theClock.mAdjustment);
  }
  EXPECT_EQ(0, qvUUID_S_AdvanceClock(&theClock, &kNow));
  const qvtimeval kLater = {1000, 501};
  EXPECT_EQ(1, qvUUID_S_AdvanceClock(&theClock, &kLater));
  EXPECT_EQ(0, theClock.mAdjustment);
}

TEST(qvUUIDClock, TheFirstSequenceIsRandomWithin13Bits) {
  std::set<int> theSequences;
  for (unsigned theSeed = 1; theSeed <= 20; ++theSeed) {
    srand(theSeed);
    qvUUID_Clock theClock = {};
    const qvtimeval kNow = {1000, 500};
    qvUUID_S_AdvanceClock(&theClock, &kNow);
    EXPECT_LE(theClock.mSequence, 0x1FFF);
    theSequences.insert(theClock.mSequence);
  }
  EXPECT_GT(theSequences.size(), 10u);
}

TEST(qvUUIDClock, TheFirstSequenceIsTwoRandomBytesAsTheyLieInMemory) {
  for (unsigned theSeed = 1; theSeed <= 20; ++theSeed) {
    srand(theSeed);
    uint8 theBytes[2];
    qvUUID_GetRandomBytes(theBytes, 2);
    srand(theSeed);
    qvUUID_Clock theClock = {};
    const qvtimeval kNow = {1000, 500};
    qvUUID_S_AdvanceClock(&theClock, &kNow);
    EXPECT_EQ(theBytes[0], theClock.mSequence & 0xFF);
    EXPECT_EQ(theBytes[1] & 0x1F, theClock.mSequence >> 8);
  }
}

TEST(qvUUIDClock, OnlyALastTimeOfZeroIsTheFirst) {
  const qvtimeval kNow = {2000, 500};
  for (qvtimeval theLast : {qvtimeval{1000, 0}, qvtimeval{0, 500}}) {
    qvUUID_Clock theClock = {theLast, 0x3FFF, 3};  // a sequence that is never drawn
    qvUUID_S_AdvanceClock(&theClock, &kNow);
    EXPECT_EQ(0x3FFF, theClock.mSequence);
  }
}

TEST(qvUUIDClock, AClockThatGoesBackRaisesTheSequence) {
  qvUUID_Clock theClock = {{1000, 500}, 7, 3};
  const qvtimeval kEarlier = {1000, 499};
  EXPECT_EQ(1, qvUUID_S_AdvanceClock(&theClock, &kEarlier));
  EXPECT_EQ(8, theClock.mSequence);
  EXPECT_EQ(0, theClock.mAdjustment);
  EXPECT_EQ(499, theClock.mLast.tv_usec);
  const qvtimeval kMuchEarlier = {999, 999999};
  qvUUID_S_AdvanceClock(&theClock, &kMuchEarlier);
  EXPECT_EQ(9, theClock.mSequence);
}

TEST(qvUUIDClock, TheSequenceWrapsAt13Bits) {
  qvUUID_Clock theClock = {{1000, 500}, 0x1FFF, 0};
  const qvtimeval kEarlier = {1000, 499};
  qvUUID_S_AdvanceClock(&theClock, &kEarlier);
  EXPECT_EQ(0, theClock.mSequence);
}

TEST(qvUUIDClock, TheFirstTimeCanBeTheEarliestOne) {
  qvUUID_Clock theClock = {};
  const qvtimeval kNow = {INT32_MIN, 500};
  EXPECT_EQ(1, qvUUID_S_AdvanceClock(&theClock, &kNow));
  EXPECT_EQ(INT32_MIN, theClock.mLast.tv_sec);
  EXPECT_EQ(500, theClock.mLast.tv_usec);
  EXPECT_EQ(0, theClock.mAdjustment);
}

TEST(qvUUIDClock, ALaterTimeKeepsTheSequence) {
  qvUUID_Clock theClock = {{1000, 500}, 7, 3};
  const qvtimeval kLater = {1001, 0};
  EXPECT_EQ(1, qvUUID_S_AdvanceClock(&theClock, &kLater));
  EXPECT_EQ(7, theClock.mSequence);
  EXPECT_EQ(0, theClock.mAdjustment);
  EXPECT_EQ(1001, theClock.mLast.tv_sec);
}

}  // namespace
