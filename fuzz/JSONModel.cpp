#include "JSONModel.h"

#include <stdlib.h>
#include <string.h>

#include "TextModel.h"

namespace {

class Reader {
 public:
  explicit Reader(std::string_view aLine) : mLeft(aLine) {}

  bool Object(std::vector<JSONModelMember>* aMembers) {
    if (!Sign('{')) {
      return false;
    }
    if (!Sign('}')) {
      do {
        aMembers->emplace_back();
        if (!Member(&aMembers->back())) {
          return false;
        }
      } while (Sign(','));
      if (!Sign('}')) {
        return false;
      }
    }
    Blanks();
    return mLeft.empty();
  }

 private:
  void Blanks() {
    while (!mLeft.empty() && memchr(" \t\n\r", mLeft[0], 4) != nullptr) {
      mLeft.remove_prefix(1);
    }
  }

  bool Sign(char aSign) {
    Blanks();
    return Char(aSign);
  }

  bool Char(char aChar) {
    if (mLeft.empty() || mLeft[0] != aChar) {
      return false;
    }
    mLeft.remove_prefix(1);
    return true;
  }

  bool Member(JSONModelMember* aMember) {
    std::string theMeaning;
    Blanks();
    std::string_view theStart = mLeft;
    if (!Text(&theMeaning)) {
      return false;
    }
    aMember->mKey = theStart.substr(1, theStart.size() - mLeft.size() - 2);
    return Sign(':') && Value(aMember);
  }

  bool Value(JSONModelMember* aMember) {
    Blanks();
    std::string_view theStart = mLeft;
    if (!mLeft.empty() && mLeft[0] == '"') {
      aMember->mKind = JSONModelKind_Text;
      return Text(&aMember->mValue);
    }
    bool theIsWord = false;
    for (std::string_view theWord : {"true", "false", "null"}) {
      if (mLeft.substr(0, theWord.size()) == theWord) {
        mLeft.remove_prefix(theWord.size());
        theIsWord = true;
        break;
      }
    }
    aMember->mKind = theIsWord ? JSONModelKind_Word : JSONModelKind_Number;
    if (!theIsWord && !Number()) {
      return false;
    }
    aMember->mValue = theStart.substr(0, theStart.size() - mLeft.size());
    return true;
  }

  size_t Digits() {
    size_t theCount = 0;
    while (!mLeft.empty() && mLeft[0] >= '0' && mLeft[0] <= '9') {
      mLeft.remove_prefix(1);
      ++theCount;
    }
    return theCount;
  }

  bool Number() {
    Char('-');
    if (!Char('0') && Digits() == 0) {
      return false;
    }
    if (Char('.') && Digits() == 0) {
      return false;
    }
    if (Char('e') || Char('E')) {
      if (!Char('+')) {
        Char('-');
      }
      return Digits() > 0;
    }
    return true;
  }

  bool Text(std::string* aText) {
    if (!Char('"')) {
      return false;
    }
    while (!mLeft.empty()) {
      char theChar = mLeft[0];
      mLeft.remove_prefix(1);
      if (theChar == '"') {
        return true;
      }
      if (static_cast<unsigned char>(theChar) < 0x20 || (theChar == '\\' && !Escape(aText))) {
        return false;
      }
      if (theChar != '\\') {
        *aText += theChar;
      }
    }
    return false;
  }

  // What follows a backslash.
  bool Escape(std::string* aText) {
    static const char kNames[] = "\"\\/bfnrt";
    static const char kMeanings[] = "\"\\/\b\f\n\r\t";
    char theName = mLeft.empty() ? '\0' : mLeft[0];
    const char* theFound = theName != '\0' ? strchr(kNames, theName) : nullptr;
    if (theFound != nullptr) {
      *aText += kMeanings[theFound - kNames];
      mLeft.remove_prefix(1);
      return true;
    }
    long theUnit = Unit(mLeft);
    if (theUnit < 0) {
      return false;
    }
    mLeft.remove_prefix(5);
    uint32_t theCharacter = static_cast<uint32_t>(theUnit);
    long theNext = mLeft.substr(0, 1) == "\\" ? Unit(mLeft.substr(1)) : -1;
    if (theUnit >= 0xD800 && theUnit <= 0xDBFF && theNext >= 0xDC00 && theNext <= 0xDFFF) {
      theCharacter = static_cast<uint32_t>(0x10000 + (theUnit - 0xD800) * 0x400 + (theNext - 0xDC00));
      mLeft.remove_prefix(6);
    } else if (theUnit >= 0xD800 && theUnit <= 0xDFFF) {
      theCharacter = 0xFFFD;
    }
    TextModel_AppendCharacter(theCharacter, *aText);
    return true;
  }

  // The value of "uXXXX" at the start, or -1.
  static long Unit(std::string_view aText) {
    std::string theDigits(aText.substr(0, 5));
    if (theDigits.size() != 5 || theDigits[0] != 'u' ||
        theDigits.find_first_not_of("0123456789abcdefABCDEF", 1) != std::string::npos) {
      return -1;
    }
    return strtol(theDigits.c_str() + 1, nullptr, 16);
  }

  std::string_view mLeft;
};

}  // namespace

bool JSONModel_Read(std::string_view aLine, std::vector<JSONModelMember>* aMembers) {
  aMembers->clear();
  return Reader(aLine).Object(aMembers);
}
