// PlannedCalls.h - makes the system calls of a save fail, or end the process, as a plan says.
//
// The functions of the C library through which settings are opened and saved are defined in every program
// that is linked with this, on every target. Outside of RunPlanned they do what the C library's do.
#ifndef TESTS_INTERPOSED_PLANNEDCALLS_H
#define TESTS_INTERPOSED_PLANNEDCALLS_H

#include <stddef.h>

#include <functional>
#include <string>
#include <vector>

constexpr size_t kNever = static_cast<size_t>(-1);

// A call that changed what is on disk, or made it durable. Files are named without their folder; a write and
// a sync bear the name under which the file was opened.
struct DiskOperation {
  enum class Kind { kCreate, kWrite, kSyncFile, kSyncFolder, kRename, kUnlink };
  Kind mKind;
  std::string mName;
  std::string mNewName;  // of a rename
  std::string mBytes;    // of a write
};

// What happens to the calls of a body. Calls that change or guard what is on disk count from 0: open, write,
// fsync, close, flock, rename and unlink.
struct CallPlan {
  bool mfLooksCount = false;      // read and stat count, and can fail, too
  size_t mKillBefore = kNever;    // index of the call that the process does not live to make
  size_t mFailFrom = kNever;      // index of the first call that fails
  size_t mFailCount = 0;          // how many fail
  std::string mFailName;          // unless empty, only calls of this name fail
  int mErrno = 0;                 // what they fail with
  size_t mLargestWrite = kNever;  // bytes that one write stores at most
  size_t mLargestRead = kNever;   // bytes that one read gives at most

  // What RunPlanned says.
  std::vector<std::string> mCalls;         // the names of the calls, in order
  std::vector<DiskOperation> mOperations;  // what succeeded, in order
  size_t mPauseCount = 0;                  // how often nanosleep was called, which does not sleep

  // The names with a blank between them.
  std::string Calls() const;
};

// Carries a plan out on aBody.
CallPlan RunPlanned(const CallPlan& aPlan, const std::function<void()>& aBody);

// From here on the plan is off, in a process that goes its own way.
void StopPlannedCalls();

#endif
