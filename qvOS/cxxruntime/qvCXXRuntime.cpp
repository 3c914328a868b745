// What the compiler's own code asks of the C++ runtime, for a shared library that is linked without it
// (QVLOG_CXX_RUNTIME=hidden). A C program then starts without loading that runtime, a C++ program uses its
// own. Nothing of this is exported.

#include <stdlib.h>

#include <new>

// Null in a C program: the header's declaration is not weak.
// NOLINTNEXTLINE(misc-new-delete-overloads,readability-redundant-declaration)
void operator delete(void* aPtr) noexcept __attribute__((weak));

// What the destructors of the library's classes call: the counterpart of operator new in qvraTools/qvNew.cpp.
// The program's own, above, is not to be defined with it.
#pragma GCC diagnostic ignored "-Wsized-deallocation"
void operator delete(void* aPtr, size_t) noexcept {
  void (*theDelete)(void*) noexcept = &operator delete;
  if (theDelete != NULL) {
    theDelete(aPtr);
  } else {
    free(aPtr);
  }
}

#ifdef __ARM_EABI__
// The assembler names these two wherever there is a table for unwinding, so that an unwinder is linked.
// Whoever walks a stack brings one, and looks the library's tables up by their number instead of by these
// names.
extern "C" {
void __aeabi_unwind_cpp_pr0(void) {}
void __aeabi_unwind_cpp_pr1(void) {}
}
#endif
