#include "MemoryFiles.h"

#include <stdio.h>
#include <string.h>

#include <map>
#include <vector>

#include "qvOS/qvDirLock_p.h"
#include "qvOS/qvFile.h"

namespace {

struct OpenFile {
  std::string* mContent;  // null: the descriptor is free
  size_t mPosition;
};

// Never destroyed: the framework of the loggers reads its settings once more when the process ends.
std::map<std::string, std::string>& sFiles = *new std::map<std::string, std::string>;
std::vector<OpenFile>& sOpenFiles = *new std::vector<OpenFile>;  // by descriptor

FILE* sStream = nullptr;  // what the next fopen gives
std::string& sOpenedPath = *new std::string;
std::string& sOpenedMode = *new std::string;

int Open(const char* aPath, qvFileOpenMode aMode, qvFileFD* aFD) {
  auto theFile = sFiles.find(aPath);
  if (theFile == sFiles.end()) {
    if ((aMode & qvFileOpenMode_Create) == 0) {
      return kqvFileErrorNotFound;
    }
    theFile = sFiles.emplace(aPath, "").first;
  }
  if ((aMode & qvFileOpenMode_Truncate) != 0) {
    theFile->second.clear();
  }
  size_t theFD = 0;
  while (theFD < sOpenFiles.size() && sOpenFiles[theFD].mContent != nullptr) {
    ++theFD;
  }
  sOpenFiles.resize(theFD < sOpenFiles.size() ? sOpenFiles.size() : theFD + 1);
  sOpenFiles[theFD] = {&theFile->second, 0};
  *aFD = static_cast<qvFileFD>(theFD);
  return 0;
}

OpenFile& FileOf(qvFileFD aFD) { return sOpenFiles[static_cast<size_t>(aFD)]; }

}  // namespace

void MemoryFiles_Clear() { sFiles.clear(); }

void MemoryFiles_Set(const std::string& aPath, const std::string& aContent) { sFiles[aPath] = aContent; }

const std::string* MemoryFiles_Get(const std::string& aPath) {
  auto theFile = sFiles.find(aPath);
  return theFile != sFiles.end() ? &theFile->second : nullptr;
}

void MemoryFiles_GiveStream(FILE* aStream) {
  sStream = aStream;
  sOpenedPath.clear();
  sOpenedMode.clear();
}

void MemoryFiles_DropStream() {
  if (sStream != nullptr) {
    fclose(sStream);
    sStream = nullptr;
  }
}

const std::string& MemoryFiles_OpenedPath() { return sOpenedPath; }

const std::string& MemoryFiles_OpenedMode() { return sOpenedMode; }

// In the place of the library's functions, as far as text that is read or written needs them.
extern "C" {

int __wrap_qvFile_Open(const char* aPath, qvFileOpenMode aMode, int, qvFileFD* aFD) {
  return Open(aPath, aMode, aFD);
}

int __wrap_qvFile_S_OpenUninterrupted(const char* aPath, qvFileOpenMode aMode, qvFileFD* aFD) {
  return Open(aPath, aMode, aFD);
}

int __wrap_qvFile_Close(qvFileFD aFD) {
  FileOf(aFD).mContent = nullptr;
  return 0;
}

int64 __wrap_qvFile_Read(qvFileFD aFD, void* aBuffer, uint32 aCount) {
  OpenFile& theFile = FileOf(aFD);
  if (theFile.mPosition >= theFile.mContent->size()) {
    return 0;
  }
  size_t theCount = theFile.mContent->copy(static_cast<char*>(aBuffer), aCount, theFile.mPosition);
  theFile.mPosition += theCount;
  return static_cast<int64>(theCount);
}

int64 __wrap_qvFile_Write(qvFileFD aFD, const void* aBuffer, uint32 aCount) {
  OpenFile& theFile = FileOf(aFD);
  theFile.mContent->append(static_cast<const char*>(aBuffer), aCount);
  return aCount;
}

int __wrap_qvFile_Flush(qvFileFD) { return 0; }

int __wrap_qvFile_Seek(qvFileFD aFD, qvFileOffset anOffset, qvFileSeekMode) {
  FileOf(aFD).mPosition = static_cast<size_t>(anOffset);
  return 0;
}

int __wrap_qvFile_GetSize(qvFileFD aFD, qvFileOffset* aSize) {
  *aSize = static_cast<qvFileOffset>(FileOf(aFD).mContent->size());
  return 0;
}

int __wrap_qvFile_GetTimes(const char* aPath, qvtimeval*, qvtimeval*, qvtimeval*) {
  return MemoryFiles_Get(aPath) != nullptr ? 0 : kqvFileErrorNotFound;
}

int __wrap_qvFile_Exists(const char* aPath) { return MemoryFiles_Get(aPath) != nullptr; }

int __wrap_qvFile_Remove(const char* aPath) {
  sFiles.erase(aPath);
  return 0;
}

int __wrap_qvFile_Rename(const char* anOldPath, const char* aNewPath) {
  auto theFile = sFiles.find(anOldPath);
  if (theFile == sFiles.end()) {
    return kqvFileErrorNotFound;
  }
  std::string theContent = theFile->second;
  sFiles.erase(theFile);
  sFiles[aNewPath] = theContent;
  return 0;
}

int __wrap_qvDir_Exists(const char*) { return 0; }
int __wrap_qvDir_CreatePath(const char*) { return 1; }
qvDirLock __wrap_qvDirLock_AcquireForFile(const char*, uint32) { return kqvDirLockNone; }
int __wrap_qvDirLock_SyncDirectory(qvDirLock) { return 1; }
void __wrap_qvDirLock_Release(qvDirLock) {}

FILE* __real_fopen64(const char* aPath, const char* aMode);

FILE* __wrap_fopen64(const char* aPath, const char* aMode) {
  if (sStream == nullptr) {
    return __real_fopen64(aPath, aMode);  // the fuzzer keeps its inputs in files
  }
  sOpenedPath = aPath;
  sOpenedMode = aMode;
  FILE* theStream = sStream;
  sStream = nullptr;
  return theStream;
}

}  // extern "C"
