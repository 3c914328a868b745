// LogDaemonTest.h - what the tests of the log daemon logger share.
#ifndef TESTS_SUPPORT_LOGDAEMONTEST_H
#define TESTS_SUPPORT_LOGDAEMONTEST_H

#include <errno.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <deque>
#include <string>
#include <vector>

#include "qvLog/qvLogger_qvLogd.h"
#include "support/EnvironmentVariable.h"
#include "support/LogDaemonPeer.h"

// The prefix of a line of LogText(1, 0, ...), as a regular expression.
constexpr char kErrorPrefix[] = "E [0-9:]{12}\\|[0-9a-f]{8}\\|DEFAULT    ";

// Each test starts without a framework, and with a daemon that listens. The settings name no target, so the
// variable does.
class LogDaemonTest : public testing::Test {
 protected:
  LogDaemonTest() {
    qvLog_Term();
    mVariable.Set(mPeer.Target().c_str());
  }
  ~LogDaemonTest() override { qvLog_Term(); }

  // The logger of the framework, which is initialised if need be.
  static qvLogdLogger* Logger() {
    if (qvLogdLogger::sInstance == nullptr) {
      qvLogger::LockFramework();
      qvLogger::UnlockFramework();
    }
    return qvLogdLogger::sInstance;
  }

  // The header of a connection of the present logger.
  static std::string Header(const std::string& aLost) {
    qvLogdLogger* theLogger = qvLogdLogger::sInstance;
    return std::string("\nPROTOCOL: qvLogd-1.0\nUUID: ") + theLogger->mUUIDStr + "\nLOST: " + aLost +
           "\nNAME: " + qvLogger::CurrentProcessName() + "(log started, " + aLost +
           " logs previously lost)\n";
  }

  EnvironmentVariable mVariable{"QVRALOG"};
  LogDaemonPeer mPeer;
};

// A logger outside the chain that notes what it sends and sends nothing.
class ScriptedLogdLogger : public qvLogdLogger {
 public:
  // What a call of Send does: takes this many bytes, fails with -1 and this error, or takes everything.
  static constexpr int kWhole = 1000000;
  struct Result {
    int mTaken;
    int mError;
  };

  ScriptedLogdLogger() : qvLogdLogger(false) {}

  // As after a header: connected, to nobody.
  void PretendToBeConnected() {
    if (mSocket != -1) {
      close(mSocket);
    }
    mState = State_Connected;
    mSocket = open("/dev/null", O_WRONLY | O_CLOEXEC);
  }

  // Opens the gate too.
  void EnterChain() {
    AddLogger(this);
    LockFramework();
    mLevel = 0;
    ChangeLevel(65535);
    UnlockFramework();
  }

  int Send(int aSocket, char* aBytes, int aLength) override {
    mSockets.push_back(aSocket);
    mSent.emplace_back(aBytes, static_cast<size_t>(aLength));
    Result theResult = {kWhole, 0};
    if (!mResults.empty()) {
      theResult = mResults.front();
      mResults.pop_front();
    }
    errno = theResult.mError;
    return theResult.mTaken < aLength ? theResult.mTaken : aLength;
  }

  std::deque<Result> mResults;  // of the next calls; then everything is taken
  std::vector<std::string> mSent;
  std::vector<int> mSockets;
};

#endif
