// RunningCollector.h - the real qvlogd, on a port that the system has chosen.
#ifndef TESTS_TOOLS_QVLOGD_RUNNINGCOLLECTOR_H
#define TESTS_TOOLS_QVLOGD_RUNNINGCOLLECTOR_H

#include <signal.h>
#include <stdlib.h>

#include <string>
#include <vector>

#include "support/RunningProgram.h"

class RunningCollector {
 public:
  // Listens on a free port of the loopback address and waits until it does. Standard output is not coloured,
  // and the environment's QVLOG_TAGS does not count.
  explicit RunningCollector(std::vector<std::string> anArguments = {},
                            std::vector<std::string> anEnvironment = {})
      : mProgram(QVLOGD, WithListen(std::move(anArguments)), WithoutTags(std::move(anEnvironment))) {
    static const std::string kAnnouncement = "qvlogd: listening on 127.0.0.1:";
    if (mProgram.WaitForError(kAnnouncement)) {
      mPort = atoi(mProgram.Error().c_str() + mProgram.Error().find(kAnnouncement) + kAnnouncement.size());
    }
  }

  int Port() const { return mPort; }
  RunningProgram& Program() { return mProgram; }
  const std::string& Output() const { return mProgram.Output(); }
  bool WaitForOutput(const std::string& aText) { return mProgram.WaitForOutput(aText); }
  bool WaitForError(const std::string& aText) { return mProgram.WaitForError(aText); }

  // Ends it as a service manager does.
  ChildResult Stop() {
    mProgram.Signal(SIGTERM);
    ChildResult theResult = mProgram.Wait();
    EXPECT_EQ(0, theResult.mExitCode) << theResult.mStderr;
    return theResult;
  }

 private:
  static std::vector<std::string> WithListen(std::vector<std::string> anArguments) {
    anArguments.insert(anArguments.begin(), "--listen=127.0.0.1:0");
    return anArguments;
  }
  static std::vector<std::string> WithoutTags(std::vector<std::string> anEnvironment) {
    anEnvironment.insert(anEnvironment.begin(), {"QVLOG_TAGS", "NOTIFY_SOCKET", "TZ=UTC0"});
    return anEnvironment;
  }

  RunningProgram mProgram;
  int mPort = 0;
};

#endif
