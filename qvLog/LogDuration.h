// LogDuration.h - logs that an activity begins, and that it has ended together with the time that it took.
//
//   #define QVLOGLEVEL QVLOGLEVEL_ALL
//   #include <qvLog/LogDuration.h>
//   {
//     QVLOG_LOAD(STORAGE, F("playlist %s", theName));  // Loading: playlist a.m3u
//     ...
//   }                                                  // Loaded : playlist a.m3u (0.050 seconds)
#ifndef QVLOG_LOGDURATION_H
#define QVLOG_LOGDURATION_H

#include "qvLog/qvLog.h"
#include "qvOS/qvTypes.h"
#include "qvraTools/qvChrono.h"

// Kinds of activity, with the word at the start and the word at the end.
#define kqvLogDuration_Start    0  // "Starting"    "Started"
#define kqvLogDuration_Stop     1  // "Stopping"    "Stopped"
#define kqvLogDuration_Load     2  // "Loading"     "Loaded"
#define kqvLogDuration_Unload   3  // "Unloading"   "Unloaded"
#define kqvLogDuration_Run      4  // "Running"     "Done"
#define kqvLogDuration_Duration 5  // nothing       "Performed"
#define kqvLogDuration_InOut    6  // "Entering"    "Leaving"

// A scoped object: the constructor logs the start, the destructor the end. It belongs to one thread. The
// messages carry the library's own source file and line.
class QVLOG_API qvLogDuration {
 public:
  // aText describes the activity; the object takes it over and releases it with qvFree (null is allowed).
  // When aLevel and aModule are off at this moment nothing is logged at either end. An unknown kind counts as
  // Start.
  qvLogDuration(qvLogLevel aLevel, qvLogModule aModule, int aType, const char* aText);
  ~qvLogDuration();
  qvLogDuration(const qvLogDuration&) = delete;
  qvLogDuration& operator=(const qvLogDuration&) = delete;

  // A new text for the constructor, which releases it (otherwise qvFree does): cut to 255 bytes; "????" when
  // the format is wrong.
  static char* qvLogDuration_F(const char* aFormat, ...) QV_PRINTF_FORMAT(1, 2);

  // What the constructor was given, whether the start was logged, and the stopwatch.
  qvLogLevel mLogLevel;
  qvLogModule mLogModule;
  int mLogType;
  const char* mText;
  bool mfStarted;
  qvChrono mChrono;
};

// The level of the statements below; a unit may define another before the include.
#ifndef QVLOGDURATION_LEVEL
#define QVLOGDURATION_LEVEL QVLOGLEVEL_INFO
#endif

// --- The statements.
// QVLOG_START(module, F(format, ...)) and its sisters make such an object for the rest of the scope; module
// is a bare name as in QVLOG_INFO. Several may stand in one scope, each in a line of its own. They are
// compiled in if the level above is below QVLOGLEVEL; off at run time, they do not evaluate the arguments of
// their texts.
#if QVLOGDURATION_LEVEL < QVLOGLEVEL
// The run-time gate is asked once, for the text: another thread may open it at any moment, and an object
// without a text must not log. At level 0 an object never does.
#define _QVLOG_DURATION(aLogModule, aType, Func) _QVLOG_DURATION_AT(__LINE__, aLogModule, aType, Func)
#define _QVLOG_DURATION_AT(aLine, aLogModule, aType, Func) \
  _QVLOG_DURATION_IN_LINE(aLine, aLogModule, aType, Func)
#define _QVLOG_DURATION_IN_LINE(aLine, aLogModule, aType, Func)                                         \
  const char* const _qvLog_theText##aLine =                                                             \
      _qvLog_IsLevelOn((qvLogLevel)(QVLOGDURATION_LEVEL)) ? qvLogDuration::qvLogDuration_##Func : NULL; \
  qvLogDuration _qvLog_theDuration##aLine(                                                              \
      (qvLogLevel)(_qvLog_theText##aLine != NULL ? QVLOGDURATION_LEVEL : QVLOGLEVEL_NONE), aLogModule,  \
      aType, _qvLog_theText##aLine)
#define QVLOG_START(aLogModule, Func)    _QVLOG_DURATION(QVLOG_M_##aLogModule, kqvLogDuration_Start, Func)
#define QVLOG_STOP(aLogModule, Func)     _QVLOG_DURATION(QVLOG_M_##aLogModule, kqvLogDuration_Stop, Func)
#define QVLOG_LOAD(aLogModule, Func)     _QVLOG_DURATION(QVLOG_M_##aLogModule, kqvLogDuration_Load, Func)
#define QVLOG_UNLOAD(aLogModule, Func)   _QVLOG_DURATION(QVLOG_M_##aLogModule, kqvLogDuration_Unload, Func)
#define QVLOG_RUN(aLogModule, Func)      _QVLOG_DURATION(QVLOG_M_##aLogModule, kqvLogDuration_Run, Func)
#define QVLOG_DURATION(aLogModule, Func) _QVLOG_DURATION(QVLOG_M_##aLogModule, kqvLogDuration_Duration, Func)
#else
#define QVLOG_START(aLogModule, Func)
#define QVLOG_STOP(aLogModule, Func)
#define QVLOG_LOAD(aLogModule, Func)
#define QVLOG_UNLOAD(aLogModule, Func)
#define QVLOG_RUN(aLogModule, Func)
#define QVLOG_DURATION(aLogModule, Func)
#endif

#endif
