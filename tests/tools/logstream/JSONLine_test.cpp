#include "tools/logstream/JSONLine.h"

#include <gtest/gtest.h>

namespace {

// "key=value" of each member, texts in quotes as they are written; "!" at the end for a fault.
std::string Members(std::string_view aText) {
  JSONLine theLine(aText);
  JSONMember theMember;
  std::string theMembers;
  while (theLine.Next(&theMember)) {
    const char* theQuote = theMember.mKind == JSONKind_Text ? "'" : "";
    theMembers.append(theMember.mKey).append("=").append(theQuote);
    theMembers.append(theMember.mValue).append(theQuote).append(" ");
  }
  return theMembers + (theLine.IsComplete() ? "" : "!");
}

std::string Unescaped(std::string_view aValue) {
  std::string theText;
  JSONLine_AppendText(aValue, theText);
  return theText;
}

}  // namespace

TEST(JSONLine, MembersComeInTheirOrder) {
  EXPECT_EQ("a='x' b=-1.5e3 c=true d=false e=null ",
            Members("{\"a\":\"x\",\"b\":-1.5e3,\"c\":true,\"d\":false,\"e\":null}"));
}

TEST(JSONLine, BlanksBetweenTheSignsAreSkipped) {
  EXPECT_EQ("a='x' b=1 ", Members(" { \"a\" : \"x\" ,\t\"b\" : 1 } "));
}

TEST(JSONLine, AnEmptyObjectIsComplete) { EXPECT_EQ("", Members("{}")); }

TEST(JSONLine, AnEscapedQuoteDoesNotEndAText) {
  EXPECT_EQ("a='x\\\"y\\\\' ", Members("{\"a\":\"x\\\"y\\\\\"}"));
}

TEST(JSONLine, WhatIsNoFlatObjectIsAFault) {
  const struct {
    const char* mLine;
    const char* mMembers;
    const char* mWhy;
  } kCases[] = {
      {"", "!", "nothing"},
      {"[1]", "!", "an array"},
      {"{\"a\":1", "a=1 !", "no end"},
      {"{\"a\":1} x", "a=1 !", "something behind it"},
      {"{\"a\":1,}", "a=1 !", "no member behind the comma"},
      {"{\"a\":1 \"b\":2}", "a=1 !", "no comma"},
      {"{\"a\"}", "!", "no value"},
      {"{\"a\":}", "!", "an empty value"},
      {"{\"a\":yes}", "!", "an unknown word"},
      {"{\"a\":{\"b\":1}}", "!", "an object inside"},
      {"{\"a\":[1]}", "!", "an array inside"},
      {"{\"a\":\"x}", "!", "a text without end"},
      {"{\"a\":\"x\\\"}", "!", "a text whose quote is escaped"},
      {"{\"a\":\"x\\q\"}", "!", "an unknown escape"},
      {"{\"a\":\"x\\u12G4\"}", "!", "an escape that is not hexadecimal"},
      {"{\"a\":\"x\\u12\"}", "!", "a short escape"},
      {"{\"a\":\"x\ty\"}", "!", "a control character in a text"},
      {"{a:1}", "!", "a key without quotes"},
  };
  for (const auto& theCase : kCases) {
    EXPECT_EQ(theCase.mMembers, Members(theCase.mLine)) << theCase.mWhy;
  }
}

TEST(JSONLine, ANumberIsWrittenAsJSONHasIt) {
  for (const char* theNumber : {"0", "-0", "12", "-12.50", "0.5", "1e9", "1E+9", "1.5e-03"}) {
    EXPECT_EQ("a=" + std::string(theNumber) + " ", Members("{\"a\":" + std::string(theNumber) + "}"));
  }
  for (const char* theNumber :
       {"012", "+1", "-", ".5", "1.", "1.e5", "1e", "1e+", "1-1", "--1", "1.5.5", "1e5e5"}) {
    EXPECT_EQ("!", Members("{\"a\":" + std::string(theNumber) + "}")) << theNumber;
  }
}

TEST(JSONLine, EscapesBecomeTheirCharacters) {
  EXPECT_EQ("a\"\\/\b\f\n\r\tz", Unescaped("a\\\"\\\\\\/\\b\\f\\n\\r\\tz"));
  EXPECT_EQ(std::string("\0\x1B", 2), Unescaped("\\u0000\\u001b"));
}

TEST(JSONLine, UnicodeEscapesBecomeUTF8) {
  EXPECT_EQ("\x7F|\xC2\x80|\xDF\xBF|\xE0\xA0\x80|\xEF\xBF\xBF",
            Unescaped("\\u007F|\\u0080|\\u07ff|\\u0800|\\uffff"));
}

TEST(JSONLine, ASurrogatePairIsOneCharacter) {
  EXPECT_EQ("<\xF0\x9F\x98\x80>", Unescaped("<\\ud83d\\ude00>"));
  EXPECT_EQ("\xF0\x90\x80\x80\xF4\x8F\xBF\xBF", Unescaped("\\uD800\\uDC00\\uDBFF\\uDFFF"));
}

TEST(JSONLine, ASurrogateWithoutItsPartnerIsReplaced) {
  EXPECT_EQ("\xEF\xBF\xBDx", Unescaped("\\ud83dx"));
  EXPECT_EQ("\xEF\xBF\xBD", Unescaped("\\ude00"));
  EXPECT_EQ("\xEF\xBF\xBD\xEF\xBF\xBD", Unescaped("\\ud83d\\ud83d"));
  EXPECT_EQ(
      "\xEF\xBF\xBD"
      "A",
      Unescaped("\\ud83d\\u0041"));
}
