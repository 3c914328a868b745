#include "qvLog/qvLogModules.h"

#include "qvLog/qvLogger.h"

#undef QVLOG_DECMOD
#define QVLOG_DECMOD(i, n, v) \
  case i:                     \
    (*aDefaultValue) = v;     \
    return #n;

const char* qvLogger::ModuleNameAndDefaultValue(qvLogModule aModule, int* aDefaultValue) {
  switch (aModule) {
    QVLOG_MODULE_TABLE
    default:
      return NULL;
  }
}
