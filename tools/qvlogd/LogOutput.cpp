#include "tools/qvlogd/LogOutput.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "qvLog/qvLogger.h"
#include "tools/logstream/Clock.h"
#include "tools/qvlogd/BoundedQueue.h"
#include "tools/qvlogd/StandardOutput.h"

#define kLogOutput_Patience    20    // milliseconds in a turn
#define kLogOutput_RetryPause  200   // milliseconds
#define kLogOutput_ClosePause  5000  // milliseconds
#define kLogOutput_GiveUpPause 1000  // milliseconds for a writer that was told to give up

// What the loop and the writer share.
struct LogOutput::State {
  explicit State(size_t aCapacity) : mQueue(aCapacity) {}

  BoundedQueue mQueue;
  std::unique_ptr<LogTarget> mTarget;  // the writer's alone as soon as it runs
  std::thread mWriter;                 // the loop's alone

  mutable std::mutex mMutex;  // guards all below
  std::condition_variable mChanged;
  uint64 mDropped = 0;  // lines, by the writer
  bool mfReopen = false;
  bool mfGiveUp = false;
  bool mfEnded = false;
  bool mfDone = false;

  template <class Body>
  auto Locked(const Body& aBody) const {
    std::lock_guard<std::mutex> theLock(mMutex);
    return aBody();
  }
  void Run();
  void WriteBlock(const std::string& aBlock);
  bool CountedAsDropped(const std::string& aBlock, size_t aDone);
  void ReopenIfAsked();
  bool WaitUntilDone(int aMilliseconds);
};

static uint64 LogOutput_S_Lines(const char* aBytes, size_t aLength) {
  return static_cast<uint64>(std::count(aBytes, aBytes + aLength, '\n'));
}

void LogOutput::State::ReopenIfAsked() {
  bool fReopen = Locked([&] {
    bool fAsked = mfReopen;
    mfReopen = false;
    return fAsked;
  });
  if (fReopen) {
    mTarget->Reopen();
  }
}

// Drops what is left of a block that has no chance any more; false when it has one.
bool LogOutput::State::CountedAsDropped(const std::string& aBlock, size_t aDone) {
  bool fEnded = mTarget->HasEnded();
  return Locked([&] {
    mfEnded = fEnded;
    if (fEnded || mfGiveUp) {
      mDropped += LogOutput_S_Lines(aBlock.data() + aDone, aBlock.size() - aDone);
    }
    return fEnded || mfGiveUp;
  });
}

// Stays with the block until it is written, or until nothing more can be done for it.
void LogOutput::State::WriteBlock(const std::string& aBlock) {
  size_t theDone = 0;
  while (!CountedAsDropped(aBlock, theDone)) {
    theDone += mTarget->Write(aBlock.data() + theDone, aBlock.size() - theDone);
    if (theDone == aBlock.size()) {
      return;
    }
    if (!mTarget->HasEnded()) {
      mTarget->Wait(kLogOutput_RetryPause);
      ReopenIfAsked();
    }
  }
}

void LogOutput::State::Run() {
  std::string theBlock;
  for (;;) {
    bool fTaken = mQueue.Take(theBlock, -1);
    ReopenIfAsked();
    if (fTaken) {
      WriteBlock(theBlock);
    } else if (mQueue.IsClosed() && mQueue.Size() == 0) {
      break;
    }
  }
  mTarget->Close();
  Locked([&] { mfDone = true; });
  mChanged.notify_all();
}

bool LogOutput::State::WaitUntilDone(int aMilliseconds) {
  std::unique_lock<std::mutex> theLock(mMutex);
  return mChanged.wait_for(theLock, std::chrono::milliseconds(aMilliseconds), [&] { return mfDone; });
}

static bool LogOutput_S_IsTerminal(const LogOutputOptions& anOptions) {
  return anOptions.mPattern.empty() && isatty(STDOUT_FILENO) == 1;
}

static std::unique_ptr<LogTarget> LogOutput_S_MakeTarget(const LogOutputOptions& anOptions) {
  if (anOptions.mPattern.empty()) {
    return std::make_unique<StandardOutput>(STDOUT_FILENO);
  }
  return std::make_unique<LogFiles>(anOptions, qvLogger::CurrentProcessName());
}

// What stands where lines are missing.
static std::string LogOutput_S_LossLine(LogPrinter& aPrinter, uint64 aCount) {
  LogRecord theRecord;
  theRecord.mKind = LogRecordKind_Suppressed;
  theRecord.mTime = Clock_Microseconds();
  theRecord.mProcess = qvLogger::CurrentProcessName();
  theRecord.mCount = aCount;
  std::string theLine;
  aPrinter.Print(theRecord, theLine);
  if (theLine.empty()) {  // a form that leaves events out
    std::string theText = qvLogger::CurrentProcessName() + (": suppressed " + std::to_string(aCount));
    theRecord.mKind = LogRecordKind_Line;
    theRecord.mText = theText;
    theRecord.mRaw = theText;
    aPrinter.Print(theRecord, theLine);
  }
  return theLine;
}

LogOutput::LogOutput(const LogOutputOptions& anOptions)
    : LogOutput(anOptions, LogOutput_S_MakeTarget(anOptions)) {}

LogOutput::LogOutput(const LogOutputOptions& anOptions, std::unique_ptr<LogTarget> aTarget)
    : mState(std::make_shared<State>(anOptions.mQueueBytes)),
      mPrinter(anOptions.mForm, anOptions.mfColor, LogOutput_S_IsTerminal(anOptions)),
      mFeeder(
          mState->mQueue, kLogOutput_Patience,
          [](const std::string& aBlock) { return LogOutput_S_Lines(aBlock.data(), aBlock.size()); },
          [this](uint64 aCount) { return LogOutput_S_LossLine(mPrinter, aCount); }) {
  mState->mTarget = std::move(aTarget);
}

LogOutput::~LogOutput() { Close(); }

bool LogOutput::Open(std::string* aError) {
  if (!mState->mTarget->Open(aError)) {
    return false;
  }
  // Signals are for the loop. A pipe without a reader and a file that may not grow shall give errors, not
  // signals, too.
  sigset_t theAll;
  sigset_t theBefore;
  sigfillset(&theAll);
  pthread_sigmask(SIG_SETMASK, &theAll, &theBefore);
  mState->mWriter = std::thread([theState = mState] { theState->Run(); });
  pthread_sigmask(SIG_SETMASK, &theBefore, NULL);
  return true;
}

void LogOutput::Take(const LogRecord& aRecord) {
  mPrinter.Print(aRecord, mFeeder.Block());
  mFeeder.PutIfLarge();
}

void LogOutput::Flush() { mFeeder.EndTurn(); }

void LogOutput::Reopen() {
  mState->Locked([&] { mState->mfReopen = true; });
  mState->mQueue.Interrupt();
}

void LogOutput::Close() {
  if (!mState->mWriter.joinable()) {
    return;
  }
  mFeeder.Finish(kLogOutput_ClosePause);
  mState->mQueue.Close();
  if (!mState->WaitUntilDone(mFeeder.Patience())) {
    mState->Locked([&] { mState->mfGiveUp = true; });
    if (!mState->WaitUntilDone(kLogOutput_GiveUpPause)) {
      mState->mWriter.detach();  // held inside a write; it ends with the process
      return;
    }
  }
  mState->mWriter.join();
}

uint64 LogOutput::Dropped() const {
  return mFeeder.Dropped() + mState->Locked([&] { return mState->mDropped; });
}

bool LogOutput::HasEnded() const {
  return mState->Locked([&] { return mState->mfEnded; });
}
