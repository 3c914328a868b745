#include "tools/qvlogd/StreamCheck.h"

#include <errno.h>
#include <fcntl.h>
#include <inttypes.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "tools/logstream/Clock.h"

class CountingSink : public LogRecordSink {
 public:
  void Take(const LogRecord& aRecord) override {
    mLines += aRecord.mKind == LogRecordKind_Line;
    mLost += aRecord.mCount;
  }

  uint64 mLines = 0;
  uint64 mLost = 0;
};

// Zero, or the error's number.
static int StreamCheck_S_Feed(int aDescriptor, LogStreamParser& aParser) {
  char theBytes[65536];
  for (;;) {
    ssize_t theCount = read(aDescriptor, theBytes, sizeof(theBytes));
    if (theCount > 0) {
      aParser.Feed(theBytes, static_cast<size_t>(theCount), Clock_Microseconds());
    } else if (theCount == 0) {
      aParser.Close(Clock_Microseconds());
      return 0;
    } else if (errno != EINTR) {
      return errno;
    }
  }
}

int StreamCheck_Run(const std::string& aFile, const LogStreamLimits& aLimits) {
  bool theIsStandardInput = aFile == "-";
  int theDescriptor = theIsStandardInput ? STDIN_FILENO : open(aFile.c_str(), O_RDONLY | O_CLOEXEC);
  CountingSink theSink;
  LogStreamParser theParser(aLimits, theSink);
  int theErrno = theDescriptor < 0 ? errno : StreamCheck_S_Feed(theDescriptor, theParser);
  if (!theIsStandardInput && theDescriptor >= 0) {
    close(theDescriptor);
  }
  if (theErrno != 0) {
    fprintf(stderr, "qvlogd: --check: %s: %s\n", aFile.c_str(), strerror(theErrno));
    return 2;
  }
  if (theParser.Fault() != nullptr) {
    printf("%s: byte %" PRIu64 ": %s\n", aFile.c_str(), theParser.FaultOffset(), theParser.Fault());
    return 1;
  }
  printf("%s: valid, %" PRIu64 " lines, %" PRIu64 " messages lost\n", aFile.c_str(), theSink.mLines,
         theSink.mLost);
  return 0;
}
