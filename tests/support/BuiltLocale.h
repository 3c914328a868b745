// BuiltLocale.h - a locale that is built for the test that needs it.
#ifndef TESTS_SUPPORT_BUILTLOCALE_H
#define TESTS_SUPPORT_BUILTLOCALE_H

#include <string>

#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"

// Builds a locale in a folder of its own, whatever locales the machine has, and makes it the process's until
// the object goes. Building takes seconds: put what needs it into one test.
class BuiltLocale {
 public:
  // From the source of a language and country, "de_DE", and a character set, "UTF-8"; afWorks tells whether
  // the locale is in force.
  BuiltLocale(const std::string& aSource, const std::string& aCharacterSet, bool (*afWorks)());
  ~BuiltLocale();

  // Why the locale is not in force; empty when it is. Skip the test with this text. A locale that could be
  // built but does not work has failed the test already.
  const std::string& WhyNot() const { return mWhyNot; }

 private:
  ScratchFolder mFolder;
  EnvironmentVariable mLocalePath{"LOCPATH"};
  std::string mWhyNot;
};

// The decimal sign is the comma.
class CommaLocale : public BuiltLocale {
 public:
  CommaLocale();
};

// The small letter of 'I' is not 'i'.
class TurkishLocale : public BuiltLocale {
 public:
  TurkishLocale();
};

#endif
