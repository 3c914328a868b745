// CommaLocale.h - a locale whose decimal sign is the comma, built for the test that needs it.
#ifndef TESTS_SUPPORT_COMMALOCALE_H
#define TESTS_SUPPORT_COMMALOCALE_H

#include <string>

#include "support/EnvironmentVariable.h"
#include "support/ScratchFolder.h"

// Builds the German locale in a folder of its own, whatever locales the machine has, and makes it the
// process's until the object goes. Building takes seconds: put what needs it into one test.
class CommaLocale {
 public:
  CommaLocale();
  ~CommaLocale();

  // Why the locale is not in force; empty when it is. Skip the test with this text. A locale that could be
  // built but does not work has failed the test already.
  const std::string& WhyNot() const { return mWhyNot; }

 private:
  ScratchFolder mFolder;
  EnvironmentVariable mLocalePath{"LOCPATH"};
  std::string mWhyNot;
};

#endif
