#include "qvOS/qvFile.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <type_traits>

#include "qvOS/qvFile_p.h"
#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"

namespace {

constexpr qvFileOpenMode kR = qvFileOpenMode_Read;
constexpr qvFileOpenMode kW = qvFileOpenMode_Write;
constexpr qvFileOpenMode kRW = qvFileOpenMode_ReadWrite;
constexpr qvFileOpenMode kE = qvFileOpenMode_Exclusive;
constexpr qvFileOpenMode kA = qvFileOpenMode_Append;
constexpr qvFileOpenMode kC = qvFileOpenMode_Create;
constexpr qvFileOpenMode kT = qvFileOpenMode_Truncate;

// A file that is open for one test.
class OpenFile {
 public:
  OpenFile(const std::string& aPath, qvFileOpenMode aMode) {
    EXPECT_EQ(0, qvFile_Open(aPath.c_str(), aMode, qvFileAccessMode_ReadWrite, &mFD)) << aPath;
  }
  ~OpenFile() { EXPECT_EQ(0, qvFile_Close(mFD)); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  operator qvFileFD() const { return mFD; }

 private:
  qvFileFD mFD = kqvFileFDInvalid;
};

std::string ReadText(qvFileFD aFD, uint32 aCount) {
  std::string theText(aCount, '?');
  int64 theCount = qvFile_Read(aFD, theText.data(), aCount);
  EXPECT_GE(theCount, 0);
  theText.resize(static_cast<size_t>(theCount < 0 ? 0 : theCount));
  return theText;
}

int64 WriteText(qvFileFD aFD, const std::string& aText) {
  return qvFile_Write(aFD, aText.data(), static_cast<uint32>(aText.size()));
}

qvFileOffset Position(qvFileFD aFD) {
  qvFileOffset thePosition = 4711;
  EXPECT_EQ(0, qvFile_Tell(aFD, &thePosition));
  return thePosition;
}

// Opens and closes; what qvFile_Open returned.
int TryOpen(const std::string& aPath, qvFileOpenMode aMode) {
  qvFileFD theFD = kqvFileFDInvalid;
  int theResult = qvFile_Open(aPath.c_str(), aMode, 0, &theFD);
  if (theResult == 0) {
    qvFile_Close(theFD);
  } else {
    EXPECT_EQ(kqvFileFDInvalid, theFD) << "the descriptor was written";
  }
  return theResult;
}

}  // namespace

TEST(qvFile, TheConstantsHaveTheirValues) {
  EXPECT_EQ(0x01, qvFileOpenMode_Read);
  EXPECT_EQ(0x02, qvFileOpenMode_Write);
  EXPECT_EQ(0x03, qvFileOpenMode_ReadWrite);
  EXPECT_EQ(0x04, qvFileOpenMode_Exclusive);
  EXPECT_EQ(0x08, qvFileOpenMode_Append);
  EXPECT_EQ(0x10, qvFileOpenMode_Create);
  EXPECT_EQ(0x20, qvFileOpenMode_Truncate);
  EXPECT_EQ(1, qvFileAccessMode_Read);
  EXPECT_EQ(2, qvFileAccessMode_Write);
  EXPECT_EQ(3, qvFileAccessMode_ReadWrite);
  EXPECT_EQ(0, qvFileSeekMode_Begin);
  EXPECT_EQ(1, qvFileSeekMode_Current);
  EXPECT_EQ(2, qvFileSeekMode_End);
  EXPECT_EQ(-1, kqvFileFDInvalid);
  EXPECT_EQ(-1, kqvFileOffsetInvalid);
  EXPECT_EQ(1, kqvFileAttribute_Hidden);
}

TEST(qvFile, TheErrorCodesHaveTheirValues) {
  EXPECT_EQ(-1, kqvFileErrorUnknown);
  EXPECT_EQ(-2, kqvFileErrorReadOnlyFileSystem);
  EXPECT_EQ(-3, kqvFileErrorNotFound);
  EXPECT_EQ(-4, kqvFileErrorAlreadyExists);
  EXPECT_EQ(-5, kqvFileErrorNoSpace);
}

TEST(qvFile, AnOffsetHas64BitsAndASign) {
  EXPECT_EQ(8u, sizeof(qvFileOffset));
  EXPECT_TRUE(std::is_signed<qvFileOffset>::value);
  EXPECT_TRUE((std::is_same<int, qvFileFD>::value));
}

TEST(qvFile, TheSystemsErrorsAreTranslated) {
  const struct {
    int mErrno;
    int mExpected;
  } kCases[] = {
      {0, 0},      {ENOENT, -3},  {EEXIST, -4}, {ENOSPC, -5}, {EROFS, -2}, {EACCES, -1}, {EISDIR, -1},
      {EBADF, -1}, {ENOTDIR, -1}, {EINTR, -1},  {EDQUOT, -1}, {-1, -1},    {100000, -1},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mExpected, PosixErrorToQvFileError(theCase.mErrno)) << theCase.mErrno;
  }
}

TEST(qvFile, OpenModesThatDoNotGoTogetherAreRefused) {
  ScratchFolder theScratch;
  std::string theNew = theScratch.File("new");
  std::string theOld = theScratch.File("old");
  WriteWholeFile(theOld, "old");
  const struct {
    qvFileOpenMode mMode;
    const char* mWhy;
  } kCases[] = {
      {0, "neither read nor write"},
      {kC, "create alone"},
      {kC | kE, "create exclusively alone"},
      {kT, "truncate alone"},
      {kR | kT, "read-only with truncate"},
      {kR | kC | kT, "read-only with truncate and create"},
      {kC | kA, "create with append"},
      {kW | kC | kA, "create with append and write"},
      {kRW | kC | kA | kT, "create with append and truncate"},
      {kW | kC | kE | kT, "create with exclusive and truncate"},
      {kRW | kC | kE | kT, "create with exclusive and truncate, reading as well"},
      {kW | kE, "exclusive without create"},
      {kR | kE, "exclusive without create, reading"},
      {kA | kE, "exclusive without create, appending"},
      {kW | kE | kT, "exclusive without create, truncating"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(-1, TryOpen(theNew, theCase.mMode)) << theCase.mWhy;
    EXPECT_FALSE(FileExists(theNew)) << theCase.mWhy;
    EXPECT_EQ(-1, TryOpen(theOld, theCase.mMode)) << theCase.mWhy;
    EXPECT_EQ("old", ReadWholeFile(theOld)) << theCase.mWhy;
  }
}

TEST(qvFile, OpenModesThatGoTogetherOpen) {
  const struct {
    qvFileOpenMode mMode;
    int mForOldFile;
    int mForNewFile;
    const char* mContent;  // of the old file after writing "N" where that is possible
    const char* mWhy;
  } kCases[] = {
      {kR, 0, -3, "old", "read"},
      {kW, 0, -3, "Nld", "write"},
      {kRW, 0, -3, "Nld", "read and write"},
      {kA, 0, -3, "oldN", "append implies write"},
      {kW | kA, 0, -3, "oldN", "append"},
      {kRW | kA, 0, -3, "oldN", "append and read"},
      {kR | kA, 0, -3, "oldN", "append makes read a read and write"},
      {kW | kT, 0, -3, "N", "truncate"},
      {kA | kT, 0, -3, "N", "append to a truncated file"},
      {kR | kC, 0, 0, "old", "create and read"},
      {kW | kC, 0, 0, "Nld", "create keeps what is there"},
      {kRW | kC | kT, 0, 0, "N", "create and truncate"},
      {kW | kC | kT, 0, 0, "N", "write, create and truncate empties the file"},
      {kW | kC | kE, -4, 0, "old", "an exclusive file must be new"},
      {kR | kC | kE, -4, 0, "old", "also for reading"},
  };
  for (const auto& theCase : kCases) {
    ScratchFolder theScratch;
    std::string theOld = theScratch.File("old");
    WriteWholeFile(theOld, "old");
    qvFileFD theFD = kqvFileFDInvalid;
    EXPECT_EQ(theCase.mForOldFile, qvFile_Open(theOld.c_str(), theCase.mMode, 0, &theFD)) << theCase.mWhy;
    if (theFD != kqvFileFDInvalid) {
      qvFile_Write(theFD, "N", 1);
      qvFile_Close(theFD);
    }
    EXPECT_EQ(theCase.mContent, ReadWholeFile(theOld)) << theCase.mWhy;
    EXPECT_EQ(theCase.mForNewFile, TryOpen(theScratch.File("new"), theCase.mMode)) << theCase.mWhy;
    EXPECT_EQ(theCase.mForNewFile == 0, FileExists(theScratch.File("new"))) << theCase.mWhy;
  }
}

TEST(qvFile, AFileIsOnlyOpenForWhatTheModeSays) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("f"), "text");
  char theByte = 'x';
  OpenFile theReader(theScratch.File("f"), kR);
  EXPECT_EQ(-1, qvFile_Write(theReader, &theByte, 1));
  EXPECT_EQ(1, qvFile_Read(theReader, &theByte, 1));
  OpenFile theWriter(theScratch.File("f"), kW);
  EXPECT_EQ(-1, qvFile_Read(theWriter, &theByte, 1));
  EXPECT_EQ(1, qvFile_Write(theWriter, &theByte, 1));
  OpenFile theBoth(theScratch.File("f"), kRW);
  EXPECT_EQ(1, qvFile_Read(theBoth, &theByte, 1));
  EXPECT_EQ(1, qvFile_Write(theBoth, &theByte, 1));
}

TEST(qvFile, AppendGoesToTheEndOnceNotBeforeEachWrite) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("f"), "old");
  OpenFile theFile(theScratch.File("f"), kA);
  EXPECT_EQ(3, Position(theFile));
  EXPECT_EQ(0, qvFile_Seek(theFile, 0, qvFileSeekMode_Begin));
  EXPECT_EQ(3, WriteText(theFile, "new"));
  EXPECT_EQ("new", ReadWholeFile(theScratch.File("f")));
}

TEST(qvFile, AppendToWhatHasNoEndIsAnErrorAndLeavesNothingOpen) {
  ScratchFolder theScratch;
  std::string thePipe = theScratch.File("pipe");
  ASSERT_EQ(0, mkfifo(thePipe.c_str(), 0600));
  int theReader = open(thePipe.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_NE(-1, theReader);
  EXPECT_EQ(kqvFileErrorUnknown, TryOpen(thePipe, kA));
  int theNext = dup(theReader);
  EXPECT_EQ(theReader + 1, theNext) << "a descriptor is still open";
  close(theNext);
  close(theReader);
}

TEST(qvFileKept, ANewFileHasAllPermissionsLessTheUmask) {
  ScratchFolder theScratch;
  struct stat theStat;
  mode_t theUmask = umask(0);
  EXPECT_EQ(0, TryOpen(theScratch.File("all"), kW | kC));
  umask(027);
  EXPECT_EQ(0, TryOpen(theScratch.File("some"), kW | kC));
  umask(theUmask);
  ASSERT_EQ(0, stat(theScratch.File("all").c_str(), &theStat));
  EXPECT_EQ(0777u, theStat.st_mode & 07777u);
  ASSERT_EQ(0, stat(theScratch.File("some").c_str(), &theStat));
  EXPECT_EQ(0750u, theStat.st_mode & 07777u);
}

TEST(qvFile, OpenWithoutAPathOrAnOutputIsRefused) {
  ScratchFolder theScratch;
  qvFileFD theFD = 4711;
  EXPECT_EQ(-1, qvFile_Open(nullptr, kR, 0, &theFD));
  EXPECT_EQ(4711, theFD);
  EXPECT_EQ(-1, qvFile_Open(theScratch.File("new").c_str(), kW | kC, 0, nullptr));
  EXPECT_FALSE(FileExists(theScratch.File("new")));
}

TEST(qvFile, OpenReportsWhyItFailed) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("f"), "");
  EXPECT_EQ(kqvFileErrorNotFound, TryOpen(theScratch.File("none"), kR));
  EXPECT_EQ(kqvFileErrorNotFound, TryOpen(theScratch.File("none/f"), kW | kC));
  EXPECT_EQ(kqvFileErrorNotFound, TryOpen("", kR));
  EXPECT_EQ(kqvFileErrorAlreadyExists, TryOpen(theScratch.File("f"), kW | kC | kE));
  EXPECT_EQ(kqvFileErrorUnknown, TryOpen(theScratch.Path(), kW)) << "a directory";
  EXPECT_EQ(kqvFileErrorUnknown, TryOpen(theScratch.File("f/g"), kR)) << "below a file";
}

TEST(qvFile, TheAccessModeOfOpenIsNotUsed) {
  ScratchFolder theScratch;
  qvFileFD theFD = kqvFileFDInvalid;
  ASSERT_EQ(0, qvFile_Open(theScratch.File("f").c_str(), kW | kC, qvFileAccessMode_Read, &theFD));
  EXPECT_EQ(4, WriteText(theFD, "text"));
  EXPECT_EQ(0, qvFile_Close(theFD));
}

TEST(qvFile, BackslashesInAPathAreSlashes) {
  ScratchFolder theScratch;
  std::string thePath = theScratch.Path() + "\\f";
  EXPECT_EQ(0, TryOpen(thePath, kW | kC));
  EXPECT_TRUE(FileExists(theScratch.File("f")));
  EXPECT_EQ(1, qvFile_Exists(thePath.c_str()));
  EXPECT_EQ(0, qvFile_Rename(thePath.c_str(), (theScratch.Path() + "\\g").c_str()));
  EXPECT_TRUE(FileExists(theScratch.File("g")));
  EXPECT_EQ(0, qvFile_Remove((theScratch.Path() + "\\g").c_str()));
  EXPECT_FALSE(FileExists(theScratch.File("g")));
}

TEST(qvFile, ReadStopsAtTheEndOfTheFile) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("f"), std::string("a\0\xFF\nb", 5));
  OpenFile theFile(theScratch.File("f"), kR);
  EXPECT_EQ(std::string("a\0", 2), ReadText(theFile, 2));
  EXPECT_EQ("\xFF\nb", ReadText(theFile, 100));
  EXPECT_EQ("", ReadText(theFile, 100));
}

TEST(qvFile, ReadingOrWritingNothingTransfersNothing) {
  ScratchFolder theScratch;
  OpenFile theFile(theScratch.File("f"), kRW | kC);
  EXPECT_EQ(0, qvFile_Write(theFile, nullptr, 0));
  EXPECT_EQ(0, qvFile_Read(theFile, nullptr, 0));
  EXPECT_EQ("", ReadWholeFile(theScratch.File("f")));
}

TEST(qvFile, AReadFromAPipeWaitsForTheWholeCount) {
  int thePipe[2];
  ASSERT_EQ(0, pipe(thePipe));
  pid_t theChild = fork();
  if (theChild == 0) {
    for (int i = 0; i < 100; ++i) {
      if (write(thePipe[1], "0123456789", 10) != 10) {
        _exit(1);
      }
    }
    _exit(0);
  }
  close(thePipe[1]);
  EXPECT_EQ(995u, ReadText(thePipe[0], 995).size());
  EXPECT_EQ("56789", ReadText(thePipe[0], 1000));
  close(thePipe[0]);
  EXPECT_EQ(theChild, waitpid(theChild, nullptr, 0));
}

TEST(qvFile, TransfersOnADescriptorThatIsNotOpenAreErrors) {
  char theByte = 0;
  qvFileOffset theOffset = 4711;
  EXPECT_EQ(-1, qvFile_Read(kqvFileFDInvalid, &theByte, 1));
  EXPECT_EQ(-1, qvFile_Write(kqvFileFDInvalid, &theByte, 1));
  EXPECT_EQ(-1, qvFile_Seek(kqvFileFDInvalid, 0, qvFileSeekMode_Begin));
  EXPECT_EQ(-1, qvFile_EndOfFile(kqvFileFDInvalid));
  EXPECT_EQ(-1, qvFile_ChangeSize(kqvFileFDInvalid, 0));
  EXPECT_EQ(-1, qvFile_Flush(kqvFileFDInvalid));
  EXPECT_EQ(-1, qvFile_Close(kqvFileFDInvalid));
  EXPECT_EQ(-1, qvFile_Tell(kqvFileFDInvalid, &theOffset));
  EXPECT_EQ(-1, theOffset);
  theOffset = 4711;
  EXPECT_EQ(-1, qvFile_GetSize(kqvFileFDInvalid, &theOffset));
  EXPECT_EQ(-1, theOffset);
}

TEST(qvFile, AFullDeviceIsReported) {
  OpenFile theFile("/dev/full", kW);
  EXPECT_EQ(kqvFileErrorNoSpace, WriteText(theFile, "text"));
}

TEST(qvFile, AWriteThatFailsHalfwayLosesItsCount) {
  ScratchFolder theScratch;
  ChildResult theResult = RunInChild([&theScratch] {
    signal(SIGXFSZ, SIG_IGN);
    const struct rlimit theLimit = {10, 10};
    qvFileFD theFD;
    if (qvFile_Open(theScratch.File("f").c_str(), kW | kC, 0, &theFD) != 0 ||
        setrlimit(RLIMIT_FSIZE, &theLimit) != 0) {
      _exit(1);
    }
    _exit(WriteText(theFD, "0123456789abcdef") == kqvFileErrorUnknown ? 0 : 2);
  });
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("0123456789", ReadWholeFile(theScratch.File("f")));
}

TEST(qvFile, SeekCountsFromTheBeginningThePositionOrTheEnd) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("f"), "0123456789");
  OpenFile theFile(theScratch.File("f"), kR);
  EXPECT_EQ(0, qvFile_Seek(theFile, 4, qvFileSeekMode_Begin));
  EXPECT_EQ(4, Position(theFile));
  EXPECT_EQ(0, qvFile_Seek(theFile, -1, qvFileSeekMode_Current));
  EXPECT_EQ(3, Position(theFile));
  EXPECT_EQ(0, qvFile_Seek(theFile, -2, qvFileSeekMode_End));
  EXPECT_EQ(8, Position(theFile));
  EXPECT_EQ(0, qvFile_Seek(theFile, 5, qvFileSeekMode_End));
  EXPECT_EQ(15, Position(theFile));
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_Seek(theFile, -1, qvFileSeekMode_Begin));
  EXPECT_EQ(15, Position(theFile)) << "a failed seek moved the position";
}

TEST(qvFile, AnUnknownSeekModeFailsAnAssertion) {
  ScratchFolder theScratch;
  OpenFile theFile(theScratch.File("f"), kW | kC);
  EXPECT_QV_ASSERTION(qvFile_Seek(theFile, 0, 3), "qvFile_Seek: Unknown seek mode", "qvFile");
  EXPECT_QV_ASSERTION(qvFile_Seek(theFile, 0, -1), "qvFile_Seek: Unknown seek mode", "qvFile");
}

TEST(qvFile, OffsetsBeyond32BitsWork) {
  const qvFileOffset kFiveGiB = 5368709120;
  ScratchFolder theScratch;
  OpenFile theFile(theScratch.File("f"), kRW | kC);
  ASSERT_EQ(0, qvFile_Seek(theFile, kFiveGiB, qvFileSeekMode_Begin));
  EXPECT_EQ(1, WriteText(theFile, "x"));
  EXPECT_EQ(5368709121, Position(theFile));
  qvFileOffset theSize = 0;
  EXPECT_EQ(0, qvFile_GetSize(theFile, &theSize));
  EXPECT_EQ(5368709121, theSize);
  EXPECT_EQ(1, qvFile_EndOfFile(theFile));
}

TEST(qvFile, GetSizeKeepsThePosition) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("f"), "0123456789");
  OpenFile theFile(theScratch.File("f"), kR);
  qvFile_Seek(theFile, 3, qvFileSeekMode_Begin);
  qvFileOffset theSize = 0;
  EXPECT_EQ(0, qvFile_GetSize(theFile, &theSize));
  EXPECT_EQ(10, theSize);
  EXPECT_EQ(3, Position(theFile));
}

TEST(qvFile, APipeHasNoSizeNoPositionAndNoEnd) {
  int thePipe[2];
  ASSERT_EQ(0, pipe(thePipe));
  qvFileOffset theOffset = 4711;
  EXPECT_EQ(-1, qvFile_GetSize(thePipe[0], &theOffset));
  EXPECT_EQ(-1, theOffset);
  theOffset = 4711;
  EXPECT_EQ(-1, qvFile_Tell(thePipe[0], &theOffset));
  EXPECT_EQ(-1, theOffset);
  EXPECT_EQ(-1, qvFile_EndOfFile(thePipe[0]));
  close(thePipe[0]);
  close(thePipe[1]);
}

TEST(qvFile, EndOfFileIsThePositionAtTheSizeOnly) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("f"), "abc");
  OpenFile theFile(theScratch.File("f"), kR);
  const struct {
    qvFileOffset mPosition;
    int mExpected;
    const char* mWhy;
  } kCases[] = {
      {0, 0, "the beginning"}, {2, 0, "the last byte"}, {3, 1, "the end"}, {4, 0, "behind the end"}};
  for (const auto& theCase : kCases) {
    ASSERT_EQ(0, qvFile_Seek(theFile, theCase.mPosition, qvFileSeekMode_Begin));
    EXPECT_EQ(theCase.mExpected, qvFile_EndOfFile(theFile)) << theCase.mWhy;
    EXPECT_EQ(theCase.mPosition, Position(theFile)) << theCase.mWhy;
  }
}

TEST(qvFile, AnEmptyFileIsAtItsEnd) {
  ScratchFolder theScratch;
  OpenFile theFile(theScratch.File("f"), kW | kC);
  EXPECT_EQ(1, qvFile_EndOfFile(theFile));
}

TEST(qvFileKept, ChangeSizeReportsFailureUnlessTheLowWordOfTheSizeIsZero) {
  ScratchFolder theScratch;
  OpenFile theFile(theScratch.File("f"), kRW | kC);
  const struct {
    qvFileOffset mSize;
    int mExpected;
    const char* mWhy;
  } kCases[] = {
      {100, -1, "the kept one: the file has 100 bytes all the same"},
      {1, -1, "one byte"},
      {0, 0, "no byte"},
      {4294967295, -1, "the largest low word"},
      {4294967296, 0, "a low word of zero"},
      {4294967297, -1, "a low word of one"},
      {2147483648, -1, "a low word with its top bit"},
  };
  for (const auto& theCase : kCases) {
    qvFileOffset theSize = -1;
    EXPECT_EQ(theCase.mExpected, qvFile_ChangeSize(theFile, theCase.mSize)) << theCase.mWhy;
    EXPECT_EQ(0, qvFile_GetSize(theFile, &theSize));
    EXPECT_EQ(theCase.mSize, theSize) << theCase.mWhy;
    EXPECT_EQ(theCase.mSize, Position(theFile)) << theCase.mWhy;
  }
}

TEST(qvFile, ChangeSizeThatFailsLeavesTheFile) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("f"), "text");
  OpenFile theWriter(theScratch.File("f"), kW);
  EXPECT_EQ(-1, qvFile_ChangeSize(theWriter, -1));
  OpenFile theReader(theScratch.File("f"), kR);
  EXPECT_EQ(-1, qvFile_ChangeSize(theReader, 0));
  EXPECT_EQ("text", ReadWholeFile(theScratch.File("f")));
}

TEST(qvFile, FlushSucceedsOnAFileOnly) {
  ScratchFolder theScratch;
  OpenFile theFile(theScratch.File("f"), kW | kC);
  WriteText(theFile, "text");
  EXPECT_EQ(0, qvFile_Flush(theFile));
  int thePipe[2];
  ASSERT_EQ(0, pipe(thePipe));
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_Flush(thePipe[1]));
  close(thePipe[0]);
  close(thePipe[1]);
}
