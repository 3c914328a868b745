// UTF-8 is read character by character as its bit patterns say, what is valid survives the way to wide text
// and back, and nothing is written where it does not belong.
#include "qvraTools/qvUnicode.h"

#include <wchar.h>

#include <algorithm>

#include "FuzzInput.h"
#include "TextRecipe.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvUTF.h"
#include "qvraTools/qvWString.h"
#include "tests/support/UTFModel.h"

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
  ExactCopy theCopy(aText);
  FUZZ_REQUIRE(qvUTF_MakeValidUTF8(theCopy.Data(), static_cast<int>(aText.size())) ==
               static_cast<int>(aValidLength));
  FUZZ_REQUIRE(memcmp(theCopy.Data(), aText.data(), aValidLength) == 0);
  FUZZ_REQUIRE(aValidLength == aText.size() || theCopy.Data()[aValidLength] == '\0');
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
  FUZZ_REQUIRE(qvWString_Length(theString) == 3 * aWide.size() && theString[3 * aWide.size()] == L'\0');
  for (size_t i = 0; i < 3; ++i) {
    FUZZ_REQUIRE(wmemcmp(theString + i * aWide.size(), aWide.data(), aWide.size()) == 0);
  }
  qvWString_Free(theString);
}

// Room for characters. Where none has been written is as it was.
template <typename Char>
class Room {
 public:
  explicit Room(size_t aLength) : mLength(aLength), mBytes(aLength * sizeof(Char)) {
    std::fill_n(Chars(), mLength, kUntouched);
  }

  Char* Chars() { return reinterpret_cast<Char*>(mBytes.Data()); }

  // Whether it holds so many characters, then a terminator if there is to be one, and nothing else.
  bool Holds(const Char* anExpected, size_t aLength, bool afTerminated) {
    size_t theUsed = aLength + (afTerminated ? 1 : 0);
    return theUsed <= mLength && memcmp(anExpected, Chars(), aLength * sizeof(Char)) == 0 &&
           (!afTerminated || Chars()[aLength] == 0) && IsUntouched(Chars() + theUsed, mLength - theUsed);
  }

 private:
  static constexpr Char kUntouched = '#';

  // Each is like the one behind it, and so all are like the first.
  static bool IsUntouched(const Char* aChars, size_t aLength) {
    return aLength == 0 ||
           (aChars[0] == kUntouched && memcmp(aChars, aChars + 1, (aLength - 1) * sizeof(Char)) == 0);
  }

  size_t mLength;
  ExactBytes mBytes;
};

// A text without zero bytes, and room for aRoom characters.
void CheckToWide(const std::string& aText, size_t aRoom) {
  size_t theValidLength;
  std::wstring theExpected = DecodeAllUTF8(aText, &theValidLength);
  bool theValid = theValidLength == aText.size();
  ExactCopy theCopy(aText, true);
  FUZZ_REQUIRE(qvUnicode_UTF8ToWide(nullptr, theCopy.Data(), 0) ==
               (theValid ? theExpected.size() : kInvalid));
  Room<wchar_t> theWide(aRoom + 1);
  size_t theCount = qvUnicode_UTF8ToWide(theWide.Chars(), theCopy.Data(), aRoom);
  // What comes behind the room is not looked at.
  FUZZ_REQUIRE(theCount == (theExpected.size() >= aRoom ? aRoom : theValid ? theExpected.size() : kInvalid));
  FUZZ_REQUIRE(theWide.Holds(theExpected.data(), std::min(theExpected.size(), aRoom), theCount < aRoom));
  if (theValid) {
    CheckWideStrings(aText, theExpected);
    return;
  }
  FUZZ_REQUIRE(qvWString_NewFromUTF8(theCopy.Data()) == nullptr);
  FUZZ_REQUIRE(qvWString_S_FromUTF8(theCopy.Data()) == nullptr);
}

// Of a character bit 31 is ignored.
void CheckFromWide(const std::wstring& aWide, size_t aRoom, const std::string& aWhole) {
  ExactCopy theCopy({reinterpret_cast<const char*>(aWide.c_str()), (aWide.size() + 1) * sizeof(wchar_t)});
  const wchar_t* theWide = reinterpret_cast<const wchar_t*>(theCopy.Data());
  FUZZ_REQUIRE(qvUnicode_WideToUTF8(nullptr, theWide, 0) == aWhole.size());
  // As many whole characters as there is room for.
  size_t theLength = std::min(aWhole.size(), aRoom);
  while (theLength < aWhole.size() && (aWhole[theLength] & 0xC0) == 0x80) {
    --theLength;
  }
  Room<char> theBytes(aRoom + 1);
  FUZZ_REQUIRE(qvUnicode_WideToUTF8(theBytes.Chars(), theWide, aRoom) == theLength);
  FUZZ_REQUIRE(theBytes.Holds(aWhole.data(), theLength, theLength < aRoom));
}

// The characters, some of them with bit 31 set, and without those that are zero without it.
std::wstring StrangeWide(const std::wstring& aWide, uint8_t aStep) {
  std::wstring theWide = aWide;
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
  std::wstring theStrange = StrangeWide(theWide, theRoom % 8);
  std::string theWhole;
  for (wchar_t theChar : theStrange) {
    AppendUTF8(static_cast<uint32_t>(theChar) & 0x7FFFFFFF, theWhole);
  }
  bool theEnoughFlag = aLength % 2 != 0;  // for characters of any length
  CheckFromWide(theStrange, theEnoughFlag ? 6 * theStrange.size() + 1 : RoomOf(theRoom, theWhole.size()),
                theWhole);
  return 0;
}
