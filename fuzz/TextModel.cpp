#include "TextModel.h"

#include <stdlib.h>

bool TextModel_TakeCharacter(std::string_view& aText, uint32_t* aCharacter) {
  if (aText.empty()) {
    return false;
  }
  unsigned int theLead = static_cast<unsigned char>(aText[0]);
  size_t theLength = theLead < 0x80       ? 1
                     : theLead >> 5 == 6  ? 2
                     : theLead >> 4 == 14 ? 3
                     : theLead >> 3 == 30 ? 4
                                          : 0;
  if (theLength == 0 || aText.size() < theLength) {
    return false;
  }
  uint32_t theCharacter = theLength == 1 ? theLead : theLead & (0xFFu >> (theLength + 1));
  for (size_t i = 1; i < theLength; ++i) {
    unsigned int theByte = static_cast<unsigned char>(aText[i]);
    if (theByte >> 6 != 2) {
      return false;
    }
    theCharacter = (theCharacter << 6) | (theByte & 0x3F);
  }
  static const uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (theCharacter < kSmallest[theLength] || theCharacter > 0x10FFFF || theCharacter >> 11 == 0x1B) {
    return false;
  }
  aText.remove_prefix(theLength);
  *aCharacter = theCharacter;
  return true;
}

void TextModel_AppendCharacter(uint32_t aCharacter, std::string& aText) {
  int theMore = aCharacter < 0x80 ? 0 : aCharacter < 0x800 ? 1 : aCharacter < 0x10000 ? 2 : 3;
  static const unsigned int kLeads[] = {0, 0xC0, 0xE0, 0xF0};
  aText += static_cast<char>(kLeads[theMore] + (aCharacter >> (6 * theMore)));
  while (theMore-- > 0) {
    aText += static_cast<char>(0x80 + ((aCharacter >> (6 * theMore)) & 0x3F));
  }
}

bool TextModel_IsUTF8(std::string_view aText) {
  uint32_t theCharacter;
  while (!aText.empty()) {
    if (!TextModel_TakeCharacter(aText, &theCharacter)) {
      return false;
    }
  }
  return true;
}

static bool TextModel_S_IsControl(uint32_t aCharacter) {
  return aCharacter < 0x20 || (aCharacter >= 0x7F && aCharacter < 0xA0);
}

bool TextModel_IsHarmless(std::string_view aText, bool afTab) {
  uint32_t theCharacter;
  while (!aText.empty()) {
    if (!TextModel_TakeCharacter(aText, &theCharacter) ||
        (TextModel_S_IsControl(theCharacter) && !(theCharacter == '\t' && afTab))) {
      return false;
    }
  }
  return true;
}

// Escaped is what is not UTF-8, what is a control character but the tab, and the signs in theMore.
static std::string TextModel_S_Escaped(std::string_view aText, std::string_view theMore) {
  std::string theOut;
  theOut.reserve(4 * aText.size());
  while (!aText.empty()) {
    std::string_view theRest = aText;
    uint32_t theCharacter;
    bool theIsValid = TextModel_TakeCharacter(theRest, &theCharacter);
    std::string_view theBytes = aText.substr(0, theIsValid ? aText.size() - theRest.size() : 1);
    if (theIsValid && theMore.find(theBytes) == std::string_view::npos &&
        (theCharacter == '\t' || !TextModel_S_IsControl(theCharacter))) {
      for (char theByte : theBytes) {
        theOut += theByte;
      }
    } else {
      for (char theByte : theBytes) {
        unsigned int theValue = static_cast<unsigned char>(theByte);
        theOut += "\\x";
        theOut += "0123456789abcdef"[theValue / 16];
        theOut += "0123456789abcdef"[theValue % 16];
      }
    }
    aText.remove_prefix(theBytes.size());
  }
  return theOut;
}

std::string TextModel_Shown(std::string_view aText) { return TextModel_S_Escaped(aText, ""); }

std::string TextModel_Word(std::string_view aText) {
  if (aText.empty()) {
    return "-";
  }
  return aText == "-" ? "\\x2d" : TextModel_S_Escaped(aText, "\\ \t");
}

bool TextModel_ReadWord(std::string_view aWord, std::string* aText) {
  aText->clear();
  if (aWord.empty() || aWord.find_first_of(" \t") != std::string_view::npos) {
    return false;
  }
  if (aWord == "-") {
    return true;
  }
  for (size_t i = 0; i < aWord.size(); ++i) {
    if (aWord[i] != '\\') {
      *aText += aWord[i];
      continue;
    }
    std::string theDigits(aWord.substr(i + 1, 3));
    if (theDigits.size() != 3 || theDigits[0] != 'x' ||
        theDigits.find_first_not_of("0123456789abcdef", 1) != std::string::npos) {
      return false;
    }
    *aText += static_cast<char>(strtol(theDigits.c_str() + 1, nullptr, 16));
    i += 3;
  }
  return true;
}

std::string TextModel_Valid(std::string_view aText) {
  std::string theOut;
  theOut.reserve(3 * aText.size());
  while (!aText.empty()) {
    uint32_t theCharacter = 0xFFFD;
    if (!TextModel_TakeCharacter(aText, &theCharacter)) {
      aText.remove_prefix(1);
    }
    TextModel_AppendCharacter(theCharacter, theOut);
  }
  return theOut;
}
