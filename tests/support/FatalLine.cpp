#include "support/FatalLine.h"

namespace {

const char kStart[] = "qvFatalError: ";

// The place of the next fatal line from aFrom on; npos when there is none.
size_t FindFatalLine(const std::string& aText, size_t aFrom) {
  size_t theFound = aText.find(kStart, aFrom);
  while (theFound != std::string::npos && theFound != 0 && aText[theFound - 1] != '\n') {
    theFound = aText.find(kStart, theFound + 1);
  }
  return theFound != std::string::npos && aText.find('\n', theFound) != std::string::npos ? theFound
                                                                                          : std::string::npos;
}

}  // namespace

std::string FatalLine(const std::string& aStreamText) {
  size_t theFound = FindFatalLine(aStreamText, 0);
  return theFound == std::string::npos
             ? std::string()
             : aStreamText.substr(theFound, aStreamText.find('\n', theFound) - theFound);
}

int FatalLineCount(const std::string& aStreamText) {
  int theCount = 0;
  for (size_t theFound = FindFatalLine(aStreamText, 0); theFound != std::string::npos;
       theFound = FindFatalLine(aStreamText, theFound + 1)) {
    ++theCount;
  }
  return theCount;
}
