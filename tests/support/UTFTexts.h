// UTFTexts.h - the rules of the encodings, as they are said for one character at a time, and random texts.
#ifndef TESTS_SUPPORT_UTFTEXTS_H
#define TESTS_SUPPORT_UTFTEXTS_H

#include <random>
#include <string>
#include <vector>

#include "qvOS/qvTypes.h"

typedef std::vector<uint32> Chars;

// ------------------------------------------------------------------------------------------------ the rules

inline uint32 ByteAt(const std::string& aText, size_t aPosition) {
  return aPosition < aText.size() ? static_cast<uint8>(aText[aPosition]) : 0u;
}

// The original forms of UTF-8: from how many bits on a character takes one byte more.
inline std::string Encode(uint32 aChar) {
  if (aChar < 0x80) {
    return std::string(1, static_cast<char>(aChar));
  }
  size_t theLength = aChar < 0x800       ? 2
                     : aChar < 0x10000   ? 3
                     : aChar < 0x200000  ? 4
                     : aChar < 0x4000000 ? 5
                                         : 6;
  std::string theBytes;
  for (size_t i = 1; i < theLength; ++i) {
    theBytes.insert(0, 1, static_cast<char>(0x80 | (aChar & 0x3F)));
    aChar >>= 6;
  }
  theBytes.insert(0, 1, static_cast<char>((0xFF00 >> theLength & 0xFF) | aChar));
  return theBytes;
}

// The length of the first character, or 0 when none is there.
inline size_t Decode(const std::string& aText, size_t aPosition, uint32* aChar) {
  uint32 theLead = ByteAt(aText, aPosition);
  size_t theLength = theLead < 0x80   ? 1
                     : theLead < 0xC0 ? 0
                     : theLead < 0xE0 ? 2
                     : theLead < 0xF0 ? 3
                     : theLead < 0xF8 ? 4
                     : theLead < 0xFC ? 5
                     : theLead < 0xFE ? 6
                                      : 0;
  if (theLength == 0 || aPosition + theLength > aText.size()) {
    return 0;
  }
  *aChar = theLength == 1 ? theLead : theLead & (0x7Fu >> theLength);
  for (size_t i = 1; i < theLength; ++i) {
    uint32 theByte = ByteAt(aText, aPosition + i);
    if (theByte < 0x80 || theByte > 0xBF) {
      return 0;
    }
    *aChar = *aChar * 64 + theByte - 0x80;
  }
  return Encode(*aChar).size() == theLength ? theLength : 0;
}

// The characters up to the first that is none, which is at *aValidLength.
inline Chars DecodeAll(const std::string& aText, size_t* aValidLength) {
  Chars theChars;
  size_t thePosition = 0;
  uint32 theChar = 0;
  while (thePosition < aText.size()) {
    size_t theTaken = Decode(aText, thePosition, &theChar);
    if (theTaken == 0) {
      break;
    }
    theChars.push_back(theChar);
    thePosition += theTaken;
  }
  *aValidLength = thePosition;
  return theChars;
}

inline std::string ToISO88591(const std::string& aText) {
  std::string theResult;
  for (size_t i = 0; i < aText.size();) {
    uint32 theLead = ByteAt(aText, i);
    if (theLead >= 0xE0) {
      theResult += '?';
      i += theLead >= 0xF0 ? 5 : 4;
    } else if (theLead >= 0xC0) {
      theResult += static_cast<char>(theLead << 6 | (ByteAt(aText, i + 1) & 0x3F));
      i += 2;
    } else {
      theResult += aText[i];
      i += 1;
    }
  }
  return theResult;
}

// *aResult gets what the worker has to say in the end, but for too little room.
inline std::string FromUTF16(const std::string& aText, bool afBigEndian, bool afStrict, int* aResult) {
  auto UnitAt = [&](size_t i) {
    return afBigEndian ? ByteAt(aText, i) << 8 | ByteAt(aText, i + 1)
                       : ByteAt(aText, i + 1) << 8 | ByteAt(aText, i);
  };
  std::string theUTF8;
  *aResult = 1;
  for (size_t i = 0; i + 2 <= aText.size(); i += 2) {
    uint32 theChar = UnitAt(i);
    if (theChar >= 0xD800 && theChar <= 0xDBFF) {
      if (i + 4 > aText.size()) {
        *aResult = 2;
        break;
      }
      uint32 theLow = UnitAt(i + 2);
      if (theLow >= 0xDC00 && theLow <= 0xDFFF) {
        theChar = ((theChar - 0xD800) << 10) + theLow + 0x2400;
        i += 1;  // not the two bytes of the low half
      } else if (afStrict) {
        *aResult = 3;
        break;
      }
    } else if (theChar >= 0xDC00 && theChar <= 0xDFFF && afStrict) {
      *aResult = 3;
      break;
    }
    theUTF8 += Encode(theChar);
  }
  return theUTF8;
}

// ----------------------------------------------------------------------------------------------- the texts

// Texts of runs of one length of character, in which now and then something is wrong.
class Texts {
 public:
  explicit Texts(unsigned aSeed) : mRandom(aSeed) {}

  uint32 Below(uint32 aLimit) { return static_cast<uint32>(mRandom()) % aLimit; }

  // A character that takes so many bytes, at the edges of what they hold more often than chance would have
  // it.
  uint32 CharOf(size_t aLength) {
    static const uint32 kMax[7] = {0, 0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF, 0x7FFFFFFF};
    uint32 theFirst = aLength == 1 ? 1 : kMax[aLength - 1] + 1;
    uint32 theSpan = kMax[aLength] - theFirst;
    return Below(8) == 0 ? theFirst : Below(8) == 0 ? kMax[aLength] : theFirst + Below(theSpan);
  }

  Chars Make(size_t aLength, size_t aMaxCharLength) {
    Chars theChars;
    while (theChars.size() < aLength) {
      size_t theCharLength = 1 + (Below(2) == 0 ? 0 : Below(static_cast<uint32>(aMaxCharLength)));
      size_t theRun = 1 + Below(Below(4) == 0 ? 60 : 7);
      for (size_t i = 0; i < theRun && theChars.size() < aLength; ++i) {
        theChars.push_back(CharOf(theCharLength));
      }
    }
    return theChars;
  }

  std::string MakeUTF8(size_t aLength, size_t aMaxCharLength = 3) {
    std::string theText;
    for (uint32 theChar : Make(aLength, Below(4) == 0 ? 6 : aMaxCharLength)) {
      theText += Encode(theChar);
    }
    return theText;
  }

  // One byte is another one or missing, or strange ones come in between.
  void Spoil(std::string& aText) {
    static const char* const kStrange[] = {
        "\x80", "\xC0\x80",     "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xFE",
        "\xFF", "\xED\xA0\x80", "\xC3",     "\xE2\x82",     "\xF0\x9F\x98",     "\xF4\x90\x80\x80"};
    if (aText.empty()) {
      return;
    }
    size_t thePosition = Below(static_cast<uint32>(aText.size()));
    switch (Below(3)) {
      case 0:
        aText[thePosition] = static_cast<char>(1 + Below(255));
        break;
      case 1:
        aText.erase(thePosition, 1);
        break;
      default:
        aText.insert(thePosition, kStrange[Below(12)]);
    }
  }

 private:
  std::mt19937 mRandom;
};

#endif
