#include "tools/qvlogd/Collector.h"

#include <errno.h>
#include <signal.h>
#include <stdio.h>
#include <string.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <string>

#include "tools/logstream/Clock.h"

static const int kEventsPerTurn = 256;
static const int kAcceptsPerTurn = 64;
static const size_t kBufferSize = 262144;  // bytes of one read
static const int64 kSecond = 1000000;      // microseconds
static const int64 kAcceptPause = 200000;  // microseconds without accepting when descriptors are short

Collector::Collector(const Options& aOptions, Ledger& aLedger, Delivery& aDelivery, Signals& aSignals,
                     Listeners aListeners, std::function<void()> aReport)
    : mOptions(aOptions),
      mLedger(aLedger),
      mDelivery(aDelivery),
      mDistributor(aOptions, aLedger, aDelivery),
      mSignals(aSignals),
      mStandardOutput(WatchedKind_Output, STDOUT_FILENO),
      mListeners(std::move(aListeners)),
      mReport(std::move(aReport)),
      mConnections(aOptions),
      mBuffer(std::min(kBufferSize, aOptions.mMaxTurn)),
      mEpoll(epoll_create1(EPOLL_CLOEXEC)),
      mNextTick(aOptions.mRate > 0 ? 0 : INT64_MAX) {
  Watch(mSignals, EPOLLIN);
  if (aOptions.mOutput.mPattern.empty()) {
    // Errors and hang-ups alone: the reader may go while there is nothing to write. Files are refused.
    Watch(mStandardOutput, 0);
  }
  ResumeAccepting();
}

Collector::~Collector() { close(mEpoll); }

void Collector::Watch(Watched& aWatched, uint32 anEvents) {
  struct epoll_event theEvent = {};
  theEvent.events = anEvents;
  theEvent.data.ptr = &aWatched;
  epoll_ctl(mEpoll, EPOLL_CTL_ADD, aWatched.Descriptor(), &theEvent);
}

void Collector::Run(ServiceNotifier& aNotifier) {
  aNotifier.Ready();
  while (mStopSignals == 0 && !mfReaderGone && !mDelivery.HasEnded()) {
    Turn(aNotifier);
  }
  aNotifier.Stopping();
  Stop();
}

void Collector::Turn(ServiceNotifier& aNotifier) {
  struct epoll_event theEvents[kEventsPerTurn];
  int theCount = epoll_wait(mEpoll, theEvents, kEventsPerTurn, NextTimeout(aNotifier));
  // First what has waited, so that it stays before what has come now.
  mConnections.HandOverDue();
  for (int i = 0; i < theCount; ++i) {
    Watched* theWatched = static_cast<Watched*>(theEvents[i].data.ptr);
    switch (theWatched->Kind()) {
      case WatchedKind_Signals:
        Obey();
        break;
      case WatchedKind_Listener:
        Accept(*static_cast<Listener*>(theWatched));
        break;
      case WatchedKind_Connection:
        Read(*static_cast<Connection*>(theWatched));
        break;
      case WatchedKind_Output:
        mfReaderGone = true;
        break;
    }
  }
  int64 theNow = Clock_Steady();
  Tick(theNow);
  aNotifier.Beat(theNow);
  mDelivery.Flush();
}

// In milliseconds, rounded up.
int Collector::NextTimeout(const ServiceNotifier& aNotifier) const {
  int64 theNext = aNotifier.NextBeat();
  if (mResume != 0) {
    theNext = std::min(theNext, mResume);
  }
  theNext = std::min(theNext, mNextTick);
  int64 theDue = mConnections.NextDue();
  int64 theWait = std::max<int64>(0, theNext - Clock_Steady());
  if (theDue >= 0) {
    theWait = std::min(theWait, theDue);
  }
  return static_cast<int>(std::min<int64>((theWait + 999) / 1000, 3600000));
}

void Collector::Tick(int64 aNow) {
  if (aNow >= mResume && mResume != 0) {
    ResumeAccepting();
  }
  if (aNow >= mNextTick) {
    mNextTick = aNow + kSecond;
    mDistributor.TellHeldBack(Clock_Microseconds(), false);
  }
}

void Collector::Obey() {
  while (int theSignal = mSignals.Next()) {
    if (theSignal == SIGHUP) {
      mDelivery.Reopen();
    } else if (theSignal == SIGUSR1) {
      mReport();
    } else {
      ++mStopSignals;
    }
  }
}

void Collector::Accept(Listener& aListener) {
  for (int i = 0; i < kAcceptsPerTurn; ++i) {
    if (mConnections.Count() >= mOptions.mMaxConnections) {
      PauseAccepting(INT64_MAX);
      return;
    }
    int theDescriptor = aListener.Accept();
    if (theDescriptor >= 0) {
      AddConnection(theDescriptor);
    } else if (errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM) {
      if (!mfSaidShort) {
        fprintf(stderr, "qvlogd: cannot take a connection: %s; it waits\n", strerror(errno));
        mfSaidShort = true;
      }
      PauseAccepting(Clock_Steady() + kAcceptPause);
      return;
    } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
      return;
    }
    // Any other error belongs to one connection that has gone before it was taken.
  }
}

void Collector::AddConnection(int aDescriptor) {
  // A sender on another machine may vanish without a word.
  int theOne = 1;
  setsockopt(aDescriptor, SOL_SOCKET, SO_KEEPALIVE, &theOne, sizeof(theOne));
  Watch(mConnections.Add(std::make_unique<Connection>(aDescriptor, mOptions.mLimits, mLedger, mDistributor)),
        EPOLLIN);
}

void Collector::PauseAccepting(int64 aTime) {
  if (mResume == 0) {
    for (const auto& theListener : mListeners) {
      epoll_ctl(mEpoll, EPOLL_CTL_DEL, theListener->Descriptor(), nullptr);
    }
  }
  mResume = aTime;
}

void Collector::ResumeAccepting() {
  mResume = 0;
  for (const auto& theListener : mListeners) {
    Watch(*theListener, EPOLLIN);
  }
}

void Collector::Read(Connection& aConnection) {
  if (aConnection.Read(mBuffer.data(), mBuffer.size(), mOptions.mMaxTurn) != ConnectionRead_Ended) {
    mConnections.HasRead(aConnection);
    return;
  }
  mConnections.Remove(aConnection);
  if (mResume == INT64_MAX) {
    ResumeAccepting();
  }
}

// A connection that has been made but not taken holds lines already. Those of an inherited socket stay for
// whoever the service manager hands it to next.
void Collector::CloseListeners() {
  for (const auto& theListener : mListeners) {
    int theDescriptor;
    while (!theListener->IsInherited() && mConnections.Count() < mOptions.mMaxConnections &&
           (theDescriptor = theListener->Accept()) >= 0) {
      AddConnection(theDescriptor);
    }
  }
  mListeners.clear();
}

// One turn of each connection; those with nothing more to read are closed. True when all are.
bool Collector::ReadRest() {
  for (Connection* theConnection : mConnections.All()) {
    if (theConnection->Read(mBuffer.data(), mBuffer.size(), mOptions.mMaxTurn) == ConnectionRead_More) {
      mConnections.HasRead(*theConnection);
    } else {
      mConnections.Remove(*theConnection);
    }
  }
  mDelivery.Flush();
  return mConnections.Count() == 0;
}

void Collector::Stop() {
  int64 theEnd = Clock_Steady() + static_cast<int64>(mOptions.mStopTime) * 1000;
  int theSignals = mStopSignals;
  CloseListeners();
  // A second signal means at once.
  while (Clock_Steady() < theEnd && mStopSignals == theSignals && !ReadRest()) {
    Obey();
  }
  for (Connection* theConnection : mConnections.All()) {
    mConnections.Remove(*theConnection);
  }
  mDistributor.TellHeldBack(Clock_Microseconds(), true);
  mDelivery.Flush();
}
