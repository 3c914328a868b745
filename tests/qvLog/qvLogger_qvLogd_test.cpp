// The log daemon logger as an object: layout, construction, settings, target addresses. What it sends:
// qvLogger_qvLogdStream_test.cpp.

#include "qvLog/qvLogger_qvLogd.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <string.h>
#include <unistd.h>

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

// The address that the logger would connect to, or "none".
std::string Address(const qvLogdLogger& aLogger, bool afResolved) {
  if (!afResolved) {
    return "none";
  }
  const struct sockaddr_in* theAddress = reinterpret_cast<const struct sockaddr_in*>(&aLogger.mAddr);
  EXPECT_EQ(AF_INET, theAddress->sin_family);
  EXPECT_EQ(sizeof(struct sockaddr_in), aLogger.mAddrLen);
  return std::string(inet_ntoa(theAddress->sin_addr)) + " " + std::to_string(ntohs(theAddress->sin_port));
}

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

TEST_F(qvLogdLoggerTest, GetEnvGivesTheValueOrNothing) {
  qvLogdLogger theLogger(false);
  mVariable.Set("some value");
  EXPECT_STREQ("some value", theLogger.GetEnv("QVRALOG").c_str());
  mVariable.Set("");
  EXPECT_STREQ("", theLogger.GetEnv("QVRALOG").c_str());
  mVariable.Set(nullptr);
  EXPECT_STREQ("", theLogger.GetEnv("QVRALOG").c_str());
}

TEST_F(qvLogdLoggerTest, TheLastSocketErrorIsErrno) {
  qvLogdLogger theLogger(false);
  errno = 77;
  EXPECT_EQ(77, theLogger.getLastSocketError());
}

TEST_F(qvLogdLoggerTest, ATargetIsHostAndPortWithDefaults) {
  struct {
    const char* mTarget;
    const char* mExpected;
    const char* mWhy;
  } kCases[] = {
      {"127.0.0.1:9000", "127.0.0.1 9000", "host and port"},
      {"127.0.0.1", "127.0.0.1 12222", "a host alone"},
      {"127.0.0.1:", "127.0.0.1 12222", "a host and a colon"},
      {"10.1.2.3:1", "10.1.2.3 1", "the lowest port"},
      {"10.1.2.3:65535", "10.1.2.3 65535", "the highest port"},
      {"localhost", "127.0.0.1 12222", "a name alone"},
      {"localhost:9000", "127.0.0.1 9000", "a name and a port"},
      {"127.0.0.1:65536", "none", "one above the highest port"},
      {"127.0.0.1:74758", "none", "not cut to 9222"},
      {"127.0.0.1:0", "none", "no port"},
      {"127.0.0.1:-1", "none", "no port"},
      {"127.0.0.1:99999999999999999999", "none", "beyond every integer"},
      {"127.0.0.1:no-such-service", "none", "no port"},
      {"127.0.0.1:9000x", "none", "no port"},
      {":9000", "none", "no host"},
      {":", "none", "no host"},
      {"::1:9000", "none", "the last colon counts, and the host is no IPv4 address"},
  };
  qvLogdLogger theLogger(false);
  for (const auto& theCase : kCases) {
    bool isResolved = theLogger.MakeTargetAddressFromString(theCase.mTarget);
    EXPECT_EQ(theCase.mExpected, Address(theLogger, isResolved)) << theCase.mTarget << ": " << theCase.mWhy;
    EXPECT_STREQ(theCase.mTarget, theLogger.mTargetStr.c_str()) << "the text is remembered in any case";
  }
}

TEST_F(qvLogdLoggerTest, TheVariableIsTheDefaultTarget) {
  qvLogdLogger theLogger(false);
  mVariable.Set("10.1.2.3:4000");
  EXPECT_EQ("10.1.2.3 4000", Address(theLogger, theLogger.MakeTargetAddress()));
  EXPECT_STREQ("10.1.2.3:4000", theLogger.mTargetStr.c_str());
}

TEST_F(qvLogdLoggerTest, WithoutTheVariableTheTargetIsTheLocalHost) {
  qvLogdLogger theLogger(false);
  for (const char* theValue : {static_cast<const char*>(nullptr), ""}) {
    mVariable.Set(theValue);
    EXPECT_EQ("127.0.0.1 12222", Address(theLogger, theLogger.MakeTargetAddress()));
    EXPECT_STREQ("127.0.0.1:12222", theLogger.mTargetStr.c_str());
  }
}

TEST_F(qvLogdLoggerTest, TheVariableNullInAnyCaseSwitchesTheLoggerOff) {
  for (const char* theValue : {"null", "NULL", "Null"}) {
    mVariable.Set(theValue);
    Logger();
    EXPECT_EQ(nullptr, qvLog_Begin(1, 0)) << theValue;
    EXPECT_EQ(0, Logger()->GetLevel()) << theValue;
    EXPECT_EQ(0, _qvLog_Level) << theValue;
    EXPECT_EQ(0u, Logger()->mLostLogs) << theValue;
    EXPECT_STREQ("", Logger()->mTargetStr.c_str()) << "nothing was looked up";
    qvLog_Term();
  }
}

TEST_F(qvLogdLoggerTest, ALoggerThatIsOffOpensAgainAtAReload) {
  mVariable.Set("null");
  Logger();
  qvLog_Begin(1, 0);
  mVariable.Set(mPeer.Target().c_str());
  EXPECT_FALSE(LogText(1, 0, "still off\n"));
  qvLog_ReloadConfig();
  EXPECT_TRUE(LogText(1, 0, "on\n"));
  EXPECT_THAT(mPeer.ReadUntil("on\n"), Not(HasSubstr("still off")));
}

TEST_F(qvLogdLoggerTest, AMessageThatFindsNoAddressIsLostWithoutBeingCounted) {
  mVariable.Set("127.0.0.1:65536");
  Logger();
  EXPECT_EQ(nullptr, qvLog_Begin(1, 0));
  EXPECT_EQ(nullptr, qvLog_Begin(1, 0));
  EXPECT_EQ(0u, Logger()->mLostLogs);
  EXPECT_FALSE(Logger()->mfHasAddress);
  EXPECT_EQ(qvLogdLogger::State_Disconnected, Logger()->mState);
  EXPECT_EQ(65535, Logger()->GetLevel()) << "it goes on trying";
}

TEST_F(qvLogdLoggerTest, ATargetIsLookedUpAgainWithEveryMessageUntilItIsFound) {
  mVariable.Set("127.0.0.1:65536");
  Logger();
  EXPECT_EQ(nullptr, qvLog_Begin(1, 0));
  mVariable.Set(mPeer.Target().c_str());
  EXPECT_TRUE(LogText(1, 0, "found\n"));
  EXPECT_TRUE(Logger()->mfHasAddress);
  EXPECT_THAT(mPeer.ReadUntil("found\n"), HasSubstr("LOST: 0\n"));
}

TEST_F(qvLogdLoggerTest, ATargetThatWasFoundIsNotLookedUpAgainUntilAReload) {
  EXPECT_TRUE(LogText(1, 0, "one\n"));
  mPeer.ReadUntil("one\n");
  LogDaemonPeer theOther;
  mVariable.Set(theOther.Target().c_str());
  EXPECT_TRUE(LogText(1, 0, "two\n"));
  mPeer.ReadUntil("two\n");
  qvLog_ReloadConfig();
  EXPECT_TRUE(LogText(1, 0, "three\n"));
  EXPECT_THAT(theOther.ReadUntil("three\n"), HasSubstr("PROTOCOL: "));
  EXPECT_EQ("", mPeer.ReadToEnd());
}

TEST_F(qvLogdLoggerTest, TheVariableIsPutIntoATargetWhereverItsMarkStands) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\ntarget=127.0.0.%QVRALOG%:%PORT%\n");
  struct {
    const char* mTarget;
    const char* mVariable;
  } kCases[] = {{"127.0.0.%QVRALOG%:PORT", "1"},
                {"%QVRALOG%:PORT", "127.0.0.1"},
                {"%QVRALOG%27.0.0.%QVRALOG%:PORT", "1"},
                {"127.0.0.1%QVRALOG%", ":PORT"}};
  std::string thePort = std::to_string(mPeer.Port());
  auto WithPort = [&](std::string aText) {
    size_t theMark = aText.find("PORT");
    return theMark == std::string::npos ? aText : aText.replace(theMark, 4, thePort);
  };
  for (const auto& theCase : kCases) {
    theProgram.Configure("[qvlogd]\ntarget=" + WithPort(theCase.mTarget) + "\n");
    ChildResult theResult =
        theProgram.Run({"log", "1", "0", "x\n"}, {"QVRALOG=" + WithPort(theCase.mVariable)});
    EXPECT_EQ("", theResult.mStderr) << theCase.mTarget;
    EXPECT_THAT(mPeer.ReadToEnd(), HasSubstr("x\n")) << theCase.mTarget;
    mPeer.Close();
  }
}

TEST_F(qvLogdLoggerTest, ATargetOfTheSettingsIsUsed) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\ntarget=" + mPeer.Target() + "\n");
  EXPECT_EQ("", theProgram.Run({"log", "1", "0", "x\n"}, {"QVRALOG"}).mStderr);
  EXPECT_THAT(mPeer.ReadToEnd(), HasSubstr("x\n"));
}

TEST_F(qvLogdLoggerTest, TheTargetNullOfTheSettingsSwitchesTheLoggerOff) {
  for (const char* theTarget : {"null", "NULL", "nUlL"}) {
    LogProgram theProgram;
    theProgram.Configure(std::string("[qvlogd]\ntarget=") + theTarget + "\n");
    EXPECT_EQ(
        "65535\n0\n0\n",
        theProgram.Run({"reload", "gate", "log", "1", "0", "x\n", "gate", "threshold", "qvLogd"}, {"QVRALOG"})
            .mStdout)
        << theTarget;
  }
}

TEST_F(qvLogdLoggerTest, AVariableBesideATargetIsIgnoredWithAWarning) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\ntarget=" + mPeer.Target() + "\n");
  ChildResult theResult =
      theProgram.Run({"log", "1", "0", "one\n", "log", "1", "0", "two\n"}, {"QVRALOG=127.0.0.1:1"});
  EXPECT_EQ(
      "#######################################################\n"
      "# Warning: QVRALOG is deprecated. To change log target,\n"
      "# edit qvLog.box.ini\n"
      "# or _qvLog.box.ini\n"
      "# Current target: " +
          mPeer.Target() +
          "\n"
          "#######################################################\n",
      theResult.mStderr)
      << "once, while the address lasts";
  EXPECT_THAT(mPeer.ReadToEnd(), HasSubstr("two\n"));
}

TEST_F(qvLogdLoggerTest, AVariableThatIsEmptyOrEqualsTheTargetIsNoReasonForAWarning) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\ntarget=" + mPeer.Target() + "\n");
  for (const std::string& theVariable : {std::string("QVRALOG="), "QVRALOG=" + mPeer.Target()}) {
    EXPECT_EQ("", theProgram.Run({"log", "1", "0", "x\n"}, {theVariable}).mStderr) << theVariable;
  }
}

TEST_F(qvLogdLoggerTest, TheWarningShowsTheTargetAsItIsSet) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\ntarget=Null\n");
  EXPECT_THAT(theProgram.Run({"log", "1", "0", "x\n"}, {"QVRALOG=127.0.0.1:1"}).mStderr,
              HasSubstr("# Current target: Null\n"));
}
