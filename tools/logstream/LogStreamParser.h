// LogStreamParser.h - turns the bytes of one connection (protocol qvLogd-1.0) into records.
//
// What comes out does not depend on how the bytes are cut into pieces. Any bytes are accepted: a connection
// header is recognised only at the start of the stream, also behind a loss report of the same count, which is
// then counted once. A loss report elsewhere is a line that is exactly "LOST: n" behind an empty line. The
// text of a message that looks the same cannot be told apart. Everything else is text of the sender, so a
// second header and a malformed report are text too. Memory is bounded by six times the limit of a line,
// whatever numbers the stream holds.
//
// A report right behind a message without a line end has no empty line in front of it and is taken for a line
// of that message: texts with such a line are more common, and it stays to be seen.
//
// A line with a prefix begins a message, and lines without one continue it. A sender whose socket was full
// may have had to leave out the end of a message; its next one then begins in the middle of that line. So a
// prefix in the middle of a line begins a message as well, if its stamp is not before that of the message
// around it, as a quoted line's would be; the line before it is handed over as partial.
//
// A message is handed over as a whole: its lines wait until the next message begins, or until Drain finds the
// last line complete. An empty line waits for the one behind it, since both may be a loss report. A message
// that grows longer than the limit of a line, or beyond 1024 lines, is handed over in parts.
//
// The text of all lines, each with its line end unless it is partial, and the headers and reports recognised
// are what came in, byte by byte. Only the line end that comes alone behind a line that Flush has handed over
// as partial is left out.
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

  // The next bytes of the stream, which arrived at aTime. A record has the time of its first byte.
  void Feed(const char* aBytes, size_t aLength, int64 aTime);
  // Nothing more has arrived for now: hands over the waiting message unless its last line lacks the line end.
  // What may become a connection header and the empty line of what may become a loss report go on waiting.
  void Drain();
  // Hands over all that waits, as text; a line without line end is marked as partial.
  void Flush();
  // The stream has ended: Flush, then the disconnect event if there was a connect event.
  void Close(int64 aTime);

  bool IsWaiting() const;              // something is held back
  int64 WaitingSince() const;          // the arrival of the first byte that is held back
  size_t WaitingBytes() const;         // the memory that this takes
  bool HasHeader() const;              // the connection header was recognised
  const std::string& Process() const;  // empty without a header
  const std::string& UUID() const;     // empty without a header

  // Where the stream departs from the protocol for the first time, for checking: an offset in bytes and one
  // line of text; null text when it does not. Ask after Close: a stream without a header is known only then.
  const char* Fault() const;
  uint64 FaultOffset() const;

 private:
  struct State;
  std::unique_ptr<State> mState;
};

#endif
