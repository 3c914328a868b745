// HardNumbers.h - floating-point numbers whose digits are hard to get right, and the texts that are right.
#ifndef TESTS_SUPPORT_HARDNUMBERS_H
#define TESTS_SUPPORT_HARDNUMBERS_H

#include <stdint.h>

#include <random>
#include <string>

// One directive "%.{precision}{conversion}" and its number.
struct HardNumber {
  double mNumber;
  int mPrecision;
  char mConversion;  // e f g
};

// The same numbers for the same seed, on every platform.
class HardNumbers {
 public:
  explicit HardNumbers(uint64_t aSeed) : mEngine(aSeed) {}

  HardNumber Next();

 private:
  uint64_t Bits() { return mEngine(); }
  unsigned Below(unsigned aLimit) { return static_cast<unsigned>(mEngine() % aLimit); }
  double Number();
  double DecimalTie();
  double PowerOfTen();
  int Precision();

  std::mt19937_64 mEngine;
};

// Empty when qv_snprintf gives the text that the language's own conversion gives, otherwise both texts.
std::string WrongDigits(const HardNumber& aNumber);

// Empty when qv_snprintf gives the text that the C library gives. So is it for a long double, made of the
// number and some more bits behind it.
std::string DifferentDigits(const HardNumber& aNumber);
std::string DifferentLongDigits(const HardNumber& aNumber, uint64_t aMoreBits);

#endif
