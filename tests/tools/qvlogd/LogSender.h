// LogSender.h - a process that logs to the collector, written by hand byte by byte.
#ifndef TESTS_TOOLS_QVLOGD_LOGSENDER_H
#define TESTS_TOOLS_QVLOGD_LOGSENDER_H

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <string>

// Two instances of processes.
constexpr char kFirstUUID[] = "1a2b3c4d-0000-11f0-8000-001122334455";
constexpr char kSecondUUID[] = "9f8e7d6c-0000-11f0-8000-001122334455";

class LogSender {
 public:
  explicit LogSender(int aPort) : mSocket(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    struct sockaddr_in theAddress = {};
    theAddress.sin_family = AF_INET;
    theAddress.sin_port = htons(static_cast<uint16_t>(aPort));
    theAddress.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int theOne = 1;
    setsockopt(mSocket, IPPROTO_TCP, TCP_NODELAY, &theOne, sizeof(theOne));
    mfConnected = connect(mSocket, reinterpret_cast<struct sockaddr*>(&theAddress), sizeof(theAddress)) == 0;
  }
  ~LogSender() { Close(); }
  LogSender(const LogSender&) = delete;
  LogSender& operator=(const LogSender&) = delete;

  bool IsConnected() const { return mfConnected; }

  static std::string Header(const std::string& aProcess, const std::string& aUUID, unsigned int aLost = 0) {
    std::string theCount = std::to_string(aLost);
    std::string theReport = aLost > 0 ? "\nLOST: " + theCount + "\n" : "";
    return theReport + "\nPROTOCOL: qvLogd-1.0\nUUID: " + aUUID + "\nLOST: " + theCount +
           "\nNAME: " + aProcess + "(log started, " + theCount + " logs previously lost)\n";
  }
  static std::string Line(const std::string& aText, const std::string& aModule = "PLAYER    ") {
    return "I 14:03:07:042|b6f2a000|" + aModule + " " + aText + "\n";
  }

  void SendHeader(const std::string& aProcess, const std::string& aUUID, unsigned int aLost = 0) {
    Send(Header(aProcess, aUUID, aLost));
  }
  // False when the collector has closed the connection.
  bool Send(const std::string& aBytes) {
    for (size_t theDone = 0; theDone < aBytes.size();) {
      ssize_t theCount = send(mSocket, aBytes.data() + theDone, aBytes.size() - theDone, MSG_NOSIGNAL);
      if (theCount <= 0) {
        return false;
      }
      theDone += static_cast<size_t>(theCount);
    }
    return true;
  }

  // From now on as the library sends: a buffer of aBuffer bytes, and no waiting.
  void NeverWait(int aBuffer) {
    setsockopt(mSocket, SOL_SOCKET, SO_SNDBUF, &aBuffer, sizeof(aBuffer));
    fcntl(mSocket, F_SETFL, fcntl(mSocket, F_GETFL) | O_NONBLOCK);
  }
  // One try; false unless all was sent.
  bool SendAtOnce(const std::string& aBytes) {
    ssize_t theCount = send(mSocket, aBytes.data(), aBytes.size(), MSG_NOSIGNAL);
    return theCount == static_cast<ssize_t>(aBytes.size());
  }

  void Close() {
    if (mSocket >= 0) {
      close(mSocket);
      mSocket = -1;
    }
  }
  // Ends the connection without a farewell.
  void Reset() {
    struct linger theLinger = {1, 0};
    setsockopt(mSocket, SOL_SOCKET, SO_LINGER, &theLinger, sizeof(theLinger));
    Close();
  }

 private:
  int mSocket;
  bool mfConnected = false;
};

#endif
