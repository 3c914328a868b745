// Puts the log daemon logger, with its default settings, before daemons that refuse, hang, break off, answer
// what nobody asked, or are somewhere else. Whatever they do: no log call takes 50 ms, 999 of 1000 take less
// than 5 ms, no signal ends the process, its heap does not grow by more than 64 KiB and it leaves no
// descriptor open. And when the daemon is well again, one of the next two messages reaches it, from the same
// sender as before.
//
// A daemon is well again when its system answers: one whose queue was full is so when the sender's system has
// knocked the next time, which it does after 1, 3, 7 ... seconds.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <memory>

#include "faults/Experiment.h"
#include "faults/LoggingProcess.h"
#include "support/LogDaemonPeer.h"

namespace {

constexpr uint32_t kMaxCallsFrom5Ms = 1;  // of a thousand
constexpr uint64_t kMaxHeapGrowth = 65536;
constexpr int kMessagesToRecover = 2;
constexpr int kTries = 3;  // a slow call is the library's when it comes back each time
constexpr uint32_t kBatch = 500;
constexpr uint64_t kMinMessages = 4000;
constexpr int kKnockLimitMs = 70000;

double Now() {
  auto theNow = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double>(theNow).count();
}

// One sender and its daemon.
struct Scene {
  explicit Scene(int aPort = 0) : mPeer(std::make_unique<LogDaemonPeer>(aPort)), mProcess(mPeer->Target()) {}

  // Reads until nothing is on its way.
  void Drain() {
    do {
      mPeer->ReadWhatIsThere();
    } while (mProcess.Look().mUnsent > 0);
    mPeer->ReadWhatIsThere();
  }
  // Lets go of everybody who has connected.
  void ResetAll() {
    mPeer->Reset();
    while (mPeer->HasCaller()) {
      mPeer->Accept();
      mPeer->Reset();
    }
  }

  std::unique_ptr<LogDaemonPeer> mPeer;
  LoggingProcess mProcess;
  std::string mRead;     // of the present connection, by a step
  double mNextStep = 0;  // for steps that take their time
};

using Action = std::function<void(Scene&)>;
void DoNothing(Scene&) {}

struct HostileDaemon {
  std::string mName;
  double mSeconds;  // at merge; ten times as long at night
  uint64_t mMinMessages;
  Action mBegin;  // it turns hostile; a connection stands
  Action mStep;   // while the process logs
  Action mEnd;    // it is well again
};

// --- What daemons do

void Refuse(Scene& aScene) {
  aScene.mPeer->StopListening();
  aScene.mPeer->Close();
}
void Listen(Scene& aScene) { aScene.mPeer->Listen(); }
void CloseConnection(Scene& aScene) { aScene.mPeer->Close(); }
void ResetAll(Scene& aScene) { aScene.ResetAll(); }
void Drain(Scene& aScene) { aScene.Drain(); }

void Leave(Scene& aScene) { aScene.mPeer.reset(); }
// Fails when somebody else has taken the port: the sender's own system, for the sender.
std::function<void(Scene&)> ComeBackTo(int aPort) {
  return [aPort](Scene& aScene) { aScene.mPeer = std::make_unique<LogDaemonPeer>(aPort); };
}

void FillQueue(Scene& aScene) {
  aScene.mPeer->Close();
  aScene.mPeer->FillBacklog();
}
void EmptyQueue(Scene& aScene) {
  aScene.mPeer->EmptyBacklog();
  aScene.mPeer->HasCaller(kKnockLimitMs);
}

void ReadOneByteASecond(Scene& aScene) {
  if (Now() >= aScene.mNextStep) {
    aScene.mPeer->ReadWhatIsThere(1);
    aScene.mNextStep = Now() + 1;
  }
}

void ReadAll(Scene& aScene) { aScene.mPeer->ReadWhatIsThere(); }
void CloseHalf(Scene& aScene) { aScene.mPeer->CloseHalf(); }
void CloseReadingHalf(Scene& aScene) { aScene.mPeer->CloseReadingHalf(); }
void SendOn(Scene& aScene) { aScene.mPeer->SendAllThatFits(); }
void SendAndRead(Scene& aScene) {
  aScene.mPeer->SendAllThatFits();
  aScene.mPeer->ReadWhatIsThere();
}

// Takes each connection, and lets go of it behind aCount bytes.
Action BreakOffBehind(size_t aCount, void (LogDaemonPeer::*aBreak)()) {
  return [aCount, aBreak](Scene& aScene) {
    LogDaemonPeer& thePeer = *aScene.mPeer;
    if (!thePeer.IsConnected()) {
      if (!thePeer.HasCaller()) {
        return;
      }
      thePeer.Accept();
      aScene.mRead.clear();
    }
    if (aScene.mRead.size() < aCount) {
      aScene.mRead += thePeer.ReadWhatIsThere(aCount - aScene.mRead.size());
    }
    if (aScene.mRead.size() >= aCount) {
      (thePeer.*aBreak)();
    }
  };
}

void TakeDescriptors(Scene& aScene) {
  aScene.mProcess.TakeDescriptors();
  aScene.mPeer->Reset();
}
void GiveDescriptors(Scene& aScene) { aScene.mProcess.GiveDescriptors(); }
// The name cannot be looked up then.
void TakeDescriptorsAndMove(Scene& aScene) {
  aScene.mProcess.TakeDescriptors();
  aScene.mProcess.MoveTo("localhost:" + std::to_string(aScene.mPeer->Port()));
  aScene.mPeer->Close();
}

void MoveToNowhere(Scene& aScene) {
  aScene.mProcess.MoveTo("NULL");
  aScene.mPeer->Close();
}
void MoveBack(Scene& aScene) { aScene.mProcess.MoveTo(aScene.mPeer->Target()); }
void MoveToName(Scene& aScene) {
  aScene.mProcess.MoveTo("localhost:" + std::to_string(aScene.mPeer->Port()));
  aScene.mPeer->Close();
}

// A new daemon at a new port, every time.
void MoveOn(Scene& aScene) {
  if (Now() >= aScene.mNextStep && aScene.mProcess.HasReport(0)) {
    aScene.mProcess.Report();
    aScene.mPeer = std::make_unique<LogDaemonPeer>();
    aScene.mProcess.MoveTo(aScene.mPeer->Target());
    aScene.mProcess.StartLogging(kBatch);
    aScene.mNextStep = Now() + 0.05;
  }
  aScene.mPeer->ReadWhatIsThere();
}

// --- The experiment

// A port that the system may draw for a connection: it draws every second one, counted from the first, and
// gives the others to those who ask for any.
int PortForDrawing() {
  int theFirst = 32768;
  int theLast = 60999;
  std::ifstream("/proc/sys/net/ipv4/ip_local_port_range") >> theFirst >> theLast;
  for (int thePort = theFirst + 2 * (getpid() % 5000); thePort <= theLast; thePort += 2) {
    struct sockaddr_in theAddress = {};
    theAddress.sin_family = AF_INET;
    theAddress.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    theAddress.sin_port = htons(static_cast<uint16_t>(thePort));
    int theSocket = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int theResult = bind(theSocket, reinterpret_cast<struct sockaddr*>(&theAddress), sizeof(theAddress));
    close(theSocket);
    if (theResult == 0) {
      return thePort;
    }
  }
  return 0;
}

// What has to be kept from the first connection to the last.
class Trial {
 public:
  Trial(Experiment* anExperiment, const HostileDaemon& aDaemon, int aPort)
      : mExperiment(anExperiment), mDaemon(aDaemon), mScene(aPort) {}

  // False when a log call was slow and nothing else was wrong.
  bool Run(bool afLastTry) {
    mBefore = mScene.mProcess.Log(10);
    mScene.mPeer->ReadUntil(LoggingProcess::Text(10));
    mDaemon.mBegin(mScene);
    BeHostile();
    mDaemon.mEnd(mScene);
    CheckRecovery();
    CheckResources();
    const bool theIsFast = mCallsFrom50Ms == 0 && mCallsFrom5Ms * 1000 <= kMaxCallsFrom5Ms * mCalls;
    if (!theIsFast && !afLastTry) {
      return false;
    }
    Check(theIsFast, std::to_string(mCalls) + " calls, " + std::to_string(mCallsFrom5Ms) + " from 5 ms, " +
                         std::to_string(mCallsFrom50Ms) + " from 50 ms, slowest " +
                         std::to_string(mSlowestMs) + " ms");
    mExperiment->Tried(mCalls);
    return true;
  }

 private:
  void Check(bool aHolds, const std::string& aWhat) {
    mExperiment->Check(aHolds, mDaemon.mName + ": " + aWhat);
  }

  void Add(const LoggingReport& aReport) {
    mCalls += aReport.mCalls;
    mCallsFrom5Ms += aReport.mCallsFrom5Ms;
    mCallsFrom50Ms += aReport.mCallsFrom50Ms;
    mSlowestMs = std::max(mSlowestMs, aReport.mSlowestMs);
    mLast = aReport;
  }

  void BeHostile() {
    const double theEnd = Now() + mDaemon.mSeconds * (mExperiment->IsNight() ? 10 : 1);
    do {
      mScene.mProcess.StartLogging(kBatch);
      while (!mScene.mProcess.HasReport(1)) {
        mDaemon.mStep(mScene);
      }
      Add(mScene.mProcess.Report());
      mDaemon.mStep(mScene);
      usleep(1000);
    } while (Now() < theEnd || mLast.mSent < mDaemon.mMinMessages);
  }

  // One message of the next two arrives, in a stream of the same sender.
  void CheckRecovery() {
    int theMessages = 0;
    do {
      Add(mScene.mProcess.Log(1));
      ++theMessages;
    } while (!mLast.HasDelivered() && theMessages < kMessagesToRecover);
    Check(mLast.HasDelivered(), "not delivered behind " + std::to_string(theMessages) + " messages, " +
                                    std::to_string(mLast.mLost) + " lost");
    if (!mLast.HasDelivered()) {
      return;
    }
    const std::string theStream = mScene.mPeer->ReadUntil(LoggingProcess::Text(mLast.mSent));
    const size_t theHeader = theStream.rfind("UUID: ");
    Check(theHeader == std::string::npos || theStream.compare(theHeader + 6, 36, mBefore.mUUID) == 0,
          "the sender has another name");
    Check(std::string(mLast.mUUID) == mBefore.mUUID, "the sender calls itself otherwise");
  }

  void CheckResources() {
    const LoggingReport theReport = mScene.mProcess.Look();
    Check(theReport.mHeapBytes <= mBefore.mHeapBytes + kMaxHeapGrowth,
          "the heap has grown from " + std::to_string(mBefore.mHeapBytes) + " to " +
              std::to_string(theReport.mHeapBytes) + " bytes");
    Check(theReport.mDescriptors <= mBefore.mDescriptors, "descriptors are left open");
    const std::string theEnd = mScene.mProcess.End();
    Check(theEnd.empty(), "the process " + theEnd);
  }

  Experiment* mExperiment;
  const HostileDaemon& mDaemon;
  Scene mScene;
  LoggingReport mBefore;
  LoggingReport mLast;
  uint32_t mCalls = 0;
  uint32_t mCallsFrom5Ms = 0;
  uint32_t mCallsFrom50Ms = 0;
  double mSlowestMs = 0;
};

// A daemon that is back before the next message: that one tells the sender's system that the connection is
// gone, the second tells the sender, and the third connects.
void CheckQuickRestart(Experiment* anExperiment) {
  Scene theScene;
  theScene.mProcess.Log(1);
  theScene.Drain();
  theScene.mPeer->Close();
  const bool theFirst = theScene.mProcess.Log(1).mLost == 0;
  const bool theSecond = !theScene.mProcess.Log(1).mfConnected;
  const bool theThird = theScene.mProcess.Log(1).HasDelivered();
  theScene.mPeer->ReadUntil(LoggingProcess::Text(4));
  anExperiment->Check(theFirst && theSecond && theThird,
                      "a quick restart: the third message does not connect");
}

}  // namespace

int main(int aCount, char** anArguments) {
  Experiment theExperiment("hostiledaemons", aCount, anArguments);
  const int theDrawnPort = PortForDrawing();
  constexpr uint64_t kAllPorts = 30000;  // messages; each connects, and draws a port
  void (LogDaemonPeer::*kClose)() = &LogDaemonPeer::Close;
  void (LogDaemonPeer::*kReset)() = &LogDaemonPeer::Reset;
  // clang-format off
  const HostileDaemon kDaemons[] = {
      {"refuses", 0.5, kMinMessages, Refuse, DoNothing, Listen},
      {"is not there", 0.5, kAllPorts, Leave, DoNothing, ComeBackTo(theDrawnPort)},
      {"answers nobody", 2, kMinMessages, FillQueue, DoNothing, EmptyQueue},
      {"accepts nobody", 1, kMinMessages, CloseConnection, DoNothing, Drain},
      {"never reads", 1, kMinMessages, DoNothing, DoNothing, Drain},
      {"reads a byte a second", 5, kMinMessages, DoNothing, ReadOneByteASecond, Drain},
      {"resets behind 0 bytes", 0.5, kMinMessages, ResetAll, BreakOffBehind(0, kReset), ResetAll},
      {"resets behind 1 byte", 0.5, kMinMessages, ResetAll, BreakOffBehind(1, kReset), ResetAll},
      {"resets behind 4000 bytes", 0.5, kMinMessages, ResetAll, BreakOffBehind(4000, kReset), ResetAll},
      {"closes at once", 0.5, kMinMessages, ResetAll, BreakOffBehind(0, kClose), ResetAll},
      {"closes in the header", 0.5, kMinMessages, ResetAll, BreakOffBehind(30, kClose), ResetAll},
      {"closes in a line", 0.5, kMinMessages, ResetAll, BreakOffBehind(200, kClose), ResetAll},
      {"closes half", 0.5, kMinMessages, CloseHalf, ReadAll, Drain},
      {"closes half and never reads", 0.5, kMinMessages, CloseHalf, DoNothing, Drain},
      {"closes half and sends", 0.5, kMinMessages, CloseReadingHalf, SendOn, ResetAll},
      {"sends and reads", 0.5, kMinMessages, DoNothing, SendAndRead, Drain},
      {"moves on reload", 1, kMinMessages, DoNothing, MoveOn, Drain},
      {"localhost", 0.5, kMinMessages, MoveToName, ReadAll, Drain},
      {"null", 0.5, kMinMessages, MoveToNowhere, DoNothing, MoveBack},
      {"no descriptors", 0.5, kMinMessages, TakeDescriptors, DoNothing, GiveDescriptors},
      {"no descriptors, by name", 0.5, kMinMessages, TakeDescriptorsAndMove, DoNothing, GiveDescriptors},
  };
  // clang-format on
  for (const HostileDaemon& theDaemon : kDaemons) {
    int thePort = theDaemon.mMinMessages == kAllPorts ? theDrawnPort : 0;
    for (int theTry = 1; !Trial(&theExperiment, theDaemon, thePort).Run(theTry == kTries); ++theTry) {
    }
  }
  CheckQuickRestart(&theExperiment);
  theExperiment.Check(!testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed(),
                      "a daemon waited in vain; see above");
  return theExperiment.Finish();
}
