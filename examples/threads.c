/* threads.c - a joinable thread that is waited for, and a detached one that says when it is done. */
#include <qvOS/qvMutex.h>
#include <qvOS/qvSemaphore.h>
#include <qvOS/qvThread.h>
#include <stdio.h>

typedef struct Work {
  qvOSMutex* mLock;
  qvOSSemaphore* mDone;
  int mCount;
} Work;

static void Count(void* aWork) {
  Work* theWork = (Work*)aWork;
  for (int i = 0; i < 1000; ++i) {
    qvMutex_Lock(theWork->mLock);
    ++theWork->mCount;
    qvMutex_Unlock(theWork->mLock);
  }
}

static void SayDone(void* aWork) { qvSemaphore_Post(((Work*)aWork)->mDone); }

int main(void) {
  Work theWork = {qvMutex_New(), qvSemaphore_New(0), 0};
  qvOSThread_Data theJoinable = {
      Count, NULL, &theWork, qvThread_StackSize_Default, qvThread_Kind_Joinable, qvThread_Scheduling_Default};
  qvOSThread_Data theDetached = theJoinable;
  theDetached.mDeleteFunc = SayDone;
  theDetached.mThreadKind = qvThread_Kind_Detached;

  qvOSThread* theThread = qvThread_New(&theJoinable); /* suspended until it is run */
  qvThread_Run(theThread);
  qvThread_Run(qvThread_New(&theDetached)); /* releases its handle itself */

  printf("waited: %d\n", qvThread_Wait(theThread));
  qvThread_Delete(theThread);
  printf("done: %d\n", qvSemaphore_WaitTimeout(theWork.mDone, 60000));
  printf("counted to %d\n", theWork.mCount);

  qvSemaphore_Delete(theWork.mDone);
  qvMutex_Delete(theWork.mLock);
  return 0;
}
