// The formatted-output functions: buffers, lengths, allocated results, positions.
#include "qvraTools/format/qvFormat.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits.h>
#include <signal.h>
#include <stdarg.h>
#include <string.h>
#include <sys/resource.h>

#include <atomic>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "qvraTools/qvMalloc.h"
#include "support/ChildProcess.h"
#include "support/FormatText.h"
#include "support/Sanitizers.h"

// Some formats here are wrong on purpose, or cut on purpose.
#pragma GCC diagnostic ignored "-Wformat"
#pragma GCC diagnostic ignored "-Wformat-extra-args"

static int CallV(char* aBuffer, size_t aMax, const char* aFormat, ...) {
  va_list theArguments;
  va_start(theArguments, aFormat);
  int theResult = qv_vsnprintf(aBuffer, aMax, aFormat, theArguments);
  va_end(theArguments);
  return theResult;
}

static int CallWideV(wchar_t* aBuffer, size_t aMax, const wchar_t* aFormat, ...) {
  va_list theArguments;
  va_start(theArguments, aFormat);
  int theResult = qv_vswprintf(aBuffer, aMax, aFormat, theArguments);
  va_end(theArguments);
  return theResult;
}

static char* CallVM(const char* aFormat, ...) {
  va_list theArguments;
  va_start(theArguments, aFormat);
  char* theText = qv_vmnprintf(aFormat, theArguments);
  va_end(theArguments);
  return theText;
}

static char* CallLVM(size_t* aLength, const char* aFormat, ...) {
  va_list theArguments;
  va_start(theArguments, aFormat);
  char* theText = qv_lvmnprintf(aLength, aFormat, theArguments);
  va_end(theArguments);
  return theText;
}

static wchar_t* CallWideVM(const wchar_t* aFormat, ...) {
  va_list theArguments;
  va_start(theArguments, aFormat);
  wchar_t* theText = qv_vmwprintf(aFormat, theArguments);
  va_end(theArguments);
  return theText;
}

static wchar_t* CallWideLVM(size_t* aLength, const wchar_t* aFormat, ...) {
  va_list theArguments;
  va_start(theArguments, aFormat);
  wchar_t* theText = qv_lvmwprintf(aLength, aFormat, theArguments);
  va_end(theArguments);
  return theText;
}

// Bounded output

TEST(qvFormat, CutsTheTextAndReturnsTheFullLength) {
  char theBuffer[8] = "xxxxxxx";
  EXPECT_EQ(6, qv_snprintf(theBuffer, 4, "%s", "abcdef"));
  EXPECT_STREQ("abc", theBuffer);
  EXPECT_EQ('x', theBuffer[4]);
}

TEST(qvFormat, WritesNothingIntoABufferOfZeroCharacters) {
  char theBuffer[] = "x";
  EXPECT_EQ(5, qv_snprintf(theBuffer, 0, "%d", 12345));
  EXPECT_EQ('x', theBuffer[0]);
  EXPECT_EQ(5, qv_snprintf(nullptr, 0, "%d", 12345));
}

TEST(qvFormat, WritesTheTerminatorIntoABufferOfOneCharacter) {
  char theBuffer[] = "xy";
  EXPECT_EQ(5, qv_snprintf(theBuffer, 1, "%d", 12345));
  EXPECT_EQ('\0', theBuffer[0]);
  EXPECT_EQ('y', theBuffer[1]);
}

TEST(qvFormat, FillsABufferThatFitsExactly) {
  char theBuffer[6] = "xxxxx";
  EXPECT_EQ(5, qv_snprintf(theBuffer, 6, "%d", 12345));
  EXPECT_STREQ("12345", theBuffer);
  EXPECT_EQ(5, qv_snprintf(theBuffer, 5, "%d", 12345));
  EXPECT_STREQ("1234", theBuffer);
}

TEST(qvFormat, TreatsAHugeBoundAsNoBound) {
  char theBuffer[8] = "xxxxxxx";
  EXPECT_EQ(3, qv_snprintf(theBuffer, (size_t)-1, "%d", 123));
  EXPECT_STREQ("123", theBuffer);
}

TEST(qvFormat, CutsInsideEveryPartOfANumber) {
  // "  +0x" cannot occur in one number; this has blanks, sign, zeros, digits, zeros and an exponent.
  const std::string kWhole = " +001.500e+10 |-7  |";
  for (size_t theMax = 1; theMax <= kWhole.size() + 1; ++theMax) {
    std::string theBuffer(kWhole.size() + 2, '~');
    EXPECT_EQ(20, qv_snprintf(&theBuffer[0], theMax, " %+012.3e |%-4d|", 1.5e10, -7));
    EXPECT_EQ(kWhole.substr(0, theMax - 1), theBuffer.c_str());
    EXPECT_EQ('~', theBuffer[theMax]) << "wrote behind the bound " << theMax;
  }
}

TEST(qvFormat, CutsInsideEverySimpleDirective) {
  const std::string kWhole = "-2147483648|-0042|                  ff|CAFE|text|c";
  for (size_t theMax = 1; theMax <= kWhole.size() + 1; ++theMax) {
    std::string theBuffer(kWhole.size() + 2, '~');
    EXPECT_EQ(50, qv_snprintf(&theBuffer[0], theMax, "%d|%05d|%20x|%X|%s|%c", INT_MIN, -42, 255u, 0xcafeu,
                              "text", 'c'));
    EXPECT_EQ(kWhole.substr(0, theMax - 1), theBuffer.c_str());
    EXPECT_EQ('~', theBuffer[theMax]) << "wrote behind the bound " << theMax;
  }
}

TEST(qvFormat, CutsInsideEveryDirectiveOfOneLetter) {
  const std::string kWhole = "one -7, 4294967295 and two-21474836480%|";
  for (size_t theMax = 1; theMax <= kWhole.size() + 1; ++theMax) {
    std::string theBuffer(kWhole.size() + 2, '~');
    EXPECT_EQ(40, qv_snprintf(&theBuffer[0], theMax, "%s %d, %u and %s%d%u%%|", "one", -7, UINT_MAX, "two",
                              INT_MIN, 0u));
    EXPECT_EQ(kWhole.substr(0, theMax - 1), theBuffer.c_str());
    EXPECT_EQ('~', theBuffer[theMax]) << "wrote behind the bound " << theMax;
  }
}

TEST(qvFormat, CutsInsideEverySimpleDirectiveOfLongsAndReals) {
  const std::string kWhole = "-9223372036854775808|18446744073709551615|  -42|   1.50|02.5e+01|0.1";
  for (size_t theMax = 1; theMax <= kWhole.size() + 1; ++theMax) {
    std::string theBuffer(kWhole.size() + 2, '~');
    EXPECT_EQ(68, qv_snprintf(&theBuffer[0], theMax, "%lld|%llu|%5ld|%7.2f|%08.1e|%g", LLONG_MIN, ULLONG_MAX,
                              -42L, 1.5, 25.0, 0.1));
    EXPECT_EQ(kWhole.substr(0, theMax - 1), theBuffer.c_str());
    EXPECT_EQ('~', theBuffer[theMax]) << "wrote behind the bound " << theMax;
  }
}

TEST(qvFormat, WritesLongsOfEveryLengthWhereTheirDigitsAreSplit) {
  ExpectFormatted("0 9 4294967295 4294967296", "%llu %llu %llu %llu", 0ull, 9ull, 4294967295ull,
                  4294967296ull);
  ExpectFormatted("1000000000000000000 1000000001000000001", "%lld %lld", 1000000000000000000ll,
                  1000000001000000001ll);
  ExpectFormatted("4294967295999999999 4294967296000000000", "%llu %llu", 4294967295999999999ull,
                  4294967296000000000ull);
  ExpectFormatted("-2147483648 4294967295 -0000000005", "%ld %lu %011ld", static_cast<long>(INT_MIN),
                  4294967295ul, -5L);
}

TEST(qvFormat, CutsWideTextTheSameWay) {
  wchar_t theBuffer[8] = L"xxxxxxx";
  EXPECT_EQ(6, qv_swprintf(theBuffer, 4, L"%s", "abcdef"));
  EXPECT_STREQ(L"abc", theBuffer);
  EXPECT_EQ(L'x', theBuffer[4]);
  EXPECT_EQ(5, qv_swprintf(theBuffer, 0, L"%d", 12345));
  EXPECT_STREQ(L"abc", theBuffer);
  EXPECT_EQ(5, qv_swprintf(theBuffer, 1, L"%d", 12345));
  EXPECT_STREQ(L"", theBuffer);
}

TEST(qvFormat, GivesTheFullLengthOfAHugePrecision) {
  char theBuffer[16];
  EXPECT_EQ(5002, qv_snprintf(theBuffer, sizeof theBuffer, "%.5000f", 1.5));
  EXPECT_STREQ("1.5000000000000", theBuffer);
  EXPECT_EQ(5006, qv_snprintf(theBuffer, sizeof theBuffer, "%.5000e", 1.5));
  EXPECT_EQ(5002, qv_snprintf(theBuffer, sizeof theBuffer, "%.5000Lf", 1.5L));
  EXPECT_EQ(5001, qv_snprintf(theBuffer, sizeof theBuffer, "%#.5000g", 1.5));
  EXPECT_EQ(3, qv_snprintf(theBuffer, sizeof theBuffer, "%.5000g", 1.5));
  EXPECT_EQ(2147483647, qv_snprintf(theBuffer, sizeof theBuffer, "%.2147483645f", 1.5));
}

TEST(qvFormat, CountsTheZerosBehindThePointOnTopOfAHugePrecision) {
  char theBuffer[16];
  EXPECT_EQ(2147483647, qv_snprintf(theBuffer, sizeof theBuffer, "%#.2147483642g", 0.0001));
  EXPECT_STREQ("0.0001000000000", theBuffer);
  ExpectFormatted("error 7 at 14", "%#.2147483643g", 0.0001);
  ExpectFormatted("error 7 at 14", "%#.2147483647g", 0.0001);
  ExpectFormatted("error 7 at 15", "%#.2147483647Lg", 0.0001L);
}

TEST(qvFormat, GivesTheFullLengthOfAHugeWidth) {
  char theBuffer[16];
  EXPECT_EQ(2147483647, qv_snprintf(theBuffer, sizeof theBuffer, "%2147483647d", 5));
  EXPECT_STREQ("               ", theBuffer);
  EXPECT_EQ(2147483647, qv_snprintf(theBuffer, sizeof theBuffer, "%-2147483647d", 5));
  EXPECT_STREQ("5              ", theBuffer);
  EXPECT_EQ(2147483647, qv_snprintf(theBuffer, sizeof theBuffer, "%.2147483647d", 5));
  EXPECT_STREQ("000000000000000", theBuffer);
  EXPECT_EQ(2147483647, qv_snprintf(theBuffer, sizeof theBuffer, "%2147483647s", "a"));
  EXPECT_EQ(2147483647, qv_snprintf(theBuffer, sizeof theBuffer, "%-*s", INT_MAX, "ab"));
  EXPECT_STREQ("ab             ", theBuffer);
}

TEST(qvFormat, TakesALongTextWhole) {
  std::string theLong(100000, 'a');
  EXPECT_EQ(theLong, NarrowText("%s", theLong.c_str()));
  EXPECT_EQ(theLong, NarrowText(theLong.c_str()));
  EXPECT_EQ(Widen(theLong), WideText(L"%s", theLong.c_str()));
}

TEST(qvFormat, GivesTheEmptyTextForTheEmptyFormat) { ExpectFormatted("", ""); }

TEST(qvFormat, TakesArgumentLists) {
  char theBuffer[16];
  wchar_t theWideBuffer[16];
  EXPECT_EQ(6, CallV(theBuffer, sizeof theBuffer, "%s-%d", "abc", 42));
  EXPECT_STREQ("abc-42", theBuffer);
  EXPECT_EQ(6, CallWideV(theWideBuffer, 16, L"%s-%d", "abc", 42));
  EXPECT_STREQ(L"abc-42", theWideBuffer);
}

TEST(qvFormat, KeepsNothingBetweenCallsOfSeveralThreads) {
  std::vector<std::thread> theThreads;
  std::atomic<int> theDifferences(0);
  for (int theThread = 0; theThread < 4; ++theThread) {
    theThreads.emplace_back([theThread, &theDifferences] {
      const std::string kExpected =
          std::to_string(theThread) + "|0.100|  " + std::to_string(theThread) + "|x";
      for (int theCall = 0; theCall < 500; ++theCall) {
        char theBuffer[64];
        qv_snprintf(theBuffer, sizeof theBuffer, "%2$d|%1$.3f|%2$3d|%3$s", 0.1, theThread, "x");
        theDifferences += kExpected != theBuffer;
        qv_snprintf(theBuffer, sizeof theBuffer, "%d|%.3Lf|%3d|%ls", theThread, 0.1L, theThread, L"x");
        theDifferences += kExpected != theBuffer;
      }
    });
  }
  for (std::thread& theThread : theThreads) {
    theThread.join();
  }
  EXPECT_EQ(0, theDifferences);
}

TEST(qvFormat, TakesTheSystemsWideCharacter) {
  EXPECT_TRUE((std::is_same<wchar_t, vexa_wchar_t>::value));
  EXPECT_EQ(4u, sizeof(vexa_wchar_t));
}

// Allocated output

TEST(qvFormat, AllocatesTheExactText) {
  char* theText = qv_mnprintf("%s=%d", "key", 7);
  EXPECT_STREQ("key=7", theText);
  qvFree(theText);
  theText = CallVM("%s=%d", "key", 8);
  EXPECT_STREQ("key=8", theText);
  qvFree(theText);
}

TEST(qvFormat, AllocatesAndTellsTheLength) {
  size_t theLength = 99;
  char* theText = qv_lmnprintf(&theLength, "%s=%d", "key", 7);
  EXPECT_STREQ("key=7", theText);
  EXPECT_EQ(5u, theLength);
  qvFree(theText);
  theText = CallLVM(&theLength, "%s", "ab");
  EXPECT_STREQ("ab", theText);
  EXPECT_EQ(2u, theLength);
  qvFree(theText);
}

TEST(qvFormat, AllocatesWideText) {
  wchar_t* theText = qv_mwprintf(L"%s=%d", "key", 7);
  EXPECT_STREQ(L"key=7", theText);
  qvFree(theText);
  theText = CallWideVM(L"%s=%d", "key", 8);
  EXPECT_STREQ(L"key=8", theText);
  qvFree(theText);
  size_t theLength = 99;
  theText = qv_lmwprintf(&theLength, L"%ls", L"abc");
  EXPECT_STREQ(L"abc", theText);
  EXPECT_EQ(3u, theLength);
  qvFree(theText);
  theText = CallWideLVM(&theLength, L"%ls", L"abcd");
  EXPECT_STREQ(L"abcd", theText);
  EXPECT_EQ(4u, theLength);
  qvFree(theText);
}

TEST(qvFormat, AllocatesTextsOfEveryLength) {
  // Around every size at which an implementation may change its way.
  for (size_t theSize : {0, 1, 15, 16, 127, 128, 254, 255, 256, 257, 511, 512, 1023, 1024, 5000}) {
    std::string theExpected(theSize, 'q');
    size_t theLength = 99;
    char* theText = qv_lmnprintf(&theLength, "%s", theExpected.c_str());
    EXPECT_EQ(theExpected, theText);
    EXPECT_EQ(theSize, theLength);
    qvFree(theText);
    wchar_t* theWideText = qv_lmwprintf(&theLength, L"%s", theExpected.c_str());
    EXPECT_EQ(Widen(theExpected), theWideText);
    EXPECT_EQ(theSize, theLength);
    qvFree(theWideText);
  }
}

TEST(qvFormat, AllocatesTheEmptyText) {
  size_t theLength = 99;
  char* theText = qv_lmnprintf(&theLength, "%s", "");
  EXPECT_STREQ("", theText);
  EXPECT_EQ(0u, theLength);
  qvFree(theText);
}

TEST(qvFormat, CountsEmbeddedZerosInAllocatedText) {
  size_t theLength = 0;
  char* theText = qv_lmnprintf(&theLength, "a%cb", 0);
  ASSERT_EQ(3u, theLength);
  EXPECT_EQ(0, memcmp("a\0b", theText, 4));
  qvFree(theText);
}

TEST(qvFormat, AllocatesNothingForABadFormat) {
  size_t theLength = 99;
  EXPECT_EQ(nullptr, qv_mnprintf("%y", 1));
  EXPECT_EQ(nullptr, CallVM("%y", 1));
  EXPECT_EQ(nullptr, qv_lmnprintf(&theLength, "%y", 1));
  EXPECT_EQ(0u, theLength);
  theLength = 99;
  EXPECT_EQ(nullptr, CallLVM(&theLength, "%y", 1));
  EXPECT_EQ(0u, theLength);
  EXPECT_EQ(nullptr, qv_mwprintf(L"%y", 1));
  EXPECT_EQ(nullptr, CallWideVM(L"%y", 1));
  theLength = 99;
  EXPECT_EQ(nullptr, qv_lmwprintf(&theLength, L"%y", 1));
  EXPECT_EQ(0u, theLength);
  theLength = 99;
  EXPECT_EQ(nullptr, CallWideLVM(&theLength, L"%y", 1));
  EXPECT_EQ(0u, theLength);
}

TEST(qvFormat, AllocatesNothingForATextThatNoIntCounts) {
  size_t theLength = 99;
  EXPECT_EQ(nullptr, qv_lmnprintf(&theLength, "%2147483647d%2147483647d", 1, 2));
  EXPECT_EQ(0u, theLength);
}

TEST(qvFormat, EndsTheProcessWhenAWideTextIsLargerThanMemory) {
  if (kSanitized) {
    GTEST_SKIP() << "the sanitizers need the memory, and end the process in their own way";
  }
  // (2^30 + 1) characters of 4 bytes; as a size of 32 bits that wraps to 4.
  ChildResult theResult = RunInChild([] {
    rlimit theLimit = {1u << 30, 1u << 30};
    setrlimit(RLIMIT_AS, &theLimit);
    qv_mwprintf(L"%1073741824d", 1);
  });
  EXPECT_EQ(SIGABRT, theResult.mSignal);
  EXPECT_THAT(theResult.mStderr, testing::HasSubstr("memory:malloc"));
}

// Positions

TEST(qvFormat, TakesArgumentsByPosition) {
  size_t theLength = 0;
  char* theText = qv_lmnprintf(&theLength, "%2$s %1$s", "a", "b");
  EXPECT_STREQ("b a", theText);
  EXPECT_EQ(3u, theLength);
  qvFree(theText);
}

TEST(qvFormat, TakesMixedTypesByPosition) {
  ExpectFormatted("2.5 x 9000000000 -7 0.5", "%4$.1f %2$s %3$lld %1$d %5$.1Lf", -7, "x", 9000000000LL, 2.5,
                  0.5L);
}

TEST(qvFormat, TakesOneArgumentSeveralTimesByPosition) { ExpectFormatted("7 7 0x7", "%1$d %1$u %1$#x", 7); }

TEST(qvFormat, TakesWidthAndPrecisionByPosition) {
  ExpectFormatted("[   ab][2.50 ]", "[%1$*2$.*3$s][%4$*5$.*3$f]", "abc", 5, 2, 2.5, -5);
}

TEST(qvFormat, AllowsPercentSignsBetweenPositions) { ExpectFormatted("%5%%6%", "%%%1$d%%%%%2$d%%", 5, 6); }

TEST(qvFormat, TakesSixtyFourPositions) {
  std::string theFormat;
  for (int thePosition = 64; thePosition >= 1; --thePosition) {
    theFormat += "%" + std::to_string(thePosition) + "$d ";
  }
  ExpectFormatted(
      "64 63 62 61 60 59 58 57 56 55 54 53 52 51 50 49 48 47 46 45 44 43 42 41 40 39 38 37 36 35 34 33 32 31 "
      "30 "
      "29 28 27 26 25 24 23 22 21 20 19 18 17 16 15 14 13 12 11 10 9 8 7 6 5 4 3 2 1 ",
      theFormat, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25,
      26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46, 47, 48, 49, 50, 51,
      52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63, 64);
}

TEST(qvFormat, HasNoLimitWithoutPositions) {
  std::string theFormat, theExpected;
  for (int theIndex = 0; theIndex < 70; ++theIndex) {
    theFormat += "%d";
  }
  ExpectFormatted(
      "1234567891011121314151617181920212223242526272829303132333435363738394041424344454647484950515"
      "2535455565758596061626364656667686970",
      theFormat, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25,
      26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 37, 38, 39, 40, 41, 42, 43, 44, 45, 46, 47, 48, 49, 50, 51,
      52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63, 64, 65, 66, 67, 68, 69, 70);
}

// The count so far

TEST(qvFormat, StoresTheCountSoFar) {
  int theCount = -1;
  ExpectFormatted("abc5d", "abc%d%nd", 5, &theCount);
  EXPECT_EQ(4, theCount);
}

TEST(qvFormat, StoresTheCountOfWhatDidNotFit) {
  char theBuffer[4];
  int theCount = -1;
  EXPECT_EQ(6, qv_snprintf(theBuffer, sizeof theBuffer, "abcdef%n", &theCount));
  EXPECT_EQ(6, theCount);
}

TEST(qvFormat, StoresTheCountInTheCountersWidth) {
  struct {
    signed char mChar[2] = {-1, -1};
    short mShort[2] = {-1, -1};
    long mLong = -1;
    long long mLongLong = -1;
    intmax_t mIntMax = -1;
    ptrdiff_t mPtrDiff = -1;
    size_t mSize = 99;
  } theCounters;
  ExpectFormatted("abc", "abc%hhn%hn%ln%lln%jn%tn%zn", &theCounters.mChar[0], &theCounters.mShort[0],
                  &theCounters.mLong, &theCounters.mLongLong, &theCounters.mIntMax, &theCounters.mPtrDiff,
                  &theCounters.mSize);
  EXPECT_EQ(3, theCounters.mChar[0]);
  EXPECT_EQ(-1, theCounters.mChar[1]) << "the neighbour is untouched";
  EXPECT_EQ(3, theCounters.mShort[0]);
  EXPECT_EQ(-1, theCounters.mShort[1]) << "the neighbour is untouched";
  EXPECT_EQ(3, theCounters.mLong);
  EXPECT_EQ(3, theCounters.mLongLong);
  EXPECT_EQ(3, theCounters.mIntMax);
  EXPECT_EQ(3, theCounters.mPtrDiff);
  EXPECT_EQ(3u, theCounters.mSize);
}

TEST(qvFormat, StoresTheCountByPosition) {
  int theCount = -1;
  ExpectFormatted("ab|", "%2$s%1$n|", &theCount, "ab");
  EXPECT_EQ(2, theCount);
}
