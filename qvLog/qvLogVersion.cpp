#include "qvLog/qvLogVersion.h"

uint32 qvLogVersion_GetNumber(void) { return QVLOG_VERSION_NUMBER; }

const char* qvLogVersion_GetText(void) { return QVLOG_VERSION_TEXT; }
