// FormatText.h - what the formatting functions make of a format, as strings that a test can compare.
#ifndef TESTS_SUPPORT_FORMATTEXT_H
#define TESTS_SUPPORT_FORMATTEXT_H

#include <gtest/gtest.h>

#include <string>

#include "qvraTools/format/qvFormat.h"

// Formats come here as variables, some of them wrong on purpose.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
#pragma GCC diagnostic ignored "-Wformat-security"

// One character a byte: for formats and expected texts that are ASCII.
inline std::wstring Widen(const std::string& aText) { return std::wstring(aText.begin(), aText.end()); }

// More than any directive needs at once: with less room left the library writes some of them another way.
#define FORMATTEXT_SPARE_ROOM 128

// Expects the same output as aText from a call with room to spare, and nothing behind its terminator.
template <typename Text, typename Write>
void ExpectSameWithRoomToSpare(const Text& aText, const Write& aWrite) {
  Text theRoomy(aText.size() + FORMATTEXT_SPARE_ROOM, '~');
  EXPECT_EQ(static_cast<int>(aText.size()), aWrite(&theRoomy[0], theRoomy.size()));
  Text theExpected = aText;
  theExpected += typename Text::value_type(0);
  theExpected.resize(theRoomy.size(), '~');
  EXPECT_EQ(theExpected, theRoomy);
}

// Expects the same error as aResult from a call with room, which stores an empty text.
template <typename Char, typename Write>
void ExpectSameErrorWithRoom(int aResult, const Write& aWrite) {
  Char theRoomy[FORMATTEXT_SPARE_ROOM] = {'~'};
  EXPECT_EQ(aResult, aWrite(theRoomy, FORMATTEXT_SPARE_ROOM));
  EXPECT_EQ(0, theRoomy[0]);
}

// The output with its embedded zeros; "error CODE at POSITION" for a format error. It is written into a
// buffer that it fills, and again into a larger one.
template <typename... Arguments>
std::string NarrowText(const char* aFormat, Arguments... anArguments) {
  auto theWrite = [&](char* aBuffer, size_t aMax) {
    return qv_snprintf(aBuffer, aMax, aFormat, anArguments...);
  };
  int theLength = theWrite(nullptr, 0);
  if (theLength < 0) {
    ExpectSameErrorWithRoom<char>(theLength, theWrite);
    return "error " + std::to_string(-theLength & 0xff) + " at " + std::to_string(-theLength >> 8);
  }
  std::string theText(static_cast<size_t>(theLength) + 1, '?');
  EXPECT_EQ(theLength, theWrite(&theText[0], theText.size()));
  EXPECT_EQ('\0', theText.back()) << "not terminated";
  theText.pop_back();
  ExpectSameWithRoomToSpare(theText, theWrite);
  return theText;
}

template <typename... Arguments>
std::wstring WideText(const wchar_t* aFormat, Arguments... anArguments) {
  auto theWrite = [&](wchar_t* aBuffer, size_t aMax) {
    return qv_swprintf(aBuffer, aMax, aFormat, anArguments...);
  };
  int theLength = theWrite(nullptr, 0);
  if (theLength < 0) {
    ExpectSameErrorWithRoom<wchar_t>(theLength, theWrite);
    return L"error " + std::to_wstring(-theLength & 0xff) + L" at " + std::to_wstring(-theLength >> 8);
  }
  std::wstring theText(static_cast<size_t>(theLength) + 1, L'?');
  EXPECT_EQ(theLength, theWrite(&theText[0], theText.size()));
  EXPECT_EQ(L'\0', theText.back()) << "not terminated";
  theText.pop_back();
  ExpectSameWithRoomToSpare(theText, theWrite);
  return theText;
}

// Expects the same ASCII text, or error, from both families.
template <typename... Arguments>
void ExpectFormatted(const std::string& anExpected, const std::string& aFormat, Arguments... anArguments) {
  EXPECT_EQ(anExpected, NarrowText(aFormat.c_str(), anArguments...)) << "narrow " << aFormat;
  EXPECT_EQ(Widen(anExpected), WideText(Widen(aFormat).c_str(), anArguments...)) << "wide " << aFormat;
}

#pragma GCC diagnostic pop

#endif
