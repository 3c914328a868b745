#include "interposed/PlannedCalls.h"

#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdio.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <set>

namespace {

CallPlan sPlan;
bool sfActive = false;

// Notes a call. True when it is to fail; errno says how.
bool FailsHere(const char* aName) {
  if (!sfActive) {
    return false;
  }
  size_t theIndex = sPlan.mCalls.size();
  if (theIndex == sPlan.mKillBefore) {
    kill(getpid(), SIGKILL);
  }
  sPlan.mCalls.push_back(aName);
  if (theIndex < sPlan.mFailFrom || theIndex - sPlan.mFailFrom >= sPlan.mFailCount ||
      (!sPlan.mFailName.empty() && sPlan.mFailName != aName)) {
    return false;
  }
  errno = sPlan.mErrno;
  return true;
}

std::map<int, std::string> sOpenNames;  // of files opened for writing
std::set<int> sOpenFolders;

std::string BaseName(const std::string& aPath) { return aPath.substr(aPath.rfind('/') + 1); }

void Note(DiskOperation::Kind aKind, const std::string& aName, const std::string& aNewName = "",
          const std::string& aBytes = "") {
  if (sfActive) {
    sPlan.mOperations.push_back({aKind, aName, aNewName, aBytes});
  }
}

void NoteOpen(int aFD, const char* aPath, int aFlags) {
  sOpenNames.erase(aFD);
  sOpenFolders.erase(aFD);
  if ((aFlags & O_DIRECTORY) != 0) {
    sOpenFolders.insert(aFD);
  } else if ((aFlags & O_ACCMODE) != O_RDONLY) {
    sOpenNames[aFD] = BaseName(aPath);
    Note(DiskOperation::Kind::kCreate, BaseName(aPath));
  }
}

bool LookFailsHere(const char* aName) { return sPlan.mfLooksCount && FailsHere(aName); }

}  // namespace

std::string CallPlan::Calls() const {
  std::string theText;
  for (const std::string& theName : mCalls) {
    theText += (theText.empty() ? "" : " ") + theName;
  }
  return theText;
}

CallPlan RunPlanned(const CallPlan& aPlan, const std::function<void()>& aBody) {
  sPlan = aPlan;
  sfActive = true;
  aBody();
  sfActive = false;
  return sPlan;
}

void StopPlannedCalls() { sfActive = false; }

// Large files give some functions another name in the object file, through their declarations: here as in the
// library.

int open(const char* aPath, int aFlags, ...) {
  va_list theArguments;
  va_start(theArguments, aFlags);
  mode_t theMode = (aFlags & O_CREAT) != 0 ? va_arg(theArguments, mode_t) : 0;
  va_end(theArguments);
  if (FailsHere("open")) {
    return -1;
  }
  int theFD = static_cast<int>(syscall(SYS_openat, AT_FDCWD, aPath, aFlags | O_LARGEFILE, theMode));
  if (sfActive && theFD >= 0) {
    NoteOpen(theFD, aPath, aFlags);
  }
  return theFD;
}

ssize_t read(int aFD, void* aBytes, size_t aCount) {
  if (LookFailsHere("read")) {
    return -1;
  }
  return syscall(SYS_read, aFD, aBytes, sfActive ? std::min(aCount, sPlan.mLargestRead) : aCount);
}

ssize_t write(int aFD, const void* aBytes, size_t aCount) {
  if (FailsHere("write")) {
    return -1;
  }
  ssize_t theCount =
      syscall(SYS_write, aFD, aBytes, sfActive ? std::min(aCount, sPlan.mLargestWrite) : aCount);
  if (sfActive && theCount > 0 && sOpenNames.count(aFD) != 0) {
    Note(DiskOperation::Kind::kWrite, sOpenNames[aFD], "",
         std::string(static_cast<const char*>(aBytes), static_cast<size_t>(theCount)));
  }
  return theCount;
}

int fsync(int aFD) {
  int theResult = FailsHere("fsync") ? -1 : static_cast<int>(syscall(SYS_fsync, aFD));
  if (sfActive && theResult == 0) {
    sOpenFolders.count(aFD) != 0 ? Note(DiskOperation::Kind::kSyncFolder, "")
                                 : Note(DiskOperation::Kind::kSyncFile, sOpenNames[aFD]);
  }
  return theResult;
}

int close(int aFD) {
  bool theFails = FailsHere("close");
  int theErrno = errno;
  int theResult = static_cast<int>(syscall(SYS_close, aFD));
  if (theFails) {
    errno = theErrno;
  }
  return theFails ? -1 : theResult;  // a failing close closes all the same, also when it is interrupted
}

int flock(int aFD, int anOperation) noexcept {
  return FailsHere("flock") ? -1 : static_cast<int>(syscall(SYS_flock, aFD, anOperation));
}

int rename(const char* anOldPath, const char* aNewPath) noexcept {
  if (FailsHere("rename")) {
    return -1;
  }
  int theResult = static_cast<int>(syscall(SYS_renameat, AT_FDCWD, anOldPath, AT_FDCWD, aNewPath));
  if (theResult == 0) {
    Note(DiskOperation::Kind::kRename, BaseName(anOldPath), BaseName(aNewPath));
  }
  return theResult;
}

int unlink(const char* aPath) noexcept {
  int theResult = FailsHere("unlink") ? -1 : static_cast<int>(syscall(SYS_unlinkat, AT_FDCWD, aPath, 0));
  if (theResult == 0) {
    Note(DiskOperation::Kind::kUnlink, BaseName(aPath));
  }
  return theResult;
}

int stat(const char* aPath, struct stat* aStat) noexcept {
  return LookFailsHere("stat") ? -1 : fstatat(AT_FDCWD, aPath, aStat, 0);
}

int nanosleep(const struct timespec* aTime, struct timespec* aRest) {
  if (sfActive) {
    ++sPlan.mPauseCount;
    return 0;
  }
  return static_cast<int>(syscall(SYS_nanosleep, aTime, aRest));
}
