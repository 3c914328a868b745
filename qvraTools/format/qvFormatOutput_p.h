/* qvFormatOutput_p.h - where the characters go: counted always, stored while there is room. */
#ifndef QVRATOOLS_FORMAT_QVFORMATOUTPUT_P_H
#define QVRATOOLS_FORMAT_QVFORMATOUTPUT_P_H

#include <string.h>
#include <wchar.h>

#include "qvOS/qvTypes.h"

// Up to this many characters a loop is quicker than a call.
#define kqvFormatOutput_ShortRun 16

// memcpy for the short runs that formatted text is made of: without a call, from a few loads and stores that
// overlap in the middle.
inline void qvFormat_CopyBlock(char* aTo, const char* aFrom, size_t aLength) {
  if (aLength > 16) {
    memcpy(aTo, aFrom, aLength);
  } else if (aLength >= 8) {
    uint64 theHead, theTail;
    memcpy(&theHead, aFrom, 8);
    memcpy(&theTail, aFrom + aLength - 8, 8);
    memcpy(aTo, &theHead, 8);
    memcpy(aTo + aLength - 8, &theTail, 8);
  } else if (aLength >= 4) {
    uint32 theHead, theTail;
    memcpy(&theHead, aFrom, 4);
    memcpy(&theTail, aFrom + aLength - 4, 4);
    memcpy(aTo, &theHead, 4);
    memcpy(aTo + aLength - 4, &theTail, 4);
  } else {
    for (size_t theIndex = 0; theIndex < aLength; ++theIndex) {
      aTo[theIndex] = aFrom[theIndex];
    }
  }
}

inline void qvFormat_CopyBlock(wchar_t* aTo, const wchar_t* aFrom, size_t aLength) {
  memcpy(aTo, aFrom, aLength * sizeof(wchar_t));
}

// Runs of characters are stored as blocks, never beyond the room, so a run that is only counted costs
// nothing.
template <typename Char>
class qvFormatOutput {
 public:
  qvFormatOutput(Char* aBuffer, size_t aRoom) : mStart(aBuffer), mNext(aBuffer), mRoom(aRoom), mDropped(0) {}

  // What the whole output has so far. 64 bits, so that two widths of any int do not wrap on 32-bit targets.
  uint64 Count() const { return static_cast<size_t>(mNext - mStart) + mDropped; }

  // Puts the terminator; the buffer has one character more than the room.
  void Terminate() { *mNext = 0; }

  void Put(Char aChar) {
    if (mRoom > 0) {
      *mNext++ = aChar;
      --mRoom;
    } else {
      ++mDropped;
    }
  }

  void Append(const Char* aText, size_t aLength) {
    size_t theStored = StoredOf(aLength);
    if (theStored > 0) {
      qvFormat_CopyBlock(mNext, aText, theStored);
      Wrote(theStored);
    }
  }

  // ASCII text for either width. It was mostly written a moment ago, in small pieces: read again in small
  // pieces it comes from the processor's store buffer, where larger ones would have to wait.
  void AppendASCII(const char* aText, size_t aLength) {
    size_t theStored = StoredOf(aLength);
    Char* theNext = mNext;  // which the stores below might change, as far as the compiler knows
    Wrote(theStored);
    for (size_t theIndex = 0; theIndex < theStored; ++theIndex) {
      theNext[theIndex] = static_cast<Char>(aText[theIndex]);
    }
  }

  // Where to write aLength characters directly, to be followed by Wrote; null when there is not that much
  // room.
  Char* Reserve(size_t aLength) { return aLength <= mRoom ? mNext : nullptr; }
  void Wrote(size_t aLength) {
    mNext += aLength;
    mRoom -= aLength;
  }

  void Fill(Char aChar, size_t aLength) {
    size_t theStored = StoredOf(aLength);
    Char* theNext = mNext;
    Wrote(theStored);
    if (theStored <= kqvFormatOutput_ShortRun) {
      for (Char* theEnd = theNext + theStored; theNext < theEnd; ++theNext) {
        *theNext = aChar;
      }
    } else if constexpr (sizeof(Char) == 1) {
      memset(theNext, aChar, theStored);
    } else {
      wmemset(theNext, aChar, theStored);
    }
  }

 private:
  // How much of a run there is room for; the rest of it is only counted.
  size_t StoredOf(size_t aLength) {
    if (aLength <= mRoom) {
      return aLength;
    }
    mDropped += aLength - mRoom;
    return mRoom;
  }

  Char* mStart;
  Char* mNext;
  size_t mRoom;  // which may be said to be more than there is memory behind the buffer
  uint64 mDropped;
};

#endif
