// How letters change and compare where the process has a locale of its own. In the Turkish one 'i' belongs to
// the capital with a dot, 0xDD, and 'I' to the small letter without, 0xFD.
#include <gtest/gtest.h>

#include "qv/CString.h"
#include "support/BuiltLocale.h"
#include "support/CStringText.h"
#include "support/Sanitizers.h"

TEST(qvCStringLocale, LettersChangeAndAreFoundAsInTheLocaleOfTheProcess) {
  TurkishLocale theLocale;
  if (!theLocale.WhyNot().empty()) {
    GTEST_SKIP() << theLocale.WhyNot();
  }
  EXPECT_EQ("A\xDDI", TextOf(qvCString("ai\xFD").Upper()));
  EXPECT_EQ("ai\xFD", TextOf(qvCString("A\xDDI").Lower()));
  EXPECT_EQ(1u, qvCString("xI\xDD").FindNoCase(qvCString("\xFDi")));
  EXPECT_EQ(qvCString::npos, qvCString("xI").FindNoCase(qvCString("i")));
}

TEST(qvCStringLocale, LettersCompareAsInTheLocaleOfTheProcess) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizers' strcasecmp knows the letters of ASCII only";
  }
  TurkishLocale theLocale;
  if (!theLocale.WhyNot().empty()) {
    GTEST_SKIP() << theLocale.WhyNot();
  }
  EXPECT_EQ(0, qvCString("A\xDDI").CompareNoCase(qvCString("ai\xFD")));
  EXPECT_EQ(0, qvCString("A\xDDI").CompareNoCase("ai\xFD"));
  EXPECT_EQ(1, qvCString("I").CompareNoCase(qvCString("i")));
  EXPECT_EQ(-1, qvCString("i").CompareNoCase("I"));
}
