// Two processes open, set and save one settings file, ten thousand times each, while one or the other is
// killed at random, a thousand times. No open may find the settings missing or mixed, or older than before,
// and no save that is left to end may fail.
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <random>

#include "faults/Experiment.h"
#include "faults/Settings.h"
#include "support/ScratchFolder.h"

namespace {

constexpr int kProcessCount = 2;
constexpr unsigned kMaxLife = 8000;  // microseconds until somebody is killed

// What the processes tell, in memory that outlives them.
struct Report {
  std::atomic<size_t> mTurns[kProcessCount];
  std::atomic<size_t> mGoal;  // turns that each makes at least
  std::atomic<size_t> mMissing;
  std::atomic<size_t> mMixed;
  std::atomic<size_t> mOlder;    // a save that had been seen was undone
  std::atomic<size_t> mRefused;  // a save failed
};

Report* NewReport() {
  void* theMemory = mmap(nullptr, sizeof(Report), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  return new (theMemory) Report();
}

// A generation is called PROCESS-TURN.
std::string GenerationName(int aProcess, size_t aTurn) {
  return std::to_string(aProcess) + "-" + std::to_string(aTurn);
}

// Looks at what an open finds. Of each process, aNewest keeps the latest turn that was seen.
void Inspect(const std::string& aFound, std::vector<size_t>* aNewest, Report* aReport) {
  if (aFound.empty()) {
    ++aReport->mMissing;
    return;
  }
  size_t theDash = aFound.find('-');
  if (theDash == std::string::npos) {
    ++aReport->mMixed;
    return;
  }
  size_t& theNewest = (*aNewest)[std::stoul(aFound)];
  const size_t theTurn = std::stoul(aFound.substr(theDash + 1));
  if (theTurn < theNewest) {
    ++aReport->mOlder;
  }
  theNewest = std::max(theNewest, theTurn);
}

pid_t StartProcess(int aProcess, const Settings& aSettings, const std::string& aFolder, Report* aReport) {
  pid_t theChild = fork();
  if (theChild != 0) {
    return theChild;
  }
  std::vector<size_t> theNewest(kProcessCount, 0);
  while (aReport->mTurns[aProcess] < aReport->mGoal) {
    Inspect(aSettings.FoundAtOpen(aFolder), &theNewest, aReport);
    // Counted before the save: a turn that is killed is not made again under its number.
    const size_t theTurn = ++aReport->mTurns[aProcess];
    if (!aSettings.OpenAndSave(aFolder, GenerationName(aProcess, theTurn))) {
      ++aReport->mRefused;
    }
  }
  _exit(0);
}

void LetThemFight(Experiment* anExperiment, size_t aKeyCount, size_t aTurnCount, size_t aKillCount) {
  const Settings theSettings(aKeyCount);
  ScratchFolder theFolder;
  Report* theReport = NewReport();
  theReport->mGoal = aTurnCount;
  theSettings.OpenAndSave(theFolder.Path(), GenerationName(0, 0));
  pid_t theChildren[kProcessCount];
  for (int i = 0; i < kProcessCount; ++i) {
    theChildren[i] = StartProcess(i, theSettings, theFolder.Path(), theReport);
  }
  std::mt19937 theRandom(std::random_device{}());
  size_t theKills = 0;
  // The turns are added to until all kills are done.
  while (theKills < aKillCount) {
    usleep(theRandom() % kMaxLife);
    const int theVictim = static_cast<int>(theRandom() % kProcessCount);
    kill(theChildren[theVictim], SIGKILL);
    int theStatus = 0;
    waitpid(theChildren[theVictim], &theStatus, 0);
    if (WIFSIGNALED(theStatus)) {
      ++theKills;
    } else {
      theReport->mGoal += aTurnCount / 10;
    }
    theChildren[theVictim] = StartProcess(theVictim, theSettings, theFolder.Path(), theReport);
  }
  for (pid_t theChild : theChildren) {
    waitpid(theChild, nullptr, 0);
  }
  const std::string theFound = theSettings.FoundAtOpen(theFolder.Path());
  anExperiment->Check(theFound.find('-') != std::string::npos && theFolder.Names() == kSettingsFile,
                      "at the end: found '" + theFound + "', then '" + theFolder.Names() + "'");
  for (const auto& theTurns : theReport->mTurns) {
    anExperiment->Tried(theTurns);
  }
  anExperiment->Tried(theKills);
  const size_t theLost = theReport->mMissing + theReport->mMixed + theReport->mOlder + theReport->mRefused;
  if (theLost > 0) {
    anExperiment->Failed(std::to_string(aKeyCount) + " keys: " + std::to_string(theReport->mMissing) +
                         " missing, " + std::to_string(theReport->mMixed) + " mixed, " +
                         std::to_string(theReport->mOlder) + " older than before, " +
                         std::to_string(theReport->mRefused) + " saves failed");
  }
  munmap(theReport, sizeof(Report));
}

}  // namespace

int main(int aCount, char** anArguments) {
  Experiment theExperiment("twoprocesses", aCount, anArguments);
  LetThemFight(&theExperiment, 20, 10000, 1000);
  if (theExperiment.IsNight()) {
    LetThemFight(&theExperiment, 1, 100000, 20000);
    LetThemFight(&theExperiment, 200, 50000, 20000);
  }
  return theExperiment.Finish();
}
