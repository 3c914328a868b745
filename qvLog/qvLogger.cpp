#include "qvLog/qvLogger.h"

#include <string.h>

#include "qvLog/qvLogRefusals_p.h"
#include "qvLog/qvLoggerConfig_p.h"
#include "qvLog/qvMainLogger_p.h"
#include "qvraTools/format/qvFormat.h"

#define kqvLogger_ModuleKeySize 64 /* bytes */

qvLogger* qvLogger::sHead = NULL;

qvLogger::qvLogger(const char* aName, bool aAddToList)
    : mName(aName), mLevel(QVLOGLEVEL_NONE), mNext(NULL), mOptions(0), mModulesInfo() {
  // The lock comes first: it initialises the framework, and only one thread at a time reads the process-wide
  // options.
  if (aAddToList) {
    LockFramework();
  }
  if (!_gfqvLog_gDataInitialized) {
    qvLoggerConfig_ReadProcessOptions(this);
  }
  if (aAddToList) {
    AddLogger(this);
    UnlockFramework();
  }
}

qvLogger::~qvLogger() { RemoveLogger(this); }

void qvLogger::AddLogger(qvLogger* aLogger) {
  LockFramework();
  aLogger->mNext = sHead;
  sHead = aLogger;
  UnlockFramework();
}

// KEEP qvLogKept.RemovingALoggerLeavesTheGateWhereItIs
// The process-wide gate follows thresholds that are set, not loggers that go.
void qvLogger::RemoveLogger(qvLogger* aLogger) {
  LockFramework();
  qvLogger** theLink = &sHead;
  while (*theLink != NULL && *theLink != aLogger) {
    theLink = &(*theLink)->mNext;
  }
  if (*theLink == aLogger) {
    *theLink = aLogger->mNext;
    aLogger->mNext = NULL;
  }
  UnlockFramework();
}

void qvLogger::DeleteAllLoggers() {
  LockFramework();
  while (sHead != NULL) {
    delete sHead;  // unlinks itself
  }
  UnlockFramework();
}

void qvLogger::ChangeLevel(qvLogLevel aLevel) {
  if (aLevel == mLevel) {
    return;
  }
  mLevel = aLevel;
  qvLogRefusals_Forget();
  // A logger outside the chain may be made while there is no framework, and no gate to keep.
  qvMainLogger* theMainLogger = qvMainLogger::Current();
  if (theMainLogger != NULL) {
    theMainLogger->ChangeOneLevel(aLevel);
  }
}

// Reads the module's switch from the logger's section, with what the table says as the default.
static bool qvLogger_S_ReadModuleSwitch(qvLogger* aLogger, qvLogModule aModule) {
  int theDefault = _gfDefaultIsToLog;
  const char* theName = qvLogger::ModuleNameAndDefaultValue(aModule, &theDefault);
  char theKey[kqvLogger_ModuleKeySize];
  if (theName != NULL) {
    qv_snprintf(theKey, sizeof(theKey), "LOG_%s", theName);
  } else {
    qv_snprintf(theKey, sizeof(theKey), "LOG_%d", static_cast<int>(aModule));
  }
  if (!_gfDefaultIsToLog) {
    theDefault = 0;
  }
  return aLogger->GetConfig(theKey, static_cast<int32>(theDefault)) > 0;
}

// Not inline: the answer that is remembered, which each call of a message asks for, then needs no stack.
static __attribute__((noinline)) bool qvLogger_S_DecideModule(qvLogger* aLogger, qvLogModule aModule) {
  const bool theActive = qvLogger_S_ReadModuleSwitch(aLogger, aModule);
  aLogger->mModulesInfo[aModule] =
      theActive ? (qvLogger::MODULE_SEEN | qvLogger::MODULE_ACTIVE) : qvLogger::MODULE_SEEN;
  return theActive;
}

bool qvLogger::IsModuleActive(qvLogModule aModule) {
  if (aModule >= QVLOG_MAX_MODULES) {
    return true;
  }
  const uint8 theInfo = mModulesInfo[aModule];
  return (theInfo & MODULE_SEEN) != 0 ? (theInfo & MODULE_ACTIVE) != 0
                                      : qvLogger_S_DecideModule(this, aModule);
}

bool qvLogger::BeginLog(qvLogDataEx*) { return false; }

void qvLogger::Append_S(qvLogDataEx*, const char*, size_t) {}

void qvLogger::EndLog(qvLogDataEx*) {}

void qvLogger::ReloadConfig() {
  memset(mModulesInfo, 0, sizeof(mModulesInfo));
  qvLogRefusals_Forget();
}
