// LogEventName.h - events and their counts as lines spell them.
#ifndef LOGSTREAM_LOGEVENTNAME_H
#define LOGSTREAM_LOGEVENTNAME_H

#include <string_view>

#include "tools/logstream/LogRecord.h"

// The event of that name: connect, lost, disconnect or suppressed; false for any other.
bool LogEventName_ToKind(std::string_view aName, LogRecordKind* aKind);
// A count in digits; one that is too large is cut to the largest. False when it is not digits alone.
bool LogEventName_ParseCount(std::string_view aText, uint64* aCount);

#endif
