// The --check of the program.

#include <fcntl.h>

#include "support/RunningProgram.h"
#include "support/ScratchFolder.h"
#include "tests/tools/qvlogd/LogSender.h"

static ChildResult Check(const std::string& aStream, const std::vector<std::string>& anOptions = {}) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("stream"), aStream);
  std::vector<std::string> theArguments = anOptions;
  theArguments.push_back("--check=" + theFolder.File("stream"));
  ChildResult theResult = RunProgram(QVLOGD, theArguments, {"QVLOG_TAGS"});
  EXPECT_EQ("", theResult.mStderr);
  if (theResult.mStdout.rfind(theFolder.Path(), 0) == 0) {
    theResult.mStdout.erase(0, theFolder.Path().size() + 1);
  }
  return theResult;
}

TEST(StreamCheck, AValidStreamEndsWith0AndItsCounts) {
  ChildResult theResult = Check(LogSender::Header("player", kFirstUUID, 2) + LogSender::Line("one") +
                                "\nLOST: 3\n" + LogSender::Line("two"));
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("stream: valid, 2 lines, 5 messages lost\n", theResult.mStdout);
}

TEST(StreamCheck, AnInvalidOneEndsWith1AndThePlaceOfItsFault) {
  std::string theHeader = LogSender::Header("player", kFirstUUID);
  ChildResult theResult = Check(theHeader + "hello\n" + LogSender::Line("one"));
  EXPECT_EQ(1, theResult.mExitCode);
  EXPECT_EQ("stream: byte " + std::to_string(theHeader.size()) + ": text before the first message\n",
            theResult.mStdout);
}

TEST(StreamCheck, AnEmptyStreamIsNotValid) {
  ChildResult theResult = Check("");
  EXPECT_EQ(1, theResult.mExitCode);
  EXPECT_EQ("stream: byte 0: the stream has no connection header\n", theResult.mStdout);
}

TEST(StreamCheck, TheLimitsCount) {
  std::string theStream = LogSender::Header("player", kFirstUUID) + LogSender::Line(std::string(200, 'x'));
  EXPECT_EQ(0, Check(theStream).mExitCode);
  ChildResult theResult = Check(theStream, {"--max-line=100"});
  EXPECT_EQ(1, theResult.mExitCode);
  EXPECT_NE(std::string::npos, theResult.mStdout.find("a line is longer than the limit"));
}

TEST(StreamCheck, MinusReadsStandardInput) {
  RunningProgram theProgram(QVLOGD, {"--check", "-"}, {"QVLOG_TAGS"});
  theProgram.Write(LogSender::Header("player", kFirstUUID) + LogSender::Line("one"));
  ChildResult theResult = theProgram.Wait();
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("-: valid, 1 lines, 0 messages lost\n", theResult.mStdout);
}

TEST(StreamCheck, AFolderCannotBeRead) {
  ChildResult theResult = RunProgram(QVLOGD, {"--check=/"}, {"QVLOG_TAGS"});
  EXPECT_EQ(2, theResult.mExitCode);
  EXPECT_EQ("qvlogd: --check: /: Is a directory\n", theResult.mStderr);
}
