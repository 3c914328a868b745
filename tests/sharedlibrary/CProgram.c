/* A C program with the shared library, as devices have it. Its argument says what is looked at; the result is
 * 0 when that holds. */
#include <dlfcn.h>
#include <stdio.h>
#include <string.h>

#include "qvLog/qvLog.h"
#include "qvOS/qvDebug.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvPtrList.h"

static int sLines = 0;

static void CountLine(void* aCookie, const qvLogData* aRecord, const char* aText, size_t aLength) {
  (void)aCookie;
  (void)aRecord;
  (void)aText;
  (void)aLength;
  ++sLines;
}

/* The framework makes and releases objects of classes: its loggers. */
static int LogsALine(void) {
  qvLog_SetLogFunc(65535, CountLine, NULL);
  QVXLOG_ALWAYS(QVLOGLEVEL_ERROR, QVLOG_M_DEFAULT, F("%s\n", "a line"));
  qvLog_Term();
  return sLines == 1;
}

static int RunsWithoutTheCXXRuntime(void) {
  return LogsALine() && dlopen("libstdc++.so.6", RTLD_NOW | RTLD_NOLOAD) == NULL;
}

/* Called by the library. Visible, so that its name is found. */
unsigned int TraceIsTaken(qvPtrListNode* aNode, void* aTrace);
unsigned int TraceIsTaken(qvPtrListNode* aNode, void* aTrace) {
  (void)aNode;
  return qvDebug_GetBackTrace(aTrace, 4000) > 0;
}

/* The library stands on the stack twice: where the trace is taken and in front of main. */
static int BackTracesReachThroughTheLibrary(void) {
  char theTrace[4000] = "";
  const char* theFunction;
  const char* theLibrary;
  qvPtrList* theList = qvPtrList_New();
  qvPtrList_SetFreeFunc(theList, NULL);
  qvPtrList_Append(theList, theTrace);
  qvPtrList_ForEach(theList, TraceIsTaken, theTrace);
  qvPtrList_Delete(theList);
  fputs(theTrace, stdout);
  theFunction = strstr(theTrace, "TraceIsTaken");
  theLibrary = theFunction != NULL ? strstr(theFunction, "qvPtrList_ForEach") : NULL;
  return theLibrary != NULL && strstr(theLibrary, "main") != NULL;
}

int main(int aCount, char** anArguments) {
  const char* theWhat = aCount > 1 ? anArguments[1] : "";
  int theResult = 0;
  if (strcmp(theWhat, "runtime") == 0) {
    theResult = RunsWithoutTheCXXRuntime();
  } else if (strcmp(theWhat, "trace") == 0) {
    theResult = BackTracesReachThroughTheLibrary();
  }
  return theResult ? 0 : 1;
}
