// OwnProgram.h - runs a program, by default the experiment's own, from a folder with settings beside it.
#ifndef TESTS_FAULTS_OWNPROGRAM_H
#define TESTS_FAULTS_OWNPROGRAM_H

#include <sys/types.h>

#include <string>
#include <vector>

#include "support/ScratchFolder.h"

class OwnProgram {
 public:
  // Copies the program there, under the name "box".
  explicit OwnProgram(const std::string& aSettings, const std::string& aProgram = "/proc/self/exe");

  // Starts a copy, which is killed when it runs longer than aSeconds.
  pid_t Start(const std::vector<std::string>& anArguments, unsigned int aSeconds) const;
  // "" when the process ended with code 0, else how it ended.
  static std::string HowItEnded(pid_t aProcess);
  // Both.
  std::string Run(const std::vector<std::string>& anArguments, unsigned int aSeconds) const {
    return HowItEnded(Start(anArguments, aSeconds));
  }

  std::string File(const std::string& aName) const { return mFolder.File(aName); }
  std::string Read(const std::string& aName) const { return ReadWholeFile(mFolder.File(aName)); }

 private:
  ScratchFolder mFolder;
};

#endif
