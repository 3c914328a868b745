// The log daemon logger against daemons that refuse, stall, break off and come back: no log call waits, and
// the stream and the counts stay in order.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <regex>
#include <sstream>
#include <thread>

#include "support/LogDaemonTest.h"
#include "support/LogProgram.h"
#include "support/RecordingLogger.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

// Far above what a call takes on the slowest machine, and far below the time-outs of a connection.
constexpr double kNoWaitSeconds = 5;

constexpr size_t kPrefixLength = 35;
constexpr int kFloodLimit = 100000;  // messages; more than the buffers of any system hold

// The numbered line of about a thousand bytes, without its line end.
std::string Line(int aNumber) { return "line " + std::to_string(aNumber) + " " + std::string(950, 'x'); }

class qvLogdLoggerPeers : public LogDaemonTest {
 protected:
  ~qvLogdLoggerPeers() override { EXPECT_LT(mSlowestCall, kNoWaitSeconds) << "a log call waited"; }

  bool Log(const std::string& aText) {
    auto theStart = std::chrono::steady_clock::now();
    bool theResult = LogText(1, 0, aText);
    std::chrono::duration<double> theTime = std::chrono::steady_clock::now() - theStart;
    mSlowestCall = std::max(mSlowestCall, theTime.count());
    return theResult;
  }

  // Logs numbered lines, from 1 on, until one is lost; returns its number.
  int Flood() {
    for (int i = 1; i <= kFloodLimit; ++i) {
      Log(Line(i) + "\n");
      if (Logger()->mLostLogs > 0) {
        return i;
      }
    }
    ADD_FAILURE() << "a daemon that reads nothing has taken everything";
    return kFloodLimit;
  }

  // Logs until the logger has noticed that the connection is broken.
  void LogUntilDisconnected() {
    for (int i = 0; Logger()->IsConnected() && i < kFloodLimit; ++i) {
      Log("into the void\n");
    }
    EXPECT_FALSE(Logger()->IsConnected());
  }

  double mSlowestCall = 0;
};

// The texts of the lines of a stream, from the first whole one on. Each must have a prefix.
std::vector<std::string> Texts(const std::string& aStream) {
  static const std::regex kPrefix(kErrorPrefix);
  std::vector<std::string> theTexts;
  std::istringstream theStream(aStream);
  std::string theLine;
  while (std::getline(theStream, theLine)) {
    EXPECT_TRUE(std::regex_match(theLine.substr(0, kPrefixLength), kPrefix)) << theLine;
    theTexts.push_back(theLine.substr(std::min(kPrefixLength, theLine.size())));
  }
  return theTexts;
}

}  // namespace

TEST_F(qvLogdLoggerPeers, ADaemonThatRefusesCostsEachMessageAndNoTime) {
  mPeer.StopListening();
  Logger();
  for (int i = 0; i < 300; ++i) {
    EXPECT_FALSE(Log("x\n"));
  }
  EXPECT_EQ(300u, Logger()->mLostLogs);
  EXPECT_EQ(-1, Logger()->mSocket);
}

TEST_F(qvLogdLoggerPeers, ADaemonThatReadsNothingLosesMessagesAndKeepsTheConnection) {
  Flood();
  int theSocket = Logger()->mSocket;
  unsigned int theLost = Logger()->mLostLogs;
  for (int i = 0; i < 300; ++i) {
    EXPECT_FALSE(Log("x\n"));
  }
  EXPECT_EQ(theLost + 300, Logger()->mLostLogs);
  EXPECT_TRUE(Logger()->IsConnected());
  EXPECT_EQ(theSocket, Logger()->mSocket);
}

TEST_F(qvLogdLoggerPeers, WhatArrivesAndWhatIsReportedAsLostAddUpToWhatWasLogged) {
  int theLast = Flood();
  int theTried = theLast;
  testing::internal::CaptureStderr();
  // The daemon reads on; the first message behind the gap tells the losses.
  std::string theStream;
  do {
    theStream += mPeer.ReadWhatIsThere();
    ++theTried;
  } while (!Log("the end\n"));
  std::string theReport = testing::internal::GetCapturedStderr();
  theStream += mPeer.ReadUntil("the end\n");
  theStream.erase(0, theStream.find("lost)\n") + 6);

  // The line that was lost was sent in part, or not at all; what follows it begins with a prefix.
  size_t theEnd = theStream.size() - kPrefixLength - 8;
  size_t theTorn = theStream.rfind('\n', theEnd - 1) + 1;
  EXPECT_THAT(Texts(theStream.substr(theEnd)), testing::ElementsAre("the end"));
  EXPECT_LT(theEnd - theTorn, Line(theLast).size() + kPrefixLength + 1);
  std::vector<std::string> theTexts = Texts(theStream.substr(0, theTorn));
  ASSERT_EQ(static_cast<size_t>(theLast - 1), theTexts.size());
  for (int i = 1; i < theLast; ++i) {
    ASSERT_EQ(Line(i), theTexts[static_cast<size_t>(i) - 1]);
  }
  EXPECT_EQ("qvLogdLogger: Restarting, " + std::to_string(theTried - theLast) + " logs were lost.\n",
            theReport)
      << "the line, and every message but the last since";
}

TEST_F(qvLogdLoggerPeers, ADaemonThatReadsAByteAtATimeNeverSlowsAMessageDown) {
  Flood();
  std::string theHeader = Header("0");
  std::string theRead;
  for (int i = 0; i < 500; ++i) {
    Log(Line(i) + "\n");
    theRead += mPeer.Read(1);
  }
  EXPECT_THAT(theRead, StartsWith(theHeader));
  EXPECT_TRUE(Logger()->IsConnected());
}

TEST_F(qvLogdLoggerPeers, AMessageThatFindsTheConnectionResetIsCountedAndTheNextOneConnectsAnew) {
  Log("one\n");
  mPeer.ReadUntil("one\n");
  mPeer.Reset();
  Log("two\n");
  EXPECT_FALSE(Logger()->IsConnected());
  EXPECT_EQ(1u, Logger()->mLostLogs);
  EXPECT_TRUE(Log("three\n"));
  std::string theExpected = "\nLOST: 1\n" + Header("1");
  EXPECT_EQ(theExpected, mPeer.Read(theExpected.size()));
  EXPECT_THAT(Texts(mPeer.ReadUntil("\n")), testing::ElementsAre("three"));
}

TEST_F(qvLogdLoggerPeers, ABrokenConnectionRaisesNoSignal) {
  signal(SIGPIPE, SIG_DFL);
  Log("one\n");
  mPeer.ReadUntil("one\n");
  mPeer.StopListening();
  mPeer.Close();
  LogUntilDisconnected();
  EXPECT_LT(0u, Logger()->mLostLogs);
}

TEST_F(qvLogdLoggerPeers, ADaemonThatEndsInTheMiddleOfALineAndComesBackGetsWholeLines) {
  Log("the beginning of a line ");
  mPeer.ReadUntil("line ");
  mPeer.StopListening();
  mPeer.Close();
  LogUntilDisconnected();
  for (int i = 0; i < 10; ++i) {
    EXPECT_FALSE(Log("nobody is there\n"));
  }
  std::string theCount = std::to_string(Logger()->mLostLogs);
  mPeer.Listen();
  EXPECT_TRUE(Log("whole\n"));
  std::string theExpected = "\nLOST: " + theCount + "\n" + Header(theCount);
  EXPECT_EQ(theExpected, mPeer.Read(theExpected.size()));
  EXPECT_THAT(Texts(mPeer.ReadUntil("\n")), testing::ElementsAre("whole"));
}

TEST_F(qvLogdLoggerPeers, ADaemonThatSendsNothingMoreStillReceives) {
  Log("one\n");
  mPeer.ReadUntil("one\n");
  mPeer.CloseHalf();
  for (int i = 0; i < 100; ++i) {
    EXPECT_TRUE(Log(Line(i) + "\n"));
    mPeer.ReadUntil("x\n");
  }
  EXPECT_TRUE(Logger()->IsConnected());
  EXPECT_EQ(0u, Logger()->mLostLogs);
}

TEST_F(qvLogdLoggerPeers, WhatADaemonSendsIsNeverReadAndHindersNothing) {
  Log("one\n");
  mPeer.ReadUntil("one\n");
  mPeer.SendAllThatFits();
  for (int i = 0; i < 100; ++i) {
    EXPECT_TRUE(Log(Line(i) + "\n"));
    mPeer.ReadUntil("x\n");
  }
  EXPECT_EQ(0u, Logger()->mLostLogs);
}

TEST_F(qvLogdLoggerPeers, WhileADaemonDoesNotAnswerMessagesAreCountedAndTheConnectionComesLater) {
  mPeer.FillBacklog();
  Logger();
  testing::internal::CaptureStderr();
  for (unsigned int i = 1; i <= 20; ++i) {
    EXPECT_FALSE(Log("x\n"));
    EXPECT_EQ(i, Logger()->mLostLogs);
    EXPECT_EQ(qvLogdLogger::State_Connecting, Logger()->mState);
  }
  mPeer.EmptyBacklog();
  // The system knocks again by itself, after a second at first.
  auto theLimit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
  while (!Log("delivered\n") && std::chrono::steady_clock::now() < theLimit) {
    mPeer.HasCaller(100);
  }
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
  EXPECT_TRUE(Logger()->IsConnected());
  EXPECT_THAT(mPeer.ReadUntil("delivered\n"), StartsWith("\nLOST: "));
}

TEST_F(qvLogdLoggerPeers, AMessageThatExceedsEveryBufferIsTornAndTheNextLineHasAPrefix) {
  Log("one\n");
  mPeer.ReadUntil("one\n");
  qvLogData* theData = qvLog_Begin(1, 0);
  ASSERT_NE(nullptr, theData);
  std::string thePiece(20000000, 'y');
  Logger()->Append_S(static_cast<qvLogDataEx*>(theData), thePiece.data(), thePiece.size());
  qvLog_Append_F("%s", "the last piece\n");
  qvLog_End(theData);
  EXPECT_EQ(1u, Logger()->mLostLogs);
  EXPECT_TRUE(Logger()->IsConnected());
  testing::internal::CaptureStderr();
  std::string theStream;
  while (!Log("next\n")) {
    theStream += mPeer.ReadWhatIsThere();
  }
  testing::internal::GetCapturedStderr();
  theStream += mPeer.ReadUntil("next\n");
  EXPECT_THAT(theStream, Not(HasSubstr("the last piece")));
  EXPECT_THAT(Texts(theStream.substr(theStream.find_last_of('y') + 1)), testing::ElementsAre("next"));
}

// --- With "Blocking" on ---

TEST_F(qvLogdLoggerPeers, ABlockingLoggerWaitsForTheDaemonAndLosesNothing) {
  Logger()->mfBlocking = 1;
  std::string theStream;
  std::thread theDaemon([&] { theStream = mPeer.ReadUntil("the end\n"); });
  for (int i = 1; i <= 3000; ++i) {
    EXPECT_TRUE(LogText(1, 0, Line(i) + "\n"));
  }
  EXPECT_TRUE(LogText(1, 0, "the end\n"));
  theDaemon.join();
  EXPECT_EQ(0u, Logger()->mLostLogs);
  std::vector<std::string> theTexts = Texts(theStream.substr(theStream.find("lost)\n") + 6));
  ASSERT_EQ(3001u, theTexts.size());
  for (int i = 1; i <= 3000; ++i) {
    ASSERT_EQ(Line(i), theTexts[static_cast<size_t>(i) - 1]);
  }
}

TEST_F(qvLogdLoggerPeers, AnySettingBlockingButZeroMakesAMessageLargerThanEveryBufferArrive) {
  LogProgram theProgram;
  theProgram.Configure("[options]\nmax_len_logger=200000\n[qvlogd]\nlevel=all\nblocking=2\n");
  const std::string thePiece(100000, 'y');
  std::vector<std::string> theOperations = {"begin"};
  for (int i = 0; i < 15; ++i) {
    theOperations.insert(theOperations.end(), {"append", thePiece});
  }
  theOperations.insert(theOperations.end(), {"append", "the end", "end"});
  std::string theStream;
  std::thread theDaemon([&] { theStream = mPeer.ReadToEnd(); });
  theProgram.Run(theOperations, {"QVRALOG=" + mPeer.Target()});
  theDaemon.join();
  EXPECT_THAT(theStream, EndsWith("yyythe end"));
  std::string theMessage = theStream.substr(theStream.find("yyy"));
  EXPECT_EQ(1500000, std::count(theMessage.begin(), theMessage.end(), 'y'));
}

// --- Many threads ---

TEST_F(qvLogdLoggerPeers, LinesOfEightThreadsNeverInterleaveAndNoneIsLost) {
  Logger()->mfBlocking = 1;
  std::string theStream;
  std::thread theDaemon([&] { theStream = mPeer.ReadUntil("the end\n"); });
  std::vector<std::thread> theWriters;
  for (int theWriter = 0; theWriter < 8; ++theWriter) {
    theWriters.emplace_back([theWriter] {
      for (int i = 0; i < 250; ++i) {
        LogText(1, 0, std::to_string(theWriter) + " wrote " + std::to_string(i) + "\n");
      }
    });
  }
  for (std::thread& theWriter : theWriters) {
    theWriter.join();
  }
  EXPECT_TRUE(LogText(1, 0, "the end\n"));
  theDaemon.join();
  std::vector<std::string> theTexts = Texts(theStream.substr(theStream.find("lost)\n") + 6));
  ASSERT_EQ(2001u, theTexts.size());
  theTexts.pop_back();
  std::vector<int> theNext(8, 0);
  for (const std::string& theText : theTexts) {
    int theWriter = theText[0] - '0';
    ASSERT_EQ(
        std::to_string(theWriter) + " wrote " + std::to_string(theNext.at(static_cast<size_t>(theWriter))++),
        theText);
  }
}
