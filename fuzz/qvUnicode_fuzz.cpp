// UTF-8 is read character by character as its bit patterns say, and what is valid survives the way to wide
// text and back.
#include "qvraTools/qvUnicode.h"

#include <wchar.h>

#include <vector>

#include "FuzzInput.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvUTF.h"
#include "qvraTools/qvWString.h"

namespace {

const size_t kInvalid = static_cast<size_t>(-1);
const size_t kIncomplete = static_cast<size_t>(-2);

// The lead bytes of each length: which bits mark them, and how they are set.
struct Pattern {
  uint8_t mMask;
  uint8_t mBits;
  uint32_t mSmallest;  // smaller characters have shorter forms
};

const Pattern kPatterns[6] = {{0x80, 0x00, 0},       {0xE0, 0xC0, 0x80},     {0xF0, 0xE0, 0x800},
                              {0xF8, 0xF0, 0x10000}, {0xFC, 0xF8, 0x200000}, {0xFE, 0xFC, 0x4000000}};

size_t Decode(const std::string& aText, uint32_t* aChar) {
  if (aText.empty()) {
    return 0;
  }
  uint8_t theLead = static_cast<uint8_t>(aText[0]);
  for (size_t i = 0; i < 6; ++i) {
    if ((theLead & kPatterns[i].mMask) != kPatterns[i].mBits) {
      continue;
    }
    *aChar = theLead & ~kPatterns[i].mMask & 0xFFu;
    for (size_t j = 1; j <= i; ++j) {
      if (j == aText.size()) {
        return kIncomplete;
      }
      uint8_t theByte = static_cast<uint8_t>(aText[j]);
      if (theByte < 0x80 || theByte > 0xBF) {
        return kInvalid;
      }
      *aChar = *aChar * 64 + (theByte - 0x80);
    }
    return *aChar < kPatterns[i].mSmallest ? kInvalid : i + 1;
  }
  return kInvalid;
}

// The characters up to the first that is none; *aLength is where they end.
std::wstring DecodeAll(const std::string& aText, size_t* aLength) {
  std::wstring theChars;
  *aLength = 0;
  while (*aLength < aText.size()) {
    uint32_t theChar = 0;
    size_t theTaken = Decode(aText.substr(*aLength, 7), &theChar);
    if (theTaken == kInvalid || theTaken == kIncomplete) {
      break;
    }
    theChars += static_cast<wchar_t>(theChar);
    *aLength += theTaken;
  }
  return theChars;
}

void CheckFirstChar(const std::string& aText) {
  uint32_t theExpectedChar = 0;
  size_t theExpected = Decode(aText, &theExpectedChar);
  uint32 theChar = 0;
  size_t theTaken = qvUnicode_ReadUTF8Char(ExactCopy(aText).Data(), aText.size(), &theChar);
  FUZZ_REQUIRE(theTaken == theExpected);
  if (theTaken == 0 || theTaken == kInvalid || theTaken == kIncomplete) {
    return;
  }
  FUZZ_REQUIRE(theChar == theExpectedChar);
  FUZZ_REQUIRE(qvUnicode_UTF8CharLength(theChar) == theTaken);
  char theBytes[8];
  for (size_t theRoom = 0; theRoom <= theTaken; ++theRoom) {
    memset(theBytes, '#', sizeof(theBytes));
    FUZZ_REQUIRE(qvUnicode_WriteUTF8Char(theBytes, theRoom, theChar) == theTaken);
    FUZZ_REQUIRE(memcmp(theBytes, aText.data(), theRoom) == 0 && theBytes[theRoom] == '#');
  }
}

void CheckValidPart(const std::string& aText, size_t aValidLength) {
  std::string theCopy = aText;
  FUZZ_REQUIRE(qvUTF_MakeValidUTF8(theCopy.data(), static_cast<int>(theCopy.size())) ==
               static_cast<int>(aValidLength));
  FUZZ_REQUIRE(theCopy.compare(0, aValidLength, aText, 0, aValidLength) == 0);
  FUZZ_REQUIRE(aValidLength == aText.size() || theCopy[aValidLength] == '\0');
}

void CheckWideStrings(const std::string& aText, const std::wstring& aWide) {
  wchar_t* theString = qvWString_NewFromUTF8(aText.c_str());
  FUZZ_REQUIRE(aWide == theString && qvWString_Length(theString) == aWide.size());
  char* theBack = qvWString_GetUTF8(theString);
  FUZZ_REQUIRE(aText == theBack);
  qvFree(theBack);
  char* theASCII = qvWString_GetASCII(theString);
  for (size_t i = 0; i < aWide.size(); ++i) {
    uint32_t theChar = static_cast<uint32_t>(aWide[i]);
    FUZZ_REQUIRE(static_cast<uint8_t>(theASCII[i]) == (theChar < 256 ? theChar : '.'));
  }
  FUZZ_REQUIRE(theASCII[aWide.size()] == '\0');
  qvFree(theASCII);
  theString = qvWString_Prepend(qvWString_Append(theString, aWide.c_str()), aWide.c_str());
  FUZZ_REQUIRE(aWide + aWide + aWide == theString && qvWString_Length(theString) == 3 * aWide.size());
  qvWString_Free(theString);
}

// A text without zero bytes, and room for fewer characters than it may have.
void CheckWide(const std::string& aText, size_t aRoom) {
  size_t theValidLength;
  std::wstring theExpected = DecodeAll(aText, &theValidLength);
  bool theValid = theValidLength == aText.size();
  ExactCopy theCopy(aText, true);
  FUZZ_REQUIRE(qvUnicode_UTF8ToWide(nullptr, theCopy.Data(), 0) ==
               (theValid ? theExpected.size() : kInvalid));
  std::vector<wchar_t> theWide(aRoom + 1, L'#');
  size_t theCount = qvUnicode_UTF8ToWide(theWide.data(), theCopy.Data(), aRoom);
  // What comes behind the room is not looked at.
  FUZZ_REQUIRE(theCount == (theExpected.size() >= aRoom ? aRoom : theValid ? theExpected.size() : kInvalid));
  if (theCount != kInvalid) {
    FUZZ_REQUIRE(wmemcmp(theWide.data(), theExpected.data(), theCount) == 0);
    FUZZ_REQUIRE(theWide[theCount] == (theCount < aRoom ? L'\0' : L'#'));
  }
  if (!theValid) {
    FUZZ_REQUIRE(qvWString_NewFromUTF8(theCopy.Data()) == nullptr);
    FUZZ_REQUIRE(qvWString_S_FromUTF8(theCopy.Data()) == nullptr);
    return;
  }
  CheckWideStrings(aText, theExpected);
  FUZZ_REQUIRE(qvUnicode_WideToUTF8(nullptr, theExpected.c_str(), 0) == aText.size());
  std::vector<char> theBytes(aRoom + 1, '#');
  theCount = qvUnicode_WideToUTF8(theBytes.data(), theExpected.c_str(), aRoom);
  // No character is cut, so up to six bytes of the room may stay free.
  FUZZ_REQUIRE(theCount <= aRoom && theCount + 6 > std::min(aRoom, aText.size()));
  FUZZ_REQUIRE(memcmp(theBytes.data(), aText.data(), theCount) == 0);
  FUZZ_REQUIRE(theBytes[theCount] == (theCount < aRoom ? '\0' : '#'));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  size_t theRoom = theInput.Byte() % 32;
  std::string theText = theInput.Rest();
  CheckFirstChar(theText);
  size_t theValidLength;
  DecodeAll(theText, &theValidLength);
  CheckValidPart(theText, theValidLength);
  CheckWide(theText.c_str(), theRoom);
  return 0;
}
