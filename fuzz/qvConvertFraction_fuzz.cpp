// Floating-point numbers and fractions: read as the C library reads them, within what the library's own
// arithmetic can promise, and written so that reading gives the number back.
#include <ctype.h>
#include <float.h>
#include <math.h>

#include "FuzzInput.h"
#include "qvraTools/qvConvert.h"
#include "qvraTools/qvLongLong.h"
#include "qvraTools/qvMalloc.h"

namespace {

const char kSpaces[] = " \t\n\v\f\r";
const char kDigits[] = "0123456789";

// ------------------------------------------------------------------------------------- decimal numbers

// A decimal number taken apart.
struct Decimal {
  std::string mNumber;  // as strtod takes it, the exponent completed
  size_t mLength;       // bytes of the text, 0 when there is no number
  size_t mDigits;       // significant ones
  long mExponent;       // of the last digit
};

std::string TakeDigits(const std::string& aText, size_t* aPosition) {
  size_t theEnd = aText.find_first_not_of(kDigits, *aPosition);
  theEnd = theEnd == std::string::npos ? aText.size() : theEnd;
  std::string theDigits = aText.substr(*aPosition, theEnd - *aPosition);
  *aPosition = theEnd;
  return theDigits;
}

std::string TakeSign(const std::string& aText, size_t* aPosition) {
  bool theSignFlag = aText[*aPosition] == '+' || aText[*aPosition] == '-';
  *aPosition += theSignFlag ? 1 : 0;
  return theSignFlag ? aText.substr(*aPosition - 1, 1) : "";
}

Decimal TakeApart(const std::string& aText) {
  Decimal theDecimal = {"", 0, 0, 0};
  size_t thePosition = aText.find_first_not_of(kSpaces);
  thePosition = thePosition == std::string::npos ? aText.size() : thePosition;
  std::string theSign = TakeSign(aText, &thePosition);
  std::string theWhole = TakeDigits(aText, &thePosition);
  std::string theFraction;
  if (aText[thePosition] == '.') {
    theFraction = TakeDigits(aText, &++thePosition);
  }
  std::string theDigits = theWhole + theFraction;
  if (theDigits.empty()) {
    return theDecimal;
  }
  if (aText[thePosition] == 'e' || aText[thePosition] == 'E') {
    std::string theExponentSign = TakeSign(aText, &++thePosition);
    std::string theExponent = theExponentSign + TakeDigits(aText, &thePosition);
    theDecimal.mExponent = strtol(theExponent.c_str(), nullptr, 10);
    theDecimal.mExponent = theDecimal.mExponent > 100000 ? 100000 : theDecimal.mExponent;
    theDecimal.mExponent = theDecimal.mExponent < -100000 ? -100000 : theDecimal.mExponent;
  }
  theDecimal.mNumber =
      theSign + "0" + theWhole + "." + theFraction + "e" + std::to_string(theDecimal.mExponent);
  theDecimal.mExponent -= static_cast<long>(theFraction.size());
  theDecimal.mLength = thePosition;
  theDecimal.mDigits = theDigits.size() - std::min(theDigits.find_first_not_of('0'), theDigits.size());
  return theDecimal;
}

// The library multiplies by powers of ten, of which those from 10^512 on are infinite, and rounds every time.
void CheckValue(double aValue, const Decimal& aDecimal) {
  double theExpected = strtod(aDecimal.mNumber.c_str(), nullptr);
  FUZZ_REQUIRE(signbit(aValue) == signbit(theExpected));
  if (aDecimal.mDigits > 300 || fabs(theExpected) > 1.79e308) {
    return;  // the digits alone may be infinite
  }
  if (fabs(theExpected) < 1e-290 || aDecimal.mExponent <= -512) {
    FUZZ_REQUIRE(fabs(aValue) < 1e-280);
    return;
  }
  FUZZ_REQUIRE(fabs(aValue - theExpected) <= 1e-12 * fabs(theExpected));
}

void CheckDecimal(const std::string& aText) {
  ExactCopy theCopy(aText, true);
  Decimal theDecimal = TakeApart(aText);
  const char* theEnd = nullptr;
  int theError = kqvConvertError_None;
  double theValue = qvConvert_strtod_ex(theCopy.Data(), &theEnd, &theError);
  if (theDecimal.mLength == 0) {
    FUZZ_REQUIRE(theError == kqvConvertError_Invalid);
  } else if (theDecimal.mExponent < -1021) {
    FUZZ_REQUIRE(theError == kqvConvertError_RangeLow);
  } else if (theDecimal.mExponent > 1024) {
    FUZZ_REQUIRE(theError == kqvConvertError_RangeHigh);
  } else if (theError == kqvConvertError_None) {
    FUZZ_REQUIRE(theEnd == theCopy.Data() + theDecimal.mLength);
    CheckValue(theValue, theDecimal);
  } else {
    FUZZ_REQUIRE(theError == kqvConvertError_RangeHigh && theDecimal.mNumber[0] != '-');
    FUZZ_REQUIRE(theDecimal.mDigits > 300 || strtod(theDecimal.mNumber.c_str(), nullptr) > 1.79e308);
  }
  if (theError != kqvConvertError_None) {
    FUZZ_REQUIRE(theEnd == theCopy.Data() && theValue == 0.0);
  }
  double theStored = 1.0;
  int theCode = qvConvert_strtod(theCopy.Data(), &theStored);
  bool theMoreFlag = theDecimal.mLength < aText.size();
  int thePosition = theMoreFlag ? static_cast<int>(theDecimal.mLength) : kqvConvertError_None;
  FUZZ_REQUIRE(theCode == (theError != kqvConvertError_None ? kqvConvertError_Invalid : thePosition));
  FUZZ_REQUIRE(memcmp(&theStored, &theValue, sizeof(theValue)) == 0);
}

// ------------------------------------------------------------------------------------------- fractions

bool IsWhole(double aNumber) { return isfinite(aNumber) && trunc(aNumber) == aNumber; }

bool HasLongNumber(const std::string& aText) {
  size_t theDigits = 0;
  for (char theChar : aText) {
    theDigits = isdigit(static_cast<uint8_t>(theChar)) ? theDigits + 1 : 0;
    if (theDigits > 18) {
      return true;
    }
  }
  return false;
}

// The scan that the notation is described by; false when it finds neither a number nor a fraction.
bool ScanFraction(const std::string& aText, double* aValue) {
  double theNumber;
  long theNumerator;
  long theDenominator;
  char theAfter[3] = {0, 0, 0};
  int theCount = sscanf((aText + '\a').c_str(), " %lf%c %ld %c %ld %c", &theNumber, &theAfter[0],
                        &theNumerator, &theAfter[1], &theDenominator, &theAfter[2]);
  if (theCount == 2 && theAfter[0] == '\a') {
    *aValue = theNumber;
    return true;
  }
  if (theCount == 4 && theAfter[0] == '/' && theAfter[1] == '\a' && IsWhole(theNumber) && theNumerator != 0) {
    *aValue = theNumber / static_cast<double>(theNumerator);
    return true;
  }
  if (theCount == 6 && (theAfter[0] == ' ' || theAfter[0] == '-') && theAfter[1] == '/' &&
      theAfter[2] == '\a' && IsWhole(theNumber) && theNumerator >= 0 && theNumerator < theDenominator) {
    double theFraction = static_cast<double>(theNumerator) / static_cast<double>(theDenominator);
    bool theNegative = aText[aText.find_first_not_of(kSpaces)] == '-';
    *aValue = theNegative ? theNumber - theFraction : theNumber + theFraction;
    return true;
  }
  return false;
}

bool AreSame(double aValue, double anotherValue) {
  return (isnan(aValue) && isnan(anotherValue)) || memcmp(&aValue, &anotherValue, sizeof(aValue)) == 0;
}

void CheckFraction(const std::string& aText) {
  double theValue = 1.0;
  int theResult = qvConvert_strnfractiontodouble(ExactCopy(aText).Data(), aText.size(), &theValue);
  if (HasLongNumber(aText)) {
    return;  // the scan does not say what becomes of it
  }
  double theExpected = 0.0;
  bool theValid = ScanFraction(aText, &theExpected);
  FUZZ_REQUIRE(theResult == (theValid ? 0 : 1));
  FUZZ_REQUIRE(!theValid || AreSame(theValue, theExpected));
}

double ReadWhole(const std::string& aText, int* aCode) {
  qvLongLong theNumber;
  *aCode = qvConvert_strtoLongLong(aText.c_str(), &theNumber);
  // The smallest number has no magnitude in 64 bits, and counts as positive.
  double theMagnitude = fabs(theNumber.mHigh * 4294967296.0 + theNumber.mLow);
  return theNumber.mHigh < 0 && (theNumber.mHigh != INT32_MIN || theNumber.mLow != 0) ? -theMagnitude
                                                                                      : theMagnitude;
}

// Numbers and fractions whose parts are integers.
void CheckDouble(const std::string& aText) {
  double theValue = 77.0;
  int theCode = qvConvert_strtodouble(ExactCopy(aText, true).Data(), &theValue);
  std::string theText = aText.substr(std::min(aText.find_first_not_of(kSpaces), aText.size()));
  size_t theSlash = theText.find('/');
  double theExpected = 0.0;
  int theExpectedCode;
  if (theSlash == std::string::npos) {
    theExpectedCode = qvConvert_strtod(theText.c_str(), &theExpected);
  } else {
    double theDenominator = ReadWhole(theText.substr(theSlash + 1), &theExpectedCode);
    std::string theNumerator = theText.substr(0, theSlash);
    size_t theBlank = theNumerator.find(' ');
    double theWhole = 0.0;
    bool theZeroFlag = theExpectedCode == kqvConvertError_None && theDenominator == 0.0;
    if (theBlank != std::string::npos && theExpectedCode == kqvConvertError_None && !theZeroFlag) {
      theWhole = ReadWhole(theNumerator.substr(0, theBlank), &theExpectedCode);
      theNumerator.erase(0, theBlank + 1);
    }
    if (theZeroFlag) {
      theExpected = 77.0;
    } else if (theExpectedCode == kqvConvertError_None) {
      double theFraction = ReadWhole(theNumerator, &theExpectedCode) / theDenominator;
      theExpected = theWhole < 0.0 ? theWhole - theFraction : theWhole + theFraction;
    }
    theExpected = theExpectedCode == kqvConvertError_None ? theExpected : 0.0;
  }
  FUZZ_REQUIRE(theCode == theExpectedCode);
  FUZZ_REQUIRE(AreSame(theValue, theExpected));
}

double Whole(const qvLongLong& aNumber) { return aNumber.mHigh * 4294967296.0 + aNumber.mLow; }

// A number as a fraction is as near as the error says, and its text reads as the fraction.
void CheckWriting(double aNumber, int32 aMaxDenominator) {
  const double kPrecision = 1e-14;
  char* theText = nullptr;
  FUZZ_REQUIRE(qvConvert_doubletofraction(aNumber, aMaxDenominator, kPrecision, &theText) ==
               kqvConvertError_None);
  // A negative number may be split upwards, so that its parts are not those of its magnitude.
  if (aNumber >= 0.0 && aNumber < 1e9) {
    qvLongLong theWhole;
    qvLongLong theNumerator;
    qvLongLong theDenominator;
    double theError = qvConvert_doubletofractionparts(aNumber, &theWhole, &theNumerator, &theDenominator,
                                                      aMaxDenominator, kPrecision);
    double theFraction = Whole(theDenominator) != 0.0 ? Whole(theNumerator) / Whole(theDenominator) : 0.0;
    double theValue = Whole(theWhole) + theFraction;
    FUZZ_REQUIRE(Whole(theDenominator) <= aMaxDenominator);
    FUZZ_REQUIRE(fabs(theValue - aNumber) <= theError + 1e-9 * (1.0 + aNumber));
    FUZZ_REQUIRE(theError <= 1.0 / aMaxDenominator);
    double theRead = 0.0;
    FUZZ_REQUIRE(qvConvert_strfractiontodouble(theText, &theRead) == 0);
    FUZZ_REQUIRE(theRead == theValue);
  }
  qvFree(theText);
}

void CheckCleaning(const std::string& aText, int32 aMaxDenominator) {
  char* theClean = nullptr;
  char* theExpected = nullptr;
  double theValue = 0.0;
  int theResult = qvConvert_cleanupfraction(aText.c_str(), aMaxDenominator, &theClean);
  FUZZ_REQUIRE(theResult == qvConvert_strfractiontodouble(aText.c_str(), &theValue));
  if (theResult == 0) {
    qvConvert_doubletofraction(theValue, aMaxDenominator, 1e-14, &theExpected);
    FUZZ_REQUIRE(strcmp(theClean, theExpected) == 0);
  }
  qvFree(theClean);
  qvFree(theExpected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  int32 theMaxDenominator = theInput.Byte() * 40 + 1;
  std::string theText = theInput.Text();
  CheckDecimal(theText);
  CheckFraction(theText);
  CheckDouble(theText);
  CheckCleaning(theText, theMaxDenominator);
  double theNumber;
  uint64_t theBits = theInput.Number();
  memcpy(&theNumber, &theBits, sizeof(theNumber));
  CheckWriting(theNumber, theMaxDenominator);
  CheckWriting(static_cast<double>(theBits >> 44) / static_cast<double>((theBits & 0xFFF) + 1),
               theMaxDenominator);
  return 0;
}
