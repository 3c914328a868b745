#include "tools/qvlogd/Listener.h"

#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>

#include "qvraTools/qvConvert.h"

static const int kFirstInherited = 3;  // the service manager hands its sockets over from here on

Listener::~Listener() { close(Descriptor()); }

static std::string Listener_S_NameOf(const struct sockaddr_storage& aAddress, socklen_t aLength) {
  if (aAddress.ss_family == AF_UNIX) {
    const auto* theLocal = reinterpret_cast<const struct sockaddr_un*>(&aAddress);
    size_t thePathLength = aLength - offsetof(struct sockaddr_un, sun_path);
    return std::string(theLocal->sun_path, strnlen(theLocal->sun_path, thePathLength));
  }
  char theHost[NI_MAXHOST];
  char thePort[NI_MAXSERV];
  if (getnameinfo(reinterpret_cast<const struct sockaddr*>(&aAddress), aLength, theHost, sizeof(theHost),
                  thePort, sizeof(thePort), NI_NUMERICHOST | NI_NUMERICSERV) != 0) {
    return "?";
  }
  bool theIsIPv6 = aAddress.ss_family == AF_INET6;
  return (theIsIPv6 ? "[" : "") + std::string(theHost) + (theIsIPv6 ? "]:" : ":") + thePort;
}

static bool Listener_S_GetAddress(int aDescriptor, struct sockaddr_storage* aAddress, socklen_t* aLength) {
  *aLength = sizeof(*aAddress);
  memset(aAddress, 0, sizeof(*aAddress));
  return getsockname(aDescriptor, reinterpret_cast<struct sockaddr*>(aAddress), aLength) == 0;
}

std::string Listener::Name() const {
  struct sockaddr_storage theAddress;
  socklen_t theLength;
  return Listener_S_GetAddress(Descriptor(), &theAddress, &theLength)
             ? Listener_S_NameOf(theAddress, theLength)
             : "?";
}

int Listener::Accept() { return accept4(Descriptor(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC); }

// Whether only this machine reaches the address.
static bool Listener_S_IsLocal(const struct sockaddr_storage& aAddress) {
  if (aAddress.ss_family == AF_INET) {
    const auto* theIPv4 = reinterpret_cast<const struct sockaddr_in*>(&aAddress);
    return ntohl(theIPv4->sin_addr.s_addr) >> 24 == 127;
  }
  if (aAddress.ss_family == AF_INET6) {
    const auto* theIPv6 = reinterpret_cast<const struct sockaddr_in6*>(&aAddress);
    return IN6_IS_ADDR_LOOPBACK(&theIPv6->sin6_addr);
  }
  return aAddress.ss_family == AF_UNIX;
}

static std::string Listener_S_RemoteText(const std::string& aName) {
  return aName + " is reached by other machines: say --allow-remote if that is meant";
}

static int Listener_S_OpenAddress(const struct addrinfo& aInfo) {
  int theSocket = socket(aInfo.ai_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (theSocket < 0) {
    return -1;
  }
  int theOne = 1;
  // A collector that is started again must not wait for the connections of the one before it to be forgotten.
  setsockopt(theSocket, SOL_SOCKET, SO_REUSEADDR, &theOne, sizeof(theOne));
  if (aInfo.ai_family == AF_INET6) {
    setsockopt(theSocket, IPPROTO_IPV6, IPV6_V6ONLY, &theOne, sizeof(theOne));
  }
  if (bind(theSocket, aInfo.ai_addr, aInfo.ai_addrlen) != 0 || listen(theSocket, SOMAXCONN) != 0) {
    int theErrno = errno;
    close(theSocket);
    errno = theErrno;
    return -1;
  }
  return theSocket;
}

// Splits at the last colon; an IPv6 address stands in brackets.
static bool Listener_S_Split(const std::string& aAddress, std::string* aHost, std::string* aPort) {
  size_t theColon = aAddress.rfind(':');
  if (theColon == std::string::npos) {
    return false;
  }
  *aHost = aAddress.substr(0, theColon);
  *aPort = aAddress.substr(theColon + 1);
  if (!aHost->empty() && aHost->front() == '[' && aHost->back() == ']') {
    *aHost = aHost->substr(1, aHost->size() - 2);
  } else if (aHost->find(':') != std::string::npos) {
    return false;
  }
  if (aHost->empty()) {
    *aHost = "127.0.0.1";
  }
  uint16 theNumber;
  return qvConvert_strtouint16(aPort->c_str(), &theNumber) == kqvConvertError_None;
}

bool Listener_Open(const std::string& aAddress, bool afAllowRemote, Listeners* aListeners,
                   std::string* aError) {
  std::string theHost;
  std::string thePort;
  if (!Listener_S_Split(aAddress, &theHost, &thePort)) {
    *aError = "--listen: '" + aAddress + "' is not an address with a port, as in 127.0.0.1:12222";
    return false;
  }
  struct addrinfo theHints = {};
  theHints.ai_socktype = SOCK_STREAM;
  theHints.ai_flags = AI_NUMERICSERV;
  struct addrinfo* theInfo = nullptr;
  int theResult = getaddrinfo(theHost.c_str(), thePort.c_str(), &theHints, &theInfo);
  if (theResult != 0) {
    *aError = "--listen: " + aAddress + ": " + gai_strerror(theResult);
    return false;
  }
  struct sockaddr_storage theAddress = {};
  memcpy(&theAddress, theInfo->ai_addr, std::min<size_t>(theInfo->ai_addrlen, sizeof(theAddress)));
  int theSocket = -1;
  if (!afAllowRemote && !Listener_S_IsLocal(theAddress)) {
    *aError = "--listen: " + Listener_S_RemoteText(aAddress);
  } else if ((theSocket = Listener_S_OpenAddress(*theInfo)) < 0) {
    *aError = "--listen: " + aAddress + ": " + strerror(errno);
  } else {
    aListeners->push_back(std::make_unique<Listener>(theSocket, false));
  }
  freeaddrinfo(theInfo);
  return theSocket >= 0;
}

static bool Listener_S_IsListening(int aDescriptor) {
  int theType = 0;
  int theIsListening = 0;
  socklen_t theLength = sizeof(theType);
  if (getsockopt(aDescriptor, SOL_SOCKET, SO_TYPE, &theType, &theLength) != 0 || theType != SOCK_STREAM) {
    return false;
  }
  theLength = sizeof(theIsListening);
  return getsockopt(aDescriptor, SOL_SOCKET, SO_ACCEPTCONN, &theIsListening, &theLength) == 0 &&
         theIsListening != 0;
}

// How many sockets are meant for this process.
static int Listener_S_CountInherited() {
  const char* thePid = getenv("LISTEN_PID");
  const char* theCountText = getenv("LISTEN_FDS");
  int32 theNumber = 0;
  int32 theCount = 0;
  bool theAreMeant = thePid != nullptr && theCountText != nullptr &&
                     qvConvert_strtoint32(thePid, &theNumber) == kqvConvertError_None &&
                     theNumber == getpid() &&
                     qvConvert_strtoint32(theCountText, &theCount) == kqvConvertError_None;
  unsetenv("LISTEN_PID");
  unsetenv("LISTEN_FDS");
  unsetenv("LISTEN_FDNAMES");
  return theAreMeant ? std::clamp(theCount, 0, 1024) : 0;
}

bool Listener_Inherit(bool afAllowRemote, Listeners* aListeners, std::string* aError) {
  int theCount = Listener_S_CountInherited();
  for (int theSocket = kFirstInherited; theSocket < kFirstInherited + theCount; ++theSocket) {
    struct sockaddr_storage theAddress;
    socklen_t theLength;
    if (!Listener_S_IsListening(theSocket) || !Listener_S_GetAddress(theSocket, &theAddress, &theLength)) {
      *aError = "LISTEN_FDS: descriptor " + std::to_string(theSocket) + " is no listening stream socket";
      return false;
    }
    if (!afAllowRemote && !Listener_S_IsLocal(theAddress)) {
      *aError = "LISTEN_FDS: " + Listener_S_RemoteText(Listener_S_NameOf(theAddress, theLength));
      return false;
    }
    fcntl(theSocket, F_SETFD, FD_CLOEXEC);
    fcntl(theSocket, F_SETFL, fcntl(theSocket, F_GETFL) | O_NONBLOCK);
    aListeners->push_back(std::make_unique<Listener>(theSocket, true));
  }
  return true;
}
