#include "Contender.h"

#include <string>

// The slash is the mark between the parts of a name, so "and" takes its place in a row.
static std::string FullName(const char* aRow, const char* aName) { return std::string(aRow) + "/" + aName; }

Contender::Contender(const char* aRow, const char* aName, Work aWork) {
  benchmark::RegisterBenchmark(FullName(aRow, aName).c_str(), aWork);
}

Contender::Contender(const char* aRow, int64_t aSize, const char* aName, Work aWork) {
  benchmark::RegisterBenchmark(FullName(aRow, aName).c_str(), aWork)->Arg(aSize);
}

void Contender::AddWithThreads(const char* aRow, int aThreads, const char* aName, Work aWork) {
  benchmark::RegisterBenchmark(FullName(aRow, aName).c_str(), aWork)->Threads(aThreads)->UseRealTime();
}

BENCHMARK_MAIN();
