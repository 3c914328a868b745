// Starvation.h - lets allocations of the library fail, and watches what becomes of the process.
//
// A program that is linked with this has the library's qvMalloc, qvRealloc, qvStrdup and operator new call
// the functions below instead of the C library's. Its own allocations are left alone.
#ifndef TESTS_INTERPOSED_STARVATION_H
#define TESTS_INTERPOSED_STARVATION_H

#include <stddef.h>

#include <atomic>

// What the library is to do when an allocation fails: its message on both streams, then the abort signal.
constexpr const char* kStarvedMessage = "qvFatalError: memory:";

// In this process, the library's allocation anIndex from now, counted from 0, fails; and all later ones of
// the whole process, if afFromNowOn.
void StarveAt(size_t anIndex, bool afFromNowOn);
// Whether that has happened.
bool HasStarved();

// A program with the name of a report in its environment splits off a child at each allocation of the
// library: there the allocation fails, and the child must end as it is to, while the program goes on.
constexpr const char* kStarvationReport = "STARVATION_REPORT";
// When this is set, only so many of the first allocations are tried, and fewer and fewer of the later ones.
constexpr const char* kStarvationSample = "STARVATION_SAMPLE";

// The report's file, which the starved program maps.
struct StarvationReport {
  std::atomic<size_t> mPoints;
  std::atomic<size_t> mFailures;
  char mFirstFailure[400];
};

#endif
