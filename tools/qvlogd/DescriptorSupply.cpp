#include "tools/qvlogd/DescriptorSupply.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>

static const size_t kOwnDescriptors = 64;  // files, listening sockets, forwarding and what the system needs

void DescriptorSupply_FillStandardStreams() {
  int theDescriptor;
  do {
    theDescriptor = open("/dev/null", O_RDWR);
  } while (theDescriptor >= 0 && theDescriptor <= STDERR_FILENO);
  if (theDescriptor >= 0) {
    close(theDescriptor);
  }
}

size_t DescriptorSupply_Reserve(size_t aConnections) {
  struct rlimit theLimit;
  if (getrlimit(RLIMIT_NOFILE, &theLimit) != 0) {
    return aConnections;
  }
  rlim_t theWanted = aConnections + kOwnDescriptors;
  if (theLimit.rlim_cur < theWanted) {
    struct rlimit theRaised = {theWanted, std::max(theWanted, theLimit.rlim_max)};
    if (setrlimit(RLIMIT_NOFILE, &theRaised) != 0) {
      // Only a privileged process may raise the upper limit.
      theRaised = {std::min(theWanted, theLimit.rlim_max), theLimit.rlim_max};
      setrlimit(RLIMIT_NOFILE, &theRaised);
    }
    getrlimit(RLIMIT_NOFILE, &theLimit);
  }
  if (theLimit.rlim_cur >= theWanted) {
    return aConnections;
  }
  return theLimit.rlim_cur > kOwnDescriptors + 1 ? static_cast<size_t>(theLimit.rlim_cur - kOwnDescriptors)
                                                 : 1;
}
