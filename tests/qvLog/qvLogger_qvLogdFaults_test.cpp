// How the log daemon logger meets the system: the calls it makes, and every result that they can have. The
// program is linked with --wrap for them; what a test does not script goes to the system.

#include <arpa/inet.h>
#include <errno.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <optional>

#include "support/FreshProcess.h"
#include "support/LogDaemonTest.h"
#include "support/RecordingLogger.h"

namespace {

using testing::ElementsAre;
using testing::StartsWith;

// What the system did and is to do.
struct FakeSystem {
  std::deque<int> mConnectErrors;  // of the next calls of connect; 0: success
  bool mfNoSockets = false;
  bool mfNoNonBlocking = false;
  int mConnects = 0;
  int mNonBlockings = 0;
  int mSeeds = 0;
  int mSeedsBeforeUUID = -1;
  int mSendBuffer = 0;
  std::vector<std::string> mSockets;
  std::vector<int> mResolverFlags;
  std::optional<short> mPollEvents;  // the answer of the next calls of poll; 0: time-out
  // The system gives the next sockets this port, as it may do with any that is free.
  std::optional<uint16_t> mOwnPort;
};
FakeSystem sSystem;

// To any free one when aPort is 0. Returns the port, or 0 when it is taken.
uint16_t BindToPort(int aSocket, uint16_t aPort, in_addr_t anAddress = INADDR_LOOPBACK) {
  struct sockaddr_in theAddress = {};
  theAddress.sin_family = AF_INET;
  theAddress.sin_addr.s_addr = htonl(anAddress);
  theAddress.sin_port = htons(aPort);
  socklen_t theLength = sizeof(theAddress);
  struct sockaddr* theBytes = reinterpret_cast<struct sockaddr*>(&theAddress);
  if (bind(aSocket, theBytes, theLength) != 0 || getsockname(aSocket, theBytes, &theLength) != 0) {
    return 0;
  }
  return ntohs(theAddress.sin_port);
}

}  // namespace

extern "C" {

int __real_socket(int aFamily, int aType, int aProtocol);
int __wrap_socket(int aFamily, int aType, int aProtocol) {
  if (sSystem.mfNoSockets) {
    errno = EMFILE;
    return -1;
  }
  sSystem.mSockets.push_back(std::string(aFamily == AF_INET ? "inet" : "?") +
                             ((aType & SOCK_STREAM) != 0 ? " stream" : "") +
                             ((aType & SOCK_CLOEXEC) != 0 ? " close-on-exec" : ""));
  int theSocket = __real_socket(aFamily, aType, aProtocol);
  if (sSystem.mOwnPort) {
    BindToPort(theSocket, *sSystem.mOwnPort);
  }
  return theSocket;
}

int __real_connect(int aSocket, const struct sockaddr* anAddress, socklen_t aLength);
int __wrap_connect(int aSocket, const struct sockaddr* anAddress, socklen_t aLength) {
  ++sSystem.mConnects;
  if (sSystem.mConnectErrors.empty()) {
    return __real_connect(aSocket, anAddress, aLength);
  }
  errno = sSystem.mConnectErrors.front();
  sSystem.mConnectErrors.pop_front();
  return errno == 0 ? 0 : -1;
}

int __real_ioctl(int aSocket, unsigned long aRequest, void* anArgument);
int __wrap_ioctl(int aSocket, unsigned long aRequest, void* anArgument) {
  if (aRequest == FIONBIO) {
    sSystem.mNonBlockings += *static_cast<int*>(anArgument);
    if (sSystem.mfNoNonBlocking) {
      errno = EINVAL;
      return -1;
    }
  }
  return __real_ioctl(aSocket, aRequest, anArgument);
}

int __real_setsockopt(int aSocket, int aLevel, int anOption, const void* aValue, socklen_t aLength);
int __wrap_setsockopt(int aSocket, int aLevel, int anOption, const void* aValue, socklen_t aLength) {
  if (aLevel == SOL_SOCKET && anOption == SO_SNDBUF && aLength == sizeof(int)) {
    sSystem.mSendBuffer = *static_cast<const int*>(aValue);
  }
  return __real_setsockopt(aSocket, aLevel, anOption, aValue, aLength);
}

int __real_getaddrinfo(const char* aHost, const char* aPort, const struct addrinfo* aHints,
                       struct addrinfo** aResult);
int __wrap_getaddrinfo(const char* aHost, const char* aPort, const struct addrinfo* aHints,
                       struct addrinfo** aResult) {
  sSystem.mResolverFlags.push_back(aHints->ai_flags);
  EXPECT_EQ(AF_INET, aHints->ai_family);
  EXPECT_EQ(SOCK_STREAM, aHints->ai_socktype);
  return __real_getaddrinfo(aHost, aPort, aHints, aResult);
}

int __real_poll(struct pollfd* aPolls, nfds_t aCount, int aLimit);
int __wrap_poll(struct pollfd* aPolls, nfds_t aCount, int aLimit) {
  if (!sSystem.mPollEvents) {
    return __real_poll(aPolls, aCount, aLimit);
  }
  EXPECT_EQ(1u, aCount);
  EXPECT_EQ(POLLOUT, aPolls->events);
  EXPECT_EQ(0, aLimit) << "nobody waits";
  aPolls->revents = *sSystem.mPollEvents;
  return aPolls->revents != 0 ? 1 : 0;
}

void __real_qvRand_Init(void);
void __wrap_qvRand_Init(void) {
  ++sSystem.mSeeds;
  __real_qvRand_Init();
}

void __real_qvUUID_Generate(uint8* anUUID);
void __wrap_qvUUID_Generate(uint8* anUUID) {
  sSystem.mSeedsBeforeUUID = sSystem.mSeeds;
  __real_qvUUID_Generate(anUUID);
}

}  // extern "C"

namespace {

// Each test has a logger in the chain that sends to nobody.
class qvLogdLoggerFaults : public LogDaemonTest {
 protected:
  qvLogdLoggerFaults() {
    mLogger.EnterChain();
    sSystem = FakeSystem();
  }
  ~qvLogdLoggerFaults() override { sSystem = FakeSystem(); }

  ScriptedLogdLogger mLogger;
};

}  // namespace

TEST_F(qvLogdLoggerFaults, TheRandomNumbersAreSeededBeforeTheUUIDIsDrawn) {
  qvLogger::RemoveLogger(&mLogger);
  qvLogdLogger::sInstance = nullptr;
  delete new qvLogdLogger(false);
  EXPECT_EQ(1, sSystem.mSeedsBeforeUUID);
}

TEST_F(qvLogdLoggerFaults, TheSocketIsAStreamThatNoLaunchedProgramInherits) {
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  EXPECT_THAT(sSystem.mSockets, ElementsAre("inet stream close-on-exec"));
  EXPECT_EQ(FD_CLOEXEC, fcntl(mLogger.mSocket, F_GETFD) & FD_CLOEXEC);
}

TEST_F(qvLogdLoggerFaults, TheSendBufferIsAskedToHold102400Bytes) {
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  EXPECT_EQ(102400, sSystem.mSendBuffer);
}

TEST_F(qvLogdLoggerFaults, TheSocketDoesNotBlockUnlessThatIsSet) {
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  EXPECT_EQ(1, sSystem.mNonBlockings);
  EXPECT_EQ(O_NONBLOCK, fcntl(mLogger.mSocket, F_GETFL) & O_NONBLOCK);
  qvLog_ReloadConfig();
  mLogger.mfBlocking = 1;
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  EXPECT_EQ(1, sSystem.mNonBlockings);
  EXPECT_EQ(0, fcntl(mLogger.mSocket, F_GETFL) & O_NONBLOCK);
}

TEST_F(qvLogdLoggerFaults, ANumericTargetNeverReachesANameServer) {
  EXPECT_TRUE(mLogger.MakeTargetAddressFromString("127.0.0.1:9000"));
  EXPECT_THAT(sSystem.mResolverFlags, ElementsAre(AI_NUMERICHOST));
}

TEST_F(qvLogdLoggerFaults, AMistypedNumericTargetNeverReachesANameServerEither) {
  for (const char* theTarget : {"192.168.1.300:9000", "1.2.3.4.5", "4294967296", "1..2"}) {
    sSystem.mResolverFlags.clear();
    EXPECT_FALSE(mLogger.MakeTargetAddressFromString(theTarget)) << theTarget;
    EXPECT_THAT(sSystem.mResolverFlags, ElementsAre(AI_NUMERICHOST)) << theTarget;
  }
}

TEST_F(qvLogdLoggerFaults, ANameIsLookedUpAfterItWasFoundToBeNoNumber) {
  EXPECT_TRUE(mLogger.MakeTargetAddressFromString("localhost:9000"));
  EXPECT_THAT(sSystem.mResolverFlags, ElementsAre(AI_NUMERICHOST, 0));
}

TEST_F(qvLogdLoggerFaults, APortThatIsNoneIsNotEvenLookedUp) {
  EXPECT_FALSE(mLogger.MakeTargetAddressFromString("127.0.0.1:65536"));
  EXPECT_TRUE(sSystem.mResolverFlags.empty());
}

TEST_F(qvLogdLoggerFaults, WithoutASocketTheMessageIsLostAndNotCounted) {
  sSystem.mfNoSockets = true;
  EXPECT_FALSE(LogText(1, 0, "x\n"));
  EXPECT_EQ(0u, mLogger.mLostLogs);
  EXPECT_EQ(qvLogdLogger::State_Disconnected, mLogger.mState);
  EXPECT_TRUE(mLogger.mfHasAddress) << "the target was found";
  sSystem.mfNoSockets = false;
  EXPECT_TRUE(LogText(1, 0, "x\n"));
}

TEST_F(qvLogdLoggerFaults, ASocketThatWouldBlockIsNotUsed) {
  sSystem.mfNoNonBlocking = true;
  EXPECT_FALSE(LogText(1, 0, "x\n"));
  EXPECT_EQ(-1, mLogger.mSocket);
  EXPECT_EQ(0, sSystem.mConnects);
  EXPECT_EQ(0u, mLogger.mLostLogs);
}

TEST_F(qvLogdLoggerFaults, AConnectionThatStandsAtOnceTakesTheMessage) {
  sSystem.mConnectErrors = {0};
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  EXPECT_EQ(1, sSystem.mConnects);
  EXPECT_TRUE(mLogger.IsConnected());
  ASSERT_EQ(2u, mLogger.mSent.size());
  EXPECT_THAT(mLogger.mSent[0], StartsWith("\nPROTOCOL: qvLogd-1.0\n"));
  EXPECT_EQ(0u, mLogger.mLostLogs);
}

TEST_F(qvLogdLoggerFaults, AConnectionThatIsUnderWayIsLookedAtOnceMore) {
  for (int theFirst : {EAGAIN, EINTR, EINPROGRESS, EALREADY}) {
    for (int theSecond : {0, EISCONN}) {
      sSystem.mConnects = 0;
      sSystem.mConnectErrors = {theFirst, theSecond};
      EXPECT_TRUE(LogText(1, 0, "x\n")) << theFirst << " " << theSecond;
      EXPECT_EQ(2, sSystem.mConnects) << theFirst << " " << theSecond;
      EXPECT_TRUE(mLogger.IsConnected()) << theFirst << " " << theSecond;
      EXPECT_EQ(0u, mLogger.mLostLogs) << theFirst << " " << theSecond;
      qvLog_ReloadConfig();
    }
  }
}

TEST_F(qvLogdLoggerFaults, TheMessageThatStartsAConnectionIsLostAndTheNextOneCompletesItAndIsDelivered) {
  sSystem.mConnectErrors = {EINPROGRESS, EALREADY};
  EXPECT_FALSE(LogText(1, 0, "one\n"));
  EXPECT_EQ(1u, mLogger.mLostLogs);
  EXPECT_EQ(qvLogdLogger::State_Connecting, mLogger.mState);
  EXPECT_FALSE(mLogger.IsConnected());
  int theSocket = mLogger.mSocket;
  EXPECT_NE(-1, theSocket);
  EXPECT_TRUE(mLogger.mSent.empty());

  sSystem.mConnectErrors = {0};
  EXPECT_TRUE(LogText(1, 0, "two\n"));
  EXPECT_EQ(3, sSystem.mConnects) << "once in this state";
  EXPECT_EQ(theSocket, mLogger.mSocket);
  EXPECT_EQ(0u, mLogger.mLostLogs);
  ASSERT_EQ(3u, mLogger.mSent.size());
  EXPECT_EQ("\nLOST: 1\n", mLogger.mSent[0]);
  EXPECT_EQ(Header("1"), mLogger.mSent[1]);
  EXPECT_THAT(mLogger.mSent[2], testing::MatchesRegex(std::string(kErrorPrefix) + "two\n"));
}

TEST_F(qvLogdLoggerFaults, WhileTheConnectionIsBeingMadeEachMessageIsCounted) {
  sSystem.mConnectErrors = {EINPROGRESS, EALREADY, EAGAIN, EINTR, EINPROGRESS, EALREADY};
  for (unsigned int i = 1; i <= 5; ++i) {
    EXPECT_FALSE(LogText(1, 0, "x\n"));
    EXPECT_EQ(i, mLogger.mLostLogs);
    EXPECT_EQ(qvLogdLogger::State_Connecting, mLogger.mState);
  }
  EXPECT_EQ(1u, sSystem.mSockets.size());
  sSystem.mConnectErrors = {EISCONN};
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  EXPECT_EQ("\nLOST: 5\n", mLogger.mSent[0]);
}

TEST_F(qvLogdLoggerFaults, AnyOtherErrorOfConnectingIsCountedAndTheNextMessageStartsAnew) {
  const std::vector<std::deque<int>> kCases = {
      {ECONNREFUSED},       {ETIMEDOUT}, {ENETUNREACH}, {EADDRNOTAVAIL}, {EINPROGRESS, ECONNREFUSED},
      {EINTR, EHOSTUNREACH}};
  for (const std::deque<int>& theErrors : kCases) {
    mLogger.mLostLogs = 0;
    sSystem.mConnectErrors = theErrors;
    EXPECT_FALSE(LogText(1, 0, "x\n")) << theErrors.back();
    EXPECT_TRUE(sSystem.mConnectErrors.empty()) << theErrors.back();
    EXPECT_EQ(1u, mLogger.mLostLogs) << theErrors.back();
    EXPECT_EQ(-1, mLogger.mSocket) << theErrors.back();
    EXPECT_EQ(qvLogdLogger::State_Disconnected, mLogger.mState) << theErrors.back();
    EXPECT_TRUE(mLogger.mfHasAddress) << "the address is kept";
  }
  EXPECT_EQ(kCases.size(), sSystem.mSockets.size());
}

TEST_F(qvLogdLoggerFaults, AConnectionThatFailsAfterAWhileIsCountedAndGivenUp) {
  sSystem.mConnectErrors = {EINPROGRESS, EALREADY, ETIMEDOUT};
  EXPECT_FALSE(LogText(1, 0, "x\n"));
  int theSocket = mLogger.mSocket;
  EXPECT_FALSE(LogText(1, 0, "x\n"));
  EXPECT_EQ(2u, mLogger.mLostLogs);
  EXPECT_EQ(-1, mLogger.mSocket);
  EXPECT_EQ(-1, fcntl(theSocket, F_GETFD)) << "closed";
  EXPECT_EQ(qvLogdLogger::State_Disconnected, mLogger.mState);
}

TEST_F(qvLogdLoggerFaults, ASocketThatTheSystemConnectsToItselfIsGivenUpAndLeavesThePortToTheDaemon) {
  int theDaemon = __real_socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  uint16_t thePort = BindToPort(theDaemon, 0);
  close(theDaemon);
  mVariable.Set(("127.0.0.1:" + std::to_string(thePort)).c_str());
  qvLog_ReloadConfig();
  sSystem.mOwnPort = thePort;
  EXPECT_FALSE(LogText(1, 0, "x\n"));
  EXPECT_EQ(1u, mLogger.mLostLogs);
  EXPECT_EQ(-1, mLogger.mSocket);
  EXPECT_EQ(qvLogdLogger::State_Disconnected, mLogger.mState);
  EXPECT_TRUE(mLogger.mSent.empty());

  theDaemon = __real_socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  EXPECT_EQ(thePort, BindToPort(theDaemon, thePort));
  EXPECT_EQ(0, listen(theDaemon, 1));
  sSystem.mOwnPort.reset();
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  close(theDaemon);
}

TEST_F(qvLogdLoggerFaults, ADaemonAtAnotherAddressIsReachedFromAPortOfTheSameNumber) {
  int theDaemon = __real_socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  uint16_t thePort = BindToPort(theDaemon, 0, INADDR_LOOPBACK + 1);
  EXPECT_EQ(0, listen(theDaemon, 1));
  mVariable.Set(("127.0.0.2:" + std::to_string(thePort)).c_str());
  qvLog_ReloadConfig();
  sSystem.mOwnPort = thePort;
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  EXPECT_TRUE(mLogger.IsConnected());
  close(theDaemon);
}

TEST_F(qvLogdLoggerFaults, NoSocketIsLeftOpenByConnectionsThatFail) {
  std::deque<int> theRefusals(200, ECONNREFUSED);
  sSystem.mConnectErrors = theRefusals;
  LogText(1, 0, "x\n");
  int theBefore = open("/dev/null", O_RDONLY | O_CLOEXEC);
  close(theBefore);
  while (!sSystem.mConnectErrors.empty()) {
    LogText(1, 0, "x\n");
  }
  int theAfter = open("/dev/null", O_RDONLY | O_CLOEXEC);
  close(theAfter);
  EXPECT_EQ(theBefore, theAfter);
  EXPECT_EQ(200u, mLogger.mLostLogs);
}

TEST_F(qvLogdLoggerFaults, AHeaderThatFindsTheConnectionBrokenIsCountedAndTheMessageIsRefused) {
  mLogger.mResults = {{-1, EPIPE}};
  EXPECT_FALSE(LogText(1, 0, "x\n"));
  EXPECT_EQ(1u, mLogger.mSent.size()) << "the header";
  EXPECT_EQ(1u, mLogger.mLostLogs);
  EXPECT_EQ(-1, mLogger.mSocket);
  EXPECT_EQ(qvLogdLogger::State_Disconnected, mLogger.mState);
}

TEST_F(qvLogdLoggerFaults, AHeaderThatTheSystemCannotTakeNowIsCountedLikeAMessage) {
  mLogger.mResults = {{-1, EAGAIN}};
  testing::internal::CaptureStderr();
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  EXPECT_EQ("qvLogdLogger: Restarting, 1 logs were lost.\n", testing::internal::GetCapturedStderr());
  EXPECT_EQ(2u, mLogger.mSent.size());
  EXPECT_TRUE(mLogger.IsConnected());
}

TEST_F(qvLogdLoggerFaults, WithoutLossesNobodyAsksWhetherTheSocketIsWritable) {
  sSystem.mPollEvents = 0;
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  mLogger.mLostLogs = 1;
  EXPECT_FALSE(LogText(1, 0, "x\n"));
  EXPECT_EQ(2u, mLogger.mLostLogs);
}

TEST_F(qvLogdLoggerFaults, ABrokenConnectionCountsAsWritableAndAClosedDescriptorDoesNot) {
  struct {
    short mEvents;
    bool mfWritable;
  } kCases[] = {{POLLOUT, true},           {0, false},      {POLLERR, true},
                {POLLOUT | POLLHUP, true}, {POLLHUP, true}, {POLLNVAL, false}};
  EXPECT_TRUE(LogText(1, 0, "x\n"));
  for (const auto& theCase : kCases) {
    mLogger.mLostLogs = 1;
    sSystem.mPollEvents = theCase.mEvents;
    testing::internal::CaptureStderr();
    EXPECT_EQ(theCase.mfWritable, LogText(1, 0, "x\n")) << theCase.mEvents;
    testing::internal::GetCapturedStderr();
  }
}

TEST_F(qvLogdLoggerFaults, AChildProcessLeavesAConnectionThatIsBeingMadeToItsParent) {
  sSystem.mConnectErrors = {EINPROGRESS, EALREADY};
  EXPECT_FALSE(LogText(1, 0, "x\n"));
  IN_FRESH_PROCESS({
    EXPECT_EQ(-1, mLogger.mSocket);
    EXPECT_EQ(qvLogdLogger::State_Disconnected, mLogger.mState);
    EXPECT_EQ(0u, mLogger.mLostLogs);
    EXPECT_TRUE(mLogger.mfHasAddress) << "the target is the same";
  });
  EXPECT_NE(-1, mLogger.mSocket);
  EXPECT_EQ(qvLogdLogger::State_Connecting, mLogger.mState);
  EXPECT_EQ(1u, mLogger.mLostLogs);
}
