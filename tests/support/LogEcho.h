// LogEcho.h - what a child process logs, for the parent to read.
#ifndef TESTS_SUPPORT_LOGECHO_H
#define TESTS_SUPPORT_LOGECHO_H

#include <string>
#include <vector>

struct EchoedRecord {
  int mLevel = -1;
  int mModule = -1;
  std::string mFile;
  int mLine = -1;
  std::string mText;
};

// To be called in the child: from now on every message of this process is written to standard error in a form
// that EchoedRecords finds there, whatever else is written around it.
void EchoLogRecords();

// The messages that a child wrote to aStandardError, in order.
std::vector<EchoedRecord> EchoedRecords(const std::string& aStandardError);

// All their texts, joined.
std::string EchoedText(const std::string& aStandardError);

#endif
