#include "UTFModel.h"

namespace {

bool IsBetween(uint32_t aNumber, uint32_t aMin, uint32_t aMax) { return aMin <= aNumber && aNumber <= aMax; }

uint32_t ByteAt(std::string_view aText, size_t aPosition) {
  return aPosition < aText.size() ? static_cast<uint8_t>(aText[aPosition]) : 0u;
}

// The lead bytes of each length: which bits mark them, and how they are set.
struct Pattern {
  uint8_t mMask;
  uint8_t mBits;
  uint32_t mSmallest;  // smaller characters have shorter forms
};

const Pattern kPatterns[6] = {{0x80, 0x00, 0},       {0xE0, 0xC0, 0x80},     {0xF0, 0xE0, 0x800},
                              {0xF8, 0xF0, 0x10000}, {0xFC, 0xF8, 0x200000}, {0xFE, 0xFC, 0x4000000}};

}  // namespace

// ------------------------------------------------------------------------------------------------ UTF-8

void AppendUTF8(uint32_t aChar, std::string& aText) {
  if (aChar < 0x80) {
    aText += static_cast<char>(aChar);
    return;
  }
  // Each byte behind the lead takes six bits, and the lead has one bit less for each of them.
  size_t theOthers = aChar < 0x800       ? 1
                     : aChar < 0x10000   ? 2
                     : aChar < 0x200000  ? 3
                     : aChar < 0x4000000 ? 4
                                         : 5;
  aText += static_cast<char>((0xFE << (6 - theOthers)) | aChar >> (6 * theOthers));
  while (theOthers > 0) {
    --theOthers;
    aText += static_cast<char>(0x80 | (aChar >> (6 * theOthers) & 0x3F));
  }
}

std::string EncodeUTF8(uint32_t aChar) {
  std::string theBytes;
  AppendUTF8(aChar, theBytes);
  return theBytes;
}

size_t DecodeUTF8(std::string_view aText, size_t aPosition, uint32_t* aChar) {
  if (aPosition == aText.size()) {
    return 0;
  }
  uint8_t theLead = static_cast<uint8_t>(aText[aPosition]);
  for (size_t i = 0; i < 6; ++i) {
    if ((theLead & kPatterns[i].mMask) != kPatterns[i].mBits) {
      continue;
    }
    *aChar = theLead & ~kPatterns[i].mMask & 0xFFu;
    for (size_t j = 1; j <= i; ++j) {
      if (aPosition + j == aText.size()) {
        return kIncomplete;
      }
      uint8_t theByte = static_cast<uint8_t>(aText[aPosition + j]);
      if (theByte < 0x80 || theByte > 0xBF) {
        return kInvalid;
      }
      *aChar = *aChar * 64 + (theByte - 0x80);
    }
    return *aChar < kPatterns[i].mSmallest ? kInvalid : i + 1;
  }
  return kInvalid;
}

std::wstring DecodeAllUTF8(std::string_view aText, size_t* aLength) {
  std::wstring theChars;
  theChars.reserve(aText.size());
  *aLength = 0;
  while (*aLength < aText.size()) {
    uint32_t theChar = 0;
    size_t theTaken = DecodeUTF8(aText, *aLength, &theChar);
    if (theTaken == kInvalid || theTaken == kIncomplete) {
      break;
    }
    theChars += static_cast<wchar_t>(theChar);
    *aLength += theTaken;
  }
  return theChars;
}

size_t ReadSequence(std::string_view aText, size_t aPosition, uint32_t* aChar) {
  uint32_t theLead = ByteAt(aText, aPosition);
  size_t theLength = theLead < 0x80 ? 1 : theLead < 0xC0 ? 0 : theLead < 0xE0 ? 2 : theLead < 0xF0 ? 3 : 4;
  if (theLength == 0 || theLead >= 0xF8 || aPosition + theLength > aText.size()) {
    return 0;
  }
  *aChar = theLength == 1 ? theLead : theLead & (0xFFu >> (theLength + 1));
  for (size_t i = 1; i < theLength; ++i) {
    if (!IsBetween(ByteAt(aText, aPosition + i), 0x80, 0xBF)) {
      return 0;
    }
    *aChar = *aChar << 6 | (ByteAt(aText, aPosition + i) & 0x3F);
  }
  return theLength < 4 || IsBetween(*aChar, 0x10000, 0x10FFFF) ? theLength : 0;
}

// ------------------------------------------------------------------------------------------- ISO-8859-1

std::string FromLatin(std::string_view aText) {
  std::string theUTF8;
  theUTF8.reserve(2 * aText.size());
  for (size_t i = 0; i < aText.size(); ++i) {
    AppendUTF8(ByteAt(aText, i), theUTF8);
  }
  return theUTF8;
}

std::string ToLatin(std::string_view aText) {
  std::string theLatin;
  theLatin.reserve(aText.size());
  for (size_t i = 0; i < aText.size();) {
    uint32_t theLead = ByteAt(aText, i);
    if (theLead < 0xC0) {
      theLatin += aText[i];
      i += 1;
    } else if (theLead < 0xE0) {
      theLatin += static_cast<char>(theLead << 6 | (ByteAt(aText, i + 1) & 0x3F));
      i += 2;
    } else {
      theLatin += '?';
      i += theLead < 0xF0 ? 4 : 5;  // one byte more than the sequence has
    }
  }
  return theLatin;
}

// ----------------------------------------------------------------------------------------------- UTF-16

std::string FromUTF16(std::string_view aText, bool afBigEndian, bool afStrict, int* aResult) {
  auto UnitAt = [&](size_t aPosition) {
    uint32_t theFirst = ByteAt(aText, aPosition);
    uint32_t theSecond = ByteAt(aText, aPosition + 1);
    return afBigEndian ? theFirst << 8 | theSecond : theSecond << 8 | theFirst;
  };
  std::string theUTF8;
  theUTF8.reserve(3 * (aText.size() / 2) + 1);
  *aResult = 1;
  for (size_t i = 0; i + 2 <= aText.size(); i += 2) {
    uint32_t theChar = UnitAt(i);
    bool theAlone = IsBetween(theChar, 0xDC00, 0xDFFF);
    if (IsBetween(theChar, 0xD800, 0xDBFF)) {
      if (i + 4 > aText.size()) {
        *aResult = 2;
        break;
      }
      uint32_t theLow = UnitAt(i + 2);
      theAlone = !IsBetween(theLow, 0xDC00, 0xDFFF);
      if (!theAlone) {
        theChar = ((theChar - 0xD800) << 10) + theLow + 0x2400;
        i += 1;  // and not the two bytes that the low half has
      }
    }
    if (theAlone && afStrict) {
      *aResult = 3;
      break;
    }
    AppendUTF8(theChar, theUTF8);
  }
  return theUTF8;
}

std::string FromUTF16(std::string_view aText, bool afBigEndian) {
  int theResult;
  return FromUTF16(aText, afBigEndian, false, &theResult);
}

std::string Units(std::string_view aText, bool afBigEndian) {
  std::string theUnits;
  theUnits.reserve(2 * aText.size());
  for (size_t i = 0; i < aText.size();) {
    uint32_t theChar = ByteAt(aText, i);
    size_t theLength = ReadSequence(aText, i, &theChar);
    char theHigh = static_cast<char>(theChar >> 8);
    char theLow = static_cast<char>(theChar);
    theUnits += afBigEndian ? theHigh : theLow;
    theUnits += afBigEndian ? theLow : theHigh;
    i += theLength > 0 ? theLength : 1;
  }
  return theUnits;
}

// --------------------------------------------------------------------------------------- modified UTF-8

std::string ToModified(std::string_view aText, bool* afValid) {
  std::string theModified;
  theModified.reserve(2 * aText.size());
  for (size_t i = 0; i < aText.size();) {
    uint32_t theChar = 0;
    size_t theLength = ReadSequence(aText, i, &theChar);
    if (theLength == 0) {
      *afValid = false;
      theModified += '?';
    } else if (theLength == 4) {
      AppendUTF8(0xD800 + ((theChar - 0x10000) >> 10), theModified);
      AppendUTF8(0xDC00 + (theChar & 0x3FF), theModified);
    } else if (theLength == 1 && theChar == 0) {
      theModified += "\xC0\x80";
    } else {
      theModified += aText.substr(i, theLength);
    }
    i += theLength > 0 ? theLength : 1;
  }
  return theModified;
}

std::string FromModified(std::string_view aText) {
  std::string theUTF8;
  theUTF8.reserve(aText.size());
  for (size_t i = 0; i < aText.size();) {
    uint32_t theChar = 0;
    uint32_t theLow = 0;
    size_t theLength = ReadSequence(aText, i, &theChar);
    if (theLength == 3 && IsBetween(theChar, 0xD800, 0xDBFF) && ReadSequence(aText, i + 3, &theLow) == 3 &&
        IsBetween(theLow, 0xDC00, 0xDFFF)) {
      AppendUTF8(((theChar - 0xD800) << 10) + theLow + 0x2400, theUTF8);
      i += 6;
    } else if (theLength == 0 || theLength == 4) {
      i += 1;  // dropped
    } else {
      bool theNulFlag = theLength == 2 && theChar == 0;
      theUTF8 += theNulFlag ? std::string_view("", 1) : aText.substr(i, theLength);
      i += theLength;
    }
  }
  return theUTF8;
}

bool HasSurrogates(std::string_view aText) {
  for (size_t i = 0; i + 1 < aText.size(); ++i) {
    if (ByteAt(aText, i) == 0xED && ByteAt(aText, i + 1) >= 0xA0) {
      return true;
    }
  }
  return false;
}
