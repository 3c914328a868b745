/* qvNew_p.h - how the sources make objects: like qvMalloc, a lack of memory ends the process with its
 * message.
 *
 * The memory is that of the ordinary operator new, so the ordinary delete releases it. */
#ifndef QVRATOOLS_QVNEW_P_H
#define QVRATOOLS_QVNEW_P_H

#include <stddef.h>

#include <new>

#include "qvraTools/qvFatalError.h"

/* Written as new (qvOrFatalError{}) X. */
struct qvOrFatalError {};

inline void* operator new(size_t aSize, qvOrFatalError) {
  void* thePtr = operator new(aSize, std::nothrow);
  if (thePtr == NULL) {
    qvFatalError("memory:malloc", static_cast<unsigned long>(aSize));
  }
  return thePtr;
}

/* Called by the compiler alone, should a constructor throw. */
inline void operator delete(void* aPtr, qvOrFatalError) { operator delete(aPtr); }

#endif
