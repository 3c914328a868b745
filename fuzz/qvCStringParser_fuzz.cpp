// Tokens are those of a plain reading of the rules, and point into the text; escaped copies hold every byte.
#include "qvraTools/qvCStringParser.h"

#include <algorithm>
#include <vector>

#include "FuzzInput.h"
#include "qvraTools/qvMalloc.h"

namespace {

typedef std::vector<std::string_view> Tokens;

const char kQuotes[] = "\"'";
const char kSpaces[] = " \t\n\v\f\r";

// Takes the list, which belongs to the text in a block of the given size, and compares it.
void CheckTokens(qvCStringParser_TokenList* aList, const char* aText, size_t aSize,
                 const Tokens& anExpected) {
  const char* thePosition = aText;
  const qvCStringParser_Token* theLast = nullptr;
  size_t theCount = 0;
  for (qvCStringParser_Token* theToken = aList->mFirstToken; theToken != nullptr;
       theToken = theToken->mNextToken) {
    FUZZ_REQUIRE(theToken->mData >= thePosition);
    thePosition = theToken->mData + theToken->mDataLength;
    FUZZ_REQUIRE(thePosition <= aText + aSize);
    FUZZ_REQUIRE(theCount < anExpected.size());
    FUZZ_REQUIRE(std::string_view(theToken->mData, theToken->mDataLength) == anExpected[theCount]);
    ++theCount;
    theLast = theToken;
  }
  FUZZ_REQUIRE(theCount == anExpected.size());
  FUZZ_REQUIRE(aList->mLastToken == theLast);
  FUZZ_REQUIRE(aList->mTokenCount == theCount);
  qvCStringParser_Delete(aList);
}

Tokens SplitEscaped(std::string_view aText, size_t anOffset, std::string_view aDelimiter, char anEscape) {
  Tokens theTokens;
  theTokens.reserve(16);
  size_t theStart = anOffset;
  size_t theFrom = anOffset;
  for (;;) {
    size_t theFound = aText.find(aDelimiter, theFrom);
    if (theFound == std::string::npos) {
      theTokens.push_back(aText.substr(theStart));
      return theTokens;
    }
    if (anEscape != '\0' && theFound > anOffset && aText[theFound - 1] == anEscape) {
      theFrom = theFound + 1;
      continue;
    }
    theTokens.push_back(aText.substr(theStart, theFound - theStart));
    theStart = theFrom = theFound + aDelimiter.size();
  }
}

// Splits aText, whose first aDelimiterEnd bytes are those in which delimiters count.
Tokens SplitQuoted(std::string_view aText, size_t anOffset, size_t aDelimiterEnd,
                   std::string_view aDelimiter) {
  Tokens theTokens;
  theTokens.reserve(16);
  size_t theStart = anOffset;
  size_t theFrom = anOffset;
  for (;;) {
    size_t theQuote = aText.find_first_of(kQuotes, theFrom);
    size_t theFound = aText.find(aDelimiter, theFrom);
    bool theDelimiterFlag =
        theFound != std::string::npos && theFound + aDelimiter.size() <= aDelimiterEnd && theFound < theQuote;
    if (theDelimiterFlag) {
      theTokens.push_back(aText.substr(theStart, theFound - theStart));
      theStart = theFrom = theFound + aDelimiter.size();
      continue;
    }
    size_t theClosing =
        theQuote != std::string::npos ? aText.find(aText[theQuote], theQuote + 1) : std::string::npos;
    if (theClosing == std::string::npos) {
      theTokens.push_back(aText.substr(theStart));
      return theTokens;
    }
    theTokens.push_back(aText.substr(theStart, theClosing + 1 - theStart));
    theStart = theFrom = theClosing + 1;
  }
}

std::string_view Trim(std::string_view aText) {
  size_t theStart = aText.find_first_not_of(kSpaces);
  return theStart == std::string::npos
             ? std::string_view()
             : aText.substr(theStart, aText.find_last_not_of(kSpaces) - theStart + 1);
}

std::string_view Unquote(std::string_view aText) {
  bool theQuotedFlag =
      aText.size() >= 2 && aText.front() == aText.back() && (aText.front() == '"' || aText.front() == '\'');
  return theQuotedFlag ? aText.substr(1, aText.size() - 2) : aText;
}

Tokens Cleaned(const Tokens& aTokens, bool afDropEmpty) {
  Tokens theCleaned;
  theCleaned.reserve(aTokens.size());
  for (std::string_view theToken : aTokens) {
    std::string_view theTrimmed = Trim(theToken);
    if (!afDropEmpty || !theTrimmed.empty()) {
      theCleaned.push_back(Unquote(theTrimmed));
    }
  }
  return theCleaned;
}

void CheckSplitting(const std::string& aText, const std::string& aDelimiter, char anEscape, size_t anOffset) {
  size_t theSize = aText.size();
  ExactCopy theCopy(aText);
  const char* theText = theCopy.Data();
  ExactCopy theDelimiterCopy(aDelimiter);
  const char* theDelimiter = theDelimiterCopy.Data();
  size_t theLength = aDelimiter.size();
  CheckTokens(qvCStringParser_TokenizeEscaped(theText, anOffset, theSize, theDelimiter, theLength, anEscape),
              theText, theSize, SplitEscaped(aText, anOffset, aDelimiter, anEscape));
  CheckTokens(qvCStringParser_Tokenize(theText, anOffset, theSize, theDelimiter, theLength), theText, theSize,
              SplitEscaped(aText, anOffset, aDelimiter, '\0'));
  // Here the length counts from the offset, but delimiters end at or before the position of that number.
  size_t theCount = theSize - anOffset;
  CheckTokens(qvCStringParser_TokenizeQuoted(theText, anOffset, theCount, theDelimiter, theLength), theText,
              theSize, SplitQuoted(aText, anOffset, theCount, aDelimiter));
  CheckTokens(qvCStringParser_TokenizeQuotedList(theText, anOffset, theCount), theText, theSize,
              Cleaned(SplitQuoted(aText, anOffset, theCount, ","), false));
  CheckTokens(qvCStringParser_TokenizeParameterList(theText, anOffset, theCount), theText, theSize,
              Cleaned(SplitQuoted(aText, anOffset, theCount, " "), true));
}

void CheckListContains(const std::string& aText, const std::string& aDelimiter, const std::string& aValue) {
  std::string theList = aText.c_str();
  Tokens theTokens = Cleaned(SplitQuoted(theList, 0, theList.size(), aDelimiter), false);
  bool theFound = false;
  for (std::string_view theToken : theTokens) {
    theFound = theFound || theToken == aValue;
  }
  FUZZ_REQUIRE(qvCStringParser_ListContains(ExactCopy(theList, true).Data(), aDelimiter.c_str(),
                                            aValue.c_str()) == (theFound ? 1 : 0));
  // Each token of the list is in the list, as long as it is a text.
  FUZZ_REQUIRE(theTokens[0].find('\0') != std::string::npos ||
               qvCStringParser_ListContains(theList.c_str(), aDelimiter.c_str(),
                                            std::string(theTokens[0]).c_str()) == 1);
}

void CheckTrim(const std::string& aText) {
  // A copy ends at a zero byte, so this looks at texts without.
  std::string theText = aText.c_str();
  ExactCopy theCopy(theText);
  size_t theStart = theText.find_first_not_of(kSpaces);
  for (int theFlags = 0; theFlags < 4; ++theFlags) {
    char* theTrimmed = qvCStringParser_Trim(theCopy.Data(), theText.size(), theFlags & 1, theFlags >> 1);
    std::string_view theExpected = theText;
    if ((theFlags & 2) != 0) {
      theExpected = theExpected.substr(0, theText.find_last_not_of(kSpaces) + 1);
    }
    if ((theFlags & 1) != 0) {
      theExpected.remove_prefix(std::min(theStart, theExpected.size()));
    }
    FUZZ_REQUIRE(theExpected == theTrimmed);
    qvFree(theTrimmed);
  }
}

void CheckSurrounded(const std::string& aText, char aLeft, char aRight) {
  ExactCopy theCopy(aText);
  bool theSurrounded = aText.size() >= 2 && aText.front() == aLeft && aText.back() == aRight;
  bool theInside = aText.find(aLeft, 1) < aText.size() - 1;
  FUZZ_REQUIRE(qvCStringParser_IsSurrounded(theCopy.Data(), aText.size(), aLeft, aRight, 1) == theSurrounded);
  FUZZ_REQUIRE(qvCStringParser_IsSurrounded(theCopy.Data(), aText.size(), aLeft, aRight, 0) ==
               (theSurrounded && !theInside));
}

void CheckEscape(const std::string& aText, const std::string& aCharsToEscape) {
  ExactCopy theCopy(aText);
  std::string theChars = aCharsToEscape + "\\";
  std::string theFinding = theChars + '\0';  // the terminator is found too
  FUZZ_REQUIRE(qvCStringParser_ContainsOneOf(theCopy.Data(), aText.size(), theChars.c_str()) ==
               (aText.find_first_of(theFinding) != std::string::npos ? 1 : 0));
  char* theEscaped =
      qvCStringParser_EscapeAndSurround(theCopy.Data(), aText.size(), theChars.data(), '/', '<', '>');
  std::string theExpected = "<";
  theExpected.reserve(2 * aText.size() + 2);
  for (char theChar : aText) {
    if (theFinding.find(theChar) != std::string::npos) {
      theExpected += '\\';
    }
    theExpected += theChar;
  }
  theExpected += '>';
  FUZZ_REQUIRE(memcmp(theEscaped, theExpected.c_str(), theExpected.size() + 1) == 0);
  std::string thePlain;
  thePlain.reserve(aText.size());
  for (size_t i = 1; i + 1 < theExpected.size(); ++i) {
    i += theEscaped[i] == '\\' ? 1 : 0;
    thePlain += theEscaped[i];
  }
  FUZZ_REQUIRE(thePlain == aText);
  qvFree(theEscaped);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  char theEscape = static_cast<char>(theInput.Byte());
  size_t theOffset = theInput.Byte() % 8;
  std::string theDelimiter = theInput.Text();
  std::string theValue = theInput.Text();
  std::string theText = theInput.Rest();
  theOffset = theOffset < theText.size() ? theOffset : theText.size();
  if (!theDelimiter.empty()) {
    CheckSplitting(theText, theDelimiter, theEscape, theOffset);
    CheckListContains(theText, theDelimiter, theValue);
  }
  CheckTrim(theText);
  CheckSurrounded(theText, theEscape, theText.empty() ? theEscape : theText.back());
  CheckEscape(theText, theValue);
  return 0;
}
