// How texts of qvCString are counted, wrapped and kept in memory. Checked out: CStringWriteBuffer_test.cpp.
#include <gtest/gtest.h>
#include <malloc.h>
#include <string.h>

#include <string>

#include "qv/CString.h"
#include "qvraTools/qvMalloc.h"
#include "support/CStringText.h"
#include "support/ChildProcess.h"
#include "support/HeapUse.h"

namespace {

// Opens what derived classes may use.
class OpenCString : public qvCString {
 public:
  using qvCString::AllocBeforeWrite;
  using qvCString::AllocBuffer;
  using qvCString::AssignCopy;
  using qvCString::ConcatSelf;
  using qvCString::CopyBeforeWrite;
  using qvCString::qvCString;
};

int32 CountOf(const qvCString& aString) { return aString.mCStringData->mRefCount; }

uint32 CapacityOf(const qvCString& aString) { return aString.mCStringData->mAllocatedLength; }

}  // namespace

TEST(qvCStringSharing, ACopyCountsAndSharesTheText) {
  const qvCString theString("abc");
  EXPECT_EQ(1, CountOf(theString));
  {
    const qvCString theCopy(theString);
    EXPECT_EQ(2, CountOf(theString));
    EXPECT_EQ(theString.mCStringData, theCopy.mCStringData);
    EXPECT_EQ(theString.mStringPtr, theCopy.mStringPtr);
    EXPECT_TRUE(theString.mCStringData->IsShared());
  }
  EXPECT_EQ(1, CountOf(theString));
  EXPECT_FALSE(theString.mCStringData->IsShared());
}

TEST(qvCStringSharing, TheLastOwnerFreesTheText) {
  ExpectNoHeapGrowth([] {
    qvCString theString("abc");
    const qvCString theCopy(theString);
    theString = "another";
  });
}

TEST(qvCStringSharing, TheEmptyTextIsNeverCountedNorFreed) {
  {
    const qvCString theString;
    const qvCString theCopy(theString);
    qvCString theAssigned("abc");
    theAssigned = theCopy;
    EXPECT_EQ(-1, CountOf(theCopy));
    EXPECT_TRUE(IsSharedEmptyText(theAssigned));
  }
  EXPECT_EQ(-1, qvCStringData::OfEmptyText()->mRefCount);
  EXPECT_EQ('\0', *qvEmptyCString);
}

TEST(qvCStringSharing, AnEmptyTextWithABlockIsNotShared) {
  qvCString theString("abc");
  theString.GetWriteBuf(3);
  theString.UngetWriteBuf(0);
  EXPECT_FALSE(IsSharedEmptyText(theString));
  const qvCString theCopy(theString);
  EXPECT_TRUE(IsSharedEmptyText(theCopy));
  qvCString theAssigned("abc");
  theAssigned = theString;
  EXPECT_TRUE(IsSharedEmptyText(theAssigned));
  EXPECT_EQ(1, CountOf(theString));
}

TEST(qvCStringSharing, AssigningSharesTheText) {
  const qvCString theString("abc");
  qvCString theOther("def");
  const qvCString theOld(theOther);
  theOther = theString;
  EXPECT_EQ(theString.mCStringData, theOther.mCStringData);
  EXPECT_EQ(2, CountOf(theString));
  EXPECT_EQ(1, CountOf(theOld));
}

TEST(qvCStringSharing, AssigningATextThatIsSharedAlreadyDoesNothing) {
  qvCString theString("abc");
  const qvCString theCopy(theString);
  theString = theCopy;
  EXPECT_EQ(2, CountOf(theString));
  const qvCString& theAlias = theString;
  theString = theAlias;
  EXPECT_EQ(2, CountOf(theString));
}

TEST(qvCStringSharing, AssigningAStringToItselfKeepsItsText) {
  qvCString theString("abc");
  const qvCString& theAlias = theString;
  theString = theAlias;
  EXPECT_EQ(1, CountOf(theString));
  EXPECT_EQ("abc", TextOf(theString));
}

TEST(qvCStringSharing, TheHeaderCountsAndReleases) {
  const qvCString theString("abc");
  qvCStringData* theData = theString.mCStringData;
  theData->Lock();
  EXPECT_EQ(2, theData->mRefCount);
  theData->Unlock();
  EXPECT_EQ(1, theData->mRefCount);
}

TEST(qvCStringSharing, TheHeaderTellsItsState) {
  const struct {
    int32 mRefCount;
    bool mfEmpty;
    bool mfShared;
    bool mfValid;
    const char* mWhy;
  } kCases[] = {
      {-1, true, false, true, "the shared empty text"},
      {0, false, false, false, "checked out for writing"},
      {1, false, false, true, "one owner"},
      {2, false, true, true, "two owners"},
  };
  for (const auto& theCase : kCases) {
    const qvCStringData theData = {theCase.mRefCount, 0, 0};
    EXPECT_EQ(theCase.mfEmpty, theData.IsEmpty()) << theCase.mWhy;
    EXPECT_EQ(theCase.mfShared, theData.IsShared()) << theCase.mWhy;
    EXPECT_EQ(theCase.mfValid, theData.IsValid()) << theCase.mWhy;
  }
}

TEST(qvCStringSharing, ValidateSetsTheCountToOneOrZero) {
  qvCStringData theData = {5, 0, 0};
  theData.Validate(false);
  EXPECT_EQ(0, theData.mRefCount);
  theData.Validate(true);
  EXPECT_EQ(1, theData.mRefCount);
}

TEST(qvCStringSharing, TheHeaderOfTheEmptyTextIgnoresLockAndUnlock) {
  qvCStringData* theData = qvCStringData::OfEmptyText();
  theData->Lock();
  EXPECT_EQ(-1, theData->mRefCount);
  theData->Unlock();
  EXPECT_EQ(-1, theData->mRefCount);
}

TEST(qvCStringSharing, ThePointerOfASpecialTextStandsBehindTheHeader) {
  static const char kStatic[] = "abc";
  const qvCString theString(qvCString::FromStaticString(kStatic));
  const char* thePtr;
  memcpy(&thePtr, reinterpret_cast<const char*>(theString.mCStringData) + 12, sizeof(thePtr));
  EXPECT_EQ(kStatic, thePtr);
  EXPECT_EQ(kStatic, theString.mCStringData->StringPtr());
  EXPECT_EQ(kStatic, theString.c_str());
}

TEST(qvCStringSharing, TheLargestCapacityIsThatOfAnOrdinaryText) {
  qvCStringData theData[2] = {{1, 0, 0xFFFFFFFDu}, {0, 0, 0}};
  EXPECT_EQ(reinterpret_cast<char*>(&theData[1]), theData[0].StringPtr());
  EXPECT_EQ(0xFFFFFFFDu, kqvCStringData_MaxAllocatedLength);
}

TEST(qvCStringSharing, AStaticTextIsWrappedWithTwoOwners) {
  const qvCString theString(qvCString::FromStaticString("abc"));
  EXPECT_EQ(2, CountOf(theString));
  EXPECT_EQ(3u, theString.length());
  EXPECT_EQ(0xFFFFFFFEu, CapacityOf(theString));
  EXPECT_EQ("abc", TextOf(theString));
}

TEST(qvCStringSharing, AnAllocatedTextIsWrappedWithTwoOwners) {
  char* theText = qvStrdup("abc");
  const qvCString theString(qvCString::FromAllocatedString(theText));
  EXPECT_EQ(theText, theString.c_str());
  EXPECT_EQ(2, CountOf(theString));
  EXPECT_EQ(3u, theString.length());
  EXPECT_EQ(0xFFFFFFFFu, CapacityOf(theString));
}

TEST(qvCStringSharing, AStaticTextThatIsNullOrEmptyGivesTheEmptyString) {
  EXPECT_TRUE(IsSharedEmptyText(qvCString::FromStaticString("")));
  EXPECT_TRUE(IsSharedEmptyText(qvCString::FromStaticString(NULL)));
}

TEST(qvCStringSharing, AnAllocatedEmptyTextIsFreedAtOnce) {
  EXPECT_TRUE(IsSharedEmptyText(qvCString::FromAllocatedString(qvStrdup(""))));
  EXPECT_TRUE(IsSharedEmptyText(qvCString::FromAllocatedString(NULL)));
  ExpectNoHeapGrowth([] { qvCString::FromAllocatedString(qvStrdup("")); });
}

TEST(qvCStringSharing, CopiesOfASpecialTextCountFromTwo) {
  const qvCString theString(qvCString::FromStaticString("abc"));
  {
    const qvCString theCopy(theString);
    EXPECT_EQ(3, CountOf(theString));
    EXPECT_EQ(theString.mCStringData, theCopy.mCStringData);
  }
  EXPECT_EQ(2, CountOf(theString));
}

TEST(qvCStringSharing, TheLastOwnerOfASpecialTextFreesIt) {
  ExpectNoHeapGrowth([] {
    const qvCString theStatic(qvCString::FromStaticString("abc"));
    const qvCString theAllocated(qvCString::FromAllocatedString(qvStrdup("a text of its own")));
    const qvCString theCopy(theAllocated);
  });
}

TEST(qvCStringSharing, AStaticTextIsCopiedOnItsFirstAppend) {
  static const char kStatic[] = "abc";
  qvCString theString(qvCString::FromStaticString(kStatic));
  theString += 'd';
  EXPECT_EQ("abcd", TextOf(theString));
  EXPECT_NE(kStatic, theString.c_str());
  EXPECT_EQ(1, CountOf(theString));
  EXPECT_EQ(19u, CapacityOf(theString));
  EXPECT_STREQ("abc", kStatic);
}

TEST(qvCStringSharing, EveryChangeMakesAnOrdinaryTextOfASpecialOne) {
  const struct {
    void (*mChange)(qvCString&);
    const char* mText;
    const char* mWhy;
  } kCases[] = {
      {[](qvCString& aString) { aString = "x"; }, "x", "an assigned text"},
      {[](qvCString& aString) { aString = 'x'; }, "x", "an assigned character"},
      {[](qvCString& aString) { aString += "x"; }, " a\xC3x", "an appended text"},
      {[](qvCString& aString) { aString += aString; }, " a\xC3 a\xC3", "itself, appended"},
      {[](qvCString& aString) { aString.Insert(1, "x"); }, " xa\xC3", "an inserted text"},
      {[](qvCString& aString) { aString.Erase(1, 1); }, " \xC3", "an erased part"},
      {[](qvCString& aString) { aString.Replace("a", "x"); }, " x\xC3", "a replaced text"},
      {[](qvCString& aString) { aString.Replace(0, 2, "x"); }, "x\xC3", "a replaced range"},
      {[](qvCString& aString) { aString.Trim(false); }, "a\xC3", "trimmed"},
      {[](qvCString& aString) { aString.Pad(1, 'x', true); }, " a\xC3x", "padded at the right"},
      {[](qvCString& aString) { aString.Pad(1, 'x', false); }, "x a\xC3", "padded at the left"},
      {[](qvCString& aString) { aString.Printf("%d", 1); }, "1", "formatted"},
      {[](qvCString& aString) { aString.ValidateUTF8(qvCString::kqvKeepValid); }, " a", "cut"},
      {[](qvCString& aString) { aString.ValidateUTF8(qvCString::kqvKeepPrintable); }, " a", "scanned"},
      {[](qvCString& aString) {
         strcpy(aString.GetWriteBuf(3), "xyz");
         aString.UngetWriteBuf();
       },
       "xyz", "written through the buffer"},
  };
  static const char kStatic[] = " a\xC3";
  for (const auto& theCase : kCases) {
    qvCString theString(qvCString::FromStaticString(kStatic));
    const qvCString theCopy(theString);
    theCase.mChange(theString);
    EXPECT_EQ(theCase.mText, TextOf(theString)) << theCase.mWhy;
    EXPECT_EQ(1, CountOf(theString)) << theCase.mWhy;
    EXPECT_GT(kqvCStringData_StaticText, CapacityOf(theString)) << theCase.mWhy;
    EXPECT_EQ(kStatic, theCopy.c_str()) << theCase.mWhy;
    EXPECT_EQ(2, CountOf(theCopy)) << theCase.mWhy;
    EXPECT_STREQ(" a\xC3", kStatic) << theCase.mWhy;
  }
}

TEST(qvCStringSharing, AChangeLeavesTheOtherOwnersAlone) {
  const qvCString theOriginal("abc");
  qvCString theString(theOriginal);
  theString += "d";
  EXPECT_EQ("abcd", TextOf(theString));
  EXPECT_EQ("abc", TextOf(theOriginal));
  EXPECT_EQ(1, CountOf(theOriginal));
  EXPECT_EQ(1, CountOf(theString));
}

TEST(qvCStringSharing, ABlockHoldsFourToNineteenCharactersMore) {
  const struct {
    size_t mLength;
    uint32 mCapacity;
    const char* mWhy;
  } kCases[] = {
      {1, 19, "19 less 1"},           {15, 19, "the fewest: 4"},
      {16, 35, "the most: 19"},       {17, 35, "one block size for 16 characters"},
      {31, 35, "the end of that"},    {32, 51, "the next"},
      {1000, 1011, "1000 % 16 is 8"},
  };
  for (const auto& theCase : kCases) {
    const qvCString theString = StringOf(std::string(theCase.mLength, 'x'));
    EXPECT_EQ(theCase.mCapacity, CapacityOf(theString)) << theCase.mWhy;
    EXPECT_EQ(theCase.mCapacity, theCase.mLength + qvxString_Extra(theCase.mLength)) << theCase.mWhy;
  }
}

TEST(qvCStringSharing, AnAppendWithinTheCapacityKeepsTheBlock) {
  qvCString theString("a");
  const qvCStringData* theData = theString.mCStringData;
  theString += "234567890123456789";
  EXPECT_EQ(19u, theString.length());
  EXPECT_EQ(theData, theString.mCStringData);
  EXPECT_EQ(19u, CapacityOf(theString));
}

TEST(qvCStringSharing, AnAppendPastTheCapacityGrowsTheBlockByTheRule) {
  qvCString theString("a");
  theString += "2345678901234567890";
  EXPECT_EQ(20u, theString.length());
  EXPECT_EQ(35u, CapacityOf(theString));
}

TEST(qvCStringSharing, AllocBufferMakesATerminatedBlock) {
  OpenCString theString;
  theString.AllocBuffer(20);
  memset(theString.mStringPtr, 'x', 20);
  EXPECT_EQ(1, CountOf(theString));
  EXPECT_EQ(35u, CapacityOf(theString));
  EXPECT_EQ("xxxxxxxxxxxxxxxxxxxx", TextOf(theString));
}

TEST(qvCStringSharing, AllocBufferOfNothingFailsAnAssertion) {
  OpenCString theString;
  EXPECT_QV_ASSERTION(theString.AllocBuffer(0), "aLength > 0", "CString");
}

TEST(qvCStringSharing, CopyBeforeWriteCopiesASharedTextOnly) {
  OpenCString theString("abc");
  const qvCStringData* theData = theString.mCStringData;
  theString.CopyBeforeWrite();
  EXPECT_EQ(theData, theString.mCStringData);
  const qvCString theCopy(theString);
  theString.CopyBeforeWrite();
  EXPECT_EQ(theData, theCopy.mCStringData);
  EXPECT_NE(theData, theString.mCStringData);
  EXPECT_EQ("abc", TextOf(theString));
  EXPECT_EQ(1, CountOf(theString));
  EXPECT_EQ(1, CountOf(theCopy));
}

TEST(qvCStringSharing, CopyBeforeWriteLeavesTheEmptyTextShared) {
  OpenCString theString;
  theString.CopyBeforeWrite();
  EXPECT_TRUE(IsSharedEmptyText(theString));
}

TEST(qvCStringSharing, AllocBeforeWriteReplacesSharedAndEmptyTexts) {
  OpenCString theEmpty;
  theEmpty.AllocBeforeWrite(5);
  EXPECT_EQ(1, CountOf(theEmpty));
  EXPECT_EQ(0u, theEmpty.length());
  EXPECT_EQ(19u, CapacityOf(theEmpty));

  OpenCString theShared("abc");
  const qvCString theCopy(theShared);
  theShared.AllocBeforeWrite(40);
  EXPECT_EQ(1, CountOf(theShared));
  EXPECT_EQ(1, CountOf(theCopy));
  EXPECT_EQ(0u, theShared.length());
  EXPECT_EQ(51u, CapacityOf(theShared));
  EXPECT_EQ("abc", TextOf(theCopy));
}

TEST(qvCStringSharing, AllocBeforeWriteKeepsABlockThatIsLargeEnough) {
  OpenCString theString("abc");
  const qvCStringData* theData = theString.mCStringData;
  theString.AllocBeforeWrite(19);
  EXPECT_EQ(theData, theString.mCStringData);
  EXPECT_EQ(0u, theString.length());
  theString.AllocBeforeWrite(20);
  EXPECT_EQ(35u, CapacityOf(theString));
}

TEST(qvCStringSharing, AllocBeforeWriteOfNothingFailsAnAssertion) {
  OpenCString theString("abc");
  EXPECT_QV_ASSERTION(theString.AllocBeforeWrite(0), "aLength != 0", "CString");
}

TEST(qvCStringSharing, AllocDoesNothingWhileTheCapacityIsAboveTheLength) {
  qvCString theString("abc");
  const qvCStringData* theData = theString.mCStringData;
  theString.Alloc(18);
  EXPECT_EQ(theData, theString.mCStringData);
  EXPECT_EQ(19u, CapacityOf(theString));
}

TEST(qvCStringSharing, AllocGrowsABlockWhoseCapacityIsTheLength) {
  qvCString theString("abc");
  theString.Alloc(19);
  EXPECT_EQ(35u, CapacityOf(theString));
  EXPECT_EQ("abc", TextOf(theString));
}

TEST(qvCStringSharing, RoomMadeForTheEmptyStringReadsAsEmpty) {
  mallopt(M_PERTURB, 0xAA);  // new blocks of this size are full of 0x55
  qvCString theString;
  theString.Alloc(100000);
  EXPECT_EQ("", TextOf(theString));
}

TEST(qvCStringSharing, AllocMakesABlockForTheEmptyString) {
  qvCString theString;
  theString.Alloc(100);
  EXPECT_EQ(115u, CapacityOf(theString));
  EXPECT_EQ(1, CountOf(theString));
  EXPECT_EQ("", TextOf(theString));
}

TEST(qvCStringSharing, AllocOfNothingForTheEmptyStringFailsAnAssertion) {
  qvCString theString;
  EXPECT_QV_ASSERTION(theString.Alloc(0), "aLength > 0", "CString");
}

TEST(qvCStringSharing, AllocCopiesASharedText) {
  qvCString theString("abc");
  const qvCString theCopy(theString);
  theString.Alloc(100);
  EXPECT_EQ(115u, CapacityOf(theString));
  EXPECT_EQ("abc", TextOf(theString));
  EXPECT_EQ(1, CountOf(theCopy));
}

TEST(qvCStringSharing, AllocLeavesASpecialTextWrapped) {
  qvCString theString(qvCString::FromStaticString("a text that is longer than the length asked for"));
  theString.Alloc(10);
  theString.Alloc(1000);
  EXPECT_EQ(kqvCStringData_StaticText, CapacityOf(theString));
}

TEST(qvCStringSharing, AllocOfALengthThatNoBlockHoldsFailsAnAssertion) {
  qvCString theString("abc");
  EXPECT_QV_ASSERTION(
      theString.Alloc(qvCString::npos),
      "aLength < (kqvuint32_max / sizeof(char)) - (sizeof(qvCStringData) + qvxString_Extra(aLength) + 1)",
      "CString");
}

TEST(qvCStringSharing, AssignCopyTakesBytesAndNothingGivesTheEmptyText) {
  OpenCString theString("abc");
  theString.AssignCopy(3, "x\0y");
  EXPECT_EQ(Bytes("x\0y"), TextOf(theString));
  theString.AssignCopy(0, "abc");
  EXPECT_TRUE(IsSharedEmptyText(theString));
}

TEST(qvCStringSharing, ConcatSelfUsesTheRoomThatIsLeft) {
  OpenCString theString("a");
  const qvCStringData* theData = theString.mCStringData;
  theString.ConcatSelf(18, "234567890123456789", qvCString::npos);
  EXPECT_EQ("a234567890123456789", TextOf(theString));
  EXPECT_EQ(theData, theString.mCStringData);
  EXPECT_EQ(19u, CapacityOf(theString));
}

TEST(qvCStringSharing, ConcatSelfAppendsTheSmallerOfBothLengths) {
  OpenCString theString("abc");
  theString.ConcatSelf(3, "defghi", 6);
  theString.ConcatSelf(6, "DEFGHI", 2);
  theString.ConcatSelf(0, "x", 5);
  theString.ConcatSelf(5, "x", 0);
  EXPECT_EQ("abcdefDE", TextOf(theString));
}
