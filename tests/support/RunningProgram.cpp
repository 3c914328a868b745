#include "support/RunningProgram.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>

static const int64_t kLimitMs = 60000;

static int64_t NowMs() {
  auto theNow = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::milliseconds>(theNow).count();
}

RunningProgram::RunningProgram(const std::string& aPath, const std::vector<std::string>& anArguments,
                               const std::vector<std::string>& anEnvironment) {
  int thePipes[3][2];
  for (auto& thePipe : thePipes) {
    if (pipe2(thePipe, O_CLOEXEC) != 0) {
      ADD_FAILURE() << "pipe2 failed";
      return;
    }
  }
  signal(SIGPIPE, SIG_IGN);
  pid_t theChild = fork();
  if (theChild == 0) {
    signal(SIGPIPE, SIG_DFL);
    dup2(thePipes[0][0], STDIN_FILENO);
    dup2(thePipes[1][1], STDOUT_FILENO);
    dup2(thePipes[2][1], STDERR_FILENO);
    BecomeProgram(aPath, anArguments, anEnvironment);
  }
  close(thePipes[0][0]);
  close(thePipes[1][1]);
  close(thePipes[2][1]);
  mInput = thePipes[0][1];
  mOutput = thePipes[1][0];
  mError = thePipes[2][0];
  mResult.mPid = theChild;
  mfRunning = theChild > 0;
}

RunningProgram::~RunningProgram() {
  if (mfRunning) {
    kill(mResult.mPid, SIGKILL);
    waitpid(mResult.mPid, nullptr, 0);
  }
  Close(mInput);
  Close(mOutput);
  Close(mError);
}

void RunningProgram::Close(int& aDescriptor) {
  if (aDescriptor >= 0) {
    close(aDescriptor);
    aDescriptor = -1;
  }
}

void RunningProgram::CloseInput() { Close(mInput); }
void RunningProgram::CloseOutput() { Close(mOutput); }
void RunningProgram::Signal(int aSignal) const { kill(mResult.mPid, aSignal); }

void RunningProgram::Write(const std::string& aText) {
  for (size_t theDone = 0; theDone < aText.size();) {
    ssize_t theCount = write(mInput, aText.data() + theDone, aText.size() - theDone);
    if (theCount <= 0) {
      ADD_FAILURE() << "the program does not read its standard input";
      return;
    }
    theDone += static_cast<size_t>(theCount);
  }
}

// One step; false when both streams have ended or the time is over.
bool RunningProgram::ReadMore(int64_t aDeadline) {
  struct pollfd thePolls[2] = {{mOutput, POLLIN, 0}, {mError, POLLIN, 0}};
  int64_t theTime = aDeadline - NowMs();
  if ((mOutput < 0 && mError < 0) || theTime <= 0 || poll(thePolls, 2, static_cast<int>(theTime)) <= 0) {
    return false;
  }
  int* theDescriptors[2] = {&mOutput, &mError};
  std::string* theTexts[2] = {&mResult.mStdout, &mResult.mStderr};
  for (int i = 0; i < 2; ++i) {
    if (thePolls[i].revents != 0) {
      char theBytes[4096];
      ssize_t theCount = read(*theDescriptors[i], theBytes, sizeof(theBytes));
      if (theCount > 0) {
        theTexts[i]->append(theBytes, static_cast<size_t>(theCount));
      } else {
        Close(*theDescriptors[i]);
      }
    }
  }
  return true;
}

bool RunningProgram::WaitFor(const std::string& aStream, const std::string& aText) {
  int64_t theDeadline = NowMs() + kLimitMs;
  while (aStream.find(aText) == std::string::npos) {
    if (!ReadMore(theDeadline)) {
      ADD_FAILURE() << "waited in vain for: " << aText << "\nstandard output: " << mResult.mStdout
                    << "\nstandard error: " << mResult.mStderr;
      return false;
    }
  }
  return true;
}

bool RunningProgram::WaitForOutput(const std::string& aText) { return WaitFor(mResult.mStdout, aText); }
bool RunningProgram::WaitForError(const std::string& aText) { return WaitFor(mResult.mStderr, aText); }

ChildResult RunningProgram::Wait() {
  CloseInput();
  int64_t theDeadline = NowMs() + kLimitMs;
  while (ReadMore(theDeadline)) {
  }
  if (NowMs() >= theDeadline) {
    ADD_FAILURE() << "the program ran into the time limit";
    kill(mResult.mPid, SIGKILL);
  }
  int theStatus = 0;
  waitpid(mResult.mPid, &theStatus, 0);
  mfRunning = false;
  if (WIFEXITED(theStatus)) {
    mResult.mExitCode = WEXITSTATUS(theStatus);
  } else if (WIFSIGNALED(theStatus)) {
    mResult.mSignal = WTERMSIG(theStatus);
  }
  return mResult;
}
