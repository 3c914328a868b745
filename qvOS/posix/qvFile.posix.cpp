#include "qvOS/qvFile.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include "qvOS/qvFile_p.h"
#include "qvraTools/qvAssert.h"

#define kqvFile_MaxTransfer 0x40000000 /* bytes; 32-bit systems refuse to move 2 GiB or more at once */

// KEEP qvFileKept.ANewFileHasAllPermissionsLessTheUmask
// With the right to execute, which a new file seldom needs; callers rely on the umask alone.
#define kqvFile_Permissions 0777

static_assert(sizeof(off_t) == sizeof(qvFileOffset), "built without the large-file interfaces");

int PosixErrorToQvFileError(int anErrno) {
  switch (anErrno) {
    case 0:
      return 0;
    case ENOENT:
      return kqvFileErrorNotFound;
    case EEXIST:
      return kqvFileErrorAlreadyExists;
    case ENOSPC:
      return kqvFileErrorNoSpace;
    case EROFS:
      return kqvFileErrorReadOnlyFileSystem;
    default:
      return kqvFileErrorUnknown;
  }
}

// The result of a system call that gives -1 and errno on failure.
static int qvFile_S_Result(int64 aSystemResult) {
  return aSystemResult == -1 ? PosixErrorToQvFileError(errno) : 0;
}

// The system's flags for an open mode, or -1 for modes that do not go together.
static int qvFile_S_OpenFlags(qvFileOpenMode anOpenMode) {
  const bool theRead = (anOpenMode & qvFileOpenMode_Read) != 0;
  const bool theAppend = (anOpenMode & qvFileOpenMode_Append) != 0;
  const bool theWrite = theAppend || (anOpenMode & qvFileOpenMode_Write) != 0;
  const bool theExclusive = (anOpenMode & qvFileOpenMode_Exclusive) != 0;
  const bool theCreate = (anOpenMode & qvFileOpenMode_Create) != 0;
  const bool theTruncate = (anOpenMode & qvFileOpenMode_Truncate) != 0;

  if (!theRead && !theWrite) {
    return -1;
  }
  if (theTruncate && !theWrite) {
    return -1;
  }
  if (theCreate && (theAppend || (theExclusive && theTruncate))) {
    return -1;
  }
  if (theExclusive && !theCreate) {
    return -1;
  }
  int theFlags = theRead && theWrite ? O_RDWR : theWrite ? O_WRONLY : O_RDONLY;
  return theFlags | (theTruncate ? O_TRUNC : 0) | (theCreate ? O_CREAT : 0) | (theExclusive ? O_EXCL : 0);
}

static int qvFile_S_Open(const char* aFilePath, qvFileOpenMode anOpenMode, int afRetryInterrupted,
                         qvFileFD* aFD) {
  qvNativePath thePath(aFilePath);
  int theFlags = qvFile_S_OpenFlags(anOpenMode);
  if (thePath.Get() == NULL || aFD == NULL || theFlags == -1) {
    return kqvFileErrorUnknown;
  }
  qvFileFD theFD;
  do {
    theFD = open(thePath.Get(), theFlags, kqvFile_Permissions);
  } while (theFD == kqvFileFDInvalid && errno == EINTR && afRetryInterrupted);
  if (theFD == kqvFileFDInvalid) {
    return PosixErrorToQvFileError(errno);
  }
  if ((anOpenMode & qvFileOpenMode_Append) != 0) {
    int theError = qvFile_Seek(theFD, 0, qvFileSeekMode_End);
    if (theError != 0) {
      qvFile_Close(theFD);
      return theError;
    }
  }
  *aFD = theFD;
  return 0;
}

int qvFile_Open(const char* aFilePath, qvFileOpenMode anOpenMode, int anAccessMode, qvFileFD* aFD) {
  (void)anAccessMode;
  return qvFile_S_Open(aFilePath, anOpenMode, 0, aFD);
}

int qvFile_S_OpenUninterrupted(const char* aFilePath, qvFileOpenMode anOpenMode, qvFileFD* aFD) {
  return qvFile_S_Open(aFilePath, anOpenMode, 1, aFD);
}

int qvFile_Close(qvFileFD aFD) {
  int theResult = close(aFD);
  // KEEP qvFileFaults.AnInterruptedCloseIsTriedAgain
  // Some systems, Linux among them, close the file although they report the interruption: then there is
  // nothing left to close, or another thread's new file. Elsewhere the file would stay open; it is the
  // required result.
  while (theResult == -1 && errno == EINTR) {
    theResult = close(aFD);
    if (theResult == -1 && errno == EBADF) {
      theResult = 0;
    }
  }
  return qvFile_S_Result(theResult);
}

static size_t qvFile_S_NextTransfer(int64 aCountLeft) {
  return static_cast<size_t>(aCountLeft < kqvFile_MaxTransfer ? aCountLeft : kqvFile_MaxTransfer);
}

int64 qvFile_Read(qvFileFD aFD, void* aBuffer, uint32 aCount) {
  const int64 theTotalCount = aCount;
  int64 theReadCount = 0;
  while (theReadCount < theTotalCount) {
    ssize_t theResult = read(aFD, static_cast<char*>(aBuffer) + theReadCount,
                             qvFile_S_NextTransfer(theTotalCount - theReadCount));
    if (theResult == 0) {
      break;
    }
    if (theResult > 0) {
      theReadCount += theResult;
      qvAssert(theReadCount <= theTotalCount);
    } else if (errno != EINTR) {
      return PosixErrorToQvFileError(errno);
    }
  }
  return theReadCount;
}

int64 qvFile_Write(qvFileFD aFD, const void* aBuffer, uint32 aCount) {
  const int64 theTotalCount = aCount;
  int64 theWriteCount = 0;
  while (theWriteCount < theTotalCount) {
    ssize_t theResult = write(aFD, static_cast<const char*>(aBuffer) + theWriteCount,
                              qvFile_S_NextTransfer(theTotalCount - theWriteCount));
    if (theResult == 0) {
      break;
    }
    if (theResult > 0) {
      theWriteCount += theResult;
      qvAssert(theWriteCount <= theTotalCount);
    } else if (errno != EINTR) {
      return PosixErrorToQvFileError(errno);
    }
  }
  return theWriteCount;
}

int qvFile_Seek(qvFileFD aFD, qvFileOffset anOffset, qvFileSeekMode aSeekMode) {
  int theWhence = SEEK_SET;
  switch (aSeekMode) {
    case qvFileSeekMode_Begin:
      break;
    case qvFileSeekMode_Current:
      theWhence = SEEK_CUR;
      break;
    case qvFileSeekMode_End:
      theWhence = SEEK_END;
      break;
    default:
      // If a failed assertion ever returns, the offset counts from the beginning.
      qvAssertFail("qvFile_Seek: Unknown seek mode");
  }
  return qvFile_S_Result(lseek(aFD, anOffset, theWhence));
}

int qvFile_Tell(qvFileFD aFD, qvFileOffset* anOffset) {
  *anOffset = lseek(aFD, 0, SEEK_CUR);
  return qvFile_S_Result(*anOffset);
}

// Finds the position and the size, and puts the position back. The size is asked for by seeking, because that
// holds for disks too and fails for what has no size, like a pipe.
static int qvFile_S_Measure(qvFileFD aFD, qvFileOffset* aPosition, qvFileOffset* aSize) {
  int theError = qvFile_Tell(aFD, aPosition);
  if (theError == 0) {
    *aSize = lseek(aFD, 0, SEEK_END);
    theError = qvFile_S_Result(*aSize);
  }
  return theError == 0 ? qvFile_Seek(aFD, *aPosition, qvFileSeekMode_Begin) : theError;
}

int qvFile_GetSize(qvFileFD aFD, qvFileOffset* aSize) {
  qvFileOffset thePosition;
  int theError = qvFile_S_Measure(aFD, &thePosition, aSize);
  if (theError != 0) {
    *aSize = kqvFileOffsetInvalid;
  }
  return theError;
}

int qvFile_EndOfFile(qvFileFD aFD) {
  qvFileOffset thePosition;
  qvFileOffset theSize;
  int theError = qvFile_S_Measure(aFD, &thePosition, &theSize);
  return theError == 0 ? thePosition == theSize : theError;
}

int qvFile_ChangeSize(qvFileFD aFD, qvFileOffset aSize) {
  if (ftruncate(aFD, aSize) != 0) {
    return -1;
  }
  // KEEP qvFileKept.ChangeSizeReportsFailureUnlessTheLowWordOfTheSizeIsZero
  // The new position is taken for an error code of 32 bits, so the call returns -1 for a size like 100
  // although the file has it. It looks like a mix-up of two results; it is the required result.
  qvFileOffset thePosition = lseek(aFD, aSize, SEEK_SET);
  return static_cast<uint32>(thePosition) != 0 ? -1 : 0;
}

// KEEP qvFileKept.SetSizeTakesThePathAsItIs
// The one path that is not normalised: a relative one counts from the working directory.
int qvFile_SetSize(const char* aFilePath, qvFileOffset aSize) {
  return aFilePath != NULL ? truncate(aFilePath, aSize) : -1;
}

int qvFile_truncate(const char* aFilePath, qvFileOffset aSize) { return qvFile_SetSize(aFilePath, aSize); }

int qvFile_Flush(qvFileFD aFD) {
  int theResult;
  do {
    theResult = fsync(aFD);
  } while (theResult == -1 && errno == EINTR);
  return qvFile_S_Result(theResult);
}

int qvFile_Remove(const char* aFilePath) {
  qvNativePath thePath(aFilePath);
  if (thePath.Get() == NULL) {
    return kqvFileErrorUnknown;
  }
  int theError = qvFile_S_Result(unlink(thePath.Get()));
  return theError == kqvFileErrorNotFound ? 0 : theError;
}

int qvFile_Rename(const char* anOldPath, const char* aNewPath) {
  qvNativePath theOldPath(anOldPath);
  qvNativePath theNewPath(aNewPath);
  if (theOldPath.Get() == NULL || theNewPath.Get() == NULL) {
    return kqvFileErrorUnknown;
  }
  return qvFile_S_Result(rename(theOldPath.Get(), theNewPath.Get()));
}

int qvFile_Access(const char* aFilePath, qvFileAccessMode anAccessMode) {
  qvNativePath thePath(aFilePath);
  int theMode = ((anAccessMode & qvFileAccessMode_Read) != 0 ? R_OK : 0) |
                ((anAccessMode & qvFileAccessMode_Write) != 0 ? W_OK : 0);
  return thePath.Get() != NULL && access(thePath.Get(), theMode) == 0;
}

int qvFile_Exists(const char* aFilePath) {
  qvNativePath thePath(aFilePath);
  struct stat theStat;
  return thePath.Get() != NULL && stat(thePath.Get(), &theStat) == 0 && S_ISREG(theStat.st_mode);
}

int qvFile_HasAttribute(const char* aFilePath, qvFileAttributes anAttribute) {
  qvNativePath thePath(aFilePath);
  if (thePath.Get() == NULL || anAttribute != kqvFileAttribute_Hidden) {
    return 0;
  }
  const char* theSlash = strrchr(thePath.Get(), '/');
  const char* theName = theSlash != NULL ? theSlash + 1 : thePath.Get();
  return theName[0] == '.';
}

static void qvFile_S_StoreTime(qvtimeval* aDestination, time_t aSeconds) {
  if (aDestination != NULL) {
    aDestination->tv_sec = static_cast<int32>(aSeconds);
    aDestination->tv_usec = 0;
  }
}

int qvFile_GetTimes(const char* aFilePath, qvtimeval* aLastAccessTime, qvtimeval* aModificationTime,
                    qvtimeval* aCreationTime) {
  qvNativePath thePath(aFilePath);
  if (thePath.Get() == NULL) {
    return kqvFileErrorUnknown;
  }
  struct stat theStat;
  if (stat(thePath.Get(), &theStat) != 0) {
    return PosixErrorToQvFileError(errno);
  }
  qvFile_S_StoreTime(aLastAccessTime, theStat.st_atime);
  qvFile_S_StoreTime(aModificationTime, theStat.st_mtime);
  qvFile_S_StoreTime(aCreationTime, theStat.st_ctime);
  return 0;
}

int qvFile_SetModificationTime(const char* aFilePath, const qvtimeval* aTime) {
  qvNativePath thePath(aFilePath);
  if (thePath.Get() == NULL || aTime == NULL) {
    return kqvFileErrorUnknown;
  }
  struct timeval theTime;
  theTime.tv_sec = aTime->tv_sec;
  theTime.tv_usec = aTime->tv_usec;
  const struct timeval theTimes[2] = {theTime, theTime};
  return qvFile_S_Result(utimes(thePath.Get(), theTimes));
}
