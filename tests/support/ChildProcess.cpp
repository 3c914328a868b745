#include "support/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <regex>
#include <sstream>

namespace {

constexpr int kChildTimeLimitMs = 120000;

// Reads both pipes until the child has closed them or the time limit has passed.
void DrainPipes(int aStdout, int aStderr, pid_t aChild, ChildResult* aResult) {
  struct pollfd thePolls[2] = {{aStdout, POLLIN, 0}, {aStderr, POLLIN, 0}};
  std::string* theTexts[2] = {&aResult->mStdout, &aResult->mStderr};
  int theOpenCount = 2;
  while (theOpenCount > 0) {
    int theReady = poll(thePolls, 2, kChildTimeLimitMs);
    if (theReady == 0) {
      kill(aChild, SIGKILL);
      ADD_FAILURE() << "the child process ran into the time limit";
      return;
    }
    for (int i = 0; theReady > 0 && i < 2; ++i) {
      if (thePolls[i].revents == 0) {
        continue;
      }
      char theBytes[4096];
      ssize_t theCount = read(thePolls[i].fd, theBytes, sizeof(theBytes));
      if (theCount > 0) {
        theTexts[i]->append(theBytes, static_cast<size_t>(theCount));
      } else {
        thePolls[i].fd = -1;
        --theOpenCount;
      }
    }
  }
}

ChildResult Run(const std::function<void()>& aChildBody) {
  ChildResult theResult;
  int theStdout[2];
  int theStderr[2];
  if (pipe2(theStdout, O_CLOEXEC) != 0 || pipe2(theStderr, O_CLOEXEC) != 0) {
    ADD_FAILURE() << "pipe2 failed";
    return theResult;
  }
  fflush(nullptr);
  pid_t theChild = fork();
  if (theChild == 0) {
    dup2(theStdout[1], STDOUT_FILENO);
    dup2(theStderr[1], STDERR_FILENO);
    aChildBody();
    fflush(nullptr);
    _exit(0);
  }
  close(theStdout[1]);
  close(theStderr[1]);
  theResult.mPid = theChild;
  DrainPipes(theStdout[0], theStderr[0], theChild, &theResult);
  close(theStdout[0]);
  close(theStderr[0]);
  int theStatus = 0;
  waitpid(theChild, &theStatus, 0);
  if (WIFEXITED(theStatus)) {
    theResult.mExitCode = WEXITSTATUS(theStatus);
  } else if (WIFSIGNALED(theStatus)) {
    theResult.mSignal = WTERMSIG(theStatus);
  }
  return theResult;
}

}  // namespace

ChildResult RunInChildKeepingTrace(const std::function<void()>& aBody) { return Run(aBody); }

ChildResult RunInChild(const std::function<void()>& aBody) {
  ChildResult theResult = Run(aBody);
  unlink(("/tmp/backtrace_" + std::to_string(theResult.mPid) + ".txt").c_str());
  return theResult;
}

void BecomeProgram(const std::string& aPath, const std::vector<std::string>& anArguments,
                   const std::vector<std::string>& anEnvironment) {
  for (const std::string& theSetting : anEnvironment) {
    size_t theEqual = theSetting.find('=');
    if (theEqual == std::string::npos) {
      unsetenv(theSetting.c_str());
    } else {
      setenv(theSetting.substr(0, theEqual).c_str(), theSetting.c_str() + theEqual + 1, 1);
    }
  }
  std::vector<std::string> theWords;
  std::string theWord;
  std::istringstream theEmulator(QVLOG_TEST_EMULATOR);
  while (theEmulator >> theWord) {
    theWords.push_back(theWord);
  }
  theWords.push_back(aPath);
  theWords.insert(theWords.end(), anArguments.begin(), anArguments.end());
  std::vector<char*> theArguments;
  for (std::string& theArgument : theWords) {
    theArguments.push_back(theArgument.data());
  }
  theArguments.push_back(nullptr);
  execvp(theArguments[0], theArguments.data());
  _exit(127);
}

ChildResult RunProgram(const std::string& aPath, const std::vector<std::string>& anArguments,
                       const std::vector<std::string>& anEnvironment) {
  return RunInChild([&] { BecomeProgram(aPath, anArguments, anEnvironment); });
}

std::string TestProgramPath(const std::string& aName) {
  return std::string(QVLOG_TEST_PROGRAMS) + "/" + aName;
}

std::string CopyTestProgram(const std::string& aName, const std::string& aFolder,
                            const std::string& aNewName) {
  std::string theCopy = aFolder + "/" + (aNewName.empty() ? aName : aNewName);
  std::filesystem::copy_file(TestProgramPath(aName), theCopy,
                             std::filesystem::copy_options::overwrite_existing);
  return theCopy;
}

void ExpectAssertion(const std::function<void()>& aBody, const std::string& aText,
                     const std::string& aSourceName) {
  ChildResult theResult = RunInChild(aBody);
  EXPECT_EQ(SIGABRT, theResult.mSignal) << "the assertion did not end the process";
  std::string theStart = "qvFatalError: assertat, reason '" + aText + "' in file '";
  for (const std::string* theStream : {&theResult.mStdout, &theResult.mStderr}) {
    size_t theFound = theStream->find(theStart);
    ASSERT_NE(std::string::npos, theFound) << "missing: " << theStart << "\nin: " << *theStream;
    std::string theRest = theStream->substr(theFound + theStart.size());
    theRest.resize(theRest.find('\n') + 1);
    std::smatch theMatch;
    ASSERT_TRUE(std::regex_match(theRest, theMatch, std::regex("([^']*)' at line '[0-9]+'\n"))) << theRest;
    EXPECT_NE(std::string::npos, theMatch[1].str().find(aSourceName)) << theRest;
  }
}
