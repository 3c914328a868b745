// The client macros in C++, and in C by the programs LogAt*.

#define QVLOGLEVEL 4
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "qvLog/qvLog.h"
#include "support/ChildProcess.h"
#include "support/NoLogDaemon.h"
#include "support/RecordingLogger.h"
#include "support/ScratchFolder.h"

QVLOG_WITH_MODULE_IF(RENDERER, 1)

namespace {

using testing::ElementsAre;
using testing::EndsWith;

// Runs a program in a scratch folder, with no log daemon.
std::string Output(const std::string& aProgram) {
  ScratchFolder theFolder;
  WriteWholeFile(theFolder.File("qvLog." + aProgram + ".ini"), kNoLogDaemon);
  ChildResult theResult = RunProgram(CopyTestProgram(aProgram, theFolder.Path()));
  EXPECT_EQ(0, theResult.mExitCode);
  EXPECT_EQ("", theResult.mStderr);
  return theResult.mStdout;
}

namespace other {
QVLOG_WITH_MODULE_IF(TUNER, 1)
}  // namespace other

}  // namespace

TEST(qvLogMacros, AtCompileTimeLevel0NoStatementCallsTheLibraryAtAll) {
  EXPECT_EQ("the library is not linked\n0 evaluated\n", Output("LogAtLevel0"));
}

TEST(qvLogMacros, AtCompileTimeLevel3ErrorsAndWarningsAreCompiledIn) {
  EXPECT_EQ(
      "1 42 1 QVLOG_ERR 1\n"
      "2 42 1 QVLOG_WARN 1\n"
      "1 43 1 _QVLOG_ERR 1\n"
      "2 43 1 _QVLOG_WARN 1\n"
      "1 28 1 QV_ERR 1\n"
      "2 28 1 QV_WARN 1\n"
      "2 21 1 wrapper 1\n"
      "errors\n"
      "6 evaluated\n",
      Output("LogAtLevel3"));
}

TEST(qvLogMacros, AtAllCompileTimeLevelsTheRunTimeThresholdDecides) {
  EXPECT_EQ(
      "1 42 1 QVLOG_ERR 1\n"
      "2 42 1 QVLOG_WARN 1\n"
      "3 42 1 QVLOG_INFO 1\n"
      "4 42 1 QVLOG_DEBUG 1\n"
      "1 43 1 _QVLOG_ERR 1\n"
      "2 43 1 _QVLOG_WARN 1\n"
      "3 43 1 _QVLOG_INFO 1\n"
      "4 43 1 _QVLOG_DEBUG 1\n"
      "1 28 1 QV_ERR 1\n"
      "2 28 1 QV_WARN 1\n"
      "3 28 1 QV_INFO 1\n"
      "4 28 1 QV_DEBUG 1\n"
      "3 21 1 QVXLOG 1\n"
      "2 21 1 wrapper 1\n"
      "errors\n"
      "information\n"
      "13 evaluated\n"
      "1 42 1 QVLOG_ERR 1\n"
      "1 43 1 _QVLOG_ERR 1\n"
      "1 28 1 QV_ERR 1\n"
      "errors\n"
      "3 evaluated\n",
      Output("LogAtAllLevels"));
}

#define EXPANDED(aMacro)  UNEXPANDED(aMacro)
#define UNEXPANDED(aText) #aText

TEST(qvLogMacros, AnInlineFunctionIsStaticInEveryUnit) {
  EXPECT_STREQ("__inline static", EXPANDED(QVLOG_INLINE));
}

TEST(qvLogMacros, AStatementStoresItsFileAndLine) {
  RecordingLogger theLogger(5);
  QVXLOG_ALWAYS(QVLOGLEVEL_ERROR, QVLOG_M_TUNER, F("%s", "x"));
  EXPECT_EQ(static_cast<uint32>(__LINE__ - 1), theLogger.mRecord.mLine);
  EXPECT_THAT(theLogger.mRecord.mFile, EndsWith("qvLogMacros_test.cpp"));
  EXPECT_EQ(28, theLogger.mRecord.mModule);
}

TEST(qvLogMacros, FuncIsAnyAppendFunction) {
  RecordingLogger theLogger(5);
  QVXLOG_ALWAYS(QVLOGLEVEL_ERROR, 0, FML("%s\n", "fml"));
  QVXLOG_ALWAYS(QVLOGLEVEL_ERROR, 0, FN("%s", "fn"));
  QVXLOG_ALWAYS(QVLOGLEVEL_ERROR, 0, B("", 0));
  QVXLOG_ALWAYS(QVLOGLEVEL_ERROR, 0, U(L"wide", 4));
  ASSERT_EQ(4u, theLogger.mMessages.size());
  EXPECT_EQ("fml\n", theLogger.mMessages[0]);
  EXPECT_EQ("fn\n", theLogger.mMessages[1]);
  EXPECT_THAT(theLogger.mMessages[2], EndsWith(" length=0\n"));
  EXPECT_EQ("wide", theLogger.mMessages[3]);
}

TEST(qvLogMacros, AStatementThatIsOffAtRunTimeEvaluatesNeitherModuleNorMessage) {
  RecordingLogger theLogger(2);
  int theEvaluated = 0;
  QVXLOG_ALWAYS(QVLOGLEVEL_WARNING, static_cast<qvLogModule>(++theEvaluated), F("%d", ++theEvaluated));
  EXPECT_EQ(0, theEvaluated);
  QVXLOG_ALWAYS(QVLOGLEVEL_ERROR, static_cast<qvLogModule>(++theEvaluated), F("%d", ++theEvaluated));
  EXPECT_EQ(2, theEvaluated);
}

TEST(qvLogMacros, AStatementThatIsOffByItsModuleEvaluatesNoMessage) {
  RecordingLogger theLogger(5);
  int theEvaluated = 0;
  QVXLOG_ALWAYS(QVLOGLEVEL_ERROR, QVLOG_M_SCHEDULER, F("%d", ++theEvaluated));
  EXPECT_EQ(0, theEvaluated);
}

TEST(qvLogMacros, TheLevelOfAStatementIsEvaluatedOnce) {
  RecordingLogger theLogger(5);
  int theEvaluated = 0;
  QVXLOG_ALWAYS(static_cast<qvLogLevel>(++theEvaluated), 0, F("%s", "x"));
  EXPECT_EQ(1, theEvaluated);
}

TEST(qvLogMacros, AStatementThatIsOffTakesNoLock) {
  RecordingLogger theLogger(2);
  qvLogger::LockFramework();
  std::thread([] { QVXLOG_ALWAYS(QVLOGLEVEL_WARNING, 0, F("%s", "x")); }).join();
  qvLogger::UnlockFramework();
}

TEST(qvLogMacros, ASourceFileNamesItsModuleOnce) {
  RecordingLogger theLogger(5);
  QV_INFO(F("%s", "x"));
  EXPECT_EQ(QVLOG_M_RENDERER, theLogger.mRecord.mModule);
  EXPECT_EQ(QVLOG_M_RENDERER, _s_qvLog_CurrentModule);
  EXPECT_EQ(1, _s_qvLog_CurrentLogActive);
}

TEST(qvLogMacros, AModuleMayBeNamedInANamespaceOrAFunctionWithASemicolonOrWithout) {
  RecordingLogger theLogger(5);
  EXPECT_EQ(QVLOG_M_TUNER, other::_s_qvLog_CurrentModule);
  {
    QVLOG_WITH_MODULE_IF(DEMUX, 1);
    QV_ERR(F("x"));
    EXPECT_EQ(QVLOG_M_DEMUX, theLogger.mRecord.mModule);
  }
  {
    QVLOG_WITH_MODULE_IF(EPG, 1)
    QV_ERR(F("x"));
    EXPECT_EQ(QVLOG_M_EPG, theLogger.mRecord.mModule);
  }
}

TEST(qvLogMacros, AtCompileTimeLevel4NoDebugStatementIsCompiledIn) {
  RecordingLogger theLogger(65535);
  QVLOG_ERR(TUNER, F("e"));
  QVLOG_WARN(TUNER, F("w"));
  QVLOG_INFO(TUNER, F("i"));
  QVLOG_DEBUG(TUNER, F("d"));
  EXPECT_THAT(theLogger.mMessages, ElementsAre("e", "w", "i"));
  EXPECT_EQ(1, QVLOG_WILL_LOG(QVLOGLEVEL_INFO, TUNER));
  EXPECT_EQ(0, QVLOG_WILL_LOG(QVLOGLEVEL_DEBUG, TUNER));
}

TEST(qvLogMacros, ReloadConfigReachesTheLoggers) {
  RecordingLogger theLogger(5);
  QVLOG_RELOADCONFIG;
  EXPECT_EQ(1, theLogger.mReloads);
}
