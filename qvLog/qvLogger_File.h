// qvLogger_File.h - the logger that writes to standard error, standard output or a file.
//
// Settings, section "File": "Level" (default "Off"), "File" (default "stderr": "stderr", "stdout" or a file
// name in which %y %m %d %H %M %S and %n stand for the local date (the year with all four digits), the time
// and the process name; a relative one starts at the executable's directory) and "Append" (1 appends to the
// file, anything else starts it anew). The threshold is read when the logger is made, the others whenever the
// file is opened; a reload changes none of them.
//
// The first message opens the output. When it cannot be opened or written, the system's error is printed on
// standard error, what was to be written is lost, and the next message opens the output again - under a name
// with the date of that moment.
#ifndef QVLOG_QVLOGGER_FILE_H
#define QVLOG_QVLOGGER_FILE_H

#include <stdio.h>

#include "qvLog/qvLogger.h"

// The file logger. See the top of this header.
class QVLOG_API qvFileLogger : public qvLogger {
 public:
  // Fails an assertion when the one instance exists already. The caller holds the framework lock.
  explicit qvFileLogger(bool aAddToList);
  ~qvFileLogger() override;

  // Opens the output if it is closed; false when that fails. The next message tries again.
  bool BeginLog(qvLogDataEx* aRecord) override;
  void Append_S(qvLogDataEx* aRecord, const char* aBytes, size_t aLength) override;
  void EndLog(qvLogDataEx* aRecord) override;

  // Whether the output is open.
  virtual bool IsOK();

  // Closes the output; the standard streams stay open. The next message opens it again.
  void CloseFile();
  // Replaces every aPattern in aStr by aValue, formatted with aFormat, which takes an unsigned long.
  void ReplaceStr(qvCString& aStr, const char* aPattern, const char* aFormat, uint32 aValue);

  static qvFileLogger* sInstance;  // the one instance, or null

  FILE* mFile;     // null when closed
  char mLastChar;  // the last byte written; a prefix is written only after a line end
};

QV_BEGIN_DECLS

// Creates the file logger and puts it into the chain, unless there is one or qvLog_NeverLog was called. Takes
// the framework lock.
QVLOG_API void qvLogger_File_Init(void);

QV_END_DECLS

#endif
