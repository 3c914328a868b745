#ifndef _BENCHMARKS_FORMAT_WORKLOAD_H
#define _BENCHMARKS_FORMAT_WORKLOAD_H

#include "Contender.h"

#include <cstddef>

// Registers all rows for a contender. aPrint is called as aPrint(buffer, size, format, arguments...).
#define FORMAT_ROW(ROW, NAME, PRINT, ...)                                    \
  Contender(ROW, NAME, [](benchmark::State& aState) {                        \
    char theText[512];                                                       \
    for (auto _ : aState) {                                                  \
      benchmark::DoNotOptimize(PRINT(theText, sizeof theText, __VA_ARGS__)); \
      benchmark::ClobberMemory();                                            \
    }                                                                        \
  })

#define FORMAT_CONTENDER(NAME, PRINT)                                                         \
  static const Contender sRows[] = {                                                          \
      FORMAT_ROW("text", NAME, PRINT, "Tuner locked to the transponder, waiting for tables"), \
      FORMAT_ROW("%d", NAME, PRINT, "%d", -1234567),                                          \
      FORMAT_ROW("%5.2f", NAME, PRINT, "%5.2f", 1234.5678),                                   \
  };

#endif
