// QueueWorker.h - a thread behind a queue that the loop fills, and what it shares with the loop.
//
// The thread can be held in a place that nobody can call it back from: a write to a dead disk, the resolver.
// So the loop waits for its end for a bounded time and then leaves it behind, to end with the process. Both
// own the worker, by a shared pointer.
#ifndef QVLOGD_QUEUEWORKER_H
#define QVLOGD_QUEUEWORKER_H

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "tools/qvlogd/BoundedQueue.h"
#include "tools/qvlogd/QueueFeeder.h"

class QueueWorker {
 public:
  explicit QueueWorker(size_t aCapacity) : mQueue(aCapacity) {}
  virtual ~QueueWorker() = default;
  QueueWorker(const QueueWorker&) = delete;
  QueueWorker& operator=(const QueueWorker&) = delete;

  // These belong to the loop. The thread begins with all signals blocked: they are for the loop, and a pipe
  // without a reader or a file that may not grow shall give errors.
  static void Start(const std::shared_ptr<QueueWorker>& aWorker);
  bool IsRunning() const { return mThread.joinable(); }
  // Puts what aFeeder holds, closes the queue and waits at most aMilliseconds in all for the thread. Then
  // tells it to give up, and leaves it behind when it does not within aGiveUpTime milliseconds.
  void Finish(QueueFeeder& aFeeder, int aMilliseconds, int aGiveUpTime);

  // Calls aBody while the mutex is held and returns what it returns.
  template <class Body>
  auto Locked(const Body& aBody) const {
    std::lock_guard<std::mutex> theLock(mMutex);
    return aBody();
  }

  BoundedQueue mQueue;

 protected:
  // In the thread: works until the queue is closed and empty, or until it is told to give up.
  virtual void Run() = 0;

  mutable std::mutex mMutex;  // guards the flags and what the derived class says
  std::condition_variable mChanged;
  bool mfGiveUp = false;

 private:
  bool WaitUntilDone(int aMilliseconds);

  std::thread mThread;  // the loop's alone
  bool mfDone = false;
};

#endif
