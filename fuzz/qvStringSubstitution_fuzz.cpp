// Substitution gives what finding and replacing one variable after the other gives, with and without
// recursion.
#include "qvraTools/qvStringSubstitution.h"

#include <stdlib.h>

#include <map>

#include "FuzzInput.h"
#include "qvraTools/qvMalloc.h"

namespace {

// Variables and what they stand for. A variable may stand for itself, so the number of answers is limited:
// later questions find nothing, and recursion ends.
struct Variables {
  std::map<std::string, std::string> mValues;
  int mAnswersLeft;
};

const int kMaxAnswers = 24;

const std::string* Ask(Variables* aVariables, const std::string& aName) {
  auto theFound = aVariables->mValues.find(aName);
  if (theFound == aVariables->mValues.end() || aVariables->mAnswersLeft == 0) {
    return nullptr;
  }
  --aVariables->mAnswersLeft;
  return &theFound->second;
}

char* AnswerLibrary(char* aName, void* aUserData) {
  const std::string* theValue = Ask(static_cast<Variables*>(aUserData), aName);
  return theValue != nullptr ? qvStrdup(theValue->c_str()) : nullptr;
}

std::string Resolve(const std::string& aName, Variables* aVariables) {
  const std::string* theValue = Ask(aVariables, aName);
  if (theValue != nullptr) {
    return *theValue;
  }
  const char* theEnvironment = aName.compare(0, 4, "env.") == 0 ? getenv(aName.c_str() + 4) : nullptr;
  return theEnvironment != nullptr ? theEnvironment : "";
}

std::string Expand(std::string aText, const std::string& aStart, const std::string& anEnd,
                   const char* anEmptyNameValue, bool afRecursive, Variables aVariables) {
  size_t thePosition = 0;
  for (;;) {
    size_t theStart = aText.find(aStart, thePosition);
    if (theStart == std::string::npos) {
      return aText;
    }
    size_t theNameStart = theStart + aStart.size();
    size_t theEnd = aText.find(anEnd, theNameStart);
    if (theEnd == std::string::npos) {
      return aText;
    }
    std::string theName = aText.substr(theNameStart, theEnd - theNameStart);
    std::string theValue =
        theName.empty() && anEmptyNameValue != nullptr ? anEmptyNameValue : Resolve(theName, &aVariables);
    aText.replace(theStart, theEnd + anEnd.size() - theStart, theValue);
    thePosition = afRecursive ? theStart : theStart + theValue.size();
  }
}

void CheckMark(const std::string& aText, char aMark, bool afRecursive, const Variables& aVariables) {
  Variables theVariables = aVariables;
  char* theResult = qvStringSubstitution_Substitute(ExactCopy(aText, true).Data(), aMark, afRecursive,
                                                    AnswerLibrary, &theVariables);
  const std::string theMark(1, aMark);
  FUZZ_REQUIRE(Expand(aText, theMark, theMark, theMark.c_str(), afRecursive, aVariables) == theResult);
  qvFree(theResult);
}

void CheckMarkers(const std::string& aText, const std::string& aStart, const std::string& anEnd,
                  bool afRecursive, const Variables& aVariables) {
  Variables theVariables = aVariables;
  char* theResult =
      qvStringSubstitution_SubstituteEx(ExactCopy(aText, true).Data(), aStart.c_str(), anEnd.c_str(),
                                        afRecursive, AnswerLibrary, &theVariables);
  FUZZ_REQUIRE(Expand(aText, aStart, anEnd, nullptr, afRecursive, aVariables) == theResult);
  qvFree(theResult);
}

void CheckHostName(const std::string& aText) {
  size_t theDots = 0;
  for (char theChar : aText) {
    theDots += theChar == '.' ? 1 : 0;
  }
  bool theAddressFlag = theDots == 3 && aText.find_first_not_of("0123456789.") == std::string::npos;
  FUZZ_REQUIRE(qvStringSubstitution_IsHostNameInIPDotForm(ExactCopy(aText, true).Data()) == theAddressFlag);
}

}  // namespace

// The input: two marks of any length, three variables with their values, the text.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  static const int sEnvironment = setenv("FUZZ", "%x%${x}", 1);
  FUZZ_REQUIRE(sEnvironment == 0);
  FuzzInput theInput(aBytes, aLength);
  bool theRecursive = (theInput.Byte() & 1) != 0;
  std::string theStart = theInput.Text();
  std::string theEnd = theInput.Text();
  Variables theVariables = {{}, kMaxAnswers};
  for (int i = 0; i < 3; ++i) {
    std::string theName = theInput.Text();
    theVariables.mValues[theName] = theInput.Text();
  }
  std::string theText = theInput.Text();
  // Recursion through the environment has no limit on its answers.
  if (theRecursive && theText.find("env.") != std::string::npos) {
    theRecursive = false;
  }
  for (const auto& theVariable : theVariables.mValues) {
    theRecursive = theRecursive && theVariable.second.find("env.") == std::string::npos;
  }
  CheckMark(theText, '%', theRecursive, theVariables);
  if (!theStart.empty() && !theEnd.empty()) {
    CheckMark(theText, theStart[0], false, theVariables);
    CheckMarkers(theText, theStart, theEnd, theRecursive, theVariables);
  }
  CheckHostName(theText);
  return 0;
}
