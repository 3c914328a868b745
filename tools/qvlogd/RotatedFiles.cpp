#include "tools/qvlogd/RotatedFiles.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

static std::string RotatedFiles_S_FolderOf(const std::string& aPath) {
  size_t theSlash = aPath.rfind('/');
  if (theSlash == std::string::npos) {
    return ".";
  }
  return theSlash == 0 ? "/" : aPath.substr(0, theSlash);
}

// npos + 1 is 0: a text without '/' is a name as a whole.
static std::string RotatedFiles_S_NameOf(const std::string& aPath) {
  return aPath.substr(aPath.rfind('/') + 1);
}

void RotatedFiles::Scan(const std::string& aCurrent, const std::string& aPattern, const char* aProcess) {
  mFiles.clear();
  mBytes = 0;
  std::string theCurrent = RotatedFiles_S_NameOf(aCurrent);
  for (const LogFileName& theFile :
       LogFileNames_List(RotatedFiles_S_FolderOf(aCurrent), RotatedFiles_S_NameOf(aPattern), aProcess)) {
    if (RotatedFiles_S_NameOf(theFile.mPath) != theCurrent) {
      mFiles.push_back(theFile);
      mBytes += theFile.mSize;
    }
  }
}

bool RotatedFiles::DropOldest() {
  while (!mFiles.empty()) {
    LogFileName theFile = mFiles.front();
    mFiles.pop_front();
    mBytes -= theFile.mSize;
    if (unlink(theFile.mPath.c_str()) == 0 || errno == ENOENT) {
      return true;
    }
  }
  return false;
}

// Never replaces a file, where the file system can promise that.
static bool RotatedFiles_S_Rename(const std::string& aFrom, const std::string& aTo) {
  if (renameat2(AT_FDCWD, aFrom.c_str(), AT_FDCWD, aTo.c_str(), RENAME_NOREPLACE) == 0) {
    return true;
  }
  if (errno != EINVAL && errno != ENOSYS) {
    return false;
  }
  return access(aTo.c_str(), F_OK) != 0 && rename(aFrom.c_str(), aTo.c_str()) == 0;
}

bool RotatedFiles::Shift(const std::string& aCurrent) {
  auto theName = [&](unsigned int aNumber) {
    return aNumber == 0 ? aCurrent : aCurrent + "." + std::to_string(aNumber);
  };
  unsigned int theFree = 1;
  while (access(theName(theFree).c_str(), F_OK) == 0) {
    ++theFree;
  }
  for (; theFree > 0; --theFree) {
    if (!RotatedFiles_S_Rename(theName(theFree - 1), theName(theFree))) {
      return false;
    }
  }
  return true;
}
