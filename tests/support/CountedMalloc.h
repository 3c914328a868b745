// CountedMalloc.h - counts the calls of malloc in a test program. It replaces malloc: for one source of the
// program only. The sanitizers bring their own malloc, which is not counted.
#ifndef TESTS_SUPPORT_COUNTEDMALLOC_H
#define TESTS_SUPPORT_COUNTEDMALLOC_H

#include <stddef.h>

#include "support/Sanitizers.h"

static size_t sAllocations = 0;

#if !QVLOG_SANITIZED
extern "C" void* __libc_malloc(size_t aSize);

extern "C" void* malloc(size_t aSize) noexcept {
  ++sAllocations;
  return __libc_malloc(aSize);
}
#endif

#endif
