// FakeBackTrace.h - stands in for the system's backtrace and backtrace_symbols in the test program that
// includes it (once): the frames that a test needs, wherever it runs.
#ifndef TESTS_SUPPORT_FAKEBACKTRACE_H
#define TESTS_SUPPORT_FAKEBACKTRACE_H

#include <dlfcn.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <string>
#include <vector>

struct FakeBackTrace {
  bool mfActive = false;              // false: the system's own functions answer
  std::vector<std::string> mSymbols;  // one a frame; frame n has the address 0x1000 + n
  bool mfSymbolsFail = false;         // no symbol can be resolved
  void (*mHook)() = nullptr;          // called before symbols are resolved
  int mAskedFrames = -1;              // how many frames the last call asked for
};
inline FakeBackTrace gBackTrace;

extern "C" int backtrace(void** aFrames, int aMaxCount) {
  gBackTrace.mAskedFrames = aMaxCount;
  if (!gBackTrace.mfActive) {
    using Function = int (*)(void**, int);
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, "backtrace"))(aFrames, aMaxCount);
  }
  int theCount = 0;
  for (; theCount < aMaxCount && theCount < static_cast<int>(gBackTrace.mSymbols.size()); ++theCount) {
    aFrames[theCount] = reinterpret_cast<void*>(static_cast<uintptr_t>(0x1000 + theCount));
  }
  return theCount;
}

extern "C" char** backtrace_symbols(void* const* aFrames, int aCount) noexcept {
  if (gBackTrace.mHook != nullptr) {
    gBackTrace.mHook();
  }
  if (gBackTrace.mfSymbolsFail) {
    return nullptr;
  }
  if (!gBackTrace.mfActive) {
    using Function = char** (*)(void* const*, int);
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, "backtrace_symbols"))(aFrames, aCount);
  }
  // One block, as the system gives it: the pointers, then the texts. Words of the stack are "word".
  size_t theSize = static_cast<size_t>(aCount) * sizeof(char*);
  std::vector<std::string> theTexts;
  for (int i = 0; i < aCount; ++i) {
    uintptr_t theFrame = reinterpret_cast<uintptr_t>(aFrames[i]) - 0x1000;
    theTexts.push_back(theFrame < gBackTrace.mSymbols.size() ? gBackTrace.mSymbols[theFrame] : "word");
    theSize += theTexts.back().size() + 1;
  }
  char** theSymbols = static_cast<char**>(malloc(theSize));
  char* theText = reinterpret_cast<char*>(theSymbols + aCount);
  for (int i = 0; i < aCount; ++i) {
    memcpy(theText, theTexts[static_cast<size_t>(i)].c_str(), theTexts[static_cast<size_t>(i)].size() + 1);
    theSymbols[i] = theText;
    theText += theTexts[static_cast<size_t>(i)].size() + 1;
  }
  return theSymbols;
}

#endif
