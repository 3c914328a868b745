#include "qvOS/qvMACAddress.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <stdarg.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <string>
#include <vector>

namespace {

using Address = std::array<uint8, 6>;
constexpr Address kZeros = {0, 0, 0, 0, 0, 0};

struct Interface {
  std::string mName;
  Address mAddress;
  bool mfHasAddress = true;  // false: asking for the hardware address fails
};

// The network of this test program, as the stand-ins below show it.
struct FakeNetwork {
  std::vector<Interface> mInterfaces;
  bool mfSocketFails = false;
  bool mfListFails = false;
  int mSocket = -1;        // the last socket handed out
  int mSocketDomain = -1;  // and what was asked for
  int mSocketType = -1;
  int mListBufferSize = -1;
};
FakeNetwork gNetwork;

int ListInterfaces(struct ifconf* aList) {
  gNetwork.mListBufferSize = aList->ifc_len;
  size_t theRoom = static_cast<size_t>(aList->ifc_len) / sizeof(struct ifreq);
  size_t theCount = 0;
  for (; theCount < gNetwork.mInterfaces.size() && theCount < theRoom; ++theCount) {
    struct ifreq theRecord = {};
    strncpy(theRecord.ifr_name, gNetwork.mInterfaces[theCount].mName.c_str(), IFNAMSIZ - 1);
    memcpy(aList->ifc_buf + theCount * sizeof(theRecord), &theRecord, sizeof(theRecord));
  }
  aList->ifc_len = static_cast<int>(theCount * sizeof(struct ifreq));
  return 0;
}

int GetHardwareAddress(struct ifreq* aRequest) {
  for (const Interface& theInterface : gNetwork.mInterfaces) {
    if (theInterface.mName == aRequest->ifr_name && theInterface.mfHasAddress) {
      memcpy(aRequest->ifr_hwaddr.sa_data, theInterface.mAddress.data(), theInterface.mAddress.size());
      return 0;
    }
  }
  errno = ENODEV;
  return -1;
}

Address gFound;

int Get(size_t aStartingIndex = 0) {
  gFound = {9, 9, 9, 9, 9, 9};
  int theResult = qvMACAddress_Get(aStartingIndex, gFound.data());
  EXPECT_TRUE(gNetwork.mSocket == -1 || fcntl(gNetwork.mSocket, F_GETFD) == -1) << "the socket was left open";
  return theResult;
}

}  // namespace

// Each test starts with no interface and nothing failing.
class qvMACAddress : public testing::Test {
 protected:
  qvMACAddress() { gNetwork = FakeNetwork(); }
};
using qvMACAddressKept = qvMACAddress;

// Stand in for the system's functions.
extern "C" int socket(int aDomain, int aType, int) noexcept {
  gNetwork.mSocketDomain = aDomain;
  gNetwork.mSocketType = aType & ~SOCK_CLOEXEC;
  gNetwork.mSocket = gNetwork.mfSocketFails ? -1 : open("/dev/null", O_RDONLY | O_CLOEXEC);
  return gNetwork.mSocket;
}

extern "C" int ioctl(int aFile, unsigned long aRequest, ...) noexcept {
  va_list theArgs;
  va_start(theArgs, aRequest);
  void* theArgument = va_arg(theArgs, void*);
  va_end(theArgs);
  EXPECT_EQ(gNetwork.mSocket, aFile);
  if (aRequest == SIOCGIFCONF) {
    return gNetwork.mfListFails ? -1 : ListInterfaces(static_cast<struct ifconf*>(theArgument));
  }
  EXPECT_EQ(static_cast<unsigned long>(SIOCGIFHWADDR), aRequest);
  return GetHardwareAddress(static_cast<struct ifreq*>(theArgument));
}

TEST_F(qvMACAddress, TheFirstInterfaceWithAnAddressIsCopiedOut) {
  gNetwork.mInterfaces = {
      {"lo", kZeros}, {"eth0", {0x00, 0x1b, 0xff, 0x80, 0x7f, 0x01}}, {"eth1", {1, 2, 3, 4, 5, 6}}};
  EXPECT_EQ(1, Get());
  EXPECT_EQ((Address{0x00, 0x1b, 0xff, 0x80, 0x7f, 0x01}), gFound);
}

TEST_F(qvMACAddress, OneByteThatIsNotZeroMakesAnAddress) {
  gNetwork.mInterfaces = {{"lo", kZeros}, {"eth0", {0, 0, 0, 0, 0, 1}}};
  EXPECT_EQ(1, Get());
  EXPECT_EQ((Address{0, 0, 0, 0, 0, 1}), gFound);
}

TEST_F(qvMACAddress, OnlyTheLoopbackInterfaceGivesNotFoundAndZeros) {
  gNetwork.mInterfaces = {{"lo", kZeros}};
  EXPECT_EQ(-1, Get());
  EXPECT_EQ(kZeros, gFound);
}

TEST_F(qvMACAddress, NoInterfaceGivesNotFoundAndZeros) {
  EXPECT_EQ(-1, Get());
  EXPECT_EQ(kZeros, gFound);
}

TEST_F(qvMACAddress, AnInterfaceThatDoesNotTellItsAddressIsPassedOver) {
  gNetwork.mInterfaces = {{"tun0", {7, 7, 7, 7, 7, 7}, false}, {"eth0", {1, 2, 3, 4, 5, 6}}};
  EXPECT_EQ(1, Get());
  EXPECT_EQ((Address{1, 2, 3, 4, 5, 6}), gFound);
}

TEST_F(qvMACAddress, NoSocketGivesNotFoundAndZeros) {
  gNetwork.mInterfaces = {{"eth0", {1, 2, 3, 4, 5, 6}}};
  gNetwork.mfSocketFails = true;
  EXPECT_EQ(-1, Get());
  EXPECT_EQ(kZeros, gFound);
}

TEST_F(qvMACAddress, TheSocketMayBeTheProcessesFirstDescriptor) {
  gNetwork.mInterfaces = {{"eth0", {1, 2, 3, 4, 5, 6}}};
  close(STDIN_FILENO);
  EXPECT_EQ(1, Get());
  EXPECT_EQ(STDIN_FILENO, gNetwork.mSocket);
}

TEST_F(qvMACAddress, NoListOfInterfacesGivesNotFoundAndZeros) {
  gNetwork.mInterfaces = {{"eth0", {1, 2, 3, 4, 5, 6}}};
  gNetwork.mfListFails = true;
  EXPECT_EQ(-1, Get());
  EXPECT_EQ(kZeros, gFound);
}

TEST_F(qvMACAddress, AsksAnIPv4DatagramSocketWithABufferOf1024Bytes) {
  Get();
  EXPECT_EQ(AF_INET, gNetwork.mSocketDomain);
  EXPECT_EQ(SOCK_DGRAM, gNetwork.mSocketType);
  EXPECT_EQ(1024, gNetwork.mListBufferSize);
}

TEST_F(qvMACAddress, AsManyInterfacesAreLookedAtAsRecordsFitTheBuffer) {
  // 1024 bytes hold 32 records of 32 bytes on the 32-bit target, 25 of 40 bytes here.
  const size_t kRecordSize = sizeof(void*) == 4 ? 32 : 40;
  const size_t kFitting = sizeof(void*) == 4 ? 32 : 25;
  EXPECT_EQ(kRecordSize, sizeof(struct ifreq));
  for (int i = 0; i < 100; ++i) {
    gNetwork.mInterfaces.push_back({"lo" + std::to_string(i), kZeros});
  }
  EXPECT_EQ(-1, Get());
  gNetwork.mInterfaces[kFitting].mAddress = {6, 6, 6, 6, 6, 6};
  EXPECT_EQ(-1, Get()) << "the first that does not fit";
  gNetwork.mInterfaces[kFitting - 1].mAddress = {1, 2, 3, 4, 5, 6};
  EXPECT_EQ(1, Get()) << "the last that fits";
  EXPECT_EQ((Address{1, 2, 3, 4, 5, 6}), gFound);
}

TEST_F(qvMACAddressKept, TheStartingIndexIsNotUsed) {
  gNetwork.mInterfaces = {{"eth0", {1, 1, 1, 1, 1, 1}}, {"eth1", {2, 2, 2, 2, 2, 2}}};
  for (size_t theIndex : {size_t{0}, size_t{1}, size_t{2}, static_cast<size_t>(-1)}) {
    EXPECT_EQ(1, Get(theIndex));
    EXPECT_EQ((Address{1, 1, 1, 1, 1, 1}), gFound);
  }
}
