// FakeDevice.h - a clock that shows what the test wants and a network address of the test's choice. Stands in
// for qvTime_GetTimeOfDay and qvMACAddress_Get in the test program that includes it (once) and is linked with
// --wrap for both.
#ifndef TESTS_SUPPORT_FAKEDEVICE_H
#define TESTS_SUPPORT_FAKEDEVICE_H

#include <string.h>

#include <deque>

#include "qvOS/qvMACAddress.h"
#include "qvOS/qvTime.h"

struct FakeDevice {
  // What the next readings of the clock show; the last one stays. Empty: the real clock.
  std::deque<qvtimeval> mTimes;
  int mReadings = 0;
  // The address, or that there is none: then the buffer is left as it is.
  uint8 mAddress[6] = {0x02, 0x1A, 0x2B, 0x3C, 0x4D, 0x5E};
  bool mfHasAddress = true;
  size_t mIndex = 99;  // of the interface that was asked for last
};
inline FakeDevice gDevice;

extern "C" void __real_qvTime_GetTimeOfDay(qvtimeval* aTimeVal);

extern "C" void __wrap_qvTime_GetTimeOfDay(qvtimeval* aTimeVal) {
  ++gDevice.mReadings;
  if (gDevice.mTimes.empty()) {
    __real_qvTime_GetTimeOfDay(aTimeVal);
    return;
  }
  *aTimeVal = gDevice.mTimes.front();
  if (gDevice.mTimes.size() > 1) {
    gDevice.mTimes.pop_front();
  }
}

extern "C" int __wrap_qvMACAddress_Get(size_t anIndex, uint8* aMACAddress) {
  gDevice.mIndex = anIndex;
  if (!gDevice.mfHasAddress) {
    return -1;
  }
  memcpy(aMACAddress, gDevice.mAddress, sizeof(gDevice.mAddress));
  return 1;
}

#endif
