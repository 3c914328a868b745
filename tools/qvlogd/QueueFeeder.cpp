#include "tools/qvlogd/QueueFeeder.h"

#include <algorithm>
#include <chrono>

#define kQueueFeeder_Block        262144   // bytes collected before they are put within a turn
#define kQueueFeeder_LargestSpare 1048576  // bytes of memory kept for the next block

QueueFeeder::QueueFeeder(BoundedQueue& aQueue, int aPatience, Counter aCounter, LossLine aLossLine)
    : mQueue(aQueue),
      mTurnPatience(aPatience),
      mCounter(std::move(aCounter)),
      mLossLine(std::move(aLossLine)),
      mPatience(aPatience) {}

void QueueFeeder::PutIfLarge() {
  if (mBlock.size() >= kQueueFeeder_Block) {
    Put();
  }
}

void QueueFeeder::EndTurn() {
  Put();
  mPatience = mTurnPatience;
}

void QueueFeeder::Finish(int aMilliseconds) {
  mfFinishing = true;
  mPatience = aMilliseconds;
  Put();
}

// After a loss there is nothing for a while, so that one line tells it and not one for each short gap.
bool QueueFeeder::MayPut() { return mfFinishing || mQueue.Size() <= mQueue.Capacity() / 2; }

bool QueueFeeder::PutPatiently(std::string& aBlock) {
  auto theStart = std::chrono::steady_clock::now();
  bool fPut = mQueue.Put(aBlock, mPatience);
  auto theWait = std::chrono::steady_clock::now() - theStart;
  auto theMilliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(theWait).count();
  mPatience -= static_cast<int>(std::min<long long>(mPatience, theMilliseconds));
  return fPut;
}

void QueueFeeder::Put() {
  if (mUntold != 0 && MayPut()) {
    std::string theLine = mLossLine(mUntold);
    mUntold = PutPatiently(theLine) ? 0 : mUntold;
  }
  if (mUntold != 0 || !PutPatiently(mBlock)) {
    uint64 theLines = mCounter(mBlock);
    mUntold += theLines;
    mDropped += theLines;
    mBlock.clear();
  }
  if (mBlock.capacity() > kQueueFeeder_LargestSpare) {
    mBlock = std::string();
  }
}
