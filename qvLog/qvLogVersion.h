/* qvLogVersion.h - which version of the library a program was compiled for, and which one it runs with.
 *
 * The three numbers below are where the version is written; the file name of the library, the packages and
 * qvLog.pc take it from here. What each number promises is told in docs/abi.md:
 *
 *   major   a program must be compiled anew; it is the number in the soname
 *   minor   something was added; a program may ask for at least this one
 *   patch   nothing a program can ask for
 *
 * A program that uses what came with version 1.2 and was given an older library can say so:
 *
 *   if (qvLogVersion_GetNumber() < 10200) ... */
#ifndef QVLOG_QVLOGVERSION_H
#define QVLOG_QVLOGVERSION_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* The version of these headers in its parts. */
#define QVLOG_VERSION_MAJOR 1
#define QVLOG_VERSION_MINOR 0
#define QVLOG_VERSION_PATCH 0

/* Of these headers, for comparisons in the preprocessor: 10203 is version 1.2.3. */
#define QVLOG_VERSION_NUMBER (QVLOG_VERSION_MAJOR * 10000 + QVLOG_VERSION_MINOR * 100 + QVLOG_VERSION_PATCH)

/* Of these headers, as text: "1.2.3". */
#define QVLOG_VERSION_TEXT                         QVLOG_VERSION_JOIN(QVLOG_VERSION_MAJOR, QVLOG_VERSION_MINOR, QVLOG_VERSION_PATCH)
#define QVLOG_VERSION_JOIN(aMajor, aMinor, aPatch) QVLOG_VERSION_QUOTE(aMajor.aMinor.aPatch)
#define QVLOG_VERSION_QUOTE(aText)                 #aText

/* QVLOG_VERSION_NUMBER of the library that the program runs with. */
QVLOG_API uint32 qvLogVersion_GetNumber(void);

/* QVLOG_VERSION_TEXT of the library that the program runs with. Never null; not to be freed. Any thread may
 * call both. */
QVLOG_API const char* qvLogVersion_GetText(void);

QV_END_DECLS

#endif
