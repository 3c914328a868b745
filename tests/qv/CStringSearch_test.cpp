#include <gtest/gtest.h>
#include <stddef.h>

#include <string>

#include "qv/CString.h"
#include "support/CStringText.h"
#include "support/ChildProcess.h"

static const char* const kNull = NULL;
static const size_t kNpos = static_cast<size_t>(-1);

TEST(qvCStringSearch, FindGivesTheFirstOccurrenceFromAPositionOn) {
  const qvCString theString("abcabcab");
  const struct {
    const char* mNeedle;
    size_t mStart;
    size_t mPosition;
    const char* mWhy;
  } kCases[] = {
      {"abc", 0, 0, "at the start"},
      {"abc", 1, 3, "behind the first one"},
      {"abc", 3, 3, "exactly at the start position"},
      {"abc", 4, kNpos, "the end is too short"},
      {"cab", 0, 2, "in the middle"},
      {"b", 7, 7, "the last character"},
      {"b", 8, kNpos, "the start is the end"},
      {"b", 9, kNpos, "the start is behind the end"},
      {"b", kNpos, kNpos, "the start is npos"},
      {"abcabcab", 0, 0, "the whole text"},
      {"abcabcabc", 0, kNpos, "longer than the text"},
      {"x", 0, kNpos, "not there"},
      {"", 0, kNpos, "an empty needle is never found"},
      {"", 8, kNpos, "an empty needle is not found at the end either"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mPosition, theString.Find(qvCString(theCase.mNeedle), theCase.mStart)) << theCase.mWhy;
    EXPECT_EQ(theCase.mPosition, theString.FindFirstStr(theCase.mNeedle, theCase.mStart)) << theCase.mWhy;
  }
}

TEST(qvCStringSearch, FindComparesZeroBytesAndBytesAboveSevenF) {
  const qvCString theString = StringOf(Bytes("a\0b\0\xE9z"));
  EXPECT_EQ(3u, theString.Find(StringOf(Bytes("\0\xE9")), 0));
  EXPECT_EQ(kNpos, theString.Find(StringOf(Bytes("b\0z")), 0));
  EXPECT_EQ(5u, theString.FindFirstStr("z", 0));
}

TEST(qvCStringSearch, NothingIsFoundInNothing) {
  EXPECT_EQ(kNpos, qvCString().Find(qvCString("a"), 0));
  EXPECT_EQ(kNpos, qvCString().Find(qvCString(), 0));
  EXPECT_EQ(kNpos, qvCString().FindFirstStr("a", 0));
  EXPECT_EQ(kNpos, qvCString().FindLastStr("a", kNpos));
  EXPECT_EQ(kNpos, qvCString().FindNoCase(qvCString("a"), 0));
  EXPECT_EQ(kNpos, qvCString().FindFirstOf("a", 0));
  EXPECT_EQ(kNpos, qvCString().FindLastOf("a", kNpos));
  EXPECT_EQ(kNpos, qvCString().FindFirstNotOf("a", 0));
}

TEST(qvCStringSearch, ANullNeedleIsNeverFound) {
  const qvCString theString("abc");
  EXPECT_EQ(kNpos, theString.FindFirstStr(kNull, 0));
  EXPECT_EQ(kNpos, theString.FindLastStr(kNull, kNpos));
  EXPECT_EQ(kNpos, theString.FindFirstOf(kNull, 0));
  EXPECT_EQ(kNpos, theString.FindLastOf(kNull, kNpos));
  EXPECT_EQ(0u, theString.FindFirstNotOf(kNull, 0));
  EXPECT_FALSE(theString.Contains(kNull));
}

TEST(qvCStringSearch, FindLastStrGivesTheLastOccurrenceThatBeginsByAPosition) {
  const qvCString theString("abcabcab");
  const struct {
    const char* mNeedle;
    size_t mStart;
    size_t mPosition;
    const char* mWhy;
  } kCases[] = {
      {"ab", kNpos, 6, "npos: from the end"},
      {"ab", 8, 6, "the length is a position too"},
      {"ab", 6, 6, "exactly at the start position"},
      {"ab", 5, 3, "one before it"},
      {"ab", 2, 0, "only the first one is left"},
      {"ab", 0, 0, "at position 0"},
      {"bc", 0, kNpos, "nothing begins that early"},
      {"abc", kNpos, 3, "the last one is not whole"},
      {"abcabcab", kNpos, 0, "the whole text"},
      {"abcabcabc", kNpos, kNpos, "longer than the text"},
      {"x", kNpos, kNpos, "not there"},
      {"", kNpos, kNpos, "an empty needle is never found"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mPosition, theString.FindLastStr(theCase.mNeedle, theCase.mStart)) << theCase.mWhy;
  }
}

TEST(qvCStringSearch, FindLastStrFindsOverlappingOccurrences) {
  EXPECT_EQ(2u, qvCString("aaaa").FindLastStr("aa", kNpos));
  EXPECT_EQ(1u, qvCString("aaaa").FindLastStr("aa", 1));
}

TEST(qvCStringSearch, FindLastStrFromBehindTheEndFailsAnAssertion) {
  const qvCString theString("abc");
  EXPECT_QV_ASSERTION(theString.FindLastStr("a", 4), "aStartPos <= length()", "CString");
}

TEST(qvCStringSearch, FindNoCaseIgnoresTheCaseOfBothSides) {
  const qvCString theString("xAbCxaBc");
  EXPECT_EQ(1u, theString.FindNoCase(qvCString("abc"), 0));
  EXPECT_EQ(1u, theString.FindNoCase(qvCString("ABC"), 1));
  EXPECT_EQ(5u, theString.FindNoCase(qvCString("aBC"), 2));
  EXPECT_EQ(kNpos, theString.FindNoCase(qvCString("abc"), 6));
  EXPECT_EQ(kNpos, theString.FindNoCase(qvCString("abcd"), 0));
  EXPECT_EQ(kNpos, theString.FindNoCase(qvCString("xabcxabcx"), 0));
}

TEST(qvCStringSearch, FindNoCaseNeverFindsAnEmptyNeedle) {
  EXPECT_EQ(kNpos, qvCString("abc").FindNoCase(qvCString(), 0));
  EXPECT_EQ(kNpos, qvCString("abc").FindNoCase(qvCString(), 3));
}

TEST(qvCStringSearch, FindNoCaseStartsAtTheEndAtMost) {
  const qvCString theString("abc");
  EXPECT_EQ(kNpos, theString.FindNoCase(qvCString("c"), 3));
  EXPECT_QV_ASSERTION(theString.FindNoCase(qvCString("c"), 4), "aStartPos <= length()", "CString");
  EXPECT_QV_ASSERTION(theString.FindNoCase(qvCString("c"), kNpos), "aStartPos <= length()", "CString");
}

TEST(qvCStringSearch, FindFirstOfGivesTheFirstByteOfASet) {
  const qvCString theString("abcabc");
  EXPECT_EQ(1u, theString.FindFirstOf("cb", 0));
  EXPECT_EQ(2u, theString.FindFirstOf("cb", 2));
  EXPECT_EQ(4u, theString.FindFirstOf("b", 2));
  EXPECT_EQ(kNpos, theString.FindFirstOf("xyz", 0));
  EXPECT_EQ(kNpos, theString.FindFirstOf("", 0));
  EXPECT_EQ(1u, qvCString("a\xE9").FindFirstOf("\xE9", 0));
}

TEST(qvCStringSearch, FindFirstOfStartsAtTheEndAtMost) {
  const qvCString theString("abc");
  EXPECT_EQ(kNpos, theString.FindFirstOf("abc", 3));
  EXPECT_QV_ASSERTION(theString.FindFirstOf("abc", 4), "aStartPos <= length()", "CString");
  EXPECT_QV_ASSERTION(theString.FindFirstOf("abc", kNpos), "aStartPos <= length()", "CString");
}

TEST(qvCStringSearch, TheTerminatorOfASetIsNotInIt) {
  const qvCString theString = StringOf(Bytes("a\0b"));
  EXPECT_EQ(2u, theString.FindFirstOf("b", 0));
  EXPECT_EQ(0u, theString.FindLastOf("a", kNpos));
  EXPECT_EQ(1u, theString.FindFirstNotOf("ab", 0));
}

TEST(qvCStringSearch, FindLastOfGivesTheLastByteOfASet) {
  const qvCString theString("abcabc");
  EXPECT_EQ(4u, theString.FindLastOf("ab", kNpos));
  EXPECT_EQ(4u, theString.FindLastOf("ab", 4));
  EXPECT_EQ(3u, theString.FindLastOf("ab", 3));
  EXPECT_EQ(0u, theString.FindLastOf("a", 2));
  EXPECT_EQ(0u, theString.FindLastOf("a", 0));
  EXPECT_EQ(kNpos, theString.FindLastOf("b", 0));
  EXPECT_EQ(kNpos, theString.FindLastOf("x", kNpos));
  EXPECT_EQ(5u, theString.FindLastOf("c", 6));
  EXPECT_EQ(5u, theString.FindLastOf("c", 100));
}

TEST(qvCStringSearch, FindFirstNotOfGivesTheFirstByteOutsideASet) {
  const qvCString theString("aabbc");
  EXPECT_EQ(2u, theString.FindFirstNotOf("a", 0));
  EXPECT_EQ(4u, theString.FindFirstNotOf("ab", 1));
  EXPECT_EQ(kNpos, theString.FindFirstNotOf("abc", 0));
  EXPECT_EQ(0u, theString.FindFirstNotOf("", 0));
  EXPECT_EQ(kNpos, theString.FindFirstNotOf("a", 5));
}

TEST(qvCStringSearch, FindFirstNotOfFromTheEndGivesNpos) {
  EXPECT_EQ(kNpos, qvCString("abc").FindFirstNotOf("x", kNpos));
}

TEST(qvCStringSearch, FindOfACharacterGivesAnInt) {
  const qvCString theString("abcabc");
  EXPECT_EQ(1, theString.Find('b', false));
  EXPECT_EQ(4, theString.Find('b', true));
  EXPECT_EQ(0, theString.Find('a', false));
  EXPECT_EQ(5, theString.Find('c', true));
  EXPECT_EQ(-1, theString.Find('x', false));
  EXPECT_EQ(-1, theString.Find('x', true));
  EXPECT_EQ(-1, qvCString().Find('x', false));
  EXPECT_EQ(-1, qvCString().Find('x', true));
}

TEST(qvCStringSearch, FindOfACharacterFindsZeroBytes) {
  const qvCString theString = StringOf(Bytes("a\0b\0c"));
  EXPECT_EQ(1, theString.Find('\0', false));
  EXPECT_EQ(3, theString.Find('\0', true));
  EXPECT_EQ(-1, qvCString("abc").Find('\0', false));
}

TEST(qvCStringSearch, FirstGivesTheFirstPositionOfACharacter) {
  EXPECT_EQ(1, qvCString("abcb").First('b'));
  EXPECT_EQ(-1, qvCString("abcb").First('x'));
}

TEST(qvCStringSearch, ContainsTellsWhetherATextOccurs) {
  const qvCString theString("abcdef");
  EXPECT_TRUE(theString.Contains("cde"));
  EXPECT_TRUE(theString.Contains("abc"));
  EXPECT_TRUE(theString.Contains(qvCString("abcdef")));
  EXPECT_FALSE(theString.Contains("ce"));
  EXPECT_FALSE(theString.Contains(qvCString("abcdefg")));
  EXPECT_FALSE(theString.Contains(""));
  EXPECT_FALSE(theString.Contains(qvCString()));
}

TEST(qvCStringSearch, FreqCountsAByte) {
  const qvCString theString = StringOf(Bytes("a\0a\0\xE9"));
  EXPECT_EQ(2, theString.Freq('a'));
  EXPECT_EQ(2, theString.Freq('\0'));
  EXPECT_EQ(1, theString.Freq('\xE9'));
  EXPECT_EQ(0, theString.Freq('x'));
  EXPECT_EQ(0, qvCString().Freq('\0'));
}

TEST(qvCStringCompare, TheShorterOfTwoTextsWithACommonStartIsLess) {
  EXPECT_EQ(-1, qvCString("ab").Compare(qvCString("abc")));
  EXPECT_EQ(1, qvCString("abc").Compare(qvCString("ab")));
  EXPECT_EQ(-1, qvCString().Compare(qvCString("a")));
  EXPECT_EQ(1, qvCString("a").Compare(qvCString()));
}

TEST(qvCStringCompare, EqualTextsGiveZero) {
  EXPECT_EQ(0, qvCString("abc").Compare(qvCString("abc")));
  EXPECT_EQ(0, qvCString().Compare(qvCString()));
  EXPECT_EQ(0, StringOf(Bytes("a\0b")).Compare(StringOf(Bytes("a\0b"))));
}

TEST(qvCStringCompare, BytesCompareAsUnsigned) {
  EXPECT_GT(qvCString("\xE9").Compare(qvCString("z")), 0);
  EXPECT_LT(qvCString("a").Compare(qvCString("\x80")), 0);
  EXPECT_GT(qvCString("\xE9").Compare("z"), 0);
}

TEST(qvCStringCompare, ADifferenceGoesBeforeTheLength) {
  EXPECT_GT(qvCString("b").Compare(qvCString("abc")), 0);
  EXPECT_LT(qvCString("abc").Compare(qvCString("b")), 0);
}

TEST(qvCStringCompare, StringsCompareBehindZeroBytesAndTextsDoNot) {
  const qvCString theString = StringOf(Bytes("a\0b"));
  EXPECT_LT(theString.Compare(StringOf(Bytes("a\0c"))), 0);
  EXPECT_EQ(1, theString.Compare(qvCString("a")));
  EXPECT_EQ(0, theString.Compare("a"));
}

TEST(qvCStringCompare, CompareWithATextIsByStrcmp) {
  EXPECT_EQ(0, qvCString("abc").Compare("abc"));
  EXPECT_LT(qvCString("ab").Compare("abc"), 0);
  EXPECT_GT(qvCString("abd").Compare("abc"), 0);
}

TEST(qvCStringCompare, CompareWithNullFailsAnAssertion) {
  EXPECT_QV_ASSERTION(qvCString("abc").Compare(kNull), "aStr != NULL", "CString");
}

TEST(qvCStringCompare, CompareNoCaseGivesExactlyMinusOneZeroOrOne) {
  const struct {
    const char* mLeft;
    const char* mRight;
    int mResult;
    const char* mWhy;
  } kCases[] = {
      {"abc", "ABC", 0, "the case makes no difference"},
      {"abc", "ABCD", -1, "the shorter is less"},
      {"ABCD", "abc", 1, "the longer is more"},
      {"A", "z", -1, "a large distance is still -1"},
      {"Z", "a", 1, "a large distance is still 1"},
      {"z", "abc", 1, "a difference goes before the length"},
      {"abx", "ABC", 1, "a difference at the last byte of both"},
      {"abC", "aBx", -1, "the same the other way round"},
      {"\xE9", "z", 1, "bytes compare as unsigned"},
      {"_", "a", -1, "letters compare in lower case, where '_' comes first"},
      {"_", "A", -1, "the same for capitals"},
      {"", "", 0, "nothing equals nothing"},
      {"", "a", -1, "nothing is less"},
  };
  for (const auto& theCase : kCases) {
    const qvCString theString(theCase.mLeft);
    EXPECT_EQ(theCase.mResult, theString.CompareNoCase(qvCString(theCase.mRight))) << theCase.mWhy;
    EXPECT_EQ(theCase.mResult, theString.CompareNoCase(theCase.mRight)) << theCase.mWhy;
  }
}

TEST(qvCStringCompare, CompareNoCaseGoesOnBehindZeroBytes) {
  const qvCString theString = StringOf(Bytes("a\0b\0C"));
  EXPECT_EQ(0, theString.CompareNoCase(StringOf(Bytes("A\0B\0c"))));
  EXPECT_EQ(-1, theString.CompareNoCase(StringOf(Bytes("A\0B\0d"))));
  EXPECT_EQ(1, theString.CompareNoCase(StringOf(Bytes("A\0B\0b"))));
  EXPECT_EQ(1, theString.CompareNoCase(StringOf(Bytes("A\0B"))));
  EXPECT_EQ(-1, theString.CompareNoCase(StringOf(Bytes("Ax"))));
  EXPECT_EQ(1, theString.CompareNoCase("A"));
}

TEST(qvCStringCompare, CompareNoCaseLooksAtTheLengthWhileTheWriteBufferIsOut) {
  qvCString theString("abc");
  theString.GetWriteBuf(3);
  EXPECT_EQ(-1, theString.CompareNoCase("abc"));
  theString.UngetWriteBuf();
}

TEST(qvCStringCompare, CompareNoCaseTakesNullAsEmpty) {
  EXPECT_EQ(0, qvCString().CompareNoCase(kNull));
  EXPECT_EQ(1, qvCString("a").CompareNoCase(kNull));
}

TEST(qvCStringCompare, TheEqualOperatorsFollowCompare) {
  const qvCString theString("abc");
  EXPECT_TRUE(theString == "abc");
  EXPECT_FALSE(theString == "abd");
  EXPECT_TRUE("abc" == theString);
  EXPECT_TRUE(theString == qvCString("abc"));
  EXPECT_FALSE(theString == qvCString("ab"));
  EXPECT_FALSE(theString != "abc");
  EXPECT_TRUE("abd" != theString);
  EXPECT_TRUE(theString != qvCString("ABC"));
}
