#include "Workload.h"

#include <strings.h>

#include <string_view>
#include <vector>

// A type of this file, so that Repeat finds Shown for it.
template <class Text>
struct Tokens : std::vector<Text> {};

template <class Text>
static std::string Shown(const Tokens<Text>& aTokens) {
  std::string theText = std::to_string(aTokens.size()) + " ";
  for (const Text& theToken : aTokens) {
    theText += theToken;
  }
  return theText;
}

template <class Text>
static Tokens<Text> Split(const std::string& aList) {
  Tokens<Text> theTokens;
  size_t theStart = 0;
  for (size_t theEnd; (theEnd = aList.find(',', theStart)) != std::string::npos; theStart = theEnd + 1) {
    theTokens.emplace_back(aList.data() + theStart, theEnd - theStart);
  }
  theTokens.emplace_back(aList.data() + theStart, aList.size() - theStart);
  return theTokens;
}

static std::string ReplaceAll(const std::string& aText, const char* anOld, size_t anOldSize, const char* aNew,
                              size_t aNewSize) {
  std::string theResult;
  theResult.reserve(aText.size());
  size_t theStart = 0;
  for (size_t theEnd; (theEnd = aText.find(anOld, theStart, anOldSize)) != std::string::npos;) {
    theResult.append(aText, theStart, theEnd - theStart).append(aNew, aNewSize);
    theStart = theEnd + anOldSize;
  }
  return theResult.append(aText, theStart);
}

static bool IsSpace(char aChar) { return (aChar >= '\t' && aChar <= '\r') || aChar == ' '; }

static std::string Trimmed(const std::string& aText) {
  size_t theBegin = 0;
  size_t theEnd = aText.size();
  while (theBegin < theEnd && IsSpace(aText[theBegin])) {
    ++theBegin;
  }
  while (theEnd > theBegin && IsSpace(aText[theEnd - 1])) {
    --theEnd;
  }
  return aText.substr(theBegin, theEnd - theBegin);
}

static StringContender sRows =
    StringContender("std::string")
        .Row("copy", kAllSizes,
             [](benchmark::State& aState) {
               const std::string theSource = PlainText(aState.range(0));
               Repeat(aState, theSource, [&] { return std::string(theSource); });
             })
        .Row("from text", kAllSizesAndLonger,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0));
               Repeat(aState, theText, [&] { return std::string(theText.c_str()); });
             })
        .Row("append characters", kAllSizes,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0));
               Repeat(aState, theText, [&] {
                 std::string theResult;
                 for (char theChar : theText) {
                   theResult += theChar;
                 }
                 return theResult;
               });
             })
        .Row("append characters, room made", kAllSizes,
             [](benchmark::State& aState) {
               const std::string theText = PlainText(aState.range(0));
               Repeat(aState, theText, [&] {
                 std::string theResult;
                 theResult.reserve(theText.size());
                 for (char theChar : theText) {
                   theResult += theChar;
                 }
                 return theResult;
               });
             })
        .Row("append pieces", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theText = PiecesText(aState.range(0));
               Repeat(aState, theText, [&] {
                 std::string theResult;
                 while (theResult.size() < theText.size()) {
                   theResult += kPiece;
                 }
                 return theResult;
               });
             })
        .Row("append pieces, room made", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theText = PiecesText(aState.range(0));
               Repeat(aState, theText, [&] {
                 std::string theResult;
                 theResult.reserve(theText.size());
                 while (theResult.size() < theText.size()) {
                   theResult += kPiece;
                 }
                 return theResult;
               });
             })
        .Row("concatenate", kAllSizes,
             [](benchmark::State& aState) {
               const std::string theLeft = PlainText(aState.range(0) / 2);
               const std::string theRight = theLeft;
               Repeat(aState, theLeft + theRight, [&] { return theLeft + theRight; });
             })
        .Row("find", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theHaystack = HaystackText(aState.range(0));
               Repeat(aState, std::to_string(theHaystack.size() - 8),
                      [&] { return theHaystack.find(kNeedle); });
             })
        .Row("replace all", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theSource = EscapedText(aState.range(0));
               Repeat(aState, UnescapedText(aState.range(0)), [&] {
                 return ReplaceAll(theSource, kEscaped, sizeof kEscaped - 1, kUnescaped,
                                   sizeof kUnescaped - 1);
               });
             })
        .Row("split", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theList = ListText(aState.range(0));
               Repeat(aState, TokensOf(theList), [&] { return Split<std::string>(theList); });
             })
        .Row("trim", kLongSizes,
             [](benchmark::State& aState) {
               const std::string theSource = PaddedText(aState.range(0));
               Repeat(aState, TrimmedText(aState.range(0)), [&] { return Trimmed(theSource); });
             })
        .Row("compare without case", kAllSizes, [](benchmark::State& aState) {
          const std::string theLeft = PlainText(aState.range(0));
          const std::string theRight = CapitalText(aState.range(0));
          Repeat(aState, "0",
                 [&] { return static_cast<size_t>(strcasecmp(theLeft.c_str(), theRight.c_str())); });
        });

// Tokens that point into the text, as the library's do; all of them in one block.
static StringContender sViewRows =
    StringContender("(std::string_view)").Row("split", kLongSizes, [](benchmark::State& aState) {
      const std::string theList = ListText(aState.range(0));
      Repeat(aState, TokensOf(theList), [&] { return Split<std::string_view>(theList); });
    });
