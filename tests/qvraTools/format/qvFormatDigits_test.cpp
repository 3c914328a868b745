// Digits that are hard to make: ties, neighbours of ties and of powers of ten, very many digits.
#include <float.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "support/FormatText.h"
#include "support/HardNumbers.h"

TEST(qvFormatDigits, ATieOfBinaryDigitsGoesToTheEvenDigit) {
  ExpectFormatted("0 2 2 4", "%.0f %.0f %.0f %.0f", 0.5, 1.5, 2.5, 3.5);
  ExpectFormatted("0.12 0.38 0.62 0.88", "%.2f %.2f %.2f %.2f", 0.125, 0.375, 0.625, 0.875);
  ExpectFormatted("1.2e-01 3.8e-01", "%.1e %.1e", 0.125, 0.375);
  // 2^-27 has 27 digits behind the point, the last of which is the tie.
  ExpectFormatted("0.00000000745058059692382812", "%.26f", 7.450580596923828125e-9);
  ExpectFormatted("0.00000002235174179077148438", "%.26f", 2.2351741790771484375e-8);
}

TEST(qvFormatDigits, ATieOfDigitsInFrontOfThePointGoesToTheEvenDigit) {
  ExpectFormatted("2e+01 4e+01", "%.0e %.0e", 25.0, 35.0);
  ExpectFormatted("1.234e+04 1.236e+04", "%.3e %.3e", 12345.0, 12355.0);
  ExpectFormatted("1.23456e+06 1.23458e+06", "%g %g", 1234565.0, 1234575.0);
  // A double holds these exactly, but not the power of ten they are divided by.
  ExpectFormatted("2e+21 4e+21", "%.0e %.0e", 25e20, 35e20);
}

TEST(qvFormatDigits, TheNeighboursOfATieAreRoundedToTheNearest) {
  ExpectFormatted("0 1", "%.0f %.0f", 0x1.fffffffffffffp-2, 0x1.0000000000001p-1);
  ExpectFormatted("2 3", "%.0f %.0f", 0x1.3ffffffffffffp+1, 0x1.4000000000001p+1);
  ExpectFormatted("1.234e+04 1.235e+04", "%.3e %.3e", 0x1.81c7fffffffffp+13, 0x1.81c8000000001p+13);
}

TEST(qvFormatDigits, NumbersThatAllButEqualATieAreRoundedToTheNearest) {
  // Within 2^-61 of half of the last digit: closer than the product with a power of five can tell.
  ExpectFormatted("1.4460958381605e+51", "%.13e", 0x1.eebabe0957af3p+169);     // below it, behind a 5
  ExpectFormatted("4.17367747458531e-286", "%.14e", 0x1.fc6c26f899dd1p-949);   // below it, behind a 1
  ExpectFormatted("3.906439244631e-167", "%.12e", 0x1.26dae7bbeda75p-553);     // above it, behind a 0
  ExpectFormatted("6.898586531774201e+180", "%.15e", 0x1.a999ddec72acap+600);  // above it, behind a 0
}

TEST(qvFormatDigits, RoundingUpNinesMakesADigitMoreInFront) {
  ExpectFormatted("10.0 100 1000.00", "%.1f %.0f %.2f", 9.96, 99.5, 999.996);
  ExpectFormatted("1.0e+01 1e+03 1.000000e+08", "%.1e %.0e %e", 9.96, 999.0, 99999999.96);
  ExpectFormatted("10 1e+06 0.0001", "%.2g %g %.3g", 9.96, 999999.5, 9.9996e-5);
  ExpectFormatted("10.0000 1.00000e+06 0.000100", "%#g %#g %#.3g", 9.9999999, 999999.5, 9.9996e-5);
  ExpectFormatted("0.1 1 0", "%.1f %.0f %.0f", 0.06, 0.6, 0.06);
}

TEST(qvFormatDigits, PowersOfTenAndTheirNeighboursHaveTheRightExponent) {
  ExpectFormatted("1e+15 1e+16 1e+22", "%.15g %.15g %.15g", 1e15, 1e16, 1e22);
  ExpectFormatted("9.9999999999999992e+22 9.9999999999999991611392e+22", "%.17g %.22e", 1e23, 1e23);
  ExpectFormatted("1.0000000000000000e+22 9.9999999999999979e+21", "%.16e %.16e", 1e22,
                  0x1.0f0cf064dd591p+73);
  ExpectFormatted("1.0000000000000001e-05 9.9999999999999991e-309", "%.16e %.16e", 1e-5, 1e-308);
  ExpectFormatted("999999999999999.88 1000000000000000.00", "%.2f %.2f", 999999999999999.875, 1e15);
}

TEST(qvFormatDigits, TheSmallestAndTheLargestNumbersAreExact) {
  ExpectFormatted("4.9406564584124654e-324 5e-324", "%.16e %.0e", 5e-324, 5e-324);
  ExpectFormatted("4.940656458412465442e-324", "%.18e", 5e-324);
  ExpectFormatted("2.2250738585072009e-308 2.2250738585072014e-308", "%.17g %.17g", 0x0.fffffffffffffp-1022,
                  0x1p-1022);
  ExpectFormatted("1.7976931348623157e+308 1.79769313486231570815e+308", "%.17g %.20e",
                  0x1.fffffffffffffp+1023, 0x1.fffffffffffffp+1023);
  std::string theLargest = NarrowText("%f", 0x1.fffffffffffffp+1023);
  EXPECT_EQ("179769313486231570814527423731704356798070567525844996598917476803157260780028538760589558632",
            theLargest.substr(0, 93));
  EXPECT_EQ("858368.000000", theLargest.substr(theLargest.size() - 13));
}

TEST(qvFormatDigits, AllDigitsOfASmallNumberCanBeAskedFor) {
  // 2^-1074 ends at the 1074th digit behind the point, as 5^1074 does.
  std::string theText = NarrowText("%.1080f", 5e-324);
  EXPECT_EQ(std::string("0.") + std::string(323, '0') + "494065645841246544176568792868",
            theText.substr(0, 355));
  EXPECT_EQ("65625000000", theText.substr(theText.size() - 11));
}

TEST(qvFormatDigits, ANumberFarBelowTheLastDigitIsZero) {
  ExpectFormatted("0 0.00 0.000000", "%.0f %.2f %f", 1e-300, 0.0049, 4.9e-7);
  ExpectFormatted("0.01 0.000001", "%.2f %f", 0.0051, 5.1e-7);
  ExpectFormatted("0.00000000000000000000000000000000000000000000000000", "%.50f", 5e-324);
}

#if LDBL_MANT_DIG == 64
TEST(qvFormatDigits, LongDoublesJustAboveATieAreRoundedUpFromAnEvenDigit) {
  // By less than 2^-64 of the last digit: all that tells is that something was cut.
  ExpectFormatted("2.957177e-20", "%.6Le", 0x8ba611fb40ee2abdp-128L);
  ExpectFormatted("7e-25", "%.0Le", 0xc92a4e3e0c320052p-144L);
  ExpectFormatted("1.237137651239e-08", "%.12Le", 0xd489e3a9addec2d1p-90L);
  ExpectFormatted("6.86501e-15", "%.5Le", 0xf7567ec2244a9fdcp-111L);
  ExpectFormatted("3e-09", "%.0Le", 0xabcc77118461cefdp-92L);
  ExpectFormatted("1.9017e-04", "%.4Le", 0xc767074b22e90e21p-76L);
  ExpectFormatted("0.00000001", "%.8Lf", 0xabcc77118461cefdp-91L);
  ExpectFormatted("0.00000000001", "%.11Lf", 0xafebff0bcb24aaffp-101L);
}

TEST(qvFormatDigits, ALongDoubleFarBelowOneIsRoundedAtThePlaceBeforeItsFirstDigit) {
  const std::string kZeros = "0." + std::string(398, '0');
  ExpectFormatted(kZeros + "1", "%.399Lf", 6e-400L);
  ExpectFormatted(kZeros + "0", "%.399Lf", 4e-400L);
}
#endif

TEST(qvFormatDigits, HardNumbersHaveTheDigitsOfTheLanguagesOwnConversion) {
  HardNumbers theNumbers(1);
  for (int i = 0; i < 30000; ++i) {
    const HardNumber theNumber = theNumbers.Next();
    ASSERT_EQ("", WrongDigits(theNumber));
    if (i % 8 == 0) {
      ASSERT_EQ("", DifferentDigits(theNumber));
      ASSERT_EQ("", DifferentLongDigits(theNumber, static_cast<uint64_t>(i) << 53));
    }
  }
}

TEST(qvFormatDigits, SeventeenDigitsOfEveryExponentAreThoseOfTheLanguagesOwnConversion) {
  std::mt19937_64 theEngine(1);
  for (int theExponent = -1074; theExponent <= 971; ++theExponent) {
    for (int i = 0; i < 16; ++i) {
      const double theMantissa = static_cast<double>(theEngine() >> 12 | 1ull << 52);
      ASSERT_EQ("", WrongDigits({std::ldexp(theMantissa, theExponent), 16, 'e'}));
    }
  }
}
