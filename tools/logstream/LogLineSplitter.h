// LogLineSplitter.h - cuts a stream of bytes that comes in pieces into lines, and keeps the bytes of lines
// that are still needed.
//
// Bytes that are not kept are not copied. Those that are lie in two places, one behind the other in the
// stream: what is left of former calls is held here, and the piece of the current call is the caller's. No
// line lies in both, since one that began in a former call is completed in the held bytes. Offsets count from
// the start of the stream.
//
//   ... no longer needed | held (from mHeldStart) | piece (from mPieceStart) | still to come
#ifndef LOGSTREAM_LOGLINESPLITTER_H
#define LOGSTREAM_LOGLINESPLITTER_H

#include <string>
#include <string_view>

#include "qvOS/qvTypes.h"

class LogLineSplitter {
 public:
  struct Line {
    uint64 mOffset = 0;
    size_t mLength = 0;  // without the line end
    int64 mTime = 0;     // arrival of its first byte
    bool mfCut = false;  // no line end follows, but the rest of a line that is longer than the limit
  };

  // aMaxLine: bytes of a line, at least 1; a longer one is cut into pieces of this length.
  explicit LogLineSplitter(size_t aMaxLine);

  // The next piece of the stream. Call Next until it finds no more lines, then Keep.
  void Feed(const char* aBytes, size_t aLength, int64 aTime);
  bool Next(Line* aLine);
  // The line whose end has not come yet, as if it were cut at its last byte; false when there is none.
  bool NextTail(Line* aLine);
  // Holds what is still needed, from aFrom on or from the incomplete line on, and forgets the rest.
  void Keep(uint64 aFrom);

  std::string_view View(uint64 anOffset, size_t aLength) const;
  // Arrival of the byte at anOffset inside aLine, as exactly as it is known.
  int64 TimeInside(const Line& aLine, uint64 anOffset) const;

  size_t HeldBytes() const { return mHeld.size(); }          // after Keep
  bool HasTail() const { return mLineStart < mPieceStart; }  // after Keep
  uint64 LineStart() const { return mLineStart; }            // of the line that is still incomplete
  int64 LineTime() const { return mLineTime; }

 private:
  bool NextInHeld(Line* aLine);
  void EndLine(size_t aLength, bool afCut, Line* aLine);

  size_t mMaxLine;
  std::string mHeld;
  uint64 mHeldStart;
  const char* mPiece;
  size_t mPieceLength;
  uint64 mPieceStart;
  uint64 mArrivalStart;  // where the bytes of the latest piece begin, of which some may be held by now
  int64 mArrivalTime;
  uint64 mLineStart;
  int64 mLineTime;
};

#endif
