#ifndef _BENCHMARKS_NUMBERS_WORKLOAD_H
#define _BENCHMARKS_NUMBERS_WORKLOAD_H

#include "Contender.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

/*
  How long does it take to read a number? Each row has 1024 texts of random numbers, the same ones in every
  run, and reads one after the other. A contender says what the caller of a parser has to know: the value, and
  whether the whole text was a number in range. One that reads another number is no contender.
*/
template <typename Number>
struct NumberText {
  char mText[32];  // ends with NUL
  size_t mLength;
  Number mValue;
};

template <typename Number>
using NumberTexts = std::array<NumberText<Number>, 1024>;

// Decimal numbers of aMin to aMax digits; half of the signed ones are negative.
NumberTexts<int32_t> Int32Texts(int aMin, int aMax);
NumberTexts<uint64_t> UInt64Texts(int aMin, int aMax);
// Hexadecimal numbers without a prefix.
NumberTexts<uint32_t> HexTexts(int aMin, int aMax);
// aDigits digits (at most 15) with a point somewhere before the last ones.
NumberTexts<double> DecimalTexts(int aDigits);
// Digits with a point, and an exponent of -12 to 12.
NumberTexts<double> ExponentTexts(int aDigits);
// All the digits that a double can need.
NumberTexts<double> ExactTexts();

template <typename Number>
bool IsTheNumber(Number aValue, Number anExpected) {
  return aValue == anExpected;
}

// The library's rule is to round after each digit and power of ten; the last digits may differ.
inline bool IsTheNumber(double aValue, double anExpected) {
  return std::fabs(aValue - anExpected) <= 1e-15 * std::fabs(anExpected);
}

template <typename Read, typename Number>
void RunNumbers(benchmark::State& aState, const NumberTexts<Number>& aTexts) {
  for (const NumberText<Number>& theText : aTexts) {
    Number theValue{};
    if (!Read()(theText.mText, theText.mLength, &theValue) || !IsTheNumber(theValue, theText.mValue)) {
      aState.SkipWithError(theText.mText);
      return;
    }
  }
  size_t theIndex = 0;
  for (auto _ : aState) {
    const NumberText<Number>& theText = aTexts[theIndex++ % aTexts.size()];
    Number theValue{};
    bool thefWhole = Read()(theText.mText, theText.mLength, &theValue);
    benchmark::DoNotOptimize(thefWhole);
    benchmark::DoNotOptimize(theValue);
  }
}

#define NUMBERS_ROW(ROW, NAME, READ, TEXTS) \
  Contender(ROW, NAME, [](benchmark::State& aState) { RunNumbers<READ>(aState, TEXTS); })

// READ is called with the text, its length and where the value goes.
#define NUMBERS_INT32_ROWS(NAME, READ)                              \
  NUMBERS_ROW("int32, 3 digits", NAME, READ, Int32Texts(3, 3)),     \
      NUMBERS_ROW("int32, 9 digits", NAME, READ, Int32Texts(9, 9)), \
      NUMBERS_ROW("int32, 1 to 9 digits", NAME, READ, Int32Texts(1, 9))

#define NUMBERS_UINT64_ROWS(NAME, READ)                                  \
  NUMBERS_ROW("uint64, 3 digits", NAME, READ, UInt64Texts(3, 3)),        \
      NUMBERS_ROW("uint64, 10 digits", NAME, READ, UInt64Texts(10, 10)), \
      NUMBERS_ROW("uint64, 19 digits", NAME, READ, UInt64Texts(19, 19)), \
      NUMBERS_ROW("uint64, 1 to 19 digits", NAME, READ, UInt64Texts(1, 19))

#define NUMBERS_HEX_ROWS(NAME, READ)                            \
  NUMBERS_ROW("hex, 2 digits", NAME, READ, HexTexts(2, 2)),     \
      NUMBERS_ROW("hex, 8 digits", NAME, READ, HexTexts(8, 8)), \
      NUMBERS_ROW("hex, 1 to 8 digits", NAME, READ, HexTexts(1, 8))

#define NUMBERS_DOUBLE_ROWS(NAME, READ)                                           \
  NUMBERS_ROW("double, 4 digits", NAME, READ, DecimalTexts(4)),                   \
      NUMBERS_ROW("double, 10 digits", NAME, READ, DecimalTexts(10)),             \
      NUMBERS_ROW("double, 7 digits and exponent", NAME, READ, ExponentTexts(7)), \
      NUMBERS_ROW("double, 17 digits", NAME, READ, ExactTexts())

#endif
