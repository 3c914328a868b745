// The viewer beside a log that goes on: its streams, its end, and files that grow and are renamed.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "support/RunningProgram.h"
#include "support/ScratchFolder.h"

namespace {

class qvlogcatFollow : public ::testing::Test {
 protected:
  std::string File(const char* aName) const { return mFolder.File(aName); }
  void Append(const char* aName, const std::string& aText) {
    std::ofstream(File(aName), std::ios::app | std::ios::binary) << aText;
  }
  static std::vector<std::string> Environment() { return {"TZ=UTC0", "QVLOG_TAGS"}; }

  ScratchFolder mFolder;
};

}  // namespace

TEST_F(qvlogcatFollow, StandardInputIsShownAsItComes) {
  RunningProgram theViewer(QVLOGCAT, {"-o", "cat", "-"}, Environment());
  theViewer.Write("Nov 21 14:03:07.042 p-1a2b3c4d I M 1: one\nNov 21 14:03:07");
  ASSERT_TRUE(theViewer.WaitForOutput("one\n"));
  theViewer.Write(".043 p-1a2b3c4d I M 1: two\nthree");
  ASSERT_TRUE(theViewer.WaitForOutput("one\ntwo\n"));
  ChildResult theResult = theViewer.Wait();
  EXPECT_EQ(0, theResult.mExitCode) << theResult.mStderr;
  EXPECT_EQ("one\ntwo\nthree\n", theResult.mStdout);
}

TEST_F(qvlogcatFollow, TheLastLinesOfStandardInputComeAtItsEnd) {
  RunningProgram theViewer(QVLOGCAT, {"-n", "2", "-o", "cat", "-"}, Environment());
  theViewer.Write("one\ntwo\nthree\n");
  EXPECT_EQ("two\nthree\n", theViewer.Wait().mStdout);
}

TEST_F(qvlogcatFollow, AFileIsFollowedAcrossRotation) {
  Append("box.log", "one\n");
  RunningProgram theViewer(QVLOGCAT, {"-f", "-o", "cat", File("box.log")}, Environment());
  ASSERT_TRUE(theViewer.WaitForOutput("one\n"));
  Append("box.log", "two\n");
  ASSERT_TRUE(theViewer.WaitForOutput("two\n"));
  std::filesystem::rename(File("box.log"), File("box.log.1"));
  Append("box.log", "three\n");
  ASSERT_TRUE(theViewer.WaitForOutput("three\n"));
  std::filesystem::resize_file(File("box.log"), 0);
  Append("box.log", "4\n");
  ASSERT_TRUE(theViewer.WaitForOutput("4\n"));
  theViewer.Signal(SIGTERM);
  ChildResult theResult = theViewer.Wait();
  EXPECT_EQ("one\ntwo\nthree\n4\n", theResult.mStdout);
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("", theResult.mStderr);
}

TEST_F(qvlogcatFollow, FollowingBeginsBehindTheLastLines) {
  Append("box.log", "one\ntwo\n");
  RunningProgram theViewer(QVLOGCAT, {"-f", "-n1", "-o", "cat", File("box.log")}, Environment());
  ASSERT_TRUE(theViewer.WaitForOutput("two\n"));
  Append("box.log", "three\n");
  ASSERT_TRUE(theViewer.WaitForOutput("three\n"));
  EXPECT_EQ("two\nthree\n", theViewer.Output());
}

TEST_F(qvlogcatFollow, AMissingFileIsWaitedFor) {
  RunningProgram theViewer(QVLOGCAT, {"-f", "-o", "cat", File("box.log")}, Environment());
  ASSERT_TRUE(theViewer.WaitForError("box.log: No such file or directory; waiting for it\n"));
  Append("box.log", "one\n");
  ASSERT_TRUE(theViewer.WaitForOutput("one\n"));
  theViewer.Signal(SIGINT);
  EXPECT_EQ(0, theViewer.Wait().mExitCode);
}

TEST_F(qvlogcatFollow, SeveralFilesAreFollowed) {
  Append("a.log", "a1\n");
  Append("b.log", "b1\n");
  RunningProgram theViewer(QVLOGCAT, {"-f", "-o", "cat", File("a.log"), File("b.log")}, Environment());
  ASSERT_TRUE(theViewer.WaitForOutput("a1\nb1\n"));
  Append("a.log", "a2\n");
  ASSERT_TRUE(theViewer.WaitForOutput("a2\n"));
  Append("b.log", "b2\n");
  ASSERT_TRUE(theViewer.WaitForOutput("b2\n"));
}

TEST_F(qvlogcatFollow, EndsWhenItsReaderHasGone) {
  Append("box.log", "one\n");
  RunningProgram theViewer(QVLOGCAT, {"-f", "-o", "cat", File("box.log")}, Environment());
  ASSERT_TRUE(theViewer.WaitForOutput("one\n"));
  theViewer.CloseOutput();
  ChildResult theResult = theViewer.Wait();
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ(0, theResult.mSignal);
  EXPECT_EQ("", theResult.mStderr);
}

TEST_F(qvlogcatFollow, AReaderThatGoesInTheMiddleIsNoFailure) {
  std::string theText;
  for (int i = 0; i < 100000; ++i) {
    theText += "a line that the reader does not take\n";
  }
  Append("box.log", theText);
  RunningProgram theViewer(QVLOGCAT, {"-o", "cat", File("box.log")}, Environment());
  ASSERT_TRUE(theViewer.WaitForOutput("\n"));
  theViewer.CloseOutput();
  ChildResult theResult = theViewer.Wait();
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ(0, theResult.mSignal);
  EXPECT_EQ("", theResult.mStderr);
}

TEST_F(qvlogcatFollow, ASignalEndsItAlsoWhileAPipeHasNoWriter) {
  Append("box.log", "before\n");
  ASSERT_EQ(0, mkfifo(File("pipe").c_str(), 0600));
  RunningProgram theViewer(QVLOGCAT, {"-f", "-o", "cat", File("box.log"), File("pipe")}, Environment());
  ASSERT_TRUE(theViewer.WaitForOutput("before\n"));
  // Behind that line it sleeps nowhere but in the opening of the pipe.
  std::string theStatus = "/proc/" + std::to_string(theViewer.Pid()) + "/stat";
  std::string theNumber, theName, theState;
  while (theState != "S") {
    std::ifstream(theStatus) >> theNumber >> theName >> theState;
    ASSERT_NE("", theState);
  }
  theViewer.Signal(SIGTERM);
  ChildResult theResult = theViewer.Wait();
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("", theResult.mStderr);
}

TEST_F(qvlogcatFollow, ASignalEndsItAlsoWhileItsReaderDoesNotRead) {
  std::string theText;
  for (int i = 0; i < 100000; ++i) {
    theText += "a line that the reader does not take\n";
  }
  Append("box.log", theText);
  RunningProgram theViewer(QVLOGCAT, {"-f", "-o", "cat", File("box.log")}, Environment());
  ASSERT_TRUE(theViewer.WaitForOutput("\n"));
  theViewer.Signal(SIGTERM);
  EXPECT_EQ(0, theViewer.Wait().mExitCode);
}
