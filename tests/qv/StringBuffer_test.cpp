#include "qv/StringBuffer.h"

#include <gtest/gtest.h>
#include <stddef.h>
#include <string.h>

#include "support/CStringText.h"
#include "support/ChildProcess.h"

TEST(qvCStringBuffer, HoldsTheStringAndItsBuffer) {
  qvCString theString;
  {
    qvCStringBuffer theBuffer(theString, 8);
    EXPECT_EQ(&theString, &theBuffer.mString);
    EXPECT_EQ(theString.mStringPtr, theBuffer.mBuffer);
    EXPECT_EQ(2 * sizeof(void*), sizeof(theBuffer));
    EXPECT_EQ(reinterpret_cast<char*>(&theBuffer) + sizeof(void*),
              reinterpret_cast<char*>(&theBuffer.mBuffer));
  }
}

TEST(qvCStringBuffer, TheStringIsCheckedOutInTheScope) {
  qvCString theString;
  {
    qvCStringBuffer theBuffer(theString, 8);
    EXPECT_FALSE(theString.mCStringData->IsValid());
  }
  EXPECT_TRUE(theString.mCStringData->IsValid());
}

TEST(qvCStringBuffer, TheLengthIsThatOfTheTextWritten) {
  qvCString theString("something before");
  {
    qvCStringBuffer theBuffer(theString, 100);
    strcpy(theBuffer, "hello");
  }
  EXPECT_EQ("hello", TextOf(theString));
}

TEST(qvCStringBuffer, TheWholeRoomCanBeFilledWithoutATerminator) {
  qvCString theString;
  {
    qvCStringBuffer theBuffer(theString, 5);
    memcpy(theBuffer, "hello", 5);
  }
  EXPECT_EQ("hello", TextOf(theString));
}

TEST(qvCStringBuffer, AFreshBufferThatNobodyWritesToGivesTheEmptyString) {
  qvCString theString;
  { qvCStringBuffer theBuffer(theString, 100); }
  EXPECT_EQ("", TextOf(theString));
}

TEST(qvCStringBuffer, AnotherOwnerOfTheTextKeepsIt) {
  qvCString theString("shared");
  const qvCString theCopy(theString);
  {
    qvCStringBuffer theBuffer(theString, 6);
    strcpy(theBuffer, "mine");
  }
  EXPECT_EQ("mine", TextOf(theString));
  EXPECT_EQ("shared", TextOf(theCopy));
}

TEST(qvCStringBuffer, ALengthOfZeroFailsAnAssertion) {
  qvCString theString;
  EXPECT_QV_ASSERTION(qvCStringBuffer(theString, 0), "aLength != 0", "CString");
}
