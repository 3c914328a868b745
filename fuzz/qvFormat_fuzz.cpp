// Any format is an error or a text of the length that is returned; where the platform's printf knows the
// directive too, both give the same.
#include "qvraTools/format/qvFormat.h"

#include <stdio.h>

#include <vector>

#include "FuzzInput.h"
#include "qvraTools/qvMalloc.h"

namespace {

// A directive from the input's bytes: flags, width, precision and a conversion that both sides know.
std::string MakeDirective(FuzzInput* anInput, const char* aModifier, const char* aConversions) {
  static const char kFlags[] = "-+ #0";
  std::string theDirective = "%";
  uint8_t theFlags = anInput->Byte();
  for (int i = 0; i < 5; ++i) {
    if (theFlags & (1 << i)) {
      theDirective += kFlags[i];
    }
  }
  if (theFlags & 0x20) {
    theDirective += std::to_string(anInput->Byte() % 80 + 1);
  }
  if (theFlags & 0x40) {
    theDirective += "." + std::to_string(anInput->Byte() % 60);
  }
  return theDirective + aModifier + aConversions[anInput->Byte() % strlen(aConversions)];
}

// Whether eight integers are enough for the format, whatever it does with them: no pointer is followed,
// nothing but an integer is taken, and no width of more than 9999 only costs time.
bool IsHarmless(const std::string& aFormat) {
  if (aFormat.find_first_of("nsSC*$LaAeEfFgG") != std::string::npos) {
    return false;
  }
  size_t theDirectives = 0;
  size_t theDigits = 0;
  for (char theChar : aFormat) {
    theDirectives += theChar == '%' ? 1 : 0;
    theDigits = theChar >= '0' && theChar <= '9' ? theDigits + 1 : 0;
    if (theDirectives > 8 || theDigits > 4) {
      return false;
    }
  }
  return true;
}

template <typename Value>
void Compare(const std::string& aDirective, Value aValue) {
  char theOurs[512];
  char theTheirs[512];
  int theOurLength = qv_snprintf(theOurs, sizeof(theOurs), aDirective.c_str(), aValue);
  int theTheirLength = snprintf(theTheirs, sizeof(theTheirs), aDirective.c_str(), aValue);
  FUZZ_REQUIRE(theOurLength == theTheirLength);
  FUZZ_REQUIRE(strcmp(theOurs, theTheirs) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  uint8_t theKind = theInput.Byte();
  uint64_t theNumber = theInput.Number();
  double theDouble;
  memcpy(&theDouble, &theNumber, sizeof(theDouble));
  switch (theKind % 5) {
    case 0:
      Compare(MakeDirective(&theInput, "", "diuoxX"), static_cast<int>(theNumber));
      break;
    case 1:
      Compare(MakeDirective(&theInput, "ll", "diuoxX"), static_cast<long long>(theNumber));
      break;
    case 2:
      if (!qv_isnan(theDouble)) {  // whose sign is not printed here
        Compare(MakeDirective(&theInput, "", "eEfFgGaA"), theDouble);
      }
      break;
    case 3: {
      std::string theDirective = MakeDirective(&theInput, "", "s");
      Compare(theDirective, theInput.Text().c_str());
      break;
    }
    default: {
      // Any format of integers, with as many arguments as it can name; it is measured and cut.
      std::string theFormat = theInput.Text();
      if (!IsHarmless(theFormat)) {
        break;
      }
      char theSmall[8];
      int theLength =
          qv_snprintf(theSmall, sizeof(theSmall), theFormat.c_str(), 1LL, 2LL, 3LL, 4LL, 5LL, 6LL, 7LL, 8LL);
      FUZZ_REQUIRE(memchr(theSmall, 0, sizeof(theSmall)) != nullptr);
      FUZZ_REQUIRE(theLength >= 0 || -theLength % 256 <= VEXA_ECUSTOM);
    }
  }
  return 0;
}
