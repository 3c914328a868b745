#include "support/LogDaemonPeer.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

namespace {

constexpr int kLimitMs = 60000;
constexpr size_t kReceiveSize = 65536;

bool IsReadable(int aSocket, int aLimitMs) {
  struct pollfd thePoll = {aSocket, POLLIN, 0};
  return poll(&thePoll, 1, aLimitMs) == 1 && (thePoll.revents & POLLIN) != 0;
}

struct sockaddr_in LocalAddress(int aPort) {
  struct sockaddr_in theAddress = {};
  theAddress.sin_family = AF_INET;
  theAddress.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  theAddress.sin_port = htons(static_cast<uint16_t>(aPort));
  return theAddress;
}

}  // namespace

LogDaemonPeer::LogDaemonPeer(int aPort) : mPort(aPort) {
  Bind();
  Listen();
}

LogDaemonPeer::~LogDaemonPeer() {
  Close();
  close(mListener);
}

void LogDaemonPeer::Bind() {
  mListener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  int theOn = 1;
  setsockopt(mListener, SOL_SOCKET, SO_REUSEADDR, &theOn, sizeof(theOn));
  struct sockaddr_in theAddress = LocalAddress(mPort);
  socklen_t theLength = sizeof(theAddress);
  struct sockaddr* theBytes = reinterpret_cast<struct sockaddr*>(&theAddress);
  if (bind(mListener, theBytes, theLength) != 0 || getsockname(mListener, theBytes, &theLength) != 0) {
    ADD_FAILURE() << "no port for the log daemon";
  }
  mPort = ntohs(theAddress.sin_port);
}

void LogDaemonPeer::Listen() { EXPECT_EQ(0, listen(mListener, 16)); }

void LogDaemonPeer::StopListening() {
  close(mListener);
  Bind();  // a port that is bound and not listened to refuses
}

void LogDaemonPeer::FillBacklog() {
  // A queue of this length takes one caller, some systems' one more. The one that gets no answer has found it
  // full.
  EXPECT_EQ(0, listen(mListener, 0));
  struct sockaddr_in theAddress = LocalAddress(mPort);
  for (int i = 0; i < 4; ++i) {
    int theSocket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    mOthers.push_back(theSocket);
    connect(theSocket, reinterpret_cast<struct sockaddr*>(&theAddress), sizeof(theAddress));
    struct pollfd thePoll = {theSocket, POLLOUT, 0};
    if (poll(&thePoll, 1, 100) == 0) {
      return;
    }
  }
  ADD_FAILURE() << "the queue of the log daemon takes everybody";
}

void LogDaemonPeer::EmptyBacklog() {
  for (int theSocket : mOthers) {
    close(theSocket);
  }
  mOthers.clear();
  while (HasCaller()) {
    close(accept4(mListener, nullptr, nullptr, SOCK_CLOEXEC));
  }
  Listen();
}

void LogDaemonPeer::Accept() {
  Close();
  if (!IsReadable(mListener, kLimitMs)) {
    ADD_FAILURE() << "nobody connected to the log daemon";
    return;
  }
  mConnection = accept4(mListener, nullptr, nullptr, SOCK_CLOEXEC);
}

bool LogDaemonPeer::HasCaller(int aLimitMs) { return IsReadable(mListener, aLimitMs); }

bool LogDaemonPeer::HasEnded() const {
  char theByte;
  return mUnread.empty() && recv(mConnection, &theByte, 1, MSG_PEEK | MSG_DONTWAIT) == 0;
}

bool LogDaemonPeer::Receive(size_t aLimit) {
  if (mConnection == -1) {
    Accept();
  }
  if (!IsReadable(mConnection, kLimitMs)) {
    ADD_FAILURE() << "nothing came to the log daemon behind " << mUnread;
    return false;
  }
  char theBytes[kReceiveSize];
  ssize_t theCount = recv(mConnection, theBytes, std::min(aLimit, kReceiveSize), 0);
  if (theCount <= 0) {
    return false;
  }
  mUnread.append(theBytes, static_cast<size_t>(theCount));
  return true;
}

std::string LogDaemonPeer::Take(size_t aCount) {
  std::string theText = mUnread.substr(0, aCount);
  mUnread.erase(0, aCount);
  return theText;
}

std::string LogDaemonPeer::ReadUntil(const std::string& aText) {
  size_t theFound;
  while ((theFound = mUnread.find(aText)) == std::string::npos) {
    if (!Receive()) {
      ADD_FAILURE() << "the stream ended without " << aText;
      return Take(mUnread.size());
    }
  }
  return Take(theFound + aText.size());
}

std::string LogDaemonPeer::ReadToEnd() {
  while (Receive()) {
  }
  return Take(mUnread.size());
}

std::string LogDaemonPeer::Read(size_t aCount) {
  while (mUnread.size() < aCount) {
    if (!Receive(aCount - mUnread.size())) {
      ADD_FAILURE() << "the stream ended";
      break;
    }
  }
  return Take(aCount);
}

std::string LogDaemonPeer::ReadWhatIsThere(size_t aLimit) {
  if (mConnection == -1 && HasCaller()) {
    Accept();
  }
  while (mConnection != -1 && mUnread.size() < aLimit && IsReadable(mConnection, 0) &&
         Receive(aLimit - mUnread.size())) {
  }
  return Take(mUnread.size());
}

void LogDaemonPeer::SendAllThatFits() {
  const std::string theText(65536, 'z');
  while (send(mConnection, theText.data(), theText.size(), MSG_NOSIGNAL | MSG_DONTWAIT) > 0) {
  }
}

void LogDaemonPeer::CloseHalf() { EXPECT_EQ(0, shutdown(mConnection, SHUT_WR)); }

void LogDaemonPeer::CloseReadingHalf() { EXPECT_EQ(0, shutdown(mConnection, SHUT_RD)); }

void LogDaemonPeer::Close() {
  if (mConnection != -1) {
    close(mConnection);
  }
  mConnection = -1;
  mUnread.clear();
}

void LogDaemonPeer::Reset() {
  struct linger theLinger = {1, 0};
  setsockopt(mConnection, SOL_SOCKET, SO_LINGER, &theLinger, sizeof(theLinger));
  Close();
}
