/* qvDirLock_p.h - keeps the processes and threads that change files of one directory apart.
 *
 * The lock is advisory and lies on the directory itself: no file is made for it, and the system gives it back
 * when the process dies. Where a directory cannot be locked, the caller goes on without. */
#ifndef QVOS_QVDIRLOCK_P_H
#define QVOS_QVDIRLOCK_P_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* The open directory; kqvDirLockNone where it could not be opened. */
typedef int qvDirLock;
#define kqvDirLockNone ((qvDirLock)-1)

/* Waits for the lock of the directory that a file lies in, or is to lie in, and takes it. Two locks of one
 * directory exclude each other, also in one thread. */
qvDirLock qvDirLock_AcquireForFile(const char* aFilePath);

/* Waits until the medium holds the directory's names. Does nothing without an open directory. */
void qvDirLock_SyncDirectory(qvDirLock aLock);

void qvDirLock_Release(qvDirLock aLock);

QV_END_DECLS

#endif
