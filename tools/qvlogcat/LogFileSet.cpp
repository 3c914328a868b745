#include "tools/qvlogcat/LogFileSet.h"

#include <errno.h>
#include <fcntl.h>
#include <unistd.h>

#include "tools/logstream/LogFileNames.h"

static const char kCollector[] = "qvlogd";  // what %n stands for in its patterns
static const int kOpenAttempts = 5;         // while the files are being renamed

static LogFileEntry LogFileSet_S_Make(const std::string& aPath, const struct stat& aStat) {
  LogFileEntry theFile;
  theFile.mPath = aPath;
  theFile.mDevice = aStat.st_dev;
  theFile.mNumber = aStat.st_ino;
  theFile.mSize = static_cast<uint64>(aStat.st_size);
  theFile.mModified = static_cast<int64>(aStat.st_mtim.tv_sec) * 1000000000 + aStat.st_mtim.tv_nsec;
  theFile.mfRegular = S_ISREG(aStat.st_mode);
  return theFile;
}

LogFileSet::LogFileSet(const std::string& aPath) : mPath(aPath) {
  size_t theSlash = aPath.rfind('/');
  mName = aPath.substr(theSlash + 1);  // npos + 1 is 0
  mFolder = theSlash == std::string::npos ? "." : theSlash == 0 ? "/" : aPath.substr(0, theSlash);
}

std::vector<LogFileEntry> LogFileSet::Scan() const {
  std::vector<LogFileEntry> theFiles;
  struct stat theStat;
  for (const LogFileName& theName : LogFileNames_List(mFolder, mName, kCollector)) {
    if (stat(theName.mPath.c_str(), &theStat) != 0) {
      continue;
    }
    LogFileEntry theFile = LogFileSet_S_Make(theName.mPath, theStat);
    // Renamed between two looks, a file shows up under both names.
    if (theFiles.empty() || !theFiles.back().Is(theFile)) {
      theFiles.push_back(theFile);
    }
  }
  // A link, a device or a pipe has no rotated files, and its name is taken as it stands.
  if (stat(mPath.c_str(), &theStat) == 0) {
    LogFileEntry theFile = LogFileSet_S_Make(mPath, theStat);
    if (theFiles.empty() || !theFiles.back().Is(theFile)) {
      theFiles.push_back(theFile);
    }
  }
  return theFiles;
}

int LogFileSet::Open(const LogFileEntry& aFile) const {
  std::string thePath = aFile.mPath;
  for (int i = 0; i < kOpenAttempts; ++i) {
    int theDescriptor = open(thePath.c_str(), O_RDONLY | O_CLOEXEC);
    if (theDescriptor >= 0 && Describe(theDescriptor).Is(aFile)) {
      return theDescriptor;
    }
    if (theDescriptor >= 0) {
      close(theDescriptor);
    } else if (errno != ENOENT) {
      return -1;
    }
    for (const LogFileEntry& theFile : Scan()) {
      if (theFile.Is(aFile)) {
        thePath = theFile.mPath;
      }
    }
  }
  errno = ENOENT;
  return -1;
}

LogFileEntry LogFileSet::Describe(int aDescriptor) {
  struct stat theStat = {};
  fstat(aDescriptor, &theStat);
  return LogFileSet_S_Make("", theStat);
}
