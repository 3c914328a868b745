// What the platform's printf prints, the library's prints too, whole and cut; and any format at all is an
// error or a text of the length that is returned.
#include "qvraTools/format/qvFormat.h"

#include <stdio.h>

#include "FormatInput.h"
#include "qvraTools/qvMalloc.h"

namespace {

// The compiler cannot read formats that are made here.
#pragma clang diagnostic ignored "-Wformat-nonliteral"
#pragma clang diagnostic ignored "-Wformat-security"

void CompareWithPlatform(const FormatInput& anInput, size_t aRoom) {
  const char* theFormat = anInput.Format().c_str();
  CallWithArguments(anInput.Arguments(), [&](auto... aValues) {
    static char sOurs[4096];
    static char sTheirs[4096];
    int theLength = snprintf(sTheirs, sizeof(sTheirs), theFormat, aValues...);
    FUZZ_REQUIRE(qv_snprintf(sOurs, sizeof(sOurs), theFormat, aValues...) == theLength);
    FUZZ_REQUIRE(memcmp(sOurs, sTheirs, static_cast<size_t>(theLength) + 1) == 0);
    ExactBytes theCut(aRoom);
    FUZZ_REQUIRE(qv_snprintf(theCut.Data(), aRoom, theFormat, aValues...) == theLength);
    if (aRoom > 0) {
      size_t theKept = std::min(static_cast<size_t>(theLength), aRoom - 1);
      FUZZ_REQUIRE(memcmp(theCut.Data(), sTheirs, theKept) == 0 && theCut.Data()[theKept] == '\0');
    }
    size_t theAllocatedLength = 0;
    char* theAllocated = qv_lmnprintf(&theAllocatedLength, theFormat, aValues...);
    FUZZ_REQUIRE(theAllocatedLength == static_cast<size_t>(theLength));
    FUZZ_REQUIRE(memcmp(theAllocated, sTheirs, theAllocatedLength + 1) == 0);
    qvFree(theAllocated);
  });
}

// "%n" stores what has been counted so far.
void CheckCount(const FormatInput& anInput, size_t aRoom) {
  if (anInput.Arguments().size() < FormatInput::kMaxArguments &&
      anInput.Format().find('$') == std::string::npos) {
    std::string theFormat = anInput.Format() + "%ntail";
    CallWithArguments(anInput.Arguments(), [&](auto... aValues) {
      if constexpr (sizeof...(aValues) < FormatInput::kMaxArguments) {
        int theCount = -1;
        ExactBytes theCut(aRoom);
        int theLength = qv_snprintf(theCut.Data(), aRoom, theFormat.c_str(), aValues..., &theCount);
        FUZZ_REQUIRE(theLength == theCount + 4);
      }
    });
  }
}

// Whether eight integers are enough for the format, whatever it does with them: no pointer is followed and
// nothing but an integer is taken.
bool TakesIntegersOnly(const std::string& aFormat) {
  size_t theDirectives = 0;
  for (char theChar : aFormat) {
    theDirectives += theChar == '%' || theChar == '*' ? 1 : 0;
  }
  return theDirectives <= 8 && aFormat.find_first_of("nsaAeEfFgG") == std::string::npos;
}

// Any text as a format of integers; it is measured, cut and allocated.
void CheckAnyFormat(const std::string& aFormat, size_t aRoom) {
  ExactCopy theCopy(aFormat, true);
  const char* theFormat = theCopy.Data();
  int theLength = qv_snprintf(nullptr, 0, theFormat, 1LL, 2LL, 3LL, 4LL, 5LL, 6LL, 7LL, 8LL);
  ExactBytes theCut(aRoom);
  FUZZ_REQUIRE(qv_snprintf(theCut.Data(), aRoom, theFormat, 1LL, 2LL, 3LL, 4LL, 5LL, 6LL, 7LL, 8LL) ==
               theLength);
  if (theLength < 0) {
    int theCode = QVFORMAT_ERROR_CODE(theLength);
    FUZZ_REQUIRE(theCode >= VEXA_EOF && theCode <= VEXA_ERANGE && theCode != VEXA_ENOMEM);
    FUZZ_REQUIRE(static_cast<size_t>(QVFORMAT_ERROR_POSITION(theLength)) <= aFormat.size());
    FUZZ_REQUIRE(aRoom == 0 || theCut.Data()[0] == '\0');
    FUZZ_REQUIRE(qv_mnprintf(theFormat, 1LL, 2LL, 3LL, 4LL, 5LL, 6LL, 7LL, 8LL) == nullptr);
  } else if (theLength < 1 << 16) {  // a width of thousands of millions is only counted
    char* theText = qv_mnprintf(theFormat, 1LL, 2LL, 3LL, 4LL, 5LL, 6LL, 7LL, 8LL);
    size_t theKept = aRoom > 0 ? std::min(static_cast<size_t>(theLength), aRoom - 1) : 0;
    FUZZ_REQUIRE(memcmp(theText, theCut.Data(), theKept) == 0);
    FUZZ_REQUIRE(theText[theLength] == '\0' && (aRoom == 0 || theCut.Data()[theKept] == '\0'));
    qvFree(theText);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  uint8_t theKind = theInput.Byte();
  size_t theRoom = theInput.Byte() % 40;
  if (theKind % 4 == 0) {
    std::string theFormat = theInput.Text();
    if (TakesIntegersOnly(theFormat)) {
      CheckAnyFormat(theFormat, theRoom);
    }
    return 0;
  }
  FormatInput theFormatInput(&theInput, false);
  CompareWithPlatform(theFormatInput, theRoom);
  CheckCount(theFormatInput, theRoom);
  return 0;
}
