// LogFollower.h - reads a log line by line: first what is there, then what is added, across rotations.
//
// A file that was renamed is read to its end before its successor begins; files that came and went on between
// two looks are read in their order. A file that has become shorter is read from its start. Only regular
// files are followed; pipes and devices are read to their end.
#ifndef QVLOGCAT_LOGFOLLOWER_H
#define QVLOGCAT_LOGFOLLOWER_H

#include <string>
#include <vector>

#include "tools/qvlogcat/LineCutter.h"
#include "tools/qvlogcat/LogFileSet.h"

enum LogFollowerResult {
  LogFollowerResult_Ok,
  LogFollowerResult_Stopped,  // the sink wants no more
  LogFollowerResult_Error     // ErrorPath could not be read, errno says why; the rest was read
};

class LogFollower {
 public:
  explicit LogFollower(const std::string& aPath);
  ~LogFollower();
  LogFollower(const LogFollower&) = delete;
  LogFollower& operator=(const LogFollower&) = delete;

  // Reads from aLength bytes before the end of all files, from the next whole line on, to the end.
  // *afWhole: that was the start of the oldest file.
  LogFollowerResult ReadEnd(uint64 aLength, LineSink& aSink, bool* afWhole);
  // Reads what has been added. afLook: looks for new files too, which costs more.
  LogFollowerResult ReadAdded(bool afLook, LineSink& aSink);
  // Nothing more is expected: hands over a last line without line end.
  LogFollowerResult Finish(LineSink& aSink);

  // Whether more may come: the newest file is a regular one, or is not there yet.
  bool IsFollowing() const;

  const std::string& ErrorPath() const { return mErrorPath; }

 private:
  LogFollowerResult Begin(const LogFileEntry& aFile, uint64 anOffset, LineSink& aSink);
  LogFollowerResult ReadToEnd(LineSink& aSink);
  LogFollowerResult ReadFiles(const std::vector<LogFileEntry>& aFiles, size_t aFirst, uint64 anOffset,
                              LineSink& aSink);
  std::vector<LogFileEntry> FindSuccessors() const;
  LogFollowerResult RestartIfShorter(LineSink& aSink);
  void Close();

  LogFileSet mFiles;
  std::string mPath;
  std::string mErrorPath;
  LineCutter mCutter;
  std::string mChunk;
  int mDescriptor = -1;
  uint64 mPosition = 0;
  bool mfSkipLine = false;  // the position is inside a line that is not wanted
};

#endif
