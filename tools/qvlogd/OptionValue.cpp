#include "tools/qvlogd/OptionValue.h"

#include <string.h>
#include <strings.h>

#include "qvraTools/qvConvert.h"

struct Unit {
  const char* mName;
  uint64 mFactor;
};

static const Unit kSizeUnits[] = {{"", 1}, {"K", 1024}, {"M", 1048576}, {"G", 1073741824}};

static const Unit kDurationUnits[] = {
    {"", 1000}, {"ms", 1}, {"s", 1000}, {"m", 60000}, {"h", 3600000}, {"d", 86400000},
};

// Splits the text into its digits and the unit behind them; the product must fit the range.
template <size_t kCount>
static bool OptionValue_S_ParseWithUnit(const char* aText, const Unit (&aUnits)[kCount], uint64 aMinimum,
                                        uint64 aMaximum, uint64* aResult) {
  size_t theDigits = strspn(aText, "0123456789");
  qvuint64_t theNumber = 0;
  if (theDigits == 0 || qvConvert_strntouint64(aText, theDigits, &theNumber) != kqvConvertError_None) {
    return false;
  }
  for (const Unit& theUnit : aUnits) {
    if (strcasecmp(aText + theDigits, theUnit.mName) != 0) {
      continue;
    }
    if (theNumber > aMaximum / theUnit.mFactor || theNumber * theUnit.mFactor < aMinimum) {
      return false;
    }
    *aResult = theNumber * theUnit.mFactor;
    return true;
  }
  return false;
}

bool OptionValue_ParseNumber(const char* aText, uint64 aMinimum, uint64 aMaximum, uint64* aNumber) {
  static const Unit kNoUnit[] = {{"", 1}};
  return OptionValue_S_ParseWithUnit(aText, kNoUnit, aMinimum, aMaximum, aNumber);
}

bool OptionValue_ParseSize(const char* aText, uint64 aMinimum, uint64 aMaximum, uint64* aBytes) {
  return OptionValue_S_ParseWithUnit(aText, kSizeUnits, aMinimum, aMaximum, aBytes);
}

bool OptionValue_ParseDuration(const char* aText, uint32* aMilliseconds) {
  uint64 theMilliseconds;
  if (!OptionValue_S_ParseWithUnit(aText, kDurationUnits, 0, UINT32_MAX, &theMilliseconds)) {
    return false;
  }
  *aMilliseconds = static_cast<uint32>(theMilliseconds);
  return true;
}

bool OptionValue_ParseRate(const char* aText, unsigned int* aLinesPerSecond) {
  static const Unit kRateUnits[] = {{"", 1}, {"/s", 1}};
  uint64 theLines;
  if (!OptionValue_S_ParseWithUnit(aText, kRateUnits, 0, INT32_MAX, &theLines)) {
    return false;
  }
  *aLinesPerSecond = static_cast<unsigned int>(theLines);
  return true;
}

bool OptionValue_ParseFlag(const char* aText, bool* afFlag) {
  static const char* const kWords[][2] = {{"no", "yes"}, {"false", "true"}, {"off", "on"}, {"0", "1"}};
  for (const auto& thePair : kWords) {
    for (int i = 0; i < 2; ++i) {
      if (strcasecmp(aText, thePair[i]) == 0) {
        *afFlag = i == 1;
        return true;
      }
    }
  }
  return false;
}
