// Whatever the command line and the records hold, filters work; what is refused changes nothing; wildcards
// match as a simple table says; a time that was understood is read again from its ISO form, and one that is
// made of numbers is read as them; and a line's level is let through or not as specs and priority say.
#include "tools/logstream/LogFilter.h"

#include <time.h>

#include <string_view>

#include "FuzzInput.h"
#include "tools/logstream/LogTimeText.h"
#include "tools/logstream/LogWildcard.h"

// The table's rows are what of the text is taken, its columns what of the pattern.
static bool MatchesByTable(std::string_view aPattern, std::string_view aText) {
  static const size_t kMaxPattern = 8192;
  static bool sRow[kMaxPattern + 1];
  FUZZ_REQUIRE(aPattern.size() <= kMaxPattern);
  sRow[0] = true;
  for (size_t j = 0; j < aPattern.size(); ++j) {
    sRow[j + 1] = sRow[j] && aPattern[j] == '*';
  }
  for (char theChar : aText) {
    bool theBefore = sRow[0];  // what stood in the column on the left
    sRow[0] = false;
    for (size_t j = 0; j < aPattern.size(); ++j) {
      bool theOld = sRow[j + 1];
      sRow[j + 1] = aPattern[j] == '*' ? sRow[j] || theOld || theBefore
                                       : theBefore && (aPattern[j] == '?' || aPattern[j] == theChar);
      theBefore = theOld;
    }
  }
  return sRow[aPattern.size()];
}

static std::string WithSmallLetters(std::string aText) {
  for (char& theChar : aText) {
    theChar = theChar >= 'A' && theChar <= 'Z' ? static_cast<char>(theChar + 32) : theChar;
  }
  return aText;
}

static void CheckWildcard(const std::string& aPattern, const std::string& aText) {
  FUZZ_REQUIRE(LogWildcard_Matches(aPattern, aText, false) == MatchesByTable(aPattern, aText));
  FUZZ_REQUIRE(LogWildcard_Matches(aPattern, aText, true) ==
               MatchesByTable(WithSmallLetters(aPattern), WithSmallLetters(aText)));
}

static void CheckTime(const std::string& aText) {
  static const bool sZone = setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1) == 0;
  FUZZ_REQUIRE(sZone);
  constexpr int64 kNow = 1795266187042123LL;
  int64 theTime = 17;
  if (!LogFilter_ParseTime(aText.c_str(), kNow, &theTime)) {
    FUZZ_REQUIRE(theTime == 17);
    return;
  }
  LogTimeText theTimeText;
  std::string theISO;
  int64 theAgain = 0;
  if (theTimeText.AppendISO(theTime, theISO)) {
    FUZZ_REQUIRE(LogFilter_ParseTime(theISO.c_str(), 0, &theAgain) && theAgain == theTime);
  }
}

// A moment that is written out is read as the C library counts it, unless one of its fields is out of range.
static void CheckMoment(const std::string& aBytes) {
  static const int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  FuzzInput theBytes(reinterpret_cast<const uint8_t*>(aBytes.data()), aBytes.size());
  const int theYear = (theBytes.Byte() << 8 | theBytes.Byte()) % 10000;
  const int theMonth = theBytes.Byte() % 14, theDay = theBytes.Byte() % 33;
  const int theHour = theBytes.Byte() % 25, theMinute = theBytes.Byte() % 61,
            theSecond = theBytes.Byte() % 61;
  const int theOffset = theBytes.Byte() % 24 * 60 + theBytes.Byte() % 60;
  const bool theEast = theBytes.Byte() % 2 == 0;
  char theText[64];
  snprintf(theText, sizeof(theText), "%04d-%02d-%02dT%02d:%02d:%02d.25%c%02d:%02d", theYear, theMonth, theDay,
           theHour, theMinute, theSecond, theEast ? '+' : '-', theOffset / 60, theOffset % 60);
  const bool theLeap = theYear % 4 == 0 && (theYear % 100 != 0 || theYear % 400 == 0);
  const bool theIsDate = theYear > 0 && theMonth >= 1 && theMonth <= 12 && theDay >= 1 &&
                         theDay <= kDays[theMonth - 1] + (theMonth == 2 && theLeap ? 1 : 0);
  int64 theTime = 0;
  const bool theIsMoment = theIsDate && theHour < 24 && theMinute < 60 && theSecond < 60;
  FUZZ_REQUIRE(LogFilter_ParseTime(theText, 0, &theTime) == theIsMoment);
  if (theIsMoment) {
    struct tm theFields = {};
    theFields.tm_year = theYear - 1900;
    theFields.tm_mon = theMonth - 1;
    theFields.tm_mday = theDay;
    theFields.tm_hour = theHour;
    theFields.tm_min = theMinute - (theEast ? theOffset : -theOffset);
    theFields.tm_sec = theSecond;
    FUZZ_REQUIRE(theTime == static_cast<int64>(timegm(&theFields)) * 1000000 + 250000);
  }
}

// Specs of a module and of all others, and a priority: the first one that matches decides, the star at last.
static void CheckLevels(const std::string& aBytes) {
  static const std::string kLevels = "SEWID";  // the more severe, the earlier; S lets nothing through
  FuzzInput theBytes(reinterpret_cast<const uint8_t*>(aBytes.data()), aBytes.size());
  LogRecord theRecord;
  const size_t theLevel = theBytes.Byte() % 4 + 1;
  theRecord.mLevel = kLevels[theLevel];
  theRecord.mKind = LogRecordKind_Line;
  const bool theIsNamed = theBytes.Byte() % 2 == 0;
  theRecord.mModule = theIsNamed ? "GUI_MENU" : "HTTP";
  const size_t theNamed = theBytes.Byte() % 5, theStar = theBytes.Byte() % 5,
               thePriority = theBytes.Byte() % 4 + 1;
  const std::string theNamedSpec = std::string("gui*:") + kLevels[theNamed];
  const std::string theStarSpec = std::string("*:") + kLevels[theStar];
  LogFilter theFilter;
  FUZZ_REQUIRE(theFilter.AddSpecs((theStarSpec + " " + theNamedSpec).c_str()));
  FUZZ_REQUIRE(theFilter.SetPriority(std::string(1, kLevels[thePriority]).c_str()));
  FUZZ_REQUIRE(theFilter.Shows(theRecord) ==
               (theLevel <= thePriority && theLevel <= (theIsNamed ? theNamed : theStar)));
}

// The system's pattern compiler needs memory and time that grow quickly with nesting and with repetitions,
// each of which doubles what is before it when that is a repetition too; that is the caller's choice and not
// looked at here.
static bool IsSimple(const std::string& aPattern) {
  static const char kRepetitions[] = "*+?";
  size_t theRepetition = aPattern.find_first_of(kRepetitions);
  while (theRepetition != std::string::npos) {
    size_t theNext = aPattern.find_first_of(kRepetitions, theRepetition + 1);
    if (theNext == theRepetition + 1) {
      return false;
    }
    theRepetition = theNext;
  }
  return aPattern.size() <= 32 && aPattern.find_first_of("{(\\") == std::string::npos;
}

static void CheckPattern(const std::string& aPattern, const std::string& aText) {
  regex_t thePattern;
  const bool theIsPattern = regcomp(&thePattern, aPattern.c_str(), REG_EXTENDED | REG_NOSUB) == 0;
  LogFilter theFilter;
  FUZZ_REQUIRE(theFilter.SetPattern(aPattern.c_str()) == theIsPattern);
  if (theIsPattern) {
    LogRecord theRecord;
    theRecord.mKind = LogRecordKind_Line;
    theRecord.mText = aText;
    FUZZ_REQUIRE(theFilter.Shows(theRecord) == (regexec(&thePattern, aText.c_str(), 0, nullptr, 0) == 0));
    regfree(&thePattern);
  }
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  static const char kLevels[] = {0, 'E', 'W', 'I', 'D'};
  LogRecord theRecord;
  uint8_t theBits = theInput.Byte();
  theRecord.mLevel = kLevels[theBits % sizeof(kLevels)];
  theRecord.mKind = static_cast<LogRecordKind>((theBits >> 4) % 5);
  const std::string theSpecs = theInput.Text(), thePriority = theInput.Text(), theProcess = theInput.Text();
  const std::string thePattern = theInput.Text(), theTime = theInput.Text();
  const std::string theModule = theInput.Text(), theName = theInput.Text(), theText = theInput.Rest();
  theRecord.mModule = theModule;
  theRecord.mProcess = theName;
  theRecord.mText = theText;

  LogFilter theFilter;
  FUZZ_REQUIRE(theFilter.Shows(theRecord));
  if (!theFilter.AddSpecs(theSpecs.c_str()) && !theFilter.SetPriority(thePriority.c_str())) {
    FUZZ_REQUIRE(theFilter.Shows(theRecord));
  }
  theFilter.Shows(theRecord);
  if (theFilter.AddProcess(theProcess.c_str()) && theFilter.Shows(theRecord)) {
    FUZZ_REQUIRE(MatchesByTable(theProcess, theName));
  }
  if (IsSimple(thePattern)) {
    theFilter.SetPattern(thePattern.c_str());
    CheckPattern(thePattern, theText.c_str());
  }
  theFilter.Shows(theRecord);
  LogFilter().AddSpec(theSpecs.c_str());
  CheckWildcard(theProcess, theName);
  CheckWildcard(theSpecs, theModule);
  CheckTime(theTime);
  CheckMoment(theText);
  CheckLevels(theText);
  return 0;
}
