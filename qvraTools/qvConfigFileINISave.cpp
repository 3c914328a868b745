#include "qvOS/qvDir.h"
#include "qvOS/qvDirLock_p.h"
#include "qvOS/qvFile.h"
#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvConfigFileINISave_p.h"
#include "qvraTools/qvINIFile_p.h"
#include "qvraTools/qvMalloc.h"

#define kqvConfigFile_INI_TemporarySuffix ".tmp"
#define kqvConfigFile_INI_CompletedSuffix ".ok"

// The name of a sibling of the file; the caller releases it.
static char* qvConfigFile_INI_S_GetNewINIFileName(const char* aFileName, const char* aSuffix) {
  return qv_mnprintf("%s%s", aFileName, aSuffix);
}

// Only what the system says is not there is absent: a question that it cannot answer is no answer.
static int qvConfigFile_INI_S_IsAbsent(const char* aFileName) {
  return qvFile_GetTimes(aFileName, NULL, NULL, NULL) == kqvFileErrorNotFound;
}

static void qvConfigFile_INI_S_RepairLocked(const char* aFileName, const char* aTemporaryName,
                                            const char* aCompletedName) {
  if (qvFile_Exists(aTemporaryName)) {
    qvFile_Remove(aTemporaryName);
  }
  if (qvFile_Exists(aCompletedName) && qvFile_Rename(aCompletedName, aFileName) == 0) {
    // A power failure in the middle of this rename can leave both names of one file. Then the system takes
    // the rename for done and leaves both as well.
    qvFile_Remove(aCompletedName);
  }
}

static int qvConfigFile_INI_S_SaveLocked(const char* aFileName, const char* aTemporaryName,
                                         const char* aCompletedName, qvDictionary* aDictionary,
                                         qvDirLock aLock) {
  // A leftover is removed rather than overwritten: whoever still has it open, without the lock, writes into
  // the leftover and not into this save. It may even be FILE.ok under a second name.
  if (qvFile_Remove(aTemporaryName) != 0) {
    return 0;
  }
  if (!qvINIFile_S_SaveINIFileDurably(aTemporaryName, aDictionary) ||
      qvFile_Rename(aTemporaryName, aCompletedName) != 0) {
    qvFile_Remove(aTemporaryName);
    return 0;
  }
  // From here on the save survives a power failure.
  if (!qvDirLock_SyncDirectory(aLock)) {
    qvFile_Remove(aCompletedName);
    return 0;
  }
  return qvFile_Rename(aCompletedName, aFileName) == 0;
}

char* qvConfigFile_INI_S_NewCompletedName(const char* aFileName) {
  return qvConfigFile_INI_S_GetNewINIFileName(aFileName, kqvConfigFile_INI_CompletedSuffix);
}

int qvConfigFile_INI_S_CheckAndRepairFile(const char* aFileName) {
  char* theTemporaryName = qvConfigFile_INI_S_GetNewINIFileName(aFileName, kqvConfigFile_INI_TemporarySuffix);
  char* theCompletedName = qvConfigFile_INI_S_NewCompletedName(aFileName);
  int theResult = qvConfigFile_INI_S_IsAbsent(theCompletedName);
  // Looked at before the lock, so that an ordinary open waits for nobody. What is there may belong to a save
  // that is under way: then it is gone once the lock is taken.
  if (!theResult || !qvConfigFile_INI_S_IsAbsent(theTemporaryName)) {
    qvDirLock theLock = qvDirLock_AcquireForFile(aFileName, kqvConfigFile_INI_LockLimit);
    if (theLock != kqvDirLockBusy) {
      qvConfigFile_INI_S_RepairLocked(aFileName, theTemporaryName, theCompletedName);
    }
    // A folder of that name is none of ours.
    theResult = qvConfigFile_INI_S_IsAbsent(theCompletedName) || qvDir_Exists(theCompletedName);
    qvDirLock_Release(theLock);
  }
  qvFree(theTemporaryName);
  qvFree(theCompletedName);
  return theResult;
}

int qvConfigFile_INI_S_SaveFile(const char* aFileName, qvDictionary* aDictionary) {
  char* theTemporaryName = qvConfigFile_INI_S_GetNewINIFileName(aFileName, kqvConfigFile_INI_TemporarySuffix);
  char* theCompletedName = qvConfigFile_INI_S_NewCompletedName(aFileName);
  qvDirLock theLock = qvDirLock_AcquireForFile(aFileName, kqvConfigFile_INI_LockLimit);
  int theResult =
      theLock != kqvDirLockBusy &&
      qvConfigFile_INI_S_SaveLocked(aFileName, theTemporaryName, theCompletedName, aDictionary, theLock);
  qvDirLock_Release(theLock);
  qvFree(theTemporaryName);
  qvFree(theCompletedName);
  return theResult;
}
