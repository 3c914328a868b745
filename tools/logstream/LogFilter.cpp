#include "tools/logstream/LogFilter.h"

LogFilter::LogFilter() : mPriority('D'), mfHasPattern(false), mSince(0), mUntil(INT64_MAX) {}
LogFilter::~LogFilter() = default;
bool LogFilter::AddSpec(const char*) { return false; }
bool LogFilter::AddSpecs(const char*) { return false; }
bool LogFilter::SetPriority(const char*) { return false; }
bool LogFilter::AddProcess(const char*) { return false; }
bool LogFilter::SetPattern(const char*) { return false; }
void LogFilter::SetSince(int64 aTime) { mSince = aTime; }
void LogFilter::SetUntil(int64 aTime) { mUntil = aTime; }
bool LogFilter::Shows(const LogRecord&) const { return true; }
bool LogFilter_ParseTime(const char*, int64, int64*) { return false; }
