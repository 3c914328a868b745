#include <gtest/gtest.h>
#include <signal.h>
#include <stdio.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

#include "qvraTools/qvINIFile.h"
#include "qvraTools/qvINIFile_p.h"
#include "support/ChildProcess.h"
#include "support/FreeDescriptor.h"
#include "support/ScratchDictionary.h"
#include "support/ScratchFolder.h"

namespace {

std::string SavedText(const ScratchDictionary& aDictionary) {
  ScratchFolder theFolder;
  EXPECT_EQ(1, qvINIFile_SaveINIFile(theFolder.File("a.ini").c_str(), aDictionary.Get()));
  return ReadWholeFile(theFolder.File("a.ini"));
}

// What saving gives after loading this text.
std::string Resaved(const std::string& aText) {
  ScratchDictionary theDictionary;
  theDictionary.Load(aText);
  return SavedText(theDictionary);
}

std::string SavedValue(const std::string& aValue) {
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), nullptr, "k", aValue.c_str());
  return SavedText(theDictionary);
}

}  // namespace

TEST(qvINIFileSaver, EmptyDictionaryGivesAnEmptyFile) {
  EXPECT_EQ("", SavedText(ScratchDictionary()));
  EXPECT_EQ("", Resaved(""));
}

TEST(qvINIFileSaver, DefaultKeyAloneIsOneLineWithoutHeader) { EXPECT_EQ("a=1\n", Resaved("a=1")); }

TEST(qvINIFileSaver, BlankLineIsBeforeALaterSectionAndQuotesAroundBlanks) {
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), nullptr, "a", "1");
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "s", "b", "two words");
  EXPECT_EQ("a=1\n\n[s]\nb=\"two words\"\n", SavedText(theDictionary));
}

TEST(qvINIFileSaver, NoBlankLineBeforeTheFirstHeader) { EXPECT_EQ("[s]\nb=2\n", Resaved("[s]\nb=2")); }

TEST(qvINIFileSaver, SectionWithoutKeysIsItsHeaderAlone) { EXPECT_EQ("[a]\n\n[b]\n", Resaved("[a]\n[b]\n")); }

TEST(qvINIFileSaver, SectionThatWasOnlyReadIsSavedAsItsHeader) {
  ScratchDictionary theDictionary;
  int theFound;
  qvINIFile_ReadKeyAsString(theDictionary.Get(), "missing", "key", "", &theFound);
  EXPECT_EQ("[missing]\n", SavedText(theDictionary));
}

TEST(qvINIFileSaver, NamesAreSavedInLowerCaseAndCommentsAreGone) {
  EXPECT_EQ("a=X\n\n[net]\nhost=My-Box\n", Resaved("; comment\nA=X # more\n[NET]\n# x\nHost = My-Box\n"));
}

TEST(qvINIFileSaver, EmptyValueIsTheNameAndTheEqualSign) { EXPECT_EQ("flag=\n", Resaved("flag")); }

TEST(qvINIFileSaver, KeysAreGroupedBySectionInTheOrderOfTheDictionary) {
  EXPECT_EQ("c=3\n\n[b]\nz=1\na=4\n\n[a]\ny=2\n", Resaved("[b]\nz=1\n[a]\ny=2\n[]\nc=3\n[b]\na=4\n"));
}

TEST(qvINIFileKept, KeysOfALaterDefaultSectionAreSavedUnderTheHeaderBefore) {
  ScratchDictionary theDictionary;
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "s", "a", "1");
  qvINIFile_WriteKeyAsString(theDictionary.Get(), nullptr, "b", "2");
  EXPECT_EQ("[s]\na=1\nb=2\n", SavedText(theDictionary));
  EXPECT_EQ("default=|s=|s/a=1|s/b=2", LoadedContent(SavedText(theDictionary)));
  // A loaded file has the default section first.
  EXPECT_EQ("b=2\n\n[s]\na=1\n", Resaved("[s]\na=1\n[]\nb=2\n"));
}

TEST(qvINIFileSaver, ValuesAreQuotedWhenTheyMustBe) {
  const struct {
    const char* mValue;
    const char* mText;
    const char* mWhy;
  } kCases[] = {
      {"plain", "k=plain\n", "nothing special"},
      {"a=b", "k=a=b\n", "an equal sign is not special"},
      {"[x]", "k=[x]\n", "nor are brackets"},
      {"a\tb", "k=a\tb\n", "nor is a tab"},
      {"\xc3\xa4\xff", "k=\xc3\xa4\xff\n", "nor are bytes above 0x7f"},
      {" ", "k=\" \"\n", "a blank"},
      {"a\"b", "k=\"a\\\"b\"\n", "a double quote is escaped"},
      {"it's", "k=\"it\\'s\"\n", "a single quote is escaped"},
      {"a\\b", "k=\"a\\\\b\"\n", "a backslash is escaped"},
      {"a#b", "k=\"a#b\"\n", "a hash"},
      {"a;b", "k=\"a;b\"\n", "a semicolon"},
      {"\"", "k=\"\\\"\"\n", "a quote alone"},
      {" \"'#;\\", "k=\" \\\"\\'#;\\\\\"\n", "all of them"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mText, SavedValue(theCase.mValue)) << theCase.mWhy;
  }
}

TEST(qvINIFileSaver, QuotedValuesLoadAgainAsTheyWere) {
  for (const char* theValue :
       {" ", "a\"b", "it's", "a\\b", "\\", "\"", "'", "a;b#c", " \"'#;\\", "\\\"", "\\\\ \\"}) {
    EXPECT_EQ("default=|default/k=" + std::string(theValue), LoadedContent(SavedValue(theValue)));
  }
}

TEST(qvINIFileSaver, LineOf1023BytesWithItsEndIsWhole) {
  std::string theValue(1020, 'v');
  EXPECT_EQ("k=" + theValue + "\n", SavedValue(theValue));
}

TEST(qvINIFileSaver, LongerLineIsCutAt1023BytesWithoutLineEnd) {
  std::string theValue(1021, 'v');
  EXPECT_EQ("k=" + theValue, SavedValue(theValue));
  EXPECT_EQ("k=" + theValue, SavedValue(theValue + "xyz"));
  EXPECT_EQ("k=\" " + std::string(1019, 'v'), SavedValue(" " + theValue));
}

TEST(qvINIFileSaver, LineBehindACutLineLoadsAgain) {
  ScratchDictionary theDictionary;
  std::string theValue(1021, 'v');
  qvINIFile_WriteKeyAsString(theDictionary.Get(), nullptr, "k", (theValue + "cut").c_str());
  qvINIFile_WriteKeyAsString(theDictionary.Get(), nullptr, "l", "1");
  qvINIFile_WriteKeyAsString(theDictionary.Get(), "s", "m", "2");
  EXPECT_EQ("k=" + theValue + "l=1\n\n[s]\nm=2\n", SavedText(theDictionary));
  EXPECT_EQ("default=|default/k=" + theValue + "|default/l=1|s=|s/m=2",
            LoadedContent(SavedText(theDictionary)));
}

TEST(qvINIFileSaver, KeyWithASeparatorInItsNameIsSaved) {
  EXPECT_EQ("[net]\na/b/c=1\n", Resaved("[net]\na/b/c=1\n"));
}

TEST(qvINIFileSaver, KeysOfASectionWithASeparatorAreSavedUnderTheFirstPart) {
  EXPECT_EQ("[net]\nsub=\nsub/a=1\n", Resaved("[net]\n[net/sub]\na=1\n"));
  // Without that first part they are in no section and are lost.
  EXPECT_EQ("", Resaved("[net/sub]\na=1\n"));
}

TEST(qvINIFileSaver, SavedTextIsStableFromTheFirstLoadOn) {
  std::string theText = Resaved("b = 'x y'\nA=\"\\\"\"\n[Two]\n[one]\nk\n=ignored\n[TWO]\nz=;\n");
  EXPECT_EQ("b=\"x y\"\na=\"\\\"\"\n\n[two]\nz=\n\n[one]\nk=\n", theText);
  EXPECT_EQ(theText, Resaved(theText));
}

TEST(qvINIFileSaver, ExampleOfTheDocumentationIsSavedAsShownThere) {
  std::string theText = Resaved(
      "; a comment, also with '#'\n"
      "volume = 12            # an inline comment ends an unquoted value\n"
      "[Net]\n"
      "Host = \"my box; the old one\"\n"
      "flag\n");
  EXPECT_EQ("volume=12\n\n[net]\nhost=\"my box; the old one\"\nflag=\n", theText);
  EXPECT_EQ(50u, theText.size());
}

TEST(qvINIFileSaver, ManySectionsAndKeysAreSavedInOrder) {
  std::string theText;
  for (int i = 0; i < 60; ++i) {
    theText += (i > 0 ? "\n[s" : "[s") + std::to_string(i) + "]\n";
    for (int j = 0; j < 30; ++j) {
      theText += "k" + std::to_string(j) + "=" + std::to_string(i * j) + "\n";
    }
  }
  EXPECT_EQ(theText, Resaved(theText));
}

TEST(qvINIFileSaver, LongerOldFileIsReplacedWhole) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), std::string(5000, 'x'));
  ScratchDictionary theDictionary;
  theDictionary.Load("a=1");
  EXPECT_EQ(1, qvINIFile_SaveINIFile(theFolder.File("a.ini").c_str(), theDictionary.Get()));
  EXPECT_EQ("a=1\n", ReadWholeFile(theFolder.File("a.ini")));
}

TEST(qvINIFileSaver, FileIsClosedAgain) {
  ScratchFolder theFolder;
  ScratchDictionary theDictionary;
  theDictionary.Load("a=1");
  int theDescriptor = LowestFreeDescriptor();
  EXPECT_EQ(1, qvINIFile_SaveINIFile(theFolder.File("a.ini").c_str(), theDictionary.Get()));
  EXPECT_EQ(1, qvINIFile_S_SaveINIFileDurably(theFolder.File("b.ini").c_str(), theDictionary.Get()));
  EXPECT_EQ(theDescriptor, LowestFreeDescriptor());
}

TEST(qvINIFileSaver, FileThatCannotBeOpenedReturns0) {
  ScratchFolder theFolder;
  ScratchDictionary theDictionary;
  EXPECT_EQ(0, qvINIFile_SaveINIFile(theFolder.File("none/a.ini").c_str(), theDictionary.Get()));
  EXPECT_FALSE(FileExists(theFolder.File("none")));
  EXPECT_EQ(0, qvINIFile_SaveINIFile(theFolder.Path().c_str(), theDictionary.Get()));
  EXPECT_EQ(0, qvINIFile_SaveINIFile(nullptr, theDictionary.Get()));
}

TEST(qvINIFileSaver, FailedOpenComesBeforeTheLookAtTheDictionary) {
  ScratchFolder theFolder;
  EXPECT_EQ(0, qvINIFile_SaveINIFile(theFolder.File("none/a.ini").c_str(), nullptr));
  EXPECT_QV_ASSERTION(qvINIFile_SaveINIFile(theFolder.File("a.ini").c_str(), nullptr), "aDictionary != NULL",
                      "qvINIFile");
}

TEST(qvINIFileSaver, SectionNameOf256BytesFailsAnAssertion) {
  ScratchFolder theFolder;
  ScratchDictionary theDictionary;
  theDictionary.Write(std::string(255, 's'), "");
  EXPECT_EQ("[" + std::string(255, 's') + "]\n", SavedText(theDictionary));
  theDictionary.Write(std::string(256, 's'), "");
  EXPECT_QV_ASSERTION(qvINIFile_SaveINIFile(theFolder.File("a.ini").c_str(), theDictionary.Get()),
                      "strlen(theSectionName) < kqvINIFile_HashTableKeyMaxLength", "qvINIFile");
}

TEST(qvINIFileSaver, RelativeNameLiesBesideTheExecutable) {
  ScratchFolder theFolder;
  ScratchFolder theElsewhere;
  ChildResult theResult =
      RunProgram(CopyTestProgram("ConfigProbe", theFolder.Path()),
                 {"chdir", theElsewhere.Path(), "inifile", "a.ini", "inifile", "./b.ini"});
  EXPECT_EQ("11\n11\n", theResult.mStdout);
  EXPECT_EQ("[s]\nk=v\n", ReadWholeFile(theFolder.File("a.ini")));
  EXPECT_EQ("[s]\nk=v\n", ReadWholeFile(theFolder.File("b.ini")));
}

TEST(qvINIFileSaver, BackslashesInTheNameAreSlashes) {
  ScratchFolder theFolder;
  ScratchDictionary theDictionary;
  theDictionary.Load("a=1");
  EXPECT_EQ(1, qvINIFile_SaveINIFile((theFolder.Path() + "\\a.ini").c_str(), theDictionary.Get()));
  EXPECT_EQ("a=1\n", ReadWholeFile(theFolder.File("a.ini")));
}

TEST(qvINIFileSaver, ErrorsOfWritingGoUnnoticed) {
  ScratchDictionary theDictionary;
  theDictionary.Load("a=1");
  if (access("/dev/full", W_OK) != 0) {
    GTEST_SKIP() << "no /dev/full";
  }
  EXPECT_EQ(1, qvINIFile_SaveINIFile("/dev/full", theDictionary.Get()));
}

TEST(qvINIFileSaver, DurableSaveWritesTheSameText) {
  ScratchFolder theFolder;
  ScratchDictionary theDictionary;
  theDictionary.Load("a=1\n[s]\nb='x y'");
  EXPECT_EQ(1, qvINIFile_S_SaveINIFileDurably(theFolder.File("a.ini").c_str(), theDictionary.Get()));
  EXPECT_EQ("a=1\n\n[s]\nb=\"x y\"\n", ReadWholeFile(theFolder.File("a.ini")));
}

TEST(qvINIFileSaver, DurableSaveNoticesAFailedWrite) {
  ScratchDictionary theDictionary;
  theDictionary.Load("a=1");
  if (access("/dev/full", W_OK) != 0) {
    GTEST_SKIP() << "no /dev/full";
  }
  EXPECT_EQ(0, qvINIFile_S_SaveINIFileDurably("/dev/full", theDictionary.Get()));
}

TEST(qvINIFileSaver, DurableSaveNoticesAWriteThatEndsEarly) {
  ScratchFolder theFolder;
  ChildResult theResult = RunInChild([&] {
    signal(SIGXFSZ, SIG_IGN);
    struct rlimit theLimit = {100, 100};
    setrlimit(RLIMIT_FSIZE, &theLimit);
    ScratchDictionary theDictionary;
    theDictionary.Write("default", "");
    theDictionary.Write("default/k", std::string(500, 'v'));
    _exit(10 + qvINIFile_S_SaveINIFileDurably(theFolder.File("a.ini").c_str(), theDictionary.Get()));
  });
  EXPECT_EQ(10, theResult.mExitCode);
}

TEST(qvINIFileSaver, DurableSaveNoticesAFailedFlush) {
  // A device takes the bytes, but cannot be flushed.
  if (access("/dev/null", W_OK) != 0) {
    GTEST_SKIP() << "no /dev/null";
  }
  ScratchDictionary theDictionary;
  theDictionary.Load("a=1");
  EXPECT_EQ(0, qvINIFile_S_SaveINIFileDurably("/dev/null", theDictionary.Get()));
  EXPECT_EQ(1, qvINIFile_SaveINIFile("/dev/null", theDictionary.Get()));
}

TEST(qvINIFileSaver, DurableSaveReturns0WhenTheFileCannotBeOpened) {
  ScratchFolder theFolder;
  ScratchDictionary theDictionary;
  EXPECT_EQ(0, qvINIFile_S_SaveINIFileDurably(theFolder.File("none/a.ini").c_str(), theDictionary.Get()));
}
