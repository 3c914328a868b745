// Many threads log at once.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <regex>
#include <sstream>
#include <thread>

#include "qvLog/qvLogger_File.h"
#include "support/ChildProcess.h"
#include "support/NoLogDaemon.h"
#include "support/RecordingLogger.h"
#include "support/ScratchFolder.h"
#include "support/SleepingThread.h"

namespace {

constexpr int kWriters = 8;
constexpr int kMessages = 250;  // of each writer

}  // namespace

TEST(qvLogThreads, LinesOfEightWritersNeverInterleaveAndNoneIsLostOrDoubled) {
  ScratchFolder theFolder;
  std::string theProgram = CopyTestProgram("LogThreads", theFolder.Path());
  WriteWholeFile(theFolder.File("qvLog.LogThreads.ini"),
                 std::string(kNoLogDaemon) + "[file]\nlevel=all\nfile=out.txt\n");
  ChildResult theResult = RunProgram(theProgram);
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("", theResult.mStderr);
  EXPECT_EQ("2000\n", theResult.mStdout) << "every message reached the callback whole";

  std::istringstream theStream(ReadWholeFile(theFolder.File("out.txt")));
  std::string theLine;
  ASSERT_TRUE(std::getline(theStream, theLine));
  EXPECT_EQ("NAME: LogThreads (log started)", theLine);
  const std::regex theExpression(
      "E [0-9]{2}:[0-9]{2}:[0-9]{2}:[0-9]{3}\\|([0-9a-f]{8})\\|TUNER      writer ([0-7]) message ([0-9]+) of "
      "([0-9a-f]{8})");
  std::map<int, int> theNext;
  while (std::getline(theStream, theLine)) {
    std::smatch theMatch;
    ASSERT_TRUE(std::regex_match(theLine, theMatch, theExpression)) << theLine;
    EXPECT_EQ(theMatch[1], theMatch[4]) << "the prefix names the thread that wrote the text: " << theLine;
    EXPECT_EQ(theNext[std::stoi(theMatch[2])]++, std::stoi(theMatch[3]))
        << "in the order of the thread: " << theLine;
  }
  EXPECT_EQ(8u, theNext.size());
  for (const auto& theWriter : theNext) {
    EXPECT_EQ(kMessages, theWriter.second) << "writer " << theWriter.first;
  }
}

TEST(qvLogThreads, TheFrameworkMayEndAndStartAgainWhileThreadsLog) {
  static std::atomic<int> sReceived{0};
  auto theCallback = [](void*, const qvLogData*, const char*, size_t) { ++sReceived; };
  std::atomic<int> theWriting{kWriters};
  std::vector<std::thread> theThreads;
  for (int i = 0; i < kWriters; ++i) {
    theThreads.emplace_back([&theWriting] {
      for (int theMessage = 0; theMessage < kMessages; ++theMessage) {
        LogText(1, 0, "x\n");
        qvLog_WillLog(1, 0);
      }
      --theWriting;
    });
  }
  while (theWriting > 0) {
    qvLog_SetLogFunc(3, theCallback, nullptr);
    std::this_thread::yield();
    qvLog_Term();
  }
  for (std::thread& theThread : theThreads) {
    theThread.join();
  }
  qvLog_SetLogFunc(3, theCallback, nullptr);
  int theBefore = sReceived;
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  EXPECT_EQ(theBefore + 1, sReceived);
  qvLog_Term();
}

TEST(qvLogThreads, AThreadThatWaitedDuringTermLogsToTheFrameworkThatFollows) {
  RecordingLogger* theDoomed = new RecordingLogger(5);
  bool theTaken = true;
  qvLogger::LockFramework();
  {
    SleepingThread theOther([&] { theTaken = LogText(1, 0, "x"); });
    EXPECT_EQ(0, theDoomed->mBegins) << "the message waits";
    qvLog_Term();
    qvLogger::UnlockFramework();
  }
  EXPECT_FALSE(theTaken) << "the logger that would have taken it is gone";
  EXPECT_NE(nullptr, qvFileLogger::sInstance) << "the message has initialised";
}
