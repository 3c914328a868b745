// UTF-8 is read character by character as its bit patterns say, what is valid survives the way to wide text
// and back, and nothing is written where it does not belong.
#include "qvraTools/qvUnicode.h"

#include <wchar.h>

#include <algorithm>
#include <vector>

#include "FuzzInput.h"
#include "TextRecipe.h"
#include "UTFModel.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvUTF.h"
#include "qvraTools/qvWString.h"

namespace {

void CheckFirstChar(const std::string& aText) {
  uint32_t theExpectedChar = 0;
  size_t theExpected = DecodeUTF8(aText, 0, &theExpectedChar);
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

// Whether the room holds the characters, then a terminator if there is to be one, and nothing else.
template <typename Char>
bool Holds(const std::vector<Char>& aRoom, const std::basic_string<Char>& anExpected, bool afTerminated) {
  std::vector<Char> theExpected(anExpected.begin(), anExpected.end());
  if (afTerminated) {
    theExpected.push_back(0);
  }
  theExpected.resize(aRoom.size(), '#');
  return theExpected == aRoom;
}

// A text without zero bytes, and room for aRoom characters.
void CheckToWide(const std::string& aText, size_t aRoom) {
  size_t theValidLength;
  std::wstring theExpected = DecodeAllUTF8(aText, &theValidLength);
  bool theValid = theValidLength == aText.size();
  ExactCopy theCopy(aText, true);
  FUZZ_REQUIRE(qvUnicode_UTF8ToWide(nullptr, theCopy.Data(), 0) ==
               (theValid ? theExpected.size() : kInvalid));
  std::vector<wchar_t> theWide(aRoom + 1, L'#');
  size_t theCount = qvUnicode_UTF8ToWide(theWide.data(), theCopy.Data(), aRoom);
  // What comes behind the room is not looked at.
  FUZZ_REQUIRE(theCount == (theExpected.size() >= aRoom ? aRoom : theValid ? theExpected.size() : kInvalid));
  FUZZ_REQUIRE(Holds(theWide, theExpected.substr(0, aRoom), theCount < aRoom));
  if (theValid) {
    CheckWideStrings(aText, theExpected);
    return;
  }
  FUZZ_REQUIRE(qvWString_NewFromUTF8(theCopy.Data()) == nullptr);
  FUZZ_REQUIRE(qvWString_S_FromUTF8(theCopy.Data()) == nullptr);
}

// Of a character bit 31 is ignored.
void CheckFromWide(const std::wstring& aWide, size_t aRoom) {
  std::string theWhole;
  std::string theExpected;
  bool theFits = true;
  for (wchar_t theChar : aWide) {
    std::string theBytes = EncodeUTF8(static_cast<uint32_t>(theChar) & 0x7FFFFFFF);
    theWhole += theBytes;
    theFits = theFits && theExpected.size() + theBytes.size() <= aRoom;
    theExpected += theFits ? theBytes : "";
  }
  FUZZ_REQUIRE(qvUnicode_WideToUTF8(nullptr, aWide.c_str(), 0) == theWhole.size());
  std::vector<char> theBytes(aRoom + 1, '#');
  FUZZ_REQUIRE(qvUnicode_WideToUTF8(theBytes.data(), aWide.c_str(), aRoom) == theExpected.size());
  FUZZ_REQUIRE(Holds(theBytes, theExpected, theExpected.size() < aRoom));
}

// The characters of the text, some of them with bit 31 set, and without those that are zero without it.
std::wstring StrangeWide(const std::string& aText, uint8_t aStep) {
  size_t theLength;
  std::wstring theWide = DecodeAllUTF8(aText, &theLength);
  theWide.erase(std::remove(theWide.begin(), theWide.end(), L'\0'), theWide.end());
  for (size_t i = aStep; i < theWide.size(); i += aStep + 1u) {
    theWide[i] = static_cast<wchar_t>(static_cast<uint32_t>(theWide[i]) | 0x80000000u);
  }
  return theWide;
}

// Little room, or about as much as so many characters or bytes take.
size_t RoomOf(uint8_t aByte, size_t aLength) {
  return aByte < 0x80 ? aByte % 32u : aLength + aByte % 16u - std::min<size_t>(aLength, 8);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  uint8_t theRoom = theInput.Byte();
  std::string theText = MakeText(theInput.Rest(), 5000);
  CheckFirstChar(theText);
  size_t theValidLength;
  std::wstring theWide = DecodeAllUTF8(theText, &theValidLength);
  CheckValidPart(theText, theValidLength);
  CheckToWide(theText.c_str(), RoomOf(theRoom, theWide.size()));
  std::wstring theStrange = StrangeWide(theText, theRoom % 8);
  CheckFromWide(theStrange, RoomOf(theRoom, theText.size()));
  CheckFromWide(theStrange, 6 * theStrange.size() + 1);
  return 0;
}
