// What the collector's output does on a disk that is really full: a small file system of the test's own,
// where the machine lets it mount one, and a limit for the size of files.
#include <errno.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sched.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "support/FreshProcess.h"
#include "support/ScratchFolder.h"
#include "tools/logstream/LogFileNames.h"
#include "tools/qvlogd/LogOutput.h"

namespace {

// In a mount name space of its own, so that it goes with the process; false, with errno, where that is not
// allowed.
bool MountSmallDisk(const std::string& aFolder) {
  return unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
         mount("none", aFolder.c_str(), "tmpfs", 0, "size=1m") == 0;
}

bool MayMount() {
  ChildResult theResult = RunInChild([] {
    ScratchFolder theFolder;
    printf("%s", MountSmallDisk(theFolder.Path()) ? "yes" : strerror(errno));
    fflush(stdout);
    umount(theFolder.Path().c_str());
  });
  return theResult.mStdout == "yes";
}

// Prints numbered lines, a turn for each hundred.
class NumberedLines {
 public:
  explicit NumberedLines(LogOutput& anOutput) : mOutput(anOutput) {}
  void Write(int aCount) {
    for (int i = 0; i < aCount; ++i) {
      std::string theText = "line " + std::to_string(mNext++) + " " + std::string(80, 'x');
      LogRecord theRecord;
      theRecord.mText = theText;
      mOutput.Take(theRecord);
      if (mNext % 100 == 0) {
        mOutput.Flush();
      }
    }
    mOutput.Flush();
  }
  int Next() const { return mNext; }

 private:
  LogOutput& mOutput;
  int mNext = 0;
};

// Reads the files of a log, the oldest first, and follows the numbers of the lines.
struct LogContent {
  int mFirst = -1;
  int mLast = -1;
  int mLines = 0;
  uint64 mTold = 0;  // by "suppressed" lines
  int mTellings = 0;

  void Read(const std::string& aFolder) {
    for (const LogFileName& theFile : LogFileNames_List(aFolder, "log", "")) {
      std::string theText = ReadWholeFile(theFile.mPath);
      EXPECT_TRUE(theText.empty() || theText.back() == '\n') << theFile.mPath << " ends inside a line";
      for (size_t i = 0; i < theText.size(); i = theText.find('\n', i) + 1) {
        ReadLine(theText.substr(i, theText.find('\n', i) - i));
      }
    }
  }

 private:
  void ReadLine(const std::string& aLine) {
    const std::string kTelling = "FullDisk_test: suppressed ";
    int theNumber = atoi(aLine.c_str() + std::min<size_t>(aLine.size(), 5));
    if (aLine == "line " + std::to_string(theNumber) + " " + std::string(80, 'x')) {
      EXPECT_TRUE(mFirst < 0 || theNumber == mLast + 1 + mMissing) << mLast << ", then " << theNumber;
      mFirst = mFirst < 0 ? theNumber : mFirst;
      mLast = theNumber;
      mMissing = 0;
      ++mLines;
    } else if (aLine.compare(0, kTelling.size(), kTelling) == 0) {
      mMissing = atoi(aLine.c_str() + kTelling.size());
      mTold += static_cast<uint64>(mMissing);
      ++mTellings;
    } else {
      ADD_FAILURE() << "not a whole line: " << aLine;
    }
  }
  int mMissing = 0;
};

LogOutputOptions ToFile(const std::string& aPath) {
  LogOutputOptions theOptions;
  theOptions.mPattern = aPath;
  theOptions.mForm = LogForm_Cat;
  return theOptions;
}

void OpenOutput(LogOutput& anOutput) {
  std::string theError;
  ASSERT_TRUE(anOutput.Open(&theError)) << theError;
}

}  // namespace

TEST(FullDisk, OldFilesMakeRoomAndNoLineIsDropped) {
  if (!MayMount()) {
    GTEST_SKIP() << "mounting is not allowed here";
  }
  IN_FRESH_PROCESS({
    ScratchFolder theFolder;
    ASSERT_TRUE(MountSmallDisk(theFolder.Path())) << strerror(errno);
    LogOutputOptions theOptions = ToFile(theFolder.File("log"));
    theOptions.mRotateSize = 150000;
    LogOutput theOutput(theOptions);
    OpenOutput(theOutput);
    NumberedLines theLines(theOutput);
    theLines.Write(50000);  // more than 4 MiB
    theOutput.Close();
    EXPECT_EQ(0u, theOutput.Dropped());
    LogContent theContent;
    theContent.Read(theFolder.Path());
    EXPECT_EQ(49999, theContent.mLast);
    EXPECT_EQ(50000 - theContent.mFirst, theContent.mLines);
    EXPECT_GT(theContent.mLines, 7000) << "more old files were dropped than was necessary";
    umount(theFolder.Path().c_str());
  });
}

TEST(FullDisk, WhenNothingCanGoTheLossIsCountedAndToldOnceThereIsRoom) {
  if (!MayMount()) {
    GTEST_SKIP() << "mounting is not allowed here";
  }
  IN_FRESH_PROCESS({
    ScratchFolder theFolder;
    ASSERT_TRUE(MountSmallDisk(theFolder.Path())) << strerror(errno);
    WriteWholeFile(theFolder.File("filler"), std::string(600000, 'f'));
    LogOutputOptions theOptions = ToFile(theFolder.File("log"));
    theOptions.mQueueBytes = 65536;
    LogOutput theOutput(theOptions);
    OpenOutput(theOutput);
    NumberedLines theLines(theOutput);
    theLines.Write(20000);
    uint64 theDropped = theOutput.Dropped();
    EXPECT_GT(theDropped, 1000u);
    unlink(theFolder.File("filler").c_str());
    for (int i = 0; i < 6000 && theDropped != 0; ++i) {
      poll(nullptr, 0, 10);  // until the turn's lines are not dropped any more
      theDropped = theOutput.Dropped();
      theLines.Write(1);
      theDropped = theOutput.Dropped() - theDropped;
    }
    theOutput.Close();
    LogContent theContent;
    theContent.Read(theFolder.Path());
    EXPECT_EQ(0, theContent.mFirst);
    EXPECT_EQ(theLines.Next() - 1, theContent.mLast);
    EXPECT_EQ(1, theContent.mTellings);
    EXPECT_EQ(theOutput.Dropped(), theContent.mTold);
    umount(theFolder.Path().c_str());
  });
}

TEST(FullDisk, AFileThatHasReachedTheLimitOfTheProcessIsFollowedByAnother) {
  IN_FRESH_PROCESS({
    ScratchFolder theFolder;
    struct rlimit theLimit;
    getrlimit(RLIMIT_FSIZE, &theLimit);
    theLimit.rlim_cur = 100050;  // in the middle of a line
    ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &theLimit));
    LogOutput theOutput(ToFile(theFolder.File("log")));
    OpenOutput(theOutput);
    NumberedLines theLines(theOutput);
    theLines.Write(5000);
    theOutput.Close();
    EXPECT_EQ(0u, theOutput.Dropped());
    LogContent theContent;
    theContent.Read(theFolder.Path());
    EXPECT_EQ(5000, theContent.mLines);
    EXPECT_EQ(0, theContent.mFirst);
    EXPECT_EQ(5u, LogFileNames_List(theFolder.Path(), "log", "").size());
  });
}
