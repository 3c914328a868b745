// Whatever a file holds, asking for its revision stamp ends with a number.
#include <sys/mman.h>
#include <unistd.h>

#include "FuzzInput.h"
#include "qvOS/qvPath.h"
#include "qvraTools/qvMalloc.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* aBytes, size_t aLength) {
  static const int sFile = memfd_create("program", 0);
  static const std::string sPath = "/proc/self/fd/" + std::to_string(sFile);
  FUZZ_REQUIRE(ftruncate(sFile, 0) == 0);
  FUZZ_REQUIRE(pwrite(sFile, aBytes, aLength, 0) == static_cast<ssize_t>(aLength));
  char* theBranch = nullptr;
  qvPath_GetBinaryRevision(sPath.c_str(), &theBranch);
  qvFree(theBranch);
  return 0;
}
