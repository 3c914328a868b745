#include "support/SleepingThread.h"

#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <string>

namespace {

// "R" runs, "S" sleeps; empty when there is no such thread any more. The name before it may hold blanks.
std::string StateOf(long aThreadId) {
  std::ifstream theStream("/proc/self/task/" + std::to_string(aThreadId) + "/stat");
  std::string theLine;
  std::getline(theStream, theLine);
  size_t theNameEnd = theLine.rfind(')');
  return theNameEnd == std::string::npos ? "" : theLine.substr(theNameEnd + 2, 1);
}

}  // namespace

SleepingThread::SleepingThread(const std::function<void()>& aBody) {
  std::atomic<long> theId{0};
  mThread = std::thread([&theId, aBody] {
    theId = syscall(SYS_gettid);
    aBody();
  });
  while (theId == 0) {
    std::this_thread::yield();
  }
  // A thread that does not wait, as it should, has ended: the test then finds out.
  for (std::string theState = "R"; theState != "S" && theState != ""; theState = StateOf(theId)) {
    std::this_thread::yield();
  }
}

SleepingThread::~SleepingThread() { mThread.join(); }
