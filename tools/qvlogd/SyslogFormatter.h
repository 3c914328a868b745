// SyslogFormatter.h - records as syslog messages (RFC 5424), framed for TCP (RFC 6587).
//
//   <12>1 2026-11-21T14:03:07.042123+01:00 box player - GRAPHICS [qvlog@32473 uuid="..." thread="b6f2a000"
//   stamp="14:03:07:042"] text                                                             (all in one line)
//
// Facility user; error, warning, info and debug are the severities 3, 4, 6 and 7, a line without a level is
// info. APP-NAME is the process, MSGID the module, each '-' when there is none; what may not stand there
// becomes '_'. An event is info, its MSGID is its name. 32473 is the enterprise number that the IANA keeps
// for documentation and examples: a product puts its own in its place.
//
// The text is valid UTF-8, without a byte order mark: control characters but the tab, and bytes that are not
// UTF-8, become \xNN as in the short forms, so that a message is one line in either framing. A text that
// would make a message longer than 8000 bytes, which the usual receivers take with their default settings,
// goes in several messages; those behind the first say part="2" and so on.
#ifndef QVLOGD_SYSLOGFORMATTER_H
#define QVLOGD_SYSLOGFORMATTER_H

#include <string>

#include "tools/logstream/LogRecord.h"
#include "tools/logstream/LogTimeText.h"

enum LogFraming { LogFraming_Octet, LogFraming_LF };

class SyslogFormatter {
 public:
  SyslogFormatter(LogFraming aFraming, const std::string& aHostName);

  // Appends the messages of a record, framed.
  void Format(const LogRecord& aRecord, std::string& aOut);

 private:
  void FormatHeader(const LogRecord& aRecord);
  void AppendMessage(std::string_view aText, unsigned int aPart, std::string& aOut);

  const LogFraming mFraming;
  std::string mHostName;
  LogTimeText mTimeText;
  std::string mHeader;  // of the record, up to the structured data
  std::string mData;    // its structured data, without the bracket at the end
  std::string mText;
};

// The length of the first message in aBytes with its framing; aLength when it is not there as a whole.
size_t SyslogFormatter_FrameLength(LogFraming aFraming, const char* aBytes, size_t aLength);
// How many messages aBytes are.
uint64 SyslogFormatter_Count(LogFraming aFraming, const char* aBytes, size_t aLength);

#endif
