/* Logging.h - logs one line "TEXT" as an error of module 0. */
#ifndef TESTS_FAULTS_STATICLIFE_LOGGING_H
#define TESTS_FAULTS_STATICLIFE_LOGGING_H

#include "qvLog/qvLog.h"

static inline void LogLine(const char* aText) {
  qvLogData* theData = qvLog_Begin(QVLOGLEVEL_ERROR, QVLOG_M_DEFAULT);
  if (theData != NULL) {
    qvLog_Append_F("%s\n", aText);
    qvLog_End(theData);
  }
}

#endif
