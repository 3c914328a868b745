#ifndef _BENCHMARKS_DAEMON_WORKLOAD_H
#define _BENCHMARKS_DAEMON_WORKLOAD_H

#include <benchmark/benchmark.h>

#include "Collector.h"
#include "Contender.h"

constexpr char kStatementRow[] = "a statement to the daemon over TCP";
constexpr char kNobodyRow[] = "no collector listening";

// What each contender logs, behind a prefix of level, time to the millisecond, thread and module or name:
// about 80 bytes together.
struct Statement {
  int mTuner = 2;
  int mFrequency = 506000;
  int mQuality = 87;
};
#define STATEMENT_PRINTF "tuner %d locked to %d kHz, quality %d %%"
#define STATEMENT_BRACES "tuner {} locked to {} kHz, quality {} %"

// So many statements, and then the collector is waited for, outside the time, since a line that finds the
// buffers full is not sent at all.
constexpr uint64_t kLinesAtOnce = 512;

// Times statements whose lines must reach the collector, each as one line. aLog logs one.
template <class Log>
void TimeStatements(benchmark::State& aState, Log aLog) {
  Collector& theCollector = Collector::The();
  Statement theStatement;
  theCollector.Settle();
  const uint64_t theStart = theCollector.Lines();
  uint64_t theLines = 0;
  for (auto _ : aState) {
    benchmark::DoNotOptimize(theStatement);
    aLog(theStatement);
    if (++theLines % kLinesAtOnce == 0) {
      aState.PauseTiming();
      theCollector.WaitForLines(theStart + theLines);
      aState.ResumeTiming();
    }
  }
  theCollector.WaitForLines(theStart + theLines);
  theCollector.Settle();
  if (theCollector.Lines() != theStart + theLines) {
    aState.SkipWithError("lines were lost");
  }
}

#endif
