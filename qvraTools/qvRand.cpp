#include "qvraTools/qvRand.h"

#include "qvOS/qvMACAddress.h"
#include "qvOS/qvRandStd.h"
#include "qvOS/qvTime.h"

static int sfSeeded = 0;

void qvRand_Init(void) {
  if (__atomic_exchange_n(&sfSeeded, 1, __ATOMIC_RELAXED)) {
    return;
  }
  qvtimeval theTime;
  qvTime_GetTimeOfDay(&theTime);
  // Cleared, because the address goes into the seed even when the device has none.
  uint8 theMAC[6] = {0, 0, 0, 0, 0, 0};
  qvMACAddress_Get(0, theMAC);
  uint32 theMACBits = (static_cast<uint32>(theMAC[2]) << 24) | (static_cast<uint32>(theMAC[3]) << 16) |
                      (static_cast<uint32>(theMAC[4]) << 8) | theMAC[5];
  qvOSRand_SetSeed((static_cast<uint32>(theTime.tv_sec) + static_cast<uint32>(theTime.tv_usec)) ^ theMACBits);
}

uint32 qvRand_UInt32(void) {
  // One byte of each number: the system may give as few as 15 bits.
  uint32 theBits = 0;
  for (int i = 0; i < 4; ++i) {
    theBits = (theBits << 8) | (static_cast<uint32>(qvOSRand_Rand()) & 0xFF);
  }
  return theBits;
}

int32 qvRand_Int32(void) { return static_cast<int32>(qvRand_UInt32()); }

uint32 qvRand_MinMaxUInt32(uint32 aMin, uint32 aMax) {
  uint32 theNumber = qvRand_UInt32();
  uint32 theRange = aMax - aMin;
  return theRange == 0xFFFFFFFF ? aMin + theNumber : aMin + theNumber % (theRange + 1);
}

int32 qvRand_MinMaxInt32(int32 aMin, int32 aMax) {
  uint32 theMin = static_cast<uint32>(aMin);
  return static_cast<int32>(theMin + qvRand_MinMaxUInt32(0, static_cast<uint32>(aMax) - theMin));
}

uint16 qvRand_MinMaxUInt16(uint16 aMin, uint16 aMax) {
  return static_cast<uint16>(qvRand_MinMaxUInt32(aMin, aMax));
}

int16 qvRand_MinMax(int16 aMin, int16 aMax) { return static_cast<int16>(qvRand_MinMaxInt32(aMin, aMax)); }
