/* qvLogMore.h - log statements that hold themselves back: once, every n-th time, at most once per n
 * milliseconds, or on a condition.
 *
 *   #define QVLOGLEVEL QVLOGLEVEL_ALL
 *   #include <qvLog/qvLogMore.h>
 *   QVLOG_WITH_MODULE_IF(TUNER, 1);
 *   ...
 *   QV_WARN_EVERY_MS(1000, F("no lock on %u kHz\n", theFrequency));
 *
 * They are statements of qvLog.h behind a test, made of that header's macros: file, line, gates and
 * compile-time levels are the same, and at compile-time level 0 nothing of them is left. Arguments of the
 * message are evaluated only when it is logged. Level and module should be constants; in the module's place
 * stands a number (QVLOG_M_TUNER).
 *
 * Every statement of the source has a state of its own, four bytes that are never allocated: one in all calls
 * and threads (in a C++ template one for each instance). Any thread may run a statement; those that hold back
 * take no lock. What the run-time level of the process drops is not counted: it leaves the state as it is. */
#ifndef QVLOG_QVLOGMORE_H
#define QVLOG_QVLOGMORE_H

#include "qvLog/qvLog.h"
#include "qvOS/qvTime.h"

/* Logs if aCondition holds, which is evaluated only where the level is on. */
#define QVXLOG_IF(aLevel, aModule, aCondition, Func) _QVLOG_IF(aLevel, aModule, aCondition, Func)

/* Logs the first time that some logger may want the message. While none does, by its level or by its module,
 * that time is still to come. A message that is dropped because it is nested inside the output of another one
 * counts. */
#define QVXLOG_ONCE(aLevel, aModule, Func) \
  _QVLOG_WITH_STATE(aLevel, aModule, _qvLogMore_IsFirst(&_qvLog_sState, aLevel, aModule), Func)

/* Logs the first, the n+1st, the 2n+1st ... time; aCount is n, and 0 counts as 1. */
#define QVXLOG_EVERY(aLevel, aModule, aCount, Func) \
  _QVLOG_WITH_STATE(aLevel, aModule, _qvLogMore_IsNth(&_qvLog_sState, aCount), Func)

/* Logs unless the statement has logged less than aMilliseconds ago, by the monotonic clock; 0: always. After
 * a silence of 49 days and more, a message may be held back although it need not be. */
#define QVXLOG_EVERY_MS(aLevel, aModule, aMilliseconds, Func) \
  _QVLOG_WITH_STATE(aLevel, aModule, _qvLogMore_IsDue(&_qvLog_sState, aMilliseconds), Func)

/* QVXLOG_IF for the module of the source file, see QVLOG_WITH_MODULE_IF. */
#define QV_ERR_IF(aCondition, f)   _QVLOG_FILE_IF(QVLOGLEVEL_ERROR, aCondition, f)
#define QV_WARN_IF(aCondition, f)  _QVLOG_FILE_IF(QVLOGLEVEL_WARNING, aCondition, f)
#define QV_INFO_IF(aCondition, f)  _QVLOG_FILE_IF(QVLOGLEVEL_INFO, aCondition, f)
#define QV_DEBUG_IF(aCondition, f) _QVLOG_FILE_IF(QVLOGLEVEL_DEBUG, aCondition, f)

/* QVXLOG_ONCE for the module of the source file. */
#define QV_ERR_ONCE(f)   _QVLOG_FILE_ONCE(QVLOGLEVEL_ERROR, f)
#define QV_WARN_ONCE(f)  _QVLOG_FILE_ONCE(QVLOGLEVEL_WARNING, f)
#define QV_INFO_ONCE(f)  _QVLOG_FILE_ONCE(QVLOGLEVEL_INFO, f)
#define QV_DEBUG_ONCE(f) _QVLOG_FILE_ONCE(QVLOGLEVEL_DEBUG, f)

/* QVXLOG_EVERY for the module of the source file. */
#define QV_ERR_EVERY(aCount, f)   _QVLOG_FILE_EVERY(QVLOGLEVEL_ERROR, aCount, f)
#define QV_WARN_EVERY(aCount, f)  _QVLOG_FILE_EVERY(QVLOGLEVEL_WARNING, aCount, f)
#define QV_INFO_EVERY(aCount, f)  _QVLOG_FILE_EVERY(QVLOGLEVEL_INFO, aCount, f)
#define QV_DEBUG_EVERY(aCount, f) _QVLOG_FILE_EVERY(QVLOGLEVEL_DEBUG, aCount, f)

/* QVXLOG_EVERY_MS for the module of the source file. */
#define QV_ERR_EVERY_MS(aMilliseconds, f)   _QVLOG_FILE_EVERY_MS(QVLOGLEVEL_ERROR, aMilliseconds, f)
#define QV_WARN_EVERY_MS(aMilliseconds, f)  _QVLOG_FILE_EVERY_MS(QVLOGLEVEL_WARNING, aMilliseconds, f)
#define QV_INFO_EVERY_MS(aMilliseconds, f)  _QVLOG_FILE_EVERY_MS(QVLOGLEVEL_INFO, aMilliseconds, f)
#define QV_DEBUG_EVERY_MS(aMilliseconds, f) _QVLOG_FILE_EVERY_MS(QVLOGLEVEL_DEBUG, aMilliseconds, f)

/* What the statements are made of. */
#define _QVLOG_OF_FILE(aStatement)   \
  do {                               \
    if (_s_qvLog_CurrentLogActive) { \
      aStatement;                    \
    }                                \
  } while (0)
#define _QVLOG_FILE_IF(aLevel, aCondition, f) \
  _QVLOG_OF_FILE(QVXLOG_IF(aLevel, _s_qvLog_CurrentModule, aCondition, f))
#define _QVLOG_FILE_ONCE(aLevel, f) _QVLOG_OF_FILE(QVXLOG_ONCE(aLevel, _s_qvLog_CurrentModule, f))
#define _QVLOG_FILE_EVERY(aLevel, aCount, f) \
  _QVLOG_OF_FILE(QVXLOG_EVERY(aLevel, _s_qvLog_CurrentModule, aCount, f))
#define _QVLOG_FILE_EVERY_MS(aLevel, aMilliseconds, f) \
  _QVLOG_OF_FILE(QVXLOG_EVERY_MS(aLevel, _s_qvLog_CurrentModule, aMilliseconds, f))

/* Nothing at all where every level is left out. */
#if QVLOGLEVEL == 0
#define _QVLOG_IF(aLevel, aModule, aCondition, Func)    _QVLOG_NOTHING
#define _QVLOG_WITH_STATE(aLevel, aModule, aTest, Func) _QVLOG_NOTHING
#else
#define _QVLOG_IF(aLevel, aModule, aCondition, Func)                                               \
  do {                                                                                             \
    if (_qvLog_LogMe(aLevel, aModule) && _qvLog_IsLevelOn((qvLogLevel)(aLevel)) && (aCondition)) { \
      QVXLOG(aLevel, aModule, Func);                                                               \
    }                                                                                              \
  } while (0)
#define _QVLOG_WITH_STATE(aLevel, aModule, aTest, Func) \
  do {                                                  \
    if (_qvLog_LogMe(aLevel, aModule)) {                \
      static uint32 _qvLog_sState = 0;                  \
      _QVLOG_IF(aLevel, aModule, aTest, Func);          \
    }                                                   \
  } while (0)

/* The module is asked for only until the message has come, because that may take the log lock. */
QVLOG_INLINE int _qvLogMore_IsFirst(uint32* aState, qvLogLevel aLevel, qvLogModule aModule) {
  return __atomic_load_n(aState, __ATOMIC_RELAXED) == 0 && qvLog_WillLog(aLevel, aModule) &&
         __atomic_exchange_n(aState, 1, __ATOMIC_RELAXED) == 0;
}

QVLOG_INLINE int _qvLogMore_IsNth(uint32* aState, uint32 aCount) {
  const uint32 theNumber = __atomic_fetch_add(aState, 1, __ATOMIC_RELAXED);
  return aCount == 0 || theNumber % aCount == 0;
}

/* The state is the tick of the last message, 0 before the first. It is read before the clock, so it is never
 * later than the tick of this thread; and one of several threads that find the message due can replace it. */
QVLOG_INLINE int _qvLogMore_IsDue(uint32* aState, uint32 aMilliseconds) {
  uint32 theLast = __atomic_load_n(aState, __ATOMIC_ACQUIRE);
  const uint32 theTick = qvTime_GetTickCount();
  const uint32 theNow = theTick != 0 ? theTick : 1;
  if (aMilliseconds == 0) {
    return 1;
  }
  return (theLast == 0 || theNow - theLast >= aMilliseconds) &&
         __atomic_compare_exchange_n(aState, &theLast, theNow, 0, __ATOMIC_ACQ_REL, __ATOMIC_RELAXED);
}

#endif

#endif
