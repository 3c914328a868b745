// Where the log daemon logger connects to: the settings, the variable and what the resolver makes of them.

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>

#include "support/LogDaemonTest.h"
#include "support/LogProgram.h"
#include "support/RecordingLogger.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

using qvLogdLoggerTarget = LogDaemonTest;

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

TEST_F(qvLogdLoggerTarget, GetEnvGivesTheValueOrNothing) {
  qvLogdLogger theLogger(false);
  mVariable.Set("some value");
  EXPECT_STREQ("some value", theLogger.GetEnv("QVRALOG").c_str());
  mVariable.Set("");
  EXPECT_STREQ("", theLogger.GetEnv("QVRALOG").c_str());
  mVariable.Set(nullptr);
  EXPECT_STREQ("", theLogger.GetEnv("QVRALOG").c_str());
}

TEST_F(qvLogdLoggerTarget, ATargetIsHostAndPortWithDefaults) {
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
      {"1::2:9000", "none", "the last colon counts, and the host is no IPv4 address"},
  };
  qvLogdLogger theLogger(false);
  for (const auto& theCase : kCases) {
    bool isResolved = theLogger.MakeTargetAddressFromString(theCase.mTarget);
    EXPECT_EQ(theCase.mExpected, Address(theLogger, isResolved)) << theCase.mTarget << ": " << theCase.mWhy;
    EXPECT_STREQ(theCase.mTarget, theLogger.mTargetStr.c_str()) << "the text is remembered in any case";
  }
}

TEST_F(qvLogdLoggerTarget, TheVariableIsTheDefaultTarget) {
  qvLogdLogger theLogger(false);
  mVariable.Set("10.1.2.3:4000");
  EXPECT_EQ("10.1.2.3 4000", Address(theLogger, theLogger.MakeTargetAddress()));
  EXPECT_STREQ("10.1.2.3:4000", theLogger.mTargetStr.c_str());
}

TEST_F(qvLogdLoggerTarget, WithoutTheVariableTheTargetIsTheLocalHost) {
  qvLogdLogger theLogger(false);
  for (const char* theValue : {static_cast<const char*>(nullptr), ""}) {
    mVariable.Set(theValue);
    EXPECT_EQ("127.0.0.1 12222", Address(theLogger, theLogger.MakeTargetAddress()));
    EXPECT_STREQ("127.0.0.1:12222", theLogger.mTargetStr.c_str());
  }
}

TEST_F(qvLogdLoggerTarget, TheVariableNullInAnyCaseSwitchesTheLoggerOff) {
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

TEST_F(qvLogdLoggerTarget, ALoggerThatIsOffOpensAgainAtAReload) {
  mVariable.Set("null");
  Logger();
  qvLog_Begin(1, 0);
  mVariable.Set(mPeer.Target().c_str());
  EXPECT_FALSE(LogText(1, 0, "still off\n"));
  qvLog_ReloadConfig();
  EXPECT_TRUE(LogText(1, 0, "on\n"));
  EXPECT_THAT(mPeer.ReadUntil("on\n"), Not(HasSubstr("still off")));
}

TEST_F(qvLogdLoggerTarget, AMessageThatFindsNoAddressIsLostWithoutBeingCounted) {
  mVariable.Set("127.0.0.1:65536");
  Logger();
  EXPECT_EQ(nullptr, qvLog_Begin(1, 0));
  EXPECT_EQ(nullptr, qvLog_Begin(1, 0));
  EXPECT_EQ(0u, Logger()->mLostLogs);
  EXPECT_FALSE(Logger()->mfHasAddress);
  EXPECT_EQ(qvLogdLogger::State_Disconnected, Logger()->mState);
  EXPECT_EQ(65535, Logger()->GetLevel()) << "it goes on trying";
}

TEST_F(qvLogdLoggerTarget, ATargetIsLookedUpAgainWithEveryMessageUntilItIsFound) {
  mVariable.Set("127.0.0.1:65536");
  Logger();
  EXPECT_EQ(nullptr, qvLog_Begin(1, 0));
  mVariable.Set(mPeer.Target().c_str());
  EXPECT_TRUE(LogText(1, 0, "found\n"));
  EXPECT_TRUE(Logger()->mfHasAddress);
  EXPECT_THAT(mPeer.ReadUntil("found\n"), HasSubstr("LOST: 0\n"));
}

TEST_F(qvLogdLoggerTarget, ATargetThatWasFoundIsNotLookedUpAgainUntilAReload) {
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

TEST_F(qvLogdLoggerTarget, TheVariableIsPutIntoATargetWhereverItsMarkStands) {
  LogProgram theProgram;
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

TEST_F(qvLogdLoggerTarget, ATargetOfTheSettingsIsUsed) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\ntarget=" + mPeer.Target() + "\n");
  EXPECT_EQ("", theProgram.Run({"log", "1", "0", "x\n"}, {"QVRALOG"}).mStderr);
  EXPECT_THAT(mPeer.ReadToEnd(), HasSubstr("x\n"));
}

TEST_F(qvLogdLoggerTarget, AReloadSeesTheTargetOfThatMoment) {
  LogDaemonPeer theOther;
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=0\n[qvlogd]\ntarget=" + mPeer.Target() + "\n");
  theProgram.Run({"log", "1", "0", "one\n", "write", "qvLog.box.ini",
                  "[options]\npopulate=0\n[qvlogd]\ntarget=" + theOther.Target() + "\n", "reload", "log", "1",
                  "0", "two\n"},
                 {"QVRALOG"});
  EXPECT_THAT(mPeer.ReadToEnd(), EndsWith("one\n"));
  EXPECT_THAT(theOther.ReadToEnd(), EndsWith("two\n"));
}

TEST_F(qvLogdLoggerTarget, TheTargetNullOfTheSettingsSwitchesTheLoggerOff) {
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

TEST_F(qvLogdLoggerTarget, AVariableBesideATargetIsIgnoredWithAWarning) {
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

TEST_F(qvLogdLoggerTarget, AVariableThatIsEmptyOrEqualsTheTargetIsNoReasonForAWarning) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\ntarget=" + mPeer.Target() + "\n");
  for (const std::string& theVariable : {std::string("QVRALOG="), "QVRALOG=" + mPeer.Target()}) {
    EXPECT_EQ("", theProgram.Run({"log", "1", "0", "x\n"}, {theVariable}).mStderr) << theVariable;
  }
}

TEST_F(qvLogdLoggerTarget, TheWarningShowsTheTargetAsItIsSet) {
  LogProgram theProgram;
  theProgram.Configure("[qvlogd]\ntarget=Null\n");
  EXPECT_THAT(theProgram.Run({"log", "1", "0", "x\n"}, {"QVRALOG=127.0.0.1:1"}).mStderr,
              HasSubstr("# Current target: Null\n"));
}
