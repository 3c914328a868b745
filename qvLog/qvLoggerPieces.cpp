#include "qvLog/qvLoggerPieces_p.h"

#include <typeinfo>

#include "qvLog/qvLogger_File.h"
#include "qvLog/qvLogger_Func.h"
#include "qvLog/qvLogger_qvLogd.h"

unsigned int qvLoggerMorePieces::sDepth = 0;

// By the address, which is one in the process: the library exports these classes.
bool qvLogger_S_IsOwn(const qvLogger* aLogger) {
  // Of a pointer's target the compiler would ask whether it is null, and throw: that takes the C++ runtime.
  const qvLogger& theLogger = *aLogger;
  const std::type_info* theType = &typeid(theLogger);
  return theType == &typeid(qvFileLogger) || theType == &typeid(qvLogdLogger) ||
         theType == &typeid(qvFuncLogger);
}
