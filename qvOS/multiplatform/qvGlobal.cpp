#include "qvOS/qvGlobal.h"

#include <stdlib.h>
#include <unistd.h>

#include "qvOS/qvPlatform.h"
#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvConvert.h"
#include "qvraTools/qvMalloc.h"

#define kqvGlobal_DomainSuffix ".qvra.local" /* the maker's */
#define kqvGlobal_ValueSize    40            /* bytes; the text of a pointer is much shorter */

char* qvGlobal_GetVariableName(const char* aName) {
  return qv_mnprintf("%s.%lu%s", aName, static_cast<unsigned long>(getpid()), kqvGlobal_DomainSuffix);
}

void qvGlobal_SetPtr(const char* aName, void* aValue) {
  char theValue[kqvGlobal_ValueSize];
  qv_snprintf(theValue, sizeof(theValue), "%p", aValue);
  char* theVariable = qvGlobal_GetVariableName(aName);
  qvPlatform_setenv(theVariable, theValue);
  qvFree(theVariable);
}

// KEEP qvGlobalKept.GetPtrReadsTheBareNameAndNotTheOneThatSetPtrWrote
// The name that qvGlobal_GetVariableName composes is not looked at: a pointer is found only when the
// environment holds the caller's own name, as a parent process may have set it. Nothing is allocated here,
// because the way out of a process without memory leads through this function.
void* qvGlobal_GetPtr(const char* aName) {
  void* theValue = NULL;
  if (qvConvert_strtoptr(getenv(aName), &theValue) != kqvConvertError_None) {
    return NULL;
  }
  return theValue;
}

void qvGlobal_SetFunctionPtr(const char* aName, qvGlobalFunctionPtr aValue) {
  qvGlobal_SetPtr(aName, reinterpret_cast<void*>(aValue));
}

qvGlobalFunctionPtr qvGlobal_GetFunctionPtr(const char* aName) {
  return reinterpret_cast<qvGlobalFunctionPtr>(qvGlobal_GetPtr(aName));
}
