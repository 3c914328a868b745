// Texts of qvCStringParser.h that are no tokens: trimmed, looked through, escaped and surrounded.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qvraTools/qvCStringParser.h"
#include "support/Bytes.h"
#include "support/ChangingText.h"
#include "support/ChildProcess.h"

namespace {

std::string Trim(const std::string& aText, int afLeft, int afRight) {
  std::vector<char> theText = Exactly(aText);
  // The empty text is handed in as a text, not as null.
  const char* theStart = theText.empty() ? "" : theText.data();
  return TakeText(qvCStringParser_Trim(theStart, theText.size(), afLeft, afRight));
}

int IsSurrounded(const std::string& aText, char aLeft, char aRight, int afAllowLeft) {
  std::vector<char> theText = Exactly(aText);
  return qvCStringParser_IsSurrounded(theText.data(), theText.size(), aLeft, aRight, afAllowLeft);
}

int ContainsOneOf(const std::string& aText, const char* aChars) {
  std::vector<char> theText = Exactly(aText);
  return qvCStringParser_ContainsOneOf(theText.data(), theText.size(), aChars);
}

std::string EscapeAndSurround(const std::string& aText, std::string aCharsToEscape, char anEscapeChar,
                              size_t aSize) {
  std::vector<char> theText = Exactly(aText);
  return TakeText(qvCStringParser_EscapeAndSurround(theText.data(), theText.size(), &aCharsToEscape[0],
                                                    anEscapeChar, '<', '>'),
                  aSize);
}

}  // namespace

TEST(qvCStringParserTrim, EachEndIsTrimmedOnlyWhenAskedFor) {
  EXPECT_EQ(" \ta\n ", Trim(" \ta\n ", 0, 0));
  EXPECT_EQ("a\n ", Trim(" \ta\n ", 1, 0));
  EXPECT_EQ(" \ta", Trim(" \ta\n ", 0, 1));
  EXPECT_EQ("a", Trim(" \ta\n ", 1, 1));
  EXPECT_EQ("a", Trim(" a ", 2, -1));
}

TEST(qvCStringParserTrim, NothingButWhiteSpaceGivesTheEmptyText) {
  EXPECT_EQ("", Trim(" \t\n", 1, 0));
  EXPECT_EQ("", Trim(" \t\n", 0, 1));
  EXPECT_EQ("", Trim("", 1, 1));
}

TEST(qvCStringParserTrim, LooksAtTheGivenLengthOnly) {
  EXPECT_EQ("a", TakeText(qvCStringParser_Trim("a  b", 3, 1, 1)));
}

TEST(qvCStringParserTrim, ResultEndsAtAZeroByte) { EXPECT_EQ("a ", Trim(Bytes(" a \0b "), 1, 1)); }

TEST(qvCStringParserTrim, NullTextOfLengthZeroGivesNull) {
  EXPECT_EQ(nullptr, qvCStringParser_Trim(nullptr, 0, 1, 1));
}

TEST(qvCStringParserTrim, NullTextWithALengthAsserts) {
  EXPECT_QV_ASSERTION(qvCStringParser_Trim(nullptr, 3, 1, 1), "aMaxStrlen == 0", "qvMalloc");
}

TEST(qvCStringParserIsSurrounded, LooksAtBothEnds) {
  const struct {
    const char* mText;
    char mLeft;
    char mRight;
    int mExpected;
    const char* mWhy;
  } kCases[] = {
      {"(a)", '(', ')', 1, "both"},
      {"()", '(', ')', 1, "nothing between them"},
      {"(a", '(', ')', 0, "no right one"},
      {"a)", '(', ')', 0, "no left one"},
      {"(", '(', ')', 0, "one character"},
      {"\"", '"', '"', 0, "one character that is both"},
      {"", '(', ')', 0, "no character"},
      {")a(", '(', ')', 0, "the wrong way round"},
      {"(a)b)", '(', ')', 1, "a right one inside does not matter"},
      {"(a(b)", '(', ')', 0, "a left one inside"},
      {"((", '(', '(', 1, "equal characters with nothing between them"},
      {"\"a\"", '"', '"', 1, "double quotes"},
      {"\xFF"
       "a\xFE",
       '\xFF', '\xFE', 1, "bytes above 0x7F"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mExpected, IsSurrounded(theCase.mText, theCase.mLeft, theCase.mRight, 0))
        << theCase.mWhy;
  }
}

TEST(qvCStringParserIsSurrounded, QuoteInsideCountsUnlessItIsAllowed) {
  EXPECT_EQ(0, IsSurrounded("\"a\"b\"", '"', '"', 0));
  EXPECT_EQ(1, IsSurrounded("\"a\"b\"", '"', '"', 1));
  EXPECT_EQ(1, IsSurrounded("(a(b)", '(', ')', 1));
}

TEST(qvCStringParserIsSurrounded, AllowingItDoesNotReplaceTheEnds) {
  EXPECT_EQ(0, IsSurrounded("a\"b\"", '"', '"', 1));
  EXPECT_EQ(0, IsSurrounded("\"", '"', '"', 1));
}

TEST(qvCStringParserIsSurrounded, NullTextIsNot) {
  EXPECT_EQ(0, qvCStringParser_IsSurrounded(nullptr, 5, '(', ')', 1));
}

TEST(qvCStringParserContainsOneOf, FindsAnyOfTheCharacters) {
  EXPECT_EQ(1, ContainsOneOf("abc", "xc"));
  EXPECT_EQ(1, ContainsOneOf("abc", "a"));
  EXPECT_EQ(0, ContainsOneOf("abc", "xyz"));
  EXPECT_EQ(0, ContainsOneOf("abc", ""));
  EXPECT_EQ(0, ContainsOneOf("", "abc"));
  EXPECT_EQ(1, ContainsOneOf("a\xE9", "\xE9"));
}

TEST(qvCStringParserContainsOneOf, LooksAtTheGivenLengthOnly) {
  EXPECT_EQ(0, qvCStringParser_ContainsOneOf("abc", 2, "c"));
}

TEST(qvCStringParserContainsOneOf, ZeroByteCountsAsFound) {
  EXPECT_EQ(1, ContainsOneOf(Bytes("ab\0"), "x"));
  EXPECT_EQ(1, ContainsOneOf(Bytes("\0"), ""));
}

TEST(qvCStringParserEscape, SurroundsAndEscapes) {
  char theChars[] = "\"";
  char* theText = qvCStringParser_EscapeAndSurround("a\"b", 3, theChars, '\\', '"', '"');
  EXPECT_EQ(Bytes("\"a\\\"b\"\0"), TakeText(theText, 7));
}

TEST(qvCStringParserEscape, EveryCharacterOfTheListIsEscaped) {
  EXPECT_EQ(Bytes("<\\\\\\'a\\\">\0"), EscapeAndSurround("\\'a\"", "\"'\\", '\\', 10));
}

TEST(qvCStringParserEscape, OtherBytesAreCopied) {
  EXPECT_EQ(Bytes("<a\xFF\n>\0"), EscapeAndSurround("a\xFF\n", "\"", '\\', 6));
}

TEST(qvCStringParserEscape, EmptyTextIsJustSurrounded) {
  EXPECT_EQ(Bytes("<>\0"), EscapeAndSurround("", "\"", '\\', 3));
}

TEST(qvCStringParserEscape, SurroundCharactersInsideAreNotEscapedByThemselves) {
  EXPECT_EQ(Bytes("<<a>>\0"), EscapeAndSurround("<a>", "", '\\', 6));
}

TEST(qvCStringParserEscape, ZeroByteIsEscaped) {
  EXPECT_EQ(Bytes("<a\\\0b>\0"), EscapeAndSurround(Bytes("a\0b"), "", '\\', 7));
}

TEST(qvCStringParserEscape, ListOfCharactersIsNotChanged) {
  char theChars[] = "ab";
  TakeText(qvCStringParser_EscapeAndSurround("aabb", 4, theChars, '\\', '<', '>'));
  EXPECT_STREQ("ab", theChars);
}

TEST(qvCStringParserEscape, TextThatChangesAfterItsSizeWasCountedAsserts) {
  ChangingText theText("\"b", 'a');
  char theChars[] = "\"";
  EXPECT_QV_ASSERTION(qvCStringParser_EscapeAndSurround(theText.Text(), 2, theChars, '\\', '<', '>'),
                      "j == theLength", "qvCStringParser");
}

TEST(qvCStringParserKept, EscapeIsAlwaysTheBackslash) {
  EXPECT_EQ(Bytes("<\\a>\0"), EscapeAndSurround("a", "a", '\\', 5));
  EXPECT_EQ(Bytes("<\\a>\0"), EscapeAndSurround("a", "a", '%', 5));  // the kept one
  EXPECT_EQ(Bytes("<\\a>\0"), EscapeAndSurround("a", "a", '\0', 5));
  EXPECT_EQ(Bytes("<%\\a>\0"), EscapeAndSurround("%a", "a", '%', 6));  // and it is not escaped itself
}
