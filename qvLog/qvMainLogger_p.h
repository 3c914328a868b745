// qvMainLogger_p.h - the main logger, which hands every call on to each logger of the chain, and the state
// that the units of the logging framework share.
#ifndef QVLOG_QVMAINLOGGER_P_H
#define QVLOG_QVMAINLOGGER_P_H

#include "qvLog/qvLogger.h"

// The one record of the process, in use between qvLog_Begin and qvLog_End under the log lock.
extern qvLogDataEx _qvLog_gData;
// Set while the record's formatting buffer is sized and the process-wide options are read.
extern uint16 _gfqvLog_gDataInitialized;

// The caller of each operation holds the log lock.
class qvMainLogger {
 public:
  qvMainLogger() : mLogData(NULL), mIndentLevel(0) {}
  // Frees the formatting buffer.
  ~qvMainLogger();
  qvMainLogger(const qvMainLogger&) = delete;
  qvMainLogger& operator=(const qvMainLogger&) = delete;

  // The main logger of the framework, or null before initialisation and after qvLog_Term.
  static qvMainLogger* Current();

  // In a child process: a message that was being built is the parent's, and nothing more of it is handed on.
  static void LeaveParentsMessage();
  // How often that has happened. When the number changes during a call, fork was called inside it and this is
  // the child.
  static unsigned int ForkCount();

  // Closes the process-wide gate; the loggers that are created next open it again.
  void Setup();
  bool WillLog(qvLogLevel aLevel, qvLogModule aModule);
  bool BeginLog(qvLogDataEx* aRecord);
  void Append_VF(const char* aFormat, va_list anArgs) QV_PRINTF_FORMAT(2, 0);
  void Append_VFML(const char* aFormat, va_list anArgs) QV_PRINTF_FORMAT(2, 0);
  void Append_VFN(const char* aFormat, va_list anArgs) QV_PRINTF_FORMAT(2, 0);
  void Append_B(const void* aBuffer, size_t aLength);
  void Append_U(const wchar_t* aText, size_t aLength);
  void EndLog();
  void ReloadConfig();
  // A logger's threshold has become aLevel: keeps the process-wide gate at the highest threshold.
  void ChangeOneLevel(qvLogLevel aLevel);

  // The number of tab characters before each line of Append_VFN.
  void Indent() { ++mIndentLevel; }
  void Unindent() {
    if (mIndentLevel > 0) {
      --mIndentLevel;
    }
  }

  qvLogDataEx* mLogData;  // the message being built, or null
  unsigned int mIndentLevel;
};

#endif
