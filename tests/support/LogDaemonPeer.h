// LogDaemonPeer.h - a stand-in for the log daemon, on a port that the system chooses.
//
// It does nothing by itself: the system accepts connections and keeps what comes in until the test asks for
// it, so a test can be the daemon that reads nothing, reads slowly, breaks off or comes back. Whatever waits
// has a generous limit and fails the test at it.
#ifndef TESTS_SUPPORT_LOGDAEMONPEER_H
#define TESTS_SUPPORT_LOGDAEMONPEER_H

#include <string>
#include <vector>

class LogDaemonPeer {
 public:
  // Listens, on any free port when aPort is 0.
  explicit LogDaemonPeer(int aPort = 0);
  ~LogDaemonPeer();
  LogDaemonPeer(const LogDaemonPeer&) = delete;
  LogDaemonPeer& operator=(const LogDaemonPeer&) = delete;

  int Port() const { return mPort; }
  // "127.0.0.1:" and the port.
  std::string Target() const { return "127.0.0.1:" + std::to_string(mPort); }

  // From now on connections are refused; the one that stands is not touched. The port stays this test's.
  void StopListening();
  void Listen();

  // Makes the daemon one that does not answer: others wait in its queue, and the system has no room for more.
  // Then lets all of them go, and answers again.
  void FillBacklog();
  void EmptyBacklog();

  // Waits for the next connection. The one before it is closed.
  void Accept();
  // Whether a connection is waiting to be accepted, or comes within the time.
  bool HasCaller(int aLimitMs = 0);
  bool IsConnected() const { return mConnection != -1; }
  // Whether everything has been read and the other side has closed.
  bool HasEnded() const;

  // The next bytes of the connection, up to and with the first occurrence of a text; up to the end of the
  // stream; aCount of them, and then no more leave the system. Accepts first when there is no connection.
  std::string ReadUntil(const std::string& aText);
  std::string ReadToEnd();
  std::string Read(size_t aCount);
  // The bytes that have arrived, of which more than aLimit are left to the system.
  std::string ReadWhatIsThere(size_t aLimit = static_cast<size_t>(-1));

  // Sends back as much as the system takes.
  void SendAllThatFits();
  // Says that nothing more will be sent; reads on.
  void CloseHalf();
  // Says to its own system that it will read nothing more.
  void CloseReadingHalf();
  void Close();
  // Closes so that the other side's next look at the connection is an error.
  void Reset();

 private:
  void Bind();
  // Waits for bytes and adds them to mUnread, aLimit at most; false at the end of the stream.
  bool Receive(size_t aLimit = static_cast<size_t>(-1));
  std::string Take(size_t aCount);

  int mListener = -1;
  std::vector<int> mOthers;  // in the queue of a daemon that does not answer
  int mPort = 0;
  int mConnection = -1;
  std::string mUnread;
};

#endif
