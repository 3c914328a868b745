// What the log daemon logger sends, byte by byte, and what it counts as lost.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include "qvLog/qvLogger_File.h"
#include "support/ChildProcess.h"
#include "support/LogDaemonTest.h"
#include "support/LogProgram.h"
#include "support/RecordingLogger.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

using qvLogdLoggerStream = LogDaemonTest;
using qvLogdLoggerKept = LogDaemonTest;

qvLogDataEx* Record() {
  static qvLogDataEx sRecord;
  sRecord = {};
  sRecord.mLevel = QVLOGLEVEL_ERROR;
  return &sRecord;
}

// One message without a prefix, as the main logger would hand it on.
void SendText(ScriptedLogdLogger& aLogger, const std::string& aText) {
  aLogger.mBufferLen = 0;
  aLogger.Append_S(Record(), aText.data(), aText.size());
  aLogger.EndLog(Record());
}

}  // namespace

TEST_F(qvLogdLoggerStream, AConnectionStartsWithTheHeaderAndThenTheMessageThatMadeIt) {
  EXPECT_TRUE(LogText(1, 0, "the first message\n"));
  std::string theHeader = Header("0");
  EXPECT_EQ(theHeader, mPeer.Read(theHeader.size()));
  EXPECT_THAT(mPeer.ReadUntil("\n"), MatchesRegex(kErrorPrefix + std::string("the first message\n")));
  EXPECT_TRUE(Logger()->IsConnected());
}

TEST_F(qvLogdLoggerStream, TheHeaderReadsAsPublished) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\nlevel=all\n");
  theProgram.Run({"log", "1", "0", "x\n"}, {"QVRALOG=" + mPeer.Target()});
  EXPECT_THAT(mPeer.ReadToEnd(),
              MatchesRegex("\nPROTOCOL: qvLogd-1\\.0\n"
                           "UUID: [0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}\n"
                           "LOST: 0\n"
                           "NAME: box\\(log started, 0 logs previously lost\\)\n"
                           "E [0-9:]{12}\\|[0-9a-f]{8}\\|DEFAULT    x\n"));
}

TEST_F(qvLogdLoggerStream, EachLineCarriesThePrefixOfEveryTextOutput) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\nlevel=all\n");
  theProgram.Run(
      {"clock", "1709642045", "42999", "log", "0", "28", "zero\n",  "log", "1", "28", "one\n", "log",
       "2",     "170",        "two\n", "log", "3", "0",  "three\n", "log", "4", "0",  "four\n"},
      {"QVRALOG=" + mPeer.Target()});
  mPeer.ReadUntil("NAME: ");
  mPeer.ReadUntil("\n");
  EXPECT_THAT(mPeer.ReadToEnd(), MatchesRegex("E 12:34:05:042\\|[0-9a-f]{8}\\|TUNER      zero\n"
                                              "E 12:34:05:042\\|[0-9a-f]{8}\\|TUNER      one\n"
                                              "W 12:34:05:042\\|[0-9a-f]{8}\\|0000000170 two\n"
                                              "I 12:34:05:042\\|[0-9a-f]{8}\\|DEFAULT    three\n"
                                              "D 12:34:05:042\\|[0-9a-f]{8}\\|DEFAULT    four\n"));
}

TEST_F(qvLogdLoggerStream, EveryLineOfAMultiLineMessageCarriesAPrefix) {
  qvLogData* theData = qvLog_Begin(1, 0);
  ASSERT_NE(nullptr, theData);
  qvLog_Append_FML("%s\n%s\n", "one", "two");
  qvLog_End(theData);
  mPeer.ReadUntil("lost)\n");
  EXPECT_THAT(mPeer.ReadUntil("two\n"),
              MatchesRegex(kErrorPrefix + std::string("one\n") + kErrorPrefix + "two\n"));
}

TEST_F(qvLogdLoggerStream, MessagesWithoutLineEndsShareOneLineAndOnePrefix) {
  for (const char* theText : {"one ", "two ", "three\n", "four\n"}) {
    EXPECT_TRUE(LogText(1, 0, theText));
  }
  mPeer.ReadUntil("lost)\n");
  EXPECT_THAT(mPeer.ReadUntil("four\n"),
              MatchesRegex(kErrorPrefix + std::string("one two three\n") + kErrorPrefix + "four\n"));
}

TEST_F(qvLogdLoggerStream, AMessageMayHoldZeroBytes) {
  EXPECT_TRUE(LogText(1, 0, std::string(2000, 'a')));  // cut with a zero byte at its end
  mPeer.ReadUntil("DEFAULT    ");
  EXPECT_EQ(std::string(1023, 'a') + '\0', mPeer.Read(1024));
}

TEST_F(qvLogdLoggerStream, AMessageIsSentWithOneCallWhateverItsParts) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  theLogger.EnterChain();
  qvLogData* theData = qvLog_Begin(1, 0);
  ASSERT_NE(nullptr, theData);
  qvLog_Append_F("%d ", 1);
  qvLog_Append_B("bytes", 5);
  qvLog_Append_U(L"wide", 4);
  EXPECT_TRUE(theLogger.mSent.empty()) << "nothing before the end";
  qvLog_End(theData);
  ASSERT_EQ(1u, theLogger.mSent.size());
  EXPECT_THAT(theLogger.mSent[0],
              MatchesRegex(std::string(kErrorPrefix) + "1 Buffer pointer=0x[0-9a-f]+ length=5\n"
                                                       "   62 79 74 65 73 +- bytes\nwide"));
  EXPECT_THAT(theLogger.mSockets, ElementsAre(theLogger.mSocket));
}

TEST_F(qvLogdLoggerStream, WithoutADaemonEachMessageIsCountedAndTheNextHeaderTellsTheCount) {
  mPeer.StopListening();
  testing::internal::CaptureStderr();
  for (int i = 0; i < 3; ++i) {
    EXPECT_FALSE(LogText(1, 0, "lost\n"));
  }
  EXPECT_EQ(3u, Logger()->mLostLogs);
  EXPECT_EQ(-1, Logger()->mSocket);
  mPeer.Listen();
  EXPECT_TRUE(LogText(1, 0, "delivered\n"));
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
  EXPECT_EQ(0u, Logger()->mLostLogs);
  std::string theExpected = "\nLOST: 3\n" + Header("3");
  EXPECT_EQ(theExpected, mPeer.Read(theExpected.size()));
  EXPECT_THAT(mPeer.ReadUntil("\n"), MatchesRegex(kErrorPrefix + std::string("delivered\n")));
}

TEST_F(qvLogdLoggerKept, ALossReportWithTheSameCountPrecedesTheHeader) {
  mPeer.StopListening();
  EXPECT_FALSE(LogText(1, 0, "lost\n"));
  mPeer.Listen();
  EXPECT_TRUE(LogText(1, 0, "delivered\n"));
  EXPECT_EQ("\nLOST: 1\n\nPROTOCOL: ", mPeer.ReadUntil("PROTOCOL: "));
  EXPECT_THAT(mPeer.ReadUntil("delivered\n"), HasSubstr("\nLOST: 1\n"));
  qvLog_ReloadConfig();
  EXPECT_TRUE(LogText(1, 0, "delivered\n"));
  mPeer.Accept();
  EXPECT_EQ("\nPROTOCOL: ", mPeer.ReadUntil("PROTOCOL: ")) << "without losses there is none";
}

TEST_F(qvLogdLoggerStream, AReconnectionSendsANewHeaderWithTheSameUUID) {
  EXPECT_TRUE(LogText(1, 0, "one\n"));
  mPeer.ReadUntil("one\n");
  std::string theUUID = Logger()->mUUIDStr;
  mPeer.Reset();
  LogText(1, 0, "two\n");
  EXPECT_FALSE(Logger()->IsConnected()) << "the message found that the connection is broken";
  EXPECT_TRUE(LogText(1, 0, "three\n"));
  EXPECT_EQ(theUUID, Logger()->mUUIDStr);
  std::string theExpected = "\nLOST: 1\n" + Header("1");
  EXPECT_EQ(theExpected, mPeer.Read(theExpected.size()));
  EXPECT_THAT(mPeer.ReadUntil("\n"), MatchesRegex(kErrorPrefix + std::string("three\n")));
}

TEST_F(qvLogdLoggerStream, AReloadStartsANewConnectionWithAHeader) {
  EXPECT_TRUE(LogText(1, 0, "one\n"));
  mPeer.ReadUntil("one\n");
  qvLog_ReloadConfig();
  EXPECT_TRUE(LogText(1, 0, "two\n"));
  EXPECT_EQ("", mPeer.ReadToEnd());
  mPeer.Accept();
  std::string theHeader = Header("0");
  EXPECT_EQ(theHeader, mPeer.Read(theHeader.size()));
  EXPECT_THAT(mPeer.ReadUntil("\n"), MatchesRegex(kErrorPrefix + std::string("two\n")));
}

TEST_F(qvLogdLoggerStream, TheLineThatABrokenConnectionCutIsNotContinued) {
  EXPECT_TRUE(LogText(1, 0, "without a line end"));
  qvLog_ReloadConfig();
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  mPeer.Accept();
  EXPECT_THAT(mPeer.ReadToEnd(), EndsWith("without a line end"));
  mPeer.Accept();
  EXPECT_THAT(mPeer.ReadUntil("x\n"), MatchesRegex("(.|\n)*lost\\)\n" + std::string(kErrorPrefix) + "x\n"));
}

TEST_F(qvLogdLoggerStream, TheEndOfTheProcessClosesTheConnectionBehindTheLastMessage) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\nlevel=all\n");
  theProgram.Run({"log", "1", "0", "the last words"}, {"QVRALOG=" + mPeer.Target()});
  EXPECT_THAT(mPeer.ReadToEnd(), EndsWith("the last words"));
}

// --- One message, with the results of sending written out ---

TEST_F(qvLogdLoggerStream, AWholeMessageLeavesItsLastByteBehind) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  SendText(theLogger, "abc");
  EXPECT_THAT(theLogger.mSent, ElementsAre("abc"));
  EXPECT_EQ('c', theLogger.mLastChar);
  EXPECT_EQ(0u, theLogger.mLostLogs);
  SendText(theLogger, "\xFF");
  EXPECT_EQ('\xFF', theLogger.mLastChar);
}

TEST_F(qvLogdLoggerStream, AnEmptyMessageLeavesTheLastByteAlone) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  SendText(theLogger, "abc");
  SendText(theLogger, "");
  EXPECT_EQ('c', theLogger.mLastChar);
  EXPECT_EQ(0u, theLogger.mLostLogs);
}

TEST_F(qvLogdLoggerStream, APrefixIsWrittenOnlyBehindALineEnd) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  theLogger.mLastChar = 'c';
  EXPECT_TRUE(theLogger.BeginLog(Record()));
  EXPECT_EQ(0u, theLogger.mBufferLen);
  theLogger.mLastChar = '\n';
  EXPECT_TRUE(theLogger.BeginLog(Record()));
  EXPECT_LT(0u, theLogger.mBufferLen);
}

TEST_F(qvLogdLoggerKept, TheRestOfAMessageThatWasSentInPartIsNeverSent) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  theLogger.mResults = {{2, 0}};
  theLogger.mLastChar = 'x';
  SendText(theLogger, "abc");
  EXPECT_EQ(1u, theLogger.mLostLogs) << "it counts as lost";
  EXPECT_EQ('\n', theLogger.mLastChar) << "the next message starts with a prefix";
  EXPECT_TRUE(theLogger.IsConnected());
  theLogger.mLostLogs = 0;
  SendText(theLogger, "def");
  EXPECT_THAT(theLogger.mSent, ElementsAre("abc", "def"));
  theLogger.mResults = {{3, 0}};
  SendText(theLogger, "ghi");
  EXPECT_EQ(0u, theLogger.mLostLogs) << "all three bytes were sent";
  theLogger.mResults = {{0, 0}};
  SendText(theLogger, "jkl");
  EXPECT_EQ(1u, theLogger.mLostLogs) << "none was sent";
}

TEST_F(qvLogdLoggerStream, AMessageThatTheSystemCannotTakeNowIsLostAndTheConnectionStands) {
  ScriptedLogdLogger theLogger;
  for (int theError : {EAGAIN, EINTR, EINPROGRESS}) {
    theLogger.PretendToBeConnected();
    int theSocket = theLogger.mSocket;
    theLogger.mResults = {{-1, theError}};
    theLogger.mLastChar = 'x';
    theLogger.mLostLogs = 0;
    SendText(theLogger, "abc");
    EXPECT_EQ(1u, theLogger.mLostLogs) << theError;
    EXPECT_EQ('\n', theLogger.mLastChar) << theError;
    EXPECT_TRUE(theLogger.IsConnected()) << theError;
    EXPECT_EQ(theSocket, theLogger.mSocket) << theError;
  }
}

TEST_F(qvLogdLoggerStream, AnyOtherErrorOfSendingEndsTheConnection) {
  ScriptedLogdLogger theLogger;
  for (int theError : {EPIPE, ECONNRESET, EBADF, EALREADY, ENOBUFS, ETIMEDOUT}) {
    theLogger.PretendToBeConnected();
    int theSocket = theLogger.mSocket;
    theLogger.mResults = {{-1, theError}};
    theLogger.mLastChar = 'x';
    theLogger.mLostLogs = 0;
    SendText(theLogger, "abc");
    EXPECT_EQ(1u, theLogger.mLostLogs) << theError;
    EXPECT_EQ('\n', theLogger.mLastChar) << theError;
    EXPECT_FALSE(theLogger.IsConnected()) << theError;
    EXPECT_EQ(-1, theLogger.mSocket) << theError;
    EXPECT_EQ(-1, fcntl(theSocket, F_GETFD)) << theError << ": closed";
  }
}

TEST_F(qvLogdLoggerStream, PendingLossesAreReportedBeforeAMessage) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  theLogger.mLostLogs = 4294967295u;
  SendText(theLogger, "abc");
  EXPECT_THAT(theLogger.mSent, ElementsAre("\nLOST: 4294967295\n", "abc"));
  EXPECT_EQ(0u, theLogger.mLostLogs);
}

TEST_F(qvLogdLoggerStream, AReportOfWhichSomethingWasSentEndsTheCount) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  theLogger.mLostLogs = 7;
  theLogger.mResults = {{1, 0}};
  SendText(theLogger, "abc");
  EXPECT_EQ(0u, theLogger.mLostLogs);
}

TEST_F(qvLogdLoggerStream, AReportOfWhichNothingWasSentIsKept) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  theLogger.mLostLogs = 7;
  theLogger.mResults = {{0, 0}};
  SendText(theLogger, "abc");
  EXPECT_EQ(7u, theLogger.mLostLogs);
  theLogger.mResults = {{-1, EAGAIN}, {-1, EAGAIN}};
  SendText(theLogger, "abc");
  EXPECT_EQ(8u, theLogger.mLostLogs);
  EXPECT_THAT(theLogger.mSent, ElementsAre("\nLOST: 7\n", "abc", "\nLOST: 7\n", "abc"));
}

TEST_F(qvLogdLoggerStream, TheEndOfAMessageWithoutAConnectionCountsItAndSendsNothing) {
  ScriptedLogdLogger theLogger;
  SendText(theLogger, "abc");
  EXPECT_EQ(1u, theLogger.mLostLogs);
  theLogger.PretendToBeConnected();
  theLogger.mState = qvLogdLogger::State_Connecting;
  SendText(theLogger, "abc");
  EXPECT_EQ(2u, theLogger.mLostLogs);
  EXPECT_TRUE(theLogger.mSent.empty());
}

TEST_F(qvLogdLoggerKept, LossesOfAStandingConnectionAreToldOnStandardError) {
  ScriptedLogdLogger theLogger;
  int thePair[2];
  ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, thePair));
  theLogger.mState = qvLogdLogger::State_Connected;
  theLogger.mSocket = thePair[0];
  theLogger.mLostLogs = 12;
  testing::internal::CaptureStderr();
  EXPECT_TRUE(theLogger.BeginLog(Record()));
  EXPECT_EQ("qvLogdLogger: Restarting, 12 logs were lost.\n", testing::internal::GetCapturedStderr());
  EXPECT_EQ(0u, theLogger.mLostLogs);
  theLogger.EndLog(Record());
  ASSERT_EQ(1u, theLogger.mSent.size());
  EXPECT_THAT(theLogger.mSent[0], Not(HasSubstr("LOST"))) << "and not in the stream";
  testing::internal::CaptureStderr();
  EXPECT_TRUE(theLogger.BeginLog(Record()));
  EXPECT_EQ("", testing::internal::GetCapturedStderr()) << "once";
  close(thePair[1]);
}

TEST_F(qvLogdLoggerStream, WhileLossesArePendingAMessageWaitsForNothingAndIsCounted) {
  ScriptedLogdLogger theLogger;
  int thePair[2];
  ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, thePair));
  while (send(thePair[0], "full", 4, MSG_NOSIGNAL) > 0) {
  }
  theLogger.mState = qvLogdLogger::State_Connected;
  theLogger.mSocket = thePair[0];
  theLogger.mLostLogs = 12;
  testing::internal::CaptureStderr();
  EXPECT_FALSE(theLogger.BeginLog(Record()));
  EXPECT_EQ(13u, theLogger.mLostLogs);
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
  EXPECT_TRUE(theLogger.mSent.empty());
  close(thePair[1]);
}

// --- Messages that another logger takes ---

TEST_F(qvLogdLoggerKept, ARefusedMessageCountsTwiceWhenAnotherLoggerTakesIt) {
  mPeer.StopListening();
  Logger();
  EXPECT_FALSE(LogText(1, 0, "nobody takes it\n"));
  EXPECT_EQ(1u, Logger()->mLostLogs);
  RecordingLogger theOther(2);
  EXPECT_TRUE(LogText(1, 0, "the other takes it\n"));
  EXPECT_EQ(3u, Logger()->mLostLogs) << "at its beginning and at its end";
  EXPECT_THAT(theOther.mMessages, ElementsAre("the other takes it\n"));
}

TEST_F(qvLogdLoggerKept, AMessageThatFindsNoAddressIsCountedAtItsEndWhenAnotherLoggerTakesIt) {
  mVariable.Set("127.0.0.1:65536");
  Logger();
  EXPECT_FALSE(LogText(1, 0, "nobody takes it\n"));
  EXPECT_EQ(0u, Logger()->mLostLogs);
  RecordingLogger theOther(2);
  EXPECT_TRUE(LogText(1, 0, "the other takes it\n"));
  EXPECT_EQ(1u, Logger()->mLostLogs);
}

TEST_F(qvLogdLoggerStream, ARefusedMessageLeavesNothingBehindForTheNextOne) {
  mPeer.StopListening();
  RecordingLogger theOther(2);
  EXPECT_TRUE(LogText(1, 0, "refused\n"));
  mPeer.Listen();
  EXPECT_TRUE(LogText(1, 0, "delivered\n"));
  EXPECT_THAT(mPeer.ReadUntil("delivered\n"), Not(HasSubstr("refused")));
}

TEST_F(qvLogdLoggerStream, TheBufferDoesNotGrowWhileNoDaemonListens) {
  mPeer.StopListening();
  RecordingLogger theOther(2);
  for (int i = 0; i < 100; ++i) {
    EXPECT_TRUE(LogText(1, 0, std::string(500, 'a')));
  }
  EXPECT_EQ(1u, Logger()->mBufferAllocLen);
  EXPECT_EQ(0u, Logger()->mBufferLen);
}

TEST_F(qvLogdLoggerStream, ARefusedMessageOfAFullConnectionIsNotSentWhenItDrainsMeanwhile) {
  ScriptedLogdLogger theLogger;
  int thePair[2];
  ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, thePair));
  while (send(thePair[0], "full", 4, MSG_NOSIGNAL) > 0) {
  }
  theLogger.mState = qvLogdLogger::State_Connected;
  theLogger.mSocket = thePair[0];
  theLogger.mLostLogs = 12;
  EXPECT_FALSE(theLogger.BeginLog(Record()));
  theLogger.Append_S(Record(), "abc\n", 4);
  theLogger.EndLog(Record());
  EXPECT_THAT(theLogger.mSent, ElementsAre("\nLOST: 13\n")) << "the message is one of them";
  EXPECT_EQ(0u, theLogger.mLostLogs);
  close(thePair[1]);
}

// --- The buffer ---

TEST_F(qvLogdLoggerStream, TheBufferGrowsToTheNeededSizeAndNeverShrinks) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  theLogger.Append_S(Record(), "a", 1);
  EXPECT_EQ(1u, theLogger.mBufferAllocLen);
  theLogger.Append_S(Record(), "bcd", 3);
  EXPECT_EQ(4u, theLogger.mBufferAllocLen);
  EXPECT_EQ(4u, theLogger.mBufferLen);
  theLogger.EndLog(Record());
  EXPECT_THAT(theLogger.mSent, ElementsAre("abcd"));
  SendText(theLogger, "ef");
  EXPECT_EQ(4u, theLogger.mBufferAllocLen);
  theLogger.Append_S(Record(), "", 0);
  EXPECT_EQ(0u, theLogger.mBufferLen);
}

TEST_F(qvLogdLoggerStream, AMessageThatEndsTwiceIsSentOnce) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  theLogger.Append_S(Record(), "abc", 3);
  theLogger.EndLog(Record());
  theLogger.EndLog(Record());
  EXPECT_THAT(theLogger.mSent, ElementsAre("abc", ""));
}

TEST_F(qvLogdLoggerStream, AWrongStateFailsAnAssertion) {
  EXPECT_QV_ASSERTION(
      {
        qvLogdLogger theLogger(false);
        theLogger.mState = static_cast<qvLogdLogger::State>(3);
        theLogger.MakeConnected(Record());
      },
      "Wrong state", "qvLogger_qvLogd");
}
