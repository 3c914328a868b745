// Collector.h - the loop: takes connections, reads them in turn, obeys signals, and stops in good order.
//
// Nothing in the loop waits but the loop itself: sockets do not block, and writing and forwarding are done by
// threads of their own. When there are no descriptors or no places for another connection, it is left waiting
// in the system's queue, and the loop does not look at that queue for a while.
#ifndef QVLOGD_COLLECTOR_H
#define QVLOGD_COLLECTOR_H

#include <functional>
#include <vector>

#include "tools/qvlogd/ConnectionTable.h"
#include "tools/qvlogd/Delivery.h"
#include "tools/qvlogd/Listener.h"
#include "tools/qvlogd/Options.h"
#include "tools/qvlogd/ServiceNotifier.h"
#include "tools/qvlogd/Signals.h"

class Collector {
 public:
  // aReport is called on SIGUSR1.
  Collector(const Options& aOptions, Ledger& aLedger, Delivery& aDelivery, Signals& aSignals,
            Listeners aListeners, std::function<void()> aReport);
  ~Collector();
  Collector(const Collector&) = delete;
  Collector& operator=(const Collector&) = delete;

  // Collects until a signal says stop or the reader of standard output has gone; then reads, for a bounded
  // time, what is in the sockets.
  void Run(ServiceNotifier& aNotifier);

 private:
  void Watch(Watched& aWatched, uint32 anEvents);
  void Turn(ServiceNotifier& aNotifier);
  int NextTimeout(const ServiceNotifier& aNotifier) const;
  void Obey();
  void Accept(Listener& aListener);
  void AddConnection(int aDescriptor);
  void PauseAccepting(int64 aTime);
  void ResumeAccepting();
  void Read(Connection& aConnection);
  void Tick(int64 aNow);
  void Stop();
  void CloseListeners();
  bool ReadRest();

  const Options& mOptions;
  Ledger& mLedger;
  Delivery& mDelivery;
  LogDistributor mDistributor;
  Signals& mSignals;
  Watched mStandardOutput;
  Listeners mListeners;
  std::function<void()> mReport;
  ConnectionTable mConnections;
  std::vector<char> mBuffer;
  int mEpoll;
  int mStopSignals = 0;       // that have come
  bool mfReaderGone = false;  // nobody is left who reads standard output
  int64 mResume = 0;  // by the steady clock, when to accept again; 0: accepting; INT64_MAX: when one ends
  int64 mNextTick;    // by the steady clock
  bool mfSaidShort = false;  // the shortage of descriptors has been told
};

#endif
