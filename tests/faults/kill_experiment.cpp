// Kills a program before every system call from opening its settings to having saved them.
#include "faults/Experiment.h"
#include "support/SettingsGenerations.h"
#include "support/TracedProcess.h"

int main(int aCount, char** anArguments) {
  Experiment theExperiment("kill", aCount, anArguments);
  if (!CanTraceProcesses()) {
    theExperiment.Impossible("no process can be traced");
  }
  for (const StartState& theState : StartStates()) {
    bool theWasKilled = true;
    for (size_t theIndex = 0; theWasKilled; ++theIndex) {
      ScratchFolder theFolder;
      std::string theFile = theFolder.File("a.ini");
      Prepare(theState, theFile);
      theWasKilled = KillBeforeSystemCall(theIndex, [&] { OpenAndSave(theFile, "new"); });
      std::string theGeneration = GenerationAtOpen(theFile);
      theExperiment.Check(theGeneration == "new" || theGeneration == theState.mOldGeneration,
                          std::string(theState.mName) + ", killed before call " + std::to_string(theIndex) +
                              ": found '" + theGeneration + "'");
    }
  }
  return theExperiment.Finish();
}
