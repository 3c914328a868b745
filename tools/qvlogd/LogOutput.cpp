#include "tools/qvlogd/LogOutput.h"

struct LogOutput::State {
  uint64 mDropped = 0;
};

LogOutput::LogOutput(const LogOutputOptions&) : mState(new State) {}
LogOutput::~LogOutput() = default;
bool LogOutput::Open(std::string*) { return true; }
void LogOutput::Take(const LogRecord&) {}
void LogOutput::Flush() {}
void LogOutput::Reopen() {}
uint64 LogOutput::Dropped() const { return mState->mDropped; }
