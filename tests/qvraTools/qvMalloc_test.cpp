#include "qvraTools/qvMalloc.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <unistd.h>
#include <wchar.h>

#include <functional>
#include <string>

#include "support/BuiltLocale.h"
#include "support/ChildProcess.h"
#include "support/FatalLine.h"

// The sanitizers' allocators end the process themselves unless they are told to return null.
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
extern "C" const char* __tsan_default_options() { return "allocator_may_return_null=1"; }

namespace {

bool gfStrdupFails = false;

// More than any allocator gives.
volatile size_t gHuge = SIZE_MAX / 2 + 1;
const char* const kHugeText = sizeof(size_t) == 8 ? "9223372036854775808" : "2147483648";

void ExpectFatalError(const std::function<void()>& aBody, const std::string& aLine) {
  ChildResult theResult = RunInChild(aBody);
  EXPECT_EQ(SIGABRT, theResult.mSignal);
  EXPECT_EQ(aLine, FatalLine(theResult.mStdout));
  EXPECT_EQ(aLine, FatalLine(theResult.mStderr));
}

// Takes over what a function has allocated and gives it back as a string; "(null)" for null.
std::string Taken(char* aText) {
  std::string theCopy = aText != nullptr ? aText : "(null)";
  qvFree(aText);
  return theCopy;
}

std::wstring TakenWide(wchar_t* aText) {
  std::wstring theCopy = aText != nullptr ? aText : L"(null)";
  qvFree(aText);
  return theCopy;
}

// Text whose last byte is the last one of a readable page and which has no terminator: whoever reads behind
// it crashes.
class TextAtTheEndOfAPage {
 public:
  explicit TextAtTheEndOfAPage(const std::string& aText) {
    mPageSize = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    mPages = mmap(nullptr, 2 * mPageSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    mText = static_cast<char*>(mPages) + mPageSize - aText.size();
    memcpy(mText, aText.data(), aText.size());
    mprotect(static_cast<char*>(mPages) + mPageSize, mPageSize, PROT_NONE);
  }
  ~TextAtTheEndOfAPage() { munmap(mPages, 2 * mPageSize); }
  const char* Text() const { return mText; }

 private:
  size_t mPageSize;
  void* mPages;
  char* mText;
};

}  // namespace

// Stands in for the system's function, so that it can be made to fail.
extern "C" char* strdup(const char* aText) noexcept {
  if (gfStrdupFails) {
    return nullptr;
  }
  size_t theSize = strlen(aText) + 1;
  return static_cast<char*>(memcpy(malloc(theSize), aText, theSize));
}

TEST(qvMalloc, GivesAWritableBlock) {
  char* theBlock = static_cast<char*>(qvMalloc(1000));
  ASSERT_NE(nullptr, theBlock);
  memset(theBlock, 0x7F, 1000);
  qvFree(theBlock);
}

TEST(qvMalloc, ZeroBytesDoNotEndTheProcess) { qvFree(qvMalloc(0)); }

TEST(qvMalloc, ExhaustedMemoryEndsTheProcessWithTheSize) {
  ExpectFatalError([] { qvMalloc(gHuge); }, std::string("qvFatalError: memory:malloc, size=") + kHugeText);
}

TEST(qvMalloc, ZeroedBlockHoldsOnlyZeros) {
  // A block of the same size that was not zero is likely to come back.
  void* theDirty = qvMalloc(500);
  memset(theDirty, 0xAA, 500);
  qvFree(theDirty);
  char* theBlock = static_cast<char*>(qvMallocZeroed(500));
  EXPECT_EQ(std::string(500, '\0'), std::string(theBlock, 500));
  qvFree(theBlock);
}

TEST(qvMalloc, ZeroedBlockOfZeroBytesDoesNotEndTheProcess) { qvFree(qvMallocZeroed(0)); }

TEST(qvMalloc, ExhaustedMemoryOfAZeroedBlockEndsTheProcessAsMalloc) {
  ExpectFatalError([] { qvMallocZeroed(gHuge); },
                   std::string("qvFatalError: memory:malloc, size=") + kHugeText);
}

TEST(qvMalloc, ReallocOfNullWithSizeZeroGivesNull) { EXPECT_EQ(nullptr, qvRealloc(nullptr, 0)); }

TEST(qvMalloc, ReallocOfNullGivesANewBlock) {
  char* theBlock = static_cast<char*>(qvRealloc(nullptr, 10));
  ASSERT_NE(nullptr, theBlock);
  memset(theBlock, 1, 10);
  qvFree(theBlock);
}

TEST(qvMalloc, ReallocToSizeZeroDoesNotEndTheProcess) {
  ChildResult theResult = RunInChild([] {
    // A null result is returned as it is; any other is a block that the caller frees.
    qvFree(qvRealloc(qvMalloc(10), 0));
  });
  EXPECT_EQ(0, theResult.mExitCode);
}

TEST(qvMalloc, ReallocKeepsTheContent) {
  char* theBlock = static_cast<char*>(qvMalloc(4));
  memcpy(theBlock, "abc", 4);
  theBlock = static_cast<char*>(qvRealloc(theBlock, 100000));
  EXPECT_STREQ("abc", theBlock);
  qvFree(theBlock);
}

TEST(qvMalloc, ExhaustedMemoryInReallocEndsTheProcessWithTheSize) {
  const std::string theLine = std::string("qvFatalError: memory:realloc, size=") + kHugeText;
  ExpectFatalError([] { qvRealloc(nullptr, gHuge); }, theLine);
  ExpectFatalError([] { qvRealloc(qvMalloc(10), gHuge); }, theLine);
}

TEST(qvMalloc, FreeOfNullIsHarmless) { qvFree(nullptr); }

TEST(qvMalloc, StrdupCopies) {
  const char theText[] = "abc \xC3\xA4\xFF";
  char* theCopy = qvStrdup(theText);
  EXPECT_NE(theText, theCopy);
  EXPECT_EQ("abc \xC3\xA4\xFF", Taken(theCopy));
  EXPECT_EQ("", Taken(qvStrdup("")));
}

TEST(qvMalloc, StrdupOfNullGivesNull) { EXPECT_EQ(nullptr, qvStrdup(nullptr)); }

TEST(qvMalloc, ExhaustedMemoryInStrdupEndsTheProcessWithTheLength) {
  gfStrdupFails = true;
  ExpectFatalError([] { qvStrdup("abcde"); }, "qvFatalError: memory:strdup, size=5");
  ExpectFatalError([] { qvStrdupToUpper("ab"); }, "qvFatalError: memory:strdup, size=2");
  gfStrdupFails = false;
}

TEST(qvMalloc, StrndupCopiesAtMostTheGivenLength) {
  const struct {
    const char* mText;
    size_t mMax;
    const char* mCopy;
    const char* mWhy;
  } kCases[] = {
      {"abc", 10, "abc", "shorter than the limit"},
      {"abcdef", 3, "abc", "longer than the limit"},
      {"abc", 3, "abc", "exactly the limit"},
      {"abc", 4, "abc", "the limit just takes the terminator in"},
      {"abc", 0, "", "nothing"},
      {"", 5, "", "empty text"},
      {"\xFF\x80", 1, "\xFF", "bytes above 0x7F"},
      {"abc", static_cast<size_t>(-1), "abc", "no limit"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mCopy, Taken(qvStrndup(theCase.mText, theCase.mMax))) << theCase.mWhy;
  }
}

TEST(qvMalloc, StrndupReadsNoByteBehindTheLimit) {
  TextAtTheEndOfAPage theText("abcdef");
  EXPECT_EQ("abcdef", Taken(qvStrndup(theText.Text(), 6)));
}

TEST(qvMalloc, StrndupOfNullAndZeroGivesNull) { EXPECT_EQ(nullptr, qvStrndup(nullptr, 0)); }

TEST(qvMalloc, StrndupOfNullWithALengthAsserts) {
  EXPECT_QV_ASSERTION(qvStrndup(nullptr, 5), "aMaxStrlen == 0", "qvMalloc");
}

TEST(qvMalloc, StrdupToUpperChangesTheLettersAToZOnly) {
  EXPECT_EQ("ABC XYZ 019 @[`{", Taken(qvStrdupToUpper("abc xyz 019 @[`{")));
  EXPECT_EQ("ABC", Taken(qvStrdupToUpper("ABC")));
  EXPECT_EQ("", Taken(qvStrdupToUpper("")));
  EXPECT_EQ("\xC3\xA4\xE4\xFF\x80", Taken(qvStrdupToUpper("\xC3\xA4\xE4\xFF\x80"))) << "bytes above 0x7F";
}

TEST(qvMalloc, StrdupToUpperChangesLettersAsInTheLocaleOfTheProcess) {
  TurkishLocale theLocale;  // 'i' belongs to 0xDD there, and 0xFD to 'I'
  if (!theLocale.WhyNot().empty()) {
    GTEST_SKIP() << theLocale.WhyNot();
  }
  EXPECT_EQ("A\xDDI", Taken(qvStrdupToUpper("ai\xFD")));
}

TEST(qvMalloc, StrdupToUpperOfNullGivesNull) { EXPECT_EQ(nullptr, qvStrdupToUpper(nullptr)); }

TEST(qvMalloc, StrdupToUpperLeavesTheSourceAlone) {
  char theText[] = "abc";
  qvFree(qvStrdupToUpper(theText));
  EXPECT_STREQ("abc", theText);
}

TEST(qvMalloc, StrnlenStopsAtTheLimit) {
  EXPECT_EQ(3u, qvStrnlen("abc", 10));
  EXPECT_EQ(3u, qvStrnlen("abc", 3));
  EXPECT_EQ(2u, qvStrnlen("abc", 2));
  EXPECT_EQ(0u, qvStrnlen("abc", 0));
  EXPECT_EQ(0u, qvStrnlen("", 10));
  EXPECT_EQ(6u, qvStrnlen(TextAtTheEndOfAPage("abcdef").Text(), 6));
}

TEST(qvMalloc, NullAndTheEmptyTextAreEmpty) {
  EXPECT_TRUE(qvStrEmpty(nullptr));
  EXPECT_TRUE(qvStrEmpty(""));
  EXPECT_FALSE(qvStrEmpty("a"));
  EXPECT_FALSE(qvStrEmpty(" "));
  EXPECT_FALSE(qvStrEmpty("\xFF"));
}

TEST(qvMalloc, StrReplaceStoresACopy) {
  char* theText = nullptr;
  const char theNew[] = "first";
  qvStrReplace(&theText, theNew);
  EXPECT_STREQ("first", theText);
  EXPECT_NE(theNew, theText);
  qvStrReplace(&theText, "second");
  EXPECT_STREQ("second", theText);
  qvFree(theText);
}

TEST(qvMalloc, StrReplaceWithNullStoresNull) {
  char* theText = qvStrdup("old");
  qvStrReplace(&theText, nullptr);
  EXPECT_EQ(nullptr, theText);
  qvStrReplace(&theText, nullptr);
  EXPECT_EQ(nullptr, theText);
}

TEST(qvMalloc, StrReplaceTakesAPartOfTheOldText) {
  char* theText = qvStrdup("abcdef");
  qvStrReplace(&theText, theText + 2);
  EXPECT_EQ("cdef", Taken(theText));
}

TEST(qvMalloc, StrReplaceWithoutADestinationAsserts) {
  EXPECT_QV_ASSERTION(qvStrReplace(nullptr, "a"), "aStr != NULL", "qvMalloc");
}

TEST(qvMalloc, StrnReplaceStoresACopyOfAtMostTheGivenLength) {
  char* theText = nullptr;
  qvStrnReplace(&theText, "abcdef", 3);
  EXPECT_STREQ("abc", theText);
  qvStrnReplace(&theText, "xy", 10);
  EXPECT_STREQ("xy", theText);
  qvStrnReplace(&theText, "xy", 0);
  EXPECT_STREQ("", theText);
  qvFree(theText);
}

TEST(qvMalloc, StrnReplaceWithNullStoresNullWhateverTheLength) {
  char* theText = qvStrdup("old");
  qvStrnReplace(&theText, nullptr, 5);
  EXPECT_EQ(nullptr, theText);
  qvStrnReplace(&theText, nullptr, 0);
  EXPECT_EQ(nullptr, theText);
}

TEST(qvMalloc, StrnReplaceTakesAPartOfTheOldText) {
  char* theText = qvStrdup("abcdef");
  qvStrnReplace(&theText, theText + 1, 2);
  EXPECT_EQ("bc", Taken(theText));
}

TEST(qvMalloc, StrnReplaceWithoutADestinationAsserts) {
  EXPECT_QV_ASSERTION(qvStrnReplace(nullptr, "a", 1), "aStr != NULL", "qvMalloc");
}

TEST(qvMalloc, StrcatReplaceJoins) {
  char* theText = qvStrdup("abc");
  qvStrcatReplace(&theText, "def");
  EXPECT_STREQ("abcdef", theText);
  qvStrcatReplace(&theText, "");
  EXPECT_STREQ("abcdef", theText);
  qvFree(theText);
}

TEST(qvMalloc, StrcatReplaceCountsNullAsEmptyText) {
  char* theText = qvStrdup("abc");
  qvStrcatReplace(&theText, nullptr);
  EXPECT_EQ("abc", Taken(theText));
}

TEST(qvMalloc, StrcatReplaceOfANullTextCopies) {
  char* theText = nullptr;
  qvStrcatReplace(&theText, "abc");
  EXPECT_EQ("abc", Taken(theText));
}

TEST(qvMalloc, StrcatReplaceOfNullByNullLeavesNull) {
  char* theText = nullptr;
  qvStrcatReplace(&theText, nullptr);
  EXPECT_EQ(nullptr, theText);
}

TEST(qvMalloc, StrcatReplaceDoublesATextWithItself) {
  char* theText = qvStrdup("abc");
  qvStrcatReplace(&theText, theText);
  EXPECT_EQ("abcabc", Taken(theText));
}

TEST(qvMalloc, StrcatReplaceWithoutADestinationAsserts) {
  EXPECT_QV_ASSERTION(qvStrcatReplace(nullptr, "a"), "aStr != NULL", "qvMalloc");
}

TEST(qvMalloc, StrnstrFindsWhatLiesWhollyWithinTheLimit) {
  const struct {
    const char* mText;
    const char* mNeedle;
    size_t mLimit;
    int mOffset;  // -1: not found
    const char* mWhy;
  } kCases[] = {
      {"abcdef", "cd", 4, 2, "ends exactly at the limit"},
      {"abcdef", "de", 4, -1, "would end past the limit"},
      {"abcdef", "ef", 6, 4, "at the end of the text"},
      {"abcdef", "ef", 100, 4, "the limit lies behind the text"},
      {"abcdef", "a", 1, 0, "one character"},
      {"abcdef", "abcdef", 6, 0, "the whole text"},
      {"abcdef", "abcdefg", 100, -1, "longer than the text"},
      {"abcdef", "x", 6, -1, "not there"},
      {"aab", "ab", 3, 1, "a false start"},
      {"abab", "ab", 4, 0, "the first of two"},
      {"", "a", 5, -1, "empty text"},
      {"abcdef", "", 3, 0, "an empty needle gives the text"},
      {"abcdef", "x", 0, 0, "no length gives the text, found or not"},
      {"\xFF\x80\xC3", "\x80", 3, 1, "bytes above 0x7F"},
  };
  for (const auto& theCase : kCases) {
    const char* theFound = qvStrnstr(theCase.mText, theCase.mNeedle, theCase.mLimit);
    EXPECT_EQ(theCase.mOffset == -1 ? nullptr : theCase.mText + theCase.mOffset, theFound) << theCase.mWhy;
  }
}

TEST(qvMalloc, StrnstrStopsAtTheTerminator) {
  const char theText[] = "abc\0def";
  EXPECT_EQ(nullptr, qvStrnstr(theText, "d", 7));
  EXPECT_EQ(theText + 2, qvStrnstr(theText, "c", 7));
}

TEST(qvMalloc, StrnstrReadsNoByteBehindTheLimit) {
  TextAtTheEndOfAPage theText("abcdef");
  EXPECT_EQ(nullptr, qvStrnstr(theText.Text(), "fg", 6));
  EXPECT_EQ(theText.Text() + 4, qvStrnstr(theText.Text(), "ef", 6));
}

TEST(qvMalloc, StrnstrOfNullGivesNull) {
  EXPECT_EQ(nullptr, qvStrnstr(nullptr, "a", 3));
  EXPECT_EQ(nullptr, qvStrnstr(nullptr, "", 0));
}

TEST(qvMalloc, WideCharactersHave32Bits) { EXPECT_EQ(4u, sizeof(wchar_t)); }

TEST(qvMalloc, WcsdupCopies) {
  EXPECT_EQ(L"a\u00E4\u20AC\U0001F600", TakenWide(qvWcsdup(L"a\u00E4\u20AC\U0001F600")));
  EXPECT_EQ(L"", TakenWide(qvWcsdup(L"")));
}

TEST(qvMalloc, WcsdupOfNullGivesNull) { EXPECT_EQ(nullptr, qvWcsdup(nullptr)); }

TEST(qvMalloc, WcsndupCopiesExactlyTheGivenLengthAndTerminates) {
  EXPECT_EQ(L"abc", TakenWide(qvWcsndup(L"abcdef", 3)));
  EXPECT_EQ(L"", TakenWide(qvWcsndup(L"abcdef", 0)));
}

TEST(qvMallocKept, WcsndupLooksForNoTerminator) {
  wchar_t* theCopy = qvWcsndup(L"ab\0cd", 5);
  EXPECT_EQ(std::wstring(L"ab\0cd\0", 6), std::wstring(theCopy, 6));
  qvFree(theCopy);
  EXPECT_EQ(L"ab", TakenWide(qvWcsdup(L"ab\0cd")));  // the neighbours stop there
  EXPECT_EQ("ab", Taken(qvStrndup("ab\0cd", 5)));
}

TEST(qvMalloc, WcsndupOfNullAndZeroGivesNull) { EXPECT_EQ(nullptr, qvWcsndup(nullptr, 0)); }

TEST(qvMalloc, WcsndupOfNullWithALengthAsserts) {
  EXPECT_QV_ASSERTION(qvWcsndup(nullptr, 5), "aStrLen == 0", "qvMalloc");
}
