// FreshProcess.h - runs the body of a test in a child, for tests of things that happen once in a process.
#ifndef TESTS_SUPPORT_FRESHPROCESS_H
#define TESTS_SUPPORT_FRESHPROCESS_H

#include "support/ChildProcess.h"

// The test fails if an expectation in the body fails, or if the child ends early.
#define IN_FRESH_PROCESS(aBody)                                                           \
  do {                                                                                    \
    ChildResult theResult = RunInChild([&] aBody);                                        \
    EXPECT_EQ(0, theResult.mExitCode) << theResult.mStdout;                               \
    EXPECT_EQ(std::string::npos, theResult.mStdout.find("Failure")) << theResult.mStdout; \
  } while (0)

#endif
