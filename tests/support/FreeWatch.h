// FreeWatch.h - what the first word of a block held when the block was freed; stands in for free in the test
// program that includes it (once). The sanitizers have an allocator of their own: skip the test there.
#ifndef TESTS_SUPPORT_FREEWATCH_H
#define TESTS_SUPPORT_FREEWATCH_H

#include <semaphore.h>
#include <stdint.h>
#include <string.h>
#include <time.h>

#include <atomic>

#include "support/Sanitizers.h"

struct FreeWatch {
  std::atomic<void*> mBlock{nullptr};
  uint32_t mFirstWord = 0;
  sem_t mFreed;
};
inline FreeWatch gFreeWatch;

// From now on the next free of aBlock is watched.
inline void WatchFreeOf(void* aBlock) {
  sem_init(&gFreeWatch.mFreed, 0, 0);
  gFreeWatch.mBlock = aBlock;
}

// Waits until a thread has freed the block and gives what its first word held; 0xFFFFFFFF after a minute.
inline uint32_t FirstWordWhenFreed() {
  struct timespec theDeadline;
  clock_gettime(CLOCK_REALTIME, &theDeadline);
  theDeadline.tv_sec += 60;
  return sem_timedwait(&gFreeWatch.mFreed, &theDeadline) == 0 ? gFreeWatch.mFirstWord : 0xFFFFFFFF;
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
extern "C" void __libc_free(void*);
extern "C" void free(void* aBlock) noexcept {
  void* theWatched = aBlock;
  if (aBlock != nullptr && gFreeWatch.mBlock.compare_exchange_strong(theWatched, nullptr)) {
    memcpy(&gFreeWatch.mFirstWord, aBlock, sizeof(gFreeWatch.mFirstWord));
    sem_post(&gFreeWatch.mFreed);
  }
  __libc_free(aBlock);
}
#endif

#endif
