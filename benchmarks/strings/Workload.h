#ifndef _BENCHMARKS_STRINGS_WORKLOAD_H
#define _BENCHMARKS_STRINGS_WORKLOAD_H

#include "Contender.h"

#include <algorithm>
#include <cctype>
#include <initializer_list>
#include <string>

// The texts that all contenders work on, made for the size of a row (characters, State::range(0)), and what
// has to come out.
//
//   12    fits into the object of some string classes
//   80    a log line
//   1024  a text of some paragraphs
//   4096  more than an allocator keeps ready for each thread
inline constexpr std::initializer_list<int64_t> kAllSizes = {12, 80, 1024};
inline constexpr std::initializer_list<int64_t> kLongSizes = {80, 1024};
inline constexpr std::initializer_list<int64_t> kAllSizesAndLonger = {12, 80, 1024, 4096};

// Words without the needle, the escape or a capital.
inline std::string PlainText(int64_t aSize) {
  std::string theText;
  while (static_cast<int64_t>(theText.size()) < aSize) {
    theText += "tuner lost the signal of transponder 17 and looks for the next one, ";
  }
  theText.resize(static_cast<size_t>(aSize));
  return theText;
}

inline constexpr char kPiece[] = "channel 5";  // is appended until the text is full

inline std::string PiecesText(int64_t aSize) {
  std::string theText;
  while (static_cast<int64_t>(theText.size() + sizeof kPiece - 1) <= aSize) {
    theText += kPiece;
  }
  return theText;
}

// The needle's letters stand all over the text, the whole of it only at the end.
inline constexpr char kNeedle[] = "transit";

inline std::string HaystackText(int64_t aSize) {
  std::string theText = PlainText(aSize);
  return theText.replace(theText.size() - 8, 7, kNeedle);
}

inline constexpr char kEscaped[] = "%20";
inline constexpr char kUnescaped[] = " ";

// Blanks stand as kEscaped.
inline std::string EscapedText(int64_t aSize) {
  std::string theText = PlainText(aSize);
  for (size_t thePos = 0; thePos + 3 < theText.size(); ++thePos) {
    if (theText[thePos] == ' ') {
      theText.replace(thePos, 3, kEscaped);
    }
  }
  return theText;
}

inline std::string UnescapedText(int64_t aSize) {
  std::string theText = EscapedText(aSize);
  for (size_t thePos; (thePos = theText.find(kEscaped)) != std::string::npos;) {
    theText.replace(thePos, 3, kUnescaped);
  }
  return theText;
}

// Words with commas between them.
inline std::string ListText(int64_t aSize) {
  std::string theText = PlainText(aSize);
  std::replace(theText.begin(), theText.end(), ' ', ',');
  return theText;
}

// What a contender makes of its tokens: their number and all of them, one after the other.
inline std::string TokensOf(const std::string& aList) {
  std::string theText = aList;
  theText.erase(std::remove(theText.begin(), theText.end(), ','), theText.end());
  return std::to_string(std::count(aList.begin(), aList.end(), ',') + 1) + " " + theText;
}

inline std::string PaddedText(int64_t aSize) {
  return "  \t " + PlainText(aSize - 8).replace(static_cast<size_t>(aSize - 9), 1, "x") + "  \r\n";
}

inline std::string TrimmedText(int64_t aSize) {
  return PaddedText(aSize).substr(4, static_cast<size_t>(aSize - 8));
}

inline std::string CapitalText(int64_t aSize) {
  std::string theText = PlainText(aSize);
  for (char& theChar : theText) {
    theChar = static_cast<char>(std::toupper(static_cast<unsigned char>(theChar)));
  }
  return theText;
}

inline std::string Shown(const std::string& aText) { return aText; }
inline std::string Shown(size_t aNumber) { return std::to_string(aNumber); }

// Times aOnce, whose result is destroyed each time, and shows an error instead when it is not what is
// expected.
template <class Once>
void Repeat(benchmark::State& aState, const std::string& anExpected, Once aOnce) {
  if (Shown(aOnce()) != anExpected) {
    aState.SkipWithError(("made \"" + Shown(aOnce()) + "\" and not \"" + anExpected + "\"").c_str());
  }
  for (auto _ : aState) {
    auto theResult = aOnce();
    benchmark::DoNotOptimize(theResult);
    benchmark::ClobberMemory();
  }
}

class StringContender {
 public:
  explicit StringContender(const char* aName) : mName(aName) {}

  StringContender& Row(const char* aRow, std::initializer_list<int64_t> aSizes, Contender::Work aWork) {
    for (int64_t theSize : aSizes) {
      Contender(aRow, theSize, mName, aWork);
    }
    return *this;
  }

 private:
  const char* mName;
};

#endif
