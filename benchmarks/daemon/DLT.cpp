// Its library writes to a named pipe that a daemon reads; the daemon is started here, with everything of its
// own in a folder of its own.
#include <dlt/dlt.h>
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "Workload.h"

static constexpr int kStartLimitMs = 5000;

namespace {
class Daemon {
 public:
  Daemon();
  ~Daemon();

  // Waits until the daemon has read all that is in its pipe.
  void Drain() const;

 private:
  [[noreturn]] void Run(pid_t aParent, const std::string& aSettings, const std::string& aPort) const;

  std::string mFolder;
  pid_t mPid;
  int mPipe = -1;
};
}  // namespace

// A port that is free now.
static std::string FreePort() {
  sockaddr_in theAddress = {};
  close(BindLoopback(&theAddress));
  return std::to_string(ntohs(theAddress.sin_port));
}

Daemon::Daemon() {
  char theFolder[] = "/tmp/benchmark-dlt-XXXXXX";
  if (mkdtemp(theFolder) == nullptr) {
    Impossible("mkdtemp");
  }
  mFolder = theFolder;
  const std::string theSettings = mFolder + "/dlt.conf";
  std::ofstream(theSettings) << "LoggingMode = 2\nLoggingFilename = " << mFolder
                             << "/log\nControlSocketPath = " << mFolder
                             << "/control\nPersistanceStoragePath = " << mFolder << "\n";
  const std::string thePort = FreePort();
  pid_t theParent = getpid();
  mPid = fork();
  if (mPid == 0) {
    Run(theParent, theSettings, thePort);
  }
  setenv("DLT_PIPE_DIR", theFolder, 1);
  auto theLimit = std::chrono::steady_clock::now() + std::chrono::milliseconds(kStartLimitMs);
  const std::string thePipe = mFolder + "/dlt";
  while ((mPipe = open(thePipe.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC)) == -1) {
    if (std::chrono::steady_clock::now() > theLimit) {
      Impossible("dlt-daemon");
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void Daemon::Run(pid_t aParent, const std::string& aSettings, const std::string& aPort) const {
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() == aParent) {
    execlp("dlt-daemon", "dlt-daemon", "-c", aSettings.c_str(), "-t", mFolder.c_str(), "-p", aPort.c_str(),
           static_cast<char*>(nullptr));
  }
  _exit(1);
}

Daemon::~Daemon() {
  kill(mPid, SIGTERM);
  std::error_code theIgnored;
  std::filesystem::remove_all(mFolder, theIgnored);
}

void Daemon::Drain() const {
  int theBytes = 0;
  while (ioctl(mPipe, FIONREAD, &theBytes) == 0 && theBytes > 0) {
    std::this_thread::yield();
  }
}

static const Contender sStatement(kStatementRow, "DLT, named pipe", [](benchmark::State& aState) {
  static Daemon sDaemon;
  static DltContext sContext;
  static const bool sfRegistered = [] {
    return dlt_register_app("BNCH", "benchmark") == DLT_RETURN_OK &&
           dlt_register_context(&sContext, "DFLT", "benchmark") == DLT_RETURN_OK;
  }();
  if (!sfRegistered) {
    aState.SkipWithError("cannot register");
    return;
  }
  sDaemon.Drain();
  Statement theStatement;
  uint64_t theLines = 0;
  bool theFailed = false;
  for (auto _ : aState) {
    benchmark::DoNotOptimize(theStatement);
    DltContextData theLine;
    if (dlt_user_log_write_start(&sContext, &theLine, DLT_LOG_INFO) != DLT_RETURN_TRUE) {
      theFailed = true;
      continue;
    }
    dlt_user_log_write_constant_string(&theLine, "tuner");
    dlt_user_log_write_int(&theLine, theStatement.mTuner);
    dlt_user_log_write_constant_string(&theLine, "locked to kHz");
    dlt_user_log_write_int(&theLine, theStatement.mFrequency);
    dlt_user_log_write_constant_string(&theLine, "quality %");
    dlt_user_log_write_int(&theLine, theStatement.mQuality);
    theFailed = dlt_user_log_write_finish(&theLine) != DLT_RETURN_OK || theFailed;
    if (++theLines % kLinesAtOnce == 0) {
      aState.PauseTiming();
      sDaemon.Drain();
      aState.ResumeTiming();
    }
  }
  if (theFailed) {
    aState.SkipWithError("lines were lost");
  }
});
