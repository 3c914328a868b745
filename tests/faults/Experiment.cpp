#include "faults/Experiment.h"

#include <stdio.h>
#include <stdlib.h>

namespace {

constexpr size_t kFailuresSaid = 20;
constexpr int kUsageExitCode = 2;

}  // namespace

Experiment::Experiment(const std::string& aName, int aCount, char** anArguments) : mName(aName) {
  std::string theDepth = aCount == 2 ? anArguments[1] : "";
  if (theDepth != "merge" && theDepth != "night") {
    fprintf(stderr, "usage: %s merge|night\n", anArguments[0]);
    exit(kUsageExitCode);
  }
  mfNight = theDepth == "night";
}

void Experiment::Failed(const std::string& aWhat) {
  if (mFailures < kFailuresSaid) {
    fprintf(stderr, "%s: %s\n", mName.c_str(), aWhat.c_str());
  } else if (mFailures == kFailuresSaid) {
    fprintf(stderr, "%s: more failures, which are only counted\n", mName.c_str());
  }
  ++mFailures;
}

void Experiment::Check(bool aHolds, const std::string& aWhat) {
  Tried();
  if (!aHolds) {
    Failed(aWhat);
  }
}

void Experiment::Impossible(const std::string& aReason) {
  fprintf(stderr, "%s: cannot be done here: %s\n", mName.c_str(), aReason.c_str());
  exit(EXIT_FAILURE);
}

int Experiment::Finish() const {
  printf("%s: %zu points, %zu failures\n", mName.c_str(), mPoints, mFailures);
  // A program that tried nothing has shown nothing.
  return mPoints > 0 && mFailures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
