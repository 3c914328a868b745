#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/file.h>
#include <unistd.h>

#include "qvOS/qvDirLock_p.h"
#include "qvOS/qvPath.h"
#include "qvraTools/qvMalloc.h"

qvDirLock qvDirLock_AcquireForFile(const char* aFilePath) {
  char* thePath = qvPath_Normalize(aFilePath, 0, kqvPathNormalizeMode_Native, NULL);
  char* theLastSlash = thePath != NULL ? strrchr(thePath, '/') : NULL;
  qvDirLock theLock = kqvDirLockNone;
  if (theLastSlash != NULL) {
    theLastSlash[1] = '\0';
    theLock = open(thePath, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  }
  qvFree(thePath);
  if (theLock != kqvDirLockNone) {
    // A file system without locks gives an error, which is as good as the lock: there is nothing better.
    while (flock(theLock, LOCK_EX) != 0 && errno == EINTR) {
    }
  }
  return theLock;
}

void qvDirLock_SyncDirectory(qvDirLock aLock) {
  if (aLock != kqvDirLockNone) {
    // A file system that cannot do this reports an error; its names are as durable as they get.
    (void)fsync(aLock);
  }
}

void qvDirLock_Release(qvDirLock aLock) {
  if (aLock != kqvDirLockNone) {
    // Unlocked by name, since a child process forked meanwhile holds the directory open as well.
    flock(aLock, LOCK_UN);
    close(aLock);
  }
}
