#include "tools/qvlogcat/LogFollower.h"

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "support/CollectedLines.h"
#include "support/ScratchFolder.h"

namespace {

class LogFollowerTest : public ::testing::Test {
 protected:
  std::string Path(const char* aName) const { return mFolder.File(aName); }
  void Write(const char* aName, const std::string& aText) { WriteWholeFile(Path(aName), aText); }
  void Append(const char* aName, const std::string& aText) {
    std::ofstream(Path(aName), std::ios::app | std::ios::binary) << aText;
  }
  void Rename(const char* aFrom, const char* aTo) { std::filesystem::rename(Path(aFrom), Path(aTo)); }
  // Sets the last change, in seconds since 1970.
  void SetTime(const char* aName, time_t aTime) {
    struct timespec theTimes[2] = {{aTime, 0}, {aTime, 0}};
    ASSERT_EQ(0, utimensat(AT_FDCWD, Path(aName).c_str(), theTimes, 0));
  }

  std::string ReadAll(LogFollower& aFollower) {
    EXPECT_EQ(LogFollowerResult_Ok, aFollower.ReadEnd(UINT64_MAX, mLines, &mfWhole));
    return mLines.Take();
  }
  std::string ReadEnd(LogFollower& aFollower, uint64 aLength) {
    EXPECT_EQ(LogFollowerResult_Ok, aFollower.ReadEnd(aLength, mLines, &mfWhole));
    return mLines.Take();
  }
  std::string ReadAdded(LogFollower& aFollower) {
    EXPECT_EQ(LogFollowerResult_Ok, aFollower.ReadAdded(true, mLines));
    return mLines.Take();
  }

  ScratchFolder mFolder;
  CollectedLines mLines;
  bool mfWhole = false;
};

}  // namespace

TEST_F(LogFollowerTest, TheOldestRenamedFileComesFirst) {
  Write("box.log", "5\n");
  Write("box.log.1", "3\n4\n");
  Write("box.log.2", "2\n");
  Write("box.log.10", "1\n");
  Write("box.log.old", "not ours\n");
  LogFollower theFollower(Path("box.log"));
  EXPECT_EQ("(file)1|(file)2|(file)3|4|(file)5|", ReadAll(theFollower));
  EXPECT_TRUE(mfWhole);
}

TEST_F(LogFollowerTest, FilesOfAPatternComeInTheOrderOfTheirLastChange) {
  Write("box-20261120.log", "1\n");
  Write("box-20261121.log", "3\n");
  Write("box-20261121.log.1", "2\n");
  SetTime("box-20261120.log", 1000);
  SetTime("box-20261121.log", 3000);
  SetTime("box-20261121.log.1", 2000);
  LogFollower theFollower(Path("box-%y%m%d.log"));
  EXPECT_EQ("(file)1|(file)2|(file)3|", ReadAll(theFollower));
}

TEST_F(LogFollowerTest, TheLatestTimeOfAFileIsItsLastChange) {
  Write("box.log", "1\n");
  SetTime("box.log", 1000);
  LogFollower theFollower(Path("box.log"));
  ReadAll(theFollower);
  EXPECT_EQ(1000000000, mLines.mLatest);
}

TEST_F(LogFollowerTest, ReadsTheEndFromTheNextWholeLineOn) {
  Write("box.log.1", "a1\na2\n");
  Write("box.log", "b1\nb2\n");
  const struct {
    uint64 mLength;
    const char* mLines;
    bool mfWhole;
  } kCases[] = {
      {0, "(middle)", false},
      {1, "(middle)", false},
      {3, "(middle)b2|", false},
      {4, "(middle)b2|", false},
      {6, "(file)b1|b2|", false},
      {7, "(middle)(file)b1|b2|", false},
      {9, "(middle)a2|(file)b1|b2|", false},
      {12, "(file)a1|a2|(file)b1|b2|", true},
      {13, "(file)a1|a2|(file)b1|b2|", true},
  };
  for (const auto& theCase : kCases) {
    LogFollower theFollower(Path("box.log"));
    EXPECT_EQ(theCase.mLines, ReadEnd(theFollower, theCase.mLength)) << theCase.mLength;
    EXPECT_EQ(theCase.mfWhole, mfWhole) << theCase.mLength;
  }
}

TEST_F(LogFollowerTest, TheEndCanBeReadAgain) {
  Write("box.log", "1\n2\n3\n");
  LogFollower theFollower(Path("box.log"));
  EXPECT_EQ("(middle)3|", ReadEnd(theFollower, 2));
  EXPECT_EQ("(file)1|2|3|", ReadEnd(theFollower, 100));
  Append("box.log", "4\n");
  EXPECT_EQ("4|", ReadAdded(theFollower));
}

TEST_F(LogFollowerTest, AnAddedLineWaitsForItsEnd) {
  Write("box.log", "1\n2");
  LogFollower theFollower(Path("box.log"));
  EXPECT_EQ("(file)1|", ReadAll(theFollower));
  Append("box.log", "3");
  EXPECT_EQ("", ReadAdded(theFollower));
  Append("box.log", "4\n5\n");
  EXPECT_EQ("234|5|", ReadAdded(theFollower));
}

TEST_F(LogFollowerTest, FinishHandsOverALineWithoutEnd) {
  Write("box.log", "1\n2");
  LogFollower theFollower(Path("box.log"));
  ReadAll(theFollower);
  EXPECT_EQ(LogFollowerResult_Ok, theFollower.Finish(mLines));
  EXPECT_EQ("2|", mLines.Take());
}

TEST_F(LogFollowerTest, ARenamedFileIsReadToItsEndBeforeItsSuccessor) {
  Write("box.log", "1\n");
  LogFollower theFollower(Path("box.log"));
  ReadAll(theFollower);
  Append("box.log", "2\n3");
  Rename("box.log", "box.log.1");
  Write("box.log", "4\n");
  EXPECT_EQ("2|3|(file)4|", ReadAdded(theFollower));
  Append("box.log", "5\n");
  EXPECT_EQ("5|", ReadAdded(theFollower));
}

TEST_F(LogFollowerTest, FilesThatCameAndWentOnBetweenTwoLooksAreRead) {
  Write("box.log", "1\n");
  LogFollower theFollower(Path("box.log"));
  ReadAll(theFollower);
  Rename("box.log", "box.log.3");
  Write("box.log.2", "2\n");
  Write("box.log.1", "3\n");
  Write("box.log", "4\n");
  EXPECT_EQ("(file)2|(file)3|(file)4|", ReadAdded(theFollower));
}

TEST_F(LogFollowerTest, AFollowedFileThatWasDroppedIsReadToItsEnd) {
  Write("box.log", "1\n");
  SetTime("box.log", 1000);
  LogFollower theFollower(Path("box.log"));
  ReadAll(theFollower);
  Append("box.log", "2\n");
  SetTime("box.log", 1000);
  unlink(Path("box.log").c_str());
  Write("box.log.1", "3\n");
  Write("box.log", "4\n");
  EXPECT_EQ("2|(file)3|(file)4|", ReadAdded(theFollower));
}

TEST_F(LogFollowerTest, OlderFilesAreNotReadAgainWhenTheFollowedOneIsRemoved) {
  Write("box.log.1", "1\n");
  Write("box.log", "2\n");
  SetTime("box.log.1", 1000);
  SetTime("box.log", 2000);
  LogFollower theFollower(Path("box.log"));
  ReadAll(theFollower);
  unlink(Path("box.log").c_str());
  EXPECT_EQ("", ReadAdded(theFollower));
  Write("box.log", "3\n");
  EXPECT_EQ("(file)3|", ReadAdded(theFollower));
}

TEST_F(LogFollowerTest, AnEmptySuccessorDoesNotEndTheOldFile) {
  Write("box.log", "1\n");
  LogFollower theFollower(Path("box.log"));
  ReadAll(theFollower);
  Rename("box.log", "box.log.1");
  Write("box.log", "");
  EXPECT_EQ("", ReadAdded(theFollower));
  Append("box.log.1", "2\n");
  EXPECT_EQ("2|", ReadAdded(theFollower));
  Append("box.log", "3\n");
  EXPECT_EQ("(file)3|", ReadAdded(theFollower));
}

TEST_F(LogFollowerTest, AShorterFileIsReadFromItsStart) {
  Write("box.log", "1\n2\n3");
  LogFollower theFollower(Path("box.log"));
  ReadAll(theFollower);
  ASSERT_EQ(0, truncate(Path("box.log").c_str(), 0));
  Append("box.log", "4\n");
  EXPECT_EQ("3|(file)4|", ReadAdded(theFollower));
}

TEST_F(LogFollowerTest, ACopyOfATruncatedFileIsNotReadAgain) {
  Write("box.log", "1\n2\n");
  LogFollower theFollower(Path("box.log"));
  ReadAll(theFollower);
  std::filesystem::copy_file(Path("box.log"), Path("box.log.1"));
  ASSERT_EQ(0, truncate(Path("box.log").c_str(), 0));
  Append("box.log", "3\n");
  EXPECT_EQ("(file)3|", ReadAdded(theFollower));
}

TEST_F(LogFollowerTest, AMissingFileIsReadOnceItIsThere) {
  LogFollower theFollower(Path("box.log"));
  EXPECT_EQ(LogFollowerResult_Error, theFollower.ReadEnd(UINT64_MAX, mLines, &mfWhole));
  EXPECT_EQ(ENOENT, errno);
  EXPECT_EQ(Path("box.log"), theFollower.ErrorPath());
  EXPECT_TRUE(theFollower.IsFollowing());
  EXPECT_EQ("", ReadAdded(theFollower));
  Write("box.log", "1\n");
  EXPECT_EQ("(file)1|", ReadAdded(theFollower));
}

TEST_F(LogFollowerTest, ANewDayOfAPatternIsFollowed) {
  Write("box-20261120.log", "1\n");
  LogFollower theFollower(Path("box-%y%m%d.log"));
  EXPECT_EQ("(file)1|", ReadAll(theFollower));
  SetTime("box-20261120.log", 1000);
  Write("box-20261121.log", "2\n");
  EXPECT_EQ("(file)2|", ReadAdded(theFollower));
}

TEST_F(LogFollowerTest, ALinkIsFollowedToItsFile) {
  Write("target", "1\n");
  ASSERT_EQ(0, symlink("target", Path("box.log").c_str()));
  LogFollower theFollower(Path("box.log"));
  EXPECT_EQ("(file)1|", ReadAll(theFollower));
  Append("target", "2\n");
  EXPECT_EQ("2|", ReadAdded(theFollower));
}

TEST_F(LogFollowerTest, AFolderCannotBeRead) {
  ASSERT_EQ(0, mkdir(Path("box.log").c_str(), 0700));
  LogFollower theFollower(Path("box.log"));
  EXPECT_EQ(LogFollowerResult_Error, theFollower.ReadEnd(UINT64_MAX, mLines, &mfWhole));
  EXPECT_EQ(EISDIR, errno);
}

TEST_F(LogFollowerTest, StopsWhenNoMoreIsWanted) {
  Write("box.log.1", "1\n2\n");
  Write("box.log", "3\n");
  mLines.mLimit = 1;
  LogFollower theFollower(Path("box.log"));
  EXPECT_EQ(LogFollowerResult_Stopped, theFollower.ReadEnd(UINT64_MAX, mLines, &mfWhole));
  EXPECT_EQ("(file)1|", mLines.Take());
}
