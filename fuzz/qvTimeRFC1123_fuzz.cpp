// Dates are read stage by stage, as the table of the stages says; and every date that is written as RFC 1123
// wants it is read back whole.
#include <strings.h>
#include <time.h>

#include "FuzzInput.h"
#include "qvraTools/qvTime.h"

namespace {

const char kDigits[] = "0123456789";
const char* const kWeekDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                               "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
const char* const kZones[] = {"UT", "GMT", "EST", "EDT", "CST", "CDT", "MST", "MDT", "PST", "PDT"};

template <size_t Count>
int IndexOf(const std::string& aText, const char* const (&aNames)[Count]) {
  for (size_t i = 0; i < Count; ++i) {
    if (strcasecmp(aText.c_str(), aNames[i]) == 0) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

struct Token {
  std::string mText;
  char mEnd;
  bool mfDigits;
  int mNumber;
};

bool IsZone(const std::string& aText) {
  bool theOffsetFlag = aText.size() == 5 && (aText[0] == '+' || aText[0] == '-') &&
                       aText.find_first_not_of(kDigits, 1) == std::string::npos;
  return theOffsetFlag || IndexOf(aText, kZones) >= 0;
}

// Tries the stages from *aStage on. The first that takes the token moves *aStage behind itself.
void TakeToken(const Token& aToken, int* aStage, qvtm* aTime) {
  int theNumber = aToken.mNumber;
  bool theLonelyFlag = aToken.mfDigits && aToken.mEnd != ':';
  if (*aStage <= 0 && IndexOf(aToken.mText, kWeekDays) >= 0) {
    aTime->tm_wday = IndexOf(aToken.mText, kWeekDays);
    *aStage = 1;
  } else if (*aStage <= 1 && theLonelyFlag && theNumber >= 1 && theNumber <= 31) {
    aTime->tm_mday = theNumber;
    *aStage = 2;
  } else if (*aStage <= 2 && IndexOf(aToken.mText, kMonths) >= 0) {
    aTime->tm_mon = IndexOf(aToken.mText, kMonths);
    *aStage = 3;
  } else if (*aStage <= 3 && theLonelyFlag && theNumber >= 1901) {
    aTime->tm_year = theNumber - 1900;
    *aStage = 4;
  } else if (*aStage <= 4 && aToken.mfDigits && aToken.mEnd == ':' && theNumber <= 23) {
    aTime->tm_hour = theNumber;
    *aStage = 5;
  } else if (*aStage <= 6 && aToken.mfDigits) {
    // The minute takes any number that gets here, but only one up to 59 counts; behind it, so does the
    // second.
    bool theMinuteFlag = *aStage <= 5;
    if (theNumber <= 59) {
      (theMinuteFlag ? aTime->tm_min : aTime->tm_sec) = theNumber;
      *aStage = theMinuteFlag ? 6 : 7;
    }
  } else if (*aStage <= 7 && IsZone(aToken.mText)) {
    *aStage = 8;
  }
}

int ReadDate(const std::string& aText, qvtm* aTime) {
  memset(aTime, 0, sizeof(*aTime));
  int theStage = 0;
  size_t theStart = 0;
  while (theStart <= aText.size()) {
    size_t theEnd = std::min(aText.find_first_of(" ,:", theStart), aText.size());
    std::string theText = aText.substr(theStart, theEnd - theStart);
    if (theText.size() >= 9) {
      return -2;
    }
    if (!theText.empty()) {
      bool theDigitsFlag = theText.find_first_not_of(kDigits) == std::string::npos;
      TakeToken({theText, aText.c_str()[theEnd], theDigitsFlag, atoi(theText.c_str())}, &theStage, aTime);
    }
    theStart = theEnd + 1;
  }
  return theStage == 0 ? -3 : 0;
}

void CheckReading(const std::string& aText) {
  qvtm theTime;
  qvtm theExpected;
  memset(&theTime, 0x55, sizeof(theTime));
  int theResult = qvTime_ParseRFC1123Date(ExactCopy(aText, true).Data(), &theTime);
  FUZZ_REQUIRE(theResult == ReadDate(aText, &theExpected));
  FUZZ_REQUIRE(theResult == -2 || memcmp(&theTime, &theExpected, sizeof(theTime)) == 0);
}

// A date that the C library has written, from 1901 to 9999.
void CheckWritten(uint64_t aNumber) {
  time_t theSeconds = static_cast<time_t>(aNumber % 255547353600u) - 2177452800;
  struct tm theExpected;
  char theText[40];
  FUZZ_REQUIRE(gmtime_r(&theSeconds, &theExpected) != nullptr);
  FUZZ_REQUIRE(strftime(theText, sizeof(theText), "%a, %d %b %Y %H:%M:%S GMT", &theExpected) != 0);
  qvtm theTime;
  FUZZ_REQUIRE(qvTime_ParseRFC1123Date(theText, &theTime) == 0);
  FUZZ_REQUIRE(theTime.tm_wday == theExpected.tm_wday && theTime.tm_mday == theExpected.tm_mday &&
               theTime.tm_mon == theExpected.tm_mon && theTime.tm_year == theExpected.tm_year);
  FUZZ_REQUIRE(theTime.tm_hour == theExpected.tm_hour && theTime.tm_min == theExpected.tm_min &&
               theTime.tm_sec == theExpected.tm_sec);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  CheckReading(theInput.Text());
  CheckWritten(FuzzInput(aBytes, aLength).Number());
  return 0;
}
