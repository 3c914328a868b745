#include "qvOS/qvPlatform.h"

#include <stdlib.h>

#include "qvraTools/format/qvFormat.h"
#include "qvraTools/qvMalloc.h"

char* qvPlatform_getenv(const char* aName) { return aName != NULL ? qvStrdup(getenv(aName)) : NULL; }

int qvPlatform_setenv(const char* aName, const char* aValue) {
  if (aName == NULL || aValue == NULL) {
    return -1;
  }
  return setenv(aName, aValue, 1);
}

int qvPlatform_Launch(const char* anApplicationFullPath, const char* aParameter) {
  if (anApplicationFullPath == NULL) {
    return -1;
  }
  char* theCommand = qv_mnprintf("\"%s\" %s &", anApplicationFullPath, aParameter != NULL ? aParameter : "");
  int theResult = system(theCommand);
  qvFree(theCommand);
  return theResult;
}
