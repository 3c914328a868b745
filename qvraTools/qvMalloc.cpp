#include "qvraTools/qvMalloc.h"

#include <ctype.h>
#include <stdlib.h>
#include <string.h>

#include "qvraTools/qvAssert.h"
#include "qvraTools/qvFatalError.h"

void* qvMalloc(size_t aSize) {
  void* thePtr = malloc(aSize);
  if (thePtr == NULL) {
    qvFatalError("memory:malloc", static_cast<unsigned long>(aSize));
  }
  return thePtr;
}

void* qvMallocZeroed(size_t aSize) {
  void* thePtr = qvMalloc(aSize);
  memset(thePtr, 0, aSize);
  return thePtr;
}

void* qvRealloc(void* aPtr, size_t aSize) {
  if (aPtr == NULL && aSize == 0) {
    return NULL;
  }
  void* thePtr = realloc(aPtr, aSize);
  if (thePtr == NULL && aSize > 0) {
    qvFatalError("memory:realloc", static_cast<unsigned long>(aSize));
  }
  return thePtr;
}

void qvFree(void* aPtr) { free(aPtr); }

char* qvStrdup(const char* aStr) {
  if (aStr == NULL) {
    return NULL;
  }
  char* theCopy = strdup(aStr);
  if (theCopy == NULL) {
    qvFatalError("memory:strdup", static_cast<unsigned long>(strlen(aStr)));
  }
  return theCopy;
}

char* qvStrndup(const char* aStr, size_t aMaxStrlen) {
  if (aStr == NULL) {
    qvAssert(aMaxStrlen == 0);
    return NULL;
  }
  size_t theLength = strnlen(aStr, aMaxStrlen);
  char* theCopy = static_cast<char*>(qvMalloc(theLength + 1));
  memcpy(theCopy, aStr, theLength);
  theCopy[theLength] = '\0';
  return theCopy;
}

char* qvStrdupToUpper(const char* aStr) {
  char* theCopy = qvStrdup(aStr);
  for (char* thePtr = theCopy; thePtr != NULL && *thePtr != '\0'; ++thePtr) {
    *thePtr = static_cast<char>(toupper(static_cast<unsigned char>(*thePtr)));
  }
  return theCopy;
}

size_t qvStrnlen(const char* aStr, size_t aMaxStrlen) { return strnlen(aStr, aMaxStrlen); }

int qvStrEmpty(const char* aStr) { return aStr == NULL || *aStr == '\0'; }

void qvStrReplace(char** aStr, const char* aNewStr) {
  qvAssert(aStr != NULL);
  // Copied first, so that *aStr may be replaced by a part of itself.
  char* theCopy = qvStrdup(aNewStr);
  free(*aStr);
  *aStr = theCopy;
}

void qvStrnReplace(char** aStr, const char* aNewStr, size_t aMaxStrlen) {
  qvAssert(aStr != NULL);
  char* theCopy = aNewStr != NULL ? qvStrndup(aNewStr, aMaxStrlen) : NULL;
  free(*aStr);
  *aStr = theCopy;
}

void qvStrcatReplace(char** aStr, const char* aNewStr) {
  qvAssert(aStr != NULL);
  if (*aStr == NULL) {
    *aStr = qvStrdup(aNewStr);
    return;
  }
  size_t theLength = strlen(*aStr);
  size_t theNewLength = aNewStr != NULL ? strlen(aNewStr) : 0;
  char* theJoined = static_cast<char*>(qvMalloc(theLength + theNewLength + 1));
  memcpy(theJoined, *aStr, theLength);
  if (theNewLength > 0) {
    memcpy(theJoined + theLength, aNewStr, theNewLength);
  }
  theJoined[theLength + theNewLength] = '\0';
  free(*aStr);
  *aStr = theJoined;
}

char* qvStrnstr(const char* aStr, const char* aNeedle, size_t aMaxStrlen) {
  if (aStr == NULL || aMaxStrlen == 0 || *aNeedle == '\0') {
    return const_cast<char*>(aStr);
  }
  size_t theLength = strnlen(aStr, aMaxStrlen);
  return static_cast<char*>(memmem(aStr, theLength, aNeedle, strlen(aNeedle)));
}

wchar_t* qvWcsdup(const wchar_t* aStr) { return aStr != NULL ? qvWcsndup(aStr, wcslen(aStr)) : NULL; }

// KEEP qvMallocKept.WcsndupLooksForNoTerminator
// Against its name and unlike qvStrndup: the length is not a limit but says how many characters there are.
wchar_t* qvWcsndup(const wchar_t* aStr, size_t aStrLen) {
  if (aStr == NULL) {
    qvAssert(aStrLen == 0);
    return NULL;
  }
  wchar_t* theCopy = static_cast<wchar_t*>(qvMalloc((aStrLen + 1) * sizeof(wchar_t)));
  wmemcpy(theCopy, aStr, aStrLen);
  theCopy[aStrLen] = L'\0';
  return theCopy;
}
