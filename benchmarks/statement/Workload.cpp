#include "Workload.h"

#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>

static char sText[256];
static size_t sLength;
static int64_t sTexts;

void LastText::Keep(const char* aText, size_t aLength) {
  memcpy(sText, aText, aLength);
  sLength = aLength;
  ++sTexts;
}

void LastText::Check(benchmark::State& aState) {
  std::string theText(sText, sLength);
  while (!theText.empty() && theText.back() == '\n') {
    theText.pop_back();
  }
  if (sTexts != aState.iterations() || theText != STATEMENT_TEXT) {
    aState.SkipWithError("the callback got something else");
  }
  sTexts = 0;
}

std::string NewLogFile(bool afTmpfs) {
  static int sFiles = 0;
  std::string theFolder = afTmpfs ? "/dev/shm/" : ProgramFolder();
  return theFolder + "statement_benchmark." + std::to_string(getpid()) + "." + std::to_string(++sFiles) +
         ".log";
}

void CheckLogFile(benchmark::State& aState, const std::string& aPath) {
  std::ifstream theFile(aPath);
  std::string theLine;
  int64_t theLines = 0;
  while (std::getline(theFile, theLine)) {
    const size_t theStart = theLine.find(STATEMENT_TEXT);
    // A line that is missing, cut or mixed with another one is not counted; headers of the file are not
    // either.
    theLines += theStart != std::string::npos && theStart + strlen(STATEMENT_TEXT) == theLine.size();
  }
  // X  std::remove(aPath.c_str());
  if (theLines != aState.iterations() * aState.threads()) {
    aState.SkipWithError("lines are missing in the file");
  }
}

std::string ProgramFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().string() + "/";
}
