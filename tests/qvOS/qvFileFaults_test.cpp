// What qvFile makes of a system that interrupts, falls short, fails or answers wrongly. The functions below
// stand before the system's own in this program.
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdarg.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <string>
#include <utility>
#include <vector>

#include "qvOS/qvFile.h"
#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"

namespace {

constexpr ssize_t kPassOn = -1000;

// The next answers for calls on sFD: a number of bytes, 0, a negative errno, or kPassOn.
int sFD = -1;
std::vector<ssize_t> sAnswers;
size_t sNextAnswer = 0;
size_t sLastCount = 0;  // of bytes that the last call asked to transfer
int sOpenErrno = 0;     // of the next open, when not 0
int sOpenCount = 0;

bool HasAnswer(int aFD) { return aFD == sFD && sNextAnswer < sAnswers.size(); }

// The next answer, as the system call returns it.
ssize_t NextAnswer() {
  ssize_t theAnswer = sAnswers[sNextAnswer++];
  if (theAnswer < 0 && theAnswer != kPassOn) {
    errno = static_cast<int>(-theAnswer);
    return -1;
  }
  return theAnswer;
}

// Calls on the file are answered so from now on.
void Answer(qvFileFD aFD, const std::vector<ssize_t>& anAnswers) {
  sFD = aFD;
  sAnswers = anAnswers;
  sNextAnswer = 0;
}

class qvFileFaults : public testing::Test {
 protected:
  qvFileFaults() {
    WriteWholeFile(mScratch.File("f"), "0123456789");
    EXPECT_EQ(0, qvFile_Open(mScratch.File("f").c_str(), qvFileOpenMode_ReadWrite, 0, &mFD));
  }
  ~qvFileFaults() override {
    sFD = -1;
    close(mFD);
  }

  ScratchFolder mScratch;
  qvFileFD mFD = kqvFileFDInvalid;
  char mBuffer[11] = "??????????";
};

}  // namespace

extern "C" ssize_t read(int aFD, void* aBuffer, size_t aCount) {
  size_t theCount = aCount;
  if (HasAnswer(aFD)) {
    sLastCount = aCount;
    ssize_t theAnswer = NextAnswer();
    if (theAnswer == 0 || theAnswer == -1 || theAnswer > static_cast<ssize_t>(aCount)) {
      return theAnswer;
    }
    theCount = theAnswer == kPassOn ? aCount : static_cast<size_t>(theAnswer);
  }
  return syscall(SYS_read, aFD, aBuffer, theCount);
}

extern "C" ssize_t write(int aFD, const void* aBuffer, size_t aCount) {
  size_t theCount = aCount;
  if (HasAnswer(aFD)) {
    sLastCount = aCount;
    ssize_t theAnswer = NextAnswer();
    if (theAnswer == 0 || theAnswer == -1 || theAnswer > static_cast<ssize_t>(aCount)) {
      return theAnswer;
    }
    theCount = theAnswer == kPassOn ? aCount : static_cast<size_t>(theAnswer);
  }
  return syscall(SYS_write, aFD, aBuffer, theCount);
}

extern "C" int close(int aFD) {
  if (HasAnswer(aFD)) {
    ssize_t theAnswer = NextAnswer();
    if (theAnswer != kPassOn) {
      return static_cast<int>(theAnswer);
    }
  }
  return static_cast<int>(syscall(SYS_close, aFD));
}

// With large files this is the C library's open64.
extern "C" int open(const char* aPath, int aFlags, ...) {
  va_list theArguments;
  va_start(theArguments, aFlags);
  mode_t theMode = (aFlags & O_CREAT) != 0 ? va_arg(theArguments, mode_t) : 0;
  va_end(theArguments);
  ++sOpenCount;
  if (sOpenErrno != 0) {
    errno = std::exchange(sOpenErrno, 0);
    return -1;
  }
  return openat(AT_FDCWD, aPath, aFlags, theMode);
}

// With large files this is the C library's lseek64.
extern "C" off_t lseek(int aFD, off_t anOffset, int aWhence) noexcept {
  using SeekFunc = off_t (*)(int, off_t, int);
  if (HasAnswer(aFD)) {
    ssize_t theAnswer = NextAnswer();
    if (theAnswer != kPassOn) {
      return theAnswer;
    }
  }
  return reinterpret_cast<SeekFunc>(dlsym(RTLD_NEXT, "lseek64"))(aFD, anOffset, aWhence);
}

TEST_F(qvFileFaults, AnInterruptedReadIsTriedAgain) {
  Answer(mFD, {-EINTR, -EINTR, kPassOn});
  EXPECT_EQ(10, qvFile_Read(mFD, mBuffer, 10));
  EXPECT_STREQ("0123456789", mBuffer);
  EXPECT_EQ(3u, sNextAnswer);
}

TEST_F(qvFileFaults, AShortReadGoesOnWhereItStopped) {
  Answer(mFD, {3, -EINTR, 1, kPassOn});
  EXPECT_EQ(10, qvFile_Read(mFD, mBuffer, 10));
  EXPECT_STREQ("0123456789", mBuffer);
  EXPECT_EQ(4u, sNextAnswer);
}

TEST_F(qvFileFaults, AReadOfNothingEndsWithTheCountSoFar) {
  Answer(mFD, {4, 0, kPassOn});
  EXPECT_EQ(4, qvFile_Read(mFD, mBuffer, 10));
  EXPECT_STREQ("0123??????", mBuffer);
  EXPECT_EQ(2u, sNextAnswer);
}

TEST_F(qvFileFaults, AReadThatFailsHalfwayLosesItsCount) {
  Answer(mFD, {4, -EIO});
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_Read(mFD, mBuffer, 10));
  Answer(mFD, {4, -ENOENT});
  EXPECT_EQ(kqvFileErrorNotFound, qvFile_Read(mFD, mBuffer, 10));
}

TEST_F(qvFileFaults, AReadOfMoreThanWasAskedForFailsAnAssertion) {
  Answer(mFD, {11});
  EXPECT_QV_ASSERTION(qvFile_Read(mFD, mBuffer, 10), "theReadCount <= theTotalCount", "qvFile");
  Answer(mFD, {4, 7});
  EXPECT_QV_ASSERTION(qvFile_Read(mFD, mBuffer, 10), "theReadCount <= theTotalCount", "qvFile");
}

TEST_F(qvFileFaults, AnInterruptedOrShortWriteGoesOnWhereItStopped) {
  Answer(mFD, {-EINTR, 2, -EINTR, 1, kPassOn});
  EXPECT_EQ(6, qvFile_Write(mFD, "abcdef", 6));
  EXPECT_EQ(5u, sNextAnswer);
  EXPECT_EQ("abcdef6789", ReadWholeFile(mScratch.File("f")));
}

TEST_F(qvFileFaults, AWriteOfNothingEndsWithTheCountSoFar) {
  Answer(mFD, {4, 0, kPassOn});
  EXPECT_EQ(4, qvFile_Write(mFD, "abcdef", 6));
  EXPECT_EQ(2u, sNextAnswer);
  EXPECT_EQ("abcd456789", ReadWholeFile(mScratch.File("f")));
}

TEST_F(qvFileFaults, AWriteThatFailsHalfwayLosesItsCount) {
  Answer(mFD, {4, -ENOSPC});
  EXPECT_EQ(kqvFileErrorNoSpace, qvFile_Write(mFD, "abcdef", 6));
  Answer(mFD, {1, -EIO});
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_Write(mFD, "abcdef", 6));
}

TEST_F(qvFileFaults, AWriteOfMoreThanWasGivenFailsAnAssertion) {
  Answer(mFD, {7});
  EXPECT_QV_ASSERTION(qvFile_Write(mFD, "abcdef", 6), "theWriteCount <= theTotalCount", "qvFile");
}

// The system of a 32-bit device refuses 2 GiB and more.
TEST_F(qvFileFaults, ATransferOfMoreThanAGiBIsDoneInParts) {
  Answer(mFD, {0});
  EXPECT_EQ(0, qvFile_Read(mFD, mBuffer, 0xFFFFFFFF));
  EXPECT_EQ(0x40000000u, sLastCount);
  Answer(mFD, {0});
  EXPECT_EQ(0, qvFile_Write(mFD, mBuffer, 0x80000000));
  EXPECT_EQ(0x40000000u, sLastCount);
  Answer(mFD, {0});
  EXPECT_EQ(0, qvFile_Read(mFD, mBuffer, 0x3FFFFFFF));
  EXPECT_EQ(0x3FFFFFFFu, sLastCount);
}

TEST_F(qvFileFaults, AnInterruptedCloseIsTriedAgain) {
  Answer(mFD, {-EINTR, -EINTR, kPassOn});
  EXPECT_EQ(0, qvFile_Close(mFD));
  EXPECT_EQ(3u, sNextAnswer);
}

TEST_F(qvFileFaults, AnInterruptedCloseThatHasClosedIsASuccess) {
  Answer(mFD, {-EINTR, -EBADF});
  EXPECT_EQ(0, qvFile_Close(mFD));
  Answer(mFD, {-EBADF});
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_Close(mFD)) << "without an interruption it is the caller's mistake";
}

TEST_F(qvFileFaults, ACloseThatFailsOtherwiseIsAnError) {
  Answer(mFD, {-EIO});
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_Close(mFD));
  Answer(mFD, {-ENOSPC});
  EXPECT_EQ(kqvFileErrorNoSpace, qvFile_Close(mFD));
}

TEST_F(qvFileFaults, ASeekThatFailsGivesTheTranslatedError) {
  Answer(mFD, {-ENOSPC});
  EXPECT_EQ(kqvFileErrorNoSpace, qvFile_Seek(mFD, 0, qvFileSeekMode_End));
  qvFileOffset thePosition = 4711;
  Answer(mFD, {-EROFS});
  EXPECT_EQ(kqvFileErrorReadOnlyFileSystem, qvFile_Tell(mFD, &thePosition));
  EXPECT_EQ(-1, thePosition);
}

TEST_F(qvFileFaults, NeitherSizeNorEndIsKnownWhenASeekFails) {
  const struct {
    std::vector<ssize_t> mAnswers;
    const char* mWhy;
  } kCases[] = {
      {{-ENOENT}, "the position is unknown"},
      {{kPassOn, -ENOENT}, "the end cannot be reached"},
      {{kPassOn, kPassOn, -ENOENT}, "the position cannot be restored"},
  };
  for (const auto& theCase : kCases) {
    qvFileOffset theSize = 4711;
    Answer(mFD, theCase.mAnswers);
    EXPECT_EQ(kqvFileErrorNotFound, qvFile_GetSize(mFD, &theSize)) << theCase.mWhy;
    EXPECT_EQ(-1, theSize) << theCase.mWhy;
    Answer(mFD, theCase.mAnswers);
    EXPECT_EQ(kqvFileErrorNotFound, qvFile_EndOfFile(mFD)) << theCase.mWhy;
  }
}

TEST_F(qvFileFaults, AChangeOfSizeThatCannotMoveThePositionFails) {
  Answer(mFD, {-EIO});
  EXPECT_EQ(-1, qvFile_ChangeSize(mFD, 0));
  EXPECT_EQ("", ReadWholeFile(mScratch.File("f")));
}

TEST_F(qvFileFaults, AppendReportsTheErrorOfItsSeekAndClosesTheFile) {
  qvFileFD theFD = 4711;
  int theNext = dup(mFD);  // the descriptor that the next open gets
  close(theNext);
  Answer(theNext, {-ENOSPC});
  EXPECT_EQ(kqvFileErrorNoSpace, qvFile_Open(mScratch.File("f").c_str(), qvFileOpenMode_Append, 0, &theFD));
  EXPECT_EQ(4711, theFD);
  EXPECT_EQ(1u, sNextAnswer);
  EXPECT_EQ(-1, fcntl(theNext, F_GETFD)) << "the file is still open";
}

TEST_F(qvFileFaults, OpenOnAReadOnlyFileSystemSaysSo) {
  qvFileFD theFD = 4711;
  sOpenErrno = EROFS;
  EXPECT_EQ(kqvFileErrorReadOnlyFileSystem,
            qvFile_Open(mScratch.File("f").c_str(), qvFileOpenMode_Write, 0, &theFD));
  EXPECT_EQ(4711, theFD);
}

TEST_F(qvFileFaults, AnInterruptedOpenIsAnErrorAndIsNotTriedAgain) {
  qvFileFD theFD = 4711;
  sOpenErrno = EINTR;
  sOpenCount = 0;
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_Open(mScratch.File("f").c_str(), qvFileOpenMode_Read, 0, &theFD));
  EXPECT_EQ(4711, theFD);
  EXPECT_EQ(1, sOpenCount);
}

TEST_F(qvFileFaults, RefusedOpenModesDoNotReachTheSystem) {
  qvFileFD theFD = 4711;
  sOpenCount = 0;
  EXPECT_EQ(
      -1, qvFile_Open(mScratch.File("f").c_str(), qvFileOpenMode_Create | qvFileOpenMode_Append, 0, &theFD));
  EXPECT_EQ(-1, qvFile_Open(mScratch.File("f").c_str(), 0, 0, &theFD));
  EXPECT_EQ(0, sOpenCount);
  EXPECT_EQ(0, qvFile_Open(mScratch.File("f").c_str(), qvFileOpenMode_Read, 0, &theFD));
  EXPECT_EQ(1, sOpenCount);
  close(theFD);
}
