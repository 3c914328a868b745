// Eight threads log numbered messages while one reloads the configuration and one registers and unregisters
// callbacks. Prints how many messages the lasting callback received, and "broken" for a text that is not
// whole.

#include <pthread.h>
#include <stdio.h>
#include <string.h>

#include <atomic>
#include <thread>
#include <vector>

#include "qvLog/qvLog.h"

#define kWriters  8
#define kMessages 250 /* of each writer */

static std::atomic<int> sWriting{kWriters};
static int sReceived = 0;

// Runs under the log lock.
static void Count(void*, const qvLogData* aData, const char* aText, size_t aLength) {
  ++sReceived;
  if (aLength == 0 || aText[aLength - 1] != '\n' || memchr(aText, '\n', aLength) != aText + aLength - 1 ||
      aData->mLevel != QVLOGLEVEL_ERROR) {
    puts("broken");
  }
}

static void Ignore(void*, const qvLogData*, const char*, size_t) {}

static void Write(int aWriter) {
  for (int i = 0; i < kMessages; ++i) {
    qvLogData* theData = qvLog_Begin(QVLOGLEVEL_ERROR, QVLOG_M_TUNER);
    if (theData == NULL) {
      puts("refused");
      continue;
    }
    qvLog_Append_F("writer %d ", aWriter);
    qvLog_Append_F("message %d of %08x\n", i, (unsigned int)(uintptr_t)pthread_self());
    qvLog_End(theData);
  }
  --sWriting;
}

int main() {
  qvLog_SetLogFunc(QVLOGLEVEL_ALL & 0xFFFF, Count, NULL);
  std::vector<std::thread> theThreads;
  for (int i = 0; i < kWriters; ++i) {
    theThreads.emplace_back(Write, i);
  }
  theThreads.emplace_back([] {
    while (sWriting > 0) {
      qvLog_ReloadConfig();
      std::this_thread::yield();
    }
  });
  theThreads.emplace_back([] {
    for (unsigned int i = 0; sWriting > 0; ++i) {
      qvLog_SetLogFunc(static_cast<qvLogLevel>(i % 3), Ignore, NULL);
      std::this_thread::yield();
    }
  });
  for (std::thread& theThread : theThreads) {
    theThread.join();
  }
  printf("%d\n", sReceived);
  return 0;
}
