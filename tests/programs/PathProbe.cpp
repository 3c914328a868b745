// Tells what qvPath says in a program of its own. The arguments are commands, carried out in order; each
// answer is a line.
//   chdir DIR       changes the working directory
//   full            the full path of the executable
//   path            its directory
//   name            its name
//   bare            its directory and its name, each asked for without an extension
//   normalize PATH  PATH in the native mode without an anchor
//   dirs PATH       whether CreatePath makes the directory PATH
//   race            whether eight threads that ask at once for the first time all get the same path
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "qvOS/qvDir.h"
#include "qvOS/qvPath.h"
#include "qvraTools/qvMalloc.h"

static void Print(char* aText) {
  printf("%s\n", aText != NULL ? aText : "<null>");
  qvFree(aText);
}

static bool AskInEightThreads() {
  constexpr size_t kThreadCount = 8;
  std::atomic<size_t> theArrived{0};
  std::vector<std::string> thePaths(kThreadCount);
  std::vector<std::thread> theThreads;
  for (size_t i = 0; i < kThreadCount; ++i) {
    theThreads.emplace_back([&theArrived, &thePaths, i] {
      ++theArrived;
      while (theArrived < kThreadCount) {
        std::this_thread::yield();
      }
      char* thePath = qvPath_GetApplicationFullPath();
      thePaths[i] = thePath;
      qvFree(thePath);
    });
  }
  for (std::thread& theThread : theThreads) {
    theThread.join();
  }
  char* theExpected = qvPath_GetApplicationFullPath();
  bool theyAgree = theExpected[0] != '\0';
  for (const std::string& thePath : thePaths) {
    theyAgree = theyAgree && thePath == theExpected;
  }
  qvFree(theExpected);
  return theyAgree;
}

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    const std::string theCommand = argv[i];
    if (theCommand == "chdir") {
      if (chdir(argv[++i]) != 0) {
        return 1;
      }
    } else if (theCommand == "full") {
      Print(qvPath_GetApplicationFullPath());
    } else if (theCommand == "path") {
      Print(qvPath_GetApplicationPath(0));
    } else if (theCommand == "name") {
      Print(qvPath_GetApplicationName(0));
    } else if (theCommand == "bare") {
      Print(qvPath_GetApplicationPath(1));
      Print(qvPath_GetApplicationName(1));
    } else if (theCommand == "normalize") {
      Print(qvPath_Normalize(argv[++i], 0, kqvPathNormalizeMode_Native, NULL));
    } else if (theCommand == "dirs") {
      printf("%d\n", qvDir_CreatePath(argv[++i]));
    } else if (theCommand == "race") {
      printf("%s\n", AskInEightThreads() ? "agreed" : "differed");
    } else {
      return 2;
    }
  }
  return 0;
}
