#include "tools/qvlogd/LogOutput.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>

#include "StalledTarget.h"
#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"

namespace {

LogRecord Line(std::string_view aText) {
  LogRecord theRecord;
  theRecord.mText = aText;
  return theRecord;
}

LogOutputOptions ToFile(const std::string& aPath) {
  LogOutputOptions theOptions;
  theOptions.mPattern = aPath;
  theOptions.mForm = LogForm_Cat;
  return theOptions;
}

// Fails the test when the file cannot be opened.
void OpenOutput(LogOutput& anOutput) {
  std::string theError;
  ASSERT_TRUE(anOutput.Open(&theError)) << theError;
}

// Waits, with a generous limit, until the file holds the text.
bool FileComesToHold(const std::string& aPath, const std::string& aContent) {
  for (int i = 0; i < 6000; ++i) {
    if (ReadWholeFile(aPath) == aContent) {
      return true;
    }
    poll(nullptr, 0, 10);
  }
  return false;
}

}  // namespace

TEST(LogOutput, LinesReachTheFileWhileTheCollectorRuns) {
  ScratchFolder theFolder;
  LogOutput theOutput(ToFile(theFolder.File("log")));
  OpenOutput(theOutput);
  theOutput.Take(Line("one"));
  theOutput.Take(Line("two"));
  theOutput.Flush();
  EXPECT_TRUE(FileComesToHold(theFolder.File("log"), "one\ntwo\n"));
}

TEST(LogOutput, TheEndWritesWhatIsQueued) {
  ScratchFolder theFolder;
  std::string theExpected;
  {
    LogOutput theOutput(ToFile(theFolder.File("log")));
    OpenOutput(theOutput);
    for (int i = 0; i < 100000; ++i) {
      std::string theText = "line " + std::to_string(i);
      theOutput.Take(Line(theText));
      theExpected += theText + "\n";
    }
    theOutput.Close();
    EXPECT_EQ(0u, theOutput.Dropped());
  }
  EXPECT_TRUE(theExpected == ReadWholeFile(theFolder.File("log")));
}

TEST(LogOutput, AFileThatCannotBeOpenedIsToldAndNothingRuns) {
  ScratchFolder theFolder;
  LogOutput theOutput(ToFile(theFolder.Path()));
  std::string theError;
  EXPECT_FALSE(theOutput.Open(&theError));
  EXPECT_EQ("cannot open '" + theFolder.Path() + "': Is a directory", theError);
}

TEST(LogOutput, ReopeningNeedsNoLine) {
  ScratchFolder theFolder;
  LogOutput theOutput(ToFile(theFolder.File("log")));
  OpenOutput(theOutput);
  std::filesystem::rename(theFolder.File("log"), theFolder.File("renamed"));
  theOutput.Reopen();
  for (int i = 0; i < 6000 && !FileExists(theFolder.File("log")); ++i) {
    poll(nullptr, 0, 10);
  }
  EXPECT_EQ("log renamed", theFolder.Names());
}

TEST(LogOutput, AStalledTargetHoldsOneTurnForAMomentAndTheOthersNotAtAll) {
  TargetControl theControl;
  LogOutputOptions theOptions = ToFile("unused");
  theOptions.mQueueBytes = 1000;
  LogOutput theOutput(theOptions, std::make_unique<StalledTarget>(theControl));
  OpenOutput(theOutput);
  std::string theText(99, 'x');
  auto theStart = std::chrono::steady_clock::now();
  for (int i = 0; i < 2000; ++i) {
    theOutput.Take(Line(theText));
    theOutput.Flush();
  }
  // Only the turn that meets the full queue first waits. 20 ms for each turn would be 40 seconds.
  EXPECT_LT(std::chrono::steady_clock::now() - theStart, std::chrono::seconds(10));
  EXPECT_GT(theOutput.Dropped(), 1900u);
  theControl.Release();
}

TEST(LogOutput, AllSignalsAreLeftToTheOtherThreads) {
  ChildResult theResult = RunInChild([] {
    ScratchFolder theFolder;
    LogOutput theOutput(ToFile(theFolder.File("log")));
    OpenOutput(theOutput);
    sigset_t theBlocked;
    pthread_sigmask(SIG_BLOCK, nullptr, &theBlocked);
    EXPECT_EQ(0, sigismember(&theBlocked, SIGTERM)) << "ours must be as before";
    sigset_t theTerm;
    sigemptyset(&theTerm);
    sigaddset(&theTerm, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &theTerm, nullptr);
    kill(getpid(), SIGTERM);  // ends the process if another thread takes it
    theOutput.Take(Line("still here"));
    theOutput.Close();
    printf("%s", ReadWholeFile(theFolder.File("log")).c_str());
  });
  EXPECT_EQ(0, theResult.mSignal);
  EXPECT_EQ("still here\n", theResult.mStdout);
}

TEST(LogOutput, StandardOutputIsWrittenWithoutAPattern) {
  ChildResult theResult = RunInChild([] {
    LogOutput theOutput(ToFile(""));
    OpenOutput(theOutput);
    theOutput.Take(Line("one"));
    theOutput.Flush();
    theOutput.Take(Line("two"));
  });
  EXPECT_EQ("one\ntwo\n", theResult.mStdout);
}

TEST(LogOutput, AReaderThatHasGoneIsNoticedAndKillsNobody) {
  ChildResult theResult = RunInChild([] {
    int thePipe[2];
    ASSERT_EQ(0, pipe2(thePipe, O_CLOEXEC));
    ASSERT_EQ(STDOUT_FILENO, dup2(thePipe[1], STDOUT_FILENO));
    close(thePipe[1]);
    LogOutput theOutput(ToFile(""));
    OpenOutput(theOutput);
    close(thePipe[0]);
    theOutput.Take(Line("one"));
    theOutput.Take(Line("two"));
    theOutput.Flush();
    for (int i = 0; i < 6000 && !theOutput.HasEnded(); ++i) {
      poll(nullptr, 0, 10);
    }
    fprintf(stderr, "%d %d", theOutput.HasEnded() ? 1 : 0, static_cast<int>(theOutput.Dropped()));
  });
  EXPECT_EQ(0, theResult.mSignal);
  EXPECT_EQ("1 2", theResult.mStderr);
}
