// StreamCheck.h - says whether a stream of bytes is valid protocol qvLogd-1.0, and where it is not.
#ifndef QVLOGD_STREAMCHECK_H
#define QVLOGD_STREAMCHECK_H

#include <string>

#include "tools/logstream/LogStreamParser.h"

// Reads a file, or standard input for "-", and prints one line:
//
//   FILE: valid, 1200 lines, 3 messages lost
//   FILE: byte 4711: what is wrong there
//
// The result is the exit code: 0 for a valid stream, 1 for another, 2 when it cannot be read (with a line on
// standard error).
int StreamCheck_Run(const std::string& aFile, const LogStreamLimits& aLimits);

#endif
