// Pseudo-random directives, compared with the C library's snprintf and between the two families.
//
// 230,000 directives, the same in every run and on every platform that has the same types. Left out is only
// what the library does otherwise on purpose: pointers, null texts, the sign of a NaN, flags and lengths that
// it refuses, and characters that the C library refuses to encode. One more case: see DropsZeros.
#include <float.h>
#include <gtest/gtest.h>
#include <locale.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <wchar.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>

#include "qvraTools/format/qvFormat.h"
#include "support/FormatText.h"

#pragma GCC diagnostic ignored "-Wformat"
#pragma GCC diagnostic ignored "-Wformat-truncation"

#define DIRECTIVES_PER_TEST 23000

// The engine's numbers are fixed by the language's standard; its distributions are not, so they are not used.
class FormatSource {
 public:
  explicit FormatSource(uint64_t aSeed) : mEngine(aSeed) {}

  uint64_t Bits() { return mEngine(); }
  unsigned Below(unsigned aLimit) { return static_cast<unsigned>(mEngine() % aLimit); }
  bool OneIn(unsigned aNumber) { return Below(aNumber) == 0; }

  // Numbers of all sizes, not only huge ones.
  uint64_t Integer() {
    uint64_t theBits = Bits() >> Below(64);
    return OneIn(2) ? theBits : 0 - theBits;
  }

  char OneOf(const std::string& aChars) { return aChars[Below(static_cast<unsigned>(aChars.size()))]; }

  std::string Flags() {
    std::string theFlags;
    while (!OneIn(3)) {
      theFlags += OneOf("-+ #0");
    }
    return theFlags;
  }

  // "" or a width.
  std::string Width() { return OneIn(2) ? "" : std::to_string(1 + Below(OneIn(50) ? 2000 : 40)); }

  // "" or a precision; "." alone too.
  std::string Precision(unsigned aLimit) {
    if (OneIn(3)) {
      return "";
    }
    return OneIn(10) ? "." : "." + std::to_string(Below(OneIn(30) ? 1200 : aLimit));
  }

  double Double() {
    switch (Below(6)) {
      case 0:
        return AnyDouble();
      case 1:  // a decimal number as people write them
        return static_cast<double>(Below(10000000)) / std::pow(10.0, Below(9));
      case 2:  // a tie at some digit
        return static_cast<double>(Below(1000000)) / static_cast<double>(1ULL << Below(20));
      case 3:  // a whole number
        return static_cast<double>(static_cast<int64_t>(Integer()));
      case 4:  // many digits around 1
        return std::ldexp(static_cast<double>(Bits()), static_cast<int>(Below(200)) - 160);
      default:
        return SpecialDouble();
    }
  }

  long double LongDouble() {
    switch (Below(5)) {
      case 0:
        return OneIn(8) ? AnyLongDouble() : static_cast<long double>(AnyDouble());
      case 1:
        return static_cast<long double>(Below(10000000)) /
               std::pow(10.0L, static_cast<long double>(Below(15)));
      case 2:
        return static_cast<long double>(Bits()) / static_cast<long double>(1ULL << Below(64));
      case 3:
        return std::ldexp(static_cast<long double>(Bits()), static_cast<int>(Below(300)) - 200);
      default:
        return static_cast<long double>(SpecialDouble());
    }
  }

 private:
  // Every exponent, subnormal ones and infinity included.
  double AnyDouble() {
    double theNumber = 0;
    do {
      uint64_t theBits = Bits();
      if (OneIn(10)) {
        theBits &= 0x800fffffffffffffULL;
      }
      memcpy(&theNumber, &theBits, sizeof theNumber);
    } while (std::isnan(theNumber));
    return theNumber;
  }

  long double AnyLongDouble() {
    int theExponent = static_cast<int>(Below(LDBL_MAX_EXP - LDBL_MIN_EXP + 66)) + LDBL_MIN_EXP - 65;
    return std::ldexp(static_cast<long double>(Bits()), theExponent - 64);
  }

  double SpecialDouble() {
    static const double kNumbers[] = {0.0,
                                      -0.0,
                                      HUGE_VAL,
                                      -HUGE_VAL,
                                      DBL_MAX,
                                      DBL_MIN,
                                      0.5,
                                      1.5,
                                      2.5,
                                      9.5,
                                      99.5,
                                      0.05,
                                      9.995,
                                      999999.5,
                                      999999.4,
                                      0.0001,
                                      9.9999e-5,
                                      0.00001,
                                      1e15,
                                      1e16,
                                      1e17,
                                      1e22,
                                      1e23,
                                      123456789.0,
                                      -1.0,
                                      5e-324,
                                      1e-310,
                                      2.2250738585072011e-308,
                                      4503599627370496.5,
                                      9007199254740993.0,
                                      0.1,
                                      0.3,
                                      1.0 / 3,
                                      1e100};
    return kNumbers[Below(sizeof kNumbers / sizeof kNumbers[0])];
  }

  std::mt19937_64 mEngine;
};

// C library versions differ from the standard in one place: "%#g" of a number that fits the style of "%f"
// until it is rounded up, as 999999.5, loses the zeros that "#" keeps.
template <typename Number>
static bool DropsZeros(const std::string& aFormat, int aPrecision, Number aNumber, const char* aLength) {
  char theConversion = aFormat.back();
  if (aFormat.find('#') == std::string::npos || (theConversion != 'g' && theConversion != 'G') ||
      !std::isfinite(aNumber)) {
    return false;
  }
  int theDigits = aPrecision < 0 ? 6 : aPrecision == 0 ? 1 : aPrecision;
  if (theDigits > 40) {
    return false;
  }
  // Rounding to so many digits makes 10 to the power of that number from something less.
  char theRounded[100];
  std::string theScientific = std::string("%.") + std::to_string(theDigits - 1) + aLength + "e";
  snprintf(theRounded, sizeof theRounded, theScientific.c_str(), aNumber);
  const char* theExponent = strchr(theRounded, 'e');
  return atoi(theExponent + 1) == theDigits &&
         std::fabs(aNumber) < std::pow(static_cast<Number>(10), static_cast<Number>(theDigits));
}

// Compares one format in the narrow family with the C library, whole and cut, and then the wide family.
template <typename... Arguments>
static bool Compare(FormatSource* aSource, const std::string& aFormat, Arguments... anArguments) {
  static char theExpected[40000], theActual[40000];
  static wchar_t theWide[40000];
  size_t theMax = aSource->OneIn(8) ? aSource->Below(60) : sizeof theExpected;
  memset(theExpected, '~', 64);
  memset(theActual, '~', 64);
  int theLength = snprintf(theExpected, theMax, aFormat.c_str(), anArguments...);
  int theResult = qv_snprintf(theActual, theMax, aFormat.c_str(), anArguments...);
  EXPECT_EQ(theLength, theResult) << aFormat;
  size_t theStored = theMax == 0 ? 0 : std::min(theMax, static_cast<size_t>(theLength) + 1);
  bool theSame = theLength == theResult && memcmp(theExpected, theActual, theStored) == 0;
  EXPECT_TRUE(theSame) << aFormat << "\n C library: " << theExpected << "\n here:      " << theActual;
  int theWideResult = qv_swprintf(theWide, theMax, Widen(aFormat).c_str(), anArguments...);
  EXPECT_EQ(theLength, theWideResult) << "wide " << aFormat;
  for (size_t theIndex = 0; theIndex < theStored && theSame; ++theIndex) {
    theSame = theWide[theIndex] == static_cast<wchar_t>(static_cast<unsigned char>(theActual[theIndex]));
  }
  EXPECT_TRUE(theSame) << "the wide family differs from the narrow one: " << aFormat;
  return theSame && theLength == theWideResult;
}

static bool CompareInteger(FormatSource* aSource) {
  static const char* const kLengths[] = {"", "", "hh", "h", "l", "ll", "j", "t", "z"};
  unsigned theLength = aSource->Below(9);
  std::string theFormat = "%" + aSource->Flags() + aSource->Width() + aSource->Precision(30) +
                          kLengths[theLength] + aSource->OneOf("diuoxX");
  uint64_t theNumber = aSource->Integer();
  switch (theLength) {
    case 4:
      return Compare(aSource, theFormat, static_cast<long>(theNumber));
    case 5:
      return Compare(aSource, theFormat, static_cast<long long>(theNumber));
    case 6:
      return Compare(aSource, theFormat, static_cast<intmax_t>(theNumber));
    case 7:
      return Compare(aSource, theFormat, static_cast<ptrdiff_t>(theNumber));
    case 8:
      return Compare(aSource, theFormat, static_cast<size_t>(theNumber));
    default:
      return Compare(aSource, theFormat, static_cast<int>(theNumber));
  }
}

static int PrecisionOf(const std::string& aFormat) {
  size_t thePoint = aFormat.find('.');
  return thePoint == std::string::npos ? -1 : atoi(aFormat.c_str() + thePoint + 1);
}

static bool CompareDouble(FormatSource* aSource, const char* aConversions) {
  std::string theFormat = "%" + aSource->Flags() + aSource->Width() + aSource->Precision(25) +
                          (aSource->OneIn(4) ? "l" : "") + aSource->OneOf(aConversions);
  double theNumber = aSource->OneIn(2) ? aSource->Double() : -aSource->Double();
  if (DropsZeros(theFormat, PrecisionOf(theFormat), theNumber, "")) {
    return true;
  }
  return Compare(aSource, theFormat, theNumber);
}

static bool CompareLongDouble(FormatSource* aSource, const char* aConversions) {
  std::string theFormat =
      "%" + aSource->Flags() + aSource->Width() + aSource->Precision(30) + "L" + aSource->OneOf(aConversions);
  long double theNumber = aSource->OneIn(2) ? aSource->LongDouble() : -aSource->LongDouble();
  if (DropsZeros(theFormat, PrecisionOf(theFormat), theNumber, "L")) {
    return true;
  }
  return Compare(aSource, theFormat, theNumber);
}

// Texts of ASCII characters, so that both families count alike.
static bool CompareText(FormatSource* aSource) {
  std::string theText;
  for (unsigned theSize = aSource->Below(aSource->OneIn(20) ? 600 : 30); theSize > 0; --theSize) {
    theText += static_cast<char>(1 + aSource->Below(127));
  }
  std::string theFormat = "%" + aSource->Flags() + aSource->Width();
  switch (aSource->Below(4)) {
    case 0:
      return Compare(aSource, theFormat + "c", static_cast<int>(aSource->Below(128)));
    case 1:
      return Compare(aSource, theFormat + "lc", static_cast<wint_t>(1 + aSource->Below(127)));
    case 2:
      return Compare(aSource, theFormat + aSource->Precision(30) + "ls", Widen(theText).c_str());
    default:
      return Compare(aSource, theFormat + aSource->Precision(30) + "s", theText.c_str());
  }
}

// Wide text of every length of UTF-8 that the C library knows, in the narrow family.
static bool CompareWideText(FormatSource* aSource) {
  static char theExpected[8000], theActual[8000];
  static const unsigned kLimits[] = {0x80, 0x800, 0xd800, 0x110000};
  std::wstring theText;
  for (unsigned theSize = aSource->Below(20); theSize > 0; --theSize) {
    unsigned theChar = 1 + aSource->Below(kLimits[aSource->Below(4)] - 1);
    theText += static_cast<wchar_t>(theChar >= 0xd800 && theChar < 0xe000 ? 0x20ac : theChar);
  }
  std::string theFormat = "[%" + std::string(aSource->OneIn(2) ? "-" : "") + aSource->Width();
  int theLength = 0, theResult = 0;
  if (aSource->OneIn(4)) {
    wint_t theChar = theText.empty() ? L'a' : static_cast<wint_t>(theText[0]);
    theFormat += "lc]";
    theLength = snprintf(theExpected, sizeof theExpected, theFormat.c_str(), theChar);
    theResult = qv_snprintf(theActual, sizeof theActual, theFormat.c_str(), theChar);
  } else {
    theFormat += aSource->Precision(40) + "ls]";
    theLength = snprintf(theExpected, sizeof theExpected, theFormat.c_str(), theText.c_str());
    theResult = qv_snprintf(theActual, sizeof theActual, theFormat.c_str(), theText.c_str());
  }
  EXPECT_EQ(theLength, theResult) << theFormat;
  EXPECT_STREQ(theExpected, theActual) << theFormat;
  return theLength == theResult && strcmp(theExpected, theActual) == 0;
}

// Several directives in a row: text between them, sizes from the arguments, counters, positions.
static bool CompareMixed(FormatSource* aSource) {
  int theWidth = static_cast<int>(aSource->Below(60)) - 30;
  int thePrecision = static_cast<int>(aSource->Below(30)) - 10;
  int theNumber = static_cast<int>(aSource->Integer());
  double theReal = aSource->Double();
  std::string theFlags = aSource->Flags();
  std::string theConversion(1, aSource->OneOf("diuxXo"));
  std::string theRealConversion(1, aSource->OneOf("eEfFaA"));
  switch (aSource->Below(4)) {
    case 0:
      return Compare(
          aSource,
          "text %" + theFlags + "*" + theConversion + "|%" + theFlags + ".*" + theRealConversion + " 100%%",
          theWidth, theNumber, thePrecision, theReal);
    case 1:
      return Compare(aSource,
                     "%" + theFlags + "*.*" + theConversion + "%s%%%" + theFlags + "*.*" + theRealConversion,
                     theWidth, thePrecision, theNumber, "some text", -theWidth, thePrecision, theReal);
    case 2:
      return Compare(
          aSource, "%4$s: %1$" + theFlags + "*2$.*3$" + theConversion + ", %5$" + theRealConversion + "%1$d",
          theNumber, theWidth, thePrecision, "position", theReal);
    default: {
      int theCount = -1, theSecondCount = -1;
      bool theSame = Compare(aSource, "ab%" + theFlags + theConversion + "%n%" + theRealConversion + "%n",
                             theNumber, &theCount, theReal, &theSecondCount);
      int theExpected = snprintf(nullptr, 0, ("ab%" + theFlags + theConversion).c_str(), theNumber);
      EXPECT_EQ(theExpected, theCount);
      return theSame && theExpected == theCount;
    }
  }
}

template <typename CompareOne>
static void CompareMany(uint64_t aSeed, const CompareOne& aCompareOne) {
  FormatSource theSource(aSeed);
  for (int theDone = 0; theDone < DIRECTIVES_PER_TEST; ++theDone) {
    // The first difference tells enough.
    ASSERT_TRUE(aCompareOne(&theSource)) << "directive " << theDone;
  }
}

TEST(qvFormatCompare, IntegersAgreeWithTheCLibrary) { CompareMany(1, CompareInteger); }

TEST(qvFormatCompare, MoreIntegersAgreeWithTheCLibrary) { CompareMany(2, CompareInteger); }

TEST(qvFormatCompare, FixedPointAgreesWithTheCLibrary) {
  CompareMany(3, [](FormatSource* aSource) { return CompareDouble(aSource, "fF"); });
}

TEST(qvFormatCompare, ScientificAgreesWithTheCLibrary) {
  CompareMany(4, [](FormatSource* aSource) { return CompareDouble(aSource, "eE"); });
}

TEST(qvFormatCompare, TheShorterStyleAgreesWithTheCLibrary) {
  CompareMany(5, [](FormatSource* aSource) { return CompareDouble(aSource, "gG"); });
}

TEST(qvFormatCompare, HexadecimalFloatingPointAgreesWithTheCLibrary) {
  CompareMany(6, [](FormatSource* aSource) { return CompareDouble(aSource, "aA"); });
}

TEST(qvFormatCompare, LongDoublesAgreeWithTheCLibrary) {
  CompareMany(7, [](FormatSource* aSource) { return CompareLongDouble(aSource, "eEfFgGaA"); });
}

TEST(qvFormatCompare, TextsAgreeWithTheCLibrary) {
  ASSERT_NE(nullptr, setlocale(LC_ALL, "C.UTF-8"));
  CompareMany(8, CompareText);
}

TEST(qvFormatCompare, WideTextsAgreeWithTheCLibrary) {
  ASSERT_NE(nullptr, setlocale(LC_ALL, "C.UTF-8"));
  CompareMany(9, CompareWideText);
}

TEST(qvFormatCompare, SeveralDirectivesAgreeWithTheCLibrary) { CompareMany(10, CompareMixed); }
