#include "qvraTools/qvCStringParser.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "support/Bytes.h"

namespace {

// Every token as <text>, in order; checks the links and the count on the way and releases the list.
std::string TakeTokens(qvCStringParser_TokenList* aList) {
  std::string theText;
  size_t theCount = 0;
  const qvCStringParser_Token* theLast = nullptr;
  for (const qvCStringParser_Token* theToken = aList->mFirstToken; theToken != nullptr;
       theToken = theToken->mNextToken) {
    theText += "<" + std::string(theToken->mData, theToken->mDataLength) + ">";
    theLast = theToken;
    ++theCount;
  }
  EXPECT_EQ(theCount, aList->mTokenCount);
  EXPECT_EQ(theLast, aList->mLastToken);
  qvCStringParser_Delete(aList);
  return theText;
}

std::string Tokenize(const std::string& aText, const std::string& aDelimiter, size_t anOffset = 0) {
  std::vector<char> theText = Exactly(aText);
  return TakeTokens(qvCStringParser_Tokenize(theText.data(), anOffset, theText.size(), aDelimiter.data(),
                                             aDelimiter.size()));
}

std::string TokenizeEscaped(const std::string& aText, const std::string& aDelimiter, char anEscapeChar,
                            size_t anOffset = 0) {
  std::vector<char> theText = Exactly(aText);
  return TakeTokens(qvCStringParser_TokenizeEscaped(theText.data(), anOffset, theText.size(),
                                                    aDelimiter.data(), aDelimiter.size(), anEscapeChar));
}

std::string TokenizeQuoted(const std::string& aText, const std::string& aDelimiter) {
  std::vector<char> theText = Exactly(aText);
  return TakeTokens(qvCStringParser_TokenizeQuoted(theText.data(), 0, theText.size(), aDelimiter.data(),
                                                   aDelimiter.size()));
}

std::string TokenizeQuotedList(const std::string& aText) {
  std::vector<char> theText = Exactly(aText);
  return TakeTokens(qvCStringParser_TokenizeQuotedList(theText.data(), 0, theText.size()));
}

std::string TokenizeParameterList(const std::string& aText) {
  std::vector<char> theText = Exactly(aText);
  return TakeTokens(qvCStringParser_TokenizeParameterList(theText.data(), 0, theText.size()));
}

// What is left of a token of this text.
std::string AfterTrim(void (*aTrim)(qvCStringParser_Token*), const std::string& aText) {
  std::vector<char> theText = Exactly(aText);
  qvCStringParser_Token theToken = {theText.data(), theText.size(), nullptr};
  aTrim(&theToken);
  return std::string(theToken.mData, theToken.mDataLength);
}

}  // namespace

TEST(qvCStringParserLayout, TokenHasItsFieldsInOrder) {
  EXPECT_EQ(0u, offsetof(qvCStringParser_Token, mData));
  EXPECT_EQ(sizeof(void*), offsetof(qvCStringParser_Token, mDataLength));
  EXPECT_EQ(sizeof(void*) + sizeof(size_t), offsetof(qvCStringParser_Token, mNextToken));
}

TEST(qvCStringParserLayout, ListHasItsFieldsInOrder) {
  EXPECT_EQ(0u, offsetof(qvCStringParser_TokenList, mFirstToken));
  EXPECT_EQ(sizeof(void*), offsetof(qvCStringParser_TokenList, mLastToken));
  EXPECT_EQ(2 * sizeof(void*), offsetof(qvCStringParser_TokenList, mTokenCount));
}

TEST(qvCStringParserTokenize, DelimiterAtTheEndGivesAnEmptyLastToken) {
  EXPECT_EQ("<a><b><>", Tokenize("a,b,", ","));
}

TEST(qvCStringParserTokenize, EmptyRangeGivesOneEmptyToken) {
  EXPECT_EQ("<>", Tokenize("", ","));
  EXPECT_EQ("<>", Tokenize("abc", ",", 3));
}

TEST(qvCStringParserTokenize, OffsetBehindTheEndGivesOneEmptyToken) {
  EXPECT_EQ("<>", TakeTokens(qvCStringParser_Tokenize("a,b,c,d", 5, 3, ",", 1)));
}

TEST(qvCStringParserTokenize, EveryDelimiterMakesOneMoreToken) {
  EXPECT_EQ("<abc>", Tokenize("abc", ","));
  EXPECT_EQ("<a><b>", Tokenize("a,b", ","));
  EXPECT_EQ("<><a>", Tokenize(",a", ","));
  EXPECT_EQ("<><><>", Tokenize(",,", ","));
}

TEST(qvCStringParserTokenize, TokensPointIntoTheText) {
  const char kText[] = "ab,c";
  qvCStringParser_TokenList* theList = qvCStringParser_Tokenize(kText, 0, 4, ",", 1);
  EXPECT_EQ(kText, theList->mFirstToken->mData);
  EXPECT_EQ(kText + 3, theList->mLastToken->mData);
  EXPECT_EQ(nullptr, theList->mLastToken->mNextToken);
  qvCStringParser_Delete(theList);
}

TEST(qvCStringParserTokenize, LengthIsTheEndPositionAndNoCountFromTheOffset) {
  EXPECT_EQ("<b><>", TakeTokens(qvCStringParser_Tokenize("a,b,c", 2, 4, ",", 1)));
}

TEST(qvCStringParserTokenize, LongDelimiterHasToMatchWhole) {
  EXPECT_EQ("<a><b-c><>", Tokenize("a--b-c--", "--"));
  EXPECT_EQ("<a><->", Tokenize("a---", "--"));
}

TEST(qvCStringParserTokenize, DelimiterThatDoesNotFitBeforeTheEndIsText) {
  EXPECT_EQ("<a->", TakeTokens(qvCStringParser_Tokenize("a--b", 0, 2, "--", 2)));
  EXPECT_EQ("<a><>", TakeTokens(qvCStringParser_Tokenize("a--b", 0, 3, "--", 2)));
}

TEST(qvCStringParserTokenize, DelimitersBehindTheEndAreNotLookedFor) {
  EXPECT_EQ("<c>", TakeTokens(qvCStringParser_Tokenize("abcd---e", 2, 3, "---", 3)));
}

TEST(qvCStringParserTokenize, EmptyDelimiterIsNeverFound) {
  EXPECT_EQ("<abc>", Tokenize("abc", ""));
  EXPECT_EQ(Bytes("<a\0b>"), Tokenize(Bytes("a\0b"), ""));  // nor where the byte stands that it points to
}

TEST(qvCStringParserTokenize, ZeroBytesAndHighBytesAreText) {
  EXPECT_EQ(Bytes("<a\0b><\xFF>"), Tokenize(Bytes("a\0b,\xFF"), ","));
  EXPECT_EQ("<a><b>", Tokenize(Bytes("a\0b"), Bytes("\0")));
  EXPECT_EQ("<a><b>", Tokenize("a\xFE"
                               "b",
                               "\xFE"));
}

TEST(qvCStringParserTokenize, QuotesMeanNothing) { EXPECT_EQ("<'a><b'>", Tokenize("'a,b'", ",")); }

TEST(qvCStringParserTokenize, ManyTokensStayInOrder) {
  std::string theText(99999, ',');
  qvCStringParser_TokenList* theList = qvCStringParser_Tokenize(theText.data(), 0, theText.size(), ",", 1);
  EXPECT_EQ(100000u, theList->mTokenCount);
  qvCStringParser_Delete(theList);
}

TEST(qvCStringParserEscaped, EscapedDelimiterDoesNotSplitAndTheEscapeStays) {
  EXPECT_EQ("<a\\,b><c>", TokenizeEscaped("a\\,b,c", ",", '\\'));
}

TEST(qvCStringParserEscaped, NoEscapeCharacterMeansNoEscaping) {
  EXPECT_EQ("<a\\><b><c>", TokenizeEscaped("a\\,b,c", ",", '\0'));
  EXPECT_EQ(Bytes("<a\0><b>"), TokenizeEscaped(Bytes("a\0,b"), ",", '\0'));
}

TEST(qvCStringParserEscaped, ByteBeforeTheOffsetIsNotLookedAt) {
  EXPECT_EQ("<><b>", TokenizeEscaped("\\,b", ",", '\\', 1));
}

TEST(qvCStringParserEscaped, EscapedEscapeStillEscapes) {
  EXPECT_EQ("<a\\\\,b>", TokenizeEscaped("a\\\\,b", ",", '\\'));
}

TEST(qvCStringParserEscaped, EscapeBeforeALongDelimiterHidesItsFirstByteOnly) {
  EXPECT_EQ("<a\\-><b>", TokenizeEscaped("a\\---b", "--", '\\'));
}

TEST(qvCStringParserEscaped, LastByteOfADelimiterMayBeTheEscapeOfTheNext) {
  EXPECT_EQ("<a><\\b>", TokenizeEscaped("a\\\\b", "\\", '\\'));
}

// The description step by step: every position looked at, one byte after the other.
static std::string TokenizeByBytes(const std::string& aText, const std::string& aDelimiter, char anEscapeChar,
                                   size_t anOffset) {
  std::string theTokens = "<";
  for (size_t thePos = anOffset; thePos < aText.size();) {
    const bool thefEscaped = anEscapeChar != 0 && thePos != anOffset && aText[thePos - 1] == anEscapeChar;
    if (!thefEscaped && aText.compare(thePos, aDelimiter.size(), aDelimiter) == 0) {
      theTokens += "><";
      thePos += aDelimiter.size();
    } else {
      theTokens += aText[thePos++];
    }
  }
  return theTokens + ">";
}

TEST(qvCStringParserEscaped, AgreesWithTheDescriptionOnEveryShortText) {
  const char kBytes[] = {',', ';', '\\', 'a'};
  const int kTexts = 4 * 4 * 4 * 4 * 4 * 4;
  for (int theNumber = 0; theNumber < kTexts; ++theNumber) {
    std::string theText;
    for (int theRest = theNumber; theText.size() < 6; theRest /= 4) {
      theText += kBytes[theRest % 4];
    }
    for (const char* theDelimiter : {",", ",;", ";;", ",\\"}) {
      for (char theEscape : {'\0', '\\'}) {
        for (size_t theOffset : {0, 2, 6}) {
          ASSERT_EQ(TokenizeByBytes(theText, theDelimiter, theEscape, theOffset),
                    TokenizeEscaped(theText, theDelimiter, theEscape, theOffset))
              << theText << " at " << theDelimiter << " from " << theOffset;
        }
      }
    }
  }
}

TEST(qvCStringParserQuoted, DelimitersInsideQuotesAreText) {
  EXPECT_EQ("<a><x'b,c'><><d>", TokenizeQuoted("a,x'b,c',d", ","));
  EXPECT_EQ("<a><x\"b,c\"><><d>", TokenizeQuoted("a,x\"b,c\",d", ","));
}

TEST(qvCStringParserQuoted, OnlyTheSameQuoteCharacterCloses) {
  EXPECT_EQ("<\"a',b\"><>", TokenizeQuoted("\"a',b\"", ","));
  EXPECT_EQ("<'a\",b'><>", TokenizeQuoted("'a\",b'", ","));
}

TEST(qvCStringParserQuoted, UnclosedQuoteRunsToTheEnd) {
  EXPECT_EQ("<a><'b,c>", TokenizeQuoted("a,'b,c", ","));
  EXPECT_EQ("<'>", TokenizeQuoted("'", ","));
}

TEST(qvCStringParserQuoted, WithoutQuotesItSplitsLikeTokenize) {
  EXPECT_EQ("<>", TokenizeQuoted("", ","));
  EXPECT_EQ("<abc>", TokenizeQuoted("abc", ","));
  EXPECT_EQ("<a><b><>", TokenizeQuoted("a,b,", ","));
  EXPECT_EQ("<a><b-c><>", TokenizeQuoted("a--b-c--", "--"));
  EXPECT_EQ("<abc>", TokenizeQuoted("abc", ""));
  EXPECT_EQ(Bytes("<a\0b>"), TokenizeQuoted(Bytes("a\0b"), ""));
}

TEST(qvCStringParserQuoted, EscapesMeanNothing) {
  EXPECT_EQ("<a\\><b>", TokenizeQuoted("a\\,b", ","));
  EXPECT_EQ("<'a\\'><b'>", TokenizeQuoted("'a\\'b'", ","));
}

TEST(qvCStringParserQuoted, QuoteIsNoDelimiterEvenWhenAskedFor) {
  EXPECT_EQ("<a'b'><c>", TokenizeQuoted("a'b'c", "'"));
}

TEST(qvCStringParserQuoted, LengthIsACountFromTheOffset) {
  EXPECT_EQ("<bcd>", TakeTokens(qvCStringParser_TokenizeQuoted("a,bcdef", 2, 3, ",", 1)));
}

TEST(qvCStringParserKept, ClosingQuoteEndsTheToken) {
  EXPECT_EQ("<'a'><>", TokenizeQuoted("'a'", ","));       // the kept one: nothing in front of the end
  EXPECT_EQ("<'a'><><b>", TokenizeQuoted("'a',b", ","));  // nothing in front of the delimiter
  EXPECT_EQ("<'a'><b>", TokenizeQuoted("'a'b", ","));     // text without a delimiter
  EXPECT_EQ("<'a'><'b'><>", TokenizeQuoted("'a''b'", ","));
  EXPECT_EQ("<x'a'><y>", TokenizeQuoted("x'a'y", ","));  // the opening quote does not start a token
  EXPECT_EQ("<''><>", TokenizeQuoted("''", ","));
}

TEST(qvCStringParserKept, QuotedDelimitersEndUpToPositionLength) {
  const char kText[] = "xx,a,b,c";
  // From offset 0 the length is both the count and the end position.
  EXPECT_EQ("<xx><a><b><c>", TakeTokens(qvCStringParser_TokenizeQuoted(kText, 0, 8, ",", 1)));
  // Five bytes from offset 3: the delimiter at 4 ends at position 5, the one at 6 ends behind it.
  EXPECT_EQ("<a><b,c>", TakeTokens(qvCStringParser_TokenizeQuoted(kText, 3, 5, ",", 1)));
  // Four bytes: both delimiters end behind position 4.
  EXPECT_EQ("<a,b,>", TakeTokens(qvCStringParser_TokenizeQuoted(kText, 3, 4, ",", 1)));
}

TEST(qvCStringParserQuotedList, TokensAreTrimmedAndLoseTheirQuotes) {
  EXPECT_EQ("<a><b c><d>", TokenizeQuotedList(" a ,\tb c\n, d"));
  EXPECT_EQ("<a><b, c><><d>", TokenizeQuotedList("a, 'b, c',d"));
  EXPECT_EQ("<a><b><>", TokenizeQuotedList("a,\"b\""));
}

TEST(qvCStringParserQuotedList, EmptyTokensStay) {
  EXPECT_EQ("<>", TokenizeQuotedList(""));
  EXPECT_EQ("<><><>", TokenizeQuotedList(" , ,"));
}

TEST(qvCStringParserQuotedList, WhiteSpaceInsideTheQuotesStays) {
  EXPECT_EQ("< a ><>", TokenizeQuotedList("' a '"));
}

TEST(qvCStringParserQuotedList, StartsAtTheOffset) {
  EXPECT_EQ("<b><c>", TakeTokens(qvCStringParser_TokenizeQuotedList("ab,c", 1, 3)));
}

TEST(qvCStringParserParameters, BlanksSeparateAndQuotesKeepTogether) {
  EXPECT_EQ("<x><a b><y>", TokenizeParameterList("x  \"a b\"  y"));
}

TEST(qvCStringParserParameters, EmptyTokensAreRemovedWhereverTheyStand) {
  EXPECT_EQ("<a><b>", TokenizeParameterList("  a   b  "));
  EXPECT_EQ("<a>", TokenizeParameterList("a "));
  EXPECT_EQ("<a>", TokenizeParameterList(" a"));
}

TEST(qvCStringParserParameters, NothingButWhiteSpaceGivesAnEmptyList) {
  for (const char* theText : {"", "   ", " \t \n "}) {
    std::string theString = theText;
    qvCStringParser_TokenList* theList =
        qvCStringParser_TokenizeParameterList(theString.data(), 0, theString.size());
    EXPECT_EQ(0u, theList->mTokenCount);
    EXPECT_EQ(nullptr, theList->mFirstToken);
    EXPECT_EQ(nullptr, theList->mLastToken);
    qvCStringParser_Delete(theList);
  }
}

TEST(qvCStringParserParameters, EmptyQuotesAreAParameter) {
  EXPECT_EQ("<a><><b>", TokenizeParameterList("a \"\" b"));
}

TEST(qvCStringParserParameters, OtherWhiteSpaceIsTrimmedButSeparatesNothing) {
  EXPECT_EQ("<a\tb><c>", TokenizeParameterList("\ta\tb\n c"));
}

TEST(qvCStringParserParameters, TextRightBehindAClosingQuoteIsAnotherParameter) {
  EXPECT_EQ("<x><y>", TokenizeParameterList("'x'y"));
}

TEST(qvCStringParserParameters, StartsAtTheOffset) {
  EXPECT_EQ("<b><c>", TakeTokens(qvCStringParser_TokenizeParameterList("ab c", 1, 3)));
}

TEST(qvCStringParserDelete, NullIsIgnored) { qvCStringParser_Delete(nullptr); }

TEST(qvCStringParserTrimToken, TakesWhiteSpaceOffBothEnds) {
  EXPECT_EQ("a b", AfterTrim(qvCStringParser_TrimToken, " \t\n\v\f\ra b\r\f\v\n\t "));
  EXPECT_EQ("a", AfterTrim(qvCStringParser_TrimToken, "a"));
  EXPECT_EQ("", AfterTrim(qvCStringParser_TrimToken, " \t "));
  EXPECT_EQ("", AfterTrim(qvCStringParser_TrimToken, ""));
}

TEST(qvCStringParserTrimToken, OtherBytesAreNoWhiteSpace) {
  // Beside the range of 9 to 13, zero, and what some locales call a blank.
  for (const std::string& theText :
       {Bytes("\x08"), Bytes("\x0E"), Bytes("\0"), Bytes("\x1F"), Bytes("!"), Bytes("\x85"), Bytes("\xA0")}) {
    EXPECT_EQ(theText, AfterTrim(qvCStringParser_TrimToken, theText));
  }
}

TEST(qvCStringParserTrimQuotes, DropsOnePairOfEqualQuotes) {
  const struct {
    const char* mText;
    const char* mLeft;
    const char* mWhy;
  } kCases[] = {
      {"\"a\"", "a", "double quotes"},        {"'a'", "a", "single quotes"},
      {"''", "", "nothing between them"},     {"'\"a\"'", "\"a\"", "only the outer pair"},
      {"''a''", "'a'", "only one pair"},      {"'", "'", "one character is no pair"},
      {"", "", "no character at all"},        {"'a\"", "'a\"", "the two differ"},
      {"aba", "aba", "equal, but no quotes"}, {"`a`", "`a`", "a back-quote is no quote"},
      {"'a", "'a", "no closing quote"},       {" 'a'", " 'a'", "the quote does not come first"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mLeft, AfterTrim(qvCStringParser_TrimQuotes, theCase.mText)) << theCase.mWhy;
  }
}

TEST(qvCStringParserListContains, OneTokenHasToEqualTheValue) {
  const struct {
    const char* mList;
    const char* mDelimiter;
    const char* mValue;
    int mExpected;
    const char* mWhy;
  } kCases[] = {
      {"a, 'b', c", ",", "b", 1, "trimmed and unquoted"},
      {"a, 'b', c", ",", "a", 1, "the first"},
      {"a, 'b', c", ",", "c", 1, "the last"},
      {"a, 'b', c", ",", "d", 0, "not there"},
      {"a, 'b', c", ",", "'b'", 0, "the quotes are gone"},
      {"a, 'b', c", ",", "B", 0, "the other case"},
      {"abc", ",", "ab", 0, "only a beginning"},
      {"ab", ",", "abc", 0, "the value is longer"},
      {"a,b", ",", "a,b", 0, "not across a delimiter"},
      {"'a,b'", ",", "a,b", 1, "a quoted delimiter is text"},
      {"a;b", ";", "b", 1, "another delimiter"},
      {"a::b", "::", "b", 1, "a delimiter of two bytes"},
      {"a,b", ";", "a,b", 1, "the delimiter does not occur"},
      {"", ",", "", 1, "the empty list has one empty token"},
      {"a,,b", ",", "", 1, "an empty token in between"},
      {"a,b", ",", "", 0, "no empty token"},
      {"a", "", "a", 1, "without a delimiter the list is one token"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mExpected,
              qvCStringParser_ListContains(theCase.mList, theCase.mDelimiter, theCase.mValue))
        << theCase.mWhy;
  }
}
