#include "qvraTools/qvFatalError.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "qvOS/qvDebug.h"
#include "qvOS/qvGlobal.h"
#include "qvraTools/qvFatalError_p.h"

#define kqvFatalError_CallBackName "fatalerror"

// The process ends here because memory ran out, or with the log lock held, or both. So the message is
// written, and flushed, before anything else is tried; it takes the C library's own fprintf, which allocates
// nothing for these formats, and no look-up or lock of ours.

// 1 while this thread is past its message. Its place is found without a call that could allocate.
static __thread int sfThisThreadIsTracing __attribute__((tls_model("initial-exec"))) = 0;

static int qvFatalError_S_IsOutOfMemory(const char* aReason) {
  static const char kReasons[][15] = {"memory:malloc", "memory:realloc", "memory:strdup", "memory:wcsdup"};
  for (const char(&theReason)[15] : kReasons) {
    if (strcmp(aReason, theReason) == 0) {
      return 1;
    }
  }
  return 0;
}

// One call a stream: the lines of two threads that fail at the same time do not mix.
static void qvFatalError_S_WriteTo(FILE* aStream, const char* aReason, va_list anArgs) {
  if (aReason == NULL) {
    fprintf(aStream, "qvFatalError: %s\n", "unknown reason");
  } else if (qvFatalError_S_IsOutOfMemory(aReason)) {
    unsigned long theSize = va_arg(anArgs, unsigned long);
    fprintf(aStream, "qvFatalError: %s, size=%lu\n", aReason, theSize);
  } else if (strcmp(aReason, "assertat") == 0) {
    const char* theText = va_arg(anArgs, const char*);
    const char* theFile = va_arg(anArgs, const char*);
    int theLine = va_arg(anArgs, int);
    fprintf(aStream, "qvFatalError: %s, reason '%s' in file '%s' at line '%d'\n", aReason, theText, theFile,
            theLine);
  } else {
    fprintf(aStream, "qvFatalError: %s\n", aReason);
  }
  fflush(aStream);
}

static void qvFatalError_S_WriteToBoth(const char* aReason, va_list anArgs) {
  va_list theSameArgs;
  va_copy(theSameArgs, anArgs);
  qvFatalError_S_WriteTo(stderr, aReason, anArgs);
  qvFatalError_S_WriteTo(stdout, aReason, theSameArgs);
  va_end(theSameArgs);
}

void qvFatalError_S_WriteMessage(const char* aReason, ...) {
  va_list theArgs;
  va_start(theArgs, aReason);
  qvFatalError_S_WriteToBoth(aReason, theArgs);
  va_end(theArgs);
}

void qvFatalError(const char* aReason, ...) {
  va_list theArgs;
  va_start(theArgs, aReason);
  qvFatalError_S_WriteToBoth(aReason, theArgs);
  va_end(theArgs);

  // Tracing allocates and logs. When that fails fatally too, its message is out and this is the end.
  if (!sfThisThreadIsTracing) {
    sfThisThreadIsTracing = 1;
    // KEEP qvFatalErrorKept.TheRegisteredCallBackIsNotCalled
    // Looked up and left alone. The look-up allocates nothing.
    (void)qvGlobal_GetFunctionPtr(kqvFatalError_CallBackName);
    qvDebug_BackTraceCurrent(0);
  }
  // abort does not flush.
  fflush(stderr);
  fflush(stdout);
  abort();
}

void qvFatalError_SetCallBack(qvFatalErrorCallBack aCallBack) {
  qvGlobal_SetFunctionPtr(kqvFatalError_CallBackName, reinterpret_cast<qvGlobalFunctionPtr>(aCallBack));
}
