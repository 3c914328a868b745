#include "tools/logstream/LogStreamParser.h"

struct LogStreamParser::State {
  std::string mNothing;
};

LogStreamParser::LogStreamParser(const LogStreamLimits&, LogRecordSink&) : mState(new State) {}
LogStreamParser::~LogStreamParser() = default;
void LogStreamParser::Feed(const char*, size_t, int64) {}
void LogStreamParser::Drain() {}
void LogStreamParser::Flush() {}
void LogStreamParser::Close(int64) {}
bool LogStreamParser::IsWaiting() const { return false; }
int64 LogStreamParser::WaitingSince() const { return 0; }
bool LogStreamParser::HasHeader() const { return false; }
const std::string& LogStreamParser::Process() const { return mState->mNothing; }
const std::string& LogStreamParser::UUID() const { return mState->mNothing; }
const char* LogStreamParser::Fault() const { return nullptr; }
uint64 LogStreamParser::FaultOffset() const { return 0; }
