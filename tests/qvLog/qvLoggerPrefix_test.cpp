// The prefix of a log line: qvLog/qvLoggerPrefix.cpp.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <time.h>

#include "qvLog/qvLoggerConfig_p.h"
#include "qvLog/qvLogger_Func.h"
#include "qvLog/qvMainLogger_p.h"
#include "support/LogProgram.h"
#include "support/RecordingLogger.h"

namespace {

using testing::MatchesRegex;
using testing::StartsWith;

// The prefix of a message of this level and module.
std::string PrefixOf(qvLogLevel aLevel, qvLogModule aModule) {
  RecordingLogger theLogger(65535);
  theLogger.mfWritesPrefix = true;
  EXPECT_TRUE(LogText(aLevel, aModule, "x"));
  std::string theText = theLogger.mMessages.empty() ? "" : theLogger.mMessages[0];
  EXPECT_EQ('x', theText.empty() ? '\0' : theText.back());
  theText.resize(theText.empty() ? 0 : theText.size() - 1);
  return theText;
}

std::string LocalTime(time_t aTime, const char* aFormat) {
  char theText[64];
  struct tm theLocal;
  localtime_r(&aTime, &theLocal);
  strftime(theText, sizeof(theText), aFormat, &theLocal);
  return theText;
}

// A record with the framework's buffer, and without a stamp.
qvLogDataEx InfoRecord() {
  qvLogDataEx theRecord = {};
  theRecord.mFormatted = _qvLog_gData.mFormatted;
  theRecord.mSizeofFormatted = _qvLog_gData.mSizeofFormatted;
  theRecord.mLevel = QVLOGLEVEL_INFO;
  return theRecord;
}

}  // namespace

TEST(qvLoggerPrefix, APrefixIsLetterTimeThreadAndModule) {
  EXPECT_THAT(PrefixOf(3, 0),
              MatchesRegex("I [0-9][0-9]:[0-9][0-9]:[0-9][0-9]:[0-9][0-9][0-9]\\|[0-9a-f]{8}\\|DEFAULT    "));
}

TEST(qvLoggerPrefix, TheLetterFollowsTheLevel) {
  EXPECT_THAT(PrefixOf(0, 0), StartsWith("E "));
  EXPECT_THAT(PrefixOf(1, 0), StartsWith("E "));
  EXPECT_THAT(PrefixOf(2, 0), StartsWith("W "));
  EXPECT_THAT(PrefixOf(3, 0), StartsWith("I "));
  EXPECT_THAT(PrefixOf(4, 0), StartsWith("D "));
  EXPECT_THAT(PrefixOf(5, 0), StartsWith("D "));
  EXPECT_THAT(PrefixOf(65534, 0), StartsWith("D "));
}

TEST(qvLoggerPrefix, ThePiecesReachTheSinkInOrder) {
  RecordingLogger theLogger(2);
  theLogger.mfWritesPrefix = true;
  LogText(1, 0, "x");
  ASSERT_EQ(9u, theLogger.mPieces.size());
  EXPECT_EQ("E ", theLogger.mPieces[0]);
  EXPECT_EQ(12u, theLogger.mPieces[1].size());
  EXPECT_EQ("|", theLogger.mPieces[2]);
  EXPECT_EQ(8u, theLogger.mPieces[3].size());
  EXPECT_EQ("|", theLogger.mPieces[4]);
  EXPECT_EQ("DEFAULT", theLogger.mPieces[5]);
  EXPECT_EQ("   ", theLogger.mPieces[6]);
  EXPECT_EQ(" ", theLogger.mPieces[7]);
  EXPECT_EQ("x", theLogger.mPieces[8]);
}

TEST(qvLoggerPrefix, ALoggerMayReplaceThePartsOfThePrefix) {
  struct PartsLogger : RecordingLogger {
    PartsLogger() : RecordingLogger(2, false) {}
    void Append_LogTime(qvLogDataEx*) override { mPieces.push_back("time"); }
    void Append_ThreadNameOrId(qvLogDataEx*) override { mPieces.push_back("thread"); }
    void Append_ProcessNameOrId(qvLogDataEx*) override { mPieces.push_back("process"); }
    void Append_LogModule(qvLogDataEx*) override { mPieces.push_back("module"); }
  };
  PartsLogger theLogger;
  qvLogDataEx theRecord = {};
  theRecord.mLevel = QVLOGLEVEL_WARNING;
  theLogger.GenerateBeginLine(&theRecord);
  EXPECT_THAT(theLogger.mPieces, testing::ElementsAre("W ", "time", "|", "thread", "|", "module", " "));
}

TEST(qvLoggerPrefix, ALoggerDerivedFromOneOfTheLibraryMayReplaceThemToo) {
  struct PartsLogger : qvFuncLogger {
    PartsLogger() : qvFuncLogger(false) {}
    void Append_LogTime(qvLogDataEx* aRecord) override { Append_S(aRecord, "time", 4); }
  };
  PartsLogger theLogger;
  qvLogDataEx theRecord = {};
  theRecord.mLevel = QVLOGLEVEL_WARNING;
  theLogger.GenerateBeginLine(&theRecord);
  EXPECT_THAT(std::string(theLogger.mStr, theLogger.mStrLen), StartsWith("W time|"));
}

TEST(qvLoggerPrefix, TheThreadIsTheLoggingThread) {
  EXPECT_EQ(std::string(qvLogger::CurrentThreadName()), PrefixOf(1, 0).substr(15, 8));
}

TEST(qvLoggerPrefix, ANameOfTenCharactersHasNoPadding) {
  ASSERT_EQ(22, QVLOG_M_PES_HEADER);
  ASSERT_EQ(49, QVLOG_M_AUDIO_SINK);
  EXPECT_EQ("|AUDIO_SINK ", PrefixOf(1, QVLOG_M_AUDIO_SINK).substr(23));
}

TEST(qvLoggerPrefix, AShorterNameIsPaddedToTenColumns) {
  EXPECT_EQ("|FAN        ", PrefixOf(1, QVLOG_M_FAN).substr(23));
  EXPECT_EQ("|TRANSPORT  ", PrefixOf(1, QVLOG_M_TRANSPORT).substr(23));
}

TEST(qvLoggerPrefix, ALongerNameIsCutAtTenColumns) {
  EXPECT_EQ("|AUDIO_DECO ", PrefixOf(1, QVLOG_M_AUDIO_DECODER).substr(23));
}

TEST(qvLoggerPrefix, AnUnnamedModulePrintsItsNumberInTenDigits) {
  EXPECT_EQ("|0000000170 ", PrefixOf(1, 170).substr(23));
  EXPECT_EQ("|0000065535 ", PrefixOf(1, 65535).substr(23));
}

// The library's own loggers get a prefix in one piece.
TEST(qvLoggerPrefix, TheLibrarysLoggersHaveTheSamePrefixForEveryModule) {
  qvFuncLogger theLogger(false);
  for (qvLogModule theModule : {0, 1, 28, 100, 150, 151, 170, 200, 261, 262, 511, 512, 65535}) {
    qvLogDataEx theRecord = {};
    theRecord.mFormatted = _qvLog_gData.mFormatted;
    theRecord.mSizeofFormatted = _qvLog_gData.mSizeofFormatted;
    theRecord.mLevel = QVLOGLEVEL_INFO;
    theRecord.mModule = theModule;
    theLogger.mStrLen = 0;
    theLogger.GenerateBeginLine(&theRecord);
    EXPECT_EQ(PrefixOf(QVLOGLEVEL_INFO, theModule).substr(14), std::string(theLogger.mStr + 14)) << theModule;
  }
}

TEST(qvLoggerPrefix, TheTimeIsTheLocalTimeOfTheMessage) {
  setenv("TZ", "XYZ-05:45", 1);
  tzset();
  time_t theBefore = time(nullptr);
  std::string theTime = PrefixOf(1, 0).substr(2, 8);
  time_t theAfter = time(nullptr);
  bool theFound = false;
  for (time_t t = theBefore - 1; t <= theAfter + 1; ++t) {
    theFound = theFound || LocalTime(t, "%H:%M:%S") == theTime;
  }
  EXPECT_TRUE(theFound) << theTime;
}

TEST(qvLoggerPrefix, WithDatesSwitchedOnTheTimeFollowsTheDate) {
  RecordingLogger theLogger(2);
  theLogger.mfWritesPrefix = true;
  _gfDateActivate = 1;
  time_t theBefore = time(nullptr);
  LogText(1, 0, "x");
  time_t theAfter = time(nullptr);
  _gfDateActivate = 0;
  std::string theStamp = theLogger.mPieces[1];
  EXPECT_THAT(theStamp, MatchesRegex("[0-9]{2}/[0-9]{2}/[0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2}:[0-9]{3}"));
  bool theFound = false;
  for (time_t t = theBefore - 1; t <= theAfter + 1; ++t) {
    theFound = theFound || LocalTime(t, "%m/%d/%Y %H:%M:%S") == theStamp.substr(0, 19);
  }
  EXPECT_TRUE(theFound) << theStamp;
}

TEST(qvLoggerPrefix, TheStampIsMadeOncePerMessage) {
  RecordingLogger theLogger(2, false);
  qvLogDataEx theRecord = {};
  strcpy(theRecord.mTimeStr, "what the first logger made");
  theRecord.mTimeStrLen = 4;
  theLogger.Append_LogTime(&theRecord);
  EXPECT_EQ("what", theLogger.mText);
}

TEST(qvLoggerPrefix, TheLaterLinesOfAMessageHaveTheStampOfTheFirst) {
  RecordingLogger theLogger(2);
  theLogger.mfWritesPrefix = true;
  qvLogDataEx* theRecord = static_cast<qvLogDataEx*>(qvLog_Begin(1, 0));
  ASSERT_NE(nullptr, theRecord);
  strcpy(theRecord->mTimeStr, "99:99:99:999");  // no clock makes this one
  qvLog_Append_FML("one\ntwo\n");
  qvLog_End(theRecord);
  EXPECT_THAT(theLogger.mMessages[0], testing::HasSubstr("one\nE 99:99:99:999|"));
}

TEST(qvLoggerPrefix, TheLibrarysLoggersTakeTheStampThatTheFirstLoggerMade) {
  qvFuncLogger theLogger(false);
  qvLogDataEx theRecord = InfoRecord();
  strcpy(theRecord.mTimeStr, "99:99:99:999");
  theRecord.mTimeStrLen = 12;
  theLogger.GenerateBeginLine(&theRecord);
  EXPECT_THAT(theLogger.mStr, StartsWith("I 99:99:99:999|"));
}

TEST(qvLoggerPrefix, BeforeTheBufferIsInitialisedThePrefixOfTheLibrarysLoggersHasNoThread) {
  qvFuncLogger theLogger(false);
  qvLogDataEx theRecord = InfoRecord();
  _gfqvLog_gDataInitialized = 0;
  theLogger.GenerateBeginLine(&theRecord);
  _gfqvLog_gDataInitialized = 1;
  EXPECT_THAT(std::string(theLogger.mStr, theLogger.mStrLen), MatchesRegex("I [0-9:]{12}\\|\\|DEFAULT    "));
}

TEST(qvLoggerPrefix, TheStampIsKeptInTheRecordWithItsLength) {
  RecordingLogger theLogger(2, false);
  qvLogDataEx theRecord = {};
  theLogger.Append_LogTime(&theRecord);
  EXPECT_EQ(12u, theRecord.mTimeStrLen);
  EXPECT_EQ(theLogger.mText, theRecord.mTimeStr);
}

TEST(qvLoggerPrefix, TheProcessNameIsNotPartOfThePrefixButCanBeAppended) {
  RecordingLogger theLogger(2);
  theLogger.mfWritesPrefix = true;
  qvLogData* theData = qvLog_Begin(1, 0);
  EXPECT_EQ(std::string::npos, theLogger.mText.find("qvLoggerPrefix_test"));
  theLogger.mText.clear();
  theLogger.Append_ProcessNameOrId(static_cast<qvLogDataEx*>(theData));
  EXPECT_EQ("qvLoggerPrefix_test", theLogger.mText);
  qvLog_End(theData);
}

namespace {

// The stamps of the lines on standard error.
std::vector<std::string> Stamps(const std::vector<std::string>& anOperations) {
  LogProgram theProgram;
  theProgram.Configure("[file]\nlevel=all\n");
  std::string theText = theProgram.Run(anOperations).mStderr;
  std::vector<std::string> theStamps;
  for (size_t theFound = theText.find("\nE "); theFound != std::string::npos;
       theFound = theText.find("\nE ", theFound + 1)) {
    theStamps.push_back(theText.substr(theFound + 3, 12));
  }
  return theStamps;
}

}  // namespace

TEST(qvLoggerPrefix, TheStampHasTheMillisecondsOfTheMessage) {
  EXPECT_EQ(
      std::vector<std::string>({"14:03:07:042", "14:03:07:000", "14:03:07:999", "14:03:08:001"}),
      Stamps({"clock", "1709647387", "42999",  "log", "1", "0", "x\n",  // microseconds are cut, not rounded
              "clock", "1709647387", "0",      "log", "1", "0", "x\n",  // the first millisecond
              "clock", "1709647387", "999999", "log", "1", "0", "x\n",  // the last one
              "clock", "1709647388", "1000",   "log", "1", "0", "x\n"}));  // the next second
}

TEST(qvLoggerPrefix, AStampGoesBackWithTheClock) {
  EXPECT_EQ(std::vector<std::string>({"14:03:07:042", "14:03:06:042"}),
            Stamps({"clock", "1709647387", "42000", "log", "1", "0", "x\n", "clock", "1709647386", "42000",
                    "log", "1", "0", "x\n"}));
}

TEST(qvLoggerPrefix, AChangeOfTheTimeZoneShowsInTheSameSecond) {
  EXPECT_EQ(std::vector<std::string>({"14:03:07:000", "15:03:07:000", "16:03:07:000", "14:03:07:000"}),
            Stamps({"clock", "1709647387", "0", "log", "1",    "0",     "x\n", "zone", "ABC-1",
                    "log",   "1",          "0", "x\n", "zone", "ABC-2", "log", "1",    "0",
                    "x\n",   "zone",       "",  "log", "1",    "0",     "x\n"}));
}

TEST(qvLoggerPrefix, ATimeZoneThatComesOrGoesShowsInTheSameSecond) {
  unsetenv("TZ");
  tzset();
  std::string theSystems = LocalTime(1709647387, "%H:%M:%S") + ":000";
  EXPECT_EQ(std::vector<std::string>({theSystems, "19:48:07:000", theSystems}),
            Stamps({"clock", "1709647387", "0", "nozone", "log", "1", "0", "x\n", "zone", "XYZ-05:45", "log",
                    "1", "0", "x\n", "nozone", "log", "1", "0", "x\n"}));
}

TEST(qvLoggerPrefix, DatesThatAreSwitchedOnShowInTheSameSecond) {
  LogProgram theProgram;
  theProgram.Configure("[options]\npopulate=0\n[file]\nlevel=all\n");
  std::string theText =
      theProgram
          .Run({"clock", "1709647387", "0", "log", "1", "0", "x\n", "write", "qvLog.box.ini",
                std::string(kNoLogDaemon) + "[options]\npopulate=0\ndate=on\n[file]\nlevel=all\n", "term",
                "log", "1", "0", "x\n"})
          .mStderr;
  EXPECT_THAT(theText, testing::HasSubstr("\nE 14:03:07:000|"));
  EXPECT_THAT(theText, testing::HasSubstr("\nE 03/05/2024 14:03:07:000|"));
}

TEST(qvLoggerPrefix, ATimeZoneWithALongNameIsFollowedToo) {
  std::string theName(80, 'A');
  EXPECT_EQ(std::vector<std::string>({"15:03:07:000", "16:03:07:000"}),
            Stamps({"clock", "1709647387", "0", "zone", "<" + theName + ">-1", "log", "1", "0", "x\n", "zone",
                    "<" + theName + ">-2", "log", "1", "0", "x\n"}));
}
