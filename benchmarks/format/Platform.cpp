#include "Workload.h"

#include <clocale>
#include <cstdio>

#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

struct Print {
  template <typename... Values>
  int operator()(char* aText, size_t aSize, const char* aFormat, Values... aValues) const {
    return snprintf(aText, aSize, aFormat, aValues...);
  }
};

[[maybe_unused]] const char* const sLocale = setlocale(LC_CTYPE, "C.UTF-8");

const Contender sRows[] = {FORMAT_COMMON_ROWS("platform", Print), FORMAT_POSITIONAL_ROW("platform", Print),
                           FORMAT_WIDE_ROW("platform", Print)};

}  // namespace
