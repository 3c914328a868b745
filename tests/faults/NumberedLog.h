// NumberedLog.h - messages that show whether they have come through whole, once and in order.
//
// Each message of a writer carries the writer, a number and checksums, in one of six forms, one for each
// append call. The form and the text follow from writer and number, so what must have come out is known.
#ifndef TESTS_FAULTS_NUMBEREDLOG_H
#define TESTS_FAULTS_NUMBEREDLOG_H

#include <map>
#include <string>
#include <string_view>
#include <vector>

// Logs message aNumber of a writer; false when it was not taken.
bool LogNumbered(int aWriter, unsigned int aNumber);
// A line that some other process or thread adds: its name with a checksum.
std::string NamedLine(const std::string& aName);
bool LogNamed(const std::string& aName);

// Checks what came out of one output, piece after piece.
class NumberedLogChecker {
 public:
  // A stretch of whole lines with prefixes, and of lines "NAME: box (log started)" without.
  void CheckLines(std::string_view aText);
  // One message as a callback gets it.
  void CheckMessage(std::string_view aText);
  // The messages of a writer must have been exactly those below aCount.
  void CheckWriterIsComplete(int aWriter, unsigned int aCount);

  // How often each name has come.
  const std::map<std::string, unsigned int>& Names() const { return mNames; }
  // How often the file was opened.
  unsigned int StartCount() const { return mStartCount; }
  size_t MessageCount() const { return mMessageCount; }
  size_t FailureCount() const { return mFailureCount; }
  // The first of them.
  const std::vector<std::string>& Failures() const { return mFailures; }

 private:
  bool CheckNumbered(const std::string& aFirstLine, std::string_view* aRest);
  void CheckThread(int aWriter, const std::string& aThread);
  void CheckNumber(int aWriter, unsigned int aNumber);
  void Failed(const std::string& aWhat);

  std::map<int, unsigned int> mNext;
  std::map<int, std::string> mThreads;
  std::string mThread;  // of the last prefix
  std::map<std::string, unsigned int> mNames;
  unsigned int mStartCount = 0;
  size_t mMessageCount = 0;
  size_t mFailureCount = 0;
  std::vector<std::string> mFailures;
};

#endif
