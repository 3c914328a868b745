#include "tools/qvlogd/LogOutput.h"

#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "qvLog/qvLogger.h"
#include "tools/qvlogd/BoundedQueue.h"
#include "tools/qvlogd/StandardOutput.h"

#define kLogOutput_Block        262144   // bytes printed before they are handed over within a turn
#define kLogOutput_LargestSpare 1048576  // bytes of memory kept for the next block
#define kLogOutput_Patience     20       // milliseconds in a turn
#define kLogOutput_RetryPause   200      // milliseconds
#define kLogOutput_ClosePause   5000     // milliseconds
#define kLogOutput_GiveUpPause  1000     // milliseconds for a writer that was told to give up

// What the loop and the writer share.
struct LogOutput::State {
  explicit State(size_t aCapacity) : mQueue(aCapacity) {}

  BoundedQueue mQueue;
  std::unique_ptr<LogTarget> mTarget;  // the writer's alone as soon as it runs
  std::thread mWriter;                 // the loop's alone

  mutable std::mutex mMutex;  // guards all below
  std::condition_variable mChanged;
  uint64 mDropped = 0;
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

LogOutput::LogOutput(const LogOutputOptions& anOptions)
    : LogOutput(anOptions, LogOutput_S_MakeTarget(anOptions)) {}

LogOutput::LogOutput(const LogOutputOptions& anOptions, std::unique_ptr<LogTarget> aTarget)
    : mState(std::make_shared<State>(anOptions.mQueueBytes)),
      mPrinter(anOptions.mForm, anOptions.mfColor, LogOutput_S_IsTerminal(anOptions)) {
  mState->mTarget = std::move(aTarget);
  mPatience = kLogOutput_Patience;
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
  mPrinter.Print(aRecord, mBlock);
  if (mBlock.size() >= kLogOutput_Block) {
    HandOver();
  }
}

void LogOutput::Flush() {
  HandOver();
  mPatience = kLogOutput_Patience;
}

// What a terminal or file shows of the lines that are missing in this place.
std::string LogOutput::LossLine() {
  struct timeval theNow;
  gettimeofday(&theNow, NULL);
  LogRecord theRecord;
  theRecord.mKind = LogRecordKind_Suppressed;
  theRecord.mTime = static_cast<int64>(theNow.tv_sec) * 1000000 + theNow.tv_usec;
  theRecord.mProcess = qvLogger::CurrentProcessName();
  theRecord.mCount = mUntold;
  std::string theLine;
  mPrinter.Print(theRecord, theLine);
  if (theLine.empty()) {  // a form that leaves events out
    std::string theText = qvLogger::CurrentProcessName() + (": suppressed " + std::to_string(mUntold));
    theRecord.mKind = LogRecordKind_Line;
    theRecord.mLevel = 'W';
    theRecord.mText = theText;
    theRecord.mRaw = theText;
    mPrinter.Print(theRecord, theLine);
  }
  return theLine;
}

// After a loss there is nothing for a while, so that one line tells it and not one for each short gap.
bool LogOutput::MayPut() { return mfClosing || mState->mQueue.Size() <= mState->mQueue.Capacity() / 2; }

void LogOutput::DropBlock() {
  uint64 theLines = LogOutput_S_Lines(mBlock.data(), mBlock.size());
  mUntold += theLines;
  mState->Locked([&] { mState->mDropped += theLines; });
  mBlock.clear();
}

bool LogOutput::PutPatiently(std::string& aBlock) {
  auto theStart = std::chrono::steady_clock::now();
  bool fPut = mState->mQueue.Put(aBlock, mPatience);
  auto theWait = std::chrono::steady_clock::now() - theStart;
  auto theMilliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(theWait).count();
  mPatience -= static_cast<int>(std::min<long long>(mPatience, theMilliseconds));
  return fPut;
}

void LogOutput::HandOver() {
  if (mUntold != 0 && MayPut()) {
    std::string theLine = LossLine();
    mUntold = PutPatiently(theLine) ? 0 : mUntold;
  }
  if (mUntold != 0 || !PutPatiently(mBlock)) {
    DropBlock();
  }
  if (mBlock.capacity() > kLogOutput_LargestSpare) {
    mBlock = std::string();
  }
}

void LogOutput::Reopen() {
  mState->Locked([&] { mState->mfReopen = true; });
  mState->mQueue.Interrupt();
}

void LogOutput::Close() {
  if (!mState->mWriter.joinable()) {
    return;
  }
  mfClosing = true;
  mPatience = kLogOutput_ClosePause;
  HandOver();
  mState->mQueue.Close();
  if (!mState->WaitUntilDone(mPatience)) {
    mState->Locked([&] { mState->mfGiveUp = true; });
    if (!mState->WaitUntilDone(kLogOutput_GiveUpPause)) {
      mState->mWriter.detach();  // held inside a write; it ends with the process
      return;
    }
  }
  mState->mWriter.join();
}

uint64 LogOutput::Dropped() const {
  return mState->Locked([&] { return mState->mDropped; });
}

bool LogOutput::HasEnded() const {
  return mState->Locked([&] { return mState->mfEnded; });
}
