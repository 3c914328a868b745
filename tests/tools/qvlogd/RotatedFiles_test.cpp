#include "tools/qvlogd/RotatedFiles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/ScratchFolder.h"

TEST(RotatedFiles, AllFilesMoveUpByOne) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("log"), "0");
  WriteWholeFile(theFolder.File("log.1"), "1");
  WriteWholeFile(theFolder.File("log.2"), "2");
  EXPECT_TRUE(RotatedFiles::Shift(theFolder.File("log")));
  EXPECT_EQ("log.1 log.2 log.3", theFolder.Names());
  EXPECT_EQ("0", ReadWholeFile(theFolder.File("log.1")));
  EXPECT_EQ("2", ReadWholeFile(theFolder.File("log.3")));
}

TEST(RotatedFiles, TheGapThatAKillHasLeftIsFilledAndNothingIsReplaced) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("log"), "0");
  WriteWholeFile(theFolder.File("log.1"), "1");
  WriteWholeFile(theFolder.File("log.3"), "3");
  EXPECT_TRUE(RotatedFiles::Shift(theFolder.File("log")));
  EXPECT_EQ("log.1 log.2 log.3", theFolder.Names());
  EXPECT_EQ("1", ReadWholeFile(theFolder.File("log.2")));
  EXPECT_EQ("3", ReadWholeFile(theFolder.File("log.3")));
}

TEST(RotatedFiles, AMissingFileIsNotRotated) {
  ScratchFolder theFolder;
  EXPECT_FALSE(RotatedFiles::Shift(theFolder.File("log")));
  EXPECT_EQ("", theFolder.Names());
}

TEST(RotatedFiles, TheCurrentFileIsNotAmongThem) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("log"), "1234");
  WriteWholeFile(theFolder.File("log.1"), "12");
  WriteWholeFile(theFolder.File("log.2"), "123");
  RotatedFiles theFiles;
  theFiles.Scan(theFolder.File("log"), "/elsewhere/log", "");
  EXPECT_EQ(2u, theFiles.Count());
  EXPECT_EQ(5u, theFiles.Bytes());
}

TEST(RotatedFiles, TheOldestGoesFirst) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("log.1"), "12");
  WriteWholeFile(theFolder.File("log.2"), "123");
  RotatedFiles theFiles;
  theFiles.Scan(theFolder.File("log"), "log", "");
  EXPECT_TRUE(theFiles.DropOldest());
  EXPECT_EQ("log.1", theFolder.Names());
  EXPECT_EQ(2u, theFiles.Bytes());
  EXPECT_TRUE(theFiles.DropOldest());
  EXPECT_FALSE(theFiles.DropOldest());
  EXPECT_EQ("", theFolder.Names());
}

TEST(RotatedFiles, AFileThatSomebodyElseHasDroppedCountsAsDropped) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("log.1"), "12");
  RotatedFiles theFiles;
  theFiles.Scan(theFolder.File("log"), "log", "");
  unlink(theFolder.File("log.1").c_str());
  EXPECT_TRUE(theFiles.DropOldest());
  EXPECT_EQ(0u, theFiles.Bytes());
}
