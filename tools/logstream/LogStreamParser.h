// LogStreamParser.h - turns the bytes of one connection (protocol qvLogd-1.0) into records.
//
// What comes out does not depend on how the bytes are cut into pieces. Any bytes are accepted: a connection
// header is recognised only at the start of the stream, a loss report ("LOST: n" behind an empty line) only
// between messages, and everything else is text of the sender. The header's count and a report of the same
// losses just before it are one loss. Memory is bounded by the limits, whatever numbers the stream holds.
//
// A message is handed over as a whole: its lines wait until the next message begins, or until Drain finds the
// last line complete.
#ifndef LOGSTREAM_LOGSTREAMPARSER_H
#define LOGSTREAM_LOGSTREAMPARSER_H

#include <memory>
#include <string>

#include "tools/logstream/LogRecord.h"

struct LogStreamLimits {
  size_t mLineLength = 1048576;  // bytes of a line; a longer one is cut into partial lines of this length
  size_t mHeaderLength = 4096;   // bytes of a connection header; a longer one is text
};

class LogStreamParser {
 public:
  LogStreamParser(const LogStreamLimits& aLimits, LogRecordSink& aSink);
  ~LogStreamParser();

  // The next bytes of the stream, which arrived at aTime.
  void Feed(const char* aBytes, size_t aLength, int64 aTime);
  // Nothing more has arrived for now: hands over the waiting message unless its last line lacks the line end.
  void Drain();
  // Hands over all that waits; a line without line end is marked as partial.
  void Flush();
  // The stream has ended: Flush, then the disconnect event if there was a connect event.
  void Close(int64 aTime);

  bool IsWaiting() const;              // something is held back
  int64 WaitingSince() const;          // the arrival of the first byte that is held back
  bool HasHeader() const;              // the connection header was recognised
  const std::string& Process() const;  // empty without a header
  const std::string& UUID() const;     // empty without a header

  // Where the stream departs from the protocol for the first time, for checking: an offset in bytes and one
  // line of text; null text when it does not.
  const char* Fault() const;
  uint64 FaultOffset() const;

 private:
  struct State;
  std::unique_ptr<State> mState;
};

#endif
