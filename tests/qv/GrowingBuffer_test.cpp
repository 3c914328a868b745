#include "qv/GrowingBuffer.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <malloc.h>
#include <stddef.h>
#include <string.h>

#include <string>

#include "qvraTools/qvMalloc.h"
#include "support/ChildProcess.h"
#include "support/HeapUse.h"

namespace {

std::string TextOf(const qvGrowingBuffer& aBuffer) {
  return aBuffer.mPos > 0 ? std::string(aBuffer.mPtr, aBuffer.mPos) : std::string();
}

size_t ExactSize(size_t aUsedSize, size_t aNeededSize) { return aUsedSize + aNeededSize; }

size_t TooSmallASize(size_t aUsedSize, size_t aNeededSize) { return aUsedSize + aNeededSize - 1; }

}  // namespace

TEST(qvGrowingBuffer, FieldsStandInTheirOrder) {
  EXPECT_EQ(0u, offsetof(qvGrowingBuffer, mPtr));
  EXPECT_EQ(1 * sizeof(void*), offsetof(qvGrowingBuffer, mSize));
  EXPECT_EQ(2 * sizeof(void*), offsetof(qvGrowingBuffer, mPos));
  EXPECT_EQ(3 * sizeof(void*), offsetof(qvGrowingBuffer, mNewBufferSizeFunc));
  EXPECT_EQ(4 * sizeof(void*), sizeof(qvGrowingBuffer));
}

TEST(qvGrowingBuffer, StartsWithABlockOfTheGivenSize) {
  const qvGrowingBuffer theBuffer(300);
  EXPECT_NE(nullptr, theBuffer.mPtr);
  EXPECT_EQ(300u, theBuffer.mSize);
  EXPECT_EQ(0u, theBuffer.mPos);
  EXPECT_EQ(&qvGrowingBuffer_NewBufferSize, theBuffer.mNewBufferSizeFunc);
}

TEST(qvGrowingBuffer, StartsWithABlockForASingleByte) {
  const qvGrowingBuffer theBuffer(1);
  EXPECT_NE(nullptr, theBuffer.mPtr);
  EXPECT_EQ(1u, theBuffer.mSize);
}

TEST(qvGrowingBuffer, StartsWithoutABlockForSizeZero) {
  const qvGrowingBuffer theBuffer(0);
  EXPECT_EQ(NULL, theBuffer.mPtr);
  EXPECT_EQ(0u, theBuffer.mSize);
  EXPECT_EQ(0u, theBuffer.mPos);
}

TEST(qvGrowingBuffer, TheFirstTenBytesAllocateOneStep) {
  qvGrowingBuffer theBuffer(0);
  theBuffer.Append("0123456789", 10);
  EXPECT_EQ(128u, theBuffer.mSize);
  EXPECT_EQ(10u, theBuffer.mPos);
  EXPECT_EQ("0123456789", TextOf(theBuffer));
}

TEST(qvGrowingBuffer, ThreeHundredBytesBehindAThousandTakeThreeSmallSteps) {
  qvGrowingBuffer theBuffer(1000);
  theBuffer.SetPosition(1000);
  theBuffer.Append(std::string(300, 'x').c_str(), 300);
  EXPECT_EQ(1384u, theBuffer.mSize);
  EXPECT_EQ(1300u, theBuffer.mPos);
}

TEST(qvGrowingBuffer, TenBytesBehindTwoThousandTakeOneStepOfAKilobyte) {
  qvGrowingBuffer theBuffer(2000);
  theBuffer.SetPosition(2000);
  theBuffer.Append("0123456789", 10);
  EXPECT_EQ(3024u, theBuffer.mSize);
}

TEST(qvGrowingBuffer, TheGrowthRuleStepsByTheUsedSize) {
  const struct {
    size_t mUsed;
    size_t mNeeded;
    size_t mNewSize;
    const char* mWhy;
  } kCases[] = {
      {0, 0, 128, "one step even for nothing"},
      {0, 127, 128, "just below one step"},
      {0, 128, 256, "a whole step gets another one"},
      {0, 255, 256, "just below two steps"},
      {1023, 1, 1151, "the last size with the step 128"},
      {1024, 1, 2048, "the first size with the step 1024"},
      {1024, 1024, 3072, "a whole step of 1024"},
      {8191, 1, 9215, "the last size with the step 1024"},
      {8192, 1, 16384, "the first size with the step 8192"},
      {131071, 1, 139263, "the last size with the step 8192"},
      {131072, 1, 163840, "the first size with the step 32768"},
      {524287, 1, 557055, "the last size with the step 32768"},
      {524288, 1, 655360, "the first size with the step 131072"},
      {10000000, 200000, 10262144, "two of the largest steps"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mNewSize, qvGrowingBuffer_NewBufferSize(theCase.mUsed, theCase.mNeeded))
        << theCase.mWhy;
  }
}

TEST(qvGrowingBuffer, TheGrowthRuleStartsFromTheUsedSizeNotTheAllocatedOne) {
  qvGrowingBuffer theBuffer(2000);
  theBuffer.Append(std::string(100, 'x').c_str(), 100);
  theBuffer.Append(std::string(1950, 'y').c_str(), 1950);
  EXPECT_EQ(100u + 128u * 16u, theBuffer.mSize);
}

TEST(qvGrowingBuffer, AnAppendThatFillsTheBlockDoesNotGrowIt) {
  qvGrowingBuffer theBuffer(10);
  char* theBlock = theBuffer.mPtr;
  theBuffer.Append("0123456789", 10);
  EXPECT_EQ(10u, theBuffer.mSize);
  EXPECT_EQ(theBlock, theBuffer.mPtr);
}

TEST(qvGrowingBuffer, OneByteMoreThanTheBlockHoldsGrowsIt) {
  qvGrowingBuffer theBuffer(10);
  theBuffer.Append("0123456789a", 11);
  EXPECT_EQ(128u, theBuffer.mSize);
  EXPECT_EQ("0123456789a", TextOf(theBuffer));
}

TEST(qvGrowingBuffer, AppendKeepsZeroBytesAndWritesNoTerminator) {
  qvGrowingBuffer theBuffer(8);
  memset(theBuffer.mPtr, 'x', 8);
  theBuffer.Append("a\0b", 3);
  EXPECT_EQ(0, memcmp("a\0bxxxxx", theBuffer.mPtr, 8));
}

TEST(qvGrowingBuffer, AppendingNothingChangesNothing) {
  qvGrowingBuffer theBuffer(0);
  theBuffer.Append("abc", 0);
  EXPECT_EQ(NULL, theBuffer.mPtr);
  EXPECT_EQ(0u, theBuffer.mSize);
  EXPECT_EQ(0u, theBuffer.mPos);
}

TEST(qvGrowingBuffer, ItsOwnBytesCanBeAppended) {
  qvGrowingBuffer theBuffer(4);
  theBuffer.Append("abcd", 4);
  theBuffer.Append(theBuffer.mPtr + 1, 3);
  EXPECT_EQ("abcdbcd", TextOf(theBuffer));
}

TEST(qvGrowingBuffer, AppendingNullFailsAnAssertion) {
  qvGrowingBuffer theBuffer(8);
  EXPECT_QV_ASSERTION(theBuffer.Append(NULL, 3), "aPtr != NULL", "GrowingBuffer");
  EXPECT_QV_ASSERTION(theBuffer.Append(NULL, 0), "aPtr != NULL", "GrowingBuffer");
}

TEST(qvGrowingBuffer, PlusAppendsTheCharactersOfAText) {
  qvGrowingBuffer theBuffer(0);
  theBuffer += "abc";
  theBuffer += "";
  theBuffer += "def";
  EXPECT_EQ("abcdef", TextOf(theBuffer));
}

TEST(qvGrowingBuffer, PlusNullFailsAnAssertion) {
  qvGrowingBuffer theBuffer(8);
  EXPECT_QV_ASSERTION(theBuffer += static_cast<const char*>(NULL), "aStr != NULL", "GrowingBuffer");
}

TEST(qvGrowingBuffer, PlusAppendsTheDigitsOfANumber) {
  qvGrowingBuffer theBuffer(0);
  theBuffer += 0UL;
  theBuffer += ",";
  theBuffer += 4294967295UL;
  EXPECT_EQ("0,4294967295", TextOf(theBuffer));
}

TEST(qvGrowingBuffer, PlusAppendsAllDigitsOfTheLargestNumber) {
  qvGrowingBuffer theBuffer(0);
  theBuffer += ULONG_MAX;
  EXPECT_EQ(sizeof(long) == 4 ? "4294967295" : "18446744073709551615", TextOf(theBuffer));
}

TEST(qvGrowingBuffer, AnotherGrowthRuleCanBeSet) {
  qvGrowingBuffer theBuffer(2);
  theBuffer.SetNewBufferSizeFunc(ExactSize);
  theBuffer += "abc";
  EXPECT_EQ(3u, theBuffer.mSize);
  theBuffer += "de";
  EXPECT_EQ(5u, theBuffer.mSize);
  EXPECT_EQ("abcde", TextOf(theBuffer));
}

TEST(qvGrowingBuffer, ANullGrowthRuleFailsAnAssertion) {
  qvGrowingBuffer theBuffer(8);
  EXPECT_QV_ASSERTION(theBuffer.SetNewBufferSizeFunc(NULL), "aNewBufferSizeFunc != NULL", "GrowingBuffer");
}

TEST(qvGrowingBuffer, AGrowthRuleThatGivesTooLittleFailsAnAssertion) {
  qvGrowingBuffer theBuffer(2);
  theBuffer.SetNewBufferSizeFunc(TooSmallASize);
  EXPECT_QV_ASSERTION(theBuffer += "abc", "mPos <= mSize && aLength <= mSize - mPos", "GrowingBuffer");
}

TEST(qvGrowingBuffer, ALengthThatNoMachineHasFailsAnAssertion) {
  qvGrowingBuffer theBuffer(16);
  theBuffer += "abc";
  theBuffer.SetNewBufferSizeFunc(ExactSize);  // 3 + npos wraps to 2
  EXPECT_QV_ASSERTION(theBuffer.Append("x", static_cast<size_t>(-1)),
                      "mPos <= mSize && aLength <= mSize - mPos", "GrowingBuffer");
}

TEST(qvGrowingBuffer, APositionBehindTheBlockGrowsItToExactlyThat) {
  qvGrowingBuffer theBuffer(10);
  theBuffer.SetPosition(77);
  EXPECT_EQ(77u, theBuffer.mSize);
  EXPECT_EQ(77u, theBuffer.mPos);
}

TEST(qvGrowingBuffer, APositionInsideTheBlockLeavesTheBlock) {
  qvGrowingBuffer theBuffer(10);
  theBuffer += "abcdef";
  theBuffer.SetPosition(3);
  EXPECT_EQ(10u, theBuffer.mSize);
  EXPECT_EQ("abc", TextOf(theBuffer));
  theBuffer.SetPosition(10);
  EXPECT_EQ(10u, theBuffer.mSize);
  EXPECT_EQ(10u, theBuffer.mPos);
}

TEST(qvGrowingBuffer, ReduceSetsBlockAndPosition) {
  qvGrowingBuffer theBuffer(10);
  theBuffer += "abcdef";
  theBuffer.Reduce(4);
  EXPECT_EQ(4u, theBuffer.mSize);
  EXPECT_EQ("abcd", TextOf(theBuffer));
}

TEST(qvGrowingBuffer, ReduceGrowsToo) {
  qvGrowingBuffer theBuffer(2);
  theBuffer.Reduce(50);
  EXPECT_EQ(50u, theBuffer.mSize);
  EXPECT_EQ(50u, theBuffer.mPos);
}

TEST(qvGrowingBuffer, ReduceToNothingLeavesNoBlock) {
  qvGrowingBuffer theBuffer(10);
  theBuffer += "abc";
  theBuffer.Reduce(0);
  EXPECT_EQ(NULL, theBuffer.mPtr);
  EXPECT_EQ(0u, theBuffer.mSize);
  EXPECT_EQ(0u, theBuffer.mPos);
}

TEST(qvGrowingBuffer, ReallocChangesTheBlockOnly) {
  qvGrowingBuffer theBuffer(10);
  theBuffer += "abc";
  theBuffer.Realloc(500);
  EXPECT_EQ(500u, theBuffer.mSize);
  EXPECT_LE(500u, malloc_usable_size(theBuffer.mPtr));
  EXPECT_EQ("abc", TextOf(theBuffer));
  theBuffer.Realloc(3);
  EXPECT_EQ(3u, theBuffer.mSize);
  EXPECT_GT(100u, malloc_usable_size(theBuffer.mPtr));
  EXPECT_EQ("abc", TextOf(theBuffer));
}

TEST(qvGrowingBuffer, AppendingBehindAPositionThatWasCutOffGrowsTheBlockAgain) {
  qvGrowingBuffer theBuffer(100);
  theBuffer.SetPosition(100);
  theBuffer.Realloc(10);
  EXPECT_EQ(100u, theBuffer.mPos);
  theBuffer += "abc";
  EXPECT_EQ(228u, theBuffer.mSize);
  EXPECT_EQ(103u, theBuffer.mPos);
}

TEST(qvGrowingBuffer, AppendingNothingBehindAPositionThatWasCutOffGrowsTheBlockToo) {
  qvGrowingBuffer theBuffer(100);
  theBuffer.SetPosition(100);
  theBuffer.Realloc(10);
  theBuffer += "";
  EXPECT_EQ(228u, theBuffer.mSize);
  EXPECT_EQ(100u, theBuffer.mPos);
}

TEST(qvGrowingBuffer, TakingOwnershipWithShrinkGivesTheUsedBytesOnly) {
  qvGrowingBuffer theBuffer(300);
  theBuffer += "0123456789";
  size_t theLength = 0;
  char* theBlock = theBuffer.TakeOwnership(true, &theLength);
  EXPECT_EQ(10u, theLength);
  EXPECT_EQ(0, memcmp("0123456789", theBlock, 10));
  EXPECT_LT(malloc_usable_size(theBlock), 100u);
  EXPECT_EQ(NULL, theBuffer.mPtr);
  EXPECT_EQ(0u, theBuffer.mSize);
  EXPECT_EQ(0u, theBuffer.mPos);
  qvFree(theBlock);
}

TEST(qvGrowingBuffer, TakingOwnershipWithoutShrinkGivesTheSameBlock) {
  qvGrowingBuffer theBuffer(300);
  theBuffer += "abc";
  char* theOld = theBuffer.mPtr;
  size_t theLength = 0;
  char* theBlock = theBuffer.TakeOwnership(false, &theLength);
  EXPECT_EQ(theOld, theBlock);
  EXPECT_EQ(3u, theLength);
  memset(theBlock, 'x', 300);
  qvFree(theBlock);
}

TEST(qvGrowingBuffer, TakingOwnershipNeedsNoLength) {
  qvGrowingBuffer theBuffer(4);
  theBuffer += "abc";
  char* theBlock = theBuffer.TakeOwnership(true, NULL);
  EXPECT_EQ(0, memcmp("abc", theBlock, 3));
  qvFree(theBlock);
}

TEST(qvGrowingBuffer, TakingOwnershipOfNothingGivesNull) {
  qvGrowingBuffer theBuffer(0);
  size_t theLength = 99;
  EXPECT_EQ(NULL, theBuffer.TakeOwnership(true, &theLength));
  EXPECT_EQ(0u, theLength);
}

TEST(qvGrowingBuffer, TakingOwnershipOfAnEmptyBlockWithShrinkGivesNull) {
  qvGrowingBuffer theBuffer(300);
  size_t theLength = 99;
  EXPECT_EQ(NULL, theBuffer.TakeOwnership(true, &theLength));
  EXPECT_EQ(0u, theLength);
  EXPECT_EQ(0u, theBuffer.mSize);
}

TEST(qvGrowingBuffer, CanBeUsedAgainWhenItsBlockWasTaken) {
  qvGrowingBuffer theBuffer(4);
  theBuffer += "abc";
  qvFree(theBuffer.TakeOwnership(false, NULL));
  theBuffer += "def";
  EXPECT_EQ("def", TextOf(theBuffer));
  EXPECT_EQ(128u, theBuffer.mSize);
}

TEST(qvGrowingBuffer, TheDestructorFreesTheBlock) {
  ExpectNoHeapGrowth([] {
    qvGrowingBuffer theBuffer(5000);
    theBuffer += "abc";
  });
}
