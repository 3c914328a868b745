/* qvFormatOutput_p.h - where the characters go: counted always, stored while there is room. */
#ifndef QVRATOOLS_FORMAT_QVFORMATOUTPUT_P_H
#define QVRATOOLS_FORMAT_QVFORMATOUTPUT_P_H

#include <string.h>
#include <wchar.h>

#include "qvOS/qvTypes.h"

// Runs of characters are stored as blocks, never beyond the room, so a run that is only counted costs
// nothing.
template <typename Char>
class qvFormatOutput {
 public:
  qvFormatOutput(Char* aBuffer, size_t aRoom) : mNext(aBuffer), mRoom(aRoom), mCount(0) {}

  // What the whole output has so far. 64 bits, so that two widths of any int do not wrap on 32-bit targets.
  uint64 Count() const { return mCount; }

  // Puts the terminator; the buffer has one character more than the room.
  void Terminate() { *mNext = 0; }

  void Put(Char aChar) {
    ++mCount;
    if (mRoom > 0) {
      *mNext++ = aChar;
      --mRoom;
    }
  }

  void Append(const Char* aText, size_t aLength) {
    size_t theStored = Count(aLength);
    if (theStored > 0) {
      memcpy(mNext, aText, theStored * sizeof(Char));
      Advance(theStored);
    }
  }

  // ASCII text of either width.
  void AppendASCII(const char* aText, size_t aLength) {
    if constexpr (sizeof(Char) == 1) {
      Append(aText, aLength);
    } else {
      size_t theStored = Count(aLength);
      for (size_t theIndex = 0; theIndex < theStored; ++theIndex) {
        mNext[theIndex] = static_cast<Char>(aText[theIndex]);
      }
      Advance(theStored);
    }
  }

  void Fill(Char aChar, size_t aLength) {
    size_t theStored = Count(aLength);
    if (theStored == 0) {
      return;
    }
    if constexpr (sizeof(Char) == 1) {
      memset(mNext, aChar, theStored);
    } else {
      wmemset(mNext, aChar, theStored);
    }
    Advance(theStored);
  }

 private:
  // Counts a run and tells how much of it is stored.
  size_t Count(size_t aLength) {
    mCount += aLength;
    return aLength < mRoom ? aLength : mRoom;
  }

  void Advance(size_t aStored) {
    mNext += aStored;
    mRoom -= aStored;
  }

  Char* mNext;
  size_t mRoom;
  uint64 mCount;
};

#endif
