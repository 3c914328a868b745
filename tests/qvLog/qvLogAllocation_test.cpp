// What a message costs: no memory.

#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>

#include <atomic>

#include "qvLog/qvLogger_File.h"
#include "qvLog/qvLogger_Func.h"

// The sanitizers bring their own malloc.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

static std::atomic<long> sAllocations{0};

extern "C" void* __libc_malloc(size_t aSize);
extern "C" void* __libc_realloc(void* aPtr, size_t aSize);

extern "C" void* malloc(size_t aSize) noexcept {
  ++sAllocations;
  return __libc_malloc(aSize);
}

extern "C" void* realloc(void* aPtr, size_t aSize) noexcept {
  ++sAllocations;
  return __libc_realloc(aPtr, aSize);
}

namespace {

void Ignore(void*, const qvLogData*, const char*, size_t) {}

void LogOne(int aNumber) {
  qvLogData* theData = qvLog_Begin(1, 0);
  ASSERT_NE(nullptr, theData);
  qvLog_Append_F("message %d of %s\n", aNumber, "text");
  qvLog_Append_B("bytes", 5);
  qvLog_Append_U(L"wide\n", 5);
  qvLog_End(theData);
}

}  // namespace

TEST(qvLogAllocation, AMessageToAFileAndACallbackAllocatesNothing) {
  qvLog_SetLogFunc(2, Ignore, nullptr);
  qvFileLogger* theFileLogger = qvFileLogger::sInstance;
  qvLogger::LockFramework();
  theFileLogger->mFile = fopen("/dev/null", "w");
  theFileLogger->ChangeLevel(2);
  qvLogger::UnlockFramework();
  LogOne(
      0);  // the first message reads the module switches, and the stream and the callback get their buffers
  long theBefore = sAllocations;
  for (int i = 0; i < 10; ++i) {
    LogOne(i);
  }
  long theAfter = sAllocations;
  EXPECT_EQ(theBefore, theAfter);

  theBefore = sAllocations;
  void* volatile theBlock = malloc(1);
  theAfter = sAllocations;
  EXPECT_EQ(theBefore + 1, theAfter) << "allocations are counted";
  free(theBlock);
}

#else

TEST(qvLogAllocation, AMessageToAFileAndACallbackAllocatesNothing) {
  GTEST_SKIP() << "allocations are not counted under a sanitizer";
}

#endif
