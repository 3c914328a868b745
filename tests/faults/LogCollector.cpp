#include "faults/LogCollector.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <stdio.h>
#include <stdlib.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

// Connections wait here, not for the second that the system lets pass before it tries again.
constexpr int kBacklog = 1000;
constexpr int kPauseMs = 50;

}  // namespace

LogCollector::LogCollector() {
  mListener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  struct sockaddr_in theAddress = {};
  theAddress.sin_family = AF_INET;
  theAddress.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t theLength = sizeof(theAddress);
  struct sockaddr* theBytes = reinterpret_cast<struct sockaddr*>(&theAddress);
  if (bind(mListener, theBytes, theLength) != 0 || getsockname(mListener, theBytes, &theLength) != 0 ||
      listen(mListener, kBacklog) != 0) {
    perror("LogCollector");
    exit(EXIT_FAILURE);
  }
  mPort = ntohs(theAddress.sin_port);
  mThread = std::thread([this] { Collect(); });
}

LogCollector::~LogCollector() {
  Finish();
  close(mListener);
}

const std::vector<std::string>& LogCollector::Finish() {
  mfFinishing = true;
  if (mThread.joinable()) {
    mThread.join();
  }
  return mStreams;
}

bool LogCollector::Accept() {
  int theConnection = accept4(mListener, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
  if (theConnection == -1) {
    return false;
  }
  mConnections.push_back(theConnection);
  mStreams.emplace_back();
  return true;
}

bool LogCollector::Receive(size_t anIndex) {
  char theBytes[65536];
  ssize_t theCount = recv(mConnections[anIndex], theBytes, sizeof(theBytes), 0);
  if (theCount <= 0) {
    close(mConnections[anIndex]);
    mConnections[anIndex] = -1;
    return false;
  }
  mStreams[anIndex].append(theBytes, static_cast<size_t>(theCount));
  return true;
}

void LogCollector::Collect() {
  size_t theFirstOpen = 0;  // no connection before it is open
  for (;;) {
    bool theMayEnd = mfFinishing;
    std::vector<struct pollfd> thePolls = {{mListener, POLLIN, 0}};
    std::vector<size_t> theIndexes = {0};
    for (size_t i = theFirstOpen; i < mConnections.size(); ++i) {
      if (mConnections[i] != -1) {
        thePolls.push_back({mConnections[i], POLLIN, 0});
        theIndexes.push_back(i);
      } else if (i == theFirstOpen) {
        ++theFirstOpen;
      }
    }
    int theReady = poll(thePolls.data(), thePolls.size(), kPauseMs);
    if (theReady == 0 && theMayEnd && thePolls.size() == 1) {
      return;
    }
    for (size_t i = 1; i < thePolls.size(); ++i) {
      if (thePolls[i].revents != 0) {
        Receive(theIndexes[i]);
      }
    }
    if (thePolls[0].revents != 0) {
      while (Accept()) {
      }
    }
  }
}
