#include <qvLog/qvLog.h>

#include <fstream>

#include "Workload.h"

QVLOG_WITH_MODULE_IF(TUNER, 1);

// Ends the framework and starts it with other settings, which it reads beside the program.
static void Restart(const std::string& aSettings) {
  std::ofstream(ProgramFolder() + "qvLog.statement_benchmark.ini")
      << "[options]\npopulate=0\n[qvLogd]\nLevel=Off\n[File]\n"
      << aSettings;
  qvLog_Term();
  qvLog_ReloadConfig();  // starts it
}

#define STATEMENT QV_INFO(F(STATEMENT_PRINTF "\n", aTuner.mNumber, aTuner.mFrequency, aTuner.mDelay))

static const Contender sOffByLevel(kOffByLevel, "qvLog", [](benchmark::State& aState) {
  Restart("Level=Error\nFile=stdout\n");
  Repeat(aState, [](const Tuner& aTuner) { STATEMENT_TEN_TIMES(STATEMENT); });
});

static const Contender sOffByModule(kOffByModule, "qvLog", [](benchmark::State& aState) {
  Restart("Level=All\nFile=stdout\nLOG_TUNER=0\n");
  Repeat(aState, [](const Tuner& aTuner) { STATEMENT; });
});

namespace {
struct File {
  static void Open(const char* aPath) { Restart(std::string("Level=Info\nFile=") + aPath + "\n"); }
  static void Write(const Tuner& aTuner) { STATEMENT; }
  static void Close() { Restart("Level=Off\n"); }
};
}  // namespace
static const FileRows<File> sFileRows("qvLog");

static void Receive(void*, const qvLogData*, const char* aText, size_t aLength) {
  LastText::Keep(aText, aLength);
}

static const Contender sIntoCallback(kIntoCallback, "qvLog", [](benchmark::State& aState) {
  Restart("Level=Off\n");
  qvLog_SetLogFunc(QVLOGLEVEL_DEBUG, Receive, nullptr);
  Repeat(aState, [](const Tuner& aTuner) { STATEMENT; });
  qvLog_SetLogFunc(0, Receive, nullptr);
  LastText::Check(aState);
});
