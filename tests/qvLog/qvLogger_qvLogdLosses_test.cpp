// What becomes of one message, with the results of sending written out: what is sent, what counts as lost,
// what is left behind. The stream itself: qvLogger_qvLogdStream_test.cpp.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include "support/LogDaemonTest.h"
#include "support/RecordingLogger.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

using qvLogdLoggerLosses = LogDaemonTest;
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

// Connected to a peer that reads nothing, with no room left on the way. The result is the peer's end.
int ConnectToFullPeer(ScriptedLogdLogger& aLogger) {
  int thePair[2] = {-1, -1};
  EXPECT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, thePair));
  while (send(thePair[0], "full", 4, MSG_NOSIGNAL) > 0) {
  }
  aLogger.mState = qvLogdLogger::State_Connected;
  aLogger.mSocket = thePair[0];
  return thePair[1];
}

}  // namespace

TEST_F(qvLogdLoggerLosses, AWholeMessageLeavesItsLastByteBehind) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  SendText(theLogger, "abc");
  EXPECT_THAT(theLogger.mSent, ElementsAre("abc"));
  EXPECT_EQ('c', theLogger.mLastChar);
  EXPECT_EQ(0u, theLogger.mLostLogs);
  SendText(theLogger, "\xFF");
  EXPECT_EQ('\xFF', theLogger.mLastChar);
}

TEST_F(qvLogdLoggerLosses, AnEmptyMessageLeavesTheLastByteAlone) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  SendText(theLogger, "abc");
  SendText(theLogger, "");
  EXPECT_EQ('c', theLogger.mLastChar);
  EXPECT_EQ(0u, theLogger.mLostLogs);
}

TEST_F(qvLogdLoggerLosses, APrefixIsWrittenOnlyBehindALineEnd) {
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

TEST_F(qvLogdLoggerLosses, AMessageThatTheSystemCannotTakeNowIsLostAndTheConnectionStands) {
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

TEST_F(qvLogdLoggerLosses, AnyOtherErrorOfSendingEndsTheConnection) {
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

TEST_F(qvLogdLoggerLosses, PendingLossesAreReportedBeforeAMessage) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  theLogger.mLostLogs = 4294967295u;
  SendText(theLogger, "abc");
  EXPECT_THAT(theLogger.mSent, ElementsAre("\nLOST: 4294967295\n", "abc"));
  EXPECT_EQ(0u, theLogger.mLostLogs);
}

TEST_F(qvLogdLoggerLosses, AReportOfWhichSomethingWasSentEndsTheCount) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  theLogger.mLostLogs = 7;
  theLogger.mResults = {{1, 0}};
  SendText(theLogger, "abc");
  EXPECT_EQ(0u, theLogger.mLostLogs);
}

TEST_F(qvLogdLoggerLosses, AReportOfWhichNothingWasSentIsKept) {
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

TEST_F(qvLogdLoggerLosses, AReportThatFindsTheConnectionBrokenIsKeptForTheNextHeader) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  theLogger.mLostLogs = 7;
  theLogger.mResults = {{-1, EPIPE}, {-1, EPIPE}};
  SendText(theLogger, "abc");
  EXPECT_THAT(theLogger.mSent, ElementsAre("\nLOST: 7\n", "abc")) << "the message was tried all the same";
  EXPECT_EQ(8u, theLogger.mLostLogs);
  EXPECT_FALSE(theLogger.IsConnected());
}

TEST_F(qvLogdLoggerLosses, TheEndOfAMessageWithoutAConnectionCountsItAndSendsNothing) {
  ScriptedLogdLogger theLogger;
  SendText(theLogger, "abc");
  EXPECT_EQ(1u, theLogger.mLostLogs);
  theLogger.PretendToBeConnected();
  theLogger.mState = qvLogdLogger::State_Connecting;
  SendText(theLogger, "abc");
  EXPECT_EQ(2u, theLogger.mLostLogs);
  close(theLogger.mSocket);
  theLogger.mSocket = -1;
  theLogger.mState = qvLogdLogger::State_Connected;
  SendText(theLogger, "abc");
  EXPECT_EQ(3u, theLogger.mLostLogs);
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

TEST_F(qvLogdLoggerLosses, WhileLossesArePendingAMessageWaitsForNothingAndIsCounted) {
  ScriptedLogdLogger theLogger;
  int thePeer = ConnectToFullPeer(theLogger);
  theLogger.mLostLogs = 12;
  testing::internal::CaptureStderr();
  EXPECT_FALSE(theLogger.BeginLog(Record()));
  EXPECT_EQ(13u, theLogger.mLostLogs);
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
  EXPECT_TRUE(theLogger.mSent.empty());
  close(thePeer);
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

TEST_F(qvLogdLoggerLosses, ARefusedMessageLeavesNothingBehindForTheNextOne) {
  mPeer.StopListening();
  RecordingLogger theOther(2);
  EXPECT_TRUE(LogText(1, 0, "refused\n"));
  mPeer.Listen();
  EXPECT_TRUE(LogText(1, 0, "delivered\n"));
  EXPECT_THAT(mPeer.ReadUntil("delivered\n"), Not(HasSubstr("refused")));
}

TEST_F(qvLogdLoggerLosses, TheBufferDoesNotGrowWhileNoDaemonListens) {
  mPeer.StopListening();
  RecordingLogger theOther(2);
  for (int i = 0; i < 100; ++i) {
    EXPECT_TRUE(LogText(1, 0, std::string(500, 'a')));
  }
  EXPECT_EQ(1u, Logger()->mBufferAllocLen);
  EXPECT_EQ(0u, Logger()->mBufferLen);
}

TEST_F(qvLogdLoggerLosses, ARefusedMessageOfAFullConnectionIsNotSentWhenItDrainsMeanwhile) {
  ScriptedLogdLogger theLogger;
  int thePeer = ConnectToFullPeer(theLogger);
  theLogger.mLostLogs = 12;
  EXPECT_FALSE(theLogger.BeginLog(Record()));
  theLogger.Append_S(Record(), "abc\n", 4);
  theLogger.EndLog(Record());
  EXPECT_THAT(theLogger.mSent, ElementsAre("\nLOST: 13\n")) << "the message is one of them";
  EXPECT_EQ(0u, theLogger.mLostLogs);
  close(thePeer);
}

TEST_F(qvLogdLoggerLosses, TheEndOfARefusedMessageCountsItWhileItsReportCannotBeSent) {
  ScriptedLogdLogger theLogger;
  int thePeer = ConnectToFullPeer(theLogger);
  theLogger.mLostLogs = 12;
  EXPECT_FALSE(theLogger.BeginLog(Record()));
  theLogger.mResults = {{-1, EAGAIN}};
  theLogger.EndLog(Record());
  EXPECT_THAT(theLogger.mSent, ElementsAre("\nLOST: 13\n"));
  EXPECT_EQ(14u, theLogger.mLostLogs);
  close(thePeer);
}

// --- The buffer ---

TEST_F(qvLogdLoggerLosses, TheBufferGrowsToTheNeededSizeAndNeverShrinks) {
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

TEST_F(qvLogdLoggerLosses, AMessageStartsWithoutWhatWasLeftInTheBuffer) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  theLogger.mLastChar = 'c';
  theLogger.Append_S(Record(), "left", 4);
  EXPECT_TRUE(theLogger.BeginLog(Record()));
  EXPECT_EQ(0u, theLogger.mBufferLen);
}

TEST_F(qvLogdLoggerLosses, AMessageThatEndsTwiceIsSentOnce) {
  ScriptedLogdLogger theLogger;
  theLogger.PretendToBeConnected();
  theLogger.Append_S(Record(), "abc", 3);
  theLogger.EndLog(Record());
  theLogger.EndLog(Record());
  EXPECT_THAT(theLogger.mSent, ElementsAre("abc", ""));
}
