// A source file that names its module with a condition of 0. Every statement is compiled in.

#define QVLOGLEVEL QVLOGLEVEL_ALL
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "qvLog/qvLog.h"
#include "support/RecordingLogger.h"

QVLOG_WITH_MODULE_IF(RENDERER, 0)

TEST(qvLogSilentFile, StatementsThatNameNoModuleLogNothingAndEvaluateNothing) {
  RecordingLogger theLogger(65535);
  int theEvaluated = 0;
  QV_ERR(F("%d", ++theEvaluated));
  QV_WARN(F("%d", ++theEvaluated));
  QV_INFO(F("%d", ++theEvaluated));
  QV_DEBUG(F("%d", ++theEvaluated));
  EXPECT_EQ(0, theEvaluated);
  EXPECT_EQ(0, theLogger.mBegins);
}

TEST(qvLogSilentFile, StatementsThatNameTheirModuleLogAllTheSame) {
  RecordingLogger theLogger(65535);
  QVLOG_ERR(RENDERER, F("bare name"));
  _QVLOG_DEBUG(_s_qvLog_CurrentModule, F("number"));
  EXPECT_THAT(theLogger.mMessages, testing::ElementsAre("bare name", "number"));
}
