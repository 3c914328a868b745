// qvConvertFraction.cpp - plain and mixed fractions such as 1 1/2, read and written.
#include <locale.h>
#include <math.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvConvert.h"
#include "qvraTools/qvConvert_p.h"
#include "qvraTools/qvLongLong.h"
#include "qvraTools/qvMalloc.h"

double qvDouble_Abs(double aDouble) { return fabs(aDouble); }

// --------------------------------------------------------------------------------------------- reading

namespace {

// What the notation "number character numerator character denominator character" found in a text.
struct FractionParts {
  double mNumber;
  char mAfterNumber;
  int64 mNumerator;
  char mAfterNumerator;
  int64 mDenominator;
  char mAfterDenominator;
};

constexpr double kAllAreWhole = 9007199254740992;  // 2 to the power of 53; from here on every double is whole
constexpr char kSentinel = '\a';  // stands behind the text, so that the last item can be told to be the last

}  // namespace

// Scans a number as the C library takes it, and the character behind it; returns how many of the two are
// there and moves *aStr behind them.
static int qvConvert_S_ScanNumber(const char** aStr, double* aNumber, char* aAfter) {
  // The calling thread reads as in the "C" locale, so that the point is the decimal sign whatever locale the
  // program has chosen.
  locale_t theCLocale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
  locale_t theOldLocale = uselocale(theCLocale);
  int theLength = 0;
  int theCount = sscanf(*aStr, " %lf%c%n", aNumber, aAfter, &theLength);
  uselocale(theOldLocale);
  freelocale(theCLocale);
  *aStr += theLength;
  return theCount > 0 ? theCount : 0;
}

// The same for an integer, with white space allowed on either side. Not by sscanf, which leaves undefined
// what becomes of a number that does not fit.
static int qvConvert_S_ScanInteger(const char** aStr, int64* aInteger, char* aAfter) {
  int thePosition = qvConvert_strtoint64(*aStr, aInteger);
  if (thePosition <= 0) {
    return thePosition == kqvConvertError_None ? 1 : 0;  // 1: the number ends the text
  }
  const char* theAfter = qvConvert_S_SkipSpace(*aStr + thePosition);
  if (*theAfter == '\0') {
    return 1;
  }
  *aAfter = *theAfter;
  *aStr = theAfter + 1;
  return 2;
}

// Scans the text, which ends with the sentinel, and returns how many items it holds (0 to 6).
static int qvConvert_S_ScanFraction(const char* aStr, FractionParts* aParts) {
  int theCount = qvConvert_S_ScanNumber(&aStr, &aParts->mNumber, &aParts->mAfterNumber);
  if (theCount == 2) {
    theCount += qvConvert_S_ScanInteger(&aStr, &aParts->mNumerator, &aParts->mAfterNumerator);
  }
  if (theCount == 4) {
    theCount += qvConvert_S_ScanInteger(&aStr, &aParts->mDenominator, &aParts->mAfterDenominator);
  }
  return theCount;
}

// Without trunc, for which the library would need that of mathematics.
static bool qvConvert_S_IsWhole(double aDouble) {
  if (!(fabs(aDouble) < kAllAreWhole)) {
    return isfinite(aDouble);
  }
  return static_cast<double>(static_cast<long long>(aDouble)) == aDouble;
}

// a/b: the number before the slash is the numerator, the one behind it comes as mNumerator.
static bool qvConvert_S_IsPlainFraction(const FractionParts& aParts) {
  return aParts.mAfterNumber == '/' && aParts.mAfterNumerator == kSentinel &&
         qvConvert_S_IsWhole(aParts.mNumber) && aParts.mNumerator != 0;
}

// w n/d or w-n/d.
static bool qvConvert_S_IsMixedFraction(const FractionParts& aParts) {
  return (aParts.mAfterNumber == ' ' || aParts.mAfterNumber == '-') && aParts.mAfterNumerator == '/' &&
         aParts.mAfterDenominator == kSentinel && qvConvert_S_IsWhole(aParts.mNumber) &&
         aParts.mNumerator >= 0 && aParts.mNumerator < aParts.mDenominator;
}

// Reads a text that ends with the sentinel; returns 0, or 1 for a shape that is no number and no fraction.
static int qvConvert_S_ReadFraction(const char* aStr, double* aDouble) {
  FractionParts theParts = {0.0, '\0', 0, '\0', 0, '\0'};
  int theCount = qvConvert_S_ScanFraction(aStr, &theParts);
  if (theCount == 2 && theParts.mAfterNumber == kSentinel) {
    *aDouble = theParts.mNumber;
    return 0;
  }
  if (theCount == 4 && qvConvert_S_IsPlainFraction(theParts)) {
    *aDouble = theParts.mNumber / static_cast<double>(theParts.mNumerator);
    return 0;
  }
  if (theCount == 6 && qvConvert_S_IsMixedFraction(theParts)) {
    double theFraction =
        static_cast<double>(theParts.mNumerator) / static_cast<double>(theParts.mDenominator);
    // The sign is looked for in the text, because "-0 1/2" is below zero and the number 0 does not say so.
    *aDouble =
        *qvConvert_S_SkipSpace(aStr) == '-' ? theParts.mNumber - theFraction : theParts.mNumber + theFraction;
    return 0;
  }
  return 1;
}

int qvConvert_strnfractiontodouble(const char* aStr, size_t aLength, double* aDouble) {
  *aDouble = 0.0;
  if (aStr == NULL) {
    return 1;
  }
  // No machine has memory for the longest lengths; two more bytes must not come to none.
  char* theCopy = static_cast<char*>(qvMalloc(aLength <= SIZE_MAX - 2 ? aLength + 2 : SIZE_MAX));
  memcpy(theCopy, aStr, aLength);
  theCopy[aLength] = kSentinel;
  theCopy[aLength + 1] = '\0';
  int theResult = qvConvert_S_ReadFraction(theCopy, aDouble);
  qvFree(theCopy);
  return theResult;
}

int qvConvert_strfractiontodouble(const char* aStr, double* aDouble) {
  return qvConvert_strnfractiontodouble(aStr, aStr != NULL ? strlen(aStr) : 0, aDouble);
}

// Reads one whole number of a fraction as a double; a result code.
static int qvConvert_S_ReadWhole(const char* aStr, size_t aLength, double* aDouble) {
  char* theCopy = qvStrndup(aStr, aLength);
  qvLongLong theValue;
  int theResult = qvConvert_strtoLongLong(theCopy, &theValue);
  qvFree(theCopy);
  *aDouble = qvLongLong_GetDouble(&theValue);
  return theResult;
}

// Reads what stands before the slash, "n" or "w n", and adds n/d to w; a result code.
static int qvConvert_S_ReadNumerator(const char* aStr, size_t aLength, double aDenominator, double* aDouble) {
  double theWhole = 0.0;
  double theNumerator = 0.0;
  const char* theBlank = static_cast<const char*>(memchr(aStr, ' ', aLength));
  int theResult = kqvConvertError_None;
  if (theBlank != NULL) {
    size_t theWholeLength = static_cast<size_t>(theBlank - aStr);
    theResult = qvConvert_S_ReadWhole(aStr, theWholeLength, &theWhole);
    aStr += theWholeLength + 1;
    aLength -= theWholeLength + 1;
  }
  if (theResult == kqvConvertError_None) {
    theResult = qvConvert_S_ReadWhole(aStr, aLength, &theNumerator);
  }
  if (theResult == kqvConvertError_None) {
    double theFraction = theNumerator / aDenominator;
    *aDouble = theWhole < 0.0 ? theWhole - theFraction : theWhole + theFraction;
  }
  return theResult;
}

int qvConvert_strtodouble(const char* aStr, double* aDouble) {
  if (aStr == NULL) {
    *aDouble = 0.0;
    return kqvConvertError_Invalid;
  }
  aStr = qvConvert_S_SkipSpace(aStr);
  const char* theSlash = strchr(aStr, '/');
  if (theSlash == NULL) {
    return qvConvert_strtod(aStr, aDouble);  // which finds an empty text invalid
  }
  double theDenominator = 0.0;
  int theResult = qvConvert_S_ReadWhole(theSlash + 1, strlen(theSlash + 1), &theDenominator);
  // KEEP qvConvertKept.DenominatorOfZeroSucceedsAndChangesNothing
  // A denominator of 0 is no error: the result is 0 and the destination stays as the caller left it.
  if (theResult == kqvConvertError_None && theDenominator == 0.0) {
    return kqvConvertError_None;
  }
  if (theResult == kqvConvertError_None) {
    theResult =
        qvConvert_S_ReadNumerator(aStr, static_cast<size_t>(theSlash - aStr), theDenominator, aDouble);
  }
  if (theResult != kqvConvertError_None) {
    *aDouble = 0.0;
  }
  return theResult;
}

// --------------------------------------------------------------------------------------------- writing

// Truncates to a whole number. What an int64 cannot hold becomes its nearest bound, NaN becomes 0.
static int64 qvConvert_S_Truncate(double aDouble) {
  if (isnan(aDouble)) {
    return 0;
  }
  if (aDouble >= 9223372036854775808.0) {
    return INT64_MAX;
  }
  return aDouble <= -9223372036854775808.0 ? INT64_MIN : static_cast<int64>(aDouble);
}

// a * b + c for values that are not negative; INT64_MAX when that is too large.
static int64 qvConvert_S_MultiplyAdd(int64 a, int64 b, int64 c) {
  int64 theResult;
  if (__builtin_mul_overflow(a, b, &theResult) || __builtin_add_overflow(theResult, c, &theResult)) {
    return INT64_MAX;
  }
  return theResult;
}

namespace {

// A fraction and its distance from the number that it stands for.
struct Approximation {
  int64 mNumerator;
  int64 mDenominator;
  double mError;
};

// No continued fraction of a double is longer; the bound ends the search for numbers that are none.
constexpr int kMaxContinuedFractionSteps = 128;

}  // namespace

// Gives the numerator the denominator that suits the target best.
static void qvConvert_S_FitDenominator(double aTarget, Approximation* aFraction) {
  double theNumerator = static_cast<double>(aFraction->mNumerator);
  aFraction->mDenominator = qvConvert_S_Truncate(theNumerator / aTarget + 0.5);
  aFraction->mError = fabs(theNumerator / static_cast<double>(aFraction->mDenominator) - aTarget);
}

// The nearest simple fraction when the search has failed: 1/aMaxDenominator, or 0 when that is nearer.
static Approximation qvConvert_S_SimplestFraction(double aTarget, int32 aMaxDenominator) {
  Approximation theFraction = {1, aMaxDenominator, fabs(1.0 / aMaxDenominator - aTarget)};
  if (theFraction.mError > aTarget) {
    theFraction = {0, 1, aTarget};
  }
  return theFraction;
}

// Walks the continued fraction of a target between 0 and 1 until it is within aPrecision of it or the
// denominator grows past aMaxDenominator.
static Approximation qvConvert_S_FindFraction(double aTarget, int32 aMaxDenominator, double aPrecision) {
  Approximation theFraction = {1, 0, aTarget};
  int64 theLast = 0;  // the two numerators before the present one
  int64 theLastButOne = 0;
  double theRest = aTarget;
  double theAllowed = aPrecision;
  for (int theStep = 0; theStep < kMaxContinuedFractionSteps; ++theStep) {
    theRest = 1.0 / theRest;
    int64 theTerm = qvConvert_S_Truncate(theRest + theAllowed);
    theRest -= static_cast<double>(theTerm);
    if (theLast != 0) {
      theFraction.mNumerator = qvConvert_S_MultiplyAdd(theFraction.mNumerator, theTerm, theLastButOne);
    }
    qvConvert_S_FitDenominator(aTarget, &theFraction);
    if (theFraction.mDenominator > aMaxDenominator) {
      break;
    }
    if (theFraction.mError <= aPrecision || theRest < theAllowed) {
      return theFraction;
    }
    theAllowed = aPrecision / theFraction.mError;
    theLastButOne = theLast;
    theLast = theFraction.mNumerator;
  }
  if (theLast == 0) {
    return qvConvert_S_SimplestFraction(aTarget, aMaxDenominator);
  }
  theFraction.mNumerator = theLast;
  qvConvert_S_FitDenominator(aTarget, &theFraction);
  return theFraction;
}

static void qvConvert_S_SetLongLong(qvLongLong* aLongLong, int64 aValue) {
  uint64 theBits = static_cast<uint64>(aValue);
  qvLongLong_Set(aLongLong, static_cast<int32>(static_cast<uint32>(theBits >> 32)),
                 static_cast<uint32>(theBits));
}

double qvConvert_doubletofractionparts(double aDouble, qvLongLong* aWhole, qvLongLong* aNumerator,
                                       qvLongLong* aDenominator, int32 aMaxDenominator, double aPrecision) {
  int64 theWhole = qvConvert_S_Truncate(aDouble + aPrecision);
  double theTarget = fabs(aDouble - static_cast<double>(theWhole));
  Approximation theFraction = {1, 0, theTarget};
  if (theTarget > aPrecision) {
    theFraction = qvConvert_S_FindFraction(theTarget, aMaxDenominator, aPrecision);
  }
  // KEEP qvConvertKept.FractionThatRoundsToOneRaisesTheWholePart
  // A fraction of n/n is carried into the whole part upwards, for a negative number too. And since the
  // precision is added to a negative number as well, a negative whole number is split that way: -2 is -1 and
  // 1/1, so 0.
  if (theFraction.mNumerator == theFraction.mDenominator) {
    theWhole = theWhole < INT64_MAX ? theWhole + 1 : theWhole;
    theFraction.mNumerator = 0;
    theFraction.mDenominator = 0;
  }
  if (theFraction.mDenominator == 0) {
    theFraction.mNumerator = 0;
  }
  qvConvert_S_SetLongLong(aWhole, theWhole);
  qvConvert_S_SetLongLong(aNumerator, theFraction.mNumerator);
  qvConvert_S_SetLongLong(aDenominator, theFraction.mDenominator);
  return theFraction.mError;
}

// The magnitude as a native integer; Min has one too.
static unsigned long long qvConvert_S_Magnitude(const qvLongLong* aLongLong) {
  uint64 theBits = (static_cast<uint64>(static_cast<uint32>(aLongLong->mHigh)) << 32) | aLongLong->mLow;
  return aLongLong->mHigh < 0 ? 0 - theBits : theBits;
}

int qvConvert_doubletofraction(double aDouble, int32 aMaxDenominator, double aPrecision, char** aStr) {
  qvLongLong theWhole;
  qvLongLong theNumerator;
  qvLongLong theDenominator;
  qvConvert_doubletofractionparts(aDouble, &theWhole, &theNumerator, &theDenominator, aMaxDenominator,
                                  aPrecision);
  // The sign is written once, from the number itself, so the parts are written as magnitudes.
  const char* theSign = aDouble < 0.0 ? "-" : "";
  unsigned long long theWholePart = qvConvert_S_Magnitude(&theWhole);
  unsigned long long theNumeratorPart = qvConvert_S_Magnitude(&theNumerator);
  unsigned long long theDenominatorPart = qvConvert_S_Magnitude(&theDenominator);
  if (theNumeratorPart == 0 || theDenominatorPart == 0) {
    *aStr = qv_mnprintf("%s%llu", theSign, theWholePart);
  } else if (theWholePart == 0) {
    *aStr = qv_mnprintf("%s%llu/%llu", theSign, theNumeratorPart, theDenominatorPart);
  } else {
    *aStr = qv_mnprintf("%s%llu %llu/%llu", theSign, theWholePart, theNumeratorPart, theDenominatorPart);
  }
  return *aStr != NULL ? kqvConvertError_None : kqvConvertError_Invalid;
}

int qvConvert_cleanupfraction(const char* aFractionStr, int32 aMaxDenominator, char** aCleanedFractionStr) {
  static const double kPrecision = 1e-14;
  double theDouble = 0.0;
  int theResult = qvConvert_strfractiontodouble(aFractionStr, &theDouble);
  if (theResult != 0) {
    *aCleanedFractionStr = NULL;
    return theResult;
  }
  return qvConvert_doubletofraction(theDouble, aMaxDenominator, kPrecision, aCleanedFractionStr);
}
