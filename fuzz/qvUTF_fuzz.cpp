// Every converter of whole texts gives what its rules give byte by byte, and valid text survives the way
// there and back.
#include "qvraTools/qvUTF.h"

#include <malloc.h>

#include <algorithm>
#include <vector>

#include "FuzzInput.h"
#include "TextRecipe.h"
#include "UTFModel.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvUTF_p.h"

namespace {

// Takes a converter's result: as long as expected, with a terminator behind it, in a block of that size.
void CheckResult(char* aResult, const std::string& anExpected) {
  FUZZ_REQUIRE(malloc_usable_size(aResult) == anExpected.size() + 1);
  FUZZ_REQUIRE(memcmp(aResult, anExpected.c_str(), anExpected.size() + 1) == 0);
  qvFree(aResult);
}

// ------------------------------------------------------------------------------------------- ISO-8859-1

void CheckLatin(const std::string& aText) {
  ExactCopy theCopy(aText);
  std::string theUTF8 = FromLatin(aText);
  CheckResult(qvUTF_ISO88591ToUTF8(theCopy.Data(), aText.size()), theUTF8);
  CheckResult(qvUTF_UTF8ToISO88591(ExactCopy(theUTF8).Data(), theUTF8.size()), aText);
  CheckResult(qvUTF_UTF8ToISO88591(theCopy.Data(), aText.size()), ToLatin(aText));
}

// ----------------------------------------------------------------------------------------------- UTF-16

void CheckUTF16(const std::string& aText) {
  ExactCopy theCopy(aText);
  CheckResult(qvUTF_UTF16BEToUTF8(theCopy.Data(), aText.size()), FromUTF16(aText, true));
  CheckResult(qvUTF_UTF16LEToUTF8(theCopy.Data(), aText.size()), FromUTF16(aText, false));
  std::string theExpected;
  if (aText.size() >= 2) {
    theExpected = FromUTF16(aText.substr(2), static_cast<uint8_t>(aText[0]) == 0xFE);
  }
  CheckResult(qvUTF_UTF16BOMToUTF8(theCopy.Data(), aText.size()), theExpected);
}

// In room of some size: what does not fit is left out, and counted all the same.
void CheckUTF16Worker(const std::string& aText, bool afBigEndian, bool afStrict, size_t aMissing) {
  int theExpectedResult;
  std::string theExpected = FromUTF16(aText, afBigEndian, afStrict, &theExpectedResult) + '\0';
  size_t theRoom = theExpected.size() - std::min(aMissing, theExpected.size());
  std::unique_ptr<char[]> theBytes(new char[theRoom]);
  size_t theCount = 0;
  int theResult = qvUTF_S_UTF16ToUTF8(ExactCopy(aText).Data(), aText.size(), afBigEndian, afStrict,
                                      theBytes.get(), theRoom, &theCount);
  FUZZ_REQUIRE(theResult == (theRoom < theExpected.size() ? 4 : theExpectedResult));
  FUZZ_REQUIRE(theCount == theExpected.size());
  FUZZ_REQUIRE(memcmp(theBytes.get(), theExpected.data(), theRoom) == 0);
}

// --------------------------------------------------------------------------------------- modified UTF-8

// Into as much room as is needed and into one byte less, where the rest has to be there all the same.
template <typename Converter>
void CheckIntoRoom(Converter aConverter, const std::string& aText, const std::string& anExpected) {
  ExactCopy theCopy(aText);
  int theLength = static_cast<int>(aText.size());
  for (size_t theMissing : {0, 1}) {
    if (theMissing <= anExpected.size()) {
      std::vector<char> theRoom(anExpected.size() - theMissing);
      FUZZ_REQUIRE(aConverter(theCopy.Data(), theLength, theRoom.data(), theRoom.size()) ==
                   (theMissing == 0 ? 1 : 0));
      FUZZ_REQUIRE(std::equal(theRoom.begin(), theRoom.end(), anExpected.begin()));
    }
  }
}

// With a length, UTF-8 gets a terminator when just that has room, too.
void CheckTerminator(const std::string& aText, const std::string& anExpected) {
  std::vector<char> theRoom(anExpected.size() + 1, '#');
  FUZZ_REQUIRE(qvUTF_ModifiedUTF8ToUTF8(ExactCopy(aText).Data(), static_cast<int>(aText.size()),
                                        theRoom.data(), theRoom.size()) == 1);
  FUZZ_REQUIRE(memcmp(theRoom.data(), anExpected.c_str(), theRoom.size()) == 0);
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
  CheckTerminator(aText, FromModified(aText));
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
  std::string theText = MakeText(std::string(reinterpret_cast<const char*>(aBytes), aLength), 256);
  CheckLatin(theText);
  for (const std::string& theUnits : {theText, Units(theText, true), Units(theText, false)}) {
    CheckUTF16(theUnits);
    CheckUTF16Worker(theUnits, true, aLength % 2 != 0, aLength % 32);
    CheckUTF16Worker(theUnits, false, aLength % 2 == 0, 1);
  }
  CheckModified(theText);
  CheckToEncodedNul(theText);
  return 0;
}
