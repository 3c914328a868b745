// Processes that fork while eight threads log and one uses the toolkit. Children log, log as grandchildren,
// exit with and without the library's end, execute a program, or come out of a callback. A child must come to
// its end within a second; every line of the parent must be in the file and with the daemon whole, once and
// in order, and every line of a child once in the file and once on a connection of its own with a UUID of its
// own.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <set>
#include <thread>

#include "faults/Experiment.h"
#include "faults/LogCollector.h"
#include "faults/NumberedLog.h"
#include "faults/OwnProgram.h"
#include "qvLog/qvLog.h"
#include "qvraTools/qvConfigFileINIBackend.h"
#include "qvraTools/qvTime.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr char kInside[] = "inside";
constexpr int kWriters = 8;
constexpr int kForkers = 2;  // they log too, between their forks
constexpr int kForksOfARound = 2000;
constexpr int kMergeRounds = 5;
constexpr int kNightRounds = 50;
constexpr unsigned int kHangSeconds = 10;  // a child that runs so long is killed
constexpr unsigned int kRoundSeconds = 300;
constexpr std::chrono::seconds kLimit(1);  // for a fork and for the child's life

// What a child does; every fifth does the same.
enum Kind { kLogs, kLogsAndExits, kExecutes, kComesOutOfACallback, kHasAChild, kKinds };

Kind KindOf(int aChild) { return static_cast<Kind>(aChild % kKinds); }

std::string NameOf(int aChild) { return "child " + std::to_string(aChild); }
std::string GrandchildOf(int aChild) { return "grandchild " + std::to_string(aChild); }

std::atomic<int> sFailures{0};

void Say(const std::string& aWhat) {
  ++sFailures;
  fprintf(stderr, "logfork: %s\n", aWhat.c_str());
}

std::atomic<bool> sfForking{true};
unsigned int sCounts[kWriters + kForkers];

void Write(int aWriter) {
  unsigned int theNumber = 0;
  for (; sfForking; ++theNumber) {
    if (!LogNumbered(aWriter, theNumber)) {
      Say("message " + std::to_string(theNumber) + " of writer " + std::to_string(aWriter) + " was refused");
    }
    if (theNumber % 16 == 15) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
  }
  sCounts[aWriter] = theNumber;
}

// What else has a lock that a child needs: settings files and the time zone.
void UseToolkit() {
  qvConfigFileBackend* theTable = qvConfigFile_INI_GetBackend();
  qvConfigFile_INI_ReleaseBackend(theTable);
  int theNow = qvTime_time(nullptr);
  qvtm theTime;
  qvTime_localtime(&theNow, &theTime);
  qvTime_mktime(&theTime);
}

void UseToolkitOften() {
  for (unsigned int i = 0; sfForking; ++i) {
    UseToolkit();
    if (i % 64 == 63) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
}

// The callback forks for the thread that asks for it.
thread_local bool sfWantsFork = false;
thread_local pid_t sForked = -1;

void ForkIfAsked(void*, const qvLogData*, const char*, size_t) {
  if (sfWantsFork) {
    sfWantsFork = false;
    sForked = fork();
  }
}

// 0 in the child. Logs one line of the forker too.
pid_t Fork(Kind aKind, int aWriter) {
  if (aKind != kComesOutOfACallback) {
    LogNumbered(aWriter, sCounts[aWriter]++);
    return fork();
  }
  sfWantsFork = true;
  LogNumbered(aWriter, sCounts[aWriter]++);
  return sForked;
}

[[noreturn]] void BeChild(int aChild) {
  alarm(kHangSeconds);
  Kind theKind = KindOf(aChild);
  if (theKind == kExecutes) {
    execl("/bin/true", "true", nullptr);
    _exit(127);
  }
  bool theIsLogged = LogNamed(NameOf(aChild));
  UseToolkit();
  if (theKind == kHasAChild) {
    pid_t theGrandchild = fork();
    if (theGrandchild == 0) {
      alarm(kHangSeconds);
      _exit(LogNamed(GrandchildOf(aChild)) ? 0 : 1);
    }
    theIsLogged = OwnProgram::HowItEnded(theGrandchild).empty() && theIsLogged;
  } else if (theKind == kLogsAndExits) {
    exit(theIsLogged ? 0 : 1);
  }
  _exit(theIsLogged ? 0 : 1);
}

void ForkMany(int aForker) {
  for (int i = aForker; i < kForksOfARound; i += kForkers) {
    Clock::time_point theStart = Clock::now();
    pid_t theChild = Fork(KindOf(i), kWriters + aForker);
    if (theChild == 0) {
      BeChild(i);
    }
    std::string theEnd = OwnProgram::HowItEnded(theChild);
    auto theTime = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - theStart);
    if (!theEnd.empty() || theTime > kLimit) {
      Say(NameOf(i) + " " + theEnd + " after " + std::to_string(theTime.count()) + " ms");
    }
  }
}

std::string CountOf(int aWriter, unsigned int aCount) {
  return "writer " + std::to_string(aWriter) + " wrote " + std::to_string(aCount);
}

int LogInside() {
  LogNamed("start");  // opens the file and the connection of the parent
  qvLog_SetLogFunc(0xFFFF, ForkIfAsked, nullptr);
  std::vector<std::thread> theWriters;
  for (int i = 0; i < kWriters; ++i) {
    theWriters.emplace_back(Write, i);
  }
  theWriters.emplace_back(UseToolkitOften);
  std::vector<std::thread> theForkers;
  for (int i = 0; i < kForkers; ++i) {
    theForkers.emplace_back(ForkMany, i);
  }
  for (std::thread& theThread : theForkers) {
    theThread.join();
  }
  sfForking = false;
  for (std::thread& theThread : theWriters) {
    theThread.join();
  }
  for (int i = 0; i < kWriters + kForkers; ++i) {
    LogNamed(CountOf(i, sCounts[i]));
  }
  return sFailures == 0 ? 0 : 1;
}

// The names that children must have logged.
std::set<std::string> NamesOfChildren() {
  std::set<std::string> theNames;
  for (int i = 0; i < kForksOfARound; ++i) {
    if (KindOf(i) != kExecutes) {
      theNames.insert(NameOf(i));
    }
    if (KindOf(i) == kHasAChild) {
      theNames.insert(GrandchildOf(i));
    }
  }
  return theNames;
}

// Each message of the parent, whole, once and in order.
void CheckParent(Experiment* anExperiment, const char* anOutput, NumberedLogChecker* aChecker) {
  int theEnds = 0;
  for (const auto& theName : aChecker->Names()) {
    int theWriter = 0;
    unsigned int theCount = 0;
    if (sscanf(theName.first.c_str(), "writer %d wrote %u", &theWriter, &theCount) == 2) {
      aChecker->CheckWriterIsComplete(theWriter, theCount);
      ++theEnds;
    }
  }
  anExperiment->Check(theEnds == kWriters + kForkers,
                      std::string(anOutput) + ": the end of a writer is missing");
  for (const std::string& theFailure : aChecker->Failures()) {
    anExperiment->Failed(std::string(anOutput) + ": " + theFailure);
  }
}

void CheckFile(Experiment* anExperiment, const std::string& aText) {
  NumberedLogChecker theChecker;
  theChecker.CheckLines(aText);
  anExperiment->Check(theChecker.StartCount() == 1, "file: opened more than once");
  CheckParent(anExperiment, "file", &theChecker);
  for (const std::string& theName : NamesOfChildren()) {
    auto theFound = theChecker.Names().find(theName);
    unsigned int theTimes = theFound != theChecker.Names().end() ? theFound->second : 0;
    anExperiment->Check(theTimes == 1, "file: " + theName + " came " + std::to_string(theTimes) + " times");
  }
}

// Takes the header off and gives its UUID; "" when it is not one without losses.
std::string TakeHeader(std::string_view* aStream) {
  const std::string_view kStart = "\nPROTOCOL: qvLogd-1.0\nUUID: ";
  const std::string_view kRest = "\nLOST: 0\nNAME: box(log started, 0 logs previously lost)\n";
  const size_t kUUID = 36;
  if (aStream->substr(0, kStart.size()) != kStart ||
      aStream->substr(kStart.size() + kUUID, kRest.size()) != kRest) {
    return "";
  }
  std::string theUUID(aStream->substr(kStart.size(), kUUID));
  aStream->remove_prefix(kStart.size() + kUUID + kRest.size());
  return theUUID;
}

void CheckDaemon(Experiment* anExperiment, const std::vector<std::string>& aStreams) {
  std::set<std::string> theUUIDs;
  std::set<std::string> theMissing = NamesOfChildren();
  for (size_t i = 0; i < aStreams.size(); ++i) {
    std::string_view theStream = aStreams[i];
    std::string theUUID = TakeHeader(&theStream);
    NumberedLogChecker theChecker;
    theChecker.CheckLines(theStream);
    if (i == 0) {
      CheckParent(anExperiment, "daemon", &theChecker);
    } else {
      bool theIsOne = theChecker.Names().size() == 1 && theChecker.MessageCount() == 0 &&
                      theChecker.FailureCount() == 0 &&
                      theMissing.erase(theChecker.Names().begin()->first) == 1;
      anExperiment->Check(theIsOne, "daemon: a connection that is not one line of one child: " + aStreams[i]);
    }
    anExperiment->Check(!theUUID.empty() && theUUIDs.insert(theUUID).second, "daemon: header of " + theUUID);
  }
  for (const std::string& theName : theMissing) {
    anExperiment->Failed("daemon: " + theName + " is missing");
  }
}

void RunRound(Experiment* anExperiment) {
  LogCollector theCollector;
  OwnProgram theProgram(
      "[file]\nlevel=all\nfile=out.txt\n[qvlogd]\nblocking=1\ntarget=" + theCollector.Target() + "\n");
  std::string theEnd = theProgram.Run({kInside}, kRoundSeconds);
  anExperiment->Tried(kForksOfARound);
  if (!theEnd.empty()) {
    anExperiment->Failed("the process " + theEnd);
  }
  CheckFile(anExperiment, theProgram.Read("out.txt"));
  CheckDaemon(anExperiment, theCollector.Finish());
}

}  // namespace

int main(int aCount, char** anArguments) {
  if (aCount == 2 && strcmp(anArguments[1], kInside) == 0) {
    return LogInside();
  }
  Experiment theExperiment("logfork", aCount, anArguments);
  const int theRounds = theExperiment.IsNight() ? kNightRounds : kMergeRounds;
  for (int i = 0; i < theRounds; ++i) {
    RunRound(&theExperiment);
  }
  return theExperiment.Finish();
}
