#include "tools/qvlogd/BoundedQueue.h"

#include <chrono>

// Small blocks are joined up to this size: one write instead of many, but still small enough that room comes
// back in small steps while the taker works.
#define kBoundedQueue_JoinedBlock 262144  // bytes

BoundedQueue::BoundedQueue(size_t aCapacity) : mCapacity(aCapacity) {}

bool BoundedQueue::HasRoomFor(size_t aLength) const {
  return mSize == 0 || (aLength <= mCapacity && mSize <= mCapacity - aLength);
}

void BoundedQueue::Append(std::string& aBlock) {
  mSize += aBlock.size();
  if (!mBlocks.empty() && mBlocks.back().size() + aBlock.size() <= kBoundedQueue_JoinedBlock) {
    mBlocks.back() += aBlock;
    aBlock.clear();
    return;
  }
  mBlocks.push_back(std::move(aBlock));
  aBlock = std::move(mSpare);
  mSpare = std::string();
  aBlock.clear();
}

bool BoundedQueue::Put(std::string& aBlock, int aMilliseconds) {
  if (aBlock.empty()) {
    return true;
  }
  std::unique_lock<std::mutex> theLock(mMutex);
  mDrained.wait_for(theLock, std::chrono::milliseconds(aMilliseconds),
                    [&] { return mfClosed || HasRoomFor(aBlock.size()); });
  if (mfClosed || !HasRoomFor(aBlock.size())) {
    return false;
  }
  Append(aBlock);
  theLock.unlock();
  mFilled.notify_one();
  return true;
}

bool BoundedQueue::Take(std::string& aBlock, int aMilliseconds) {
  aBlock.clear();
  std::unique_lock<std::mutex> theLock(mMutex);
  auto theEnd = [&] { return mfClosed || mfInterrupted || !mBlocks.empty(); };
  if (aMilliseconds < 0) {
    mFilled.wait(theLock, theEnd);
  } else {
    mFilled.wait_for(theLock, std::chrono::milliseconds(aMilliseconds), theEnd);
  }
  bool fInterrupted = mfInterrupted && !mfClosed;
  mfInterrupted = false;
  if (fInterrupted || mBlocks.empty()) {
    return false;
  }
  if (aBlock.capacity() <= kBoundedQueue_JoinedBlock) {
    mSpare.swap(aBlock);
  }
  aBlock = std::move(mBlocks.front());
  mBlocks.pop_front();
  mSize -= aBlock.size();
  theLock.unlock();
  mDrained.notify_one();
  return true;
}

void BoundedQueue::Interrupt() {
  {
    std::lock_guard<std::mutex> theLock(mMutex);
    mfInterrupted = true;
  }
  mFilled.notify_one();
}

void BoundedQueue::Close() {
  {
    std::lock_guard<std::mutex> theLock(mMutex);
    mfClosed = true;
  }
  mFilled.notify_one();
  mDrained.notify_one();
}

bool BoundedQueue::IsClosed() {
  std::lock_guard<std::mutex> theLock(mMutex);
  return mfClosed;
}

size_t BoundedQueue::Size() {
  std::lock_guard<std::mutex> theLock(mMutex);
  return mSize;
}
