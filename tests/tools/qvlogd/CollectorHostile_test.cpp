// Senders that mean no good. After each the collector serves a good one.

#include <dirent.h>
#include <sys/resource.h>
#include <unistd.h>

#include <memory>

#include "support/Sanitizers.h"
#include "tests/tools/qvlogd/LogSender.h"
#include "tests/tools/qvlogd/RunningCollector.h"

static std::string Repeated(const std::string& aText, size_t aCount) {
  std::string theText;
  theText.reserve(aText.size() * aCount);
  for (size_t i = 0; i < aCount; ++i) {
    theText += aText;
  }
  return theText;
}

// Kilobytes of memory that the process has used at most.
static long PeakMemory(int aPid) {
  std::string theStatus;
  FILE* theFile = fopen(("/proc/" + std::to_string(aPid) + "/status").c_str(), "r");
  char theLine[256];
  long thePeak = 0;
  while (fgets(theLine, sizeof(theLine), theFile) != nullptr) {
    sscanf(theLine, "VmHWM: %ld", &thePeak);
  }
  fclose(theFile);
  return thePeak;
}

static void ExpectServed(RunningCollector& aCollector) {
  LogSender theSender(aCollector.Port());
  theSender.SendHeader("player", kFirstUUID);
  theSender.Send(LogSender::Line("a good line"));
  EXPECT_TRUE(aCollector.WaitForOutput("player-1a2b3c4d I PLAYER b6f2a000: a good line\n"));
}

TEST(CollectorHostile, TenMegabytesWithoutALineEndAreCutIntoLinesOfTheLimit) {
  RunningCollector theCollector({"--file=/dev/null", "--stats=json", "--output=json"});
  LogSender theSender(theCollector.Port());
  theSender.SendHeader("player", kFirstUUID);
  theSender.Send(LogSender::Line("begin"));
  EXPECT_TRUE(theSender.Send(std::string(10485760, 'x')));
  theSender.Close();
  EXPECT_NE(std::string::npos, theCollector.Stop().mStderr.find("\"lines\":11,"));
}

TEST(CollectorHostile, EndlessLinesOfManySendersStayBelowTheLimitOfMemory) {
  if (kSanitized) {
    GTEST_SKIP() << "a sanitizer keeps freed memory";
  }
  RunningCollector theCollector({"--file=/dev/null", "--partial-time=1h", "--max-held=1M"});
  long theStart = PeakMemory(theCollector.Program().Pid());
  std::vector<std::unique_ptr<LogSender>> theSenders;
  for (int i = 0; i < 50; ++i) {
    theSenders.push_back(std::make_unique<LogSender>(theCollector.Port()));
    theSenders.back()->Send(std::string(1000000, 'x'));
  }
  theSenders.clear();
  // 50 MB were sent; the rest is what the output has not written yet.
  EXPECT_GT(30000, PeakMemory(theCollector.Program().Pid()) - theStart);
  theCollector.Stop();
}

TEST(CollectorHostile, ZeroBytes) {
  RunningCollector theCollector;
  LogSender theSender(theCollector.Port());
  theSender.Send(std::string(100000, '\0') + "\n");
  theSender.Close();
  ExpectServed(theCollector);
}

TEST(CollectorHostile, HalfAHeader) {
  RunningCollector theCollector;
  std::string theHeader = LogSender::Header("tuner", kSecondUUID);
  for (size_t theLength : {size_t(1), size_t(10), theHeader.size() / 2, theHeader.size() - 1}) {
    LogSender theSender(theCollector.Port());
    theSender.Send(theHeader.substr(0, theLength));
    theSender.Close();
  }
  ExpectServed(theCollector);
}

TEST(CollectorHostile, LineEndsOnly) {
  RunningCollector theCollector({"--rate=100/s"});
  LogSender theSender(theCollector.Port());
  theSender.Send(std::string(1000000, '\n'));
  theSender.Close();
  ExpectServed(theCollector);
}

TEST(CollectorHostile, HugeCounts) {
  RunningCollector theCollector;
  LogSender theSender(theCollector.Port());
  theSender.Send(Repeated("\nLOST: 4294967295\n\nLOST: 99999999999999999999999\n", 1000));
  theSender.Close();
  ExpectServed(theCollector);
}

TEST(CollectorHostile, ManyNames) {
  RunningCollector theCollector({"--file=/dev/null", "--stats=json"});
  for (int i = 0; i < 5000; ++i) {
    LogSender theSender(theCollector.Port());
    theSender.SendHeader("p" + std::to_string(i), kFirstUUID);
  }
  EXPECT_NE(std::string::npos, theCollector.Stop().mStderr.find("\"total\":{\"processes\":5000,"));
}

TEST(CollectorHostile, TenThousandConnectionsThatAreReset) {
  RunningCollector theCollector;
  for (int i = 0; i < 10000; ++i) {
    LogSender theSender(theCollector.Port());
    ASSERT_TRUE(theSender.IsConnected()) << i;
    if (i % 2 == 0) {
      theSender.Send("\nPROTOCOL: q");
    }
    theSender.Reset();
  }
  ExpectServed(theCollector);
}

TEST(CollectorHostile, AConnectionAboveTheLimitWaitsForAPlace) {
  RunningCollector theCollector({"--max-connections=2", "--output=cat"});
  LogSender theFirst(theCollector.Port());
  LogSender theSecond(theCollector.Port());
  LogSender theThird(theCollector.Port());
  theThird.Send(LogSender::Line("third"));
  theFirst.Send(LogSender::Line("first"));
  theCollector.WaitForOutput("first\n");
  theSecond.Send(LogSender::Line("second"));
  theCollector.WaitForOutput("second\n");
  EXPECT_EQ("first\nsecond\n", theCollector.Output());
  theFirst.Close();
  EXPECT_TRUE(theCollector.WaitForOutput("third\n"));
}

// Processor time of a process in clock ticks.
static long UsedTime(int aPid) {
  FILE* theFile = fopen(("/proc/" + std::to_string(aPid) + "/stat").c_str(), "r");
  long theUser = 0;
  long theSystem = 0;
  EXPECT_EQ(2, fscanf(theFile, "%*d (%*[^)]) %*c %*d %*d %*d %*d %*d %*u %*u %*u %*u %*u %ld %ld", &theUser,
                      &theSystem));
  fclose(theFile);
  return theUser + theSystem;
}

TEST(CollectorHostile, OutOfDescriptorsItWaitsWithoutSpinning) {
  if (kSanitized) {
    GTEST_SKIP() << "a sanitizer needs descriptors of its own for its checks";
  }
  RunningCollector theCollector({"--output=cat"});
  int thePid = theCollector.Program().Pid();
  // Room for two more descriptors than it has open now.
  int theOpen = 0;
  DIR* theFolder = opendir(("/proc/" + std::to_string(thePid) + "/fd").c_str());
  while (readdir(theFolder) != nullptr) {
    ++theOpen;
  }
  closedir(theFolder);
  struct rlimit theLimit = {static_cast<rlim_t>(theOpen), static_cast<rlim_t>(theOpen)};
  ASSERT_EQ(0, prlimit(thePid, RLIMIT_NOFILE, &theLimit, nullptr));
  std::vector<std::unique_ptr<LogSender>> theSenders;
  for (int i = 0; i < 20; ++i) {
    theSenders.push_back(std::make_unique<LogSender>(theCollector.Port()));
  }
  theSenders.back()->Send(LogSender::Line("the last one"));
  EXPECT_TRUE(theCollector.WaitForError("qvlogd: cannot take a connection: Too many open files; it waits\n"));
  long theStart = UsedTime(thePid);
  usleep(500000);
  EXPECT_GT(sysconf(_SC_CLK_TCK) / 5, UsedTime(thePid) - theStart);
  theSenders.erase(theSenders.begin(), theSenders.end() - 1);
  EXPECT_TRUE(theCollector.WaitForOutput("the last one\n"));
}
