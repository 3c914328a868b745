// Eight threads log in every form to a file, a callback and a log daemon at once, while the configuration is
// reloaded every 10 ms and other callbacks come and go. Every message must come out of all three whole, once
// and in the order of its thread. Runs in rounds of fresh processes, and gives no output a reason to lose
// anything: the daemon reads, and is waited for.
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "faults/Experiment.h"
#include "faults/LogCollector.h"
#include "faults/NumberedLog.h"
#include "faults/OwnProgram.h"
#include "qvLog/qvLog.h"

namespace {

constexpr int kWriters = 8;
constexpr unsigned int kMessagesOfARound = 6000;  // of each writer
constexpr auto kReloadPause = std::chrono::milliseconds(10);
constexpr unsigned int kHangSeconds = 120;
constexpr std::chrono::seconds kMergeTime(60);
constexpr std::chrono::minutes kNightTime(10);
constexpr char kInside[] = "inside";

// The callback that stays. Runs under the log lock.
NumberedLogChecker sReceived;

void Check(void*, const qvLogData*, const char* aText, size_t aLength) {
  sReceived.CheckMessage(std::string_view(aText, aLength));
}

// Those that come and go: each sees some messages, all of them whole.
std::atomic<unsigned int> sBroken{0};

template <int theIndex>
void Look(void* aCookie, const qvLogData* aData, const char* aText, size_t aLength) {
  if (aCookie != &sBroken || aData->mLevel != QVLOGLEVEL_ERROR || aLength == 0 ||
      aText[aLength - 1] != '\n') {
    ++sBroken;
  }
}

std::atomic<int> sWriting{kWriters};
std::atomic<unsigned int> sRefused{0};

void Reload() {
  while (sWriting > 0) {
    qvLog_ReloadConfig();
    std::this_thread::sleep_for(kReloadPause);
  }
}

void ComeAndGo() {
  const qvLog_LogFunc kVisitors[] = {Look<0>, Look<1>, Look<2>};
  for (unsigned int i = 0; sWriting > 0; ++i) {
    qvLog_SetLogFunc(static_cast<qvLogLevel>(i % 4), kVisitors[i % 3], &sBroken);
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
}

void Write(int aWriter) {
  for (unsigned int i = 0; i < kMessagesOfARound; ++i) {
    sRefused += !LogNumbered(aWriter, i);
  }
  --sWriting;
}

// One round.
int LogInside() {
  qvLog_SetLogFunc(0xFFFF, Check, nullptr);
  std::vector<std::thread> theThreads;
  for (int i = 0; i < kWriters; ++i) {
    theThreads.emplace_back(Write, i);
  }
  theThreads.emplace_back(Reload);
  theThreads.emplace_back(ComeAndGo);
  for (std::thread& theThread : theThreads) {
    theThread.join();
  }
  for (int i = 0; i < kWriters; ++i) {
    sReceived.CheckWriterIsComplete(i, kMessagesOfARound);
  }
  for (const std::string& theFailure : sReceived.Failures()) {
    fprintf(stderr, "logthreads: callback: %s\n", theFailure.c_str());
  }
  fprintf(stderr, sBroken + sRefused != 0 ? "logthreads: %u broken, %u refused\n" : "", sBroken.load(),
          sRefused.load());
  return sReceived.FailureCount() + sBroken + sRefused == 0 ? 0 : 1;
}

void CheckOutput(Experiment* anExperiment, const char* aName, NumberedLogChecker* aChecker) {
  for (int i = 0; i < kWriters; ++i) {
    aChecker->CheckWriterIsComplete(i, kMessagesOfARound);
  }
  for (const std::string& theFailure : aChecker->Failures()) {
    anExperiment->Failed(std::string(aName) + ": " + theFailure);
  }
  anExperiment->Tried(aChecker->MessageCount());
}

// Takes the header off; false when it is not one without losses.
bool TakeHeader(std::string_view* aStream) {
  const std::string_view kStart = "\nPROTOCOL: qvLogd-1.0\nUUID: ";
  const std::string_view kRest = "\nLOST: 0\nNAME: box(log started, 0 logs previously lost)\n";
  const size_t kUUID = 36;
  if (aStream->substr(0, kStart.size()) != kStart ||
      aStream->substr(kStart.size() + kUUID, kRest.size()) != kRest) {
    return false;
  }
  aStream->remove_prefix(kStart.size() + kUUID + kRest.size());
  return true;
}

void RunRound(Experiment* anExperiment) {
  LogCollector theCollector;
  OwnProgram theProgram(
      "[file]\nlevel=all\nfile=out.txt\n[qvlogd]\nblocking=1\ntarget=" + theCollector.Target() + "\n");
  std::string theEnd = theProgram.Run({kInside}, kHangSeconds);
  anExperiment->Check(theEnd.empty(), "the process " + theEnd);

  NumberedLogChecker theFile;
  theFile.CheckLines(theProgram.Read("out.txt"));
  anExperiment->Check(theFile.StartCount() == 1, "file: opened more than once");
  CheckOutput(anExperiment, "file", &theFile);

  NumberedLogChecker theDaemon;
  for (std::string_view theStream : theCollector.Finish()) {
    anExperiment->Check(TakeHeader(&theStream), "daemon: no header");
    theDaemon.CheckLines(theStream);
  }
  CheckOutput(anExperiment, "daemon", &theDaemon);
}

}  // namespace

int main(int aCount, char** anArguments) {
  if (aCount == 2 && strcmp(anArguments[1], kInside) == 0) {
    return LogInside();
  }
  Experiment theExperiment("logthreads", aCount, anArguments);
  const auto theStart = std::chrono::steady_clock::now();
  const std::chrono::seconds theTime = theExperiment.IsNight() ? kNightTime : kMergeTime;
  while (std::chrono::steady_clock::now() - theStart < theTime) {
    RunRound(&theExperiment);
  }
  return theExperiment.Finish();
}
