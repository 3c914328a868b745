// Whatever the command line and the records hold, filters work; what is refused changes nothing; wildcards
// match as a simple table says; and a time that was understood is read again from its ISO form.
#include "tools/logstream/LogFilter.h"

#include <time.h>

#include <vector>

#include "FuzzInput.h"
#include "tools/logstream/LogTimeText.h"
#include "tools/logstream/LogWildcard.h"

// The table's rows are what of the text is taken, its columns what of the pattern.
static bool MatchesByTable(const std::string& aPattern, const std::string& aText) {
  std::vector<bool> theRow(aPattern.size() + 1, false);
  theRow[0] = true;
  for (size_t j = 0; j < aPattern.size() && aPattern[j] == '*'; ++j) {
    theRow[j + 1] = true;
  }
  for (char theChar : aText) {
    std::vector<bool> theNext(aPattern.size() + 1, false);
    for (size_t j = 0; j < aPattern.size(); ++j) {
      theNext[j + 1] = aPattern[j] == '*' ? theNext[j] || theRow[j + 1] || theRow[j]
                                          : theRow[j] && (aPattern[j] == '?' || aPattern[j] == theChar);
    }
    theRow.swap(theNext);
  }
  return theRow[aPattern.size()];
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
  }
  theFilter.Shows(theRecord);
  LogFilter().AddSpec(theSpecs.c_str());
  CheckWildcard(theProcess, theName);
  CheckWildcard(theSpecs, theModule);
  CheckTime(theTime);
  return 0;
}
