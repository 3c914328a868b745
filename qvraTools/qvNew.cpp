#include "qvraTools/qvNew_p.h"

#include <stdlib.h>

#include "qvraTools/qvFatalError.h"

// Null in a C program, which is not made to load the C++ runtime for it: the header's declaration is not
// weak. NOLINTNEXTLINE(readability-redundant-declaration)
void* operator new(size_t aSize, const std::nothrow_t&) noexcept __attribute__((weak));

void* operator new(size_t aSize, qvOrFatalError) {
  void* (*theNew)(size_t, const std::nothrow_t&) noexcept = &operator new;
  void* thePtr = theNew != NULL ? theNew(aSize, std::nothrow_t()) : malloc(aSize);
  if (thePtr == NULL) {
    qvFatalError("memory:malloc", static_cast<unsigned long>(aSize));
  }
  return thePtr;
}
