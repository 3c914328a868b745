// Experiment.h - one attempt to break a promise of the library, in as many ways as time allows.
//
// An experiment is a program NAME_experiment.cpp that is told how much time there is:
//
//     NAME_experiment merge    a share of the points, in seconds
//     NAME_experiment night    every point
//
// It prints one line on standard output, "NAME: 1234 points, 0 failures", says on standard error what failed,
// and exits with 0 when nothing did. scripts/prove runs them all.
#ifndef TESTS_FAULTS_EXPERIMENT_H
#define TESTS_FAULTS_EXPERIMENT_H

#include <stddef.h>

#include <string>

class Experiment {
 public:
  // Ends the program when the only argument is neither "merge" nor "night".
  Experiment(const std::string& aName, int aCount, char** anArguments);
  Experiment(const Experiment&) = delete;
  Experiment& operator=(const Experiment&) = delete;

  bool IsNight() const { return mfNight; }

  // Counts points that were tried.
  void Tried(size_t aPointCount = 1) { mPoints += aPointCount; }
  // Counts a failure and says what it is, in one line. Of very many, the first are said.
  void Failed(const std::string& aWhat);
  // One point that failed unless aHolds.
  void Check(bool aHolds, const std::string& aWhat);

  // Says why the experiment cannot be done here and ends the program, as a failure: nothing is proved.
  [[noreturn]] void Impossible(const std::string& aReason);

  // Prints the line. The result is the program's exit code.
  int Finish() const;

 private:
  std::string mName;
  bool mfNight = false;
  size_t mPoints = 0;
  size_t mFailures = 0;
};

#endif
