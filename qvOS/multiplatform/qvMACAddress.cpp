#include "qvOS/qvMACAddress.h"

#include <net/if.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#define kqvMACAddress_Length         6
#define kqvMACAddress_ListBufferSize 1024 /* bytes; interfaces that do not fit are not looked at */

// Asks for the hardware address of one interface. 1 when it has one that is not all zeros, as the loopback
// interface's is.
static int qvMACAddress_S_GetOfInterface(int aSocket, const struct ifreq* anInterface, uint8* aMACAddress) {
  static const uint8 kNoAddress[kqvMACAddress_Length] = {0};
  struct ifreq theRequest = {};
  memcpy(theRequest.ifr_name, anInterface->ifr_name, sizeof(theRequest.ifr_name));
  if (ioctl(aSocket, SIOCGIFHWADDR, &theRequest) != 0 ||
      memcmp(theRequest.ifr_hwaddr.sa_data, kNoAddress, kqvMACAddress_Length) == 0) {
    return 0;
  }
  memcpy(aMACAddress, theRequest.ifr_hwaddr.sa_data, kqvMACAddress_Length);
  return 1;
}

static int qvMACAddress_S_GetFirst(int aSocket, uint8* aMACAddress) {
  alignas(struct ifreq) char theBuffer[kqvMACAddress_ListBufferSize];
  struct ifconf theList = {};
  theList.ifc_len = sizeof(theBuffer);
  theList.ifc_buf = theBuffer;
  if (ioctl(aSocket, SIOCGIFCONF, &theList) != 0) {
    return -1;
  }
  size_t theCount = static_cast<size_t>(theList.ifc_len) / sizeof(struct ifreq);
  for (size_t i = 0; i < theCount; ++i) {
    if (qvMACAddress_S_GetOfInterface(aSocket, &theList.ifc_req[i], aMACAddress)) {
      return 1;
    }
  }
  return -1;
}

// KEEP qvMACAddressKept.TheStartingIndexIsNotUsed
// The search always begins with the first interface: callers tell the device by its first address.
int qvMACAddress_Get(size_t /*aStartingIndex*/, uint8* aMACAddress) {
  memset(aMACAddress, 0, kqvMACAddress_Length);
  int theSocket = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (theSocket < 0) {
    return -1;
  }
  int theResult = qvMACAddress_S_GetFirst(theSocket, aMACAddress);
  close(theSocket);
  return theResult;
}
