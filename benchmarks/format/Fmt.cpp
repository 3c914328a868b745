#include "Workload.h"

#include <fmt/printf.h>

namespace {

// The text of fmt::sprintf without the string that it returns, whose block costs more than some of the rows.
struct Print {
  template <typename... Values>
  int operator()(char* aText, size_t aSize, const char* aFormat, Values... aValues) const {
    fmt::memory_buffer theBuffer;
    fmt::detail::vprintf(theBuffer, fmt::string_view(aFormat),
                         fmt::printf_args(fmt::make_printf_args(aValues...)));
    size_t theLength = theBuffer.size() < aSize ? theBuffer.size() : aSize - 1;
    memcpy(aText, theBuffer.data(), theLength);
    aText[theLength] = '\0';
    return static_cast<int>(theBuffer.size());
  }
};

const Contender sRows[] = {FORMAT_COMMON_ROWS("{fmt}", Print), FORMAT_POSITIONAL_ROW("{fmt}", Print)};

}  // namespace
