// LogCollector.h - a log daemon that takes every connection and keeps what comes in, on a thread of its own.
//
// LogDaemonPeer looks at one connection at a time; here many are open at once.
#ifndef TESTS_FAULTS_LOGCOLLECTOR_H
#define TESTS_FAULTS_LOGCOLLECTOR_H

#include <atomic>
#include <string>
#include <thread>
#include <vector>

class LogCollector {
 public:
  LogCollector();
  ~LogCollector();
  LogCollector(const LogCollector&) = delete;
  LogCollector& operator=(const LogCollector&) = delete;

  // "127.0.0.1:" and the port.
  std::string Target() const { return "127.0.0.1:" + std::to_string(mPort); }

  // Waits until every connection has ended, for processes that are gone. What each brought, in the order of
  // the connections.
  const std::vector<std::string>& Finish();

 private:
  void Collect();
  bool Accept();
  bool Receive(size_t anIndex);

  int mListener = -1;
  int mPort = 0;
  std::atomic<bool> mfFinishing{false};
  std::vector<int> mConnections;  // -1: ended
  std::vector<std::string> mStreams;
  std::thread mThread;
};

#endif
