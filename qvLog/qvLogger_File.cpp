#include "qvLog/qvLogger_File.h"

#include <stdio_ext.h>
#include <string.h>
#include <sys/types.h>
#include <unistd.h>

#include "qvLog/qvLogFork_p.h"
#include "qvLog/qvLoggerPieces_p.h"
#include "qvLog/qvLoggerText_p.h"
#include "qvOS/qvPath.h"
#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvAssert.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvNew_p.h"
#include "qvraTools/qvTime.h"

#define kqvFileLogger_DefaultLevel  "Off"
#define kqvFileLogger_DefaultFile   "stderr"
#define kqvFileLogger_DefaultAppend 0
#define kqvFileLogger_LineSize      4096 /* bytes; what is longer reaches the stream in parts */

// fopen then opens files beyond two gibibytes too, on every target.
static_assert(sizeof(off_t) == 8, "a log file may be a large one");

qvFileLogger* qvFileLogger::sInstance = NULL;

// A piece waits here for what is sure to follow, so that a message is one write.
static char sLine[kqvFileLogger_LineSize];
static size_t sLineLength = 0;
static qvFileLogger* sLineOwner = NULL;  // whose piece waits; null: none does

// The settings are read at construction, so that they appear in a populated file, and again for every
// opening.
static qvCString qvFileLogger_S_ReadFile(qvFileLogger* aLogger) {
  return aLogger->GetConfig("File", kqvFileLogger_DefaultFile);
}

static bool qvFileLogger_S_ReadAppend(qvFileLogger* aLogger) {
  return aLogger->GetConfig("Append", kqvFileLogger_DefaultAppend) == 1;
}

qvFileLogger::qvFileLogger(bool aAddToList) : qvLogger("File", aAddToList), mFile(NULL), mLastChar('\0') {
  qvAssert(sInstance == NULL);
  sInstance = this;
  ChangeLevel(GetConfigLevel(kqvFileLogger_DefaultLevel));
  qvFileLogger_S_ReadFile(this);
  qvFileLogger_S_ReadAppend(this);
}

qvFileLogger::~qvFileLogger() {
  sInstance = NULL;
  CloseFile();
}

bool qvFileLogger::IsOK() { return mFile != NULL; }

static bool qvFileLogger_S_IsStandard(FILE* aFile) { return aFile == stderr || aFile == stdout; }

// The length of what waits for aLogger. Leaves nothing waiting for it.
static size_t qvFileLogger_S_TakeLine(const qvFileLogger* aLogger) {
  if (sLineOwner != aLogger) {
    return 0;
  }
  size_t theLength = sLineLength;
  sLineLength = 0;
  sLineOwner = NULL;
  return theLength;
}

void qvFileLogger::CloseFile() {
  size_t theLength = qvFileLogger_S_TakeLine(this);
  if (mFile != NULL) {
    fwrite(sLine, 1, theLength, mFile);
    if (!qvFileLogger_S_IsStandard(mFile)) {
      fclose(mFile);
    }
  }
  mFile = NULL;
}

void qvFileLogger::ReplaceStr(qvCString& aStr, const char* aPattern, const char* aFormat, uint32 aValue) {
  char* theValue = qv_mnprintf(aFormat, static_cast<unsigned long>(aValue));
  aStr.Replace(aPattern, theValue);
  qvFree(theValue);
}

// Puts date, time and process name into the pattern.
static void qvFileLogger_S_ExpandName(qvFileLogger* aLogger, qvCString& aName) {
  int theNow;
  qvtm theTime;
  qvTime_time(&theNow);
  if (qvTime_localtime(&theNow, &theTime) != NULL) {
    // KEEP qvFileLoggerKept.TheYearInAFileNameHasFourDigits
    aLogger->ReplaceStr(aName, "%y", "%04lu", static_cast<uint32>(theTime.tm_year + 1900));
    aLogger->ReplaceStr(aName, "%m", "%02lu", static_cast<uint32>(theTime.tm_mon + 1));
    aLogger->ReplaceStr(aName, "%d", "%02lu", static_cast<uint32>(theTime.tm_mday));
    aLogger->ReplaceStr(aName, "%H", "%02lu", static_cast<uint32>(theTime.tm_hour));
    aLogger->ReplaceStr(aName, "%M", "%02lu", static_cast<uint32>(theTime.tm_min));
    aLogger->ReplaceStr(aName, "%S", "%02lu", static_cast<uint32>(theTime.tm_sec));
  }
  aName.Replace("%n", qvLogger::CurrentProcessName());
}

static FILE* qvFileLogger_S_Open(qvFileLogger* aLogger) {
  // "e": programs that the process launches do not inherit the file.
  const char* theMode = qvFileLogger_S_ReadAppend(aLogger) ? "ae" : "we";
  qvCString theName = qvFileLogger_S_ReadFile(aLogger);
  qvFileLogger_S_ExpandName(aLogger, theName);
  if (theName == "stderr") {
    return stderr;
  }
  if (theName == "stdout") {
    return stdout;
  }
  char* thePath = qvPath_Normalize(theName, 0, kqvPathNormalizeMode_Native, NULL);
  FILE* theFile = thePath != NULL ? fopen(thePath, theMode) : NULL;
  qvFree(thePath);  // leaves errno alone
  return theFile;
}

// The output is closed when something could not be written.
static void qvFileLogger_S_Check(qvFileLogger* aLogger, bool afWritten) {
  if (!afWritten) {
    perror("qvFileLogger");
    aLogger->CloseFile();
  }
}

static void qvFileLogger_S_Write(qvFileLogger* aLogger, const char* aBytes, size_t aLength) {
  if (aLogger->mFile != NULL && aLength > 0) {
    qvFileLogger_S_Check(aLogger, fwrite(aBytes, aLength, 1, aLogger->mFile) == 1);
  }
}

static void qvFileLogger_S_WriteLine(qvFileLogger* aLogger) {
  qvFileLogger_S_Write(aLogger, sLine, qvFileLogger_S_TakeLine(aLogger));
}

// Whether a piece may wait: for others that are sure to come or, if a file is the output, for the end of its
// message; and no other logger's waits, and this one is no object of a derived class, which may write to the
// stream itself.
static bool qvFileLogger_S_MayWait(const qvFileLogger* aLogger) {
  return (qvLoggerMorePieces::Follow() ||
          (qvLoggerText_IsSharing() && !qvFileLogger_S_IsStandard(aLogger->mFile))) &&
         (sLineOwner == NULL || sLineOwner == aLogger) && qvLogger_S_IsOwn(aLogger);
}

// Whether what waits at the end of a message can go past the stream, which costs more than to format the
// text: it ends a line, the file is the logger's alone, and nothing before it waits in the stream.
static bool qvFileLogger_S_IsDirect(FILE* aFile, size_t aLength) {
  return aFile != NULL && aLength > 0 && sLine[aLength - 1] == '\n' && !qvFileLogger_S_IsStandard(aFile) &&
         __fwriting(aFile) && __fpending(aFile) == 0 && fileno(aFile) >= 0;
}

static bool qvFileLogger_S_WriteToSystem(FILE* aFile, const char* aBytes, size_t aLength) {
  while (aLength > 0) {
    ssize_t theWritten = write(fileno(aFile), aBytes, aLength);
    if (theWritten < 0) {
      return false;
    }
    aBytes += theWritten;
    aLength -= static_cast<size_t>(theWritten);
  }
  return true;
}

bool qvFileLogger::BeginLog(qvLogDataEx* aRecord) {
  if (mFile == NULL) {
    mFile = qvFileLogger_S_Open(this);
    if (mFile == NULL) {
      qvFileLogger_S_Check(this, false);
      return false;
    }
    mLastChar = '\n';
    Append_F(aRecord, "NAME: %s (log started)\n", CurrentProcessName());
  }
  if (mLastChar == '\n') {
    GenerateBeginLine(aRecord);
  }
  return true;
}

void qvFileLogger::Append_S(qvLogDataEx*, const char* aBytes, size_t aLength) {
  if (aLength == 0) {
    return;
  }
  mLastChar = aBytes[aLength - 1];
  if (mFile == NULL) {
    return;
  }
  const bool theWaits = qvFileLogger_S_MayWait(this);
  if (!theWaits && sLineOwner != this) {
    qvFileLogger_S_Write(this, aBytes, aLength);
    return;
  }
  if (aLength > sizeof(sLine) - sLineLength) {
    qvFileLogger_S_WriteLine(this);
    qvFileLogger_S_Write(this, aBytes, aLength);
    return;
  }
  memcpy(sLine + sLineLength, aBytes, aLength);
  sLineLength += aLength;
  sLineOwner = this;
  if (!theWaits) {
    qvFileLogger_S_WriteLine(this);
  }
}

void qvFileLogger::EndLog(qvLogDataEx*) {
  size_t theLength = qvFileLogger_S_TakeLine(this);
  if (qvFileLogger_S_IsDirect(mFile, theLength)) {
    qvFileLogger_S_Check(this, qvFileLogger_S_WriteToSystem(mFile, sLine, theLength));
    return;
  }
  qvFileLogger_S_Write(this, sLine, theLength);
  // The line was collected in the stream's buffer: this is where a full disk shows.
  if (mFile != NULL && mLastChar == '\n') {
    qvFileLogger_S_Check(this, fflush(mFile) == 0);
  }
}

void qvFileLogger_S_PrepareFork() {
  qvFileLogger* theLogger = qvFileLogger::sInstance;
  // What the application has printed stands in the same buffer, so it cannot be emptied in the child.
  if (theLogger != NULL && theLogger->mFile == stdout && theLogger->mLastChar != '\n') {
    fflush(stdout);
  }
}

void qvFileLogger_S_LeaveParentsLine() {
  qvFileLogger* theLogger = qvFileLogger::sInstance;
  if (theLogger == NULL || theLogger->mFile == NULL) {
    return;
  }
  qvFileLogger_S_TakeLine(sLineOwner);
  if (theLogger->mFile != stderr && theLogger->mFile != stdout) {
    __fpurge(theLogger->mFile);  // what is buffered is the parent's, which will write it
  }
  theLogger->mLastChar = '\n';
}

void qvLogger_File_Init(void) {
  qvLogger::LockFramework();
  if (qvFileLogger::sInstance == NULL && !qvLogger::NeverLog()) {
    new (qvOrFatalError{}) qvFileLogger(true);  // enters the chain, which owns it
  }
  qvLogger::UnlockFramework();
}
