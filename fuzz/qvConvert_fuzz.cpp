// Every integer parser reads what the C library's strtoull reads, within the library's own rules for signs,
// ranges and what is left over.
#include "qvraTools/qvConvert.h"

#include <errno.h>

#include "FuzzInput.h"
#include "qvraTools/qvLongLong.h"
#include "qvraTools/qvMalloc.h"

namespace {

const uint64_t kMinInt64Magnitude = 0x8000000000000000u;

// What reading an integer comes to: the value's bits and the result code.
struct Reading {
  uint64_t mValue;
  int mCode;

  bool operator==(const Reading& anOther) const { return mValue == anOther.mValue && mCode == anOther.mCode; }
};

const Reading kNothing = {0, kqvConvertError_Invalid};

// The code of a number that fits: 0, or where the text goes on.
int PositionCode(const char* aText, const char* anEnd) {
  return *anEnd == '\0' ? kqvConvertError_None : static_cast<int>(anEnd - aText);
}

const char* SkipSpaces(const char* aText) { return aText + strspn(aText, " \t\n\v\f\r"); }

bool IsDigitOrLetter(char aChar) {
  return (aChar >= '0' && aChar <= '9') || (aChar >= 'a' && aChar <= 'z') || (aChar >= 'A' && aChar <= 'Z');
}

// The number behind any sign that may stand there, read in 64 bits; false when there is none. aFits tells
// whether it has no more than 64 bits.
bool ReadMagnitude(const char* aText, int aBase, uint64_t* aValue, const char** anEnd, bool* aFits) {
  char* theEnd = const_cast<char*>(aText);
  if ((aBase != 0 && aBase < 2) || aBase > 36 || *SkipSpaces(aText) == '-') {
    return false;
  }
  errno = 0;
  *aValue = strtoull(aText, &theEnd, aBase);
  *aFits = errno != ERANGE;
  *anEnd = theEnd;
  return theEnd != aText;
}

Reading ReadUnsigned(const char* aText, int aBase, uint64_t aMax) {
  uint64_t theValue;
  const char* theEnd;
  bool theFits;
  if (!ReadMagnitude(aText, aBase, &theValue, &theEnd, &theFits)) {
    return kNothing;
  }
  if (!theFits || theValue > aMax) {
    return {aMax, kqvConvertError_RangeHigh};
  }
  return {theValue, PositionCode(aText, theEnd)};
}

// A number of which aMinMagnitude is the magnitude of the smallest.
Reading ReadSigned(const char* aText, int aBase, uint64_t aMinMagnitude) {
  const char* theStart = SkipSpaces(aText);
  bool theNegative = *theStart == '-' && IsDigitOrLetter(theStart[1]);
  uint64_t theMagnitude;
  const char* theEnd;
  bool theFits;
  if (!ReadMagnitude(theNegative ? theStart + 1 : aText, aBase, &theMagnitude, &theEnd, &theFits)) {
    return kNothing;
  }
  uint64_t theBound = theNegative ? 0 - aMinMagnitude : aMinMagnitude - 1;
  if (!theFits) {
    return {theBound, kqvConvertError_RangeHigh};
  }
  bool theMinFlag = theNegative && theMagnitude == aMinMagnitude;
  if (theMagnitude >= aMinMagnitude && !theMinFlag) {
    return {theBound, theNegative ? kqvConvertError_RangeLow : kqvConvertError_RangeHigh};
  }
  // The number beside the smallest reads as the smallest.
  uint64_t theValue = theNegative ? 0 - theMagnitude : theMagnitude;
  return {theMagnitude + 1 >= aMinMagnitude ? theBound : theValue, PositionCode(aText, theEnd)};
}

// A number of 32 bits in a type of less, between aMin and aMax.
Reading Narrow(Reading aReading, bool afSigned, int64_t aMin, int64_t aMax) {
  int64_t theValue = static_cast<int64_t>(aReading.mValue);
  if (aReading.mCode >= 0 && theValue > aMax) {
    aReading.mCode = kqvConvertError_RangeHigh;
  } else if (aReading.mCode >= 0 && afSigned && theValue < aMin) {
    aReading.mCode = kqvConvertError_RangeLow;
  }
  if (aReading.mCode == kqvConvertError_RangeHigh) {
    aReading.mValue = static_cast<uint64_t>(aMax);
  } else if (aReading.mCode == kqvConvertError_RangeLow) {
    aReading.mValue = static_cast<uint64_t>(aMin);
  }
  return aReading;
}

template <typename Integer>
Reading Parsed(int (*aParser)(const char*, Integer*), const char* aText) {
  Integer theValue = 42;
  int theCode = aParser(aText, &theValue);
  return {static_cast<uint64_t>(theValue), theCode};
}

template <typename Integer>
Reading ParsedBase(int (*aParser)(const char*, Integer*, int), const char* aText, int aBase) {
  Integer theValue = 42;
  int theCode = aParser(aText, &theValue, aBase);
  return {static_cast<uint64_t>(theValue), theCode};
}

template <typename Integer>
Reading ParsedPart(int (*aParser)(const char*, size_t, Integer*), const std::string& aText) {
  Integer theValue = 42;
  int theCode = aParser(ExactCopy(aText).Data(), aText.size(), &theValue);
  return {static_cast<uint64_t>(theValue), theCode};
}

void CheckBases(const char* aText, int aBase) {
  FUZZ_REQUIRE(ParsedBase(qvConvert_strtoint32_base, aText, aBase) == ReadSigned(aText, aBase, 0x80000000u));
  FUZZ_REQUIRE(ParsedBase(qvConvert_strtouint32_base, aText, aBase) ==
               ReadUnsigned(aText, aBase, UINT32_MAX));
  FUZZ_REQUIRE(ParsedBase(qvConvert_strtoint64_base, aText, aBase) ==
               ReadSigned(aText, aBase, kMinInt64Magnitude));
  FUZZ_REQUIRE(ParsedBase(qvConvert_strtouint64_base, aText, aBase) ==
               ReadUnsigned(aText, aBase, UINT64_MAX));
}

void CheckWidths(const char* aText) {
  Reading theSigned = ReadSigned(aText, 10, 0x80000000u);
  Reading theUnsigned = ReadUnsigned(aText, 10, UINT32_MAX);
  FUZZ_REQUIRE(Parsed(qvConvert_strtoint8, aText) == Narrow(theSigned, true, INT8_MIN, INT8_MAX));
  FUZZ_REQUIRE(Parsed(qvConvert_strtoint16, aText) == Narrow(theSigned, true, INT16_MIN, INT16_MAX));
  FUZZ_REQUIRE(Parsed(qvConvert_strtoint32, aText) == theSigned);
  FUZZ_REQUIRE(Parsed(qvConvert_strtouint8, aText) == Narrow(theUnsigned, false, 0, UINT8_MAX));
  FUZZ_REQUIRE(Parsed(qvConvert_strtouint16, aText) == Narrow(theUnsigned, false, 0, UINT16_MAX));
  FUZZ_REQUIRE(Parsed(qvConvert_strtouint32, aText) == theUnsigned);
  FUZZ_REQUIRE(Parsed(qvConvert_strtoint64, aText) == ReadSigned(aText, 10, kMinInt64Magnitude));
  FUZZ_REQUIRE(Parsed(qvConvert_strtouint64, aText) == ReadUnsigned(aText, 10, UINT64_MAX));
  FUZZ_REQUIRE(Parsed(qvConvert_hexstrtouint32, aText) == ReadUnsigned(aText, 16, UINT32_MAX));
}

// A part of a text reads like a text of its own.
void CheckParts(const std::string& aText, size_t aLength) {
  std::string thePart = aText.substr(0, aLength);
  const char* theText = thePart.c_str();
  FUZZ_REQUIRE(ParsedPart(qvConvert_strntoint8, thePart) == Parsed(qvConvert_strtoint8, theText));
  FUZZ_REQUIRE(ParsedPart(qvConvert_strntoint16, thePart) == Parsed(qvConvert_strtoint16, theText));
  FUZZ_REQUIRE(ParsedPart(qvConvert_strntoint32, thePart) == Parsed(qvConvert_strtoint32, theText));
  FUZZ_REQUIRE(ParsedPart(qvConvert_strntouint8, thePart) == Parsed(qvConvert_strtouint8, theText));
  FUZZ_REQUIRE(ParsedPart(qvConvert_strntouint16, thePart) == Parsed(qvConvert_strtouint16, theText));
  FUZZ_REQUIRE(ParsedPart(qvConvert_strntouint32, thePart) == Parsed(qvConvert_strtouint32, theText));
  FUZZ_REQUIRE(ParsedPart(qvConvert_strntouint64, thePart) == Parsed(qvConvert_strtouint64, theText));
  FUZZ_REQUIRE(ParsedPart(qvConvert_hexstrntouint32, thePart) == Parsed(qvConvert_hexstrtouint32, theText));
}

Reading Words(uint32 aLow, uint32 aHigh, int aCode) {
  return {static_cast<uint64_t>(aHigh) << 32 | aLow, aCode};
}

// A signed number of two words: any sign may stand before the digits, and each bound is read as what it is.
Reading ReadTwoWords(const char* aText) {
  const char* theStart = SkipSpaces(aText);
  bool theNegative = *theStart == '-';
  theStart += *theStart == '-' || *theStart == '+' ? 1 : 0;
  uint64_t theMagnitude;
  const char* theEnd;
  bool theFits;
  if (*theStart < '0' || *theStart > '9' || !ReadMagnitude(theStart, 10, &theMagnitude, &theEnd, &theFits)) {
    return kNothing;
  }
  uint64_t theMax = theNegative ? kMinInt64Magnitude : kMinInt64Magnitude - 1;
  if (!theFits || theMagnitude > theMax) {
    return {theMax, theNegative ? kqvConvertError_RangeLow : kqvConvertError_RangeHigh};
  }
  return {theNegative ? 0 - theMagnitude : theMagnitude, PositionCode(aText, theEnd)};
}

void CheckTwoWords(const char* aText) {
  qvLongLong theSigned = qvLongLong_Init(7, 7);
  int theCode = qvConvert_strtoLongLong(aText, &theSigned);
  FUZZ_REQUIRE(Words(theSigned.mLow, static_cast<uint32>(theSigned.mHigh), theCode) == ReadTwoWords(aText));
  qvULongLong theUnsigned = qvULongLong_Init(7, 7);
  theCode = qvConvert_strtoULongLong(aText, &theUnsigned);
  Reading theExpected = ReadUnsigned(aText, 10, UINT64_MAX);
  FUZZ_REQUIRE(Words(theUnsigned.mLow, theUnsigned.mHigh, theCode) == theExpected);
  char* theDigits = qvULongLong_ToString(&theUnsigned);
  FUZZ_REQUIRE(theDigits == std::to_string(theExpected.mValue));
  qvFree(theDigits);
}

// Where the text goes on is counted from behind white space, sign and prefix.
Reading ReadPointer(const char* aText) {
  if (*aText == '\0') {
    return kNothing;
  }
  aText = SkipSpaces(aText);
  aText += *aText == '+' ? 1 : 0;
  bool thePrefixed = aText[0] == '0' && (aText[1] == 'x' || aText[1] == 'X');
  if (thePrefixed && aText[2] == '\0') {
    return {0, kqvConvertError_None};
  }
  if (thePrefixed && strchr("0123456789abcdefABCDEF", aText[2]) != nullptr) {
    return ReadUnsigned(aText + 2, 16, UINT32_MAX);
  }
  return ReadUnsigned(aText, 10, UINT32_MAX);
}

void CheckPointer(const char* aText) {
  void* thePtr = &thePtr;
  int theCode = qvConvert_strtoptr(aText, &thePtr);
  Reading theParsed = {reinterpret_cast<uintptr_t>(thePtr), theCode};
  FUZZ_REQUIRE(theParsed == ReadPointer(aText));
}

void CheckClasses(const std::string& aText, size_t aLength) {
  std::string thePart = aText.substr(0, aLength);
  ExactCopy theCopy(thePart);
  uint32 theLength = static_cast<uint32>(thePart.size());
  std::string theLetters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
  FUZZ_REQUIRE(qvConvert_isnumstr(theCopy.Data(), theLength) ==
               (thePart.find_first_not_of("0123456789") == std::string::npos));
  FUZZ_REQUIRE(qvConvert_isalphastr(theCopy.Data(), theLength) ==
               (thePart.find_first_not_of(theLetters) == std::string::npos));
  FUZZ_REQUIRE(qvConvert_containsonly(theCopy.Data(), theLength, "+-x") ==
               (thePart.find_first_not_of("+-x") == std::string::npos));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  int theBase = theInput.Byte() % 40 - 1;
  size_t thePart = theInput.Byte() % 24;
  std::string theText = theInput.Text();
  ExactCopy theCopy(theText, true);
  CheckBases(theCopy.Data(), theBase);
  CheckWidths(theCopy.Data());
  CheckParts(theText, thePart);
  CheckTwoWords(theCopy.Data());
  CheckPointer(theCopy.Data());
  CheckClasses(theText, thePart);
  return 0;
}
