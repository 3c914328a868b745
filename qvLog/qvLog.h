/* qvLog.h - what an application includes to log: the record, the entry points and the client macros.
 *
 *   #define QVLOGLEVEL QVLOGLEVEL_ALL
 *   #include <qvLog/qvLog.h>
 *   QVLOG_WITH_MODULE_IF(TUNER, 1);
 *   ...
 *   QV_WARN(F("no lock on %u kHz\n", theFrequency));
 *
 * A message is begun, appended to and ended under one process-wide recursive lock, so messages of different
 * threads never mix on any output. Any thread may log. The first call initialises the framework. Logging
 * never reports a failure: a message that cannot be delivered is dropped. errno is left as it was.
 *
 * A process may fork while it logs: fork waits for the message of another thread (a callback must not wait
 * for a thread that forks), and the child can log at once. It writes to the same file, has the same
 * callbacks, and connects to the log daemon as an instance of its own. A message inside whose output fork was
 * called goes on in the parent only. vfork, posix_spawn and system wait for nothing.
 *
 * Formats are those of printf in C99 as qvraTools/format/qvFormat.h implements them. */
#ifndef QVLOG_QVLOG_H
#define QVLOG_QVLOG_H

#include <stdarg.h>
#include <stddef.h>
#include <wchar.h>

#include "qvLog/qvLogLevels.h"
#include "qvLog/qvLogModules.h"
#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* One message, as clients and callbacks see it. */
typedef struct qvLogData {
  qvLogLevel mLevel;   /* of the message; never a threshold */
  qvLogModule mModule; /* QVLOG_M_ and a name, or any number */
  const char* mFile;   /* source file of the call site, or null */
  uint32 mLine;        /* source line of the call site, or 0 */
} qvLogData;

/* Receives a finished message: the cookie given at registration, the record, and aLength bytes of text. Only
 * aLength tells where the text ends: a zero byte may stand inside it, and the byte behind it may be anything.
 * aText may be null when aLength is 0. Both pointers are valid during the call only. The log lock is held: a
 * message logged from inside the callback is dropped, unless the callback has called qvLog_ReloadConfig or
 * qvLog_SetLogFunc before. The callback must not call qvLog_Term or qvLog_NeverLog. */
typedef void (*qvLog_LogFunc)(void* aCookie, const qvLogData* aData, const char* aText, size_t aLength);

/* The process-wide gate: a message enters the framework only if its level is below this value. The library
 * keeps it at the highest threshold of any logger, and does not lower it for a logger that goes; 65535 before
 * the first use. Read it with an atomic load (see _qvLog_IsLevelOn); never write it. */
extern QVLOG_API qvLogLevel _qvLog_Level;

/* 1 if some logger may want a message of this level and module, 0 if not, and 0 wherever qvLog_Begin drops
 * all messages. Level 0 always gives 0. A logger whose threshold equals aLevel counts here although it would
 * not write the message. */
QVLOG_API int qvLog_WillLog(qvLogLevel aLevel, qvLogModule aModule);

/* Begins a message. Null when no logger wants it, when it is nested inside another message of the thread (in
 * its output, or where its arguments are evaluated), or while another thread initialises the framework: then
 * there is nothing to end. Otherwise the calling thread holds the log lock until qvLog_End, and it should set
 * mFile and mLine of the record. The record belongs to the library. A message of level 65535 never passes. */
QVLOG_API qvLogData* qvLog_Begin(qvLogLevel aLevel, qvLogModule aModule);

/* Ends the message of this thread. The argument is not used. */
QVLOG_API void qvLog_End(qvLogData* aData);

/* The append functions add text to the message that the calling thread began. Called without one they
 * misbehave; nothing checks it. */

/* Formatted text. A text longer than the buffer ("max_len_logger" in the configuration) is cut to it; its
 * last byte is then a line end if the format ends with one, else a zero byte. Where the format fails or the
 * text is empty, the format itself is written; an empty format writes nothing. */
QVLOG_API void qvLog_Append_F(const char* aFormat, ...) QV_PRINTF_FORMAT(1, 2);
QVLOG_API void qvLog_Append_VF(const char* aFormat, va_list anArgs) QV_PRINTF_FORMAT(1, 0);
/* Formatted text of several lines and any length: every line after the first gets a prefix of its own, and
 * what follows the last line end is dropped. A format that fails or is empty writes nothing. */
QVLOG_API void qvLog_Append_FML(const char* aFormat, ...) QV_PRINTF_FORMAT(1, 2);
/* One line: the current indentation in tab characters, the formatted text, a line end. */
QVLOG_API void qvLog_Append_FN(const char* aFormat, ...) QV_PRINTF_FORMAT(1, 2);
/* A hex dump of aLength bytes, 16 a line under a header line. aBuffer may be null when aLength is 0. */
QVLOG_API void qvLog_Append_B(const void* aBuffer, size_t aLength);
/* At most aLength wide characters, and about 400 bytes; those below 32 or above 127 appear as "\uXXXX". */
QVLOG_API void qvLog_Append_U(const wchar_t* aUnicodeStr, size_t aLength);

/* Makes every logger forget its module decisions, so that the configuration file is read again. The log
 * daemon logger also reads its other settings and connects anew; the file logger keeps its own until
 * qvLog_Term. */
QVLOG_API void qvLog_ReloadConfig(void);

/* Initialises the framework. The calling thread keeps the log lock when this returns: its own messages are
 * dropped as nested and other threads wait at their next message or fork. Do not call it; the first message
 * does what is needed. */
QVLOG_API void qvLog_Init(void);

/* Deletes all loggers and releases the framework's memory; runs by itself at exit. Initialises first if that
 * never happened. The next message or framework call initialises everything again. */
QVLOG_API void qvLog_Term(void);

/* Deletes all loggers; none of the library's loggers is created again in this process. */
QVLOG_API void qvLog_NeverLog(void);

/* Registers aFunc for messages below the threshold aLevel, with aCookie as its first argument; replaces an
 * earlier registration of the same function. aLevel 0 unregisters it. aFunc may not be null. aCookie stays
 * the caller's. */
QVLOG_API void qvLog_SetLogFunc(qvLogLevel aLevel, qvLog_LogFunc aFunc, void* aCookie);

QV_END_DECLS

/* The gates of a log statement. At compile time _qvLog_LogMe, a constant for a constant level; at run
 * time _qvLog_IsLevelOn, one relaxed load and one comparison, inline. Only behind both is anything called or
 * any argument of the message evaluated. */
#if QVLOGLEVEL == 0
#define _qvLog_LogMe(aLevel, aModule) 0
#elif QVLOGLEVEL >= 65535
#define _qvLog_LogMe(aLevel, aModule) ((qvLogLevel)(aLevel) < 65535)
#else
#define _qvLog_LogMe(aLevel, aModule) ((qvLogLevel)(aLevel) < QVLOGLEVEL)
#endif
#if defined(__GNUC__)
#define _qvLog_IsLevelOn(aLevel) ((aLevel) < __atomic_load_n(&_qvLog_Level, __ATOMIC_RELAXED))
#else
#define _qvLog_IsLevelOn(aLevel) ((aLevel) < *(volatile qvLogLevel*)&_qvLog_Level)
#endif

/* The statements. Func is an append call without its "qvLog_Append_": F(format, ...), VF(format, args),
 * FML(format, ...), FN(format, ...), B(buffer, length) or U(text, length). */

/* Logs at any compile-time level. */
#define QVXLOG_ALWAYS(aLevel, aModule, Func)                                            \
  do {                                                                                  \
    const qvLogLevel _qvLog_theLevel = (qvLogLevel)(aLevel);                            \
    if (_qvLog_IsLevelOn(_qvLog_theLevel)) {                                            \
      qvLogData* _qvLog_theData = qvLog_Begin(_qvLog_theLevel, (qvLogModule)(aModule)); \
      if (_qvLog_theData != NULL) {                                                     \
        _qvLog_theData->mFile = __FILE__;                                               \
        _qvLog_theData->mLine = __LINE__;                                               \
        qvLog_Append_##Func;                                                            \
        qvLog_End(_qvLog_theData);                                                      \
      }                                                                                 \
    }                                                                                   \
  } while (0)

/* Logs if the compile-time level allows it. aLevel should be a constant. */
#define QVXLOG(aLevel, aModule, Func)       \
  do {                                      \
    if (_qvLog_LogMe(aLevel, aModule)) {    \
      QVXLOG_ALWAYS(aLevel, aModule, Func); \
    }                                       \
  } while (0)

/* qvLog_WillLog behind the compile-time level. The first form takes a bare module name (TUNER), the second a
 * module number. */
#define QVLOG_WILL_LOG(aLevel, aModule)  _QVLOG_WILL_LOG(aLevel, QVLOG_M_##aModule)
#define _QVLOG_WILL_LOG(aLevel, aModule) (_qvLog_LogMe(aLevel, aModule) ? qvLog_WillLog(aLevel, aModule) : 0)

/* What a statement expands to that is not compiled in. */
#define _QVLOG_NOTHING \
  do {                 \
  } while (0)

/* --- One pair of statements for each level: QVLOG_ERR(TUNER, F("...")) takes a bare module name,
 * _QVLOG_ERR(QVLOG_M_TUNER, F("...")) a module number. --- */
#if QVLOGLEVEL_ERROR < QVLOGLEVEL
#define QVLOG_ERR(aModule, f)  QVXLOG(QVLOGLEVEL_ERROR, QVLOG_M_##aModule, f)
#define _QVLOG_ERR(aModule, f) QVXLOG(QVLOGLEVEL_ERROR, aModule, f)
#else
#define QVLOG_ERR(aModule, f)  _QVLOG_NOTHING
#define _QVLOG_ERR(aModule, f) _QVLOG_NOTHING
#endif

#if QVLOGLEVEL_WARNING < QVLOGLEVEL
#define QVLOG_WARN(aModule, f)  QVXLOG(QVLOGLEVEL_WARNING, QVLOG_M_##aModule, f)
#define _QVLOG_WARN(aModule, f) QVXLOG(QVLOGLEVEL_WARNING, aModule, f)
#else
#define QVLOG_WARN(aModule, f)  _QVLOG_NOTHING
#define _QVLOG_WARN(aModule, f) _QVLOG_NOTHING
#endif

#if QVLOGLEVEL_INFO < QVLOGLEVEL
#define QVLOG_INFO(aModule, f)  QVXLOG(QVLOGLEVEL_INFO, QVLOG_M_##aModule, f)
#define _QVLOG_INFO(aModule, f) QVXLOG(QVLOGLEVEL_INFO, aModule, f)
#else
#define QVLOG_INFO(aModule, f)  _QVLOG_NOTHING
#define _QVLOG_INFO(aModule, f) _QVLOG_NOTHING
#endif

#if QVLOGLEVEL_DEBUG < QVLOGLEVEL
#define QVLOG_DEBUG(aModule, f)  QVXLOG(QVLOGLEVEL_DEBUG, QVLOG_M_##aModule, f)
#define _QVLOG_DEBUG(aModule, f) QVXLOG(QVLOGLEVEL_DEBUG, aModule, f)
#else
#define QVLOG_DEBUG(aModule, f)  _QVLOG_NOTHING
#define _QVLOG_DEBUG(aModule, f) _QVLOG_NOTHING
#endif

/* Names the module of a source file once; a cond of 0 silences the file's QV_ statements. Stands at file
 * scope, in C++ in a namespace or a function as well. A semicolon behind it is welcome but not needed: in C,
 * __extension__ may stand before an empty declaration as well as before the next one. */
#if defined(__GNUC__)
#define _QVLOG_UNUSED __attribute__((unused))
#else
#define _QVLOG_UNUSED
#endif
#if defined(__GNUC__) && !defined(__cplusplus)
#define _QVLOG_SEMICOLON_WELCOME __extension__
#else
#define _QVLOG_SEMICOLON_WELCOME
#endif
#define QVLOG_WITH_MODULE_IF(module, cond)                                          \
  static const qvLogModule _s_qvLog_CurrentModule _QVLOG_UNUSED = QVLOG_M_##module; \
  static const int _s_qvLog_CurrentLogActive _QVLOG_UNUSED = (cond);                \
  _QVLOG_SEMICOLON_WELCOME

/* Log for the module of the source file. */
#define QV_ERR(f)                            \
  do {                                       \
    if (_s_qvLog_CurrentLogActive)           \
      _QVLOG_ERR(_s_qvLog_CurrentModule, f); \
  } while (0)
#define QV_WARN(f)                            \
  do {                                        \
    if (_s_qvLog_CurrentLogActive)            \
      _QVLOG_WARN(_s_qvLog_CurrentModule, f); \
  } while (0)
#define QV_INFO(f)                            \
  do {                                        \
    if (_s_qvLog_CurrentLogActive)            \
      _QVLOG_INFO(_s_qvLog_CurrentModule, f); \
  } while (0)
#define QV_DEBUG(f)                            \
  do {                                         \
    if (_s_qvLog_CurrentLogActive)             \
      _QVLOG_DEBUG(_s_qvLog_CurrentModule, f); \
  } while (0)

/* qvLog_ReloadConfig, in units that log at all. */
#if QVLOGLEVEL == 0
#define QVLOG_RELOADCONFIG _QVLOG_NOTHING
#else
#define QVLOG_RELOADCONFIG \
  do {                     \
    qvLog_ReloadConfig();  \
  } while (0)
#endif

/* The body of a variadic wrapper function whose last named parameter is aFormat. */
#define _QVLOG_OLD_VF(aLevel, aModule, aFormat)           \
  do {                                                    \
    va_list _qvLog_theArgs;                               \
    va_start(_qvLog_theArgs, aFormat);                    \
    QVXLOG(aLevel, aModule, VF(aFormat, _qvLog_theArgs)); \
    va_end(_qvLog_theArgs);                               \
  } while (0)

#endif
