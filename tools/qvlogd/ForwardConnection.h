// ForwardConnection.h - the TCP connection to another log engine.
#ifndef QVLOGD_FORWARDCONNECTION_H
#define QVLOGD_FORWARDCONNECTION_H

#include <stddef.h>

#include <functional>
#include <string>

class ForwardConnection {
 public:
  ForwardConnection(const std::string& aHost, const std::string& aPort);
  ~ForwardConnection();
  ForwardConnection(const ForwardConnection&) = delete;
  ForwardConnection& operator=(const ForwardConnection&) = delete;

  // Resolves the name, which may take its time, and tries each address for at most five seconds, or until
  // aStop says so. One line of text in aError on failure.
  bool Connect(const std::function<bool()>& aStop, std::string* aError);
  bool IsOpen() const { return mSocket >= 0; }
  void Close();

  // Sends what goes at once and returns how many bytes that was; closes the connection when the peer has.
  size_t Send(const char* aBytes, size_t aLength);
  // Waits until the peer takes more or closes, at most aMilliseconds.
  void Wait(int aMilliseconds);

 private:
  bool ConnectTo(const struct addrinfo& anAddress, const std::function<bool()>& aStop);
  bool IsPeerThere();

  const std::string mHost;
  const std::string mPort;
  int mSocket = -1;
};

#endif
