// qvLogFork_p.h - what the loggers do when the process forks. The framework calls these with the log lock
// held, but for the first.
#ifndef QVLOG_QVLOGFORK_P_H
#define QVLOG_QVLOGFORK_P_H

// Lets the process id be remembered, since from now on a child forgets it. Called without the log lock: the
// system may let nobody register while a fork waits for that lock.
void qvLogger_S_WatchForks();

// Before a fork: writes a line that is not complete where the child could not drop its copy.
void qvFileLogger_S_PrepareFork();

// In the child: drops the part of a line that the parent has not written yet. The child's first line starts
// with a prefix, in the same file.
void qvFileLogger_S_LeaveParentsLine();

// In the child: forgets the connection without a word on it, and the losses, which the parent reports. The
// child connects for its first message, under a UUID of its own.
void qvLogdLogger_S_LeaveParentsConnection();

#endif
