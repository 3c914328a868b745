// LogProgram.h - runs the test program LogScript in a scratch folder, with configuration files beside it.
#ifndef TESTS_SUPPORT_LOGPROGRAM_H
#define TESTS_SUPPORT_LOGPROGRAM_H

#include <unistd.h>

#include <string>
#include <vector>

#include "support/ChildProcess.h"
#include "support/NoLogDaemon.h"
#include "support/ScratchFolder.h"

class LogProgram {
 public:
  // A copy of LogScript named "box". Its log daemon logger is off.
  LogProgram() {
    CopyTestProgram("LogScript", mFolder.Path(), "box");
    Configure("");
  }

  // The shipped configuration, which the program never writes. The log daemon logger is off unless the text
  // has a section for it.
  void Configure(const std::string& anIniText) {
    bool theHasDaemon = anIniText.find("[qvlogd]") != std::string::npos;
    WriteWholeFile(ShippedFile(), theHasDaemon ? anIniText : kNoLogDaemon + anIniText);
  }
  // No shipped configuration at all, as at the first start of a new program.
  void RemoveConfiguration() { unlink(ShippedFile().c_str()); }

  // What the program has written into its configuration.
  std::string Populated() const { return ReadWholeFile(mFolder.File("_qvLog.box.ini")); }

  // Runs the operations (see LogScript.cpp) in UTC; expects that the program ends as it should.
  ChildResult Run(const std::vector<std::string>& anOperations,
                  std::vector<std::string> anEnvironment = {}) const {
    anEnvironment.push_back("TZ=UTC0");
    ChildResult theResult = RunProgram(mFolder.File("box"), anOperations, anEnvironment);
    EXPECT_EQ(0, theResult.mExitCode) << theResult.mStderr;
    return theResult;
  }

  std::string ShippedFile() const { return mFolder.File("qvLog.box.ini"); }
  std::string Path(const std::string& aName) const { return mFolder.File(aName); }
  std::string Read(const std::string& aName) const { return ReadWholeFile(mFolder.File(aName)); }

 private:
  ScratchFolder mFolder;
};

#endif
