// Four threads log and end the framework in turn, so that it ends and starts again under each other's
// messages. What was taken must be in the file whole, once and in the order of its thread.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <atomic>
#include <thread>
#include <vector>

#include "faults/Experiment.h"
#include "faults/NumberedLog.h"
#include "faults/OwnProgram.h"
#include "qvLog/qvLog.h"

namespace {

constexpr char kInside[] = "inside";
constexpr int kThreads = 4;
constexpr int kCyclesOfARound = 5000;
constexpr int kMergeRounds = 1;
constexpr int kNightRounds = 20;
constexpr unsigned int kRoundSeconds = 300;

std::string CountOf(int aWriter, unsigned int aCount) {
  return "writer " + std::to_string(aWriter) + " wrote " + std::to_string(aCount);
}

// A message that is refused, because another thread starts the framework, is tried again.
unsigned int Cycle(int aWriter) {
  unsigned int theNumber = 0;
  for (int i = 0; i < kCyclesOfARound / kThreads; ++i) {
    for (int theTry = 0; theTry < 3; ++theTry) {
      theNumber += LogNumbered(aWriter, theNumber);
    }
    qvLog_Term();
  }
  return theNumber;
}

int CycleInside() {
  unsigned int theCounts[kThreads];
  std::vector<std::thread> theThreads;
  for (int i = 0; i < kThreads; ++i) {
    theThreads.emplace_back([&theCounts, i] { theCounts[i] = Cycle(i); });
  }
  for (std::thread& theThread : theThreads) {
    theThread.join();
  }
  bool theAreTaken = true;
  for (int i = 0; i < kThreads; ++i) {
    theAreTaken = LogNamed(CountOf(i, theCounts[i])) && theAreTaken;
  }
  return theAreTaken ? 0 : 1;
}

void RunRound(Experiment* anExperiment) {
  OwnProgram theProgram("[file]\nlevel=all\nfile=out.txt\nappend=1\n[qvlogd]\nlevel=off\n");
  std::string theEnd = theProgram.Run({kInside}, kRoundSeconds);
  anExperiment->Tried(kCyclesOfARound);
  if (!theEnd.empty()) {
    anExperiment->Failed("the process " + theEnd);
  }
  NumberedLogChecker theChecker;
  theChecker.CheckLines(theProgram.Read("out.txt"));
  int theEnds = 0;
  for (const auto& theName : theChecker.Names()) {
    int theWriter = 0;
    unsigned int theCount = 0;
    if (sscanf(theName.first.c_str(), "writer %d wrote %u", &theWriter, &theCount) == 2) {
      theChecker.CheckWriterIsComplete(theWriter, theCount);
      ++theEnds;
    }
  }
  anExperiment->Check(theEnds == kThreads, "the end of a writer is missing");
  anExperiment->Check(theChecker.StartCount() > 1, "the framework never started again");
  for (const std::string& theFailure : theChecker.Failures()) {
    anExperiment->Failed(theFailure);
  }
}

}  // namespace

int main(int aCount, char** anArguments) {
  if (aCount == 2 && strcmp(anArguments[1], kInside) == 0) {
    return CycleInside();
  }
  Experiment theExperiment("logcycles", aCount, anArguments);
  const int theRounds = theExperiment.IsNight() ? kNightRounds : kMergeRounds;
  for (int i = 0; i < theRounds; ++i) {
    RunRound(&theExperiment);
  }
  return theExperiment.Finish();
}
