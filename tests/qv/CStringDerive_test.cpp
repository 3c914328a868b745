#include <gtest/gtest.h>
#include <malloc.h>
#include <stddef.h>

#include <string>

#include "qv/CString.h"
#include "qvraTools/qvMalloc.h"
#include "support/CStringText.h"

static const char* const kNull = NULL;
static const size_t kNpos = static_cast<size_t>(-1);

TEST(qvCStringDerive, APartIsTakenBeforeOrBehindAnOccurrence) {
  const struct {
    const char* mText;
    const char* mAfterFirst;
    const char* mBeforeFirst;
    const char* mAfterLast;
    const char* mBeforeLast;
    const char* mWhy;
  } kCases[] = {
      {"a/b/c", "b/c", "a", "c", "a/b", "two occurrences"},
      {"a/b", "b", "a", "b", "a", "one occurrence"},
      {"/abc", "abc", "", "abc", "", "an occurrence at position 0"},
      {"abc/", "", "abc", "", "abc", "an occurrence at the end"},
      {"/", "", "", "", "", "nothing else"},
      {"abc", "", "abc", "abc", "", "no occurrence"},
      {"", "", "", "", "", "nothing in nothing"},
  };
  for (const auto& theCase : kCases) {
    const qvCString theString(theCase.mText);
    EXPECT_EQ(theCase.mAfterFirst, TextOf(theString.AfterFirst('/'))) << theCase.mWhy;
    EXPECT_EQ(theCase.mAfterFirst, TextOf(theString.AfterFirst(qvCString("/")))) << theCase.mWhy;
    EXPECT_EQ(theCase.mBeforeFirst, TextOf(theString.BeforeFirst('/'))) << theCase.mWhy;
    EXPECT_EQ(theCase.mBeforeFirst, TextOf(theString.BeforeFirst(qvCString("/")))) << theCase.mWhy;
    EXPECT_EQ(theCase.mBeforeFirst, TextOf(theString.BeforeFirst("/"))) << theCase.mWhy;
    EXPECT_EQ(theCase.mAfterLast, TextOf(theString.AfterLast('/'))) << theCase.mWhy;
    EXPECT_EQ(theCase.mAfterLast, TextOf(theString.AfterLast(qvCString("/")))) << theCase.mWhy;
    EXPECT_EQ(theCase.mBeforeLast, TextOf(theString.BeforeLast('/'))) << theCase.mWhy;
    EXPECT_EQ(theCase.mBeforeLast, TextOf(theString.BeforeLast(qvCString("/")))) << theCase.mWhy;
    EXPECT_EQ(theCase.mBeforeLast, TextOf(theString.BeforeLast("/"))) << theCase.mWhy;
    EXPECT_EQ(theCase.mText, TextOf(theString)) << theCase.mWhy;
  }
}

TEST(qvCStringDerive, AnOccurrenceMayHaveSeveralCharacters) {
  const qvCString theString("one::two::three");
  EXPECT_EQ("two::three", TextOf(theString.AfterFirst(qvCString("::"))));
  EXPECT_EQ("one", TextOf(theString.BeforeFirst("::")));
  EXPECT_EQ("three", TextOf(theString.AfterLast(qvCString("::"))));
  EXPECT_EQ("one::two", TextOf(theString.BeforeLast("::")));
}

TEST(qvCStringDerive, TheLastOccurrenceMayOverlapAnother) {
  EXPECT_EQ("", TextOf(qvCString("aaa").AfterLast(qvCString("aa"))));
  EXPECT_EQ("a", TextOf(qvCString("aaa").BeforeLast("aa")));
  EXPECT_EQ("a", TextOf(qvCString("aaa").AfterFirst(qvCString("aa"))));
}

TEST(qvCStringDerive, AnEmptyOrNullTextDoesNotOccur) {
  const qvCString theString("abc");
  EXPECT_EQ("", TextOf(theString.AfterFirst(qvCString())));
  EXPECT_EQ("abc", TextOf(theString.BeforeFirst("")));
  EXPECT_EQ("abc", TextOf(theString.BeforeFirst(kNull)));
  EXPECT_EQ("abc", TextOf(theString.BeforeFirst(qvCString())));
  EXPECT_EQ("abc", TextOf(theString.AfterLast(qvCString())));
  EXPECT_EQ("", TextOf(theString.BeforeLast("")));
  EXPECT_EQ("", TextOf(theString.BeforeLast(kNull)));
  EXPECT_EQ("", TextOf(theString.BeforeLast(qvCString())));
}

TEST(qvCStringDerive, ZeroBytesOccurLikeOthers) {
  const qvCString theString = StringOf(Bytes("a\0b\0c"));
  EXPECT_EQ(Bytes("b\0c"), TextOf(theString.AfterFirst('\0')));
  EXPECT_EQ("a", TextOf(theString.BeforeFirst('\0')));
  EXPECT_EQ("c", TextOf(theString.AfterLast('\0')));
  EXPECT_EQ(Bytes("a\0b"), TextOf(theString.BeforeLast('\0')));
}

TEST(qvCStringDerive, MidTakesCharactersFromAPosition) {
  const struct {
    size_t mPos;
    size_t mLength;
    const char* mText;
    const char* mWhy;
  } kCases[] = {
      {1, 1, "b", "in the middle"},
      {0, 2, "ab", "at the start"},
      {1, 2, "bc", "up to the end"},
      {1, kNpos, "bc", "npos: the rest"},
      {1, 10, "bc", "past the end"},
      {1, kNpos - 1, "bc", "a length that overflows with the position"},
      {0, kNpos, "abc", "everything"},
      {3, 1, "", "from the end"},
      {5, 3, "", "from behind the end"},
      {kNpos, kNpos, "", "from npos"},
      {1, 0, "", "nothing"},
  };
  const qvCString theString("abc");
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mText, TextOf(theString.Mid(theCase.mPos, theCase.mLength))) << theCase.mWhy;
  }
}

TEST(qvCStringDerive, MidOfNothingIsTheSharedEmptyText) {
  EXPECT_TRUE(IsSharedEmptyText(qvCString("abc").Mid(1, 0)));
  EXPECT_TRUE(IsSharedEmptyText(qvCString("abc").Mid(5, 3)));
  EXPECT_TRUE(IsSharedEmptyText(qvCString().Mid(0, kNpos)));
}

TEST(qvCStringDerive, LeftAndRightTakeTheEnds) {
  const qvCString theString("abc");
  EXPECT_EQ("ab", TextOf(theString.Left(2)));
  EXPECT_EQ("bc", TextOf(theString.Right(2)));
  EXPECT_EQ("", TextOf(theString.Left(0)));
  EXPECT_EQ("", TextOf(theString.Right(0)));
}

TEST(qvCStringDerive, LeftAndRightBeyondTheLengthGiveTheWholeString) {
  const qvCString theString("abc");
  EXPECT_EQ("abc", TextOf(theString.Left(3)));
  EXPECT_EQ("abc", TextOf(theString.Right(3)));
  EXPECT_EQ("abc", TextOf(theString.Left(4)));
  EXPECT_EQ("abc", TextOf(theString.Right(4)));
  EXPECT_EQ("abc", TextOf(theString.Left(kNpos)));
  EXPECT_EQ("abc", TextOf(theString.Right(kNpos)));
}

TEST(qvCStringDerive, TheWholeStringIsSharedNotCopied) {
  const qvCString theString("abc");
  const qvCString theWhole(theString.BeforeFirst('/'));
  EXPECT_EQ(theString.mCStringData, theWhole.mCStringData);
}

TEST(qvCStringDerive, UpperAndLowerChangeAsciiLetters) {
  const qvCString theString = StringOf(Bytes("aZ@[`{09\0zA\xE9"));
  EXPECT_EQ(Bytes("AZ@[`{09\0ZA\xE9"), TextOf(theString.Upper()));
  EXPECT_EQ(Bytes("az@[`{09\0za\xE9"), TextOf(theString.Lower()));
  EXPECT_EQ(Bytes("aZ@[`{09\0zA\xE9"), TextOf(theString));
  EXPECT_EQ("xyz", TextOf(qvCString("XYZ").Lower()));
  EXPECT_EQ("XYZ", TextOf(qvCString("xyz").Upper()));
  EXPECT_TRUE(IsSharedEmptyText(qvCString().Upper()));
  EXPECT_TRUE(IsSharedEmptyText(qvCString().Lower()));
}

TEST(qvCStringDerive, UpperAndLowerGiveATextOfTheirOwn) {
  const qvCString theString("ABC");
  EXPECT_NE(theString.mCStringData, theString.Upper().mCStringData);
  qvCString theLower(theString.Lower());
  theLower.SetCharAt('x', 0);
  EXPECT_EQ("ABC", TextOf(theString));
}

TEST(qvCStringDerive, TrimTo1SpaceMakesEveryRunOneBlank) {
  const struct {
    const char* mText;
    const char* mResult;
    const char* mWhy;
  } kCases[] = {
      {"  a \t b  ", " a b ", "runs at both ends stay as one blank"},
      {"a b", "a b", "nothing to change"},
      {"a\tb", "a b", "a single tab becomes a blank"},
      {"\t\n\v\f\r ", " ", "nothing but white space"},
      {"", "", "nothing"},
      {"a\xA0\xA0"
       "b",
       "a\xA0\xA0"
       "b",
       "no byte above 0x7F is white space"},
  };
  for (const auto& theCase : kCases) {
    const qvCString theString(theCase.mText);
    EXPECT_EQ(theCase.mResult, TextOf(theString.TrimTo1Space())) << theCase.mWhy;
    EXPECT_EQ(theCase.mText, TextOf(theString)) << theCase.mWhy;
  }
}

TEST(qvCStringDerive, TrimTo1SpaceKeepsZeroBytes) {
  EXPECT_EQ(Bytes("a \0 b"), TextOf(StringOf(Bytes("a  \0  b")).TrimTo1Space()));
}

TEST(qvCStringDerive, PlusJoinsTwoTexts) {
  const qvCString theLeft("ab");
  const qvCString theRight("cd");
  EXPECT_EQ("abcd", TextOf(theLeft + theRight));
  EXPECT_EQ("abx", TextOf(theLeft + 'x'));
  EXPECT_EQ("xab", TextOf('x' + theLeft));
  EXPECT_EQ("abxyz", TextOf(theLeft + "xyz"));
  EXPECT_EQ("xyzab", TextOf("xyz" + theLeft));
  EXPECT_EQ("ab", TextOf(theLeft));
}

TEST(qvCStringDerive, PlusGivesAnAllocatedSpecialText) {
  const qvCString theJoined = qvCString("ab") + "cd";
  EXPECT_EQ(kqvCStringData_AllocatedText, theJoined.mCStringData->mAllocatedLength);
  EXPECT_EQ(2, theJoined.mCStringData->mRefCount);
  EXPECT_EQ(4u, theJoined.length());
}

TEST(qvCStringDerive, PlusAllocatesTheJoinedLengthAndATerminatorOnly) {
  // A block of this size has pages of its own and, with the allocator's words, fills them to the last byte.
  mallopt(M_MMAP_THRESHOLD, 4096);
  const size_t kBlockSize = 49 * 4096 - 24;
  const qvCString theJoined = StringOf(std::string(kBlockSize - 2, 'a')) + 'b';
  EXPECT_LE(kBlockSize, malloc_usable_size(theJoined.mStringPtr));
  EXPECT_GT(49u * 4096u, malloc_usable_size(theJoined.mStringPtr)) << "a page more";
}

TEST(qvCStringDerive, PlusOfNothingIsTheSharedEmptyText) {
  EXPECT_TRUE(IsSharedEmptyText(qvCString() + qvCString()));
  EXPECT_TRUE(IsSharedEmptyText(qvCString() + ""));
  EXPECT_TRUE(IsSharedEmptyText(kNull + qvCString()));
}

TEST(qvCStringDerive, PlusTakesNullAsEmpty) {
  EXPECT_EQ("ab", TextOf(qvCString("ab") + kNull));
  EXPECT_EQ("ab", TextOf(kNull + qvCString("ab")));
}

TEST(qvCStringDerive, AJoinedTextEndsAtItsFirstZeroByte) {
  EXPECT_EQ("a", TextOf(StringOf(Bytes("a\0b")) + "c"));
  EXPECT_EQ("a", TextOf(qvCString("a") + '\0'));
}

TEST(qvCStringDerive, AJoinedTextIsCopiedOnItsFirstWrite) {
  qvCString theJoined = qvCString("ab") + "cd";
  const qvCString theCopy(theJoined);
  theJoined += "ef";
  EXPECT_EQ("abcdef", TextOf(theJoined));
  EXPECT_EQ("abcd", TextOf(theCopy));
  EXPECT_EQ(1, theJoined.mCStringData->mRefCount);
}
