// RunningProgram.h - a program that runs beside the test, which talks to it through its streams and signals.
//
// Whatever waits here waits for at most a minute and then fails the test.
#ifndef TESTS_SUPPORT_RUNNINGPROGRAM_H
#define TESTS_SUPPORT_RUNNINGPROGRAM_H

#include <string>
#include <vector>

#include "support/ChildProcess.h"

class RunningProgram {
 public:
  // As RunProgram takes them. The three standard streams are pipes to the test.
  explicit RunningProgram(const std::string& aPath, const std::vector<std::string>& anArguments = {},
                          const std::vector<std::string>& anEnvironment = {});
  ~RunningProgram();  // kills the program if it still runs
  RunningProgram(const RunningProgram&) = delete;
  RunningProgram& operator=(const RunningProgram&) = delete;

  int Pid() const { return mResult.mPid; }
  void Write(const std::string& aText);  // to its standard input
  void CloseInput();
  void CloseOutput();  // stops reading its standard output: what it writes then fails
  void Signal(int aSignal) const;

  // Waits until its standard output, from its start on, holds the text.
  bool WaitForOutput(const std::string& aText);
  bool WaitForError(const std::string& aText);
  // All that has come from its standard output so far.
  const std::string& Output() const { return mResult.mStdout; }
  const std::string& Error() const { return mResult.mStderr; }

  // Closes its standard input and waits for its end.
  ChildResult Wait();

 private:
  bool ReadMore(int64_t aDeadline);
  bool WaitFor(const std::string& aStream, const std::string& aText);
  static void Close(int& aDescriptor);

  int mInput = -1;
  int mOutput = -1;
  int mError = -1;
  bool mfRunning = false;
  ChildResult mResult;
};

#endif
