// Logs at every moment of the end of a program: from main, from an exit handler, from the destructor of an
// object of the program, and from a destructor and an exit handler that run after the library's own. Linked
// with the shared library and with the archive.
#include <stdlib.h>

#include "faults/staticlife/Logging.h"

namespace {

struct Late {
  const char* mText;
  ~Late() { LogLine(mText); }
};

void LogInFirstHandler() { LogLine("the handler that was registered before all else"); }
void LogInHandler() { LogLine("an exit handler"); }

// Before the constructors of all libraries, so that the handler is called when they have come to their end.
void RegisterFirstHandler() { atexit(LogInFirstHandler); }
__attribute__((section(".preinit_array"), used)) void (*sPreinit)() = RegisterFirstHandler;

// Made before any object of the archive, and so destroyed behind it.
__attribute__((init_priority(101))) Late sEarliest = {"the object that was made before all else"};
Late sObject = {"an object"};

}  // namespace

int main() {
  atexit(LogInHandler);
  LogLine("main");
  return 0;
}
