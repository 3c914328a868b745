// Tokens are those of a plain reading of the rules, and point into the text; escaped copies hold every byte.
#include "qvraTools/qvCStringParser.h"

#include <vector>

#include "FuzzInput.h"
#include "qvraTools/qvMalloc.h"

namespace {

typedef std::vector<std::string> Tokens;

const char kQuotes[] = "\"'";
const char kSpaces[] = " \t\n\v\f\r";

// Takes the list, which belongs to the text in a block of the given size.
Tokens Take(qvCStringParser_TokenList* aList, const char* aText, size_t aSize) {
  Tokens theTokens;
  const char* thePosition = aText;
  const qvCStringParser_Token* theLast = nullptr;
  for (qvCStringParser_Token* theToken = aList->mFirstToken; theToken != nullptr;
       theToken = theToken->mNextToken) {
    FUZZ_REQUIRE(theToken->mData >= thePosition);
    thePosition = theToken->mData + theToken->mDataLength;
    FUZZ_REQUIRE(thePosition <= aText + aSize);
    theTokens.emplace_back(theToken->mData, theToken->mDataLength);
    theLast = theToken;
  }
  FUZZ_REQUIRE(aList->mLastToken == theLast);
  FUZZ_REQUIRE(aList->mTokenCount == theTokens.size());
  qvCStringParser_Delete(aList);
  return theTokens;
}

Tokens SplitEscaped(const std::string& aText, size_t anOffset, const std::string& aDelimiter, char anEscape) {
  Tokens theTokens;
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
Tokens SplitQuoted(const std::string& aText, size_t anOffset, size_t aDelimiterEnd,
                   const std::string& aDelimiter) {
  Tokens theTokens;
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

std::string Trim(const std::string& aText) {
  size_t theStart = aText.find_first_not_of(kSpaces);
  return theStart == std::string::npos
             ? std::string()
             : aText.substr(theStart, aText.find_last_not_of(kSpaces) - theStart + 1);
}

std::string Unquote(const std::string& aText) {
  bool theQuotedFlag =
      aText.size() >= 2 && aText.front() == aText.back() && (aText.front() == '"' || aText.front() == '\'');
  return theQuotedFlag ? aText.substr(1, aText.size() - 2) : aText;
}

Tokens Cleaned(const Tokens& aTokens, bool afDropEmpty) {
  Tokens theCleaned;
  for (const std::string& theToken : aTokens) {
    std::string theTrimmed = Trim(theToken);
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
  FUZZ_REQUIRE(Take(qvCStringParser_TokenizeEscaped(theText, anOffset, theSize, theDelimiter,
                                                    aDelimiter.size(), anEscape),
                    theText, theSize) == SplitEscaped(aText, anOffset, aDelimiter, anEscape));
  FUZZ_REQUIRE(Take(qvCStringParser_Tokenize(theText, anOffset, theSize, theDelimiter, aDelimiter.size()),
                    theText, theSize) == SplitEscaped(aText, anOffset, aDelimiter, '\0'));
  // Here the length counts from the offset, but delimiters end at or before the position of that number.
  size_t theCount = theSize - anOffset;
  FUZZ_REQUIRE(
      Take(qvCStringParser_TokenizeQuoted(theText, anOffset, theCount, theDelimiter, aDelimiter.size()),
           theText, theSize) == SplitQuoted(aText, anOffset, theCount, aDelimiter));
  FUZZ_REQUIRE(Take(qvCStringParser_TokenizeQuotedList(theText, anOffset, theCount), theText, theSize) ==
               Cleaned(SplitQuoted(aText, anOffset, theCount, ","), false));
  FUZZ_REQUIRE(Take(qvCStringParser_TokenizeParameterList(theText, anOffset, theCount), theText, theSize) ==
               Cleaned(SplitQuoted(aText, anOffset, theCount, " "), true));
}

void CheckListContains(const std::string& aText, const std::string& aDelimiter, const std::string& aValue) {
  std::string theList = aText.c_str();
  Tokens theTokens = Cleaned(SplitQuoted(theList, 0, theList.size(), aDelimiter), false);
  bool theFound = false;
  for (const std::string& theToken : theTokens) {
    theFound = theFound || theToken == aValue;
  }
  FUZZ_REQUIRE(qvCStringParser_ListContains(ExactCopy(theList, true).Data(), aDelimiter.c_str(),
                                            aValue.c_str()) == (theFound ? 1 : 0));
  // Each token of the list is in the list, as long as it is a text.
  FUZZ_REQUIRE(theTokens[0].find('\0') != std::string::npos ||
               qvCStringParser_ListContains(theList.c_str(), aDelimiter.c_str(), theTokens[0].c_str()) == 1);
}

void CheckTrim(const std::string& aText) {
  // A copy ends at a zero byte, so this looks at texts without.
  std::string theText = aText.c_str();
  ExactCopy theCopy(theText);
  size_t theStart = theText.find_first_not_of(kSpaces);
  for (int theFlags = 0; theFlags < 4; ++theFlags) {
    char* theTrimmed = qvCStringParser_Trim(theCopy.Data(), theText.size(), theFlags & 1, theFlags >> 1);
    std::string theExpected = theText;
    if ((theFlags & 2) != 0) {
      theExpected.erase(theExpected.find_last_not_of(kSpaces) + 1);
    }
    if ((theFlags & 1) != 0) {
      theExpected.erase(0, theStart == std::string::npos ? theExpected.size() : theStart);
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
  for (char theChar : aText) {
    theExpected += theFinding.find(theChar) != std::string::npos ? "\\" : "";
    theExpected += theChar;
  }
  theExpected += ">";
  FUZZ_REQUIRE(memcmp(theEscaped, theExpected.c_str(), theExpected.size() + 1) == 0);
  std::string thePlain;
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
