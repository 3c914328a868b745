#include "tools/logstream/LogFileNames.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/ScratchFolder.h"

namespace {

struct tm FifthOfMarch() {
  struct tm theTime;
  memset(&theTime, 0, sizeof(theTime));
  theTime.tm_year = 124;
  theTime.tm_mon = 2;
  theTime.tm_mday = 5;
  theTime.tm_hour = 7;
  theTime.tm_min = 8;
  theTime.tm_sec = 9;
  return theTime;
}

// Makes a file that was changed last at aSecond of 1970.
void MakeFile(const ScratchFolder& aFolder, const char* aName, int aSecond) {
  WriteWholeFile(aFolder.File(aName), "x");
  struct timespec theTimes[2] = {{aSecond, 0}, {aSecond, 0}};
  ASSERT_EQ(0, utimensat(AT_FDCWD, aFolder.File(aName).c_str(), theTimes, 0));
}

std::string Listed(const ScratchFolder& aFolder, const char* aPattern, const char* aProcess) {
  std::string theNames;
  for (const LogFileName& theFile : LogFileNames_List(aFolder.Path(), aPattern, aProcess)) {
    theNames += (theNames.empty() ? "" : " ") + theFile.mPath.substr(aFolder.Path().size() + 1);
  }
  return theNames;
}

}  // namespace

TEST(LogFileNames, ThePatternTakesDateTimeAndProcess) {
  EXPECT_EQ("/tmp/log-20240305-070809-srv.txt",
            LogFileNames_Expand("/tmp/log-%y%m%d-%H%M%S-%n.txt", FifthOfMarch(), "srv"));
}

TEST(LogFileNames, OtherPercentSignsStay) {
  EXPECT_EQ("%x%%2024%", LogFileNames_Expand("%x%%%y%", FifthOfMarch(), "srv"));
}

TEST(LogFileNames, AProcessNameIsNotExpandedAgain) {
  EXPECT_EQ("a%yb", LogFileNames_Expand("%n", FifthOfMarch(), "a%yb"));
}

TEST(LogFileNames, TheHigherNumberIsOlderWhateverTheClockSaid) {
  ScratchFolder theFolder;
  MakeFile(theFolder, "log", 1);
  MakeFile(theFolder, "log.2", 2);
  MakeFile(theFolder, "log.10", 3);
  MakeFile(theFolder, "log.1", 4);
  EXPECT_EQ("log.10 log.2 log.1 log", Listed(theFolder, "log", ""));
}

TEST(LogFileNames, NamesOfSeveralTimesAreSortedByTheirLastChange) {
  ScratchFolder theFolder;
  MakeFile(theFolder, "log-23", 100);
  MakeFile(theFolder, "log-23.1", 300);  // its number says that it is older than log-23
  MakeFile(theFolder, "log-00", 400);
  MakeFile(theFolder, "log-22", 200);
  EXPECT_EQ("log-22 log-23.1 log-23 log-00", Listed(theFolder, "log-%H", ""));
}

TEST(LogFileNames, OnlyWhatThePatternCanHaveMadeIsListed) {
  ScratchFolder theFolder;
  for (const char* theName : {"srv-2024-05", "srv-2024-05.1", "srv-2024-05.0", "srv-2024-05.01",
                              "srv-2024-05.1.gz", "srv-2024-05.", "srv-2024-05.1234567890", "srv-2024-5",
                              "srv-24-05", "srw-2024-05", "srv-2024-05x", "xsrv-2024-05", "srv-2024"}) {
    MakeFile(theFolder, theName, 1);
  }
  EXPECT_EQ("srv-2024-05.1 srv-2024-05", Listed(theFolder, "%n-%y-%d", "srv"));
}

TEST(LogFileNames, OnlyRegularFilesAreListed) {
  ScratchFolder theFolder;
  MakeFile(theFolder, "log", 1);
  ASSERT_EQ(0, mkdir(theFolder.File("log.1").c_str(), 0700));
  ASSERT_EQ(0, symlink("log", theFolder.File("log.2").c_str()));
  EXPECT_EQ("log", Listed(theFolder, "log", ""));
}

TEST(LogFileNames, SizesAreGiven) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("log"), "12345");
  std::vector<LogFileName> theFiles = LogFileNames_List(theFolder.Path(), "log", "");
  ASSERT_EQ(1u, theFiles.size());
  EXPECT_EQ(5u, theFiles[0].mSize);
  EXPECT_EQ(0u, theFiles[0].mNumber);
}

TEST(LogFileNames, AMissingFolderHoldsNothing) {
  ScratchFolder theFolder;
  EXPECT_TRUE(LogFileNames_List(theFolder.File("none"), "log", "").empty());
}
