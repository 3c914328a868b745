#include "interposed/Starvation.h"

#include <errno.h>
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdio_ext.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <new>

#include "interposed/PlannedCalls.h"
#include "support/Sanitizers.h"

// Only some of the programs have it.
void StopPlannedCalls() __attribute__((weak));

// Nothing here may allocate, take a lock or call what a test may have put before the C library.

namespace {

constexpr unsigned kLimit = 10;        // seconds until a child that hangs is ended
constexpr long kSlow = 1;              // seconds of a child
constexpr unsigned kFirstGapBits = 5;  // with each slow child, the gaps double up to the index itself
constexpr size_t kTextSize = 200;
constexpr size_t kThreadWords = 256;  // of the description of a thread, among which its number is
constexpr int kDescriptors = 64;      // more than any test has open

StarvationReport* sReport = nullptr;
size_t sFirstPoints = 0;  // of a sample; 0: all points are tried
std::atomic<size_t> sIndex{0};
std::atomic<size_t> sNextPoint{0};
std::atomic<unsigned> sSlowChildren{0};
std::atomic<bool> sfStarved{false};   // the allocation that was to fail has failed
std::atomic<bool> sfNoMemory{false};  // and now all do
std::atomic<size_t> sStarveAt{static_cast<size_t>(-1)};
bool sfStarveFromNowOn = false;

// Maps the report before the first test.
__attribute__((constructor)) void MapReport() {
  const char* thePath = getenv(kStarvationReport);
  const char* theSample = getenv(kStarvationSample);
  sFirstPoints = theSample != nullptr ? strtoul(theSample, nullptr, 10) : 0;
  int theFile = thePath != nullptr ? open(thePath, O_RDWR | O_CLOEXEC) : -1;
  if (theFile >= 0) {
    void* theMemory = mmap(nullptr, sizeof(StarvationReport), PROT_READ | PROT_WRITE, MAP_SHARED, theFile, 0);
    sReport = theMemory != MAP_FAILED ? static_cast<StarvationReport*>(theMemory) : nullptr;
    syscall(SYS_close, theFile);
  }
}

// A debugger, like a test that kills a child at each of its system calls, must not see more of them.
bool IsTraced() {
  static pid_t sAskedFor = 0;
  static bool sfIsTraced = false;
  if (sAskedFor != getpid()) {
    sAskedFor = getpid();
    char theText[2048] = "";
    long theFile = syscall(SYS_openat, AT_FDCWD, "/proc/self/status", O_RDONLY | O_CLOEXEC);
    syscall(SYS_read, theFile, theText, sizeof(theText) - 1);
    syscall(SYS_close, theFile);
    const char* theTracer = strstr(theText, "TracerPid:");
    sfIsTraced = theTracer != nullptr && atoi(theTracer + strlen("TracerPid:")) != 0;
  }
  return sfIsTraced;
}

// The start of what a child has written.
void ReadStart(int aFile, char* aText) {
  long theLength = syscall(SYS_pread64, aFile, aText, kTextSize - 1, 0L, 0L);
  aText[theLength > 0 ? theLength : 0] = '\0';
}

bool IsMessage(const char* aText) {
  size_t theLength = strlen(kStarvedMessage);
  return strncmp(aText, kStarvedMessage, theLength) == 0 && strstr(aText, ", size=") != nullptr;
}

void Judge(int aStatus, int anOutput, int anError, const char* aKind, size_t aSize) {
  char theOutput[kTextSize];
  char theError[kTextSize];
  ReadStart(anOutput, theOutput);
  ReadStart(anError, theError);
  // Another thread may have held a lock of the C library when the child was split off.
  if (WIFSIGNALED(aStatus) && WTERMSIG(aStatus) == SIGALRM) {
    return;
  }
  ++sReport->mPoints;
  const bool theAborted = WIFSIGNALED(aStatus) && WTERMSIG(aStatus) == SIGABRT;
  if ((!theAborted || !IsMessage(theOutput) || !IsMessage(theError)) && sReport->mFailures++ == 0) {
    theOutput[strcspn(theOutput, "\n")] = '\0';
    theError[strcspn(theError, "\n")] = '\0';
    snprintf(sReport->mFirstFailure, sizeof(sReport->mFirstFailure),
             "%s of %zu bytes, allocation %zu: status %d, standard output '%.100s', standard error '%.100s'",
             aKind, aSize, sIndex.load(), aStatus, theOutput, theError);
  }
}

// The C library's description of the calling thread.
pid_t* ThreadWords() { return reinterpret_cast<pid_t*>(pthread_self()); }

// Lets the only thread of a new child go for the one that it is the copy of: a recursive mutex that the
// thread holds knows it by its number. That is the word of the thread's description which was the parent's
// number before and is the child's now.
void TakeOverNumber(const pid_t* aParentWords, pid_t aParent) {
  const pid_t theOwn = static_cast<pid_t>(syscall(SYS_gettid));
  for (size_t i = 0; i < kThreadWords; ++i) {
    if (aParentWords[i] == aParent && ThreadWords()[i] == theOwn) {
      ThreadWords()[i] = aParent;
    }
  }
}

// Of a clock that nobody sets, in whole ones.
long Seconds() {
  struct timespec theNow = {};
  syscall(SYS_clock_gettime, CLOCK_MONOTONIC, &theNow);
  return theNow.tv_sec;
}

// The test's peers hear nothing of a child: its last words would be taken for the test's, and where nobody
// reads, they would fill what the test is about to write to.
void LeavePeers() {
  const int theNowhere = static_cast<int>(syscall(SYS_socket, AF_INET, SOCK_STREAM, 0));
  for (int theFile = STDERR_FILENO + 1; theFile < kDescriptors; ++theFile) {
    int theType = 0;
    socklen_t theSize = sizeof(theType);
    if (theFile != theNowhere &&
        syscall(SYS_getsockopt, theFile, SOL_SOCKET, SO_TYPE, &theType, &theSize) == 0) {
      syscall(SYS_dup3, theNowhere, theFile, O_CLOEXEC);
    }
  }
}

// A test may allow files of a few bytes, and a child that is to be judged writes more.
void LiftFileSizeLimit() {
  struct rlimit64 theLimit = {};
  syscall(SYS_prlimit64, 0, RLIMIT_FSIZE, nullptr, &theLimit);
  theLimit.rlim_cur = theLimit.rlim_max;
  syscall(SYS_prlimit64, 0, RLIMIT_FSIZE, &theLimit, nullptr);
}

// True in the child in which the allocation is to fail.
bool TryPoint(bool afFromNowOn, const char* aKind, size_t aSize) {
  const int theErrno = errno;
  int theOutput = static_cast<int>(syscall(SYS_memfd_create, "output", 1));
  int theError = static_cast<int>(syscall(SYS_memfd_create, "error", 1));
  // Without the handlers of fork: the library's would wait for locks that this very thread may hold.
  const pid_t theThread = static_cast<pid_t>(syscall(SYS_gettid));
  pid_t theWords[kThreadWords];
  memcpy(theWords, ThreadWords(), sizeof(theWords));
  pid_t theChild = theError >= 0 ? _Fork() : -1;
  if (theChild == 0) {
    TakeOverNumber(theWords, theThread);
    syscall(SYS_dup3, theOutput, STDOUT_FILENO, 0);
    syscall(SYS_dup3, theError, STDERR_FILENO, 0);
    LeavePeers();
    LiftFileSizeLimit();
    __fpurge(stdout);
    if (StopPlannedCalls != nullptr) {
      StopPlannedCalls();
    }
    signal(SIGALRM, SIG_DFL);
    alarm(kLimit);
    sfStarved = true;
    sfNoMemory = afFromNowOn;
    return true;
  }
  int theStatus = 0;
  const long theStart = Seconds();
  while (theChild > 0 && waitpid(theChild, &theStatus, 0) == -1) {
    theChild = errno == EINTR ? theChild : -1;
  }
  if (theChild > 0) {
    Judge(theStatus, theOutput, theError, aKind, aSize);
    sSlowChildren += Seconds() - theStart > kSlow ? 1 : 0;
    char theTrace[64];
    snprintf(theTrace, sizeof(theTrace), "/tmp/backtrace_%d.txt", theChild);
    syscall(SYS_unlinkat, AT_FDCWD, theTrace, 0);
  }
  syscall(SYS_close, theOutput);
  syscall(SYS_close, theError);
  errno = theErrno;
  return false;
}

// Whether an allocation of the library fails.
bool FailsHere(const char* aKind, size_t aSize) {
  if (sfStarved) {
    return sfNoMemory;
  }
  const size_t theIndex = sIndex++;
  if (theIndex == sStarveAt) {
    sfStarved = true;
    sfNoMemory = sfStarveFromNowOn;
    return true;
  }
  if (sReport == nullptr || theIndex < sNextPoint || IsTraced()) {
    return false;
  }
  // Behind the first points of a sample, each gap is a share of the index, and one of the two is tried.
  const bool theSampled = sFirstPoints > 0 && theIndex >= sFirstPoints;
  sNextPoint = theIndex + 1 + (theSampled ? theIndex * 2 / sFirstPoints : 0);
  // A child that waits in its end, for a back-trace or for ever, takes the time of a thousand others, and
  // where one does, its neighbours do.
  if (sSlowChildren > 0) {
    sNextPoint = sNextPoint + (theIndex >> (kFirstGapBits - std::min(sSlowChildren.load(), kFirstGapBits)));
  }
  return ((!theSampled || theIndex % 2 == 0) && TryPoint(false, aKind, aSize)) ||
         ((!theSampled || theIndex % 2 == 1) && TryPoint(true, aKind, aSize));
}

}  // namespace

void StarveAt(size_t anIndex, bool afFromNowOn) {
  sfStarveFromNowOn = afFromNowOn;
  sIndex = 0;
  sStarveAt = anIndex;
}

bool HasStarved() { return sfStarved; }

extern "C" {

void* qvStarved_malloc(size_t aSize) { return FailsHere("malloc", aSize) ? nullptr : malloc(aSize); }

void* qvStarved_realloc(void* aPtr, size_t aSize) {
  // A block that shrinks to nothing is given back, which does not fail.
  return aSize > 0 && FailsHere("realloc", aSize) ? nullptr : realloc(aPtr, aSize);
}

char* qvStarved_strdup(const char* aStr) {
  return FailsHere("strdup", strlen(aStr) + 1) ? nullptr : strdup(aStr);
}

void* qvStarved_new(size_t aSize) { return FailsHere("new", aSize) ? nullptr : operator new(aSize); }

void* qvStarved_newNothrow(size_t aSize, const std::nothrow_t& aTag) {
  return FailsHere("new", aSize) ? nullptr : operator new(aSize, aTag);
}

// The sockets that a starved child makes do not reach a peer either. A test may have its own.
__attribute__((weak)) int connect(int aSocket, const struct sockaddr* anAddress, socklen_t aSize) {
  if (sfStarved && sReport != nullptr) {
    errno = ECONNREFUSED;
    return -1;
  }
  return static_cast<int>(syscall(SYS_connect, aSocket, anAddress, aSize));
}

// When all memory is gone, it is gone for the C library too. The sanitizers' allocators cannot be replaced.
#if !QVLOG_SANITIZED
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);

static bool IsOutOfMemory() {
  const bool theResult = sfNoMemory.load(std::memory_order_relaxed);
  errno = theResult ? ENOMEM : errno;
  return theResult;
}

// A test may have its own.
__attribute__((weak)) void* malloc(size_t aSize) noexcept {
  return IsOutOfMemory() ? nullptr : __libc_malloc(aSize);
}
__attribute__((weak)) void* calloc(size_t aCount, size_t aSize) noexcept {
  return IsOutOfMemory() ? nullptr : __libc_calloc(aCount, aSize);
}
__attribute__((weak)) void* realloc(void* aPtr, size_t aSize) noexcept {
  return IsOutOfMemory() ? nullptr : __libc_realloc(aPtr, aSize);
}
#endif
}
