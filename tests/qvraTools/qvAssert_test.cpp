#include "qvraTools/qvAssert.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stdio.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "qvLog/qvLog.h"
#include "support/ChildProcess.h"
#include "support/FatalLine.h"
#include "support/LogEcho.h"

namespace {

const char kThisSource[] = "qvAssert_test.cpp";

struct Guarded {
  uint32 _mMagicNumber;
};

// Runs aBody in a child whose log messages are echoed to its standard error.
ChildResult RunLogged(const std::function<void()>& aBody) {
  return RunInChild([&] {
    EchoLogRecords();
    aBody();
  });
}

// A log call-back that breaks a promise.
void AssertInsideTheLog(void*, const qvLogData*, const char*, size_t) { qvAssertFail("inside the log"); }

}  // namespace

// The linker sends the library's calls of qvDebug_Break here.
extern "C" void __wrap_qvDebug_Break(const char* aMessage) {
  fprintf(stdout, "BREAK '%s'\n", aMessage);
  fprintf(stderr, "BREAK '%s'\n", aMessage);
}

TEST(qvAssert, ATrueConditionDoesNothing) {
  ChildResult theResult = RunInChild([] { qvAssert(1 + 1 == 2); });
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("", theResult.mStdout);
  EXPECT_EQ("", theResult.mStderr);
}

TEST(qvAssert, TheConditionIsEvaluatedOnce) {
  int theCount = 0;
  qvAssert(++theCount == 1);
  EXPECT_EQ(1, theCount);
}

TEST(qvAssert, ItIsOneStatement) {
  bool fElse = false;
  if (fElse)
    qvAssert(false);
  else
    fElse = true;
  EXPECT_TRUE(fElse);
}

TEST(qvAssert, AFalseConditionEndsTheProcessWithItsText) {
  int theCount = 1;
  EXPECT_QV_ASSERTION(qvAssert(theCount > 5 && theCount != (int)-1), "theCount > 5 && theCount != (int)-1",
                      kThisSource);
}

TEST(qvAssert, NullIsPrintedByItsName) {
  const char* thePtr = "x";
  EXPECT_QV_ASSERTION(qvAssert(thePtr == NULL), "thePtr == NULL", kThisSource);
}

TEST(qvAssert, FailEndsTheProcessWithItsTextInAnyCase) {
  EXPECT_QV_ASSERTION(qvAssertFail("never get here"), "never get here", kThisSource);
}

TEST(qvAssert, TheMessageNamesFileAndLineOfTheFailure) {
  ChildResult theResult = RunInChild([] { _qvAssert("a text", "a/file.c", 77); });
  EXPECT_EQ(SIGABRT, theResult.mSignal);
  const char kLine[] = "qvFatalError: assertat, reason 'a text' in file 'a/file.c' at line '77'";
  EXPECT_EQ(kLine, FatalLine(theResult.mStdout));
  EXPECT_EQ(kLine, FatalLine(theResult.mStderr));
}

TEST(qvAssert, EachMacroTellsTheLineWhereItStands) {
  Guarded* theObject = nullptr;
  const int kFirstLine = __LINE__ + 2;
  const ChildResult theResults[] = {
      RunInChild([] { qvAssert(1 > 2); }),
      RunInChild([] { qvAssertFail("never get here"); }),
      RunInChild([&] { QVMAGICNUMBER_CHECK(theObject, 0x1234); }),
  };
  int theLine = kFirstLine;
  for (const ChildResult& theResult : theResults) {
    const std::string theEnd = "' at line '" + std::to_string(theLine++) + "'";
    EXPECT_NE(std::string::npos, FatalLine(theResult.mStderr).find(theEnd)) << theResult.mStderr;
  }
}

TEST(qvAssert, MagicNumberCheckPassesOnALivingObject) {
  Guarded theObject = {0x1234};
  ChildResult theResult = RunInChild([&] { QVMAGICNUMBER_CHECK(&theObject, 0x1234); });
  EXPECT_EQ(0, theResult.mExitCode);
}

TEST(qvAssert, MagicNumberCheckFailsOnNullAndOnAnyOtherNumber) {
  Guarded theDead = {0};
  Guarded* theObject = &theDead;
  const char kText[] = "((theObject) != NULL) && ((theObject)->_mMagicNumber == (0x1234))";
  EXPECT_QV_ASSERTION(QVMAGICNUMBER_CHECK(theObject, 0x1234), kText, kThisSource);
  theObject = nullptr;
  EXPECT_QV_ASSERTION(QVMAGICNUMBER_CHECK(theObject, 0x1234), kText, kThisSource);
}

TEST(qvAssert, TheFailureIsLoggedFirst) {
  ChildResult theResult = RunLogged([] { _qvAssert("a text", "a/file.c", 77); });
  std::vector<EchoedRecord> theRecords = EchoedRecords(theResult.mStderr);
  ASSERT_FALSE(theRecords.empty());
  EXPECT_EQ("ASSERTION FAILED: 'a text' in file 'a/file.c' at line '77'\n", theRecords[0].mText);
  EXPECT_EQ(1, theRecords[0].mLevel);
  EXPECT_EQ(0, theRecords[0].mModule);
  EXPECT_LT(theResult.mStderr.find("ASSERTION FAILED"), theResult.mStderr.find("qvFatalError: "));
}

TEST(qvAssert, TheLogLineComesFromLine26OfTheRoutineItself) {
  ChildResult theResult = RunLogged([] { _qvAssert("a text", "a/file.c", 77); });
  std::vector<EchoedRecord> theRecords = EchoedRecords(theResult.mStderr);
  ASSERT_FALSE(theRecords.empty());
  EXPECT_NE(std::string::npos, theRecords[0].mFile.find("qvraTools/qvAssert.")) << theRecords[0].mFile;
  EXPECT_EQ(26, theRecords[0].mLine);
}

TEST(qvAssert, ABackTraceIsLoggedAfterTheFailure) {
  ChildResult theResult = RunLogged([] { qvAssertFail("traced"); });
  std::vector<EchoedRecord> theRecords = EchoedRecords(theResult.mStderr);
  ASSERT_LE(2u, theRecords.size());
  EXPECT_EQ(0u, theRecords[1].mText.find("Backtracing this thread (pid="));
  EXPECT_NE(std::string::npos, theResult.mStdout.find("Backtracing this thread (pid="));
}

TEST(qvAssert, TheDebuggerHookIsCalledBetweenTheLogLineAndTheFatalMessage) {
  ChildResult theResult = RunLogged([] { qvAssertFail("hooked"); });
  size_t theLogLine = theResult.mStderr.find("ASSERTION FAILED: 'hooked'");
  size_t theBreak = theResult.mStderr.find("BREAK 'Assertion failed'\n");
  size_t theMessage = theResult.mStderr.find("qvFatalError: ");
  ASSERT_NE(std::string::npos, theBreak) << theResult.mStderr;
  EXPECT_LT(theLogLine, theBreak);
  EXPECT_LT(theBreak, theMessage);
  EXPECT_EQ(0u, theResult.mStdout.find("BREAK 'Assertion failed'\nqvFatalError: ")) << theResult.mStdout;
}

TEST(qvAssert, AFailureInsideALogMessageEndsTheProcess) {
  ChildResult theResult = RunInChild([] {
    qvLog_SetLogFunc(65535, AssertInsideTheLog, nullptr);
    QVXLOG_ALWAYS(QVLOGLEVEL_ERROR, QVLOG_M_DEFAULT, F("a message\n"));
  });
  EXPECT_EQ(SIGABRT, theResult.mSignal);
  EXPECT_EQ(1, FatalLineCount(theResult.mStdout));
  EXPECT_EQ(0u,
            FatalLine(theResult.mStdout).find("qvFatalError: assertat, reason 'inside the log' in file '"));
}

TEST(qvAssert, AFailureWhileAFailureIsLoggedTellsBothAndDoesNotRecurse) {
  ChildResult theResult = RunInChild([] {
    qvLog_SetLogFunc(65535, AssertInsideTheLog, nullptr);
    _qvAssert("the first", "a/file.c", 77);
  });
  EXPECT_EQ(SIGABRT, theResult.mSignal);
  for (const std::string* theStream : {&theResult.mStdout, &theResult.mStderr}) {
    EXPECT_EQ(2, FatalLineCount(*theStream)) << *theStream;
    EXPECT_EQ("qvFatalError: assertat, reason 'the first' in file 'a/file.c' at line '77'",
              FatalLine(*theStream));
    EXPECT_NE(std::string::npos,
              theStream->find("\nqvFatalError: assertat, reason 'inside the log' in file '"));
  }
}

TEST(qvAssert, AnyThreadMayFail) {
  EXPECT_QV_ASSERTION(std::thread([] { qvAssertFail("on a thread"); }).join(), "on a thread", kThisSource);
}
