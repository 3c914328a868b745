// Lines that the collector forwards arrive as they should in the log engines of the distribution, which read
// the configuration of packaging/. Where an engine is neither installed nor unpacked its tests are skipped:
// scripts/install-packages engines brings them.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "support/ScratchFolder.h"
#include "support/TimeZone.h"
#include "tools/qvlogd/LogForwarder.h"

namespace {

constexpr int64 kTime = 1709640000042123;  // 2024-03-05 12:00:00.042123 UTC

// The port of a connection that nobody waits for any more.
int FreePort() {
  int theSocket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  struct sockaddr_in theAddress = {};
  theAddress.sin_family = AF_INET;
  theAddress.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t theLength = sizeof(theAddress);
  EXPECT_EQ(0, bind(theSocket, reinterpret_cast<struct sockaddr*>(&theAddress), theLength));
  getsockname(theSocket, reinterpret_cast<struct sockaddr*>(&theAddress), &theLength);
  close(theSocket);
  return ntohs(theAddress.sin_port);
}

std::string Replaced(std::string aText, const std::string& aWhat, const std::string& aBy) {
  size_t theFound = aText.find(aWhat);
  EXPECT_NE(std::string::npos, theFound) << aWhat;
  for (; theFound != std::string::npos; theFound = aText.find(aWhat, theFound + aBy.size())) {
    aText.replace(theFound, aWhat.size(), aBy);
  }
  return aText;
}

// An engine that the test starts in a folder of its own, on a port of its own.
class LogEngines : public testing::Test {
 protected:
  ~LogEngines() override {
    if (mPid > 0) {
      kill(mPid, SIGKILL);
      waitpid(mPid, nullptr, 0);
    }
  }

  // The path of an engine's program; empty where there is none. An unpacked one goes first.
  static std::string FindProgram(const std::string& aName) {
    for (const char* theFolder : {QVLOG_ENGINES, "/usr/sbin"}) {
      std::string thePath = std::string(theFolder) + "/" + aName;
      if (access(thePath.c_str(), X_OK) == 0) {
        return thePath;
      }
    }
    return "";
  }

  // Writes the engine's configuration: what aStart says, then the one of packaging/ with our file and port.
  void Configure(const std::string& aStart, const std::string& aPackaged) {
    std::string theText = ReadWholeFile(std::string(QVLOG_PACKAGING) + "/" + aPackaged);
    theText = Replaced(theText, "/var/log/qvlogd.log", mFolder.File("received"));
    theText = Replaced(theText, "6514", std::to_string(mPort));
    WriteWholeFile(mFolder.File("conf"), aStart + theText);
  }

  // The engine is a program of the machine that the test runs on, never one for the emulator.
  void Start(std::vector<std::string> aWords) {
    std::vector<char*> theArguments;
    for (std::string& theWord : aWords) {
      theArguments.push_back(theWord.data());
    }
    theArguments.push_back(nullptr);
    mPid = fork();
    if (mPid == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      setenv("TZ", "UTC0", 1);
      execv(theArguments[0], theArguments.data());
      _exit(127);
    }
  }

  // An error, a warning, an info and a debug line and an event.
  void ForwardLines(LogFraming aFraming) {
    LogForwarderOptions theOptions;
    theOptions.mHost = "127.0.0.1";
    theOptions.mPort = std::to_string(mPort);
    theOptions.mFraming = aFraming;
    theOptions.mFirstPause = 50;
    theOptions.mLongestPause = 50;  // until the engine listens
    LogForwarder theForwarder(theOptions);
    LogRecord theRecord;
    theRecord.mTime = kTime;
    theRecord.mProcess = "player";
    theRecord.mUUID = "1a2b3c4d-0000-1000-8000-001122334455";
    theRecord.mStamp = "12:00:00:042";
    theRecord.mThread = "b6f2a000";
    theRecord.mModule = "GRAPHICS";
    for (const auto& [theLevel, theText] : {std::pair('E', "an error"), std::pair('W', "\"w\" [x] \\ 100%"),
                                            std::pair('I', "gr\xC3\xBC\xC3\x9F \xE2\x82\xAC"),
                                            std::pair('D', "bad \xFF\n<3>1 - - - - - - two lines")}) {
      theRecord.mLevel = theLevel;
      theRecord.mText = theText;
      theForwarder.Take(theRecord);
    }
    theRecord.mKind = LogRecordKind_Lost;
    theRecord.mCount = 7;
    theForwarder.Take(theRecord);
    theForwarder.Flush();
    EXPECT_TRUE(WaitForLines(5)) << ReadWholeFile(mFolder.File("received"));
    theForwarder.Close();
    EXPECT_EQ(5u, theForwarder.Sent());
  }

  bool WaitForLines(size_t aCount) {
    for (int i = 0; i < 6000; ++i) {
      std::string theText = ReadWholeFile(mFolder.File("received"));
      if (static_cast<size_t>(std::count(theText.begin(), theText.end(), '\n')) >= aCount) {
        return true;
      }
      poll(nullptr, 0, 10);
    }
    return false;
  }

  void ExpectReceived() {
    char theHost[256] = "";
    gethostname(theHost, sizeof(theHost) - 1);
    std::string theStart = "2024-03-05T12:00:00.042123+00:00 " + std::string(theHost) + " player ";
    std::string theData =
        "[qvlog@32473 uuid=\"1a2b3c4d-0000-1000-8000-001122334455\" thread=\"b6f2a000\" "
        "stamp=\"12:00:00:042\"";
    EXPECT_EQ(theStart + "GRAPHICS err " + theData + "] an error\n" +                              //
                  theStart + "GRAPHICS warning " + theData + "] \"w\" [x] \\ 100%\n" +             //
                  theStart + "GRAPHICS info " + theData + "] gr\xC3\xBC\xC3\x9F \xE2\x82\xAC\n" +  //
                  theStart + "GRAPHICS debug " + theData +
                  "] bad \\xff\\x0a<3>1 - - - - - - two lines\n" +  //
                  theStart + "lost info " + theData + " count=\"7\"] lost 7\n",
              ReadWholeFile(mFolder.File("received")));
  }

  void StartRsyslog() {
    Configure("global(workDirectory=\"" + mFolder.Path() + "\")\n", "rsyslog/qvlogd.conf");
    Start({FindProgram("rsyslogd"), "-n", "-f", mFolder.File("conf"), "-i", mFolder.File("pid")});
  }

  ScratchFolder mFolder;
  TimeZone mZone{"UTC0"};
  int mPort = FreePort();
  pid_t mPid = -1;
};

}  // namespace

TEST_F(LogEngines, RsyslogReceivesSeverityNameModuleAndText) {
  if (FindProgram("rsyslogd").empty()) {
    GTEST_SKIP() << "rsyslog is not here";
  }
  StartRsyslog();
  ForwardLines(LogFraming_Octet);
  ExpectReceived();
}

TEST_F(LogEngines, RsyslogReceivesTheSameWithLineEndsAsFrames) {
  if (FindProgram("rsyslogd").empty()) {
    GTEST_SKIP() << "rsyslog is not here";
  }
  StartRsyslog();
  ForwardLines(LogFraming_LF);
  ExpectReceived();
}

TEST_F(LogEngines, SyslogNgReceivesSeverityNameModuleAndText) {
  if (FindProgram("syslog-ng").empty()) {
    GTEST_SKIP() << "syslog-ng is not here";
  }
  Configure("@version: current\n", "syslog-ng/qvlogd.conf");
  Start({FindProgram("syslog-ng"), "-F", "--no-caps", "-f", mFolder.File("conf"), "-R",
         mFolder.File("persist"), "-p", mFolder.File("pid"), "-c", mFolder.File("control")});
  ForwardLines(LogFraming_Octet);
  ExpectReceived();
}
