#include "tools/logstream/LogReader.h"

LogReader::LogReader(int64 aNow) : mNow(aNow) {}
LogRecord LogReader::Read(std::string_view aLine) {
  LogRecord theRecord;
  theRecord.mText = aLine;
  theRecord.mRaw = aLine;
  return theRecord;
}
