// crash_storm COUNT - lets COUNT children crash in a thread, by the five signals in turn, every tenth with
// the allocator's lock held, half of these in the first thread, and checks how each of them ends. Exit code 0
// when all ended as they should.
#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <semaphore.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include "../support/Crashes.h"
#include "qvOS/qvThread.h"

// The thread sanitizer's reports of what the handler does would take seconds of the trace's time limit.
extern "C" const char* __tsan_default_options() { return "report_signal_unsafe=0"; }

static const int kSignals[] = {SIGSEGV, SIGILL, SIGBUS, SIGABRT, SIGFPE};
static const int kMaxChildren = 100;
static const time_t kTimeLimit = 15;  // seconds

static thread_local int sCrashInAllocator = 0;  // the signal to crash by, or 0

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// The sanitizers have an allocator of their own.
static const bool kOwnAllocator = false;
#else
static const bool kOwnAllocator = true;

extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void __libc_free(void*);
}

static pthread_mutex_t sAllocatorLock = PTHREAD_MUTEX_INITIALIZER;

class AllocatorLock {
 public:
  AllocatorLock() {
    pthread_mutex_lock(&sAllocatorLock);
    if (sCrashInAllocator != 0) {
      CrashBy(sCrashInAllocator);
    }
  }
  ~AllocatorLock() { pthread_mutex_unlock(&sAllocatorLock); }
};

extern "C" void* malloc(size_t aSize) {
  AllocatorLock theLock;
  return __libc_malloc(aSize);
}
extern "C" void* calloc(size_t aCount, size_t aSize) {
  AllocatorLock theLock;
  return __libc_calloc(aCount, aSize);
}
extern "C" void* realloc(void* aPtr, size_t aSize) {
  AllocatorLock theLock;
  return __libc_realloc(aPtr, aSize);
}
extern "C" void free(void* aPtr) {
  AllocatorLock theLock;
  __libc_free(aPtr);
}
#endif

struct Child {
  pid_t mPid;
  int mNumber;
  time_t mStart;
};

static int SignalOf(int aNumber) { return kSignals[aNumber % 5]; }
static bool IsInAllocator(int aNumber) { return kOwnAllocator && aNumber % 10 == (aNumber / 10) % 10; }

static time_t Now() {
  struct timespec theTime;
  clock_gettime(CLOCK_MONOTONIC, &theTime);
  return theTime.tv_sec;
}

static void Crash(void* aNumber) {
  int theNumber = *static_cast<int*>(aNumber);
  if (IsInAllocator(theNumber)) {
    sCrashInAllocator = SignalOf(theNumber);
    free(malloc(1));
  }
  CrashBy(SignalOf(theNumber));
}

static sem_t sThreadRuns;

static void TellAndSleep(void*) {
  sem_post(&sThreadRuns);
  for (;;) {
    pause();
  }
}

// With the handlers that another thread has brought. The first thread is the one that gets the alarm, which
// then comes in the midst of its own crash.
static void CrashInFirstThread(int aNumber) {
  sem_init(&sThreadRuns, 0, 0);
  qvOSThread_Data theData = {TellAndSleep,           nullptr, nullptr, qvThread_StackSize_SystemDefault,
                             qvThread_Kind_Joinable, 0};
  qvThread_Run(qvThread_New(&theData));
  sem_wait(&sThreadRuns);
  Crash(&aNumber);
}

static void CrashInThread(int aNumber) {
  qvOSThread_Data theData = {
      Crash, nullptr, &aNumber, qvThread_StackSize_SystemDefault, qvThread_Kind_Joinable, 0};
  qvOSThread* theThread = qvThread_New(&theData);
  qvThread_Run(theThread);
  qvThread_Wait(theThread);
}

static void RunChild(int aNumber) {
  struct rlimit theNoCore = {0, 0};
  setrlimit(RLIMIT_CORE, &theNoCore);
  int theNull = open("/dev/null", O_WRONLY);
  dup2(theNull, STDOUT_FILENO);
  dup2(theNull, STDERR_FILENO);
  if (IsInAllocator(aNumber) && aNumber % 2 != 0) {
    CrashInFirstThread(aNumber);
  } else {
    CrashInThread(aNumber);
  }
  _exit(0);
}

// Whether the child has left a whole trace file, which is removed.
static bool TakeTrace(pid_t aPid) {
  char thePath[64];
  snprintf(thePath, sizeof(thePath), "/tmp/backtrace_%d.txt", static_cast<int>(aPid));
  FILE* theFile = fopen(thePath, "r");
  if (theFile == nullptr) {
    return false;
  }
  static const char kEnd[] = "\nlog end\n";
  char theEnd[sizeof(kEnd)] = "";
  fseek(theFile, -static_cast<long>(sizeof(kEnd) - 1), SEEK_END);
  size_t theCount = fread(theEnd, 1, sizeof(kEnd) - 1, theFile);
  fclose(theFile);
  unlink(thePath);
  return theCount == sizeof(kEnd) - 1 && memcmp(theEnd, kEnd, theCount) == 0;
}

static Child sChildren[kMaxChildren];
static int sChildCount = 0;
static int sVerySignal = 0;
static int sInAllocator = 0;
static int sWrong = 0;

static void Judge(const Child& aChild, int aStatus) {
  bool theTraceFlag = TakeTrace(aChild.mPid);
  bool theSignalFlag = WIFSIGNALED(aStatus) && Now() - aChild.mStart <= kTimeLimit;
  if (IsInAllocator(aChild.mNumber) && theSignalFlag) {
    ++sInAllocator;
  } else if (theSignalFlag && theTraceFlag && WTERMSIG(aStatus) == SignalOf(aChild.mNumber)) {
    ++sVerySignal;
  } else {
    ++sWrong;
    printf("child %d: wait status %d, signal %d expected, trace %d, after %ld s\n", aChild.mNumber, aStatus,
           SignalOf(aChild.mNumber), theTraceFlag, static_cast<long>(Now() - aChild.mStart));
  }
}

// Waits for one child to end; those that run for too long are killed.
static void ReapOne() {
  for (;;) {
    int theStatus = 0;
    pid_t thePid = waitpid(-1, &theStatus, WNOHANG);
    for (int i = 0; i < sChildCount; ++i) {
      if (sChildren[i].mPid == thePid) {
        Judge(sChildren[i], theStatus);
        sChildren[i] = sChildren[--sChildCount];
        return;
      }
      if (Now() - sChildren[i].mStart > 2 * kTimeLimit) {
        kill(sChildren[i].mPid, SIGKILL);
      }
    }
    struct timespec thePause = {0, 5000000};
    nanosleep(&thePause, nullptr);
  }
}

int main(int aCount, char** anArguments) {
  int theTotal = aCount > 1 ? atoi(anArguments[1]) : 10000;
  for (int theNumber = 0; theNumber < theTotal; ++theNumber) {
    if (sChildCount == kMaxChildren) {
      ReapOne();
    }
    fflush(stdout);
    pid_t thePid = fork();
    if (thePid == 0) {
      RunChild(theNumber);
    }
    sChildren[sChildCount++] = {thePid, theNumber, Now()};
  }
  while (sChildCount > 0) {
    ReapOne();
  }
  printf("%d crashes: %d by the very signal with a trace, %d in the allocator by a signal, %d wrong\n",
         theTotal, sVerySignal, sInAllocator, sWrong);
  return sWrong == 0 ? 0 : 1;
}
