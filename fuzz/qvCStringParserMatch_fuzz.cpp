// Wildcards match what a plain recursion over the rules matches.
#include "FuzzInput.h"
#include "qvraTools/qvCStringParser.h"

namespace {

// The recursion takes too long beyond these.
const size_t kMaxPattern = 40;
const size_t kMaxText = 60;
const size_t kMaxStars = 5;

enum Result { kAbort = -1, kNoMatch = 0, kMatch = 1 };

char sEOLChar;

bool IsEnd(char aChar) { return aChar == '\0' || aChar == sEOLChar; }

// Whether the byte is in the class behind '['; moves the pattern behind the class.
bool IsInClass(const char** aPattern, unsigned char aByte) {
  std::string theMembers;
  const char* thePattern = *aPattern;
  bool theNegated = *thePattern == '^';
  thePattern += theNegated ? 1 : 0;
  const char* theFirst = thePattern;
  while (*thePattern != '\0' && (*thePattern != ']' || thePattern == theFirst)) {
    theMembers += *thePattern++;
  }
  *aPattern = *thePattern == ']' ? thePattern + 1 : thePattern;
  bool theMember = false;
  for (size_t i = 0; i < theMembers.size(); ++i) {
    // The end of one range may be the start of another.
    bool theRangeFlag = i + 2 < theMembers.size() && theMembers[i + 1] == '-';
    bool theRangeEndFlag = i >= 2 && theMembers[i - 1] == '-' && theRangeFlag;
    unsigned char theLow = static_cast<unsigned char>(theMembers[i]);
    if (theRangeFlag || theRangeEndFlag) {
      unsigned char theHigh = static_cast<unsigned char>(theMembers[i + 2]);
      theMember = theMember || (theLow <= aByte && aByte <= theHigh);
      bool theChainFlag = i + 4 < theMembers.size() && theMembers[i + 3] == '-';
      i += theChainFlag ? 1 : 2;
    } else {
      theMember = theMember || theLow == aByte;
    }
  }
  return theMember != theNegated;
}

Result Match(const char* aPattern, const char* aText);

Result MatchStar(const char* aPattern, const char* aText) {
  while (*aPattern == '*') {
    ++aPattern;
  }
  if (*aPattern == '\0') {
    return kMatch;
  }
  for (; !IsEnd(*aText); ++aText) {
    Result theResult = Match(aPattern, aText);
    if (theResult != kNoMatch) {
      return theResult;
    }
  }
  return kAbort;
}

Result Match(const char* aPattern, const char* aText) {
  for (;; ++aText) {
    if (*aPattern == '\0') {
      return IsEnd(*aText) ? kMatch : kNoMatch;
    }
    if (*aPattern == '*') {
      return MatchStar(aPattern, aText);
    }
    if (IsEnd(*aText)) {
      return kAbort;
    }
    char theElement = *aPattern++;
    bool theMatches = theElement == '?' || theElement == *aText;
    if (theElement == '[') {
      theMatches = IsInClass(&aPattern, static_cast<unsigned char>(*aText));
    } else if (theElement == '\\') {
      theMatches = *aPattern != '\0' && *aPattern == *aText;
      aPattern += *aPattern != '\0' ? 1 : 0;
    }
    if (!theMatches) {
      return kNoMatch;
    }
  }
}

// With the look at the first character that comes before everything else.
int MatchAll(const char* aPattern, const char* aText) {
  if (strcmp(aPattern, "*") == 0) {
    return 1;
  }
  if (*aPattern != '*' && *aPattern != '?' && *aPattern != *aText) {
    return 0;
  }
  return Match(aPattern, aText) == kMatch ? 1 : 0;
}

size_t CountStars(const std::string& aPattern) {
  size_t theCount = 0;
  for (size_t i = 0; i < aPattern.size(); ++i) {
    theCount += aPattern[i] == '*' && (i == 0 || aPattern[i - 1] != '*') ? 1 : 0;
  }
  return theCount;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  char theEOLChar = static_cast<char>(theInput.Byte());
  std::string thePattern = theInput.Text();
  std::string theText = theInput.Text();
  ExactCopy thePatternCopy(thePattern, true);
  ExactCopy theTextCopy(theText, true);
  int theResult = qvCStringParser_Match(thePatternCopy.Data(), theTextCopy.Data());
  int theLineResult = qvCStringParser_MatchEx(thePatternCopy.Data(), theTextCopy.Data(), 0, theEOLChar);
  if (thePattern.size() > kMaxPattern || theText.size() > kMaxText || CountStars(thePattern) > kMaxStars) {
    return 0;
  }
  sEOLChar = '\0';
  FUZZ_REQUIRE(theResult == MatchAll(thePatternCopy.Data(), theTextCopy.Data()));
  sEOLChar = theEOLChar;
  FUZZ_REQUIRE(theLineResult == MatchAll(thePatternCopy.Data(), theTextCopy.Data()));
  return 0;
}
