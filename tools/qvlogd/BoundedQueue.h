// BoundedQueue.h - bytes on their way from the collector's loop to a thread that may have to wait for a disk
// or a peer.
//
// One thread puts, one takes. Blocks go through whole: a taker gets one block or several joined ones.
#ifndef QVLOGD_BOUNDEDQUEUE_H
#define QVLOGD_BOUNDEDQUEUE_H

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>

class BoundedQueue {
 public:
  // aCapacity: bytes. What the taker holds does not count.
  explicit BoundedQueue(size_t aCapacity);

  // Hands over a block and leaves aBlock empty. Waits at most aMilliseconds for room; false, with aBlock as
  // it was, when there is none then or the queue is closed. An empty queue has room for any block, so that a
  // block that is larger than the queue is not stuck for ever.
  bool Put(std::string& aBlock, int aMilliseconds = 0);
  // Waits at most aMilliseconds (-1: without limit) for a block, which replaces what aBlock held. False when
  // none came, after Interrupt, and when the queue is closed and empty.
  bool Take(std::string& aBlock, int aMilliseconds);

  void Interrupt();  // ends the taker's waiting, this one or its next one
  void Close();      // ends all waiting; what is there can still be taken
  bool IsClosed();
  size_t Size();  // bytes
  size_t Capacity() const { return mCapacity; }

 private:
  bool HasRoomFor(size_t aLength) const;
  void Append(std::string& aBlock);

  const size_t mCapacity;
  std::mutex mMutex;
  std::condition_variable mFilled;
  std::condition_variable mDrained;
  std::deque<std::string> mBlocks;
  std::string mSpare;  // an emptied block, whose memory the next one gets
  size_t mSize = 0;
  bool mfInterrupted = false;
  bool mfClosed = false;
};

#endif
