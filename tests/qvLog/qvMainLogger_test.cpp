#include "qvLog/qvMainLogger_p.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdio.h>

#include "support/ClassLayout.h"
#include "support/RecordingLogger.h"

namespace {

using testing::ElementsAre;

// A logger that notes which of its operations is called with what.
class CallNotingLogger : public RecordingLogger {
 public:
  explicit CallNotingLogger(qvLogLevel aThreshold) : RecordingLogger(aThreshold) {}

  bool BeginLog(qvLogDataEx*) override {
    mCalls.push_back("BeginLog");
    return mfTakes;
  }
  void Append_F(qvLogDataEx*, const char* aFormat, ...) override {
    mCalls.push_back(std::string("Append_F ") + aFormat);
  }
  void Append_VF(qvLogDataEx* aRecord, const char* aFormat, va_list) override {
    mCalls.push_back(std::string("Append_VF ") + aFormat);
    mFormattedLens.push_back(aRecord->mFormattedLen);
    aRecord->mFormattedLen = 77;
  }
  void Append_VFML(qvLogDataEx* aRecord, const char* aFormat, va_list) override {
    mCalls.push_back(std::string("Append_VFML ") + aFormat);
    mFormattedLens.push_back(aRecord->mFormattedLen);
    aRecord->mFormattedLen = 77;
  }
  void Append_B(qvLogDataEx* aRecord, const void* aBuffer, size_t aLength) override {
    mCalls.push_back("Append_B " + std::string(static_cast<const char*>(aBuffer), aLength));
    mFormattedLens.push_back(aRecord->mFormattedLen);
  }
  void Append_U(qvLogDataEx* aRecord, const wchar_t* aText, size_t aLength) override {
    mCalls.push_back("Append_U " + std::string(aText, aText + aLength));
    mFormattedLens.push_back(aRecord->mFormattedLen);
  }
  void EndLog(qvLogDataEx*) override { mCalls.push_back("EndLog"); }
  void ReloadConfig() override { mCalls.push_back("ReloadConfig"); }

  std::vector<std::string> mCalls;
  std::vector<uint32> mFormattedLens;  // what the record held at each append
};

qvMainLogger* Main() {
  qvMainLogger* theLogger = qvMainLogger::Current();
  EXPECT_NE(nullptr, theLogger);
  return theLogger;
}

}  // namespace

TEST(qvMainLogger, TheFieldsAreInOrder) {
  EXPECT_EQ(0u, offsetof(qvMainLogger, mLogData));
  EXPECT_EQ(sizeof(void*), offsetof(qvMainLogger, mIndentLevel));
  EXPECT_EQ(ByPointerSize(8, 16), sizeof(qvMainLogger));
}

TEST(qvMainLogger, ANewMainLoggerHasNoMessageAndNoIndentation) {
  RecordingLogger theLogger(1);  // initialises the framework
  EXPECT_EQ(nullptr, Main()->mLogData);
  EXPECT_EQ(0u, Main()->mIndentLevel);
}

TEST(qvMainLogger, SetupClosesTheGate) {
  RecordingLogger theLogger(7);
  EXPECT_EQ(7, _qvLog_Level);
  Main()->Setup();
  EXPECT_EQ(0, _qvLog_Level);
}

TEST(qvMainLogger, TheRecordIsKnownBetweenBeginAndEndOnly) {
  RecordingLogger theLogger(2);
  qvLogData* theData = qvLog_Begin(1, 0);
  EXPECT_EQ(theData, Main()->mLogData);
  qvLog_End(theData);
  EXPECT_EQ(nullptr, Main()->mLogData);
  theLogger.mfTakes = false;
  EXPECT_EQ(nullptr, qvLog_Begin(1, 0));
  EXPECT_EQ(nullptr, Main()->mLogData);
}

TEST(qvMainLogger, AMessageThatNobodyTakesLeavesTheOneThatIsBeingBuiltAsItIs) {
  RecordingLogger theLogger(2);
  qvLogDataEx theOuter = {};
  qvLogDataEx theInner = {};
  Main()->mLogData = &theOuter;
  theLogger.mfTakes = false;
  EXPECT_FALSE(Main()->BeginLog(&theInner));
  EXPECT_EQ(1, theLogger.mBegins);
  EXPECT_EQ(&theOuter, Main()->mLogData);
  Main()->mLogData = nullptr;
}

TEST(qvMainLogger, EveryOperationReachesEveryLoggerThatTakesTheMessageInChainOrder) {
  static std::string sOrder;
  struct Named : RecordingLogger {
    Named(const char* aName, qvLogLevel aThreshold) : RecordingLogger(aThreshold, true, aName) {}
    bool BeginLog(qvLogDataEx*) override { return Note("b"); }
    void Append_VF(qvLogDataEx*, const char*, va_list) override { Note("f"); }
    void EndLog(qvLogDataEx*) override { Note("e"); }
    bool Note(const char* aCall) {
      sOrder += std::string(aCall) + mName + " ";
      return true;
    }
  };
  Named theOldest("1", 3);
  Named theClosed("2", 2);
  Named theNewest("3", 3);
  LogText(2, 0, "x");
  EXPECT_EQ("b3 b1 f3 f1 e3 e1 ", sOrder);
}

TEST(qvMainLogger, ALoggerThatIsClosedOrSilentForTheModuleIsLeftOutOfEveryOperation) {
  CallNotingLogger theOldest(2);
  CallNotingLogger theSilent(2);
  CallNotingLogger theClosed(1);
  CallNotingLogger theNewest(2);
  theSilent.mInactiveModules = {9};
  qvLogData* theData = qvLog_Begin(1, 9);
  qvLog_Append_F("f%d", 1);
  qvLog_Append_FML("fml%d", 1);
  qvLog_Append_FN("fn%d", 1);
  qvLog_Append_B("bytes", 5);
  qvLog_Append_U(L"wide", 4);
  qvLog_End(theData);
  EXPECT_THAT(theSilent.mCalls, ElementsAre());
  EXPECT_THAT(theClosed.mCalls, ElementsAre());
  for (CallNotingLogger* theLogger : {&theOldest, &theNewest}) {
    EXPECT_THAT(theLogger->mCalls,
                ElementsAre("BeginLog", "Append_VF f%d", "Append_VFML fml%d", "Append_VF fn%d", "Append_F \n",
                            "Append_B bytes", "Append_U wide", "EndLog"));
  }
}

TEST(qvMainLogger, ALoggerBelowItsThresholdIsNotAskedForTheModuleOfAMessage) {
  RecordingLogger theClosed(1);
  RecordingLogger theOpen(2);
  LogText(1, 0, "x");
  EXPECT_EQ(0, theClosed.mModuleQuestions);
  EXPECT_LT(0, theOpen.mModuleQuestions);
}

TEST(qvMainLogger, ALoggerThatRefusesTheBeginningStillGetsTheRest) {
  CallNotingLogger theRefusing(2);
  CallNotingLogger theTaking(2);
  theRefusing.mfTakes = false;
  LogText(1, 0, "x");
  EXPECT_THAT(theRefusing.mCalls, ElementsAre("BeginLog", "Append_VF %s", "EndLog"));
}

TEST(qvMainLogger, EveryLoggerIsAskedToBeginAlsoAfterOneHasTakenTheMessage) {
  CallNotingLogger theOld(2);
  CallNotingLogger theNew(2);
  LogText(1, 0, "x");
  EXPECT_EQ("BeginLog", theOld.mCalls[0]);
  EXPECT_EQ("BeginLog", theNew.mCalls[0]);
}

TEST(qvMainLogger, TheGateOfALoggerIsEvaluatedForEveryCall) {
  CallNotingLogger theLogger(2);
  CallNotingLogger theOther(2);
  qvLogData* theData = qvLog_Begin(1, 0);
  theLogger.mLevel = 1;
  qvLog_Append_F("%d", 1);
  theLogger.mLevel = 2;
  qvLog_Append_F("%d.", 2);
  qvLog_End(theData);
  EXPECT_THAT(theLogger.mCalls, ElementsAre("BeginLog", "Append_VF %d.", "EndLog"));
}

TEST(qvMainLogger, FormattedAppendsStartWithAnEmptySharedTextAndTheOthersLeaveItAlone) {
  CallNotingLogger theLogger(2);
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_F("%d", 1);
  qvLog_Append_F("%d", 1);
  qvLog_Append_FML("%d", 1);
  qvLog_Append_FN("%d", 1);
  qvLog_Append_B("x", 1);
  qvLog_Append_U(L"x", 1);
  qvLog_End(theData);
  EXPECT_THAT(theLogger.mFormattedLens, ElementsAre(0u, 0u, 0u, 0u, 77u, 77u));
}

TEST(qvMainLogger, EachAppendReachesItsOperationOfTheLogger) {
  CallNotingLogger theLogger(2);
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_F("f%d", 1);
  qvLog_Append_FML("fml%d", 1);
  qvLog_Append_B("bytes", 5);
  qvLog_Append_U(L"wide", 4);
  qvLog_End(theData);
  EXPECT_THAT(theLogger.mCalls, ElementsAre("BeginLog", "Append_VF f%d", "Append_VFML fml%d",
                                            "Append_B bytes", "Append_U wide", "EndLog"));
}

TEST(qvMainLogger, AnIndentedLineIsTabsTextAndLineEndOnEachLogger) {
  CallNotingLogger theFirst(2);
  CallNotingLogger theSecond(2);
  Main()->Indent();
  Main()->Indent();
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_FN("word");
  qvLog_End(theData);
  for (CallNotingLogger* theLogger : {&theFirst, &theSecond}) {
    EXPECT_THAT(theLogger->mCalls, ElementsAre("BeginLog", "Append_F \t", "Append_F \t", "Append_VF word",
                                               "Append_F \n", "EndLog"));
  }
  Main()->Unindent();
  Main()->Unindent();
}

TEST(qvMainLogger, AnIndentedLineReadsTheSameOnEveryLogger) {
  RecordingLogger theFirst(2);
  RecordingLogger theSecond(2);
  Main()->Indent();
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_FN("%d %s", 12, "words");
  qvLog_End(theData);
  EXPECT_EQ("\t12 words\n", theFirst.mMessages.back());
  EXPECT_EQ("\t12 words\n", theSecond.mMessages.back());
  Main()->Unindent();
}

TEST(qvMainLogger, UnindentingStopsAtZero) {
  RecordingLogger theLogger(1);
  for (int i = 0; i < 3; ++i) {
    Main()->Indent();
  }
  EXPECT_EQ(3u, Main()->mIndentLevel);
  for (int i = 0; i < 4; ++i) {
    Main()->Unindent();
  }
  EXPECT_EQ(0u, Main()->mIndentLevel);
}

TEST(qvMainLogger, AReloadReachesEveryLoggerWhateverItsThreshold) {
  CallNotingLogger theClosed(0);
  CallNotingLogger theOpen(65535);
  qvLog_ReloadConfig();
  EXPECT_THAT(theClosed.mCalls, ElementsAre("ReloadConfig"));
  EXPECT_THAT(theOpen.mCalls, ElementsAre("ReloadConfig"));
}

TEST(qvMainLogger, AHigherThresholdRaisesTheGate) {
  RecordingLogger theFirst(2);
  EXPECT_EQ(2, _qvLog_Level);
  RecordingLogger theSecond(4);
  EXPECT_EQ(4, _qvLog_Level);
  theFirst.Threshold(65535);
  EXPECT_EQ(65535, _qvLog_Level);
}

TEST(qvMainLogger, ALowerThresholdLowersTheGateToTheHighestThatIsLeft) {
  RecordingLogger theFirst(2);
  RecordingLogger theSecond(4);
  theSecond.Threshold(1);
  EXPECT_EQ(2, _qvLog_Level);
}

TEST(qvMainLogger, LoweringAThresholdBelowTheOthersKeepsTheGate) {
  RecordingLogger theFirst(6);
  RecordingLogger theSecond(4);
  theSecond.Threshold(1);
  EXPECT_EQ(6, _qvLog_Level);
}

TEST(qvMainLogger, AThresholdThatEqualsTheGateLeavesItAlone) {
  RecordingLogger theFirst(2);
  qvLogger::LockFramework();
  theFirst.mLevel = 9;
  qvLogger::UnlockFramework();
  RecordingLogger theSecond(2);
  EXPECT_EQ(2, _qvLog_Level);
}

TEST(qvMainLogger, AThresholdOutsideTheChainMovesTheGateToo) {
  RecordingLogger theFirst(2);
  RecordingLogger theStranger(6, false);
  EXPECT_EQ(6, _qvLog_Level);
  theStranger.Threshold(4);
  EXPECT_EQ(4, _qvLog_Level);
  theStranger.Threshold(1);
  EXPECT_EQ(2, _qvLog_Level);
}

TEST(qvLogKept, RemovingALoggerLeavesTheGateWhereItIs) {
  RecordingLogger* theFirst = new RecordingLogger(2);
  RecordingLogger theSecond(4);
  theSecond.Threshold(1);
  EXPECT_EQ(2, _qvLog_Level) << "a threshold lowers it";
  delete theFirst;
  EXPECT_EQ(2, _qvLog_Level) << "a logger that goes does not";
  theSecond.Threshold(0);
  EXPECT_EQ(0, _qvLog_Level) << "until the next threshold does";
}

TEST(qvMainLogger, TheDestructorFreesTheBufferButKeepsItsSize) {
  RecordingLogger theLogger(2);
  ASSERT_NE(nullptr, _qvLog_gData.mFormatted);
  ASSERT_EQ(1, _gfqvLog_gDataInitialized);
  delete new qvMainLogger;
  EXPECT_EQ(nullptr, _qvLog_gData.mFormatted);
  EXPECT_EQ(0, _gfqvLog_gDataInitialized);
  EXPECT_EQ(1024, _qvLog_gData.mSizeofFormatted);
}

TEST(qvMainLogger, TheDestructorLeavesABufferAloneThatIsNotInitialised) {
  RecordingLogger theLogger(2);
  char* theBuffer = _qvLog_gData.mFormatted;
  ASSERT_NE(nullptr, theBuffer);
  _gfqvLog_gDataInitialized = 0;
  delete new qvMainLogger;
  EXPECT_EQ(theBuffer, _qvLog_gData.mFormatted);
  _gfqvLog_gDataInitialized = 1;
}

TEST(qvMainLogger, WithoutABufferTheDestructorLeavesItInitialised) {
  RecordingLogger theLogger(2);
  char* theBuffer = _qvLog_gData.mFormatted;
  _qvLog_gData.mFormatted = nullptr;
  delete new qvMainLogger;
  EXPECT_EQ(1, _gfqvLog_gDataInitialized);
  _qvLog_gData.mFormatted = theBuffer;
}

TEST(qvMainLogger, ALoggerMayLeaveTheChainWhileItIsCalled) {
  RecordingLogger theOld(2);
  RecordingLogger theLeaving(2);
  theLeaving.mOnAppend = [&] { qvLogger::RemoveLogger(&theLeaving); };
  EXPECT_TRUE(LogText(1, 0, "x"));
  EXPECT_THAT(theOld.mMessages, ElementsAre("x"));
  EXPECT_TRUE(theLeaving.mMessages.empty());
}
