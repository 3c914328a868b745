// Every converter of whole texts gives what its rules give byte by byte, and valid text survives the way
// there and back.
#include "qvraTools/qvUTF.h"

#include <vector>

#include "FuzzInput.h"
#include "qvraTools/qvMalloc.h"

namespace {

std::string Encode(uint32_t aChar) {
  aChar = aChar > 0x10FFFF ? 0xFFFD : aChar;
  std::string theBytes;
  if (aChar < 0x80) {
    theBytes += static_cast<char>(aChar);
  } else if (aChar < 0x800) {
    theBytes += static_cast<char>(0xC0 | aChar >> 6);
  } else if (aChar < 0x10000) {
    theBytes += static_cast<char>(0xE0 | aChar >> 12);
    theBytes += static_cast<char>(0x80 | (aChar >> 6 & 0x3F));
  } else {
    theBytes += static_cast<char>(0xF0 | aChar >> 18);
    theBytes += static_cast<char>(0x80 | (aChar >> 12 & 0x3F));
    theBytes += static_cast<char>(0x80 | (aChar >> 6 & 0x3F));
  }
  return aChar < 0x80 ? theBytes : theBytes + static_cast<char>(0x80 | (aChar & 0x3F));
}

bool IsBetween(uint32_t aNumber, uint32_t aMin, uint32_t aMax) { return aMin <= aNumber && aNumber <= aMax; }

uint32_t ByteAt(const std::string& aText, size_t aPosition) {
  return aPosition < aText.size() ? static_cast<uint8_t>(aText[aPosition]) : 0u;
}

// Takes a converter's result: as long as expected, with a terminator behind it.
void CheckResult(char* aResult, const std::string& anExpected) {
  FUZZ_REQUIRE(memcmp(aResult, anExpected.c_str(), anExpected.size() + 1) == 0);
  qvFree(aResult);
}

// ------------------------------------------------------------------------------------------- ISO-8859-1

std::string ToLatin(const std::string& aText) {
  std::string theLatin;
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

void CheckLatin(const std::string& aText) {
  ExactCopy theCopy(aText);
  std::string theUTF8;
  for (size_t i = 0; i < aText.size(); ++i) {
    theUTF8 += Encode(ByteAt(aText, i));
  }
  CheckResult(qvUTF_ISO88591ToUTF8(theCopy.Data(), aText.size()), theUTF8);
  CheckResult(qvUTF_UTF8ToISO88591(ExactCopy(theUTF8).Data(), theUTF8.size()), aText);
  CheckResult(qvUTF_UTF8ToISO88591(theCopy.Data(), aText.size()), ToLatin(aText));
}

// ----------------------------------------------------------------------------------------------- UTF-16

std::string FromUTF16(const std::string& aText, bool afBigEndian) {
  auto UnitAt = [&](size_t aPosition) {
    uint32_t theFirst = ByteAt(aText, aPosition);
    uint32_t theSecond = ByteAt(aText, aPosition + 1);
    return afBigEndian ? theFirst << 8 | theSecond : theSecond << 8 | theFirst;
  };
  std::string theUTF8;
  for (size_t i = 0; i + 2 <= aText.size(); i += 2) {
    uint32_t theChar = UnitAt(i);
    if (IsBetween(theChar, 0xD800, 0xDBFF)) {
      if (i + 4 > aText.size()) {
        break;
      }
      uint32_t theLow = UnitAt(i + 2);
      if (IsBetween(theLow, 0xDC00, 0xDFFF)) {
        theChar = ((theChar - 0xD800) << 10) + theLow + 0x2400;
        i += 1;  // and not the two bytes that the low half has
      }
    }
    theUTF8 += Encode(theChar);
  }
  return theUTF8;
}

void CheckUTF16(const std::string& aText) {
  ExactCopy theCopy(aText);
  CheckResult(qvUTF_UTF16BEToUTF8(theCopy.Data(), aText.size()), FromUTF16(aText, true));
  CheckResult(qvUTF_UTF16LEToUTF8(theCopy.Data(), aText.size()), FromUTF16(aText, false));
  std::string theExpected;
  if (aText.size() >= 2) {
    theExpected = FromUTF16(aText.substr(2), ByteAt(aText, 0) == 0xFE);
  }
  CheckResult(qvUTF_UTF16BOMToUTF8(theCopy.Data(), aText.size()), theExpected);
}

// --------------------------------------------------------------------------------------- modified UTF-8

// The length of the sequence at a position and its character; 0 for bytes that are none. Long forms of 2 and
// 3 bytes are sequences too.
size_t ReadSequence(const std::string& aText, size_t aPosition, uint32_t* aChar) {
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

// *afValid is cleared when the text is no UTF-8.
std::string ToModified(const std::string& aText, bool* afValid) {
  std::string theModified;
  for (size_t i = 0; i < aText.size();) {
    uint32_t theChar = 0;
    size_t theLength = ReadSequence(aText, i, &theChar);
    if (theLength == 0) {
      *afValid = false;
      theModified += '?';
    } else if (theLength == 4) {
      theModified += Encode(0xD800 + ((theChar - 0x10000) >> 10)) + Encode(0xDC00 + (theChar & 0x3FF));
    } else if (theLength == 1 && theChar == 0) {
      theModified += "\xC0\x80";
    } else {
      theModified += aText.substr(i, theLength);
    }
    i += theLength > 0 ? theLength : 1;
  }
  return theModified;
}

std::string FromModified(const std::string& aText) {
  std::string theUTF8;
  for (size_t i = 0; i < aText.size();) {
    uint32_t theChar = 0;
    uint32_t theLow = 0;
    size_t theLength = ReadSequence(aText, i, &theChar);
    if (theLength == 3 && IsBetween(theChar, 0xD800, 0xDBFF) && ReadSequence(aText, i + 3, &theLow) == 3 &&
        IsBetween(theLow, 0xDC00, 0xDFFF)) {
      theUTF8 += Encode(((theChar - 0xD800) << 10) + theLow + 0x2400);
      i += 6;
    } else if (theLength == 0 || theLength == 4) {
      i += 1;  // dropped
    } else {
      bool theNulFlag = aText.compare(i, 2, "\xC0\x80") == 0;
      theUTF8 += theNulFlag ? std::string(1, '\0') : aText.substr(i, theLength);
      i += theLength;
    }
  }
  return theUTF8;
}

// Into as much room as is needed, and into one byte less.
template <typename Converter>
void CheckIntoRoom(Converter aConverter, const std::string& aText, const std::string& anExpected) {
  ExactCopy theCopy(aText);
  int theLength = static_cast<int>(aText.size());
  std::vector<char> theRoom(anExpected.size());
  FUZZ_REQUIRE(aConverter(theCopy.Data(), theLength, theRoom.data(), theRoom.size()) == 1);
  FUZZ_REQUIRE(anExpected.empty() || memcmp(theRoom.data(), anExpected.data(), anExpected.size()) == 0);
  if (!anExpected.empty()) {
    theRoom.assign(anExpected.size() - 1, '#');
    FUZZ_REQUIRE(aConverter(theCopy.Data(), theLength, theRoom.data(), theRoom.size()) == 0);
  }
}

bool HasSurrogates(const std::string& aText) {
  for (size_t i = 0; i + 1 < aText.size(); ++i) {
    if (ByteAt(aText, i) == 0xED && ByteAt(aText, i + 1) >= 0xA0) {
      return true;
    }
  }
  return false;
}

void CheckModified(const std::string& aText) {
  ExactCopy theCopy(aText);
  int theLength = static_cast<int>(aText.size());
  bool theValid = true;
  std::string theModified = ToModified(aText, &theValid);
  int theSize = static_cast<int>(theModified.size() + 1);
  FUZZ_REQUIRE(qvUTF_ModifiedUTF8LengthOfUTF8(theCopy.Data(), theLength, 0) == (theValid ? theSize : -1));
  FUZZ_REQUIRE(qvUTF_ModifiedUTF8LengthOfUTF8(theCopy.Data(), theLength, 1) == theSize);
  CheckIntoRoom(qvUTF_ModifiedUTF8ToUTF8, aText, FromModified(aText));
  // The bytes C0 80 in a UTF-8 text end the process on purpose.
  if (aText.find("\xC0\x80") != std::string::npos) {
    return;
  }
  CheckIntoRoom(qvUTF_UTF8ToModifiedUTF8, aText, theModified + '\0');
  CheckIntoRoom(qvUTF_ModifiedUTF8ToUTF8, theModified, FromModified(theModified));
  FUZZ_REQUIRE(!theValid || HasSurrogates(aText) || FromModified(theModified) == aText);
}

// A modified text whose length is not known ends at its first encoded NUL.
void CheckToEncodedNul(const std::string& aText) {
  std::string theText = std::string(aText.c_str()) + "\xC0\x80";
  theText.resize(theText.find("\xC0\x80") + 2);
  std::string theExpected = FromModified(theText);
  std::vector<char> theRoom(theExpected.size());
  FUZZ_REQUIRE(qvUTF_ModifiedUTF8ToUTF8(ExactCopy(theText).Data(), -1, theRoom.data(), theRoom.size()) == 1);
  FUZZ_REQUIRE(memcmp(theRoom.data(), theExpected.data(), theExpected.size()) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  std::string theText(reinterpret_cast<const char*>(aBytes), aLength);
  CheckLatin(theText);
  CheckUTF16(theText);
  CheckModified(theText);
  CheckToEncodedNul(theText);
  return 0;
}
