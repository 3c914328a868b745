#include "Workload.h"

#include <qvraTools/format/qvFormat.h>

#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-nonliteral"

namespace {

struct Print {
  template <typename... Values>
  int operator()(char* aText, size_t aSize, const char* aFormat, Values... aValues) const {
    return qv_snprintf(aText, aSize, aFormat, aValues...);
  }
};

const Contender sRows[] = {FORMAT_COMMON_ROWS("qvLog", Print), FORMAT_POSITIONAL_ROW("qvLog", Print),
                           FORMAT_WIDE_ROW("qvLog", Print)};

}  // namespace
