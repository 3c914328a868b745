#include "Workload.h"

#include <cstdlib>

// The least that any contender has to do with the text.
static void Copy(benchmark::State& aState) {
  const std::string& theText = SettingsWith(aState.range(0)).mText;
  for (auto _ : aState) {
    char* theCopy = static_cast<char*>(malloc(theText.size()));
    benchmark::DoNotOptimize(memcpy(theCopy, theText.data(), theText.size()));
    benchmark::ClobberMemory();
    free(theCopy);
  }
}

static const Contender sRows[] = {
    Contender("load", 20, "floor: copy", Copy),
    Contender("load", 200, "floor: copy", Copy),
    Contender("load", 2000, "floor: copy", Copy),
    Contender("load", 20000, "floor: copy", Copy),
};
