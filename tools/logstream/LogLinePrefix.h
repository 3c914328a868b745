// LogLinePrefix.h - the fields in front of the text of a log line.
//
//   I 14:03:07:042|b6f2a000|GRAPHICS   text
//   I 11/21/2026 14:03:07:042|b6f2a000|0000000170 text
//
// A level letter and a blank, the stamp, the thread in eight hexadecimal digits, the module in ten columns
// padded with blanks, a blank.
#ifndef LOGSTREAM_LOGLINEPREFIX_H
#define LOGSTREAM_LOGLINEPREFIX_H

#include <string_view>

#include "qvOS/qvTypes.h"

// No prefix is longer, in bytes.
constexpr size_t kLogLinePrefix_MaxLength = 46;

// The views point into the line.
struct LogLinePrefix {
  char mLevel = 0;  // 'E', 'W', 'I' or 'D'
  std::string_view mStamp;
  std::string_view mThread;
  std::string_view mModule;  // without the padding
  size_t mLength = 0;        // of the whole prefix; the text follows
};

// False when aLine does not begin with a whole prefix; aPrefix is then undefined.
bool LogLinePrefix_Parse(std::string_view aLine, LogLinePrefix* aPrefix);

// Whether a prefix may be that of the same sender's next message after one with aStamp (empty: none): its
// stamp is not earlier. A stamp with a date and one without cannot be compared.
bool LogLinePrefix_MayFollow(const LogLinePrefix& aPrefix, std::string_view aStamp);

// The offset of the first whole prefix, from aFrom on, that may follow aStamp; npos when there is none.
size_t LogLinePrefix_Find(std::string_view aText, size_t aFrom, std::string_view aStamp);

#endif
