// LogForwarder.h - sends lines on to another log engine as syslog messages over TCP; SyslogFormatter.h says
// how they look.
//
// A thread of its own resolves, connects and sends, behind a bounded queue: no call waits for the network. It
// connects when there is something to send, again after growing pauses; QueueFeeder.h says what happens when
// the queue is full, and the message that tells a loss is the event "suppressed" of the collector itself. A
// message of which only a part was sent is sent again as a whole on the next connection. What the system has
// taken counts as sent: this kind of syslog has no confirmations, and a peer that dies takes with it what was
// on the way. A target that cannot be reached is told on standard error, once.
#ifndef QVLOGD_LOGFORWARDER_H
#define QVLOGD_LOGFORWARDER_H

#include <memory>
#include <string>

#include "tools/logstream/LogRecord.h"
#include "tools/qvlogd/QueueFeeder.h"
#include "tools/qvlogd/SyslogFormatter.h"

struct LogForwarderOptions {
  std::string mHost;
  std::string mPort;
  LogFraming mFraming = LogFraming_Octet;
  size_t mQueueBytes = 4194304;
  int mFirstPause = 250;  // milliseconds before the second attempt to connect; then twice as long each time
  int mLongestPause = 30000;
};

// Splits "tcp://HOST:PORT" ([HOST] for IPv6 literals); false for anything else.
bool LogForwarder_ParseTarget(const char* aText, LogForwarderOptions* aOptions);

class LogForwarder : public LogRecordSink {
 public:
  explicit LogForwarder(const LogForwarderOptions& anOptions);
  ~LogForwarder() override;  // Close

  void Take(const LogRecord& aRecord) override;
  void Flush();  // hands the block over; at the end of each turn of the loop
  // Sends what is queued, for at most two seconds, and counts the rest as dropped. Nothing may follow.
  void Close();

  uint64 Sent() const;     // messages
  uint64 Dropped() const;  // messages

 private:
  struct State;

  std::shared_ptr<State> mState;  // shared with the sender, whom the resolver can hold beyond our end
  SyslogFormatter mFormatter;
  QueueFeeder mFeeder;
};

#endif
