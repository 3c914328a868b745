#include "Workload.h"

#include <fast_float/fast_float.h>

#include <system_error>

namespace {

struct Read {
  bool operator()(const char* aText, size_t aLength, double* aValue) const {
    const fast_float::from_chars_result theResult = fast_float::from_chars(aText, aText + aLength, *aValue);
    return theResult.ec == std::errc() && theResult.ptr == aText + aLength;
  }
};

const Contender sRows[] = {NUMBERS_DOUBLE_ROWS("fast_float", Read)};

}  // namespace
