// EnvironmentVariable.h - puts a variable of the environment back as it was when a test ends.
#ifndef TESTS_SUPPORT_ENVIRONMENTVARIABLE_H
#define TESTS_SUPPORT_ENVIRONMENTVARIABLE_H

#include <stdlib.h>

#include <string>

class EnvironmentVariable {
 public:
  explicit EnvironmentVariable(const std::string& aName) : mName(aName) {
    const char* theValue = getenv(aName.c_str());
    mfWasSet = theValue != nullptr;
    mOldValue = mfWasSet ? theValue : "";
  }
  ~EnvironmentVariable() { Set(mfWasSet ? mOldValue.c_str() : nullptr); }
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

  // Unsets the variable when aValue is null.
  void Set(const char* aValue) {
    if (aValue != nullptr) {
      setenv(mName.c_str(), aValue, 1);
    } else {
      unsetenv(mName.c_str());
    }
  }

 private:
  std::string mName;
  std::string mOldValue;
  bool mfWasSet;
};

#endif
