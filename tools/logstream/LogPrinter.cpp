#include "tools/logstream/LogPrinter.h"

#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "tools/logstream/LogEscape.h"
#include "tools/logstream/LogEventName.h"

static constexpr size_t kShortUUIDLength = 8;
static const char kColorEnd[] = "\033[0m";

struct LogFormName {
  const char* mName;
  LogForm mForm;
};

static const LogFormName kForms[] = {
    {"short", LogForm_Short}, {"short-iso", LogForm_ShortISO}, {"cat", LogForm_Cat},
    {"raw", LogForm_Raw},     {"json", LogForm_JSON},
};

bool LogForm_FromName(const char* aName, LogForm* aForm) {
  for (const LogFormName& theForm : kForms) {
    if (strcmp(aName, theForm.mName) == 0) {
      *aForm = theForm.mForm;
      return true;
    }
  }
  return false;
}

static const char* LogPrinter_S_LevelName(char aLevel) {
  switch (aLevel) {
    case 'E':
      return "error";
    case 'W':
      return "warning";
    case 'I':
      return "info";
    default:
      return "debug";
  }
}

// Null where the level has no colour of its own.
static const char* LogPrinter_S_LevelColor(char aLevel) {
  switch (aLevel) {
    case 'E':
      return "\033[1;31m";
    case 'W':
      return "\033[33m";
    case 'D':
      return "\033[2m";
    default:
      return nullptr;
  }
}

// The same for every instance of a process, and neither dark nor one of the levels' colours.
static const char* LogPrinter_S_SenderColor(std::string_view aProcess) {
  static const char* const kColors[] = {"\033[32m", "\033[35m", "\033[36m", "\033[92m",
                                        "\033[94m", "\033[95m", "\033[96m"};
  uint32 theHash = 2166136261u;
  for (char theChar : aProcess) {
    theHash = (theHash ^ static_cast<unsigned char>(theChar)) * 16777619u;
  }
  return kColors[(theHash ^ (theHash >> 16)) % (sizeof(kColors) / sizeof(kColors[0]))];
}

// --- The text forms

LogPrinter::LogPrinter(LogForm aForm, bool afColor, bool afTerminal)
    : mForm(aForm), mfColor(afColor), mfTerminal(afTerminal) {}

// "player-1a2b3c4d"; without an instance "player", without a name "-1a2b3c4d", without either "-".
static void LogPrinter_S_AppendSender(const LogRecord& aRecord, std::string& aOut) {
  if (!aRecord.mProcess.empty() || aRecord.mUUID.empty()) {
    LogEscape_AppendField(aRecord.mProcess, aOut);
  }
  if (!aRecord.mUUID.empty()) {
    aOut += '-';
    LogEscape_AppendField(aRecord.mUUID.substr(0, kShortUUIDLength), aOut);
  }
}

static void LogPrinter_S_AppendLine(const LogRecord& aRecord, std::string& aOut) {
  aOut += aRecord.mLevel != 0 ? aRecord.mLevel : '-';
  aOut += ' ';
  LogEscape_AppendField(aRecord.mModule, aOut);
  aOut += ' ';
  LogEscape_AppendField(aRecord.mThread, aOut);
  aOut += aRecord.mfPartial ? '~' : aRecord.mfContinuation ? '+' : ':';
  aOut += ' ';
  LogEscape_AppendText(aRecord.mText, aOut);
}

void LogPrinter::PrintShort(const LogRecord& aRecord, std::string& aOut) {
  bool theHasTime = mForm == LogForm_Short ? mTimeText.AppendShort(aRecord.mTime, aOut)
                                           : mTimeText.AppendISO(aRecord.mTime, aOut);
  aOut += theHasTime ? " " : "- ";
  if (mfColor) {
    aOut += LogPrinter_S_SenderColor(aRecord.mProcess);
  }
  LogPrinter_S_AppendSender(aRecord, aOut);
  if (mfColor) {
    aOut += kColorEnd;
  }
  aOut += ' ';
  if (aRecord.mKind != LogRecordKind_Line) {
    aOut += "- ";
    LogEventName_AppendText(aRecord, aOut);
    return;
  }
  const char* theColor = mfColor ? LogPrinter_S_LevelColor(aRecord.mLevel) : nullptr;
  if (theColor != nullptr) {
    aOut += theColor;
  }
  LogPrinter_S_AppendLine(aRecord, aOut);
  if (theColor != nullptr) {
    aOut += kColorEnd;
  }
}

// cat and raw: the text, or the line as it came.
void LogPrinter::PrintBare(const LogRecord& aRecord, std::string& aOut) {
  const char* theColor = mfColor ? LogPrinter_S_LevelColor(aRecord.mLevel) : nullptr;
  if (theColor != nullptr) {
    aOut += theColor;
  }
  if (mForm == LogForm_Cat) {
    LogEscape_AppendText(aRecord.mText, aOut);
  } else if (mfTerminal) {
    LogEscape_AppendText(aRecord.mRaw, aOut);
  } else {
    aOut.append(aRecord.mRaw);
  }
  if (theColor != nullptr) {
    aOut += kColorEnd;
  }
}

// --- JSON

// Both with the comma in front.
static void LogPrinter_S_AppendMember(const char* aName, std::string_view aText, std::string& aOut) {
  aOut.append(",\"").append(aName).append("\":\"");
  LogEscape_AppendJSON(aText, aOut);
  aOut += '"';
}

static void LogPrinter_S_AppendGiven(const char* aName, std::string_view aText, std::string& aOut) {
  if (!aText.empty()) {
    LogPrinter_S_AppendMember(aName, aText, aOut);
  }
}

static void LogPrinter_S_AppendJSONLine(const LogRecord& aRecord, std::string& aOut) {
  if (aRecord.mLevel != 0) {
    LogPrinter_S_AppendMember("level", LogPrinter_S_LevelName(aRecord.mLevel), aOut);
  }
  LogPrinter_S_AppendGiven("process", aRecord.mProcess, aOut);
  LogPrinter_S_AppendGiven("uuid", aRecord.mUUID, aOut);
  LogPrinter_S_AppendGiven("thread", aRecord.mThread, aOut);
  LogPrinter_S_AppendGiven("module", aRecord.mModule, aOut);
  LogPrinter_S_AppendMember("msg", aRecord.mText, aOut);
  LogPrinter_S_AppendGiven("stamp", aRecord.mStamp, aOut);
  if (aRecord.mfContinuation) {
    aOut += ",\"continuation\":true";
  }
  if (aRecord.mfPartial) {
    aOut += ",\"partial\":true";
  }
}

void LogPrinter::PrintJSON(const LogRecord& aRecord, std::string& aOut) {
  size_t theStart = aOut.size();
  aOut += ",\"ts\":\"";
  if (mTimeText.AppendISO(aRecord.mTime, aOut)) {
    aOut += '"';
  } else {
    aOut.resize(theStart);
  }
  if (aRecord.mKind == LogRecordKind_Line) {
    LogPrinter_S_AppendJSONLine(aRecord, aOut);
  } else {
    LogPrinter_S_AppendMember("event", LogEventName_Of(aRecord.mKind), aOut);
    LogPrinter_S_AppendGiven("process", aRecord.mProcess, aOut);
    LogPrinter_S_AppendGiven("uuid", aRecord.mUUID, aOut);
    aOut.append(",\"count\":").append(std::to_string(aRecord.mCount));
  }
  aOut[theStart] = '{';  // in the place of the first comma
  aOut += '}';
}

void LogPrinter::Print(const LogRecord& aRecord, std::string& aOut) {
  switch (mForm) {
    case LogForm_Short:
    case LogForm_ShortISO:
      PrintShort(aRecord, aOut);
      break;
    case LogForm_Cat:
    case LogForm_Raw:
      if (aRecord.mKind != LogRecordKind_Line) {
        return;
      }
      PrintBare(aRecord, aOut);
      break;
    case LogForm_JSON:
      PrintJSON(aRecord, aOut);
      break;
  }
  aOut += '\n';
}

bool LogPrinter_WantsColor(const char* aWhen, int aDescriptor, bool* afColor) {
  if (strcmp(aWhen, "always") == 0 || strcmp(aWhen, "never") == 0) {
    *afColor = aWhen[0] == 'a';
    return true;
  }
  if (strcmp(aWhen, "auto") != 0) {
    return false;
  }
  const char* theTerminal = getenv("TERM");
  const char* theNoColor = getenv("NO_COLOR");
  bool theIsDumb = theTerminal != nullptr && strcmp(theTerminal, "dumb") == 0;
  bool theIsUnwanted = theNoColor != nullptr && theNoColor[0] != 0;
  *afColor = isatty(aDescriptor) != 0 && !theIsDumb && !theIsUnwanted;
  return true;
}
