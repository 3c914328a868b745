// What arrives at the real collector, and how it comes out.

#include <regex>

#include "tests/tools/qvlogd/LogSender.h"
#include "tests/tools/qvlogd/RunningCollector.h"

static size_t Count(const std::string& aText, const std::string& aPart) {
  size_t theCount = 0;
  for (size_t thePos = aText.find(aPart); thePos != std::string::npos;
       thePos = aText.find(aPart, thePos + 1)) {
    ++theCount;
  }
  return theCount;
}

// The lines of an output without their stamps.
static std::string WithoutStamps(const std::string& anOutput) {
  return std::regex_replace(anOutput, std::regex("(^|\n)[A-Z][a-z]{2} [ 0-9]{2} [0-9:.]{12} "), "$1");
}

TEST(Collector, ALineComesOutWithItsProcess) {
  RunningCollector theCollector;
  LogSender theSender(theCollector.Port());
  theSender.SendHeader("player", kFirstUUID);
  theSender.Send(LogSender::Line("playing"));
  theCollector.WaitForOutput("playing\n");
  theSender.Close();
  theCollector.WaitForOutput("disconnect\n");
  EXPECT_EQ(
      "player-1a2b3c4d - connect\n"
      "player-1a2b3c4d I PLAYER b6f2a000: playing\n"
      "player-1a2b3c4d - disconnect\n",
      WithoutStamps(theCollector.Stop().mStdout));
}

TEST(Collector, LinesOfSeveralProcessesAreMergedAsTheyArrive) {
  RunningCollector theCollector({"--output=cat"});
  LogSender thePlayer(theCollector.Port());
  LogSender theTuner(theCollector.Port());
  thePlayer.SendHeader("player", kFirstUUID);
  theTuner.SendHeader("tuner", kSecondUUID);
  std::string theExpected;
  for (int i = 0; i < 20; ++i) {
    std::string theText = "line " + std::to_string(i);
    (i % 3 == 0 ? thePlayer : theTuner).Send(LogSender::Line(theText));
    theExpected += theText + "\n";
    theCollector.WaitForOutput(theText + "\n");
  }
  EXPECT_EQ(theExpected, theCollector.Stop().mStdout);
}

TEST(Collector, AMessageOfManyLinesIsNotTornByOtherSenders) {
  RunningCollector theCollector({"--output=cat"});
  LogSender thePlayer(theCollector.Port());
  LogSender theTuner(theCollector.Port());
  std::string theMessage = LogSender::Line("Buffer pointer=0x10 length=16000");
  std::string theText = "Buffer pointer=0x10 length=16000\n";
  for (int i = 0; i < 1000; ++i) {
    theMessage += "   00 11 22 33 44 55 66 77 88 99 AA BB CC DD EE FF - ................\n";
    theText += "   00 11 22 33 44 55 66 77 88 99 AA BB CC DD EE FF - ................\n";
  }
  for (int i = 0; i < 20; ++i) {
    thePlayer.Send(theMessage);
    for (int j = 0; j < 10; ++j) {
      theTuner.Send(LogSender::Line("between"));
    }
  }
  thePlayer.Close();
  theTuner.Send(LogSender::Line("last"));
  theCollector.WaitForOutput("last\n");
  std::string theOutput = theCollector.Stop().mStdout;
  EXPECT_EQ(20u, Count(theOutput, theText));
  EXPECT_EQ(200u, Count(theOutput, "between\n"));
}

TEST(Collector, BytesThatTrickleInMakeTheSameLine) {
  RunningCollector theCollector;
  LogSender theSender(theCollector.Port());
  std::string theStream = LogSender::Header("player", kFirstUUID) + LogSender::Line("drop by drop");
  for (char theByte : theStream) {
    theSender.Send(std::string(1, theByte));
  }
  theCollector.WaitForOutput("drop by drop\n");
  theSender.Close();
  EXPECT_EQ(
      "player-1a2b3c4d - connect\n"
      "player-1a2b3c4d I PLAYER b6f2a000: drop by drop\n"
      "player-1a2b3c4d - disconnect\n",
      WithoutStamps(theCollector.Stop().mStdout));
}

TEST(Collector, ALineWithoutItsEndIsWrittenWithAMarkWhenItsTimeIsOver) {
  RunningCollector theCollector({"--partial-time=50ms"});
  LogSender theSender(theCollector.Port());
  theSender.SendHeader("player", kFirstUUID);
  std::string theLine = LogSender::Line("loading ...");
  theLine.pop_back();
  theSender.Send(theLine);
  EXPECT_TRUE(theCollector.WaitForOutput("player-1a2b3c4d I PLAYER b6f2a000~ loading ...\n"));
}

TEST(Collector, ALineWithoutItsEndWaitsForItsTime) {
  RunningCollector theCollector({"--partial-time=1h", "--output=cat"});
  LogSender theSender(theCollector.Port());
  LogSender theOther(theCollector.Port());
  theSender.SendHeader("player", kFirstUUID);
  std::string theLine = LogSender::Line("loading ... done");
  theSender.Send(theLine.substr(0, theLine.size() - 5));
  theOther.Send(LogSender::Line("between"));
  theCollector.WaitForOutput("between\n");
  theSender.Send(theLine.substr(theLine.size() - 5));
  theCollector.WaitForOutput("done\n");
  EXPECT_EQ("between\nloading ... done\n", theCollector.Stop().mStdout);
}

TEST(Collector, ALineWithoutItsEndIsWrittenWhenTheConnectionEnds) {
  RunningCollector theCollector({"--partial-time=1h"});
  LogSender theSender(theCollector.Port());
  theSender.SendHeader("player", kFirstUUID);
  theSender.Send("E 14:03:07:042|b6f2a000|PLAYER     giving u");
  theSender.Close();
  EXPECT_TRUE(theCollector.WaitForOutput("player-1a2b3c4d E PLAYER b6f2a000~ giving u\n"));
}

TEST(Collector, ContinuationLinesKeepTheirSender) {
  RunningCollector theCollector;
  LogSender theSender(theCollector.Port());
  theSender.SendHeader("player", kFirstUUID);
  theSender.Send(LogSender::Line("first") + "second\n");
  theCollector.WaitForOutput("player-1a2b3c4d I PLAYER b6f2a000: first\n");
  EXPECT_TRUE(theCollector.WaitForOutput("player-1a2b3c4d I PLAYER b6f2a000+ second\n"));
}

TEST(Collector, AReconnectionWithTheSameUUIDShowsWhatWasLostMeanwhile) {
  RunningCollector theCollector({"--stats"});
  LogSender theFirst(theCollector.Port());
  theFirst.SendHeader("player", kFirstUUID);
  theFirst.Send(LogSender::Line("one"));
  theFirst.Close();
  theCollector.WaitForOutput("disconnect\n");
  LogSender theSecond(theCollector.Port());
  theSecond.SendHeader("player", kFirstUUID, 3);
  theSecond.Send(LogSender::Line("two"));
  theCollector.WaitForOutput("two\n");
  theSecond.Close();
  ChildResult theResult = theCollector.Stop();
  EXPECT_EQ(
      "player-1a2b3c4d - connect\n"
      "player-1a2b3c4d I PLAYER b6f2a000: one\n"
      "player-1a2b3c4d - disconnect\n"
      "player-1a2b3c4d - connect, 3 lost before\n"
      "player-1a2b3c4d I PLAYER b6f2a000: two\n"
      "player-1a2b3c4d - disconnect\n",
      WithoutStamps(theResult.mStdout));
  EXPECT_NE(
      std::string::npos,
      theResult.mStderr.find(
          "\nplayer-1a2b3c4d                     2            3            0            2  reconnected\n"))
      << theResult.mStderr;
}

TEST(Collector, AnotherUUIDIsARestartInTheLedger) {
  RunningCollector theCollector({"--stats"});
  for (const char* theUUID : {kFirstUUID, kSecondUUID}) {
    LogSender theSender(theCollector.Port());
    theSender.SendHeader("player", theUUID);
    theSender.Close();
    theCollector.WaitForOutput("player-" + std::string(theUUID, 8) + " - disconnect\n");
  }
  ChildResult theResult = theCollector.Stop();
  EXPECT_NE(std::string::npos,
            theResult.mStderr.find(
                "\nplayer-1a2b3c4d                     0            0            0            1\n"
                "player-9f8e7d6c                     0            0            0            1  restarted\n"))
      << theResult.mStderr;
}

TEST(Collector, FiltersShowWhatTheyName) {
  RunningCollector theCollector({"--output=cat", "-s", "TUN*:I"});
  LogSender theSender(theCollector.Port());
  theSender.Send(LogSender::Line("a player's") + LogSender::Line("a tuner's", "TUNER     "));
  theCollector.WaitForOutput("a tuner's\n");
  theSender.Close();
  EXPECT_EQ("a tuner's\n", theCollector.Stop().mStdout);
}

TEST(Collector, TheVariableHoldsTheFiltersWhenTheCommandLineHasNone) {
  RunningCollector theCollector({"--output=cat"}, {"QVLOG_TAGS=PLAYER:S"});
  LogSender theSender(theCollector.Port());
  theSender.Send(LogSender::Line("a player's") + LogSender::Line("a tuner's", "TUNER     "));
  theSender.Close();
  theCollector.WaitForOutput("a tuner's\n");
  EXPECT_EQ("a tuner's\n", theCollector.Stop().mStdout);
}

TEST(Collector, WhatIsAboveTheRateIsHeldBackCountedAndSaid) {
  RunningCollector theCollector({"--rate=5/s", "--stats"});
  LogSender theSender(theCollector.Port());
  theSender.SendHeader("player", kFirstUUID);
  std::string theLines;
  for (int i = 0; i < 100; ++i) {
    theLines += LogSender::Line("flood");
  }
  theSender.Send(theLines);
  theSender.Close();
  theCollector.WaitForOutput("disconnect\n");
  ChildResult theResult = theCollector.Stop();
  size_t theShown = Count(theResult.mStdout, ": flood\n");
  // More than five only when a second ended between the lines.
  EXPECT_LE(5u, theShown);
  EXPECT_GT(100u, theShown);
  uint64_t theSuppressed = 0;
  std::regex thePattern("player-1a2b3c4d - suppressed ([0-9]+)\n");
  for (std::sregex_iterator theIter(theResult.mStdout.begin(), theResult.mStdout.end(), thePattern), theEnd;
       theIter != theEnd; ++theIter) {
    theSuppressed += std::stoul((*theIter)[1]);
  }
  EXPECT_EQ(100 - theShown, theSuppressed);
  EXPECT_NE(std::string::npos, theResult.mStderr.find("\nplayer-1a2b3c4d                   100            0"))
      << theResult.mStderr;
}

TEST(Collector, WhatWasHeldBackIsSaidWhileTheSenderIsQuiet) {
  RunningCollector theCollector({"--rate=1/s"});
  LogSender theSender(theCollector.Port());
  theSender.SendHeader("player", kFirstUUID);
  theSender.Send(LogSender::Line("one") + LogSender::Line("two") + LogSender::Line("three"));
  EXPECT_TRUE(theCollector.WaitForOutput("player-1a2b3c4d - suppressed "));
}

TEST(Collector, ListensOnSeveralAddresses) {
  RunningCollector theCollector({"--listen=127.0.0.2:0", "--output=cat"});
  EXPECT_TRUE(theCollector.WaitForError("qvlogd: listening on 127.0.0.2:"));
}

TEST(Collector, ATakenPortIsAnError) {
  RunningCollector theCollector;
  std::string theAddress = "127.0.0.1:" + std::to_string(theCollector.Port());
  ChildResult theResult = RunProgram(QVLOGD, {"--listen=" + theAddress}, {"QVLOG_TAGS"});
  EXPECT_EQ(2, theResult.mExitCode);
  EXPECT_EQ("qvlogd: --listen: " + theAddress + ": Address already in use\n", theResult.mStderr);
}
