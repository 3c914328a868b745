#include "tools/logstream/JSONLine.h"

static const unsigned int kReplacementCharacter = 0xFFFD;

static bool JSONLine_S_IsBlank(char aSign) {
  return aSign == ' ' || aSign == '\t' || aSign == '\n' || aSign == '\r';
}

static int JSONLine_S_HexValue(char aSign) {
  if (aSign >= '0' && aSign <= '9') {
    return aSign - '0';
  }
  char theLetter = static_cast<char>(aSign | 0x20);
  return theLetter >= 'a' && theLetter <= 'f' ? theLetter - 'a' + 10 : -1;
}

// The four digits behind "\u", or -1.
static int JSONLine_S_CodeUnit(std::string_view aText, size_t anOffset) {
  if (aText.size() < anOffset + 4) {
    return -1;
  }
  int theUnit = 0;
  for (size_t i = 0; i < 4; ++i) {
    int theDigit = JSONLine_S_HexValue(aText[anOffset + i]);
    if (theDigit < 0) {
      return -1;
    }
    theUnit = theUnit * 16 + theDigit;
  }
  return theUnit;
}

// Takes the sign off the start, if it is one of aSigns.
static bool JSONLine_S_TakeSign(std::string_view& aText, std::string_view aSigns) {
  if (aText.empty() || aSigns.find(aText.front()) == std::string_view::npos) {
    return false;
  }
  aText.remove_prefix(1);
  return true;
}

static bool JSONLine_S_TakeDigits(std::string_view& aText) {
  size_t theLength = aText.find_first_not_of("0123456789");
  theLength = theLength == std::string_view::npos ? aText.size() : theLength;
  aText.remove_prefix(theLength);
  return theLength > 0;
}

// 0, 12, -0.5, 1e9, 1.5E-3; but 012, .5, 1. and +1 are none.
static bool JSONLine_S_IsNumber(std::string_view aText) {
  JSONLine_S_TakeSign(aText, "-");
  if (!JSONLine_S_TakeSign(aText, "0") && !JSONLine_S_TakeDigits(aText)) {
    return false;
  }
  if (JSONLine_S_TakeSign(aText, ".") && !JSONLine_S_TakeDigits(aText)) {
    return false;
  }
  if (JSONLine_S_TakeSign(aText, "eE")) {
    JSONLine_S_TakeSign(aText, "+-");
    return JSONLine_S_TakeDigits(aText) && aText.empty();
  }
  return aText.empty();
}

// Blanks, then aSign.
bool JSONLine::Skip(char aSign) {
  while (!mLeft.empty() && JSONLine_S_IsBlank(mLeft.front())) {
    mLeft.remove_prefix(1);
  }
  if (mLeft.empty() || mLeft.front() != aSign) {
    return false;
  }
  mLeft.remove_prefix(1);
  return true;
}

// What follows an opening quote, up to the closing one.
bool JSONLine::TakeText(std::string_view* aText) {
  for (size_t i = 0; i < mLeft.size(); ++i) {
    unsigned char theByte = static_cast<unsigned char>(mLeft[i]);
    if (theByte == '"') {
      *aText = mLeft.substr(0, i);
      mLeft.remove_prefix(i + 1);
      return true;
    }
    if (theByte < 0x20) {
      return false;
    }
    if (theByte == '\\') {
      ++i;
      if (i >= mLeft.size() || std::string_view("\"\\/bfnrtu").find(mLeft[i]) == std::string_view::npos ||
          (mLeft[i] == 'u' && JSONLine_S_CodeUnit(mLeft, i + 1) < 0)) {
        return false;
      }
    }
  }
  return false;
}

bool JSONLine::TakePlain(JSONMember* aMember) {
  size_t theLength = 0;
  while (theLength < mLeft.size() && mLeft[theLength] != ',' && mLeft[theLength] != '}' &&
         !JSONLine_S_IsBlank(mLeft[theLength])) {
    ++theLength;
  }
  aMember->mValue = mLeft.substr(0, theLength);
  mLeft.remove_prefix(theLength);
  if (aMember->mValue == "true" || aMember->mValue == "false" || aMember->mValue == "null") {
    aMember->mKind = JSONKind_Word;
    return true;
  }
  aMember->mKind = JSONKind_Number;
  return JSONLine_S_IsNumber(aMember->mValue);
}

bool JSONLine::TakeMember(JSONMember* aMember) {
  if (!Skip('"') || !TakeText(&aMember->mKey) || !Skip(':')) {
    return false;
  }
  if (Skip('"')) {
    aMember->mKind = JSONKind_Text;
    return TakeText(&aMember->mValue);
  }
  return TakePlain(aMember);
}

bool JSONLine::End(bool afWell) {
  while (!mLeft.empty() && JSONLine_S_IsBlank(mLeft.front())) {
    mLeft.remove_prefix(1);
  }
  mState = afWell && mLeft.empty() ? State_Done : State_Fault;
  return false;
}

bool JSONLine::Next(JSONMember* aMember) {
  if (mState == State_Done || mState == State_Fault) {
    return false;
  }
  if (mState == State_Start) {
    if (!Skip('{')) {
      return End(false);
    }
    if (Skip('}')) {
      return End(true);
    }
    mState = State_Members;
  } else if (Skip('}')) {
    return End(true);
  } else if (!Skip(',')) {
    return End(false);
  }
  return TakeMember(aMember) || End(false);
}

static void JSONLine_S_AppendCharacter(unsigned int aCode, std::string& aText) {
  if (aCode < 0x80) {
    aText.push_back(static_cast<char>(aCode));
    return;
  }
  if (aCode < 0x800) {
    aText.push_back(static_cast<char>(0xC0 | (aCode >> 6)));
  } else {
    if (aCode < 0x10000) {
      aText.push_back(static_cast<char>(0xE0 | (aCode >> 12)));
    } else {
      aText.push_back(static_cast<char>(0xF0 | (aCode >> 18)));
      aText.push_back(static_cast<char>(0x80 | ((aCode >> 12) & 0x3F)));
    }
    aText.push_back(static_cast<char>(0x80 | ((aCode >> 6) & 0x3F)));
  }
  aText.push_back(static_cast<char>(0x80 | (aCode & 0x3F)));
}

// Appends the character of the escape "\uXXXX" at anOffset, with the low surrogate that follows a high one;
// returns the number of bytes read.
static size_t JSONLine_S_AppendUnicodeEscape(std::string_view aValue, size_t anOffset, std::string& aText) {
  unsigned int theCode = static_cast<unsigned int>(JSONLine_S_CodeUnit(aValue, anOffset + 2));
  size_t theLength = 6;
  if (theCode >= 0xD800 && theCode < 0xE000) {
    int theLow = aValue.substr(anOffset + 6, 2) == "\\u" ? JSONLine_S_CodeUnit(aValue, anOffset + 8) : -1;
    if (theCode < 0xDC00 && theLow >= 0xDC00 && theLow < 0xE000) {
      theCode = 0x10000 + ((theCode - 0xD800) << 10) + (static_cast<unsigned int>(theLow) - 0xDC00);
      theLength = 12;
    } else {
      theCode = kReplacementCharacter;
    }
  }
  JSONLine_S_AppendCharacter(theCode, aText);
  return theLength;
}

void JSONLine_AppendText(std::string_view aValue, std::string& aText) {
  size_t i = 0;
  while (i < aValue.size()) {
    size_t theEscape = aValue.find('\\', i);
    aText.append(aValue.substr(i, theEscape - i));
    if (theEscape == std::string_view::npos || theEscape + 1 >= aValue.size()) {
      return;
    }
    char theSign = aValue[theEscape + 1];
    if (theSign == 'u' && JSONLine_S_CodeUnit(aValue, theEscape + 2) >= 0) {
      i = theEscape + JSONLine_S_AppendUnicodeEscape(aValue, theEscape, aText);
      continue;
    }
    static const char kLetters[] = "bfnrt";
    static const char kMeanings[] = "\b\f\n\r\t";
    size_t theIndex = std::string_view(kLetters).find(theSign);
    aText.push_back(theIndex != std::string_view::npos ? kMeanings[theIndex] : theSign);
    i = theEscape + 2;
  }
}
