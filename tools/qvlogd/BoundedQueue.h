// BoundedQueue.h - bytes on their way from the collector's loop to a thread that may have to wait for a disk
// or a peer.
//
// One thread puts, one takes. Putting never waits.
#ifndef QVLOGD_BOUNDEDQUEUE_H
#define QVLOGD_BOUNDEDQUEUE_H

#include <condition_variable>
#include <mutex>
#include <string>

class BoundedQueue {
 public:
  explicit BoundedQueue(size_t aCapacity);

  // Appends a block of whole lines, or does nothing and returns false when it does not fit.
  bool Put(const std::string& aBlock);
  // Waits at most aMilliseconds (-1: without limit) for bytes and takes all that are there into aBlock
  // (replacing what it held). False when none came or the queue is closed and empty.
  bool Take(std::string& aBlock, int aMilliseconds);
  void Close();  // wakes the taker; what is there can still be taken
  size_t Size();

 private:
  size_t mCapacity;
  std::mutex mMutex;
  std::condition_variable mFilled;
  std::string mBytes;
  bool mfClosed = false;
};

#endif
