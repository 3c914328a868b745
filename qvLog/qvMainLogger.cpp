#include "qvLog/qvMainLogger_p.h"

#include "qvLog/qvLogRefusals_p.h"
#include "qvLog/qvLoggerPieces_p.h"
#include "qvLog/qvLoggerText_p.h"
#include "qvraTools/qvMalloc.h"

qvLogLevel _qvLog_Level = 65535;
qvLogDataEx _qvLog_gData;
uint16 _gfqvLog_gDataInitialized = 0;

// Written by child processes.
static unsigned int sForkCount = 0;

static void qvMainLogger_S_SetGate(qvLogLevel aLevel) {
  __atomic_store_n(&_qvLog_Level, aLevel, __ATOMIC_RELAXED);
}

// The gate of one logger. Its modules are asked only behind its threshold, so that a logger that is switched
// off reads no configuration.
static bool qvMainLogger_S_Takes(qvLogger* aLogger, const qvLogDataEx* aRecord) {
  return aLogger->GetLevel() > aRecord->mLevel && aLogger->IsModuleActive(aRecord->mModule);
}

// Calls aCall with each logger that takes the record. The next logger is looked up first: a logger may leave
// the chain while it is called. Without a record there is no message: it was ended by one nested inside it,
// which is possible after a framework operation in a logger's output. The child of a fork in a logger's
// output stops here, or the loggers that follow would write the parent's message twice.
template <class Call>
static void qvMainLogger_S_ForEachTaking(qvLogDataEx* aRecord, Call aCall) {
  if (aRecord == NULL) {
    return;
  }
  const unsigned int theForkCount = sForkCount;
  qvLogger* theNext;
  for (qvLogger* theLogger = qvLogger::sHead; theLogger != NULL && sForkCount == theForkCount;
       theLogger = theNext) {
    theNext = theLogger->mNext;
    if (qvMainLogger_S_Takes(theLogger, aRecord)) {
      aCall(theLogger);
    }
  }
}

qvMainLogger::~qvMainLogger() {
  qvLogRefusals_Forget();
  if (_gfqvLog_gDataInitialized && _qvLog_gData.mFormatted != NULL) {
    _gfqvLog_gDataInitialized = 0;
    qvFree(_qvLog_gData.mFormatted);
    _qvLog_gData.mFormatted = NULL;
  }
}

void qvMainLogger::LeaveParentsMessage() {
  ++sForkCount;
  if (Current() != NULL) {
    Current()->mLogData = NULL;
  }
}

unsigned int qvMainLogger::ForkCount() { return sForkCount; }

void qvMainLogger::Setup() {
  qvMainLogger_S_SetGate(0);
  qvLogRefusals_Forget();
}

bool qvMainLogger::WillLog(qvLogLevel aLevel, qvLogModule aModule) {
  bool theResult = false;
  // No early exit, and the module comes first: every logger decides about the module, so that the answers of
  // all of them are remembered afterwards.
  for (qvLogger* theLogger = qvLogger::sHead; theLogger != NULL; theLogger = theLogger->mNext) {
    bool theActive = theLogger->IsModuleActive(aModule);
    // KEEP qvLogKept.WillLogTakesALevelThatEqualsAThreshold
    // A message needs a level strictly below the threshold; this question is answered with "less than or
    // equal", and with no for level 0, which every open logger would write.
    if (theActive && aLevel != QVLOGLEVEL_NONE && aLevel <= theLogger->GetLevel()) {
      theResult = true;
    }
  }
  return theResult;
}

bool qvMainLogger::BeginLog(qvLogDataEx* aRecord) {
  const unsigned int theForkCount = sForkCount;
  bool theResult = false;
  bool theIsWanted = false;
  qvMainLogger_S_ForEachTaking(aRecord, [&](qvLogger* aLogger) {
    theIsWanted = true;
    if (aLogger->BeginLog(aRecord)) {
      theResult = true;
    }
  });
  if (!theIsWanted) {
    qvLogRefusals_Add(aRecord->mLevel, aRecord->mModule);
  }
  theResult = theResult && sForkCount == theForkCount;
  if (theResult) {
    mLogData = aRecord;
  }
  return theResult;
}

void qvMainLogger::Append_VF(const char* aFormat, va_list anArgs) {
  qvLogDataEx* theRecord = mLogData;
  qvLoggerText_StartSharing(theRecord, aFormat, anArgs);
  qvMainLogger_S_ForEachTaking(theRecord,
                               [&](qvLogger* aLogger) { aLogger->Append_VF(theRecord, aFormat, anArgs); });
  qvLoggerText_StopSharing();
}

void qvMainLogger::Append_VFML(const char* aFormat, va_list anArgs) {
  qvLogDataEx* theRecord = mLogData;
  if (theRecord != NULL) {
    theRecord->mFormattedLen = 0;
  }
  qvMainLogger_S_ForEachTaking(theRecord,
                               [&](qvLogger* aLogger) { aLogger->Append_VFML(theRecord, aFormat, anArgs); });
}

void qvMainLogger::Append_VFN(const char* aFormat, va_list anArgs) {
  qvLogDataEx* theRecord = mLogData;
  if (theRecord != NULL) {
    theRecord->mFormattedLen = 0;
  }
  qvMainLogger_S_ForEachTaking(theRecord, [&](qvLogger* aLogger) {
    {
      qvLoggerMorePieces theMorePieces;  // the line end
      for (unsigned int i = 0; i < mIndentLevel; ++i) {
        aLogger->Append_F(theRecord, "\t");
      }
      aLogger->Append_VF(theRecord, aFormat, anArgs);
    }
    aLogger->Append_F(theRecord, "\n");
  });
}

void qvMainLogger::Append_B(const void* aBuffer, size_t aLength) {
  qvLogDataEx* theRecord = mLogData;
  qvMainLogger_S_ForEachTaking(theRecord,
                               [&](qvLogger* aLogger) { aLogger->Append_B(theRecord, aBuffer, aLength); });
}

void qvMainLogger::Append_U(const wchar_t* aText, size_t aLength) {
  qvLogDataEx* theRecord = mLogData;
  qvMainLogger_S_ForEachTaking(theRecord,
                               [&](qvLogger* aLogger) { aLogger->Append_U(theRecord, aText, aLength); });
}

void qvMainLogger::EndLog() {
  qvLogDataEx* theRecord = mLogData;
  qvMainLogger_S_ForEachTaking(theRecord, [&](qvLogger* aLogger) { aLogger->EndLog(theRecord); });
  mLogData = NULL;
}

void qvMainLogger::ReloadConfig() {
  for (qvLogger* theLogger = qvLogger::sHead; theLogger != NULL; theLogger = theLogger->mNext) {
    theLogger->ReloadConfig();
  }
}

void qvMainLogger::ChangeOneLevel(qvLogLevel aLevel) {
  qvLogLevel theGate = _qvLog_Level;
  if (aLevel > theGate) {
    qvMainLogger_S_SetGate(aLevel);
  } else if (aLevel < theGate) {
    // The new gate is stored once, so that no other thread sees it lower than it ends up.
    qvLogLevel theHighest = aLevel;
    for (qvLogger* theLogger = qvLogger::sHead; theLogger != NULL; theLogger = theLogger->mNext) {
      if (theLogger->GetLevel() > theHighest) {
        theHighest = theLogger->GetLevel();
      }
    }
    qvMainLogger_S_SetGate(theHighest);
  }
}
