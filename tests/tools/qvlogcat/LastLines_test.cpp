#include "tools/qvlogcat/LastLines.h"

#include <gtest/gtest.h>

namespace {

std::string All(LastLines& aLines) {
  std::string theText;
  while (aLines.TakeOldest(theText)) {
  }
  return theText;
}

}  // namespace

TEST(LastLines, KeepsTheLastLinesInTheirOrder) {
  LastLines theLines(2);
  theLines.Add("one\n");
  EXPECT_FALSE(theLines.IsFull());
  theLines.Add("two\n");
  EXPECT_TRUE(theLines.IsFull());
  theLines.Add("three\n");
  EXPECT_EQ("two\nthree\n", All(theLines));
}

TEST(LastLines, NoLinesAreKeptWhenNoneAreWanted) {
  LastLines theLines(0);
  EXPECT_TRUE(theLines.IsFull());
  theLines.Add("one\n");
  EXPECT_EQ("", All(theLines));
}

TEST(LastLines, ClearForgetsAll) {
  LastLines theLines(1);
  theLines.Add("one\n");
  theLines.Clear();
  EXPECT_FALSE(theLines.IsFull());
  EXPECT_EQ("", All(theLines));
}

TEST(LastLines, TheOldestLinesGoWhenAllAreTooLongTogether) {
  LastLines theLines(100);
  std::string theLine(LastLines::kMaxBytes / 2, 'a');
  theLines.Add(theLine);
  theLines.Add(theLine);
  EXPECT_FALSE(theLines.IsFull());
  theLines.Add("b");
  EXPECT_TRUE(theLines.IsFull()) << "more of the file would not help";
  EXPECT_TRUE(All(theLines) == theLine + "b");
}
