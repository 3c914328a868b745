#include "tools/qvlogd/ForwardConnection.h"

#include <errno.h>
#include <netdb.h>
#include <poll.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#define kForwardConnection_Attempt 5000  // milliseconds for one address
#define kForwardConnection_Slice   100   // milliseconds between two looks at aStop

ForwardConnection::ForwardConnection(const std::string& aHost, const std::string& aPort)
    : mHost(aHost), mPort(aPort) {}

ForwardConnection::~ForwardConnection() { Close(); }

void ForwardConnection::Close() {
  if (mSocket >= 0) {
    close(mSocket);
    mSocket = -1;
  }
}

// Waits for a connection that is being made; returns its error or 0.
static int ForwardConnection_S_Finish(int aSocket, const std::function<bool()>& aStop) {
  for (int theWaited = 0; theWaited < kForwardConnection_Attempt && !aStop();
       theWaited += kForwardConnection_Slice) {
    struct pollfd thePoll = {aSocket, POLLOUT, 0};
    if (poll(&thePoll, 1, kForwardConnection_Slice) == 1) {
      int theError = 0;
      socklen_t theLength = sizeof(theError);
      return getsockopt(aSocket, SOL_SOCKET, SO_ERROR, &theError, &theLength) == 0 ? theError : errno;
    }
  }
  return ETIMEDOUT;
}

// errno tells what went wrong.
bool ForwardConnection::ConnectTo(const struct addrinfo& anAddress, const std::function<bool()>& aStop) {
  mSocket = socket(anAddress.ai_family, anAddress.ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
  if (mSocket < 0) {
    return false;
  }
  int theOn = 1;
  setsockopt(mSocket, SOL_SOCKET, SO_KEEPALIVE, &theOn, sizeof(theOn));
  int theError = connect(mSocket, anAddress.ai_addr, anAddress.ai_addrlen) == 0 ? 0 : errno;
  if (theError == EINPROGRESS || theError == EINTR) {
    theError = ForwardConnection_S_Finish(mSocket, aStop);
  }
  if (theError != 0) {
    Close();
  }
  errno = theError;
  return theError == 0;
}

bool ForwardConnection::Connect(const std::function<bool()>& aStop, std::string* aError) {
  struct addrinfo theHints;
  memset(&theHints, 0, sizeof(theHints));
  theHints.ai_socktype = SOCK_STREAM;
  struct addrinfo* theAddresses = NULL;
  int theResult = getaddrinfo(mHost.c_str(), mPort.c_str(), &theHints, &theAddresses);
  if (theResult != 0) {
    *aError = gai_strerror(theResult);
    return false;
  }
  for (struct addrinfo* theAddress = theAddresses; theAddress != NULL && !IsOpen() && !aStop();
       theAddress = theAddress->ai_next) {
    if (!ConnectTo(*theAddress, aStop)) {
      *aError = strerror(errno);
    }
  }
  freeaddrinfo(theAddresses);
  return IsOpen();
}

// A peer that has gone is seen here, before a first send would put bytes into the void. What it says is read
// and forgotten: bytes nobody reads would turn our closing into a reset, which throws away what is on the
// way.
bool ForwardConnection::IsPeerThere() {
  char theBytes[512];
  ssize_t theCount;
  do {
    theCount = recv(mSocket, theBytes, sizeof(theBytes), MSG_DONTWAIT);
  } while (theCount > 0 || (theCount < 0 && errno == EINTR));
  return theCount < 0 && errno == EAGAIN;
}

size_t ForwardConnection::Send(const char* aBytes, size_t aLength) {
  if (!IsPeerThere()) {
    Close();
    return 0;
  }
  ssize_t theCount = send(mSocket, aBytes, aLength, MSG_DONTWAIT | MSG_NOSIGNAL);
  if (theCount >= 0) {
    return static_cast<size_t>(theCount);
  }
  if (errno != EAGAIN && errno != EINTR && errno != ENOBUFS) {
    Close();
  }
  return 0;
}

void ForwardConnection::Wait(int aMilliseconds) {
  struct pollfd thePoll = {mSocket, POLLOUT, 0};
  poll(&thePoll, 1, aMilliseconds);
}
