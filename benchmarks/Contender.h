#ifndef _BENCHMARKS_CONTENDER_H
#define _BENCHMARKS_CONTENDER_H

#include <benchmark/benchmark.h>

/*
  One function that does the work of a row, registered by a static object beside it:

      static const Contender sPlain("text", "platform", [](benchmark::State &aState) { ... });

  An area is a folder; all contenders of all its rows are one program, which runs them in random order. Names
  that the table understands: "qvLog" is the library; a name that begins with "floor: " is the least that any
  contender has to do; all others are peers. A name in parentheses stands in the table, but is no peer ("(with
  the lock held)").
*/
class Contender {
 public:
  using Work = void (*)(benchmark::State&);

  Contender(const char* aRow, const char* aName, Work aWork);

  // The row in one of its sizes, in bytes, keys or whatever the row counts; State::range(0) is the size.
  Contender(const char* aRow, int64_t aSize, const char* aName, Work aWork);

  // The row with some threads, each of which runs the work; time is that of the clock on the wall.
  static void AddWithThreads(const char* aRow, int aThreads, const char* aName, Work aWork);
};

#endif
