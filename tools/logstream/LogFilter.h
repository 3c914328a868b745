// LogFilter.h - which records are shown.
//
// A filter spec is MODULE:LEVEL. MODULE may hold the wildcards '*' and '?' and is compared without case, as
// the lines show it: of a longer name the first ten characters, and a number in ten digits; a spec without
// wildcards is brought into that form. LEVEL is one of the letters E W I D (this level and the more severe
// ones) and S (nothing). "MODULE" alone means MODULE:D. The first spec that matches a line's module decides,
// but the bare '*' is looked at last; without a matching spec a line is shown. Lines without a level and
// events belong to no module: specs do not touch them, but for "*:S", which hides lines without a level.
//
// For the priority, lines without a level and the events connect and disconnect count as info, lost and
// suppressed as warnings. Events have no text, so a pattern hides them.
#ifndef LOGSTREAM_LOGFILTER_H
#define LOGSTREAM_LOGFILTER_H

#include <regex.h>

#include <string>
#include <string_view>
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
  void SetSince(int64 aTime);           // microseconds since 1970; this time and later ones
  void SetUntil(int64 aTime);           // this time and earlier ones

  bool Shows(const LogRecord& aRecord) const;

 private:
  struct Spec {
    std::string mModule;
    char mLevel;
  };

  static bool ParseSpec(std::string_view aText, Spec* aSpec);
  bool SpecsShow(const LogRecord& aRecord) const;
  bool ProcessesShow(const LogRecord& aRecord) const;
  bool PatternShows(const LogRecord& aRecord) const;

  std::vector<Spec> mSpecs;
  std::vector<std::string> mProcesses;
  char mPriority;
  bool mfHasPattern;
  regex_t mPattern;
  int64 mSince;
  int64 mUntil;
};

// Reads a time as -S and -U take it: "2026-11-21 14:03:07" with the seconds or the whole time left out,
// "14:03[:07]" today, ISO 8601 with 'T' and an offset ("Z", "+01:00" or "+0100"), "@SECONDS" since 1970, or
// "-90s", "-15m", "-2h", "-1d" before aNow. Local time without an offset; seconds may have a fraction. False
// for anything else; aTime is then unchanged.
bool LogFilter_ParseTime(const char* aText, int64 aNow, int64* aTime);

#endif
