// Crashes.h - the five ways in which a thread can crash.
#ifndef TESTS_SUPPORT_CRASHES_H
#define TESTS_SUPPORT_CRASHES_H

#include <signal.h>
#include <stdlib.h>
#include <sys/mman.h>

// Ends the calling thread's work by a real fault where the processor has one, else by sending the signal.
inline void CrashBy(int aSignal) {
  switch (aSignal) {
    case SIGSEGV: {
      // Not null, which a sanitizer would report itself; nothing is mapped at so low an address.
      volatile char* volatile thePtr = reinterpret_cast<volatile char*>(16);
      *thePtr = 1;
      break;
    }
    case SIGILL:
#if defined(__x86_64__)
      __asm__ volatile("ud2");
#elif defined(__arm__)
      __asm__ volatile("udf #0");
#else
      raise(SIGILL);
#endif
      break;
    case SIGBUS: {  // a read behind the end of a mapped file; nothing here allocates
      void* theBytes = mmap(nullptr, 4096, PROT_READ, MAP_SHARED, memfd_create("empty", MFD_CLOEXEC), 0);
      volatile char theByte = *static_cast<volatile char*>(theBytes);
      (void)theByte;
      break;
    }
    case SIGABRT:
      abort();
    default:
      raise(aSignal);  // SIGFPE too: not every processor traps on a division
  }
}

#endif
