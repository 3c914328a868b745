#include "qvraTools/qvAssert.h"

#include "qvLog/qvLog.h"
#include "qvOS/qvDebug.h"
#include "qvraTools/qvFatalError_p.h"

#define kqvAssert_LogLine 26 /* the origin of the log line, the same in every version of this file */

// The failure that this thread is logging; null when there is none. Its place is found without a call that
// could allocate.
struct qvAssert_Failure {
  const char* mText;
  const char* mFile;
  int mLine;
};
static __thread const struct qvAssert_Failure* sFailureBeingLogged
    __attribute__((tls_model("initial-exec"))) = NULL;

// An upward call, one of two in the tree: the toolkit stands below the log framework, but a failed assertion
// has to be found in the log.
static void qvAssert_S_Log(const struct qvAssert_Failure* aFailure) {
  qvLogData* theData = qvLog_Begin(QVLOGLEVEL_ERROR, QVLOG_M_DEFAULT);
  if (theData == NULL) {
    return;
  }
  theData->mFile = __FILE__;
  theData->mLine = kqvAssert_LogLine;
  qvLog_Append_F("ASSERTION FAILED: '%s' in file '%s' at line '%d'\n", aFailure->mText, aFailure->mFile,
                 aFailure->mLine);
  qvLog_End(theData);
}

void _qvAssert(const char* aText, const char* aFile, int aLine) {
  const struct qvAssert_Failure theFailure = {aText, aFile, aLine};
  if (sFailureBeingLogged == NULL) {
    sFailureBeingLogged = &theFailure;
    qvAssert_S_Log(&theFailure);
  } else {
    // The log framework failed an assertion itself. It is not asked to log that, or this would go on for
    // ever; and the failure that came first is not lost.
    qvFatalError_S_WriteMessage("assertat", sFailureBeingLogged->mText, sFailureBeingLogged->mFile,
                                sFailureBeingLogged->mLine);
  }
  qvDebug_Break("Assertion failed");
  qvFatalError("assertat", aText, aFile, aLine);
}
