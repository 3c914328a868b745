// LogFileSet.h - the files that make up one log: the one being written and those it was renamed to.
//
// A file is known by its number on the disk, not by its name, because the names move on with each rotation.
#ifndef QVLOGCAT_LOGFILESET_H
#define QVLOGCAT_LOGFILESET_H

#include <sys/stat.h>

#include <string>
#include <vector>

#include "qvOS/qvTypes.h"

struct LogFileEntry {
  std::string mPath;  // at the time of the scan
  dev_t mDevice;
  ino_t mNumber;
  uint64 mSize;
  int64 mModified;  // nanoseconds since 1970
  bool mfRegular;

  bool Is(const LogFileEntry& aFile) const { return mDevice == aFile.mDevice && mNumber == aFile.mNumber; }
};

class LogFileSet {
 public:
  // A file name, or a pattern as the collector's --file takes it.
  explicit LogFileSet(const std::string& aPath);

  // All files as they are now, the oldest first. Empty when there are none; errno then says why.
  std::vector<LogFileEntry> Scan() const;
  // Opens the file for reading under the name that it has now; -1 with errno when it is gone.
  int Open(const LogFileEntry& aFile) const;
  // The file behind a descriptor, with the path left empty.
  static LogFileEntry Describe(int aDescriptor);

 private:
  std::string mPath;
  std::string mFolder;
  std::string mName;
};

#endif
