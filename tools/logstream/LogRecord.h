// LogRecord.h - what the collector knows about one line of a process or one event of its connection.
#ifndef LOGSTREAM_LOGRECORD_H
#define LOGSTREAM_LOGRECORD_H

#include <string_view>

#include "qvOS/qvTypes.h"

enum LogRecordKind {
  LogRecordKind_Line,
  LogRecordKind_Connect,     // a process has connected; mCount: messages it lost before
  LogRecordKind_Lost,        // a process reports mCount lost messages
  LogRecordKind_Disconnect,  // its connection has ended
  LogRecordKind_Suppressed   // the collector has held back or dropped mCount lines of it
};

// The views belong to whoever made the record and live as long as the call that hands it over.
struct LogRecord {
  LogRecordKind mKind = LogRecordKind_Line;
  int64 mTime = 0;            // arrival by the collector's clock: microseconds since 1970 in UTC
  std::string_view mProcess;  // the process's name; empty as long as it has not told it
  std::string_view mUUID;     // its instance, 36 characters, or empty
  char mLevel = 0;            // 'E', 'W', 'I' or 'D'; 0 when the sender gave none
  std::string_view mStamp;    // the sender's time stamp as it came, or empty
  std::string_view mThread;   // as it came, or empty
  std::string_view mModule;   // without the padding, or empty
  std::string_view mText;     // without the line end; any bytes
  std::string_view mRaw;      // the whole line as it came, without the line end
  uint64 mCount = 0;          // of an event
  bool mfContinuation =
      false;  // a later line of a message: level, stamp, thread and module are its first line's
  bool mfPartial =
      false;  // no line end came: cut by the time limit, the end of the stream or the length limit
};

// Takes records one by one.
class LogRecordSink {
 public:
  virtual ~LogRecordSink() = default;
  virtual void Take(const LogRecord& aRecord) = 0;
};

#endif
