// Integers and floating-point numbers: flags, lengths, rounding, special values.
#include <fenv.h>
#include <float.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <stdint.h>
#include <string.h>

#include <cmath>
#include <limits>
#include <string>

#include "qvraTools/format/qvFormat.h"
#include "support/BuiltLocale.h"
#include "support/FormatText.h"

#pragma GCC diagnostic ignored "-Wformat"

template <typename Number>
struct NumberCase {
  const char* mExpected;
  const char* mFormat;
  Number mNumber;
};

template <typename Number, size_t Count>
static void ExpectNumbers(const NumberCase<Number> (&aCases)[Count]) {
  for (const NumberCase<Number>& theCase : aCases) {
    ExpectFormatted(theCase.mExpected, theCase.mFormat, theCase.mNumber);
  }
}

TEST(qvFormatNumber, PrintsSignedIntegers) {
  const NumberCase<int> kCases[] = {
      {"0", "%d", 0},
      {"7", "%i", 7},
      {"-7", "%d", -7},
      {"99", "%d", 99},
      {"100", "%d", 100},
      {"12345", "%d", 12345},
      {"+7", "%+d", 7},
      {"-7", "%+d", -7},
      {"+0", "%+d", 0},
      {" 7", "% d", 7},
      {"-7", "% d", -7},
      {"+7", "%+ d", 7},
      {"    7", "%5d", 7},
      {"7    ", "%-5d", 7},
      {"00007", "%05d", 7},
      {"-0007", "%05d", -7},
      {"+0007", "%+05d", 7},
      {" 0007", "% 05d", 7},
      {"7    ", "%-05d", 7},
      {"  007", "%05.3d", 7},
      {"-007 ", "%-5.3d", -7},
      {"007", "%.3d", 7},
      {"1234", "%.3d", 1234},
      {"", "%.0d", 0},
      {"", "%.d", 0},
      {"+", "%+.0d", 0},
      {"     ", "%5.0d", 0},
      {"1", "%.0d", 1},
      {"7", "%#d", 7},
      {"2147483647", "%d", INT_MAX},
      {"-2147483648", "%d", INT_MIN},
  };
  ExpectNumbers(kCases);
}

TEST(qvFormatNumber, PrintsIntegersOfEveryLength) {
  ExpectFormatted("9 10 99 100 999 1000 9999 10000 99999 100000", "%u %u %u %u %u %u %u %u %u %u", 9, 10, 99,
                  100, 999, 1000, 9999, 10000, 99999, 100000);
  ExpectFormatted("999999 1000000 9999999 10000000 99999999 100000000 999999999 1000000000",
                  "%u %u %u %u %u %u %u %u", 999999, 1000000, 9999999, 10000000, 99999999, 100000000,
                  999999999, 1000000000);
}

TEST(qvFormatNumber, PrintsUnsignedIntegers) {
  const NumberCase<unsigned> kCases[] = {
      {"0", "%u", 0},
      {"4294967295", "%u", UINT_MAX},
      {"7", "%+ u", 7},
      {"0", "%x", 0},
      {"0", "%#x", 0},
      {"ff", "%x", 255},
      {"FF", "%X", 255},
      {"0xff", "%#x", 255},
      {"0XFF", "%#X", 255},
      {"0x00ff", "%#06x", 255},
      {"  0xff", "%#6x", 255},
      {"0xff  ", "%-#6x", 255},
      {"0x0ff", "%#.3x", 255},
      {"", "%.0x", 0},
      {"", "%#.0x", 0},
      {"0", "%o", 0},
      {"0", "%#o", 0},
      {"10", "%o", 8},
      {"010", "%#o", 8},
      {"010", "%#.3o", 8},
      {"0010", "%#.4o", 8},
      {"010", "%#.1o", 8},
      {"0", "%#.0o", 0},
      {"", "%.0o", 0},
      {"37777777777", "%o", UINT_MAX},
      {"deadbeef", "%x", 0xdeadbeefu},
  };
  ExpectNumbers(kCases);
}

TEST(qvFormatNumber, CutsToTheLengthGiven) {
  const NumberCase<int> kCases[] = {
      {"-1", "%hhd", 255},      {"127", "%hhd", 127}, {"-128", "%hhd", 128}, {"0", "%hhd", 256},
      {"255", "%hhu", -1},      {"ff", "%hhx", -1},   {"377", "%hho", -1},   {"-1", "%hd", 65535},
      {"-32768", "%hd", 32768}, {"65535", "%hu", -1}, {"ffff", "%hx", -1},   {"0", "%hu", 65536},
  };
  ExpectNumbers(kCases);
}

TEST(qvFormatNumber, PrintsLongs) {
  ExpectFormatted("-1 1", "%ld %lu", -1L, 1UL);
  if (sizeof(long) == 4) {
    ExpectFormatted("-2147483648 4294967295", "%ld %lu", LONG_MIN, ULONG_MAX);
  } else {
    ExpectFormatted("-9223372036854775808 18446744073709551615", "%ld %lu", LONG_MIN, ULONG_MAX);
  }
}

TEST(qvFormatNumber, Prints64Bits) {
  const NumberCase<long long> kCases[] = {
      {"-9223372036854775808", "%lld", INT64_MIN},
      {"9223372036854775807", "%lld", INT64_MAX},
      {"18446744073709551615", "%llu", -1},
      {"ffffffffffffffff", "%llx", -1},
      {"1777777777777777777777", "%llo", -1},
      {"4294967296", "%lld", 4294967296},
      {"1000000000000000000", "%lld", 1000000000000000000},
      {"4000000001", "%lld", 4000000001},
      {"10000000000", "%lld", 10000000000},
      {"5000000000000000007", "%lld", 5000000000000000007},
  };
  ExpectNumbers(kCases);
}

TEST(qvFormatNumber, PrintsTheNamedIntegerTypes) {
  ExpectFormatted("-9223372036854775808 18446744073709551615", "%jd %ju", INTMAX_MIN, UINTMAX_MAX);
  ExpectFormatted("-1 1", "%td %tu", (ptrdiff_t)-1, (ptrdiff_t)1);
  ExpectFormatted("-1 7", "%zd %zu", (size_t)-1, (size_t)7);
  if (sizeof(size_t) == 4) {
    ExpectFormatted("4294967295 4294967295 -2147483648", "%zu %tu %td", SIZE_MAX, (ptrdiff_t)-1, PTRDIFF_MIN);
  } else {
    ExpectFormatted("18446744073709551615 18446744073709551615 -9223372036854775808", "%zu %tu %td", SIZE_MAX,
                    (ptrdiff_t)-1, PTRDIFF_MIN);
  }
}

TEST(qvFormatNumber, PadsWithMoreZerosThanAnyBuffer) {
  std::string theZeros(3000, '0');
  ExpectFormatted(theZeros + "7", "%.3001d", 7);
  ExpectFormatted("-" + theZeros + "7", "%03002d", -7);
  ExpectFormatted("0x" + theZeros + "7", "%#.3001x", 7);
  ExpectFormatted("1.5" + theZeros, "%.3001f", 1.5);
  ExpectFormatted("1.5" + theZeros + "e+00", "%.3001e", 1.5);
  ExpectFormatted("0x1.8" + theZeros + "p+0", "%.3001a", 1.5);
  ExpectFormatted("1.5" + theZeros, "%#.3002g", 1.5);
}

TEST(qvFormatNumber, PrintsFixedPoint) {
  const NumberCase<double> kCases[] = {
      {"1.500000", "%f", 1.5},
      {"-1.500000", "%f", -1.5},
      {"0.000000", "%f", 0.0},
      {"-0.000000", "%f", -0.0},
      {"2", "%.0f", 1.5},
      {"2", "%.0f", 2.5},
      {"4", "%.0f", 3.5},
      {"0", "%.0f", 0.5},
      {"0.1", "%.1f", 0.05},
      {"0.2", "%.1f", 0.25},
      {"0.3", "%.1f", 0.35},
      {"10.0", "%.1f", 9.96},
      {"2.", "%#.0f", 1.5},
      {"+1.50", "%+.2f", 1.5},
      {" 1.50", "% .2f", 1.5},
      {"  1.50", "%6.2f", 1.5},
      {"1.50  ", "%-6.2f", 1.5},
      {"001.50", "%06.2f", 1.5},
      {"-01.50", "%06.2f", -1.5},
      {"1.5", "%.1lf", 1.5},
      {"1.500000", "%F", 1.5},
      {"123456789012345680.0", "%.1f", 123456789012345680.0},
      {"0.1000000000000000055511151231257827021181583404541015625", "%.55f", 0.1},
      {"0.10000000000000000555111512312578270211815834045410156250", "%.56f", 0.1},
  };
  ExpectNumbers(kCases);
}

TEST(qvFormatNumber, PrintsScientific) {
  const NumberCase<double> kCases[] = {
      {"1.500000e+00", "%e", 1.5},     {"1.500000E+00", "%E", 1.5},
      {"0.000000e+00", "%e", 0.0},     {"-0.000000e+00", "%e", -0.0},
      {"2e+00", "%.0e", 1.5},          {"2e+00", "%.0e", 2.5},
      {"2.e+00", "%#.0e", 1.5},        {"1.00e+01", "%.2e", 9.999},
      {"1e+100", "%.0e", 1e100},       {"4.9e-324", "%.1e", 4.9406564584124654e-324},
      {"-1.50e+10", "%.2e", -1.5e10},  {"001.5e-07", "%09.1e", 1.5e-7},
      {"1.5e-07  ", "%-9.1e", 1.5e-7}, {"1.7976931348623157e+308", "%.16e", DBL_MAX},
  };
  ExpectNumbers(kCases);
}

TEST(qvFormatNumber, PrintsTheShorterStyle) {
  const NumberCase<double> kCases[] = {
      {"1.5", "%g", 1.5},
      {"0", "%g", 0.0},
      {"-0", "%g", -0.0},
      {"100000", "%g", 100000.0},
      {"1e+06", "%g", 1000000.0},
      {"1E+06", "%G", 1000000.0},
      {"0.0001", "%g", 0.0001},
      {"1e-05", "%g", 0.00001},
      {"0.00015", "%g", 0.00015},
      {"123457", "%g", 123456.7},
      {"1e+06", "%g", 999999.5},
      {"999999", "%g", 999999.4},
      {"0.0001", "%g", 0.00009999999},
      {"2", "%.0g", 1.5},
      {"2", "%.1g", 2.5},
      {"1e+01", "%.1g", 9.5},
      {"1.50000", "%#g", 1.5},
      {"0.00000", "%#g", 0.0},
      {"2.", "%#.0g", 1.5},
      {"100000.", "%#g", 100000.0},
      {"1.00000e+06", "%#g", 1000000.0},
      {"0.000150000", "%#g", 0.00015},
      {"1.e+01", "%#.1g", 10.0},
      {"12345.7", "%g", 12345.67},
      {"   1.5", "%6g", 1.5},
      {"0001.5", "%06g", 1.5},
      {"0.1000000000000000055511151231257827", "%.34g", 0.1},
      {"1e+300", "%.10g", 1e300},
      {"1.25e-10", "%g", 1.25e-10},
  };
  ExpectNumbers(kCases);
}

TEST(qvFormatNumber, KeepsTheZerosOfTheAlternativeFormWhenRoundingChangesTheStyle) {
  // C asks for the zeros here too; not every C library prints them.
  ExpectFormatted("1.00000e+06", "%#g", 999999.5);
  ExpectFormatted("-1.0E+02", "%#.2G", -99.5);
  ExpectFormatted("999999.", "%#g", 999999.4);
}

TEST(qvFormatNumber, PrintsHexadecimalFloatingPoint) {
  const NumberCase<double> kCases[] = {
      {"0x1p+0", "%a", 1.0},
      {"0x1.8p+0", "%a", 1.5},
      {"-0X1.8P+1", "%A", -3.0},
      {"0x0p+0", "%a", 0.0},
      {"-0x0p+0", "%a", -0.0},
      {"0x0.000p+0", "%.3a", 0.0},
      {"0x1.999999999999ap-4", "%a", 0.1},
      {"0X1.999999999999AP-4", "%A", 0.1},
      {"0x1.ap-4", "%.1a", 0.1},
      {"0x2p+0", "%.0a", 1.5},
      {"0x2p+0", "%.0a", 1.96875},
      {"0x1.0p+0", "%.1a", 1.03125},
      {"0x1.2p+0", "%.1a", 1.09375},
      {"0x1.p+0", "%#a", 1.0},
      {"0x1.8000p+0", "%.4a", 1.5},
      {"0x0.0000000000001p-1022", "%a", 4.9406564584124654e-324},
      {"0x1.fffffffffffffp+1023", "%a", DBL_MAX},
      {"  0x1.8p+0", "%10a", 1.5},
      {"0x0001.8p+0", "%011a", 1.5},
      {"+0x1.8p+0  ", "%-+11a", 1.5},
  };
  ExpectNumbers(kCases);
}

TEST(qvFormatNumber, PrintsInfinities) {
  char theBuffer[16];
  EXPECT_EQ(4, qv_snprintf(theBuffer, 16, "%f", qv_ninf()));
  EXPECT_STREQ("-inf", theBuffer);
  EXPECT_EQ(4, qv_snprintf(theBuffer, 16, "%F", qv_ninf()));
  EXPECT_STREQ("-INF", theBuffer);
  for (char theConversion : std::string("efga")) {
    ExpectFormatted("inf -inf", std::string("%") + theConversion + " %" + theConversion, qv_pinf(),
                    qv_ninf());
  }
  for (char theConversion : std::string("EFGA")) {
    ExpectFormatted("INF -INF", std::string("%") + theConversion + " %" + theConversion, qv_pinf(),
                    qv_ninf());
  }
}

TEST(qvFormatNumber, PadsInfinitiesAndNaNsWithBlanks) {
  ExpectFormatted("[   inf][inf   ][  -inf][+inf]", "[%06f][%-06f][%06.1f][%+f]", qv_pinf(), qv_pinf(),
                  qv_ninf(), qv_pinf());
  ExpectFormatted("[   nan][nan   ][nan]", "[%06f][%-6f][%.1f]", qv_nan(), qv_nan(), qv_nan());
}

TEST(qvFormatNumber, PrintsNaNsWithoutASign) {
  ExpectFormatted("nan nan nan nan", "%f %+f % f %f", qv_nan(), qv_nan(), qv_nan(), -qv_nan());
  for (char theConversion : std::string("EFGA")) {
    ExpectFormatted("NAN", std::string("%") + theConversion, -qv_nan());
  }
  ExpectFormatted("nan", "%Lf", -std::numeric_limits<long double>::quiet_NaN());
}

TEST(qvFormatNumber, PrintsLongDoubles) {
  const NumberCase<long double> kCases[] = {
      {"1.500000", "%Lf", 1.5L},
      {"-0.000000", "%Lf", -0.0L},
      {"1.500000e+00", "%Le", 1.5L},
      {"1.5", "%Lg", 1.5L},
      {"inf", "%Lf", HUGE_VALL},
      {"-INF", "%LG", -HUGE_VALL},
      {"18446744073709551616", "%.0Lf", 18446744073709551616.0L},
  };
  ExpectNumbers(kCases);
}

TEST(qvFormatNumber, PrintsLongDoublesExactly) {
#if LDBL_MANT_DIG == 64
  const NumberCase<long double> kCases[] = {
      {"0.1000000000000000000013552527156068805425093160010874271392822266", "%.64Lf", 0.1L},
      {"18446744073709551615", "%.0Lf", 18446744073709551615.0L},
      {"1.844674407370955162e+19", "%.19Lg", 18446744073709551615.0L},
      {"1.18973149535723176502e+4932", "%.20Le", LDBL_MAX},
      {"3.6452e-4951", "%.4Le", LDBL_TRUE_MIN},
      {"0", "%.0Lf", LDBL_TRUE_MIN},
      {"1e+01", "%.0Le", 9.999999999999999999L},
      {"1.00e+01", "%.2Le", 9.999999999999999999L},
      {"10", "%.0Lf", 9.999999999999999999L},
      {"10.000", "%.3Lf", 9.999999999999999999L},
      {"10", "%Lg", 9.999999999999999999L},
      {"10.0000", "%#Lg", 9.999999999999999999L},
      {"9.99999999999999999913", "%.20Lf", 9.999999999999999999L},
      {"0.0100", "%.4Lf", 0.00999999999999999999L},
      {"1.0e-02", "%.1Le", 0.00999999999999999999L},
      {"1", "%.0Lf", 0.50000000000000000003L},
      {"0", "%.0Lf", 0.49999999999999999997L},
      {"1.e+01", "%#.0Le", 9.999999999999999999L},
      {"0xc.ccccccccccccccdp-7", "%La", 0.1L},
      {"0xc.ccccccccccccccdp-7", "%.15La", 0.1L},
      {"0xc.cccccccccccccdp-7", "%.14La", 0.1L},
      {"0x8p-3", "%La", 1.0L},
      {"0X8.0P-3", "%.1LA", 1.0L},
      {"0x1p+1", "%.0La", 1.99999999999999999989L},
      {"0x0p+0", "%La", 0.0L},
      {"0x0.000000000000001p-16385", "%La", LDBL_TRUE_MIN},
  };
#else  // the same type as double
  const NumberCase<long double> kCases[] = {
      {"0.1000000000000000055511151231257827021181583404541015625000000000", "%.64Lf", 0.1L},
      {"1.79769313486231570815e+308", "%.20Le", LDBL_MAX},
      {"4.9407e-324", "%.4Le", LDBL_TRUE_MIN},
      {"0x1.999999999999ap-4", "%La", 0.1L},
      {"0x1p+0", "%La", 1.0L},
      {"0x0.0000000000001p-1022", "%La", LDBL_TRUE_MIN},
  };
#endif
  ExpectNumbers(kCases);
}

#if LDBL_MANT_DIG == 64
struct OddLongDouble {
  uint64_t mMantissa;
  uint16_t mExponent;
  const char* mExpected;
  const char* mWhy;
};

TEST(qvFormatNumber, PrintsBitsThatTheProcessorNeverMakes) {
  const OddLongDouble kCases[] = {
      {0, 0x3fff, "nan nan nan", "zero with an exponent"},
      {1, 0x3fff, "nan nan nan", "without the leading bit"},
      {0x4000000000000000, 0x7ffe, "nan nan nan", "large, without the leading bit"},
      {0, 0x7fff, "nan nan nan", "infinity without the leading bit"},
      {1, 0x7fff, "nan nan nan", "NaN without the leading bit"},
      {0xc000000000000001, 0, "5.0432e-4932 0.00 0xc.000000000000001p-16385", "the leading bit, no exponent"},
  };
  for (const OddLongDouble& theCase : kCases) {
    long double theNumber = 0;
    memcpy(&theNumber, &theCase.mMantissa, sizeof theCase.mMantissa);
    memcpy(reinterpret_cast<char*>(&theNumber) + sizeof theCase.mMantissa, &theCase.mExponent,
           sizeof theCase.mExponent);
    SCOPED_TRACE(theCase.mWhy);
    ExpectFormatted(theCase.mExpected, "%.4Le %.2Lf %La", theNumber, theNumber, theNumber);
  }
}
#endif

TEST(qvFormatNumber, PrintsEveryDigitOfTheSmallestNumber) {
  std::string theText = NarrowText("%.1080f", 4.9406564584124654e-324);
  ASSERT_EQ(1082u, theText.size());
  EXPECT_EQ("0." + std::string(323, '0') + "4940656458412465441765687928", theText.substr(0, 353));
  EXPECT_EQ("5625000000", theText.substr(1082 - 10)) << "1074 digits, then zeros";
}

TEST(qvFormatNumber, PrintsEveryDigitOfTheSmallestLongDouble) {
#if LDBL_MANT_DIG == 64
  const size_t kZeros = 4950, kDigits = 16445;
  const char* kFirst = "3645199531882474602528";
#else  // the same type as double
  const size_t kZeros = 323, kDigits = 1074;
  const char* kFirst = "4940656458412465441765";
#endif
  std::string theText = NarrowText("%.*Lf", static_cast<int>(kDigits + 5), LDBL_TRUE_MIN);
  ASSERT_EQ(2 + kDigits + 5, theText.size());
  EXPECT_EQ("0." + std::string(kZeros, '0') + kFirst, theText.substr(0, 2 + kZeros + 22));
  EXPECT_EQ("2500000", theText.substr(theText.size() - 7)) << "all digits, then zeros";
}

TEST(qvFormatNumber, DoesNotDependOnTheRoundingMode) {
  for (int theMode : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO, FE_TONEAREST}) {
    ASSERT_EQ(0, fesetround(theMode));
    std::string theText = NarrowText("%.1f %.0f %.2e %g %.0a %.1Lf", 0.25, 2.5, 1.006, 0.1, 1.5, 0.25L);
    fesetround(FE_TONEAREST);
    EXPECT_EQ("0.2 2 1.01e+00 0.1 0x2p+0 0.2", theText);
  }
}

TEST(qvFormatNumber, DoesNotDependOnTheLocale) {
  CommaLocale theLocale;
  if (!theLocale.WhyNot().empty()) {
    GTEST_SKIP() << theLocale.WhyNot();
  }
  ExpectFormatted("1.50 2.5e+00 0.1 0x1.8p+0 0.5", "%.2f %.1e %g %a %.1Lf", 1.5, 2.5, 0.1, 1.5, 0.5L);
}
