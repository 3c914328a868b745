// The lock of the back-end's table when the process forks. This file has its own free, which the library
// calls with the table while it holds the lock; the test steps in there.

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <memory>

#include "qvraTools/qvConfigFileINIBackend.h"
#include "support/Sanitizers.h"
#include "support/SleepingThread.h"

namespace {

constexpr unsigned int kHangSeconds = 30;

void* sWatchedBlock = nullptr;
std::function<void()> sOnFree;

}  // namespace

#if !QVLOG_SANITIZED
extern "C" void __libc_free(void*);
extern "C" void free(void* aBlock) noexcept {
  if (aBlock != nullptr && aBlock == sWatchedBlock) {
    sWatchedBlock = nullptr;
    sOnFree();
  }
  __libc_free(aBlock);
}
#endif

TEST(qvConfigFileINIBackendFork, AForkWaitsForTheLockSoThatTheChildCanUseTheTable) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer has its own allocator";
  }
  int theStatus = -1;
  std::unique_ptr<SleepingThread> theForker;
  qvConfigFileBackend* theTable = qvConfigFile_INI_GetBackend();
  sOnFree = [&] {
    theForker.reset(new SleepingThread([&] {
      pid_t theChild = fork();
      if (theChild == 0) {
        alarm(kHangSeconds);
        _exit(qvConfigFile_INI_GetBackend() != nullptr ? 0 : 1);
      }
      waitpid(theChild, &theStatus, 0);
    }));
  };
  sWatchedBlock = theTable;
  qvConfigFile_INI_ReleaseBackend(theTable);
  ASSERT_NE(nullptr, theForker) << "the last release frees the table";
  theForker.reset();
  EXPECT_EQ(0, theStatus);
}
