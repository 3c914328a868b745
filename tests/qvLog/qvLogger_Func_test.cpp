#include "qvLog/qvLogger_Func.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/ChildProcess.h"
#include "support/ClassLayout.h"
#include "support/LogProgram.h"
#include "support/RecordingLogger.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;

struct Received {
  std::vector<std::string> mTexts;
  std::vector<qvLogData> mRecords;
  const char* mLastText = nullptr;
};

void Receive(void* aCookie, const qvLogData* aData, const char* aText, size_t aLength) {
  Received* theReceived = static_cast<Received*>(aCookie);
  theReceived->mTexts.push_back(aLength > 0 ? std::string(aText, aLength) : std::string());
  theReceived->mRecords.push_back(*aData);
  theReceived->mLastText = aText;
}

// Functions of their own that do the same.
void ReceiveF(void* aCookie, const qvLogData* aData, const char* aText, size_t aLength) {
  Receive(aCookie, aData, aText, aLength);
}
void ReceiveG(void* aCookie, const qvLogData* aData, const char* aText, size_t aLength) {
  Receive(aCookie, aData, aText, aLength);
}

// Each test starts and ends without a callback logger.
class qvFuncLoggerTest : public testing::Test {
 protected:
  ~qvFuncLoggerTest() override { qvLog_Term(); }
};
using qvFuncLoggerKept = qvFuncLoggerTest;

qvFuncLogger* Instance() { return qvFuncLogger::sInstance; }

}  // namespace

TEST_F(qvFuncLoggerTest, AnEntryHasItsFieldsInOrder) {
  EXPECT_EQ(0u, offsetof(qvLoggerFuncEntry, mNext));
  EXPECT_EQ(ByPointerSize(4, 8), offsetof(qvLoggerFuncEntry, mLevel));
  EXPECT_EQ(ByPointerSize(8, 16), offsetof(qvLoggerFuncEntry, mFunc));
  EXPECT_EQ(ByPointerSize(12, 24), offsetof(qvLoggerFuncEntry, mCookie));
}

TEST_F(qvFuncLoggerTest, TheFieldsFollowTheBaseInOrder) {
  qvFuncLogger theLogger(false);
  EXPECT_EQ(ByPointerSize(532, 552), OffsetIn(theLogger, theLogger.mHead));
  EXPECT_EQ(ByPointerSize(536, 560), OffsetIn(theLogger, theLogger.mStrLen));
  EXPECT_EQ(ByPointerSize(540, 568), OffsetIn(theLogger, theLogger.mStr));
}

TEST_F(qvFuncLoggerTest, ANewLoggerIsClosedAndEmptyAndUsesNoConfiguration) {
  qvFuncLogger theLogger(false);
  EXPECT_STREQ("Func", theLogger.mName);
  EXPECT_EQ(&theLogger, Instance());
  EXPECT_EQ(0, theLogger.GetLevel());
  EXPECT_EQ(nullptr, theLogger.mHead);
  EXPECT_EQ(0u, theLogger.mStrLen);
  EXPECT_EQ(nullptr, theLogger.mStr);
  EXPECT_EQ(1u, theLogger.mOptions);
}

TEST_F(qvFuncLoggerTest, TheDestructorMakesRoomForAnother) {
  delete new qvFuncLogger(false);
  EXPECT_EQ(nullptr, Instance());
  delete new qvFuncLogger(false);
}

TEST_F(qvFuncLoggerTest, ASecondInstanceFailsAnAssertion) {
  EXPECT_QV_ASSERTION(
      {
        new qvFuncLogger(false);
        new qvFuncLogger(false);
      },
      "sInstance == NULL", "qvLogger_Func");
}

TEST_F(qvFuncLoggerTest, TheFirstRegistrationCreatesTheLoggerInTheChain) {
  qvLog_ReloadConfig();
  EXPECT_EQ(nullptr, Instance());
  Received theReceived;
  qvLog_SetLogFunc(2, Receive, &theReceived);
  ASSERT_NE(nullptr, Instance());
  EXPECT_EQ(Instance(), qvLogger::sHead);
  EXPECT_EQ(2, Instance()->GetLevel());
  EXPECT_EQ(2, _qvLog_Level);
}

TEST_F(qvFuncLoggerTest, UnregisteringBeforeAnyRegistrationCreatesNoLogger) {
  qvLog_SetLogFunc(0, ReceiveG, nullptr);
  EXPECT_EQ(nullptr, Instance());
}

TEST_F(qvFuncLoggerTest, ACallbackGetsTheTextWithoutPrefixAndTheRecord) {
  Received theReceived;
  qvLog_SetLogFunc(4, Receive, &theReceived);
  qvLogData* theData = qvLog_Begin(3, 7);
  theData->mFile = "file.c";
  theData->mLine = 5;
  qvLog_Append_F("%s ", "two");
  qvLog_Append_F("%s\n", "pieces");
  qvLog_End(theData);
  EXPECT_THAT(theReceived.mTexts, ElementsAre("two pieces\n"));
  EXPECT_EQ(3, theReceived.mRecords[0].mLevel);
  EXPECT_EQ(7, theReceived.mRecords[0].mModule);
  EXPECT_STREQ("file.c", theReceived.mRecords[0].mFile);
  EXPECT_EQ(5u, theReceived.mRecords[0].mLine);
}

TEST_F(qvFuncLoggerTest, EachMessageStartsEmpty) {
  Received theReceived;
  qvLog_SetLogFunc(4, Receive, &theReceived);
  LogText(1, 0, "a long first message");
  LogText(1, 0, "short");
  EXPECT_THAT(theReceived.mTexts, ElementsAre("a long first message", "short"));
}

TEST_F(qvFuncLoggerTest, ASilentModuleIsSilentForCallbacksToo) {
  Received theReceived;
  qvLog_SetLogFunc(4, Receive, &theReceived);
  EXPECT_FALSE(LogText(1, 4, "text"));
  EXPECT_TRUE(LogText(1, 5, "text"));
}

TEST_F(qvFuncLoggerTest, TheConfigurationSwitchesNoModule) {
  LogProgram theProgram;
  theProgram.Configure("[func]\nLOG_DEFAULT=0\nLOG_SCHEDULER=1\n");
  EXPECT_EQ("[one]\n", theProgram.Run({"func", "2", "log", "1", "0", "one", "log", "1", "4", "two"}).mStdout);
  EXPECT_THAT(theProgram.Populated(), Not(HasSubstr("[func]")));
}

TEST_F(qvFuncLoggerTest, RegisteringAFunctionAgainReplacesLevelAndCookie) {
  Received theFirst;
  Received theSecond;
  qvLog_SetLogFunc(3, Receive, &theFirst);
  qvLog_SetLogFunc(5, Receive, &theSecond);
  ASSERT_NE(nullptr, Instance()->mHead);
  EXPECT_EQ(nullptr, Instance()->mHead->mNext);
  EXPECT_EQ(5, Instance()->mHead->mLevel);
  EXPECT_EQ(&theSecond, Instance()->mHead->mCookie);
  EXPECT_EQ(5, Instance()->GetLevel());
  qvLog_SetLogFunc(3, Receive, &theSecond);
  EXPECT_EQ(3, Instance()->GetLevel()) << "a lower level the second time lowers the threshold";
}

TEST_F(qvFuncLoggerTest, RemovingTheMostVerboseCallbackLowersTheThreshold) {
  Received theReceived;
  qvLog_SetLogFunc(4, ReceiveF, &theReceived);
  qvLog_SetLogFunc(2, ReceiveG, &theReceived);
  EXPECT_EQ(4, Instance()->GetLevel());
  qvLog_SetLogFunc(0, ReceiveF, nullptr);
  EXPECT_EQ(2, Instance()->GetLevel());
  EXPECT_EQ(2, _qvLog_Level);
  qvLog_SetLogFunc(0, ReceiveG, nullptr);
  EXPECT_EQ(0, Instance()->GetLevel());
  EXPECT_NE(nullptr, Instance()) << "the last registration does not take the logger away";
}

TEST_F(qvFuncLoggerTest, TheListIsNewestFirstAndCallbacksAreCalledInItsOrder) {
  static std::string sOrder;
  qvLog_SetLogFunc(
      2, [](void*, const qvLogData*, const char*, size_t) { sOrder += "1"; }, nullptr);
  qvLog_SetLogFunc(
      2, [](void*, const qvLogData*, const char*, size_t) { sOrder += "2"; }, nullptr);
  LogText(1, 0, "x");
  EXPECT_EQ("21", sOrder);
}

TEST_F(qvFuncLoggerTest, AMessageReachesOnlyTheCallbacksWhoseThresholdIsAboveIt) {
  Received theVerbose;
  Received theTerse;
  qvLog_SetLogFunc(4, ReceiveF, &theVerbose);
  qvLog_SetLogFunc(2, ReceiveG, &theTerse);
  LogText(3, 0, "information");
  EXPECT_EQ(1u, theVerbose.mTexts.size());
  EXPECT_EQ(0u, theTerse.mTexts.size());
  LogText(2, 0, "warning");
  EXPECT_EQ(2u, theVerbose.mTexts.size());
  EXPECT_EQ(0u, theTerse.mTexts.size()) << "a level that equals the threshold does not pass";
  LogText(1, 0, "error");
  EXPECT_EQ(3u, theVerbose.mTexts.size());
  EXPECT_EQ(1u, theTerse.mTexts.size());
  qvLog_SetLogFunc(0, ReceiveF, nullptr);
}

TEST_F(qvFuncLoggerTest, AMessageThatNoCallbackWantsIsRefused) {
  Received theReceived;
  qvLog_SetLogFunc(2, Receive, &theReceived);
  qvLogDataEx theRecord = {};
  theRecord.mLevel = 2;
  EXPECT_FALSE(Instance()->BeginLog(&theRecord));
  theRecord.mLevel = 1;
  EXPECT_TRUE(Instance()->BeginLog(&theRecord));
}

TEST_F(qvFuncLoggerTest, AMessageWithoutTextCallsTheCallbackWithLengthZero) {
  Received theReceived;
  qvLog_SetLogFunc(2, Receive, &theReceived);
  qvLog_End(qvLog_Begin(1, 0));
  EXPECT_THAT(theReceived.mTexts, ElementsAre(""));
  LogText(1, 0, "text");
  qvLog_End(qvLog_Begin(1, 0));
  EXPECT_THAT(theReceived.mTexts, ElementsAre("", "text", ""));
}

TEST_F(qvFuncLoggerTest, TheTextPointerIsNullForAnEmptyVeryFirstMessage) {
  Received theReceived;
  qvLog_SetLogFunc(2, Receive, &theReceived);
  qvLog_End(qvLog_Begin(1, 0));
  EXPECT_EQ(nullptr, theReceived.mLastText);
}

TEST_F(qvFuncLoggerTest, TheByteBehindTheTextIsCopiedAsItsTerminator) {
  qvFuncLogger theLogger(false);
  qvLogDataEx theRecord = {};
  theLogger.Append_S(&theRecord, "abcdef", 3);
  EXPECT_EQ(3u, theLogger.mStrLen);
  EXPECT_STREQ("abcd", std::string(theLogger.mStr, 4).c_str());
  theLogger.Append_S(&theRecord, "xyz", 3);
  EXPECT_EQ(6u, theLogger.mStrLen);
  EXPECT_STREQ("abcxyz", theLogger.mStr);
}

TEST_F(qvFuncLoggerTest, ATextOfTheWholeBufferIsTerminatedByTheSpareByte) {
  Received theReceived;
  qvLog_SetLogFunc(2, Receive, &theReceived);
  LogText(1, 0, std::string(5000, 'a'));
  ASSERT_EQ(1u, theReceived.mTexts.size());
  EXPECT_EQ(std::string(1023, 'a') + '\0', theReceived.mTexts[0]);
  EXPECT_EQ('\0', theReceived.mLastText[1024]);
}

TEST_F(qvFuncLoggerTest, LoggersThatTakeTurnsAsTheInstanceHaveEachTheirOwnText) {
  qvFuncLogger theFirst(false);
  theFirst.Append_S(nullptr, "a text of some length", 21);
  qvFuncLogger::sInstance = nullptr;
  qvFuncLogger theSecond(false);
  theSecond.Append_S(nullptr, "short", 5);
  theFirst.Append_S(nullptr, " and more", 9);
  EXPECT_STREQ("a text of some length and more", theFirst.mStr);
  EXPECT_STREQ("short", theSecond.mStr);
}

TEST_F(qvFuncLoggerTest, TheTextsBlockIsKeptFromMessageToMessage) {
  Received theReceived;
  qvLog_SetLogFunc(2, Receive, &theReceived);
  LogText(1, 0, "a long first message");
  const char* theText = theReceived.mLastText;
  LogText(1, 0, "short");
  EXPECT_EQ(theText, theReceived.mLastText);
}

TEST_F(qvFuncLoggerKept, TheLaterLinesOfAMultiLineMessageCarryAPrefix) {
  Received theReceived;
  qvLog_SetLogFunc(2, Receive, &theReceived);
  qvLogData* theData = qvLog_Begin(1, 0);
  qvLog_Append_FML("%s\n%s\n", "one", "two");
  qvLog_End(theData);
  ASSERT_EQ(1u, theReceived.mTexts.size());
  EXPECT_THAT(theReceived.mTexts[0], MatchesRegex("one\nE [0-9:]{12}\\|[0-9a-f]{8}\\|DEFAULT    two\n"));
}

TEST_F(qvFuncLoggerKept, TheEntriesOutliveTheLogger) {
  Received theReceived;
  qvFuncLogger* theLogger = new qvFuncLogger(false);
  theLogger->SetFunc(2, ReceiveF, &theReceived);
  theLogger->SetFunc(3, ReceiveG, nullptr);
  qvLoggerFuncEntry* theEntry = theLogger->FindFunc(ReceiveF);
  qvLoggerFuncEntry* theOther = theLogger->FindFunc(ReceiveG);
  delete theLogger;
  EXPECT_EQ(&ReceiveF, theEntry->mFunc);
  EXPECT_EQ(2, theEntry->mLevel);
  EXPECT_EQ(&theReceived, theEntry->mCookie);
  EXPECT_EQ(&ReceiveG, theOther->mFunc);
  EXPECT_EQ(theEntry, theOther->mNext) << "the list holds together";
}

TEST_F(qvFuncLoggerTest, FindFuncGivesTheEntryOrNull) {
  qvFuncLogger theLogger(false);
  EXPECT_EQ(nullptr, theLogger.FindFunc(ReceiveF));
  theLogger.AddFunc(2, ReceiveF, nullptr);
  theLogger.AddFunc(3, ReceiveG, nullptr);
  ASSERT_NE(nullptr, theLogger.FindFunc(ReceiveF));
  EXPECT_EQ(2, theLogger.FindFunc(ReceiveF)->mLevel);
  theLogger.RemoveFunc(ReceiveF);
  EXPECT_EQ(nullptr, theLogger.FindFunc(ReceiveF));
  EXPECT_NE(nullptr, theLogger.FindFunc(ReceiveG));
  theLogger.RemoveFunc(ReceiveG);
}

TEST_F(qvFuncLoggerTest, RemovingAFunctionRemovesEveryEntryOfIt) {
  qvFuncLogger theLogger(false);
  theLogger.AddFunc(2, ReceiveF, nullptr);
  theLogger.AddFunc(5, ReceiveG, nullptr);
  theLogger.AddFunc(3, ReceiveF, nullptr);
  theLogger.RemoveFunc(ReceiveF);
  EXPECT_EQ(nullptr, theLogger.FindFunc(ReceiveF));
  EXPECT_EQ(5, theLogger.GetLevel());
  theLogger.RemoveFunc(ReceiveG);
  EXPECT_EQ(nullptr, theLogger.mHead);
  EXPECT_EQ(0, theLogger.GetLevel());
}

TEST_F(qvFuncLoggerTest, AMessageLoggedInsideACallbackIsDropped) {
  static int sCalls = 0;
  auto theCallback = [](void*, const qvLogData*, const char*, size_t) {
    ++sCalls;
    EXPECT_FALSE(LogText(1, 0, "nested"));
  };
  qvLog_SetLogFunc(2, theCallback, nullptr);
  EXPECT_TRUE(LogText(1, 0, "outer"));
  EXPECT_EQ(1, sCalls);
}

namespace {

int sSelfRemovingCalls;

void RemoveSelfAndF(void*, const qvLogData*, const char*, size_t) {
  ++sSelfRemovingCalls;
  qvLog_SetLogFunc(0, RemoveSelfAndF, nullptr);
  qvLog_SetLogFunc(0, ReceiveF, nullptr);
}

}  // namespace

TEST_F(qvFuncLoggerTest, ACallbackMayUnregisterItselfAndOthersWhileItIsCalled) {
  Received theG;
  Received theF;
  qvLog_SetLogFunc(2, ReceiveG, &theG);
  qvLog_SetLogFunc(4, ReceiveF, &theF);
  qvLog_SetLogFunc(3, RemoveSelfAndF, nullptr);  // newest, so it is called first
  sSelfRemovingCalls = 0;
  LogText(1, 0, "first");
  LogText(1, 0, "second");
  EXPECT_EQ(1, sSelfRemovingCalls);
  EXPECT_TRUE(theF.mTexts.empty());
  EXPECT_THAT(theG.mTexts, ElementsAre("first", "second"));
  EXPECT_EQ(2, Instance()->GetLevel());
  ASSERT_NE(nullptr, Instance()->mHead);
  EXPECT_EQ(nullptr, Instance()->mHead->mNext);
}

namespace {

int sReregisteringCalls;

void RegisterAgain(void* aCookie, const qvLogData*, const char*, size_t) {
  ++sReregisteringCalls;
  qvLog_SetLogFunc(2, RegisterAgain, aCookie);
}

}  // namespace

TEST_F(qvFuncLoggerTest, ACallbackThatRegistersItselfAgainIsCalledOncePerMessage) {
  qvLog_SetLogFunc(2, RegisterAgain, nullptr);
  sReregisteringCalls = 0;
  LogText(1, 0, "first");
  EXPECT_EQ(1, sReregisteringCalls);
  LogText(1, 0, "second");
  EXPECT_EQ(2, sReregisteringCalls);
}
