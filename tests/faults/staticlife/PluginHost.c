/* A program that does not know the library. Each argument is a step:
 *
 *   +PATH   loads a plug-in, or the library, with its names hidden from others
 *   -N      unloads the one that was loaded Nth
 *   N       lets it log
 *   =PATH   fails unless nothing is loaded from there any more
 *   fork    a child process, which exits
 *   twice   goes back to the first step, once */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#define kMaxLoaded 10

static void* sLoaded[kMaxLoaded];
static int sCount = 0;

static void Load(const char* aPath) {
  sLoaded[sCount] = dlopen(aPath, RTLD_NOW | RTLD_LOCAL);
  if (sLoaded[sCount] == NULL || sCount == kMaxLoaded - 1) {
    fprintf(stderr, "PluginHost: %s\n", dlerror());
    _exit(2);
  }
  ++sCount;
}

/* ISO C has no conversion from an object pointer to a function pointer. */
static int Find(void* aLibrary, const char* aName, void* aFunction) {
  void* theSymbol = dlsym(aLibrary, aName);
  memcpy(aFunction, &theSymbol, sizeof(theSymbol));
  return theSymbol != NULL;
}

/* A plug-in knows how to log; with the library itself the host does. */
static void Log(void* aLibrary) {
  void (*theLog)(void);
  void* (*theBegin)(unsigned short, unsigned short);
  void (*theAppend)(const char*, ...);
  void (*theEnd)(void*);
  void* theData;
  if (Find(aLibrary, "plugin_Log", &theLog)) {
    theLog();
    return;
  }
  if (!Find(aLibrary, "qvLog_Begin", &theBegin) || !Find(aLibrary, "qvLog_Append_F", &theAppend) ||
      !Find(aLibrary, "qvLog_End", &theEnd)) {
    _exit(3);
  }
  theData = theBegin(1, 0);
  if (theData != NULL) {
    theAppend("%s\n", "the host logs");
    theEnd(theData);
  }
}

static void Fork(void) {
  int theStatus = -1;
  if (fork() == 0) {
    exit(0);
  }
  wait(&theStatus);
  if (theStatus != 0) {
    _exit(4);
  }
}

static void Step(const char* aStep) {
  if (aStep[0] == '+') {
    Load(aStep + 1);
  } else if (aStep[0] == '-') {
    dlclose(sLoaded[atoi(aStep + 1)]);
  } else if (aStep[0] == '=') {
    if (dlopen(aStep + 1, RTLD_NOW | RTLD_NOLOAD) != NULL) {
      _exit(5);
    }
  } else if (strcmp(aStep, "fork") == 0) {
    Fork();
  } else {
    Log(sLoaded[atoi(aStep)]);
  }
}

int main(int aCount, char** anArguments) {
  int theTurns = 1;
  int i;
  for (i = 1; i < aCount; ++i) {
    if (strcmp(anArguments[i], "twice") != 0) {
      Step(anArguments[i]);
    } else if (theTurns++ == 1) {
      i = 0;
      sCount = 0;
    }
  }
  return 0;
}
