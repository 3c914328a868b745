// Runs out of memory: from the moment that the argument's work begins, every allocation fails.
//   malloc     qvMalloc
//   realloc    qvRealloc
//   strdup     qvStrdup
//   mutex      prints whether qvMutex_New gives null
//   semaphore  prints whether qvSemaphore_New gives null
//   assert     a failing assertion
#include <errno.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "qvOS/qvMutex.h"
#include "qvOS/qvSemaphore.h"
#include "qvraTools/qvAssert.h"
#include "qvraTools/qvMalloc.h"

static bool gfNoMemory = false;

// The sanitizers bring allocators of their own, which cannot be replaced: the test leaves this program out
// there.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
extern "C" {
void* __libc_malloc(size_t);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);

void* malloc(size_t aSize) noexcept {
  errno = ENOMEM;
  return gfNoMemory ? NULL : __libc_malloc(aSize);
}
void* calloc(size_t aCount, size_t aSize) noexcept {
  errno = ENOMEM;
  return gfNoMemory ? NULL : __libc_calloc(aCount, aSize);
}
void* realloc(void* aPtr, size_t aSize) noexcept {
  errno = ENOMEM;
  return gfNoMemory ? NULL : __libc_realloc(aPtr, aSize);
}
}
#endif

int main(int aCount, char** anArguments) {
  const char* theWork = aCount > 1 ? anArguments[1] : "";
  gfNoMemory = true;
  if (strcmp(theWork, "malloc") == 0) {
    qvMalloc(11);
  } else if (strcmp(theWork, "realloc") == 0) {
    qvRealloc(NULL, 12);
  } else if (strcmp(theWork, "strdup") == 0) {
    qvStrdup("thirteen char");
  } else if (strcmp(theWork, "mutex") == 0) {
    puts(qvMutex_New() == NULL ? "null" : "made");
  } else if (strcmp(theWork, "semaphore") == 0) {
    puts(qvSemaphore_New(0) == NULL ? "null" : "made");
  } else if (strcmp(theWork, "assert") == 0) {
    qvAssertFail("no memory for this either");
  }
  gfNoMemory = false;  // leaving the program needs memory again
  return 0;
}
