// Logs from inside the logging: from a callback, from every operation of a logger and from assertions that
// fail there. The outer message must come out whole, the nested one not at all, and nobody may wait for ever.
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "faults/Experiment.h"
#include "faults/NumberedLog.h"
#include "faults/OwnProgram.h"
#include "qvLog/qvLogger.h"
#include "qvraTools/qvAssert.h"

namespace {

constexpr int kWriters = 2;
constexpr unsigned int kMessagesOfARound = 100000;  // of both writers
constexpr int kRounds = 10;
constexpr unsigned int kRoundSeconds = 300;
constexpr int kMergeAssertions = 25;  // of each kind
constexpr int kNightAssertions = 500;
constexpr unsigned int kHangSeconds = 20;

std::atomic<unsigned long> sTries{0};
std::atomic<unsigned long> sTaken{0};

void TryToLog() {
  ++sTries;
  qvLogData* theData = qvLog_Begin(QVLOGLEVEL_ERROR, 0);
  if (theData != nullptr) {
    ++sTaken;
    qvLog_Append_F("nested\n");
    qvLog_End(theData);
  }
}

void LogInCallback(void*, const qvLogData*, const char*, size_t) { TryToLog(); }

// Logs wherever it is called.
class NestingLogger : public qvLogger {
 public:
  NestingLogger() : qvLogger("Nesting", true) {
    SetOptions(OPT_NO_CONFIG);
    LockFramework();
    ChangeLevel(2);
    UnlockFramework();
  }
  bool IsModuleActive(qvLogModule) override {
    TryToLog();
    return true;
  }
  bool BeginLog(qvLogDataEx* aRecord) override {
    TryToLog();
    GenerateBeginLine(aRecord);
    return true;
  }
  void Append_S(qvLogDataEx*, const char*, size_t) override { TryToLog(); }
  void EndLog(qvLogDataEx*) override { TryToLog(); }
};

int LogInside() {
  new NestingLogger;  // the chain owns it
  qvLog_SetLogFunc(2, LogInCallback, nullptr);
  std::atomic<int> theRefused{0};
  std::thread theThreads[kWriters];
  for (int i = 0; i < kWriters; ++i) {
    theThreads[i] = std::thread([&theRefused, i] {
      for (unsigned int n = 0; n < kMessagesOfARound / kWriters; ++n) {
        theRefused += !LogNumbered(i, n);
      }
    });
  }
  for (std::thread& theThread : theThreads) {
    theThread.join();
  }
  fprintf(stderr, sTaken != 0 ? "nestedlog: %lu of %lu nested messages were taken\n" : "", sTaken.load(),
          sTries.load());
  return sTaken == 0 && theRefused == 0 && sTries > kMessagesOfARound ? 0 : 1;
}

void RunRound(Experiment* anExperiment) {
  OwnProgram theProgram("[file]\nlevel=all\nfile=out.txt\n[qvlogd]\nlevel=off\n");
  std::string theEnd = theProgram.Run({"messages"}, kRoundSeconds);
  anExperiment->Check(theEnd.empty(), "the process " + theEnd);
  NumberedLogChecker theChecker;
  theChecker.CheckLines(theProgram.Read("out.txt"));
  for (int i = 0; i < kWriters; ++i) {
    theChecker.CheckWriterIsComplete(i, kMessagesOfARound / kWriters);
  }
  for (const std::string& theFailure : theChecker.Failures()) {
    anExperiment->Failed(theFailure);
  }
  anExperiment->Tried(theChecker.MessageCount());
}

// Where the assertion fails.
enum Place { kOutside, kInCallback, kInLogger, kInCallbackOfTheAssertion, kPlaces };
const char* const kPlaceNames[] = {"outside", "in a callback", "in a logger",
                                   "in a callback, of an assertion outside"};

void FailInCallback(void*, const qvLogData*, const char*, size_t) { qvAssert(!"in a callback"); }

class FailingLogger : public NestingLogger {
 public:
  void Append_S(qvLogDataEx*, const char*, size_t) override { qvAssert(!"in a logger"); }
};

// Dies.
void FailInside(Place aPlace, const char* anErrorFile) {
  // What the assertion says goes there, and the trace nowhere.
  if (freopen(anErrorFile, "w", stderr) == nullptr || freopen("/dev/null", "w", stdout) == nullptr) {
    return;
  }
  LogNamed("before");
  if (aPlace == kInCallback || aPlace == kInCallbackOfTheAssertion) {
    qvLog_SetLogFunc(2, FailInCallback, nullptr);
  } else if (aPlace == kInLogger) {
    new FailingLogger;
  }
  if (aPlace == kInCallback || aPlace == kInLogger) {
    LogNamed("never ends");
  }
  qvAssert(!"outside");
}

void RunAssertion(Experiment* anExperiment, Place aPlace) {
  OwnProgram theProgram("[file]\nlevel=all\nfile=out.txt\n[qvlogd]\nlevel=off\n");
  pid_t theProcess =
      theProgram.Start({"assert", std::to_string(aPlace), theProgram.File("err.txt")}, kHangSeconds);
  std::string theEnd = OwnProgram::HowItEnded(theProcess);
  unlink(("/tmp/backtrace_" + std::to_string(theProcess) + ".txt").c_str());

  const char* const theText = aPlace == kInCallback ? "!\"in a callback\""
                              : aPlace == kInLogger ? "!\"in a logger\""
                                                    : "!\"outside\"";
  bool theIsSaid = theProgram.Read("err.txt").find(std::string("qvFatalError: assertat, reason '") + theText +
                                                   "' in file '") != std::string::npos;
  const std::string theLog = theProgram.Read("out.txt");
  bool theIsWhole = theLog.find(" nested\n") == std::string::npos && !theLog.empty() &&
                    theLog.back() == '\n' && theLog.find(NamedLine("before") + "\n") != std::string::npos;
  // Only a failure outside has a message of its own; the others are nested in one that never ends.
  bool theIsLogged =
      theLog.find(std::string("ASSERTION FAILED: '") + theText + "' in file '") != std::string::npos;
  anExperiment->Check(theEnd == std::string("died: ") + strsignal(SIGABRT) && theIsSaid && theIsWhole &&
                          theIsLogged == (aPlace == kOutside),
                      std::string("an assertion ") + kPlaceNames[aPlace] + " " + theEnd + ": " + theLog);
}

}  // namespace

int main(int aCount, char** anArguments) {
  if (aCount == 2 && strcmp(anArguments[1], "messages") == 0) {
    return LogInside();
  }
  if (aCount == 4 && strcmp(anArguments[1], "assert") == 0) {
    FailInside(static_cast<Place>(atoi(anArguments[2])), anArguments[3]);
    return 1;
  }
  Experiment theExperiment("nestedlog", aCount, anArguments);
  for (int i = 0; i < kRounds; ++i) {
    RunRound(&theExperiment);
  }
  const int theAssertions = theExperiment.IsNight() ? kNightAssertions : kMergeAssertions;
  for (int i = 0; i < theAssertions * kPlaces; ++i) {
    RunAssertion(&theExperiment, static_cast<Place>(i % kPlaces));
  }
  return theExperiment.Finish();
}
