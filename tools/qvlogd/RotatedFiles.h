// RotatedFiles.h - the older files of a log, beside the one that is being written.
#ifndef QVLOGD_ROTATEDFILES_H
#define QVLOGD_ROTATEDFILES_H

#include <deque>
#include <string>

#include "tools/logstream/LogFileNames.h"

class RotatedFiles {
 public:
  // Reads which files of the pattern (its part behind the last '/') lie in aCurrent's folder beside aCurrent.
  void Scan(const std::string& aCurrent, const std::string& aPattern, const char* aProcess);

  size_t Count() const { return mFiles.size(); }
  uint64 Bytes() const { return mBytes; }

  // Removes the oldest file; false when there is none that can be removed.
  bool DropOldest();

  // Renames aCurrent to aCurrent.1, after the older ones have moved up to make room. No file is lost wherever
  // this is interrupted. False when aCurrent keeps its name.
  static bool Shift(const std::string& aCurrent);

 private:
  std::deque<LogFileName> mFiles;  // the oldest first
  uint64 mBytes = 0;
};

#endif
