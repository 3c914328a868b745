// Tokens lie in the text in order, escaped copies hold every byte, wildcards agree with a plain recursion,
// and substitution ends.
#include "qvraTools/qvCStringParser.h"

#include "FuzzInput.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvStringSubstitution.h"

static void CheckTokens(const std::string& aText, qvCStringParser_TokenList* aList) {
  size_t theCount = 0;
  const char* thePosition = aText.data();
  for (qvCStringParser_Token* theToken = aList->mFirstToken; theToken != nullptr;
       theToken = theToken->mNextToken) {
    FUZZ_REQUIRE(theToken->mData >= thePosition);
    thePosition = theToken->mData + theToken->mDataLength;
    FUZZ_REQUIRE(thePosition <= aText.data() + aText.size());
    FUZZ_REQUIRE(theToken->mNextToken != nullptr || theToken == aList->mLastToken);
    ++theCount;
  }
  FUZZ_REQUIRE(theCount == aList->mTokenCount);
  qvCStringParser_Delete(aList);
}

// '?' and '*' alone, without the shortcut that ends a hopeless search.
static bool MatchesPlainly(const char* aPattern, const char* aText) {
  if (*aPattern == '\0') {
    return *aText == '\0';
  }
  if (*aPattern == '*') {
    return MatchesPlainly(aPattern + 1, aText) || (*aText != '\0' && MatchesPlainly(aPattern, aText + 1));
  }
  return *aText != '\0' && (*aPattern == '?' || *aPattern == *aText) &&
         MatchesPlainly(aPattern + 1, aText + 1);
}

static void CheckMatch(const std::string& aPattern, const std::string& aText) {
  int theResult = qvCStringParser_Match(aPattern.c_str(), aText.c_str());
  qvCStringParser_MatchEx(aPattern.c_str(), aText.c_str(), 0, '\n');
  bool thePlainFlag = aPattern.find_first_of("[\\") == std::string::npos;
  if (thePlainFlag && !aPattern.empty() && aPattern.size() < 12 && aText.size() < 24) {
    FUZZ_REQUIRE(theResult == (MatchesPlainly(aPattern.c_str(), aText.c_str()) ? 1 : 0));
  }
}

static void CheckEscape(const std::string& aText) {
  char theCharsToEscape[] = "\"'\\";
  char* theEscaped =
      qvCStringParser_EscapeAndSurround(aText.data(), aText.size(), theCharsToEscape, '\\', '"', '"');
  std::string thePlain;
  size_t theLength = strlen(theEscaped);
  for (size_t i = 1; i + 1 < theLength; ++i) {
    i += theEscaped[i] == '\\' ? 1 : 0;
    thePlain += theEscaped[i];
  }
  FUZZ_REQUIRE(thePlain == aText);
  qvFree(theEscaped);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  FuzzInput theInput(aBytes, aLength);
  char theEscape = static_cast<char>(theInput.Byte());
  std::string theDelimiter = theInput.Text();
  std::string theText = theInput.Text();
  std::string thePattern = theInput.Text();
  if (!theDelimiter.empty()) {
    CheckTokens(theText,
                qvCStringParser_TokenizeEscaped(theText.data(), 0, theText.size(), theDelimiter.data(),
                                                theDelimiter.size(), theEscape));
    CheckTokens(theText, qvCStringParser_TokenizeQuoted(theText.data(), 0, theText.size(),
                                                        theDelimiter.data(), theDelimiter.size()));
    qvCStringParser_ListContains(theText.c_str(), theDelimiter.c_str(), thePattern.c_str());
  }
  CheckTokens(theText, qvCStringParser_TokenizeParameterList(theText.data(), 0, theText.size()));
  CheckTokens(theText, qvCStringParser_TokenizeQuotedList(theText.data(), 0, theText.size()));
  CheckMatch(thePattern, theText);
  CheckEscape(theText);
  qvFree(qvCStringParser_Trim(theText.c_str(), theText.size(), 1, 1));
  qvFree(qvStringSubstitution_Substitute(theText.c_str(), '%', 0, nullptr, nullptr));
  if (!theDelimiter.empty()) {
    qvFree(
        qvStringSubstitution_SubstituteEx(theText.c_str(), theDelimiter.c_str(), "}", 0, nullptr, nullptr));
  }
  return 0;
}
