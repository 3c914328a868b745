#include "tools/qvlogd/LogOutput.h"

#include <unistd.h>

#include <algorithm>

#include "qvLog/qvLogger.h"
#include "tools/logstream/Clock.h"
#include "tools/qvlogd/QueueWorker.h"
#include "tools/qvlogd/StandardOutput.h"

#define kLogOutput_Patience    20    // milliseconds in a turn
#define kLogOutput_RetryPause  200   // milliseconds
#define kLogOutput_ClosePause  5000  // milliseconds
#define kLogOutput_GiveUpPause 1000  // milliseconds for a writer that was told to give up

// What the loop and the writer share.
struct LogOutput::State : QueueWorker {
  explicit State(size_t aCapacity) : QueueWorker(aCapacity) {}

  std::unique_ptr<LogTarget> mTarget;  // the writer's alone as soon as it runs

  uint64 mDropped = 0;  // lines, by the writer; this and the flags are guarded
  bool mfReopen = false;
  bool mfEnded = false;

  void Run() override;
  void WriteBlock(const std::string& aBlock);
  bool CountedAsDropped(const std::string& aBlock, size_t aDone);
  void ReopenIfAsked();
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
  QueueWorker::Start(mState);
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
  if (mState->IsRunning()) {
    mState->Finish(mFeeder, kLogOutput_ClosePause, kLogOutput_GiveUpPause);
  }
}

uint64 LogOutput::Dropped() const {
  return mFeeder.Dropped() + mState->Locked([&] { return mState->mDropped; });
}

bool LogOutput::HasEnded() const {
  return mState->Locked([&] { return mState->mfEnded; });
}
