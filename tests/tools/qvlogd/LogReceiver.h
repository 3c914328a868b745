// LogReceiver.h - stands in for another log engine: a port of the test's own that takes one connection at a
// time.
#ifndef TESTS_TOOLS_QVLOGD_LOGRECEIVER_H
#define TESTS_TOOLS_QVLOGD_LOGRECEIVER_H

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>

class LogReceiver {
 public:
  LogReceiver() { Listen(0); }
  ~LogReceiver() {
    Hang();
    StopListening();
  }
  LogReceiver(const LogReceiver&) = delete;
  LogReceiver& operator=(const LogReceiver&) = delete;

  std::string Port() const { return std::to_string(mPort); }

  void StopListening() {
    close(mListener);
    mListener = -1;
  }
  void ListenAgain() { Listen(mPort); }

  // Waits for a connection; fails the test when none comes.
  void Accept() {
    struct pollfd thePoll = {mListener, POLLIN, 0};
    ASSERT_EQ(1, poll(&thePoll, 1, 60000)) << "nobody connects";
    mConnection = accept4(mListener, nullptr, nullptr, SOCK_CLOEXEC);
    mText.clear();
  }
  // Reads until the connection has brought aText, its end, or the time limit; gives all that it has brought.
  const std::string& ReadUntil(const std::string& aText) {
    char theBytes[65536];
    struct pollfd thePoll = {mConnection, POLLIN, 0};
    while (mText.find(aText) == std::string::npos && poll(&thePoll, 1, 60000) == 1) {
      ssize_t theCount = recv(mConnection, theBytes, sizeof(theBytes), 0);
      if (theCount <= 0) {
        break;
      }
      mText.append(theBytes, static_cast<size_t>(theCount));
    }
    return mText;
  }
  const std::string& ReadToTheEnd() { return ReadUntil("\x01never\x01"); }
  void Say(const std::string& aText) { send(mConnection, aText.data(), aText.size(), MSG_NOSIGNAL); }
  void Hang() {
    close(mConnection);
    mConnection = -1;
  }

 private:
  void Listen(int aPort) {
    mListener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int theOn = 1;
    setsockopt(mListener, SOL_SOCKET, SO_REUSEADDR, &theOn, sizeof(theOn));
    int theSmall = 4096;
    setsockopt(mListener, SOL_SOCKET, SO_RCVBUF, &theSmall, sizeof(theSmall));
    struct sockaddr_in theAddress = {};
    theAddress.sin_family = AF_INET;
    theAddress.sin_port = htons(static_cast<uint16_t>(aPort));
    theAddress.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t theLength = sizeof(theAddress);
    EXPECT_EQ(0, bind(mListener, reinterpret_cast<struct sockaddr*>(&theAddress), theLength));
    EXPECT_EQ(0, listen(mListener, 5));
    getsockname(mListener, reinterpret_cast<struct sockaddr*>(&theAddress), &theLength);
    mPort = ntohs(theAddress.sin_port);
  }

  int mListener = -1;
  int mConnection = -1;
  int mPort = 0;
  std::string mText;
};

#endif
