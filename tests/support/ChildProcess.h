// ChildProcess.h - runs code in a child process, or a test program, and tells how it ended and what it said.
#ifndef TESTS_SUPPORT_CHILDPROCESS_H
#define TESTS_SUPPORT_CHILDPROCESS_H

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

struct ChildResult {
  int mPid = 0;
  int mExitCode = -1;  // -1 when a signal ended the child
  int mSignal = 0;     // 0 when the child exited
  std::string mStdout;
  std::string mStderr;
};

// Runs aBody in a forked child that exits with code 0 after it. The back-trace file that a dying child
// leaves in /tmp is removed. A child that runs for more than two minutes is killed.
ChildResult RunInChild(const std::function<void()>& aBody);
// The same, but the back-trace file is left to the caller.
ChildResult RunInChildKeepingTrace(const std::function<void()>& aBody);

// Runs a program (through the emulator where the target needs one) and waits for it. Each entry of
// anEnvironment is NAME=value, or NAME alone to unset it; the rest of the environment is inherited.
// A back-trace file is removed.
ChildResult RunProgram(const std::string& aPath, const std::vector<std::string>& anArguments = {},
                       const std::vector<std::string>& anEnvironment = {});

// In a forked child: makes it such a program. Does not return.
[[noreturn]] void BecomeProgram(const std::string& aPath, const std::vector<std::string>& anArguments,
                                const std::vector<std::string>& anEnvironment);

// The full path of a test program from tests/programs.
std::string TestProgramPath(const std::string& aName);

// Copies a test program into a folder, under aNewName when that is given; returns the copy's path.
std::string CopyTestProgram(const std::string& aName, const std::string& aFolder,
                            const std::string& aNewName = "");

// Expects that aBody fails the assertion with exactly this text in a source file whose path holds
// aSourceName: the fatal message on both streams, then SIGABRT.
void ExpectAssertion(const std::function<void()>& aBody, const std::string& aText,
                     const std::string& aSourceName);

#define EXPECT_QV_ASSERTION(aStatement, aText, aSourceName)   \
  do {                                                        \
    SCOPED_TRACE(#aStatement);                                \
    ExpectAssertion([&] { aStatement; }, aText, aSourceName); \
  } while (0)

#endif
