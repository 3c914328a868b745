#include "support/BuiltLocale.h"

#include <ctype.h>
#include <gtest/gtest.h>
#include <locale.h>
#include <stdlib.h>

BuiltLocale::BuiltLocale(const std::string& aSource, const std::string& aCharacterSet, bool (*afWorks)()) {
  const std::string kName = aSource + "." + aCharacterSet;
  if (system("command -v localedef >/dev/null") != 0) {
    mWhyNot = "localedef is not installed";
    return;
  }
  if (!FileExists("/usr/share/i18n/locales/" + aSource)) {
    mWhyNot = "the sources of the locales are not installed (Debian package locales)";
    return;
  }
  // The result counts, not the exit code: localedef complains about trifles too.
  (void)!system(("localedef -c -i " + aSource + " -f " + aCharacterSet + " '" + mFolder.File(kName) +
                 "' >/dev/null 2>&1")
                    .c_str());
  mLocalePath.Set(mFolder.Path().c_str());
  if (setlocale(LC_ALL, kName.c_str()) != nullptr && afWorks()) {
    return;
  }
  mWhyNot = "the locale that was built cannot be used";
  if (std::string(QVLOG_TEST_EMULATOR).empty()) {
    ADD_FAILURE() << mWhyNot;  // under the emulator another C library reads it than has built it
  }
}

BuiltLocale::~BuiltLocale() { setlocale(LC_ALL, "C"); }

CommaLocale::CommaLocale()
    : BuiltLocale("de_DE", "UTF-8", [] { return std::string(",") == localeconv()->decimal_point; }) {}

TurkishLocale::TurkishLocale() : BuiltLocale("tr_TR", "ISO-8859-9", [] { return tolower('I') != 'i'; }) {}
