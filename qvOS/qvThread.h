/* qvThread.h - threads with a start gate and a checked handle.
 *
 * qvThread_New makes a suspended thread, qvThread_Run lets it go. A joinable thread belongs to one owner, who
 * calls qvThread_Wait or qvThread_Delete; a detached thread releases its own handle when its function has
 * returned, so its handle is not used after qvThread_Run. A null or deleted handle fails an assertion, which
 * ends the process.
 *
 * Each thread started here installs handlers for SIGILL, SIGABRT, SIGBUS, SIGFPE and SIGSEGV, which hold for
 * the whole process: a crash prints a back-trace (see qvDebug.h), and two seconds later the process ends by
 * the signal. A back-trace that takes longer than ten seconds is given up; for that a crash takes over
 * SIGALRM. */
#ifndef QVOS_QVTHREAD_H
#define QVOS_QVTHREAD_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* Results of the functions below. */
#define qvThread_Status_NoError 0
#define qvThread_Status_Error   1

/* Stack sizes that are no number of bytes. */
#define qvThread_StackSize_Default       0 /* 128 KiB */
#define qvThread_StackSize_SystemDefault 1

/* A joinable thread is waited for, a detached one releases itself. */
#define qvThread_Kind_Joinable 0
#define qvThread_Kind_Detached 1

/* How a thread is scheduled. */
#define qvThread_Scheduling_Default  0
#define qvThread_Scheduling_Realtime 1 /* carried, but not acted upon on this platform */

/* A thread; made and released by the functions below only. */
typedef struct qvThread_t qvOSThread;

/* What a thread runs, with the argument that it was made with. */
typedef void (*qvThread_Func)(void* aThreadArgs);

/* What qvThread_New is to make. It is copied; the caller may drop it at once. */
typedef struct qvOSThread_Data {
  qvThread_Func mThreadFunc; /* run by the thread */
  qvThread_Func mDeleteFunc; /* called by a detached thread behind its function, or null; else ignored */
  void* mThreadArgs;         /* given to both functions */
  size_t mStackSize;         /* bytes, or one of qvThread_StackSize_* */
  int mThreadKind;           /* qvThread_Kind_* */
  int mThreadScheduling;     /* qvThread_Scheduling_* */
} qvOSThread_Data;

/* A new suspended thread; null when the system refuses it (too many threads, or a stack size that it does not
 * allow). */
QVLOG_API qvOSThread* qvThread_New(qvOSThread_Data* aThreadData);

/* Lets a suspended thread run; one that runs already fails an assertion. Returns Error, with the thread still
 * suspended, when the gate could not be opened. */
QVLOG_API int qvThread_Run(qvOSThread* aThread);

/* Waits until a joinable thread has ended; again, it returns NoError at once. The function of a thread that
 * never ran is skipped. A detached thread fails an assertion. Error when the thread cannot be waited for (it
 * would wait for itself). */
QVLOG_API int qvThread_Wait(qvOSThread* aThread);

/* Releases a handle; null is ignored. A thread that never ran is ended first, its function skipped. A running
 * joinable thread is not waited for and goes on to its end without a handle. A detached thread fails an
 * assertion. */
QVLOG_API void qvThread_Delete(qvOSThread* aThread);

/* Sleeps that many milliseconds; a signal can end the sleep early. */
QVLOG_API void qvThread_Sleep(uint32 aMSDelay);

/* Checks and computes a priority of 0 to 100 (higher values count as 100) for the default scheduling policy,
 * and changes no thread. Error when the policy's bounds cannot be had. */
QVLOG_API int qvThread_SetPriority(uint16 aPriority);

/* The process id. */
QVLOG_API uint32 qvThread_GetPID(void);

/* The calling thread, and the thread of a handle: pthread_self cut to 32 bits. */
QVLOG_API uint32 qvThread_GetCurrentThreadID(void);
QVLOG_API uint32 qvThread_GetID(qvOSThread* aThread);

/* Whether threads made here install the crash handlers when they start (the default). Holds for those started
 * afterwards. Any thread may call it. */
QVLOG_API void qvThread_SetAllThreadsCatchSignal(int afCatchSignal);

QV_END_DECLS

#endif
