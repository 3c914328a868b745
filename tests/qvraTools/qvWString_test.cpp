#include "qvraTools/qvWString.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <signal.h>
#include <stdint.h>
#include <string.h>

#include <algorithm>
#include <cwchar>
#include <string>

#include "qvraTools/qvMalloc.h"
#include "support/Bytes.h"
#include "support/ChildProcess.h"
#include "support/FatalLine.h"

// The sanitizers' allocators end the process themselves unless they are told to return null.
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
extern "C" const char* __tsan_default_options() { return "allocator_may_return_null=1"; }

// A text that the next allocation makes invalid: a conversion measures it, allocates, and converts it.
static char* sChangingText = nullptr;

static const char* InvalidFromTheNextAllocationOn(char* aText) {
  sChangingText = aText;
  return aText;
}

static void Change() {
  if (sChangingText != nullptr) {
    *sChangingText = '\x80';
  }
}

// These stand before the library's own.
extern "C" void* __real_qvMalloc(size_t aSize);
extern "C" void* __real_qvRealloc(void* aBlock, size_t aSize);

extern "C" void* __wrap_qvMalloc(size_t aSize) {
  Change();
  return __real_qvMalloc(aSize);
}

// Whether a block that changes its size moves, and leaves nothing of its bytes behind.
static bool sfAlwaysMoves = false;

extern "C" void* __wrap_qvRealloc(void* aBlock, size_t aSize) {
  Change();
  if (!sfAlwaysMoves || aBlock == nullptr) {
    return __real_qvRealloc(aBlock, aSize);
  }
  const size_t theOldSize = malloc_usable_size(aBlock);
  void* theBlock = __real_qvMalloc(aSize);
  memcpy(theBlock, aBlock, std::min(theOldSize, aSize));
  memset(aBlock, 0xAA, theOldSize);
  qvFree(aBlock);
  return theBlock;
}

namespace {

size_t CapacityOf(const wchar_t* aString) { return reinterpret_cast<const size_t*>(aString)[-2]; }
size_t LengthWordOf(const wchar_t* aString) { return reinterpret_cast<const size_t*>(aString)[-1]; }

// A wide string that is released at the end of the test.
class StringTest {
 public:
  explicit StringTest(const wchar_t* aText) : mString(qvWString_New(aText)) {}
  ~StringTest() { qvWString_Free(mString); }
  StringTest(const StringTest&) = delete;
  StringTest& operator=(const StringTest&) = delete;
  operator wchar_t*() const { return mString; }

  void Append(const wchar_t* aText) { mString = qvWString_Append(mString, aText); }
  void Prepend(const wchar_t* aText) { mString = qvWString_Prepend(mString, aText); }
  void Alloc(size_t aCapacity) { mString = qvWString_Alloc(mString, aCapacity); }

 private:
  wchar_t* mString;
};

void ExpectString(const wchar_t* aText, size_t aCapacity, const wchar_t* aString) {
  EXPECT_STREQ(aText, aString);
  EXPECT_EQ(wcslen(aText), LengthWordOf(aString));
  EXPECT_EQ(aCapacity, CapacityOf(aString));
}

}  // namespace

TEST(qvWStringNew, CapacityAndLengthStandInFrontOfTheCharacters) {
  StringTest theString(L"abc");
  ExpectString(L"abc", 3, theString);
}

TEST(qvWStringNew, EmptyTextHasNoCapacity) {
  StringTest theString(L"");
  ExpectString(L"", 0, theString);
}

TEST(qvWStringNew, LengthMacroReadsAndWritesTheLengthWord) {
  StringTest theString(L"abc");
  EXPECT_EQ(3u, qvWString_LEN(static_cast<const wchar_t*>(theString)));
  qvWString_LEN(static_cast<wchar_t*>(theString)) = 2;
  EXPECT_EQ(2u, LengthWordOf(theString));
  EXPECT_EQ(2u, qvWString_Length(theString));
}

TEST(qvWStringNew, UTF8IsConverted) {
  wchar_t* theString = qvWString_NewFromUTF8("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
  const wchar_t kExpected[] = {L'a', 0xE9, 0x20AC, 0x1F600, 0};
  ExpectString(kExpected, 4, theString);
  qvWString_Free(theString);
}

TEST(qvWStringNew, EmptyUTF8IsAnEmptyString) {
  wchar_t* theString = qvWString_NewFromUTF8("");
  ExpectString(L"", 0, theString);
  qvWString_Free(theString);
}

TEST(qvWStringNew, NullOrInvalidUTF8GivesNull) {
  EXPECT_EQ(nullptr, qvWString_NewFromUTF8(nullptr));
  EXPECT_EQ(nullptr, qvWString_NewFromUTF8("\x80"));
  EXPECT_EQ(nullptr, qvWString_NewFromUTF8("abc\xC3"));
}

TEST(qvWStringNew, UTF8ThatBecomesInvalidBeforeTheSecondPassAsserts) {
  char theText[] = "abc";
  EXPECT_QV_ASSERTION(qvWString_NewFromUTF8(InvalidFromTheNextAllocationOn(theText)),
                      "theConvertedLength != (size_t) -1", "qvWString");
}

TEST(qvWStringAlloc, NullMakesANewEmptyString) {
  wchar_t* theString = qvWString_Alloc(nullptr, 5);
  ExpectString(L"", 5, theString);
  wmemcpy(theString, L"abcde", 6);  // the terminator has its place beyond the capacity
  qvWString_Free(theString);
}

TEST(qvWStringAlloc, BlockHoldsTwoWordsTheCharactersAndATerminator) {
  StringTest theString(L"");
  theString.Alloc(1000);
  void* theBlock = reinterpret_cast<size_t*>(static_cast<wchar_t*>(theString)) - 2;
  EXPECT_LE(2 * sizeof(size_t) + 4004, malloc_usable_size(theBlock));
  EXPECT_GT(2 * sizeof(size_t) + 4004 + 32, malloc_usable_size(theBlock))
      << "but for what the allocator rounds up";
}

TEST(qvWStringAlloc, GrowingKeepsTextAndLength) {
  StringTest theString(L"abc");
  theString.Alloc(1000);
  ExpectString(L"abc", 1000, theString);
}

TEST(qvWStringAlloc, LengthWordIsLeftToTheCaller) {
  StringTest theString(L"abc");
  theString.Alloc(1);
  EXPECT_EQ(1u, CapacityOf(theString));
  EXPECT_EQ(3u, LengthWordOf(theString));
}

TEST(qvWStringAlloc, CapacityWhoseSizeNoWordHoldsEndsTheProcess) {
  const struct {
    size_t mCapacity;
    const char* mWhy;
  } kCases[] = {
      {SIZE_MAX, "one more for the terminator would be 0"},
      {SIZE_MAX / sizeof(wchar_t), "the characters would take 0 bytes"},
      {(SIZE_MAX - 2 * sizeof(size_t)) / sizeof(wchar_t), "with the two words it would be 0 bytes"},
  };
  const std::string theExpected = sizeof(size_t) == 8
                                      ? "qvFatalError: memory:realloc, size=18446744073709551615"
                                      : "qvFatalError: memory:realloc, size=4294967295";
  for (const auto& theCase : kCases) {
    ChildResult theResult = RunInChild([&] { qvWString_Alloc(nullptr, theCase.mCapacity); });
    EXPECT_EQ(SIGABRT, theResult.mSignal) << theCase.mWhy;
    EXPECT_EQ(theExpected, FatalLine(theResult.mStderr)) << theCase.mWhy;
  }
}

TEST(qvWStringFree, NullIsIgnored) { qvWString_Free(nullptr); }

TEST(qvWStringTruncate, CutsAndTerminatesAndKeepsTheCapacity) {
  StringTest theString(L"abcdef");
  qvWString_Truncate(theString, 2);
  ExpectString(L"ab", 6, theString);
}

TEST(qvWStringTruncate, OwnLengthChangesNothing) {
  StringTest theString(L"abc");
  qvWString_Truncate(theString, 3);
  ExpectString(L"abc", 3, theString);
}

TEST(qvWStringTruncate, LengthAboveTheStringsAsserts) {
  StringTest theString(L"abc");
  EXPECT_QV_ASSERTION(qvWString_Truncate(theString, 4), "aLength <= qvWString_LEN(aString)", "qvWString");
}

TEST(qvWStringTruncate, CapacityDoesNotCountAsLength) {
  StringTest theString(L"abc");
  qvWString_Truncate(theString, 1);
  EXPECT_QV_ASSERTION(qvWString_Truncate(theString, 2), "aLength <= qvWString_LEN(aString)", "qvWString");
}

TEST(qvWStringAppend, GrowsToExactlyTheNewLength) {
  StringTest theString(L"abc");
  theString.Append(L"de");
  ExpectString(L"abcde", 5, theString);
}

TEST(qvWStringAppend, UsesTheCapacityThatIsThere) {
  StringTest theString(L"abcdef");
  qvWString_Truncate(theString, 3);
  const wchar_t* theOldPlace = theString;
  theString.Append(L"xyz");
  EXPECT_EQ(theOldPlace, static_cast<wchar_t*>(theString));
  ExpectString(L"abcxyz", 6, theString);
}

TEST(qvWStringAppend, CapacityBeyondTheNewLengthStays) {
  StringTest theString(L"abcdef");
  qvWString_Truncate(theString, 3);
  theString.Append(L"x");
  ExpectString(L"abcx", 6, theString);
}

TEST(qvWStringAppend, OneCharacterBeyondTheCapacityGrows) {
  StringTest theString(L"abcdef");
  qvWString_Truncate(theString, 3);
  theString.Append(L"wxyz");
  ExpectString(L"abcwxyz", 7, theString);
}

TEST(qvWStringAppend, EmptyTextChangesNothing) {
  StringTest theString(L"abc");
  const wchar_t* theOldPlace = theString;
  theString.Append(L"");
  EXPECT_EQ(theOldPlace, static_cast<wchar_t*>(theString));
  ExpectString(L"abc", 3, theString);
}

TEST(qvWStringAppend, EmptyStringTakesTheText) {
  StringTest theString(L"");
  theString.Append(L"abc");
  ExpectString(L"abc", 3, theString);
}

TEST(qvWStringAppend, StringItselfOrItsEndMayBeTheText) {
  sfAlwaysMoves = true;
  StringTest theString(L"abc");
  theString.Append(theString);
  ExpectString(L"abcabc", 6, theString);
  theString.Append(theString + 5);
  ExpectString(L"abcabcc", 7, theString);
  qvWString_Truncate(theString, 3);
  theString.Append(theString + 1);
  ExpectString(L"abcbc", 7, theString);
  sfAlwaysMoves = false;
}

TEST(qvWStringPrepend, MakesANewStringOfBothTexts) {
  StringTest theString(L"abc");
  theString.Prepend(L"xy");
  ExpectString(L"xyabc", 5, theString);
}

TEST(qvWStringPrepend, CapacityIsTheLengthHoweverMuchThereWas) {
  StringTest theString(L"abcdef");
  qvWString_Truncate(theString, 1);
  theString.Prepend(L"xy");
  ExpectString(L"xya", 3, theString);
}

TEST(qvWStringPrepend, EmptyTextGivesTheSameString) {
  StringTest theString(L"abc");
  const wchar_t* theOldPlace = theString;
  theString.Prepend(L"");
  EXPECT_EQ(theOldPlace, static_cast<wchar_t*>(theString));
  ExpectString(L"abc", 3, theString);
}

TEST(qvWStringPrepend, StringItselfMayBeTheText) {
  StringTest theString(L"abc");
  theString.Prepend(theString);
  ExpectString(L"abcabc", 6, theString);
}

TEST(qvWStringIsEmpty, StringMadeOfAnEmptyTextIsEmpty) {
  StringTest theString(L"");
  EXPECT_EQ(1, qvWString_IsEmpty(theString));
}

TEST(qvWStringKept, IsEmptyLooksAtTheCapacity) {
  StringTest theString(L"abc");
  EXPECT_EQ(0, qvWString_IsEmpty(theString));
  qvWString_Truncate(theString, 0);
  EXPECT_EQ(0, qvWString_IsEmpty(theString));  // the kept one
  theString.Alloc(0);
  EXPECT_EQ(1, qvWString_IsEmpty(theString));
  qvWString_LEN(static_cast<wchar_t*>(theString)) = 3;
  EXPECT_EQ(1, qvWString_IsEmpty(theString));  // nor does a length make it anything but empty
}

TEST(qvWStringCompare, OrdersByTheFirstDifference) {
  EXPECT_EQ(0, qvWString_Compare(L"abc", L"abc"));
  EXPECT_LT(qvWString_Compare(L"abc", L"abd"), 0);
  EXPECT_GT(qvWString_Compare(L"abd", L"abc"), 0);
  EXPECT_LT(qvWString_Compare(L"ab", L"abc"), 0);
  EXPECT_LT(qvWString_Compare(L"B", L"a"), 0);
  EXPECT_LT(qvWString_Compare(L"\xE9", L"\x20AC"), 0);
  EXPECT_EQ(0, qvWString_Compare(L"", L""));
}

TEST(qvWStringCompare, CompareNLooksAtTheFirstCharactersOnly) {
  EXPECT_EQ(0, qvWString_CompareN(L"abc", L"abd", 2));
  EXPECT_LT(qvWString_CompareN(L"abc", L"abd", 3), 0);
  EXPECT_EQ(0, qvWString_CompareN(L"abc", L"xyz", 0));
  EXPECT_EQ(0, qvWString_CompareN(L"abc", L"abc", 100));
  EXPECT_GT(qvWString_CompareN(L"abc", L"ab", 3), 0);
}

TEST(qvWStringBeforeFirstIs, TextHasToStandRightBeforeAnOccurrence) {
  const struct {
    const wchar_t* mString;
    wchar_t mChar;
    const wchar_t* mText;
    int mExpected;
    const char* mWhy;
  } kCases[] = {
      {L"http://x", L':', L"http", 1, "everything before it"},
      {L"xhttp://x", L':', L"http", 1, "the end of what is before it"},
      {L"https://x", L':', L"http", 0, "something in between"},
      {L"http", L':', L"http", 0, "no occurrence"},
      {L":http", L':', L"http", 0, "the text stands behind it"},
      {L"a:http:x", L':', L"http", 1, "the second occurrence"},
      {L"p:xp:ttp:http:", L':', L"http", 1, "the fourth occurrence"},
      {L"p:", L':', L"http", 0, "closer to the start than the text is long"},
      {L"::", L':', L":", 1, "the text may hold the character"},
      {L":", L':', L":", 0, "but not be the occurrence itself"},
      {L":", L':', L"", 1, "an empty text stands before every occurrence"},
      {L"a", L':', L"", 0, "but there has to be one"},
      {L"", L':', L"", 0, "nothing at all"},
      {L"abc", L'\0', L"abc", 0, "the terminator is no occurrence"},
      {L"HTTP:", L':', L"http", 0, "the case counts"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mExpected, qvWString_BeforeFirstIs(theCase.mString, theCase.mChar, theCase.mText))
        << theCase.mWhy;
  }
}

TEST(qvWStringGet, UTF8HoldsEveryCharacter) {
  StringTest theString(L"a\xE9\x20AC");
  EXPECT_EQ("a\xC3\xA9\xE2\x82\xAC", TakeText(qvWString_GetUTF8(theString)));
  EXPECT_EQ("", TakeText(qvWString_GetUTF8(L"")));
}

TEST(qvWStringGet, ASCIIHoldsADotForWhatIsNoByte) {
  StringTest theString(L"\x20AC");
  EXPECT_EQ(".", TakeText(qvWString_GetASCII(theString)));
  EXPECT_EQ("", TakeText(qvWString_GetASCII(L"")));
}

TEST(qvWStringGet, ASCIIKeepsValuesUpTo255) {
  const wchar_t kText[] = {L'a', 0x7F, 0x80, 0xFF, 0x100, static_cast<wchar_t>(0x80000041u), 0};
  EXPECT_EQ("a\x7F\x80\xFF..", TakeText(qvWString_GetASCII(kText)));
}

TEST(qvWStringPlain, WideTextBecomesUTF8) {
  EXPECT_EQ("a\xE2\x82\xAC", TakeText(qvWString_S_ToUTF8(L"a\x20AC")));
  EXPECT_EQ("", TakeText(qvWString_S_ToUTF8(L"")));
}

TEST(qvWStringPlain, UTF8BecomesWideTextWithoutAHeader) {
  wchar_t* theText = qvWString_S_FromUTF8("a\xE2\x82\xAC");
  EXPECT_STREQ(L"a\x20AC", theText);
  qvFree(theText);  // it is the start of its block
  theText = qvWString_S_FromUTF8("");
  EXPECT_STREQ(L"", theText);
  qvFree(theText);
}

TEST(qvWStringPlain, NullOrInvalidUTF8GivesNull) {
  EXPECT_EQ(nullptr, qvWString_S_FromUTF8(nullptr));
  EXPECT_EQ(nullptr, qvWString_S_FromUTF8("\x80"));
  EXPECT_EQ(nullptr, qvWString_S_FromUTF8("ab\xE2\x82"));
}

TEST(qvWStringPlain, UTF8ThatBecomesInvalidBeforeTheSecondPassAsserts) {
  char theText[] = "abc";
  EXPECT_QV_ASSERTION(qvWString_S_FromUTF8(InvalidFromTheNextAllocationOn(theText)),
                      "theConvertedLength != (size_t) -1", "qvWString");
}
