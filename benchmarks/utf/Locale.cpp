// The C library's own functions, in a locale whose encoding is UTF-8.

#include "Workload.h"

#include <clocale>
#include <cwchar>

// Chosen before any row runs; the other contenders do not look at it.
static const char* const sLocale = setlocale(LC_CTYPE, "C.UTF-8");

static void UTF8ToWide(const Sample& aSample, Result& aResult) {
  mbstate_t theState = {};
  const char* theInput = aSample.mUTF8.c_str();
  size_t theLength = mbsrtowcs(aResult.WideRoom(), &theInput, Result::kRoom / sizeof(wchar_t), &theState);
  aResult.Show(aResult.Room(), theLength * sizeof(wchar_t));
}

static void WideToUTF8(const Sample& aSample, Result& aResult) {
  mbstate_t theState = {};
  const wchar_t* theInput = aSample.mWide.c_str();
  size_t theLength = wcsrtombs(aResult.Room(), &theInput, Result::kRoom, &theState);
  aResult.Show(aResult.Room(), theLength);
}

static void Validate(const Sample& aSample, Result& aResult) {
  mbstate_t theState = {};
  const char* theInput = aSample.mUTF8.c_str();
  size_t theLength = mbsrtowcs(nullptr, &theInput, 0, &theState);
  aResult.Show(&theLength, sLocale != nullptr && theLength == aSample.mWide.size() ? 0 : 1);
}

static const TextRow sRows[] = {
    UTF_ROWS(ROW_UTF8_TO_WIDE, "mbsrtowcs", UTF8ToWide, WideOf),
    UTF_ROWS(ROW_WIDE_TO_UTF8, "wcsrtombs", WideToUTF8, UTF8Of),
    UTF_ROWS(ROW_VALIDATE, "mbsrtowcs", Validate, NothingOf),
};
