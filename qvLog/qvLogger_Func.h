// qvLogger_Func.h - the logger that hands each message to functions of the application.
//
// Created by the first qvLog_SetLogFunc with a threshold above 0. Callbacks get the message text without a
// line prefix (only the later lines of a multi-line message carry one). The logger reads no configuration:
// modules have their default activity.
#ifndef QVLOG_QVLOGGER_FUNC_H
#define QVLOG_QVLOGGER_FUNC_H

#include "qvLog/qvLogger.h"

// One registered callback.
struct qvLoggerFuncEntry {
  qvLoggerFuncEntry* mNext;  // the next older one, or null
  qvLogLevel mLevel;         // it receives a message of level L if L < mLevel
  qvLog_LogFunc mFunc;       // never null
  void* mCookie;             // its first argument; the client's
};

// The callback logger. See the top of this header.
class QVLOG_API qvFuncLogger : public qvLogger {
 public:
  // Fails an assertion when the one instance exists already. The caller holds the framework lock.
  explicit qvFuncLogger(bool aAddToList);
  ~qvFuncLogger() override;

  bool BeginLog(qvLogDataEx* aRecord) override;
  void Append_S(qvLogDataEx* aRecord, const char* aBytes, size_t aLength) override;
  void EndLog(qvLogDataEx* aRecord) override;

  // As qvLog_SetLogFunc. This and the three below: the caller holds the framework lock. A callback may change
  // the registrations, its own included, while it is called.
  void SetFunc(qvLogLevel aLevel, qvLog_LogFunc aFunc, void* aCookie);
  // The newest entry of aFunc, or null. It stays the logger's and is freed when aFunc is removed; the entries
  // that are there when the logger is deleted are never freed.
  qvLoggerFuncEntry* FindFunc(qvLog_LogFunc aFunc);
  // Puts a new entry at the head, whether or not aFunc has one. Raises the logger's threshold to aLevel.
  void AddFunc(qvLogLevel aLevel, qvLog_LogFunc aFunc, void* aCookie);
  // Removes every entry of aFunc. The logger's threshold becomes the highest of those left, 0 without any.
  void RemoveFunc(qvLog_LogFunc aFunc);

  static qvFuncLogger* sInstance;  // the one instance, or null

  qvLoggerFuncEntry* mHead;  // newest first
  size_t mStrLen;            // length of the text of the current message
  char* mStr;                // that text; kept and grown from message to message
};

#endif
