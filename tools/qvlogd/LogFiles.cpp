#include "tools/qvlogd/LogFiles.h"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>

#define kLogFiles_FileMode   0644
#define kLogFiles_FolderMode 0755

static uint64 LogFiles_S_SizeLimit(const LogFilesOptions& anOptions) {
  uint64 theLimit = anOptions.mRotateSize != 0 ? anOptions.mRotateSize : UINT64_MAX;
  if (anOptions.mMaxUse != 0) {
    // Several files within the whole: only a rotated file can be dropped, and dropping the only one would
    // drop everything.
    theLimit = anOptions.mRotateSize != 0 ? std::min(theLimit, anOptions.mMaxUse / 2) : anOptions.mMaxUse / 8;
  }
  return std::max<uint64>(theLimit, 1);
}

LogFiles::LogFiles(const LogFilesOptions& anOptions, const char* aProcess)
    : mOptions(anOptions), mProcess(aProcess), mSizeLimit(LogFiles_S_SizeLimit(anOptions)) {}

LogFiles::~LogFiles() { LogFiles::Close(); }

time_t LogFiles::Now() const { return time(NULL); }

ssize_t LogFiles::Put(int aFile, const char* aBytes, size_t aLength) { return write(aFile, aBytes, aLength); }

static void LogFiles_S_MakeFolders(const std::string& aPath) {
  for (size_t i = aPath.find('/', 1); i != std::string::npos; i = aPath.find('/', i + 1)) {
    mkdir(aPath.substr(0, i).c_str(), kLogFiles_FolderMode);
  }
}

static int LogFiles_S_Open(const std::string& aPath, int aMode) {
  // O_NONBLOCK: a pipe nobody reads must not stop us. Regular files ignore it.
  return open(aPath.c_str(), aMode | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK,
              kLogFiles_FileMode);
}

bool LogFiles::OpenFile() {
  time_t theNow = Now();
  struct tm theTime;
  mPath = mOptions.mPattern;
  if (localtime_r(&theNow, &theTime) != NULL) {
    mPath = LogFileNames_Expand(mOptions.mPattern, theTime, mProcess.c_str());
  }
  mFile = LogFiles_S_Open(mPath, O_RDWR);  // reading, for a look at the last byte
  if (mFile < 0 && errno == ENOENT) {
    LogFiles_S_MakeFolders(mPath);
    mFile = LogFiles_S_Open(mPath, O_RDWR);
  }
  if (mFile < 0 && errno == EACCES) {
    mFile = LogFiles_S_Open(mPath, O_WRONLY);
  }
  return mFile >= 0;
}

// Takes over a file that is there already.
bool LogFiles::LookAtFile() {
  struct stat theStat;
  if (fstat(mFile, &theStat) != 0) {
    return false;
  }
  mfRegular = S_ISREG(theStat.st_mode);
  mSize = mfRegular ? static_cast<uint64>(theStat.st_size) : 0;
  mPartial = 0;
  mRotateAt = mSizeLimit;
  mPeriod = PeriodOf(mSize > 0 ? theStat.st_mtime : Now());
  char theLast = '\n';
  if (mSize > 0 && pread(mFile, &theLast, 1, theStat.st_size - 1) != 1) {
    theLast = '\n';  // we may not read it; an end too many would be an empty line at each start
  }
  mfForeignLine = theLast != '\n';
  return true;
}

bool LogFiles::OpenCurrent() {
  bool fOpen = OpenFile();
  while (!fOpen && (errno == ENOSPC || errno == EDQUOT) && mRotated.DropOldest()) {
    fOpen = OpenFile();
  }
  if (!fOpen || !LookAtFile()) {
    int theError = errno;
    Leave();
    errno = theError;
    return false;
  }
  if (mfRegular) {
    mRotated.Scan(mPath, mOptions.mPattern, mProcess.c_str());
    DropBeyondCount();
  }
  return true;
}

bool LogFiles::Open(std::string* aError) {
  if (mFile >= 0 || OpenCurrent()) {
    return true;
  }
  *aError = "cannot open '" + mPath + "': " + strerror(errno);
  return false;
}

// Takes back what is there of a line that is not complete: it will be written whole elsewhere.
void LogFiles::Leave() {
  if (mFile < 0) {
    return;
  }
  if (mPartial > 0 && mfRegular && ftruncate(mFile, static_cast<off_t>(mSize - mPartial)) != 0) {
    // Whoever opens the file next ends the line.
  }
  close(mFile);
  mFile = -1;
  mPartial = 0;
}

bool LogFiles::IsGone() const {
  struct stat theStat;
  return mfRegular && fstat(mFile, &theStat) == 0 && theStat.st_nlink == 0;
}

int64 LogFiles::PeriodOf(time_t aTime) const {
  struct tm theTime;
  if (mOptions.mRotateTime == 0 || localtime_r(&aTime, &theTime) == NULL) {
    return 0;
  }
  return (static_cast<int64>(aTime) + theTime.tm_gmtoff) / mOptions.mRotateTime;
}

bool LogFiles::IsTooOld() const { return mSize > 0 && PeriodOf(Now()) != mPeriod; }

void LogFiles::DropBeyondCount() {
  while (mOptions.mRotateCount != 0 && mRotated.Count() > mOptions.mRotateCount && mRotated.DropOldest()) {
  }
}

// Goes on in a new file; false when that has to wait. The old file keeps its name when the pattern gives the
// new one another.
bool LogFiles::Rotate() {
  time_t theNow = Now();
  struct tm theTime;
  bool fSameName = localtime_r(&theNow, &theTime) == NULL ||
                   LogFileNames_Expand(mOptions.mPattern, theTime, mProcess.c_str()) == mPath;
  if (fSameName && !RotatedFiles::Shift(mPath)) {
    // Better a file that is too large than no log: the next attempt comes when as much again is written.
    mRotateAt = mSizeLimit > UINT64_MAX - mSize ? UINT64_MAX : mSize + mSizeLimit;
    mPeriod = PeriodOf(theNow);
    return false;
  }
  Leave();
  return OpenCurrent();
}

bool LogFiles::HasRoomFor(size_t aLength) {
  while (mOptions.mMaxUse != 0 && mRotated.Bytes() + mSize + aLength > mOptions.mMaxUse &&
         mRotated.DropOldest()) {
  }
  struct statvfs theSystem;
  while (mOptions.mKeepFree != 0 && fstatvfs(mFile, &theSystem) == 0 &&
         static_cast<uint64>(theSystem.f_bavail) * theSystem.f_frsize < mOptions.mKeepFree + aLength) {
    if (!mRotated.DropOldest()) {
      return false;
    }
  }
  return true;
}

static size_t LogFiles_S_FirstLine(const char* aBytes, size_t aLength) {
  const void* theEnd = memchr(aBytes, '\n', aLength);
  return theEnd == NULL ? aLength : static_cast<size_t>(static_cast<const char*>(theEnd) - aBytes) + 1;
}

// The bytes up to the last line end.
static size_t LogFiles_S_WholeLines(const char* aBytes, size_t aLength) {
  const void* theEnd = memrchr(aBytes, '\n', aLength);
  return theEnd == NULL ? 0 : static_cast<size_t>(static_cast<const char*>(theEnd) - aBytes) + 1;
}

// How many of the bytes go into the file that is open afterwards; 0 when it is not the time for any.
size_t LogFiles::LinesForFile(const char* aBytes, size_t aLength) {
  if (mFile >= 0 && IsGone()) {
    Leave();
  }
  if (mFile < 0 && !OpenCurrent()) {
    return 0;
  }
  if (!mfRegular) {
    return aLength;
  }
  size_t theFirst = LogFiles_S_FirstLine(aBytes, aLength);
  if (mPartial == 0 && mSize > 0 && (IsTooOld() || mSize + theFirst > mRotateAt)) {
    Rotate();
    if (mFile < 0) {
      return 0;
    }
  }
  if (mSize == 0) {
    mPeriod = PeriodOf(Now());
  }
  uint64 theStart = mSize - mPartial;
  size_t theLength = aLength;
  if (theStart + aLength > mRotateAt) {
    uint64 theRoom = mRotateAt > theStart ? mRotateAt - theStart : 0;
    theLength = std::max(theFirst, LogFiles_S_WholeLines(aBytes, static_cast<size_t>(theRoom)));
  }
  return HasRoomFor(theLength - mPartial) ? theLength : 0;
}

// Returns 0 or the error.
int LogFiles::EndForeignLine() {
  while (mfForeignLine) {
    ssize_t theCount = Put(mFile, "\n", 1);
    if (theCount == 1) {
      mfForeignLine = false;
      ++mSize;
    } else if (theCount == 0 || errno != EINTR) {
      return theCount == 0 ? EIO : errno;
    }
  }
  return 0;
}

// Returns how many bytes of whole lines are in the file now.
size_t LogFiles::WriteLines(const char* aBytes, size_t aLength, int* anError) {
  *anError = EndForeignLine();
  size_t theEnd = mPartial;
  while (theEnd < aLength && *anError == 0) {
    ssize_t theCount = Put(mFile, aBytes + theEnd, aLength - theEnd);
    if (theCount > 0) {
      theEnd += static_cast<size_t>(theCount);
      mSize += static_cast<uint64>(theCount);
    } else if (theCount == 0 || errno != EINTR) {
      *anError = theCount == 0 ? EIO : errno;
    }
  }
  size_t theWhole = LogFiles_S_WholeLines(aBytes, theEnd);
  mPartial = theEnd - theWhole;
  return theWhole;
}

// Whether trying again at once makes sense.
bool LogFiles::Recover(int anError) {
  switch (anError) {
    case ENOSPC:
    case EDQUOT:
      return mRotated.DropOldest();
    case EAGAIN:
      return false;
    // As large as a file can be here. A new one helps, unless this one holds nothing but the line's start.
    case EFBIG:
      return mfRegular && mSize > mPartial && Rotate();
    default:
      Leave();
      return false;
  }
}

size_t LogFiles::Write(const char* aBytes, size_t aLength) {
  size_t theDone = 0;
  while (theDone < aLength) {
    size_t theLength = LinesForFile(aBytes + theDone, aLength - theDone);
    if (theLength == 0) {
      break;
    }
    int theError = 0;
    theDone += WriteLines(aBytes + theDone, theLength, &theError);
    if (theError != 0 && !Recover(theError)) {
      break;
    }
  }
  return theDone;
}

void LogFiles::Wait(int aMilliseconds) {
  struct pollfd thePoll = {mFile, POLLOUT, 0};
  poll(&thePoll, mFile >= 0 && !mfRegular ? 1 : 0, aMilliseconds);
}

void LogFiles::Reopen() {
  Leave();
  OpenCurrent();  // at once: whoever renamed the old file waits for the new one
}

void LogFiles::Close() { Leave(); }
