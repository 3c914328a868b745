// Records what a program does to the disk from opening its settings to having saved them, and replays every
// state that a power cut may leave behind each step. The next program must find the old settings or the new
// ones, and the new ones once the save has reported success.
#include "faults/Disk.h"
#include "faults/Experiment.h"
#include "faults/Settings.h"
#include "interposed/PlannedCalls.h"
#include "support/ScratchFolder.h"

namespace {

class PowerCuts {
 public:
  PowerCuts(Experiment* anExperiment, const Settings& aSettings, size_t aPartCount)
      : mExperiment(anExperiment), mSettings(aSettings), mPartCount(aPartCount) {}

  // Cuts the power everywhere in a save of a generation that starts from an image; aDepth more times for each
  // image that this leaves.
  void CutEverywhere(const DiskImage& aStart, const std::string& aGeneration, int aDepth,
                     const std::string& aWhere) {
    ScratchFolder theFolder;
    WriteDiskImage(theFolder.Path(), aStart);
    const std::string theOld = FoundIn(aStart);
    const std::vector<DiskOperation> theOperations =
        RunPlanned(CallPlan(), [&] { mSettings.OpenAndSave(theFolder.Path(), aGeneration); }).mOperations;
    mExperiment->Check(
        ReadImage(theFolder.Path()) == FolderImage{{kSettingsFile, mSettings.Text(aGeneration)}},
        aWhere + ": the save without a power cut failed");
    Disk theDisk(aStart);
    std::set<DiskImage> theSeen;
    for (size_t theStep = 0; theStep <= theOperations.size(); ++theStep) {
      const bool theIsSaved = theStep == theOperations.size();
      std::set<DiskImage> theImages;
      theDisk.AddImages(NameOrder::kOrdered, mPartCount, &theImages);
      theDisk.AddImages(NameOrder::kUnordered, mPartCount, &theImages);
      for (const DiskImage& theImage : theImages) {
        // An image that an earlier step has left is tried again only for the stricter rule behind the save.
        if (theSeen.insert(theImage).second || theIsSaved) {
          const std::string theWhere =
              aWhere + ", power cut behind step " + std::to_string(theStep) + " (" + Describe(theImage) + ")";
          CheckSurvived(theImage, theIsSaved ? aGeneration : theOld, aGeneration, theWhere);
          if (aDepth > 0) {
            CutEverywhere(theImage, aGeneration + "+", aDepth - 1, theWhere);
          }
        }
      }
      if (!theIsSaved) {
        theDisk.Do(theOperations[theStep]);
      }
    }
  }

 private:
  std::string FoundIn(const DiskImage& anImage) const {
    ScratchFolder theFolder;
    WriteDiskImage(theFolder.Path(), anImage);
    return mSettings.FoundAtOpen(theFolder.Path());
  }

  void CheckSurvived(const DiskImage& anImage, const std::string& anOld, const std::string& aNew,
                     const std::string& aWhere) {
    ScratchFolder theFolder;
    WriteDiskImage(theFolder.Path(), anImage);
    const std::string theFound = mSettings.FoundAtOpen(theFolder.Path());
    const std::string theNames = theFolder.Names();
    const bool theSaves = mSettings.OpenAndSave(theFolder.Path(), "next") &&
                          ReadImage(theFolder.Path()) == FolderImage{{kSettingsFile, mSettings.Text("next")}};
    mExperiment->Check((theFound == anOld || theFound == aNew) &&
                           theNames == (theFound.empty() ? "" : kSettingsFile) && theSaves,
                       aWhere + ": found '" + theFound + "', then '" + theNames + "'" +
                           (theSaves ? "" : ", and the next save failed"));
  }

  Experiment* mExperiment;
  const Settings& mSettings;
  size_t mPartCount;
};

// aDepth further power cuts behind the first, each in the save that follows.
void CutPower(Experiment* anExperiment, size_t aPartCount, int aDepth) {
  for (size_t theKeyCount : {1, 20, 200}) {
    const Settings theSettings(theKeyCount);
    PowerCuts theCuts(anExperiment, theSettings, aPartCount);
    for (const StartImage& theStart : StartImages(theSettings)) {
      theCuts.CutEverywhere(DurableImage(theStart.mImage), "new", aDepth,
                            theStart.mName + ", " + std::to_string(theKeyCount) + " keys");
    }
  }
}

}  // namespace

int main(int aCount, char** anArguments) {
  Experiment theExperiment("powercut", aCount, anArguments);
  CutPower(&theExperiment, 8, 0);
  CutPower(&theExperiment, 2, 1);
  if (theExperiment.IsNight()) {
    CutPower(&theExperiment, 256, 0);
    CutPower(&theExperiment, 8, 1);
    CutPower(&theExperiment, 2, 2);
  }
  return theExperiment.Finish();
}
