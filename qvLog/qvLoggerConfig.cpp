// How loggers read their configuration: "qvLog." and the process name and ".ini", in the directories that the
// bootstrap file names.

#include "qvLog/qvLoggerConfig_p.h"

#include <stdlib.h>

#include "qv/CString.h"
#include "qv/Config.h"
#include "qv/ConfigConfig.h"
#include "qvLog/qvMainLogger_p.h"
#include "qvraTools/qvConvert.h"
#include "qvraTools/qvNew_p.h"

#define kqvLogger_PathFileName  "ConfigPath.ini"
#define kqvLogger_DefaultPath   "./"
#define kqvLogger_Options       "options"
#define kqvLogger_MissingNumber (-1)

#define kqvLogger_MinFormatBuffer 1024      /* bytes; the default, and smaller settings are raised to this */
#define kqvLogger_MaxFormatBuffer 104857600 /* bytes; larger settings are cut to this */

int _gfDefaultIsToLog = kqvLog_DefaultIsToLog;
bool _gfAutoPopulate = false;
uint16 _gfDateActivate = 0;

// The configuration of the process; null for a logger that has none. Opened for one read, so that every read
// sees the file as it is; the caller deletes it.
// NOLINTNEXTLINE(bugprone-reserved-identifier)
static qvConfig* _GetConfig(uint32 anOptions) {
  if ((anOptions & qvLogger::OPT_NO_CONFIG) != 0) {
    return NULL;
  }
  qvCString theReadPath;
  qvCString theWritePath;
  if (!qvConfigConfig::GetConfigPaths(theReadPath, theWritePath, kqvLogger_PathFileName)) {
    theReadPath = kqvLogger_DefaultPath;
    theWritePath = kqvLogger_DefaultPath;
  }
  return new (qvOrFatalError{}) qvConfig(theReadPath, theWritePath, qvLogger::GetConfigFileName());
}

qvCString qvLogger::GetConfigFileName() {
  qvCString theName("qvLog.");
  theName += CurrentProcessName();
  theName += ".ini";
  return theName;
}

qvCString qvLogger::GetConfig(const char* aKey, const char* aSection, const qvCString& aDefault) {
  qvConfig* theConfig = _GetConfig(mOptions);
  if (theConfig == NULL) {
    return aDefault;
  }
  qvCString theValue = theConfig->GetCString(aSection, aKey, "");
  if (theValue.IsEmpty() && !aDefault.IsEmpty()) {
    theValue = aDefault;
    if (_gfAutoPopulate) {
      theConfig->SetString(aSection, aKey, aDefault);
      theConfig->Save();
    }
  }
  delete theConfig;
  return theValue;
}

qvCString qvLogger::GetConfig(const char* aKey, const qvCString& aDefault) {
  return GetConfig(aKey, mName, aDefault);
}

int32 qvLogger::GetConfig(const char* aKey, const char* aSection, int32 aDefault) {
  qvConfig* theConfig = _GetConfig(mOptions);
  if (theConfig == NULL) {
    return aDefault;
  }
  // KEEP qvLoggerConfigKept.AStoredMinusOneCountsAsMissing
  int32 theValue = theConfig->GetInt32(aSection, aKey, kqvLogger_MissingNumber);
  if (theValue == kqvLogger_MissingNumber) {
    theValue = aDefault;
    if (_gfAutoPopulate) {
      theConfig->SetInt32(aSection, aKey, aDefault);
      theConfig->Save();
    }
  }
  delete theConfig;
  return theValue;
}

int32 qvLogger::GetConfig(const char* aKey, int32 aDefault) { return GetConfig(aKey, mName, aDefault); }

// A populated file shows words: the word for a numeric default, other defaults as they are.
static qvCString qvLoggerConfig_S_LevelWord(const qvCString& aDefault) {
  qvint64_t theNumber;
  int theError = qvConvert_strtoint64(aDefault, &theNumber);
  // A number beyond 64 bits was clamped, which does not change its word.
  if (theError != kqvConvertError_None && theError != kqvConvertError_RangeHigh) {
    return aDefault;
  }
  if (theNumber >= 65535) {
    return "All";
  }
  switch (theNumber) {
    case 0:
    case 1:
      return "Off";
    case 2:
      return "Error";
    case 3:
      return "Warn";
    case 4:
      return "Info";
    default:
      return aDefault;
  }
}

struct qvLoggerLevelWord {
  char mWord[8];
  qvLogLevel mThreshold;
};

static const qvLoggerLevelWord kLevelWords[] = {
    // word     threshold
    {"off", 0},
    {"error", 2},
    {"warn", 3},
    {"warning", 3},
    {"info", 4},
    // KEEP qvLoggerConfigKept.DebugOpensEveryLevel
    {"debug", 65535},
    {"all", 65535},
};

qvLogLevel qvLogger::GetConfigLevel(const qvCString& aDefault) {
  qvCString theText = GetConfig("Level", qvLoggerConfig_S_LevelWord(aDefault)).Lower();
  for (const qvLoggerLevelWord& theWord : kLevelWords) {
    if (theText == theWord.mWord) {
      return theWord.mThreshold;
    }
  }
  qvint64_t theNumber;
  if (qvConvert_strtoint64(theText, &theNumber) != kqvConvertError_None) {
    return QVLOGLEVEL_NONE;
  }
  return static_cast<qvLogLevel>(theNumber);
}

// Allocates the shared buffer. One spare zero byte lies behind its capacity: a sink may read the byte behind
// the text, and a truncated text fills the whole capacity.
static void qvLoggerConfig_S_AllocateBuffer(int32 aSize) {
  if (aSize < kqvLogger_MinFormatBuffer) {
    aSize = kqvLogger_MinFormatBuffer;
  } else if (aSize > kqvLogger_MaxFormatBuffer) {
    aSize = kqvLogger_MaxFormatBuffer;
  }
  // malloc, not qvMalloc: without the buffer formatting is skipped, and the process lives on.
  _qvLog_gData.mFormatted = static_cast<char*>(malloc(static_cast<size_t>(aSize) + 1));
  _qvLog_gData.mSizeofFormatted = _qvLog_gData.mFormatted != NULL ? aSize : 0;
  if (_qvLog_gData.mFormatted != NULL) {
    _qvLog_gData.mFormatted[aSize] = '\0';
  }
}

void qvLoggerConfig_ReadProcessOptions(qvLogger* aLogger) {
  // KEEP qvLoggerConfigKept.AFirstStartDoesNotWritePopulate
  // It is read before populating is known to be on.
  _gfAutoPopulate = aLogger->GetConfig("populate", kqvLogger_Options, 1) != 0;
  if (_gfAutoPopulate) {
    _gfDefaultIsToLog = 1;
  }
  qvLoggerConfig_S_AllocateBuffer(
      aLogger->GetConfig("max_len_logger", kqvLogger_Options, kqvLogger_MinFormatBuffer));
  _gfDateActivate = aLogger->GetConfig("date", kqvLogger_Options, "off") != "off";
  _gfqvLog_gDataInitialized = 1;
}
