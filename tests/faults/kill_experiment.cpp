// Kills a program before every system call from opening its settings to having saved them. The next program
// must find the old settings or the new ones, leave nothing beside them, and be able to save.
#include "faults/Experiment.h"
#include "faults/Settings.h"
#include "support/ScratchFolder.h"
#include "support/TracedProcess.h"

namespace {

// What the kill has left.
void CheckSurvived(Experiment* anExperiment, const Settings& aSettings, const StartImage& aStart,
                   const ScratchFolder& aFolder, const std::string& aWhere) {
  const FolderImage theImage = ReadImage(aFolder.Path());
  const std::string theFound = aSettings.FoundAtOpen(aFolder.Path());
  const bool theIsThere = theFound == "new" || theFound == aStart.mOldGeneration;
  const std::string theNames = aFolder.Names();
  const bool theIsClean = theNames == (theFound.empty() ? "" : kSettingsFile);
  const bool theSaves = aSettings.OpenAndSave(aFolder.Path(), "next") &&
                        ReadImage(aFolder.Path()) == FolderImage{{kSettingsFile, aSettings.Text("next")}};
  anExperiment->Check(theIsThere && theIsClean && theSaves,
                      aWhere + ", left " + Describe(theImage) + ": found '" + theFound + "', then '" +
                          theNames + "'" + (theSaves ? "" : ", and the next save failed"));
}

void KillEverywhere(Experiment* anExperiment, const Settings& aSettings, const StartImage& aStart) {
  bool theWasKilled = true;
  for (size_t theIndex = 0; theWasKilled; ++theIndex) {
    ScratchFolder theFolder;
    WriteImage(theFolder.Path(), aStart.mImage);
    theWasKilled = KillBeforeSystemCall(theIndex, [&] { aSettings.OpenAndSave(theFolder.Path(), "new"); });
    if (theWasKilled) {
      CheckSurvived(anExperiment, aSettings, aStart, theFolder,
                    aStart.mName + ", " + std::to_string(aSettings.KeyCount()) +
                        " keys, killed before call " + std::to_string(theIndex));
    }
  }
}

}  // namespace

int main(int aCount, char** anArguments) {
  Experiment theExperiment("kill", aCount, anArguments);
  if (!CanTraceProcesses()) {
    theExperiment.Impossible("no process can be traced");
  }
  std::vector<size_t> theKeyCounts = {1, 20, 200};
  if (theExperiment.IsNight()) {
    theKeyCounts.insert(theKeyCounts.end(), {2, 5, 100, 1000});
  }
  for (size_t theKeyCount : theKeyCounts) {
    const Settings theSettings(theKeyCount);
    for (const StartImage& theStart : StartImages(theSettings)) {
      KillEverywhere(&theExperiment, theSettings, theStart);
    }
  }
  return theExperiment.Finish();
}
