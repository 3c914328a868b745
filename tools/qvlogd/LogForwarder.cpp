#include "tools/qvlogd/LogForwarder.h"

struct LogForwarder::State {
  uint64 mSent = 0;
};

bool LogForwarder_ParseTarget(const char*, LogForwarderOptions*) { return false; }
LogForwarder::LogForwarder(const LogForwarderOptions&) : mState(new State) {}
LogForwarder::~LogForwarder() = default;
void LogForwarder::Take(const LogRecord&) {}
void LogForwarder::Flush() {}
uint64 LogForwarder::Sent() const { return mState->mSent; }
uint64 LogForwarder::Dropped() const { return 0; }
