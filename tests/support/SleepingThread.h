// SleepingThread.h - a thread that is expected to wait for a lock.
#ifndef TESTS_SUPPORT_SLEEPINGTHREAD_H
#define TESTS_SUPPORT_SLEEPINGTHREAD_H

#include <functional>
#include <thread>

// A thread that runs aBody. The constructor returns when the system reports that the thread sleeps, which it
// does in a lock that somebody else holds; the destructor joins.
class SleepingThread {
 public:
  explicit SleepingThread(const std::function<void()>& aBody);
  ~SleepingThread();
  SleepingThread(const SleepingThread&) = delete;
  SleepingThread& operator=(const SleepingThread&) = delete;

 private:
  std::thread mThread;
};

#endif
