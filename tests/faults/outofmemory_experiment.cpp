// Runs the unit tests and lets allocations of the library fail, once and for good. The process must say
// so on both streams and end by the abort signal, and nothing else. Then the same for a program that opens,
// sets and saves settings: what it leaves must be the old settings or the new ones.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <sstream>

#include "faults/Experiment.h"
#include "faults/Settings.h"
#include "interposed/Starvation.h"
#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"

namespace {

// Allocations of a test that are tried one by one. Few tests have more than those of a night, and what
// happens at their thousands is much the same.
constexpr const char* kFirstPointsAtMerge = "16";
constexpr const char* kFirstPointsAtNight = "400";

// The tests of a program, as SUITE.TEST.
std::vector<std::string> TestsOf(const std::string& aProgram) {
  std::istringstream theList(RunProgram(aProgram, {"--gtest_list_tests"}).mStdout);
  std::vector<std::string> theTests;
  std::string theSuite;
  std::string theLine;
  while (std::getline(theList, theLine)) {
    theLine = theLine.substr(0, theLine.find("  #"));
    if (theLine.compare(0, 2, "  ") == 0) {
      theTests.push_back(theSuite + theLine.substr(2));
    } else if (!theLine.empty() && theLine.back() == '.') {
      theSuite = theLine;
    }
  }
  return theTests;
}

// Runs one test, which splits off its starved children by itself.
void StarveTest(Experiment* anExperiment, const std::string& aProgram, const std::string& aTest) {
  ScratchFolder theFolder;
  const std::string theReportFile = theFolder.File("report");
  WriteWholeFile(theReportFile, std::string(sizeof(StarvationReport), '\0'));
  std::vector<std::string> theEnvironment = {std::string(kStarvationReport) + "=" + theReportFile};
  theEnvironment.push_back(std::string(kStarvationSample) + "=" +
                           (anExperiment->IsNight() ? kFirstPointsAtNight : kFirstPointsAtMerge));
  ChildResult theResult = RunProgram(aProgram, {"--gtest_filter=" + aTest}, theEnvironment);
  const std::string theBytes = ReadWholeFile(theReportFile);
  const StarvationReport* theReport = reinterpret_cast<const StarvationReport*>(theBytes.data());
  anExperiment->Tried(theReport->mPoints);
  if (theReport->mFailures > 0) {
    anExperiment->Failed(aTest + ": " + std::to_string(theReport->mFailures) + " of " +
                         std::to_string(theReport->mPoints) + " points, the first is " +
                         theReport->mFirstFailure);
  }
  if (theResult.mSignal == SIGKILL) {
    anExperiment->Failed(aTest + ": took too long");
  }
}

void StarveTests(Experiment* anExperiment) {
  std::vector<std::string> thePrograms;
  for (const auto& theEntry : std::filesystem::directory_iterator(QVLOG_STARVED_TESTS)) {
    const std::string theName = theEntry.path().filename().string();
    // Those of the night may lie there as well.
    if (theEntry.path().extension().empty() &&
        (anExperiment->IsNight() || std::regex_search(theName, std::regex(QVLOG_STARVED_AT_MERGE)))) {
      thePrograms.push_back(theEntry.path().string());
    }
  }
  std::sort(thePrograms.begin(), thePrograms.end());
  if (thePrograms.empty()) {
    anExperiment->Impossible("no tests in " QVLOG_STARVED_TESTS);
  }
  for (const std::string& theProgram : thePrograms) {
    for (const std::string& theTest : TestsOf(theProgram)) {
      StarveTest(anExperiment, theProgram, theTest);
    }
  }
}

bool IsMessage(const std::string& aText) {
  return aText.compare(0, std::string(kStarvedMessage).size(), kStarvedMessage) == 0;
}

// Lets each allocation of a program fail that saves settings; false when there are fewer than anIndex.
bool StarveSaveAt(Experiment* anExperiment, const Settings& aSettings, const StartImage& aStart,
                  size_t anIndex, bool afFromNowOn) {
  ScratchFolder theFolder;
  WriteImage(theFolder.Path(), aStart.mImage);
  ChildResult theResult = RunInChild([&] {
    StarveAt(anIndex, afFromNowOn);
    aSettings.OpenAndSave(theFolder.Path(), "new");
  });
  if (theResult.mSignal == 0) {
    return false;
  }
  const std::string theFound = aSettings.FoundAtOpen(theFolder.Path());
  const std::string theNames = theFolder.Names();
  anExperiment->Check(theResult.mSignal == SIGABRT && IsMessage(theResult.mStdout) &&
                          IsMessage(theResult.mStderr) &&
                          (theFound == "new" || theFound == aStart.mOldGeneration) &&
                          theNames == (theFound.empty() ? "" : kSettingsFile),
                      aStart.mName + ", " + std::to_string(aSettings.KeyCount()) + " keys, allocation " +
                          std::to_string(anIndex) + ": ended by signal " + std::to_string(theResult.mSignal) +
                          ", found '" + theFound + "', then '" + theNames + "'");
  return true;
}

void StarveSaves(Experiment* anExperiment, size_t aKeyCount) {
  const Settings theSettings(aKeyCount);
  for (const StartImage& theStart : StartImages(theSettings)) {
    for (bool theFromNowOn : {false, true}) {
      for (size_t i = 0; StarveSaveAt(anExperiment, theSettings, theStart, i, theFromNowOn); ++i) {
      }
    }
  }
}

}  // namespace

int main(int aCount, char** anArguments) {
  Experiment theExperiment("outofmemory", aCount, anArguments);
  for (size_t theKeyCount :
       theExperiment.IsNight() ? std::vector<size_t>{1, 20, 200} : std::vector<size_t>{1}) {
    StarveSaves(&theExperiment, theKeyCount);
  }
  StarveTests(&theExperiment);
  return theExperiment.Finish();
}
