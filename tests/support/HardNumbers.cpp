#include "support/HardNumbers.h"

#include <stdio.h>
#include <string.h>

#include <charconv>
#include <cmath>

#include "qvraTools/format/qvFormat.h"

#pragma GCC diagnostic ignored "-Wformat"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

// "%f" of the largest long double with the highest precision below.
constexpr size_t kTextSize = 8192;

// Behind the last digit of the smallest number.
constexpr int kAllDigits = 1080;

double FromBits(uint64_t aBits) {
  double theNumber;
  memcpy(&theNumber, &aBits, sizeof theNumber);
  return theNumber;
}

std::string Difference(const HardNumber& aNumber, const char* anExpected, const char* anActual) {
  if (strcmp(anExpected, anActual) == 0) {
    return "";
  }
  char theNumber[64];
  snprintf(theNumber, sizeof theNumber, "%%.%d%c of %a: ", aNumber.mPrecision, aNumber.mConversion,
           aNumber.mNumber);
  return std::string(theNumber) + anActual + " instead of " + anExpected;
}

}  // namespace

// A number that ends in a 5 and perhaps zeros, which doubles hold exactly: a tie at the digit before it.
double HardNumbers::DecimalTie() {
  double theNumber = static_cast<double>(Bits() >> (20 + Below(44))) * 10 + 5;
  for (unsigned theZeros = Below(23); theZeros > 0; --theZeros) {
    theNumber *= 10;
  }
  return theNumber;
}

// Near a power of ten, or exactly one where a double can be.
double HardNumbers::PowerOfTen() {
  char theText[16];
  snprintf(theText, sizeof theText, "1e%d", static_cast<int>(Below(633)) - 324);
  double theNumber = 0;
  sscanf(theText, "%lf", &theNumber);
  return theNumber;
}

double HardNumbers::Number() {
  switch (Below(8)) {
    case 0:  // subnormal
      return FromBits(Bits() >> (12 + Below(52)));
    case 1:  // as people write them
      return static_cast<double>(Bits() >> (32 + Below(32))) / std::pow(10.0, Below(12));
    case 2:  // a tie in the binary digits behind the point
      return std::ldexp(static_cast<double>(Bits() >> (11 + Below(53))), -static_cast<int>(Below(60)));
    case 3:
      return DecimalTie();
    case 4:
      return PowerOfTen();
    case 5:
      return static_cast<double>(Bits() >> Below(64));
    default: {  // every exponent
      uint64_t theExponent = Below(2047);
      return FromBits(theExponent << 52 | Bits() >> 12);
    }
  }
}

int HardNumbers::Precision() {
  unsigned theKind = Below(64);
  if (theKind == 0) {
    return static_cast<int>(Below(kAllDigits));
  }
  return static_cast<int>(Below(theKind < 8 ? 60 : 18));
}

HardNumber HardNumbers::Next() {
  double theNumber = Number();
  // The next one to either side is what the rounding must tell apart.
  switch (Below(4)) {
    case 0:
      theNumber = std::nextafter(theNumber, 0.0);
      break;
    case 1:
      theNumber = std::nextafter(theNumber, HUGE_VAL);
      break;
    default:
      break;
  }
  if (!std::isfinite(theNumber)) {
    theNumber = 0;
  }
  return {theNumber, Precision(), "efg"[Below(3)]};
}

std::string WrongDigits(const HardNumber& aNumber) {
  char theExpected[kTextSize], theActual[kTextSize];
  std::chars_format theFormat = aNumber.mConversion == 'e'   ? std::chars_format::scientific
                                : aNumber.mConversion == 'f' ? std::chars_format::fixed
                                                             : std::chars_format::general;
  *std::to_chars(theExpected, theExpected + kTextSize - 1, aNumber.mNumber, theFormat, aNumber.mPrecision)
       .ptr = '\0';
  const char theDirective[] = {'%', '.', '*', aNumber.mConversion, '\0'};
  qv_snprintf(theActual, kTextSize, theDirective, aNumber.mPrecision, aNumber.mNumber);
  return Difference(aNumber, theExpected, theActual);
}

std::string DifferentDigits(const HardNumber& aNumber) {
  char theExpected[kTextSize], theActual[kTextSize];
  const char theDirective[] = {'%', '.', '*', aNumber.mConversion, '\0'};
  snprintf(theExpected, kTextSize, theDirective, aNumber.mPrecision, aNumber.mNumber);
  qv_snprintf(theActual, kTextSize, theDirective, aNumber.mPrecision, aNumber.mNumber);
  return Difference(aNumber, theExpected, theActual);
}

std::string DifferentLongDigits(const HardNumber& aNumber, uint64_t aMoreBits) {
  char theExpected[kTextSize], theActual[kTextSize];
  long double theNumber = aNumber.mNumber;
  theNumber += theNumber * std::ldexp(static_cast<long double>(aMoreBits >> 53), -63);
  if (aMoreBits % 4 == 0) {
    theNumber *= theNumber * theNumber;
  }
  if (!std::isfinite(theNumber)) {
    return "";
  }
  const char theDirective[] = {'%', '.', '*', 'L', aNumber.mConversion, '\0'};
  snprintf(theExpected, kTextSize, theDirective, aNumber.mPrecision, theNumber);
  qv_snprintf(theActual, kTextSize, theDirective, aNumber.mPrecision, theNumber);
  return Difference(aNumber, theExpected, theActual);
}
