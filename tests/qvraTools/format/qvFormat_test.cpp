// The formatted-output functions: buffers, lengths, fixed texts, positions and errors.
#include "qvraTools/format/qvFormat.h"

#include <gtest/gtest.h>
#include <limits.h>
#include <string.h>

#include <string>

#include "qvraTools/qvMalloc.h"

// The compiler would refuse the formats that are wrong on purpose.
#pragma GCC diagnostic ignored "-Wformat"
#pragma GCC diagnostic ignored "-Wformat-security"
#pragma GCC diagnostic ignored "-Wformat-extra-args"
#pragma GCC diagnostic ignored "-Wformat-truncation"

TEST(qvFormat, CutsTheTextAndReturnsTheFullLength) {
  char theBuffer[8] = "xxxxxxx";
  EXPECT_EQ(6, qv_snprintf(theBuffer, 4, "%s", "abcdef"));
  EXPECT_STREQ("abc", theBuffer);
  EXPECT_EQ('x', theBuffer[4]);
}
