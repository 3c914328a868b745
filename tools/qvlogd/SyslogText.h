// SyslogText.h - any bytes in the shapes that the fields of a syslog message (RFC 5424) allow.
#ifndef QVLOGD_SYSLOGTEXT_H
#define QVLOGD_SYSLOGTEXT_H

#include <stddef.h>

#include <string>
#include <string_view>

// A header field: printable ASCII without blanks, at most aMax bytes of it; '-' for an empty one.
void SyslogText_AppendName(std::string_view aName, size_t aMax, std::string& aOut);

// A structured value with a blank in front: name="value", of which at most aMax bytes are used; nothing for
// an empty one.
void SyslogText_AppendData(const char* aName, std::string_view aValue, size_t aMax, std::string& aOut);

#endif
