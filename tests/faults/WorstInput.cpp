#include "faults/WorstInput.h"

#include <malloc.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>
#include <unistd.h>

#include "support/ChildProcess.h"
#include "support/ScratchFolder.h"

namespace {

constexpr size_t kMaxTimesTheResult = 4;
// What a small result may take on top: the pages that the allocator and the C library touch on the way.
constexpr size_t kSpareBytes = 1 << 20;
constexpr size_t kBytesPerKilobyte = 1024;

double ProcessorSeconds() {
  struct timespec theTime;
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &theTime);
  return static_cast<double>(theTime.tv_sec) + static_cast<double>(theTime.tv_nsec) * 1e-9;
}

// A number of kilobytes from the system's description of this process, in bytes.
size_t ReadStatus(const std::string& aName) {
  const std::string theStatus = ReadWholeFile("/proc/self/status");
  const size_t thePosition = theStatus.find("\n" + aName + ":");
  return thePosition == std::string::npos
             ? 0
             : strtoul(theStatus.c_str() + thePosition + aName.size() + 2, nullptr, 10) * kBytesPerKilobyte;
}

// Gives the allocator's stock of free blocks back. From here on the peak is that of what is still to come.
void ForgetPeak() {
  malloc_trim(0);
  WriteWholeFile("/proc/self/clear_refs", "5");
}

}  // namespace

void CheckWorstCall(Experiment* anExperiment, const std::string& aName, const WorstCall& aCall) {
  const ChildResult theChild = RunInChild([&] {
    ForgetPeak();
    const size_t theBytes = ReadStatus("VmRSS");
    const double theStart = ProcessorSeconds();
    const size_t theResult = aCall();
    const double theSeconds = ProcessorSeconds() - theStart;
    const size_t thePeak = ReadStatus("VmHWM");
    printf("%f %zu %zu\n", theSeconds, thePeak > theBytes ? thePeak - theBytes : 0, theResult);
  });
  double theSeconds = 0.0;
  size_t theBytes = 0;
  size_t theResult = 0;
  if (sscanf(theChild.mStdout.c_str(), "%lf %zu %zu", &theSeconds, &theBytes, &theResult) != 3) {
    anExperiment->Check(false, aName + ": did not end: " + theChild.mStderr);
    return;
  }
  fprintf(stderr, "%-50s %7.3f s %9zu KiB for %9zu KiB\n", aName.c_str(), theSeconds,
          theBytes / kBytesPerKilobyte, theResult / kBytesPerKilobyte);
  anExperiment->Check(theSeconds <= kWorstCallSeconds, aName + ": took " + std::to_string(theSeconds) + " s");
  anExperiment->Check(
      theBytes <= kMaxTimesTheResult * theResult + kSpareBytes,
      aName + ": took " + std::to_string(theBytes) + " bytes for " + std::to_string(theResult));
}
