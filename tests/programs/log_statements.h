/* log_statements.h - the body of the programs LogAtLevel*.c: every client macro once, in C.
 *
 * A callback prints each message that arrives. Each argument of a message is counted when it is evaluated.
 * The including file defines QVLOGLEVEL. */
#ifndef TESTS_PROGRAMS_LOG_STATEMENTS_H
#define TESTS_PROGRAMS_LOG_STATEMENTS_H

#include <stdarg.h>
#include <stdio.h>

#include "qvLog/qvLog.h"

QVLOG_WITH_MODULE_IF(TUNER, 1);

static int sEvaluated = 0;

static int Evaluate(int aValue) {
  ++sEvaluated;
  return aValue;
}

static void Print(void* aCookie, const qvLogData* aData, const char* aText, size_t aLength) {
  (void)aCookie;
  printf("%d %d %d %.*s", aData->mLevel, aData->mModule, aData->mFile != NULL && aData->mLine != 0,
         (int)aLength, aText);
}

static void LogByWrapper(const char* aFormat, ...) {
  _QVLOG_OLD_VF(QVLOGLEVEL_WARNING, QVLOG_M_DEMUX, aFormat);
}

static void LogEverything(qvLogLevel aDynamicLevel) {
  QVLOG_ERR(DECODER, F("QVLOG_ERR %d\n", Evaluate(1)));
  QVLOG_WARN(DECODER, F("QVLOG_WARN %d\n", Evaluate(1)));
  QVLOG_INFO(DECODER, F("QVLOG_INFO %d\n", Evaluate(1)));
  QVLOG_DEBUG(DECODER, F("QVLOG_DEBUG %d\n", Evaluate(1)));
  _QVLOG_ERR(43, F("_QVLOG_ERR %d\n", Evaluate(1)));
  _QVLOG_WARN(43, F("_QVLOG_WARN %d\n", Evaluate(1)));
  _QVLOG_INFO(43, F("_QVLOG_INFO %d\n", Evaluate(1)));
  _QVLOG_DEBUG(43, F("_QVLOG_DEBUG %d\n", Evaluate(1)));
  if (aDynamicLevel)
    QV_ERR(F("QV_ERR %d\n", Evaluate(1)));
  else
    QV_WARN(F("not this\n"));
  QV_WARN(FN("QV_WARN %d", Evaluate(1)));
  QV_INFO(FML("QV_INFO %d\n", Evaluate(1)));
  QV_DEBUG(F("QV_DEBUG %d\n", Evaluate(1)));
  QVXLOG(aDynamicLevel, QVLOG_M_DEMUX, F("QVXLOG %d\n", Evaluate(1)));
  LogByWrapper("wrapper %d\n", 1);
  if (QVLOG_WILL_LOG(QVLOGLEVEL_ERROR, TUNER)) {
    printf("errors\n");
  }
  if (_QVLOG_WILL_LOG(aDynamicLevel, QVLOG_M_TUNER)) {
    printf("information\n");
  }
  QVLOG_RELOADCONFIG;
}

#endif
