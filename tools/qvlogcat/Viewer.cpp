#include "tools/qvlogcat/Viewer.h"

#include <errno.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>

#include "tools/logstream/Clock.h"
#include "tools/qvlogcat/StopSignals.h"

static const uint64 kFirstTail = 262144;  // bytes of the end that are read in search of the last lines
static const uint64 kTailGrowth = 4;      // how much more is read when they were not enough
static const int kFollowMilliseconds = 100;
static const unsigned int kLooksForFiles = 5;  // every so many rests

Viewer::Viewer(const ViewerOptions& aOptions, int anOutput)
    : mOptions(aOptions),
      mOutput(anOutput),
      mReader(Clock_Microseconds()),
      mPrinter(aOptions.mForm, aOptions.mfColor, aOptions.mfTerminal),
      mLast(aOptions.mLast),
      mInputLast(aOptions.mLast) {}

bool Viewer::WantsMore() const { return !mOutput.HasEnded() && !StopSignals_HasCome(); }

void Viewer::BeginFile(int64 aLatest, bool afMiddle) {
  mReader.SetNow(std::min(aLatest, Clock_Microseconds()));
  mReader.ForgetMessage();
  mfOrphaned = afMiddle && mfCollecting;
}

bool Viewer::TakeLine(std::string_view aLine) {
  LogRecord theRecord = mReader.Read(aLine);
  mfOrphaned = mfOrphaned && theRecord.mTime == 0 && theRecord.mLevel == 0;
  if (mfOrphaned || !mOptions.mFilter.Shows(theRecord)) {
    return WantsMore();
  }
  if (mfCollecting) {
    mLine.clear();
    mPrinter.Print(theRecord, mLine);
    if (!mLine.empty()) {
      mInputLast.Add(mLine);
    }
  } else {
    mPrinter.Print(theRecord, mOutput.Buffer());
    mOutput.FlushIfLarge();
  }
  return WantsMore();
}

void Viewer::Complain(const std::string& aPath, const char* aHint) {
  fprintf(stderr, "qvlogcat: %s: %s%s\n", aPath.c_str(), strerror(errno), aHint);
}

void Viewer::ShowStandardInput() {
  static const size_t kChunkLength = 65536;
  std::string theChunk(kChunkLength, '\0');
  LineCutter theCutter;
  BeginFile(INT64_MAX, false);
  ssize_t theCount;
  do {
    theCount = read(STDIN_FILENO, theChunk.data(), theChunk.size());
    if (theCount > 0) {
      mReader.SetNow(Clock_Microseconds());
      theCutter.Feed(std::string_view(theChunk.data(), static_cast<size_t>(theCount)), *this);
      mOutput.Flush();
    }
  } while (WantsMore() && (theCount > 0 || (theCount < 0 && errno == EINTR)));
  if (theCount < 0 && errno != EINTR) {
    Complain("standard input", "");
    mfFailed = true;
  }
  theCutter.Flush(*this);
}

// Reads more and more of the end until the last lines are among it.
LogFollowerResult Viewer::ReadLast(LogFollower& aFollower) {
  uint64 theLength = mOptions.mLast == 0 ? 0 : kFirstTail;
  for (;;) {
    mInputLast.Clear();
    bool theIsWhole = false;
    LogFollowerResult theResult = aFollower.ReadEnd(theLength, *this, &theIsWhole);
    if (theIsWhole || mInputLast.IsFull() || theResult == LogFollowerResult_Stopped) {
      return theResult;
    }
    theLength *= kTailGrowth;
  }
}

void Viewer::ShowLog(const std::string& aPath) {
  auto theFollower = std::make_unique<LogFollower>(aPath);
  LogFollowerResult theResult;
  if (mfCollecting) {
    theResult = ReadLast(*theFollower);
  } else {
    bool theIsWhole;
    theResult = theFollower->ReadEnd(UINT64_MAX, *this, &theIsWhole);
  }
  mfOrphaned = false;
  if (theResult == LogFollowerResult_Error && errno == EINTR && StopSignals_HasCome()) {
    return;  // told to end while it waited for a writer of a pipe
  }
  bool theIsAwaited = theResult == LogFollowerResult_Error && errno == ENOENT && mOptions.mfFollow;
  if (theResult == LogFollowerResult_Error) {
    Complain(theFollower->ErrorPath(), theIsAwaited ? "; waiting for it" : "");
    mfFailed |= !theIsAwaited;
  }
  if (mOptions.mfFollow && theFollower->IsFollowing() &&
      (theResult == LogFollowerResult_Ok || theIsAwaited)) {
    mFollowers.push_back(std::move(theFollower));
  } else {
    theFollower->Finish(*this);
  }
}

void Viewer::PrintLast() {
  while (!mOutput.HasEnded() && mLast.TakeOldest(mOutput.Buffer())) {
    mOutput.FlushIfLarge();
  }
  mOutput.Flush();
}

void Viewer::Follow() {
  for (unsigned int theRest = 1; !mFollowers.empty() && WantsMore(); ++theRest) {
    mOutput.Rest(kFollowMilliseconds);
    mReader.SetNow(Clock_Microseconds());
    for (size_t i = 0; i < mFollowers.size() && WantsMore();) {
      LogFollower& theFollower = *mFollowers[i];
      if (theFollower.ReadAdded(theRest % kLooksForFiles == 0, *this) == LogFollowerResult_Error) {
        Complain(theFollower.ErrorPath(), "");
        mfFailed = true;
        mFollowers.erase(mFollowers.begin() + static_cast<std::ptrdiff_t>(i));
      } else {
        ++i;
      }
    }
    mOutput.Flush();
  }
}

int Viewer::Run() {
  for (const std::string& theInput : mOptions.mInputs) {
    mfCollecting = mOptions.mfLast;
    if (theInput == "-") {
      ShowStandardInput();
    } else {
      ShowLog(theInput);
    }
    for (std::string theLine; mfCollecting && mInputLast.TakeOldest(theLine); theLine.clear()) {
      mLast.Add(theLine);
    }
    mInputLast.Clear();
    mOutput.Flush();
  }
  mfCollecting = false;
  PrintLast();
  Follow();
  if (mOutput.Error() != 0) {
    errno = mOutput.Error();
    Complain("standard output", "");
  }
  return mfFailed || mOutput.Error() != 0 ? 1 : 0;
}
