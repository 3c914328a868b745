#include "qvLog/qvLogger_File.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

#include "qvLog/qvLogger_qvLogd.h"
#include "qvLog/qvMainLogger_p.h"
#include "support/ClassLayout.h"
#include "support/LogProgram.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

// Each test starts without a file logger.
class qvFileLoggerTest : public testing::Test {
 protected:
  qvFileLoggerTest() { qvLog_Term(); }
};
using qvFileLoggerKept = qvFileLoggerTest;

const char kStarted[] = "NAME: box \\(log started\\)\n";
const char kError[] = "E [0-9:]{12}\\|[0-9a-f]{8}\\|DEFAULT    ";

// The regular expression of the log-started line and one line for each text.
std::string Lines(const std::vector<std::string>& aTexts) {
  std::string theExpression = kStarted;
  for (const std::string& theText : aTexts) {
    theExpression += kError + theText + "\n";
  }
  return theExpression;
}

// 5 March 2024, 12:34:05 UTC
const std::vector<std::string> kClock = {"clock", "1709642045", "0"};

std::vector<std::string> operator+(std::vector<std::string> aLeft, const std::vector<std::string>& aRight) {
  aLeft.insert(aLeft.end(), aRight.begin(), aRight.end());
  return aLeft;
}

}  // namespace

TEST_F(qvFileLoggerTest, TheFieldsFollowTheBaseInOrder) {
  qvFileLogger theLogger(false);
  EXPECT_EQ(ByPointerSize(532, 552), OffsetIn(theLogger, theLogger.mFile));
  EXPECT_EQ(ByPointerSize(536, 560), OffsetIn(theLogger, theLogger.mLastChar));
}

TEST_F(qvFileLoggerTest, IsOKFollowsTheVirtualOperationsOfTheBase) {
  EXPECT_EQ(16u, SlotOf(&qvFileLogger::IsOK));
}

TEST_F(qvFileLoggerTest, ANewLoggerIsNamedFileAndIsClosed) {
  qvFileLogger theLogger(false);
  EXPECT_STREQ("File", theLogger.mName);
  EXPECT_EQ(nullptr, theLogger.mFile);
  EXPECT_EQ('\0', theLogger.mLastChar);
  EXPECT_FALSE(theLogger.IsOK());
  EXPECT_EQ(&theLogger, qvFileLogger::sInstance);
}

TEST_F(qvFileLoggerTest, TheDestructorMakesRoomForAnother) {
  qvFileLogger* theLogger = new qvFileLogger(false);
  qvLog_ReloadConfig();  // initialises, which creates no other file logger now
  EXPECT_EQ(theLogger, qvFileLogger::sInstance);
  delete theLogger;
  EXPECT_EQ(nullptr, qvFileLogger::sInstance);
}

TEST_F(qvFileLoggerTest, ASecondInstanceFailsAnAssertion) {
  EXPECT_QV_ASSERTION(
      {
        new qvFileLogger(false);
        new qvFileLogger(false);
      },
      "sInstance == NULL", "qvLogger_File");
}

TEST_F(qvFileLoggerTest, InitCreatesOneLoggerOnly) {
  qvLogger_File_Init();
  qvFileLogger* theLogger = qvFileLogger::sInstance;
  ASSERT_NE(nullptr, theLogger);
  qvLogger* theNewest = qvLogger::sHead;
  EXPECT_EQ(qvLogdLogger::sInstance, theNewest);
  EXPECT_EQ(theLogger, theNewest->mNext) << "it is in the chain";
  qvLogger_File_Init();
  EXPECT_EQ(theLogger, qvFileLogger::sInstance);
  EXPECT_EQ(theNewest, qvLogger::sHead);
  EXPECT_EQ(theLogger, theNewest->mNext);
  EXPECT_EQ(nullptr, theLogger->mNext);
}

TEST_F(qvFileLoggerTest, ReplaceStrReplacesEveryOccurrence) {
  qvFileLogger theLogger(false);
  qvCString theText("%m-%m-%d");
  theLogger.ReplaceStr(theText, "%m", "%02lu", 3);
  EXPECT_STREQ("03-03-%d", theText.c_str());
  theLogger.ReplaceStr(theText, "%d", "%04lu", 4294967295u);
  EXPECT_STREQ("03-03-4294967295", theText.c_str());
}

TEST_F(qvFileLoggerTest, TheStandardStreamsAreClosedByNobody) {
  qvFileLogger theLogger(false);
  for (FILE* theStream : {stdout, stderr}) {
    theLogger.mFile = theStream;
    EXPECT_TRUE(theLogger.IsOK());
    theLogger.CloseFile();
    EXPECT_EQ(nullptr, theLogger.mFile);
    EXPECT_NE(-1, fileno(theStream));
    EXPECT_EQ(0, fflush(theStream));
  }
}

TEST_F(qvFileLoggerTest, AFileIsClosedWithAllThatWasWritten) {
  ScratchFolder theFolder;
  qvFileLogger theLogger(false);
  qvLogDataEx theRecord = {};
  theLogger.mFile = fopen(theFolder.File("out.txt").c_str(), "w");
  ASSERT_NE(nullptr, theLogger.mFile);
  int theDescriptor = fileno(theLogger.mFile);
  theLogger.Append_S(&theRecord, "text", 4);
  theLogger.CloseFile();
  EXPECT_FALSE(theLogger.IsOK());
  EXPECT_EQ(-1, fcntl(theDescriptor, F_GETFD));
  EXPECT_EQ("text", ReadWholeFile(theFolder.File("out.txt")));
  theLogger.CloseFile();  // of what is closed does nothing
}

TEST_F(qvFileLoggerTest, TheDestructorClosesTheFileWithAllThatWasWritten) {
  ScratchFolder theFolder;
  qvFileLogger* theLogger = new qvFileLogger(false);
  theLogger->mFile = fopen(theFolder.File("out.txt").c_str(), "w");
  ASSERT_NE(nullptr, theLogger->mFile);
  int theDescriptor = fileno(theLogger->mFile);
  theLogger->Append_S(nullptr, "text", 4);
  delete theLogger;
  EXPECT_EQ(-1, fcntl(theDescriptor, F_GETFD));
  EXPECT_EQ("text", ReadWholeFile(theFolder.File("out.txt")));
}

TEST_F(qvFileLoggerTest, AWriteErrorClosesTheOutputButNoStandardStream) {
  if (access("/dev/full", W_OK) != 0) {
    GTEST_SKIP() << "the system has no device that is full";
  }
  ChildResult theResult = RunInChild([] {
    qvFileLogger theLogger(false);
    qvLogDataEx theRecord = {};
    int theOutput = dup(STDOUT_FILENO);
    dup2(open("/dev/full", O_WRONLY), STDOUT_FILENO);
    theLogger.mFile = stdout;
    theLogger.Append_S(&theRecord, "lost\n", 5);
    theLogger.EndLog(&theRecord);
    bool isOpen = theLogger.IsOK();
    dup2(theOutput, STDOUT_FILENO);
    printf("%s\n", isOpen ? "open" : "closed");
  });
  EXPECT_THAT(theResult.mStdout, EndsWith("closed\n")) << "the stream works on";
  EXPECT_EQ("qvFileLogger: No space left on device\n", theResult.mStderr);
}

TEST_F(qvFileLoggerTest, WithoutALevelTheOutputIsNeverOpened) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nfile=out.txt\n");
  ChildResult theResult =
      theProgram.Run({"log", "1", "0", "x\n", "log", "0", "0", "x\n", "threshold", "File"});
  EXPECT_EQ("0\n", theResult.mStdout);
  EXPECT_EQ("", theResult.mStderr);
  EXPECT_FALSE(FileExists(theProgram.Path("out.txt")));
}

TEST_F(qvFileLoggerTest, TheDefaultOutputIsStandardError) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\n");
  ChildResult theResult = theProgram.Run(
      kClock + std::vector<std::string>{"log", "1", "0", "an error\n", "log", "4", "48", "a detail\n"});
  EXPECT_THAT(theResult.mStderr, MatchesRegex("NAME: box \\(log started\\)\n"
                                              "E 12:34:05:000\\|[0-9a-f]{8}\\|DEFAULT    an error\n"
                                              "D 12:34:05:000\\|[0-9a-f]{8}\\|RENDERER   a detail\n"));
  EXPECT_EQ("", theResult.mStdout);
}

TEST_F(qvFileLoggerTest, WithoutAFormattingBufferTheOutputStartsWithAPrefix) {
  ChildResult theResult = RunInChild([] {
    qvFileLogger theLogger(false);
    qvLogDataEx theRecord = {};
    theRecord.mLevel = QVLOGLEVEL_ERROR;
    _qvLog_gData.mSizeofFormatted = 0;  // as after a failed allocation: what is formatted is skipped
    EXPECT_TRUE(theLogger.BeginLog(&theRecord));
  });
  EXPECT_THAT(theResult.mStderr, MatchesRegex("E [0-9:]{12}\\|\\|DEFAULT    "));
}

TEST_F(qvFileLoggerTest, StandardOutputIsAnOutputToo) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=stdout\n");
  EXPECT_THAT(theProgram.Run({"log", "1", "0", "x\n"}).mStdout, MatchesRegex(Lines({"x"})));
}

TEST_F(qvFileLoggerTest, TheNamesOfTheStreamsAreComparedExactly) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=STDERR\n");
  EXPECT_EQ("", theProgram.Run({"log", "1", "0", "x\n"}).mStderr);
  EXPECT_THAT(theProgram.Read("STDERR"), MatchesRegex(Lines({"x"})));
}

TEST_F(qvFileLoggerTest, AFileIsMadeInTheProgramsFolder) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=out.txt\n");
  ChildResult theResult = theProgram.Run({"log", "1", "0", "x\n"});
  EXPECT_THAT(theProgram.Read("out.txt"), MatchesRegex(Lines({"x"})));
  EXPECT_EQ("", theResult.mStderr);
}

TEST_F(qvFileLoggerTest, MessagesAtOrAboveTheThresholdAreNotWritten) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=warn\nfile=out.txt\n");
  theProgram.Run({"log", "1", "0", "one\n", "log", "3", "0", "three\n", "log", "2", "0", "two\n"});
  EXPECT_THAT(theProgram.Read("out.txt"), HasSubstr("one\n"));
  EXPECT_THAT(theProgram.Read("out.txt"), HasSubstr("two\n"));
  EXPECT_THAT(theProgram.Read("out.txt"), Not(HasSubstr("three\n")));
}

TEST_F(qvFileLoggerTest, DateTimeAndProcessNameMakeTheFileName) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=log-%y%m%d-%H.%M.%S-%n-%n.txt\n");
  theProgram.Run(kClock + std::vector<std::string>{"log", "1", "0", "x\n"});
  EXPECT_TRUE(FileExists(theProgram.Path("log-20240305-12.34.05-box-box.txt")));
}

TEST_F(qvFileLoggerTest, TheFileNameHasLocalTimeInTwoDigits) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=%d-%H.%M.%S.txt\n");
  theProgram.Run({"zone", "ABC-14", "clock", "1709640245", "0", "log", "1", "0", "x\n"});
  EXPECT_TRUE(FileExists(theProgram.Path("06-02.04.05.txt"))) << "12:04:05 UTC on the day before";
}

TEST_F(qvFileLoggerTest, WithoutALocalTimeOnlyTheProcessNameIsPutIn) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=%y%m%d%H%M%S-%n.txt\n");
  theProgram.Run({"no-local-time", "log", "1", "0", "x\n"});
  EXPECT_TRUE(FileExists(theProgram.Path("%y%m%d%H%M%S-box.txt")));
}

TEST_F(qvFileLoggerTest, TheProcessNameIsPutInLast) {
  ScratchFolder theFolder;
  std::string theProgram = CopyTestProgram("LogScript", theFolder.Path(), "%d%n");
  WriteWholeFile(theFolder.File("qvLog.%d%n.ini"),
                 std::string(kNoLogDaemon) + "[file]\nlevel=all\nfile=%n.txt\n");
  EXPECT_EQ(0, RunProgram(theProgram, {"log", "1", "0", "x\n"}).mExitCode);
  EXPECT_TRUE(FileExists(theFolder.File("%d%n.txt")));
}

TEST_F(qvFileLoggerTest, AnAbsolutePatternIsUsedAsItIs) {
  LogProgram theProgram;
  ScratchFolder theOther;
  theProgram.Configure("[file]\nlevel=all\nfile=" + theOther.Path() + "/log-%y%m%d-%n.txt\n");
  theProgram.Run(kClock + std::vector<std::string>{"log", "1", "0", "x\n"});
  EXPECT_TRUE(FileExists(theOther.File("log-20240305-box.txt")));
}

TEST_F(qvFileLoggerKept, TheYearInAFileNameHasFourDigits) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=%y-%m\n");
  theProgram.Run(kClock + std::vector<std::string>{"log", "1", "0", "x\n"});
  EXPECT_TRUE(FileExists(theProgram.Path("2024-03"))) << "not 24-03";
}

TEST_F(qvFileLoggerTest, TheDateInTheNameIsThatOfTheOpening) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=%S.txt\n");
  theProgram.Run(kClock + std::vector<std::string>{"log", "1", "0", "one\n", "clock", "1709642046", "0",
                                                   "log", "1", "0", "two\n"});
  EXPECT_THAT(theProgram.Read("05.txt"), MatchesRegex(Lines({"one", "two"})));
  EXPECT_FALSE(FileExists(theProgram.Path("06.txt")));
}

TEST_F(qvFileLoggerTest, AFileIsStartedAnewUnlessAppendIsOne) {
  struct {
    const char* mAppend;
    bool mfKeeps;
  } kCases[] = {{"", false},
                {"append=0\n", false},
                {"append=1\n", true},
                {"append=2\n", false},
                {"append=-1\n", false}};
  for (const auto& theCase : kCases) {
    LogProgram theProgram;
    theProgram.Configure(std::string("[file]\nlevel=all\nfile=out.txt\n") + theCase.mAppend);
    WriteWholeFile(theProgram.Path("out.txt"), "what was there\n");
    theProgram.Run({"log", "1", "0", "x\n"});
    EXPECT_THAT(theProgram.Read("out.txt"),
                MatchesRegex((theCase.mfKeeps ? "what was there\n" : "") + Lines({"x"})))
        << theCase.mAppend;
  }
}

TEST_F(qvFileLoggerTest, AFileBeyondTwoGibibytesIsContinued) {
  const off_t kThreeGiB = 3221225472;
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=out.txt\nappend=1\n");
  std::string thePath = theProgram.Path("out.txt");
  WriteWholeFile(thePath, "");
  ASSERT_EQ(0, truncate(thePath.c_str(), kThreeGiB)) << "a hole, which takes no room";
  EXPECT_EQ("", theProgram.Run({"log", "1", "0", "x\n"}).mStderr);
  std::ifstream theFile(thePath, std::ios::binary);
  theFile.seekg(kThreeGiB);
  std::string theText{std::istreambuf_iterator<char>(theFile), {}};
  EXPECT_THAT(theText, MatchesRegex(Lines({"x"})));
}

TEST_F(qvFileLoggerTest, MessagesWithoutLineEndsShareOneLineAndOnePrefix) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=out.txt\n");
  theProgram.Run({"log", "1", "0", "one ", "log", "2", "1", "two ", "log", "3", "2", "three\n", "log", "1",
                  "0", "four\n"});
  EXPECT_THAT(theProgram.Read("out.txt"), MatchesRegex(Lines({"one two three", "four"})));
}

TEST_F(qvFileLoggerTest, AMultiPieceMessageHasOnePrefix) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=out.txt\n");
  theProgram.Run({"begin", "append", "one\n", "append", "two\n", "end"});
  EXPECT_THAT(theProgram.Read("out.txt"), MatchesRegex(Lines({"one"}) + "two\n"));
}

TEST_F(qvFileLoggerTest, ACompleteLineIsInTheFileWhenTheMessageEnds) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=out.txt\n");
  EXPECT_THAT(theProgram.Run({"log", "1", "0", "x\n", "cat", "out.txt"}).mStdout, MatchesRegex(Lines({"x"})));
}

TEST_F(qvFileLoggerTest, APartialLineIsNotFlushed) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=out.txt\n");
  EXPECT_EQ("", theProgram.Run({"log", "1", "0", "x", "cat", "out.txt"}).mStdout);
  EXPECT_THAT(theProgram.Read("out.txt"), HasSubstr("x")) << "it is written at the end of the process";
}

TEST_F(qvFileLoggerTest, ALineReachesTheKernelInOneWrite) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the sanitizer writes to pipes of its own";
#endif
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=0\n[file]\nlevel=all\nfile=out.txt\n");
  std::string theCount = theProgram.Run({"log", "1", "0", "x\n", "count-writes", "1", "0", "y\n"}).mStdout;
  if (theCount == "0\n" && theProgram.Read("out.txt").find("y\n") != std::string::npos) {
    GTEST_SKIP() << "the system does not count writes";
  }
  EXPECT_EQ("1\n", theCount);
}

TEST_F(qvFileLoggerTest, AFileThatCannotBeOpenedIsReportedForEveryMessageUntilItCan) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=logs/out.txt\n");
  ChildResult theResult = theProgram.Run({"log", "1", "0", "one\n", "log", "1", "0", "two\n", "make-folder",
                                          "logs", "log", "1", "0", "three\n"});
  EXPECT_EQ(
      "qvFileLogger: No such file or directory\n"
      "qvFileLogger: No such file or directory\n",
      theResult.mStderr);
  EXPECT_THAT(theProgram.Read("logs/out.txt"), MatchesRegex(Lines({"three"})));
}

TEST_F(qvFileLoggerTest, AMessageIsNotTakenWhileTheFileCannotBeOpened) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=logs/out.txt\n");
  EXPECT_EQ("0\n1\n", theProgram.Run({"takes", "make-folder", "logs", "takes"}).mStdout);
}

TEST_F(qvFileLoggerTest, AfterAWriteErrorTheNextMessageStartsTheFileAnew) {
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=0\n[file]\nlevel=all\nfile=out.txt\n");
  ChildResult theResult =
      theProgram.Run({"log",   "1", "0",   "one\n", "limit", "1",       "log", "1", "0", "two\n",
                      "limit", "0", "log", "1",     "0",     "three\n", "log", "1", "0", "four\n"});
  EXPECT_EQ("qvFileLogger: File too large\n", theResult.mStderr);
  EXPECT_THAT(theProgram.Read("out.txt"), MatchesRegex(Lines({"three", "four"})));
}

TEST_F(qvFileLoggerTest, AfterAWriteErrorWithAppendTheNextMessageContinuesTheFile) {
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=0\n[file]\nlevel=all\nfile=out.txt\nappend=1\n");
  theProgram.Run({"log", "1", "0", "one\n", "limit", "1", "log", "1", "0", "two\n", "limit", "0", "log", "1",
                  "0", "three\n"});
  EXPECT_THAT(theProgram.Read("out.txt"), MatchesRegex(Lines({"one"}) + Lines({"three"})));
}

TEST_F(qvFileLoggerTest, AfterAWriteErrorTheNameIsMadeAnew) {
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=0\n[file]\nlevel=all\nfile=%S.txt\n");
  theProgram.Run(kClock + std::vector<std::string>{"log", "1", "0", "one\n", "limit", "1", "log", "1", "0",
                                                   "two\n", "limit", "0", "clock", "1709642046", "0", "log",
                                                   "1", "0", "three\n"});
  EXPECT_THAT(theProgram.Read("05.txt"), MatchesRegex(Lines({"one"})));
  EXPECT_THAT(theProgram.Read("06.txt"), MatchesRegex(Lines({"three"})));
}

TEST_F(qvFileLoggerTest, AWriteErrorInTheMiddleOfAMessageLosesTheRestOfIt) {
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=0\nmax_len_logger=20000\n[file]\nlevel=all\nfile=out.txt\n");
  ChildResult theResult =
      theProgram.Run({"log", "1", "0", "one\n", "limit", "1", "begin", "append", std::string(10000, 'a'),
                      "limit", "0", "append", "the rest\n", "end", "log", "1", "0", "two\n"});
  EXPECT_EQ("qvFileLogger: File too large\n", theResult.mStderr);
  EXPECT_THAT(theProgram.Read("out.txt"), MatchesRegex(Lines({"two"})));
}

TEST_F(qvFileLoggerTest, FileAndModeAreThoseOfTheMomentOfTheOpening) {
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=0\n[file]\nlevel=all\nfile=out.txt\n");
  WriteWholeFile(theProgram.Path("other.txt"), "what was there\n");
  theProgram.Run(
      {"reload", "write", "qvLog.box.ini",
       std::string(kNoLogDaemon) + "[options]\npopulate=0\n[file]\nlevel=all\nfile=other.txt\nappend=1\n",
       "log", "1", "0", "x\n"});
  EXPECT_THAT(theProgram.Read("other.txt"), MatchesRegex("what was there\n" + Lines({"x"})));
  EXPECT_FALSE(FileExists(theProgram.Path("out.txt")));
}

TEST_F(qvFileLoggerTest, AReloadReadsNeitherThresholdNorFileNorMode) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=warn\nfile=out.txt\n");
  ChildResult theResult =
      theProgram.Run({"log", "1", "0", "one\n", "write", "qvLog.box.ini",
                      std::string(kNoLogDaemon) + "[file]\nlevel=all\nfile=other.txt\n", "reload", "log", "1",
                      "0", "two\n", "log", "4", "0", "not this\n", "threshold", "File"});
  EXPECT_EQ("3\n", theResult.mStdout);
  EXPECT_THAT(theProgram.Read("out.txt"), MatchesRegex(Lines({"one", "two"})));
  EXPECT_FALSE(FileExists(theProgram.Path("other.txt")));
}

TEST_F(qvFileLoggerTest, TermClosesTheFileAndTheNextMessageReadsTheSettingsAnew) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=out.txt\n");
  ChildResult theResult = theProgram.Run(
      {"log", "1", "0", "one", "term", "cat", "out.txt", "write", "qvLog.box.ini",
       std::string(kNoLogDaemon) + "[file]\nlevel=all\nfile=other.txt\n", "log", "1", "0", "two\n"});
  EXPECT_THAT(theResult.mStdout, MatchesRegex(std::string(kStarted) + kError + "one"));
  EXPECT_EQ(theResult.mStdout, theProgram.Read("out.txt"));
  EXPECT_THAT(theProgram.Read("other.txt"), MatchesRegex(Lines({"two"})));
}

TEST_F(qvFileLoggerTest, NeverLogClosesTheFile) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=out.txt\n");
  ChildResult theResult = theProgram.Run(
      {"log", "1", "0", "one", "never", "cat", "out.txt", "log", "1", "0", "two\n", "threshold", "File"});
  EXPECT_THAT(theResult.mStdout, MatchesRegex(std::string(kStarted) + kError + "onenone\n"));
  EXPECT_THAT(theProgram.Read("out.txt"), EndsWith("one"));
}

TEST_F(qvFileLoggerTest, BeginningAMessageWithoutTextWritesThePrefixOnly) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\nfile=out.txt\n");
  theProgram.Run({"begin", "end", "log", "1", "0", "x\n"});
  EXPECT_THAT(theProgram.Read("out.txt"), MatchesRegex(Lines({"x"})));
}

TEST_F(qvFileLoggerTest, AnEmptyPieceLeavesTheLastByteAlone) {
  qvFileLogger theLogger(false);
  qvLogDataEx theRecord = {};
  theLogger.mLastChar = 'q';
  theLogger.Append_S(&theRecord, "xyz", 0);
  EXPECT_EQ('q', theLogger.mLastChar);
  theLogger.Append_S(&theRecord, "xyz", 2);
  EXPECT_EQ('y', theLogger.mLastChar) << "remembered also while the output is closed";
}
