// A C++ program with the shared library and a C++ runtime of its own. Its argument says what is looked at;
// the result is 0 when that holds.
#include <stdlib.h>
#include <string.h>

#include <new>
#include <string>
#include <typeinfo>

#include "qvLog/qvLog.h"
#include "qvLog/qvLogger_File.h"
#include "qvLog/qvLogger_Func.h"

// The program's own operators: every object on the heap is theirs, also those that the library makes or
// releases.
static int sMade = 0;
static int sReleased = 0;

static void* Make(size_t aSize) {
  char* theBlock = static_cast<char*>(malloc(aSize + 16));
  ++sMade;
  return theBlock != nullptr ? theBlock + 16 : nullptr;
}

static void Release(void* anObject) {
  if (anObject != nullptr) {
    ++sReleased;
    free(static_cast<char*>(anObject) - 16);
  }
}

void* operator new(size_t aSize) {
  void* theObject = Make(aSize);
  if (theObject == nullptr) {
    throw std::bad_alloc();
  }
  return theObject;
}
void* operator new(size_t aSize, const std::nothrow_t&) noexcept { return Make(aSize); }
void operator delete(void* anObject) noexcept { Release(anObject); }
void operator delete(void* anObject, size_t) noexcept { Release(anObject); }

namespace {

class OwnLogger : public qvLogger {
 public:
  OwnLogger() : qvLogger("own", false) {}
};

void IgnoreLine(void*, const qvLogData*, const char*, size_t) {}

bool ReleasesWhatItMade(int aFirst) { return sMade > aFirst && sMade == sReleased; }

// Made by the library and released by it: its loggers.
bool LibraryUsesTheProgramsOperators() {
  qvLog_SetLogFunc(65535, IgnoreLine, nullptr);
  qvLog_Term();
  return ReleasesWhatItMade(0);
}

// Made here and released by a destructor in the library.
bool LibraryReleasesWhatTheProgramMade() {
  qvLogger* theLogger = new qvFuncLogger(false);
  delete theLogger;
  qvLog_Term();
  return ReleasesWhatItMade(1);
}

// Made here, of a class of the program, and released by the library.
bool LibraryReleasesLoggersOfTheProgram() {
  qvLogger::AddLogger(new OwnLogger);
  qvLog_Term();
  return ReleasesWhatItMade(1);
}

bool TypesAreKnownAtRunTime() {
  OwnLogger theOwn;
  qvFuncLogger theFunc(false);
  qvLogger* theLogger = &theOwn;
  qvLogger* theOther = &theFunc;
  return dynamic_cast<OwnLogger*>(theLogger) == &theOwn &&
         dynamic_cast<qvFuncLogger*>(theLogger) == nullptr &&
         dynamic_cast<qvFuncLogger*>(theOther) == &theFunc &&
         dynamic_cast<qvFileLogger*>(theOther) == nullptr && typeid(*theLogger) == typeid(OwnLogger) &&
         typeid(*theOther) == typeid(qvFuncLogger);
}

// Loggers that are thrown and caught, by the type of a base that lies in the library.
class ThrownLogger : public qvFuncLogger {
 public:
  ThrownLogger() : qvFuncLogger(false) {}
};

bool LoggersAreCaughtByTheirBase() {
  ThrownLogger theThrown;
  try {
    throw &theThrown;
  } catch (qvLogger* theCaught) {
    return theCaught == &theThrown;
  }
}

}  // namespace

int main(int aCount, char** anArguments) {
  const struct {
    const char* mName;
    bool (*mHolds)();
  } kRules[] = {
      {"operators", LibraryUsesTheProgramsOperators},  {"made", LibraryReleasesWhatTheProgramMade},
      {"derived", LibraryReleasesLoggersOfTheProgram}, {"types", TypesAreKnownAtRunTime},
      {"caught", LoggersAreCaughtByTheirBase},
  };
  for (const auto& theRule : kRules) {
    if (aCount > 1 && strcmp(anArguments[1], theRule.mName) == 0) {
      return theRule.mHolds() ? 0 : 1;
    }
  }
  return 2;
}
