// How the text of a qvCString is checked out for writing and given back.
#include <gtest/gtest.h>
#include <malloc.h>
#include <string.h>

#include "qv/CString.h"
#include "support/CStringText.h"
#include "support/ChildProcess.h"
#include "support/HeapUse.h"

TEST(qvCStringWriteBuffer, AWriteBufferIsFilledAndGivenBack) {
  qvCString theString("old");
  char* theBuffer = theString.GetWriteBuf(100);
  EXPECT_EQ(0, theString.mCStringData->mRefCount);
  EXPECT_EQ(0u, theString.length());
  EXPECT_EQ(theBuffer, theString.mStringPtr);
  strcpy(theBuffer, "written");
  theString.UngetWriteBuf();
  EXPECT_EQ(1, theString.mCStringData->mRefCount);
  EXPECT_EQ("written", TextOf(theString));
}

TEST(qvCStringWriteBuffer, AWriteBufferOfASharedTextIsAFreshOne) {
  const qvCString theOriginal("abc");
  qvCString theString(theOriginal);
  memcpy(theString.GetWriteBuf(3), "xyz", 3);
  theString.UngetWriteBuf(3);
  EXPECT_EQ("xyz", TextOf(theString));
  EXPECT_EQ("abc", TextOf(theOriginal));
}

TEST(qvCStringWriteBuffer, AWriteBufferEndsAtTheLengthGivenBack) {
  qvCString theString;
  memcpy(theString.GetWriteBuf(6), "ab\0def", 6);
  theString.UngetWriteBuf(5);
  EXPECT_EQ(Bytes("ab\0de"), TextOf(theString));
}

TEST(qvCStringWriteBuffer, AWriteBufferHoldsItsWholeLengthWithoutATerminatorFromTheCaller) {
  qvCString theString("a text that is longer than the buffer");
  memset(theString.GetWriteBuf(10), 'x', 10);
  theString.UngetWriteBuf();
  EXPECT_EQ("xxxxxxxxxx", TextOf(theString));
}

TEST(qvCStringWriteBuffer, AFreshWriteBufferReadsAsEmpty) {
  mallopt(M_PERTURB, 0xAA);  // new blocks are full of 0x55
  qvCString theString;
  theString.GetWriteBuf(100000);
  theString.UngetWriteBuf();
  EXPECT_EQ("", TextOf(theString));
}

TEST(qvCStringWriteBuffer, ASecondWriteBufferFailsAnAssertion) {
  qvCString theString("abc");
  theString.GetWriteBuf(3);
  EXPECT_QV_ASSERTION(theString.GetWriteBuf(3), "mCStringData->mRefCount == 1", "CString");
  theString.UngetWriteBuf();
}

TEST(qvCStringWriteBuffer, AWriteBufferOfNothingFailsAnAssertion) {
  qvCString theString("abc");
  EXPECT_QV_ASSERTION(theString.GetWriteBuf(0), "aLength != 0", "CString");
}

TEST(qvCStringWriteBuffer, CopyingAStringWhoseBufferIsOutFailsAnAssertion) {
  qvCString theString("abc");
  theString.GetWriteBuf(3);
  EXPECT_QV_ASSERTION(qvCString theCopy(theString), "aCString.mCStringData->IsValid()", "CString");
  theString.UngetWriteBuf();
}

TEST(qvCStringWriteBuffer, AssigningAStringWhoseBufferIsOutFailsAnAssertion) {
  qvCString theString("abc");
  qvCString theOther;
  theString.GetWriteBuf(3);
  EXPECT_QV_ASSERTION(theOther = theString, "aCString.mCStringData->IsValid()", "CString");
  const qvCString& theAlias = theString;
  EXPECT_QV_ASSERTION(theString = theAlias, "aCString.mCStringData->IsValid()", "CString");
  theString.UngetWriteBuf();
}

TEST(qvCStringWriteBuffer, SearchingForAStringWhoseBufferIsOutFailsAnAssertion) {
  qvCString theString("abc");
  const qvCString theOther("abcabc");
  theString.GetWriteBuf(3);
  EXPECT_QV_ASSERTION(theOther.Find(theString, 0), "aCString.mCStringData->IsValid()", "CString");
  EXPECT_QV_ASSERTION(theOther.FindNoCase(theString, 0), "aCString.mCStringData->IsValid()", "CString");
  theString.UngetWriteBuf();
}

TEST(qvCStringWriteBuffer, GivingBackMoreThanTheRoomFailsAnAssertion) {
  qvCString theString;
  theString.GetWriteBuf(5);
  EXPECT_QV_ASSERTION(theString.UngetWriteBuf(20), "aLength <= mCStringData->mAllocatedLength", "CString");
  theString.UngetWriteBuf(19);
}

TEST(qvCStringWriteBuffer, GivingBackABufferThatIsNotOutFailsAnAssertionForSharedTexts) {
  const char* const kText = "mCStringData->mRefCount == 0 || mCStringData->mRefCount == 1";
  qvCString theEmpty;
  EXPECT_QV_ASSERTION(theEmpty.UngetWriteBuf(), kText, "CString");
  qvCString theShared("abc");
  const qvCString theCopy(theShared);
  EXPECT_QV_ASSERTION(theShared.UngetWriteBuf(1), kText, "CString");
  qvCString theWrapped(qvCString::FromStaticString("abc"));
  EXPECT_QV_ASSERTION(theWrapped.UngetWriteBuf(1), kText, "CString");
}

TEST(qvCStringWriteBuffer, DestroyingAStringWhoseBufferIsOutFreesIt) {
  ExpectNoHeapGrowth([] {
    qvCString theString("abc");
    theString.GetWriteBuf(100);
  });
}
