#include "Workload.h"

#include <qvraTools/qvMalloc.h>
#include <qvraTools/qvUTF.h>
#include <qvraTools/qvUnicode.h>

#include <cstring>

static void UTF8ToWide(const Sample& aSample, Result& aResult) {
  size_t theLength =
      qvUnicode_UTF8ToWide(aResult.WideRoom(), aSample.mUTF8.c_str(), Result::kRoom / sizeof(wchar_t));
  aResult.Show(aResult.Room(), theLength * sizeof(wchar_t));
}

static void WideToUTF8(const Sample& aSample, Result& aResult) {
  size_t theLength = qvUnicode_WideToUTF8(aResult.Room(), aSample.mWide.c_str(), Result::kRoom);
  aResult.Show(aResult.Room(), theLength);
}

// A valid text is left alone.
static void Validate(const Sample& aSample, Result& aResult) {
  char* theText = const_cast<char*>(aSample.mUTF8.data());
  int theLength = static_cast<int>(aSample.mUTF8.size());
  aResult.Show(theText, qvUTF_MakeValidUTF8(theText, theLength) == theLength ? 0 : 1);
}

static void Measure(const Sample& aSample, Result& aResult) {
  size_t theLength = qvUnicode_UTF8ToWide(nullptr, aSample.mUTF8.c_str(), 0);
  aResult.Show(&theLength, theLength == aSample.mWide.size() ? 0 : 1);
}

static void ShowBlock(char* aBlock, size_t aLength, Result& aResult) {
  aResult.Show(aBlock, aLength);
  qvFree(aBlock);
}

static void LittleToUTF8(const Sample& aSample, Result& aResult) {
  ShowBlock(qvUTF_UTF16LEToUTF8(aSample.mUTF16Little.data(), aSample.mUTF16Little.size()),
            aSample.mUTF8.size(), aResult);
}

static void BigToUTF8(const Sample& aSample, Result& aResult) {
  ShowBlock(qvUTF_UTF16BEToUTF8(aSample.mUTF16Big.data(), aSample.mUTF16Big.size()), aSample.mUTF8.size(),
            aResult);
}

static void ISOToUTF8(const Sample& aSample, Result& aResult) {
  ShowBlock(qvUTF_ISO88591ToUTF8(aSample.mISO.data(), aSample.mISO.size()), aSample.mUTF8.size(), aResult);
}

static void UTF8ToISO(const Sample& aSample, Result& aResult) {
  ShowBlock(qvUTF_UTF8ToISO88591(aSample.mUTF8.data(), aSample.mUTF8.size()), aSample.mISO.size(), aResult);
}

static const TextRow sRows[] = {
    UTF_ROWS(ROW_UTF8_TO_WIDE, "qvLog", UTF8ToWide, WideOf),
    UTF_ROWS(ROW_WIDE_TO_UTF8, "qvLog", WideToUTF8, UTF8Of),
    UTF_ROWS(ROW_VALIDATE, "qvLog", Validate, NothingOf),
    UTF_ROWS(ROW_VALIDATE, "(qvLog, counting)", Measure, NothingOf),
    UTF_ROWS(ROW_LITTLE, "qvLog", LittleToUTF8, UTF8Of),
    UTF_ROWS(ROW_BIG, "qvLog", BigToUTF8, UTF8Of),
    ISO_ROWS(ROW_ISO_TO_UTF8, "qvLog", ISOToUTF8, UTF8Of),
    ISO_ROWS(ROW_UTF8_TO_ISO, "qvLog", UTF8ToISO, ISOOf),
};
