#include "qvLog/qvLogModules.h"

#include <stddef.h>

#include "qvLog/qvLogger.h"

// The names lie behind each other, and a module knows how far behind the first its name begins: a table of
// pointers would be written to whenever a program loads the library.
namespace {

#undef QVLOG_DECMOD
#define QVLOG_DECMOD(code, name, value) char m##name[sizeof(#name)];
struct ModuleNames {
  QVLOG_MODULE_TABLE
};

#undef QVLOG_DECMOD
#define QVLOG_DECMOD(code, name, value) #name,
constexpr ModuleNames kNames = {QVLOG_MODULE_TABLE};

constexpr uint16 kNoModule = 0xFFFF;

}  // namespace

// Twice the place of the name, and 1 if the module logs by default. Numbers alone: the compiler makes a table
// of them.
#undef QVLOG_DECMOD
#define QVLOG_DECMOD(code, name, value) \
  case code:                            \
    return static_cast<uint16>(2 * offsetof(ModuleNames, m##name) + (value));
static uint16 qvLogger_S_FindModule(qvLogModule aModule) {
  switch (aModule) {
    QVLOG_MODULE_TABLE
    default:
      return kNoModule;
  }
}

const char* qvLogger::ModuleNameAndDefaultValue(qvLogModule aModule, int* aDefaultValue) {
  unsigned int theModule = qvLogger_S_FindModule(aModule);
  if (theModule == kNoModule) {
    return NULL;
  }
  *aDefaultValue = static_cast<int>(theModule % 2);
  return reinterpret_cast<const char*>(&kNames) + theModule / 2;
}
