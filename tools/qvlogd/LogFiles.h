// LogFiles.h - the files the collector writes: naming, rotation and room on the disk.
//
// The file holds whole lines: a line is never split over two files, and what a crash has left of a line is
// ended before anything follows. On a full disk the oldest rotated file goes and the write is tried again;
// when none is left, the rest has to wait, and a line of which only a part fitted is completed later.
//
// A file that was deleted, with or without its folder, is made anew. The writing itself may wait for the
// disk: this belongs into a thread of its own.
#ifndef QVLOGD_LOGFILES_H
#define QVLOGD_LOGFILES_H

#include <sys/types.h>
#include <time.h>

#include <string>

#include "tools/qvlogd/LogTarget.h"
#include "tools/qvlogd/RotatedFiles.h"

struct LogFilesOptions {
  std::string mPattern;           // see LogFileNames.h; missing folders are made
  uint64 mRotateSize = 0;         // bytes of a file; 0: no limit. A longer line gets a file of its own
  unsigned int mRotateTime = 0;   // seconds, counted from local midnight; 0: never
  unsigned int mRotateCount = 0;  // rotated files kept beside the current one; 0: no limit
  uint64 mMaxUse = 0;    // bytes of all files together; 0: no limit. A file is rotated at an eighth of
                         // it unless mRotateSize is set, and at half of it at the latest
  uint64 mKeepFree = 0;  // bytes left free on the file system; 0: no limit. Otherwise the disk is full
};

class LogFiles : public LogTarget {
 public:
  LogFiles(const LogFilesOptions& anOptions, const char* aProcess);
  ~LogFiles() override;
  LogFiles(const LogFiles&) = delete;
  LogFiles& operator=(const LogFiles&) = delete;

  bool Open(std::string* aError) override;

  // Counts whole lines only: what is in the file of a line that is not complete is remembered here, and the
  // next call starts with that line again.
  size_t Write(const char* aBytes, size_t aLength) override;
  void Wait(int aMilliseconds) override;
  void Reopen() override;
  void Close() override;

  const std::string& Path() const { return mPath; }

 protected:
  // What a test may want to be different.
  virtual time_t Now() const;
  virtual ssize_t Put(int aFile, const char* aBytes, size_t aLength);

 private:
  bool OpenFile();
  bool OpenCurrent();
  bool LookAtFile();
  void Leave();
  bool Rotate();
  bool IsGone() const;
  bool IsTooOld() const;
  int64 PeriodOf(time_t aTime) const;
  void DropBeyondCount();
  bool HasRoomFor(size_t aLength);
  size_t LinesForFile(const char* aBytes, size_t aLength);
  int EndForeignLine();
  size_t WriteLines(const char* aBytes, size_t aLength, int* anError);
  bool Recover(int anError);

  const LogFilesOptions mOptions;
  const std::string mProcess;
  const uint64 mSizeLimit;  // UINT64_MAX: none

  int mFile = -1;
  std::string mPath;
  bool mfRegular = false;  // not a device or a pipe
  uint64 mSize = 0;
  size_t mPartial = 0;         // bytes at the end of the file that belong to a line that is not complete
  bool mfForeignLine = false;  // the file we found ends in the middle of a line
  uint64 mRotateAt = 0;        // bytes
  int64 mPeriod = 0;           // of the file, in units of mRotateTime
  RotatedFiles mRotated;
};

#endif
