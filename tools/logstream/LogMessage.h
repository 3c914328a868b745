// LogMessage.h - the current message of a connection: the fields of its prefix, and those of its lines that
// wait to be handed over. The bytes of the lines lie in the connection's LogLineSplitter.
#ifndef LOGSTREAM_LOGMESSAGE_H
#define LOGSTREAM_LOGMESSAGE_H

#include <string_view>
#include <vector>

#include "tools/logstream/LogLinePrefix.h"
#include "tools/logstream/LogLineSplitter.h"
#include "tools/logstream/LogRecord.h"

class LogMessage {
 public:
  // A line, or a part of one.
  struct Line {
    uint64 mOffset;
    size_t mLength;
    size_t mTextStart;  // 0, or the length of the prefix
    int64 mTime;
    bool mfContinuation;
    bool mfPartial;
  };

  // aMaxLength: bytes that may wait before the message is full.
  explicit LogMessage(size_t aMaxLength);

  // Takes over the fields of aPrefix, which was found at aLine. No lines may be waiting.
  void Begin(const char* aLine, const LogLinePrefix& aPrefix);
  bool HasBegun() const { return mRecord.mLevel != 0; }  // false before the first message
  std::string_view Stamp() const { return mRecord.mStamp; }

  void Add(const Line& aLine);
  bool IsFull() const;  // the lines have to be handed over before the next one
  void HandOver(const LogLineSplitter& aBytes, std::string_view aProcess, std::string_view aUUID,
                LogRecordSink& aSink);

  size_t WaitingBytes() const { return mLines.size() * sizeof(Line); }  // of what describes the lines
  bool IsWaiting() const { return !mLines.empty(); }
  uint64 WaitingFrom() const { return mLines.front().mOffset; }
  int64 WaitingSince() const { return mLines.front().mTime; }

 private:
  size_t mMaxLength;
  LogRecord mRecord;
  char mPrefix[kLogLinePrefix_MaxLength];  // what the fields of mRecord point into
  std::vector<Line> mLines;
};

#endif
