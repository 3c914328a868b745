#include "qvraTools/qvUUID.h"

#include <string.h>

#include "qvOS/qvMACAddress.h"
#include "qvOS/qvThread.h"
#include "qvraTools/qvLongLong.h"
#include "qvraTools/qvRand.h"
#include "qvraTools/qvTime.h"
#include "qvraTools/qvUUID_p.h"

#define kqvUUID_TextSize 37 /* bytes, with the terminator */

static qvUUID_Clock sClock;
static uint32 sClockProcessId;  // whose clock it is; 0 until the first UUID
static uint8 sNode[6];
static int sfNodeKnown = 0;

void qvUUID_GetRandomBytes(uint8* aBuffer, uint32 aLength) {
  for (uint32 i = 0; i < aLength; ++i) {
    aBuffer[i] = static_cast<uint8>(qvRand_MinMaxUInt32(0, 255));
  }
}

int qvUUID_S_AdvanceClock(qvUUID_Clock* aClock, const qvtimeval* aNow) {
  if (aClock->mLast.tv_sec == 0 && aClock->mLast.tv_usec == 0) {
    qvUUID_GetRandomBytes(reinterpret_cast<uint8*>(&aClock->mSequence), sizeof(aClock->mSequence));
    aClock->mSequence &= kqvUUID_ClockSequenceMask;
    aClock->mLast = *aNow;
    aClock->mLast.tv_sec = static_cast<int32>(static_cast<uint32>(aNow->tv_sec) - 1);
  }
  if (qvTimeVal_Less(aNow, &aClock->mLast)) {
    // The clock was set back: another sequence keeps the UUIDs apart from those of the time before.
    aClock->mSequence = static_cast<uint16>((aClock->mSequence + 1) & kqvUUID_ClockSequenceMask);
  } else if (!qvTimeVal_Less(&aClock->mLast, aNow)) {
    if (aClock->mAdjustment >= kqvUUID_MaxAdjustment) {
      return 0;
    }
    ++aClock->mAdjustment;
    return 1;
  }
  aClock->mAdjustment = 0;
  aClock->mLast = *aNow;
  return 1;
}

// A child process starts with the clock of its parent: another sequence keeps their UUIDs apart. The step is
// never a whole round of the sequences.
static void qvUUID_S_LeaveParentsClock(void) {
  uint32 theProcessId = qvThread_GetPID();
  if (sClockProcessId != 0 && sClockProcessId != theProcessId) {
    uint32 theStep = 1 + theProcessId % kqvUUID_ClockSequenceMask;
    sClock.mSequence = static_cast<uint16>((sClock.mSequence + theStep) & kqvUUID_ClockSequenceMask);
  }
  sClockProcessId = theProcessId;
}

int qvUUID_GetClock(unsigned int* aClockHigh, uint32* aClockLow, uint16* aClockSeq) {
  static const qvULongLong kUnitsPerSecond = qvULongLong_Init(0, 10000000);
  static const qvULongLong kEpoch = qvULongLong_Init(0x01B21DD2, 0x13814000);  // 1582 to 1970 in units
  qvUUID_S_LeaveParentsClock();
  qvtimeval theNow;
  do {
    qvTime_GetTimeOfDay(&theNow);
  } while (!qvUUID_S_AdvanceClock(&sClock, &theNow));

  qvULongLong theTime = qvULongLong_Init(0, static_cast<uint32>(theNow.tv_sec));
  qvULongLong_Mult(&theTime, &kUnitsPerSecond);
  qvULongLong_AddUInt32(&theTime, static_cast<uint32>(theNow.tv_usec) * 10 + sClock.mAdjustment);
  qvULongLong_Add(&theTime, &kEpoch);
  *aClockHigh = theTime.mHigh;
  *aClockLow = theTime.mLow;
  *aClockSeq = sClock.mSequence;
  return 0;
}

static void qvUUID_S_PutBigEndian(uint8* aBytes, uint32 aValue, int aSize) {
  for (int i = aSize; i-- > 0; aValue >>= 8) {
    aBytes[i] = static_cast<uint8>(aValue);
  }
}

void qvUUID_Pack(const uuid* anUUID, uint8* aPacked) {
  qvUUID_S_PutBigEndian(aPacked, anUUID->time_low, 4);
  qvUUID_S_PutBigEndian(aPacked + 4, anUUID->time_mid, 2);
  qvUUID_S_PutBigEndian(aPacked + 6, anUUID->time_hi_and_version, 2);
  qvUUID_S_PutBigEndian(aPacked + 8, anUUID->clock_seq, 2);
  memcpy(aPacked + 10, anUUID->node, sizeof(anUUID->node));
}

void qvUUID_S_MakeRandomNode(uint8* aNode) {
  qvUUID_GetRandomBytes(aNode, 6);
  // KEEP qvUUIDKept.RandomNodeIsMarkedInItsTopBit
  // RFC 4122 marks a random node in the lowest bit of its first byte; here it is the highest.
  aNode[0] |= 0x80;
}

static void qvUUID_S_FindNode(void) {
  if (qvMACAddress_Get(0, sNode) == -1) {
    qvUUID_S_MakeRandomNode(sNode);
  }
  sfNodeKnown = 1;
}

void qvUUID_Generate(uint8* anUUID) {
  if (!sfNodeKnown) {
    qvUUID_S_FindNode();
  }
  unsigned int theHigh = 0;
  uint32 theLow = 0;
  uint16 theSequence = 0;
  qvUUID_GetClock(&theHigh, &theLow, &theSequence);
  uuid theUUID;
  theUUID.time_low = theLow;
  theUUID.time_mid = static_cast<uint16>(theHigh);
  theUUID.time_hi_and_version = static_cast<uint16>((theHigh >> 16) | 0x1000);
  theUUID.clock_seq = static_cast<uint16>(theSequence | 0x8000);
  memcpy(theUUID.node, sNode, sizeof(sNode));
  qvUUID_Pack(&theUUID, anUUID);
}

void qvUUID_Print(const uint8* anUUID, char* aBuffer) {
  static const char kDigits[] = "0123456789abcdef";
  static const uint8 kPlaces[] = {0, 2, 4, 6, 9, 11, 14, 16, 19, 21, 24, 26, 28, 30, 32, 34};
  memcpy(aBuffer, "........-....-....-....-............", kqvUUID_TextSize);
  for (size_t i = 0; i < sizeof(kPlaces); ++i) {
    aBuffer[kPlaces[i]] = kDigits[anUUID[i] >> 4];
    aBuffer[kPlaces[i] + 1] = kDigits[anUUID[i] & 0xF];
  }
}
