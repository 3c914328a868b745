#ifndef _BENCHMARKS_SERVICES_WORKLOAD_H
#define _BENCHMARKS_SERVICES_WORKLOAD_H

#include <pthread.h>
#include <unistd.h>

#include "Contender.h"

/*
  The small services of the toolkit, each beside what a system offers for it. Contenders are functions that
  are called as CALL(); a result that is not the expected one ends the row.
*/
#define SERVICES_ROW(ROW, NAME, CALL)                 \
  Contender(ROW, NAME, [](benchmark::State& aState) { \
    if (!(CALL)()) {                                  \
      aState.SkipWithError("a wrong result");         \
      return;                                         \
    }                                                 \
    for (auto _ : aState) {                           \
      benchmark::DoNotOptimize((CALL)());             \
      benchmark::ClobberMemory();                     \
    }                                                 \
  })

// A date, and what it says.
#define SERVICES_DATE "Sun, 06 Nov 1994 08:49:37 GMT"

inline bool IsTheDate(int aWeekDay, int aDay, int aMonth, int aYear, int anHour, int aMinute, int aSecond) {
  return aWeekDay == 0 && aDay == 6 && aMonth == 10 && aYear == 94 && anHour == 8 && aMinute == 49 &&
         aSecond == 37;
}

// A UUID, and its text.
constexpr unsigned char kUUID[16] = {0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0x1c, 0xde,
                                     0x80, 0x01, 0x02, 0x03, 0x04, 0x05, 0xfe, 0xff};
#define SERVICES_UUID_TEXT "01234567-89ab-1cde-8001-02030405feff"

// Patterns, what they are matched with, and whether they match. MATCH is called as MATCH(pattern, text).
#define SERVICES_WILDCARD_ROW(ROW, NAME, MATCH, PATTERN, TEXT, EXPECTED) \
  SERVICES_ROW("wildcard, " ROW, NAME, [] {                              \
    const char* thePattern = PATTERN;                                    \
    const char* theText = TEXT;                                          \
    benchmark::DoNotOptimize(thePattern);                                \
    benchmark::DoNotOptimize(theText);                                   \
    return MATCH(thePattern, theText) == EXPECTED;                       \
  })

#define SERVICES_WILDCARD_ROWS(NAME, MATCH)                                                             \
  SERVICES_WILDCARD_ROW("end", NAME, MATCH, "*.ts", "/media/recordings/evening-news-2014.ts", true),    \
      SERVICES_WILDCARD_ROW("middle", NAME, MATCH, "*tuner*lock*",                                      \
                            "front end: tuner 2 lost its lock at 10714 MHz", true),                     \
      SERVICES_WILDCARD_ROW("no match", NAME, MATCH, "*tuner*locked*",                                  \
                            "front end: tuner 2 lost its lock at 10714 MHz", false),                    \
      SERVICES_WILDCARD_ROW("any byte", NAME, MATCH, "qvLog.????????.ini", "qvLog.mediabox.ini", true), \
      SERVICES_WILDCARD_ROW("class", NAME, MATCH, "rec[0-9][0-9]-[a-z]*.m[jk]*", "rec07-evening.mkv", true)

// A lock is for processes with threads; alone in one, the system's needs no atomic operation.
inline void StartSecondThread() {
  static const bool sfStarted = [] {
    pthread_t theThread;
    return pthread_create(
               &theThread, nullptr,
               [](void*) -> void* {
                 for (;;) {
                   pause();
                 }
               },
               nullptr) == 0;
  }();
  benchmark::DoNotOptimize(sfStarted);
}

#endif
