/* Loads the shared library whose path is the argument, logs "partial" without a line end and unloads it. Then
 * a child is forked, which would run into whatever the library has left behind. Nothing else closes any
 * output. */
#include <dlfcn.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include "qvLog/qvLog.h"

/* ISO C has no conversion from an object pointer to a function pointer. */
static void Find(void* aLibrary, const char* aName, void* aFunction) {
  void* theSymbol = dlsym(aLibrary, aName);
  memcpy(aFunction, &theSymbol, sizeof(theSymbol));
}

static int Log(void* aLibrary) {
  qvLogData* (*theBegin)(qvLogLevel, qvLogModule);
  void (*theAppend)(const char*, ...);
  void (*theEnd)(qvLogData*);
  qvLogData* theData;
  Find(aLibrary, "qvLog_Begin", &theBegin);
  Find(aLibrary, "qvLog_Append_F", &theAppend);
  Find(aLibrary, "qvLog_End", &theEnd);
  theData = theBegin(QVLOGLEVEL_ERROR, QVLOG_M_DEFAULT);
  if (theData == NULL) {
    return 0;
  }
  theAppend("%s", "partial");
  theEnd(theData);
  return 1;
}

int main(int aCount, char** anArguments) {
  int theStatus = -1;
  void* theLibrary = aCount > 1 ? dlopen(anArguments[1], RTLD_NOW | RTLD_LOCAL) : NULL;
  if (theLibrary == NULL || !Log(theLibrary) || dlclose(theLibrary) != 0) {
    _exit(1);
  }
  if (dlopen(anArguments[1], RTLD_NOW | RTLD_NOLOAD) != NULL) {
    _exit(2); /* still loaded */
  }
  if (fork() == 0) {
    _exit(0);
  }
  wait(&theStatus);
  _exit(theStatus == 0 ? 0 : 3);
}
