#include "qvLog/qvLogger_Func.h"

#include <string.h>

#include "qvLog/qvMainLogger_p.h"
#include "qvraTools/qvAssert.h"
#include "qvraTools/qvMalloc.h"

qvFuncLogger* qvFuncLogger::sInstance = NULL;

// Callbacks are being called, and entries may not be freed: those that are removed meanwhile stay in the
// list, without a function and with a threshold that nothing passes, until the outermost EndLog is through.
static unsigned int sCallsInProgress = 0;
static bool sfHasRemovedEntries = false;

// A text's block and its size. The text of any other logger is in a block of unknown size.
static char* sStrBlock = NULL;
static size_t sStrCapacity = 0;

// The entries that deleted loggers left behind.
static qvLoggerFuncEntry* sLeftEntries = NULL;

qvFuncLogger::qvFuncLogger(bool aAddToList)
    : qvLogger("Func", aAddToList), mHead(NULL), mStrLen(0), mStr(NULL) {
  qvAssert(sInstance == NULL);
  sInstance = this;
  SetOptions(OPT_NO_CONFIG);
  ChangeLevel(QVLOGLEVEL_NONE);
}

qvFuncLogger::~qvFuncLogger() {
  sInstance = NULL;
  if (mStr == sStrBlock) {
    sStrBlock = NULL;
  }
  qvFree(mStr);
  // KEEP qvFuncLoggerKept.TheEntriesOutliveTheLogger
  // They are not freed: whoever holds one from FindFunc may go on reading it, and walk on to the older ones.
  // The list keeps them in sight.
  qvLoggerFuncEntry** theEnd = &mHead;
  while (*theEnd != NULL) {
    theEnd = &(*theEnd)->mNext;
  }
  *theEnd = sLeftEntries;
  sLeftEntries = mHead;
}

void qvFuncLogger::SetFunc(qvLogLevel aLevel, qvLog_LogFunc aFunc, void* aCookie) {
  if (FindFunc(aFunc) != NULL) {
    RemoveFunc(aFunc);
  }
  if (aLevel != 0) {
    AddFunc(aLevel, aFunc, aCookie);
  }
}

qvLoggerFuncEntry* qvFuncLogger::FindFunc(qvLog_LogFunc aFunc) {
  qvLoggerFuncEntry* theEntry = mHead;
  while (theEntry != NULL && theEntry->mFunc != aFunc) {
    theEntry = theEntry->mNext;
  }
  return theEntry;
}

void qvFuncLogger::AddFunc(qvLogLevel aLevel, qvLog_LogFunc aFunc, void* aCookie) {
  qvLoggerFuncEntry* theEntry = static_cast<qvLoggerFuncEntry*>(qvMalloc(sizeof(qvLoggerFuncEntry)));
  theEntry->mNext = mHead;
  theEntry->mLevel = aLevel;
  theEntry->mFunc = aFunc;
  theEntry->mCookie = aCookie;
  mHead = theEntry;
  if (aLevel > GetLevel()) {
    ChangeLevel(aLevel);
  }
}

// Unlinks and frees every entry of aFunc.
static void qvFuncLogger_S_FreeEntries(qvLoggerFuncEntry** aList, qvLog_LogFunc aFunc) {
  while (*aList != NULL) {
    qvLoggerFuncEntry* theEntry = *aList;
    if (theEntry->mFunc == aFunc) {
      *aList = theEntry->mNext;
      qvFree(theEntry);
    } else {
      aList = &theEntry->mNext;
    }
  }
}

void qvFuncLogger::RemoveFunc(qvLog_LogFunc aFunc) {
  if (sCallsInProgress == 0) {
    qvFuncLogger_S_FreeEntries(&mHead, aFunc);
  }
  qvLogLevel theHighest = 0;
  for (qvLoggerFuncEntry* theEntry = mHead; theEntry != NULL; theEntry = theEntry->mNext) {
    if (theEntry->mFunc == aFunc) {
      theEntry->mFunc = NULL;
      theEntry->mLevel = 0;
      sfHasRemovedEntries = true;
    }
    if (theEntry->mLevel > theHighest) {
      theHighest = theEntry->mLevel;
    }
  }
  ChangeLevel(theHighest);
}

// KEEP qvFuncLoggerKept.TheLaterLinesOfAMultiLineMessageCarryAPrefix
// No prefix is written here: callbacks get the message text alone. The base writes one before the later lines
// of a multi-line message all the same.
bool qvFuncLogger::BeginLog(qvLogDataEx* aRecord) {
  for (qvLoggerFuncEntry* theEntry = mHead; theEntry != NULL; theEntry = theEntry->mNext) {
    if (theEntry->mLevel > aRecord->mLevel) {
      mStrLen = 0;
      return true;
    }
  }
  return false;
}

void qvFuncLogger::Append_S(qvLogDataEx*, const char* aBytes, size_t aLength) {
  size_t theSize = mStrLen + aLength + 1;
  if (mStr == NULL || mStr != sStrBlock || theSize > sStrCapacity) {
    mStr = static_cast<char*>(qvRealloc(mStr, theSize));
    sStrBlock = mStr;
    sStrCapacity = theSize;
  }
  // The byte behind the text comes along as the terminator of what callbacks get.
  memcpy(mStr + mStrLen, aBytes, aLength + 1);
  mStrLen += aLength;
}

void qvFuncLogger::EndLog(qvLogDataEx* aRecord) {
  const unsigned int theForkCount = qvMainLogger::ForkCount();
  ++sCallsInProgress;
  for (qvLoggerFuncEntry* theEntry = mHead; theEntry != NULL && qvMainLogger::ForkCount() == theForkCount;
       theEntry = theEntry->mNext) {
    if (theEntry->mLevel > aRecord->mLevel) {
      theEntry->mFunc(theEntry->mCookie, aRecord, mStr, mStrLen);
    }
  }
  --sCallsInProgress;
  if (sCallsInProgress == 0 && sfHasRemovedEntries) {
    sfHasRemovedEntries = false;
    qvFuncLogger_S_FreeEntries(&mHead, NULL);
  }
}
