// qvTime_p.h - what the clocks share, and what their tests reach.
#ifndef QVRATOOLS_QVTIME_P_H
#define QVRATOOLS_QVTIME_P_H

#include "qvraTools/qvTime.h"

// *aTime in milliseconds. Seconds count as unsigned, so that a wall clock past 2038 goes on.
void qvTimeVal_S_GetMilliSeconds(const qvtimeval* aTime, qvULongLong* aResult);

// aTime, which is UTC, as RFC 1123 has it. The caller frees the text with qvFree.
char* qvTime_S_NewRFC1123Date(const qvtm* aTime);

// qvTime_ParseRFC1123Date, with the offset of the date's zone in minutes east of UTC; 0 when it has none.
int qvTime_S_ParseRFC1123Date(const char* aStr, qvtm* aResult, int* aZoneMinutes);

#endif
