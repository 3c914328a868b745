#include "tools/logstream/LogEscape.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

TEST(LogEscape, AFieldIsReadBackAsItWas) {
  for (const std::string& theText : {""s, "-"s, "player"s, "my player"s, "a\\x20b"s, "\\"s, "a\0b\t\n\xFF"s,
                                     "--"s, "\xC3\xA4"s, "\xC2\x9B"s}) {
    std::string theField;
    LogEscape_AppendField(theText, theField);
    EXPECT_EQ(std::string::npos, theField.find_first_of(" \t\n\0"s)) << theField;
    std::string theRead = "old";
    EXPECT_TRUE(LogEscape_ReadField(theField, &theRead)) << theField;
    EXPECT_EQ(theText, theRead);
  }
}

TEST(LogEscape, WhatNoFieldCanBeIsRefused) {
  std::string theRead;
  for (const char* theField : {"", "a b", "a\tb", "\\", "\\x", "\\x4", "\\y41", "\\x4g", "\\xAA", "\\\\"}) {
    EXPECT_FALSE(LogEscape_ReadField(theField, &theRead)) << theField;
  }
}

TEST(LogEscape, TheLengthOfACharacterIsThatOfValidUTF8) {
  EXPECT_EQ(0u, LogEscape_CharacterLength(""));
  EXPECT_EQ(1u, LogEscape_CharacterLength("\0"s));
  EXPECT_EQ(1u, LogEscape_CharacterLength("\x7F"));
  EXPECT_EQ(0u, LogEscape_CharacterLength("\x80"));
  EXPECT_EQ(2u, LogEscape_CharacterLength("\xC2\x80x"));
  EXPECT_EQ(0u, LogEscape_CharacterLength("\xC1\xBF"));
  EXPECT_EQ(3u, LogEscape_CharacterLength("\xE0\xA0\x80"));
  EXPECT_EQ(0u, LogEscape_CharacterLength("\xE0\xA0"));
  EXPECT_EQ(4u, LogEscape_CharacterLength("\xF0\x90\x80\x80"));
  EXPECT_EQ(0u, LogEscape_CharacterLength("\xF5\x80\x80\x80"));
}
