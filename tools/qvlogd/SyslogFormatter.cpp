#include "tools/qvlogd/SyslogFormatter.h"

#include <string.h>

#include <algorithm>

#include "tools/logstream/LogEscape.h"
#include "tools/logstream/LogEventName.h"
#include "tools/qvlogd/SyslogText.h"

#define kSyslogFormatter_MaxMessage 8000  // bytes
#define kSyslogFormatter_MaxHost    255
#define kSyslogFormatter_MaxAppName 48
#define kSyslogFormatter_MaxMsgID   32
#define kSyslogFormatter_MaxData    64  // bytes of a structured value
#define kSyslogFormatter_PartRoom   32  // bytes kept for the part's number
#define kSyslogFormatter_Facility   8   // user, times eight

static int SyslogFormatter_S_Severity(const LogRecord& aRecord) {
  switch (aRecord.mKind == LogRecordKind_Line ? aRecord.mLevel : 0) {
    case 'E':
      return 3;
    case 'W':
      return 4;
    case 'D':
      return 7;
    default:
      return 6;
  }
}

SyslogFormatter::SyslogFormatter(LogFraming aFraming, const std::string& aHostName) : mFraming(aFraming) {
  SyslogText_AppendName(aHostName, kSyslogFormatter_MaxHost, mHostName);
}

void SyslogFormatter::FormatHeader(const LogRecord& aRecord) {
  const char* theEvent = LogEventName_Of(aRecord.mKind);
  mHeader = "<" + std::to_string(kSyslogFormatter_Facility + SyslogFormatter_S_Severity(aRecord)) + ">1 ";
  if (!mTimeText.AppendISO(aRecord.mTime, mHeader)) {
    mHeader += '-';
  }
  mHeader += ' ';
  mHeader += mHostName;
  mHeader += ' ';
  SyslogText_AppendName(aRecord.mProcess, kSyslogFormatter_MaxAppName, mHeader);
  mHeader += " - ";
  SyslogText_AppendName(theEvent != NULL ? theEvent : aRecord.mModule, kSyslogFormatter_MaxMsgID, mHeader);
  mData = " [qvlog@32473";
  SyslogText_AppendData("uuid", aRecord.mUUID, kSyslogFormatter_MaxData, mData);
  SyslogText_AppendData("thread", aRecord.mThread, kSyslogFormatter_MaxData, mData);
  SyslogText_AppendData("stamp", aRecord.mStamp, kSyslogFormatter_MaxData, mData);
  if (theEvent != NULL && aRecord.mKind != LogRecordKind_Disconnect) {
    SyslogText_AppendData("count", std::to_string(aRecord.mCount), kSyslogFormatter_MaxData, mData);
  }
}

void SyslogFormatter::AppendMessage(std::string_view aText, unsigned int aPart, std::string& aOut) {
  std::string thePart = aPart > 1 ? " part=\"" + std::to_string(aPart) + "\"" : "";
  thePart += aText.empty() ? "]" : "] ";
  if (mFraming == LogFraming_Octet) {
    aOut += std::to_string(mHeader.size() + mData.size() + thePart.size() + aText.size());
    aOut += ' ';
  }
  aOut += mHeader;
  aOut += mData;
  aOut += thePart;
  aOut += aText;
  if (mFraming == LogFraming_LF) {
    aOut += '\n';
  }
}

// Where to cut a text so that no character is torn.
static size_t SyslogFormatter_S_Cut(std::string_view aText, size_t aMax) {
  if (aText.size() <= aMax) {
    return aText.size();
  }
  while ((static_cast<unsigned char>(aText[aMax]) & 0xC0) == 0x80) {
    --aMax;
  }
  return aMax;
}

void SyslogFormatter::Format(const LogRecord& aRecord, std::string& aOut) {
  FormatHeader(aRecord);
  mText.clear();
  if (aRecord.mKind == LogRecordKind_Line) {
    LogEscape_AppendText(aRecord.mText, mText);
  } else {
    LogEventName_AppendText(aRecord, mText);
  }
  size_t theRoom = kSyslogFormatter_MaxMessage - mHeader.size() - mData.size() - kSyslogFormatter_PartRoom;
  std::string_view theRest = mText;
  unsigned int thePart = 1;
  do {
    size_t theLength = SyslogFormatter_S_Cut(theRest, theRoom);
    AppendMessage(theRest.substr(0, theLength), thePart++, aOut);
    theRest.remove_prefix(theLength);
  } while (!theRest.empty());
}

size_t SyslogFormatter_FrameLength(LogFraming aFraming, const char* aBytes, size_t aLength) {
  size_t theLength = 0;
  if (aFraming == LogFraming_LF) {
    const void* theEnd = memchr(aBytes, '\n', aLength);
    theLength = theEnd == NULL ? aLength : static_cast<size_t>(static_cast<const char*>(theEnd) - aBytes) + 1;
  } else {
    size_t i = 0;
    for (; i < aLength && aBytes[i] != ' '; ++i) {
      theLength = theLength * 10 + static_cast<size_t>(aBytes[i] - '0');
    }
    theLength += i + 1;
  }
  return std::min(theLength, aLength);
}

uint64 SyslogFormatter_Count(LogFraming aFraming, const char* aBytes, size_t aLength) {
  uint64 theCount = 0;
  for (size_t i = 0; i < aLength; i += SyslogFormatter_FrameLength(aFraming, aBytes + i, aLength - i)) {
    ++theCount;
  }
  return theCount;
}
