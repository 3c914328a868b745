// Values that are read and written as something else than plain text: yes or no, numbers, texts with
// variables.

#include <gtest/gtest.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <string>

#include "qvraTools/qvINIFile.h"
#include "qvraTools/qvMalloc.h"
#include "support/ScratchDictionary.h"

namespace {

struct BoolCase {
  const char* mValue;
  int mWithDefault0;
  int mWithDefault1;
  const char* mWhy;
};

char* KnowsX(char* aName, void* aUserData) {
  EXPECT_EQ(nullptr, aUserData);
  return strcmp(aName, "x") == 0 ? qvStrdup("Z") : nullptr;
}

// Reads a value back as a number through both flags: the result and whether the key was found.
template <typename T>
void ExpectNumber(T (*aReader)(qvDictionary*, const char*, const char*, T, int*), const char* aValue,
                  T aDefault, T anExpected, const char* aWhy) {
  SCOPED_TRACE(std::string(aValue) + ": " + aWhy);
  ScratchDictionary theDictionary;
  theDictionary.Write("s", "");
  theDictionary.Write("s/k", aValue);
  int theFound = -1;
  EXPECT_EQ(anExpected, aReader(theDictionary.Get(), "s", "k", aDefault, &theFound));
  EXPECT_EQ(1, theFound);
}

}  // namespace

TEST(qvINIFileTyped, BoolIsANumberOrAWord) {
  const BoolCase kCases[] = {
      {"yes", 1, 1, "Y in lower case"},
      {"Yellow", 1, 1, "the first letter decides"},
      {"True", 1, 1, "T"},
      {"t", 1, 1, "t alone"},
      {"n", 0, 0, "n alone"},
      {"No", 0, 0, "N"},
      {"false", 0, 0, "f"},
      {"F", 0, 0, "F"},
      {"0", 0, 0, "the number 0"},
      {"00", 0, 0, "the number 0"},
      {"-0", 0, 0, "the number 0"},
      {"1", 1, 1, "another number"},
      {"12", 1, 1, "another number"},
      {"-1", 1, 1, "another number"},
      {" 12", 1, 1, "leading blanks are skipped by the parser"},
      {"maybe", 0, 1, "neither: the default"},
      {"on", 0, 1, "not one of the words"},
      {"", 0, 1, "neither"},
      {" yes", 0, 1, "a blank is no letter"},
      {"0x", 0, 1, "not wholly a number"},
      {"12 ", 0, 1, "not wholly a number"},
      {"1yes", 0, 1, "not wholly a number, and no letter first"},
      {"99999999999", 0, 1, "out of range, and no letter first"},
      {"\xf4", 0, 1, "a byte above 0x7f"},
  };
  for (const BoolCase& theCase : kCases) {
    ExpectNumber<int>(qvINIFile_ReadKeyAsBool, theCase.mValue, 0, theCase.mWithDefault0, theCase.mWhy);
    ExpectNumber<int>(qvINIFile_ReadKeyAsBool, theCase.mValue, 1, theCase.mWithDefault1, theCase.mWhy);
  }
}

TEST(qvINIFileTyped, MissingBoolGivesTheDefaultAsItIs) {
  ScratchDictionary theDictionary;
  int theFound = -1;
  EXPECT_EQ(7, qvINIFile_ReadKeyAsBool(theDictionary.Get(), "s", "k", 7, &theFound));
  EXPECT_EQ(0, theFound);
}

TEST(qvINIFileTyped, Int32IsDecimalTextOrTheDefault) {
  const struct {
    const char* mValue;
    int32 mExpected;
    const char* mWhy;
  } kCases[] = {
      {"42", 42, "a number"},
      {"-42", -42, "a negative number"},
      {"+42", 42, "a sign"},
      {"2147483647", 2147483647, "the highest"},
      {"-2147483648", INT32_MIN, "the lowest"},
      {"-2147483646", -2147483646, "near the lowest"},
      {"-2147483647", INT32_MIN, "the parser takes this one for the lowest"},
      {"017", 17, "no octal"},
      {"", 5, "no number"},
      {"abc", 5, "no number"},
      {"12abc", 5, "not wholly a number"},
      {"12 ", 5, "not wholly a number"},
      {"0x10", 5, "not wholly a decimal number"},
      {"2147483648", 5, "one above the highest"},
      {"-2147483649", 5, "one below the lowest"},
  };
  for (const auto& theCase : kCases) {
    ExpectNumber<int32>(qvINIFile_ReadKeyAsInt32, theCase.mValue, 5, theCase.mExpected, theCase.mWhy);
  }
}

TEST(qvINIFileTyped, UInt32FollowsItsPrefixOrIsTheDefault) {
  const struct {
    const char* mValue;
    uint32 mExpected;
    const char* mWhy;
  } kCases[] = {
      {"42", 42, "decimal"},
      {"4294967295", 4294967295u, "the highest"},
      {"0xFF", 255, "hexadecimal"},
      {"0XffFFffFF", 4294967295u, "hexadecimal in any case"},
      {"017", 15, "octal"},
      {"0", 0, "zero"},
      {"", 5, "no number"},
      {"-1", 5, "negative"},
      {"4294967296", 5, "one above the highest"},
      {"12abc", 5, "not wholly a number"},
      {"0x", 5, "not wholly a number"},
      {"08", 5, "not wholly an octal number"},
  };
  for (const auto& theCase : kCases) {
    ExpectNumber<uint32>(qvINIFile_ReadKeyAsUInt32, theCase.mValue, 5, theCase.mExpected, theCase.mWhy);
  }
}

TEST(qvINIFileTyped, DoubleIsWhatTheTextBeginsWith) {
  const struct {
    const char* mValue;
    double mExpected;
    const char* mWhy;
  } kCases[] = {
      {"0.5", 0.5, "a fraction"},     {"-1.25e2", -125.0, "an exponent"}, {"3", 3.0, "an integer"},
      {"1.5abc", 1.5, "text behind"}, {"abc", 0.0, "no number at all"},   {"", 0.0, "nothing"},
  };
  for (const auto& theCase : kCases) {
    ExpectNumber<double>(qvINIFile_ReadKeyAsDouble, theCase.mValue, 5.0, theCase.mExpected, theCase.mWhy);
  }
}

TEST(qvINIFileTyped, MissingNumbersGiveTheirDefaults) {
  ScratchDictionary theDictionary;
  int theFound = -1;
  EXPECT_EQ(INT32_MIN, qvINIFile_ReadKeyAsInt32(theDictionary.Get(), "s", "k", INT32_MIN, &theFound));
  EXPECT_EQ(0, theFound);
  theFound = -1;
  EXPECT_EQ(4294967295u, qvINIFile_ReadKeyAsUInt32(theDictionary.Get(), "s", "k", 4294967295u, &theFound));
  EXPECT_EQ(0, theFound);
  theFound = -1;
  EXPECT_EQ(-0.5, qvINIFile_ReadKeyAsDouble(theDictionary.Get(), "s", "k", -0.5, &theFound));
  EXPECT_EQ(0, theFound);
}

TEST(qvINIFileTyped, SubstitutionReplacesVariablesOfTheValue) {
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "s", "k", "a%x%b%unknown%c 100%%");
  int theFound = -1;
  char* theText =
      qvINIFile_ReadKeyAsStringWithSubstitution(theDictionary.Get(), "s", "k", "", &theFound, KnowsX);
  EXPECT_STREQ("aZbc 100%", theText);
  EXPECT_EQ(1, theFound);
  qvFree(theText);
}

TEST(qvINIFileTyped, SubstitutionDoesNotLookIntoReplacements) {
  setenv("QVTEST_SET", "<%x%>", 1);
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "s", "k", "%env.QVTEST_SET%");
  int theFound = -1;
  char* theText =
      qvINIFile_ReadKeyAsStringWithSubstitution(theDictionary.Get(), "s", "k", "", &theFound, KnowsX);
  EXPECT_STREQ("<%x%>", theText);
  qvFree(theText);
}

TEST(qvINIFileTyped, SubstitutionReplacesVariablesOfTheDefault) {
  setenv("QVTEST_SET", "value", 1);
  ScratchDictionary theDictionary;
  int theFound = -1;
  char* theText = qvINIFile_ReadKeyAsStringWithSubstitution(theDictionary.Get(), "s", "k",
                                                            "<%env.QVTEST_SET%>", &theFound, nullptr);
  EXPECT_STREQ("<value>", theText);
  EXPECT_EQ(0, theFound);
  qvFree(theText);
}

TEST(qvINIFileTyped, SubstitutionOfAMissingKeyWithoutDefaultGivesNull) {
  ScratchDictionary theDictionary;
  int theFound = -1;
  EXPECT_EQ(nullptr, qvINIFile_ReadKeyAsStringWithSubstitution(theDictionary.Get(), "s", "k", nullptr,
                                                               &theFound, KnowsX));
  EXPECT_EQ(0, theFound);
}

TEST(qvINIFileTyped, BoolIsWrittenAs1Or0) {
  ScratchDictionary theDictionary;
  EXPECT_EQ(1, qvINIFile_WriteKeyAsBool(theDictionary.Get(), "s", "yes", -5));
  EXPECT_EQ(1, qvINIFile_WriteKeyAsBool(theDictionary.Get(), "s", "no", 0));
  EXPECT_EQ("s=|s/yes=1|s/no=0", theDictionary.Content());
}

TEST(qvINIFileTyped, IntegersAreWrittenInDecimal) {
  ScratchDictionary theDictionary;
  EXPECT_EQ(1, qvINIFile_WriteKeyAsInt32(theDictionary.Get(), "s", "low", INT32_MIN));
  EXPECT_EQ(1, qvINIFile_WriteKeyAsInt32(theDictionary.Get(), "s", "high", INT32_MAX));
  EXPECT_EQ(1, qvINIFile_WriteKeyAsUInt32(theDictionary.Get(), "s", "all", 4294967295u));
  EXPECT_EQ("s=|s/low=-2147483648|s/high=2147483647|s/all=4294967295", theDictionary.Content());
}

TEST(qvINIFileKept, DoublesKeepSixSignificantDigits) {
  const struct {
    double mValue;
    const char* mText;
    const char* mWhy;
  } kCases[] = {
      {0.1234567, "0.123457", "the seventh digit rounds"},
      {0.5, "0.5", "no zeros at the end"},
      {1234567.0, "1.23457e+06", "large numbers too"},
      {-0.00001, "-1e-05", "small ones"},
      {123456.0, "123456", "six digits stay"},
  };
  for (const auto& theCase : kCases) {
    ScratchDictionary theDictionary;
    EXPECT_EQ(1, qvINIFile_WriteKeyAsDouble(theDictionary.Get(), "s", "k", theCase.mValue));
    EXPECT_EQ(theCase.mText, theDictionary.Read("s/k")) << theCase.mWhy;
  }
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsDouble(theDictionary.Get(), "s", "k", 0.1234567);
  int theFound;
  EXPECT_EQ(0.123457, qvINIFile_ReadKeyAsDouble(theDictionary.Get(), "s", "k", 0.0, &theFound));
}
