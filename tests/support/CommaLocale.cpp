#include "support/CommaLocale.h"

#include <gtest/gtest.h>
#include <locale.h>
#include <stdlib.h>

CommaLocale::CommaLocale() {
  const std::string kName = "de_DE.UTF-8";
  if (system("command -v localedef >/dev/null") != 0) {
    mWhyNot = "localedef is not installed";
    return;
  }
  if (!FileExists("/usr/share/i18n/locales/de_DE")) {
    mWhyNot = "the sources of the locales are not installed (Debian package locales)";
    return;
  }
  // The result counts, not the exit code: localedef complains about trifles too.
  (void)!system(("localedef -c -i de_DE -f UTF-8 '" + mFolder.File(kName) + "' >/dev/null 2>&1").c_str());
  mLocalePath.Set(mFolder.Path().c_str());
  if (setlocale(LC_ALL, kName.c_str()) != nullptr && std::string(",") == localeconv()->decimal_point) {
    return;
  }
  mWhyNot = "the locale that was built cannot be used";
  if (std::string(QVLOG_TEST_EMULATOR).empty()) {
    ADD_FAILURE() << mWhyNot;  // under the emulator another C library reads it than has built it
  }
}

CommaLocale::~CommaLocale() { setlocale(LC_ALL, "C"); }
