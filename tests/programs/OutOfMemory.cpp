// Runs out of memory: from the moment that the argument's work begins, every allocation fails.
//   malloc     qvMalloc
//   realloc    qvRealloc
//   strdup     qvStrdup
//   new        an object made as the library makes them
//   mutex      prints whether qvMutex_New gives null
//   semaphore  prints whether qvSemaphore_New gives null
//   assert     a failing assertion
//   once       qvConfigFile_New, when only its first allocation fails
#include <errno.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "qvOS/qvMutex.h"
#include "qvOS/qvSemaphore.h"
#include "qvraTools/qvAssert.h"
#include "qvraTools/qvConfigFile.h"
#include "qvraTools/qvMalloc.h"
#include "qvraTools/qvNew_p.h"

static bool gfNoMemory = false;
static bool gfOnce = false;  // the allocation behind the one that fails gets its memory

// The sanitizers bring allocators of their own, which cannot be replaced: the test leaves this program out
// there.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);

static bool FailsHere() {
  bool theResult = gfNoMemory;
  gfNoMemory = gfNoMemory && !gfOnce;
  errno = ENOMEM;
  return theResult;
}

void* malloc(size_t aSize) noexcept { return FailsHere() ? NULL : __libc_malloc(aSize); }
void* calloc(size_t aCount, size_t aSize) noexcept {
  return FailsHere() ? NULL : __libc_calloc(aCount, aSize);
}
void* realloc(void* aPtr, size_t aSize) noexcept { return FailsHere() ? NULL : __libc_realloc(aPtr, aSize); }
}
#endif

int main(int aCount, char** anArguments) {
  const char* theWork = aCount > 1 ? anArguments[1] : "";
  gfOnce = strcmp(theWork, "once") == 0;
  gfNoMemory = true;
  if (strcmp(theWork, "malloc") == 0) {
    qvMalloc(11);
  } else if (strcmp(theWork, "realloc") == 0) {
    qvRealloc(NULL, 12);
  } else if (strcmp(theWork, "strdup") == 0) {
    qvStrdup("thirteen char");
  } else if (strcmp(theWork, "new") == 0) {
    struct Object {
      char mBytes[14];
    };
    delete new (qvOrFatalError{}) Object;
  } else if (strcmp(theWork, "mutex") == 0) {
    puts(qvMutex_New() == NULL ? "null" : "made");
  } else if (strcmp(theWork, "semaphore") == 0) {
    puts(qvSemaphore_New(0) == NULL ? "null" : "made");
  } else if (strcmp(theWork, "assert") == 0) {
    qvAssertFail("no memory for this either");
  } else if (gfOnce) {
    qvConfigFile_New(NULL, NULL, NULL);
  }
  gfNoMemory = false;  // leaving the program needs memory again
  return 0;
}
