/* qvDebug.h - tells where a thread is when something has gone badly wrong.
 *
 * Nothing here reports an error. Symbols are those that the system's loader knows; link a program with
 * -rdynamic to see the names of its own functions. */
#ifndef QVOS_QVDEBUG_H
#define QVOS_QVDEBUG_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* Writes the calling thread's back-trace, up to 64 frames, to "/tmp/backtrace_<process id>.txt", to the log
 * (errors of the default module) and to standard output. The file replaces an older one of that name; it is
 * left out when it cannot be made. With fewer than 6 frames, 256 words of the stack follow, read as
 * addresses. With afMemoryIsCorrupted set only a file without frames is made: nothing is allocated, logged
 * or printed. Meant for the way to the process's end: two threads that trace at the same time mix their
 * frames up. */
QVLOG_API void qvDebug_BackTraceCurrent(int afMemoryIsCorrupted);

/* Writes the calling thread's back-trace, up to 1024 frames, one line a frame, to anOutputBuffer, whose size
 * is anOutputBufferLen bytes. What does not fit is cut; the text is terminated. Returns its length without
 * the terminator. A buffer of no bytes, and any buffer when the frames cannot be resolved, is left as it was;
 * the result is 0 then. Any thread may call it. */
QVLOG_API size_t qvDebug_GetBackTrace(char* anOutputBuffer, size_t anOutputBufferLen);

/* Has no effect on this platform. */
QVLOG_API void qvDebug_SetThreadName(const char* aThreadName);

/* Called before a failed assertion ends the process, a place for a debugger's breakpoint. Has no effect on
 * this platform. */
QVLOG_API void qvDebug_Break(const char* aMessage);

QV_END_DECLS

#endif
