// LogReader.h - reads back, line by line, what LogPrinter wrote. The form is recognised for each line.
//
// What a form leaves out stays empty, with these exceptions. The short forms know the first eight digits of
// the UUID. Raw lines have their sender's time, since the collector's is not in them. mRaw is put together
// again for lines of the other forms, in the short ones with the collector's time as the stamp. A line
// without a prefix behind a raw line is a later line of the same message. Escapes \xNN are
// resolved in names but not in texts, which may have held them from the start. Colours are taken off.
#ifndef LOGSTREAM_LOGREADER_H
#define LOGSTREAM_LOGREADER_H

#include <string>
#include <string_view>

#include "tools/logstream/JSONLine.h"
#include "tools/logstream/LogRecord.h"
#include "tools/logstream/WrittenTime.h"

class LogReader {
 public:
  // aNow: for stamps that lack the year or the date: it is the one that puts them closest before aNow.
  explicit LogReader(int64 aNow) : mTimes(aNow) {}

  void SetNow(int64 aNow) { mTimes.SetReference(aNow); }
  // The next line does not follow the one before: another file begins, or lines are missing.
  void ForgetMessage() { mfInRawMessage = false; }

  // The record of one line without its line end. The views live until the next call and as long as aLine. A
  // line that is in none of the forms (cat, or foreign text) is a line with its text and raw alone and with
  // time 0.
  LogRecord Read(std::string_view aLine);

 private:
  bool ReadJSON(std::string_view aLine, LogRecord* aRecord);
  bool TakeJSONMember(const JSONMember& aMember, LogRecord* aRecord, bool* afKnown);
  bool TakeJSONText(const JSONMember& aMember, LogRecord* aRecord);
  bool ReadRaw(std::string_view aLine, LogRecord* aRecord);
  bool ReadShort(std::string_view aLine, LogRecord* aRecord);
  bool ReadShortLine(std::string_view aStamp, std::string_view aText, LogRecord* aRecord);
  bool ReadSender(std::string_view aSender, LogRecord* aRecord);
  void RemoveColors(std::string_view aLine);
  LogRecord ReadText(std::string_view aLine) const;
  void MakeRaw(std::string_view aStamp, LogRecord* aRecord);

  WrittenTime mTimes;
  std::string mProcess, mUUID, mThread, mModule, mText, mStamp;  // what had to be unescaped
  std::string mRaw;                                              // what was put together
  std::string mPlain;                                            // a line without its colours
  bool mfInRawMessage = false;
  LogRecord mMessage;  // the raw message; its views lead to the next three
  std::string mMessageStamp, mMessageThread, mMessageModule;
};

#endif
