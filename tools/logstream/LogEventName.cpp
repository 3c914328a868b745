#include "tools/logstream/LogEventName.h"

static const struct {
  const char* mName;
  LogRecordKind mKind;
} kEvents[] = {{"connect", LogRecordKind_Connect},
               {"lost", LogRecordKind_Lost},
               {"disconnect", LogRecordKind_Disconnect},
               {"suppressed", LogRecordKind_Suppressed}};

const char* LogEventName_Of(LogRecordKind aKind) {
  for (const auto& theEvent : kEvents) {
    if (theEvent.mKind == aKind) {
      return theEvent.mName;
    }
  }
  return nullptr;
}

void LogEventName_AppendText(const LogRecord& anEvent, std::string& aOut) {
  aOut.append(LogEventName_Of(anEvent.mKind));
  if (anEvent.mKind == LogRecordKind_Connect && anEvent.mCount != 0) {
    aOut.append(", ").append(std::to_string(anEvent.mCount)).append(" lost before");
  } else if (anEvent.mKind == LogRecordKind_Lost || anEvent.mKind == LogRecordKind_Suppressed) {
    aOut.append(" ").append(std::to_string(anEvent.mCount));
  }
}

bool LogEventName_ToKind(std::string_view aName, LogRecordKind* aKind) {
  for (const auto& theEvent : kEvents) {
    if (aName == theEvent.mName) {
      *aKind = theEvent.mKind;
      return true;
    }
  }
  return false;
}

bool LogEventName_ParseCount(std::string_view aText, uint64* aCount) {
  uint64 theCount = 0;
  for (char theDigit : aText) {
    if (theDigit < '0' || theDigit > '9') {
      return false;
    }
    uint64 theValue = static_cast<uint64>(theDigit - '0');
    theCount = theCount > (UINT64_MAX - theValue) / 10 ? UINT64_MAX : theCount * 10 + theValue;
  }
  *aCount = theCount;
  return !aText.empty();
}
