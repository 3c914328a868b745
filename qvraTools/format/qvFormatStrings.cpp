// The small string functions of the engine.
#include <stdlib.h>
#include <string.h>
#include <wchar.h>

#include "qvraTools/format/qvFormat.h"

// The checks below hold in every build, also where the system's assertions are otherwise compiled out.
#undef NDEBUG
#include <assert.h>

size_t _qv_length(const char* string) { return strlen(string); }

const char* _qv_error(int error) { return strerror(error); }

long _qv_to_long(const char* string, char** endp, int base) {
  assert(string);
  assert((base >= 2) && (base <= 36));
  return strtol(string, endp, base);
}

long _qv_w_to_long(const vexa_wchar_t* string, vexa_wchar_t** endp, int base) {
  assert(string);
  assert((base >= 2) && (base <= 36));
  return wcstol(string, endp, base);
}
