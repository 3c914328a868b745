// Sixteen threads make the first call of a process at once, each another one, in thousands of fresh
// processes; in some of them the process forks meanwhile. There must be one file logger afterwards, which
// tells that one thread has initialised; every thread must be able to log then, and nothing may stay behind
// when the framework has ended.
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <atomic>
#include <new>
#include <thread>
#include <vector>

#include "faults/Experiment.h"
#include "faults/NumberedLog.h"
#include "faults/OwnProgram.h"
#include "qvLog/qvLogger_File.h"
#include "qvLog/qvLogger_Func.h"
#include "qvLog/qvLogger_qvLogd.h"
#include "qvLog/qvMainLogger_p.h"

// All objects of the framework are made with new.
static std::atomic<int> sObjects{0};
static std::atomic<int> sFileLoggers{0};

void* operator new(size_t aSize) {
  ++sObjects;
  sFileLoggers += aSize == sizeof(qvFileLogger);
  void* theBlock = malloc(aSize);
  if (theBlock == nullptr) {
    abort();
  }
  return theBlock;
}

static void Delete(void* aBlock) {
  sObjects -= aBlock != nullptr;
  free(aBlock);
}

void operator delete(void* aBlock) noexcept { Delete(aBlock); }
void operator delete(void* aBlock, size_t) noexcept { Delete(aBlock); }

namespace {

constexpr char kInside[] = "inside";
constexpr int kThreads = 16;
constexpr unsigned int kMessages = 6;  // of each thread, when all have come through the first call
constexpr int kMergeProcesses = 1000;
constexpr int kNightProcesses = 5000;
constexpr unsigned int kHangSeconds = 20;

void Ignore(void*, const qvLogData*, const char*, size_t) {}

std::string FirstOf(int aThread) { return "first of " + std::to_string(aThread); }

// True when it was a message and was taken.
bool MakeFirstCall(int aKind, int aThread) {
  switch (aKind % 6) {
    case 0:
    case 1:
      return LogNamed(FirstOf(aThread));
    case 2:
      qvLog_WillLog(QVLOGLEVEL_ERROR, 0);
      return false;
    case 3:
      qvLog_ReloadConfig();
      return false;
    case 4:
      qvLog_SetLogFunc(2, Ignore, nullptr);
      return false;
    default:
      qvLogger_File_Init();
      return false;
  }
}

// All pass it at the same moment.
class Gate {
 public:
  explicit Gate(int aCount) : mMissing(aCount) {}
  void Pass() {
    --mMissing;
    while (mMissing > 0) {
      std::this_thread::yield();
    }
  }

 private:
  std::atomic<int> mMissing;
};

bool LogAll(int aThread) {
  bool theAreTaken = true;
  for (unsigned int i = 0; i < kMessages; ++i) {
    theAreTaken = LogNumbered(aThread, i) && theAreTaken;
  }
  return theAreTaken;
}

// Each logger once.
bool IsChainRight(bool afHasCallback) {
  int theCount = 0;
  for (qvLogger* theLogger = qvLogger::sHead; theLogger != nullptr; theLogger = theLogger->mNext) {
    ++theCount;
  }
  return qvFileLogger::sInstance != nullptr && qvLogdLogger::sInstance != nullptr &&
         (qvFuncLogger::sInstance != nullptr) == afHasCallback && theCount == (afHasCallback ? 3 : 2);
}

// The child of a fork at some moment of the first calls.
pid_t ForkAmidst(int aSeed) {
  for (volatile int i = 0; i < aSeed % 97 * 500; i = i + 1) {
  }
  pid_t theChild = fork();
  if (theChild == 0) {
    alarm(kHangSeconds);
    _exit(LogNamed("child") ? 0 : 1);
  }
  return theChild;
}

int Fail(const char* aWhat) {
  fprintf(stderr, "firstcall: %s\n", aWhat);
  return 1;
}

int CallInside(int aSeed) {
  int theObjects = sObjects;
  {
    const bool theForks = aSeed % 3 == 0;
    Gate theStart(kThreads + theForks);
    Gate theMiddle(kThreads);
    std::atomic<int> theRefused{0};
    std::vector<std::thread> theThreads;
    for (int i = 0; i < kThreads; ++i) {
      theThreads.emplace_back([&, i] {
        theStart.Pass();
        bool theIsTaken = MakeFirstCall(aSeed + i, i);
        theMiddle.Pass();
        theRefused += theIsTaken && !LogNamed(FirstOf(i) + " was taken");
        theRefused += !LogAll(i);
      });
    }
    if (theForks) {
      theStart.Pass();
      std::string theEnd = OwnProgram::HowItEnded(ForkAmidst(aSeed));
      if (!theEnd.empty()) {
        return Fail(("the child " + theEnd).c_str());
      }
    }
    for (std::thread& theThread : theThreads) {
      theThread.join();
    }
    if (theRefused != 0) {
      return Fail("messages were refused");
    }
  }
  if (sFileLoggers != 1 || !IsChainRight(true)) {
    return Fail("not each logger once");
  }
  qvLog_Term();
  return sObjects == theObjects && qvLogger::sHead == nullptr && qvMainLogger::Current() == nullptr
             ? 0
             : Fail("something stayed behind");
}

void CheckFile(Experiment* anExperiment, const std::string& aText, bool afForked, const std::string& aWhere) {
  NumberedLogChecker theChecker;
  theChecker.CheckLines(aText);
  for (int i = 0; i < kThreads; ++i) {
    theChecker.CheckWriterIsComplete(i, kMessages);
    if (theChecker.Names().count(FirstOf(i)) != theChecker.Names().count(FirstOf(i) + " was taken")) {
      anExperiment->Failed(aWhere + FirstOf(i) + " is lost, or there and was refused");
    }
  }
  if (theChecker.Names().count("child") != (afForked ? 1u : 0u)) {
    anExperiment->Failed(aWhere + "the child's line");
  }
  for (const std::string& theFailure : theChecker.Failures()) {
    anExperiment->Failed(aWhere + theFailure);
  }
}

}  // namespace

int main(int aCount, char** anArguments) {
  if (aCount == 3 && strcmp(anArguments[1], kInside) == 0) {
    return CallInside(atoi(anArguments[2]));
  }
  Experiment theExperiment("firstcall", aCount, anArguments);
  OwnProgram theProgram("[file]\nlevel=all\nfile=out.txt\nappend=1\n[qvlogd]\nlevel=off\n");
  const int theCount = theExperiment.IsNight() ? kNightProcesses : kMergeProcesses;
  for (int i = 0; i < theCount; ++i) {
    const std::string theWhere = "process " + std::to_string(i) + ": ";
    std::string theEnd = theProgram.Run({kInside, std::to_string(i)}, kHangSeconds);
    theExperiment.Check(theEnd.empty(), theWhere + theEnd);
    CheckFile(&theExperiment, theProgram.Read("out.txt"), i % 3 == 0, theWhere);
    unlink(theProgram.File("out.txt").c_str());
    unlink(theProgram.File("_qvLog.box.ini").c_str());  // so that each writes the defaults anew
  }
  return theExperiment.Finish();
}
