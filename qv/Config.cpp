#include "qv/Config.h"

#include <stdint.h>

#define kqvConfig_CurrentFolder "./"
#define kqvConfig_NoNumber      2147483647 /* no result of a narrow reader, so it stands for "missing" */

qvConfig::qvConfig(const qvCString& aReadPath, const qvCString& aWritePath, const qvCString& aFileName)
    : mConfigFile(NULL) {
  qvCString theReadName = GetValidPath(aReadPath, aFileName, "");
  qvCString theWriteName;
  if (!aWritePath.IsEmpty()) {
    // The underscore keeps a device's changes apart from the defaults when both directories are the same.
    theWriteName = GetValidPath(aWritePath, aFileName, "_");
  }
  mConfigFile = qvConfigFile_New(theReadName.c_str(), theWriteName.IsEmpty() ? NULL : theWriteName.c_str(),
                                 aFileName.c_str());
}

qvConfig::qvConfig() : mConfigFile(NULL) {}

qvConfig::~qvConfig() { qvConfigFile_Delete(mConfigFile); }

bool qvConfig::OptionIsSet(const char* aSection, const char* aKey, bool afDefaultValue) const {
  return qvConfigFile_OptionIsSet(mConfigFile, aSection, aKey, afDefaultValue) != 0;
}

qvCString qvConfig::GetCString(const char* aSection, const char* aKey, const qvCString& aDefaultValue) const {
  const char* theValue = qvConfigFile_GetString(mConfigFile, aSection, aKey, NULL);
  // The default is copied by its length, as it may hold zero bytes.
  return theValue != NULL ? qvCString(theValue) : qvCString(aDefaultValue.c_str(), aDefaultValue.length());
}

qvCString qvConfig::GetCStringWithSubstitution(const char* aSection, const char* aKey,
                                               const qvCString& aDefaultValue,
                                               qvGetReplacementStrFunc aReplacementStrFunc) const {
  return qvCString::FromAllocatedString(qvConfigFile_GetStringWithSubstitution(
      mConfigFile, aSection, aKey, aDefaultValue.c_str(), aReplacementStrFunc));
}

int32 qvConfig::GetInt32(const char* aSection, const char* aKey, int32 aDefaultValue) const {
  return qvConfigFile_GetInt32(mConfigFile, aSection, aKey, aDefaultValue);
}

uint32 qvConfig::GetUInt32(const char* aSection, const char* aKey, uint32 aDefaultValue) const {
  return qvConfigFile_GetUInt32(mConfigFile, aSection, aKey, aDefaultValue);
}

int16 qvConfig::GetInt16(const char* aSection, const char* aKey, int16 aDefaultValue) const {
  int32 theValue = GetInt32(aSection, aKey, kqvConfig_NoNumber);
  return theValue >= INT16_MIN && theValue <= INT16_MAX ? static_cast<int16>(theValue) : aDefaultValue;
}

int8 qvConfig::GetInt8(const char* aSection, const char* aKey, int8 aDefaultValue) const {
  int32 theValue = GetInt32(aSection, aKey, kqvConfig_NoNumber);
  return theValue >= INT8_MIN && theValue <= INT8_MAX ? static_cast<int8>(theValue) : aDefaultValue;
}

uint16 qvConfig::GetUInt16(const char* aSection, const char* aKey, uint32 aDefaultValue) const {
  return qvConfigFile_GetUInt16(mConfigFile, aSection, aKey, static_cast<uint16>(aDefaultValue));
}

uint8 qvConfig::GetUInt8(const char* aSection, const char* aKey, uint32 aDefaultValue) const {
  return qvConfigFile_GetUInt8(mConfigFile, aSection, aKey, static_cast<uint8>(aDefaultValue));
}

bool qvConfig::SetString(const char* aSection, const char* aKey, const qvCString& aValue) {
  return qvConfigFile_SetString(mConfigFile, aSection, aKey, aValue.c_str()) != 0;
}

bool qvConfig::SetStringIfNotEmpty(const char* aSection, const char* aKey, const qvCString& aValue) {
  return aValue.IsEmpty() ? DeleteKey(aSection, aKey) : SetString(aSection, aKey, aValue);
}

bool qvConfig::SetInt32(const char* aSection, const char* aKey, int32 aValue) {
  return qvConfigFile_SetInt32(mConfigFile, aSection, aKey, aValue) != 0;
}

bool qvConfig::SetUInt32(const char* aSection, const char* aKey, uint32 aValue) {
  return qvConfigFile_SetUInt32(mConfigFile, aSection, aKey, aValue) != 0;
}

bool qvConfig::Save() { return qvConfigFile_Save(mConfigFile) != 0; }

size_t qvConfig::GetSectionCount(bool afForReadOnlyFile) const {
  return qvConfigFile_GetSectionCount(mConfigFile, afForReadOnlyFile);
}

qvCString qvConfig::GetSectionName(size_t aSectionIndex, bool afForReadOnlyFile) const {
  return qvCString(qvConfigFile_GetSectionName(mConfigFile, aSectionIndex, afForReadOnlyFile));
}

size_t qvConfig::GetKeyCount(const char* aSection, bool afForReadOnlyFile) const {
  return qvConfigFile_GetKeyCount(mConfigFile, aSection, afForReadOnlyFile);
}

qvCString qvConfig::GetKeyNameCString(const char* aSection, size_t aKeyIndex, bool afForReadOnlyFile) const {
  return qvCString(qvConfigFile_GetKeyName(mConfigFile, aSection, aKeyIndex, afForReadOnlyFile));
}

bool qvConfig::DeleteSection(const char* aSection) {
  return qvConfigFile_DeleteSection(mConfigFile, aSection) != 0;
}

bool qvConfig::DeleteKey(const char* aSection, const char* aKey) {
  return qvConfigFile_DeleteKey(mConfigFile, aSection, aKey) != 0;
}

void qvConfig::Reset() { qvConfigFile_Reset(mConfigFile); }

qvCString qvConfig::GetValidPath(const qvCString& aDirectory, const qvCString& aFileName,
                                 const char* aPrefix) const {
  qvCString thePath = aDirectory.IsEmpty() ? qvCString(kqvConfig_CurrentFolder) : aDirectory;
  thePath.Replace("\\", "/", true);
  qvCString theFileName = aFileName;
  theFileName.Replace("\\", "/", true);
  if (thePath.Last() != '/') {
    thePath += '/';
  }
  thePath += aPrefix;
  thePath += theFileName.AfterLast('/');
  return thePath;
}

qvCString qvConfig::GetNonEmptyPath(const char* aSection, const char* aKey) const {
  qvCString thePath = GetCString(aSection, aKey, qvCString(kqvConfig_CurrentFolder));
  return thePath.IsEmpty() ? qvCString(kqvConfig_CurrentFolder) : thePath;
}

bool qvConfig::FetchConfigPaths(const char* aSection, const char* aReadKey, const char* aWriteKey,
                                qvCString& aReadPath, qvCString& aWritePath, bool afCreate) const {
  aReadPath = GetNonEmptyPath(aSection, aReadKey);
  aWritePath = GetNonEmptyPath(aSection, aWriteKey);
  if (!afCreate) {
    return true;
  }
  return mConfigFile != NULL &&
         qvConfigFile_CreatePaths(mConfigFile, aReadPath.c_str(), aWritePath.c_str()) != 0;
}
