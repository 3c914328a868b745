// LogPrinter.h - the output forms of the collector and the viewer.
//
//   short      Nov 21 14:03:07.042 player-1a2b3c4d I GRAPHICS b6f2a000: text
//   short-iso  2026-11-21T14:03:07.042123+01:00 player-1a2b3c4d I GRAPHICS b6f2a000: text
//   cat        text
//   raw        I 14:03:07:042|b6f2a000|GRAPHICS   text
//   json       {"ts":"2026-11-21T14:03:07.042123+01:00","level":"info","process":"player","uuid":"...",
//               "thread":"b6f2a000","module":"GRAPHICS","msg":"text","stamp":"14:03:07:042"}  on one line
//
// In both short forms the sign behind the thread says what the line is: ':' the first line of a message, '+'
// a later one, '~' any line that came without its line end; an absent field is "-"; blanks in the process's
// name and module are escaped (LogEscape.h reads them back). A record whose time is not known has "-" for the
// whole stamp, and no "ts" in json.
//
// Events there read "... player-1a2b3c4d - connect", "- lost 3", "- disconnect", "- suppressed 12"; a connect
// event with earlier losses reads "- connect, 3 lost before". In json they are
// {"ts":...,"event":"lost","process":...,"uuid":...,"count":3}; json lines say "continuation":true and
// "partial":true where that holds and leave out what the sender did not give. cat and raw leave events out.
//
// Control characters (C0 but the tab, DEL, C1) and bytes that are not UTF-8 become \xNN in the text forms,
// but for raw, which keeps the bytes unless it goes to a terminal. json is always valid JSON in valid UTF-8:
// what is not UTF-8 becomes U+FFFD. It has no raw control characters either and is never coloured.
#ifndef LOGSTREAM_LOGPRINTER_H
#define LOGSTREAM_LOGPRINTER_H

#include <string>

#include "tools/logstream/LogRecord.h"
#include "tools/logstream/LogTimeText.h"

enum LogForm { LogForm_Short, LogForm_ShortISO, LogForm_Cat, LogForm_Raw, LogForm_JSON };

// The form of that name, as on the command line; false when there is none.
bool LogForm_FromName(const char* aName, LogForm* aForm);

class LogPrinter {
 public:
  // aColor: colours by level and sender, for terminals. afTerminal: raw is escaped too.
  LogPrinter(LogForm aForm, bool afColor, bool afTerminal);

  // Appends the record's line, with a line end, to aOut; nothing for an event in a form that leaves events
  // out.
  void Print(const LogRecord& aRecord, std::string& aOut);

 private:
  void PrintShort(const LogRecord& aRecord, std::string& aOut);
  void PrintBare(const LogRecord& aRecord, std::string& aOut);
  void PrintJSON(const LogRecord& aRecord, std::string& aOut);

  LogForm mForm;
  bool mfColor;
  bool mfTerminal;
  LogTimeText mTimeText;
};

// Whether output on aDescriptor is to be coloured: "always", "never", or "auto": a terminal, TERM not "dumb"
// and NO_COLOR empty or unset. False when aWhen is none of these words.
bool LogPrinter_WantsColor(const char* aWhen, int aDescriptor, bool* afColor);

#endif
