// Every parser of numbers, dates, times, fractions and addresses takes every text and leaves a defined
// result.
#include "qvraTools/qvConvert.h"

#include "FuzzInput.h"
#include "qvraTools/qvLongLong.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvTime.h"

static void ParseIntegers(const std::string& aText, int aBase) {
  int32 theInt32;
  uint32 theUInt32;
  qvint64_t theInt64;
  qvuint64_t theUInt64;
  qvLongLong theLongLong;
  qvULongLong theULongLong;
  uint8 theUInt8;
  void* thePtr;
  int theResult = qvConvert_strtoint32_base(aText.c_str(), &theInt32, aBase);
  FUZZ_REQUIRE(theResult <= static_cast<int>(aText.size()));
  qvConvert_strtouint32_base(aText.c_str(), &theUInt32, aBase);
  qvConvert_strtoint64_base(aText.c_str(), &theInt64, aBase);
  qvConvert_strtouint64_base(aText.c_str(), &theUInt64, aBase);
  qvConvert_strntouint8(aText.data(), aText.size(), &theUInt8);
  qvConvert_strtoptr(aText.c_str(), &thePtr);
  qvConvert_strtoLongLong(aText.c_str(), &theLongLong);
  if (qvConvert_strtoULongLong(aText.c_str(), &theULongLong) == kqvConvertError_None) {
    // The native and the two-word parser agree on what is a number.
    FUZZ_REQUIRE(qvConvert_strtouint64(aText.c_str(), &theUInt64) == kqvConvertError_None);
    FUZZ_REQUIRE(theULongLong.mLow == static_cast<uint32>(theUInt64));
    FUZZ_REQUIRE(theULongLong.mHigh == static_cast<uint32>(theUInt64 >> 32));
    char* theDigits = qvULongLong_ToString(&theULongLong);
    FUZZ_REQUIRE(theDigits == std::to_string(theUInt64));
    qvFree(theDigits);
  }
}

static void ParseMedia(const std::string& aText) {
  int32 theDate[9];
  uint32 theSecond = 0;
  uint32 theMilliSecond = 0;
  qvConvert_dlnadatestrtodate(aText.c_str(), theDate);
  qvConvert_dlnatimestrtouint32(aText.c_str(), &theSecond, &theMilliSecond);
  FUZZ_REQUIRE(theMilliSecond <= 999);
  qvConvert_dlnadurationstrtouint32(aText.c_str(), &theSecond, &theMilliSecond);
  FUZZ_REQUIRE(theMilliSecond <= 999);
  qvConvert_dlnanptstrtouint32(aText.c_str(), &theSecond, &theMilliSecond);
  FUZZ_REQUIRE(theMilliSecond <= 999);
  qvtm theTime;
  qvTime_ParseRFC1123Date(aText.c_str(), &theTime);
}

static void ParseFractions(const std::string& aText) {
  double theDouble = 0.0;
  qvConvert_strtod(aText.c_str(), &theDouble);
  qvConvert_strtodouble(aText.c_str(), &theDouble);
  if (qvConvert_strnfractiontodouble(aText.data(), aText.size(), &theDouble) == 0) {
    char* theText = nullptr;
    FUZZ_REQUIRE(qvConvert_doubletofraction(theDouble, 1000, 1e-14, &theText) == kqvConvertError_None);
    qvFree(theText);
  }
}

static void ParseBytes(const std::string& aText) {
  uint8 theMAC[6];
  qvConvert_strtoMAC(aText.c_str(), theMAC);
  for (size_t theWordSize : {1, 2, 4}) {
    uint8* theBuffer = nullptr;
    size_t theLength = 0;
    if (qvConvert_hexstrntobuffer(aText.data(), aText.size(), theWordSize, 0, &theBuffer, &theLength) == 0 &&
        theLength % theWordSize == 0) {
      char* theHex = nullptr;
      FUZZ_REQUIRE(qvConvert_buffertohexstr(theBuffer, theLength, theWordSize, 0, &theHex) == 0);
      FUZZ_REQUIRE(strlen(theHex) == 2 * theLength);
      qvFree(theHex);
    }
    qvFree(theBuffer);
  }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  int theBase = theInput.Byte() % 40;
  std::string theText = theInput.Text();
  ParseIntegers(theText, theBase);
  ParseMedia(theText);
  ParseFractions(theText);
  ParseBytes(theText);
  return 0;
}
