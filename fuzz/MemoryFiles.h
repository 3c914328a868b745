// MemoryFiles.h - files in memory in the place of the disk's, so that an input costs no system call.
//
// For targets that are linked with the functions of qvFile, qvDir, qvDirLock and with fopen wrapped. No other
// files exist then, and what is written stays until the next Clear.
#ifndef FUZZ_MEMORYFILES_H
#define FUZZ_MEMORYFILES_H

#include <stdio.h>

#include <string>

void MemoryFiles_Clear();
void MemoryFiles_Set(const std::string& aPath, const std::string& aContent);
// The content, or null when there is no such file.
const std::string* MemoryFiles_Get(const std::string& aPath);

// The next fopen gives this stream; what it was asked for. The one after it opens a file of the disk.
void MemoryFiles_GiveStream(FILE* aStream);
void MemoryFiles_DropStream();  // one that nobody has opened
const std::string& MemoryFiles_OpenedPath();
const std::string& MemoryFiles_OpenedMode();

#endif
