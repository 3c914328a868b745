#ifndef _BENCHMARKS_FORMAT_WORKLOAD_H
#define _BENCHMARKS_FORMAT_WORKLOAD_H

#include "Contender.h"

#include <cstddef>
#include <cstring>
#include <string>

/*
  How long does it take to print values into a buffer? Each row is one format and its values; the compiler
  sees neither at the call, and a contender that prints another text is no contender.
*/
template <typename Print, typename... Values>
void RunFormat(benchmark::State& aState, const char* anExpected, const char* aFormat, Values... aValues) {
  char theText[512];
  for (auto _ : aState) {
    benchmark::DoNotOptimize(aFormat);
    (benchmark::DoNotOptimize(aValues), ...);
    Print()(theText, sizeof theText, aFormat, aValues...);
    benchmark::ClobberMemory();
  }
  if (strcmp(theText, anExpected) != 0) {
    aState.SkipWithError((std::string("prints ") + theText).c_str());
  }
}

#define FORMAT_ROW(ROW, NAME, PRINT, ...) \
  Contender(ROW, NAME, [](benchmark::State& aState) { RunFormat<PRINT>(aState, __VA_ARGS__); })

#define FORMAT_TEXT "Tuner locked to the transponder, waiting for tables"
#define FORMAT_200_BYTES                                                                                \
  "Tuner locked to the transponder at 11836 MHz, horizontal, 27500 kilosymbols a second; the network, " \
  "service and event tables were read completely within 1250 ms and are kept for the next start of the"

// What every contender prints. PRINT is called with the buffer, its size, the format and the values.
#define FORMAT_COMMON_ROWS(NAME, PRINT)                                                                     \
  FORMAT_ROW("text", NAME, PRINT, FORMAT_TEXT, FORMAT_TEXT),                                                \
      FORMAT_ROW("%d", NAME, PRINT, "-1234567", "%d", -1234567),                                            \
      FORMAT_ROW("mixed", NAME, PRINT, "Decoder video went from stopped to playing, pid 4711, 5 buffers",   \
                 "Decoder %s went from %s to %s, pid %u, %d buffers", "video", "stopped", "playing", 4711u, \
                 5),                                                                                        \
      FORMAT_ROW("%08x", NAME, PRINT, "000beef1", "%08x", 0xbeef1u),                                        \
      FORMAT_ROW("%5.2f", NAME, PRINT, "1234.57", "%5.2f", 1234.5678),                                      \
      FORMAT_ROW("%g", NAME, PRINT, "0.0123457", "%g", 0.012345678),                                        \
      FORMAT_ROW("%.17g", NAME, PRINT, "0.10000000000000001", "%.17g", 0.1),                                \
      FORMAT_ROW("%e", NAME, PRINT, "6.022141e+23", "%e", 6.02214076e23),                                   \
      FORMAT_ROW("%lld", NAME, PRINT, "-1234567890123456", "%lld", -1234567890123456ll),                    \
      FORMAT_ROW("columns", NAME, PRINT, "video     |  -1234567|   1234.568|stopped   |",                   \
                 "%-10s|%10d|%11.3f|%-10s|", "video", -1234567, 1234.5678, "stopped"),                      \
      FORMAT_ROW("200 bytes", NAME, PRINT, FORMAT_200_BYTES, "%s", FORMAT_200_BYTES)

#define FORMAT_POSITIONAL_ROW(NAME, PRINT)                                                               \
  FORMAT_ROW("positional", NAME, PRINT, "stopped: video -1234567", "%3$s: %1$s %2$d", "video", -1234567, \
             "stopped")

// In UTF-8, which takes a locale of the C library.
#define FORMAT_WIDE_ROW(NAME, PRINT)                                            \
  FORMAT_ROW("%ls", NAME, PRINT, "Nachrichten f\303\274r Z\303\274rich", "%ls", \
             L"Nachrichten f\u00fcr Z\u00fcrich")

#endif
