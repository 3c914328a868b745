// Construction, assignment and access. Sharing and memory: CStringSharing_test.cpp.
#include "qv/CString.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <stddef.h>
#include <string.h>

#include <string>
#include <type_traits>

#include "qvraTools/qvMalloc.h"
#include "support/CStringText.h"
#include "support/ChildProcess.h"

static const char* const kNull = NULL;

TEST(qvCString, TheHeaderIsThreeWordsInTheirOrder) {
  EXPECT_EQ(0u, offsetof(qvCStringData, mRefCount));
  EXPECT_EQ(4u, offsetof(qvCStringData, mStringLength));
  EXPECT_EQ(8u, offsetof(qvCStringData, mAllocatedLength));
  EXPECT_EQ(12u, sizeof(qvCStringData));
  EXPECT_TRUE((std::is_same<int32, decltype(qvCStringData::mRefCount)>::value));
  EXPECT_TRUE((std::is_same<uint32, decltype(qvCStringData::mStringLength)>::value));
  EXPECT_TRUE((std::is_same<uint32, decltype(qvCStringData::mAllocatedLength)>::value));
}

TEST(qvCString, TheStringIsTwoPointersInTheirOrder) {
  EXPECT_EQ(0u, offsetof(qvCString, mStringPtr));
  EXPECT_EQ(sizeof(void*), offsetof(qvCString, mCStringData));
  EXPECT_EQ(2 * sizeof(void*), sizeof(qvCString));
}

TEST(qvCString, ConstantsHaveTheirValues) {
  EXPECT_EQ(static_cast<size_t>(-1), qvCString::npos);
  EXPECT_EQ(1, qvCString::kqvEmpty);
  EXPECT_EQ(2, qvCString::kqvKeep);
  EXPECT_EQ(4, qvCString::kqvKeepValid);
  EXPECT_EQ(8, qvCString::kqvKeepPrintable);
  EXPECT_EQ(0xFFFFFFFEu, kqvCStringData_StaticText);
  EXPECT_EQ(0xFFFFFFFFu, kqvCStringData_AllocatedText);
}

TEST(qvCString, TheSharedEmptyTextIsAHeaderAndATerminator) {
  const qvCStringData* theData = qvCStringData::OfEmptyText();
  EXPECT_EQ(-1, theData->mRefCount);
  EXPECT_EQ(0u, theData->mStringLength);
  EXPECT_EQ(0u, theData->mAllocatedLength);
  EXPECT_EQ(reinterpret_cast<const char*>(theData) + 12, qvEmptyCString);
  EXPECT_EQ('\0', *qvEmptyCString);
}

TEST(qvCString, ANewStringIsTheSharedEmptyText) {
  const qvCString theString;
  EXPECT_TRUE(IsSharedEmptyText(theString));
  EXPECT_EQ("", TextOf(theString));
}

TEST(qvCString, CopiesATextUpToItsTerminator) {
  char theText[] = "abc\0def";
  const qvCString theString(theText);
  theText[0] = 'x';
  EXPECT_EQ("abc", TextOf(theString));
}

TEST(qvCString, OrdinaryCharactersStandRightBehindTheHeader) {
  const qvCString theString("abc");
  EXPECT_EQ(reinterpret_cast<char*>(theString.mCStringData) + 12, theString.mStringPtr);
  EXPECT_EQ(1, theString.mCStringData->mRefCount);
  EXPECT_EQ(3u, theString.mCStringData->mStringLength);
}

TEST(qvCString, AnEmptySourceGivesTheSharedEmptyText) {
  EXPECT_TRUE(IsSharedEmptyText(qvCString("")));
  EXPECT_TRUE(IsSharedEmptyText(qvCString(kNull)));
  EXPECT_TRUE(IsSharedEmptyText(qvCString("abc", 0)));
  EXPECT_TRUE(IsSharedEmptyText(qvCString(kNull, 0)));
  EXPECT_TRUE(IsSharedEmptyText(qvCString("abc", 1, 0)));
  EXPECT_TRUE(IsSharedEmptyText(qvCString("abc", 3, qvCString::npos)));
}

TEST(qvCString, ANullTextIsEmptyWhateverTheLength) {
  EXPECT_TRUE(IsSharedEmptyText(qvCString(kNull, 5)));
  EXPECT_TRUE(IsSharedEmptyText(qvCString(kNull, 1, 5)));
}

TEST(qvCString, CopiesTheFirstBytesZeroBytesIncluded) {
  EXPECT_EQ("ab", TextOf(qvCString("abc", 2)));
  EXPECT_EQ(Bytes("a\0b\0"), TextOf(qvCString("a\0b\0c", 4)));
}

TEST(qvCString, CopiesBytesFromAPosition) {
  EXPECT_EQ("cd", TextOf(qvCString("abcdef", 2, 2)));
  EXPECT_EQ(Bytes("b\0c"), TextOf(qvCString("ab\0cd", 1, 3)));
}

TEST(qvCString, WithNposCopiesFromThePositionToTheEnd) {
  EXPECT_EQ("cdef", TextOf(qvCString("abcdef", 2, qvCString::npos)));
  EXPECT_EQ("abcdef", TextOf(qvCString("abcdef", 0, qvCString::npos)));
}

TEST(qvCString, APositionBehindTheEndFailsAnAssertion) {
  EXPECT_QV_ASSERTION(qvCString("abc", 4, qvCString::npos), "aPos <= strlen(aStr)", "CString");
}

TEST(qvCString, APositionInNullFailsAnAssertion) {
  EXPECT_QV_ASSERTION(qvCString(kNull, 0, qvCString::npos), "aStr != NULL", "CString");
}

TEST(qvCString, ALengthThatNoBlockHoldsFailsAnAssertion) {
  const char* const kText =
      "aLength < (kqvuint32_max / sizeof(char)) - (sizeof(qvCStringData) + qvxString_Extra(aLength) + 1)";
  EXPECT_QV_ASSERTION(qvCString("abc", qvCString::npos), kText, "CString");
  EXPECT_QV_ASSERTION(qvCString("abc", 0xFFFFFFF0u), kText, "CString");
  // The first length refused: with its 19 spare bytes, 12 for the header and 1 for the terminator.
  EXPECT_QV_ASSERTION(qvCString("abc", 0xFFFFFFE0u), kText, "CString");
}

TEST(qvCString, IsMadeFromOneCharacter) {
  EXPECT_EQ("x", TextOf(qvCString('x')));
  EXPECT_EQ("\xE9", TextOf(qvCString('\xE9')));
  EXPECT_EQ(Bytes("\0"), TextOf(qvCString('\0')));
}

TEST(qvCString, IsMadeFromTheDecimalTextOfAnInt) {
  EXPECT_EQ("0", TextOf(qvCString(0)));
  EXPECT_EQ("65", TextOf(qvCString(65)));
  EXPECT_EQ("2147483647", TextOf(qvCString(INT_MAX)));
  EXPECT_EQ("-2147483648", TextOf(qvCString(INT_MIN)));
}

TEST(qvCString, IsMadeFromTheDecimalTextOfALong) {
  EXPECT_EQ("-7", TextOf(qvCString(-7L)));
  EXPECT_EQ(sizeof(long) == 4 ? "2147483647" : "9223372036854775807", TextOf(qvCString(LONG_MAX)));
  EXPECT_EQ(sizeof(long) == 4 ? "-2147483648" : "-9223372036854775808", TextOf(qvCString(LONG_MIN)));
}

TEST(qvCString, CopiesTheTextOfACharBuffer) {
  const qvCharBuffer theBuffer("abc", true);
  const qvCString theString(theBuffer);
  EXPECT_EQ("abc", TextOf(theString));
  EXPECT_STREQ("abc", theBuffer.c_str());
  EXPECT_NE(theBuffer.c_str(), theString.c_str());
}

TEST(qvCString, ANullCharBufferIsEmpty) {
  EXPECT_TRUE(IsSharedEmptyText(qvCString(qvCharBuffer(kNull, true))));
}

TEST(qvCString, AssignsAText) {
  qvCString theString("old");
  theString = "a new and longer text";
  EXPECT_EQ("a new and longer text", TextOf(theString));
  theString = "short";
  EXPECT_EQ("short", TextOf(theString));
}

TEST(qvCString, AssigningAnEmptyOrNullTextGivesTheSharedEmptyText) {
  qvCString theString("old");
  theString = "";
  EXPECT_TRUE(IsSharedEmptyText(theString));
  theString = "old";
  theString = kNull;
  EXPECT_TRUE(IsSharedEmptyText(theString));
}

TEST(qvCString, AssigningAPartOfItsOwnTextKeepsThatPart) {
  qvCString theOwned("abcdef");
  theOwned = theOwned.c_str() + 2;
  EXPECT_EQ("cdef", TextOf(theOwned));

  qvCString theShared("abcdef");
  const qvCString theCopy(theShared);
  theShared = theShared.c_str() + 2;
  EXPECT_EQ("cdef", TextOf(theShared));
  EXPECT_EQ("abcdef", TextOf(theCopy));

  qvCString theWrapped(qvCString::FromAllocatedString(qvStrdup("abcdef")));
  theWrapped = theWrapped.c_str() + 2;
  EXPECT_EQ("cdef", TextOf(theWrapped));
}

TEST(qvCString, AssigningACharacterGivesExactlyThatCharacter) {
  qvCString theString("abc");
  theString = 'x';
  EXPECT_EQ("x", TextOf(theString));
}

TEST(qvCStringKept, AssigningTheNulCharacterGivesLengthOne) {
  qvCString theString("abc");
  theString = '\0';
  EXPECT_EQ(1u, theString.length());
  EXPECT_EQ(Bytes("\0"), TextOf(theString));
  EXPECT_FALSE(theString.IsEmpty());
  theString = '\1';
  EXPECT_EQ("\1", TextOf(theString));
  theString = "";
  EXPECT_EQ(0u, theString.length());
}

TEST(qvCString, SwapExchangesBothFields) {
  qvCString theLeft("left");
  qvCString theRight;
  char* theLeftPtr = theLeft.mStringPtr;
  qvCStringData* theLeftData = theLeft.mCStringData;
  theLeft.Swap(theRight);
  EXPECT_TRUE(IsSharedEmptyText(theLeft));
  EXPECT_EQ(theLeftPtr, theRight.mStringPtr);
  EXPECT_EQ(theLeftData, theRight.mCStringData);
}

TEST(qvCString, SwappingAStringWithItselfChangesNothing) {
  qvCString theString("abc");
  theString.Swap(theString);
  EXPECT_EQ("abc", TextOf(theString));
}

TEST(qvCString, GivesItsCharactersAndItsLength) {
  const qvCString theString("abc");
  const char* theCharacters = theString;
  EXPECT_EQ(theString.mStringPtr, theString.c_str());
  EXPECT_EQ(theString.mStringPtr, theCharacters);
  EXPECT_EQ(3u, theString.length());
}

TEST(qvCString, IsEmptyForLengthZeroOnly) {
  EXPECT_TRUE(qvCString().IsEmpty());
  EXPECT_FALSE(qvCString("a").IsEmpty());
  qvCString theOwnBlock("abc");
  theOwnBlock.GetWriteBuf(3);
  theOwnBlock.UngetWriteBuf(0);
  EXPECT_TRUE(theOwnBlock.IsEmpty());
  EXPECT_FALSE(theOwnBlock.mCStringData->IsEmpty());
}

TEST(qvCString, GivesItsFirstAndItsLastCharacter) {
  EXPECT_EQ('a', qvCString("abc").First());
  EXPECT_EQ('c', qvCString("abc").Last());
  EXPECT_EQ('\xE9', qvCString("\xE9").First());
  EXPECT_EQ('\xE9', qvCString("\xE9").Last());
}

TEST(qvCString, TheFirstAndTheLastCharacterOfNothingIsNul) {
  EXPECT_EQ('\0', qvCString().First());
  EXPECT_EQ('\0', qvCString().Last());
}

TEST(qvCString, SetCharAtStoresACharacter) {
  qvCString theString("abc");
  EXPECT_TRUE(theString.SetCharAt('x', 0));
  EXPECT_TRUE(theString.SetCharAt('\0', 1));
  EXPECT_TRUE(theString.SetCharAt('z', 2));
  EXPECT_EQ(Bytes("x\0z"), TextOf(theString));
}

TEST(qvCString, SetCharAtRefusesWhatIsNotBelowTheLength) {
  qvCString theString("abc");
  EXPECT_FALSE(theString.SetCharAt('x', 3));
  EXPECT_FALSE(theString.SetCharAt('x', -1));
  EXPECT_FALSE(theString.SetCharAt('x', INT_MIN));
  EXPECT_FALSE(theString.SetCharAt('x', INT_MAX));
  EXPECT_EQ("abc", TextOf(theString));
  qvCString theEmpty;
  EXPECT_FALSE(theEmpty.SetCharAt('x', 0));
  EXPECT_TRUE(IsSharedEmptyText(theEmpty));
}

TEST(qvCStringKept, SetCharAtIsSeenByEveryCopy) {
  qvCString theString("abc");
  const qvCString theCopy(theString);
  EXPECT_TRUE(theString.SetCharAt('x', 1));
  EXPECT_EQ("axc", TextOf(theString));
  EXPECT_EQ("axc", TextOf(theCopy));
  EXPECT_EQ(theCopy.mCStringData, theString.mCStringData);
  // The neighbours: every other change leaves the copies alone.
  theString += 'd';
  EXPECT_EQ("axcd", TextOf(theString));
  EXPECT_EQ("axc", TextOf(theCopy));
  EXPECT_TRUE(theString.SetCharAt('y', 1));
  EXPECT_EQ("axc", TextOf(theCopy));
}

TEST(qvCStringKept, SetCharAtIsSeenByEveryCopyOfAnAllocatedText) {
  qvCString theString(qvCString::FromAllocatedString(qvStrdup("abc")));
  const qvCString theCopy(theString);
  EXPECT_TRUE(theString.SetCharAt('x', 0));
  EXPECT_EQ("xbc", TextOf(theCopy));
  EXPECT_EQ(kqvCStringData_AllocatedText, theString.mCStringData->mAllocatedLength);
}

TEST(qvCString, SetCharAtNeverWritesStaticCharacters) {
  static const char kStatic[] = "abc";
  qvCString theString(qvCString::FromStaticString(kStatic));
  const qvCString theCopy(theString);
  EXPECT_TRUE(theString.SetCharAt('x', 0));
  EXPECT_EQ("xbc", TextOf(theString));
  EXPECT_EQ("abc", TextOf(theCopy));
  EXPECT_STREQ("abc", kStatic);
}

TEST(qvCString, SetCharAtBehindTheEndOfStaticCharactersLeavesThemWrapped) {
  qvCString theString(qvCString::FromStaticString("abc"));
  EXPECT_FALSE(theString.SetCharAt('x', 3));
  EXPECT_EQ(kqvCStringData_StaticText, theString.mCStringData->mAllocatedLength);
}

TEST(qvCString, AppendsStringsTextsAndCharacters) {
  qvCString theString;
  theString += "abc";
  theString += qvCString("def");
  theString += 'g';
  EXPECT_EQ("abcdefg", TextOf(theString));
}

TEST(qvCString, AppendsZeroBytesOfStringsAndCharacters) {
  qvCString theString("a");
  theString += '\0';
  theString += StringOf(Bytes("\0b"));
  EXPECT_EQ(Bytes("a\0\0b"), TextOf(theString));
}

TEST(qvCString, AppendingNothingLeavesTheTextShared) {
  qvCString theString("abc");
  const qvCString theCopy(theString);
  theString += "";
  theString += kNull;
  theString += qvCString();
  EXPECT_EQ(theCopy.mCStringData, theString.mCStringData);
  EXPECT_EQ("abc", TextOf(theString));
}

TEST(qvCString, AStringCanBeAppendedToItself) {
  qvCString theString("0123456789");
  for (int i = 0; i < 3; ++i) {
    theString += theString;
  }
  EXPECT_EQ("01234567890123456789012345678901234567890123456789012345678901234567890123456789",
            TextOf(theString));
}

TEST(qvCString, APartOfItselfCanBeAppendedWhenTheBlockHasToGrow) {
  qvCString theString("0123456789abcdefghijklmno");
  theString += theString.c_str() + 10;
  EXPECT_EQ("0123456789abcdefghijklmnoabcdefghijklmno", TextOf(theString));
}

TEST(qvCString, APartOfItselfCanBeAppendedWhereThereIsRoom) {
  qvCString theString("0123456789");
  theString += theString.c_str() + 4;
  EXPECT_EQ("0123456789456789", TextOf(theString));
}

TEST(qvCString, AWrappedTextCanBeAppendedToItself) {
  qvCString theString(qvCString::FromAllocatedString(qvStrdup("abc")));
  theString += theString.c_str() + 1;
  EXPECT_EQ("abcbc", TextOf(theString));
  qvCString theOther(qvCString::FromAllocatedString(qvStrdup("abc")));
  theOther += theOther;
  EXPECT_EQ("abcabc", TextOf(theOther));
}

TEST(qvCString, HoldsAMegabyteThatGrowsByteByByte) {
  // The last bytes are enough: each may move the whole text, which the address sanitizer makes slow.
  const int kStart = 1048576 - 32768;
  std::string theText;
  for (int i = 0; i < kStart; ++i) {
    theText += static_cast<char>('a' + i % 26);
  }
  qvCString theString(theText.c_str());
  for (int i = kStart; i < 1048576; ++i) {
    theString += static_cast<char>('a' + i % 26);
  }
  EXPECT_EQ(1048576u, theString.length());
  EXPECT_EQ('a', theString.First());
  EXPECT_EQ('v', theString.Last());
}
