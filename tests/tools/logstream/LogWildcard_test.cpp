#include "tools/logstream/LogWildcard.h"

#include <gtest/gtest.h>

#include <string>

struct WildcardCase {
  std::string mPattern;
  std::string mText;
  bool mfMatches;
  const char* mWhy;
};

TEST(LogWildcard, TheWholeTextMatchesThePattern) {
  const WildcardCase kCases[] = {
      {"", "", true, "nothing is nothing"},
      {"", "a", false, "nothing is not something"},
      {"player", "player", true, "plain text"},
      {"player", "players", false, "something follows"},
      {"player", "Player", false, "the case counts"},
      {"pla?er", "player", true, "one byte"},
      {"player?", "player", false, "one byte is missing"},
      {"*", "", true, "no bytes"},
      {"*", "any\nthing", true, "any bytes"},
      {"GUI_*", "GUI_EVENTS", true, "the rest"},
      {"*_CEC", "HDMI_CEC", true, "the beginning"},
      {"*a*b*", "xxaxxbxx", true, "in the middle"},
      {"*a*b*", "xxbxxaxx", false, "in the wrong order"},
      {"*ab", "aab", true, "the star takes more when it must"},
      {"a**b", "ab", true, "two stars are one"},
      {"***", "", true, "many stars may be nothing"},
      {"?*", "", false, "at least one byte"},
      {std::string("a?c", 3), std::string("a\0c", 3), true, "a zero byte is a byte"},
      {"[a]", "a", false, "brackets are no wildcards"},
  };
  for (const WildcardCase& theCase : kCases) {
    EXPECT_EQ(theCase.mfMatches, LogWildcard_Matches(theCase.mPattern, theCase.mText, false)) << theCase.mWhy;
  }
}

TEST(LogWildcard, TheCaseOfASCIILettersCanBeIgnored) {
  EXPECT_TRUE(LogWildcard_Matches("gui_*", "GUI_EVENTS", true));
  EXPECT_TRUE(LogWildcard_Matches("AZ", "az", true));
  EXPECT_FALSE(LogWildcard_Matches("@", "`", true));
  EXPECT_FALSE(LogWildcard_Matches("[", "{", true));
}

TEST(LogWildcard, ManyStarsDoNotTakeForever) {
  std::string thePattern;
  for (int i = 0; i < 100; ++i) {
    thePattern += "*a";
  }
  EXPECT_FALSE(LogWildcard_Matches(thePattern + "b", std::string(10000, 'a'), false));
}
