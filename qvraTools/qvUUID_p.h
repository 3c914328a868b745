/* qvUUID_p.h - the clock and the packing of UUIDs. */
#ifndef QVRATOOLS_QVUUID_P_H
#define QVRATOOLS_QVUUID_P_H

#include "qvOS/qvTime.h"
#include "qvOS/qvTypes.h"

#define kqvUUID_ClockSequenceMask 0x1FFF
#define kqvUUID_MaxAdjustment     10

/* The unpacked form. */
typedef struct uuid {
  uint32 time_low;
  uint16 time_mid;
  uint16 time_hi_and_version;
  uint16 clock_seq;
  uint8 node[6];
} uuid;

/* What has to be remembered from one UUID to the next. */
typedef struct qvUUID_Clock {
  qvtimeval mLast; /* zero until the first UUID */
  uint16 mSequence;
  uint16 mAdjustment; /* 100-nanosecond units added within one microsecond */
} qvUUID_Clock;

/* Takes the time aNow; 0 when it must be read again because the present microsecond has no units left. */
int qvUUID_S_AdvanceClock(qvUUID_Clock* aClock, const qvtimeval* aNow);

/* The time of a UUID in 100-nanosecond units since 15 October 1582, and the clock sequence. Returns 0. */
int qvUUID_GetClock(unsigned int* aClockHigh, uint32* aClockLow, uint16* aClockSeq);

/* Six random bytes for a device without a hardware address. */
void qvUUID_S_MakeRandomNode(uint8* aNode);

void qvUUID_Pack(const uuid* anUUID, uint8* aPacked);

#endif
