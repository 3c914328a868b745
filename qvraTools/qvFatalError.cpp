#include "qvraTools/qvFatalError.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <initializer_list>

void qvFatalError(const char* aReason, ...) {
  const char* theReason = aReason != NULL ? aReason : "unknown reason";
  fprintf(stderr, "qvFatalError: %s", theReason);
  fprintf(stdout, "qvFatalError: %s", theReason);
  if (strcmp(theReason, "assertat") == 0) {
    va_list theArgs;
    va_start(theArgs, aReason);
    const char* theText = va_arg(theArgs, const char*);
    const char* theFile = va_arg(theArgs, const char*);
    int theLine = va_arg(theArgs, int);
    va_end(theArgs);
    for (FILE* theStream : {stderr, stdout}) {
      fprintf(theStream, ", reason '%s' in file '%s' at line '%d'\n", theText, theFile, theLine);
    }
  }
  fflush(stdout);
  abort();
}

void qvFatalError_SetCallBack(qvFatalErrorCallBack) {}
