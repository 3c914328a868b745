#include "Workload.h"

#include <charconv>
#include <system_error>

namespace {

struct Read {
  template <typename Number>
  bool operator()(const char* aText, size_t aLength, Number* aValue) const {
    const std::from_chars_result theResult = std::from_chars(aText, aText + aLength, *aValue);
    return theResult.ec == std::errc() && theResult.ptr == aText + aLength;
  }
};

struct ReadHex {
  bool operator()(const char* aText, size_t aLength, uint32_t* aValue) const {
    const std::from_chars_result theResult = std::from_chars(aText, aText + aLength, *aValue, 16);
    return theResult.ec == std::errc() && theResult.ptr == aText + aLength;
  }
};

const Contender sRows[] = {NUMBERS_INT32_ROWS("from_chars", Read), NUMBERS_UINT64_ROWS("from_chars", Read),
                           NUMBERS_HEX_ROWS("from_chars", ReadHex), NUMBERS_DOUBLE_ROWS("from_chars", Read)};

}  // namespace
