// Floods a log daemon that stalls and goes on, over and over, with numbered messages that only the log daemon
// logger takes, and does the accounts:
//
//     sent = received whole + told on standard error + told in the stream
//
// exactly. The terms:
// - Sent are all messages, whether qvLog_Begin took them or not. Each is counted as lost once at most: when
// it
//   begins, if there is no connection or a full one behind a loss; when it ends, if the system took none of
//   it, or only a part. That part is in the stream, without a line end, before the next message or the end.
// - Standard error has "Restarting, n logs were lost." when a connection that stands takes messages again.
// - The stream has a report only before a header, for what was lost when the connection was made. The header
//   repeats the count twice; it counts once. There is a new connection with every reload.
// - A header is sent like a message. One that the system did not take would be counted as one more loss;
//   but it is the first that goes into a new connection, which has room.
// - Nothing that the system took is lost behind it: the daemon reads each connection to its end. Nothing is
//   left to be told: messages follow until one has been delivered.
//
// The first daemon is the experiment itself. The second one is qvlogd, stopped by SIGSTOP. Its ledger counts
// the torn beginnings as lines; in its file they are marked as partial.
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <fstream>
#include <random>

#include "faults/Experiment.h"
#include "faults/LoggingProcess.h"
#include "faults/NumberedStream.h"
#include "support/LogDaemonPeer.h"
#include "support/ScratchFolder.h"
#include "tests/tools/qvlogd/RunningCollector.h"

namespace {

constexpr uint64_t kMessages = 1000000;
constexpr uint32_t kFlood = 20000;       // messages between two looks
constexpr uint64_t kFloodsToReload = 5;  // each of these, the settings are read anew
constexpr int kMaxStallMs = 20;
constexpr int kMaxLastMessages = 10000;

using Random = std::minstd_rand;

int Draw(Random& aRandom, int aMax) { return std::uniform_int_distribution<int>(0, aMax)(aRandom); }

// The sum of what standard error tells.
uint64_t ToldOnStandardError(const std::string& aText) {
  static const std::string kReport = "qvLogdLogger: Restarting, ";
  uint64_t theSum = 0;
  for (size_t i = 0; (i = aText.find(kReport, i)) != std::string::npos;) {
    i += kReport.size();
    theSum += strtoull(aText.c_str() + i, nullptr, 10);
  }
  return theSum;
}

// Logs aCount messages to a target. aStep is what the daemon does meanwhile; aFlow makes it read.
template <class Step, class Flow>
LoggingReport Flood(LoggingProcess& aProcess, const std::string& aTarget, uint64_t aCount, const Step& aStep,
                    const Flow& aFlow) {
  LoggingReport theReport;
  for (uint64_t theFlood = 1; theReport.mSent < aCount; ++theFlood) {
    aProcess.StartFlooding(kFlood);
    while (!aProcess.HasReport(0)) {
      aStep();
    }
    theReport = aProcess.Report();
    if (theFlood % kFloodsToReload == 0) {
      theReport = aProcess.MoveTo(aTarget);
    }
  }
  for (int i = 0; i < kMaxLastMessages; ++i) {
    aFlow();
    theReport = aProcess.Log(1);
    if (theReport.HasDelivered()) {
      break;
    }
  }
  return theReport;
}

// --- The experiment as the daemon

class StallingDaemon {
 public:
  explicit StallingDaemon(unsigned int aSeed) : mRandom(aSeed) {}

  std::string Target() const { return mPeer.Target(); }
  const NumberedStream& Stream() const { return mStream; }

  // Stalls, or reads: a little, or what is there, or for a while.
  void Step() {
    switch (Draw(mRandom, 3)) {
      case 0:
        usleep(static_cast<useconds_t>(Draw(mRandom, kMaxStallMs * 1000)));
        break;
      case 1:
        Read(static_cast<size_t>(Draw(mRandom, 2000)));
        break;
      case 2:
        Read(static_cast<size_t>(Draw(mRandom, 200000)));
        break;
      default:
        for (int i = Draw(mRandom, 100); i > 0; --i) {
          Flow();
        }
    }
  }
  void Flow() { Read(static_cast<size_t>(-1)); }
  // Up to the end of the last connection.
  void ReadToEnd() {
    while (mPeer.IsConnected() || mPeer.HasCaller()) {
      Flow();
    }
  }

 private:
  // The connections in the order in which they were made, each to its end.
  void Read(size_t aLimit) {
    if (mPeer.IsConnected() && mPeer.HasEnded()) {
      mPeer.Close();
      mStream.EndConnection();
    }
    if (!mPeer.IsConnected() && mPeer.HasCaller()) {
      mPeer.Accept();
      mStream.BeginConnection();
    }
    if (mPeer.IsConnected()) {
      mStream.Take(mPeer.ReadWhatIsThere(aLimit));
    }
  }

  Random mRandom;
  LogDaemonPeer mPeer;
  NumberedStream mStream;
};

void CountAtDaemon(Experiment* anExperiment, uint64_t aCount, unsigned int aSeed) {
  StallingDaemon theDaemon(aSeed);
  LoggingProcess theProcess(theDaemon.Target());
  const LoggingReport theReport = Flood(
      theProcess, theDaemon.Target(), aCount, [&] { theDaemon.Step(); }, [&] { theDaemon.Flow(); });
  const std::string theEnd = theProcess.End();
  theDaemon.ReadToEnd();
  const NumberedStream& theStream = theDaemon.Stream();
  const uint64_t theTold = ToldOnStandardError(theProcess.Errors());
  const std::string theAccount =
      "seed " + std::to_string(aSeed) + ": " + std::to_string(theReport.mSent) + " sent, " +
      std::to_string(theStream.Whole()) + " received, " + std::to_string(theStream.Torn()) + " torn, " +
      std::to_string(theTold) + " told on standard error, " + std::to_string(theStream.Told()) +
      " in the stream of " + std::to_string(theStream.Connections()) + " connections";
  anExperiment->Check(theEnd.empty() && theReport.HasDelivered() && theStream.Last() == theReport.mSent,
                      theAccount + ": the last message is missing; " + theEnd);
  anExperiment->Check(theStream.Fault().empty(), theAccount + ": " + theStream.Fault());
  anExperiment->Check(theStream.Whole() + theTold + theStream.Told() == theReport.mSent, theAccount);
  anExperiment->Check(theStream.Missing() == theTold + theStream.Told(),
                      theAccount + ": " + std::to_string(theStream.Missing()) + " are missing");
  anExperiment->Check(
      theStream.Torn() > 0 && theTold > 0 && theStream.Told() > 0 && theStream.Whole() > theTold / 100,
      theAccount + ": not every kind of loss has happened");
  anExperiment->Tried(static_cast<size_t>(theReport.mSent));
}

// --- qvlogd as the daemon

// A number of the ledger's sums.
uint64_t Total(const std::string& aLedger, const std::string& aName) {
  const size_t theTotal = aLedger.find("\"total\":");
  const size_t theMember = aLedger.find("\"" + aName + "\":", theTotal);
  return theTotal == std::string::npos || theMember == std::string::npos
             ? 0
             : strtoull(aLedger.c_str() + theMember + aName.size() + 3, nullptr, 10);
}

size_t CountLines(const std::string& aPath, const std::string& aText) {
  size_t theCount = 0;
  std::ifstream theFile(aPath);
  for (std::string theLine; std::getline(theFile, theLine);) {
    theCount += theLine.find(aText) != std::string::npos;
  }
  return theCount;
}

// A minute at most; the accounts will tell.
void WaitForText(const std::string& aPath, const std::string& aText) {
  const std::string theStart = "\"" + aText.substr(0, aText.rfind(' ') + 1);
  for (int i = 0; i < 600 && CountLines(aPath, theStart) == 0; ++i) {
    usleep(100000);
  }
}

void CountAtCollector(Experiment* anExperiment, uint64_t aCount, unsigned int aSeed) {
  ScratchFolder theFolder;
  const std::string theFile = theFolder.File("log");
  RunningCollector theCollector(
      {"--stats=json", "--output=json", "--file=" + theFile, "--partial-time=1h", "--stop-time=1h"});
  const std::string theTarget = "127.0.0.1:" + std::to_string(theCollector.Port());
  LoggingProcess theProcess(theTarget);
  Random theRandom(aSeed);
  const auto Sleep = [&] { usleep(static_cast<useconds_t>(Draw(theRandom, kMaxStallMs * 1000))); };
  const LoggingReport theReport = Flood(
      theProcess, theTarget, aCount,
      [&] {
        theCollector.Program().Signal(SIGSTOP);
        Sleep();
        theCollector.Program().Signal(SIGCONT);
        Sleep();
      },
      [] { usleep(1000); });
  WaitForText(theFile, LoggingProcess::Text(theReport.mSent));
  const std::string theEnd = theProcess.End();
  const std::string theLedger = theCollector.Stop().mStderr;
  const uint64_t thePartial = CountLines(theFile, "\"partial\":true");
  const uint64_t theLines = Total(theLedger, "lines");
  const uint64_t theTold = ToldOnStandardError(theProcess.Errors());
  const uint64_t theToldInStream = Total(theLedger, "lost");
  const std::string theAccount = "qvlogd, seed " + std::to_string(aSeed) + ": " +
                                 std::to_string(theReport.mSent) + " sent, " + std::to_string(theLines) +
                                 " lines of which " + std::to_string(thePartial) + " torn, " +
                                 std::to_string(theTold) + " told on standard error, " +
                                 std::to_string(theToldInStream) + " in the stream; " + theLedger;
  anExperiment->Check(theEnd.empty() && theReport.HasDelivered(), theAccount + theEnd);
  anExperiment->Check(theLines - thePartial + theTold + theToldInStream == theReport.mSent, theAccount);
  anExperiment->Check(theLedger.find("\"output\":{\"dropped\":0}") != std::string::npos, theAccount);
  anExperiment->Check(thePartial > 0 && theTold > 0 && theLines > theTold / 100,
                      theAccount + ": not every kind of loss has happened");
  anExperiment->Tried(static_cast<size_t>(theReport.mSent));
}

}  // namespace

int main(int aCount, char** anArguments) {
  Experiment theExperiment("lossaccounting", aCount, anArguments);
  const unsigned int theSeeds = theExperiment.IsNight() ? 20 : 1;
  for (unsigned int theSeed = 1; theSeed <= theSeeds; ++theSeed) {
    CountAtDaemon(&theExperiment, kMessages, theSeed);
    CountAtCollector(&theExperiment, kMessages, theSeed);
  }
  theExperiment.Check(!testing::UnitTest::GetInstance()->ad_hoc_test_result().Failed(),
                      "a daemon waited in vain; see above");
  return theExperiment.Finish();
}
