#include "tools/logstream/LogPrinter.h"

bool LogForm_FromName(const char*, LogForm*) { return false; }
LogPrinter::LogPrinter(LogForm aForm, bool afColor, bool afTerminal)
    : mForm(aForm), mfColor(afColor), mfTerminal(afTerminal) {}
void LogPrinter::Print(const LogRecord& aRecord, std::string& aOut) {
  aOut.append(aRecord.mText).push_back('\n');
}
bool LogPrinter_WantsColor(const char*, int, bool*) { return false; }
