// What the formatting functions refuse, with which code and at which position.
#include <gtest/gtest.h>
#include <limits.h>

#include <string>

#include "qvraTools/format/qvFormat.h"
#include "support/FormatText.h"

// The formats are wrong on purpose.
#pragma GCC diagnostic ignored "-Wformat"

TEST(qvFormatErrors, HaveTheirNumbers) {
  EXPECT_EQ(1, VEXA_EOF);
  EXPECT_EQ(2, VEXA_EINVAL);
  EXPECT_EQ(3, VEXA_ETOOMANY);
  EXPECT_EQ(4, VEXA_EDBLREF);
  EXPECT_EQ(5, VEXA_EGAP);
  EXPECT_EQ(6, VEXA_ENOMEM);
  EXPECT_EQ(7, VEXA_ERANGE);
  EXPECT_EQ(8, VEXA_ERRNO);
  EXPECT_EQ(9, VEXA_ECUSTOM);
}

TEST(qvFormatErrors, AreNegativeWithTheCodeInTheLowByte) {
  char theBuffer[16];
  int theResult = qv_snprintf(theBuffer, sizeof theBuffer, "abc%y");
  EXPECT_EQ(-(2 + 4 * 256), theResult);
  EXPECT_EQ(2, QVFORMAT_ERROR_CODE(theResult));
  EXPECT_EQ(4, QVFORMAT_ERROR_POSITION(theResult));
}

TEST(qvFormatErrors, LeaveATerminatedEmptyText) {
  char theBuffer[] = "xxxx";
  EXPECT_GT(0, qv_snprintf(theBuffer, sizeof theBuffer, "ab%d%y", 1));
  EXPECT_STREQ("", theBuffer);
  wchar_t theWideBuffer[] = L"xxxx";
  EXPECT_GT(0, qv_swprintf(theWideBuffer, 5, L"ab%d%y", 1));
  EXPECT_STREQ(L"", theWideBuffer);
}

TEST(qvFormatErrors, LeaveABufferWithoutRoomAlone) {
  char theBuffer[] = "x";
  EXPECT_GT(0, qv_snprintf(theBuffer, 0, "%y"));
  EXPECT_STREQ("x", theBuffer);
}

TEST(qvFormatErrors, CountTheFormatInItsOwnCharacters) {
  // U+20AC is three bytes and one wide character.
  EXPECT_EQ("error 2 at 4", NarrowText("\xe2\x82\xac%y"));
  EXPECT_EQ(L"error 2 at 2", WideText(L"\u20ac%y"));
}

TEST(qvFormatErrors, CutAPositionThatAnIntCannotHold) {
  std::string theFormat(9000000, 'a');
  EXPECT_EQ("error 2 at 8388607", NarrowText((theFormat + "%y").c_str()));
}

struct BadFormat {
  const char* mFormat;
  const char* mError;
  const char* mWhy;
};

// All of them get enough arguments of the kinds that they name before the error is found.
template <size_t Count>
static void ExpectErrors(const BadFormat (&aCases)[Count]) {
  for (const BadFormat& theCase : aCases) {
    SCOPED_TRACE(theCase.mWhy);
    ExpectFormatted(theCase.mError, theCase.mFormat, 1, 2, 3, 4);
  }
}

TEST(qvFormatErrors, InvalidIsAnUnknownConversion) {
  const BadFormat kCases[] = {
      {"%y", "error 2 at 1", "no such conversion"},
      {"%d %y", "error 2 at 4", "behind a good one"},
      {"%5.2y", "error 2 at 4", "behind width and precision"},
      {"% %", "error 2 at 2", "a flag inside the percent sign"},
      {"%5%", "error 2 at 2", "a width inside the percent sign"},
      {"%1$%", "error 2 at 3", "a position inside the percent sign"},
      {"%D", "error 2 at 1", "no upper-case form"},
      {"%\x01", "error 2 at 1", "a control character"},
      {"%\x7f", "error 2 at 1", "the last ASCII character"},
      {"%@", "error 2 at 1", "the character before the letters"},
      {"%5:d", "error 2 at 2", "the one behind the digits, in a width"},
      {"%.5/d", "error 2 at 3", "the one before them, in a precision"},
      {"%[", "error 2 at 1", "one between the two alphabets"},
      {"%{", "error 2 at 1", "the character behind the letters"},
  };
  ExpectErrors(kCases);
  EXPECT_EQ("error 2 at 1", NarrowText("%\xe9"));
  EXPECT_EQ(L"error 2 at 1", WideText(L"%\u20ac"));
  EXPECT_EQ(L"error 2 at 1", WideText(L"%\u0164")) << "its low byte is 'd'";
}

TEST(qvFormatErrors, InvalidIsEveryExtension) {
  const BadFormat kCases[] = {
      {"%qd", "error 2 at 1", "quad modifier"},
      {"%Zd", "error 2 at 1", "old size modifier"},
      {"%I64d", "error 2 at 1", "fixed sizes"},
      {"%I32d", "error 2 at 1", "fixed sizes"},
      {"%Id", "error 2 at 1", "other digits"},
      {"%m", "error 2 at 1", "error text"},
      {"%b", "error 2 at 1", "binary"},
      {"%B", "error 2 at 1", "binary"},
      {"%'d", "error 2 at 1", "grouping"},
      {"%!d", "error 2 at 1", "sticky flags"},
      {"%&d", "error 2 at 1", "variable size"},
      {"%Rd", "error 2 at 1", "rounding"},
      {"%<x>", "error 2 at 1", "user-defined"},
      {"%[x]", "error 2 at 1", "user-defined"},
      {"%C", "error 2 at 1", "wide character by another name"},
      {"%S", "error 2 at 1", "wide text by another name"},
      {"%w32d", "error 2 at 1", "a later standard's fixed widths"},
  };
  ExpectErrors(kCases);
}

TEST(qvFormatErrors, InvalidAreDoubledAndMisplacedParts) {
  const BadFormat kCases[] = {
      {"%5-d", "error 2 at 2", "a flag behind the width"},
      {"%5*d", "error 2 at 2", "two widths"},
      {"%**d", "error 2 at 2", "two widths"},
      {"%*5d", "error 2 at 2", "two widths"},
      {"%.1.2d", "error 2 at 3", "two precisions"},
      {"%..2d", "error 2 at 2", "two precisions"},
      {"%.-5d", "error 2 at 2", "a negative precision"},
      {"%.+5d", "error 2 at 2", "a precision with a sign"},
      {"%.5-d", "error 2 at 3", "a flag behind the precision"},
      {"%llld", "error 2 at 3", "three times l"},
      {"%hhhd", "error 2 at 3", "three times h"},
      {"%hld", "error 2 at 2", "two lengths"},
      {"%lhd", "error 2 at 2", "two lengths"},
      {"%jjd", "error 2 at 2", "two lengths"},
      {"%zzd", "error 2 at 2", "two lengths"},
      {"%l5d", "error 2 at 2", "a width behind the length"},
      {"%l-d", "error 2 at 2", "a flag behind the length"},
      {"%-1$d", "error 2 at 3", "a position behind a flag"},
      {"%0$d", "error 2 at 2", "positions begin with 1"},
      {"%$d", "error 2 at 1", "no position"},
      {"%1$1$d", "error 2 at 4", "two positions"},
      {"%1$$d", "error 2 at 3", "two positions"},
  };
  ExpectErrors(kCases);
}

TEST(qvFormatErrors, InvalidAreLengthsThatAConversionDoesNotHave) {
  for (const char* theLength : {"hh", "h", "ll", "L", "j", "t", "z"}) {
    std::string theAt = " at " + std::to_string(1 + std::string(theLength).size());
    for (char theConversion : std::string("sc")) {
      ExpectFormatted("error 2" + theAt, std::string("%") + theLength + theConversion, 1);
    }
  }
  for (const char* theLength : {"hh", "h", "ll", "j", "t", "z"}) {
    std::string theAt = " at " + std::to_string(1 + std::string(theLength).size());
    for (char theConversion : std::string("eEfFgGaA")) {
      ExpectFormatted("error 2" + theAt, std::string("%") + theLength + theConversion, 1.0);
    }
  }
  for (const char* theLength : {"hh", "h", "l", "ll", "L", "j", "t", "z"}) {
    std::string theAt = " at " + std::to_string(1 + std::string(theLength).size());
    ExpectFormatted("error 2" + theAt, std::string("%") + theLength + "p", "");
    ExpectFormatted("error 2" + theAt, std::string("%") + theLength + "%", "");
  }
  for (char theConversion : std::string("diuoxXn")) {
    ExpectFormatted("error 2 at 2", std::string("%L") + theConversion, 1);
  }
}

TEST(qvFormatErrors, InvalidIsAMixOfDirectivesWithAndWithoutPositions) {
  const BadFormat kCases[] = {
      {"%d %1$d", "error 2 at 6", "a position behind a plain one"},
      {"%1$d %d", "error 2 at 6", "a plain one behind a position"},
      {"%1$d%%%d", "error 2 at 7", "a percent sign between them"},
      {"%1$*d", "error 2 at 4", "a plain width"},
      {"%*1$d", "error 2 at 4", "only the width has a position"},
      {"%1$.*d", "error 2 at 5", "a plain precision"},
      {"%.*1$d", "error 2 at 5", "only the precision has a position"},
      {"%1$*2$.*d", "error 2 at 8", "a plain precision beside a width"},
      {"%c %1$d", "error 2 at 6", "a position behind a plain character"},
      {"%5.1d %1$d", "error 2 at 9", "a position behind a plain one with parts"},
  };
  ExpectErrors(kCases);
  ExpectFormatted("error 2 at 6", "%s %1$s", "a");
}

TEST(qvFormatErrors, EndOfFormatIsADirectiveThatIsCutOff) {
  const BadFormat kCases[] = {
      {"%", "error 1 at 1", "only the percent sign"},
      {"abc%", "error 1 at 4", "at the end of a text"},
      {"%%%", "error 1 at 3", "behind a whole percent sign"},
      {"%-", "error 1 at 2", "behind a flag"},
      {"%5", "error 1 at 2", "behind a width"},
      {"%*", "error 1 at 2", "behind a width from the arguments"},
      {"%.", "error 1 at 2", "behind the point"},
      {"%.5", "error 1 at 3", "behind a precision"},
      {"%.*", "error 1 at 3", "behind a precision from the arguments"},
      {"%l", "error 1 at 2", "behind a length"},
      {"%hh", "error 1 at 3", "behind a length"},
      {"%1$", "error 1 at 3", "behind a position"},
      {"%1$d%", "error 1 at 5", "behind a directive with a position"},
      {"%1$d%2", "error 1 at 6", "inside a position"},
      {"%1$*2$", "error 1 at 6", "behind a width's position"},
  };
  ExpectErrors(kCases);
}

TEST(qvFormatErrors, TooManyIsAPositionAbove64) {
  const BadFormat kCases[] = {
      {"%65$d", "error 3 at 1", "one above the limit"},
      {"%1$d%65$d", "error 3 at 5", "behind a good one"},
      {"%1$*65$d", "error 3 at 4", "a width's position"},
      {"%1$.*65$d", "error 3 at 5", "a precision's position"},
      {"%2147483648$d", "error 3 at 1", "no int holds it"},
      {"%99999999999999999999$d", "error 3 at 1", "no 64-bit number holds it"},
  };
  ExpectErrors(kCases);
}

TEST(qvFormatErrors, DoubleReferenceIsOneArgumentWithTwoTypes) {
  const BadFormat kCases[] = {
      {"%1$f%1$Lf", "error 4 at 8", "double and long double"},
      {"%1$d%1$s", "error 4 at 7", "number and text"},
      {"%1$d%1$ld", "error 4 at 8", "int and long, also where they are alike"},
      {"%1$ld%1$lld", "error 4 at 10", "long and long long"},
      {"%1$lu%1$zu", "error 4 at 9", "unsigned long and size_t"},
      {"%1$lld%1$jd", "error 4 at 10", "long long and intmax_t"},
      {"%1$td%1$zd", "error 4 at 9", "ptrdiff_t and size_t"},
      {"%1$s%1$ls", "error 4 at 8", "text and wide text"},
      {"%1$s%1$p", "error 4 at 7", "text and pointer"},
      {"%1$n%1$hn", "error 4 at 8", "two kinds of counters"},
      {"%1$d%1$f", "error 4 at 7", "int and double"},
      {"%1$s%2$*1$d", "error 4 at 10", "text and width"},
      {"%1$f%2$.*1$d", "error 4 at 11", "double and precision"},
  };
  ExpectErrors(kCases);
}

TEST(qvFormatErrors, SignednessAndIntegerPromotionAreNoSecondType) {
  ExpectFormatted("5 5 5 5 A", "%1$d %1$u %2$hhd %2$x %3$c", 5, 5, 65);
  ExpectFormatted("-1 4294967295 65535 255", "%1$d %1$u %1$hu %1$hhu", -1);
  ExpectFormatted("2.5 2.5", "%1$.1f %1$.1lf", 2.5);
}

TEST(qvFormatErrors, GapIsAnArgumentThatNoDirectiveNames) {
  const BadFormat kCases[] = {
      {"%2$d", "error 5 at 4", "the first is missing"},
      {"%1$d %3$d", "error 5 at 9", "the second is missing"},
      {"%1$d%64$d", "error 5 at 9", "only the ends"},
      {"%1$*3$d", "error 5 at 7", "a width's position makes one"},
  };
  ExpectErrors(kCases);
  ExpectFormatted("    7", "%1$*2$d", 7, 5);  // and closes one
}

TEST(qvFormatErrors, RangeIsAWidthOrPrecisionThatNoIntHolds) {
  const BadFormat kCases[] = {
      {"%2147483648d", "error 7 at 1", "width one above the largest int"},
      {"%99999999999999999999d", "error 7 at 1", "width beyond 64 bits"},
      {"%-02147483648d", "error 7 at 3", "width behind flags"},
      {"%.2147483648d", "error 7 at 2", "precision one above the largest int"},
      {"%.99999999999999999999f", "error 7 at 2", "precision beyond 64 bits"},
  };
  ExpectErrors(kCases);
  ExpectFormatted("error 7 at 2", "%*d", INT_MIN, 1);
  ExpectFormatted("error 7 at 6", "%1$*2$d", 1, INT_MIN);
}

TEST(qvFormatErrors, RangeIsAnOutputThatNoIntCounts) {
  char theBuffer[16];
  EXPECT_EQ(INT_MAX, qv_snprintf(theBuffer, sizeof theBuffer, "%2147483647d", 1));
  ExpectFormatted("error 7 at 13", "%2147483647dx", 1);
  ExpectFormatted("error 7 at 13", "x%2147483647d", 1);
  ExpectFormatted("error 7 at 14", "%2147483647d%d%d", 1, 2, 3);
  ExpectFormatted("error 7 at 14", "%2147483647d%s%s", 1, "a", "b");
  ExpectFormatted("error 7 at 13", "%.2147483647f", 1.5);
  ExpectFormatted("error 7 at 13", "%.2147483647e", 1.5);
  ExpectFormatted("error 7 at 13", "%.2147483647a", 1.5);
}

TEST(qvFormatErrors, RangeSeesOutputsThatWrapASizeOfThirtyTwoBits) {
  ExpectFormatted("error 7 at 24", "%2147483647d%2147483647d%2147483647d", 1, 2, 3);
  ExpectFormatted("error 7 at 27", "%2147483647d%#.2147483647f|", 1, 1e308);
}
