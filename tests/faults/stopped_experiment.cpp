// Stops a program before every system call from opening its settings to having saved them, as a debugger
// does, while another opens and saves the same file; then the first goes on. Nobody may wait for ever: a save
// that cannot be made fails, and no settings are lost or mixed.
#include "faults/Experiment.h"
#include "faults/Settings.h"
#include "interposed/PlannedCalls.h"
#include "support/ScratchFolder.h"
#include "support/TracedProcess.h"

namespace {

// What the second program sees while the first is stopped.
struct Meanwhile {
  bool mfSaved = false;
  FolderImage mImage;
  std::string mFound;
};

Meanwhile OpenAndSaveMeanwhile(const Settings& aSettings, const std::string& aFolder) {
  Meanwhile theResult;
  // Under a plan, though an empty one, the pauses while it waits for the lock take no time.
  RunPlanned(CallPlan(), [&] {
    theResult.mfSaved = aSettings.OpenAndSave(aFolder, "second");
    theResult.mImage = ReadImage(aFolder);
    theResult.mFound = aSettings.FoundAtOpen(aFolder);
  });
  return theResult;
}

// False when the first program ends before that call.
bool StopAt(Experiment* anExperiment, const Settings& aSettings, const StartImage& aStart, size_t anIndex) {
  ScratchFolder theFolder;
  WriteImage(theFolder.Path(), aStart.mImage);
  Meanwhile theMeanwhile;
  const int theCode = StopBeforeSystemCall(
      anIndex, [&] { return aSettings.OpenAndSave(theFolder.Path(), "first") ? 0 : 1; },
      [&] { theMeanwhile = OpenAndSaveMeanwhile(aSettings, theFolder.Path()); });
  if (theCode == -1) {
    return false;
  }
  const bool theMeanwhileIsWhole =
      theMeanwhile.mfSaved ? theMeanwhile.mImage.at(kSettingsFile) == aSettings.Text("second") &&
                                 theMeanwhile.mFound == "second"
                           : theMeanwhile.mFound == "first" || theMeanwhile.mFound == aStart.mOldGeneration;
  const std::string theFound = aSettings.FoundAtOpen(theFolder.Path());
  // A program that met the other's leftovers at its open refuses to save, or it has the last word; the stop
  // at its very end lets the second have it.
  const bool theEndIsWhole = theCode == 0
                                 ? theFound == "first" || (theMeanwhile.mfSaved && theFound == "second")
                                 : theFound == "second" || theFound == aStart.mOldGeneration;
  anExperiment->Check(theMeanwhileIsWhole && theEndIsWhole && theFolder.Names() == kSettingsFile,
                      aStart.mName + ", " + std::to_string(aSettings.KeyCount()) +
                          " keys, stopped before call " + std::to_string(anIndex) + ": the second " +
                          (theMeanwhile.mfSaved ? "saved" : "failed") + ", found '" + theMeanwhile.mFound +
                          "' (" + Describe(theMeanwhile.mImage) + "); the first ended with " +
                          std::to_string(theCode) + ", left '" + theFound + "', '" + theFolder.Names() + "'");
  return true;
}

}  // namespace

int main(int aCount, char** anArguments) {
  Experiment theExperiment("stopped", aCount, anArguments);
  if (!CanTraceProcesses()) {
    theExperiment.Impossible("no process can be traced");
  }
  for (size_t theKeyCount : {1, 20, 200}) {
    const Settings theSettings(theKeyCount);
    for (const StartImage& theStart : StartImages(theSettings)) {
      for (size_t theIndex = 0; StopAt(&theExperiment, theSettings, theStart, theIndex); ++theIndex) {
      }
    }
  }
  return theExperiment.Finish();
}
