// The real collector with real clients: processes that log through the library.

#include <memory>
#include <regex>

#include "qvLog/qvLog.h"
#include "qvLog/qvLogger_qvLogd.h"
#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"
#include "tests/tools/qvlogd/RunningCollector.h"

static const qvLogModule kTuner = 28;

// This process logs to the port; the settings name no target.
class LogsTo {
 public:
  explicit LogsTo(int aPort) {
    qvLog_Term();
    mVariable.Set(("127.0.0.1:" + std::to_string(aPort)).c_str());
  }
  ~LogsTo() { qvLog_Term(); }

  void Log(const char* aText) {
    if (qvLog_Begin(3, kTuner) != nullptr) {
      qvLog_Append_F("%s\n", aText);
      qvLog_End(nullptr);
    }
  }

 private:
  EnvironmentVariable mVariable{"QVRALOG"};
};

TEST(CollectorClients, ALineOfTheLibraryComesOutWithItsLevelAndModule) {
  RunningCollector theCollector;
  LogsTo theLog(theCollector.Port());
  theLog.Log("tuning to channel 7");
  theCollector.WaitForOutput("tuning to channel 7\n");
  std::string theSender =
      std::string("CollectorClients_test-") + std::string(qvLogdLogger::sInstance->mUUIDStr, 8);
  EXPECT_TRUE(std::regex_search(
      theCollector.Output(),
      std::regex(theSender + " - connect\n.* " + theSender + " I TUNER [0-9a-f]{8}: tuning to channel 7\n")))
      << theCollector.Output();
}

TEST(CollectorClients, AHexDumpStaysWithItsMessage) {
  RunningCollector theCollector;
  LogsTo theLog(theCollector.Port());
  ASSERT_NE(nullptr, qvLog_Begin(3, kTuner));
  qvLog_Append_B("\x47\x40\x11", 3);
  qvLog_End(nullptr);
  theCollector.WaitForOutput("- G@.\n");
  EXPECT_TRUE(std::regex_search(theCollector.Output(),
                                std::regex(" I TUNER [0-9a-f]{8}: Buffer pointer=0x[0-9a-f]+ length=3\n"
                                           ".* I TUNER [0-9a-f]{8}\\+    47 40 11 ")))
      << theCollector.Output();
}

TEST(CollectorClients, AProcessComesBackToACollectorThatWasStartedAgain) {
  auto theFirst = std::make_unique<RunningCollector>();
  int thePort = theFirst->Port();
  LogsTo theLog(thePort);
  theLog.Log("to the first one");
  theFirst->WaitForOutput("to the first one\n");
  theFirst->Stop();
  // The system takes one for a connection whose end it has not noticed; the others are counted.
  for (int i = 0; i < 5; ++i) {
    theLog.Log("to nobody");
  }
  RunningProgram theSecond(QVLOGD, {"--listen=127.0.0.1:" + std::to_string(thePort)}, {"QVLOG_TAGS"});
  theSecond.WaitForError("listening");
  theLog.Log("to the second one");
  theSecond.WaitForOutput("to the second one\n");
  std::string theSender =
      std::string("CollectorClients_test-") + std::string(qvLogdLogger::sInstance->mUUIDStr, 8);
  EXPECT_TRUE(std::regex_search(theSecond.Output(), std::regex(theSender + " - connect, [45] lost before\n")))
      << theSecond.Output();
}

TEST(CollectorClients, SeveralProcessesAreMergedWithoutLoss) {
  RunningCollector theCollector({"--stats"});
  ScratchFolder theFolder;
  std::vector<std::unique_ptr<RunningProgram>> thePrograms;
  for (const char* theName : {"player", "tuner", "gui"}) {
    std::string theProgram = CopyTestProgram("LogScript", theFolder.Path(), theName);
    std::vector<std::string> theOperations;
    for (int i = 0; i < 100; ++i) {
      theOperations.insert(theOperations.end(), {"log", "3", "28", "line " + std::to_string(i) + "\n"});
    }
    thePrograms.push_back(std::make_unique<RunningProgram>(
        theProgram, theOperations,
        std::vector<std::string>{"QVRALOG=127.0.0.1:" + std::to_string(theCollector.Port())}));
  }
  for (auto& theProgram : thePrograms) {
    EXPECT_EQ(0, theProgram->Wait().mExitCode);
  }
  ChildResult theResult = theCollector.Stop();
  for (const char* theName : {"player", "tuner", "gui"}) {
    std::regex thePattern(std::string(theName) + "-[0-9a-f]{8} I TUNER [0-9a-f]{8}: line ([0-9]+)\n");
    int theNext = 0;
    for (std::sregex_iterator theIter(theResult.mStdout.begin(), theResult.mStdout.end(), thePattern), theEnd;
         theIter != theEnd; ++theIter) {
      EXPECT_EQ(theNext++, std::stoi((*theIter)[1])) << theName;
    }
    EXPECT_EQ(100, theNext) << theName;
  }
  EXPECT_TRUE(std::regex_search(theResult.mStderr, std::regex("\n3 processes +300 +0 +0 +3\n")))
      << theResult.mStderr;
}
