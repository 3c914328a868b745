#include "qvraTools/qvConfigFileINIBackend.h"

#include <pthread.h>

#include "qvOS/qvDir.h"
#include "qvOS/qvPath.h"
#include "qvraTools/qvAssert.h"
#include "qvraTools/qvConfigFileINIBackend_p.h"
#include "qvraTools/qvConfigFileINISave_p.h"
#include "qvraTools/qvINIFile.h"
#include "qvraTools/qvINIFile_p.h"
#include "qvraTools/qvMalloc.h"

// The table of this back-end, there while sfReady is set, with the count of its users.
static qvConfigFileBackend* sqvConfigFileINIBackend = NULL;
static qvAtomic_int sReferenceCount = 0;
static qvAtomic_int sfReady = 0;
// Closes the gap between seeing the table ready and being counted: without it, the last release could free
// the table in between.
static pthread_mutex_t sTableLock = PTHREAD_MUTEX_INITIALIZER;

namespace {

// What a configuration file is, with what its public part does not show.
struct PrivateObject {
  qvConfigFile_INI mPublic;
  int mfIsUnread;  // a save could destroy settings that are on disk and could not be read or put right
};

}  // namespace

static PrivateObject* qvConfigFile_INI_S_PrivateObject(qvConfigFile* aConfigFile) {
  return reinterpret_cast<PrivateObject*>(aConfigFile);
}

static qvConfigFile_INI* qvConfigFile_INI_S_Object(qvConfigFile* aConfigFile) {
  return reinterpret_cast<qvConfigFile_INI*>(aConfigFile);
}

static qvDictionary* qvConfigFile_INI_S_RW(qvConfigFile* aConfigFile) {
  return qvConfigFile_INI_S_Object(aConfigFile)->mRWDictionary;
}

// The layer that an enumeration looks at; null for a read-write layer that does not exist.
static qvDictionary* qvConfigFile_INI_S_Layer(qvConfigFile* aConfigFile, int afForReadOnlyFile) {
  return afForReadOnlyFile ? qvConfigFile_INI_S_Object(aConfigFile)->mRODictionary
                           : qvConfigFile_INI_S_RW(aConfigFile);
}

// Null for null, and for the empty name: the siblings of a save, ".tmp" and ".ok", would lie beside the
// executable.
static char* qvConfigFile_INI_S_FullName(const char* aFileName) {
  return !qvStrEmpty(aFileName) ? qvPath_Normalize(aFileName, 0, kqvPathNormalizeMode_Generic, NULL) : NULL;
}

// Loads the latest settings of an interrupted save that could not be completed now. Returns 0 or the error.
static int qvConfigFile_INI_S_LoadCompletedFile(const char* aFileName, qvDictionary* aDictionary) {
  char* theCompletedName = qvConfigFile_INI_S_NewCompletedName(aFileName);
  int theError = qvINIFile_S_LoadINIFileOrError(theCompletedName, aDictionary);
  qvFree(theCompletedName);
  return theError;
}

// Returns 0 when a save of the dictionary could destroy settings that are on disk.
static int qvConfigFile_INI_S_LoadReadWriteFile(const char* aFileName, qvDictionary* aDictionary) {
  int theIsSettled = qvConfigFile_INI_S_CheckAndRepairFile(aFileName);
  if (!theIsSettled && qvConfigFile_INI_S_LoadCompletedFile(aFileName, aDictionary) == 0) {
    return 0;
  }
  int theError = qvINIFile_S_LoadINIFileOrError(aFileName, aDictionary);
  return theIsSettled && (theError == 0 || theError == kqvFileErrorNotFound);
}

static qvConfigFile* qvConfigFile_INI_New(qvConfigFileBackend* aBackend, const char* aReadOnlyFileName,
                                          const char* aReadWriteFileName, const char* /*aFileName*/) {
  PrivateObject* thePrivateObject = static_cast<PrivateObject*>(qvMalloc(sizeof(PrivateObject)));
  thePrivateObject->mfIsUnread = 0;
  qvConfigFile_INI* theObject = &thePrivateObject->mPublic;
  theObject->mROFileName = qvConfigFile_INI_S_FullName(aReadOnlyFileName);
  theObject->mRWFileName = qvConfigFile_INI_S_FullName(aReadWriteFileName);
  theObject->mRODictionary = qvDictionary_New(0);
  theObject->mRWDictionary = aReadWriteFileName != NULL ? qvDictionary_New(0) : NULL;
  if (theObject->mROFileName != NULL) {
    qvINIFile_LoadINIFile(theObject->mROFileName, theObject->mRODictionary);
  }
  if (theObject->mRWFileName != NULL) {
    thePrivateObject->mfIsUnread =
        !qvConfigFile_INI_S_LoadReadWriteFile(theObject->mRWFileName, theObject->mRWDictionary);
  }
  // Stored through the type through which the facade reads it.
  qvConfigFile* theConfigFile = reinterpret_cast<qvConfigFile*>(theObject);
  theConfigFile->mBackend = aBackend;
  return theConfigFile;
}

static void qvConfigFile_INI_Delete(qvConfigFile* aConfigFile) {
  qvConfigFile_INI* theObject = qvConfigFile_INI_S_Object(aConfigFile);
  qvDictionary_Delete(theObject->mRODictionary);
  qvDictionary_Delete(theObject->mRWDictionary);
  qvFree(theObject->mROFileName);
  qvFree(theObject->mRWFileName);
  qvFree(theObject);
}

static void qvConfigFile_INI_Reset(qvConfigFile* aConfigFile) {
  qvConfigFile_INI* theObject = qvConfigFile_INI_S_Object(aConfigFile);
  if (theObject->mRWDictionary != NULL) {
    qvDictionary_Delete(theObject->mRWDictionary);
    theObject->mRWDictionary = qvDictionary_New(0);
  }
  // The caller gives up what is on disk.
  qvConfigFile_INI_S_PrivateObject(aConfigFile)->mfIsUnread = 0;
}

static int qvConfigFile_INI_Save(qvConfigFile* aConfigFile) {
  qvConfigFile_INI* theObject = qvConfigFile_INI_S_Object(aConfigFile);
  // Settings that could not be read must not be replaced by those that were set since.
  return theObject->mRWFileName != NULL && !qvConfigFile_INI_S_PrivateObject(aConfigFile)->mfIsUnread &&
         qvConfigFile_INI_S_SaveFile(theObject->mRWFileName, theObject->mRWDictionary);
}

static int qvConfigFile_INI_CreatePath(qvConfigFile* /*aConfigFile*/, const char* aPath) {
  return qvDir_CreatePath(aPath);
}

static int qvConfigFile_INI_WriteKeyAsString(qvConfigFile* aConfigFile, const char* aSection,
                                             const char* aKey, const char* aValue) {
  return qvINIFile_WriteKeyAsString(qvConfigFile_INI_S_RW(aConfigFile), aSection, aKey, aValue);
}

static int qvConfigFile_INI_WriteKeyAsUInt32(qvConfigFile* aConfigFile, const char* aSection,
                                             const char* aKey, uint32 aValue) {
  return qvINIFile_WriteKeyAsUInt32(qvConfigFile_INI_S_RW(aConfigFile), aSection, aKey, aValue);
}

static int qvConfigFile_INI_WriteKeyAsInt32(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                            int32 aValue) {
  return qvINIFile_WriteKeyAsInt32(qvConfigFile_INI_S_RW(aConfigFile), aSection, aKey, aValue);
}

// One reader of the INI store, such as qvINIFile_ReadKeyAsString.
template <typename T>
using qvConfigFile_INI_Reader = T (*)(qvDictionary*, const char*, const char*, T, int*);

// What the read-write layer has, else what the read-only layer has; *afFound tells whether either has the
// key.
//
// KEEP qvConfigFileKept.ReadingAKeyAddsItsSectionToTheReadWriteLayer
// The read-write layer is asked first, and the INI store adds a section that it is asked for. So the next
// save writes a header for every section that was read.
template <typename T>
static T qvConfigFile_INI_S_ReadLayered(qvConfigFile* aConfigFile, qvConfigFile_INI_Reader<T> aReader,
                                        const char* aSection, const char* aKey, T aDefaultValue,
                                        int* afFound) {
  qvConfigFile_INI* theObject = qvConfigFile_INI_S_Object(aConfigFile);
  if (theObject->mRWDictionary != NULL) {
    T theValue = aReader(theObject->mRWDictionary, aSection, aKey, aDefaultValue, afFound);
    if (*afFound) {
      return theValue;
    }
  }
  return aReader(theObject->mRODictionary, aSection, aKey, aDefaultValue, afFound);
}

static const char* qvConfigFile_INI_ReadKeyAsString(qvConfigFile* aConfigFile, const char* aSection,
                                                    const char* aKey, const char* aDefaultValue) {
  int theFound;
  return qvConfigFile_INI_S_ReadLayered<const char*>(aConfigFile, qvINIFile_ReadKeyAsString, aSection, aKey,
                                                     aDefaultValue, &theFound);
}

static uint32 qvConfigFile_INI_ReadKeyAsUInt32(qvConfigFile* aConfigFile, const char* aSection,
                                               const char* aKey, uint32 aDefaultValue) {
  int theFound;
  return qvConfigFile_INI_S_ReadLayered<uint32>(aConfigFile, qvINIFile_ReadKeyAsUInt32, aSection, aKey,
                                                aDefaultValue, &theFound);
}

static int32 qvConfigFile_INI_ReadKeyAsInt32(qvConfigFile* aConfigFile, const char* aSection,
                                             const char* aKey, int32 aDefaultValue) {
  int theFound;
  return qvConfigFile_INI_S_ReadLayered<int32>(aConfigFile, qvINIFile_ReadKeyAsInt32, aSection, aKey,
                                               aDefaultValue, &theFound);
}

static int qvConfigFile_INI_ReadKeyAsBool(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                          int aDefaultValue) {
  int theFound;
  // KEEP qvConfigFileKept.ValueThatIsNeitherYesNorNoReadsAsNo
  // The layers are read with the default 0, so the caller's default counts for a missing key only. Numbers
  // are different: there a value that cannot be read gives the caller's default.
  int theValue =
      qvConfigFile_INI_S_ReadLayered<int>(aConfigFile, qvINIFile_ReadKeyAsBool, aSection, aKey, 0, &theFound);
  return theFound ? theValue : aDefaultValue;
}

static size_t qvConfigFile_INI_GetSectionCount(qvConfigFile* aConfigFile, int afForReadOnlyFile) {
  qvDictionary* theLayer = qvConfigFile_INI_S_Layer(aConfigFile, afForReadOnlyFile);
  return theLayer != NULL ? qvINIFile_GetNumberOfSections(theLayer) : 0;
}

static const char* qvConfigFile_INI_GetSectionName(qvConfigFile* aConfigFile, size_t aSectionIndex,
                                                   int afForReadOnlyFile) {
  qvDictionary* theLayer = qvConfigFile_INI_S_Layer(aConfigFile, afForReadOnlyFile);
  return theLayer != NULL ? qvINIFile_GetSectionName(theLayer, aSectionIndex) : "";
}

static size_t qvConfigFile_INI_GetKeyCount(qvConfigFile* aConfigFile, const char* aSection,
                                           int afForReadOnlyFile) {
  qvDictionary* theLayer = qvConfigFile_INI_S_Layer(aConfigFile, afForReadOnlyFile);
  return theLayer != NULL ? qvINIFile_GetNumberOfKeys(theLayer, aSection) : 0;
}

static const char* qvConfigFile_INI_GetKeyName(qvConfigFile* aConfigFile, const char* aSection,
                                               size_t aKeyIndex, int afForReadOnlyFile) {
  qvDictionary* theLayer = qvConfigFile_INI_S_Layer(aConfigFile, afForReadOnlyFile);
  return theLayer != NULL ? qvINIFile_GetKeyName(theLayer, aSection, aKeyIndex) : "";
}

static int qvConfigFile_INI_DeleteSection(qvConfigFile* aConfigFile, const char* aSection) {
  return qvINIFile_DeleteSection(qvConfigFile_INI_S_RW(aConfigFile), aSection);
}

static int qvConfigFile_INI_DeleteKey(qvConfigFile* aConfigFile, const char* aSection, const char* aKey) {
  return qvINIFile_DeleteKey(qvConfigFile_INI_S_RW(aConfigFile), aSection, aKey);
}

static qvConfigFileBackend* qvConfigFile_INI_S_NewTable(void) {
  qvConfigFileBackend* theTable =
      static_cast<qvConfigFileBackend*>(qvMallocZeroed(sizeof(qvConfigFileBackend)));
  theTable->mNew = qvConfigFile_INI_New;
  theTable->mDelete = qvConfigFile_INI_Delete;
  theTable->mReset = qvConfigFile_INI_Reset;
  theTable->mSave = qvConfigFile_INI_Save;
  theTable->mCreatePath = qvConfigFile_INI_CreatePath;
  theTable->mWriteKeyAsString = qvConfigFile_INI_WriteKeyAsString;
  theTable->mWriteKeyAsUInt32 = qvConfigFile_INI_WriteKeyAsUInt32;
  theTable->mWriteKeyAsInt32 = qvConfigFile_INI_WriteKeyAsInt32;
  theTable->mReadKeyAsString = qvConfigFile_INI_ReadKeyAsString;
  theTable->mReadKeyAsUInt32 = qvConfigFile_INI_ReadKeyAsUInt32;
  theTable->mReadKeyAsInt32 = qvConfigFile_INI_ReadKeyAsInt32;
  theTable->mReadKeyAsBool = qvConfigFile_INI_ReadKeyAsBool;
  theTable->mGetSectionCount = qvConfigFile_INI_GetSectionCount;
  theTable->mGetSectionName = qvConfigFile_INI_GetSectionName;
  theTable->mGetKeyCount = qvConfigFile_INI_GetKeyCount;
  theTable->mGetKeyName = qvConfigFile_INI_GetKeyName;
  theTable->mDeleteSection = qvConfigFile_INI_DeleteSection;
  theTable->mDeleteKey = qvConfigFile_INI_DeleteKey;
  theTable->mReleaseBackend = qvConfigFile_INI_ReleaseBackend;
  return theTable;
}

// A fork waits until no thread is between taking and giving back the lock: nobody could give it back in the
// child.
static void qvConfigFile_INI_S_LockTable() { pthread_mutex_lock(&sTableLock); }
static void qvConfigFile_INI_S_UnlockTable() { pthread_mutex_unlock(&sTableLock); }

static void qvConfigFile_INI_S_InstallForkHandlers() {
  pthread_atfork(qvConfigFile_INI_S_LockTable, qvConfigFile_INI_S_UnlockTable,
                 qvConfigFile_INI_S_UnlockTable);
}

void qvConfigFile_INI_S_WatchForks(void) {
  static pthread_once_t sOnce = PTHREAD_ONCE_INIT;
  pthread_once(&sOnce, qvConfigFile_INI_S_InstallForkHandlers);
}

// Takes the lock of the table; gives a new table when none is ready, which the caller uses or frees. It is
// made without the lock: if there is no memory for it, that is logged, and the logger's settings come from
// the table.
static qvConfigFileBackend* qvConfigFile_INI_S_LockWithSpare(void) {
  qvConfigFileBackend* theSpare = NULL;
  qvConfigFile_INI_S_LockTable();
  while (theSpare == NULL && !__atomic_load_n(&sfReady, __ATOMIC_SEQ_CST)) {
    qvConfigFile_INI_S_UnlockTable();
    theSpare = qvConfigFile_INI_S_NewTable();
    qvConfigFile_INI_S_LockTable();
  }
  return theSpare;
}

qvConfigFileBackend* qvConfigFile_INI_GetBackend(void) {
  qvConfigFile_INI_S_WatchForks();
  qvConfigFileBackend* theSpare = qvConfigFile_INI_S_LockWithSpare();
  int theBuilt = 0;
  while (!__atomic_load_n(&sfReady, __ATOMIC_SEQ_CST)) {
    if (__atomic_add_fetch(&sReferenceCount, 1, __ATOMIC_SEQ_CST) == 1) {
      sqvConfigFileINIBackend = theSpare;
      theSpare = NULL;
      __atomic_store_n(&sfReady, 1, __ATOMIC_SEQ_CST);
      theBuilt = 1;
    }
  }
  if (!theBuilt) {
    __atomic_add_fetch(&sReferenceCount, 1, __ATOMIC_SEQ_CST);
  }
  qvConfigFileBackend* theBackend = sqvConfigFileINIBackend;
  qvConfigFile_INI_S_UnlockTable();
  qvFree(theSpare);  // another thread was quicker
  return theBackend;
}

void qvConfigFile_INI_ReleaseBackend(qvConfigFileBackend* aConfigFilebackend) {
  qvConfigFile_INI_S_LockTable();
  if (__atomic_sub_fetch(&sReferenceCount, 1, __ATOMIC_SEQ_CST) == 0 &&
      __atomic_load_n(&sfReady, __ATOMIC_SEQ_CST)) {
    if (aConfigFilebackend != sqvConfigFileINIBackend) {
      // A failing assertion logs, and the logger's settings come from this table.
      qvConfigFile_INI_S_UnlockTable();
    }
    qvAssert(aConfigFilebackend == sqvConfigFileINIBackend);
    __atomic_store_n(&sfReady, 0, __ATOMIC_SEQ_CST);
    sqvConfigFileINIBackend = NULL;
    qvFree(aConfigFilebackend);
  }
  qvConfigFile_INI_S_UnlockTable();
}
