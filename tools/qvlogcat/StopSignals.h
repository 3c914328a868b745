// StopSignals.h - SIGINT and SIGTERM ask the program to end; a second one ends it.
#ifndef QVLOGCAT_STOPSIGNALS_H
#define QVLOGCAT_STOPSIGNALS_H

// From here on a first signal is remembered, and interrupts a system call that waits.
void StopSignals_Catch();
bool StopSignals_HasCome();

#endif
