// Queries, reads, writes and deletions. Loading and saving have test files of their own.

#include "qvraTools/qvINIFile.h"

#include <gtest/gtest.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <string>

#include "qvraTools/qvMalloc.h"
#include "support/ChildProcess.h"
#include "support/ScratchDictionary.h"

namespace {

const std::string kName127(127, 'n');
const std::string kName128(128, 'n');

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

TEST(qvINIFile, ConstantsAreTheDocumentedOnes) {
  EXPECT_EQ('/', kqvINIFIle_SectionSeparator);
  EXPECT_STREQ("default", kqvINIFile_DefaultSectionName);
  EXPECT_EQ(1024, kqvINIFile_MaxLineLength);
  EXPECT_EQ(128, kqvINIFile_SectionMaxLength);
  EXPECT_EQ(256, kqvINIFile_HashTableKeyMaxLength);
  EXPECT_EQ(100, kqvINIFile_ReadPartSize);
  EXPECT_STREQ(" \"'#;\\", kqvINIFIle_CharsRequiringEscape);
  EXPECT_STREQ("\"'\\", kqvINIFIle_CharsToEscape);
}

TEST(qvINIFile, WrittenKeyIsASectionEntryAndAKeyEntryInLowerCase) {
  ScratchDictionary theDictionary;
  EXPECT_EQ(1, qvINIFile_WriteKeyAsString(theDictionary.Get(), "Net", "Host", "My Box"));
  EXPECT_EQ("net=|net/host=My Box", theDictionary.Content());
}

TEST(qvINIFile, NullAndEmptySectionsAreTheDefaultSection) {
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), nullptr, "a", "1");
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "", "b", "2");
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "DEFAULT", "c", "3");
  EXPECT_EQ("default=|default/a=1|default/b=2|default/c=3", theDictionary.Content());
}

TEST(qvINIFile, NullValueIsWrittenAsTheEmptyText) {
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "s", "k", nullptr);
  EXPECT_EQ("s=|s/k=", theDictionary.Content());
}

TEST(qvINIFile, WritingWithoutKeyWritesTheSectionEntry) {
  ScratchDictionary theDictionary;
  EXPECT_EQ(1, qvINIFile_WriteKeyAsString(theDictionary.Get(), "Net", nullptr, nullptr));
  EXPECT_EQ("net=", theDictionary.Content());
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "net", nullptr, "text");
  EXPECT_EQ("net=text", theDictionary.Content());
}

TEST(qvINIFile, WritingAKeyEmptiesTheSectionEntry) {
  ScratchDictionary theDictionary;
  theDictionary.Write("net", "text");
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "net", "k", "v");
  EXPECT_EQ("net=|net/k=v", theDictionary.Content());
}

TEST(qvINIFile, RewrittenKeyKeepsItsPlace) {
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "s", "a", "1");
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "s", "b", "2");
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "S", "A", "3");
  EXPECT_EQ("s=|s/a=3|s/b=2", theDictionary.Content());
}

TEST(qvINIFile, NamesFoldAsciiLettersOnly) {
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "\xc3\x84Z", "[\xff@]", "v");
  EXPECT_EQ("\xc3\x84z=|\xc3\x84z/[\xff@]=v", theDictionary.Content());
}

TEST(qvINIFile, NamesOf127BytesAreAccepted) {
  ScratchDictionary theDictionary;
  EXPECT_EQ(1, qvINIFile_WriteKeyAsString(theDictionary.Get(), kName127.c_str(), kName127.c_str(), "v"));
  EXPECT_EQ("v", theDictionary.Read(kName127 + "/" + kName127));
  int theFound = 0;
  EXPECT_STREQ("v", qvINIFile_ReadKeyAsString(theDictionary.Get(), kName127.c_str(), kName127.c_str(),
                                              nullptr, &theFound));
  EXPECT_EQ(1, qvINIFile_DeleteKey(theDictionary.Get(), kName127.c_str(), kName127.c_str()));
  EXPECT_EQ(1, qvINIFile_DeleteSection(theDictionary.Get(), kName127.c_str()));
  EXPECT_EQ("", theDictionary.Content());
}

TEST(qvINIFile, NamesOf128BytesFailTheAssertionOnNamesWithKey) {
  const char kText[] =
      "(strlen(aSection) < kqvINIFile_SectionMaxLength) && (strlen(aKey)) < kqvINIFile_SectionMaxLength";
  ScratchDictionary theDictionary;
  qvDictionary* theRaw = theDictionary.Get();
  int theFound;
  EXPECT_QV_ASSERTION(qvINIFile_WriteKeyAsString(theRaw, "s", kName128.c_str(), "v"), kText, "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_WriteKeyAsString(theRaw, kName128.c_str(), "k", "v"), kText, "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_ReadKeyAsString(theRaw, "s", kName128.c_str(), "", &theFound), kText,
                      "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_ReadKeyAsString(theRaw, kName128.c_str(), "k", "", &theFound), kText,
                      "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_DeleteKey(theRaw, "s", kName128.c_str()), kText, "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_DeleteKey(theRaw, kName128.c_str(), "k"), kText, "qvINIFile");
}

TEST(qvINIFile, SectionOf128BytesFailsTheAssertionOnNamesWithoutKey) {
  const char kText[] = "strlen(aSection) < kqvINIFile_SectionMaxLength";
  ScratchDictionary theDictionary;
  qvDictionary* theRaw = theDictionary.Get();
  int theFound;
  EXPECT_QV_ASSERTION(qvINIFile_WriteKeyAsString(theRaw, kName128.c_str(), nullptr, ""), kText, "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_ReadKeyAsString(theRaw, kName128.c_str(), nullptr, "", &theFound), kText,
                      "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_DeleteKey(theRaw, kName128.c_str(), nullptr), kText, "qvINIFile");
}

TEST(qvINIFile, DeletingASectionOf128BytesFailsAnAssertion) {
  ScratchDictionary theDictionary;
  EXPECT_QV_ASSERTION(qvINIFile_DeleteSection(theDictionary.Get(), kName128.c_str()),
                      "(strlen(aSection) < kqvINIFile_SectionMaxLength)", "qvINIFile");
}

TEST(qvINIFile, NullDictionaryFailsAnAssertionWhereverItIsRead) {
  const char kText[] = "aDictionary != NULL";
  int theFound;
  EXPECT_QV_ASSERTION(qvINIFile_GetNumberOfSections(nullptr), kText, "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_GetSectionName(nullptr, 0), kText, "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_GetNumberOfKeys(nullptr, "s"), kText, "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_GetKeyName(nullptr, "s", 0), kText, "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_ReadKeyAsString(nullptr, "s", "k", "", &theFound), kText, "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_ReadKeyAsBool(nullptr, "s", "k", 0, &theFound), kText, "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_ReadKeyAsInt32(nullptr, "s", "k", 0, &theFound), kText, "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_ReadKeyAsUInt32(nullptr, "s", "k", 0, &theFound), kText, "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_ReadKeyAsDouble(nullptr, "s", "k", 0, &theFound), kText, "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_ReadKeyAsStringWithSubstitution(nullptr, "s", "k", "", &theFound, nullptr),
                      kText, "qvINIFile");
}

TEST(qvINIFile, NullDictionaryMakesWritesAndDeletionsReturn0) {
  EXPECT_EQ(0, qvINIFile_WriteKeyAsString(nullptr, "s", "k", "v"));
  EXPECT_EQ(0, qvINIFile_WriteKeyAsBool(nullptr, "s", "k", 1));
  EXPECT_EQ(0, qvINIFile_WriteKeyAsInt32(nullptr, "s", "k", 1));
  EXPECT_EQ(0, qvINIFile_WriteKeyAsUInt32(nullptr, "s", "k", 1));
  EXPECT_EQ(0, qvINIFile_WriteKeyAsDouble(nullptr, "s", "k", 1.0));
  EXPECT_EQ(0, qvINIFile_DeleteKey(nullptr, "s", "k"));
  EXPECT_EQ(0, qvINIFile_DeleteSection(nullptr, "s"));
  EXPECT_EQ(0, qvINIFile_DeleteSection(nullptr, kName128.c_str()));
}

TEST(qvINIFile, SectionsAreCountedWithTheDefaultSection) {
  ScratchDictionary theDictionary;
  EXPECT_EQ(0u, qvINIFile_GetNumberOfSections(theDictionary.Get()));
  theDictionary.Load("[a]\nk=1\n[b]\n");
  EXPECT_EQ(3u, qvINIFile_GetNumberOfSections(theDictionary.Get()));
}

TEST(qvINIFile, SectionsAreNamedInTheOrderOfTheDictionary) {
  ScratchDictionary theDictionary;
  theDictionary.Load("[B]\nk=1\n[a]\n[b]\n");
  EXPECT_STREQ("", qvINIFile_GetSectionName(theDictionary.Get(), 0));
  EXPECT_STREQ("b", qvINIFile_GetSectionName(theDictionary.Get(), 1));
  EXPECT_STREQ("a", qvINIFile_GetSectionName(theDictionary.Get(), 2));
}

TEST(qvINIFile, SectionIndexOutOfRangeGivesTheEmptyText) {
  ScratchDictionary theDictionary;
  EXPECT_STREQ("", qvINIFile_GetSectionName(theDictionary.Get(), 0));
  theDictionary.Load("[a]\n");
  EXPECT_STREQ("", qvINIFile_GetSectionName(theDictionary.Get(), 2));
  EXPECT_STREQ("", qvINIFile_GetSectionName(theDictionary.Get(), static_cast<size_t>(-1)));
}

TEST(qvINIFile, FreeSlotsInTheCountAreNoSections) {
  ScratchDictionary theDictionary;
  theDictionary.Write("", "x");
  theDictionary.Write("", "x");
  EXPECT_EQ(0u, qvINIFile_GetNumberOfSections(theDictionary.Get()));
  EXPECT_EQ(0u, qvINIFile_GetNumberOfKeys(theDictionary.Get(), nullptr));
  EXPECT_STREQ("", qvINIFile_GetSectionName(theDictionary.Get(), 0));
}

TEST(qvINIFile, KeysAreCountedAndNamedPerSection) {
  ScratchDictionary theDictionary;
  theDictionary.Load("d=0\n[Net]\nb=1\na=2\n[net2]\nx=3\n[net]\nc=4\n");
  EXPECT_EQ(1u, qvINIFile_GetNumberOfKeys(theDictionary.Get(), nullptr));
  EXPECT_EQ(1u, qvINIFile_GetNumberOfKeys(theDictionary.Get(), ""));
  EXPECT_EQ(3u, qvINIFile_GetNumberOfKeys(theDictionary.Get(), "net"));
  EXPECT_EQ(3u, qvINIFile_GetNumberOfKeys(theDictionary.Get(), "NET"));
  EXPECT_EQ(1u, qvINIFile_GetNumberOfKeys(theDictionary.Get(), "net2"));
  EXPECT_EQ(0u, qvINIFile_GetNumberOfKeys(theDictionary.Get(), "ne"));
  EXPECT_STREQ("b", qvINIFile_GetKeyName(theDictionary.Get(), "Net", 0));
  EXPECT_STREQ("a", qvINIFile_GetKeyName(theDictionary.Get(), "nEt", 1));
  EXPECT_STREQ("c", qvINIFile_GetKeyName(theDictionary.Get(), "net", 2));
  EXPECT_STREQ("d", qvINIFile_GetKeyName(theDictionary.Get(), nullptr, 0));
}

TEST(qvINIFile, CountingKeysAddsNoSection) {
  ScratchDictionary theDictionary;
  EXPECT_EQ(0u, qvINIFile_GetNumberOfKeys(theDictionary.Get(), "net"));
  EXPECT_STREQ("", qvINIFile_GetKeyName(theDictionary.Get(), "net", 0));
  EXPECT_EQ("", theDictionary.Content());
}

TEST(qvINIFile, KeyIndexOutOfRangeGivesTheEmptyText) {
  ScratchDictionary theDictionary;
  theDictionary.Load("[net]\na=1\n");
  EXPECT_STREQ("", qvINIFile_GetKeyName(theDictionary.Get(), "net", 1));
  EXPECT_STREQ("", qvINIFile_GetKeyName(theDictionary.Get(), "net", static_cast<size_t>(-1)));
  EXPECT_STREQ("", qvINIFile_GetKeyName(theDictionary.Get(), "other", 0));
}

TEST(qvINIFile, SectionThatNoEntryCanHaveHasNoKeys) {
  ScratchDictionary theDictionary;
  theDictionary.Load("[net]\na=1\n");
  std::string theLongName(100000, 'x');
  EXPECT_EQ(0u, qvINIFile_GetNumberOfKeys(theDictionary.Get(), theLongName.c_str()));
  EXPECT_STREQ("", qvINIFile_GetKeyName(theDictionary.Get(), theLongName.c_str(), 0));
}

TEST(qvINIFile, KeyNamePointsIntoTheDictionary) {
  ScratchDictionary theDictionary;
  theDictionary.Load("[net]\nhost=1\n");
  EXPECT_EQ(qvDictionary_GetKeyAtIndex(theDictionary.Get(), 2) + 4,
            qvINIFile_GetKeyName(theDictionary.Get(), "net", 0));
}

TEST(qvINIFile, KeyNameIsWhatFollowsTheSectionAlsoWithASeparatorInIt) {
  ScratchDictionary theDictionary;
  theDictionary.Load("[net]\na/b=1\n");
  EXPECT_EQ(1u, qvINIFile_GetNumberOfKeys(theDictionary.Get(), "net"));
  EXPECT_STREQ("a/b", qvINIFile_GetKeyName(theDictionary.Get(), "net", 0));
}

TEST(qvINIFile, SectionWithASeparatorInItsNameIsNotCounted) {
  ScratchDictionary theDictionary;
  theDictionary.Load("[net/sub]\na=1\n");
  EXPECT_EQ("default=|net/sub=|net/sub/a=1", theDictionary.Content());
  EXPECT_EQ(1u, qvINIFile_GetNumberOfSections(theDictionary.Get()));
  int theFound = 0;
  EXPECT_STREQ("1", qvINIFile_ReadKeyAsString(theDictionary.Get(), "net/sub", "a", nullptr, &theFound));
}

TEST(qvINIFile, StringIsReadInAnyCaseOfItsNames) {
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "Net", "Key", "Some Value");
  for (const char* theSection : {"net", "NET", "nEt"}) {
    for (const char* theKey : {"key", "KEY", "Key"}) {
      int theFound = 0;
      EXPECT_STREQ("Some Value",
                   qvINIFile_ReadKeyAsString(theDictionary.Get(), theSection, theKey, "default", &theFound));
      EXPECT_EQ(1, theFound);
    }
  }
}

TEST(qvINIFile, StringPointsIntoTheDictionary) {
  ScratchDictionary theDictionary;
  theDictionary.Write("s/k", "v");
  int theFound = 0;
  const char* theValue = qvINIFile_ReadKeyAsString(theDictionary.Get(), "s", "k", nullptr, &theFound);
  EXPECT_EQ(qvDictionary_GetValueAtIndex(theDictionary.Get(), 0), theValue);
}

TEST(qvINIFile, MissingStringGivesTheDefaultPointerItself) {
  ScratchDictionary theDictionary;
  char theDefault[] = "text";
  int theFound = -1;
  EXPECT_EQ(theDefault, qvINIFile_ReadKeyAsString(theDictionary.Get(), "s", "k", theDefault, &theFound));
  EXPECT_EQ(0, theFound);
  theFound = -1;
  EXPECT_EQ(nullptr, qvINIFile_ReadKeyAsString(theDictionary.Get(), "s", "k", nullptr, &theFound));
  EXPECT_EQ(0, theFound);
}

TEST(qvINIFile, EmptyStringIsFound) {
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "s", "k", "");
  int theFound = -1;
  EXPECT_STREQ("", qvINIFile_ReadKeyAsString(theDictionary.Get(), "s", "k", "default", &theFound));
  EXPECT_EQ(1, theFound);
}

TEST(qvINIFile, ReadingWithoutKeyTellsWhetherTheSectionExists) {
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "Net", "k", "v");
  int theFound = -1;
  EXPECT_STREQ("", qvINIFile_ReadKeyAsString(theDictionary.Get(), "nET", nullptr, "default", &theFound));
  EXPECT_EQ(1, theFound);
  EXPECT_STREQ("default", qvINIFile_ReadKeyAsString(theDictionary.Get(), "x", nullptr, "default", &theFound));
  EXPECT_EQ(0, theFound);
  EXPECT_EQ("net=|net/k=v", theDictionary.Content());
}

TEST(qvINIFile, TextStaysGoodWhileOtherKeysAreReadAndWritten) {
  ScratchDictionary theDictionary;
  theDictionary.Load("[s]\na=1\n");
  int theFound = 0;
  const char* theSection = qvINIFile_ReadKeyAsString(theDictionary.Get(), "s", nullptr, nullptr, &theFound);
  const char* theValue = qvINIFile_ReadKeyAsString(theDictionary.Get(), "s", "a", nullptr, &theFound);
  for (int i = 0; i < 20; ++i) {
    qvINIFile_WriteKeyAsInt32(theDictionary.Get(), "s", std::to_string(i).c_str(), i);
  }
  EXPECT_EQ(theSection, qvINIFile_ReadKeyAsString(theDictionary.Get(), "s", nullptr, nullptr, &theFound));
  EXPECT_EQ(theValue, qvINIFile_ReadKeyAsString(theDictionary.Get(), "s", "a", nullptr, &theFound));
}

TEST(qvINIFile, ReadingAKeyEmptiesTheSectionEntry) {
  ScratchDictionary theDictionary;
  theDictionary.Write("net", "text");
  int theFound = -1;
  qvINIFile_ReadKeyAsString(theDictionary.Get(), "net", "k", "", &theFound);
  EXPECT_EQ("net=", theDictionary.Content());
}

TEST(qvINIFileKept, ReadingAKeyAddsItsSection) {
  ScratchDictionary theDictionary;
  int theFound = -1;
  EXPECT_STREQ("default",
               qvINIFile_ReadKeyAsString(theDictionary.Get(), "Missing", "key", "default", &theFound));
  EXPECT_EQ(0, theFound);
  EXPECT_EQ("missing=", theDictionary.Content());
  EXPECT_EQ(1u, qvINIFile_GetNumberOfSections(theDictionary.Get()));
  // So does a read of a number; a deletion does not.
  qvINIFile_ReadKeyAsInt32(theDictionary.Get(), nullptr, "key", 0, &theFound);
  qvINIFile_DeleteKey(theDictionary.Get(), "other", "key");
  EXPECT_EQ("missing=|default=", theDictionary.Content());
}

TEST(qvINIFile, BoolIsANumberOrAWord) {
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

TEST(qvINIFile, MissingBoolGivesTheDefaultAsItIs) {
  ScratchDictionary theDictionary;
  int theFound = -1;
  EXPECT_EQ(7, qvINIFile_ReadKeyAsBool(theDictionary.Get(), "s", "k", 7, &theFound));
  EXPECT_EQ(0, theFound);
}

TEST(qvINIFile, Int32IsDecimalTextOrTheDefault) {
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

TEST(qvINIFile, UInt32FollowsItsPrefixOrIsTheDefault) {
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

TEST(qvINIFile, DoubleIsWhatTheTextBeginsWith) {
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

TEST(qvINIFile, MissingNumbersGiveTheirDefaults) {
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

TEST(qvINIFile, SubstitutionReplacesVariablesOfTheValue) {
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "s", "k", "a%x%b%unknown%c 100%%");
  int theFound = -1;
  char* theText =
      qvINIFile_ReadKeyAsStringWithSubstitution(theDictionary.Get(), "s", "k", "", &theFound, KnowsX);
  EXPECT_STREQ("aZbc 100%", theText);
  EXPECT_EQ(1, theFound);
  qvFree(theText);
}

TEST(qvINIFile, SubstitutionDoesNotLookIntoReplacements) {
  setenv("QVTEST_SET", "<%x%>", 1);
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "s", "k", "%env.QVTEST_SET%");
  int theFound = -1;
  char* theText =
      qvINIFile_ReadKeyAsStringWithSubstitution(theDictionary.Get(), "s", "k", "", &theFound, KnowsX);
  EXPECT_STREQ("<%x%>", theText);
  qvFree(theText);
}

TEST(qvINIFile, SubstitutionReplacesVariablesOfTheDefault) {
  setenv("QVTEST_SET", "value", 1);
  ScratchDictionary theDictionary;
  int theFound = -1;
  char* theText = qvINIFile_ReadKeyAsStringWithSubstitution(theDictionary.Get(), "s", "k",
                                                            "<%env.QVTEST_SET%>", &theFound, nullptr);
  EXPECT_STREQ("<value>", theText);
  EXPECT_EQ(0, theFound);
  qvFree(theText);
}

TEST(qvINIFile, SubstitutionOfAMissingKeyWithoutDefaultGivesNull) {
  ScratchDictionary theDictionary;
  int theFound = -1;
  EXPECT_EQ(nullptr, qvINIFile_ReadKeyAsStringWithSubstitution(theDictionary.Get(), "s", "k", nullptr,
                                                               &theFound, KnowsX));
  EXPECT_EQ(0, theFound);
}

TEST(qvINIFile, BoolIsWrittenAs1Or0) {
  ScratchDictionary theDictionary;
  EXPECT_EQ(1, qvINIFile_WriteKeyAsBool(theDictionary.Get(), "s", "yes", -5));
  EXPECT_EQ(1, qvINIFile_WriteKeyAsBool(theDictionary.Get(), "s", "no", 0));
  EXPECT_EQ("s=|s/yes=1|s/no=0", theDictionary.Content());
}

TEST(qvINIFile, IntegersAreWrittenInDecimal) {
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

TEST(qvINIFile, DeletedKeyIsGoneAndItsSectionStays) {
  ScratchDictionary theDictionary;
  theDictionary.Load("[s]\na=1\nb=2\n");
  EXPECT_EQ(1, qvINIFile_DeleteKey(theDictionary.Get(), "S", "A"));
  EXPECT_EQ("default=|s=|s/b=2", theDictionary.Content());
}

TEST(qvINIFile, DeletingAnAbsentKeyReturns1AndChangesNothing) {
  ScratchDictionary theDictionary;
  theDictionary.Load("[s]\na=1\n");
  EXPECT_EQ(1, qvINIFile_DeleteKey(theDictionary.Get(), "s", "b"));
  EXPECT_EQ(1, qvINIFile_DeleteKey(theDictionary.Get(), "t", "a"));
  EXPECT_EQ("default=|s=|s/a=1", theDictionary.Content());
}

TEST(qvINIFile, DeletingWithoutKeyDeletesTheSectionEntryOnly) {
  ScratchDictionary theDictionary;
  theDictionary.Load("[s]\na=1\n");
  EXPECT_EQ(1, qvINIFile_DeleteKey(theDictionary.Get(), "S", nullptr));
  EXPECT_EQ("default=|s/a=1", theDictionary.Content());
}

TEST(qvINIFile, DeletedSectionTakesItsKeysAlong) {
  ScratchDictionary theDictionary;
  theDictionary.Load("d=0\n[s]\na=1\nb=2\n[s2]\na=3\n[s]\nc=4\n");
  EXPECT_EQ(1, qvINIFile_DeleteSection(theDictionary.Get(), "s"));
  EXPECT_EQ("default=|default/d=0|s2=|s2/a=3", theDictionary.Content());
}

TEST(qvINIFile, DeletingTheDefaultSectionByNullOrEmptyNameRemovesIt) {
  for (const char* theName : {static_cast<const char*>(nullptr), "", "default"}) {
    ScratchDictionary theDictionary;
    theDictionary.Load("a=1\nb=2\n[s]\nc=3\n");
    EXPECT_EQ(1, qvINIFile_DeleteSection(theDictionary.Get(), theName));
    EXPECT_EQ("s=|s/c=3", theDictionary.Content());
  }
}

TEST(qvINIFile, SectionMayBeDeletedByATextOfItsOwn) {
  ScratchDictionary theDictionary;
  theDictionary.Load("[a section of some length]\nself=a section of some length\n[s]\ns=1\n");
  int theFound = 0;
  EXPECT_EQ(1,
            qvINIFile_DeleteSection(theDictionary.Get(),
                                    qvINIFile_ReadKeyAsString(theDictionary.Get(), "a section of some length",
                                                              "self", nullptr, &theFound)));
  EXPECT_EQ("default=|s=|s/s=1", theDictionary.Content());
  EXPECT_EQ(1,
            qvINIFile_DeleteSection(theDictionary.Get(), qvINIFile_GetKeyName(theDictionary.Get(), "s", 0)));
  EXPECT_EQ("default=", theDictionary.Content());
  EXPECT_EQ(1,
            qvINIFile_DeleteSection(theDictionary.Get(), qvDictionary_GetKeyAtIndex(theDictionary.Get(), 0)));
  EXPECT_EQ("", theDictionary.Content());
}

TEST(qvINIFile, DeletingAnAbsentSectionReturns1) {
  ScratchDictionary theDictionary;
  theDictionary.Load("a=1\n");
  EXPECT_EQ(1, qvINIFile_DeleteSection(theDictionary.Get(), "s"));
  EXPECT_EQ("default=|default/a=1", theDictionary.Content());
}

TEST(qvINIFileKept, DeleteSectionKeepsTheEntryOfANameWithCapitals) {
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "S", "k", "v");
  EXPECT_EQ(1, qvINIFile_DeleteSection(theDictionary.Get(), "S"));
  EXPECT_EQ("s=", theDictionary.Content());
  EXPECT_EQ(1, qvINIFile_DeleteSection(theDictionary.Get(), "s"));
  EXPECT_EQ("", theDictionary.Content());
  // It is the entry of exactly the given name that goes last; the functions here write none with capitals.
  theDictionary.Write("S", "");
  theDictionary.Write("s", "");
  EXPECT_EQ(1, qvINIFile_DeleteSection(theDictionary.Get(), "S"));
  EXPECT_EQ("s=", theDictionary.Content());
}
