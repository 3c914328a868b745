// The unsigned half of qvLongLong.h.

#include <gtest/gtest.h>
#include <signal.h>
#include <stddef.h>

#include <string>

#include "qvraTools/qvLongLong.h"
#include "qvraTools/qvLongLong_p.h"
#include "support/ChildProcess.h"
#include "support/OwnedText.h"
#include "support/TwoWords.h"

namespace {

constexpr uint64 kMax = UINT64_MAX;

struct OperationCase {
  uint64 mX;
  uint64 mY;
  uint64 mValue;
  int mResult;
  const char* mWhy;
};

void Expect(int (*anOperation)(qvULongLong*, const qvULongLong*), const OperationCase& aCase) {
  SCOPED_TRACE(aCase.mWhy);
  qvULongLong theX = ULongLong(aCase.mX);
  const qvULongLong theY = ULongLong(aCase.mY);
  EXPECT_EQ(aCase.mResult, anOperation(&theX, &theY));
  EXPECT_EQ(aCase.mValue, Native(theX));
  EXPECT_EQ(aCase.mY, Native(theY));
}

struct ShiftCase {
  uint64 mX;
  uint32 mBits;
  uint64 mValue;
  int mResult;
  const char* mWhy;
};

void Expect(const ShiftCase& aCase) {
  SCOPED_TRACE(aCase.mWhy);
  qvULongLong theX = ULongLong(aCase.mX);
  EXPECT_EQ(aCase.mResult, qvULongLong_ShiftLeft(&theX, aCase.mBits));
  EXPECT_EQ(aCase.mValue, Native(theX));
}

void ExpectDivisionFault(const std::function<void()>& aDivision) {
  const ChildResult theResult = RunInChild([&] {
    signal(SIGFPE, SIG_DFL);  // a sanitizer would take it
    aDivision();
  });
  EXPECT_EQ(SIGFPE, theResult.mSignal);
}

}  // namespace

TEST(qvULongLong, TheLowWordComesFirst) {
  EXPECT_EQ(8u, sizeof(qvULongLong));
  EXPECT_EQ(0u, offsetof(qvULongLong, mLow));
  EXPECT_EQ(4u, offsetof(qvULongLong, mHigh));
}

TEST(qvULongLong, InitialisersTakeTheHighWordFirst) {
  const qvULongLong theValue = qvULongLong_Init(0x80000001, 2);
  EXPECT_EQ(0x80000001u, theValue.mHigh);
  EXPECT_EQ(2u, theValue.mLow);
  const qvULongLong theZero = qvULongLong_Init_0;
  EXPECT_EQ(0u, Native(theZero));
}

TEST(qvULongLong, TheConstantsAreAddressesOfObjects) {
  EXPECT_EQ(&_qvULongLong_0_impl, qvULongLong_0);
  EXPECT_EQ(&_qvULongLong_Max_impl, qvULongLong_Max);
  EXPECT_EQ(0u, Native(*qvULongLong_0));
  EXPECT_EQ(kMax, Native(*qvULongLong_Max));
  EXPECT_EQ(1000u, Native(_1000ULL));
}

TEST(qvULongLong, MSBIsBit31OfTheHighWord) {
  const qvULongLong kSet = qvULongLong_Init(0x80000000, 0);
  const qvULongLong kNotSet = qvULongLong_Init(0x7FFFFFFF, 0xFFFFFFFF);
  EXPECT_TRUE(qvULongLong_IsMSBSet(&kSet));
  EXPECT_FALSE(qvULongLong_IsMSBSet(&kNotSet));
}

TEST(qvULongLong, EachMaskHasOneTopBitMore) {
  EXPECT_EQ(0x80000000u, kqvLongLong_TopBits[0]);
  EXPECT_EQ(0xC0000000u, kqvLongLong_TopBits[1]);
  EXPECT_EQ(0xFFFF0000u, kqvLongLong_TopBits[15]);
  EXPECT_EQ(0xFFFFFFFEu, kqvLongLong_TopBits[30]);
  EXPECT_EQ(0xFFFFFFFFu, kqvLongLong_TopBits[31]);
  for (int theBits = 1; theBits <= 32; ++theBits) {
    const uint32 theMask = kqvLongLong_TopBits[theBits - 1];
    EXPECT_EQ(theBits, __builtin_popcount(theMask));
    EXPECT_EQ(32 - theBits, __builtin_ctzll(theMask));
  }
}

TEST(qvULongLong, SetTakesTheHighWordFirst) {
  qvULongLong theValue;
  qvULongLong_Set(&theValue, 1, 2);
  EXPECT_EQ(0x100000002u, Native(theValue));
}

TEST(qvULongLong, AFileOffsetIsSplitIntoItsWords) {
  qvULongLong theValue;
  qvULongLong_SetFileOffset(&theValue, 0x123456789A);
  EXPECT_EQ(0x12u, theValue.mHigh);
  EXPECT_EQ(0x3456789Au, theValue.mLow);
  qvULongLong_SetFileOffset(&theValue, INT64_MAX);
  EXPECT_EQ(0x7FFFFFFFFFFFFFFFu, Native(theValue));
  qvULongLong_SetFileOffset(&theValue, -1);
  EXPECT_EQ(kMax, Native(theValue));
  qvULongLong_SetFileOffset(&theValue, 0);
  EXPECT_EQ(0u, Native(theValue));
}

TEST(qvULongLong, AddReportsTheCarryOutOf64Bits) {
  const OperationCase kCases[] = {
      {0, 0, 0, 0, "nothing"},
      {2, 3, 5, 0, "small"},
      {0xFFFFFFFF, 1, 0x100000000, 0, "carry into the high word"},
      {kMax, 0, kMax, 0, "the maximum stays"},
      {kMax, 1, 0, 1, "the carry runs through both words"},
      {kMax, kMax, kMax - 1, 1, "both at the maximum"},
      {0xFFFFFFFE00000000, 0x100000000, 0xFFFFFFFF00000000, 0, "the high words just fit"},
      {0xFFFFFFFE00000001, 0x1FFFFFFFF, 0, 1, "the carry makes the high words overflow"},
      {0x8000000000000000, 0x8000000000000000, 0, 1, "the high words overflow"},
  };
  for (const OperationCase& theCase : kCases) {
    Expect(qvULongLong_Add, theCase);
  }
}

TEST(qvULongLong, AddUInt32ReportsTheCarryOutOf64Bits) {
  qvULongLong theValue = *qvULongLong_Max;
  EXPECT_EQ(1, qvULongLong_AddUInt32(&theValue, 1));
  EXPECT_EQ(0u, Native(theValue));
  EXPECT_EQ(0, qvULongLong_AddUInt32(&theValue, 0xFFFFFFFF));
  EXPECT_EQ(0, qvULongLong_AddUInt32(&theValue, 0xFFFFFFFF));
  EXPECT_EQ(0x1FFFFFFFEu, Native(theValue));
}

TEST(qvULongLong, SubWrapsAndBorrowsFromTheHighWord) {
  qvULongLong theValue = ULongLong(0x200000000);
  const qvULongLong theOne = ULongLong(1);
  qvULongLong_Sub(&theValue, &theOne);
  EXPECT_EQ(0x1FFFFFFFFu, Native(theValue));
  qvULongLong_SubUInt32(&theValue, 0xFFFFFFFF);
  EXPECT_EQ(0x100000000u, Native(theValue));
  qvULongLong_SubUInt32(&theValue, 1);
  EXPECT_EQ(0xFFFFFFFFu, Native(theValue));
  theValue = *qvULongLong_0;
  qvULongLong_Sub(&theValue, &theOne);
  EXPECT_EQ(kMax, Native(theValue));
}

TEST(qvULongLong, MultReportsEveryOverflow) {
  const OperationCase kCases[] = {
      {0, kMax, 0, 0, "zero"},
      {kMax, 0, 0, 0, "zero"},
      {kMax, 1, kMax, 0, "one"},
      {1, kMax, kMax, 0, "one"},
      {123456789, 1000, 123456789000, 0, "milliseconds"},
      {0xFFFFFFFF, 0xFFFFFFFF, 0xFFFFFFFE00000001, 0, "the largest words"},
      {0x100000000, 0xFFFFFFFF, 0xFFFFFFFF00000000, 0, "just fits"},
      {0x100000000, 0x100000000, 0, 1, "2^64 by a bit that leaves the multiplicand"},
      {0x8000000000000000, 1, 0x8000000000000000, 0, "bits that leave behind the last step do not count"},
      {0x8000000000000000, 2, 0, 1, "2^64"},
      {0x8000000000000000, 3, 0x8000000000000000, 1, "a bit left before a later step"},
      {kMax, kMax, 1, 1, "the largest product"},
      {0x5555555555555555, 3, kMax, 0, "just fits by addition"},
      {0x5555555555555556, 3, 2, 1, "overflows by addition"},
  };
  for (const OperationCase& theCase : kCases) {
    Expect(qvULongLong_Mult, theCase);
  }
}

TEST(qvULongLong, DivAndModTruncate) {
  const struct {
    uint64 mX, mY, mQuotient, mRemainder;
    const char* mWhy;
  } kCases[] = {
      {0, 1, 0, 0, "zero"},
      {7, 1, 7, 0, "by one"},
      {kMax, 1, kMax, 0, "by one"},
      {7, 2, 3, 1, "remainder"},
      {2, 7, 0, 2, "smaller than the divisor"},
      {7, 7, 1, 0, "equal"},
      {kMax, kMax, 1, 0, "equal"},
      {kMax - 1, kMax, 0, kMax - 1, "one less than the divisor"},
      {kMax, kMax - 1, 1, 1, "one more than the divisor"},
      {kMax, 10, 1844674407370955161, 5, "by a word"},
      {kMax, 0x100000000, 0xFFFFFFFF, 0xFFFFFFFF, "by the high word's unit"},
      {kMax, 0x8000000000000000, 1, 0x7FFFFFFFFFFFFFFF, "by the top bit"},
      {0x8000000000000000, 0x8000000000000001, 0, 0x8000000000000000, "the remainder uses all bits"},
      {0xFFFFFFFF, 0x100000000, 0, 0xFFFFFFFF, "a word by more than a word"},
      {1234567890123456789, 1000, 1234567890123456, 789, "milliseconds"},
      {0x8000000000000000, 0xFFFFFFFF00000000, 0, 0x8000000000000000, "no shortcut for unsigned numbers"},
  };
  for (const auto& theCase : kCases) {
    Expect(qvULongLong_Div, {theCase.mX, theCase.mY, theCase.mQuotient, 0, theCase.mWhy});
    Expect(qvULongLong_Mod, {theCase.mX, theCase.mY, theCase.mRemainder, 0, theCase.mWhy});
  }
}

TEST(qvULongLong, ModUInt32TakesAWord) {
  qvULongLong theValue = *qvULongLong_Max;
  EXPECT_EQ(0, qvULongLong_ModUInt32(&theValue, 0xFFFFFFFE));
  EXPECT_EQ(3u, Native(theValue));
}

TEST(qvULongLong, ShiftLeftBelow32ReportsTheBitsOfTheHighWordThatLeave) {
  const ShiftCase kCases[] = {
      {kMax, 0, kMax, 0, "by nothing"},
      {1, 1, 2, 0, "by one"},
      {1, 31, 0x80000000, 0, "to the top of the low word"},
      {0x80000000, 1, 0x100000000, 0, "into the high word"},
      {0x4000000000000000, 1, 0x8000000000000000, 0, "to the top"},
      {0x8000000000000000, 1, 0, 1, "out of the top"},
      {0x0000000100000001, 31, 0x8000000080000000, 0, "both words"},
      {0x0000000200000000, 31, 0, 1, "the lowest bit that leaves"},
      {kMax, 31, 0xFFFFFFFF80000000, 1, "many leave"},
  };
  for (const ShiftCase& theCase : kCases) {
    Expect(theCase);
  }
}

TEST(qvULongLong, ShiftRightFillsWithZeros) {
  const struct {
    uint64 mX;
    uint32 mBits;
    uint64 mValue;
  } kCases[] = {
      {0x8000000012345678, 0, 0x8000000012345678},
      {kMax, 1, 0x7FFFFFFFFFFFFFFF},
      {0x8000000000000000, 31, 0x100000000},
      {0x8000000012345678, 32, 0x80000000},
      {kMax, 33, 0x7FFFFFFF},
      {kMax, 63, 1},
      {kMax, 64, 0},
      {kMax, 65, 0},
      {kMax, 96, 0},
      {kMax, 0xFFFFFFFF, 0},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mBits);
    qvULongLong theX = ULongLong(theCase.mX);
    qvULongLong_ShiftRight(&theX, theCase.mBits);
    EXPECT_EQ(theCase.mValue, Native(theX));
  }
}

TEST(qvULongLong, ComparisonsLookAtTheHighWordFirst) {
  const uint64 kAscending[] = {
      0, 1, 0xFFFFFFFF, 0x100000000, 0x100000001, 0x7FFFFFFFFFFFFFFF, 0x8000000000000000, kMax};
  const int kCount = sizeof(kAscending) / sizeof(kAscending[0]);
  for (int i = 0; i < kCount; ++i) {
    for (int j = 0; j < kCount; ++j) {
      SCOPED_TRACE(std::to_string(i) + " and " + std::to_string(j));
      const qvULongLong theX = ULongLong(kAscending[i]);
      const qvULongLong theY = ULongLong(kAscending[j]);
      EXPECT_EQ(i < j ? 1 : 0, qvULongLong_Less(&theX, &theY));
      EXPECT_EQ(i <= j ? 1 : 0, qvULongLong_LessOrEqual(&theX, &theY));
      EXPECT_EQ(i == j ? 1 : 0, qvULongLong_Equal(&theX, &theY));
    }
  }
}

TEST(qvULongLong, BothArgumentsMayBeTheSameObject) {
  qvULongLong theValue = ULongLong(0x180000001);
  qvULongLong_Add(&theValue, &theValue);
  EXPECT_EQ(0x300000002u, Native(theValue));
  qvULongLong_Sub(&theValue, &theValue);
  EXPECT_EQ(0u, Native(theValue));
  theValue = ULongLong(100000);
  qvULongLong_Mult(&theValue, &theValue);
  EXPECT_EQ(10000000000u, Native(theValue));
  qvULongLong_Div(&theValue, &theValue);
  EXPECT_EQ(1u, Native(theValue));
  qvULongLong_Mod(&theValue, &theValue);
  EXPECT_EQ(0u, Native(theValue));
}

TEST(qvULongLong, ToStringIsDecimal) {
  const struct {
    uint64 mX;
    const char* mText;
  } kCases[] = {
      {0, "0"},
      {9, "9"},
      {10, "10"},
      {4294967295, "4294967295"},
      {4294967296, "4294967296"},
      {10000000000000000000u, "10000000000000000000"},
      {kMax, "18446744073709551615"},
  };
  for (const auto& theCase : kCases) {
    const qvULongLong theX = ULongLong(theCase.mX);
    EXPECT_EQ(theCase.mText, TakeText(qvULongLong_ToString(&theX)));
  }
}

TEST(qvULongLong, SetFromStringTakesWholeNumbersOnly) {
  const struct {
    const char* mText;
    uint64 mValue;
    int mResult;
  } kCases[] = {
      {"18446744073709551615", kMax, 1},
      {" +7", 7, 1},
      {"18446744073709551616", 0, 0},
      {"7x", 0, 0},
      {"-7", 0, 0},
      {"", 0, 0},
      {nullptr, 0, 0},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mText == nullptr ? "null" : theCase.mText);
    qvULongLong theX = ULongLong(99);
    EXPECT_EQ(theCase.mResult, qvULongLong_SetFromString(&theX, theCase.mText));
    EXPECT_EQ(theCase.mValue, Native(theX));
  }
}

TEST(qvULongLong, SetFromNStringReadsTheFirstBytes) {
  const struct {
    const char* mText;
    size_t mLength;
    uint64 mValue;
    int mResult;
    const char* mWhy;
  } kCases[] = {
      {"123456", 3, 123, 1, "three digits"},
      {"7", 1, 7, 1, "one digit"},
      {"12x", 2, 12, 1, "what lies behind does not count"},
      {"12x", 3, 0, 0, "what lies inside does"},
      {"12\0x", 4, 12, 1, "a zero ends the text"},
      {"12", SIZE_MAX, 12, 1, "the length may be more than the text has"},
      {"12", 0, 0, 0, "no length"},
      {nullptr, 0, 0, 0, "no text"},
      {nullptr, 5, 0, 0, "no text"},
  };
  for (const auto& theCase : kCases) {
    SCOPED_TRACE(theCase.mWhy);
    qvULongLong theX = ULongLong(99);
    EXPECT_EQ(theCase.mResult, qvULongLong_SetFromNString(&theX, theCase.mText, theCase.mLength));
    EXPECT_EQ(theCase.mValue, Native(theX));
  }
}

TEST(qvULongLong, EveryOperationAgreesWithNativeIntegers) {
  const std::vector<uint64> theValues = TryValues();
  for (uint64 theX : theValues) {
    for (uint64 theY : theValues) {
      uint64 theExpected = 0;
      int theOverflow = __builtin_add_overflow(theX, theY, &theExpected);
      Expect(qvULongLong_Add, {theX, theY, theExpected, theOverflow, "sum"});
      theOverflow = __builtin_mul_overflow(theX, theY, &theExpected);
      Expect(qvULongLong_Mult, {theX, theY, theExpected, theOverflow, "product"});
      if (theY != 0) {
        Expect(qvULongLong_Div, {theX, theY, theX / theY, 0, "quotient"});
        Expect(qvULongLong_Mod, {theX, theY, theX % theY, 0, "remainder"});
      }
      if (::testing::Test::HasFailure()) {
        FAIL() << theX << " and " << theY;
      }
    }
  }
}

TEST(qvULongLong, TextAndNumberAgreeBothWays) {
  for (uint64 theValue : TryValues()) {
    const qvULongLong theX = ULongLong(theValue);
    const std::string theText = TakeText(qvULongLong_ToString(&theX));
    EXPECT_EQ(std::to_string(theValue), theText);
    qvULongLong theBack = ULongLong(99);
    EXPECT_EQ(1, qvULongLong_SetFromString(&theBack, theText.c_str()));
    EXPECT_EQ(theValue, Native(theBack));
  }
}

TEST(qvLongLongKept, DividingByZeroFaults) {
  ExpectDivisionFault([] {
    qvULongLong theValue = ULongLong(7);
    qvULongLong_Div(&theValue, qvULongLong_0);
  });
  ExpectDivisionFault([] {
    qvULongLong theValue = ULongLong(0);
    qvULongLong_Mod(&theValue, qvULongLong_0);
  });
  ExpectDivisionFault([] {
    qvULongLong theValue = *qvULongLong_Max;
    qvULongLong_ModUInt32(&theValue, 0);
  });
}

TEST(qvLongLongKept, ShiftLeftBy32AndMoreDropsTheHighWordWithoutAReport) {
  Expect(ShiftCase{0x0000000200000000, 31, 0, 1, "its neighbour reports"});
  Expect(ShiftCase{0x0000000100000000, 32, 0, 0, "the kept one"});
  Expect(ShiftCase{kMax, 32, 0xFFFFFFFF00000000, 0, "by 32 nothing is ever reported"});
  Expect(ShiftCase{0xFFFFFFFF00000000, 33, 0, 0, "nor is the high word by more"});
  Expect(ShiftCase{0xFFFFFFFF00000000, 64, 0, 0, "nor is it by 64"});
  Expect(ShiftCase{0xFFFFFFFF00000000, 0xFFFFFFFF, 0, 0, "nor by any other number"});
}

TEST(qvLongLongKept, ShiftLeftBy33AndMoreCountsTheBitThatLandsInBit63) {
  Expect(ShiftCase{0x80000000, 32, 0x8000000000000000, 0, "its neighbour: bit 63 by 32 is not counted"});
  Expect(ShiftCase{0x20000000, 33, 0x4000000000000000, 0, "bit 62 is not counted"});
  Expect(ShiftCase{0x40000000, 33, 0x8000000000000000, 1, "the kept one"});
  Expect(ShiftCase{0x80000000, 33, 0, 1, "a bit that leaves"});
  Expect(ShiftCase{1, 62, 0x4000000000000000, 0, "bit 62 is not counted"});
  Expect(ShiftCase{1, 63, 0x8000000000000000, 1, "the kept one at the other end"});
  Expect(ShiftCase{1, 64, 0, 1, "from 64 on any bit of the low word leaves"});
  Expect(ShiftCase{0, 64, 0, 0, "no bit, no report"});
  Expect(ShiftCase{1, 100, 0, 1, "far beyond"});
  Expect(ShiftCase{0x80000000, 0xFFFFFFFF, 0, 1, "as far as it goes"});
}
