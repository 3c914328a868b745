// LogFilter.h - which records are shown.
//
// A filter spec is MODULE:LEVEL. MODULE may hold the wildcards '*' and '?' and is compared without case;
// LEVEL is one of the letters E W I D (this level and the more severe ones) and S (nothing). "MODULE" alone
// means MODULE:D. The first spec that matches a line's module decides, but the bare '*' is looked at last;
// without a matching spec a line is shown. Lines without a level and events belong to no module: specs do not
// touch them, but for "*:S", which hides lines without a level.
#ifndef LOGSTREAM_LOGFILTER_H
#define LOGSTREAM_LOGFILTER_H

#include <regex.h>

#include <string>
#include <vector>

#include "tools/logstream/LogRecord.h"

class LogFilter {
 public:
  LogFilter();
  ~LogFilter();
  LogFilter(const LogFilter&) = delete;
  LogFilter& operator=(const LogFilter&) = delete;

  // Each of these returns false for text that it does not understand, and then changes nothing.
  bool AddSpec(const char* aSpec);
  bool AddSpecs(const char* aSpecs);  // several, separated by blanks, as QVLOG_TAGS holds them
  bool SetPriority(
      const char* aPriority);  // a letter or error, warning, info, debug: this level and the more severe ones
  bool AddProcess(
      const char* aProcess);  // a process's name, with wildcards, or NAME-UUID8; several: any of them
  bool SetPattern(const char* aRegex);  // POSIX extended; searched in the text
  void SetSince(int64 aTime);           // microseconds since 1970
  void SetUntil(int64 aTime);

  bool Shows(const LogRecord& aRecord) const;

 private:
  struct Spec {
    std::string mModule;
    char mLevel;
  };
  std::vector<Spec> mSpecs;
  std::vector<std::string> mProcesses;
  char mPriority;
  bool mfHasPattern;
  regex_t mPattern;
  int64 mSince;
  int64 mUntil;
};

// Reads a time as -S and -U take it: "2026-11-21 14:03:07" with the seconds or the whole time left out,
// "14:03[:07]" today, ISO 8601 with 'T' and an offset, "@SECONDS" since 1970, or "-90s", "-15m", "-2h", "-1d"
// before aNow. Local time without an offset.
bool LogFilter_ParseTime(const char* aText, int64 aNow, int64* aTime);

#endif
