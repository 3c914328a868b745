// Queries, reads and writes of texts, and deletions. Typed values, loading and saving have test files of
// their own.

#include "qvraTools/qvINIFile.h"

#include <gtest/gtest.h>

#include <string>

#include "support/ChildProcess.h"
#include "support/ScratchDictionary.h"

namespace {

const std::string kName127(127, 'n');
const std::string kName128(128, 'n');

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

TEST(qvINIFile, SlotsThatAReadAddsAreFreeButForItsSection) {
  ScratchDictionary theDictionary;
  theDictionary.Load("[a]\n[b]\n[c]\n[d]\n[e]\n[f]\n[g]\n");
  int theFound = -1;
  qvINIFile_ReadKeyAsString(theDictionary.Get(), "ninth", "k", "", &theFound);
  ASSERT_EQ(16u, theDictionary->mSize);
  for (size_t i = 9; i < 16; ++i) {
    EXPECT_STREQ("", theDictionary->mEntries[i].mKey);
    EXPECT_STREQ("", theDictionary->mEntries[i].mValue);
  }
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
