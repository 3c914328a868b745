// LogForwarder.h - sends lines on to another log engine as syslog messages over TCP (RFC 5424; framing of RFC
// 6587).
//
// A thread of its own resolves, connects and sends, behind a bounded queue; it reconnects with growing
// pauses, and what had to be dropped is counted and told in a message of its own after the next connection.
#ifndef QVLOGD_LOGFORWARDER_H
#define QVLOGD_LOGFORWARDER_H

#include <memory>
#include <string>

#include "tools/logstream/LogRecord.h"

enum LogFraming { LogFraming_Octet, LogFraming_LF };

struct LogForwarderOptions {
  std::string mHost;
  std::string mPort;
  LogFraming mFraming = LogFraming_Octet;
  size_t mQueueBytes = 4194304;
};

// Splits "tcp://HOST:PORT" ([HOST] for IPv6 literals); false for anything else.
bool LogForwarder_ParseTarget(const char* aText, LogForwarderOptions* aOptions);

class LogForwarder : public LogRecordSink {
 public:
  explicit LogForwarder(const LogForwarderOptions& aOptions);
  ~LogForwarder() override;  // sends what is queued, for at most two seconds

  void Take(const LogRecord& aRecord) override;
  void Flush();  // hands the block over; at the end of each turn of the loop

  uint64 Sent() const;     // messages
  uint64 Dropped() const;  // messages

 private:
  struct State;
  std::unique_ptr<State> mState;
};

#endif
