// TracedProcess.h - runs code in a child whose system calls the test sees, and kills it before one of them.
//
// A crash can come between any two system calls; code that must survive one is tried with each of them.
#ifndef TESTS_SUPPORT_TRACEDPROCESS_H
#define TESTS_SUPPORT_TRACEDPROCESS_H

#include <stddef.h>

#include <functional>
#include <vector>

// False where no child can be traced, as under an emulator. Ask before the other two.
bool CanTraceProcesses();

// The numbers of the system calls that aBody makes in a forked child, in order.
std::vector<long> SystemCallsOf(const std::function<void()>& aBody);

// Runs aBody in a forked child and kills the child right before its system call anIndex, counted from 0: that
// call is not made. Returns false when the body ended before it.
bool KillBeforeSystemCall(size_t anIndex, const std::function<void()>& aBody);

// Stops the child there instead, runs aMeanwhile and lets the child go on. Gives the child's exit code, which
// is what aBody returns, or -1 when the body ended before that call.
int StopBeforeSystemCall(size_t anIndex, const std::function<int()>& aBody,
                         const std::function<void()>& aMeanwhile);

#endif
