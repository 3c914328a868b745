// LogReader.h - reads back, line by line, what LogPrinter wrote. The form is recognised for each line.
#ifndef LOGSTREAM_LOGREADER_H
#define LOGSTREAM_LOGREADER_H

#include <string>
#include <string_view>

#include "tools/logstream/LogRecord.h"

class LogReader {
 public:
  // aNow: for the short form, whose stamps lack the year: it is the one that puts them closest before aNow.
  explicit LogReader(int64 aNow);

  // The record of one line without its line end. The views live until the next call and as long as aLine. A
  // line that is in none of the forms (cat, or foreign text) is a line with its text and raw alone and with
  // time 0.
  LogRecord Read(std::string_view aLine);

 private:
  int64 mNow;
  std::string mProcess, mUUID, mThread, mModule, mText, mStamp;  // what had to be unescaped
};

#endif
