// LogWildcard.h - patterns in which '*' stands for any bytes, or none, and '?' for any one byte.
#ifndef LOGSTREAM_LOGWILDCARD_H
#define LOGSTREAM_LOGWILDCARD_H

#include <string_view>

// Whether the whole of aText matches. afIgnoreCase: ASCII letters match in either case.
bool LogWildcard_Matches(std::string_view aPattern, std::string_view aText, bool afIgnoreCase);

#endif
