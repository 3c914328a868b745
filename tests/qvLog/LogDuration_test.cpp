#define QVLOGLEVEL QVLOGLEVEL_ALL
#include "qvLog/LogDuration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "qvraTools/qvMalloc.h"
#include "support/HeapUse.h"
#include "support/RecordingLogger.h"

namespace {

struct Message {
  unsigned mLevel;
  unsigned mModule;
  std::string mFile;
  unsigned mLine;
  std::string mText;
};

std::vector<Message> sMessages;

void Remember(void*, const qvLogData* aData, const char* aText, size_t aLength) {
  sMessages.push_back({aData->mLevel, aData->mModule, aData->mFile != nullptr ? aData->mFile : "",
                       aData->mLine, std::string(aText, aLength)});
}

std::vector<std::string> Texts() {
  std::vector<std::string> theTexts;
  for (const Message& theMessage : sMessages) {
    theTexts.push_back(theMessage.mText);
  }
  return theTexts;
}

class LogDuration : public testing::Test {
 protected:
  LogDuration() { qvLog_SetLogFunc(5, Remember, nullptr); }
};
using LogDurationKept = LogDuration;

// Makes the watch show exactly that time from now on.
void Freeze(qvLogDuration* aDuration, uint32 aMilliSeconds) {
  qvChrono_Pause(&aDuration->mChrono);
  qvULongLong_Set(&aDuration->mChrono.mPauseTime, 0, aMilliSeconds);
}

TEST_F(LogDuration, StartAndEndAreLogged) {
  {
    qvLogDuration theDuration(QVLOGLEVEL_INFO, QVLOG_M_TUNER, kqvLogDuration_Load, qvStrdup("list"));
    EXPECT_THAT(Texts(), testing::ElementsAre("Loading: list\n"));
    Freeze(&theDuration, 1234);
  }
  EXPECT_THAT(Texts(), testing::ElementsAre("Loading: list\n", "Loaded : list (1.234 seconds)\n"));
}

TEST_F(LogDuration, EachKindHasItsPairOfWords) {
  const struct {
    int mKind;
    int mValue;
    const char* mStart;
    const char* mEnd;
  } kKinds[] = {
      {kqvLogDuration_Start, 0, "Starting", "Started"}, {kqvLogDuration_Stop, 1, "Stopping", "Stopped"},
      {kqvLogDuration_Load, 2, "Loading", "Loaded"},    {kqvLogDuration_Unload, 3, "Unloading", "Unloaded"},
      {kqvLogDuration_Run, 4, "Running", "Done"},       {kqvLogDuration_Duration, 5, nullptr, "Performed"},
      {kqvLogDuration_InOut, 6, "Entering", "Leaving"},
  };
  for (const auto& theKind : kKinds) {
    SCOPED_TRACE(theKind.mEnd);
    EXPECT_EQ(theKind.mValue, theKind.mKind);
    sMessages.clear();
    {
      qvLogDuration theDuration(QVLOGLEVEL_ERROR, 0, theKind.mKind, qvStrdup("x"));
      Freeze(&theDuration, 50);
    }
    std::vector<std::string> theExpected;
    if (theKind.mStart != nullptr) {
      theExpected.push_back(std::string(theKind.mStart) + ": x\n");
    }
    theExpected.push_back(std::string(theKind.mEnd) + " : x (0.050 seconds)\n");
    EXPECT_EQ(theExpected, Texts());
  }
}

TEST_F(LogDuration, TheKindDurationLogsOnlyItsEnd) {
  {
    qvLogDuration theDuration(QVLOGLEVEL_ERROR, 0, kqvLogDuration_Duration, qvStrdup("scan"));
    EXPECT_TRUE(sMessages.empty());
    EXPECT_TRUE(theDuration.mfStarted) << "it is timed all the same";
    Freeze(&theDuration, 60000);
  }
  EXPECT_THAT(Texts(), testing::ElementsAre("Performed : scan (60.000 seconds)\n"));
}

TEST_F(LogDuration, MillisecondsHaveThreeDigits) {
  const struct {
    uint32 mMilliSeconds;
    const char* mText;
  } kCases[] = {{1234, "Done : x (1.234 seconds)\n"},
                {50, "Done : x (0.050 seconds)\n"},
                {0, "Done : x (0.000 seconds)\n"},
                {7, "Done : x (0.007 seconds)\n"},
                {4294967295u, "Done : x (4294967.295 seconds)\n"}};
  for (const auto& theCase : kCases) {
    sMessages.clear();
    {
      qvLogDuration theDuration(QVLOGLEVEL_ERROR, 0, kqvLogDuration_Run, qvStrdup("x"));
      Freeze(&theDuration, theCase.mMilliSeconds);
    }
    EXPECT_EQ(theCase.mText, Texts().back());
  }
}

TEST_F(LogDurationKept, OnlyTheEndHasABlankBeforeTheColon) {
  {
    qvLogDuration theDuration(QVLOGLEVEL_ERROR, 0, kqvLogDuration_InOut, qvStrdup("f"));
    Freeze(&theDuration, 1);
  }
  EXPECT_THAT(Texts(), testing::ElementsAre("Entering: f\n", "Leaving : f (0.001 seconds)\n"));
}

TEST_F(LogDuration, WhatIsOffAtTheStartStaysSilentWhenTheLevelRises) {
  {
    qvLogDuration theDuration(6, 0, kqvLogDuration_Run, qvStrdup("quiet"));
    EXPECT_FALSE(theDuration.mfStarted);
    qvLog_SetLogFunc(QVLOGLEVEL_ALL & 0xFFFF, Remember, nullptr);
  }
  EXPECT_TRUE(sMessages.empty());
}

TEST_F(LogDuration, TextIsReleasedWhetherItIsLoggedOrNot) {
  ExpectNoHeapGrowth([] {
    qvLogDuration theDuration(QVLOGLEVEL_INFO, 0, kqvLogDuration_Run, qvStrdup("loud"));
    sMessages.clear();
  });
  ExpectNoHeapGrowth([] { qvLogDuration theDuration(6, 0, kqvLogDuration_Run, qvStrdup("quiet")); });
}

TEST_F(LogDuration, OnlyTheEndIsAMultiLineText) {
  RecordingLogger theLogger(5);
  {
    qvLogDuration theDuration(QVLOGLEVEL_ERROR, 0, kqvLogDuration_Run, qvStrdup("a\nb"));
    Freeze(&theDuration, 50);
  }
  EXPECT_THAT(theLogger.mMessages,
              testing::ElementsAre("Running: a\nb\n",
                                   testing::MatchesRegex("Done : a\nE [0-9:]{12}\\|[0-9a-f]{8}\\|DEFAULT    "
                                                         "b \\(0\\.050 seconds\\)\n")));
}

TEST_F(LogDuration, WhatIsSwitchedOffInBetweenLogsNoEnd) {
  {
    qvLogDuration theDuration(QVLOGLEVEL_INFO, 0, kqvLogDuration_Run, qvStrdup("x"));
    qvLog_SetLogFunc(QVLOGLEVEL_ERROR, Remember, nullptr);
  }
  EXPECT_THAT(Texts(), testing::ElementsAre("Running: x\n"));
}

TEST_F(LogDuration, MessagesCarryLevelModuleAndThisUnit) {
  { qvLogDuration theDuration(QVLOGLEVEL_WARNING, QVLOG_M_DEMUX, kqvLogDuration_Run, qvStrdup("x")); }
  ASSERT_EQ(2u, sMessages.size());
  for (const Message& theMessage : sMessages) {
    EXPECT_EQ(2u, theMessage.mLevel);
    EXPECT_EQ(static_cast<unsigned>(QVLOG_M_DEMUX), theMessage.mModule);
    EXPECT_THAT(theMessage.mFile, testing::HasSubstr("LogDuration.cpp"));
    EXPECT_GT(theMessage.mLine, 0u);
  }
  EXPECT_LT(sMessages[0].mLine, sMessages[1].mLine) << "each message has its own";
}

TEST_F(LogDuration, NullTextIsAllowed) {
  { qvLogDuration theDuration(QVLOGLEVEL_ERROR, 0, kqvLogDuration_Run, nullptr); }
  EXPECT_EQ("Running: (nil)\n", Texts().front());
}

TEST_F(LogDuration, UnknownKindCountsAsStart) {
  for (int theKind : {7, -1, 1000000}) {
    sMessages.clear();
    { qvLogDuration theDuration(QVLOGLEVEL_ERROR, 0, theKind, qvStrdup("x")); }
    EXPECT_EQ("Starting: x\n", Texts().front());
  }
}

TEST_F(LogDuration, FieldsStandInOrder) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
  EXPECT_EQ(0u, offsetof(qvLogDuration, mLogLevel));
  EXPECT_EQ(2u, offsetof(qvLogDuration, mLogModule));
  EXPECT_EQ(4u, offsetof(qvLogDuration, mLogType));
  EXPECT_EQ(8u, offsetof(qvLogDuration, mText));
  EXPECT_EQ(8u + sizeof(void*), offsetof(qvLogDuration, mfStarted));
  EXPECT_LT(offsetof(qvLogDuration, mfStarted), offsetof(qvLogDuration, mChrono));
#pragma GCC diagnostic pop
}

TEST_F(LogDuration, FormattedTextIsCutTo255Bytes) {
  char* theText = qvLogDuration::qvLogDuration_F("%s-%d", "a", 7);
  EXPECT_STREQ("a-7", theText);
  qvFree(theText);
  theText = qvLogDuration::qvLogDuration_F("%s", std::string(255, 'x').c_str());
  EXPECT_EQ(std::string(255, 'x'), theText);
  qvFree(theText);
  theText = qvLogDuration::qvLogDuration_F("%s", std::string(256, 'x').c_str());
  EXPECT_EQ(std::string(255, 'x'), theText);
  qvFree(theText);
}

TEST_F(LogDuration, FormattedTextMayBeEmpty) {
  char* theText = qvLogDuration::qvLogDuration_F("%s", "");
  EXPECT_STREQ("", theText);
  qvFree(theText);
}

TEST_F(LogDuration, WrongFormatGivesQuestionMarks) {
  const char* theFormat = "%d %";  // not a literal: the compiler would refuse it
  char* theText = qvLogDuration::qvLogDuration_F(theFormat, 1);
  EXPECT_STREQ("????", theText);
  qvFree(theText);
}

TEST_F(LogDuration, FieldsHoldWhatWasGivenWhetherItIsLoggedOrNot) {
  for (qvLogLevel theLevel : {4, 6}) {  // below the threshold and above it
    char* theText = qvStrdup("x");
    qvLogDuration theDuration(theLevel, QVLOG_M_DEMUX, kqvLogDuration_InOut, theText);
    EXPECT_EQ(theLevel, theDuration.mLogLevel);
    EXPECT_EQ(QVLOG_M_DEMUX, theDuration.mLogModule);
    EXPECT_EQ(6, theDuration.mLogType);
    EXPECT_EQ(theText, theDuration.mText);
    EXPECT_EQ(theLevel == 4, theDuration.mfStarted);
  }
}

TEST_F(LogDuration, MessagesThatStartAtLevelZeroAreNeverLogged) {
  { qvLogDuration theDuration(QVLOGLEVEL_NONE, 0, kqvLogDuration_Run, qvStrdup("x")); }
  EXPECT_TRUE(sMessages.empty());
}

TEST_F(LogDuration, TheTimeThatTheStartMessageTakesDoesNotCount) {
  RecordingLogger theLogger(5);
  qvULongLong theEndOfTheMessage = qvULongLong_Init(0, 0);
  theLogger.mOnAppend = [&] {
    qvULongLong theBegin;
    qvChrono_S_GetTimeMS(&theBegin);
    do {
      qvChrono_S_GetTimeMS(&theEndOfTheMessage);
    } while (qvULongLong_Equal(&theBegin, &theEndOfTheMessage));
    theLogger.mOnAppend = nullptr;
  };
  qvLogDuration theDuration(QVLOGLEVEL_ERROR, 0, kqvLogDuration_Run, qvStrdup("x"));
  EXPECT_FALSE(qvULongLong_Less(&theDuration.mChrono.mStartTime, &theEndOfTheMessage));
}

TEST_F(LogDuration, StatementsMakeScopedObjects) {
  {
    QVLOG_START(TUNER, F("channel %d", 7));
    QVLOG_LOAD(STORAGE, F("list"));
    EXPECT_THAT(Texts(), testing::ElementsAre("Starting: channel 7\n", "Loading: list\n"));
  }
  ASSERT_EQ(4u, sMessages.size());
  EXPECT_THAT(sMessages[2].mText, testing::StartsWith("Loaded : list ("));
  EXPECT_THAT(sMessages[3].mText, testing::StartsWith("Started : channel 7 ("));
  EXPECT_EQ(static_cast<unsigned>(QVLOG_M_STORAGE), sMessages[2].mModule);
  EXPECT_EQ(3u, sMessages[2].mLevel) << "information unless the unit says otherwise";
}

TEST_F(LogDuration, EachStatementHasItsKind) {
  {
    QVLOG_STOP(TUNER, F("a"));
    QVLOG_UNLOAD(TUNER, F("b"));
    QVLOG_RUN(TUNER, F("c"));
    QVLOG_DURATION(TUNER, F("d"));
  }
  EXPECT_THAT(Texts(), testing::ElementsAre(
                           "Stopping: a\n", "Unloading: b\n", "Running: c\n",
                           testing::StartsWith("Performed : d ("), testing::StartsWith("Done : c ("),
                           testing::StartsWith("Unloaded : b ("), testing::StartsWith("Stopped : a (")));
}

TEST_F(LogDuration, StatementWhoseLevelRisesWhileItBeginsStaysSilent) {
  qvLog_SetLogFunc(QVLOGLEVEL_WARNING, Remember, nullptr);
  auto raise = [] { qvLog_SetLogFunc(QVLOGLEVEL_DEBUG, Remember, nullptr); };
  { QVLOG_RUN(TUNER + (raise(), 0), F("x")); }
  EXPECT_THAT(Texts(), testing::IsEmpty()) << "its text has been left out already";
}

TEST_F(LogDuration, StatementThatIsOffEvaluatesNoArgument) {
  qvLog_SetLogFunc(QVLOGLEVEL_WARNING, Remember, nullptr);
  int theCount = 0;
  { QVLOG_RUN(TUNER, F("%d", ++theCount)); }
  EXPECT_EQ(0, theCount);
  EXPECT_TRUE(sMessages.empty());
}

}  // namespace
