/* qvNew_p.h - how the sources make objects: like qvMalloc, a lack of memory ends the process with its
 * message.
 *
 * The memory is that of the program's operator new, so the ordinary delete of C++ clients releases it and one
 * that a client has replaced is used. Only a C program without the C++ runtime has none: there it is
 * malloc's. */
#ifndef QVRATOOLS_QVNEW_P_H
#define QVRATOOLS_QVNEW_P_H

#include <stddef.h>

#include <new>

/* Written as new (qvOrFatalError{}) X. */
struct qvOrFatalError {};

void* operator new(size_t aSize, qvOrFatalError);

/* Called by the compiler alone, should a constructor throw. */
inline void operator delete(void* aPtr, qvOrFatalError) { operator delete(aPtr); }

#endif
