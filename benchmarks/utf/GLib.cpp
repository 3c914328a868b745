// Converters stay open between the calls.

#include "Workload.h"

#include <glib.h>

static void ShowBlock(void* aBlock, size_t aLength, Result& aResult) {
  if (aBlock != nullptr) {
    aResult.Show(aBlock, aLength);
    g_free(aBlock);
  }
}

static void UTF8ToWide(const Sample& aSample, Result& aResult) {
  glong theLength = 0;
  gunichar* theBlock = g_utf8_to_ucs4(aSample.mUTF8.data(), static_cast<glong>(aSample.mUTF8.size()), nullptr,
                                      &theLength, nullptr);
  ShowBlock(theBlock, static_cast<size_t>(theLength) * sizeof(gunichar), aResult);
}

// Takes it on trust that the text is valid, which nobody else does.
static void UTF8ToWideUnchecked(const Sample& aSample, Result& aResult) {
  glong theLength = 0;
  gunichar* theBlock =
      g_utf8_to_ucs4_fast(aSample.mUTF8.data(), static_cast<glong>(aSample.mUTF8.size()), &theLength);
  ShowBlock(theBlock, static_cast<size_t>(theLength) * sizeof(gunichar), aResult);
}

static void WideToUTF8(const Sample& aSample, Result& aResult) {
  glong theLength = 0;
  char* theBlock = g_ucs4_to_utf8(reinterpret_cast<const gunichar*>(aSample.mWide.data()),
                                  static_cast<glong>(aSample.mWide.size()), nullptr, &theLength, nullptr);
  ShowBlock(theBlock, static_cast<size_t>(theLength), aResult);
}

static void Validate(const Sample& aSample, Result& aResult) {
  gboolean theValid =
      g_utf8_validate(aSample.mUTF8.data(), static_cast<gssize>(aSample.mUTF8.size()), nullptr);
  aResult.Show(&theValid, theValid ? 0 : 1);
}

// UTF-16 in the order of this machine, which is the little-endian one on all that we measure on.
static void LittleToUTF8(const Sample& aSample, Result& aResult) {
  glong theLength = 0;
  char* theBlock = g_utf16_to_utf8(reinterpret_cast<const gunichar2*>(aSample.mUTF16.data()),
                                   static_cast<glong>(aSample.mUTF16.size()), nullptr, &theLength, nullptr);
  ShowBlock(theBlock, static_cast<size_t>(theLength), aResult);
}

static void ConvertBytes(GIConv aConverter, const std::string& anInput, Result& aResult) {
  gsize theLength = 0;
  char* theBlock = g_convert_with_iconv(anInput.data(), static_cast<gssize>(anInput.size()), aConverter,
                                        nullptr, &theLength, nullptr);
  ShowBlock(theBlock, theLength, aResult);
}

static void BigToUTF8(const Sample& aSample, Result& aResult) {
  static const GIConv sConverter = g_iconv_open("UTF-8", "UTF-16BE");
  ConvertBytes(sConverter, aSample.mUTF16Big, aResult);
}

static void ISOToUTF8(const Sample& aSample, Result& aResult) {
  static const GIConv sConverter = g_iconv_open("UTF-8", "ISO-8859-1");
  ConvertBytes(sConverter, aSample.mISO, aResult);
}

static void UTF8ToISO(const Sample& aSample, Result& aResult) {
  static const GIConv sConverter = g_iconv_open("ISO-8859-1", "UTF-8");
  ConvertBytes(sConverter, aSample.mUTF8, aResult);
}

static const TextRow sRows[] = {
    UTF_ROWS(ROW_UTF8_TO_WIDE, "GLib", UTF8ToWide, WideOf),
    UTF_ROWS(ROW_UTF8_TO_WIDE, "(GLib, unchecked)", UTF8ToWideUnchecked, WideOf),
    UTF_ROWS(ROW_WIDE_TO_UTF8, "GLib", WideToUTF8, UTF8Of),
    UTF_ROWS(ROW_VALIDATE, "GLib", Validate, NothingOf),
    UTF_ROWS(ROW_LITTLE, "GLib", LittleToUTF8, UTF8Of),
    UTF_ROWS(ROW_BIG, "GLib", BigToUTF8, UTF8Of),
    ISO_ROWS(ROW_ISO_TO_UTF8, "GLib", ISOToUTF8, UTF8Of),
    ISO_ROWS(ROW_UTF8_TO_ISO, "GLib", UTF8ToISO, ISOOf),
};
