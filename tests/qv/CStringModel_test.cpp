// Long random runs of operations on strings that share texts, beside std::string as a model.
#include <ctype.h>
#include <gtest/gtest.h>
#include <stddef.h>
#include <stdint.h>

#include <algorithm>
#include <string>

#include "qv/CString.h"
#include "qvraTools/qvMalloc.h"
#include "support/CStringText.h"

namespace {

const size_t kStringCount = 6;
const int kStepCount = 40000;
const size_t kLongest = 200;  // longer texts are emptied, so that the runs stay short

// The same numbers on every machine.
class Dice {
 public:
  explicit Dice(uint32_t aSeed) : mState(aSeed) {}
  size_t Below(size_t aLimit) {
    mState = mState * 1664525u + 1013904223u;
    return (mState >> 8) % aLimit;
  }

 private:
  uint32_t mState;
};

struct Pair {
  qvCString mString;
  std::string mModel;
};

// One random operation on aTarget; aSource, which may be the same, gives the text.
void Step(Dice& aDice, Pair& aTarget, const Pair& aSource) {
  const size_t thePos = aDice.Below(aTarget.mModel.size() + 1);
  const size_t theLength = aDice.Below(12);
  const size_t theFrom = aDice.Below(aSource.mModel.size() + 1);
  const char* theText = aSource.mString.c_str() + theFrom;
  const std::string theModelText = aSource.mModel.substr(theFrom);
  const std::string theLetter(1, static_cast<char>('a' + aDice.Below(3)));
  const size_t theTail = aTarget.mModel.size() - std::min(theLength, aTarget.mModel.size());
  switch (aDice.Below(12)) {
    case 0:
      aTarget.mString = aSource.mString;
      aTarget.mModel = std::string(aSource.mModel);
      break;
    case 1:
      aTarget.mString = theText;
      aTarget.mModel = theModelText;
      break;
    case 2:
      aTarget.mString += theText;
      aTarget.mModel += theModelText;
      break;
    case 3:
      aTarget.mString += theLetter[0];
      aTarget.mModel += theLetter;
      break;
    case 4:
      aTarget.mString.Insert(thePos, theText, theModelText.size());
      aTarget.mModel.insert(thePos, theModelText);
      break;
    case 5:
      aTarget.mString.Erase(thePos, theLength);
      aTarget.mModel.erase(thePos, theLength);
      break;
    case 6:
      aTarget.mString.Replace(thePos, theLength, theText, qvCString::npos);
      aTarget.mModel.replace(thePos, theLength, theModelText);
      break;
    case 7:
      aTarget.mString = qvCString::FromAllocatedString(qvStrdup(theText));
      aTarget.mModel = theModelText;
      break;
    case 8:
      aTarget.mString = theLetter.c_str() + aSource.mString;
      aTarget.mModel = theLetter + std::string(aSource.mModel);
      break;
    case 9:
      aTarget.mString.Pad(theLength, theLetter[0], false);
      aTarget.mModel.insert(0, theLength, theLetter[0]);
      break;
    case 10:
      aTarget.mString = aTarget.mString.Right(theLength);
      aTarget.mModel = std::string(aTarget.mModel.substr(theTail));
      break;
    default:
      aTarget.mString.Printf("%s%s", theText, theLetter.c_str());
      aTarget.mModel = theModelText + theLetter;
      break;
  }
}

void ExpectAllEqual(const Pair (&aPairs)[kStringCount], int aStep) {
  for (const Pair& thePair : aPairs) {
    ASSERT_EQ(thePair.mModel, TextOf(thePair.mString)) << "step " << aStep;
  }
}

}  // namespace

TEST(qvCStringModel, EveryOperationChangesItsOwnStringOnlyAndAsTheModelSays) {
  for (uint32_t theSeed : {1u, 2u, 3u}) {
    Dice theDice(theSeed);
    Pair thePairs[kStringCount];
    for (int theStep = 0; theStep < kStepCount; ++theStep) {
      Pair& theTarget = thePairs[theDice.Below(kStringCount)];
      Step(theDice, theTarget, thePairs[theDice.Below(kStringCount)]);
      ExpectAllEqual(thePairs, theStep);
      ASSERT_FALSE(HasFatalFailure());
      if (theTarget.mModel.size() > kLongest) {
        theTarget.mString.Empty();
        theTarget.mModel.clear();
      }
    }
  }
}

TEST(qvCStringModel, SearchesFindWhatTheModelFinds) {
  Dice theDice(7);
  for (int theStep = 0; theStep < kStepCount; ++theStep) {
    std::string theText;
    std::string theNeedle;
    for (size_t i = theDice.Below(60); i > 0; --i) {
      theText += static_cast<char>('a' + theDice.Below(2));
    }
    for (size_t i = theDice.Below(4) + 1; i > 0; --i) {
      theNeedle += static_cast<char>('a' + theDice.Below(2));
    }
    const qvCString theString = StringOf(theText);
    const size_t theStart = theDice.Below(theText.size() + 1);
    SCOPED_TRACE("\"" + theNeedle + "\" in \"" + theText + "\" at " + std::to_string(theStart));
    ASSERT_EQ(theText.find(theNeedle, theStart), theString.FindFirstStr(theNeedle.c_str(), theStart));
    ASSERT_EQ(theText.rfind(theNeedle, theStart), theString.FindLastStr(theNeedle.c_str(), theStart));
    ASSERT_EQ(theText.rfind(theNeedle), theString.FindLastStr(theNeedle.c_str()));
    ASSERT_EQ(theText.find(theNeedle, theStart), theString.FindNoCase(StringOf(theNeedle).Upper(), theStart));
    ASSERT_EQ(theText.find_first_of(theNeedle, theStart), theString.FindFirstOf(theNeedle.c_str(), theStart));
    ASSERT_EQ(theText.find_last_of(theNeedle, theStart), theString.FindLastOf(theNeedle.c_str(), theStart));
    ASSERT_EQ(theText.find_first_not_of(theNeedle, theStart),
              theString.FindFirstNotOf(theNeedle.c_str(), theStart));
  }
}

// The definition: tolower of each byte, then the lengths.
static int CompareNoCaseOf(const std::string& aLeft, const std::string& aRight) {
  for (size_t i = 0; i < aLeft.size() && i < aRight.size(); ++i) {
    const int theLeft = tolower(static_cast<unsigned char>(aLeft[i]));
    const int theRight = tolower(static_cast<unsigned char>(aRight[i]));
    if (theLeft != theRight) {
      return theLeft < theRight ? -1 : 1;
    }
  }
  return aLeft.size() == aRight.size() ? 0 : aLeft.size() < aRight.size() ? -1 : 1;
}

TEST(qvCStringModel, CompareNoCaseComparesByteByByteWhateverTheBytesAre) {
  Dice theDice(11);
  const std::string kBytes = Bytes("aA\0\xE9");
  for (int theStep = 0; theStep < kStepCount; ++theStep) {
    std::string theTexts[2];
    for (std::string& theText : theTexts) {
      for (size_t i = theDice.Below(5); i > 0; --i) {
        theText += kBytes[theDice.Below(kBytes.size())];
      }
    }
    ASSERT_EQ(CompareNoCaseOf(theTexts[0], theTexts[1]),
              StringOf(theTexts[0]).CompareNoCase(StringOf(theTexts[1])))
        << testing::PrintToString(theTexts[0]) << " and " << testing::PrintToString(theTexts[1]);
  }
}
