// NumberedStream.h - what a log daemon gets from one LoggingProcess, read line by line.
#ifndef TESTS_FAULTS_NUMBEREDSTREAM_H
#define TESTS_FAULTS_NUMBEREDSTREAM_H

#include <stdint.h>

#include <string>
#include <string_view>

class NumberedStream {
 public:
  // The connections follow each other.
  void BeginConnection();
  void Take(const std::string& aBytes);
  void EndConnection();

  // Messages that came whole, and numbers between them that did not come.
  uint64_t Whole() const { return mWhole; }
  uint64_t Missing() const { return mMissing; }
  uint64_t Last() const { return mLast; }
  // Beginnings of messages of which the rest was not sent; they are among the missing ones.
  uint64_t Torn() const { return mTorn; }
  // Losses that reports in the stream have told. A header repeats the report before it.
  uint64_t Told() const { return mTold; }
  uint64_t Connections() const { return mConnections; }
  // The first thing that is not as docs/log-daemon-protocol.md says; "" for a good stream.
  const std::string& Fault() const { return mFault; }

 private:
  void TakeHeader();
  void TakeLine(std::string_view aLine);
  void SetFault(const std::string& aFault);

  std::string mRest;  // not a whole header or line yet
  bool mfInHeader = false;
  std::string mUUID;
  uint64_t mWhole = 0;
  uint64_t mMissing = 0;
  uint64_t mLast = 0;
  uint64_t mTorn = 0;
  uint64_t mTold = 0;
  uint64_t mConnections = 0;
  std::string mFault;
};

#endif
