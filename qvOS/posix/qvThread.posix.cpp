#include "qvOS/qvThread.h"

#include <execinfo.h>
#include <pthread.h>
#include <signal.h>
#include <stdlib.h>
#include <time.h>
#include <unistd.h>

#include "qvOS/qvDebug.h"
#include "qvOS/qvSemaphore.h"
#include "qvOS/qvThread_p.h"
#include "qvraTools/qvAssert.h"

#define kqvThread_CrashDelay    2000 /* milliseconds between the back-trace and the end */
#define kqvThread_TraceTimeout  10   /* seconds that the back-trace may take */
#define kqvThread_MaxPriority   100
#define kqvThread_CheckHandle() QVMAGICNUMBER_CHECK(aThread, kqvThread_Magic)

static int sfAllThreadsCatchSignal = 1;

// ------------------------------------------------------------------------------------------ crash signals

// The signal that is being traced, for the watchdog.
static volatile sig_atomic_t sCrashSignal = 0;

// Ends the process by the crash signal, whatever the trace is stuck in. SIGALRM can reach any thread; in the
// crashed one the signal is blocked while its handler runs.
static void qvThread_S_TraceTimedOut(int) {
  int theSignal = sCrashSignal;
  signal(theSignal, SIG_DFL);
  sigset_t theSignals;
  sigemptyset(&theSignals);
  sigaddset(&theSignals, theSignal);
  pthread_sigmask(SIG_UNBLOCK, &theSignals, NULL);
  raise(theSignal);
}

// A crash inside the allocator or with another lock held can leave the trace waiting for ever.
static void qvThread_S_StartWatchdog(int aSignal) {
  sCrashSignal = aSignal;
  struct sigaction theAction = {};
  theAction.sa_handler = qvThread_S_TraceTimedOut;
  sigaction(SIGALRM, &theAction, NULL);
  sigset_t theSignals;
  sigemptyset(&theSignals);
  sigaddset(&theSignals, SIGALRM);
  pthread_sigmask(SIG_UNBLOCK, &theSignals, NULL);
  alarm(kqvThread_TraceTimeout);
}

static void qvThread_S_CrashHandler(int aSignal) {
  // From here on a second fault ends the process.
  signal(aSignal, SIG_DFL);
  qvThread_S_StartWatchdog(aSignal);
  qvDebug_BackTraceCurrent(0);
  alarm(0);
  qvThread_Sleep(kqvThread_CrashDelay);
  // A fault recurs when the handler returns. A signal that was sent does not, so it is sent once more: it
  // stays blocked until the return and then meets the default action.
  raise(aSignal);
}

static void qvThread_S_CatchCrashSignals(void) {
  static const int kSignals[] = {SIGSEGV, SIGILL, SIGBUS, SIGABRT, SIGFPE};
  struct sigaction theAction = {};
  theAction.sa_handler = qvThread_S_CrashHandler;
  for (int theSignal : kSignals) {
    sigaction(theSignal, &theAction, NULL);
  }
}

// The first call of backtrace loads a library and allocates, which no signal handler should do.
static void qvThread_S_LoadBackTrace(void) {
  void* theFrame = NULL;
  backtrace(&theFrame, 1);
}

void qvThread_SetAllThreadsCatchSignal(int afCatchSignal) {
  __atomic_store_n(&sfAllThreadsCatchSignal, afCatchSignal, __ATOMIC_RELAXED);
}

// ---------------------------------------------------------------------------------------------- life cycle

// What stands behind a handle. The thread needs the handle until it ends, but the owner of a running thread
// may delete it before that: whoever of the two comes last releases it.
struct qvThread_Allocation {
  qvThread_t mHandle;  // first: the address of the handle is that of the whole
  int mUserCount;
};

static void qvThread_S_AddUser(qvOSThread* aThread) {
  __atomic_add_fetch(&reinterpret_cast<qvThread_Allocation*>(aThread)->mUserCount, 1, __ATOMIC_RELAXED);
}

static void qvThread_S_RemoveUser(void* aHandle) {
  qvThread_Allocation* theAllocation = static_cast<qvThread_Allocation*>(aHandle);
  if (__atomic_sub_fetch(&theAllocation->mUserCount, 1, __ATOMIC_ACQ_REL) == 0) {
    qvSemaphore_Delete(theAllocation->mHandle.mSemaphore);
    free(theAllocation);
  }
}

static void qvThread_S_RunBehindTheGate(qvOSThread* aThread) {
  while (qvSemaphore_Wait(aThread->mSemaphore) != qvSemaphore_Status_NoError) {
    // A signal has interrupted the wait; the gate is still closed.
  }
  if (aThread->mThreadState != kqvThreadState_Finished) {
    aThread->mThreadFunc(aThread->mThreadArgs);
  }
  if (aThread->mDetachedState == kqvThreadDetachedState_Detached) {
    aThread->mDetachedState = kqvThreadDetachedState_DetachedDelete;
    qvThread_Delete(aThread);
  }
}

static void* qvThread_S_Entry(void* aHandle) {
  if (__atomic_load_n(&sfAllThreadsCatchSignal, __ATOMIC_RELAXED)) {
    qvThread_S_CatchCrashSignals();
  }
  // Also when the function leaves by pthread_exit.
  pthread_cleanup_push(qvThread_S_RemoveUser, aHandle);
  qvThread_S_RunBehindTheGate(static_cast<qvOSThread*>(aHandle));
  pthread_cleanup_pop(1);
  return NULL;
}

// Sets what the description asks for; false when the system does not allow it.
static bool qvThread_S_PrepareAttributes(const qvOSThread_Data* aThreadData, pthread_attr_t* anAttributes) {
  if (aThreadData->mStackSize != qvThread_StackSize_SystemDefault) {
    size_t theStackSize = aThreadData->mStackSize;
    if (theStackSize == qvThread_StackSize_Default) {
      theStackSize = kqvThread_StackSize;
    }
    if (pthread_attr_setstacksize(anAttributes, theStackSize) != 0) {
      return false;
    }
  }
  bool theDetachedFlag = aThreadData->mThreadKind == qvThread_Kind_Detached;
  int theDetachState = theDetachedFlag ? PTHREAD_CREATE_DETACHED : PTHREAD_CREATE_JOINABLE;
  return pthread_attr_setdetachstate(anAttributes, theDetachState) == 0;
}

static bool qvThread_S_Start(const qvOSThread_Data* aThreadData, qvOSThread* aThread) {
  pthread_attr_t theAttributes;
  if (pthread_attr_init(&theAttributes) != 0) {
    return false;
  }
  bool theStartedFlag = false;
  if (qvThread_S_PrepareAttributes(aThreadData, &theAttributes)) {
    qvThread_S_AddUser(aThread);
    theStartedFlag = pthread_create(&aThread->mThread, &theAttributes, qvThread_S_Entry, aThread) == 0;
    if (!theStartedFlag) {
      qvThread_S_RemoveUser(aThread);
    }
  }
  pthread_attr_destroy(&theAttributes);
  return theStartedFlag;
}

qvOSThread* qvThread_New(qvOSThread_Data* aThreadData) {
  static pthread_once_t sBackTraceOnce = PTHREAD_ONCE_INIT;
  pthread_once(&sBackTraceOnce, qvThread_S_LoadBackTrace);

  // The system's allocator: a thread that cannot be had is for the caller to handle.
  qvOSThread* theThread = static_cast<qvOSThread*>(calloc(1, sizeof(qvThread_Allocation)));
  if (theThread == NULL) {
    return NULL;
  }
  qvThread_S_AddUser(theThread);
  bool theDetachedFlag = aThreadData->mThreadKind == qvThread_Kind_Detached;
  theThread->_mMagicNumber = kqvThread_Magic;
  theThread->mThreadFunc = aThreadData->mThreadFunc;
  theThread->mDeleteFunc = theDetachedFlag ? aThreadData->mDeleteFunc : NULL;
  theThread->mThreadArgs = aThreadData->mThreadArgs;
  theThread->mThreadState = kqvThreadState_NotInited;
  theThread->mDetachedState =
      theDetachedFlag ? kqvThreadDetachedState_Detached : kqvThreadDetachedState_NotDetached;
  theThread->mSemaphore = qvSemaphore_New(0);
  if (theThread->mSemaphore == NULL || !qvThread_S_Start(aThreadData, theThread)) {
    qvThread_S_RemoveUser(theThread);
    return NULL;
  }
  theThread->mThreadState = kqvThreadState_Inited;
  return theThread;
}

int qvThread_Run(qvOSThread* aThread) {
  kqvThread_CheckHandle();
  qvAssert(aThread->mThreadState == kqvThreadState_Inited);
  aThread->mThreadState = kqvThreadState_Running;
  // Behind an opened gate a detached thread may be gone already, and the handle with it.
  if (qvSemaphore_Post(aThread->mSemaphore) == qvSemaphore_Status_NoError) {
    return qvThread_Status_NoError;
  }
  aThread->mThreadState = kqvThreadState_Inited;
  return qvThread_Status_Error;
}

int qvThread_Wait(qvOSThread* aThread) {
  kqvThread_CheckHandle();
  qvAssert(aThread->mDetachedState != kqvThreadDetachedState_Detached);
  if (aThread->mThreadState == kqvThreadState_Finished) {
    return qvThread_Status_NoError;
  }
  if (aThread->mThreadState == kqvThreadState_Inited) {
    // Finished before it began: the thread wakes up and skips its function.
    aThread->mThreadState = kqvThreadState_Finished;
    qvSemaphore_Post(aThread->mSemaphore);
  }
  if (pthread_join(aThread->mThread, NULL) != 0) {
    return qvThread_Status_Error;
  }
  aThread->mThreadState = kqvThreadState_Finished;
  return qvThread_Status_NoError;
}

void qvThread_Delete(qvOSThread* aThread) {
  if (aThread == NULL) {
    return;
  }
  kqvThread_CheckHandle();
  qvAssert(aThread->mDetachedState != kqvThreadDetachedState_Detached);
  if (aThread->mThreadState == kqvThreadState_Inited) {
    qvThread_Wait(aThread);
  } else if (aThread->mThreadState == kqvThreadState_Running &&
             aThread->mDetachedState == kqvThreadDetachedState_NotDetached) {
    // Nobody can join it any more: the system releases its stack when it ends.
    pthread_detach(aThread->mThread);
  }
  if (aThread->mDetachedState == kqvThreadDetachedState_DetachedDelete && aThread->mDeleteFunc != NULL) {
    aThread->mDeleteFunc(aThread->mThreadArgs);
  }
  kqvThread_CheckHandle();
  // An atomic store, because the compiler drops a plain one to memory that is freed next.
  __atomic_store_n(&aThread->_mMagicNumber, 0, __ATOMIC_RELAXED);
  qvThread_S_RemoveUser(aThread);
}

// ------------------------------------------------------------------------------------------------ the rest

void qvThread_Sleep(uint32 aMSDelay) {
  struct timespec theDelay;
  theDelay.tv_sec = static_cast<time_t>(aMSDelay / 1000);
  theDelay.tv_nsec = static_cast<long>(aMSDelay % 1000) * 1000000;
  nanosleep(&theDelay, NULL);
}

// The priority that aPriority percent of a policy's range comes to; false when the range cannot be had.
static bool qvThread_S_ComputePriority(int aPolicy, uint16 aPriority, int* aSystemPriority) {
  int theMin = sched_get_priority_min(aPolicy);
  int theMax = sched_get_priority_max(aPolicy);
  if (theMin == -1 || theMax == -1 || theMin > theMax) {
    return false;
  }
  int thePriority = aPriority > kqvThread_MaxPriority ? kqvThread_MaxPriority : aPriority;
  *aSystemPriority = theMin + thePriority * (theMax - theMin) / kqvThread_MaxPriority;
  return true;
}

int qvThread_SetPriority(uint16 aPriority) {
  pthread_attr_t theAttributes;
  if (pthread_attr_init(&theAttributes) != 0) {
    return qvThread_Status_Error;
  }
  // KEEP qvThreadKept.SetPriorityChangesNoThread
  // The priority goes into attributes that no thread is made with.
  int theStatus = qvThread_Status_Error;
  int thePolicy = 0;
  struct sched_param theParameter = {};
  if (pthread_attr_getschedpolicy(&theAttributes, &thePolicy) == 0 &&
      qvThread_S_ComputePriority(thePolicy, aPriority, &theParameter.sched_priority) &&
      pthread_attr_setschedparam(&theAttributes, &theParameter) == 0) {
    theStatus = qvThread_Status_NoError;
  }
  pthread_attr_destroy(&theAttributes);
  return theStatus;
}

uint32 qvThread_GetPID(void) { return static_cast<uint32>(getpid()); }

uint32 qvThread_GetCurrentThreadID(void) { return static_cast<uint32>(pthread_self()); }

uint32 qvThread_GetID(qvOSThread* aThread) {
  kqvThread_CheckHandle();
  return static_cast<uint32>(aThread->mThread);
}
