#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <sys/file.h>
#include <time.h>
#include <unistd.h>

#include "qvOS/qvDirLock_p.h"
#include "qvOS/qvPath.h"
#include "qvraTools/qvMalloc.h"

#define kqvDirLock_Pause 5 /* milliseconds between two looks at a lock that somebody holds */

// The directory of a file, with a '/' at the end, for the caller to release; null for a name without one.
static char* qvDirLock_S_NewDirectoryPath(const char* aFilePath) {
  char* thePath = qvPath_Normalize(aFilePath, 0, kqvPathNormalizeMode_Native, NULL);
  char* theLastSlash = thePath != NULL ? strrchr(thePath, '/') : NULL;
  if (theLastSlash == NULL) {
    qvFree(thePath);
    return NULL;
  }
  theLastSlash[1] = '\0';
  return thePath;
}

static qvDirLock qvDirLock_S_Open(const char* aDirectoryPath) {
  int theFD;
  do {
    theFD = open(aDirectoryPath, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  } while (theFD == -1 && errno == EINTR);
  if (theFD != -1) {
    return theFD;
  }
  // Only what will be the same tomorrow is a reason to go on without the lock. A process that is out of
  // descriptors would come between the others' calls.
  return errno == EACCES || errno == ENOENT || errno == ENOTDIR ? kqvDirLockNone : kqvDirLockBusy;
}

static void qvDirLock_S_Pause(void) {
  struct timespec theRest = {0, kqvDirLock_Pause * 1000000};
  while (nanosleep(&theRest, &theRest) != 0 && errno == EINTR) {
  }
}

// The system has no wait for this lock that ends, so it is looked at again and again. Returns 0 when somebody
// else holds it to the end.
static int qvDirLock_S_Lock(int aFD, uint32 aMSLimit) {
  for (uint32 theWaited = 0;; theWaited += kqvDirLock_Pause) {
    int theResult;
    do {
      theResult = flock(aFD, LOCK_EX | LOCK_NB);
    } while (theResult != 0 && errno == EINTR);
    // A file system without locks gives another error, which is as good as the lock: there is nothing better.
    if (theResult == 0 || errno != EWOULDBLOCK) {
      return 1;
    }
    if (theWaited >= aMSLimit) {
      return 0;
    }
    qvDirLock_S_Pause();
  }
}

qvDirLock qvDirLock_AcquireForFile(const char* aFilePath, uint32 aMSLimit) {
  char* thePath = qvDirLock_S_NewDirectoryPath(aFilePath);
  qvDirLock theLock = thePath != NULL ? qvDirLock_S_Open(thePath) : kqvDirLockNone;
  qvFree(thePath);
  if (theLock >= 0 && !qvDirLock_S_Lock(theLock, aMSLimit)) {
    close(theLock);
    theLock = kqvDirLockBusy;
  }
  return theLock;
}

int qvDirLock_SyncDirectory(qvDirLock aLock) {
  int theResult;
  do {
    theResult = aLock >= 0 ? fsync(aLock) : 0;
  } while (theResult != 0 && errno == EINTR);
  // A file system that cannot do this says that the call makes no sense; its names are as durable as they
  // get.
  return theResult == 0 || (errno != EIO && errno != ENOSPC && errno != EDQUOT);
}

void qvDirLock_Release(qvDirLock aLock) {
  if (aLock >= 0) {
    // Unlocked by name, since a child process forked meanwhile holds the directory open as well.
    flock(aLock, LOCK_UN);
    close(aLock);
  }
}
