// WorstInput.h - what a call costs that is given the worst that its text can be.
#ifndef TESTS_FAULTS_WORSTINPUT_H
#define TESTS_FAULTS_WORSTINPUT_H

#include <stddef.h>

#include <functional>
#include <string>

#include "faults/Experiment.h"

// The call. Returns the bytes of its result.
typedef std::function<size_t()> WorstCall;

// Seconds of processor time that a call may take.
constexpr double kWorstCallSeconds = 2.0;

// Makes the call in a process of its own and checks its time, and that it takes no more memory than four
// times its result. aCall is made with its input at hand, so that this counts for neither.
void CheckWorstCall(Experiment* anExperiment, const std::string& aName, const WorstCall& aCall);

#endif
