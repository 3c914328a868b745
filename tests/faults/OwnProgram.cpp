#include "faults/OwnProgram.h"

#include <signal.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

OwnProgram::OwnProgram(const std::string& aSettings, const std::string& aProgram) {
  std::filesystem::copy_file(aProgram, File("box"));
  WriteWholeFile(File("qvLog.box.ini"), aSettings);
}

pid_t OwnProgram::Start(const std::vector<std::string>& anArguments, unsigned int aSeconds) const {
  std::string theProgram = File("box");
  std::vector<std::string> theWords = anArguments;
  std::vector<char*> theArguments = {theProgram.data()};
  for (std::string& theWord : theWords) {
    theArguments.push_back(theWord.data());
  }
  theArguments.push_back(nullptr);
  pid_t theProcess = fork();
  if (theProcess == 0) {
    alarm(aSeconds);  // outlasts the exec
    execv(theProgram.c_str(), theArguments.data());
    _exit(127);
  }
  return theProcess;
}

std::string OwnProgram::HowItEnded(pid_t aProcess) {
  int theStatus = 0;
  if (waitpid(aProcess, &theStatus, 0) != aProcess) {
    return "was not there";
  }
  if (WIFSIGNALED(theStatus)) {
    return WTERMSIG(theStatus) == SIGALRM ? "hung" : std::string("died: ") + strsignal(WTERMSIG(theStatus));
  }
  return WEXITSTATUS(theStatus) == 0 ? "" : "ended with code " + std::to_string(WEXITSTATUS(theStatus));
}
