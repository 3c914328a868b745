// LogReadModel.h - how a line that was printed is read, by the description of the forms.
#ifndef FUZZ_LOGREADMODEL_H
#define FUZZ_LOGREADMODEL_H

#include <string>
#include <string_view>

#include "TimeModel.h"
#include "tools/logstream/LogRecord.h"

// A record that has its texts itself.
struct LogReadRecord {
  LogRecordKind mKind = LogRecordKind_Line;
  int64_t mTime = 0;
  std::string mProcess, mUUID;
  char mLevel = 0;
  std::string mStamp, mThread, mModule, mText, mRaw;
  uint64_t mCount = 0;
  bool mfContinuation = false;
  bool mfPartial = false;

  // The name of a field in which aRecord differs; null when there is none.
  const char* DifferenceTo(const LogRecord& aRecord) const;
};

class LogReadModel {
 public:
  explicit LogReadModel(const TimeModel& aTimes) : mTimes(aTimes) {}

  void ForgetMessage() { mfInRawMessage = false; }
  LogReadRecord Read(const std::string& aLine);

 private:
  bool ReadRaw(const std::string& aLine, LogReadRecord* aRecord) const;
  bool ReadJSON(const std::string& aLine, LogReadRecord* aRecord) const;
  bool ReadShort(const std::string& aLine, LogReadRecord* aRecord) const;

  TimeModel mTimes;
  bool mfInRawMessage = false;
  LogReadRecord mMessage;
};

#endif
