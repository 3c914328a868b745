#include "tools/qvlogcat/LineCutter.h"

static const size_t kKeptCapacity = 1048576;  // bytes; more is given back after a long line

bool LineCutter::Feed(std::string_view aBytes, LineSink& aSink) {
  while (!aBytes.empty()) {
    // The line end of a line that was exactly as long as a piece may be.
    if (mfWasCut && aBytes.front() == '\n') {
      aBytes.remove_prefix(1);
      mfWasCut = false;
      continue;
    }
    mfWasCut = false;
    size_t theEnd = aBytes.find('\n');
    if (theEnd != std::string_view::npos && mRest.empty()) {
      if (!aSink.TakeLine(aBytes.substr(0, theEnd))) {
        return false;
      }
      aBytes.remove_prefix(theEnd + 1);
      continue;
    }
    size_t theRoom = kMaxLineLength - mRest.size();
    std::string_view thePiece = aBytes.substr(0, theEnd).substr(0, theRoom);
    mRest.append(thePiece);
    aBytes.remove_prefix(thePiece.size());
    bool theIsLine = !aBytes.empty() && aBytes.front() == '\n';
    if (theIsLine) {
      aBytes.remove_prefix(1);
    }
    mfWasCut = !theIsLine && mRest.size() == kMaxLineLength;
    if ((theIsLine || mfWasCut) && !Flush(aSink)) {
      return false;
    }
  }
  return true;
}

bool LineCutter::Flush(LineSink& aSink) {
  bool theWantsMore = mRest.empty() || aSink.TakeLine(mRest);
  mRest.clear();
  if (mRest.capacity() > kKeptCapacity) {
    mRest.shrink_to_fit();
  }
  return theWantsMore;
}

void LineCutter::Forget() {
  mRest.clear();
  mfWasCut = false;
}
