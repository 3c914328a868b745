#include "tools/qvlogcat/LineCutter.h"

#include <gtest/gtest.h>

#include "support/CollectedLines.h"

TEST(LineCutter, LinesDoNotDependOnThePieces) {
  const std::string kText = "one\n\ntwo\nlast";
  for (size_t theLength = 1; theLength <= kText.size(); ++theLength) {
    LineCutter theCutter;
    CollectedLines theLines;
    for (size_t i = 0; i < kText.size(); i += theLength) {
      EXPECT_TRUE(theCutter.Feed(std::string_view(kText).substr(i, theLength), theLines));
    }
    EXPECT_EQ("one||two|", theLines.Take()) << theLength;
    EXPECT_TRUE(theCutter.Flush(theLines));
    EXPECT_EQ("last|", theLines.Take()) << theLength;
    EXPECT_TRUE(theCutter.Flush(theLines));
    EXPECT_EQ("", theLines.Take()) << theLength;
  }
}

TEST(LineCutter, ForgottenBytesBelongToNoLine) {
  LineCutter theCutter;
  CollectedLines theLines;
  theCutter.Feed("old", theLines);
  theCutter.Forget();
  theCutter.Feed("new\n", theLines);
  EXPECT_EQ("new|", theLines.Take());
}

TEST(LineCutter, StopsWhenNoMoreIsWanted) {
  LineCutter theCutter;
  CollectedLines theLines;
  theLines.mLimit = 2;
  EXPECT_FALSE(theCutter.Feed("one\ntwo\nthree\n", theLines));
  EXPECT_EQ("one|two|", theLines.Take());
}

TEST(LineCutter, ALineOfTwoMegabytesIsOneLine) {
  LineCutter theCutter;
  CollectedLines theLines;
  std::string theLine(2097152, 'x');
  for (size_t i = 0; i < theLine.size(); i += 65536) {
    theCutter.Feed(std::string_view(theLine).substr(i, 65536), theLines);
  }
  theCutter.Feed("\nnext\n", theLines);
  EXPECT_EQ(theLine + "|next|", theLines.Take());
}

TEST(LineCutter, ALineAboveTheLimitIsCut) {
  LineCutter theCutter;
  CollectedLines theLines;
  std::string thePiece(LineCutter::kMaxLineLength, 'x');
  theCutter.Feed(thePiece, theLines);
  theCutter.Feed("rest\nnext\n", theLines);
  EXPECT_TRUE(theLines.Take() == thePiece + "|rest|next|");
}

TEST(LineCutter, ALineOfExactlyTheLimitIsOneLine) {
  LineCutter theCutter;
  CollectedLines theLines;
  std::string thePiece(LineCutter::kMaxLineLength, 'x');
  theCutter.Feed(thePiece, theLines);
  theCutter.Feed("\nnext\n", theLines);
  EXPECT_TRUE(theLines.Take() == thePiece + "|next|");
}
