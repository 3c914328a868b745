#include "qvLog/qvLog.h"

#include <errno.h>
#include <pthread.h>
#include <sched.h>
#include <string.h>

#include "qvLog/qvLogFork_p.h"
#include "qvLog/qvLogRefusals_p.h"
#include "qvLog/qvLogger_File.h"
#include "qvLog/qvLogger_Func.h"
#include "qvLog/qvLogger_qvLogd.h"
#include "qvLog/qvMainLogger_p.h"
#include "qvOS/qvMutex.h"
#include "qvOS/qvMutex_p.h"
#include "qvOS/qvTime_p.h"
#include "qvraTools/qvConfigFileINIBackend_p.h"
#include "qvraTools/qvNew_p.h"

// The life of the framework:
//
//   never used --first call--> initialising --> working --qvLog_Term--> not initialised
//                                   ^                                        |
//                                   +---------------next call----------------+
//
// Words that are read without the log lock are read and written with atomic operations.
static qvMainLogger* gLogger = NULL;
static bool _gfNeverLog = false;     // never cleared; NOLINT(bugprone-reserved-identifier)
static int sfInited = 0;             // some thread initialises or has initialised
static qvAtomic_int sInitValue = 0;  // attempts to initialise; the first one does it
static int sfDoLog = 0;              // initialised at least once; never cleared
static qvOSMutex* sLogMutex = NULL;  // the log lock, recursive; created once, never destroyed
static pthread_mutex_t sMakingLogMutex = PTHREAD_MUTEX_INITIALIZER;
static int sThisThreadAlreadyLogging = 0;  // inside a message; written by the holder of the log lock only

// A log statement must not change errno: its arguments, which often hold errno, are evaluated after
// qvLog_Begin.
struct qvErrnoKeeper {
  int* mPlace = &errno;  // the thread stays the same
  int mErrno = *mPlace;
  ~qvErrnoKeeper() { *mPlace = mErrno; }
};

static void CreateLoggers() {
  qvLogger_File_Init();
  qvLogger_qvLogd_Init();
}

static qvOSMutex* qvLog_S_GetMutex() { return __atomic_load_n(&sLogMutex, __ATOMIC_ACQUIRE); }

static void qvLog_S_SetMainLogger(qvMainLogger* aLogger) {
  __atomic_store_n(&gLogger, aLogger, __ATOMIC_RELEASE);
}

qvMainLogger* qvMainLogger::Current() { return __atomic_load_n(&gLogger, __ATOMIC_ACQUIRE); }

// Adds 1 to the attempts; the result is the new number.
static int qvLog_S_CountAttempt() {
  int theOld = __atomic_load_n(&sInitValue, __ATOMIC_SEQ_CST);
  int theNew;
  do {
    theNew = static_cast<int>(static_cast<unsigned int>(theOld) + 1);
  } while (
      !__atomic_compare_exchange_n(&sInitValue, &theOld, theNew, false, __ATOMIC_SEQ_CST, __ATOMIC_SEQ_CST));
  return theNew;
}

// Makes the main logger and the loggers, if there are none. The caller holds the log lock, so that other
// threads' framework operations wait until they exist; their messages are dropped, the first time, and wait
// later.
static void qvLog_S_MakeLoggers() {
  if (qvMainLogger::Current() != NULL) {
    return;
  }
  qvMainLogger* theLogger = new (qvOrFatalError{}) qvMainLogger;
  qvLog_S_SetMainLogger(theLogger);
  theLogger->Setup();
  CreateLoggers();
  __atomic_store_n(&sfDoLog, 1, __ATOMIC_RELEASE);
}

static void qvLog_S_MakeMutex() {
  if (qvLog_S_GetMutex() == NULL) {
    pthread_mutex_lock(&sMakingLogMutex);
    if (qvLog_S_GetMutex() == NULL) {
      __atomic_store_n(&sLogMutex, qvMutex_New(), __ATOMIC_RELEASE);
    }
    pthread_mutex_unlock(&sMakingLogMutex);
  }
}

// Run by one thread.
static void qvLog_S_Initialise() {
  // First of all: the other threads stop spinning.
  __atomic_store_n(&sfInited, 1, __ATOMIC_RELEASE);
  qvLog_S_MakeMutex();
  qvMutex_Lock(sLogMutex);
  qvLog_S_MakeLoggers();
  qvMutex_Unlock(sLogMutex);
}

// Locks the log lock if there is a main logger behind it. There is none in a thread that was waiting for the
// lock during qvLog_Term.
static bool qvLog_S_TryLock() {
  if (qvLog_S_GetMutex() == NULL) {
    return false;
  }
  qvMutex_Lock(sLogMutex);
  if (__atomic_load_n(&sfInited, __ATOMIC_ACQUIRE)) {
    // The thread that initialises may still wait for the lock, and in vain as long as this one holds it from
    // before: then this one does the work.
    qvLog_S_MakeLoggers();
  }
  if (qvMainLogger::Current() != NULL) {
    return true;
  }
  qvMutex_Unlock(sLogMutex);
  return false;
}

// A child process has all the memory of its parent and only the thread that called fork. So a fork waits for
// the log lock, or keeps it from being made: then no other thread is inside the framework, and the child gets
// the lock as often as the thread held it before. Never both, since a thread may fork inside a message while
// another one, outside, waits for the end of it.
static void qvLog_S_BeforeFork() {
  qvErrnoKeeper theErrnoKeeper;
  if (qvLog_S_GetMutex() == NULL) {
    pthread_mutex_lock(&sMakingLogMutex);
    if (qvLog_S_GetMutex() == NULL) {
      return;
    }
    pthread_mutex_unlock(&sMakingLogMutex);
  }
  qvMutex_Lock(sLogMutex);
  qvFileLogger_S_PrepareFork();
}

static void qvLog_S_AfterForkInParent() {
  qvErrnoKeeper theErrnoKeeper;
  if (qvLog_S_GetMutex() != NULL) {
    qvMutex_Unlock(sLogMutex);
  } else {
    pthread_mutex_unlock(&sMakingLogMutex);
  }
}

static void qvLog_S_AfterForkInChild() {
  qvErrnoKeeper theErrnoKeeper;
  if (qvMainLogger::Current() == NULL) {
    // Another thread may have been about to initialise, and is not here to do it.
    __atomic_store_n(&sfInited, 0, __ATOMIC_RELEASE);
    __atomic_store_n(&sInitValue, 0, __ATOMIC_SEQ_CST);
  }
  if (qvLog_S_GetMutex() != NULL) {
    qvMainLogger::LeaveParentsMessage();
    qvFileLogger_S_LeaveParentsLine();
    qvLogdLogger_S_LeaveParentsConnection();
    qvMutex_S_UnlockInChild(sLogMutex);
  } else {
    pthread_mutex_unlock(&sMakingLogMutex);
  }
}

static void qvLog_S_InstallForkHandlers() {
  qvConfigFile_INI_S_WatchForks();
  qvTime_S_WatchForks();
  qvLogger_S_WatchForks();
  pthread_atfork(qvLog_S_BeforeFork, qvLog_S_AfterForkInParent, qvLog_S_AfterForkInChild);
}

static void qvLog_S_WatchForks() {
  static pthread_once_t sOnce = PTHREAD_ONCE_INIT;
  pthread_once(&sOnce, qvLog_S_InstallForkHandlers);
}

// Initialises if nobody has. Returns 1 with the log lock held when the caller may start a log operation, 0
// without the lock when it may not: while the framework is initialised for the first time, and inside the
// output of another message.
static int Log_Init() {
  do {
    while (!__atomic_load_n(&sfInited, __ATOMIC_ACQUIRE)) {
      qvLog_S_WatchForks();
      if (qvLog_S_CountAttempt() == 1) {
        qvLog_S_Initialise();
      } else {
        sched_yield();
      }
    }
    if (!__atomic_load_n(&sfDoLog, __ATOMIC_ACQUIRE)) {
      return 0;
    }
  } while (!qvLog_S_TryLock());
  if (sThisThreadAlreadyLogging) {
    // The lock is recursive, so only the thread that is inside a message comes here.
    qvMutex_Unlock(sLogMutex);
    return 0;
  }
  sThisThreadAlreadyLogging = 1;
  return 1;
}

static void qvLog_S_Leave() {
  sThisThreadAlreadyLogging = 0;
  qvMutex_Unlock(sLogMutex);
}

void qvLogger::LockFramework() {
  while (!Log_Init()) {
    if (qvLog_S_TryLock()) {
      return;
    }
    sched_yield();
  }
}

// KEEP qvLogKept.AFrameworkOperationInsideALoggersOutputEndsTheProtectionAgainstNestedMessages
// The mark of a surrounding message is cleared too: what is logged inside the same output afterwards is not
// recognised as nested.
void qvLogger::UnlockFramework() {
  // The caller may have written to the public fields of a logger, or linked the chain by hand.
  qvLogRefusals_Forget();
  qvLog_S_Leave();
}

bool qvLogger::NeverLog() {
  LockFramework();
  bool theResult = __atomic_load_n(&_gfNeverLog, __ATOMIC_RELAXED);
  UnlockFramework();
  return theResult;
}

void qvLogger::SetNeverLog() {
  // Before the lock, which may initialise the framework: no logger is to be created even for a moment.
  __atomic_store_n(&_gfNeverLog, true, __ATOMIC_RELAXED);
  DeleteAllLoggers();
}

static bool qvLog_S_PassesGate(qvLogLevel aLevel) { return _qvLog_IsLevelOn(aLevel); }

// Everything but the formatting buffer starts anew. Field by field: for all at once the compiler takes an
// instruction that needs more time to begin than all of these.
static qvLogDataEx* qvLog_S_ResetRecord(qvLogLevel aLevel, qvLogModule aModule) {
  qvLogDataEx* theRecord = &_qvLog_gData;
  theRecord->mLevel = aLevel;
  theRecord->mModule = aModule;
  theRecord->mFile = NULL;
  theRecord->mLine = 0;
  theRecord->mProcessId = qvLogger::CurrentProcessId();
  theRecord->mThreadId = qvLogger::CurrentThreadId();
  memset(theRecord->mTimeStr, 0, sizeof(theRecord->mTimeStr));
  theRecord->mTimeStrLen = 0;
  theRecord->mFormattedLen = 0;
  theRecord->mFormattedSource = NULL;
  return theRecord;
}

int qvLog_WillLog(qvLogLevel aLevel, qvLogModule aModule) {
  qvErrnoKeeper theErrnoKeeper;
  if (!qvLog_S_PassesGate(aLevel) || !Log_Init()) {
    return 0;
  }
  bool theResult = qvMainLogger::Current()->WillLog(aLevel, aModule);
  qvLog_S_Leave();
  return theResult ? 1 : 0;
}

qvLogData* qvLog_Begin(qvLogLevel aLevel, qvLogModule aModule) {
  if (!qvLog_S_PassesGate(aLevel) || qvLogRefusals_Have(aLevel, aModule)) {
    return NULL;
  }
  qvErrnoKeeper theErrnoKeeper;
  if (!Log_Init()) {
    return NULL;
  }
  qvLogDataEx* theRecord = qvLog_S_ResetRecord(aLevel, aModule);
  if (qvMainLogger::Current()->BeginLog(theRecord)) {
    return theRecord;
  }
  qvLog_S_Leave();
  return NULL;
}

void qvLog_End(qvLogData*) {
  qvErrnoKeeper theErrnoKeeper;
  qvMainLogger::Current()->EndLog();
  qvLog_S_Leave();
}

void qvLog_Append_VF(const char* aFormat, va_list anArgs) {
  qvErrnoKeeper theErrnoKeeper;
  qvMainLogger::Current()->Append_VF(aFormat, anArgs);
}

void qvLog_Append_F(const char* aFormat, ...) {
  qvErrnoKeeper theErrnoKeeper;
  va_list theArgs;
  va_start(theArgs, aFormat);
  qvMainLogger::Current()->Append_VF(aFormat, theArgs);
  va_end(theArgs);
}

void qvLog_Append_FML(const char* aFormat, ...) {
  qvErrnoKeeper theErrnoKeeper;
  va_list theArgs;
  va_start(theArgs, aFormat);
  qvMainLogger::Current()->Append_VFML(aFormat, theArgs);
  va_end(theArgs);
}

void qvLog_Append_FN(const char* aFormat, ...) {
  qvErrnoKeeper theErrnoKeeper;
  va_list theArgs;
  va_start(theArgs, aFormat);
  qvMainLogger::Current()->Append_VFN(aFormat, theArgs);
  va_end(theArgs);
}

void qvLog_Append_B(const void* aBuffer, size_t aLength) {
  qvErrnoKeeper theErrnoKeeper;
  qvMainLogger::Current()->Append_B(aBuffer, aLength);
}

void qvLog_Append_U(const wchar_t* aUnicodeStr, size_t aLength) {
  qvErrnoKeeper theErrnoKeeper;
  qvMainLogger::Current()->Append_U(aUnicodeStr, aLength);
}

void qvLog_ReloadConfig() {
  qvErrnoKeeper theErrnoKeeper;
  qvLogger::LockFramework();
  qvMainLogger::Current()->ReloadConfig();
  qvLogger::UnlockFramework();
}

// KEEP qvLogKept.InitLeavesTheCallingThreadInsideTheLogLock
// The lock that Log_Init grants is not given back: the thread's own messages are dropped as nested and other
// threads wait. Clients let their first message initialise instead.
void qvLog_Init() {
  qvErrnoKeeper theErrnoKeeper;
  (void)Log_Init();
}

void qvLog_Term() {
  qvErrnoKeeper theErrnoKeeper;
  // KEEP qvLogKept.TermInitialisesAFrameworkThatWasNeverUsed
  // So a program that never logs reads its configuration once, and populates it, when it exits.
  qvLogger::LockFramework();
  qvLogger::DeleteAllLoggers();
  qvMainLogger* theLogger = qvMainLogger::Current();
  qvLog_S_SetMainLogger(NULL);
  delete theLogger;
  __atomic_store_n(&sfInited, 0, __ATOMIC_RELEASE);
  __atomic_store_n(&sInitValue, 0, __ATOMIC_SEQ_CST);
  qvLogger::UnlockFramework();
}

void qvLog_NeverLog() {
  qvErrnoKeeper theErrnoKeeper;
  qvLogger::SetNeverLog();
}

void qvLog_SetLogFunc(qvLogLevel aLevel, qvLog_LogFunc aFunc, void* aCookie) {
  qvErrnoKeeper theErrnoKeeper;
  qvLogger::LockFramework();
  if (qvFuncLogger::sInstance == NULL && aLevel != 0 && !qvLogger::NeverLog()) {
    new (qvOrFatalError{}) qvFuncLogger(true);  // enters the chain, which owns it
  }
  if (qvFuncLogger::sInstance != NULL) {
    qvFuncLogger::sInstance->SetFunc(aLevel, aFunc, aCookie);
  }
  qvLogger::UnlockFramework();
}

// Closes the outputs when the process ends or the library is unloaded. Watches forks as early as it can,
// since the system does not tell of a fork that is already on its way. Nameless outside: a program that links
// the library statically may have a Terminator too.
namespace {
struct Terminator {
  Terminator() { qvLog_S_WatchForks(); }
  ~Terminator() { qvLog_Term(); }
};
}  // namespace
static Terminator sTerminator;
