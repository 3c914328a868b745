#include "tools/logstream/LogFilter.h"

#include <gtest/gtest.h>

using namespace std::string_literals;

static LogRecord Line(char aLevel, std::string_view aModule, std::string_view aText = "text") {
  LogRecord theRecord;
  theRecord.mTime = 1000;
  theRecord.mProcess = "player";
  theRecord.mUUID = "1a2b3c4d-89ab-cdef-0123-456789abcdef";
  theRecord.mLevel = aLevel;
  theRecord.mModule = aModule;
  theRecord.mText = aText;
  return theRecord;
}

static LogRecord Bare() { return Line(0, ""); }

static LogRecord Event(LogRecordKind aKind) {
  LogRecord theRecord = Bare();
  theRecord.mKind = aKind;
  theRecord.mText = "";
  return theRecord;
}

// Which of the levels of a module are shown, as their letters.
static std::string Shown(const LogFilter& aFilter, std::string_view aModule) {
  std::string theLevels;
  for (char theLevel : {'E', 'W', 'I', 'D'}) {
    if (aFilter.Shows(Line(theLevel, aModule))) {
      theLevels += theLevel;
    }
  }
  return theLevels;
}

static bool ShowsEvents(const LogFilter& aFilter) {
  return aFilter.Shows(Event(LogRecordKind_Connect)) && aFilter.Shows(Event(LogRecordKind_Lost)) &&
         aFilter.Shows(Event(LogRecordKind_Disconnect)) && aFilter.Shows(Event(LogRecordKind_Suppressed));
}

TEST(LogFilter, WithoutWishesEverythingIsShown) {
  LogFilter theFilter;
  EXPECT_EQ("EWID", Shown(theFilter, "GUI"));
  EXPECT_TRUE(theFilter.Shows(Bare()));
  EXPECT_TRUE(theFilter.Shows(LogRecord()));
  EXPECT_TRUE(ShowsEvents(theFilter));
}

// --- Specs

TEST(LogFilter, TheLetterOfASpecIsTheLeastSevereLevelShown) {
  const struct {
    const char* mSpec;
    const char* mShown;
  } kCases[] = {{"GUI:E", "E"},  {"GUI:W", "EW"}, {"GUI:I", "EWI"}, {"GUI:D", "EWID"},
                {"GUI", "EWID"}, {"GUI:S", ""},   {"GUI:w", "EW"}};
  for (const auto& theCase : kCases) {
    LogFilter theFilter;
    ASSERT_TRUE(theFilter.AddSpec(theCase.mSpec));
    EXPECT_EQ(theCase.mShown, Shown(theFilter, "GUI")) << theCase.mSpec;
    EXPECT_EQ("EWID", Shown(theFilter, "HTTP")) << theCase.mSpec;
  }
}

TEST(LogFilter, ModulesAreComparedWithoutCaseAndWithWildcards) {
  LogFilter theFilter;
  ASSERT_TRUE(theFilter.AddSpec("gui_*:E"));
  ASSERT_TRUE(theFilter.AddSpec("?DMI:W"));
  EXPECT_EQ("E", Shown(theFilter, "GUI_EVENTS"));
  EXPECT_EQ("EW", Shown(theFilter, "HDMI"));
  EXPECT_EQ("EWID", Shown(theFilter, "GUI"));
}

TEST(LogFilter, AModuleIsComparedAsTheLinesShowIt) {
  LogFilter theFilter;
  ASSERT_TRUE(theFilter.AddSpecs("CONTENT_DIRECTORY:E 170:W GUI_EVENTS:S"));
  EXPECT_EQ("E", Shown(theFilter, "CONTENT_DI"));
  EXPECT_EQ("EW", Shown(theFilter, "0000000170"));
  EXPECT_EQ("", Shown(theFilter, "GUI_EVENTS"));
}

TEST(LogFilter, TheFirstSpecThatMatchesDecides) {
  LogFilter theFilter;
  ASSERT_TRUE(theFilter.AddSpecs("GUI_OSD:D GUI_*:E GUI_OSD:S"));
  EXPECT_EQ("EWID", Shown(theFilter, "GUI_OSD"));
  EXPECT_EQ("E", Shown(theFilter, "GUI_MENU"));
}

TEST(LogFilter, TheBareStarIsLookedAtLast) {
  LogFilter theFilter;
  ASSERT_TRUE(theFilter.AddSpecs("*:S GUI:W *:D"));
  EXPECT_EQ("EW", Shown(theFilter, "GUI"));
  EXPECT_EQ("", Shown(theFilter, "HTTP"));
}

TEST(LogFilter, OnlyTheSilentStarHidesLinesWithoutALevelAndNoSpecHidesEvents) {
  LogFilter theFilter;
  ASSERT_TRUE(theFilter.AddSpecs("?*:S **:S *:E"));
  EXPECT_TRUE(theFilter.Shows(Bare()));
  EXPECT_TRUE(ShowsEvents(theFilter));
  LogFilter theSilent;
  ASSERT_TRUE(theSilent.AddSpec("*:S"));
  EXPECT_FALSE(theSilent.Shows(Bare()));
  EXPECT_TRUE(ShowsEvents(theSilent));
}

TEST(LogFilter, WhatIsNoSpecIsRefused) {
  for (const char* theSpec : {"", ":E", "GUI:", "GUI:X", "GUI:EW", "GUI:E:W", "GUI :E", " GUI", "GUI\t"}) {
    LogFilter theFilter;
    EXPECT_FALSE(theFilter.AddSpec(theSpec)) << theSpec;
    EXPECT_EQ("EWID", Shown(theFilter, "GUI")) << theSpec;
  }
}

TEST(LogFilter, OneWrongSpecOfSeveralLeavesTheFilterAsItWas) {
  LogFilter theFilter;
  EXPECT_FALSE(theFilter.AddSpecs("GUI:S HTTP:X"));
  EXPECT_EQ("EWID", Shown(theFilter, "GUI"));
  EXPECT_TRUE(theFilter.AddSpecs(" \t GUI:S\n HTTP:E "));
  EXPECT_EQ("", Shown(theFilter, "GUI"));
  EXPECT_EQ("E", Shown(theFilter, "HTTP"));
  EXPECT_TRUE(theFilter.AddSpecs(""));
  EXPECT_TRUE(theFilter.AddSpecs("  "));
}

// --- Priority

TEST(LogFilter, ThePriorityIsALetterOrAWord) {
  const struct {
    const char* mPriority;
    const char* mShown;
  } kCases[] = {{"E", "E"},     {"W", "EW"},       {"I", "EWI"},    {"D", "EWID"},    {"w", "EW"},
                {"error", "E"}, {"warning", "EW"}, {"info", "EWI"}, {"debug", "EWID"}};
  for (const auto& theCase : kCases) {
    LogFilter theFilter;
    ASSERT_TRUE(theFilter.SetPriority(theCase.mPriority));
    EXPECT_EQ(theCase.mShown, Shown(theFilter, "GUI")) << theCase.mPriority;
  }
}

TEST(LogFilter, WhatIsNoPriorityIsRefused) {
  LogFilter theFilter;
  ASSERT_TRUE(theFilter.SetPriority("W"));
  for (const char* thePriority : {"", "S", "X", "err", "Error", "3"}) {
    EXPECT_FALSE(theFilter.SetPriority(thePriority)) << thePriority;
  }
  EXPECT_EQ("EW", Shown(theFilter, "GUI"));
}

TEST(LogFilter, ForThePriorityBareLinesAndConnectionsAreInfoAndLossesAreWarnings) {
  LogFilter theFilter;
  ASSERT_TRUE(theFilter.SetPriority("info"));
  EXPECT_TRUE(theFilter.Shows(Bare()));
  EXPECT_TRUE(ShowsEvents(theFilter));
  ASSERT_TRUE(theFilter.SetPriority("warning"));
  EXPECT_FALSE(theFilter.Shows(Bare()));
  EXPECT_FALSE(theFilter.Shows(Event(LogRecordKind_Connect)));
  EXPECT_FALSE(theFilter.Shows(Event(LogRecordKind_Disconnect)));
  EXPECT_TRUE(theFilter.Shows(Event(LogRecordKind_Lost)));
  EXPECT_TRUE(theFilter.Shows(Event(LogRecordKind_Suppressed)));
  ASSERT_TRUE(theFilter.SetPriority("error"));
  EXPECT_FALSE(theFilter.Shows(Event(LogRecordKind_Lost)));
}

TEST(LogFilter, ThePriorityAndTheSpecsMustBothAllowALine) {
  LogFilter theFilter;
  ASSERT_TRUE(theFilter.SetPriority("W"));
  ASSERT_TRUE(theFilter.AddSpecs("GUI:D HTTP:E"));
  EXPECT_EQ("EW", Shown(theFilter, "GUI"));
  EXPECT_EQ("E", Shown(theFilter, "HTTP"));
}

// --- Processes

TEST(LogFilter, AProcessIsANameOrAnInstanceWithWildcards) {
  const struct {
    const char* mProcess;
    bool mfShown;
  } kCases[] = {{"player", true},           {"play*", true},   {"Player", false}, {"player-1a2b3c4d", true},
                {"player-ffffffff", false}, {"*-1a2b*", true}, {"play", false},   {"player-", false}};
  for (const auto& theCase : kCases) {
    LogFilter theFilter;
    ASSERT_TRUE(theFilter.AddProcess(theCase.mProcess));
    EXPECT_EQ(theCase.mfShown, theFilter.Shows(Line('I', "GUI"))) << theCase.mProcess;
    EXPECT_EQ(theCase.mfShown, ShowsEvents(theFilter)) << theCase.mProcess;
  }
}

TEST(LogFilter, OfSeveralProcessesAnyIsShown) {
  LogFilter theFilter;
  ASSERT_TRUE(theFilter.AddProcess("browser"));
  ASSERT_TRUE(theFilter.AddProcess("player"));
  EXPECT_TRUE(theFilter.Shows(Line('I', "GUI")));
  LogRecord theRecord = Line('I', "GUI");
  theRecord.mProcess = "recorder";
  EXPECT_FALSE(theFilter.Shows(theRecord));
}

TEST(LogFilter, AnEmptyProcessIsRefused) { EXPECT_FALSE(LogFilter().AddProcess("")); }

// --- Pattern and times

TEST(LogFilter, ThePatternIsSearchedInTheText) {
  LogFilter theFilter;
  ASSERT_TRUE(theFilter.SetPattern("^ab+c|x$"));
  EXPECT_TRUE(theFilter.Shows(Line('I', "GUI", "abbcd")));
  EXPECT_TRUE(theFilter.Shows(Line('I', "GUI", "ends with x")));
  EXPECT_FALSE(theFilter.Shows(Line('I', "GUI", "aabc")));
  EXPECT_FALSE(theFilter.Shows(Line('I', "GUI", "")));
  EXPECT_FALSE(theFilter.Shows(Line('I', "GUI", std::string_view("x behind", 8))));
  EXPECT_TRUE(theFilter.Shows(Line('I', "GUI", std::string_view("x behind", 1))));
}

TEST(LogFilter, ThePatternLooksBehindZeroBytesAndOtherBytes) {
  LogFilter theFilter;
  ASSERT_TRUE(theFilter.SetPattern("needle"));
  EXPECT_TRUE(theFilter.Shows(Line('I', "GUI", "hay\0\xFF\xC3needle\0"s)));
}

TEST(LogFilter, APatternHidesEvents) {
  LogFilter theFilter;
  ASSERT_TRUE(theFilter.SetPattern(".*"));
  EXPECT_FALSE(theFilter.Shows(Event(LogRecordKind_Lost)));
  EXPECT_TRUE(theFilter.Shows(Bare()));
}

TEST(LogFilter, AWrongPatternIsRefusedAndTheOldOneStays) {
  LogFilter theFilter;
  ASSERT_TRUE(theFilter.SetPattern("abc"));
  EXPECT_FALSE(theFilter.SetPattern("("));
  EXPECT_FALSE(theFilter.SetPattern("[a"));
  EXPECT_FALSE(theFilter.Shows(Line('I', "GUI", "x")));
  ASSERT_TRUE(theFilter.SetPattern("x"));
  EXPECT_TRUE(theFilter.Shows(Line('I', "GUI", "x")));
  EXPECT_FALSE(theFilter.Shows(Line('I', "GUI", "abc")));
}

TEST(LogFilter, TheTimesOfBothEndsAreShown) {
  LogFilter theFilter;
  theFilter.SetSince(1000);
  theFilter.SetUntil(2000);
  const struct {
    int64 mTime;
    bool mfShown;
  } kCases[] = {{999, false}, {1000, true}, {2000, true}, {2001, false}, {0, false}};
  for (const auto& theCase : kCases) {
    LogRecord theRecord = Line('I', "GUI");
    theRecord.mTime = theCase.mTime;
    EXPECT_EQ(theCase.mfShown, theFilter.Shows(theRecord)) << theCase.mTime;
  }
}
