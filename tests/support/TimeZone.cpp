#include "support/TimeZone.h"

#include <stdlib.h>
#include <time.h>

TimeZone::TimeZone(const std::string& aRule) {
  const char* theOld = getenv("TZ");
  mfWasSet = theOld != nullptr;
  mOld = mfWasSet ? theOld : "";
  setenv("TZ", aRule.c_str(), 1);
  tzset();
}

TimeZone::~TimeZone() {
  if (mfWasSet) {
    setenv("TZ", mOld.c_str(), 1);
  } else {
    unsetenv("TZ");
  }
  tzset();
}
