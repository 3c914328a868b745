// The paths of a program of which the system tells a path without a slash. This file has its own readlink.

#include <gtest/gtest.h>
#include <string.h>
#include <unistd.h>

#include "qvOS/qvPath.h"
#include "support/HeapUse.h"

extern "C" ssize_t readlink(const char*, char* aBuffer, size_t) noexcept {
  memcpy(aBuffer, "prog", 4);
  return 4;
}

TEST(qvPathWithoutSlash, AskingForTheDirectoryKeepsNoMemory) {
  ExpectNoHeapGrowth([] { EXPECT_EQ(nullptr, qvPath_GetApplicationPath(0)); });
}

TEST(qvPathWithoutSlash, AskingForTheNameKeepsNoMemory) {
  ExpectNoHeapGrowth([] { EXPECT_EQ(nullptr, qvPath_GetApplicationName(0)); });
}
