#include "qvraTools/qvFatalError.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include <functional>
#include <string>
#include <thread>

#include "support/ChildProcess.h"
#include "support/FakeBackTrace.h"
#include "support/FatalLine.h"
#include "support/LogEcho.h"
#include "support/Sanitizers.h"

namespace {

// The call-back of the tests; it must never be heard of.
void CallBack(const char* aReason) { fprintf(stderr, "CALLED BACK with %s\n", aReason); }

// Runs aBody, which ends fatally, in a child, and expects aLine on both streams.
ChildResult ExpectFatalLine(const std::function<void()>& aBody, const std::string& aLine) {
  ChildResult theResult = RunInChild(aBody);
  EXPECT_EQ(SIGABRT, theResult.mSignal);
  EXPECT_EQ(aLine, FatalLine(theResult.mStdout));
  EXPECT_EQ(aLine, FatalLine(theResult.mStderr));
  return theResult;
}

}  // namespace

// Each test begins with a back-trace that works.
class qvFatalErrorTest : public testing::Test {
 protected:
  qvFatalErrorTest() {
    gBackTrace = FakeBackTrace();
    gBackTrace.mfActive = true;
    gBackTrace.mSymbols = {"a", "b", "c", "d", "e", "f"};
  }
  ~qvFatalErrorTest() override { gBackTrace = FakeBackTrace(); }
};
using qvFatalErrorKept = qvFatalErrorTest;

TEST_F(qvFatalErrorTest, EveryMemoryReasonIsFollowedByItsSize) {
  ExpectFatalLine([] { qvFatalError("memory:malloc", 123UL); }, "qvFatalError: memory:malloc, size=123");
  ExpectFatalLine([] { qvFatalError("memory:realloc", 0UL); }, "qvFatalError: memory:realloc, size=0");
  ExpectFatalLine([] { qvFatalError("memory:strdup", 4294967295UL); },
                  "qvFatalError: memory:strdup, size=4294967295");
  ExpectFatalLine([] { qvFatalError("memory:wcsdup", 7UL); }, "qvFatalError: memory:wcsdup, size=7");
}

TEST_F(qvFatalErrorTest, AnAssertionIsFollowedByTextFileAndLine) {
  ExpectFatalLine([] { qvFatalError("assertat", "a < b", "some/file.cpp", 42); },
                  "qvFatalError: assertat, reason 'a < b' in file 'some/file.cpp' at line '42'");
}

TEST_F(qvFatalErrorTest, AnAssertionsTextIsNoFormat) {
  ExpectFatalLine([] { qvFatalError("assertat", "a % s == %d", "%n", -1); },
                  "qvFatalError: assertat, reason 'a % s == %d' in file '%n' at line '-1'");
}

TEST_F(qvFatalErrorTest, AnyOtherReasonStandsAlone) {
  for (const char* theReason : {"something else", "", "memory", "memory:malloc2", "Memory:malloc", "assert",
                                "assertat2", "100 %s", "\xC3\xA4\xFF"}) {
    ExpectFatalLine([&] { qvFatalError(theReason); }, std::string("qvFatalError: ") + theReason);
  }
}

TEST_F(qvFatalErrorTest, ANullReasonIsUnknown) {
  ExpectFatalLine([] { qvFatalError(nullptr); }, "qvFatalError: unknown reason");
}

TEST_F(qvFatalErrorTest, TheMessageStandsOnEachStreamOnce) {
  ChildResult theResult = RunInChild([] { qvFatalError("once"); });
  EXPECT_EQ(1, FatalLineCount(theResult.mStdout));
  EXPECT_EQ(1, FatalLineCount(theResult.mStderr));
}

TEST_F(qvFatalErrorTest, ABackTraceFollowsTheMessage) {
  ChildResult theResult = RunInChild([] {
    EchoLogRecords();
    qvFatalError("traced");
  });
  const std::string kTrace = "Backtracing this thread (pid=" + std::to_string(theResult.mPid) +
                             ", depth=6):\n00: a\n01: b\n02: c\n03: d\n04: e\n05: f\n";
  EXPECT_EQ("qvFatalError: traced\n" + kTrace, theResult.mStdout);
  EXPECT_EQ(kTrace, EchoedText(theResult.mStderr));
}

TEST_F(qvFatalErrorTest, TextThatWaitsInABufferIsNotLost) {
  ChildResult theResult = RunInChild([] {
    setvbuf(stderr, nullptr, _IOFBF, 4096);
    fputs("earlier\n", stdout);
    fputs("earlier\n", stderr);
    qvFatalError("late");
  });
  EXPECT_EQ(0u, theResult.mStdout.find("earlier\nqvFatalError: late\n")) << theResult.mStdout;
  EXPECT_NE(std::string::npos, theResult.mStderr.find("earlier\n"));
  EXPECT_EQ("qvFatalError: late", FatalLine(theResult.mStderr));
}

TEST_F(qvFatalErrorTest, TheMessageIsOutBeforeTheBackTraceBegins) {
  gBackTrace.mHook = [] { raise(SIGKILL); };
  ChildResult theResult = RunInChild([] { qvFatalError("told in time"); });
  EXPECT_EQ(SIGKILL, theResult.mSignal);
  EXPECT_EQ("qvFatalError: told in time", FatalLine(theResult.mStdout));
  EXPECT_EQ("qvFatalError: told in time", FatalLine(theResult.mStderr));
}

TEST_F(qvFatalErrorTest, AnyThreadMayEndTheProcess) {
  ExpectFatalLine([] { std::thread([] { qvFatalError("from a thread"); }).join(); },
                  "qvFatalError: from a thread");
}

TEST_F(qvFatalErrorTest, AFatalErrorInsideTheBackTraceEndsTheProcessToo) {
  gBackTrace.mHook = [] { qvFatalError("second"); };
  ChildResult theResult = ExpectFatalLine([] { qvFatalError("first"); }, "qvFatalError: first");
  EXPECT_EQ("qvFatalError: first\nqvFatalError: second\n", theResult.mStdout);
  EXPECT_EQ(2, FatalLineCount(theResult.mStderr));
}

TEST_F(qvFatalErrorTest, SetCallBackStoresTheFunctionInTheRegistry) {
  char theText[40];
  snprintf(theText, sizeof(theText), "0x%08lx",
           static_cast<unsigned long>(reinterpret_cast<uintptr_t>(&CallBack)));
  qvFatalError_SetCallBack(CallBack);
  const char* theValue = getenv(("fatalerror." + std::to_string(getpid()) + ".qvra.local").c_str());
  ASSERT_NE(nullptr, theValue);
  EXPECT_STREQ(theText, theValue);
}

TEST_F(qvFatalErrorKept, TheRegisteredCallBackIsNotCalled) {
  ChildResult theResult = RunInChild([] {
    qvFatalError_SetCallBack(CallBack);  // in the variable that SetPtr writes
    qvFatalError("alone");
  });
  EXPECT_EQ(SIGABRT, theResult.mSignal);
  EXPECT_EQ(std::string::npos, theResult.mStderr.find("CALLED BACK"));
}

TEST_F(qvFatalErrorKept, ACallBackThatTheLookUpFindsIsNotCalledEither) {
  ChildResult theResult = RunInChild([] {
    setenv("fatalerror", "0x00000001", 1);  // in the variable that the look-up reads; calling it would crash
    qvFatalError("alone");
  });
  EXPECT_EQ(SIGABRT, theResult.mSignal);
  EXPECT_EQ("qvFatalError: alone", FatalLine(theResult.mStdout));
  EXPECT_NE(std::string::npos, theResult.mStdout.find("05: f\n")) << "the sequence is not cut short";
}

TEST_F(qvFatalErrorTest, AProcessWithoutAnyMemoryLeftStillSaysWhy) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer's allocator cannot be made to fail";
  }
  const struct {
    const char* mWork;
    const char* mLine;
  } kCases[] = {
      {"malloc", "qvFatalError: memory:malloc, size=11"},
      {"realloc", "qvFatalError: memory:realloc, size=12"},
      {"strdup", "qvFatalError: memory:strdup, size=13"},
      {"new", "qvFatalError: memory:malloc, size=14"},
  };
  for (const auto& theCase : kCases) {
    ChildResult theResult = RunProgram(TestProgramPath("OutOfMemory"), {theCase.mWork});
    EXPECT_EQ(SIGABRT, theResult.mSignal) << theCase.mWork;
    EXPECT_EQ(theCase.mLine, FatalLine(theResult.mStdout));
    EXPECT_EQ(theCase.mLine, FatalLine(theResult.mStderr));
  }
}

TEST_F(qvFatalErrorTest, AnAssertionWithoutAnyMemoryLeftStillSaysWhy) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer's allocator cannot be made to fail";
  }
  ChildResult theResult = RunProgram(TestProgramPath("OutOfMemory"), {"assert"});
  EXPECT_EQ(SIGABRT, theResult.mSignal);
  // The log framework cannot start: its own failure ends the process, but the first one is told as well.
  for (const std::string* theStream : {&theResult.mStdout, &theResult.mStderr}) {
    EXPECT_NE(std::string::npos,
              theStream->find("qvFatalError: assertat, reason 'no memory for this either' in file '"))
        << *theStream;
  }
}

TEST_F(qvFatalErrorTest, MutexesAndSemaphoresLeaveExhaustedMemoryToTheirCaller) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizer's allocator cannot be made to fail";
  }
  EXPECT_EQ("null\n", RunProgram(TestProgramPath("OutOfMemory"), {"mutex"}).mStdout);
  EXPECT_EQ("null\n", RunProgram(TestProgramPath("OutOfMemory"), {"semaphore"}).mStdout);
}
