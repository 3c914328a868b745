#include "Workload.h"

#include <cinttypes>
#include <cstdio>
#include <random>

namespace {

constexpr int kLargestExponent = 12;

// The generator of a row: its numbers do not depend on which rows ran before.
using Random = std::mt19937_64;
constexpr Random::result_type kSeed = 4711;

uint64_t PowerOf(uint64_t aBase, int anExponent) {
  uint64_t thePower = 1;
  for (int i = 0; i < anExponent; ++i) {
    thePower *= aBase;
  }
  return thePower;
}

// aMin to aMax digits, of which the first is not 0.
uint64_t RandomDigits(Random& aRandom, uint64_t aBase, int aMin, int aMax) {
  const int theDigits = aMin + static_cast<int>(aRandom() % static_cast<uint64_t>(aMax - aMin + 1));
  const uint64_t theSmallest = PowerOf(aBase, theDigits - 1);
  return theSmallest + aRandom() % (theSmallest * (aBase - 1));
}

template <typename Number, typename Fill>
NumberTexts<Number> MakeTexts(Fill aFill) {
  NumberTexts<Number> theTexts;
  Random theRandom(kSeed);
  for (NumberText<Number>& theText : theTexts) {
    theText.mLength = static_cast<size_t>(aFill(theRandom, theText));
  }
  return theTexts;
}

// Whole numbers below 2^53 and powers of ten up to 10^22 are exact, so that the only rounding is the right
// one.
double Scaled(uint64_t aDigits, int anExponent) {
  double thePower = 1.0;
  for (int i = 0; i < (anExponent < 0 ? -anExponent : anExponent); ++i) {
    thePower *= 10.0;
  }
  const double theDigits = static_cast<double>(aDigits);
  return anExponent < 0 ? theDigits / thePower : theDigits * thePower;
}

}  // namespace

NumberTexts<int32_t> Int32Texts(int aMin, int aMax) {
  return MakeTexts<int32_t>([=](Random& aRandom, NumberText<int32_t>& aText) {
    const int32_t theMagnitude = static_cast<int32_t>(RandomDigits(aRandom, 10, aMin, aMax));
    aText.mValue = aRandom() % 2 == 0 ? theMagnitude : -theMagnitude;
    return snprintf(aText.mText, sizeof aText.mText, "%" PRId32, aText.mValue);
  });
}

NumberTexts<uint64_t> UInt64Texts(int aMin, int aMax) {
  return MakeTexts<uint64_t>([=](Random& aRandom, NumberText<uint64_t>& aText) {
    aText.mValue = RandomDigits(aRandom, 10, aMin, aMax);
    return snprintf(aText.mText, sizeof aText.mText, "%" PRIu64, aText.mValue);
  });
}

NumberTexts<uint32_t> HexTexts(int aMin, int aMax) {
  return MakeTexts<uint32_t>([=](Random& aRandom, NumberText<uint32_t>& aText) {
    aText.mValue = static_cast<uint32_t>(RandomDigits(aRandom, 16, aMin, aMax));
    return snprintf(aText.mText, sizeof aText.mText, "%" PRIx32, aText.mValue);
  });
}

NumberTexts<double> DecimalTexts(int aDigits) {
  return MakeTexts<double>([=](Random& aRandom, NumberText<double>& aText) {
    const uint64_t theDigits = RandomDigits(aRandom, 10, aDigits, aDigits);
    const int theFraction = 1 + static_cast<int>(aRandom() % static_cast<uint64_t>(aDigits - 1));
    const uint64_t thePower = PowerOf(10, theFraction);
    aText.mValue = Scaled(theDigits, -theFraction);
    return snprintf(aText.mText, sizeof aText.mText, "%" PRIu64 ".%0*" PRIu64, theDigits / thePower,
                    theFraction, theDigits % thePower);
  });
}

NumberTexts<double> ExponentTexts(int aDigits) {
  return MakeTexts<double>([=](Random& aRandom, NumberText<double>& aText) {
    const uint64_t theDigits = RandomDigits(aRandom, 10, aDigits, aDigits);
    const int theExponent = static_cast<int>(aRandom() % (2 * kLargestExponent + 1)) - kLargestExponent;
    const uint64_t thePower = PowerOf(10, aDigits - 1);
    aText.mValue = Scaled(theDigits, theExponent - (aDigits - 1));
    return snprintf(aText.mText, sizeof aText.mText, "%" PRIu64 ".%0*" PRIu64 "e%d", theDigits / thePower,
                    aDigits - 1, theDigits % thePower, theExponent);
  });
}

NumberTexts<double> ExactTexts() {
  return MakeTexts<double>([](Random& aRandom, NumberText<double>& aText) {
    aText.mValue = 1.0 + static_cast<double>(aRandom() >> 11) / 4096.0;  // up to 2^41, with 53 bits
    return snprintf(aText.mText, sizeof aText.mText, "%.17g", aText.mValue);
  });
}
