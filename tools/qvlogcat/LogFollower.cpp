#include "tools/qvlogcat/LogFollower.h"

#include <errno.h>
#include <unistd.h>

#include <algorithm>

static const size_t kChunkLength = 65536;  // bytes read at once

LogFollower::LogFollower(const std::string& aPath)
    : mFiles(aPath), mPath(aPath), mChunk(kChunkLength, '\0') {}

LogFollower::~LogFollower() { Close(); }

void LogFollower::Close() {
  if (mDescriptor >= 0) {
    close(mDescriptor);
    mDescriptor = -1;
  }
}

LogFollowerResult LogFollower::Begin(const LogFileEntry& aFile, uint64 anOffset, LineSink& aSink) {
  Close();
  mCutter.Forget();
  mDescriptor = mFiles.Open(aFile);
  if (mDescriptor < 0) {
    mErrorPath = aFile.mPath;
    return LogFollowerResult_Error;
  }
  mPosition = 0;
  mfSkipLine = false;
  if (anOffset > 0) {
    // One byte earlier: when that is a line end, a whole line begins at the offset.
    mPosition = anOffset - 1;
    mfSkipLine = true;
    lseek(mDescriptor, static_cast<off_t>(mPosition), SEEK_SET);
  }
  aSink.BeginFile(LogFileSet::Describe(mDescriptor).mModified / 1000, anOffset > 0);
  return LogFollowerResult_Ok;
}

LogFollowerResult LogFollower::ReadToEnd(LineSink& aSink) {
  for (;;) {
    ssize_t theCount = read(mDescriptor, mChunk.data(), mChunk.size());
    if (theCount < 0 && errno == EINTR) {
      // The sink knows whether the signal is to end the program.
      if (!aSink.WantsMore()) {
        return LogFollowerResult_Stopped;
      }
      continue;
    }
    if (theCount < 0) {
      mErrorPath = mPath;
      return LogFollowerResult_Error;
    }
    if (theCount == 0) {
      return LogFollowerResult_Ok;
    }
    mPosition += static_cast<uint64>(theCount);
    std::string_view theBytes(mChunk.data(), static_cast<size_t>(theCount));
    if (mfSkipLine) {
      size_t theEnd = theBytes.find('\n');
      mfSkipLine = theEnd == std::string_view::npos;
      theBytes.remove_prefix(mfSkipLine ? theBytes.size() : theEnd + 1);
    }
    if (!mCutter.Feed(theBytes, aSink)) {
      return LogFollowerResult_Stopped;
    }
  }
}

// A file that cannot be opened any more was dropped by the collector; one that must not be read is an error.
LogFollowerResult LogFollower::ReadFiles(const std::vector<LogFileEntry>& aFiles, size_t aFirst,
                                         uint64 anOffset, LineSink& aSink) {
  LogFollowerResult theWorst = LogFollowerResult_Ok;
  int theError = 0;
  for (size_t i = aFirst; i < aFiles.size(); ++i) {
    if (mDescriptor >= 0 && Finish(aSink) == LogFollowerResult_Stopped) {
      return LogFollowerResult_Stopped;
    }
    LogFollowerResult theResult = Begin(aFiles[i], i == aFirst ? anOffset : 0, aSink);
    if (theResult == LogFollowerResult_Ok) {
      theResult = ReadToEnd(aSink);
    } else if (errno == ENOENT) {
      continue;
    }
    if (theResult == LogFollowerResult_Stopped) {
      return theResult;
    }
    if (theResult == LogFollowerResult_Error) {
      theWorst = theResult;
      theError = errno;
    }
  }
  errno = theError;
  return theWorst;
}

LogFollowerResult LogFollower::ReadEnd(uint64 aLength, LineSink& aSink, bool* afWhole) {
  Close();
  std::vector<LogFileEntry> theFiles = mFiles.Scan();
  if (theFiles.empty()) {
    mErrorPath = mPath;
    *afWhole = true;
    return LogFollowerResult_Error;
  }
  size_t theFirst = theFiles.size();
  uint64 theOffset = 0;
  uint64 theLeft = aLength;
  while (theFirst > 0 && theLeft > 0) {
    const LogFileEntry& theFile = theFiles[--theFirst];
    theOffset = theFile.mfRegular && theFile.mSize > theLeft ? theFile.mSize - theLeft : 0;
    theLeft -= std::min(theFile.mSize, theLeft);
  }
  if (theFirst == theFiles.size()) {
    theOffset = theFiles[--theFirst].mSize;
  }
  *afWhole = theFirst == 0 && theOffset == 0;
  return ReadFiles(theFiles, theFirst, theOffset, aSink);
}

bool LogFollower::IsFollowing() const {
  return mDescriptor < 0 || LogFileSet::Describe(mDescriptor).mfRegular;
}

LogFollowerResult LogFollower::RestartIfShorter(LineSink& aSink) {
  LogFileEntry theFile = LogFileSet::Describe(mDescriptor);
  if (theFile.mSize >= mPosition) {
    return LogFollowerResult_Ok;
  }
  LogFollowerResult theResult = Finish(aSink);
  mPosition = 0;
  mfSkipLine = false;
  lseek(mDescriptor, 0, SEEK_SET);
  aSink.BeginFile(INT64_MAX, false);
  return theResult;
}

// The files that were begun after the current one. An empty one does not count yet: whoever writes may go on
// with the old file for a while.
std::vector<LogFileEntry> LogFollower::FindSuccessors() const {
  std::vector<LogFileEntry> theFiles = mFiles.Scan();
  LogFileEntry theCurrent = LogFileSet::Describe(mDescriptor);
  auto theFound = std::find_if(theFiles.begin(), theFiles.end(),
                               [&](const LogFileEntry& aFile) { return aFile.Is(theCurrent); });
  if (theFound != theFiles.end()) {
    theFiles.erase(theFiles.begin(), theFound + 1);
  } else {
    // The current file was removed: its older files are still there, and were read.
    auto theIsOlder = [&](const LogFileEntry& aFile) { return aFile.mModified < theCurrent.mModified; };
    theFiles.erase(std::remove_if(theFiles.begin(), theFiles.end(), theIsOlder), theFiles.end());
  }
  while (!theFiles.empty() && theFiles.back().mSize == 0) {
    theFiles.pop_back();
  }
  return theFiles;
}

LogFollowerResult LogFollower::ReadAdded(bool afLook, LineSink& aSink) {
  if (mDescriptor < 0) {
    std::vector<LogFileEntry> theFiles;
    if (afLook) {
      theFiles = mFiles.Scan();
    }
    return ReadFiles(theFiles, 0, 0, aSink);
  }
  LogFollowerResult theResult = RestartIfShorter(aSink);
  if (theResult == LogFollowerResult_Ok) {
    theResult = ReadToEnd(aSink);
  }
  if (theResult != LogFollowerResult_Ok || !afLook) {
    return theResult;
  }
  std::vector<LogFileEntry> theSuccessors = FindSuccessors();
  if (theSuccessors.empty()) {
    return LogFollowerResult_Ok;
  }
  // What came between the last look at the old file and the start of the new one.
  theResult = ReadToEnd(aSink);
  return theResult == LogFollowerResult_Ok ? ReadFiles(theSuccessors, 0, 0, aSink) : theResult;
}

LogFollowerResult LogFollower::Finish(LineSink& aSink) {
  return mCutter.Flush(aSink) ? LogFollowerResult_Ok : LogFollowerResult_Stopped;
}
