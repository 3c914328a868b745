// QueueFeeder.h - the loop's end of a queue: collects lines into blocks and puts these into the queue.
//
// When the queue is full, the feeder waits for a moment and then drops the block; from then on everything is
// dropped until half of the queue is free again. Then one line says in that place how many are missing.
#ifndef QVLOGD_QUEUEFEEDER_H
#define QVLOGD_QUEUEFEEDER_H

#include <functional>
#include <string>

#include "qvOS/qvTypes.h"
#include "tools/qvlogd/BoundedQueue.h"

class QueueFeeder {
 public:
  using Counter = std::function<uint64(const std::string& aBlock)>;  // how many lines a block holds
  using LossLine = std::function<std::string(uint64 aCount)>;        // the line that tells the loss
  // aPatience: milliseconds to wait for room in a turn of the loop.
  QueueFeeder(BoundedQueue& aQueue, int aPatience, Counter aCounter, LossLine aLossLine);

  std::string& Block() { return mBlock; }  // where lines are appended
  void PutIfLarge();                       // after each line
  void EndTurn();                          // puts what there is
  void Finish(int aMilliseconds);          // the same at the very end, waiting that long for room

  // How many milliseconds Finish has left.
  int Patience() const { return mPatience; }
  uint64 Dropped() const { return mDropped; }  // lines

 private:
  bool MayPut();
  bool PutPatiently(std::string& aBlock);
  void Put();

  BoundedQueue& mQueue;
  const int mTurnPatience;
  const Counter mCounter;
  const LossLine mLossLine;
  std::string mBlock;
  uint64 mDropped = 0;
  uint64 mUntold = 0;  // dropped lines no line has told yet
  int mPatience;       // milliseconds left to wait for room
  bool mfFinishing = false;
};

#endif
