// Every converter of whole texts gives what its rules give byte by byte, and valid text survives the way
// there and back.
#include "qvraTools/qvUTF.h"

#include <malloc.h>

#include <algorithm>

#include "FuzzInput.h"
#include "TextRecipe.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvUTF_p.h"
#include "tests/support/UTFModel.h"

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

// In room of some size: what does not fit is left out, and counted all the same. The expected text has a
// terminator.
void CheckUTF16Worker(const ExactBytes& aText, bool afBigEndian, bool afStrict, size_t aMissing,
                      const std::string& anExpected, int anExpectedResult) {
  ExactBytes theRoom(anExpected.size() - std::min(aMissing, anExpected.size()));
  size_t theCount = 0;
  int theResult = qvUTF_S_UTF16ToUTF8(aText.Data(), aText.Size(), afBigEndian, afStrict, theRoom.Data(),
                                      theRoom.Size(), &theCount);
  FUZZ_REQUIRE(theResult == (theRoom.Size() < anExpected.size() ? 4 : anExpectedResult));
  FUZZ_REQUIRE(theCount == anExpected.size());
  FUZZ_REQUIRE(memcmp(theRoom.Data(), anExpected.data(), theRoom.Size()) == 0);
}

// The mark at the start says which order it is, and does not count.
void CheckByteOrderMark(const std::string& aText) {
  std::string theExpected;
  if (aText.size() >= 2) {
    theExpected = FromUTF16(std::string_view(aText).substr(2), static_cast<uint8_t>(aText[0]) == 0xFE);
  }
  CheckResult(qvUTF_UTF16BOMToUTF8(ExactCopy(aText).Data(), aText.size()), theExpected);
}

// One of the two orders, in room that lacks so many bytes.
void CheckUTF16(const std::string& aText, bool afBigEndian, bool afStrict, size_t aMissing) {
  ExactCopy theCopy(aText);
  int theResult;
  std::string theExpected = FromUTF16(aText, afBigEndian, false, &theResult);
  CheckResult(afBigEndian ? qvUTF_UTF16BEToUTF8(theCopy.Data(), aText.size())
                          : qvUTF_UTF16LEToUTF8(theCopy.Data(), aText.size()),
              theExpected);
  if (afStrict) {
    theExpected = FromUTF16(aText, afBigEndian, true, &theResult);
  }
  theExpected += '\0';
  CheckUTF16Worker(theCopy, afBigEndian, afStrict, aMissing, theExpected, theResult);
}

// --------------------------------------------------------------------------------------- modified UTF-8

// Into as much room as is needed, or into one byte less, where the rest has to be there all the same.
template <typename Converter>
void CheckIntoRoom(Converter aConverter, const std::string& aText, const std::string& anExpected,
                   bool afTooSmall) {
  size_t theMissing = afTooSmall && !anExpected.empty() ? 1 : 0;
  ExactBytes theRoom(anExpected.size() - theMissing);
  FUZZ_REQUIRE(aConverter(ExactCopy(aText).Data(), static_cast<int>(aText.size()), theRoom.Data(),
                          theRoom.Size()) == (theMissing == 0 ? 1 : 0));
  FUZZ_REQUIRE(memcmp(theRoom.Data(), anExpected.data(), theRoom.Size()) == 0);
}

// With a length, UTF-8 gets a terminator when just that has room, too.
void CheckTerminator(const std::string& aText, const std::string& anExpected) {
  ExactBytes theRoom(anExpected.size() + 1);
  memset(theRoom.Data(), '#', theRoom.Size());
  FUZZ_REQUIRE(qvUTF_ModifiedUTF8ToUTF8(ExactCopy(aText).Data(), static_cast<int>(aText.size()),
                                        theRoom.Data(), theRoom.Size()) == 1);
  FUZZ_REQUIRE(memcmp(theRoom.Data(), anExpected.c_str(), theRoom.Size()) == 0);
}

void CheckModified(const std::string& aText, bool afTooSmall) {
  ExactCopy theCopy(aText);
  int theLength = static_cast<int>(aText.size());
  bool theValid = true;
  std::string theModified = ToModified(aText, &theValid);
  int theSize = static_cast<int>(theModified.size() + 1);
  FUZZ_REQUIRE(qvUTF_ModifiedUTF8LengthOfUTF8(theCopy.Data(), theLength, 0) == (theValid ? theSize : -1));
  FUZZ_REQUIRE(qvUTF_ModifiedUTF8LengthOfUTF8(theCopy.Data(), theLength, 1) == theSize);
  std::string theUTF8 = FromModified(aText);
  CheckIntoRoom(qvUTF_ModifiedUTF8ToUTF8, aText, theUTF8, afTooSmall);
  CheckTerminator(aText, theUTF8);
  // The bytes C0 80 in a UTF-8 text end the process on purpose.
  if (aText.find("\xC0\x80") != std::string::npos) {
    return;
  }
  CheckIntoRoom(qvUTF_UTF8ToModifiedUTF8, aText, theModified + '\0', afTooSmall);
  std::string theBack = FromModified(theModified);
  CheckIntoRoom(qvUTF_ModifiedUTF8ToUTF8, theModified, theBack, afTooSmall);
  FUZZ_REQUIRE(!theValid || HasSurrogates(aText) || theBack == aText);
}

// A modified text whose length is not known ends at its first encoded NUL.
void CheckToEncodedNul(const std::string& aText) {
  std::string theText = std::string(aText.c_str()) + "\xC0\x80";
  theText.resize(theText.find("\xC0\x80") + 2);
  std::string theExpected = FromModified(theText);
  ExactBytes theRoom(theExpected.size());
  FUZZ_REQUIRE(qvUTF_ModifiedUTF8ToUTF8(ExactCopy(theText).Data(), -1, theRoom.Data(), theRoom.Size()) == 1);
  FUZZ_REQUIRE(memcmp(theRoom.Data(), theExpected.data(), theExpected.size()) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  std::string theText = MakeText(std::string(reinterpret_cast<const char*>(aBytes), aLength), 256);
  CheckLatin(theText);
  // What could be tried one after the other with each text is tried with one or the other: the length says.
  auto theChoice = [aLength](size_t aNumber) { return (aLength >> aNumber) % 2 != 0; };
  CheckUTF16(theText, theChoice(0), theChoice(1), aLength % 32);
  CheckByteOrderMark(theText);
  // The same characters as units, which are read in the order that they have or in the other one.
  std::string theUnits = Units(theText, theChoice(2));
  CheckUTF16(theUnits, theChoice(0), theChoice(1), theChoice(3) ? aLength % 32 : 1);
  CheckModified(theText, theChoice(0));
  CheckToEncodedNul(theText);
  return 0;
}
