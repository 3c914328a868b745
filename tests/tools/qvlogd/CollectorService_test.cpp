// The real collector under a service manager.

#include <fcntl.h>
#include <poll.h>
#include <sys/un.h>
#include <sys/wait.h>

#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"
#include "tests/tools/qvlogd/LogSender.h"
#include "tests/tools/qvlogd/RunningCollector.h"

// A socket that listens on a free port.
static int Listening(uint32_t anAddress, int* aPort) {
  int theSocket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  struct sockaddr_in theAddress = {};
  theAddress.sin_family = AF_INET;
  theAddress.sin_addr.s_addr = htonl(anAddress);
  socklen_t theLength = sizeof(theAddress);
  EXPECT_EQ(0, bind(theSocket, reinterpret_cast<struct sockaddr*>(&theAddress), theLength));
  EXPECT_EQ(0, listen(theSocket, 16));
  getsockname(theSocket, reinterpret_cast<struct sockaddr*>(&theAddress), &theLength);
  *aPort = ntohs(theAddress.sin_port);
  return theSocket;
}

// A datagram socket of the service manager.
class NotifySocket {
 public:
  NotifySocket() : mSocket(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    struct sockaddr_un theAddress = {};
    theAddress.sun_family = AF_UNIX;
    snprintf(theAddress.sun_path, sizeof(theAddress.sun_path), "%s", Path().c_str());
    EXPECT_EQ(0, bind(mSocket, reinterpret_cast<struct sockaddr*>(&theAddress), sizeof(theAddress)));
  }
  ~NotifySocket() { close(mSocket); }

  std::string Path() const { return mFolder.File("notify"); }
  // The next message; the empty text when none comes for a minute.
  std::string Next() const {
    struct pollfd thePoll = {mSocket, POLLIN, 0};
    char theBytes[256];
    ssize_t theCount = poll(&thePoll, 1, 60000) == 1 ? recv(mSocket, theBytes, sizeof(theBytes), 0) : 0;
    return std::string(theBytes, theCount > 0 ? static_cast<size_t>(theCount) : 0);
  }

 private:
  ScratchFolder mFolder;
  int mSocket;
};

// Runs the collector with descriptor 3 and the variables of a service manager; LISTEN_PID is its own number.
static pid_t StartWithSocket(int aSocket, const std::vector<std::string>& anArguments, int aStandardError) {
  pid_t theChild = fork();
  if (theChild == 0) {
    dup2(aStandardError, STDERR_FILENO);
    if (aSocket == 3) {
      fcntl(3, F_SETFD, 0);
    } else {
      dup2(aSocket, 3);
    }
    setenv("LISTEN_PID", std::to_string(getpid()).c_str(), 1);
    setenv("LISTEN_FDS", "1", 1);
    BecomeProgram(QVLOGD, anArguments, {"QVLOG_TAGS"});
  }
  return theChild;
}

// What it says on standard error, and its end.
struct ServiceResult {
  int mExitCode;
  std::string mStderr;
};

static ServiceResult RunWithSocket(int aSocket, const std::vector<std::string>& anArguments,
                                   const std::function<void(pid_t)>& aTalk) {
  int thePipe[2];
  EXPECT_EQ(0, pipe2(thePipe, O_CLOEXEC));
  pid_t theChild = StartWithSocket(aSocket, anArguments, thePipe[1]);
  close(thePipe[1]);
  close(aSocket);
  aTalk(theChild);
  ServiceResult theResult;
  char theBytes[4096];
  ssize_t theCount;
  while ((theCount = read(thePipe[0], theBytes, sizeof(theBytes))) > 0) {
    theResult.mStderr.append(theBytes, static_cast<size_t>(theCount));
  }
  close(thePipe[0]);
  int theStatus = 0;
  waitpid(theChild, &theStatus, 0);
  theResult.mExitCode = WIFEXITED(theStatus) ? WEXITSTATUS(theStatus) : -1;
  return theResult;
}

TEST(CollectorService, AnInheritedSocketTakesThePlaceOfTheDefaultAddress) {
  ScratchFolder theFolder;
  int thePort;
  int theSocket = Listening(INADDR_LOOPBACK, &thePort);
  ServiceResult theResult =
      RunWithSocket(theSocket, {"--output=cat", "--file=" + theFolder.File("log")}, [&](pid_t aPid) {
        LogSender theSender(thePort);
        theSender.Send(LogSender::Line("through the manager's socket"));
        while (ReadWholeFile(theFolder.File("log")).empty()) {
          usleep(1000);
        }
        kill(aPid, SIGTERM);
      });
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("qvlogd: listening on 127.0.0.1:" + std::to_string(thePort) + "\n", theResult.mStderr);
  EXPECT_EQ("through the manager's socket\n", ReadWholeFile(theFolder.File("log")));
}

TEST(CollectorService, AnInheritedSocketForTheWorldNeedsPermissionToo) {
  int thePort;
  int theSocket = Listening(INADDR_ANY, &thePort);
  ServiceResult theResult = RunWithSocket(theSocket, {}, [](pid_t) {});
  EXPECT_EQ(2, theResult.mExitCode);
  EXPECT_EQ("qvlogd: LISTEN_FDS: 0.0.0.0:" + std::to_string(thePort) +
                " is reached by other machines: say --allow-remote if that is meant\n",
            theResult.mStderr);
}

TEST(CollectorService, WhatDoesNotListenIsNotTaken) {
  int theSocket = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  ServiceResult theResult = RunWithSocket(theSocket, {}, [](pid_t) {});
  EXPECT_EQ(2, theResult.mExitCode);
  EXPECT_EQ("qvlogd: LISTEN_FDS: descriptor 3 is no listening stream socket\n", theResult.mStderr);
}

TEST(CollectorService, SocketsForAnotherProcessAreNotTaken) {
  RunningCollector theCollector({}, {"LISTEN_PID=1", "LISTEN_FDS=1"});
  EXPECT_EQ("qvlogd: listening on 127.0.0.1:" + std::to_string(theCollector.Port()) + "\n",
            theCollector.Stop().mStderr);
}

// Connections made from here on wait for the next collector.
TEST(CollectorService, AnInheritedSocketOutlivesTheCollector) {
  int thePort;
  int theSocket = Listening(INADDR_LOOPBACK, &thePort);
  int theKept = fcntl(theSocket, F_DUPFD_CLOEXEC, 10);
  NotifySocket theNotify;
  EnvironmentVariable theVariable("NOTIFY_SOCKET");
  theVariable.Set(theNotify.Path().c_str());
  ServiceResult theResult = RunWithSocket(theSocket, {"--file=/dev/null"}, [&](pid_t aPid) {
    EXPECT_EQ("READY=1", theNotify.Next());
    kill(aPid, SIGTERM);
  });
  EXPECT_EQ(0, theResult.mExitCode);
  LogSender theSender(thePort);
  EXPECT_TRUE(theSender.IsConnected());
  int theConnection = accept(theKept, nullptr, nullptr);
  EXPECT_LE(0, theConnection);
  close(theConnection);
  close(theKept);
}

TEST(CollectorService, TellsWhenItIsReadyAndWhenItStops) {
  NotifySocket theNotify;
  RunningProgram theProgram(QVLOGD, {"--listen=127.0.0.1:0"}, {"NOTIFY_SOCKET=" + theNotify.Path()});
  EXPECT_EQ("READY=1", theNotify.Next());
  theProgram.Signal(SIGTERM);
  EXPECT_EQ("STOPPING=1", theNotify.Next());
  EXPECT_EQ(0, theProgram.Wait().mExitCode);
}

TEST(CollectorService, GivesSignsOfLifeWhileNothingArrives) {
  NotifySocket theNotify;
  RunningProgram theProgram(QVLOGD, {"--listen=127.0.0.1:0"},
                            {"NOTIFY_SOCKET=" + theNotify.Path(), "WATCHDOG_USEC=100000", "WATCHDOG_PID"});
  EXPECT_EQ("READY=1", theNotify.Next());
  EXPECT_EQ("WATCHDOG=1", theNotify.Next());
  EXPECT_EQ("WATCHDOG=1", theNotify.Next());
}

TEST(CollectorService, AWatchdogForAnotherProcessIsNotServed) {
  NotifySocket theNotify;
  RunningCollector theCollector(
      {}, {"NOTIFY_SOCKET=" + theNotify.Path(), "WATCHDOG_USEC=1000", "WATCHDOG_PID=1"});
  EXPECT_EQ("READY=1", theNotify.Next());
  LogSender theSender(theCollector.Port());
  theSender.Send(LogSender::Line("time passes"));
  theCollector.WaitForOutput("time passes\n");
  theCollector.Stop();
  EXPECT_EQ("STOPPING=1", theNotify.Next());
}

TEST(CollectorService, AManagerThatHasGoneDoesNotMatter) {
  RunningCollector theCollector({}, {"NOTIFY_SOCKET=/nonexistent/notify"});
  theCollector.Stop();
}
