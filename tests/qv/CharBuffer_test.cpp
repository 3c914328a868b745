#include "qv/CharBuffer.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <stddef.h>
#include <string.h>

#include <type_traits>

#include "qvraTools/qvMalloc.h"
#include "support/ChildProcess.h"
#include "support/FatalLine.h"
#include "support/HeapUse.h"

// The sanitizers' allocators end the process themselves unless they are told to return null.
extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
extern "C" const char* __tsan_default_options() { return "allocator_may_return_null=1"; }

// One character more wraps to a size of zero. Volatile: the compiler would refuse what it can see.
static volatile size_t sTooManyCharacters = static_cast<size_t>(-1);
static volatile size_t sTooManyWideCharacters = static_cast<size_t>(-1) / sizeof(wchar_t);
static const char* const kTooMuchMemory = sizeof(size_t) == 8
                                              ? "qvFatalError: memory:malloc, size=18446744073709551615"
                                              : "qvFatalError: memory:malloc, size=4294967295";

TEST(qvCharBuffer, HoldsNothingButThePointer) {
  EXPECT_EQ(0u, offsetof(qvCharBuffer, mStr));
  EXPECT_EQ(sizeof(char*), sizeof(qvCharBuffer));
  EXPECT_TRUE((std::is_same<char*, decltype(qvCharBuffer::mStr)>::value));
  EXPECT_EQ(0u, offsetof(qvWCharBuffer, mStr));
  EXPECT_EQ(sizeof(wchar_t*), sizeof(qvWCharBuffer));
  EXPECT_TRUE((std::is_same<wchar_t*, decltype(qvWCharBuffer::mStr)>::value));
}

TEST(qvCharBuffer, HoldsACopyOfTheText) {
  char theText[] = "abc";
  const qvCharBuffer theBuffer(theText, true);
  theText[0] = 'x';
  EXPECT_NE(theText, theBuffer.mStr);
  EXPECT_STREQ("abc", theBuffer.c_str());
}

TEST(qvCharBuffer, TakesTheTextItselfWhenItIsNotToBeCopied) {
  char* theText = qvStrdup("abc");
  const qvCharBuffer theBuffer(theText, false);
  EXPECT_EQ(theText, theBuffer.mStr);
}

TEST(qvCharBuffer, NullGivesANullBuffer) {
  const char* theNull = NULL;
  EXPECT_EQ(NULL, qvCharBuffer(theNull, true).mStr);
  EXPECT_EQ(NULL, qvCharBuffer(theNull, false).mStr);
}

TEST(qvCharBuffer, HoldsACopyOfTheEmptyText) {
  const qvCharBuffer theBuffer("", true);
  ASSERT_NE(nullptr, theBuffer.mStr);
  EXPECT_STREQ("", theBuffer.mStr);
}

TEST(qvCharBuffer, ASizeGivesThatManyCharactersAndATerminator) {
  mallopt(M_PERTURB, 0xAA);  // new blocks of this size are full of 0x55
  const qvCharBuffer theBuffer(size_t{100000});
  memset(theBuffer.mStr, 'a', 100000);
  EXPECT_EQ(100000u, strlen(theBuffer.mStr));
}

TEST(qvCharBuffer, ASizeOfZeroGivesTheEmptyText) {
  const qvCharBuffer theBuffer(size_t{0});
  EXPECT_STREQ("", theBuffer.mStr);
}

TEST(qvCharBuffer, ALiteralZeroIsASizeAndNotNull) {
  const qvCharBuffer theBuffer(0);
  EXPECT_STREQ("", theBuffer.mStr);
  const qvWCharBuffer theWideBuffer(0);
  EXPECT_STREQ(L"", theWideBuffer.mStr);
}

TEST(qvCharBuffer, ASizeThatNoMachineHasEndsTheProcess) {
  const ChildResult theResult = RunInChild([] { qvCharBuffer theBuffer(sTooManyCharacters); });
  EXPECT_EQ(kTooMuchMemory, FatalLine(theResult.mStderr));
}

TEST(qvCharBuffer, CopyingLeavesTheSourceNull) {
  const qvCharBuffer theSource("abc", true);
  char* theText = theSource.mStr;
  const qvCharBuffer theCopy(theSource);
  EXPECT_EQ(theText, theCopy.mStr);
  EXPECT_EQ(NULL, theSource.mStr);
}

TEST(qvCharBuffer, DestroyingSourceAndCopyFreesTheTextOnce) {
  ExpectNoHeapGrowth([] {
    const qvCharBuffer theSource("abc", true);
    const qvCharBuffer theCopy(theSource);
  });
}

TEST(qvCharBuffer, AssigningABufferMovesItsText) {
  qvCharBuffer theSource("abc", true);
  char* theText = theSource.mStr;
  qvCharBuffer theTarget("old", true);
  theTarget = theSource;
  EXPECT_EQ(theText, theTarget.mStr);
  EXPECT_EQ(NULL, theSource.mStr);
}

TEST(qvCharBuffer, AssigningFreesTheOldText) {
  ExpectNoHeapGrowth([] {
    qvCharBuffer theTarget("old", true);
    theTarget = qvCharBuffer("abc", true);
    theTarget = "def";
  });
}

TEST(qvCharBuffer, AssigningABufferToItselfChangesNothing) {
  qvCharBuffer theBuffer("abc", true);
  const qvCharBuffer& theAlias = theBuffer;
  theBuffer = theAlias;
  EXPECT_STREQ("abc", theBuffer.mStr);
}

TEST(qvCharBuffer, AssigningATextHoldsACopy) {
  char theText[] = "abc";
  qvCharBuffer theBuffer("old", true);
  theBuffer = theText;
  EXPECT_NE(theText, theBuffer.mStr);
  EXPECT_STREQ("abc", theBuffer.mStr);
}

TEST(qvCharBuffer, AssigningANullTextGivesANullBuffer) {
  qvCharBuffer theBuffer("old", true);
  theBuffer = static_cast<const char*>(NULL);
  EXPECT_EQ(NULL, theBuffer.mStr);
}

TEST(qvCharBuffer, APartOfTheOwnTextCanBeAssigned) {
  qvCharBuffer theBuffer("abcdef", true);
  theBuffer = theBuffer.c_str() + 3;
  EXPECT_STREQ("def", theBuffer.mStr);
}

TEST(qvCharBuffer, ReleaseGivesTheTextAway) {
  char* theText;
  {
    qvCharBuffer theBuffer("abc", true);
    theText = theBuffer.release();
    EXPECT_EQ(NULL, theBuffer.mStr);
    EXPECT_EQ(NULL, theBuffer.release());
  }
  EXPECT_STREQ("abc", theText);
  qvFree(theText);
}

TEST(qvWCharBuffer, HoldsACopyOfTheText) {
  wchar_t theText[] = L"a\u20ac";
  const qvWCharBuffer theBuffer(theText, true);
  EXPECT_NE(theText, theBuffer.mStr);
  EXPECT_STREQ(L"a\u20ac", theBuffer.c_str());
}

TEST(qvWCharBuffer, TakesTheTextItselfWhenItIsNotToBeCopied) {
  wchar_t* theText = qvWcsdup(L"abc");
  const qvWCharBuffer theBuffer(theText, false);
  EXPECT_EQ(theText, theBuffer.mStr);
}

TEST(qvWCharBuffer, NullGivesANullBuffer) {
  const wchar_t* theNull = NULL;
  EXPECT_EQ(NULL, qvWCharBuffer(theNull, true).mStr);
  EXPECT_EQ(NULL, qvWCharBuffer(theNull, false).mStr);
}

TEST(qvWCharBuffer, TheSizeCountsWideCharacters) {
  mallopt(M_PERTURB, 0xAA);  // new blocks of this size are full of 0x55
  const qvWCharBuffer theBuffer(size_t{30000});
  wmemset(theBuffer.mStr, L'\u20ac', 30000);
  EXPECT_EQ(30000u, wcslen(theBuffer.mStr));
}

TEST(qvWCharBuffer, ASizeThatNoMachineHasEndsTheProcess) {
  const ChildResult theResult = RunInChild([] { qvWCharBuffer theBuffer(sTooManyWideCharacters); });
  EXPECT_EQ(kTooMuchMemory, FatalLine(theResult.mStderr));
}

TEST(qvWCharBuffer, CopyingAndAssigningMoveTheText) {
  const qvWCharBuffer theSource(L"abc", true);
  wchar_t* theText = theSource.mStr;
  const qvWCharBuffer theCopy(theSource);
  EXPECT_EQ(NULL, theSource.mStr);
  qvWCharBuffer theTarget(L"old", true);
  theTarget = theCopy;
  EXPECT_EQ(NULL, theCopy.mStr);
  EXPECT_EQ(theText, theTarget.mStr);
}

TEST(qvWCharBuffer, AssigningATextHoldsACopyAndNullGivesANullBuffer) {
  qvWCharBuffer theBuffer(L"old", true);
  theBuffer = L"new";
  EXPECT_STREQ(L"new", theBuffer.mStr);
  theBuffer = static_cast<const wchar_t*>(NULL);
  EXPECT_EQ(NULL, theBuffer.mStr);
}

TEST(qvWCharBuffer, ReleaseGivesTheTextAway) {
  qvWCharBuffer theBuffer(L"abc", true);
  wchar_t* theText = theBuffer.release();
  EXPECT_EQ(NULL, theBuffer.mStr);
  EXPECT_STREQ(L"abc", theText);
  qvFree(theText);
}
