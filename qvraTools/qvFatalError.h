/* qvFatalError.h - ends the process with a message on both standard streams and a back-trace. */
#ifndef QVRATOOLS_QVFATALERROR_H
#define QVRATOOLS_QVFATALERROR_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* Takes the reason of a fatal error. */
typedef void (*qvFatalErrorCallBack)(const char* aReason);

/* Never returns: writes "qvFatalError: " and the reason to standard error and to standard output ("unknown
 * reason" for null), prints a back-trace and calls abort. Any thread may call it; it takes no lock.
 * The reason decides which further arguments are read:
 *   - "memory:malloc", "memory:realloc", "memory:strdup", "memory:wcsdup": an unsigned long, the size
 *   - "assertat": the expression (const char*), the source file (const char*) and the line (int)
 *   - any other: none */
QVLOG_API void qvFatalError(const char* aReason, ...) QV_NORETURN;

/* Registers aCallBack under the name "fatalerror" in the process-wide registry of qvGlobal.h. The registered
 * function is looked up when a fatal error happens but it is never called. */
QVLOG_API void qvFatalError_SetCallBack(qvFatalErrorCallBack aCallBack);

QV_END_DECLS

#endif
