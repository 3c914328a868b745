/* qvLogLevels.h - the log levels, and the rule that compares them with a threshold.
 *
 * A message of level L passes a threshold T if and only if L < T. A threshold is thus one more than the most
 * verbose level it lets through: 2 lets errors through, 3 errors and warnings, 4 information as well, 65535
 * everything. The rule is the same at the compile-time level, at the process-wide gate, at every logger and
 * at every callback. */
#ifndef QVLOG_QVLOGLEVELS_H
#define QVLOG_QVLOGLEVELS_H

#include "qvOS/qvTypes.h"

/* Marks that the logging framework is present. */
#define QVLOG 1

/* The severity of one message; held by a logger or a gate it is a threshold. */
typedef uint16 qvLogLevel;

/* The levels of messages, and thresholds. */
#define QVLOGLEVEL_NONE    0 /* as a threshold: nothing passes; as a message it prints like an error */
#define QVLOGLEVEL_ERROR   1
#define QVLOGLEVEL_WARNING 2
#define QVLOGLEVEL_INFO    3
#define QVLOGLEVEL_DEBUG   4
#define QVLOGLEVEL_ALL     0xFFFFFFFF /* everything; cut to 65535 where a qvLogLevel holds it */
#define QVLOGLEVEL_RANGE   1

/* The compile-time level of the unit that includes this header: a threshold. A log statement of level L is
 * compiled in only if L < QVLOGLEVEL. Define it before the first include or on the command line, as a number
 * that the preprocessor can read (one of the names above will do); 5 or QVLOGLEVEL_ALL keeps all four levels.
 * Left undefined it is 0 and every guarded statement vanishes; the library itself is built that way. */
#ifndef QVLOGLEVEL
#define QVLOGLEVEL 0
#endif

/* For clients that ask for it; the rule above knows no other form. */
#define QVLOG_COMPILE_TIME_LEVEL_LESS_THEN /* sic */ 0

#endif
