#include "tools/qvlogd/OptionTable.h"

#include <string.h>

#include "tools/qvlogd/OptionValue.h"

static const uint64 kMaxSize = UINT64_MAX;
static const uint64 kMaxMemorySize = 1073741824;  // bytes; of a limit on what is held in memory

static bool OptionTable_S_StoreMemorySize(const char* aValue, uint64 aMinimum, size_t* aSize) {
  uint64 theSize;
  if (!OptionValue_ParseSize(aValue, aMinimum, kMaxMemorySize, &theSize)) {
    return false;
  }
  *aSize = static_cast<size_t>(theSize);
  return true;
}

static bool OptionTable_S_StoreCount(const char* aValue, uint64 aMinimum, unsigned int* aCount) {
  uint64 theCount;
  if (!OptionValue_ParseNumber(aValue, aMinimum, 1000000, &theCount)) {
    return false;
  }
  *aCount = static_cast<unsigned int>(theCount);
  return true;
}

static bool OptionTable_S_StoreFlag(const char* aValue, bool* afFlag) {
  return OptionValue_ParseFlag(aValue, afFlag);
}

static bool OptionTable_S_Listen(const char* aValue, Options* aOptions) {
  aOptions->mListen.push_back(aValue);
  return strrchr(aValue, ':') != nullptr;
}

static bool OptionTable_S_Color(const char* aValue, Options* aOptions) {
  aOptions->mColor = aValue;
  return aOptions->mColor == "auto" || aOptions->mColor == "always" || aOptions->mColor == "never";
}

static bool OptionTable_S_RotateTime(const char* aValue, Options* aOptions) {
  uint32 theMilliseconds;
  if (!OptionValue_ParseDuration(aValue, &theMilliseconds) || theMilliseconds % 1000 != 0) {
    return false;
  }
  aOptions->mOutput.mRotateTime = theMilliseconds / 1000;
  return true;
}

static bool OptionTable_S_Forward(const char* aValue, Options* aOptions) {
  aOptions->mfForward = true;
  return LogForwarder_ParseTarget(aValue, &aOptions->mForward);
}

static bool OptionTable_S_Framing(const char* aValue, Options* aOptions) {
  aOptions->mForward.mFraming = strcmp(aValue, "lf") == 0 ? LogFraming_LF : LogFraming_Octet;
  return strcmp(aValue, "lf") == 0 || strcmp(aValue, "octet") == 0;
}

static bool OptionTable_S_Connections(const char* aValue, Options* aOptions) {
  unsigned int theCount;
  if (!OptionTable_S_StoreCount(aValue, 1, &theCount)) {
    return false;
  }
  aOptions->mMaxConnections = theCount;
  return true;
}

static bool OptionTable_S_Stats(const char* aValue, Options* aOptions) {
  bool theFlag;
  if (strcmp(aValue, "json") == 0) {
    aOptions->mStats = StatsForm_JSON;
  } else if (strcmp(aValue, "text") == 0) {
    aOptions->mStats = StatsForm_Text;
  } else if (OptionValue_ParseFlag(aValue, &theFlag)) {
    aOptions->mStats = theFlag ? StatsForm_Text : StatsForm_None;
  } else {
    return false;
  }
  return true;
}

#define APPLY [](const char* aValue, Options* aOptions) -> bool

static const char* const kASize = "a number of bytes, as in 512K, 10M or 1G";
static const char* const kAFileAge = "a time, as in 90s, 15m, 12h or 7d";
static const char* const kADuration = "a time, as in 500ms, 90s, 15m, 12h or 7d";
static const char* const kAFlag = "yes or no";

// Names, help and the manual page stand in the same order.
const OptionEntry kOptionTable[] = {
    // clang-format off
    // name, letter, argument, its name, repeatable, key, what is expected
    //     help
    //     where it goes
    {"listen", 0, OptionArgument_Required, "ADDR:PORT", true, true, "an address with a port, as in 127.0.0.1:12222",
     "take connections there (127.0.0.1:12222); repeatable",
     OptionTable_S_Listen},
    {"allow-remote", 0, OptionArgument_None, nullptr, false, true, kAFlag,
     "let --listen take addresses that other machines reach",
     APPLY { return OptionTable_S_StoreFlag(aValue, &aOptions->mfAllowRemote); }},
    {"output", 'o', OptionArgument_Required, "FORM", false, true, "short, short-iso, cat, raw or json",
     "form of the lines: short (default), short-iso, cat, raw, json",
     APPLY { return LogForm_FromName(aValue, &aOptions->mOutput.mForm); }},
    {"color", 0, OptionArgument_Required, "WHEN", false, true, "auto, always or never",
     "colours: auto (default), always, never",
     OptionTable_S_Color},
    {"file", 0, OptionArgument_Required, "PATTERN", false, true, "a file name",
     "write to files; %y %m %d %H %M %S %n are the time and the name",
     APPLY { aOptions->mOutput.mPattern = aValue; return true; }},
    {"rotate-size", 0, OptionArgument_Required, "SIZE", false, true, kASize,
     "start a new file at this size",
     APPLY { return OptionValue_ParseSize(aValue, 0, kMaxSize, &aOptions->mOutput.mRotateSize); }},
    {"rotate-time", 0, OptionArgument_Required, "TIME", false, true, kAFileAge,
     "start a new file after this time",
     OptionTable_S_RotateTime},
    {"rotate-count", 0, OptionArgument_Required, "N", false, true, "a number of files",
     "keep so many older files",
     APPLY { return OptionTable_S_StoreCount(aValue, 0, &aOptions->mOutput.mRotateCount); }},
    {"max-use", 0, OptionArgument_Required, "SIZE", false, true, kASize,
     "drop the oldest files when all are larger than this together",
     APPLY { return OptionValue_ParseSize(aValue, 0, kMaxSize, &aOptions->mOutput.mMaxUse); }},
    {"keep-free", 0, OptionArgument_Required, "SIZE", false, true, kASize,
     "drop the oldest files when less than this is free on the disk",
     APPLY { return OptionValue_ParseSize(aValue, 0, kMaxSize, &aOptions->mOutput.mKeepFree); }},
    {"silent", 's', OptionArgument_None, nullptr, false, true, kAFlag,
     "the same as a last filter *:S: show what filters name, nothing else",
     APPLY { return OptionTable_S_StoreFlag(aValue, &aOptions->mfSilent); }},
    {"rate", 0, OptionArgument_Required, "N/s", false, true, "a number of lines a second, as in 500/s",
     "hold back what a process sends beyond N lines a second; 0: off",
     APPLY { return OptionValue_ParseRate(aValue, &aOptions->mRate); }},
    {"forward", 0, OptionArgument_Required, "tcp://HOST:PORT", false, true, "a target of the form tcp://HOST:PORT",
     "send the lines on as syslog messages (RFC 5424)",
     OptionTable_S_Forward},
    {"framing", 0, OptionArgument_Required, "FRAMING", false, true, "octet or lf",
     "of forwarded messages: octet (default), lf",
     OptionTable_S_Framing},
    {"stats", 0, OptionArgument_Optional, "FORM", false, true, "text or json",
     "print the ledger at exit: text (default), json",
     OptionTable_S_Stats},
    {"partial-time", 0, OptionArgument_Required, "TIME", false, true, kADuration,
     "write a line that has waited so long for its end (2s)",
     APPLY { return OptionValue_ParseDuration(aValue, &aOptions->mPartialTime); }},
    {"stop-time", 0, OptionArgument_Required, "TIME", false, true, kADuration,
     "read at most so long what is in the sockets when told to stop (2s)",
     APPLY { return OptionValue_ParseDuration(aValue, &aOptions->mStopTime); }},
    {"max-line", 0, OptionArgument_Required, "SIZE", false, true, "a size from 80 to 1G",
     "cut longer lines (1M)",
     APPLY { return OptionTable_S_StoreMemorySize(aValue, 80, &aOptions->mLimits.mLineLength); }},
    {"max-header", 0, OptionArgument_Required, "SIZE", false, true, "a size from 128 to 1G",
     "take longer connection headers for text (4K)",
     APPLY { return OptionTable_S_StoreMemorySize(aValue, 128, &aOptions->mLimits.mHeaderLength); }},
    {"max-connections", 0, OptionArgument_Required, "N", false, true, "a number from 1 to 1000000",
     "let further ones wait (4096)",
     OptionTable_S_Connections},
    {"max-turn", 0, OptionArgument_Required, "SIZE", false, true, "a size from 1K to 1G",
     "bytes read of one connection before the others' turn (256K)",
     APPLY { return OptionTable_S_StoreMemorySize(aValue, 1024, &aOptions->mMaxTurn); }},
    {"max-held", 0, OptionArgument_Required, "SIZE", false, true, "a size from 4K to 1G",
     "bytes of unfinished messages held for all connections (16M)",
     APPLY { return OptionTable_S_StoreMemorySize(aValue, 4096, &aOptions->mMaxHeld); }},
    {"check", 0, OptionArgument_Required, "FILE", false, false, "a file name, or - for standard input",
     "say whether FILE (-: standard input) is a valid stream, and end",
     APPLY { aOptions->mCheck = aValue; return *aValue != '\0'; }},
    {"settings", 0, OptionArgument_Required, "FOLDER", false, false, "a folder",
     "read qvlogd.ini and _qvlogd.ini there",
     nullptr},
    {"help", 'h', OptionArgument_None, nullptr, false, false, nullptr,
     "print this and end",
     nullptr},
    {"version", 0, OptionArgument_None, nullptr, false, false, nullptr,
     "print the version and end",
     nullptr},
// clang-format on
}
;
const size_t kOptionTable_Count = sizeof(kOptionTable) / sizeof(kOptionTable[0]);

const OptionEntry* OptionTable_Find(const char* aName) {
  for (const OptionEntry& theEntry : kOptionTable) {
    if (strcmp(theEntry.mName, aName) == 0) {
      return &theEntry;
    }
  }
  return nullptr;
}
