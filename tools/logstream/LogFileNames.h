// LogFileNames.h - the names of the collector's files.
//
// A name is made from a pattern: %y %m %d %H %M %S stand for the local date and time of the moment the file
// is opened (%y: the year with all four digits), %n for a process name, as in the library's own log files.
//
// A file that has become too large or too old is renamed to NAME.1. The one before it is NAME.2 and so on:
// the higher the number, the older the file, as other tools for log files have it. The numbers do not depend
// on the clock, which is wrong on many a box until the network is there. Renaming goes from the first free
// number downwards and replaces no file, so a kill in between leaves a gap in the numbers and nothing else.
#ifndef LOGSTREAM_LOGFILENAMES_H
#define LOGSTREAM_LOGFILENAMES_H

#include <time.h>

#include <string>
#include <vector>

#include "qvOS/qvTypes.h"

struct LogFileName {
  std::string mPath;
  unsigned int mNumber = 0;  // 0: not renamed
  uint64 mSize = 0;          // bytes
  int64 mModified = 0;       // nanoseconds since 1970
};

std::string LogFileNames_Expand(const std::string& aPattern, const struct tm& aTime, const char* aProcess);

// All regular files in aFolder whose names the pattern aName can have made at any time, renamed ones
// included, the oldest first. A plain file name is a pattern too: NAME.2, NAME.1, NAME. Where the pattern has
// made several names, those with the earlier last change come first.
std::vector<LogFileName> LogFileNames_List(const std::string& aFolder, const std::string& aName,
                                           const char* aProcess);

#endif
