#include "tools/logstream/LogFilter.h"

#include <algorithm>

#include "tools/logstream/LogWildcard.h"

static constexpr size_t kModuleColumns = 10;
static constexpr size_t kShortUUIDLength = 8;
static constexpr std::string_view kBlanks = " \t\r\n";

// From the most severe one; S, which is none, in front.
static constexpr std::string_view kLevels = "SEWID";

static char LogFilter_S_Upper(char aChar) {
  return aChar >= 'a' && aChar <= 'z' ? static_cast<char>(aChar - 'a' + 'A') : aChar;
}

// Whether aLevel is among those that aThreshold lets through.
static bool LogFilter_S_Passes(char aLevel, char aThreshold) {
  return kLevels.find(aLevel) <= kLevels.find(aThreshold);
}

// The level by which an event or a line without one is measured against the priority.
static char LogFilter_S_Priority(const LogRecord& aRecord) {
  if (aRecord.mKind == LogRecordKind_Lost || aRecord.mKind == LogRecordKind_Suppressed) {
    return 'W';
  }
  return aRecord.mLevel != 0 ? aRecord.mLevel : 'I';
}

LogFilter::LogFilter()
    : mPriority('D'), mfHasPattern(false), mPattern(), mSince(INT64_MIN), mUntil(INT64_MAX) {}

LogFilter::~LogFilter() {
  if (mfHasPattern) {
    regfree(&mPattern);
  }
}

// --- Setting up

// The module as the lines show it, when the text has no wildcards.
static std::string LogFilter_S_ShownModule(std::string_view aModule) {
  std::string theModule(aModule);
  if (theModule.find_first_of("*?") != std::string::npos) {
    return theModule;
  }
  theModule = theModule.substr(0, kModuleColumns);
  if (theModule.find_first_not_of("0123456789") == std::string::npos) {
    theModule.insert(0, kModuleColumns - theModule.size(), '0');
  }
  return theModule;
}

bool LogFilter::ParseSpec(std::string_view aText, Spec* aSpec) {
  size_t theColon = aText.find(':');
  std::string_view theModule = aText.substr(0, theColon);
  if (theModule.empty() || theModule.find_first_of(kBlanks) != std::string_view::npos) {
    return false;
  }
  char theLevel = 'D';
  if (theColon != std::string_view::npos) {
    std::string_view theLetter = aText.substr(theColon + 1);
    if (theLetter.size() != 1) {
      return false;
    }
    theLevel = LogFilter_S_Upper(theLetter[0]);
  }
  if (kLevels.find(theLevel) == std::string_view::npos) {
    return false;
  }
  aSpec->mModule = LogFilter_S_ShownModule(theModule);
  aSpec->mLevel = theLevel;
  return true;
}

bool LogFilter::AddSpec(const char* aSpec) {
  Spec theSpec;
  if (!ParseSpec(aSpec, &theSpec)) {
    return false;
  }
  mSpecs.push_back(theSpec);
  return true;
}

bool LogFilter::AddSpecs(const char* aSpecs) {
  std::vector<Spec> theSpecs = mSpecs;
  std::string_view theRest = aSpecs;
  for (;;) {
    theRest.remove_prefix(std::min(theRest.find_first_not_of(kBlanks), theRest.size()));
    if (theRest.empty()) {
      mSpecs.swap(theSpecs);
      return true;
    }
    size_t theLength = std::min(theRest.find_first_of(kBlanks), theRest.size());
    Spec theSpec;
    if (!ParseSpec(theRest.substr(0, theLength), &theSpec)) {
      return false;
    }
    theSpecs.push_back(theSpec);
    theRest.remove_prefix(theLength);
  }
}

bool LogFilter::SetPriority(const char* aPriority) {
  static const char* const kNames[] = {"error", "warning", "info", "debug"};
  std::string_view theText = aPriority;
  if (theText.size() == 1) {
    size_t theLevel = kLevels.find(LogFilter_S_Upper(theText[0]));
    if (theLevel == std::string_view::npos || theLevel == 0) {
      return false;
    }
    mPriority = kLevels[theLevel];
    return true;
  }
  for (size_t i = 0; i < sizeof(kNames) / sizeof(kNames[0]); ++i) {
    if (theText == kNames[i]) {
      mPriority = kLevels[i + 1];
      return true;
    }
  }
  return false;
}

bool LogFilter::AddProcess(const char* aProcess) {
  if (aProcess[0] == 0) {
    return false;
  }
  mProcesses.push_back(aProcess);
  return true;
}

bool LogFilter::SetPattern(const char* aRegex) {
  regex_t thePattern;
  if (regcomp(&thePattern, aRegex, REG_EXTENDED | REG_NOSUB) != 0) {
    return false;
  }
  if (mfHasPattern) {
    regfree(&mPattern);
  }
  mPattern = thePattern;
  mfHasPattern = true;
  return true;
}

void LogFilter::SetSince(int64 aTime) { mSince = aTime; }

void LogFilter::SetUntil(int64 aTime) { mUntil = aTime; }

// --- Deciding

bool LogFilter::SpecsShow(const LogRecord& aRecord) const {
  if (aRecord.mKind != LogRecordKind_Line) {
    return true;
  }
  const Spec* theDecisive = nullptr;
  for (const Spec& theSpec : mSpecs) {
    if (theSpec.mModule == "*") {
      theDecisive = theDecisive != nullptr ? theDecisive : &theSpec;
    } else if (aRecord.mLevel != 0 && LogWildcard_Matches(theSpec.mModule, aRecord.mModule, true)) {
      theDecisive = &theSpec;
      break;
    }
  }
  if (theDecisive == nullptr) {
    return true;
  }
  return aRecord.mLevel != 0 ? LogFilter_S_Passes(aRecord.mLevel, theDecisive->mLevel)
                             : theDecisive->mLevel != 'S';
}

bool LogFilter::ProcessesShow(const LogRecord& aRecord) const {
  if (mProcesses.empty()) {
    return true;
  }
  std::string theInstance(aRecord.mProcess);
  theInstance.append("-").append(aRecord.mUUID.substr(0, kShortUUIDLength));
  for (const std::string& theProcess : mProcesses) {
    if (LogWildcard_Matches(theProcess, aRecord.mProcess, false) ||
        (!aRecord.mUUID.empty() && LogWildcard_Matches(theProcess, theInstance, false))) {
      return true;
    }
  }
  return false;
}

bool LogFilter::PatternShows(const LogRecord& aRecord) const {
  if (!mfHasPattern) {
    return true;
  }
  if (aRecord.mKind != LogRecordKind_Line) {
    return false;
  }
  // The text is given by its ends, as it has no terminator and may hold zero bytes.
  regmatch_t theText;
  theText.rm_so = 0;
  theText.rm_eo = static_cast<regoff_t>(aRecord.mText.size());
  const char* theBytes = aRecord.mText.empty() ? "" : aRecord.mText.data();
  return regexec(&mPattern, theBytes, 1, &theText, REG_STARTEND) == 0;
}

bool LogFilter::Shows(const LogRecord& aRecord) const {
  return aRecord.mTime >= mSince && aRecord.mTime <= mUntil &&
         LogFilter_S_Passes(LogFilter_S_Priority(aRecord), mPriority) && SpecsShow(aRecord) &&
         ProcessesShow(aRecord) && PatternShows(aRecord);
}
