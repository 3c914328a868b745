#include <errno.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstddef>
#include <string>

#include "interposed/PlannedCalls.h"
#include "qvraTools/qvINIFile.h"
#include "qvraTools/qvINIFile_p.h"
#include "support/ChildProcess.h"
#include "support/FreeDescriptor.h"
#include "support/ScratchDictionary.h"
#include "support/ScratchFolder.h"

namespace {

struct TextCase {
  const char* mText;
  const char* mExpected;
  const char* mWhy;
};

template <size_t N>
void ExpectLoaded(const TextCase (&aCases)[N]) {
  for (const TextCase& theCase : aCases) {
    EXPECT_EQ(theCase.mExpected, LoadedContent(theCase.mText)) << theCase.mText << "\n" << theCase.mWhy;
  }
}

// What a file with this content gives; the loader's result goes to *aResult.
std::string ContentOfFile(const std::string& aText) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), aText);
  ScratchDictionary theDictionary;
  EXPECT_EQ(1, qvINIFile_LoadINIFile(theFolder.File("a.ini").c_str(), theDictionary.Get()));
  return theDictionary.Content();
}

}  // namespace

TEST(qvINIFileLoader, ContextHasItsFieldsInOrder) {
  EXPECT_EQ(0u, offsetof(LoadIniFileContext, mFD));
  EXPECT_EQ(sizeof(void*), offsetof(LoadIniFileContext, mBuffer));
  EXPECT_EQ(2 * sizeof(void*), offsetof(LoadIniFileContext, mBufferSize));
}

TEST(qvINIFileLoader, EmptyTextGivesTheDefaultSection) {
  EXPECT_EQ("default=", LoadedContent(""));
  ScratchDictionary theDictionary;
  EXPECT_EQ(1, qvINIFile_LoadINIFileFromBuffer(nullptr, 0, theDictionary.Get()));
  EXPECT_EQ("default=", theDictionary.Content());
}

TEST(qvINIFileLoader, CommentBehindAnUnquotedValueIsDropped) {
  ScratchDictionary theDictionary;
  theDictionary.Load("[Net]\nKey = Some Value ; note\n");
  EXPECT_EQ("default=|net=|net/key=Some Value", theDictionary.Content());
  for (const char* theSection : {"net", "NET"}) {
    for (const char* theKey : {"key", "KEY"}) {
      int theFound = 0;
      EXPECT_STREQ("Some Value",
                   qvINIFile_ReadKeyAsString(theDictionary.Get(), theSection, theKey, "", &theFound));
    }
  }
}

TEST(qvINIFileLoader, UnquotedValuesEndAtTheFirstCommentCharacter) {
  const TextCase kCases[] = {
      {"k=v", "default=|default/k=v", "no blanks"},
      {"  k  =  v  ", "default=|default/k=v", "blanks around key and value"},
      {"\t k\v=\f v\r", "default=|default/k=v", "all white space"},
      {"k=", "default=|default/k=", "an empty value"},
      {"k=v#c", "default=|default/k=v", "a hash"},
      {"k=v;c", "default=|default/k=v", "a semicolon"},
      {"k=a#b;c", "default=|default/k=a", "the first of both"},
      {"k= ;c", "default=|default/k=", "nothing before the comment"},
      {"k=a b  # c", "default=|default/k=a b", "blanks inside stay, those before the comment go"},
      {"k=a=b", "default=|default/k=a=b", "the first equal sign counts"},
      {"k=a\"b;c\"", "default=|default/k=a\"b", "a quote inside an unquoted value is no quote"},
      {"k=a\\;b", "default=|default/k=a\\", "no escapes outside quotes"},
      {"k\xff=\x80\xff", "default=|default/k\xff=\x80\xff", "bytes above 0x7f"},
      {"k=\xa0v\xa0", "default=|default/k=\xa0v\xa0", "only ASCII white space is trimmed"},
      {"K=V", "default=|default/k=V", "keys fold, values do not"},
  };
  ExpectLoaded(kCases);
}

TEST(qvINIFileLoader, EscapedQuoteAndSemicolonInsideQuotesAreKept) {
  EXPECT_EQ("default=|default/name=a;b\"c", LoadedContent("name = \"a;b\\\"c\" trailing"));
}

TEST(qvINIFileLoader, SecondSingleQuoteEndsTheValue) {
  EXPECT_EQ("default=|default/x=it", LoadedContent("x='it''s'"));
}

TEST(qvINIFileLoader, QuotedValuesRunToTheirQuote) {
  const TextCase kCases[] = {
      {"k=\"v\"", "default=|default/k=v", "double quotes"},
      {"k='v'", "default=|default/k=v", "single quotes"},
      {"k=\"\"", "default=|default/k=", "nothing between them"},
      {"k=\"  v  \"", "default=|default/k=  v  ", "blanks inside stay"},
      {"k=\"it's\"", "default=|default/k=it's", "the other quote needs no escape"},
      {"k='say \"x\"'", "default=|default/k=say \"x\"", "nor does this one"},
      {"k=\"a\\\\b\"", "default=|default/k=a\\b", "an escaped backslash"},
      {"k=\"a\\nb\"", "default=|default/k=anb", "any character can be escaped"},
      {"k='it\\'s'", "default=|default/k=it's", "an escaped single quote"},
      {"k=\"#;=[]\"", "default=|default/k=#;=[]", "nothing is special inside"},
      {"k=\"a\" b \"c\"", "default=|default/k=a", "what follows is dropped"},
      {"k=\"open", "default=|default/k=open", "a missing quote"},
      {"k=\"open ; \\\"x", "default=|default/k=open ; \"x", "escapes are resolved all the same"},
      {"k=\"open\\", "default=|default/k=open", "a backslash at the end"},
      {"k=\"open\\\nb=1", "default=|default/k=open|default/b=1", "which does not reach the next line"},
      {"k=\"", "default=|default/k=", "only the opening quote"},
  };
  ExpectLoaded(kCases);
}

TEST(qvINIFileLoader, LineThatBeginsWithAnEqualSignIsIgnored) {
  EXPECT_EQ("default=", LoadedContent("=value\n  = value\n=\n"));
}

TEST(qvINIFileLoader, LineWithoutEqualSignIsAKeyWithTheEmptyValue) {
  EXPECT_EQ("default=|default/flag=", LoadedContent("flag"));
  EXPECT_EQ("default=|default/two words ; and more=", LoadedContent("  Two Words ; and more "));
}

TEST(qvINIFileLoader, LineWithoutEqualSignEmptiesAnEarlierValue) {
  EXPECT_EQ("default=|default/a=|default/b=2", LoadedContent("a=1\nb=2\nA\n"));
}

TEST(qvINIFileLoader, CommentLinesAndEmptyLinesAreSkipped) {
  EXPECT_EQ("default=|default/k=v", LoadedContent("; a=1\n#b=2\n\n   \n\t; c=3\n  # [d]\nk=v\n"));
}

TEST(qvINIFileLoader, HeadersStartSections) {
  const TextCase kCases[] = {
      {"[s]", "default=|s=", "an empty section"},
      {"[ S T ]\nk=v", "default=|s t=|s t/k=v", "trimmed and folded"},
      {"  [s]  ", "default=|s=", "blanks around"},
      {"[s] trailing=1", "default=|s=", "what follows is ignored"},
      {"[s]]", "default=|s=", "the first bracket ends it"},
      {"[a[b]", "default=|a[b=", "an opening bracket is a character like others"},
      {"[a=b]", "default=|a=b=", "so is an equal sign"},
      {"[s]\na=1\n[]\nb=2", "default=|s=|s/a=1|default/b=2", "no name: the default section again"},
      {"[s]\na=1\n[ ]\nb=2", "default=|s=|s/a=1|default/b=2", "blanks are no name"},
      {"[Default]\na=1", "default=|default/a=1", "the default section by name"},
      {"[open\nk=v", "default=|default/[open=|default/k=v", "no closing bracket: a key"},
      {"[open=v", "default=|default/[open=v", "no closing bracket: an assignment"},
      {"[a]\nx=1\n[b]\n[A]\ny=2", "default=|a=|a/x=1|b=|a/y=2", "a section goes on"},
      {"k[x]=v", "default=|default/k[x]=v", "a bracket inside a line"},
      {"]s[", "default=|default/]s[=", "brackets the wrong way round"},
  };
  ExpectLoaded(kCases);
}

TEST(qvINIFileLoader, HeaderEmptiesTheEntryOfItsSection) {
  ScratchDictionary theDictionary;
  theDictionary.Write("default", "text");
  theDictionary.Write("s", "text");
  theDictionary.Load("[S]\n");
  EXPECT_EQ("default=|s=", theDictionary.Content());
}

TEST(qvINIFileLoader, RepeatedKeyTakesTheLaterValueAtItsFirstPlace) {
  EXPECT_EQ("default=|default/a=3|default/b=2", LoadedContent("a=1\nb=2\nA=3\n"));
}

TEST(qvINIFileLoader, LinesEndInLineFeedsCarriageReturnsOrBoth) {
  EXPECT_EQ("default=|default/a=1|default/b=2|default/c=3|default/d=4",
            LoadedContent("a=1\nb=2\rc=3\r\nd=4"));
}

TEST(qvINIFileLoader, ByteOrderMarkAtTheStartIsSkipped) {
  const TextCase kCases[] = {
      {"\xef\xbb\xbfk=v", "default=|default/k=v", "before a key"},
      {"\xef\xbb\xbf[s]\nk=v", "default=|s=|s/k=v", "before a header"},
      {"\xef\xbb\xbf;c\nk=v", "default=|default/k=v", "before a comment"},
      {"\xef\xbb\xbf", "default=", "alone"},
      {"\xef\xbb", "default=|default/\xef\xbb=", "two of its bytes are text"},
      {" \xef\xbb\xbfk=v", "default=|default/\xef\xbb\xbfk=v", "not at the very start"},
      {"\xef\xbb\xbf\xef\xbb\xbfk=v", "default=|default/\xef\xbb\xbfk=v", "only one is skipped"},
  };
  ExpectLoaded(kCases);
}

TEST(qvINIFileLoader, ByteOrderMarkOfTheSecondLineStaysPartOfIt) {
  EXPECT_EQ(
      "default=|default/a=1|default/\xef\xbb\xbf"
      "b=2",
      LoadedContent("a=1\n\xef\xbb\xbf"
                    "b=2"));
}

TEST(qvINIFileLoader, SectionNamesAreCutTo127Bytes) {
  std::string theName(127, 's');
  EXPECT_EQ("default=|" + theName + "=|" + theName + "/k=v", LoadedContent("[" + theName + "xyz]\nk=v"));
  EXPECT_EQ("default=|" + theName + "=", LoadedContent("[ " + theName + " ]"));
}

TEST(qvINIFileLoader, KeyNamesAreCutTo127Bytes) {
  std::string theName(127, 'k');
  EXPECT_EQ("default=|default/" + theName + "=v", LoadedContent(theName + "xyz=v"));
  EXPECT_EQ("default=|default/" + theName + "=v", LoadedContent(theName + "=v"));
}

TEST(qvINIFileLoader, NameIsTrimmedBeforeItIsCut) {
  std::string theName(126, 'k');
  EXPECT_EQ("default=|default/" + theName + " =v", LoadedContent("  " + theName + "   x=v"));
}

TEST(qvINIFileKept, LineWithoutAValueIsTooLongFrom128BytesOnWhereOtherNamesAreCut) {
  const std::string theLongest(127, 'k');
  EXPECT_EQ("default=|default/" + theLongest + "=", LoadedContent("  " + theLongest + "  "));
  EXPECT_EQ("default=|default/" + theLongest + "=", LoadedContent(theLongest + "k="));
  EXPECT_QV_ASSERTION(
      LoadedContent(theLongest + "k"),  // the kept one
      "(strlen(aSection) < kqvINIFile_SectionMaxLength) && (strlen(aKey)) < kqvINIFile_SectionMaxLength",
      "qvINIFile");
}

TEST(qvINIFileLoader, LineOf1023BytesIsOneLine) {
  std::string theValue(1021, 'v');
  EXPECT_EQ("default=|default/k=" + theValue, LoadedContent("k=" + theValue));
  EXPECT_EQ("default=|default/k=" + theValue.substr(1), LoadedContent("k=" + theValue.substr(1) + "\n"));
}

TEST(qvINIFileLoader, LineOf1024BytesIsTwoLines) {
  std::string theValue(1021, 'v');
  EXPECT_EQ("default=|default/k=" + theValue + "|default/x=", LoadedContent("k=" + theValue + "x"));
  EXPECT_EQ("default=|default/k=" + theValue + "|default/x=y", LoadedContent("k=" + theValue + "x=y\n"));
}

TEST(qvINIFileLoader, LineBreakBehind1023BytesIsAnEmptyLine) {
  std::string theValue(1021, 'v');
  EXPECT_EQ("default=|default/k=" + theValue + "|default/a=1", LoadedContent("k=" + theValue + "\na=1"));
}

TEST(qvINIFileLoader, VeryLongLineIsManyLines) {
  // 3 x 1023 bytes of comment, of which only the first piece begins with a comment character.
  std::string theText = ";" + std::string(1022, ' ') + "a=1" + std::string(1020, ' ') + "b=2\n";
  EXPECT_EQ("default=|default/a=1|default/b=2", LoadedContent(theText));
}

TEST(qvINIFileLoader, LongLineKeepsItsByteOrderMarkOutOfTheCount) {
  // The mark is dropped after the line was cut at 1023 bytes, so 1018 bytes of the value are left.
  std::string theValue(1018, 'v');
  EXPECT_EQ("default=|default/k=" + theValue + "|default/x=",
            LoadedContent("\xef\xbb\xbfk=" + theValue + "x"));
}

TEST(qvINIFileLoader, ZeroByteEndsItsLine) {
  EXPECT_EQ("default=|default/a=1|default/b=2", LoadedContent(std::string("a=1\0ignored\nb=2\n", 16)));
  EXPECT_EQ("default=|default/b=2", LoadedContent(std::string("\0a=1\nb=2\n", 9)));
}

TEST(qvINIFileLoader, BytesBehindTheGivenSizeAreNotRead) {
  const char theText[] = {'k', '=', 'v'};
  ScratchDictionary theDictionary;
  EXPECT_EQ(1, qvINIFile_LoadINIFileFromBuffer(theText, 3, theDictionary.Get()));
  EXPECT_EQ("default=|default/k=v", theDictionary.Content());
  ScratchDictionary theOther;
  EXPECT_EQ(1, qvINIFile_LoadINIFileFromBuffer("ab=cd", 4, theOther.Get()));
  EXPECT_EQ("default=|default/ab=c", theOther.Content());
}

TEST(qvINIFileLoader, LoadingMergesIntoWhatIsThere) {
  ScratchDictionary theDictionary;
  theDictionary.Load("[s]\na=1\nb=2\n");
  theDictionary.Load("x=0\n[S]\nB=3\nc=4\n");
  EXPECT_EQ("default=|s=|s/a=1|s/b=3|default/x=0|s/c=4", theDictionary.Content());
}

TEST(qvINIFileLoader, NullDictionaryFailsAnAssertion) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), "k=v\n");
  EXPECT_QV_ASSERTION(qvINIFile_LoadINIFileFromBuffer("k=v", 3, nullptr), "aDictionary != NULL", "qvINIFile");
  EXPECT_QV_ASSERTION(qvINIFile_LoadINIFile(theFolder.File("a.ini").c_str(), nullptr), "aDictionary != NULL",
                      "qvINIFile");
}

TEST(qvINIFileLoader, FileLoadsLikeItsText) {
  EXPECT_EQ("default=|default/a=1|s=|s/b=two words", ContentOfFile("a=1\n\n[s]\nb=\"two words\"\n"));
  EXPECT_EQ("default=", ContentOfFile(""));
}

TEST(qvINIFileLoader, FilesOfEverySizeAroundTheReadStepLoadWhole) {
  for (size_t theSize : {1u, 99u, 100u, 101u, 199u, 200u, 201u, 300u, 1000u, 1001u}) {
    std::string theText(theSize, '\n');
    theText[theSize - 1] = 'k';
    EXPECT_EQ("default=|default/k=", ContentOfFile(theText)) << theSize;
  }
}

TEST(qvINIFileLoader, LargeFileLoadsWhole) {
  std::string theText;
  std::string theExpected = "default=";
  for (int i = 0; i < 2000; ++i) {
    std::string theKey = "key" + std::to_string(i);
    theText += theKey + " = " + std::string(100, 'v') + "\n";
    theExpected += "|default/" + theKey + "=" + std::string(100, 'v');
  }
  EXPECT_EQ(theExpected, ContentOfFile(theText));
}

TEST(qvINIFileLoader, MissingFileReturns0AndLeavesTheDictionary) {
  ScratchFolder theFolder;
  ScratchDictionary theDictionary;
  EXPECT_EQ(0, qvINIFile_LoadINIFile(theFolder.File("none.ini").c_str(), theDictionary.Get()));
  EXPECT_EQ(0, qvINIFile_LoadINIFile(nullptr, theDictionary.Get()));
  EXPECT_EQ("", theDictionary.Content());
}

TEST(qvINIFileLoader, FolderInsteadOfAFileReturns0) {
  ScratchFolder theFolder;
  ScratchDictionary theDictionary;
  EXPECT_EQ(0, qvINIFile_LoadINIFile(theFolder.Path().c_str(), theDictionary.Get()));
  EXPECT_EQ("", theDictionary.Content());
}

TEST(qvINIFileLoader, ReadThatFailsHalfwayReturns0AndLeavesTheDictionary) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), "a=1\n;" + std::string(500, '-'));
  ScratchDictionary theDictionary;
  CallPlan thePlan;
  thePlan.mfLooksCount = true;
  thePlan.mErrno = EIO;
  thePlan.mFailFrom = 3;
  thePlan.mFailCount = 1;
  int theResult = -1;
  EXPECT_EQ("open read read read close", RunPlanned(thePlan, [&] {
                                           theResult = qvINIFile_LoadINIFile(theFolder.File("a.ini").c_str(),
                                                                             theDictionary.Get());
                                         }).Calls());
  EXPECT_EQ(0, theResult);
  EXPECT_EQ("", theDictionary.Content());
}

TEST(qvINIFileLoader, MissingFileReturns0EvenWithoutADictionary) {
  ScratchFolder theFolder;
  EXPECT_EQ(0, qvINIFile_LoadINIFile(theFolder.File("none.ini").c_str(), nullptr));
}

TEST(qvINIFileLoader, FileIsClosedAgain) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), "k=v\n");
  ScratchDictionary theDictionary;
  int theDescriptor = LowestFreeDescriptor();
  EXPECT_EQ(1, qvINIFile_LoadINIFile(theFolder.File("a.ini").c_str(), theDictionary.Get()));
  EXPECT_EQ(0, qvINIFile_LoadINIFile(theFolder.Path().c_str(), theDictionary.Get()));
  EXPECT_EQ(theDescriptor, LowestFreeDescriptor());
}

TEST(qvINIFileLoader, FileIsNotChanged) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("a.ini"), "K = v ; comment\r\n");
  ASSERT_EQ(0, chmod(theFolder.File("a.ini").c_str(), 0444));
  ScratchDictionary theDictionary;
  EXPECT_EQ(1, qvINIFile_LoadINIFile(theFolder.File("a.ini").c_str(), theDictionary.Get()));
  EXPECT_EQ("K = v ; comment\r\n", ReadWholeFile(theFolder.File("a.ini")));
}
