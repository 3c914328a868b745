// LogEventName.h - events and their counts as lines spell them.
#ifndef LOGSTREAM_LOGEVENTNAME_H
#define LOGSTREAM_LOGEVENTNAME_H

#include <string>
#include <string_view>

#include "tools/logstream/LogRecord.h"

// connect, lost, disconnect or suppressed; null for a line.
const char* LogEventName_Of(LogRecordKind aKind);
// Appends the event as one reads it: "connect", "connect, 3 lost before", "lost 3", "disconnect", "suppressed
// 12".
void LogEventName_AppendText(const LogRecord& anEvent, std::string& aOut);
// The event of that name: connect, lost, disconnect or suppressed; false for any other.
bool LogEventName_ToKind(std::string_view aName, LogRecordKind* aKind);
// A count in digits; one that is too large is cut to the largest. False when it is not digits alone.
bool LogEventName_ParseCount(std::string_view aText, uint64* aCount);

#endif
