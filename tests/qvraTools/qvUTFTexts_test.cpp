// Whole texts, which go through in blocks, against the rules for one character at a time as they are said.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "qvraTools/qvUTF.h"
#include "qvraTools/qvUTF_p.h"
#include "qvraTools/qvUnicode.h"
#include "support/Bytes.h"
#include "support/GuardedBytes.h"
#include "support/UTFModel.h"
#include "support/UTFTexts.h"

namespace {

// aCheck gets texts of all small lengths and some long ones, half of them spoilt.
template <typename Check>
void WithTexts(unsigned aSeed, Check aCheck) {
  Texts theTexts(aSeed);
  for (int theRound = 0; theRound < 4000; ++theRound) {
    bool theLongFlag = theRound % 200 == 0;
    std::string theText = theTexts.MakeUTF8(theLongFlag ? 3000 + theTexts.Below(3000) : theTexts.Below(120));
    for (uint32 i = theTexts.Below(2) == 0 ? 0 : 1 + theTexts.Below(3); i > 0; --i) {
      theTexts.Spoil(theText);
    }
    aCheck(theText, theTexts);
    if (testing::Test::HasFailure()) {
      ADD_FAILURE() << "round " << theRound << ", " << testing::PrintToString(theText);
      return;
    }
  }
}

// What is in the room, with the terminator if there is room for it, and nothing written behind.
void ExpectWide(const std::wstring& anExpected, size_t aRoom, bool afTerminated,
                const std::vector<wchar_t>& aWide) {
  for (size_t i = 0; i < anExpected.size(); ++i) {
    ASSERT_EQ(anExpected[i], aWide[i]) << i;
  }
  size_t theEnd = anExpected.size();
  if (afTerminated && theEnd < aRoom) {
    ASSERT_EQ(L'\0', aWide[theEnd]);
    ++theEnd;
  }
  for (; theEnd < aWide.size(); ++theEnd) {
    ASSERT_EQ(L'#', aWide[theEnd]) << theEnd;
  }
}

void CheckToWide(const std::string& aText, size_t aRoom) {
  size_t theValidLength;
  std::wstring theChars = DecodeAllUTF8(aText, &theValidLength);
  bool theValidFlag = theValidLength == aText.size();
  GuardedBytes theCopy(aText + '\0');
  EXPECT_EQ(theValidFlag ? theChars.size() : kInvalid, qvUnicode_UTF8ToWide(nullptr, theCopy.Data(), 0));
  std::vector<wchar_t> theWide(aRoom + 20, L'#');
  size_t theCount = qvUnicode_UTF8ToWide(theWide.data(), theCopy.Data(), aRoom);
  if (theChars.size() >= aRoom) {
    theChars.resize(aRoom);
    EXPECT_EQ(aRoom, theCount);
  } else {
    EXPECT_EQ(theValidFlag ? theChars.size() : kInvalid, theCount);
  }
  ExpectWide(theChars, aRoom, theCount != kInvalid, theWide);
}

void CheckFromWide(const Chars& aChars, size_t aRoom) {
  std::string theWide;
  std::string theExpected;
  std::string theWhole;
  bool theFitsFlag = true;
  for (uint32 theChar : aChars) {
    std::string theBytes = EncodeUTF8(theChar & 0x7FFFFFFF);
    theWhole += theBytes;
    theFitsFlag = theFitsFlag && theExpected.size() + theBytes.size() <= aRoom;
    theExpected += theFitsFlag ? theBytes : "";
    theWide.append(reinterpret_cast<const char*>(&theChar), sizeof(theChar));
  }
  GuardedBytes theCopy(theWide + std::string(sizeof(wchar_t), '\0'));
  const wchar_t* theText = reinterpret_cast<const wchar_t*>(theCopy.Data());
  EXPECT_EQ(theWhole.size(), qvUnicode_WideToUTF8(nullptr, theText, 0));
  std::string theRoom(aRoom + 20, '#');
  EXPECT_EQ(theExpected.size(), qvUnicode_WideToUTF8(&theRoom[0], theText, aRoom));
  theExpected += theExpected.size() < aRoom ? std::string(1, '\0') : "";
  EXPECT_EQ(theExpected + std::string(theRoom.size() - theExpected.size(), '#'), theRoom);
}

void CheckUTF16(const std::string& aText, size_t aRoom) {
  GuardedBytes theCopy(aText);
  int theResult;
  std::string theBig = FromUTF16(aText, true, false, &theResult);
  std::string theLittle = FromUTF16(aText, false, false, &theResult);
  EXPECT_EQ(theBig + '\0', TakeText(qvUTF_UTF16BEToUTF8(theCopy.Data(), aText.size()), theBig.size() + 1));
  EXPECT_EQ(theLittle + '\0',
            TakeText(qvUTF_UTF16LEToUTF8(theCopy.Data(), aText.size()), theLittle.size() + 1));
  for (bool thefStrict : {false, true}) {
    std::string theExpected = FromUTF16(aText, true, thefStrict, &theResult) + '\0';
    std::string theRoom(aRoom + 20, '#');
    size_t theCount = 0;
    EXPECT_EQ(
        theExpected.size() > aRoom ? 4 : theResult,
        qvUTF_S_UTF16ToUTF8(theCopy.Data(), aText.size(), 1, thefStrict, &theRoom[0], aRoom, &theCount));
    EXPECT_EQ(theExpected.size(), theCount);
    theExpected.resize(std::min(theExpected.size(), aRoom));
    EXPECT_EQ(theExpected, theRoom.substr(0, theExpected.size()));
    EXPECT_EQ(std::string(20, '#'), theRoom.substr(aRoom)) << "behind the room";
  }
}

void AppendUnit(std::string& aText, uint32 aUnit) {
  aText += static_cast<char>(aUnit >> 8);
  aText += static_cast<char>(aUnit & 0xFF);
}

}  // namespace

TEST(qvUTFTexts, UTF8BecomesWideCharacterByCharacter) {
  WithTexts(1, [](const std::string& aText, Texts& aTexts) {
    CheckToWide(aText, aTexts.Below(static_cast<uint32>(aText.size()) + 3));
    CheckToWide(aText, aText.size() + 1);
  });
}

TEST(qvUTFTexts, UTF8BecomesWideInRoomOfAnySize) {
  Texts theTexts(2);
  std::string theText = theTexts.MakeUTF8(90, 4);
  for (size_t theRoom = 0; theRoom < 100; ++theRoom) {
    CheckToWide(theText, theRoom);
    CheckToWide(theText + "\xFF", theRoom);
  }
}

TEST(qvUTFTexts, CharactersThatLieAcrossTheEndOfAPieceStayWhole) {
  for (const char* theChar :
       {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\xFD\xBF\xBF\xBF\xBF\xBF", "\xE2\x82"}) {
    for (size_t theLength = 4086; theLength < 4100; ++theLength) {
      std::string theText = std::string(theLength, 'a') + theChar;
      CheckToWide(theText, theText.size() + 1);
      CheckToWide(theText + "bc", theLength);
      CheckToWide(theText + "bc", theLength + 1);
    }
  }
}

TEST(qvUTFTexts, LeadsInFrontOfAnythingBecomeWideWhereverTheyStandInABlock) {
  for (size_t theStart : {0, 1, 13, 14, 15, 16, 17}) {
    for (uint32 theLead = 0x7F; theLead < 0x100; ++theLead) {
      for (const char* theRest :
           {"", "\x7F", "\x80", "\x8F\xBF", "\x90\x80", "\x9F\x80", "\xA0\x80", "\xBF\xC0", "\x80\x7F",
            "\xBF\xBF\x80", "\x8F\xBF\xBF", "\x90\x80\x80", "\xC3\xA9"}) {
        std::string theText(theStart, 'a');
        theText += static_cast<char>(theLead);
        theText += theRest;
        theText += "bcdefghijklmnopqrst\xC3\xA9";
        size_t theValidLength;
        std::wstring theChars = DecodeAllUTF8(theText, &theValidLength);
        bool theValidFlag = theValidLength == theText.size();
        wchar_t theWide[64];
        std::fill_n(theWide, 64, L'#');
        size_t theCount = qvUnicode_UTF8ToWide(theWide, theText.c_str(), 64);
        ASSERT_EQ(theValidFlag ? theChars.size() : kInvalid, theCount) << testing::PrintToString(theText);
        ExpectWide(theChars, 64, theValidFlag, std::vector<wchar_t>(theWide, theWide + 64));
        ASSERT_FALSE(HasFailure()) << testing::PrintToString(theText);
      }
    }
  }
}

TEST(qvUTFTexts, ValidPartEndsInFrontOfTheFirstMalformedCharacter) {
  WithTexts(3, [](const std::string& aText, Texts& aTexts) {
    std::string theText = aText;
    if (!theText.empty() && aTexts.Below(3) == 0) {
      theText[aTexts.Below(static_cast<uint32>(theText.size()))] = '\0';
    }
    size_t theValidLength;
    DecodeAllUTF8(theText, &theValidLength);
    GuardedBytes theCopy(theText);
    EXPECT_EQ(static_cast<int>(theValidLength),
              qvUTF_MakeValidUTF8(theCopy.Data(), static_cast<int>(theText.size())));
    if (theValidLength < theText.size()) {
      theText[theValidLength] = '\0';
    }
    EXPECT_EQ(theText, std::string(theCopy.Data(), theText.size()));
  });
}

TEST(qvUTFTexts, WideBecomesUTF8CharacterByCharacter) {
  Texts theTexts(4);
  for (int theRound = 0; theRound < 4000 && !HasFailure(); ++theRound) {
    size_t theLength = theRound % 200 == 0 ? 3000 + theTexts.Below(3000) : theTexts.Below(120);
    Chars theChars = theTexts.Make(theLength, theRound % 4 == 0 ? 6 : 3);
    for (uint32& theChar : theChars) {
      theChar |= theTexts.Below(50) == 0 ? 0x80000000u : 0;
    }
    CheckFromWide(theChars, theTexts.Below(static_cast<uint32>(2 * theLength) + 3));
    CheckFromWide(theChars, 6 * theLength + 1);
  }
}

TEST(qvUTFTexts, WideBecomesUTF8InRoomOfAnySize) {
  Texts theTexts(5);
  Chars theChars = theTexts.Make(90, 4);
  for (size_t theRoom = 0; theRoom < 300; ++theRoom) {
    CheckFromWide(theChars, theRoom);
  }
}

TEST(qvUTFTexts, LongWideTextMayConsistOfTheLongestForms) {
  CheckFromWide(Chars(5000, 0x7FFFFFFF), 6 * 5000 + 1);
  CheckFromWide(Chars(5000, 0x7FFFFFFF), 6 * 5000 - 1);
}

TEST(qvUTFTexts, RoomMayBeEndless) {
  wchar_t theWide[4];
  EXPECT_EQ(3u, qvUnicode_UTF8ToWide(theWide, "abc", static_cast<size_t>(-1)));
  EXPECT_STREQ(L"abc", theWide);
  char theBytes[7];
  EXPECT_EQ(6u, qvUnicode_WideToUTF8(theBytes, L"a\x20AC\xE9", static_cast<size_t>(-1)));
  EXPECT_STREQ("a\xE2\x82\xAC\xC3\xA9", theBytes);
}

TEST(qvUTFTexts, UTF16BecomesUTF8UnitByUnit) {
  Texts theTexts(6);
  for (int theRound = 0; theRound < 4000 && !HasFailure(); ++theRound) {
    std::string theText;
    bool theSurrogatesFlag = theTexts.Below(2) == 0;
    for (uint32 theChar : theTexts.Make(theRound % 200 == 0 ? 3000 : theTexts.Below(200), 3)) {
      AppendUnit(theText, theChar);
      if (theSurrogatesFlag && theTexts.Below(20) == 0) {
        AppendUnit(theText, 0xD800 + theTexts.Below(0x800));
      }
    }
    if (theTexts.Below(2) == 0) {
      theText += 'x';
    }
    CheckUTF16(theText, theTexts.Below(static_cast<uint32>(2 * theText.size()) + 3));
  }
}

TEST(qvUTFTexts, UTF16OfEveryUnitBecomesUTF8) {
  std::string theText;
  for (uint32 theUnit = 0; theUnit < 0x10000; ++theUnit) {
    AppendUnit(theText, theUnit);
  }
  CheckUTF16(theText, 3 * 0x10000);
}

TEST(qvUTFTexts, ISO88591BecomesUTF8ByteByByteAndBack) {
  Texts theTexts(7);
  for (int theRound = 0; theRound < 2000 && !HasFailure(); ++theRound) {
    std::string theText;
    std::string theUTF8;
    uint32 theHighOnes = 1 + theTexts.Below(40);
    for (uint32 i = theTexts.Below(400); i > 0; --i) {
      uint32 theChar = theTexts.Below(theHighOnes) == 0 ? 0x80 + theTexts.Below(0x80) : theTexts.Below(0x80);
      theText += static_cast<char>(theChar);
      AppendUTF8(theChar, theUTF8);
    }
    GuardedBytes theCopy(theText);
    GuardedBytes theUTF8Copy(theUTF8);
    EXPECT_EQ(theUTF8 + '\0',
              TakeText(qvUTF_ISO88591ToUTF8(theCopy.Data(), theText.size()), theUTF8.size() + 1));
    EXPECT_EQ(theText + '\0',
              TakeText(qvUTF_UTF8ToISO88591(theUTF8Copy.Data(), theUTF8.size()), theText.size() + 1));
  }
}

TEST(qvUTFTexts, UTF8BecomesISO88591CharacterByCharacter) {
  WithTexts(8, [](const std::string& aText, Texts&) {
    std::string theExpected = ToLatin(aText);
    GuardedBytes theCopy(aText);
    EXPECT_EQ(theExpected + '\0',
              TakeText(qvUTF_UTF8ToISO88591(theCopy.Data(), aText.size()), theExpected.size() + 1));
  });
}

TEST(qvUTFTexts, LeadsInFrontOfAnythingBecomeISO88591) {
  Texts theTexts(9);
  for (int theRound = 0; theRound < 4000 && !HasFailure(); ++theRound) {
    std::string theText;
    for (uint32 i = theTexts.Below(theRound % 4 == 0 ? 400 : 100); i > 0; --i) {
      uint32 theKind = theTexts.Below(8);
      theText += static_cast<char>(theKind < 5    ? 'a'
                                   : theKind == 5 ? 0xC0 + theTexts.Below(0x40)
                                                  : 0x80 + theTexts.Below(0x60));
    }
    std::string theExpected = ToLatin(theText);
    GuardedBytes theCopy(theText);
    EXPECT_EQ(theExpected + '\0',
              TakeText(qvUTF_UTF8ToISO88591(theCopy.Data(), theText.size()), theExpected.size() + 1));
  }
}
