/* qvMutex_p.h - what is behind a qvOSMutex. */
#ifndef QVOS_QVMUTEX_P_H
#define QVOS_QVMUTEX_P_H

#include "qvOS/qvMutex.h"

#define kqvMutex_Magic   0xFEEDBABE
#define kqvMutex_NoOwner 0

struct qvMutex_t {
  uint32 _mMagicNumber;   /* kqvMutex_Magic while alive, 0 once deleted                         */
  pthread_mutex_t mMutex; /* recursive                                                          */
  pthread_t mOwnerThread; /* kqvMutex_NoOwner when free; read without the lock, so atomics only */
  uint32 mLockCount;      /* how often the owner holds it; only the owner reads and writes it   */
};

QV_BEGIN_DECLS

/* qvMutex_Unlock for a child process: fork was called by the thread that held the mutex. The system's own
 * unlock refuses there, because the threads of the child have other numbers. */
void qvMutex_S_UnlockInChild(qvOSMutex* aMutex);

QV_END_DECLS

#endif
