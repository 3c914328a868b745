// Makes each system call from opening settings to having saved them fail, once or from then on: a full or
// broken disk, a read-only file system, no quota, no descriptors. A save that reports success must have put
// the new settings on disk; after any other the old ones must be there, or the new ones whole. Calls that are
// interrupted or move a part of their bytes must not be noticed at all.
#include <errno.h>

#include <algorithm>
#include <functional>

#include "faults/Experiment.h"
#include "faults/Settings.h"
#include "interposed/PlannedCalls.h"
#include "support/FreeDescriptor.h"
#include "support/ScratchFolder.h"

namespace {

struct NamedError {
  int mErrno;
  const char* mName;
};
const NamedError kErrors[] = {
    {ENOSPC, "ENOSPC"}, {EIO, "EIO"}, {EROFS, "EROFS"}, {EDQUOT, "EDQUOT"}, {EMFILE, "EMFILE"},
};

// A program that opens the settings, changes some and saves them.
struct Program {
  const char* mName;
  std::function<bool(const std::string& aFolder)> mRun;  // gives the save's result
};

// What the program may leave, by what its save says.
class Trial {
 public:
  Trial(Experiment* anExperiment, const Settings& aSettings, const StartImage& aStart,
        const Program& aProgram)
      : mExperiment(anExperiment), mStart(aStart), mProgram(aProgram) {
    mWhere = aStart.mName + ", " + std::to_string(aSettings.KeyCount()) + " keys, " + aProgram.mName + ", ";
    CallPlan theUndisturbed;
    theUndisturbed.mfLooksCount = true;
    mCalls = Run(theUndisturbed).mCalls;
    mNew = mImage;
    ScratchFolder theFolder;
    WriteImage(theFolder.Path(), aStart.mImage);
    aSettings.FoundAtOpen(theFolder.Path());
    mOld = ReadImage(theFolder.Path());
  }

  // The names of the calls when nothing fails.
  const std::vector<std::string>& Calls() const { return mCalls; }

  // Old or new, and new when the save says so.
  void CheckNothingIsLost(const CallPlan& aPlan, const std::string& aWhat) {
    Run(aPlan);
    mExperiment->Check(mfSaved ? mImage == mNew : mImageAtOpen == mOld || mImageAtOpen == mNew,
                       mWhere + aWhat + Outcome());
  }

  // As if nothing had happened.
  void CheckIsNotNoticed(const CallPlan& aPlan, const std::string& aWhat) {
    Run(aPlan);
    mExperiment->Check(mfSaved && mImage == mNew, mWhere + aWhat + Outcome());
  }

 private:
  // Leaves what it finds in the fields.
  CallPlan Run(CallPlan aPlan) {
    aPlan.mfLooksCount = true;
    ScratchFolder theFolder;
    WriteImage(theFolder.Path(), mStart.mImage);
    const int theDescriptor = LowestFreeDescriptor();
    CallPlan theDone = RunPlanned(aPlan, [&] { mfSaved = mProgram.mRun(theFolder.Path()); });
    mfDescriptorIsOpen = LowestFreeDescriptor() != theDescriptor;
    mImage = ReadImage(theFolder.Path());
    Settings(1).FoundAtOpen(theFolder.Path());
    mImageAtOpen = ReadImage(theFolder.Path());
    if (mfDescriptorIsOpen) {
      mExperiment->Failed(mWhere + "a descriptor is left open");
    }
    return theDone;
  }

  std::string Outcome() const {
    return std::string(mfSaved ? ": saved" : ": not saved") + ", left " + Describe(mImage) +
           ", at the next open " + Describe(mImageAtOpen);
  }

  Experiment* mExperiment;
  const StartImage& mStart;
  const Program& mProgram;
  std::string mWhere;
  std::vector<std::string> mCalls;
  FolderImage mOld;
  FolderImage mNew;
  bool mfSaved = false;
  bool mfDescriptorIsOpen = false;
  FolderImage mImage;
  FolderImage mImageAtOpen;
};

void FailEachCall(Trial* aTrial) {
  for (const NamedError& theError : kErrors) {
    for (size_t theFailCount : {static_cast<size_t>(1), kNever}) {
      for (size_t i = 0; i < aTrial->Calls().size(); ++i) {
        CallPlan thePlan;
        thePlan.mErrno = theError.mErrno;
        thePlan.mFailFrom = i;
        thePlan.mFailCount = theFailCount;
        aTrial->CheckNothingIsLost(thePlan, std::string(theError.mName) +
                                                (theFailCount == 1 ? " once at " : " from ") + "call " +
                                                std::to_string(i) + " (" + aTrial->Calls()[i] + ")");
      }
    }
  }
}

// The disk takes some bytes and then no more.
void FillTheDisk(Trial* aTrial, size_t aLargestWrite) {
  for (size_t i = 0; i < aTrial->Calls().size() + 10; ++i) {
    CallPlan thePlan;
    thePlan.mErrno = ENOSPC;
    thePlan.mFailName = "write";
    thePlan.mFailFrom = i;
    thePlan.mFailCount = kNever;
    thePlan.mLargestWrite = aLargestWrite;
    aTrial->CheckNothingIsLost(thePlan, "writes of " + std::to_string(aLargestWrite) +
                                            " bytes until the disk is full at call " + std::to_string(i));
  }
}

// Only calls that the system documents as interruptible; an interrupted close has closed.
void InterruptEachCall(Trial* aTrial) {
  for (size_t i = 0; i < aTrial->Calls().size(); ++i) {
    const std::string& theName = aTrial->Calls()[i];
    if (theName == "stat" || theName == "rename" || theName == "unlink") {
      continue;
    }
    for (size_t theCount = 1; theCount <= (theName == "close" ? 1u : 3u); ++theCount) {
      CallPlan thePlan;
      thePlan.mErrno = EINTR;
      thePlan.mFailFrom = i;
      thePlan.mFailCount = theCount;
      aTrial->CheckIsNotNoticed(thePlan, "call " + std::to_string(i) + " (" + theName + ") interrupted " +
                                             std::to_string(theCount) + " times");
    }
  }
}

void MovePartsOnly(Trial* aTrial) {
  for (size_t theLargest : {1, 2, 3, 7, 50, 99, 100, 101, 1000}) {
    CallPlan thePlan;
    thePlan.mLargestWrite = theLargest;
    aTrial->CheckIsNotNoticed(thePlan, "writes of " + std::to_string(theLargest) + " bytes");
    thePlan.mLargestWrite = kNever;
    thePlan.mLargestRead = theLargest;
    aTrial->CheckIsNotNoticed(thePlan, "reads of " + std::to_string(theLargest) + " bytes");
  }
}

}  // namespace

int main(int aCount, char** anArguments) {
  Experiment theExperiment("failingcalls", aCount, anArguments);
  for (size_t theKeyCount : {1, 20, 200}) {
    const Settings theSettings(theKeyCount);
    const Program kPrograms[] = {
        {"all keys set", [&](const std::string& aFolder) { return theSettings.OpenAndSave(aFolder, "new"); }},
        // What could not be read must not be missing afterwards.
        {"one key set", [&](const std::string& aFolder) { return Settings(1).OpenAndSave(aFolder, "new"); }},
    };
    for (const StartImage& theStart : StartImages(theSettings)) {
      for (const Program& theProgram : kPrograms) {
        Trial theTrial(&theExperiment, theSettings, theStart, theProgram);
        FailEachCall(&theTrial);
        InterruptEachCall(&theTrial);
        MovePartsOnly(&theTrial);
        for (size_t theLargestWrite : {1, 16, 300}) {
          FillTheDisk(&theTrial, theLargestWrite);
        }
      }
    }
  }
  return theExperiment.Finish();
}
