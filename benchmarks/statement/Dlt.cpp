#include <dlt.h>
#include <dlt_common.h>

#include "Workload.h"

DLT_DECLARE_CONTEXT(sTuner);

// A context is a module and has a level of its own. No daemon is needed to be told that it is off.
static void Start() {
  static const bool sStarted = [] {
    dlt_log_set_level(DLT_LOG_OFF);  // its own complaint that there is no daemon
    DLT_REGISTER_APP("STMT", "statement benchmark");
    DLT_REGISTER_CONTEXT_LL_TS(sTuner, "TUNR", "tuner", DLT_LOG_ERROR, DLT_TRACE_STATUS_OFF);
    return true;
  }();
  benchmark::DoNotOptimize(sStarted);
}

#define STATEMENT                                                                                          \
  DLT_LOG(sTuner, DLT_LOG_INFO, DLT_STRING("Tuner"), DLT_INT(aTuner.mNumber), DLT_STRING("locked to kHz"), \
          DLT_UINT(aTuner.mFrequency), DLT_STRING("after ms"), DLT_INT(aTuner.mDelay))

static const Contender sOffByLevel(kOffByLevel, "DLT", [](benchmark::State& aState) {
  Start();
  Repeat(aState, [](const Tuner& aTuner) { STATEMENT_TEN_TIMES(STATEMENT); });
});

static const Contender sOffByModule(kOffByModule, "DLT", [](benchmark::State& aState) {
  Start();
  Repeat(aState, [](const Tuner& aTuner) { STATEMENT; });
});
