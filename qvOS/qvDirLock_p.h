/* qvDirLock_p.h - keeps the processes and threads that change files of one directory apart.
 *
 * The lock is advisory and lies on the directory itself: no file is made for it, and the system gives it back
 * when the process dies. A process that is stopped keeps it, so nobody waits for ever.
 *
 * Where a directory cannot be locked at all, the caller goes on without: there is nothing better. Where it
 * cannot be locked now, the caller leaves the files alone. */
#ifndef QVOS_QVDIRLOCK_P_H
#define QVOS_QVDIRLOCK_P_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* The open directory, locked unless its file system has no locks; or one of the two values below. */
typedef int qvDirLock;
#define kqvDirLockNone ((qvDirLock)-1) /* the directory is not there or may not be read: go on without */
#define kqvDirLockBusy ((qvDirLock)-2) /* somebody else may be at work: leave the files alone          */

/* Waits at most aMSLimit milliseconds for the lock of the directory that a file lies in, or is to lie in, and
 * takes it. Signals do not shorten the wait. Two locks of one directory exclude each other, also in one
 * thread. */
qvDirLock qvDirLock_AcquireForFile(const char* aFilePath, uint32 aMSLimit);

/* Waits until the medium holds the directory's names. Returns 0 when it reports that it does not; a file
 * system that does not know this, and no open directory, give 1. */
int qvDirLock_SyncDirectory(qvDirLock aLock);

void qvDirLock_Release(qvDirLock aLock);

QV_END_DECLS

#endif
