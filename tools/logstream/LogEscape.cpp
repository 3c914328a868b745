#include "tools/logstream/LogEscape.h"

#include <string.h>

static const char kHexDigits[] = "0123456789abcdef";

static unsigned char LogEscape_S_Byte(std::string_view aText, size_t aPosition) {
  return static_cast<unsigned char>(aText[aPosition]);
}

// How many of the bytes at the start are plain: printable ASCII, and none of the two exceptions. They are
// looked at eight at a time, as nearly all of a log is plain.
static size_t LogEscape_S_PlainLength(std::string_view aText, char anException, char another) {
  constexpr uint64 kOnes = 0x0101010101010101ULL;
  constexpr uint64 kTops = 0x8080808080808080ULL;
  const uint64 theFirst = kOnes * static_cast<unsigned char>(anException);
  const uint64 theSecond = kOnes * static_cast<unsigned char>(another);
  size_t i = 0;
  for (; i + 8 <= aText.size(); i += 8) {
    uint64 theWord;
    memcpy(&theWord, aText.data() + i, 8);
    // The top bit of a byte is set in theBad when the byte, or a byte before it, is not plain. Subtracting
    // sets it where the byte was smaller, and a byte that equals an exception is smaller than 1 when the two
    // are combined by exclusive or.
    uint64 theBad = theWord | (theWord - kOnes * 0x20) | ((theWord ^ theFirst) - kOnes) |
                    ((theWord ^ theSecond) - kOnes) | ((theWord ^ (kOnes * 0x7F)) - kOnes);
    if ((theBad & kTops) != 0) {
      break;
    }
  }
  for (; i < aText.size(); ++i) {
    unsigned char theByte = LogEscape_S_Byte(aText, i);
    if (theByte < 0x20 || theByte >= 0x7F || aText[i] == anException || aText[i] == another) {
      break;
    }
  }
  return i;
}

static void LogEscape_S_AppendByte(unsigned char aByte, std::string& aOut) {
  const char theText[] = {'\\', 'x', kHexDigits[aByte >> 4], kHexDigits[aByte & 0xF]};
  aOut.append(theText, sizeof(theText));
}

// Whether a character of that length is a control character, but for the tab.
static bool LogEscape_S_IsControl(std::string_view aText, size_t aLength) {
  unsigned char theByte = LogEscape_S_Byte(aText, 0);
  if (aLength == 1) {
    return (theByte < 0x20 && theByte != '\t') || theByte == 0x7F;
  }
  return aLength == 2 && theByte == 0xC2 && LogEscape_S_Byte(aText, 1) < 0xA0;
}

size_t LogEscape_CharacterLength(std::string_view aText) {
  if (aText.empty()) {
    return 0;
  }
  unsigned char theLead = LogEscape_S_Byte(aText, 0);
  if (theLead < 0x80) {
    return 1;
  }
  if (theLead < 0xC2 || theLead > 0xF4) {
    return 0;
  }
  size_t theLength = theLead < 0xE0 ? 2 : theLead < 0xF0 ? 3 : 4;
  if (aText.size() < theLength) {
    return 0;
  }
  for (size_t i = 1; i < theLength; ++i) {
    if ((LogEscape_S_Byte(aText, i) & 0xC0) != 0x80) {
      return 0;
    }
  }
  // Neither longer than necessary, nor a surrogate, nor above U+10FFFF.
  unsigned char theNext = LogEscape_S_Byte(aText, 1);
  bool theIsBad = (theLead == 0xE0 && theNext < 0xA0) || (theLead == 0xED && theNext > 0x9F) ||
                  (theLead == 0xF0 && theNext < 0x90) || (theLead == 0xF4 && theNext > 0x8F);
  return theIsBad ? 0 : theLength;
}

void LogEscape_AppendText(std::string_view aText, std::string& aOut) {
  while (!aText.empty()) {
    size_t theTaken = LogEscape_S_PlainLength(aText, '\x7F', '\x7F');
    aOut.append(aText.data(), theTaken);
    aText.remove_prefix(theTaken);
    if (aText.empty()) {
      return;
    }
    size_t theLength = LogEscape_CharacterLength(aText);
    if (theLength != 0 && !LogEscape_S_IsControl(aText, theLength)) {
      aOut.append(aText.data(), theLength);
      aText.remove_prefix(theLength);
      continue;
    }
    theLength = theLength == 0 ? 1 : theLength;
    for (size_t i = 0; i < theLength; ++i) {
      LogEscape_S_AppendByte(LogEscape_S_Byte(aText, i), aOut);
    }
    aText.remove_prefix(theLength);
  }
}

void LogEscape_AppendField(std::string_view aText, std::string& aOut) {
  if (aText.empty()) {
    aOut += '-';
    return;
  }
  if (aText == "-") {
    LogEscape_S_AppendByte('-', aOut);
    return;
  }
  while (!aText.empty()) {
    size_t theTaken = LogEscape_S_PlainLength(aText, ' ', '\\');
    aOut.append(aText.data(), theTaken);
    aText.remove_prefix(theTaken);
    if (aText.empty()) {
      return;
    }
    if (aText[0] == ' ' || aText[0] == '\\' || aText[0] == '\t') {
      LogEscape_S_AppendByte(LogEscape_S_Byte(aText, 0), aOut);
      aText.remove_prefix(1);
      continue;
    }
    size_t theLength = LogEscape_CharacterLength(aText);
    theLength = theLength == 0 ? 1 : theLength;
    LogEscape_AppendText(aText.substr(0, theLength), aOut);
    aText.remove_prefix(theLength);
  }
}

static int LogEscape_S_HexValue(char aDigit) {
  const char* theDigit = aDigit != 0 ? strchr(kHexDigits, aDigit) : nullptr;
  return theDigit != nullptr ? static_cast<int>(theDigit - kHexDigits) : -1;
}

bool LogEscape_ReadField(std::string_view aField, std::string* aText) {
  aText->clear();
  if (aField == "-") {
    return true;
  }
  size_t i = 0;
  while (i < aField.size()) {
    if (aField[i] == ' ' || aField[i] == '\t') {
      return false;
    }
    if (aField[i] != '\\') {
      *aText += aField[i++];
      continue;
    }
    int theHigh = i + 3 < aField.size() && aField[i + 1] == 'x' ? LogEscape_S_HexValue(aField[i + 2]) : -1;
    int theLow = theHigh >= 0 ? LogEscape_S_HexValue(aField[i + 3]) : -1;
    if (theLow < 0) {
      return false;
    }
    *aText += static_cast<char>(theHigh * 16 + theLow);
    i += 4;
  }
  return !aField.empty();
}

// One byte below 0x80 that cannot stand in a JSON string as it is, or U+0080 to U+009F.
static void LogEscape_S_AppendJSONEscape(unsigned int aCharacter, std::string& aOut) {
  static constexpr std::string_view kNamed = "\"\\\b\f\n\r\t";
  static constexpr std::string_view kNames = "\"\\bfnrt";
  size_t theName = aCharacter != 0 ? kNamed.find(static_cast<char>(aCharacter)) : std::string_view::npos;
  if (aCharacter < 0x80 && theName != std::string_view::npos) {
    aOut += '\\';
    aOut += kNames[theName];
    return;
  }
  aOut += "\\u00";
  aOut += kHexDigits[aCharacter >> 4];
  aOut += kHexDigits[aCharacter & 0xF];
}

void LogEscape_AppendJSON(std::string_view aText, std::string& aOut) {
  while (!aText.empty()) {
    size_t theTaken = LogEscape_S_PlainLength(aText, '"', '\\');
    aOut.append(aText.data(), theTaken);
    aText.remove_prefix(theTaken);
    if (aText.empty()) {
      return;
    }
    size_t theLength = LogEscape_CharacterLength(aText);
    if (theLength == 0) {
      aOut += "\xEF\xBF\xBD";
      theLength = 1;
    } else if (theLength == 1) {
      LogEscape_S_AppendJSONEscape(LogEscape_S_Byte(aText, 0), aOut);
    } else if (LogEscape_S_IsControl(aText, theLength)) {
      LogEscape_S_AppendJSONEscape(LogEscape_S_Byte(aText, 1), aOut);
    } else {
      aOut.append(aText.data(), theLength);
    }
    aText.remove_prefix(theLength);
  }
}
