#ifndef _BENCHMARKS_STATEMENT_WORKLOAD_H
#define _BENCHMARKS_STATEMENT_WORKLOAD_H

#include <cstddef>
#include <string>

#include "Contender.h"

/*
  What a log statement costs in five places. Every contender says the same with the same values, in its own
  words for a format, and puts level, time of day in milliseconds, thread and module before it, in its own
  order:

      I 14:03:07:042|0012ab34|TUNER      Tuner 3 locked to 11778000 kHz after 142 ms
*/
#define STATEMENT_PRINTF "Tuner %d locked to %u kHz after %d ms"
#define STATEMENT_BRACES "Tuner {} locked to {} kHz after {} ms"
#define STATEMENT_TEXT   "Tuner 3 locked to 11778000 kHz after 142 ms"

struct Tuner {
  int mNumber = 3;
  unsigned mFrequency = 11778000;  // kHz
  int mDelay = 142;                // ms
};

// Ten in a row, so that what counts the rounds is little beside statements that take less than a nanosecond.
constexpr const char* kOffByLevel = "10 statements off by level";
#define STATEMENT_TEN_TIMES(STATEMENT) \
  STATEMENT;                           \
  STATEMENT;                           \
  STATEMENT;                           \
  STATEMENT;                           \
  STATEMENT;                           \
  STATEMENT;                           \
  STATEMENT;                           \
  STATEMENT;                           \
  STATEMENT;                           \
  STATEMENT

constexpr const char* kOffByModule = "statement off by module";

// Repeats aStatement(tuner), whose values the compiler does not know.
template <class Statement>
void Repeat(benchmark::State& aState, Statement aStatement) {
  Tuner theTuner;
  benchmark::DoNotOptimize(theTuner);
  for (auto _ : aState) {
    aStatement(theTuner);
    benchmark::ClobberMemory();
  }
}

constexpr const char* kIntoCallback = "line into a callback";

// What the callback of each contender does with the text: keeps it, as one that hands it on would.
class LastText {
 public:
  static void Keep(const char* aText, size_t aLength);
  // After a run: fails unless so many texts came, and the last one was that of the statement.
  static void Check(benchmark::State& aState);
};

// The rows of lines into a file, on tmpfs and on disk, with 1, 2 and 4 threads. Log is the contender:
// static Open(path), Write(tuner), which writes a line and pushes it to the kernel, and Close().
template <class Log>
class FileRows {
 public:
  explicit FileRows(const char* aName) {
    // A thread alone is timed by its own clock, which stands still while other programs run.
    Contender("line to tmpfs, 1 thread", aName, Run<true>);
    Contender("line to disk, 1 thread", aName, Run<false>);
    for (int theThreads : {2, 4}) {
      Contender::AddWithThreads("line to tmpfs", theThreads, aName, Run<true>);
      Contender::AddWithThreads("line to disk", theThreads, aName, Run<false>);
    }
  }

 private:
  template <bool fTmpfs>
  static void Run(benchmark::State& aState);
};

// A file of its own for every run; the threads of a run share it. Gone afterwards.
std::string NewLogFile(bool afTmpfs);
// Fails unless the file has a whole line for each round of each thread. Removes it.
void CheckLogFile(benchmark::State& aState, const std::string& aPath);
// The folder of this program, with a slash behind it.
std::string ProgramFolder();

template <class Log>
template <bool fTmpfs>
void FileRows<Log>::Run(benchmark::State& aState) {
  static std::string sPath;
  // The other threads wait for the first one where the loop begins, and where it ends.
  if (aState.thread_index() == 0) {
    sPath = NewLogFile(fTmpfs);
    Log::Open(sPath.c_str());
  }
  Repeat(aState, Log::Write);
  if (aState.thread_index() == 0) {
    Log::Close();
    CheckLogFile(aState, sPath);
  }
}

#endif
