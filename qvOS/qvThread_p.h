/* qvThread_p.h - the inside of a thread handle. */
#ifndef QVOS_QVTHREAD_P_H
#define QVOS_QVTHREAD_P_H

#include <pthread.h>

#include "qvOS/qvSemaphore.h"
#include "qvOS/qvThread.h"

#define kqvThread_Magic     0xFEEDCABE
#define kqvThread_StackSize (128 * 1024) /* bytes */

#define kqvThreadState_NotInited 0
#define kqvThreadState_Inited    1
#define kqvThreadState_Running   2
#define kqvThreadState_Finished  3

#define kqvThreadDetachedState_NotDetached    0
#define kqvThreadDetachedState_Detached       1
#define kqvThreadDetachedState_DetachedDelete 2

/* The state is written by the owner; the thread reads it behind the gate, which orders the two. */
struct qvThread_t {
  uint32 _mMagicNumber;
  pthread_t mThread;
  qvThread_Func mThreadFunc;
  qvThread_Func mDeleteFunc; /* of a detached thread, else null */
  void* mThreadArgs;
  int mThreadState;
  int mDetachedState;
  qvOSSemaphore* mSemaphore; /* the start gate */
};

#endif
