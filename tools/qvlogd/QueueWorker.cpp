#include "tools/qvlogd/QueueWorker.h"

#include <signal.h>

#include <chrono>

void QueueWorker::Start(const std::shared_ptr<QueueWorker>& aWorker) {
  sigset_t theAll;
  sigset_t theBefore;
  sigfillset(&theAll);
  pthread_sigmask(SIG_SETMASK, &theAll, &theBefore);
  aWorker->mThread = std::thread([aWorker] {
    aWorker->Run();
    aWorker->Locked([&] { aWorker->mfDone = true; });
    aWorker->mChanged.notify_all();
  });
  pthread_sigmask(SIG_SETMASK, &theBefore, NULL);
}

bool QueueWorker::WaitUntilDone(int aMilliseconds) {
  std::unique_lock<std::mutex> theLock(mMutex);
  return mChanged.wait_for(theLock, std::chrono::milliseconds(aMilliseconds), [&] { return mfDone; });
}

void QueueWorker::Finish(QueueFeeder& aFeeder, int aMilliseconds, int aGiveUpTime) {
  aFeeder.Finish(aMilliseconds);
  mQueue.Close();
  if (!WaitUntilDone(aFeeder.Patience())) {
    Locked([&] { mfGiveUp = true; });
    mChanged.notify_all();
    if (!WaitUntilDone(aGiveUpTime)) {
      mThread.detach();
      return;
    }
  }
  mThread.join();
}
