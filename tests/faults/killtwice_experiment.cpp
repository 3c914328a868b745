// Kills a program anywhere in a save, and the next program anywhere in the repair and its own save: every
// pair of places. The third program must find what the second would have found, or the second's settings.
#include <set>

#include "faults/Experiment.h"
#include "faults/Settings.h"
#include "support/ScratchFolder.h"
#include "support/TracedProcess.h"

namespace {

// Kills a second program before each of its calls, on what the first has left.
void KillAgainEverywhere(Experiment* anExperiment, const Settings& aSettings, const FolderImage& anImage,
                         const std::string& aWhere) {
  ScratchFolder theCopy;
  WriteImage(theCopy.Path(), anImage);
  const std::string theFirst = aSettings.FoundAtOpen(theCopy.Path());
  bool theWasKilled = true;
  for (size_t theIndex = 0; theWasKilled; ++theIndex) {
    ScratchFolder theFolder;
    WriteImage(theFolder.Path(), anImage);
    theWasKilled = KillBeforeSystemCall(theIndex, [&] { aSettings.OpenAndSave(theFolder.Path(), "second"); });
    if (theWasKilled) {
      const std::string theFound = aSettings.FoundAtOpen(theFolder.Path());
      const std::string theNames = theFolder.Names();
      anExperiment->Check((theFound == theFirst || theFound == "second") &&
                              theNames == (theFound.empty() ? "" : kSettingsFile),
                          aWhere + " (" + Describe(anImage) + "), then before call " +
                              std::to_string(theIndex) + ": found '" + theFound + "' instead of '" +
                              theFirst + "', then '" + theNames + "'");
    }
  }
}

void KillTwice(Experiment* anExperiment, const Settings& aSettings, const StartImage& aStart) {
  // The first program leaves nothing but its files, and few images are different: at merge, one of each.
  std::set<FolderImage> theSeen;
  bool theWasKilled = true;
  for (size_t theIndex = 0; theWasKilled; ++theIndex) {
    ScratchFolder theFolder;
    WriteImage(theFolder.Path(), aStart.mImage);
    theWasKilled = KillBeforeSystemCall(theIndex, [&] { aSettings.OpenAndSave(theFolder.Path(), "first"); });
    const FolderImage theImage = ReadImage(theFolder.Path());
    if (theWasKilled && (theSeen.insert(theImage).second || anExperiment->IsNight())) {
      KillAgainEverywhere(anExperiment, aSettings, theImage,
                          aStart.mName + ", " + std::to_string(aSettings.KeyCount()) +
                              " keys, killed before call " + std::to_string(theIndex));
    }
  }
}

}  // namespace

int main(int aCount, char** anArguments) {
  Experiment theExperiment("killtwice", aCount, anArguments);
  if (!CanTraceProcesses()) {
    theExperiment.Impossible("no process can be traced");
  }
  for (size_t theKeyCount : {1, 20, 200}) {
    const Settings theSettings(theKeyCount);
    for (const StartImage& theStart : StartImages(theSettings)) {
      KillTwice(&theExperiment, theSettings, theStart);
    }
  }
  return theExperiment.Finish();
}
