// qvLoggerText_p.h - one formatting for all loggers that get the same text.
#ifndef QVLOG_QVLOGGERTEXT_P_H
#define QVLOG_QVLOGGERTEXT_P_H

#include "qvLog/qvLogger.h"

// Around a fan-out of qvLogger::Append_VF with one format and one list of arguments: the first logger formats
// the text into the record's buffer, the others find it there. Resets the record's text; a null record is
// ignored. The caller holds the log lock.
void qvLoggerText_StartSharing(qvLogDataEx* aRecord, const char* aFormat, va_list anArgs)
    QV_PRINTF_FORMAT(2, 0);
void qvLoggerText_StopSharing();
// Inside such a fan-out.
bool qvLoggerText_IsSharing();

#endif
