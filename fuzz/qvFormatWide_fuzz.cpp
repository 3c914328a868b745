// The wide family prints what the narrow family prints.
#include <wchar.h>

#include <memory>

#include "FormatInput.h"
#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvUnicode.h"

namespace {

#pragma clang diagnostic ignored "-Wformat-nonliteral"
#pragma clang diagnostic ignored "-Wformat-security"

std::wstring Widened(const std::string& aText) { return std::wstring(aText.begin(), aText.end()); }

// With ASCII texts, so that both count the same.
void CompareWithNarrow(const FormatInput& anInput, size_t aRoom) {
  const char* theFormat = anInput.Format().c_str();
  std::wstring theWideFormat = Widened(anInput.Format());
  CallWithArguments(anInput.Arguments(), [&](auto... aValues) {
    size_t theNarrowLength = 0;
    char* theNarrow = qv_lmnprintf(&theNarrowLength, theFormat, aValues...);
    size_t theWideLength = 0;
    wchar_t* theWide = qv_lmwprintf(&theWideLength, theWideFormat.c_str(), aValues...);
    std::wstring theExpected = Widened(std::string(theNarrow, theNarrowLength));
    FUZZ_REQUIRE(theWideLength == theNarrowLength);
    FUZZ_REQUIRE(wmemcmp(theWide, theExpected.c_str(), theWideLength + 1) == 0);
    std::unique_ptr<wchar_t[]> theCut(new wchar_t[aRoom]);
    FUZZ_REQUIRE(qv_swprintf(theCut.get(), aRoom, theWideFormat.c_str(), aValues...) ==
                 static_cast<int>(theWideLength));
    if (aRoom > 0) {
      size_t theKept = std::min(theWideLength, aRoom - 1);
      FUZZ_REQUIRE(wmemcmp(theCut.get(), theWide, theKept) == 0 && theCut[theKept] == L'\0');
    }
    qvFree(theNarrow);
    qvFree(theWide);
  });
}

// Any text, between other texts, as text of either width in either family.
void CompareTexts(const std::string& aText) {
  size_t theLength = qvUnicode_UTF8ToWide(nullptr, aText.c_str(), 0);
  if (theLength == static_cast<size_t>(-1)) {
    return;
  }
  std::wstring theWideText(theLength, L'\0');
  qvUnicode_UTF8ToWide(theWideText.data(), aText.c_str(), theLength);
  std::string theExpected = "<" + aText + "|" + aText + ">";
  std::wstring theWideExpected = L"<" + theWideText + L"|" + theWideText + L">";
  char* theNarrow = qv_mnprintf("<%s|%ls>", aText.c_str(), theWideText.c_str());
  FUZZ_REQUIRE(theExpected == theNarrow);
  wchar_t* theWide = qv_mwprintf(L"<%s|%ls>", aText.c_str(), theWideText.c_str());
  FUZZ_REQUIRE(theWideExpected == theWide);
  qvFree(theNarrow);
  qvFree(theWide);
}

// A format that is no text of integers is the same error in both families, at the same place.
void CompareErrors(const std::string& aFormat, size_t aRoom) {
  std::unique_ptr<char[]> theNarrow(new char[aRoom]);
  std::unique_ptr<wchar_t[]> theWide(new wchar_t[aRoom]);
  int theNarrowResult =
      qv_snprintf(theNarrow.get(), aRoom, aFormat.c_str(), 1LL, 2LL, 3LL, 4LL, 5LL, 6LL, 7LL, 8LL);
  FUZZ_REQUIRE(qv_swprintf(theWide.get(), aRoom, Widened(aFormat).c_str(), 1LL, 2LL, 3LL, 4LL, 5LL, 6LL, 7LL,
                           8LL) == theNarrowResult);
  for (size_t i = 0; i < aRoom && theNarrow[i] != '\0'; ++i) {
    FUZZ_REQUIRE(theWide[i] == static_cast<uint8_t>(theNarrow[i]));
  }
}

bool TakesIntegersOnly(const std::string& aFormat) {
  size_t theDirectives = 0;
  for (char theChar : aFormat) {
    theDirectives += theChar == '%' || theChar == '*' ? 1 : 0;
    if (static_cast<uint8_t>(theChar) >= 0x80) {
      return false;
    }
  }
  return theDirectives <= 8 && aFormat.find_first_of("nscaAeEfFgG") == std::string::npos;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  uint8_t theKind = theInput.Byte();
  size_t theRoom = theInput.Byte() % 40;
  if (theKind % 4 == 0) {
    std::string theText = theInput.Text();
    CompareTexts(theText);
    if (TakesIntegersOnly(theText)) {
      CompareErrors(theText, theRoom);
    }
    return 0;
  }
  CompareWithNarrow(FormatInput(&theInput, true), theRoom);
  return 0;
}
