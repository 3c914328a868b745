// Linked in when coverage is measured only: writes the counters before a process ends in a way that skips the
// exit handlers. Many tests let a child end by a failed assertion, by _exit or by a signal. Weak, since some
// programs are linked from several parts that each bring this file along.
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

extern "C" {

void __gcov_dump(void);

[[noreturn]] void __real_abort(void);
[[noreturn]] void __real__exit(int aCode);
int __real_raise(int aSignal);
int __real_kill(pid_t aProcess, int aSignal);

[[noreturn]] __attribute__((weak)) void __wrap_abort(void) {
  __gcov_dump();
  __real_abort();
}

[[noreturn]] __attribute__((weak)) void __wrap__exit(int aCode) {
  __gcov_dump();
  __real__exit(aCode);
}

__attribute__((weak)) int __wrap_raise(int aSignal) {
  __gcov_dump();
  return __real_raise(aSignal);
}

__attribute__((weak)) int __wrap_kill(pid_t aProcess, int aSignal) {
  if (aProcess == getpid()) {
    __gcov_dump();
  }
  return __real_kill(aProcess, aSignal);
}
}
