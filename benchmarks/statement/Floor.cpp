// The least that anybody has to do.

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <cstring>

#include "Workload.h"

// A gate, and something behind it that the compiler cannot leave out.
unsigned short gGate = 2;
[[gnu::noinline, gnu::cold]] static void Act(const Tuner& aTuner) { benchmark::DoNotOptimize(aTuner.mDelay); }

#define LOAD_AND_COMPARE                               \
  if (3 < __atomic_load_n(&gGate, __ATOMIC_RELAXED)) { \
    Act(aTuner);                                       \
  }

static const Contender sOffByLevel(kOffByLevel, "floor: load + compare", [](benchmark::State& aState) {
  Repeat(aState, [](const Tuner& aTuner) { STATEMENT_TEN_TIMES(LOAD_AND_COMPARE); });
});

static const Contender sOffByModule(kOffByModule, "floor: recursive lock pair", [](benchmark::State& aState) {
  pthread_mutexattr_t theAttribute;
  pthread_mutexattr_init(&theAttribute);
  pthread_mutexattr_settype(&theAttribute, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_t theMutex;
  pthread_mutex_init(&theMutex, &theAttribute);
  Repeat(aState, [&](const Tuner&) {
    pthread_mutex_lock(&theMutex);
    pthread_mutex_unlock(&theMutex);
  });
  pthread_mutex_destroy(&theMutex);
  pthread_mutexattr_destroy(&theAttribute);
});

namespace {
struct BareWrite {
  static constexpr char kLine[] = "I 14:03:07:042|0012ab34|TUNER      " STATEMENT_TEXT "\n";
  static inline int sFile = -1;

  static void Open(const char* aPath) { sFile = open(aPath, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644); }
  static void Write(const Tuner&) { benchmark::DoNotOptimize(write(sFile, kLine, sizeof(kLine) - 1)); }
  static void Close() { close(sFile); }
};
}  // namespace
static const FileRows<BareWrite> sFileRows("floor: bare write");

static const Contender sIntoCallback(kIntoCallback, "floor: memcpy", [](benchmark::State& aState) {
  char theText[] = STATEMENT_TEXT "\n";
  Repeat(aState, [&](const Tuner&) {
    benchmark::DoNotOptimize(theText);
    LastText::Keep(theText, sizeof(theText) - 1);
  });
  LastText::Check(aState);
});
