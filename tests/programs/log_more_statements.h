/* log_more_statements.h - the body of the programs LogMoreAtLevel*.c: every statement of qvLogMore.h, in C.
 *
 * Each statement is run three times; a callback prints the messages. Conditions and arguments are counted
 * when they are evaluated. The including file defines QVLOGLEVEL. */
#ifndef TESTS_PROGRAMS_LOG_MORE_STATEMENTS_H
#define TESTS_PROGRAMS_LOG_MORE_STATEMENTS_H

#include <stdio.h>

#include "qvLog/qvLogMore.h"

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

static void LogOften(void) {
  for (int i = 0; i < 3; ++i) {
    if (i == 0)
      QV_ERR_ONCE(F("QV_ERR_ONCE %d\n", Evaluate(i)));
    else
      QV_ERR_IF(Evaluate(i) == 2, F("QV_ERR_IF %d\n", Evaluate(i)));
    QV_WARN_ONCE(F("QV_WARN_ONCE %d\n", Evaluate(i)));
    QV_INFO_ONCE(F("QV_INFO_ONCE %d\n", Evaluate(i)));
    QV_DEBUG_ONCE(F("QV_DEBUG_ONCE %d\n", Evaluate(i)));
    QV_ERR_EVERY(2, F("QV_ERR_EVERY %d\n", Evaluate(i)));
    QV_WARN_EVERY(2, FN("QV_WARN_EVERY %d", Evaluate(i)));
    QV_INFO_EVERY(2, FML("QV_INFO_EVERY %d\n", Evaluate(i)));
    QV_DEBUG_EVERY(2, F("QV_DEBUG_EVERY %d\n", Evaluate(i)));
    QV_ERR_EVERY_MS(3600000, F("QV_ERR_EVERY_MS %d\n", Evaluate(i)));
    QV_WARN_EVERY_MS(3600000, F("QV_WARN_EVERY_MS %d\n", Evaluate(i)));
    QV_INFO_EVERY_MS(3600000, F("QV_INFO_EVERY_MS %d\n", Evaluate(i)));
    QV_DEBUG_EVERY_MS(3600000, F("QV_DEBUG_EVERY_MS %d\n", Evaluate(i)));
    QV_WARN_IF(Evaluate(i) == 1, F("QV_WARN_IF %d\n", Evaluate(i)));
    QV_INFO_IF(Evaluate(i) == 1, F("QV_INFO_IF %d\n", Evaluate(i)));
    QV_DEBUG_IF(Evaluate(i) == 1, F("QV_DEBUG_IF %d\n", Evaluate(i)));
    QVXLOG_ONCE(QVLOGLEVEL_WARNING, QVLOG_M_DEMUX, F("QVXLOG_ONCE %d\n", Evaluate(i)));
  }
}

#endif
