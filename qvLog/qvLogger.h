// qvLogger.h - the base class of every output of the logging framework.
//
// A derived logger says in BeginLog whether it takes a message, and puts the bytes of the message on its
// output in Append_S; everything between - formatting, line prefix, hex dump, module switches, configuration
// - is here. All loggers stand in one chain, newest first. The framework calls a logger with the log lock
// held, so a logger needs no lock of its own; whatever it logs itself while it is called is dropped.
//
// Loggers in the chain are deleted with delete when the framework ends, so they are made with new.
#ifndef QVLOG_QVLOGGER_H
#define QVLOG_QVLOGGER_H

#include "qv/CString.h"
#include "qvLog/qvLog.h"

// The record of one message as loggers see it. There is one in the process, used again for every message.
struct qvLogDataEx : public qvLogData {
  uint32 mProcessId;             // both ids are filled in when the message begins
  uint32 mThreadId;              // cut to 32 bits
  char mTimeStr[40];             // the time stamp, formatted by the first logger that prints it
  size_t mTimeStrLen;            // 0: not formatted yet
  char* mFormatted;              // the shared formatting buffer; one zero byte lies behind its capacity
  int32 mSizeofFormatted;        // its capacity in bytes, 0 when it could not be allocated
  uint32 mFormattedLen;          // length of the text in it
  const char* mFormattedSource;  // the format whose expansion it holds
};

// An output. See the top of this header.
class QVLOG_API qvLogger {
 public:
  enum { OPT_NO_CONFIG = 1 };                   // mOptions: never touches the configuration file
  enum { MODULE_ACTIVE = 1, MODULE_SEEN = 2 };  // mModulesInfo

  // aName is also the logger's section in the configuration file; it must live as long as the logger. The
  // threshold is 0 until ChangeLevel. With aAddToList the logger enters the chain, which initialises the
  // framework if need be; without it no lock is taken, and no other thread may start or end the framework
  // meanwhile. A derived logger that enters the chain while other threads log is made, and deleted, under the
  // framework lock: they must not meet it half made.
  qvLogger(const char* aName, bool aAddToList);
  qvLogger(const qvLogger&) = delete;
  qvLogger& operator=(const qvLogger&) = delete;
  // Leaves the chain, under the framework lock.
  virtual ~qvLogger();

  // Whether the module is switched on for this logger. Decided once from the configuration, then remembered
  // until ReloadConfig. Modules from QVLOG_MAX_MODULES on are always active.
  virtual bool IsModuleActive(qvLogModule aModule);
  // A message starts. False: this logger does not take it. The base takes nothing.
  virtual bool BeginLog(qvLogDataEx* aRecord);

  // The parts of a message, each turned into calls of Append_S. See qvLog_Append_* for the texts.
  virtual void Append_F(qvLogDataEx* aRecord, const char* aFormat, ...) QV_PRINTF_FORMAT(3, 4);
  // Leaves anArgs as it was: it works on a copy.
  virtual void Append_VF(qvLogDataEx* aRecord, const char* aFormat, va_list anArgs) QV_PRINTF_FORMAT(3, 0);
  virtual void Append_VFML(qvLogDataEx* aRecord, const char* aFormat, va_list anArgs) QV_PRINTF_FORMAT(3, 0);
  virtual void Append_B(qvLogDataEx* aRecord, const void* aBuffer, size_t aLength);
  virtual void Append_U(qvLogDataEx* aRecord, const wchar_t* aText, size_t aLength);
  // The sink. The byte behind the text can be read too: it is inside the buffer that holds the text. The text
  // may hold zero bytes.
  virtual void Append_S(qvLogDataEx* aRecord, const char* aBytes, size_t aLength);

  // The parts of a line prefix.
  virtual void Append_LogTime(qvLogDataEx* aRecord);
  virtual void Append_ThreadNameOrId(qvLogDataEx* aRecord);
  virtual void Append_ProcessNameOrId(qvLogDataEx* aRecord);
  virtual void Append_LogModule(qvLogDataEx* aRecord);

  // The message is complete. Called for messages that BeginLog refused as well. Not called in the child of a
  // fork inside the message. The base does nothing.
  virtual void EndLog(qvLogDataEx* aRecord);
  // The configuration file may have changed. The base forgets its module decisions.
  virtual void ReloadConfig();

  // The threshold.
  qvLogLevel GetLevel() const { return mLevel; }
  // Sets the threshold and keeps the process-wide gate in step. The caller holds the framework lock.
  void ChangeLevel(qvLogLevel aLevel);
  void SetOptions(uint32 anOptions) { mOptions |= anOptions; }
  void ClearOptions(uint32 anOptions) { mOptions &= ~anOptions; }
  // The prefix of a line: "I 14:03:07:042|0012ab34|TUNER      ".
  void GenerateBeginLine(qvLogDataEx* aRecord);

  // Changes of the chain; each takes the framework lock.
  static void AddLogger(qvLogger* aLogger);     // at the head; it must not be in the chain already
  static void RemoveLogger(qvLogger* aLogger);  // ignored when it is not in the chain
  static void DeleteAllLoggers();

  // Of the calling process and thread; cut to 32 bits.
  static uint32 CurrentProcessId();
  static uint32 CurrentThreadId();
  // The program's name, or the process id in hexadecimal digits; decided once. Static, at most 63 characters.
  // The caller of the first call holds the framework lock.
  static const char* CurrentProcessName();
  // The thread id in eight hexadecimal digits, in a static buffer that every call fills anew. The caller
  // holds the framework lock.
  static const char* CurrentThreadName();

  // The name of a module, with its default activity stored in *aDefaultValue; null for a number without a
  // name, and nothing is stored then.
  static const char* ModuleNameAndDefaultValue(qvLogModule aModule, int* aDefaultValue);

  // The framework lock is the log lock, recursive; taking it initialises the framework. What the thread logs
  // while it holds the lock is dropped as nested. Unlocking also ends the protection against nested messages,
  // so a logger must not use these while it is called.
  static void LockFramework();
  static void UnlockFramework();

  // Whether qvLog_NeverLog was called.
  static bool NeverLog();
  static void SetNeverLog();

  // The configuration file's name, "qvLog." and the process name and ".ini".
  static qvCString GetConfigFileName();
  // A setting of a section, of the logger's own section in the forms without aSection. What is missing, empty
  // or no number gives the default; the default, unless it is an empty text, is then written into the file
  // when "populate" is on. A stored -1 counts as missing. With OPT_NO_CONFIG the result is the default. The
  // files are read anew by every call; a failure to read or to write them is not reported.
  qvCString GetConfig(const char* aKey, const char* aSection, const qvCString& aDefault);
  qvCString GetConfig(const char* aKey, const qvCString& aDefault);
  int32 GetConfig(const char* aKey, const char* aSection, int32 aDefault);
  int32 GetConfig(const char* aKey, int32 aDefault);
  // The threshold that "Level" in the logger's own section names: "off", "error", "warn" or "warning",
  // "info", "debug" or "all" (both open every level), in any case, or a decimal number, of which the low 16
  // bits count. Any other text is 0, which is off. A numeric default is written into the file as its word.
  qvLogLevel GetConfigLevel(const qvCString& aDefault);

  // Whoever writes to these holds the framework lock; what was refused before is asked again when it is
  // released. A threshold above that of all others needs ChangeLevel, which opens the gate too.
  static qvLogger* sHead;  // the first logger of the chain, or null

  const char* mName;                      // and the section of the settings
  qvLogLevel mLevel;                      // the threshold
  qvLogger* mNext;                        // in the chain, or null
  uint32 mOptions;                        // OPT_ bits
  uint8 mModulesInfo[QVLOG_MAX_MODULES];  // 0: not decided yet
};

#endif
