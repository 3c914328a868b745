// How the real collector obeys signals, and how it ends.

#include <filesystem>

#include "support/ScratchFolder.h"
#include "tests/tools/qvlogd/LogSender.h"
#include "tests/tools/qvlogd/RunningCollector.h"

TEST(CollectorSignals, TheyAllEndItWellThatAskForAnEnd) {
  for (int theSignal : {SIGTERM, SIGINT}) {
    RunningCollector theCollector;
    theCollector.Program().Signal(theSignal);
    EXPECT_EQ(0, theCollector.Program().Wait().mExitCode);
  }
}

TEST(CollectorSignals, AtTheEndTheSocketsAreReadToTheirLastLine) {
  RunningCollector theCollector({"--output=cat"});
  LogSender theSender(theCollector.Port());
  theSender.Send(LogSender::Line("first"));
  theCollector.WaitForOutput("first\n");
  // What is sent while it is stopped is in the socket when the end is asked for.
  theCollector.Program().Signal(SIGSTOP);
  std::string theLines;
  std::string theTexts = "first\n";
  for (int i = 0; i < 1000; ++i) {
    theLines += LogSender::Line("number " + std::to_string(i));
    theTexts += "number " + std::to_string(i) + "\n";
  }
  theSender.Send(theLines);
  theCollector.Program().Signal(SIGTERM);
  theCollector.Program().Signal(SIGCONT);
  EXPECT_EQ(theTexts, theCollector.Program().Wait().mStdout);
}

TEST(CollectorSignals, AtTheEndAConnectionThatWasNotTakenYetIsReadToo) {
  RunningCollector theCollector({"--output=cat"});
  theCollector.Program().Signal(SIGSTOP);
  LogSender theSender(theCollector.Port());
  theSender.Send(LogSender::Line("just in time"));
  theCollector.Program().Signal(SIGTERM);
  theCollector.Program().Signal(SIGCONT);
  EXPECT_EQ("just in time\n", theCollector.Program().Wait().mStdout);
}

TEST(CollectorSignals, AnEndlessSenderDoesNotKeepItFromEnding) {
  RunningCollector theCollector({"--stop-time=100ms", "--file=/dev/null"});
  LogSender theSender(theCollector.Port());
  std::string theLines;
  for (int i = 0; i < 1000; ++i) {
    theLines += LogSender::Line("without end");
  }
  theSender.Send(theLines);
  theCollector.Program().Signal(SIGTERM);
  while (theSender.Send(theLines)) {
  }
  EXPECT_EQ(0, theCollector.Program().Wait().mExitCode);
}

TEST(CollectorSignals, NoNewConnectionIsTakenAfterTheEndWasAskedFor) {
  RunningCollector theCollector;
  int thePort = theCollector.Port();
  theCollector.Stop();
  EXPECT_FALSE(LogSender(thePort).IsConnected());
}

TEST(CollectorSignals, AfterTheEndASendersNextMessageFailsAtOnceSoThatItIsCountedAsLost) {
  RunningCollector theCollector({"--output=cat"});
  LogSender theSender(theCollector.Port());
  theSender.Send(LogSender::Line("before"));
  theCollector.WaitForOutput("before\n");
  theCollector.Stop();
  EXPECT_FALSE(theSender.Send(LogSender::Line("after")));
}

TEST(CollectorSignals, TheLedgerComesAtTheEndWhenItIsWanted) {
  RunningCollector theCollector({"--stats"});
  EXPECT_NE(std::string::npos, theCollector.Stop().mStderr.find("\n0 processes "));
  RunningCollector theSilentOne;
  EXPECT_EQ(std::string::npos, theSilentOne.Stop().mStderr.find("processes"));
}

TEST(CollectorSignals, USR1PrintsTheLedgerAndItGoesOn) {
  RunningCollector theCollector({"--output=cat"});
  LogSender theSender(theCollector.Port());
  theSender.SendHeader("player", kFirstUUID);
  theSender.Send(LogSender::Line("one"));
  theCollector.WaitForOutput("one\n");
  theCollector.Program().Signal(SIGUSR1);
  EXPECT_TRUE(theCollector.WaitForError("\nplayer-1a2b3c4d                     1            0"));
  theSender.Send(LogSender::Line("two"));
  EXPECT_TRUE(theCollector.WaitForOutput("two\n"));
}

TEST(CollectorSignals, TheLedgerIsJSONWhenThatIsWanted) {
  RunningCollector theCollector({"--stats=json"});
  EXPECT_NE(std::string::npos, theCollector.Stop().mStderr.find("\n{\"processes\":[],\"earlier\":{"));
}

TEST(CollectorSignals, HUPOpensTheFileAnew) {
  ScratchFolder theFolder;
  RunningCollector theCollector({"--output=cat", "--file=" + theFolder.File("log")});
  LogSender theSender(theCollector.Port());
  theSender.Send(LogSender::Line("one"));
  while (ReadWholeFile(theFolder.File("log")) != "one\n") {
    usleep(1000);
  }
  std::filesystem::rename(theFolder.File("log"), theFolder.File("old"));
  theCollector.Program().Signal(SIGHUP);
  while (!FileExists(theFolder.File("log"))) {
    usleep(1000);
  }
  theSender.Send(LogSender::Line("two"));
  theSender.Close();
  theCollector.Stop();
  EXPECT_EQ("one\n", ReadWholeFile(theFolder.File("old")));
  EXPECT_EQ("two\n", ReadWholeFile(theFolder.File("log")));
}

// A shell starts what runs in the background with SIGINT ignored.
TEST(CollectorSignals, OneThatTheStarterIgnoredCountsAllTheSame) {
  signal(SIGINT, SIG_IGN);
  RunningCollector theCollector;
  signal(SIGINT, SIG_DFL);
  theCollector.Program().Signal(SIGINT);
  EXPECT_EQ(0, theCollector.Program().Wait().mExitCode);
}

TEST(CollectorSignals, AReaderOfItsOutputThatGoesAwayEndsItWithoutALineToWrite) {
  RunningCollector theCollector;
  theCollector.Program().CloseOutput();
  EXPECT_EQ(0, theCollector.Program().Wait().mExitCode);
}

TEST(CollectorSignals, AReaderOfItsOutputThatGoesAwayEndsIt) {
  RunningCollector theCollector({"--output=cat"});
  theCollector.Program().CloseOutput();
  LogSender theSender(theCollector.Port());
  while (theSender.Send(LogSender::Line("nobody reads this"))) {
    usleep(1000);
  }
  EXPECT_EQ(0, theCollector.Program().Wait().mExitCode);
}
