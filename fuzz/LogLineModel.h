// LogLineModel.h - how a record is printed, by the description of the forms.
#ifndef FUZZ_LOGLINEMODEL_H
#define FUZZ_LOGLINEMODEL_H

#include <string>
#include <string_view>
#include <vector>

#include "JSONModel.h"
#include "TimeModel.h"
#include "tools/logstream/LogPrinter.h"

// What is coloured, and how; nothing where it is empty.
struct LogLineColors {
  std::string mSender;
  std::string mLevel;
};

// The line in a text form, without its line end; "" for an event in a form that leaves events out.
std::string LogLineModel_Text(LogForm aForm, const LogRecord& aRecord, const TimeModel& aTimes,
                              bool afTerminal, const LogLineColors& aColors);

// The members of the line's object in their order.
std::vector<JSONModelMember> LogLineModel_Members(const LogRecord& aRecord, const TimeModel& aTimes);

#endif
