// The log daemon logger as an object: layout, construction, settings. Where it connects to:
// qvLogger_qvLogdTarget_test.cpp; what it sends: qvLogger_qvLogdStream_test.cpp.

#include "qvLog/qvLogger_qvLogd.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string.h>

#include "support/ClassLayout.h"
#include "support/FreshProcess.h"
#include "support/LogDaemonTest.h"
#include "support/LogProgram.h"
#include "support/RecordingLogger.h"

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

using qvLogdLoggerTest = LogDaemonTest;

}  // namespace

TEST_F(qvLogdLoggerTest, TheFieldsFollowTheBaseInOrder) {
  qvLogdLogger theLogger(false);
  EXPECT_EQ(ByPointerSize(532, 548), OffsetIn(theLogger, theLogger.mState));
  EXPECT_EQ(ByPointerSize(536, 552), OffsetIn(theLogger, theLogger.mAddr));
  EXPECT_EQ(ByPointerSize(664, 680), OffsetIn(theLogger, theLogger.mAddrLen));
  EXPECT_EQ(ByPointerSize(668, 688), OffsetIn(theLogger, theLogger.mSocket));
  EXPECT_EQ(ByPointerSize(672, 696), OffsetIn(theLogger, theLogger.mTargetStr));
  EXPECT_EQ(ByPointerSize(680, 712), OffsetIn(theLogger, theLogger.mLostLogs));
  EXPECT_EQ(ByPointerSize(684, 716), OffsetIn(theLogger, theLogger.mLastChar));
  EXPECT_EQ(ByPointerSize(685, 717), OffsetIn(theLogger, theLogger.mfHasAddress));
  EXPECT_EQ(ByPointerSize(688, 720), OffsetIn(theLogger, theLogger.mfBlocking));
  EXPECT_EQ(ByPointerSize(692, 728), OffsetIn(theLogger, theLogger.mBuffer));
  EXPECT_EQ(ByPointerSize(696, 736), OffsetIn(theLogger, theLogger.mBufferLen));
  EXPECT_EQ(ByPointerSize(700, 744), OffsetIn(theLogger, theLogger.mBufferAllocLen));
  EXPECT_EQ(ByPointerSize(704, 752), OffsetIn(theLogger, theLogger.mUUIDStr));
  EXPECT_EQ(37u, sizeof(theLogger.mUUIDStr));
}

TEST_F(qvLogdLoggerTest, ItsVirtualOperationsFollowThoseOfTheBase) {
  EXPECT_EQ(16u, SlotOf(&qvLogdLogger::IsConnected));
  EXPECT_EQ(17u, SlotOf(&qvLogdLogger::Send));
}

TEST_F(qvLogdLoggerTest, TheOverriddenOperationsKeepTheirSlots) {
  EXPECT_EQ(3u, SlotOf(&qvLogdLogger::BeginLog));
  EXPECT_EQ(9u, SlotOf(&qvLogdLogger::Append_S));
  EXPECT_EQ(14u, SlotOf(&qvLogdLogger::EndLog));
  EXPECT_EQ(15u, SlotOf(&qvLogdLogger::ReloadConfig));
}

TEST_F(qvLogdLoggerTest, TheStatesHaveTheirPublishedValues) {
  EXPECT_EQ(0, qvLogdLogger::State_Disconnected);
  EXPECT_EQ(1, qvLogdLogger::State_Connecting);
  EXPECT_EQ(2, qvLogdLogger::State_Connected);
}

TEST_F(qvLogdLoggerTest, ANewLoggerIsOpenForAllLevelsAndNotConnected) {
  qvLogdLogger theLogger(false);
  EXPECT_STREQ("qvLogd", theLogger.mName);
  EXPECT_EQ(65535, theLogger.GetLevel());
  EXPECT_EQ(qvLogdLogger::State_Disconnected, theLogger.mState);
  EXPECT_FALSE(theLogger.IsConnected());
  EXPECT_EQ(-1, theLogger.mSocket);
  EXPECT_EQ(AF_UNSPEC, theLogger.mAddr.ss_family);
  EXPECT_EQ(0u, theLogger.mAddrLen);
  EXPECT_STREQ("", theLogger.mTargetStr.c_str());
  EXPECT_EQ(0u, theLogger.mLostLogs);
  EXPECT_EQ('\n', theLogger.mLastChar);
  EXPECT_FALSE(theLogger.mfHasAddress);
  EXPECT_EQ(0, theLogger.mfBlocking);
  EXPECT_NE(nullptr, theLogger.mBuffer);
  EXPECT_EQ(0u, theLogger.mBufferLen);
  EXPECT_EQ(1u, theLogger.mBufferAllocLen);
  EXPECT_EQ(&theLogger, qvLogdLogger::sInstance);
}

TEST_F(qvLogdLoggerTest, TheUUIDIsTimeBasedAndLowerCase) {
  qvLogdLogger theLogger(false);
  EXPECT_EQ(36u, strlen(theLogger.mUUIDStr));
  EXPECT_THAT(theLogger.mUUIDStr,
              MatchesRegex("[0-9a-f]{8}-[0-9a-f]{4}-1[0-9a-f]{3}-[89ab][0-9a-f]{3}-[0-9a-f]{12}"));
}

TEST_F(qvLogdLoggerTest, EachInstanceHasAUUIDOfItsOwn) {
  std::string theFirst = Logger()->mUUIDStr;
  qvLog_Term();
  EXPECT_NE(theFirst, Logger()->mUUIDStr);
}

TEST_F(qvLogdLoggerTest, TheDestructorMakesRoomForAnotherAndClosesTheSocket) {
  ScriptedLogdLogger* theLogger = new ScriptedLogdLogger;
  qvLog_ReloadConfig();  // initialises, which creates no other log daemon logger now
  EXPECT_EQ(theLogger, qvLogdLogger::sInstance);
  theLogger->PretendToBeConnected();
  int theSocket = theLogger->mSocket;
  delete theLogger;
  EXPECT_EQ(nullptr, qvLogdLogger::sInstance);
  EXPECT_EQ(-1, fcntl(theSocket, F_GETFD));
  delete new qvLogdLogger(false);
}

TEST_F(qvLogdLoggerTest, ASecondInstanceFailsAnAssertion) {
  EXPECT_QV_ASSERTION(
      {
        new qvLogdLogger(false);
        new qvLogdLogger(false);
      },
      "sInstance == NULL", "qvLogger_qvLogd");
}

TEST_F(qvLogdLoggerTest, InitCreatesOneLoggerOnly) {
  qvLogger_qvLogd_Init();
  qvLogdLogger* theLogger = qvLogdLogger::sInstance;
  ASSERT_NE(nullptr, theLogger);
  EXPECT_EQ(theLogger, qvLogger::sHead) << "it is in the chain";
  qvLogger* theNext = theLogger->mNext;
  qvLogger_qvLogd_Init();
  EXPECT_EQ(theLogger, qvLogdLogger::sInstance);
  EXPECT_EQ(theLogger, qvLogger::sHead);
  EXPECT_EQ(theNext, theLogger->mNext);
}

TEST_F(qvLogdLoggerTest, AfterNeverLogInitCreatesNone) {
  IN_FRESH_PROCESS({
    qvLog_NeverLog();
    qvLogger_qvLogd_Init();
    EXPECT_EQ(nullptr, qvLogdLogger::sInstance);
  });
}

TEST_F(qvLogdLoggerTest, TheDefaultLevelOpensTheGate) {
  Logger();
  EXPECT_EQ(65535, _qvLog_Level);
}

TEST_F(qvLogdLoggerTest, TheSettingsAreItsOwnSections) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\nlevel=info\n");
  EXPECT_EQ("4\n4\n0\n",
            theProgram.Run({"reload", "gate", "threshold", "qvLogd", "threshold", "File"}).mStdout);
}

TEST_F(qvLogdLoggerTest, AFirstStartPopulatesItsSettings) {
  LogProgram theProgram;
  theProgram.RemoveConfiguration();
  theProgram.Run({"reload"});
  EXPECT_THAT(theProgram.Populated(), HasSubstr("[qvlogd]\nlevel=All\ntarget=%QVRALOG%\nblocking=0\n"));
}

TEST_F(qvLogdLoggerTest, ASilentModuleIsSilentForTheDaemonAlone) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\n[qvlogd]\nlevel=all\nLOG_TUNER=0\n");
  theProgram.Run({"log", "1", "28", "one\n", "log", "1", "42", "two\n"}, {"QVRALOG=" + mPeer.Target()});
  std::string theStream = mPeer.ReadToEnd();
  EXPECT_THAT(theStream, Not(HasSubstr("one")));
  EXPECT_THAT(theStream, HasSubstr("two"));
}

TEST_F(qvLogdLoggerTest, AReloadSeesTheThresholdOfThatMoment) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\nlevel=error\n");
  EXPECT_EQ("2\n4\n0\n",
            theProgram
                .Run({"reload", "gate", "write", "qvLog.box.ini", "[qvlogd]\nlevel=info\n", "reload", "gate",
                      "write", "qvLog.box.ini", "[qvlogd]\nlevel=off\n", "reload", "gate"})
                .mStdout);
}

TEST_F(qvLogdLoggerTest, AReloadReadsTheSettingsAndClosesTheConnection) {
  LogText(1, 0, "x\n");
  qvLogdLogger* theLogger = Logger();
  ASSERT_TRUE(theLogger->IsConnected());
  int theSocket = theLogger->mSocket;
  theLogger->mfBlocking = 7;
  theLogger->mLevel = 3;
  theLogger->mLostLogs = 5;
  theLogger->mModulesInfo[9] = 3;
  qvLog_ReloadConfig();
  EXPECT_EQ(-1, theLogger->mSocket);
  EXPECT_EQ(-1, fcntl(theSocket, F_GETFD)) << "closed";
  EXPECT_EQ(qvLogdLogger::State_Disconnected, theLogger->mState);
  EXPECT_FALSE(theLogger->mfHasAddress);
  EXPECT_EQ(0, theLogger->mfBlocking);
  EXPECT_EQ(65535, theLogger->GetLevel());
  EXPECT_EQ(0, theLogger->mModulesInfo[9]);
  EXPECT_EQ(5u, theLogger->mLostLogs) << "what was lost is still to be reported";
}

TEST_F(qvLogdLoggerTest, AWrongStateFailsAnAssertion) {
  EXPECT_QV_ASSERTION(
      {
        qvLogdLogger theLogger(false);
        theLogger.mState = static_cast<qvLogdLogger::State>(3);
        theLogger.MakeConnected(NULL);
      },
      "Wrong state", "qvLogger_qvLogd");
}

TEST_F(qvLogdLoggerTest, SendGivesTheResultOfTheSystem) {
  qvLogdLogger theLogger(false);
  int thePair[2];
  ASSERT_EQ(0, socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, thePair));
  char theBytes[] = "abcdef";
  EXPECT_EQ(3, theLogger.Send(thePair[0], theBytes, 3));
  EXPECT_EQ(0, theLogger.Send(thePair[0], theBytes, 0));
  char theRead[10] = "";
  EXPECT_EQ(3, read(thePair[1], theRead, sizeof(theRead) - 1));
  EXPECT_STREQ("abc", theRead);
  close(thePair[1]);
  EXPECT_EQ(-1, theLogger.Send(thePair[0], theBytes, 3)) << "no signal";
  EXPECT_EQ(EPIPE, theLogger.getLastSocketError());
  close(thePair[0]);
}

TEST_F(qvLogdLoggerTest, TheLastSocketErrorIsErrno) {
  qvLogdLogger theLogger(false);
  errno = 77;
  EXPECT_EQ(77, theLogger.getLastSocketError());
}
