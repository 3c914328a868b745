// RecordingLogger.h - a logger that remembers what it was given.
#ifndef TESTS_SUPPORT_RECORDINGLOGGER_H
#define TESTS_SUPPORT_RECORDINGLOGGER_H

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "qvLog/qvLogger.h"

// Stands in the chain from construction to destruction; may live on the stack as long as the framework is not
// terminated meanwhile. It uses no configuration: modules have their default activity, less mInactiveModules.
class RecordingLogger : public qvLogger {
 public:
  explicit RecordingLogger(qvLogLevel aThreshold, bool aAddToList = true, const char* aName = "Recording")
      : qvLogger(aName, aAddToList) {
    SetOptions(OPT_NO_CONFIG);
    Threshold(aThreshold);
  }

  // Changes the threshold as a logger does, under the framework lock.
  void Threshold(qvLogLevel aThreshold) {
    LockFramework();
    ChangeLevel(aThreshold);
    UnlockFramework();
  }

  bool IsModuleActive(qvLogModule aModule) override {
    ++mModuleQuestions;
    return mInactiveModules.count(aModule) == 0 && qvLogger::IsModuleActive(aModule);
  }

  bool BeginLog(qvLogDataEx* aRecord) override {
    ++mBegins;
    mRecord = *aRecord;
    if (mfTakes && mfWritesPrefix) {
      GenerateBeginLine(aRecord);
    }
    return mfTakes;
  }

  void Append_S(qvLogDataEx*, const char* aBytes, size_t aLength) override {
    mPieces.emplace_back(aBytes, aLength);
    mText.append(aBytes, aLength);
    mByteBehind = aBytes[aLength];
    if (mOnAppend) {
      mOnAppend();
    }
  }

  void EndLog(qvLogDataEx* aRecord) override {
    ++mEnds;
    mRecord = *aRecord;
    mMessages.push_back(mText);
    mText.clear();
  }

  void ReloadConfig() override {
    ++mReloads;
    qvLogger::ReloadConfig();
  }

  bool mfTakes = true;
  bool mfWritesPrefix = false;
  std::set<qvLogModule> mInactiveModules;
  std::function<void()> mOnAppend;

  int mModuleQuestions = 0;
  int mBegins = 0;
  int mEnds = 0;
  int mReloads = 0;
  qvLogDataEx mRecord = {};            // as it was at the last BeginLog or EndLog
  std::vector<std::string> mPieces;    // every call of Append_S
  std::string mText;                   // of the message that is not ended yet
  std::vector<std::string> mMessages;  // ended messages
  char mByteBehind = 'x';              // the byte behind the last piece
};

// Logs one message with qvLog_Begin, Append_F and qvLog_End; false when it was not taken.
inline bool LogText(qvLogLevel aLevel, qvLogModule aModule, const std::string& aText) {
  qvLogData* theData = qvLog_Begin(aLevel, aModule);
  if (theData == nullptr) {
    return false;
  }
  qvLog_Append_F("%s", aText.c_str());
  qvLog_End(theData);
  return true;
}

#endif
