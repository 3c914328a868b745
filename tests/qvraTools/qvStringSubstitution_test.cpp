#include "qvraTools/qvStringSubstitution.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "qvraTools/qvMalloc.h"
#include "support/ChildProcess.h"
#include "support/HeapUse.h"
#include "support/OwnedText.h"

namespace {

// Knows x (which stands for %y%), y, long, empty and env.HOME; remembers the names asked for.
char* KnownNames(char* aName, void* aUserData) {
  if (aUserData != nullptr) {
    static_cast<std::vector<std::string>*>(aUserData)->push_back(aName);
  }
  const struct {
    const char* mName;
    const char* mText;
  } kNames[] = {
      {"x", "%y%"},    {"y", "Z"},           {"long", "a text longer than its name"},
      {"empty", ""},   {"env.OVER", "mine"}, {"X", "<y>"},
      {"open", "{y}"},
  };
  for (const auto& theName : kNames) {
    if (strcmp(aName, theName.mName) == 0) {
      return qvStrdup(theName.mText);
    }
  }
  return nullptr;
}

std::string Substitute(const char* aText, int afRecursive = 0) {
  return TakeText(qvStringSubstitution_Substitute(aText, '%', afRecursive, KnownNames, nullptr));
}

std::string SubstituteEx(const char* aText, const char* aStart, const char* anEnd, int afRecursive = 0) {
  return TakeText(qvStringSubstitution_SubstituteEx(aText, aStart, anEnd, afRecursive, KnownNames, nullptr));
}

std::string HostName(const char* aName = "hostname") {
  std::string theName = aName;
  return TakeText(qvStringSubstitution_Replace_HostName(theName.data(), nullptr));
}

// What "%hostname%" becomes on a host of that name; "(no permission)" where the name cannot be changed.
std::string HostNameOn(const std::string& aHostName) {
  return RunInChild([&] {
           if (unshare(CLONE_NEWUTS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWUTS) != 0) {
             printf("(no permission)");
             return;
           }
           if (sethostname(aHostName.data(), aHostName.size()) != 0) {
             printf("(no permission)");
             return;
           }
           char* theText = qvStringSubstitution_Substitute("[%hostname%]", '%', 0,
                                                           qvStringSubstitution_Replace_HostName, nullptr);
           printf("%s", theText);
           qvFree(theText);
         })
      .mStdout;
}

}  // namespace

TEST(qvStringSubstitution, NullTextGivesNull) {
  EXPECT_EQ(nullptr, qvStringSubstitution_Substitute(nullptr, '%', 0, KnownNames, nullptr));
  EXPECT_EQ(nullptr, qvStringSubstitution_SubstituteEx(nullptr, "${", "}", 0, KnownNames, nullptr));
}

TEST(qvStringSubstitution, VariablesBetweenTwoMarksAreReplaced) {
  const struct {
    const char* mText;
    const char* mExpected;
    const char* mWhy;
  } kCases[] = {
      {"", "", "nothing to replace"},
      {"plain", "plain", "no mark"},
      {"%y%", "Z", "the whole text"},
      {"a%y%b", "aZb", "text around it stays"},
      {"%y%%y%", "ZZ", "two variables side by side"},
      {"%y%-%y%-%y%", "Z-Z-Z", "several variables"},
      {"a%long%b", "aa text longer than its nameb", "a replacement longer than the span"},
      {"a%empty%b", "ab", "an empty replacement"},
      {"a%unknown%b", "ab", "an unknown name vanishes"},
      {"%Y%", "", "names are compared by the function, exactly"},
      {"100%%", "100%", "two marks side by side are one mark"},
      {"%%%%", "%%", "each pair is one mark"},
      {"%%y%%", "%y%", "the marks of a pair do not open a variable"},
      {"%", "%", "a single mark"},
      {"50% off", "50% off", "a single mark inside a text"},
      {"%y% 50% off", "Z 50% off", "a single mark behind a variable"},
      {"%%%", "%%", "a pair and a single mark"},
      {"\xc3\xa4%y%\xff", "\xc3\xa4Z\xff", "bytes above 0x7f"},
      {"%x%", "%y%", "a replacement is not looked into"},
      {"%x%y%", "%y%y%", "its marks do not pair with marks behind it"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mExpected, Substitute(theCase.mText)) << theCase.mWhy;
  }
}

TEST(qvStringSubstitution, RecursiveSubstitutionLooksIntoReplacements) {
  EXPECT_EQ("Z", Substitute("%x%", 1));
  EXPECT_EQ("aZb", Substitute("a%x%b", 1));
  EXPECT_EQ("ZZ", Substitute("%x%%x%", 1));
}

TEST(qvStringSubstitution, RecursiveSubstitutionReadsTheMarkOfAPairAgain) {
  EXPECT_EQ("Z", Substitute("%%y%", 1));
  EXPECT_EQ("100%", Substitute("100%%", 1));
}

TEST(qvStringSubstitution, MarkMayBeAnyCharacter) {
  EXPECT_EQ("aZb", TakeText(qvStringSubstitution_Substitute("a$y$b", '$', 0, KnownNames, nullptr)));
  EXPECT_EQ("aZb", TakeText(qvStringSubstitution_Substitute("a\xffy\xff"
                                                            "b",
                                                            '\xff', 0, KnownNames, nullptr)));
}

TEST(qvStringSubstitution, NoMarkAtAllLeavesTheText) {
  EXPECT_EQ("a%y%b", TakeText(qvStringSubstitution_Substitute("a%y%b", '\0', 0, KnownNames, nullptr)));
  EXPECT_EQ("a%y%b", SubstituteEx("a%y%b", "", ""));
}

TEST(qvStringSubstitution, ResultIsANewText) {
  char theText[] = "plain";
  char* theResult = qvStringSubstitution_Substitute(theText, '%', 0, nullptr, nullptr);
  EXPECT_NE(theText, theResult);
  qvFree(theResult);
}

TEST(qvStringSubstitution, FunctionGetsTheNameWithoutMarksAndTheUserData) {
  std::vector<std::string> theNames;
  TakeText(qvStringSubstitution_Substitute("%first% %% %second one%", '%', 0, KnownNames, &theNames));
  EXPECT_EQ((std::vector<std::string>{"first", "second one"}), theNames);
}

TEST(qvStringSubstitution, EveryWayToTheFunctionHandsTheUserDataOn) {
  std::vector<std::string> theNames;
  char theName[] = "third";
  TakeText(qvStringSubstitution_Substitute("%first%", '%', 0, KnownNames, &theNames));
  TakeText(qvStringSubstitution_SubstituteEx("${second}", "${", "}", 0, KnownNames, &theNames));
  TakeText(qvStringSubstitution_GetSubstitution(theName, KnownNames, &theNames));
  EXPECT_EQ((std::vector<std::string>{"first", "second", "third"}), theNames);
}

TEST(qvStringSubstitution, TextsOfTheFunctionAreFreed) {
  ExpectNoHeapGrowth([] {
    Substitute("%long%%unknown%%empty%%%");
    Substitute("%x%", 1);
    SubstituteEx("<X><long>", "<", ">", 1);
  });
}

TEST(qvStringSubstitution, LongTextsAreReplaced) {
  std::string theText;
  std::string theExpected;
  for (int i = 0; i < 2000; ++i) {
    theText += "%long%";
    theExpected += "a text longer than its name";
  }
  EXPECT_EQ(theExpected, Substitute(theText.c_str()));
}

TEST(qvStringSubstitution, EnvironmentVariableIsKnownWithoutAFunction) {
  setenv("QVTEST_SET", "value", 1);
  EXPECT_EQ("value/cache",
            TakeText(qvStringSubstitution_Substitute("%env.QVTEST_SET%/cache", '%', 0, nullptr, nullptr)));
}

TEST(qvStringSubstitution, UnsetEnvironmentVariableVanishes) {
  unsetenv("NOPE");
  EXPECT_EQ("ab", Substitute("a%env.NOPE%b"));
}

TEST(qvStringSubstitution, EnvironmentVariableSetToNothingIsEmpty) {
  setenv("QVTEST_EMPTY", "", 1);
  char theName[] = "env.QVTEST_EMPTY";
  EXPECT_EQ("", TakeText(qvStringSubstitution_GetSubstitution(theName, nullptr, nullptr)));
}

TEST(qvStringSubstitution, EnvironmentPrefixIsExact) {
  setenv("QVTEST_SET", "value", 1);
  EXPECT_EQ("", Substitute("%ENV.QVTEST_SET%"));
  EXPECT_EQ("", Substitute("%envQVTEST_SET%"));
  EXPECT_EQ("", Substitute("%env.%"));
}

TEST(qvStringSubstitution, FunctionOverridesEnvironmentVariables) {
  setenv("OVER", "environment", 1);
  EXPECT_EQ("mine", Substitute("%env.OVER%"));
}

TEST(qvStringSubstitution, EnvironmentVariableThatTheFunctionDoesNotKnowIsThatOfTheEnvironment) {
  setenv("QVTEST_SET", "value", 1);
  EXPECT_EQ("<value>", Substitute("<%env.QVTEST_SET%>"));
}

TEST(qvStringSubstitution, GetSubstitutionOfAnUnknownNameGivesNull) {
  char theName[] = "unknown";
  EXPECT_EQ(nullptr, qvStringSubstitution_GetSubstitution(theName, nullptr, nullptr));
  EXPECT_EQ(nullptr, qvStringSubstitution_GetSubstitution(theName, KnownNames, nullptr));
}

TEST(qvStringSubstitution, GetSubstitutionOfAKnownNameGivesANewText) {
  char theName[] = "y";
  EXPECT_EQ("Z", TakeText(qvStringSubstitution_GetSubstitution(theName, KnownNames, nullptr)));
}

TEST(qvStringSubstitution, MarksOfSeveralCharactersAreReplaced) {
  const struct {
    const char* mText;
    const char* mStart;
    const char* mEnd;
    const char* mExpected;
    const char* mWhy;
  } kCases[] = {
      {"a${y}b", "${", "}", "aZb", "two characters and one"},
      {"a<y>b", "<", ">", "aZb", "one and one"},
      {"a<!--y-->b", "<!--", "-->", "aZb", "four and three"},
      {"%y%", "%", "%", "Z", "the same mark twice"},
      {"a${y", "${", "}", "a${y", "no end"},
      {"}a${y", "${", "}", "}a${y", "the end is looked for behind the start"},
      {"a}${y}", "${", "}", "a}Z", "an end before the start is text"},
      {"a${}b", "${", "}", "ab", "an empty name vanishes"},
      {"100%%", "%", "%", "100", "an empty name is no mark here"},
      {"${${y}", "${", "}", "", "the name runs to the first end"},
      {"aXyXXb", "X", "XX", "aZb", "the end mark may begin like the start mark"},
      {"<X>", "<", ">", "<y>", "a replacement is not looked into"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mExpected, SubstituteEx(theCase.mText, theCase.mStart, theCase.mEnd)) << theCase.mWhy;
  }
}

TEST(qvStringSubstitution, MarksOfSeveralCharactersRecurseToo) {
  EXPECT_EQ("Z", SubstituteEx("<X>", "<", ">", 1));
}

TEST(qvStringSubstitution, ScanGoesOnAtTheReplacementNotBeforeIt) {
  // The '$' before the variable and the replacement look like a variable together.
  EXPECT_EQ("${y}", SubstituteEx("$${open}", "${", "}", 1));
  EXPECT_EQ("${y}", SubstituteEx("$${open}", "${", "}", 0));
  EXPECT_EQ("${y}", SubstituteEx("$${unknown}{y}", "${", "}", 1));
}

TEST(qvStringSubstitution, HostNameFunctionKnowsNoOtherName) {
  EXPECT_EQ(kOwnedText_Null, HostName("host"));
  EXPECT_EQ(kOwnedText_Null, HostName("hostnames"));
  EXPECT_EQ(kOwnedText_Null, HostName("HOSTNAME"));
  EXPECT_EQ(kOwnedText_Null, HostName(""));
}

TEST(qvStringSubstitution, HostNameIsThatOfThisHostUpToItsFirstDot) {
  char theHostName[256] = "";
  ASSERT_EQ(0, gethostname(theHostName, sizeof(theHostName) - 1));
  std::string theExpected = std::string(theHostName).substr(0, 63);
  if (!qvStringSubstitution_IsHostNameInIPDotForm(theExpected.data())) {
    theExpected = theExpected.substr(0, theExpected.find('.'));
  }
  EXPECT_EQ(theExpected, HostName());
}

TEST(qvStringSubstitution, HostNameIsCutAtItsFirstDotUnlessItIsAnAddress) {
  const struct {
    std::string mHostName;
    std::string mExpected;
    const char* mWhy;
  } kCases[] = {
      {"box", "[box]", "no dot"},
      {"box.example.net", "[box]", "a domain"},
      {"10.0.0.7", "[10.0.0.7]", "an address"},
      {"10.0.0.7.x", "[10]", "nearly an address"},
      {std::string(63, 'h'), "[" + std::string(63, 'h') + "]", "as long as is read"},
      {std::string(64, 'h'), "[" + std::string(63, 'h') + "]", "one more than is read"},
  };
  for (const auto& theCase : kCases) {
    std::string theResult = HostNameOn(theCase.mHostName);
    if (theResult == "(no permission)") {
      GTEST_SKIP() << "this process may not change the host name";
    }
    EXPECT_EQ(theCase.mExpected, theResult) << theCase.mWhy;
  }
}

TEST(qvStringSubstitution, DottedFormIsDigitsAndThreeDots) {
  const struct {
    const char* mText;
    int mExpected;
    const char* mWhy;
  } kCases[] = {
      {"10.0.0.7", 1, "an address"},
      {"255.255.255.255", 1, "the highest"},
      {"999.0.0.12345", 1, "the numbers are not looked at"},
      {"...", 1, "nor are digits needed"},
      {"", 0, "no dot"},
      {"1", 0, "no dot"},
      {"1.2.3", 0, "two dots"},
      {"1.2.3.4.5", 0, "four dots"},
      {"1.2.3.a", 0, "a letter"},
      {"1.2.3.4 ", 0, "a blank"},
      {"1.2.3.-4", 0, "a sign"},
      {"1.2.3.\xb2", 0, "a byte above 0x7f"},
  };
  for (const auto& theCase : kCases) {
    std::string theText = theCase.mText;
    EXPECT_EQ(theCase.mExpected, qvStringSubstitution_IsHostNameInIPDotForm(theText.data())) << theCase.mWhy;
  }
}

TEST(qvStringSubstitution, ManyReplacementsLongerThanTheirNamesAllFindTheirPlace) {
  std::string theText;
  std::string theExpected;
  for (int i = 0; i < 1000; ++i) {
    theText += "<%long%>";
    theExpected += "<a text longer than its name>";
  }
  EXPECT_EQ(Substitute(theText.c_str()), theExpected);
  EXPECT_EQ(Substitute(theText.c_str(), 1), theExpected);
}

TEST(qvStringSubstitution, ALongRowOfMarksIsReplacedPairByPair) {
  EXPECT_EQ(Substitute(std::string(1 << 16, '%').c_str()), std::string(1 << 15, '%'));
  EXPECT_EQ(Substitute(std::string(1 << 16, '%').c_str(), 1), "%");
}
