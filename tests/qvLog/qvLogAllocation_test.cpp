// What a message costs: no memory; and what happens when there is none at the start.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdio.h>
#include <stdlib.h>

#include <atomic>

#include "qvLog/qvLogger_File.h"
#include "qvLog/qvLogger_Func.h"
#include "qvLog/qvLogger_qvLogd.h"
#include "qvLog/qvMainLogger_p.h"
#include "qvOS/qvMutex_p.h"
#include "support/EnvironmentVariable.h"
#include "support/FreshProcess.h"
#include "support/LogDaemonPeer.h"
#include "support/RecordingLogger.h"

// The sanitizers bring their own malloc.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

static std::atomic<long> sAllocations{0};
static std::atomic<size_t> sFailingSize{0};  // the next block of this size cannot be had

extern "C" void* __libc_malloc(size_t aSize);
extern "C" void* __libc_realloc(void* aPtr, size_t aSize);

extern "C" void* malloc(size_t aSize) noexcept {
  ++sAllocations;
  if (aSize != 0 && aSize == sFailingSize) {
    sFailingSize = 0;
    return nullptr;
  }
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

TEST(qvLogAllocation, AMessageToALogDaemonAllocatesNothing) {
  LogDaemonPeer theDaemon;
  EnvironmentVariable theVariable("QVRALOG");
  theVariable.Set(theDaemon.Target().c_str());
  qvLogger::LockFramework();
  qvLogdLogger::sInstance->ChangeLevel(2);
  qvLogger::UnlockFramework();
  for (int i = 0; i < 2; ++i) {
    LogOne(i);  // the first message connects, and the buffer grows to the size of a message
  }
  EXPECT_TRUE(qvLogdLogger::sInstance->IsConnected());
  long theBefore = sAllocations;
  for (int i = 0; i < 10; ++i) {
    LogOne(i);
  }
  long theAfter = sAllocations;
  EXPECT_EQ(theBefore, theAfter);
}

TEST(qvLogAllocation, WithoutTheLogLockTheFirstLockOperationFailsItsAssertion) {
  EXPECT_QV_ASSERTION(
      {
        sFailingSize = sizeof(qvOSMutex);
        qvLog_ReloadConfig();
      },
      "((aMutex) != NULL) && ((aMutex)->_mMagicNumber == (0xFEEDBABE))", "qvMutex.posix.cpp");
}

TEST(qvLogAllocation, WithoutTheFormattingBufferFormattedTextIsSkippedAndTheRestIsWritten) {
  IN_FRESH_PROCESS({
    sFailingSize = 1024 + 1;
    RecordingLogger theLogger(2);
    EXPECT_EQ(0u, sFailingSize) << "the buffer was asked for";
    EXPECT_EQ(nullptr, _qvLog_gData.mFormatted);
    EXPECT_EQ(0, _qvLog_gData.mSizeofFormatted);
    EXPECT_EQ(1, _gfqvLog_gDataInitialized) << "it is not asked for again";
    qvLogData* theData = qvLog_Begin(1, 0);
    ASSERT_NE(nullptr, theData);
    qvLog_Append_F("%d", 1);
    qvLog_Append_FML("%d\n", 1);
    qvLog_Append_FN("%d", 1);
    qvLog_Append_B("bytes", 5);
    qvLog_Append_U(L"wide", 4);
    qvLog_End(theData);
    EXPECT_THAT(theLogger.mMessages, testing::ElementsAre("wide"));
  });
}

#else

TEST(qvLogAllocation, AMessageToAFileAndACallbackAllocatesNothing) {
  GTEST_SKIP() << "allocations are not counted under a sanitizer";
}

#endif
