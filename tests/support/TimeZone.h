// TimeZone.h - runs a test in a time zone of its own and gives the old one back.
#ifndef TESTS_SUPPORT_TIMEZONE_H
#define TESTS_SUPPORT_TIMEZONE_H

#include <string>

// While it lives, local time is that of aRule: a rule in POSIX form ("CET-1CEST,M3.5.0,M10.5.0/3"), which
// needs no time-zone files on the machine.
class TimeZone {
 public:
  explicit TimeZone(const std::string& aRule);
  ~TimeZone();
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  bool mfWasSet;
  std::string mOld;
};

#endif
