// Sends the collector more than it may be able to take: 200 senders a million numbered lines as fast as they
// can, then 50 of them beside 4,000 connections that say nothing. As the library does, a sender that finds
// its socket full counts the line as lost and goes on. Every other line must be in the file, once, whole and
// in order, and the collector must stay below 64 MiB.
#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <time.h>

#include <algorithm>
#include <fstream>
#include <memory>
#include <thread>

#include "faults/Experiment.h"
#include "support/ScratchFolder.h"
#include "tests/tools/qvlogd/LogSender.h"
#include "tests/tools/qvlogd/RunningCollector.h"

namespace {

constexpr long kMemoryLimit = 65536;  // kilobytes
constexpr int kThreads = 2;           // that send

double Now() {
  struct timespec theTime;
  clock_gettime(CLOCK_MONOTONIC, &theTime);
  return static_cast<double>(theTime.tv_sec) + static_cast<double>(theTime.tv_nsec) / 1e9;
}

// What the system knows about the collector's process.
class Process {
 public:
  explicit Process(int aPid) : mFolder("/proc/" + std::to_string(aPid)) {}

  long PeakKilobytes() const {
    std::ifstream theFile(mFolder + "/status");
    for (std::string theLine; std::getline(theFile, theLine);) {
      if (theLine.rfind("VmHWM:", 0) == 0) {
        return atol(theLine.c_str() + 6);
      }
    }
    return -1;
  }
  double UsedSeconds() const {
    std::ifstream theFile(mFolder + "/stat");
    std::string theWord;
    long theTicks[2] = {0, 0};
    for (int i = 1; i <= 15 && theFile >> theWord; ++i) {
      if (i >= 14) {
        theTicks[i - 14] = atol(theWord.c_str());
      }
    }
    return static_cast<double>(theTicks[0] + theTicks[1]) / static_cast<double>(sysconf(_SC_CLK_TCK));
  }
  int Descriptors() const {
    int theCount = 0;
    DIR* theFolder = opendir((mFolder + "/fd").c_str());
    while (theFolder != nullptr && readdir(theFolder) != nullptr) {
      ++theCount;
    }
    closedir(theFolder);
    return theCount;
  }

 private:
  std::string mFolder;
};

// A sender of numbered lines that never waits.
class NumberedSender {
 public:
  NumberedSender(int aPort, int aNumber, int aLines)
      : mSender(std::make_unique<LogSender>(aPort)),
        mName("sender" + std::to_string(aNumber)),
        mLost(aLines) {
    mSender->SendHeader(mName, kFirstUUID);
    mSender->NeverWait(102400);
  }

  const std::string& Name() const { return mName; }
  bool IsDone() const { return mNext == mLost.size(); }
  void SendNext() {
    std::string theLine =
        LogSender::Line("number " + std::to_string(mNext) + " of a line that is as long as lines mostly are");
    mLost[mNext] = !mSender->SendAtOnce(theLine);
    ++mNext;
  }
  void Close() { mSender->Close(); }
  const std::vector<char>& Lost() const { return mLost; }  // by number

 private:
  std::unique_ptr<LogSender> mSender;
  std::string mName;
  std::vector<char> mLost;
  size_t mNext = 0;
};

using Senders = std::vector<std::unique_ptr<NumberedSender>>;

void SendAll(Senders& aSenders, size_t aFirst) {
  bool theAreDone = false;
  while (!theAreDone) {
    theAreDone = true;
    for (size_t i = aFirst; i < aSenders.size(); i += kThreads) {
      if (!aSenders[i]->IsDone()) {
        aSenders[i]->SendNext();
        theAreDone = false;
      }
    }
  }
}

// Checks the file against what the senders know. A line that was lost may have left its beginning there.
size_t CheckFile(Experiment* anExperiment, const std::string& aFile, const Senders& aSenders,
                 const std::string& aWhere) {
  std::vector<std::vector<char>> theSeen(aSenders.size());
  std::vector<long> theLast(aSenders.size(), -1);
  size_t theDisorder = 0;
  std::ifstream theStream(aFile);
  for (std::string theLine; std::getline(theStream, theLine);) {
    int theSender = 0;
    int theNumber = 0;
    int theEnd = 0;
    size_t theStart = theLine.find("sender");
    if (theStart == std::string::npos ||
        sscanf(
            theLine.c_str() + theStart,
            "sender%d-1a2b3c4d I PLAYER b6f2a000: number %d of a line that is as long as lines mostly are%n",
            &theSender, &theNumber, &theEnd) != 2 ||
        theEnd == 0 || theStart + static_cast<size_t>(theEnd) != theLine.size()) {
      continue;
    }
    size_t theIndex = static_cast<size_t>(theSender);
    theSeen[theIndex].resize(aSenders[theIndex]->Lost().size());
    ++theSeen[theIndex][static_cast<size_t>(theNumber)];
    theDisorder += theNumber <= theLast[theIndex];
    theLast[theIndex] = theNumber;
  }
  anExperiment->Check(theDisorder == 0, aWhere + ": " + std::to_string(theDisorder) + " lines out of order");
  size_t theLost = 0;
  size_t theMissing = 0;
  for (size_t i = 0; i < aSenders.size(); ++i) {
    const std::vector<char>& theExpected = aSenders[i]->Lost();
    theSeen[i].resize(theExpected.size());
    for (size_t j = 0; j < theExpected.size(); ++j) {
      theLost += theExpected[j] != 0;
      theMissing += theSeen[i][j] != (theExpected[j] == 0);
    }
    anExperiment->Tried(theExpected.size());
  }
  anExperiment->Check(theMissing == 0,
                      aWhere + ": " + std::to_string(theMissing) + " lines missing or there twice");
  return theLost;
}

void Load(Experiment* anExperiment, int aSenderCount, int aLines, int anIdleCount,
          const std::string& aWhere) {
  ScratchFolder theFolder;
  RunningCollector theCollector({"--file=" + theFolder.File("log"), "--stop-time=60s"});
  Process theProcess(theCollector.Program().Pid());
  int theDescriptors = theProcess.Descriptors();
  std::vector<std::unique_ptr<LogSender>> theIdle;
  for (int i = 0; i < anIdleCount; ++i) {
    theIdle.push_back(std::make_unique<LogSender>(theCollector.Port()));
    theIdle.back()->SendHeader("idle", kSecondUUID);
  }
  Senders theSenders;
  for (int i = 0; i < aSenderCount; ++i) {
    theSenders.push_back(std::make_unique<NumberedSender>(theCollector.Port(), i, aLines / aSenderCount));
  }
  double theStart = Now();
  std::vector<std::thread> theThreads;
  for (int i = 0; i < kThreads; ++i) {
    theThreads.emplace_back([&theSenders, i] { SendAll(theSenders, static_cast<size_t>(i)); });
  }
  for (std::thread& theThread : theThreads) {
    theThread.join();
  }
  double theSent = Now() - theStart;
  for (auto& theSender : theSenders) {
    theSender->Close();
  }
  while (theProcess.Descriptors() > theDescriptors + anIdleCount) {
    usleep(1000);
  }
  double theRead = Now() - theStart;
  long thePeak = theProcess.PeakKilobytes();
  double theUsed = theProcess.UsedSeconds();
  theIdle.clear();
  ChildResult theResult = theCollector.Stop();
  anExperiment->Check(theResult.mExitCode == 0, aWhere + ": the collector did not end well");
  anExperiment->Check(thePeak < kMemoryLimit, aWhere + ": " + std::to_string(thePeak) + " kB of memory");
  size_t theLost = CheckFile(anExperiment, theFolder.File("log"), theSenders, aWhere);
  fprintf(stderr,
          "collector: %s: %d lines, %zu lost by their senders, sent in %.2f s, read in %.2f s (%.0f lines a "
          "second), %.2f s of processor time, %ld kB\n",
          aWhere.c_str(), aLines, theLost, theSent, theRead,
          static_cast<double>(static_cast<size_t>(aLines) - theLost) / theRead, theUsed, thePeak);
}

}  // namespace

int main(int argc, char** argv) {
  Experiment theExperiment("collector", argc, argv);
  struct rlimit theLimit = {8192, 8192};
  if (setrlimit(RLIMIT_NOFILE, &theLimit) != 0) {
    getrlimit(RLIMIT_NOFILE, &theLimit);
    theLimit.rlim_cur = theLimit.rlim_max;
    setrlimit(RLIMIT_NOFILE, &theLimit);
  }
  if (theLimit.rlim_cur < 4200) {
    theExperiment.Impossible("not enough descriptors for 4,050 connections");
  }
  Load(&theExperiment, 200, 1000000, 0, "200 senders");
  Load(&theExperiment, 50, theExperiment.IsNight() ? 1000000 : 200000, 4000, "50 senders beside 4,000 idle");
  return theExperiment.Finish();
}
