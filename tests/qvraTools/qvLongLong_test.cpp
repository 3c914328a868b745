// The arithmetic of the signed half of qvLongLong.h. Its doubles and texts are in
// qvLongLongConversions_test.cpp, the unsigned half is in qvULongLong_test.cpp.

#include "qvraTools/qvLongLong.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <stddef.h>

#include <vector>

#include "support/ChildProcess.h"
#include "support/TwoWords.h"

namespace {

constexpr int64 kMax = INT64_MAX;
constexpr int64 kMin = INT64_MIN;
constexpr int64 kWord = 0x100000000;  // 2^32

struct OperationCase {
  int64 mX;
  int64 mY;
  int64 mValue;
  int mResult;
  const char* mWhy;
};

void Expect(int (*anOperation)(qvLongLong*, const qvLongLong*), const OperationCase& aCase) {
  SCOPED_TRACE(aCase.mWhy);
  qvLongLong theX = LongLong(aCase.mX);
  const qvLongLong theY = LongLong(aCase.mY);
  EXPECT_EQ(aCase.mResult, anOperation(&theX, &theY));
  EXPECT_EQ(aCase.mValue, Native(theX));
  EXPECT_EQ(aCase.mY, Native(theY));
}

// A value from its words.
constexpr int64 Words(int32 aHigh, uint32 aLow) { return static_cast<int64>(aHigh) * kWord + aLow; }

struct DivisionCase {
  int64 mX;
  int64 mY;
  int64 mQuotient;
  int64 mRemainder;
  int mResult;
  const char* mWhy;
};

void Expect(const DivisionCase& aCase) {
  Expect(qvLongLong_Div, {aCase.mX, aCase.mY, aCase.mQuotient, aCase.mResult, aCase.mWhy});
  Expect(qvLongLong_Mod, {aCase.mX, aCase.mY, aCase.mRemainder, aCase.mResult, aCase.mWhy});
}

}  // namespace

TEST(qvLongLong, TheLowWordComesFirstAndTheHighWordIsSigned) {
  EXPECT_EQ(8u, sizeof(qvLongLong));
  EXPECT_EQ(0u, offsetof(qvLongLong, mLow));
  EXPECT_EQ(4u, offsetof(qvLongLong, mHigh));
  EXPECT_TRUE((std::is_same<uint32, decltype(qvLongLong::mLow)>::value));
  EXPECT_TRUE((std::is_same<int32, decltype(qvLongLong::mHigh)>::value));
}

TEST(qvLongLong, InitialisersTakeTheHighWordFirst) {
  const qvLongLong theValue = qvLongLong_Init(-1, 0xFFFFFFFE);
  EXPECT_EQ(-2, Native(theValue));
  const qvLongLong theZero = qvLongLong_Init_0;
  EXPECT_EQ(0, Native(theZero));
}

TEST(qvLongLong, TheConstantsAreAddressesOfObjects) {
  EXPECT_EQ(&_qvLongLong_0_impl, qvLongLong_0);
  EXPECT_EQ(&_qvLongLong_Max_impl, qvLongLong_Max);
  EXPECT_EQ(&_qvLongLong_Min_impl, qvLongLong_Min);
  EXPECT_EQ(0, Native(*qvLongLong_0));
  EXPECT_EQ(kMax, Native(*qvLongLong_Max));
  EXPECT_EQ(kMin, Native(*qvLongLong_Min));
}

TEST(qvLongLong, MSBIsTheSign) {
  EXPECT_TRUE(qvLongLong_IsMSBSet(qvLongLong_Min));
  EXPECT_FALSE(qvLongLong_IsMSBSet(qvLongLong_Max));
}

TEST(qvLongLong, SetTakesTheHighWordFirst) {
  qvLongLong theValue;
  qvLongLong_Set(&theValue, -1, 2);
  EXPECT_EQ(Words(-1, 2), Native(theValue));
}

TEST(qvLongLong, SetInt32ExtendsTheSign) {
  const int32 kValues[] = {0, 1, -1, INT32_MAX, INT32_MIN};
  for (int32 theInt32 : kValues) {
    qvLongLong theValue = LongLong(99);
    qvLongLong_SetInt32(&theValue, theInt32);
    EXPECT_EQ(static_cast<int64>(theInt32), Native(theValue));
  }
}

TEST(qvLongLong, AddReportsOverflow) {
  const OperationCase kCases[] = {
      {2, 3, 5, 0, "small"},
      {-2, -3, -5, 0, "negative"},
      {-2, 3, 1, 0, "of opposite signs"},
      {0xFFFFFFFF, 1, kWord, 0, "carry into the high word"},
      {-1, 1, 0, 0, "the carry leaves the top without overflow"},
      {kMax, 1, kMin, 1, "the carry reaches the sign"},
      {kMin, -1, kMax, 1, "below the minimum"},
      {kMax, kMax, -2, 1, "both maximal"},
      {kMin, kMin, 0, 1, "both minimal"},
      {kMax, kMin, -1, 0, "of opposite signs there is none"},
      {kMin, kMax, -1, 0, "in either order"},
      {Words(-3, 0), Words(5, 0), Words(2, 0), 0, "of opposite signs in the high words"},
      {Words(0x40000000, 0), Words(0x40000000, 0), kMin, 1, "the high words overflow"},
      {Words(0x3FFFFFFF, 0xFFFFFFFF), Words(0x40000000, 0), kMax, 0, "just fits"},
      {Words(0x3FFFFFFF, 0xFFFFFFFF), Words(0x40000000, 1), kMin, 1, "one more, by the carry"},
      {Words(-0x40000000, 0), Words(-0x40000000, 0), kMin, 0, "the minimum just fits"},
  };
  for (const OperationCase& theCase : kCases) {
    Expect(qvLongLong_Add, theCase);
  }
}

TEST(qvLongLong, AddInt32ExtendsTheSign) {
  qvLongLong theValue = LongLong(5);
  EXPECT_EQ(0, qvLongLong_AddInt32(&theValue, -7));
  EXPECT_EQ(-2, Native(theValue));
  EXPECT_EQ(0, qvLongLong_AddInt32(&theValue, INT32_MAX));
  EXPECT_EQ(2147483645, Native(theValue));
  theValue = *qvLongLong_Min;
  EXPECT_EQ(1, qvLongLong_AddInt32(&theValue, -1));
  EXPECT_EQ(kMax, Native(theValue));
  EXPECT_EQ(1, qvLongLong_AddInt32(&theValue, 1));
  EXPECT_EQ(kMin, Native(theValue));
}

TEST(qvLongLong, AddUInt32HasNoSign) {
  qvLongLong theValue = LongLong(-1);
  EXPECT_EQ(0, qvLongLong_AddUInt32(&theValue, 0xFFFFFFFF));
  EXPECT_EQ(0xFFFFFFFE, Native(theValue));
  theValue = *qvLongLong_Max;
  EXPECT_EQ(1, qvLongLong_AddUInt32(&theValue, 0xFFFFFFFF));
  EXPECT_EQ(Words(INT32_MIN, 0xFFFFFFFE), Native(theValue));
}

TEST(qvLongLong, SubBorrowsFromTheHighWord) {
  const OperationCase kCases[] = {
      {5, 3, 2, 0, "small"},
      {3, 5, -2, 0, "to below zero"},
      {-3, -5, 2, 0, "negative"},
      {0, 1, -1, 0, "zero minus one"},
      {kWord, 1, 0xFFFFFFFF, 0, "borrow"},
      {kMin, 1, kMax, 1, "the borrow passes the minimum"},
      {kMin, 0, kMin, 0, "nothing"},
  };
  for (const OperationCase& theCase : kCases) {
    Expect(qvLongLong_Sub, theCase);
  }
}

TEST(qvLongLong, SubInt32ExtendsTheSignAndSubUInt32HasNone) {
  qvLongLong theValue = LongLong(5);
  EXPECT_EQ(0, qvLongLong_SubInt32(&theValue, -7));
  EXPECT_EQ(12, Native(theValue));
  EXPECT_EQ(0, qvLongLong_SubInt32(&theValue, INT32_MIN));
  EXPECT_EQ(2147483660, Native(theValue));
  EXPECT_EQ(0, qvLongLong_SubUInt32(&theValue, 0xFFFFFFFF));
  EXPECT_EQ(-2147483635, Native(theValue));
  theValue = *qvLongLong_Min;
  EXPECT_EQ(1, qvLongLong_SubInt32(&theValue, 1));
  EXPECT_EQ(kMax, Native(theValue));
  theValue = *qvLongLong_Min;
  EXPECT_EQ(1, qvLongLong_SubUInt32(&theValue, 0x80000000));
  EXPECT_EQ(Words(0x7FFFFFFF, 0x80000000), Native(theValue));
}

TEST(qvLongLong, MultGivesTheProduct) {
  const OperationCase kCases[] = {
      {0, 5, 0, 0, "zero"},
      {5, 0, 0, 0, "zero"},
      {3, 5, 15, 0, "small"},
      {-3, 5, -15, 0, "a negative multiplicand"},
      {1, -1, -1, 0, "a negative multiplier"},
      {2, -1, -2, 0, "a negative multiplier"},
      {1000000007, 1000000009, 1000000016000000063, 0, "two words"},
      {kMin, 1, kMin, 0, "the minimum"},
      {kMax, 1, kMax, 0, "the maximum"},
      {1, kMin, kMin, 0, "times the minimum"},
      {Words(0x30000000, 0), 3, Words(-0x70000000, 0), 1, "an addition overflows"},
  };
  for (const OperationCase& theCase : kCases) {
    Expect(qvLongLong_Mult, theCase);
  }
}

TEST(qvLongLong, DivisionTruncates) {
  const DivisionCase kCases[] = {
      {7, 2, 3, 1, 0, "both positive"},
      {7, -2, -3, 1, 0, "the remainder has the dividend's sign"},
      {-7, 2, -3, -1, 0, "the remainder has the dividend's sign"},
      {-7, -2, 3, -1, 0, "both negative"},
      {0, -5, 0, 0, 0, "zero"},
      {5, 1, 5, 0, 0, "by one"},
      {kMin, 1, kMin, 0, 0, "the minimum by one"},
      {5, 5, 1, 0, 0, "equal"},
      {5, -5, -1, 0, 0, "of equal magnitude"},
      {2, 7, 0, 2, 0, "smaller than the divisor"},
      {-2, 7, 0, -2, 0, "of smaller magnitude than the divisor"},
      {kMin, 10, -922337203685477580, -8, 0, "the minimum"},
      {kMin, -10, 922337203685477580, -8, 0, "the minimum by a negative number"},
      {kMin, 2, -4611686018427387904, 0, 0, "the minimum by two"},
      {kMin, kMax, -1, -1, 0, "the minimum by the maximum"},
      {kMax, -1, -kMax, 0, 0, "the maximum by -1"},
      {kMax, 10, 922337203685477580, 7, 0, "the maximum"},
      {kMax, kWord, 0x7FFFFFFF, 0xFFFFFFFF, 0, "by 2^32"},
      {-kWord, kWord, -1, 0, 0, "-2^32 as dividend"},
      {Words(-5, 0), kWord, -5, 0, 0, "by 2^32"},
  };
  for (const DivisionCase& theCase : kCases) {
    Expect(theCase);
  }
}

TEST(qvLongLong, TheMinimumByMinusOneOverflows) {
  Expect(DivisionCase{kMin, -1, kMin, 0, 1, "2^63 does not fit"});
  Expect(DivisionCase{kMin + 1, -1, kMax, 0, 0, "its neighbour fits"});
}

TEST(qvLongLong, DivisionByTheMinimumGivesZeroAndTheDividend) {
  Expect(DivisionCase{5, kMin, 0, 5, 0, "positive"});
  Expect(DivisionCase{-5, kMin, 0, -5, 0, "negative"});
  Expect(DivisionCase{0, kMin, 0, 0, 0, "zero"});
  Expect(DivisionCase{kMax, kMin, 0, kMax, 0, "the maximum"});
  Expect(DivisionCase{kMin + 1, kMin, 0, kMin + 1, 0, "one above the minimum"});
  Expect(DivisionCase{kMin, kMin, 1, 0, 0, "only the minimum itself holds it once"});
}

TEST(qvLongLong, ModUInt32TakesAWordWithoutSign) {
  qvLongLong theValue = LongLong(-7);
  EXPECT_EQ(0, qvLongLong_ModUInt32(&theValue, 4));
  EXPECT_EQ(-3, Native(theValue));
  theValue = LongLong(kWord);
  EXPECT_EQ(0, qvLongLong_ModUInt32(&theValue, 0xFFFFFFFF));
  EXPECT_EQ(1, Native(theValue));
}

TEST(qvLongLong, DividingByZeroFaults) {
  const int64 kDividends[] = {7, -7, 0, kMin};
  for (int64 theDividend : kDividends) {
    SCOPED_TRACE(theDividend);
    const ChildResult theResult = RunInChild([&] {
      signal(SIGFPE, SIG_DFL);  // a sanitizer would take it
      qvLongLong theValue = LongLong(theDividend);
      qvLongLong_Div(&theValue, qvLongLong_0);
    });
    EXPECT_EQ(SIGFPE, theResult.mSignal);
  }
}

TEST(qvLongLong, DividingByZeroFaultsInEveryForm) {
  const ChildResult theMod = RunInChild([] {
    signal(SIGFPE, SIG_DFL);
    qvLongLong theValue = LongLong(7);
    qvLongLong_Mod(&theValue, qvLongLong_0);
  });
  EXPECT_EQ(SIGFPE, theMod.mSignal);
  const ChildResult theModUInt32 = RunInChild([] {
    signal(SIGFPE, SIG_DFL);
    qvLongLong theValue = LongLong(7);
    qvLongLong_ModUInt32(&theValue, 0);
  });
  EXPECT_EQ(SIGFPE, theModUInt32.mSignal);
}

TEST(qvLongLong, ShiftLeftReportsTheSignToo) {
  const struct {
    int64 mX;
    uint32 mBits;
    int64 mValue;
    int mResult;
    const char* mWhy;
  } kCases[] = {
      {1, 0, 1, 0, "by nothing"},
      {-1, 0, -1, 0, "by nothing"},
      {1, 31, 0x80000000, 0, "within the low word"},
      {Words(0x20000000, 0), 1, Words(0x40000000, 0), 0, "within the value"},
      {Words(0x40000000, 0), 1, kMin, 0, "into the sign is no loss"},
      {-1, 1, -2, 1, "the sign leaves: every negative value reports"},
      {kMin, 1, 0, 1, "the sign leaves"},
      {1, 63, kMin, 1, "as for the unsigned type"},
      {-kWord, 32, 0, 0, "as for the unsigned type"},
      {1, 64, 0, 1, "as for the unsigned type"},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    qvLongLong theX = LongLong(theCase.mX);
    EXPECT_EQ(theCase.mResult, qvLongLong_ShiftLeft(&theX, theCase.mBits));
    EXPECT_EQ(theCase.mValue, Native(theX));
  }
}

TEST(qvLongLong, ShiftRightKeepsTheSign) {
  const struct {
    int64 mX;
    uint32 mBits;
    int64 mValue;
  } kCases[] = {
      {Words(-2, 5), 0, Words(-2, 5)},
      {-1, 1, -1},
      {-8, 2, -2},
      {-7, 1, -4},
      {kMin, 1, Words(-0x40000000, 0)},
      {kMin, 31, -kWord},
      {kMin, 32, INT32_MIN},
      {kMin, 33, -0x40000000},
      {kMin, 62, -2},
      {kMin, 63, -1},
      {kMin, 64, -1},
      {kMin, 0xFFFFFFFF, -1},
      {kMax, 1, Words(0x3FFFFFFF, 0xFFFFFFFF)},
      {kMax, 32, 0x7FFFFFFF},
      {kMax, 62, 1},
      {kMax, 63, 0},
      {kMax, 64, 0},
      {kMax, 0xFFFFFFFF, 0},
      {Words(-2, 5), 32, -2},
      {Words(-2, 5), 31, -4},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(std::to_string(theCase.mX) + " by " + std::to_string(theCase.mBits));
    qvLongLong theX = LongLong(theCase.mX);
    qvLongLong_ShiftRight(&theX, theCase.mBits);
    EXPECT_EQ(theCase.mValue, Native(theX));
  }
}

TEST(qvLongLong, NegateOverflowsForTheMinimumOnly) {
  const struct {
    int64 mX;
    int64 mValue;
    int mResult;
  } kCases[] = {
      {0, 0, 0},          {1, -1, 0},       {-1, 1, 0},       {kWord, -kWord, 0},
      {-kWord, kWord, 0}, {kMax, -kMax, 0}, {-kMax, kMax, 0}, {kMin, kMin, 1},
  };
  for (const auto& theCase : kCases) {
    qvLongLong theX = LongLong(theCase.mX);
    EXPECT_EQ(theCase.mResult, qvLongLong_Negate(&theX));
    EXPECT_EQ(theCase.mValue, Native(theX));
  }
}

TEST(qvLongLong, AbsOverflowsForTheMinimumOnly) {
  const struct {
    int64 mX;
    int64 mValue;
    int mResult;
  } kCases[] = {
      {0, 0, 0}, {5, 5, 0}, {-5, 5, 0}, {-kWord, kWord, 0}, {-kMax, kMax, 0}, {kMin, kMin, 1},
  };
  for (const auto& theCase : kCases) {
    qvLongLong theX = LongLong(theCase.mX);
    EXPECT_EQ(theCase.mResult, qvLongLong_Abs(&theX));
    EXPECT_EQ(theCase.mValue, Native(theX));
  }
}

TEST(qvLongLong, ComparisonsAreSignedInTheHighWordAndUnsignedInTheLow) {
  const int64 kAscending[] = {kMin,       kMin + 1,   -kWord - 1, -kWord, -0x80000000LL, -1,  0,
                              0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, kWord,  kMax - 1,      kMax};
  const int kCount = sizeof(kAscending) / sizeof(kAscending[0]);
  for (int i = 0; i < kCount; ++i) {
    for (int j = 0; j < kCount; ++j) {
      SCOPED_TRACE(std::to_string(kAscending[i]) + " and " + std::to_string(kAscending[j]));
      const qvLongLong theX = LongLong(kAscending[i]);
      const qvLongLong theY = LongLong(kAscending[j]);
      EXPECT_EQ(i < j ? 1 : 0, qvLongLong_Less(&theX, &theY));
      EXPECT_EQ(i == j ? 1 : 0, qvLongLong_Equal(&theX, &theY));
    }
  }
}

TEST(qvLongLong, BothArgumentsMayBeTheSameObject) {
  qvLongLong theValue = LongLong(-0x180000001);
  qvLongLong_Add(&theValue, &theValue);
  EXPECT_EQ(-0x300000002, Native(theValue));
  qvLongLong_Sub(&theValue, &theValue);
  EXPECT_EQ(0, Native(theValue));
  theValue = LongLong(-100000);
  qvLongLong_Mult(&theValue, &theValue);
  EXPECT_EQ(10000000000, Native(theValue));
  qvLongLong_Div(&theValue, &theValue);
  EXPECT_EQ(1, Native(theValue));
  qvLongLong_Mod(&theValue, &theValue);
  EXPECT_EQ(0, Native(theValue));
}

TEST(qvLongLong, ValuesAgreeWithNativeIntegers) {
  const std::vector<uint64> theValues = TryValues();
  for (uint64 theXBits : theValues) {
    for (uint64 theYBits : theValues) {
      const qvULongLong theWords[2] = {ULongLong(theXBits), ULongLong(theYBits)};
      qvLongLong theOperands[2];
      memcpy(theOperands, theWords, sizeof(theOperands));
      const int64 theX = Native(theOperands[0]);
      const int64 theY = Native(theOperands[1]);
      int64 theExpected = 0;

      qvLongLong theValue = theOperands[0];
      const int theRealOverflow = __builtin_add_overflow(theX, theY, &theExpected);
      const int theOverflow = qvLongLong_Add(&theValue, &theOperands[1]);
      ASSERT_EQ(theExpected, Native(theValue)) << theX << " + " << theY;
      ASSERT_TRUE(theOverflow || !theRealOverflow) << theX << " + " << theY;

      theValue = theOperands[0];
      (void)!__builtin_sub_overflow(theX, theY, &theExpected);
      qvLongLong_Sub(&theValue, &theOperands[1]);
      ASSERT_EQ(theExpected, Native(theValue)) << theX << " - " << theY;

      theValue = theOperands[0];
      (void)!__builtin_mul_overflow(theX, theY, &theExpected);
      qvLongLong_Mult(&theValue, &theOperands[1]);
      ASSERT_EQ(theExpected, Native(theValue)) << theX << " * " << theY;

      if (theY == 0 || theY == -kWord || (theX == kMin && theY == -1)) {
        continue;  // a fault, the shortcut and the overflow have tests of their own
      }
      theValue = theOperands[0];
      ASSERT_EQ(0, qvLongLong_Div(&theValue, &theOperands[1]));
      ASSERT_EQ(theX / theY, Native(theValue)) << theX << " / " << theY;
      theValue = theOperands[0];
      ASSERT_EQ(0, qvLongLong_Mod(&theValue, &theOperands[1]));
      ASSERT_EQ(theX % theY, Native(theValue)) << theX << " % " << theY;
    }
  }
}

TEST(qvLongLongKept, AddPredictsOverflowBeforeTheCarry) {
  Expect(qvLongLong_Add, {kMin, 0, kMin, 0, "its neighbour: no carry is needed"});
  Expect(qvLongLong_Add, {Words(INT32_MIN, 0xFFFFFFFF), Words(-1, 1), kMin, 1, "the kept one: the sum fits"});
  Expect(qvLongLong_Add, {Words(INT32_MIN, 0xFFFFFFFF), Words(-1, 0), kMax, 1, "one less does not fit"});
  Expect(qvLongLong_Add, {Words(INT32_MIN + 1, 0xFFFFFFFF), Words(-1, 1), Words(INT32_MIN + 1, 0), 0,
                          "its neighbour with a carry"});
}

TEST(qvLongLongKept, SubPredictsOverflowForOperandsOfTheSameSignOnly) {
  const OperationCase kCases[] = {
      {kMax, -1, kMin, 0, "a real overflow passes"},
      {0, kMin, kMin, 0, "a real overflow passes"},
      {kMin, kMax, 1, 0, "a real overflow passes"},
      {kMin, 1, kMax, 1, "unless the borrow causes it"},
      {kMax, kMax, 0, 1, "no overflow, but reported"},
      {kMin, kMin, 0, 1, "no overflow, but reported"},
      {Words(1, 0), Words(0x7FFFFFFF, 0), Words(-0x7FFFFFFE, 0), 0, "the bound is 0x7FFFFFFF"},
      {Words(2, 0), Words(0x7FFFFFFE, 0), Words(-0x7FFFFFFC, 0), 0, "the bound is 0x7FFFFFFE"},
      {Words(2, 0), Words(0x7FFFFFFF, 0), Words(-0x7FFFFFFD, 0), 1, "one above it"},
      {Words(0x7FFFFFFF, 0), Words(1, 0), Words(0x7FFFFFFE, 0), 0, "the bound is 1"},
      {Words(0x7FFFFFFF, 0), Words(2, 0), Words(0x7FFFFFFD, 0), 1, "one above it"},
      {Words(0x7FFFFFFF, 0), Words(2, 1), Words(0x7FFFFFFC, 0xFFFFFFFF), 1, "a borrow does not take it back"},
      {Words(0, 5), Words(0x7FFFFFFF, 0), Words(-0x7FFFFFFF, 5), 0, "a high word of 0 is not looked at"},
      {-1, kMin, kMax, 0, "the bound wraps to the lowest word"},
      {Words(-2, 0), Words(INT32_MIN + 1, 0), Words(0x7FFFFFFD, 0), 0, "the bound wraps"},
      {Words(-2, 0), kMin, Words(0x7FFFFFFE, 0), 1, "one below it"},
      {kMin, Words(-1, 0), Words(-0x7FFFFFFF, 0), 0, "the bound wraps to -1"},
      {kMin, Words(-2, 0), Words(-0x7FFFFFFE, 0), 1, "one below it"},
  };
  for (const OperationCase& theCase : kCases) {
    Expect(qvLongLong_Sub, theCase);
  }
}

TEST(qvLongLongKept, MultReportsTheAdditionsOnly) {
  Expect(qvLongLong_Mult, {Words(0x40000000, 0), 1, Words(0x40000000, 0), 0, "fits"});
  Expect(qvLongLong_Mult, {Words(0x40000000, 0), 2, kMin, 0, "a real overflow passes"});
  Expect(qvLongLong_Mult, {kMax, 2, -2, 0, "a real overflow passes"});
  Expect(qvLongLong_Mult, {3, -1, -3, 1, "fits, but reported"});
  Expect(qvLongLong_Mult, {-1, -1, 1, 1, "fits, but reported"});
  Expect(qvLongLong_Mult, {-1, 3, -3, 0, "the other way round it is not"});
}

TEST(qvLongLongKept, DivisionByMinus2To32GivesTheMagnitude) {
  Expect(DivisionCase{-5, -kWord, 5, 0, 0, "the kept one"});
  Expect(DivisionCase{5, -kWord, 5, 0, 0, "positive"});
  Expect(DivisionCase{0, -kWord, 0, 0, 0, "zero"});
  Expect(DivisionCase{-kWord, -kWord, kWord, 0, 0, "even the same number"});
  Expect(DivisionCase{kMin, -kWord, kMin, 0, 1, "the minimum has no magnitude"});
  Expect(DivisionCase{-5, -kWord + 1, 0, -5, 0, "its neighbour"});
  Expect(DivisionCase{-5, -kWord - 1, 0, -5, 0, "its neighbour"});
  Expect(DivisionCase{-5, kWord, 0, -5, 0, "the positive one is divided by"});
}
