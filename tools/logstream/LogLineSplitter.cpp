#include "tools/logstream/LogLineSplitter.h"

#include <string.h>

#include <algorithm>

// What may stay allocated while less is needed; many connections are idle at the same time.
static constexpr size_t kKeptCapacity = 4096;

LogLineSplitter::LogLineSplitter(size_t aMaxLine)
    : mMaxLine(std::max<size_t>(aMaxLine, 1)),
      mHeldStart(0),
      mPiece(nullptr),
      mPieceLength(0),
      mPieceStart(0),
      mArrivalStart(0),
      mArrivalTime(0),
      mLineStart(0),
      mLineTime(0) {}

void LogLineSplitter::Feed(const char* aBytes, size_t aLength, int64 aTime) {
  if (!HasTail()) {
    mLineTime = aTime;
  }
  mPiece = aBytes;
  mPieceLength = aLength;
  mArrivalStart = mPieceStart;
  mArrivalTime = aTime;
}

void LogLineSplitter::EndLine(size_t aLength, bool afCut, Line* aLine) {
  aLine->mOffset = mLineStart;
  aLine->mLength = aLength;
  aLine->mTime = mLineTime;
  aLine->mfCut = afCut;
  mLineStart += aLength + (afCut ? 0 : 1);
  mLineTime = mArrivalTime;
}

// Completes the line that began in a former call, as far as the bytes go.
bool LogLineSplitter::NextInHeld(Line* aLine) {
  size_t theTail = static_cast<size_t>(mPieceStart - mLineStart);
  size_t theRoom = std::min(mPieceLength, mMaxLine + 1 - theTail);
  const void* theEnd = memchr(mPiece, '\n', theRoom);
  bool theIsCut = theEnd == nullptr && theTail + theRoom > mMaxLine;
  size_t theTaken = theRoom;
  if (theEnd != nullptr) {
    theTaken = static_cast<size_t>(static_cast<const char*>(theEnd) - mPiece) + 1;
  } else if (theIsCut) {
    theTaken = theRoom - 1;  // the byte that is too much begins the next part
  }
  mHeld.append(mPiece, theTaken);
  mPiece += theTaken;
  mPieceLength -= theTaken;
  mPieceStart += theTaken;
  if (theEnd == nullptr && !theIsCut) {
    return false;
  }
  EndLine(theTail + theTaken - (theIsCut ? 0 : 1), theIsCut, aLine);
  return true;
}

bool LogLineSplitter::Next(Line* aLine) {
  if (HasTail()) {
    return mPieceLength > 0 && NextInHeld(aLine);
  }
  size_t theDone = static_cast<size_t>(mLineStart - mPieceStart);
  size_t theLeft = mPieceLength - theDone;
  if (theLeft == 0) {
    return false;
  }
  const char* theBytes = mPiece + theDone;
  const void* theEnd = memchr(theBytes, '\n', std::min(theLeft, mMaxLine + 1));
  if (theEnd != nullptr) {
    EndLine(static_cast<size_t>(static_cast<const char*>(theEnd) - theBytes), false, aLine);
    return true;
  }
  if (theLeft > mMaxLine) {
    EndLine(mMaxLine, true, aLine);
    return true;
  }
  return false;
}

bool LogLineSplitter::NextTail(Line* aLine) {
  if (!HasTail()) {
    return false;
  }
  EndLine(static_cast<size_t>(mPieceStart - mLineStart), true, aLine);
  return true;
}

void LogLineSplitter::Keep(uint64 aFrom) {
  aFrom = std::min(aFrom, mLineStart);
  if (aFrom >= mPieceStart) {
    size_t theSkipped = static_cast<size_t>(aFrom - mPieceStart);
    mHeld.clear();
    if (mPieceLength > theSkipped) {
      mHeld.append(mPiece + theSkipped, mPieceLength - theSkipped);
    }
  } else {
    mHeld.erase(0, static_cast<size_t>(aFrom - mHeldStart));
    if (mPieceLength > 0) {
      mHeld.append(mPiece, mPieceLength);
    }
  }
  mHeldStart = aFrom;
  mPieceStart = mHeldStart + mHeld.size();
  mPiece = nullptr;
  mPieceLength = 0;
  if (mHeld.size() <= kKeptCapacity && mHeld.capacity() > kKeptCapacity) {
    mHeld.shrink_to_fit();
  }
}

std::string_view LogLineSplitter::View(uint64 anOffset, size_t aLength) const {
  const char* theBytes = anOffset >= mPieceStart ? mPiece + static_cast<size_t>(anOffset - mPieceStart)
                                                 : mHeld.data() + static_cast<size_t>(anOffset - mHeldStart);
  return std::string_view(theBytes, aLength);
}

int64 LogLineSplitter::TimeInside(const Line& aLine, uint64 anOffset) const {
  return anOffset >= mArrivalStart ? mArrivalTime : aLine.mTime;
}
