#include "tools/qvlogd/LogFiles.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <deque>
#include <filesystem>

#include "support/FreeDescriptor.h"
#include "support/ScratchFolder.h"
#include "support/TimeZone.h"

namespace {

constexpr time_t kNoon = 1709640000;  // 2024-03-05 12:00:00 UTC

// The clock and the disk do what the test says.
class TestedFiles : public LogFiles {
 public:
  explicit TestedFiles(const LogFilesOptions& anOptions) : LogFiles(anOptions, "srv") {}

  size_t WriteText(const std::string& aText) { return Write(aText.data(), aText.size()); }

  time_t mNow = kNoon;
  int mPuts = 0;
  // What the next writes do: so many bytes, or an error when negative. Without an entry they write all.
  std::deque<int> mOutcomes;

 protected:
  time_t Now() const override { return mNow; }
  ssize_t Put(int aFile, const char* aBytes, size_t aLength) override {
    ++mPuts;
    if (!mOutcomes.empty()) {
      int theOutcome = mOutcomes.front();
      mOutcomes.pop_front();
      if (theOutcome < 0) {
        errno = -theOutcome;
        return -1;
      }
      aLength = static_cast<size_t>(theOutcome);
    }
    return LogFiles::Put(aFile, aBytes, aLength);
  }
};

class LogFilesTest : public testing::Test {
 protected:
  LogFilesTest() { mOptions.mPattern = mFolder.File("log"); }
  std::string Content(const char* aName) { return ReadWholeFile(mFolder.File(aName)); }

  ScratchFolder mFolder;
  TimeZone mZone{"UTC0"};
  LogFilesOptions mOptions;
};

}  // namespace

TEST_F(LogFilesTest, TheNameIsMadeFromTimeAndProcess) {
  mOptions.mPattern = mFolder.File("%n-%y%m%d-%H%M%S.log");
  TestedFiles theFiles(mOptions);
  std::string theError;
  EXPECT_TRUE(theFiles.Open(&theError)) << theError;
  EXPECT_EQ("srv-20240305-120000.log", mFolder.Names());
}

TEST_F(LogFilesTest, ABlockIsWrittenByOneWrite) {
  TestedFiles theFiles(mOptions);
  EXPECT_EQ(8u, theFiles.WriteText("one\ntwo\n"));
  EXPECT_EQ(1, theFiles.mPuts);
  EXPECT_EQ("one\ntwo\n", Content("log"));
}

TEST_F(LogFilesTest, AnExistingFileIsContinued) {
  WriteWholeFile(mFolder.File("log"), "before\n");
  TestedFiles(mOptions).WriteText("after\n");
  EXPECT_EQ("before\nafter\n", Content("log"));
}

TEST_F(LogFilesTest, AHalfLineThatIsFoundIsEndedFirst) {
  WriteWholeFile(mFolder.File("log"), "before\nhal");
  TestedFiles theFiles(mOptions);
  theFiles.mOutcomes = {-EINTR};
  EXPECT_EQ(6u, theFiles.WriteText("after\n"));
  EXPECT_EQ("before\nhal\nafter\n", Content("log"));
}

TEST_F(LogFilesTest, MissingFoldersAreMade) {
  mOptions.mPattern = mFolder.File("%y/%m/log");
  TestedFiles(mOptions).WriteText("line\n");
  EXPECT_EQ("line\n", Content("2024/03/log"));
}

TEST_F(LogFilesTest, AFileThatCannotBeOpenedIsToldInOneLine) {
  mOptions.mPattern = mFolder.Path();
  TestedFiles theFiles(mOptions);
  std::string theError;
  EXPECT_FALSE(theFiles.Open(&theError));
  EXPECT_EQ("cannot open '" + mFolder.Path() + "': Is a directory", theError);
  EXPECT_EQ(0u, theFiles.WriteText("line\n"));
}

TEST_F(LogFilesTest, AFileIsRotatedWhereTheNextLineDoesNotFit) {
  mOptions.mRotateSize = 10;
  TestedFiles theFiles(mOptions);
  EXPECT_EQ(25u, theFiles.WriteText("1234\n5678\nabcd\nefgh\nijkl\n"));
  EXPECT_EQ("log log.1 log.2", mFolder.Names());
  EXPECT_EQ("1234\n5678\n", Content("log.2"));
  EXPECT_EQ("abcd\nefgh\n", Content("log.1"));
  EXPECT_EQ("ijkl\n", Content("log"));
}

TEST_F(LogFilesTest, ALineThatJustFitsIsNotRotated) {
  mOptions.mRotateSize = 10;
  TestedFiles theFiles(mOptions);
  theFiles.WriteText("1234\n");
  theFiles.WriteText("5678\n");
  EXPECT_EQ("log", mFolder.Names());
}

TEST_F(LogFilesTest, ALineLongerThanAFileGetsOneOfItsOwn) {
  mOptions.mRotateSize = 6;
  TestedFiles theFiles(mOptions);
  theFiles.WriteText("a\nvery long line\nb\n");
  EXPECT_EQ("a\n", Content("log.2"));
  EXPECT_EQ("very long line\n", Content("log.1"));
  EXPECT_EQ("b\n", Content("log"));
}

TEST_F(LogFilesTest, AnExistingFileThatIsTooLargeIsRotatedFirst) {
  WriteWholeFile(mFolder.File("log"), "0123456789\n");
  mOptions.mRotateSize = 10;
  TestedFiles(mOptions).WriteText("new\n");
  EXPECT_EQ("0123456789\n", Content("log.1"));
  EXPECT_EQ("new\n", Content("log"));
}

TEST_F(LogFilesTest, SoManyRotatedFilesAreKept) {
  mOptions.mRotateSize = 2;
  mOptions.mRotateCount = 2;
  TestedFiles(mOptions).WriteText("1\n2\n3\n4\n5\n");
  EXPECT_EQ("log log.1 log.2", mFolder.Names());
  EXPECT_EQ("3\n", Content("log.2"));
  EXPECT_EQ("5\n", Content("log"));
}

TEST_F(LogFilesTest, FilesBeyondTheCountGoAtTheStart) {
  for (const char* theName : {"log.1", "log.2", "log.7", "log.9"}) {
    WriteWholeFile(mFolder.File(theName), "x\n");
  }
  mOptions.mRotateCount = 2;
  TestedFiles(mOptions).WriteText("line\n");
  EXPECT_EQ("log log.1 log.2", mFolder.Names());
}

TEST_F(LogFilesTest, TheFirstLineOfANewPeriodRotates) {
  mOptions.mRotateTime = 3600;
  TestedFiles theFiles(mOptions);
  theFiles.mNow = kNoon + 3599;
  theFiles.WriteText("12:59:59\n");
  theFiles.mNow = kNoon + 3600;
  EXPECT_EQ("log", mFolder.Names());
  theFiles.WriteText("13:00:00\n");
  theFiles.WriteText("still 13:00:00\n");
  EXPECT_EQ("12:59:59\n", Content("log.1"));
  EXPECT_EQ("13:00:00\nstill 13:00:00\n", Content("log"));
}

TEST_F(LogFilesTest, DaysBeginAtLocalMidnight) {
  TimeZone theZone("XYZ-2");  // two hours east
  mOptions.mRotateTime = 86400;
  TestedFiles theFiles(mOptions);
  theFiles.mNow = kNoon + 36000 - 1;
  theFiles.WriteText("23:59:59\n");
  theFiles.mNow = kNoon + 36000;
  theFiles.WriteText("00:00:00\n");
  EXPECT_EQ("23:59:59\n", Content("log.1"));
}

TEST_F(LogFilesTest, AFileOfAnEarlierPeriodIsRotatedAfterARestart) {
  WriteWholeFile(mFolder.File("log"), "yesterday\n");
  struct timespec theTimes[2] = {{kNoon - 86400, 0}, {kNoon - 86400, 0}};
  ASSERT_EQ(0, utimensat(AT_FDCWD, mFolder.File("log").c_str(), theTimes, 0));
  mOptions.mRotateTime = 86400;
  TestedFiles(mOptions).WriteText("today\n");
  EXPECT_EQ("yesterday\n", Content("log.1"));
  EXPECT_EQ("today\n", Content("log"));
}

TEST_F(LogFilesTest, AnEmptyFileIsNotRotated) {
  mOptions.mRotateTime = 3600;
  TestedFiles theFiles(mOptions);
  std::string theError;
  theFiles.Open(&theError);
  theFiles.mNow = kNoon + 7200;
  theFiles.WriteText("line\n");
  theFiles.WriteText("line\n");
  EXPECT_EQ("log", mFolder.Names());
}

TEST_F(LogFilesTest, WhereTheNewFileHasANameOfItsOwnTheOldOneKeepsIts) {
  mOptions.mPattern = mFolder.File("log-%d");
  mOptions.mRotateTime = 86400;
  mOptions.mRotateCount = 1;
  TestedFiles theFiles(mOptions);
  for (int theDay = 0; theDay < 3; ++theDay) {
    theFiles.mNow = kNoon + theDay * 86400;
    theFiles.WriteText(std::to_string(theDay) + "\n");
  }
  EXPECT_EQ("log-06 log-07", mFolder.Names());
  EXPECT_EQ("2\n", Content("log-07"));
}

TEST_F(LogFilesTest, AllFilesTogetherStayWithinTheirUse) {
  mOptions.mMaxUse = 800;
  TestedFiles theFiles(mOptions);
  std::string theLast;
  for (int i = 0; i < 1000; ++i) {
    theLast = "line " + std::to_string(1000 + i) + "\n";
    theFiles.WriteText(theLast);
    uint64 theBytes = 0;
    for (const LogFileName& theFile : LogFileNames_List(mFolder.Path(), "log", "")) {
      theBytes += theFile.mSize;
    }
    ASSERT_LE(theBytes, 800u);
    ASSERT_GE(theBytes, i > 100 ? 650u : 0u) << "more was dropped than was necessary";
  }
  EXPECT_NE(std::string::npos, Content("log").find(theLast));
}

TEST_F(LogFilesTest, WhatIsToStayFreeStaysFreeAtTheCostOfRotatedFiles) {
  WriteWholeFile(mFolder.File("log.1"), "x\n");
  WriteWholeFile(mFolder.File("log.2"), "x\n");
  mOptions.mKeepFree = UINT64_MAX / 2;  // no disk has that
  TestedFiles theFiles(mOptions);
  EXPECT_EQ(0u, theFiles.WriteText("line\n"));
  EXPECT_EQ("log", mFolder.Names());
}

TEST_F(LogFilesTest, AFullDiskCostsTheOldestRotatedFilesOneByOne) {
  for (const char* theName : {"log.1", "log.2", "log.3"}) {
    WriteWholeFile(mFolder.File(theName), "x\n");
  }
  TestedFiles theFiles(mOptions);
  theFiles.mOutcomes = {-ENOSPC, 3, -EDQUOT};
  EXPECT_EQ(5u, theFiles.WriteText("line\n"));
  EXPECT_EQ("log log.1", mFolder.Names());
  EXPECT_EQ("line\n", Content("log"));
}

TEST_F(LogFilesTest, OnAFullDiskWithoutRotatedFilesTheLineIsCompletedLater) {
  TestedFiles theFiles(mOptions);
  theFiles.mOutcomes = {6, -ENOSPC};
  EXPECT_EQ(4u, theFiles.WriteText("one\ntwo\n"));
  EXPECT_EQ("one\ntw", Content("log"));
  theFiles.mOutcomes = {-ENOSPC};
  EXPECT_EQ(0u, theFiles.WriteText("two\nthree\n"));
  EXPECT_EQ(10u, theFiles.WriteText("two\nthree\n"));
  EXPECT_EQ("one\ntwo\nthree\n", Content("log"));
}

TEST_F(LogFilesTest, AHalfLineIsTakenBackAtTheEnd) {
  TestedFiles theFiles(mOptions);
  theFiles.mOutcomes = {6, -ENOSPC};
  theFiles.WriteText("one\ntwo\n");
  theFiles.Close();
  EXPECT_EQ("one\n", Content("log"));
}

TEST_F(LogFilesTest, AHalfLineIsNotSplitByAReopening) {
  TestedFiles theFiles(mOptions);
  theFiles.mOutcomes = {6, -ENOSPC};
  theFiles.WriteText("one\ntwo\n");
  std::filesystem::rename(mFolder.File("log"), mFolder.File("renamed"));
  theFiles.Reopen();
  EXPECT_EQ(4u, theFiles.WriteText("two\n"));
  EXPECT_EQ("one\n", Content("renamed"));
  EXPECT_EQ("two\n", Content("log"));
}

TEST_F(LogFilesTest, AHalfLineIsNotSplitByRotation) {
  mOptions.mRotateSize = 10;
  mOptions.mRotateTime = 3600;
  TestedFiles theFiles(mOptions);
  theFiles.mOutcomes = {6, -ENOSPC};
  EXPECT_EQ(4u, theFiles.WriteText("one\ntwo\n"));
  theFiles.mNow += 7200;
  EXPECT_EQ(8u, theFiles.WriteText("two\nfou\n"));
  EXPECT_EQ("one\ntwo\n", Content("log.1"));
  EXPECT_EQ("fou\n", Content("log"));
}

TEST_F(LogFilesTest, AFileThatMayNotGrowIsRotated) {
  TestedFiles theFiles(mOptions);
  theFiles.mOutcomes = {6, -EFBIG};
  EXPECT_EQ(8u, theFiles.WriteText("one\ntwo\n"));
  EXPECT_EQ("one\n", Content("log.1"));
  EXPECT_EQ("two\n", Content("log"));
}

TEST_F(LogFilesTest, ALineThatNoFileMayHoldIsNotTriedForEver) {
  TestedFiles theFiles(mOptions);
  theFiles.mOutcomes = {2, -EFBIG};
  EXPECT_EQ(0u, theFiles.WriteText("one\n"));
  EXPECT_EQ("log", mFolder.Names());
}

TEST_F(LogFilesTest, InterruptedAndShortWritesAreContinued) {
  TestedFiles theFiles(mOptions);
  theFiles.mOutcomes = {-EINTR, 1, -EINTR, 3, 2};
  EXPECT_EQ(8u, theFiles.WriteText("one\ntwo\n"));
  EXPECT_EQ("one\ntwo\n", Content("log"));
}

TEST_F(LogFilesTest, AfterAnErrorOfTheDiskTheFileIsOpenedAgain) {
  int theFree = LowestFreeDescriptor();
  {
    TestedFiles theFiles(mOptions);
    theFiles.mOutcomes = {6, -EIO};
    EXPECT_EQ(4u, theFiles.WriteText("one\ntwo\n"));
    EXPECT_EQ(4u, theFiles.WriteText("two\n"));
    EXPECT_EQ("one\ntwo\n", Content("log"));
  }
  EXPECT_EQ(theFree, LowestFreeDescriptor());
}

TEST_F(LogFilesTest, ADeletedFileIsMadeAnew) {
  TestedFiles theFiles(mOptions);
  theFiles.WriteText("one\n");
  unlink(mFolder.File("log").c_str());
  EXPECT_EQ(4u, theFiles.WriteText("two\n"));
  EXPECT_EQ("two\n", Content("log"));
}

TEST_F(LogFilesTest, ADeletedFolderIsMadeAnew) {
  mOptions.mPattern = mFolder.File("folder/log");
  TestedFiles theFiles(mOptions);
  theFiles.WriteText("one\n");
  std::filesystem::remove_all(mFolder.File("folder"));
  EXPECT_EQ(4u, theFiles.WriteText("two\n"));
  EXPECT_EQ("two\n", Content("folder/log"));
}

TEST_F(LogFilesTest, ReopeningMakesTheNewFileAtOnce) {
  TestedFiles theFiles(mOptions);
  theFiles.WriteText("one\n");
  std::filesystem::rename(mFolder.File("log"), mFolder.File("renamed"));
  theFiles.Reopen();
  EXPECT_EQ("log renamed", mFolder.Names());
  theFiles.WriteText("two\n");
  EXPECT_EQ("one\n", Content("renamed"));
  EXPECT_EQ("two\n", Content("log"));
}

TEST_F(LogFilesTest, WithoutReopeningARenamedFileIsContinued) {
  TestedFiles theFiles(mOptions);
  theFiles.WriteText("one\n");
  std::filesystem::rename(mFolder.File("log"), mFolder.File("renamed"));
  theFiles.WriteText("two\n");
  EXPECT_EQ("one\ntwo\n", Content("renamed"));
}

TEST_F(LogFilesTest, AFileThatCannotBeRenamedIsContinued) {
  mOptions.mPattern = mFolder.File(std::string(255, 'x'));  // no room for ".1"
  mOptions.mRotateSize = 4;
  TestedFiles theFiles(mOptions);
  EXPECT_EQ(12u, theFiles.WriteText("one\ntwo\nfou\n"));
  EXPECT_EQ("one\ntwo\nfou\n", ReadWholeFile(mOptions.mPattern));
}

TEST_F(LogFilesTest, ADeviceIsWrittenWithoutRotation) {
  mOptions.mPattern = "/dev/null";
  mOptions.mRotateSize = 1;
  mOptions.mKeepFree = UINT64_MAX / 2;
  EXPECT_EQ(8u, TestedFiles(mOptions).WriteText("one\ntwo\n"));
}
