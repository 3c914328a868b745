#include "tools/logstream/LogWildcard.h"

static char LogWildcard_S_Lower(char aChar) {
  return aChar >= 'A' && aChar <= 'Z' ? static_cast<char>(aChar - 'A' + 'a') : aChar;
}

bool LogWildcard_Matches(std::string_view aPattern, std::string_view aText, bool afIgnoreCase) {
  constexpr size_t kNone = std::string_view::npos;
  size_t thePattern = 0;
  size_t theText = 0;
  // The latest '*' and where the text goes on behind what it stands for. Going back to earlier ones would
  // find nothing more, so the time is bounded by the product of the lengths.
  size_t theStar = kNone;
  size_t theStarText = 0;
  while (theText < aText.size()) {
    if (thePattern < aPattern.size() && aPattern[thePattern] == '*') {
      theStar = thePattern++;
      theStarText = theText;
      continue;
    }
    bool theFits = false;
    if (thePattern < aPattern.size()) {
      char theWanted = aPattern[thePattern];
      theFits = theWanted == '?' || theWanted == aText[theText] ||
                (afIgnoreCase && LogWildcard_S_Lower(theWanted) == LogWildcard_S_Lower(aText[theText]));
    }
    if (theFits) {
      ++thePattern;
      ++theText;
    } else if (theStar != kNone) {
      thePattern = theStar + 1;
      theText = ++theStarText;
    } else {
      return false;
    }
  }
  while (thePattern < aPattern.size() && aPattern[thePattern] == '*') {
    ++thePattern;
  }
  return thePattern == aPattern.size();
}
