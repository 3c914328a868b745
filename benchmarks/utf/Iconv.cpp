// One descriptor for each pair of encodings stays open, as a program in a hurry keeps it.

#include "Workload.h"

#include <iconv.h>

#include <cstdlib>

static iconv_t Opened(const char* aTo, const char* aFrom) { return iconv_open(aTo, aFrom); }

// The number of bytes written, or more than there can be when the input is not converted whole.
static size_t Converted(iconv_t aDescriptor, const void* anInput, size_t aLength, char* anOutput,
                        size_t aMax) {
  char* theInput = static_cast<char*>(const_cast<void*>(anInput));
  size_t theLeft = aMax;
  size_t theResult = iconv(aDescriptor, &theInput, &aLength, &anOutput, &theLeft);
  return theResult == 0 && aLength == 0 ? aMax - theLeft : aMax + 1;
}

static void IntoRoom(iconv_t aDescriptor, const void* anInput, size_t aLength, Result& aResult) {
  aResult.Show(aResult.Room(), Converted(aDescriptor, anInput, aLength, aResult.Room(), Result::kRoom));
}

// A block for the worst case: the size of the result is not known before.
static void IntoBlock(iconv_t aDescriptor, const std::string& anInput, size_t aMax, Result& aResult) {
  char* theBlock = static_cast<char*>(malloc(aMax + 1));
  size_t theLength = Converted(aDescriptor, anInput.data(), anInput.size(), theBlock, aMax);
  if (theLength <= aMax) {
    theBlock[theLength] = '\0';
    aResult.Show(theBlock, theLength);
  }
  free(theBlock);
}

static void UTF8ToWide(const Sample& aSample, Result& aResult) {
  static const iconv_t sDescriptor = Opened("WCHAR_T", "UTF-8");
  IntoRoom(sDescriptor, aSample.mUTF8.data(), aSample.mUTF8.size(), aResult);
}

static void WideToUTF8(const Sample& aSample, Result& aResult) {
  static const iconv_t sDescriptor = Opened("UTF-8", "WCHAR_T");
  IntoRoom(sDescriptor, aSample.mWide.data(), aSample.mWide.size() * sizeof(wchar_t), aResult);
}

// There is no other way than a conversion whose result is not used.
static void Validate(const Sample& aSample, Result& aResult) {
  static const iconv_t sDescriptor = Opened("WCHAR_T", "UTF-8");
  size_t theLength =
      Converted(sDescriptor, aSample.mUTF8.data(), aSample.mUTF8.size(), aResult.Room(), Result::kRoom);
  aResult.Show(aResult.Room(), theLength <= Result::kRoom ? 0 : 1);
}

static void LittleToUTF8(const Sample& aSample, Result& aResult) {
  static const iconv_t sDescriptor = Opened("UTF-8", "UTF-16LE");
  IntoBlock(sDescriptor, aSample.mUTF16Little, aSample.mUTF16Little.size() / 2 * 3, aResult);
}

static void BigToUTF8(const Sample& aSample, Result& aResult) {
  static const iconv_t sDescriptor = Opened("UTF-8", "UTF-16BE");
  IntoBlock(sDescriptor, aSample.mUTF16Big, aSample.mUTF16Big.size() / 2 * 3, aResult);
}

static void ISOToUTF8(const Sample& aSample, Result& aResult) {
  static const iconv_t sDescriptor = Opened("UTF-8", "ISO-8859-1");
  IntoBlock(sDescriptor, aSample.mISO, aSample.mISO.size() * 2, aResult);
}

static void UTF8ToISO(const Sample& aSample, Result& aResult) {
  static const iconv_t sDescriptor = Opened("ISO-8859-1", "UTF-8");
  IntoBlock(sDescriptor, aSample.mUTF8, aSample.mUTF8.size(), aResult);
}

static const TextRow sRows[] = {
    UTF_ROWS(ROW_UTF8_TO_WIDE, "iconv", UTF8ToWide, WideOf),
    UTF_ROWS(ROW_WIDE_TO_UTF8, "iconv", WideToUTF8, UTF8Of),
    UTF_ROWS(ROW_VALIDATE, "iconv", Validate, NothingOf),
    UTF_ROWS(ROW_LITTLE, "iconv", LittleToUTF8, UTF8Of),
    UTF_ROWS(ROW_BIG, "iconv", BigToUTF8, UTF8Of),
    ISO_ROWS(ROW_ISO_TO_UTF8, "iconv", ISOToUTF8, UTF8Of),
    ISO_ROWS(ROW_UTF8_TO_ISO, "iconv", UTF8ToISO, ISOOf),
};
