#include "tools/logstream/LogMessage.h"

#include <string.h>

static constexpr size_t kMaxLines = 1024;
// What may stay allocated while no lines wait; many connections are idle at the same time.
static constexpr size_t kKeptLines = 32;

LogMessage::LogMessage(size_t aMaxLength) : mMaxLength(aMaxLength), mPrefix() {}

void LogMessage::Begin(const char* aLine, const LogLinePrefix& aPrefix) {
  memcpy(mPrefix, aLine, aPrefix.mLength);
  mRecord.mLevel = aPrefix.mLevel;
  mRecord.mStamp = std::string_view(mPrefix + (aPrefix.mStamp.data() - aLine), aPrefix.mStamp.size());
  mRecord.mThread = std::string_view(mPrefix + (aPrefix.mThread.data() - aLine), aPrefix.mThread.size());
  mRecord.mModule = std::string_view(mPrefix + (aPrefix.mModule.data() - aLine), aPrefix.mModule.size());
}

void LogMessage::Add(const Line& aLine) { mLines.push_back(aLine); }

bool LogMessage::IsFull() const {
  uint64 theEnd = mLines.back().mOffset + mLines.back().mLength;
  return mLines.size() >= kMaxLines || theEnd - mLines.front().mOffset > mMaxLength;
}

void LogMessage::HandOver(const LogLineSplitter& aBytes, std::string_view aProcess, std::string_view aUUID,
                          LogRecordSink& aSink) {
  mRecord.mProcess = aProcess;
  mRecord.mUUID = aUUID;
  for (const Line& theLine : mLines) {
    mRecord.mTime = theLine.mTime;
    mRecord.mRaw = aBytes.View(theLine.mOffset, theLine.mLength);
    mRecord.mText = mRecord.mRaw.substr(theLine.mTextStart);
    mRecord.mfContinuation = theLine.mfContinuation;
    mRecord.mfPartial = theLine.mfPartial;
    aSink.Take(mRecord);
  }
  mLines.clear();
  if (mLines.capacity() > kKeptLines) {
    mLines.shrink_to_fit();
  }
}
