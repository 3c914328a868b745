#include "tools/qvlogd/LogForwarder.h"

#include <stdio.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>

#include "qvLog/qvLogger.h"
#include "tools/logstream/Clock.h"
#include "tools/qvlogd/ForwardConnection.h"
#include "tools/qvlogd/QueueWorker.h"

#define kLogForwarder_Slice       100   // milliseconds between two looks at the flags
#define kLogForwarder_ClosePause  2000  // milliseconds
#define kLogForwarder_GiveUpPause 300   // milliseconds for a sender that was told to give up

// What the loop and the sender share.
struct LogForwarder::State : QueueWorker {
  explicit State(const LogForwarderOptions& anOptions)
      : QueueWorker(anOptions.mQueueBytes),
        mOptions(anOptions),
        mConnection(anOptions.mHost, anOptions.mPort) {}

  const LogForwarderOptions mOptions;

  ForwardConnection mConnection;  // this and the next two: the sender's alone
  int mPause = 0;                 // milliseconds to wait before the next attempt to connect
  bool mfTold = false;            // that the target cannot be reached

  uint64 mSent = 0;  // these three are guarded
  uint64 mDropped = 0;
  bool mfClosing = false;

  uint64 CountOf(const char* aBytes, size_t aLength) const {
    return SyslogFormatter_Count(mOptions.mFraming, aBytes, aLength);
  }
  void Run() override;
  void Hurry();
  void SendBlock(const std::string& aBlock);
  bool HasConnection();
  void Pause();
};

// Waits before the next attempt. The end of the collector cuts the pauses short: it is now or never.
void LogForwarder::State::Pause() {
  std::unique_lock<std::mutex> theLock(mMutex);
  bool fWasClosing = mfClosing;
  int thePause = mfClosing ? std::min(mPause, kLogForwarder_Slice) : mPause;
  mChanged.wait_for(theLock, std::chrono::milliseconds(thePause),
                    [&] { return mfGiveUp || mfClosing != fWasClosing; });
  mPause = std::min(std::max(mPause * 2, mOptions.mFirstPause), mOptions.mLongestPause);
}

// Makes one attempt where there is no connection.
bool LogForwarder::State::HasConnection() {
  if (mConnection.IsOpen()) {
    return true;
  }
  Pause();
  std::string theError;
  if (mConnection.Connect([this] { return Locked([this] { return mfGiveUp; }); }, &theError)) {
    mfTold = false;
    return true;
  }
  if (!mfTold) {
    fprintf(stderr, "%s: cannot forward to %s:%s: %s\n", qvLogger::CurrentProcessName(),
            mOptions.mHost.c_str(), mOptions.mPort.c_str(), theError.c_str());
    mfTold = true;
  }
  return false;
}

// Moves aDone on over the whole messages that end within the first aSent bytes; returns how many these are.
static uint64 LogForwarder_S_CountSent(LogFraming aFraming, const std::string& aBlock, size_t aSent,
                                       size_t* aDone) {
  uint64 theCount = 0;
  while (*aDone < aSent) {
    size_t theEnd =
        *aDone + SyslogFormatter_FrameLength(aFraming, aBlock.data() + *aDone, aBlock.size() - *aDone);
    if (theEnd > aSent) {
      break;
    }
    *aDone = theEnd;
    ++theCount;
  }
  return theCount;
}

// Stays with the block until all of it is sent or it is too late.
void LogForwarder::State::SendBlock(const std::string& aBlock) {
  size_t theDone = 0;  // whole messages
  size_t theSent = 0;  // and what the connection has of the next one
  while (theDone < aBlock.size() && !Locked([this] { return mfGiveUp; })) {
    if (!HasConnection()) {
      continue;
    }
    size_t theBytes = mConnection.Send(aBlock.data() + theSent, aBlock.size() - theSent);
    theSent += theBytes;
    uint64 theCount = LogForwarder_S_CountSent(mOptions.mFraming, aBlock, theSent, &theDone);
    Locked([&] { mSent += theCount; });
    if (!mConnection.IsOpen()) {
      theSent = theDone;
    } else if (theBytes == 0) {
      mConnection.Wait(kLogForwarder_Slice);
    } else if (theCount != 0) {
      mPause = mOptions.mFirstPause;  // a peer that hangs up at once does not get here
    }
  }
  Locked([&] { mDropped += CountOf(aBlock.data() + theDone, aBlock.size() - theDone); });
}

void LogForwarder::State::Run() {
  std::string theBlock;
  while (mQueue.Take(theBlock, -1)) {
    SendBlock(theBlock);
  }
  mConnection.Close();
}

// The loop's word that the end is near.
void LogForwarder::State::Hurry() {
  Locked([&] { mfClosing = true; });
  mChanged.notify_all();
}

bool LogForwarder_ParseTarget(const char* aText, LogForwarderOptions* aOptions) {
  std::string theText = aText;
  const std::string kScheme = "tcp://";
  size_t theColon = theText.rfind(':');
  if (theText.compare(0, kScheme.size(), kScheme) != 0 || theColon < kScheme.size()) {
    return false;
  }
  std::string theHost = theText.substr(kScheme.size(), theColon - kScheme.size());
  std::string thePort = theText.substr(theColon + 1);
  bool fLiteral = theHost.size() > 2 && theHost.front() == '[' && theHost.back() == ']';
  if (fLiteral) {
    theHost = theHost.substr(1, theHost.size() - 2);
  }
  if (theHost.empty() || theHost.find_first_of(fLiteral ? "[]/" : "[]/:") != std::string::npos ||
      thePort.empty() || thePort.size() > 5 || thePort.find_first_not_of("0123456789") != std::string::npos ||
      std::stoul(thePort) == 0 || std::stoul(thePort) > 65535) {
    return false;
  }
  aOptions->mHost = theHost;
  aOptions->mPort = thePort;
  return true;
}

static std::string LogForwarder_S_HostName() {
  char theName[256] = "";
  gethostname(theName, sizeof(theName) - 1);
  return theName;
}

static std::string LogForwarder_S_LossMessage(SyslogFormatter& aFormatter, uint64 aCount) {
  LogRecord theRecord;
  theRecord.mKind = LogRecordKind_Suppressed;
  theRecord.mTime = Clock_Microseconds();
  theRecord.mProcess = qvLogger::CurrentProcessName();
  theRecord.mCount = aCount;
  std::string theMessage;
  aFormatter.Format(theRecord, theMessage);
  return theMessage;
}

LogForwarder::LogForwarder(const LogForwarderOptions& anOptions)
    : mState(std::make_shared<State>(anOptions)),
      mFormatter(anOptions.mFraming, LogForwarder_S_HostName()),
      mFeeder(
          mState->mQueue, 0,
          [this](const std::string& aBlock) { return mState->CountOf(aBlock.data(), aBlock.size()); },
          [this](uint64 aCount) { return LogForwarder_S_LossMessage(mFormatter, aCount); }) {
  QueueWorker::Start(mState);
}

LogForwarder::~LogForwarder() { Close(); }

void LogForwarder::Take(const LogRecord& aRecord) {
  mFormatter.Format(aRecord, mFeeder.Block());
  mFeeder.PutIfLarge();
}

void LogForwarder::Flush() { mFeeder.EndTurn(); }

void LogForwarder::Close() {
  if (mState->IsRunning()) {
    mState->Hurry();
    mState->Finish(mFeeder, kLogForwarder_ClosePause, kLogForwarder_GiveUpPause);
  }
}

uint64 LogForwarder::Sent() const {
  return mState->Locked([&] { return mState->mSent; });
}

uint64 LogForwarder::Dropped() const {
  return mFeeder.Dropped() + mState->Locked([&] { return mState->mDropped; });
}
