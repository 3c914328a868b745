// Dates, times, durations and play positions of media are read by the rules of their notations, step by step.
#include <math.h>

#include <vector>

#include "FuzzInput.h"
#include "qvraTools/qvConvert.h"

namespace {

const char kDigits[] = "0123456789";

bool IsNumber(const std::string& aText, size_t aMinDigits, size_t aMaxDigits) {
  return aText.size() >= aMinDigits && aText.size() <= aMaxDigits &&
         aText.find_first_not_of(kDigits) == std::string::npos;
}

// The pieces between the separators, and the separators behind them; '\0' behind the last.
void Split(const std::string& aText, const char* aSeparators, std::vector<std::string>* aPieces,
           std::string* aFollowing) {
  size_t theStart = 0;
  for (;;) {
    size_t theEnd = aText.find_first_of(aSeparators, theStart);
    if (theEnd == std::string::npos) {
      aPieces->push_back(aText.substr(theStart));
      *aFollowing += '\0';
      return;
    }
    aPieces->push_back(aText.substr(theStart, theEnd - theStart));
    *aFollowing += aText[theEnd];
    theStart = theEnd + 1;
  }
}

// ---------------------------------------------------------------------------------------------- dates

struct FieldRule {
  long mMin;
  long mMax;
  char mSeparator;
};

const FieldRule kFields[9] = {{0, 9999, '-'}, {1, 12, '-'},  {1, 31, 'T'}, {0, 23, ':'}, {0, 59, ':'},
                              {0, 59, '*'},   {0, 999, '*'}, {0, 23, ':'}, {0, 59, '\0'}};
const size_t kComplete = 9;
const size_t kWrong = 10;

size_t NextField(size_t aField, char aSeparator) {
  if (aSeparator == '\0' || (aSeparator == 'Z' && (aField == 5 || aField == 6))) {
    return kComplete;
  }
  if (aField == 5) {
    return aSeparator == '+' || aSeparator == '-' ? 7 : 6;
  }
  if (aField == 6) {
    return 7;
  }
  return aSeparator == kFields[aField].mSeparator ? aField + 1 : kWrong;
}

int ReadDate(const std::string& aText, int32* aDate) {
  std::vector<std::string> thePieces;
  std::string theFollowing;
  Split(aText, "-:.TZ+", &thePieces, &theFollowing);
  if (thePieces.size() < 2 || thePieces.size() > 9) {
    return kqvConvertError_Invalid;
  }
  size_t theField = 0;
  for (size_t i = 0; i < thePieces.size(); ++i) {
    if (thePieces[i].empty() || theField == kComplete) {
      return thePieces[i].empty() && theField == kComplete ? kqvConvertError_None : kqvConvertError_Invalid;
    }
    char* theEnd;
    long theValue = strtol(thePieces[i].c_str(), &theEnd, 10);
    if (theEnd == thePieces[i].c_str() || *theEnd != '\0' || theValue < kFields[theField].mMin ||
        theValue > kFields[theField].mMax) {
      return kqvConvertError_Invalid;
    }
    bool theNegative = theField == 7 && theFollowing[i - 1] == '-';
    aDate[theField] = static_cast<int32>(theNegative ? -theValue : theValue);
    theField = NextField(theField, theFollowing[i]);
    if (theField == kWrong) {
      return kqvConvertError_Invalid;
    }
  }
  return kqvConvertError_None;
}

void CheckDate(const std::string& aText) {
  int32 theDate[9];
  memset(theDate, 0x55, sizeof(theDate));
  int theResult = qvConvert_dlnadatestrtodate(ExactCopy(aText, true).Data(), theDate);
  int32 theExpected[9] = {0};
  FUZZ_REQUIRE(theResult == ReadDate(aText, theExpected));
  FUZZ_REQUIRE(memcmp(theDate, theExpected, sizeof(theDate)) == 0);
}

// ------------------------------------------------------------------------------------ times and durations

struct Moment {
  int mResult;
  uint32 mSecond;
  uint32 mMilliSecond;

  bool operator==(const Moment& anOther) const {
    return mResult == anOther.mResult && mSecond == anOther.mSecond && mMilliSecond == anOther.mMilliSecond;
  }
};

const Moment kInvalid = {kqvConvertError_Invalid, 0, 0};

Moment ReadTime(const std::string& aText) {
  std::vector<std::string> thePieces;
  std::string theFollowing;
  Split(aText, ":.", &thePieces, &theFollowing);
  size_t theDot = theFollowing.find('.');
  bool theDotFlag = theDot != std::string::npos;
  if ((theDotFlag && theDot + 2 != thePieces.size()) || thePieces.size() > (theDotFlag ? 4u : 3u)) {
    return kInvalid;
  }
  unsigned long theValues[4] = {0, 0, 0, 0};
  for (size_t i = 0; i < thePieces.size(); ++i) {
    if (!IsNumber(thePieces[i], 1, 5)) {
      return kInvalid;
    }
    theValues[i] = strtoul(thePieces[i].c_str(), nullptr, 10);
  }
  size_t theCount = thePieces.size() - (theDotFlag ? 1 : 0);
  unsigned long theMilliSecond = theDotFlag ? theValues[theCount] : 0;
  unsigned long theSecond = theValues[theCount - 1];
  unsigned long theMinute = theCount > 1 ? theValues[theCount - 2] : 0;
  unsigned long theHour = theCount > 2 ? theValues[theCount - 3] : 0;
  if (theMilliSecond > 999 || theSecond > 59 || theMinute > 59) {
    return kInvalid;
  }
  return {kqvConvertError_None, static_cast<uint32>(theHour * 3600 + theMinute * 60 + theSecond),
          static_cast<uint32>(theMilliSecond)};
}

// The text behind the dot of a duration in milliseconds, or -1.
double ReadDurationFraction(const std::string& aText, bool afAcceptFraction) {
  bool theSlashFlag = aText.find('/') != std::string::npos;
  double theValue = 0.0;
  if ((theSlashFlag && !afAcceptFraction) || qvConvert_strfractiontodouble(aText.c_str(), &theValue) != 0 ||
      !isfinite(theValue)) {
    return -1.0;
  }
  if (theSlashFlag) {
    return theValue <= 1.0 ? theValue * 1000.0 : -1.0;
  }
  while (theValue >= 1001.0) {
    theValue = theValue < 4294967296.0 ? floor(floor(theValue) / 10.0) : theValue / 10.0;
  }
  return theValue < 0.0 ? -1.0 : floor(theValue);
}

Moment ReadDuration(const std::string& aText, bool afHourDigit, bool afTwoDigits, bool afAcceptFraction) {
  std::string theTime = aText.substr(0, aText.find('.'));
  std::vector<std::string> thePieces;
  std::string theFollowing;
  Split(theTime, ":", &thePieces, &theFollowing);
  size_t theMinDigits = afTwoDigits ? 2 : 1;
  if (thePieces.size() != 3 || !IsNumber(thePieces[0], afHourDigit ? 1 : 0, 6) ||
      !IsNumber(thePieces[1], theMinDigits, 2) || !IsNumber(thePieces[2], theMinDigits, 2)) {
    return kInvalid;
  }
  unsigned long theMinute = strtoul(thePieces[1].c_str(), nullptr, 10);
  unsigned long theSecond = strtoul(thePieces[2].c_str(), nullptr, 10);
  double theFraction =
      theTime == aText ? 0.0 : ReadDurationFraction(aText.substr(theTime.size() + 1), afAcceptFraction);
  if (theMinute > 59 || theSecond > 59 || theFraction < 0.0) {
    return kInvalid;
  }
  unsigned long theMilliSecond = static_cast<unsigned long>(theFraction);
  theSecond += strtoul(thePieces[0].c_str(), nullptr, 10) * 3600 + theMinute * 60 + theMilliSecond / 1000;
  return {kqvConvertError_None, static_cast<uint32>(theSecond), static_cast<uint32>(theMilliSecond % 1000)};
}

int ReadPart(const std::string& aText, uint32* aValue) {
  return qvConvert_strntouint32(aText.data(), aText.size(), aValue);
}

// Leaves what it is given when the text is wrong.
Moment ReadSeconds(const std::string& aText, Moment aBefore) {
  size_t theDot = aText.find('.');
  uint32 theSecond = 0;
  uint32 theMilliSecond = 0;
  aBefore.mResult = ReadPart(aText.substr(0, theDot), &theSecond);
  if (aBefore.mResult == kqvConvertError_None && theDot != std::string::npos) {
    std::string theFraction = aText.substr(theDot + 1);
    if (theFraction.size() <= 3) {
      theFraction.resize(3, '0');
      aBefore.mResult = ReadPart(theFraction, &theMilliSecond);
    } else {
      theFraction.erase(theFraction.find_last_not_of('0') + 1);
      bool theShortFlag = theFraction.size() <= 3;
      aBefore.mResult = theShortFlag ? ReadPart(theFraction, &theMilliSecond) : kqvConvertError_Invalid;
      aBefore.mResult = theFraction.empty() ? kqvConvertError_None : aBefore.mResult;
    }
  }
  if (aBefore.mResult == kqvConvertError_None && theMilliSecond > 999) {
    aBefore.mResult = kqvConvertError_Invalid;
  }
  if (aBefore.mResult != kqvConvertError_None) {
    return aBefore;
  }
  return {kqvConvertError_None, theSecond, theMilliSecond};
}

Moment ReadPlayPosition(const std::string& aText, Moment aBefore) {
  return aText.find(':') != std::string::npos ? ReadDuration(aText, true, false, false)
                                              : ReadSeconds(aText, aBefore);
}

const Moment kBefore = {0, 77, 88};

Moment Parsed(int (*aParser)(const char*, uint32*, uint32*), const std::string& aText) {
  Moment theMoment = kBefore;
  theMoment.mResult = aParser(ExactCopy(aText, true).Data(), &theMoment.mSecond, &theMoment.mMilliSecond);
  return theMoment;
}

void CheckDurationOptions(const std::string& aText, int aFlags) {
  Moment theMoment = kBefore;
  theMoment.mResult = qvConvert_dlnadurationstrtouint32_ex(
      aText.c_str(), &theMoment.mSecond, &theMoment.mMilliSecond, aFlags & 1, aFlags & 2, aFlags & 4);
  FUZZ_REQUIRE(theMoment == ReadDuration(aText, (aFlags & 1) != 0, (aFlags & 2) != 0, (aFlags & 4) != 0));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  int theFlags = theInput.Byte();
  std::string theText = theInput.Text();
  CheckDate(theText);
  FUZZ_REQUIRE(Parsed(qvConvert_dlnatimestrtouint32, theText) == ReadTime(theText));
  FUZZ_REQUIRE(Parsed(qvConvert_dlnadurationstrtouint32, theText) ==
               ReadDuration(theText, false, true, true));
  FUZZ_REQUIRE(Parsed(qvConvert_dlnaseconddurationstrtouint32, theText) == ReadSeconds(theText, kBefore));
  FUZZ_REQUIRE(Parsed(qvConvert_dlnanptstrtouint32, theText) == ReadPlayPosition(theText, kBefore));
  CheckDurationOptions(theText, theFlags);
  return 0;
}
