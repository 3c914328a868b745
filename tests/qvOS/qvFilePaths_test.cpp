// The functions of qvFile that take a path and open nothing.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "qvOS/qvFile.h"
#include "qvOS/qvPath.h"
#include "support/ChildProcess.h"
#include "support/OwnedText.h"
#include "support/ScratchFolder.h"

TEST(qvFile, SetSizeCutsAndExtendsAFile) {
  ScratchFolder theScratch;
  std::string thePath = theScratch.File("f");
  WriteWholeFile(thePath, "0123456789");
  EXPECT_EQ(0, qvFile_SetSize(thePath.c_str(), 4));
  EXPECT_EQ("0123", ReadWholeFile(thePath));
  EXPECT_EQ(0, qvFile_truncate(thePath.c_str(), 6));
  EXPECT_EQ(std::string("0123\0\0", 6), ReadWholeFile(thePath));
  EXPECT_EQ(0, qvFile_SetSize(thePath.c_str(), 4294967301));
  struct stat theStat;
  ASSERT_EQ(0, stat(thePath.c_str(), &theStat));
  EXPECT_EQ(4294967301, theStat.st_size);
}

TEST(qvFile, SetSizeThatFailsIsMinusOne) {
  ScratchFolder theScratch;
  EXPECT_EQ(-1, qvFile_SetSize(theScratch.File("none").c_str(), 0));
  EXPECT_EQ(-1, qvFile_truncate(theScratch.File("none").c_str(), 0));
  EXPECT_EQ(-1, qvFile_SetSize(theScratch.Path().c_str(), 0));
  EXPECT_EQ(-1, qvFile_SetSize(nullptr, 0));
  EXPECT_EQ(-1, qvFile_truncate(nullptr, 0));
}

TEST(qvFileKept, SetSizeTakesThePathAsItIs) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("back\\slash"), "text");
  EXPECT_EQ(0, qvFile_SetSize(theScratch.File("back\\slash").c_str(), 2));
  EXPECT_EQ("te", ReadWholeFile(theScratch.File("back\\slash")));
  ChildResult theResult = RunInChild([&theScratch] {
    _exit(chdir(theScratch.Path().c_str()) == 0 && qvFile_SetSize("back\\slash", 1) == 0 &&
                  qvFile_truncate("./back\\slash", 1) == 0
              ? 0
              : 1);
  });
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("t", ReadWholeFile(theScratch.File("back\\slash")));
}

TEST(qvFile, RemoveRemovesAFile) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("f"), "");
  EXPECT_EQ(0, qvFile_Remove(theScratch.File("f").c_str()));
  EXPECT_FALSE(FileExists(theScratch.File("f")));
}

TEST(qvFile, AMissingFileCountsAsRemoved) {
  ScratchFolder theScratch;
  EXPECT_EQ(0, qvFile_Remove(theScratch.File("none").c_str()));
  EXPECT_EQ(0, qvFile_Remove(theScratch.File("none/f").c_str()));
  EXPECT_EQ(0, qvFile_Remove(""));
}

TEST(qvFile, RemoveRefusesADirectoryAndReportsOtherErrors) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("f"), "");
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_Remove(theScratch.Path().c_str()));
  EXPECT_TRUE(FileExists(theScratch.Path()));
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_Remove(theScratch.File("f/g").c_str())) << "below a file";
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_Remove(nullptr));
}

TEST(qvFile, RenameReplacesTheFileOfTheNewName) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("a"), "from a");
  WriteWholeFile(theScratch.File("b"), "from b");
  EXPECT_EQ(0, qvFile_Rename(theScratch.File("a").c_str(), theScratch.File("b").c_str()));
  EXPECT_FALSE(FileExists(theScratch.File("a")));
  EXPECT_EQ("from a", ReadWholeFile(theScratch.File("b")));
}

TEST(qvFile, RenameReportsWhyItFailed) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("a"), "");
  const std::string theA = theScratch.File("a");
  EXPECT_EQ(kqvFileErrorNotFound, qvFile_Rename(theScratch.File("none").c_str(), theA.c_str()));
  EXPECT_EQ(kqvFileErrorNotFound, qvFile_Rename(theA.c_str(), theScratch.File("none/a").c_str()));
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_Rename(theA.c_str(), theScratch.Path().c_str()));
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_Rename(nullptr, theA.c_str()));
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_Rename(theA.c_str(), nullptr));
  EXPECT_TRUE(FileExists(theA));
}

TEST(qvFile, AccessTellsWhatTheProcessMayDo) {
  ScratchFolder theScratch;
  const std::string theReadable = theScratch.File("r");
  const std::string theWritable = theScratch.File("w");
  WriteWholeFile(theReadable, "");
  WriteWholeFile(theWritable, "");
  ASSERT_EQ(0, chmod(theScratch.Path().c_str(), 0755));
  ASSERT_EQ(0, chmod(theReadable.c_str(), 0444));
  ASSERT_EQ(0, chmod(theWritable.c_str(), 0222));
  ChildResult theResult = RunInChild([&] {
    if (getuid() == 0 && setuid(65534) != 0) {
      _exit(1);
    }
    for (const std::string& thePath : {theReadable, theWritable}) {
      for (qvFileAccessMode theMode : {1, 2, 3}) {
        printf("%d", qvFile_Access(thePath.c_str(), theMode));
      }
    }
  });
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("100010", theResult.mStdout);
}

TEST(qvFile, NothingIsAccessibleThatDoesNotExist) {
  ScratchFolder theScratch;
  EXPECT_EQ(0, qvFile_Access(theScratch.File("none").c_str(), qvFileAccessMode_Read));
  EXPECT_EQ(0, qvFile_Access("", qvFileAccessMode_Read));
  EXPECT_EQ(0, qvFile_Access(nullptr, qvFileAccessMode_Read));
  EXPECT_EQ(1, qvFile_Access(theScratch.Path().c_str(), qvFileAccessMode_ReadWrite)) << "a directory";
}

TEST(qvFile, OnlyARegularFileExists) {
  ScratchFolder theScratch;
  const std::string theFile = theScratch.File("f");
  WriteWholeFile(theFile, "");
  ASSERT_EQ(0, symlink("f", theScratch.File("link").c_str()));
  ASSERT_EQ(0, symlink("none", theScratch.File("dangling").c_str()));
  ASSERT_EQ(0, mkfifo(theScratch.File("pipe").c_str(), 0600));
  const struct {
    std::string mPath;
    int mExpected;
    const char* mWhy;
  } kCases[] = {
      {theFile, 1, "a regular file"},
      {theScratch.File("link"), 1, "a link to one"},
      {theScratch.File("dangling"), 0, "a link to nothing"},
      {theScratch.File("none"), 0, "nothing"},
      {theScratch.Path(), 0, "a directory"},
      {theScratch.File("pipe"), 0, "a pipe"},
      {"/dev/null", 0, "a device"},
      {theFile + "/", 0, "a file taken for a directory"},
      {"", 0, "the empty path"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mExpected, qvFile_Exists(theCase.mPath.c_str())) << theCase.mWhy;
  }
  EXPECT_EQ(0, qvFile_Exists(nullptr));
}

TEST(qvFile, APathIsHiddenWhenItsLastComponentBeginsWithADot) {
  const struct {
    const char* mPath;
    int mExpected;
    const char* mWhy;
  } kCases[] = {
      {"/a/.hidden", 1, "a dot first"},
      {"/a\\.hidden", 1, "behind a backslash too"},
      {".hidden", 1, "a relative path"},
      {"./.hidden", 1, "a dot path"},
      {"/a/..", 1, "dot-dot begins with a dot"},
      {"/a/...", 1, "so do three"},
      {"/a/visible", 0, "no dot"},
      {"/a/visible.", 0, "a dot at the end"},
      {"/.hidden/visible", 0, "only the last component counts"},
      {"/a/.hidden/", 0, "which is empty behind a slash"},
      {".", 0, "the executable's directory ends in a slash"},
      {"", 0, "the empty path"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mExpected, qvFile_HasAttribute(theCase.mPath, kqvFileAttribute_Hidden)) << theCase.mWhy;
  }
}

TEST(qvFile, ThereIsNoAttributeButHidden) {
  EXPECT_EQ(0, qvFile_HasAttribute("/a/.hidden", 0));
  EXPECT_EQ(0, qvFile_HasAttribute("/a/.hidden", 2));
  EXPECT_EQ(0, qvFile_HasAttribute(nullptr, kqvFileAttribute_Hidden));
}

TEST(qvFile, GetTimesGivesWholeSecondsOfAccessModificationAndStatusChange) {
  ScratchFolder theScratch;
  const std::string thePath = theScratch.File("f");
  WriteWholeFile(thePath, "");
  const struct timespec theSystemTimes[2] = {{1000000001, 999999999}, {1200000002, 500000000}};
  ASSERT_EQ(0, utimensat(AT_FDCWD, thePath.c_str(), theSystemTimes, 0));
  struct stat theStat;
  ASSERT_EQ(0, stat(thePath.c_str(), &theStat));
  qvtimeval theAccess = {-1, -1};
  qvtimeval theModification = {-1, -1};
  qvtimeval theCreation = {-1, -1};
  EXPECT_EQ(0, qvFile_GetTimes(thePath.c_str(), &theAccess, &theModification, &theCreation));
  EXPECT_EQ(1000000001, theAccess.tv_sec);
  EXPECT_EQ(0, theAccess.tv_usec);
  EXPECT_EQ(1200000002, theModification.tv_sec);
  EXPECT_EQ(0, theModification.tv_usec);
  EXPECT_EQ(static_cast<int32>(theStat.st_ctime), theCreation.tv_sec);
  EXPECT_EQ(0, theCreation.tv_usec);
}

TEST(qvFile, EachOutputOfGetTimesMayBeNull) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("f"), "");
  const struct timespec theSystemTimes[2] = {{1000000001, 0}, {1200000002, 0}};
  ASSERT_EQ(0, utimensat(AT_FDCWD, theScratch.File("f").c_str(), theSystemTimes, 0));
  qvtimeval theTime = {-1, -1};
  EXPECT_EQ(0, qvFile_GetTimes(theScratch.File("f").c_str(), nullptr, nullptr, nullptr));
  EXPECT_EQ(0, qvFile_GetTimes(theScratch.File("f").c_str(), &theTime, nullptr, nullptr));
  EXPECT_EQ(1000000001, theTime.tv_sec);
  EXPECT_EQ(0, qvFile_GetTimes(theScratch.File("f").c_str(), nullptr, &theTime, nullptr));
  EXPECT_EQ(1200000002, theTime.tv_sec);
}

TEST(qvFile, TimesAreThoseOfWhatALinkLeadsTo) {
  ScratchFolder theScratch;
  const std::string theLink = theScratch.File("link");
  WriteWholeFile(theScratch.File("f"), "");
  ASSERT_EQ(0, symlink("f", theLink.c_str()));
  const qvtimeval theTime = {1300000003, 0};
  EXPECT_EQ(0, qvFile_SetModificationTime(theLink.c_str(), &theTime));
  qvtimeval theModification = {-1, -1};
  EXPECT_EQ(0, qvFile_GetTimes(theLink.c_str(), nullptr, &theModification, nullptr));
  EXPECT_EQ(1300000003, theModification.tv_sec);
  EXPECT_EQ(0, qvFile_GetTimes(theScratch.File("f").c_str(), nullptr, &theModification, nullptr));
  EXPECT_EQ(1300000003, theModification.tv_sec);
}

TEST(qvFile, BackslashesAreSlashesWhereverAPathIsAskedFor) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("f"), "");
  const std::string thePath = theScratch.Path() + "\\f";
  const qvtimeval theTime = {1300000003, 0};
  qvtimeval theModification = {-1, -1};
  EXPECT_EQ(1, qvFile_Access(thePath.c_str(), qvFileAccessMode_Read));
  EXPECT_EQ(0, qvFile_SetModificationTime(thePath.c_str(), &theTime));
  EXPECT_EQ(0, qvFile_GetTimes(thePath.c_str(), nullptr, &theModification, nullptr));
  EXPECT_EQ(1300000003, theModification.tv_sec);
}

TEST(qvFile, ARelativePathLiesBesideTheExecutable) {
  ScratchFolder theScratch;
  const std::string theName = TakeText(qvPath_GetApplicationName(0));
  ChildResult theResult = RunInChild([&] {
    if (chdir(theScratch.Path().c_str()) != 0) {
      _exit(1);
    }
    WriteWholeFile(theScratch.File("f"), "");
    qvFileFD theFD = kqvFileFDInvalid;
    printf("%d %d %d %d", qvFile_Exists(theName.c_str()), qvFile_Exists(("./" + theName).c_str()),
           qvFile_Open(theName.c_str(), qvFileOpenMode_Read, 0, &theFD), qvFile_Exists("f"));
  });
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("1 1 0 0", theResult.mStdout);
}

TEST(qvFile, GetTimesThatFailsWritesNothing) {
  ScratchFolder theScratch;
  qvtimeval theTime = {-1, -2};
  EXPECT_EQ(kqvFileErrorNotFound,
            qvFile_GetTimes(theScratch.File("none").c_str(), &theTime, &theTime, &theTime));
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_GetTimes(nullptr, &theTime, &theTime, &theTime));
  EXPECT_EQ(-1, theTime.tv_sec);
  EXPECT_EQ(-2, theTime.tv_usec);
}

TEST(qvFile, SetModificationTimeSetsTheAccessTimeToo) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("f"), "");
  const qvtimeval theTime = {1300000003, 250000};
  EXPECT_EQ(0, qvFile_SetModificationTime(theScratch.File("f").c_str(), &theTime));
  struct stat theStat;
  ASSERT_EQ(0, stat(theScratch.File("f").c_str(), &theStat));
  EXPECT_EQ(1300000003, theStat.st_atim.tv_sec);
  EXPECT_EQ(1300000003, theStat.st_mtim.tv_sec);
  EXPECT_EQ(250000000, theStat.st_mtim.tv_nsec);
}

TEST(qvFile, SetModificationTimeReportsWhyItFailed) {
  ScratchFolder theScratch;
  WriteWholeFile(theScratch.File("f"), "");
  const qvtimeval theTime = {1300000003, 0};
  EXPECT_EQ(kqvFileErrorNotFound, qvFile_SetModificationTime(theScratch.File("none").c_str(), &theTime));
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_SetModificationTime(nullptr, &theTime));
  EXPECT_EQ(kqvFileErrorUnknown, qvFile_SetModificationTime(theScratch.File("f").c_str(), nullptr));
}
