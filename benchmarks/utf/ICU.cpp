// By its functions, whose own text is UTF-16, so that 32-bit text takes two steps; by its converters, which
// stay open between the calls; and by the macros for one character, in a loop of the caller's.

#include "Workload.h"

#include <unicode/ucnv.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <cstdlib>

static UChar* MiddleRoom() {
  static UChar* const sRoom = static_cast<UChar*>(malloc(Result::kRoom));
  return sRoom;
}

static const int32_t kMiddleMax = Result::kRoom / sizeof(UChar);

static void UTF8ToWide(const Sample& aSample, Result& aResult) {
  UErrorCode theError = U_ZERO_ERROR;
  int32_t theMiddle = 0;
  int32_t theLength = 0;
  u_strFromUTF8(MiddleRoom(), kMiddleMax, &theMiddle, aSample.mUTF8.data(),
                static_cast<int32_t>(aSample.mUTF8.size()), &theError);
  u_strToUTF32(reinterpret_cast<UChar32*>(aResult.Room()), Result::kRoom / sizeof(UChar32), &theLength,
               MiddleRoom(), theMiddle, &theError);
  aResult.Show(aResult.Room(), U_SUCCESS(theError) ? static_cast<size_t>(theLength) * sizeof(UChar32) : 0);
}

static void WideToUTF8(const Sample& aSample, Result& aResult) {
  UErrorCode theError = U_ZERO_ERROR;
  int32_t theMiddle = 0;
  int32_t theLength = 0;
  u_strFromUTF32(MiddleRoom(), kMiddleMax, &theMiddle, reinterpret_cast<const UChar32*>(aSample.mWide.data()),
                 static_cast<int32_t>(aSample.mWide.size()), &theError);
  u_strToUTF8(aResult.Room(), Result::kRoom, &theLength, MiddleRoom(), theMiddle, &theError);
  aResult.Show(aResult.Room(), U_SUCCESS(theError) ? static_cast<size_t>(theLength) : 0);
}

static void UTF8ToWideByMacros(const Sample& aSample, Result& aResult) {
  const char* theText = aSample.mUTF8.data();
  int32_t theEnd = static_cast<int32_t>(aSample.mUTF8.size());
  wchar_t* theOutput = aResult.WideRoom();
  for (int32_t i = 0; i < theEnd;) {
    UChar32 theChar;
    U8_NEXT(theText, i, theEnd, theChar);
    if (theChar < 0) {
      return;
    }
    *theOutput++ = theChar;
  }
  aResult.Show(aResult.Room(), static_cast<size_t>(theOutput - aResult.WideRoom()) * sizeof(wchar_t));
}

static void WideToUTF8ByMacros(const Sample& aSample, Result& aResult) {
  char* theOutput = aResult.Room();
  int32_t theLength = 0;
  UBool theError = false;
  for (wchar_t theChar : aSample.mWide) {
    U8_APPEND(theOutput, theLength, static_cast<int32_t>(Result::kRoom), theChar, theError);
  }
  aResult.Show(aResult.Room(), theError ? 0 : static_cast<size_t>(theLength));
}

// Asked for no more than the length.
static void Validate(const Sample& aSample, Result& aResult) {
  UErrorCode theError = U_ZERO_ERROR;
  int32_t theLength = 0;
  u_strFromUTF8(nullptr, 0, &theLength, aSample.mUTF8.data(), static_cast<int32_t>(aSample.mUTF8.size()),
                &theError);
  aResult.Show(&theLength, theError == U_BUFFER_OVERFLOW_ERROR ? 0 : 1);
}

static void ValidateByMacros(const Sample& aSample, Result& aResult) {
  const char* theText = aSample.mUTF8.data();
  int32_t theEnd = static_cast<int32_t>(aSample.mUTF8.size());
  for (int32_t i = 0; i < theEnd;) {
    UChar32 theChar;
    U8_NEXT(theText, i, theEnd, theChar);
    if (theChar < 0) {
      aResult.Show(theText, 1);
      return;
    }
  }
  aResult.Show(theText, 0);
}

// UTF-16 in the order of this machine, which is the little-endian one on all that we measure on.
static void LittleToUTF8(const Sample& aSample, Result& aResult) {
  size_t theMax = aSample.mUTF16.size() * 3;
  char* theBlock = static_cast<char*>(malloc(theMax + 1));
  UErrorCode theError = U_ZERO_ERROR;
  int32_t theLength = 0;
  u_strToUTF8(theBlock, static_cast<int32_t>(theMax + 1), &theLength,
              reinterpret_cast<const UChar*>(aSample.mUTF16.data()),
              static_cast<int32_t>(aSample.mUTF16.size()), &theError);
  aResult.Show(theBlock, U_SUCCESS(theError) ? static_cast<size_t>(theLength) : 0);
  free(theBlock);
}

static UConverter* Opened(const char* aName) {
  UErrorCode theError = U_ZERO_ERROR;
  return ucnv_open(aName, &theError);
}

// A block for the worst case: the size of the result is not known before.
static void ConvertBytes(UConverter* aTo, UConverter* aFrom, const std::string& anInput, size_t aMax,
                         Result& aResult) {
  char* theBlock = static_cast<char*>(malloc(aMax + 1));
  char* theOutput = theBlock;
  const char* theInput = anInput.data();
  UErrorCode theError = U_ZERO_ERROR;
  ucnv_convertEx(aTo, aFrom, &theOutput, theBlock + aMax + 1, &theInput, anInput.data() + anInput.size(),
                 nullptr, nullptr, nullptr, nullptr, true, true, &theError);
  aResult.Show(theBlock, U_SUCCESS(theError) ? static_cast<size_t>(theOutput - theBlock) : 0);
  free(theBlock);
}

static UConverter* UTF8() {
  static UConverter* const sConverter = Opened("UTF-8");
  return sConverter;
}

static UConverter* ISO() {
  static UConverter* const sConverter = Opened("ISO-8859-1");
  return sConverter;
}

static void BigToUTF8(const Sample& aSample, Result& aResult) {
  static UConverter* const sConverter = Opened("UTF-16BE");
  ConvertBytes(UTF8(), sConverter, aSample.mUTF16Big, aSample.mUTF16Big.size() / 2 * 3, aResult);
}

static void ISOToUTF8(const Sample& aSample, Result& aResult) {
  ConvertBytes(UTF8(), ISO(), aSample.mISO, aSample.mISO.size() * 2, aResult);
}

static void UTF8ToISO(const Sample& aSample, Result& aResult) {
  ConvertBytes(ISO(), UTF8(), aSample.mUTF8, aSample.mUTF8.size(), aResult);
}

static const TextRow sRows[] = {
    UTF_ROWS(ROW_UTF8_TO_WIDE, "ICU", UTF8ToWide, WideOf),
    UTF_ROWS(ROW_UTF8_TO_WIDE, "ICU macros", UTF8ToWideByMacros, WideOf),
    UTF_ROWS(ROW_WIDE_TO_UTF8, "ICU", WideToUTF8, UTF8Of),
    UTF_ROWS(ROW_WIDE_TO_UTF8, "ICU macros", WideToUTF8ByMacros, UTF8Of),
    UTF_ROWS(ROW_VALIDATE, "ICU", Validate, NothingOf),
    UTF_ROWS(ROW_VALIDATE, "ICU macros", ValidateByMacros, NothingOf),
    UTF_ROWS(ROW_LITTLE, "ICU", LittleToUTF8, UTF8Of),
    UTF_ROWS(ROW_BIG, "ICU", BigToUTF8, UTF8Of),
    ISO_ROWS(ROW_ISO_TO_UTF8, "ICU", ISOToUTF8, UTF8Of),
    ISO_ROWS(ROW_UTF8_TO_ISO, "ICU", UTF8ToISO, ISOOf),
};
