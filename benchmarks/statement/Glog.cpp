#include <glog/logging.h>

#include "Workload.h"

static void Start() {
  static const bool sStarted = [] {
    google::InitGoogleLogging("statement_benchmark");
    return true;
  }();
  benchmark::DoNotOptimize(sStarted);
}

static const Contender sOffByLevel(kOffByLevel, "glog VLOG", [](benchmark::State& aState) {
  Start();
  FLAGS_v = 0;
  Repeat(aState, [](const Tuner& aTuner) {
    STATEMENT_TEN_TIMES(VLOG(1) << "Tuner " << aTuner.mNumber << " locked to " << aTuner.mFrequency
                                << " kHz after " << aTuner.mDelay << " ms");
  });
});

namespace {
struct File {
  static void Open(const char* aPath) {
    Start();
    FLAGS_logtostderr = false;
    FLAGS_stderrthreshold = google::GLOG_FATAL;
    FLAGS_logbuflevel = -1;  // every line to the kernel
    FLAGS_timestamp_in_logfile_name = false;
    FLAGS_max_log_size = 4095;  // MB
    google::SetLogDestination(google::GLOG_INFO, aPath);
    google::SetLogSymlink(google::GLOG_INFO, "");
  }
  static void Write(const Tuner& aTuner) {
    LOG(INFO) << "Tuner " << aTuner.mNumber << " locked to " << aTuner.mFrequency << " kHz after "
              << aTuner.mDelay << " ms";
  }
  static void Close() { google::SetLogDestination(google::GLOG_INFO, ""); }
};
}  // namespace
static const FileRows<File> sFileRows("glog");
