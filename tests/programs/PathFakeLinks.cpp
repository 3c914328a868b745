// Tells what qvPath says when the links in "/proc" give what a test wants:
//   PathFakeLinks EXE CWD PATH   where the links lead to, "-" for links that cannot be read
// Prints how often the links were read, the names that were asked for, and the executable's full path,
// directory, name and PATH normalised.
#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <string>

#include "qvOS/qvPath.h"
#include "qvraTools/qvMalloc.h"

static std::string sExeText;
static std::string sCwdText;
static std::string sNames;

// Stands before the system's readlink for the whole program.
extern "C" ssize_t readlink(const char* aPath, char* aBuffer, size_t aSize) noexcept {
  const std::string theName = aPath;
  sNames += " " + theName;
  const std::string& theText = theName.substr(theName.rfind('/') + 1) == "exe" ? sExeText : sCwdText;
  if (theText == "-") {
    errno = EACCES;
    return -1;
  }
  const size_t theLength = theText.size() < aSize ? theText.size() : aSize;
  memcpy(aBuffer, theText.data(), theLength);
  return static_cast<ssize_t>(theLength);
}

static void Print(char* aText) {
  printf("%s\n", aText != NULL ? aText : "<null>");
  qvFree(aText);
}

int main(int argc, char** argv) {
  if (argc != 4) {
    return 2;
  }
  sExeText = argv[1];
  sCwdText = argv[2];
  Print(qvPath_GetApplicationFullPath());
  Print(qvPath_GetApplicationPath(0));
  Print(qvPath_GetApplicationName(0));
  Print(qvPath_Normalize(argv[3], 0, kqvPathNormalizeMode_Native, NULL));
  printf("pid %u:%s\n", static_cast<unsigned int>(getpid()), sNames.c_str());
  // Ends without the logging framework's tear-down, which would read and write settings beside the pretended
  // executable.
  fflush(stdout);
  _exit(0);
}
