// How names become lower case.
#include <ctype.h>
#include <gtest/gtest.h>
#include <string.h>

#include <string>

#include "qvraTools/qvINIFile_p.h"
#include "support/BuiltLocale.h"

namespace {

// Folds texts of all lengths that hold every byte, at another place and in their own, and compares with
// tolower.
void ExpectBytesFoldedAsByTolower() {
  for (size_t theLength = 0; theLength < 40; ++theLength) {
    for (int theFirst = 1; theFirst < 256; ++theFirst) {
      std::string theText, theExpected;
      for (size_t i = 0; i < theLength; ++i) {
        theText += static_cast<char>((theFirst + static_cast<int>(i) * 3) % 255 + 1);
        theExpected += static_cast<char>(tolower(static_cast<unsigned char>(theText.back())));
      }
      std::string theFolded(theLength + 1, '?');
      qvINIFile_S_ToLower(theFolded.data(), theText.data(), theLength);
      ASSERT_EQ(theExpected, theFolded.c_str());
      qvINIFile_S_ToLower(theText.data(), theText.data(), theLength);
      ASSERT_EQ(theExpected, theText);
    }
  }
}

}  // namespace

TEST(qvINIFileFold, LettersFoldAndTheirNeighboursDoNot) {
  char theText[] = "@AMZ[`amz{\x7f@AMZ[`amz{\x7f";
  qvINIFile_S_ToLower(theText, theText, strlen(theText));
  EXPECT_STREQ("@amz[`amz{\x7f@amz[`amz{\x7f", theText);
}

TEST(qvINIFileFold, EveryByteFoldsAsByTolower) { ExpectBytesFoldedAsByTolower(); }

TEST(qvINIFileFold, EveryByteFoldsAsByTolowerOfATurkishLocale) {
  TurkishLocale theLocale;
  if (!theLocale.WhyNot().empty()) {
    GTEST_SKIP() << theLocale.WhyNot();
  }
  ExpectBytesFoldedAsByTolower();
}
