// LogProgram.h - runs the test program LogScript in a scratch folder, with configuration files beside it.
#ifndef TESTS_SUPPORT_LOGPROGRAM_H
#define TESTS_SUPPORT_LOGPROGRAM_H

#include <string>
#include <vector>

#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"

class LogProgram {
 public:
  // A copy of LogScript named "box".
  LogProgram() { CopyTestProgram("LogScript", mFolder.Path(), "box"); }

  // The shipped configuration, which the program never writes.
  void Configure(const std::string& anIniText) { WriteWholeFile(mFolder.File("qvLog.box.ini"), anIniText); }

  // What the program has written into its configuration.
  std::string Populated() const { return ReadWholeFile(mFolder.File("_qvLog.box.ini")); }

  // Runs the operations (see LogScript.cpp) in UTC; expects that the program ends as it should.
  ChildResult Run(const std::vector<std::string>& anOperations) const {
    ChildResult theResult = RunProgram(mFolder.File("box"), anOperations, {"TZ=UTC0"});
    EXPECT_EQ(0, theResult.mExitCode) << theResult.mStderr;
    return theResult;
  }

  std::string Path(const std::string& aName) const { return mFolder.File(aName); }
  std::string Read(const std::string& aName) const { return ReadWholeFile(mFolder.File(aName)); }

 private:
  ScratchFolder mFolder;
};

#endif
