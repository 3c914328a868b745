// UTFTexts.h - random texts for what reads and writes characters.
#ifndef TESTS_SUPPORT_UTFTEXTS_H
#define TESTS_SUPPORT_UTFTEXTS_H

#include <random>
#include <string>
#include <vector>

#include "qvOS/qvTypes.h"
#include "support/UTFModel.h"

typedef std::vector<uint32> Chars;

// Texts of runs of one length of character, in which now and then something is wrong.
class Texts {
 public:
  explicit Texts(unsigned aSeed) : mRandom(aSeed) {}

  uint32 Below(uint32 aLimit) { return static_cast<uint32>(mRandom()) % aLimit; }

  // A character that takes so many bytes, at the edges of what they hold more often than chance would have
  // it.
  uint32 CharOf(size_t aLength) {
    static const uint32 kMax[7] = {0, 0x7F, 0x7FF, 0xFFFF, 0x1FFFFF, 0x3FFFFFF, 0x7FFFFFFF};
    uint32 theFirst = aLength == 1 ? 1 : kMax[aLength - 1] + 1;
    uint32 theSpan = kMax[aLength] - theFirst;
    return Below(8) == 0 ? theFirst : Below(8) == 0 ? kMax[aLength] : theFirst + Below(theSpan);
  }

  Chars Make(size_t aLength, size_t aMaxCharLength) {
    Chars theChars;
    while (theChars.size() < aLength) {
      size_t theCharLength = 1 + (Below(2) == 0 ? 0 : Below(static_cast<uint32>(aMaxCharLength)));
      size_t theRun = 1 + Below(Below(4) == 0 ? 60 : 7);
      for (size_t i = 0; i < theRun && theChars.size() < aLength; ++i) {
        theChars.push_back(CharOf(theCharLength));
      }
    }
    return theChars;
  }

  std::string MakeUTF8(size_t aLength, size_t aMaxCharLength = 3) {
    std::string theText;
    for (uint32 theChar : Make(aLength, Below(4) == 0 ? 6 : aMaxCharLength)) {
      AppendUTF8(theChar, theText);
    }
    return theText;
  }

  // One byte is another one or missing, or strange ones come in between.
  void Spoil(std::string& aText) {
    static const char* const kStrange[] = {
        "\x80", "\xC0\x80",     "\xC1\xBF", "\xE0\x9F\xBF", "\xF0\x8F\xBF\xBF", "\xFE",
        "\xFF", "\xED\xA0\x80", "\xC3",     "\xE2\x82",     "\xF0\x9F\x98",     "\xF4\x90\x80\x80"};
    if (aText.empty()) {
      return;
    }
    size_t thePosition = Below(static_cast<uint32>(aText.size()));
    switch (Below(3)) {
      case 0:
        aText[thePosition] = static_cast<char>(1 + Below(255));
        break;
      case 1:
        aText.erase(thePosition, 1);
        break;
      default:
        aText.insert(thePosition, kStrange[Below(12)]);
    }
  }

 private:
  std::mt19937 mRandom;
};

#endif
