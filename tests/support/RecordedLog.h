// RecordedLog.h - a sink that remembers the records of a log stream, each as one line of text.
#ifndef TESTS_SUPPORT_RECORDEDLOG_H
#define TESTS_SUPPORT_RECORDEDLOG_H

#include <string>
#include <vector>

#include "tools/logstream/LogRecord.h"

// A line reads "I|14:03:07:042|b6f2a000|GRAPHICS|text", with '+' in front for a later line of a message and
// '~' behind for one without line end, and '-' for the level of a line without one; an event reads "connect
// 3", "lost 3", "disconnect 0" or "suppressed 3".
class RecordedLog : public LogRecordSink {
 public:
  void Take(const LogRecord& aRecord) override {
    mTexts.push_back(Text(aRecord));
    mTimes.push_back(aRecord.mTime);
    mSenders.push_back(std::string(aRecord.mProcess) + " " + std::string(aRecord.mUUID));
    mRaws.push_back(std::string(aRecord.mRaw));
  }

  static std::string Text(const LogRecord& aRecord) {
    static const char* const kKinds[] = {"line ", "connect ", "lost ", "disconnect ", "suppressed "};
    if (aRecord.mKind != LogRecordKind_Line) {
      return kKinds[aRecord.mKind] + std::to_string(aRecord.mCount);
    }
    std::string theText(aRecord.mfContinuation ? "+" : "");
    theText += aRecord.mLevel != 0 ? aRecord.mLevel : '-';
    for (std::string_view theField : {aRecord.mStamp, aRecord.mThread, aRecord.mModule, aRecord.mText}) {
      theText.append("|").append(theField);
    }
    return theText + (aRecord.mfPartial ? "~" : "");
  }

  std::vector<std::string> mTexts;
  std::vector<int64> mTimes;
  std::vector<std::string> mSenders;  // "process uuid"
  std::vector<std::string> mRaws;
};

#endif
