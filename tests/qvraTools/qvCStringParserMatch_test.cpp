#include <fnmatch.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qvraTools/qvCStringParser.h"

namespace {

struct MatchCase {
  const char* mPattern;
  const char* mText;
  int mExpected;
  const char* mWhy;
};

template <size_t N>
void ExpectMatches(const MatchCase (&aCases)[N]) {
  for (const MatchCase& theCase : aCases) {
    EXPECT_EQ(theCase.mExpected, qvCStringParser_Match(theCase.mPattern, theCase.mText))
        << theCase.mPattern << " against " << theCase.mText << ": " << theCase.mWhy;
  }
}

// All texts of up to aMaxLength characters from anAlphabet.
std::vector<std::string> AllTexts(const std::string& anAlphabet, size_t aMaxLength) {
  std::vector<std::string> theTexts = {""};
  for (size_t i = 0; i < theTexts.size(); ++i) {
    if (theTexts[i].size() < aMaxLength) {
      for (char theChar : anAlphabet) {
        theTexts.push_back(theTexts[i] + theChar);
      }
    }
  }
  return theTexts;
}

}  // namespace

TEST(qvCStringParserMatch, FileNamesMatchTheirPattern) {
  EXPECT_EQ(1, qvCStringParser_Match("*.ini", "config.ini"));
  EXPECT_EQ(0, qvCStringParser_Match("*.INI", "config.ini"));
  EXPECT_EQ(1, qvCStringParser_Match("a?c", "abc"));
  EXPECT_EQ(0, qvCStringParser_Match("[ab]c", "bc"));
}

TEST(qvCStringParserMatch, LiteralBytesMatchThemselves) {
  ExpectMatches({
      {"abc", "abc", 1, "equal"},
      {"abc", "ab", 0, "the text ends early"},
      {"ab", "abc", 0, "the pattern ends early"},
      {"abc", "abd", 0, "the last byte differs"},
      {"", "", 1, "nothing matches nothing"},
      {"", "a", 0, "nothing matches nothing else"},
      {"a", "", 0, "something needs something"},
      {"a\xE9", "a\xE9", 1, "a byte above 0x7F"},
      {"a\xE9", "a\xE8", 0, "another byte above 0x7F"},
  });
}

TEST(qvCStringParserMatch, QuestionMarkIsAnyOneByte) {
  ExpectMatches({
      {"?", "a", 1, "one byte"},
      {"?", "\xFF", 1, "a byte above 0x7F"},
      {"?", "", 0, "there has to be one"},
      {"?", "ab", 0, "and only one"},
      {"a?", "a", 0, "none is left at the end"},
      {"??", "\xC3\xA9", 1, "bytes, not characters"},
      {"?", "?", 1, "itself"},
  });
}

TEST(qvCStringParserMatch, StarIsAnyBytesOrNone) {
  ExpectMatches({
      {"*", "", 1, "none"},
      {"*", "abc", 1, "all"},
      {"**", "", 1, "several stars, nothing"},
      {"***", "abc", 1, "several stars"},
      {"a*", "a", 1, "none at the end"},
      {"a*", "abc", 1, "all at the end"},
      {"a*", "ba", 0, "another beginning"},
      {"*a", "a", 1, "none at the beginning"},
      {"*a", "aba", 1, "not the first a, but the last"},
      {"*a", "ab", 0, "another end"},
      {"*a", "", 0, "the text has run out"},
      {"a*c", "abbbc", 1, "in the middle"},
      {"a*b*c", "aXbYbZc", 1, "two stars"},
      {"a*b*c", "aXcYb", 0, "the parts in another order"},
      {"*ab*", "xaab", 1, "goes back to try again"},
      {"*ab?", "abab", 0, "the text runs out behind the star"},
      {"*abab", "ababab", 1, "overlapping starts"},
      {"*?", "", 0, "at least one"},
      {"*?", "a", 1, "just one"},
      {"?*?", "a", 0, "at least two"},
      {"a**b", "ab", 1, "several stars, nothing between"},
  });
}

TEST(qvCStringParserMatch, ClassIsOneOfItsMembers) {
  ExpectMatches({
      {"?[abc]", "xb", 1, "a member"},
      {"?[abc]", "xd", 0, "no member"},
      {"?[abc]", "x", 0, "no byte left"},
      {"?[abc]", "xbb", 0, "one byte only"},
      {"?[abc]c", "xac", 1, "goes on behind the class"},
      {"?[a-c]", "xa", 1, "the first of a range"},
      {"?[a-c]", "xb", 1, "inside a range"},
      {"?[a-c]", "xc", 1, "the last of a range"},
      {"?[a-c]", "xd", 0, "behind a range"},
      {"?[a-c]", "x`", 0, "in front of a range"},
      {"?[a-c]", "x-", 0, "the dash of a range is no member"},
      {"?[a-cx-z]", "xy", 1, "the second range"},
      {"?[a-cx]", "xx", 1, "a member behind a range"},
      {"?[\xE9]", "x\xE9", 1, "a member above 0x7F"},
      {"?[\x80-\xFF]", "x\xC3", 1, "ranges compare byte values"},
      {"?[\x80-\xFF]", "xa", 0, "so ASCII is below this one"},
      {"?[a-\xFF]", "x\x80", 1, "from below 0x80 to above it"},
      {"?[a-\xFF]", "x!", 0, "below the range"},
      {"?[A-z]", "x_", 1, "between the cases"},
  });
}

TEST(qvCStringParserMatch, CaretRightBehindTheBracketNegates) {
  ExpectMatches({
      {"?[^abc]", "xd", 1, "no member"},
      {"?[^abc]", "xb", 0, "a member"},
      {"?[^a-c]", "xb", 0, "in the range"},
      {"?[^a-c]", "xe", 1, "not in the range"},
      {"?[^a-c]", "x", 0, "there has to be a byte"},
      {"?[a^]", "x^", 1, "elsewhere it is a member"},
      {"?[^^]", "x^", 0, "so it is behind the negation"},
      {"?[^^]", "xa", 1, "and only that"},
      {"?[!a]", "x!", 1, "an exclamation mark is a member"},
  });
}

TEST(qvCStringParserMatch, BracketAndDashInFirstPlaceAreMembers) {
  ExpectMatches({
      {"?[]]", "x]", 1, "a bracket alone"},
      {"?[]]", "xa", 0, "and nothing else"},
      {"?[]a]", "xa", 1, "more members follow"},
      {"?[]a]", "x]", 1, "the bracket itself"},
      {"?[^]a]", "x]", 0, "behind the negation too"},
      {"?[^]a]", "xa", 0, "the other member"},
      {"?[^]a]", "xb", 1, "no member"},
      {"?[-a]", "x-", 1, "a dash"},
      {"?[-a]", "xa", 1, "and another"},
      {"?[-a]", "xb", 0, "no member"},
      {"?[-]", "x-", 1, "a dash alone"},
      {"?[^-]", "x-", 0, "behind the negation"},
      {"?[]-a]", "x^", 1, "a range from the bracket"},
      {"?[]-a]", "x-", 0, "whose dash is no member"},
      {"?[--/]", "x.", 1, "a range from the dash"},
  });
}

TEST(qvCStringParserMatch, DashBeforeTheClosingBracketIsAMember) {
  ExpectMatches({
      {"?[a-]", "x-", 1, "the dash"},
      {"?[a-]", "xa", 1, "the member in front of it"},
      {"?[a-]", "xb", 0, "no member"},
      {"?[a-c-]", "x-", 1, "behind a range"},
      {"?[a-c-]", "xb", 1, "the range"},
      {"?[a-]]", "x-]", 1, "the class ends at the first bracket"},
      {"?[^a-]", "x-", 0, "behind the negation"},
  });
}

TEST(qvCStringParserMatch, EndOfOneRangeMayStartTheNext) {
  ExpectMatches({
      {"?[a-c-e]", "xd", 1, "in the second range"},
      {"?[a-c-e]", "xe", 1, "its end"},
      {"?[a-c-e]", "x-", 0, "the dash is no member"},
  });
}

TEST(qvCStringParserMatch, RangeWithReversedEndsIsEmpty) {
  ExpectMatches({
      {"?[c-a]", "xb", 0, "nothing between them"},
      {"?[c-a]", "xa", 0, "nor its end"},
      {"?[c-a]", "xc", 0, "nor its start"},
      {"?[c-ax]", "xx", 1, "other members count"},
      {"?[^c-a]", "xb", 1, "everything else"},
  });
}

TEST(qvCStringParserMatch, EndOfThePatternClosesAClass) {
  ExpectMatches({
      {"?[ab", "xb", 1, "a member"},
      {"?[ab", "xc", 0, "no member"},
      {"?[ab", "xbb", 0, "nothing follows"},
      {"?[a-", "x-", 1, "a dash at the end is a member"},
      {"?[a-", "xb", 0, "and starts no range"},
      {"?[]", "x]", 1, "a bracket in first place is a member"},
      {"?[", "x[", 0, "a class without members"},
      {"?[", "xa", 0, "contains nothing"},
      {"?[^", "xa", 1, "its negation everything"},
      {"?[^]", "x]", 0, "a negated bracket"},
      {"?[^]", "xa", 1, "and all others"},
      {"*[a", "bba", 1, "behind a star"},
  });
}

TEST(qvCStringParserMatch, BackslashInAClassIsAMember) {
  ExpectMatches({
      {"?[\\a]", "x\\", 1, "the backslash"},
      {"?[\\a]", "xa", 1, "the byte behind it"},
      {"?[\\]]", "x]", 0, "it does not protect the bracket"},
      {"?[\\]]", "x\\]", 1, "the class has ended there"},
  });
}

TEST(qvCStringParserMatch, WildcardsInAClassAreMembers) {
  ExpectMatches({
      {"?[*?[]", "x*", 1, "a star"},
      {"?[*?[]", "x?", 1, "a question mark"},
      {"?[*?[]", "x[", 1, "an opening bracket"},
      {"?[*?[]", "xa", 0, "nothing else"},
  });
}

TEST(qvCStringParserMatch, BackslashMakesTheNextCharacterLiteral) {
  ExpectMatches({
      {"a\\*", "a*", 1, "a star"},
      {"a\\*", "ab", 0, "which is no wildcard any more"},
      {"a\\?", "a?", 1, "a question mark"},
      {"a\\?", "ab", 0, "which is no wildcard any more"},
      {"a\\[b]", "a[b]", 1, "a bracket"},
      {"a\\\\", "a\\", 1, "a backslash"},
      {"a\\b", "ab", 1, "any character"},
      {"a\\b", "a\\b", 0, "and the backslash itself is gone"},
      {"*\\*", "ab*", 1, "behind a star"},
  });
}

TEST(qvCStringParserMatch, BackslashAtTheEndOfThePatternMatchesNothing) {
  ExpectMatches({
      {"a\\", "a", 0, "the text has ended too"},
      {"a\\", "ab", 0, "a byte is left"},
      {"a\\", "a\\", 0, "not even a backslash"},
      {"*\\", "abc", 0, "behind a star"},
  });
}

TEST(qvCStringParserMatch, WithoutALineEndCharacterALineEndIsAByteLikeAnyOther) {
  ExpectMatches({
      {"a?b", "a\nb", 1, "one byte"},
      {"a*b", "a\r\nb", 1, "any bytes"},
      {"a", "a\n", 0, "it is no end"},
  });
}

TEST(qvCStringParserMatch, LineEndCharacterEndsTheText) {
  EXPECT_EQ(1, qvCStringParser_MatchEx("abc", "abc\ndef", 1, '\n'));
  EXPECT_EQ(0, qvCStringParser_MatchEx("abc", "abc\ndef", 1, '\0'));
  EXPECT_EQ(1, qvCStringParser_MatchEx("a*", "abc\ndef", 1, '\n'));
  EXPECT_EQ(0, qvCStringParser_MatchEx("a*f", "abc\ndef", 1, '\n'));
  EXPECT_EQ(1, qvCStringParser_MatchEx("a*f", "abc\ndef", 1, '\0'));
  EXPECT_EQ(0, qvCStringParser_MatchEx("abc?def", "abc\ndef", 1, '\n'));
  EXPECT_EQ(0, qvCStringParser_MatchEx("abc\n*", "abc\ndef", 1, '\n'));
  EXPECT_EQ(1, qvCStringParser_MatchEx("ab", "ab\xFF", 1, '\xFF'));
}

TEST(qvCStringParserMatch, TextWithoutTheLineEndCharacterEndsAtItsEnd) {
  EXPECT_EQ(1, qvCStringParser_MatchEx("abc", "abc", 1, '\n'));
  EXPECT_EQ(1, qvCStringParser_MatchEx("a*c", "abc", 1, '\n'));
  EXPECT_EQ(0, qvCStringParser_MatchEx("a*d", "abc", 1, '\n'));
  EXPECT_EQ(0, qvCStringParser_MatchEx("abc?", "abc", 1, '\n'));
}

TEST(qvCStringParserMatch, LineEndCharacterAloneIsAnEmptyTextForTheMatch) {
  EXPECT_EQ(1, qvCStringParser_MatchEx("*", "\n", 1, '\n'));
  EXPECT_EQ(1, qvCStringParser_MatchEx("**", "\n", 1, '\n'));
  EXPECT_EQ(0, qvCStringParser_MatchEx("?", "\n", 1, '\n'));
}

TEST(qvCStringParserMatch, AgreesWithThePlatformOnEveryShortPattern) {
  const std::vector<std::string> thePatterns = AllTexts("ab?*", 5);
  const std::vector<std::string> theTexts = AllTexts("ab", 5);
  for (const std::string& thePattern : thePatterns) {
    for (const std::string& theText : theTexts) {
      int theExpected = fnmatch(thePattern.c_str(), theText.c_str(), 0) == 0;
      ASSERT_EQ(theExpected, qvCStringParser_Match(thePattern.c_str(), theText.c_str()))
          << thePattern << " against " << theText;
    }
  }
}

TEST(qvCStringParserMatch, ManyStarsNeedNoStack) {
  std::string thePattern;
  for (int i = 0; i < 1000000; ++i) {
    thePattern += "*a";
  }
  std::string theText(1000000, 'a');
  EXPECT_EQ(1, qvCStringParser_Match(thePattern.c_str(), theText.c_str()));
  theText.pop_back();
  EXPECT_EQ(0, qvCStringParser_Match(thePattern.c_str(), theText.c_str()));
}

TEST(qvCStringParserMatch, HopelessPatternEndsInGoodTime) {
  // Trying all distributions of the text over the stars would never end.
  std::string thePattern;
  for (int i = 0; i < 50; ++i) {
    thePattern += "*a";
  }
  thePattern += "*b";
  EXPECT_EQ(0, qvCStringParser_Match(thePattern.c_str(), std::string(10000, 'a').c_str()));
}

TEST(qvCStringParserKept, FirstPatternByteMustBeTheFirstTextByte) {
  EXPECT_EQ(0, qvCStringParser_Match("[ab]c", "ac"));   // the kept one: a class in first place
  EXPECT_EQ(1, qvCStringParser_Match("[[]c", "[c"));    // unless the text begins with a bracket
  EXPECT_EQ(0, qvCStringParser_Match("[ab]c", "[c"));   // which the class then has to hold
  EXPECT_EQ(1, qvCStringParser_Match("*[ab]c", "ac"));  // a star in front lets the class work
  EXPECT_EQ(0, qvCStringParser_Match("\\a", "a"));      // the kept one: an escape in first place
  EXPECT_EQ(0, qvCStringParser_Match("\\*", "*"));
  EXPECT_EQ(1, qvCStringParser_Match("\\\\", "\\"));  // unless it stands for a backslash
  EXPECT_EQ(1, qvCStringParser_Match("*\\*", "*"));
  EXPECT_EQ(1, qvCStringParser_Match("?[ab]", "xa"));        // a question mark passes anything
  EXPECT_EQ(0, qvCStringParser_MatchEx("", "\n", 1, '\n'));  // the empty pattern wants the empty text
}

TEST(qvCStringParserKept, LettersCompareWithTheirCaseEvenWhenItIsNotRelevant) {
  EXPECT_EQ(1, qvCStringParser_MatchEx("*abc", "abc", 0, '\0'));
  EXPECT_EQ(0, qvCStringParser_MatchEx("*ABC", "abc", 0, '\0'));  // the kept one
  EXPECT_EQ(0, qvCStringParser_MatchEx("*abc", "ABC", 0, '\0'));
  EXPECT_EQ(0, qvCStringParser_MatchEx("ABC", "abc", 0, '\0'));
  EXPECT_EQ(0, qvCStringParser_MatchEx("*ABC", "abc", 1, '\0'));
  EXPECT_EQ(0, qvCStringParser_MatchEx("*[A-C]", "b", 0, '\0'));
  EXPECT_EQ(1, qvCStringParser_MatchEx("*ABC", "ABC", 1, '\0'));
}
