// What the file logger gives to its stream and to the system at once.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include "qvLog/qvLogger_File.h"
#include "qvLog/qvMainLogger_p.h"
#include "support/LogProgram.h"

namespace {

using testing::ElementsAre;
using testing::MatchesRegex;

const char kPrefix[] = "E [0-9:]{12}\\|[0-9a-f]{8}\\|DEFAULT    ";

// One end is an output of the logger; every write to it arrives at the other one on its own.
class SeenWrites : public testing::Test {
 protected:
  SeenWrites() {
    int theEnds[2];
    socketpair(AF_UNIX, SOCK_SEQPACKET, 0, theEnds);
    mWrites = theEnds[0];
    mOutput = theEnds[1];
  }
  ~SeenWrites() override { close(mWrites); }

  static void LogTo(FILE* aFile) {
    qvLogger::LockFramework();
    qvFileLogger::sInstance->mFile = aFile;
    qvFileLogger::sInstance->mLastChar = '\n';
    qvFileLogger::sInstance->ChangeLevel(65535);
    qvLogger::UnlockFramework();
  }

  std::vector<std::string> Writes() {
    std::vector<std::string> theWrites;
    char theBytes[8192];
    ssize_t theLength;
    while ((theLength = recv(mWrites, theBytes, sizeof(theBytes), MSG_DONTWAIT)) > 0) {
      theWrites.emplace_back(theBytes, theLength);
    }
    return theWrites;
  }

  int mWrites;
  int mOutput;
};

class WritesOfStandardError : public SeenWrites {
 protected:
  WritesOfStandardError() : mOld(dup(STDERR_FILENO)) {
    dup2(mOutput, STDERR_FILENO);
    close(mOutput);
    LogTo(stderr);
  }
  ~WritesOfStandardError() override {
    dup2(mOld, STDERR_FILENO);
    close(mOld);
  }

 private:
  int mOld;
};

class WritesOfAStream : public SeenWrites {
 protected:
  WritesOfAStream() : mStream(fdopen(mOutput, "w")) { LogTo(mStream); }
  ~WritesOfAStream() override { qvLog_Term(); }

  FILE* mStream;  // the logger closes it
};

// The regular expression of a line with a prefix.
testing::Matcher<std::string> Line(const std::string& aText) { return MatchesRegex(kPrefix + aText); }

}  // namespace

TEST_F(WritesOfStandardError, AFormattedLineIsOne) {
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_F("%d %s\n", 1, "text");
  EXPECT_THAT(Writes(), ElementsAre(Line("1 text\n"))) << "as soon as the text is known";
  qvLog_End(theData);
  EXPECT_THAT(Writes(), ElementsAre());
}

TEST_F(WritesOfStandardError, AnIndentedLineIsOne) {
  qvLogData* theData = qvLog_Begin(1, 0);
  qvMainLogger::Current()->Indent();
  qvLog_Append_FN("%d", 1);
  qvMainLogger::Current()->Unindent();
  qvLog_End(theData);
  EXPECT_THAT(Writes(), ElementsAre(Line("\t1\n")));
}

TEST_F(WritesOfStandardError, EachLineOfAMultiLineTextIsOne) {
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_FML("one\ntwo\n");
  qvLog_End(theData);
  EXPECT_THAT(Writes(), ElementsAre(Line("one\n"), Line("two\n")));
}

TEST_F(WritesOfStandardError, EachLineOfAHexDumpIsOne) {
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_B("0123456789abcdef0", 17);
  qvLog_End(theData);
  EXPECT_EQ(3u, Writes().size());
}

TEST_F(WritesOfStandardError, TextWithoutALineEndIsWrittenAtOnce) {
  qvLogData* theData = qvLog_Begin(1, 0);
  EXPECT_THAT(Writes(), ElementsAre());
  qvLog_Append_F("one");
  EXPECT_THAT(Writes(), ElementsAre(Line("one")));
  qvLog_Append_F(" two\n");
  EXPECT_THAT(Writes(), ElementsAre(" two\n"));
  qvLog_End(theData);
}

TEST_F(WritesOfStandardError, APrefixWithoutTextIsWrittenAtTheEndOfTheMessage) {
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_End(theData);
  EXPECT_THAT(Writes(), ElementsAre(Line("")));
}

TEST_F(WritesOfAStream, AFormattedLineIsOne) {
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_F("%d %s\n", 1, "text");
  EXPECT_THAT(Writes(), ElementsAre());
  qvLog_End(theData);
  EXPECT_THAT(Writes(), ElementsAre(Line("1 text\n")));
}

TEST_F(WritesOfAStream, AMessageOfSeveralTextsIsOne) {
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_F("one\n");
  qvLog_Append_F("two\n");
  qvLog_Append_F("three\n");
  qvLog_End(theData);
  EXPECT_THAT(Writes(), ElementsAre(Line("one\ntwo\nthree\n")));
}

TEST_F(WritesOfAStream, ALineThatIsNotCompleteIsOneWithItsEnd) {
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_F("one");
  qvLog_End(theData);
  EXPECT_THAT(Writes(), ElementsAre());
  theData = qvLog_Begin(1, 0);
  qvLog_Append_F(" two\n");
  qvLog_End(theData);
  EXPECT_THAT(Writes(), ElementsAre(Line("one two\n")));
}

TEST_F(WritesOfAStream, AnIndentedLineIsOne) {
  qvLogData* theData = qvLog_Begin(1, 0);
  qvMainLogger::Current()->Indent();
  qvLog_Append_FN("%d", 1);
  qvMainLogger::Current()->Unindent();
  qvLog_End(theData);
  EXPECT_THAT(Writes(), ElementsAre(Line("\t1\n")));
}

TEST_F(WritesOfAStream, AMultiLineTextIsOne) {
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_FML("one\ntwo\n");
  qvLog_End(theData);
  EXPECT_THAT(Writes(), ElementsAre(MatchesRegex(kPrefix + std::string("one\n") + kPrefix + "two\n")));
}

TEST_F(WritesOfAStream, AHexDumpIsOne) {
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_B("0123456789abcdef0", 17);
  qvLog_End(theData);
  EXPECT_EQ(1u, Writes().size());
}

TEST_F(WritesOfAStream, WhatTheApplicationLeftInTheStreamComesFirst) {
  fputs("first ", mStream);
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_F("second\n");
  qvLog_End(theData);
  EXPECT_THAT(Writes(), ElementsAre(MatchesRegex("first " + std::string(kPrefix) + "second\n")));
}

TEST_F(WritesOfAStream, AMessageOfSeveralKindsIsOne) {
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_F("one\n");
  qvLog_Append_B("0123456789abcdef0", 17);
  qvLog_Append_FN("two");
  qvLog_End(theData);
  EXPECT_EQ(1u, Writes().size());
}

static void LiftTheLimit(int) {
  struct rlimit theLimit = {RLIM_INFINITY, RLIM_INFINITY};
  setrlimit(RLIMIT_FSIZE, &theLimit);
}

TEST(WritesOfAFile, WhatTheSystemRefusesIsNotTriedAgainWhenTheFileIsClosed) {
  ScratchFolder theFolder;
  qvLogger::LockFramework();
  qvFileLogger* theLogger = qvFileLogger::sInstance;
  theLogger->mFile = fopen(theFolder.File("out.txt").c_str(), "w");
  theLogger->mLastChar = '\n';
  theLogger->ChangeLevel(65535);
  qvLogger::UnlockFramework();
  // The first write ends at the limit, the second one is refused and lifts it.
  signal(SIGXFSZ, LiftTheLimit);
  struct rlimit theLimit = {7, RLIM_INFINITY};
  setrlimit(RLIMIT_FSIZE, &theLimit);
  testing::internal::CaptureStderr();
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_F("text\n");
  qvLog_End(theData);
  EXPECT_EQ("qvFileLogger: File too large\n", testing::internal::GetCapturedStderr());
  EXPECT_FALSE(theLogger->IsOK());
  EXPECT_THAT(ReadWholeFile(theFolder.File("out.txt")), MatchesRegex("E [0-9:]{5}"));
}

TEST(WritesOfAFile, ALineLongerThanTheLoggersBufferIsWhole) {
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=0\nmax_len_logger=20000\n[file]\nlevel=all\nfile=out.txt\n");
  std::string theLong(10000, 'a');
  std::string theFull(4096, 'b');
  theProgram.Run({"begin", "append", "1", "append", theFull, "append", theLong, "append", "\n", "end"});
  EXPECT_THAT(theProgram.Read("out.txt"),
              MatchesRegex("NAME: box \\(log started\\)\n" + std::string(kPrefix) + "1b{4096}a{10000}\n"));
}

TEST(WritesOfAFile, AMessageThatIsBegunIsInAFileThatIsClosed) {
  ScratchFolder theFolder;
  qvLog_Term();
  qvFileLogger theLogger(false);
  qvLogDataEx theRecord = {};
  theLogger.mFile = fopen(theFolder.File("out.txt").c_str(), "w");
  EXPECT_TRUE(theLogger.BeginLog(&theRecord));
  theLogger.Append_S(&theRecord, "text", 4);
  theLogger.CloseFile();
  theLogger.Append_S(&theRecord, "lost", 4);
  theLogger.EndLog(&theRecord);
  EXPECT_EQ("text", ReadWholeFile(theFolder.File("out.txt")));
}

TEST(WritesOfAFile, AStreamWithoutADescriptorIsWrittenTo) {
  char theText[64] = {};
  qvLog_Term();
  qvFileLogger theLogger(false);
  qvLogDataEx theRecord = {};
  theLogger.mFile = fmemopen(theText, sizeof(theText), "w");
  EXPECT_TRUE(theLogger.BeginLog(&theRecord));
  theLogger.Append_S(&theRecord, "text\n", 5);
  theLogger.EndLog(&theRecord);
  EXPECT_STREQ("text\n", theText);
}

TEST(WritesOfAFile, WhatTheApplicationLeftInTheStreamComesFirst) {
  ScratchFolder theFolder;
  qvLog_Term();
  qvFileLogger theLogger(false);
  qvLogDataEx theRecord = {};
  theLogger.mFile = fopen(theFolder.File("out.txt").c_str(), "w");
  fputs("first ", theLogger.mFile);
  EXPECT_TRUE(theLogger.BeginLog(&theRecord));
  theLogger.Append_S(&theRecord, "second\n", 7);
  theLogger.EndLog(&theRecord);
  EXPECT_EQ("first second\n", ReadWholeFile(theFolder.File("out.txt")));
}

TEST(WritesOfAFile, WhatIsPutIntoTheStreamInsideAMessageKeepsItsPlace) {
  ScratchFolder theFolder;
  qvLog_Term();
  qvFileLogger theLogger(false);
  qvLogDataEx theRecord = {};
  theLogger.mFile = fopen(theFolder.File("out.txt").c_str(), "w");
  EXPECT_TRUE(theLogger.BeginLog(&theRecord));
  theLogger.Append_S(&theRecord, "first ", 6);
  fputs("second ", theLogger.mFile);
  theLogger.Append_S(&theRecord, "third\n", 6);
  theLogger.EndLog(&theRecord);
  EXPECT_EQ("first second third\n", ReadWholeFile(theFolder.File("out.txt")));
}

TEST(WritesOfAFile, APieceThatCannotBeWrittenClosesTheFileAtOnce) {
  qvLog_Term();
  qvFileLogger theLogger(false);
  qvLogDataEx theRecord = {};
  theLogger.mFile = fopen("/dev/null", "r");
  EXPECT_TRUE(theLogger.BeginLog(&theRecord));
  theLogger.Append_S(&theRecord, "text", 4);
  EXPECT_FALSE(theLogger.IsOK());
}

TEST(WritesOfAFile, ADerivedLoggerMayWriteAroundEachPieceItself) {
  struct Framing : qvFileLogger {
    Framing() : qvFileLogger(false) {}
    void Append_S(qvLogDataEx* aRecord, const char* aBytes, size_t aLength) override {
      fputc('<', mFile);
      qvFileLogger::Append_S(aRecord, aBytes, aLength);
      fputc('>', mFile);
    }
  };
  ScratchFolder theFolder;
  qvLog_Term();
  Framing theLogger;
  qvLogDataEx theRecord = {};
  theLogger.mFile = fopen(theFolder.File("out.txt").c_str(), "w");
  theLogger.mLastChar = '\n';
  EXPECT_TRUE(theLogger.BeginLog(&theRecord));
  theLogger.Append_S(&theRecord, "text", 4);
  theLogger.CloseFile();
  EXPECT_THAT(ReadWholeFile(theFolder.File("out.txt")),
              MatchesRegex("<E ><[0-9:]{12}><\\|>.*<\\|><DEFAULT><   >< ><text>"));
}

TEST(WritesOfAFile, ADerivedLoggerMayFlushByItself) {
  struct Flushing : qvFileLogger {
    Flushing() : qvFileLogger(false) {}
    void EndLog(qvLogDataEx*) override { fflush(mFile); }
  };
  ScratchFolder theFolder;
  qvLog_Term();
  Flushing theLogger;
  qvLogDataEx theRecord = {};
  theLogger.mFile = fopen(theFolder.File("out.txt").c_str(), "w");
  EXPECT_TRUE(theLogger.BeginLog(&theRecord));
  theLogger.Append_S(&theRecord, "text\n", 5);
  theLogger.EndLog(&theRecord);
  EXPECT_EQ("text\n", ReadWholeFile(theFolder.File("out.txt")));
}

TEST(WritesOfAFile, LoggersThatTakeTurnsAsTheInstanceHaveEachTheirOwnLine) {
  ScratchFolder theFolder;
  qvLog_Term();
  qvFileLogger theFirst(false);
  qvFileLogger::sInstance = nullptr;
  qvFileLogger theSecond(false);
  qvLogDataEx theRecord = {};
  theFirst.mFile = fopen(theFolder.File("1.txt").c_str(), "w");
  theSecond.mFile = fopen(theFolder.File("2.txt").c_str(), "w");
  for (qvFileLogger* theLogger : {&theFirst, &theSecond}) {
    theLogger->mLastChar = '\n';
    EXPECT_TRUE(theLogger->BeginLog(&theRecord));
  }
  for (qvFileLogger* theLogger : {&theFirst, &theSecond}) {
    theLogger->Append_S(&theRecord, "text\n", 5);
    theLogger->EndLog(&theRecord);
  }
  for (const char* theName : {"1.txt", "2.txt"}) {
    EXPECT_THAT(ReadWholeFile(theFolder.File(theName)),
                MatchesRegex("E [0-9:]{12}\\|.*\\|DEFAULT    text\n"));
  }
}
