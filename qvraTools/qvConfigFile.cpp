#include "qvraTools/qvConfigFile.h"

#include "qvraTools/qvConfigFileINIBackend.h"

#define kqvConfigFile_VariableMark '%'
#define kqvConfigFile_NoNumber     2147483647 /* no result of a narrow reader, so it stands for "missing" */
#define kqvConfigFile_UInt16Bound  65536
#define kqvConfigFile_UInt8Bound   256

// The single place where another back-end would be chosen.
static qvConfigFileBackend* GetBackend(void) { return qvConfigFile_INI_GetBackend(); }

qvConfigFile* qvConfigFile_New(const char* aReadOnlyFileName, const char* aReadWriteFileName,
                               const char* aFileName) {
  qvConfigFileBackend* theBackend = GetBackend();
  if (theBackend == NULL) {
    return NULL;
  }
  qvConfigFile* theConfigFile =
      theBackend->mNew(theBackend, aReadOnlyFileName, aReadWriteFileName, aFileName);
  if (theConfigFile == NULL) {
    theBackend->mReleaseBackend(theBackend);
  }
  return theConfigFile;
}

void qvConfigFile_Delete(qvConfigFile* aConfigFile) {
  if (aConfigFile != NULL) {
    qvConfigFileBackend* theBackend = aConfigFile->mBackend;
    theBackend->mDelete(aConfigFile);
    theBackend->mReleaseBackend(theBackend);
  }
}

void qvConfigFile_Reset(qvConfigFile* aConfigFile) {
  if (aConfigFile != NULL) {
    aConfigFile->mBackend->mReset(aConfigFile);
  }
}

int qvConfigFile_Save(qvConfigFile* aConfigFile) {
  return aConfigFile != NULL ? aConfigFile->mBackend->mSave(aConfigFile) : 0;
}

int qvConfigFile_CreatePaths(qvConfigFile* aConfigFile, const char* aReadOnlyPath,
                             const char* aReadWritePath) {
  if (!aConfigFile->mBackend->mCreatePath(aConfigFile, aReadOnlyPath)) {
    return 0;
  }
  return aConfigFile->mBackend->mCreatePath(aConfigFile, aReadWritePath);
}

int qvConfigFile_OptionIsSet(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                             int aDefaultValue) {
  return aConfigFile != NULL
             ? aConfigFile->mBackend->mReadKeyAsBool(aConfigFile, aSection, aKey, aDefaultValue)
             : aDefaultValue;
}

int32 qvConfigFile_GetInt32(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                            int32 aDefaultValue) {
  return aConfigFile != NULL
             ? aConfigFile->mBackend->mReadKeyAsInt32(aConfigFile, aSection, aKey, aDefaultValue)
             : aDefaultValue;
}

uint32 qvConfigFile_GetUInt32(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                              uint32 aDefaultValue) {
  return aConfigFile != NULL
             ? aConfigFile->mBackend->mReadKeyAsUInt32(aConfigFile, aSection, aKey, aDefaultValue)
             : aDefaultValue;
}

// The key's number when it lies in 0 to aBound - 1, else the default.
static int32 qvConfigFile_S_GetBelow(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                     int32 aBound, int32 aDefaultValue) {
  int32 theValue = qvConfigFile_GetInt32(aConfigFile, aSection, aKey, kqvConfigFile_NoNumber);
  return theValue >= 0 && theValue < aBound ? theValue : aDefaultValue;
}

uint16 qvConfigFile_GetUInt16(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                              uint16 aDefaultValue) {
  return static_cast<uint16>(
      qvConfigFile_S_GetBelow(aConfigFile, aSection, aKey, kqvConfigFile_UInt16Bound, aDefaultValue));
}

uint8 qvConfigFile_GetUInt8(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                            uint8 aDefaultValue) {
  return static_cast<uint8>(
      qvConfigFile_S_GetBelow(aConfigFile, aSection, aKey, kqvConfigFile_UInt8Bound, aDefaultValue));
}

const char* qvConfigFile_GetString(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                                   const char* aDefaultValue) {
  return aConfigFile != NULL
             ? aConfigFile->mBackend->mReadKeyAsString(aConfigFile, aSection, aKey, aDefaultValue)
             : aDefaultValue;
}

char* qvConfigFile_GetStringWithSubstitution(qvConfigFile* aConfigFile, const char* aSection,
                                             const char* aKey, const char* aDefaultValue,
                                             qvGetReplacementStrFunc aReplacementStrFunc) {
  return qvStringSubstitution_Substitute(qvConfigFile_GetString(aConfigFile, aSection, aKey, aDefaultValue),
                                         kqvConfigFile_VariableMark, 0, aReplacementStrFunc, NULL);
}

int qvConfigFile_SetInt32(qvConfigFile* aConfigFile, const char* aSection, const char* aKey, int32 aValue) {
  return aConfigFile != NULL ? aConfigFile->mBackend->mWriteKeyAsInt32(aConfigFile, aSection, aKey, aValue)
                             : 0;
}

int qvConfigFile_SetUInt32(qvConfigFile* aConfigFile, const char* aSection, const char* aKey, uint32 aValue) {
  return aConfigFile != NULL ? aConfigFile->mBackend->mWriteKeyAsUInt32(aConfigFile, aSection, aKey, aValue)
                             : 0;
}

int qvConfigFile_SetString(qvConfigFile* aConfigFile, const char* aSection, const char* aKey,
                           const char* aValue) {
  return aConfigFile != NULL ? aConfigFile->mBackend->mWriteKeyAsString(aConfigFile, aSection, aKey, aValue)
                             : 0;
}

size_t qvConfigFile_GetSectionCount(qvConfigFile* aConfigFile, int afForReadOnlyFile) {
  return aConfigFile != NULL ? aConfigFile->mBackend->mGetSectionCount(aConfigFile, afForReadOnlyFile) : 0;
}

const char* qvConfigFile_GetSectionName(qvConfigFile* aConfigFile, size_t aSectionIndex,
                                        int afForReadOnlyFile) {
  return aConfigFile != NULL
             ? aConfigFile->mBackend->mGetSectionName(aConfigFile, aSectionIndex, afForReadOnlyFile)
             : "";
}

size_t qvConfigFile_GetKeyCount(qvConfigFile* aConfigFile, const char* aSection, int afForReadOnlyFile) {
  return aConfigFile != NULL ? aConfigFile->mBackend->mGetKeyCount(aConfigFile, aSection, afForReadOnlyFile)
                             : 0;
}

const char* qvConfigFile_GetKeyName(qvConfigFile* aConfigFile, const char* aSection, size_t aKeyIndex,
                                    int afForReadOnlyFile) {
  return aConfigFile != NULL
             ? aConfigFile->mBackend->mGetKeyName(aConfigFile, aSection, aKeyIndex, afForReadOnlyFile)
             : "";
}

int qvConfigFile_DeleteSection(qvConfigFile* aConfigFile, const char* aSection) {
  return aConfigFile != NULL ? aConfigFile->mBackend->mDeleteSection(aConfigFile, aSection) : 0;
}

int qvConfigFile_DeleteKey(qvConfigFile* aConfigFile, const char* aSection, const char* aKey) {
  return aConfigFile != NULL ? aConfigFile->mBackend->mDeleteKey(aConfigFile, aSection, aKey) : 0;
}
