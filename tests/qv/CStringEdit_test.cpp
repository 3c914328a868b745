#include <gtest/gtest.h>
#include <stddef.h>

#include <string>

#include "qv/CString.h"
#include "qvraTools/qvMalloc.h"
#include "support/CStringText.h"
#include "support/ChildProcess.h"

static const char* const kNull = NULL;
static const size_t kNpos = static_cast<size_t>(-1);
static const char* const kTooLong =
    "aLength < (kqvuint32_max / sizeof(char)) - (sizeof(qvCStringData) + qvxString_Extra(aLength) + 1)";

TEST(qvCStringEdit, EraseRemovesCharacters) {
  const struct {
    size_t mPos;
    size_t mLength;
    const char* mText;
    const char* mWhy;
  } kCases[] = {
      {0, 2, "cdef", "at the start"},
      {2, 2, "abef", "in the middle"},
      {4, 2, "abcd", "at the end"},
      {4, 3, "abcd", "one more than there are"},
      {4, kNpos, "abcd", "npos: to the end"},
      {1, kNpos - 1, "a", "a length that overflows with the position"},
      {6, 1, "abcdef", "the end itself holds nothing"},
      {3, 0, "abcdef", "nothing"},
      {0, kNpos, "", "everything"},
  };
  for (const auto& theCase : kCases) {
    qvCString theString("abcdef");
    EXPECT_EQ(&theString, &theString.Erase(theCase.mPos, theCase.mLength));
    EXPECT_EQ(theCase.mText, TextOf(theString)) << theCase.mWhy;
  }
}

TEST(qvCStringEdit, EraseBehindTheEndFailsAnAssertion) {
  qvCString theString("abc");
  EXPECT_QV_ASSERTION(theString.Erase(4, 1), "aPos <= length()", "CString");
  EXPECT_QV_ASSERTION(theString.Erase(kNpos, 0), "aPos <= length()", "CString");
}

TEST(qvCStringEdit, EraseAlwaysBuildsANewText) {
  qvCString theString("abcdef");
  const qvCString theCopy(theString);
  theString.Erase(3, 0);
  EXPECT_NE(theCopy.mCStringData, theString.mCStringData);
  EXPECT_EQ("abcdef", TextOf(theString));
  EXPECT_EQ("abcdef", TextOf(theCopy));
}

TEST(qvCStringEdit, ErasingEverythingGivesTheSharedEmptyText) {
  qvCString theString("abcdef");
  theString.Erase(0, 6);
  EXPECT_TRUE(IsSharedEmptyText(theString));
}

TEST(qvCStringEdit, TruncateKeepsTheStart) {
  qvCString theString("abcdef");
  EXPECT_EQ("abcdef", TextOf(theString.Truncate(6)));
  EXPECT_EQ("abc", TextOf(theString.Truncate(3)));
  EXPECT_TRUE(IsSharedEmptyText(theString.Truncate(0)));
}

TEST(qvCStringEdit, TruncateToMoreThanThereIsFailsAnAssertion) {
  qvCString theString("abc");
  EXPECT_QV_ASSERTION(theString.Truncate(4), "aPos <= length()", "CString");
}

TEST(qvCStringEdit, EmptyAndClearLeaveNothing) {
  qvCString theString("abc");
  EXPECT_EQ(&theString, &theString.Empty());
  EXPECT_TRUE(IsSharedEmptyText(theString));
  theString = "abc";
  theString.clear();
  EXPECT_TRUE(IsSharedEmptyText(theString));
  theString.clear();
  EXPECT_TRUE(IsSharedEmptyText(theString));
}

TEST(qvCStringEdit, InsertPutsBytesBeforeAPosition) {
  const struct {
    size_t mPos;
    const char* mStr;
    size_t mLength;
    const char* mText;
    const char* mWhy;
  } kCases[] = {
      {0, "xy", kNpos, "xyabc", "at the start"}, {1, "xy", kNpos, "axybc", "in the middle"},
      {3, "xy", kNpos, "abcxy", "at the end"},   {1, "xyz", 2, "axybc", "only some bytes"},
      {1, "xyz", 0, "abc", "no bytes"},          {1, "", kNpos, "abc", "an empty text"},
      {1, kNull, kNpos, "abc", "null"},          {1, kNull, 7, "abc", "null with a length"},
  };
  for (const auto& theCase : kCases) {
    qvCString theString("abc");
    EXPECT_EQ(&theString, &theString.Insert(theCase.mPos, theCase.mStr, theCase.mLength));
    EXPECT_EQ(theCase.mText, TextOf(theString)) << theCase.mWhy;
  }
}

TEST(qvCStringEdit, InsertKeepsZeroBytes) {
  qvCString theString("ab");
  theString.Insert(1, "x\0y", 3);
  EXPECT_EQ(Bytes("ax\0yb"), TextOf(theString));
}

TEST(qvCStringEdit, InsertingNothingLeavesTheTextShared) {
  qvCString theString("abc");
  const qvCString theCopy(theString);
  theString.Insert(1, "", kNpos);
  theString.Insert(1, "x", 0);
  EXPECT_EQ(theCopy.mCStringData, theString.mCStringData);
}

TEST(qvCStringEdit, InsertLeavesTheOtherOwnersAlone) {
  qvCString theString("abc");
  const qvCString theCopy(theString);
  theString.Insert(1, "x", kNpos);
  EXPECT_EQ("axbc", TextOf(theString));
  EXPECT_EQ("abc", TextOf(theCopy));
}

TEST(qvCStringEdit, InsertIntoTheEmptyString) {
  qvCString theString;
  theString.Insert(0, "abc", kNpos);
  EXPECT_EQ("abc", TextOf(theString));
}

TEST(qvCStringEdit, InsertBehindTheEndFailsAnAssertion) {
  qvCString theString("abc");
  EXPECT_QV_ASSERTION(theString.Insert(4, "x", kNpos), "aPos <= length()", "CString");
  EXPECT_QV_ASSERTION(theString.Insert(kNpos, "", kNpos), "aPos <= length()", "CString");
}

TEST(qvCStringEdit, AStringCanBeInsertedIntoItself) {
  qvCString theString("abc");
  theString.Insert(1, theString.c_str(), 3);
  EXPECT_EQ("aabcbc", TextOf(theString));
  qvCString theWrapped(qvCString::FromAllocatedString(qvStrdup("abc")));
  theWrapped.Insert(3, theWrapped.c_str() + 1, kNpos);
  EXPECT_EQ("abcbc", TextOf(theWrapped));
}

TEST(qvCStringEdit, InsertOfMoreThanABlockHoldsFailsAnAssertion) {
  qvCString theString("abc");
  EXPECT_QV_ASSERTION(theString.Insert(1, "x", kNpos - 1), kTooLong, "CString");
}

TEST(qvCStringEdit, ReplaceGoesOnBehindTheInsertedText) {
  qvCString theString("aaa");
  EXPECT_EQ(3u, theString.Replace("a", "aa", true));
  EXPECT_EQ("aaaaaa", TextOf(theString));
}

TEST(qvCStringEdit, ReplaceChangesEveryOccurrenceOrTheFirst) {
  const struct {
    const char* mText;
    const char* mOld;
    const char* mNew;
    bool mfAll;
    const char* mResult;
    size_t mCount;
    const char* mWhy;
  } kCases[] = {
      {"a-b-c", "-", "+", true, "a+b+c", 2, "same length"},
      {"a-b-c", "-", "+", false, "a+b-c", 1, "the first only"},
      {"a-b-c", "-", "", true, "abc", 2, "removed"},
      {"a-b-c", "-", "<=>", true, "a<=>b<=>c", 2, "longer"},
      {"a--b--c", "--", "-", true, "a-b-c", 2, "shorter"},
      {"-a-", "-", "+", true, "+a+", 2, "at both ends"},
      {"aaaa", "aa", "b", true, "bb", 2, "occurrences do not overlap"},
      {"aaa", "aa", "b", true, "ba", 1, "the rest is too short"},
      {"aaa", "aaa", "", true, "", 1, "nothing is left"},
      {"a-", "-", "", true, "a", 1, "one character is left"},
      {"abc", "x", "y", true, "abc", 0, "not there"},
      {"abc", "", "y", true, "abc", 0, "an empty needle is never found"},
      {"", "a", "y", true, "", 0, "nothing in nothing"},
      {"abc", "abcd", "y", true, "abc", 0, "longer than the text"},
      {"abc", kNull, "y", true, "abc", 0, "null is empty"},
      {"abc", "b", kNull, true, "ac", 1, "null is empty on the other side too"},
  };
  for (const auto& theCase : kCases) {
    qvCString theString(theCase.mText);
    EXPECT_EQ(theCase.mCount, theString.Replace(theCase.mOld, theCase.mNew, theCase.mfAll)) << theCase.mWhy;
    EXPECT_EQ(theCase.mResult, TextOf(theString)) << theCase.mWhy;
  }
}

TEST(qvCStringEdit, ReplaceFindsEachOfManyOccurrences) {
  std::string theText;
  std::string theResult;
  for (int i = 0; i < 1000; ++i) {
    theText += "a<b";
    theResult += "a&lt;b";
  }
  qvCString theString(theText.c_str());
  EXPECT_EQ(1000u, theString.Replace("<", "&lt;"));
  EXPECT_EQ(theResult, TextOf(theString));
}

TEST(qvCStringEdit, ReplaceWorksBehindZeroBytes) {
  qvCString theString = StringOf(Bytes("a\0a"));
  EXPECT_EQ(2u, theString.Replace("a", "bb", true));
  EXPECT_EQ(Bytes("bb\0bb"), TextOf(theString));
}

TEST(qvCStringEdit, ReplaceWithoutAnOccurrenceLeavesTheTextShared) {
  qvCString theString("abc");
  const qvCString theCopy(theString);
  EXPECT_EQ(0u, theString.Replace("x", "y", true));
  EXPECT_EQ(theCopy.mCStringData, theString.mCStringData);
}

TEST(qvCStringEdit, ReplaceToMoreThanABlockHoldsFailsAnAssertion) {
  // 65536 times 65536 bytes wrap to none where size_t has 32 bits.
  qvCString theString = StringOf(std::string(65536, 'a'));
  const std::string theNew(65536, 'b');
  EXPECT_QV_ASSERTION(theString.Replace("a", theNew.c_str(), true), kTooLong, "CString");
}

TEST(qvCStringEdit, ReplaceTakesItsOwnTextOnBothSides) {
  qvCString theString("abab");
  EXPECT_EQ(1u, theString.Replace(theString.c_str() + 2, theString.c_str(), false));
  EXPECT_EQ("ababab", TextOf(theString));
  EXPECT_EQ(1u, theString.Replace(theString.c_str(), theString.c_str(), true));
  EXPECT_EQ("ababab", TextOf(theString));
}

TEST(qvCStringEdit, ReplaceOfARangePutsBytesInItsPlace) {
  const struct {
    size_t mPos;
    size_t mLength;
    const char* mStr;
    size_t mStrLength;
    const char* mText;
    const char* mWhy;
  } kCases[] = {
      {2, 2, "xyz", kNpos, "abxyzef", "in the middle, up to the terminator"},
      {2, 2, "xyz", 1, "abxef", "some bytes only"},
      {2, 2, "xyz", 0, "abef", "no bytes"},
      {0, 6, "x", kNpos, "x", "everything"},
      {0, 0, "x", kNpos, "xabcdef", "nothing, at the start"},
      {6, 0, "x", kNpos, "abcdefx", "nothing, at the end"},
      {4, 5, "x", kNpos, "abcdx", "a length past the end is clipped"},
      {4, kNpos, "x", kNpos, "abcdx", "npos as length"},
      {1, kNpos - 1, "x", kNpos, "ax", "a length that overflows with the position"},
      {9, 1, "x", kNpos, "abcdefx", "a position past the end is clipped"},
      {kNpos, kNpos, "x", kNpos, "abcdefx", "npos as position"},
      {0, kNpos, "", kNpos, "", "nothing for everything"},
      {2, 2, kNull, kNpos, "abef", "null is empty"},
      {2, 2, kNull, 4, "abef", "null is empty whatever its length"},
  };
  for (const auto& theCase : kCases) {
    qvCString theString("abcdef");
    EXPECT_EQ(&theString,
              &theString.Replace(theCase.mPos, theCase.mLength, theCase.mStr, theCase.mStrLength));
    EXPECT_EQ(theCase.mText, TextOf(theString)) << theCase.mWhy;
  }
}

TEST(qvCStringEdit, ReplaceOfARangeTakesItsOwnText) {
  qvCString theString("abcdef");
  theString.Replace(1, 2, theString.c_str() + 2, 4);
  EXPECT_EQ("acdefdef", TextOf(theString));
}

TEST(qvCStringEdit, ReplaceOfARangeAlwaysBuildsANewText) {
  qvCString theString("abc");
  const qvCString theCopy(theString);
  theString.Replace(0, 0, "", 0);
  EXPECT_NE(theCopy.mCStringData, theString.mCStringData);
  EXPECT_EQ("abc", TextOf(theString));
}

TEST(qvCStringEdit, TrimRemovesTheWhiteSpaceOfOneEnd) {
  const struct {
    const char* mText;
    const char* mRight;
    const char* mLeft;
    const char* mBoth;
    const char* mWhy;
  } kCases[] = {
      {"  a b  ", "  a b", "a b  ", "a b", "blanks"},
      {"\t\n\v\f\r x\t\n\v\f\r ", "\t\n\v\f\r x", "x\t\n\v\f\r ", "x", "all six characters"},
      {"abc", "abc", "abc", "abc", "nothing to remove"},
      {"   ", "", "", "", "nothing but white space"},
      {"", "", "", "", "nothing"},
      {"\xA0x\x85", "\xA0x\x85", "\xA0x\x85", "\xA0x\x85", "no byte above 0x7F is white space"},
      {"\x08x\x0E", "\x08x\x0E", "\x08x\x0E", "\x08x\x0E", "the neighbours of 9 and 13"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mRight, TextOf(qvCString(theCase.mText).Trim(true))) << theCase.mWhy;
    EXPECT_EQ(theCase.mLeft, TextOf(qvCString(theCase.mText).Trim(false))) << theCase.mWhy;
    EXPECT_EQ(theCase.mBoth, TextOf(qvCString(theCase.mText).TrimLeftRight())) << theCase.mWhy;
  }
}

TEST(qvCStringEdit, TrimDoesNotStopAtZeroBytes) {
  qvCString theString = StringOf(Bytes(" \0 "));
  EXPECT_EQ(Bytes("\0"), TextOf(theString.TrimLeftRight()));
}

TEST(qvCStringEdit, TrimLooksAtNothingBeforeTheText) {
  static const char kBlanks[] = "    ";
  EXPECT_EQ("", TextOf(qvCString::FromStaticString(kBlanks + 2).Trim(true)));
}

TEST(qvCStringEdit, TrimLeavesATextWithNothingToRemoveUntouched) {
  qvCString theString("a b");
  const qvCString theCopy(theString);
  theString.Trim(true);
  theString.Trim(false);
  theString.TrimLeftRight();
  EXPECT_EQ(theCopy.mCStringData, theString.mCStringData);
}

TEST(qvCStringEdit, TrimBuildsATextOfTheTrimmedLength) {
  qvCString theString("   0123456789abcdef   ");
  theString.TrimLeftRight();
  EXPECT_EQ("0123456789abcdef", TextOf(theString));
  EXPECT_EQ(35u, theString.mCStringData->mAllocatedLength);
  EXPECT_TRUE(IsSharedEmptyText(qvCString(" \t ").TrimLeftRight()));
}

TEST(qvCStringEdit, TrimLeavesTheOtherOwnersAlone) {
  qvCString theString(" a ");
  const qvCString theCopy(theString);
  theString.TrimLeftRight();
  EXPECT_EQ("a", TextOf(theString));
  EXPECT_EQ(" a ", TextOf(theCopy));
}

TEST(qvCStringEdit, PadAddsCharactersAtOneEnd) {
  EXPECT_EQ("abc...", TextOf(qvCString("abc").Pad(3, '.', true)));
  EXPECT_EQ("...abc", TextOf(qvCString("abc").Pad(3, '.', false)));
  EXPECT_EQ("..", TextOf(qvCString().Pad(2, '.', true)));
  EXPECT_EQ("..", TextOf(qvCString().Pad(2, '.', false)));
  EXPECT_EQ(Bytes("a\0\0"), TextOf(qvCString("a").Pad(2, '\0', true)));
}

TEST(qvCStringEdit, PadWithNothingChangesNothing) {
  qvCString theString("abc");
  EXPECT_EQ(&theString, &theString.Pad(0, '.', true));
  EXPECT_EQ(&theString, &theString.Pad(0, '.', false));
  EXPECT_EQ("abc", TextOf(theString));
}

TEST(qvCStringEdit, PadAtTheLeftAlwaysBuildsANewText) {
  for (size_t theCount : {size_t{0}, size_t{1}}) {
    qvCString theString("abc");
    const qvCString theCopy(theString);
    theString.Pad(theCount, '.', false);
    EXPECT_NE(theCopy.mCStringData, theString.mCStringData) << theCount;
    EXPECT_EQ(std::string(theCount, '.') + "abc", TextOf(theString));
  }
}

TEST(qvCStringEdit, PadLeavesTheOtherOwnersAlone) {
  qvCString theString("abc");
  const qvCString theCopy(theString);
  theString.Pad(1, 'x', false).Pad(1, 'y', true);
  EXPECT_EQ("xabcy", TextOf(theString));
  EXPECT_EQ("abc", TextOf(theCopy));
}

TEST(qvCStringEdit, PadWithMoreThanABlockHoldsFailsAnAssertion) {
  qvCString theString("abc");
  EXPECT_QV_ASSERTION(theString.Pad(kNpos, 'x', true), kTooLong, "CString");
  EXPECT_QV_ASSERTION(theString.Pad(kNpos, 'x', false), kTooLong, "CString");
}

TEST(qvCStringEdit, ThePositionsAndFlagsHaveTheirUsualDefaults) {
  EXPECT_EQ("a", TextOf(qvCString("abc").Erase(1)));
  EXPECT_EQ("axbc", TextOf(qvCString("abc").Insert(1, "x")));
  EXPECT_EQ(" a", TextOf(qvCString(" a ").Trim()));
  EXPECT_EQ("a  ", TextOf(qvCString("a").Pad(2)));
  EXPECT_EQ("xbc", TextOf(qvCString("abc").Replace(0, 1, "x")));
  EXPECT_EQ(2u, qvCString("aa").Replace("a", "b"));
}
