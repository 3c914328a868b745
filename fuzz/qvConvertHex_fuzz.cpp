// Hexadecimal text, MAC and IPv4 addresses: read as the C library reads them byte by byte, and the same after
// writing.
#include <arpa/inet.h>
#include <ctype.h>

#include "FuzzInput.h"
#include "qvraTools/qvConvert.h"
#include "qvraTools/qvMalloc.h"

namespace {

// The bytes that pairs of digits stand for; false when one is no digit.
bool ReadPairs(const std::string& aDigits, std::string* aBytes) {
  aBytes->clear();
  for (size_t i = 0; i < aDigits.size(); i += 2) {
    char thePair[3] = {aDigits[i], aDigits[i + 1], '\0'};
    if (!isxdigit(static_cast<uint8_t>(thePair[0])) || !isxdigit(static_cast<uint8_t>(thePair[1]))) {
      return false;
    }
    *aBytes += static_cast<char>(strtoul(thePair, nullptr, 16));
  }
  return true;
}

std::string Swapped(std::string aBytes, size_t aWordSize) {
  for (size_t i = 0; i < aBytes.size(); i += aWordSize) {
    std::string theWord(aBytes.rbegin() + static_cast<long>(aBytes.size() - i - aWordSize),
                        aBytes.rbegin() + static_cast<long>(aBytes.size() - i));
    aBytes.replace(i, aWordSize, theWord);
  }
  return aBytes;
}

void CheckReading(const std::string& aText, size_t aWordSize, int anOrder) {
  uint8* theBuffer = reinterpret_cast<uint8*>(&theBuffer);
  size_t theLength = 1;
  int theResult = qvConvert_hexstrntobuffer(ExactCopy(aText).Data(), aText.size(), aWordSize, anOrder,
                                            &theBuffer, &theLength);
  bool thePrefixed = aText.size() >= 2 && aText[0] == '0' && (aText[1] == 'x' || aText[1] == 'X');
  std::string theDigits = thePrefixed ? aText.substr(2) : aText;
  std::string theBytes;
  if (theDigits.size() % 2 != 0 || theDigits.size() % aWordSize != 0 || !ReadPairs(theDigits, &theBytes)) {
    FUZZ_REQUIRE(theResult == kqvConvertError_Invalid);
    return;
  }
  FUZZ_REQUIRE(theResult == kqvConvertError_None);
  FUZZ_REQUIRE(theLength == theBytes.size());
  // An odd half of a word is not stored.
  if (theLength % aWordSize == 0) {
    std::string theExpected = anOrder == kqvConvertBuffer_BigEndian ? theBytes : Swapped(theBytes, aWordSize);
    FUZZ_REQUIRE(theLength == 0 || memcmp(theBuffer, theExpected.data(), theLength) == 0);
  }
  qvFree(theBuffer);
}

void CheckWriting(const std::string& aBytes, size_t aWordSize, int anOrder) {
  char* theHex = nullptr;
  int theResult = qvConvert_buffertohexstr(reinterpret_cast<uint8*>(ExactCopy(aBytes).Data()), aBytes.size(),
                                           aWordSize, anOrder, &theHex);
  if (aBytes.size() % aWordSize != 0) {
    FUZZ_REQUIRE(theResult == kqvConvertError_Invalid && theHex == nullptr);
    return;
  }
  std::string theOrdered = anOrder == kqvConvertBuffer_BigEndian ? aBytes : Swapped(aBytes, aWordSize);
  FUZZ_REQUIRE(theResult == kqvConvertError_None);
  std::string theExpected;
  for (char theByte : theOrdered) {
    char thePair[3];
    snprintf(thePair, sizeof(thePair), "%02x", static_cast<uint8_t>(theByte));
    theExpected += thePair;
  }
  FUZZ_REQUIRE(theExpected == theHex);
  CheckReading(theHex, aWordSize, anOrder);
  qvFree(theHex);
}

void CheckMAC(const std::string& aText) {
  uint8 theMAC[6] = {1, 2, 3, 4, 5, 6};
  int theResult = qvConvert_strtoMAC(ExactCopy(aText, true).Data(), theMAC);
  std::string theText = aText;
  std::string theDigits;
  for (size_t i = 0; i < 6; ++i) {
    bool theSeparated = i == 5 || (i * 3 + 2 < theText.size() && strchr("-:", theText[i * 3 + 2]));
    theDigits += theSeparated && theText.size() >= i * 3 + 2 ? theText.substr(i * 3, 2) : "?";
  }
  std::string theBytes;
  bool theValid = theDigits.size() == 12 && ReadPairs(theDigits, &theBytes) &&
                  theText.find_first_not_of(" \t\n\v\f\r", 17) == std::string::npos;
  FUZZ_REQUIRE(theResult == (theValid ? kqvConvertError_None : kqvConvertError_Invalid));
  if (theValid) {
    FUZZ_REQUIRE(memcmp(theMAC, theBytes.data(), 6) == 0);
    char* theWritten = qvConvert_MACtostr(theMAC, theText[2]);
    uint8 theMACAgain[6];
    FUZZ_REQUIRE(qvConvert_strtoMAC(theWritten, theMACAgain) == kqvConvertError_None);
    FUZZ_REQUIRE(memcmp(theMAC, theMACAgain, 6) == 0);
    qvFree(theWritten);
  }
}

void CheckIP(uint64_t aNumber) {
  struct in_addr theAddress = {static_cast<in_addr_t>(aNumber)};
  char theExpected[INET_ADDRSTRLEN];
  FUZZ_REQUIRE(inet_ntop(AF_INET, &theAddress, theExpected, sizeof(theExpected)) != nullptr);
  char* theText = qvConvert_iptostr(theAddress.s_addr);
  FUZZ_REQUIRE(strcmp(theText, theExpected) == 0);
  qvFree(theText);
  uint32 theWord = static_cast<uint32>(aNumber);
  FUZZ_REQUIRE(qvConvert_SwapUInt32(theWord) == __builtin_bswap32(theWord));
  FUZZ_REQUIRE(qvConvert_SwapUInt16(static_cast<uint16>(theWord)) ==
               __builtin_bswap16(static_cast<uint16>(theWord)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  uint8_t theKind = theInput.Byte();
  size_t theWordSize = static_cast<size_t>(1) << (theKind % 3);
  int theOrder = theKind / 3 % 3;
  std::string theText = theInput.Rest();
  CheckReading(theText, theWordSize, theOrder);
  CheckWriting(theText, theWordSize, theOrder);
  CheckMAC(theText.c_str());
  CheckIP(FuzzInput(aBytes, aLength).Number() >> 24);
  return 0;
}
