#include "Workload.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wall"
#pragma GCC diagnostic ignored "-Wextra"
#define STB_SPRINTF_IMPLEMENTATION
#define STB_SPRINTF_STATIC
#include <stb/stb_sprintf.h>
#pragma GCC diagnostic pop

#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

struct Print {
  template <typename... Values>
  int operator()(char* aText, size_t aSize, const char* aFormat, Values... aValues) const {
    return stbsp_snprintf(aText, static_cast<int>(aSize), aFormat, aValues...);
  }
};

const Contender sRows[] = {FORMAT_COMMON_ROWS("stb_sprintf", Print)};

}  // namespace
