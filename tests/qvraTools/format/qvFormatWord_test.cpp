// Arithmetic that has another form on processors of 32 and of 64 bits.
#include "qvraTools/format/qvFormatWord_p.h"

#include <gtest/gtest.h>

static void ExpectProduct(uint64 aHigh, uint64 aLow, uint64 aLeft, uint64 aRight) {
  qvFormat128 theProduct = qvFormat_Multiply(aLeft, aRight);
  EXPECT_EQ(aHigh, theProduct.mHigh) << aLeft << " * " << aRight;
  EXPECT_EQ(aLow, theProduct.mLow) << aLeft << " * " << aRight;
}

TEST(qvFormatWord, AProductHasAll128Bits) {
  ExpectProduct(0, 0, 0, UINT64_MAX);
  ExpectProduct(0, UINT64_MAX, 1, UINT64_MAX);
  ExpectProduct(UINT64_MAX - 1, 1, UINT64_MAX, UINT64_MAX);
  ExpectProduct(1, 0, 0x100000000, 0x100000000);
  ExpectProduct(0, 0xfffffffe00000001, 0xffffffff, 0xffffffff);
  ExpectProduct(0x121fa00ad77d7422, 0x35a1df76f0d5adf0, 0x123456789abcdef0, 0xfedcba9876543211);
}

static void ExpectQuotient(uint64 aQuotient, uint32 aRest, uint64 aValue) {
  uint32 theRest = 1;
  EXPECT_EQ(aQuotient, qvFormat_DivideByBillion(aValue, &theRest)) << aValue;
  EXPECT_EQ(aRest, theRest) << aValue;
}

TEST(qvFormatWord, ADivisionByABillionIsExactForAllValues) {
  ExpectQuotient(0, 0, 0);
  ExpectQuotient(0, 999999999, 999999999);
  ExpectQuotient(1, 0, 1000000000);
  ExpectQuotient(4, 294967295, 4294967295);
  ExpectQuotient(999999999, 999999999, 999999999999999999);
  ExpectQuotient(1000000000, 0, 1000000000000000000);
  ExpectQuotient(18446744072, 999999999, 18446744072999999999u);
  ExpectQuotient(18446744073, 0, 18446744073000000000u);
  ExpectQuotient(18446744073, 709551615, UINT64_MAX);
}
